// Frames on the wire: code, length, data, checksum. The length counts itself, the data and the checksum;
// the sum of all bytes of a good frame, modulo 256, is 255.
#pragma once

#include <cstdint>
#include <optional>

#include "simulator/simulator.h"

namespace powerfc {

/// One frame as it came in; Malformed: wrong length or checksum, or bytes that never became a frame.
struct Request {
    Bytes Data;
    std::int64_t FirstNs = 0;
    std::int64_t LastNs = 0;
    bool Malformed = false;
};

/// Cuts the incoming bytes into frames.
class FrameReader {
  public:
    /// Bytes that arrived at `firstNs` at the earliest and were complete at `lastNs`.
    void Feed(const std::uint8_t* bytes, std::size_t count, std::int64_t firstNs, std::int64_t lastNs);
    /// The next frame, good or malformed, or nothing if more bytes are needed. A malformed frame takes
    /// all that is buffered with it: the sender must begin anew.
    std::optional<Request> Next();
    /// What is left of a frame that stopped short, as malformed; nothing if nothing is buffered.
    std::optional<Request> GiveUp();
    bool Pending() const { return !buffer_.empty(); }

  private:
    Request Take(std::size_t count, bool malformed);

    Bytes buffer_;
    std::int64_t firstNs_ = 0;
    std::int64_t lastNs_ = 0;
};

/// Sum of all bytes, modulo 256.
std::uint8_t SumOf(const Bytes& bytes);

/// Wire time of so many bytes in nanoseconds.
std::int64_t WireTimeNs(std::int64_t bytes);

}  // namespace powerfc
