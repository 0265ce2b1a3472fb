// Faults that wait for their request, and what each makes of an answer.
#pragma once

#include <deque>
#include <optional>

#include "simulator/simulator.h"

namespace powerfc {

enum class FaultKind {
    Silence,
    Delay,
    BadChecksum,
    WrongCode,
    InterfaceError,
    ShortFrame,
    SplitDelivery,
    WrongLength,
    AcknowledgeThenSilence,
    FlipBit,
    DropByte,
    ReplaceReply,
    Vanish,
};

/// Number: milliseconds, class, bytes kept, change, command, bit, index or bytes sent, as the kind needs.
struct Fault {
    FaultKind Kind;
    int Code;
    int Left;  // requests still to meet, or kForever
    int Number = 0;
    Bytes Reply;
};

/// The faults in the order in which they were set.
class FaultQueue {
  public:
    void Add(Fault fault);
    void Clear() { faults_.clear(); }
    /// Milliseconds of the oldest delay that fits `code`, counted as met; 0 without one.
    int TakeDelay(int code);
    /// The oldest other fault that fits `code`, counted as met.
    std::optional<Fault> Take(int code);

  private:
    template <class Predicate>
    std::optional<Fault> TakeFirst(int code, Predicate wanted);

    std::deque<Fault> faults_;
};

/// True if the Power-FC gets to see the request under this fault.
bool CarriedOut(FaultKind kind);

/// The answer under the fault, from the good one. Only for kinds that spoil a single frame.
Bytes Spoil(const Fault& fault, const Bytes& answer);

/// A message of the interface itself: class 0 acknowledges `command`, 1 to 3 are internal errors.
Bytes InterfaceMessage(int messageClass, int command);

}  // namespace powerfc
