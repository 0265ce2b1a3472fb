// A simulated Power-FC behind its interface box, on a pseudo terminal. It keeps the state of one build,
// answers whatever the real one answers, and has fault knobs for tests. It shares no code with the
// program's own packet layer, so that the same mistake made twice can't cancel out.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace powerfc {

using Bytes = std::vector<std::uint8_t>;

/// As code argument: any code. As count: for good, until `ClearFaults`.
inline constexpr int kAnyCode = -1;
inline constexpr int kForever = -1;

enum class FaultKind;

/// Which write command the sensor-select and the function-select block really obey. A command that is
/// not obeyed is acknowledged all the same and changes nothing.
enum class SelectWrites { OwnCode, SecondCode, Never };

struct Options {
    /// Engine name and version number joined. A key that the catalogue lacks makes a Power-FC with that
    /// name and otherwise the blocks of `UnknownIsLike`.
    std::string Version = "RB26DETT6.42";
    std::string UnknownIsLike = "RB26DETT6.42";
    /// "V1.X": 4 auxiliary inputs, no answer to the version query. Any other four characters: 8 inputs,
    /// the query answered with them.
    std::string Interface = "V2.0";
    /// A "V1.X" interface that answers the version query with a single byte instead of silence.
    bool ShortVersionAnswer = false;
    /// Symbolic link to the terminal; an old link of that name is replaced. Empty: none.
    std::string LinkPath;
    /// True 57600 baud 8N1 timing both ways: 10 bits, 173.6 us, a byte.
    bool Pace = false;
    /// Send the start-up text at power-up ("KVX:V2.0", or "V2K" from a V1.X interface).
    bool Announce = false;
    /// An acknowledging message of the interface (class 0) before every reply.
    bool Ack = false;
    SelectWrites Selects = SelectWrites::OwnCode;
    /// A tuning data file whose block records replace the contents, the version blocks excepted. A
    /// record longer than the block is cut; a shorter one, or one of a block that the build lacks, is
    /// passed over (an unknown build takes every record).
    std::string ImageFile;
    /// Every frame as a line: microseconds, direction, bytes. Overwritten at start.
    std::string JournalFile;
};

enum class Direction { Received, Sent };

/// One frame. Times are microseconds of the steady clock (CLOCK_MONOTONIC). Received: when the first
/// bytes came in and when the frame was complete (with pace, after its time on the wire). Sent: when the
/// first and when the last byte went out. Malformed: a request of wrong length or checksum, or one that
/// stopped short. Bytes of `Say` and of spoiled answers stand as they were sent.
struct JournalEntry {
    std::int64_t FirstUs = 0;
    std::int64_t LastUs = 0;
    Direction Way = Direction::Received;
    Bytes Data;
    bool Malformed = false;
};

/// "8D0270": upper-case hexadecimal digits without separators, and back (a wrong digit ends the text).
std::string ToHex(const Bytes& bytes);
Bytes FromHex(std::string_view digits);

/// The frame of a request or reply: code, length, data, checksum. At most 253 data bytes.
Bytes Frame(std::uint8_t code, const Bytes& data = {});

/// A version key parted into engine name (cut to 8 bytes) and number (cut to 5). The number begins one
/// character before the first '.'; a key without '.' is all engine name.
struct VersionKey {
    std::string Engine;
    std::string Number;
};
VersionKey SplitKey(std::string_view key);

/// Wire time of so many bytes at 57600 baud 8N1, in microseconds, rounded to the nearest.
std::int64_t WireTimeUs(std::int64_t bytes);

/// The simulator. Runs on its own thread from construction to destruction, so that a test may block in
/// its own exchange. All members may be called from any thread.
class Simulator {
  public:
    explicit Simulator(Options options = {});
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// Empty if all is well, otherwise why there is no terminal, image or journal file.
    std::string Error() const;
    /// What the program is to open: `LinkPath`, or the terminal itself without one. After `Return` the
    /// terminal itself may have another name.
    std::string PortName() const;

    // --- State -----------------------------------------------------------------------------------

    /// True if the build has block `code` (it then answers a bare read of it).
    bool HasBlock(int code) const;
    /// Data bytes of a block; empty if the build has no such block.
    Bytes Block(int code) const;
    /// The same as a string of bytes.
    std::string BlockString(int code) const;
    /// Replaces the whole block, with whatever length; a block that the build lacks comes into being.
    void SetBlock(int code, Bytes data);
    /// True if the Power-FC takes writes of the block. A write of any other (the version blocks, the
    /// sensor names, the boost duties beside a first boost block) stays without an answer.
    bool Writable(int code) const;
    /// Codes of all blocks of the build, ascending.
    std::vector<int> BlockCodes() const;
    /// Holds the engine model at `seconds` of its cycle; a negative value lets it run again.
    void HoldEngineAt(double seconds);

    // --- Journal ---------------------------------------------------------------------------------

    /// A frame stands in the journal before its last byte can be read at the other end.
    std::vector<JournalEntry> Journal() const;
    void ClearJournal();
    /// Hexadecimal texts of the requests received so far, malformed ones with a "!" before them.
    std::vector<std::string> Received() const;
    /// Waits until the journal holds `count` entries; false if it doesn't within `timeoutMs`.
    bool WaitForEntries(std::size_t count, int timeoutMs) const;

    // --- Faults ----------------------------------------------------------------------------------
    // Each meets the next `n` requests whose first byte is `code`. One request meets one fault, the
    // oldest that fits, so that faults of the same code queue up; only `Delay` adds itself to another.

    /// The request is not heard: no answer, nothing carried out.
    void Silence(int code, int n = 1);
    /// The answer begins `ms` milliseconds late.
    void Delay(int code, int ms, int n = 1);
    /// Carried out; the answer's checksum is off by one.
    void BadChecksum(int code, int n = 1);
    /// Carried out; a good frame that bears another code.
    void WrongCode(int code, int n = 1);
    /// Not carried out; the interface reports internal error `errorClass` (1 to 3; others are sent too).
    void InterfaceError(int code, int errorClass, int n = 1);
    /// Carried out; only the first `keep` bytes of the answer come (-1: half of them).
    void ShortFrame(int code, int n = 1, int keep = -1);
    /// Carried out; the answer comes in three pieces (2 bytes, half of the rest, the rest) with pauses.
    void SplitDelivery(int code, int gapMs, int n = 1);
    /// Carried out; a well-formed frame with `change` data bytes more (0xCC) or fewer.
    void WrongLength(int code, int n = 1, int change = -1);
    /// Not carried out; the interface acknowledges the command, then nothing comes.
    void AcknowledgeThenSilence(int code, int n = 1);
    /// Not carried out; the interface acknowledges command `acknowledged`, then nothing comes.
    void AcknowledgeOther(int code, int acknowledged, int n = 1);
    /// Carried out; bit `bit` of the whole frame (byte bit / 8, counted from 0) is turned over. A bit
    /// past the end spoils nothing.
    void FlipBit(int code, int bit, int n = 1);
    /// Carried out; byte `index` of the whole frame, counted from 0, is lost.
    void DropByte(int code, int index, int n = 1);
    /// Carried out; these bytes come instead of the answer.
    void ReplaceReply(int code, Bytes bytes, int n = 1);
    /// The terminal vanishes after `bytesSent` bytes of the answer; what the program hasn't read within
    /// half a second is lost with it.
    void VanishAt(int code, int bytesSent = 0);
    /// Whole map blocks stay unanswered and are not taken; cells are.
    void RefuseMapBlocks(bool refuse);
    /// Which write command the select blocks obey.
    void ObeySelects(SelectWrites which);
    /// Nothing at all is answered.
    void DeadLine(bool dead);
    /// The terminal disappears, with its link: both ends are closed. Ends when that is done.
    void Vanish();
    /// A new terminal behind the same link; announces itself if so told. Ends when that is done.
    void Return();
    /// Sends raw bytes unasked. Ends when they are written.
    void Say(Bytes bytes);
    void Say(std::string_view text);
    /// The start-up text of this interface, sent as by `Say`.
    void Announce();
    /// Forgets all faults, refusals and the dead line.
    void ClearFaults();

  private:
    struct Body;
    void AddFault(FaultKind kind, int code, int n, int number = 0, Bytes reply = {});
    std::unique_ptr<Body> body_;
};

}  // namespace powerfc
