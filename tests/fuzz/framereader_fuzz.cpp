// Fuzz target of the frame reader: whatever comes over the line, a block takes only what a well-formed
// frame of the right code and length brought, and otherwise stays as it was; the reader neither hangs nor
// crashes.
//
// An input is a head of six bytes and the bytes that come back:
//   0  code of the request
//   1  expected length of the block, 0 = any
//   2  data bytes that the request carries, modulo 4 (with data it is a write)
//   3  bytes that arrive at a time, 0 = all at once
//   4  bytes that come after the first send, 255 = all
//   5  bytes that come after the second send, 255 = all that are left
// What is left then comes after the third send.
#include <fcntl.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <QCoreApplication>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "link/packets.h"
#include "link/port.h"
#include "util/desktop.h"
#include "util/diagnostics.h"

using namespace zandrel;

namespace {

constexpr std::size_t kHeadBytes = 6;
constexpr std::size_t kLongestInput = 2048;  // less than a terminal holds
constexpr int kSends = 3;
const ByteString kUntouched = "as it was";

[[noreturn]] void Surprise(const std::string& what) {
    std::fprintf(stderr, "SURPRISE: %s\n", what.c_str());
    std::abort();
}

struct Input {
    ByteString Request;
    int ExpectedLength = 0;
    std::size_t Piece = 0;
    std::vector<ByteString> Replies;  // one to each send
};

Input InputOf(const std::uint8_t* data, std::size_t size) {
    Input input;
    input.Request = ByteString(1, static_cast<char>(data[0]));
    input.ExpectedLength = data[1];
    for (int n = 0; n < data[2] % 4; ++n) input.Request += static_cast<char>(0x11 * (n + 1));
    input.Piece = data[3];
    ByteString rest(reinterpret_cast<const char*>(data) + kHeadBytes, size - kHeadBytes);
    for (const std::uint8_t wanted : {data[4], data[5], std::uint8_t{255}}) {
        const std::size_t count = wanted == 255 ? rest.size() : std::min<std::size_t>(wanted, rest.size());
        input.Replies.push_back(rest.substr(0, count));
        rest.erase(0, count);
    }
    return input;
}

// The other end of the line, and the clock: time stands still while bytes are still to come, and jumps past
// every deadline once the reader has seen them all.
class Line {
  public:
    Line() {
        own_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (own_ < 0 || grantpt(own_) != 0 || unlockpt(own_) != 0) Surprise("no pseudo terminal");
        const std::string name = ptsname(own_);
        other_ = open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings{};
        if (other_ < 0 || tcgetattr(other_, &settings) != 0) Surprise("no pseudo terminal");
        cfmakeraw(&settings);
        tcsetattr(other_, TCSANOW, &settings);
        setenv("ZANDREL_PORTS", ("1=" + name).c_str(), 1);
    }

    void Begin(const Input& input) {
        input_ = &input;
        sends_ = 0;
        coming_.clear();
    }

    // The reader has sent its request; nothing of the last reply may be left.
    void Sent() {
        ByteString request(512, '\0');
        ByteString sent;
        for (ssize_t count = 0; (count = read(own_, request.data(), request.size())) > 0;) {
            sent.append(request, 0, static_cast<std::size_t>(count));
        }
        if (sent != FrameOf(input_->Request)) Surprise("another request than asked for");
        if (sends_ == kSends) Surprise("more sends than retries allow");
        coming_ = input_->Replies[static_cast<std::size_t>(sends_++)];
        seen_ = -1;
        Deliver();
    }

    std::uint32_t Clock() {
        if (!coming_.empty()) {
            Deliver();
            return now_;
        }
        // A reader that still takes frames out of its buffer has not seen them all.
        const int waiting = MSComm1.InBufferCount();
        if (waiting == 0 || waiting == seen_) now_ += 1'000'000;
        seen_ = waiting;
        return now_;
    }

    int Sends() const { return sends_; }

  private:
    int Unread() const {
        int count = 0;
        ioctl(other_, FIONREAD, &count);
        return count;
    }

    void Deliver() {
        const std::size_t count =
            input_->Piece == 0 ? coming_.size() : std::min(input_->Piece, coming_.size());
        if (count == 0) return;
        const int before = Unread();
        if (write(own_, coming_.data(), count) != static_cast<ssize_t>(count)) Surprise("the line is full");
        coming_.erase(0, count);
        // The kernel hands them over at its leisure.
        while (Unread() < before + static_cast<int>(count)) sched_yield();
    }

    int own_ = -1, other_ = -1;
    const Input* input_ = nullptr;
    int sends_ = 0;
    int seen_ = -1;  // bytes in the reader's buffer at its last look
    ByteString coming_;
    std::uint32_t now_ = 0;
};

// What the replies amount to, worked out from the whole of each instead of waiting for them byte by byte.
struct Verdict {
    LinkResult Result = LinkResult::NoReply;
    ByteString Data = kUntouched;
    int Sends = 0;
};

int At(const ByteString& bytes, std::size_t position) {
    return static_cast<std::uint8_t>(bytes[position]);
}

// The reply to the request within what came after one send.
std::optional<ByteString> ReplyIn(const ByteString& came, const ByteString& request, LinkResult& result) {
    const bool wantsBlock = request.size() == 1 || request[0] == 1;
    const int wanted = wantsBlock ? At(request, 0) : 0xF2;
    std::size_t from = 0;
    while (came.size() - from >= 3) {
        const std::size_t size = std::max<std::size_t>(3, static_cast<std::size_t>(At(came, from + 1)) + 1);
        if (came.size() - from < size) break;
        const ByteString frame = came.substr(from, size);
        from += size;
        int sum = 0;
        for (std::size_t i = 0; i < size; ++i) sum += At(frame, i);
        if (sum % 256 != 255) {
            result = LinkResult::BadReply;
            break;
        }
        // The interface's own messages, even to a request for 2.
        if (At(frame, 0) == 2) {
            if (At(frame, 2) == 0 && At(frame, 3) != At(request, 0)) break;
            if (At(frame, 2) >= 1 && At(frame, 2) <= 3) {
                result = LinkResult::BadReply;
                break;
            }
        } else if (At(frame, 0) == wanted) {
            return frame;
        } else {
            result = LinkResult::WrongCode;
        }
    }
    return std::nullopt;
}

Verdict Judge(const Input& input) {
    Verdict verdict;
    for (const ByteString& came : input.Replies) {
        ++verdict.Sends;
        const auto frame = ReplyIn(came, input.Request, verdict.Result);
        if (!frame) continue;
        const std::size_t dataBytes = frame->size() - 3;
        if (input.ExpectedLength == 0) {
            verdict.Result = LinkResult::Success;
            verdict.Data = frame->substr(2);
        } else if (dataBytes == static_cast<std::size_t>(input.ExpectedLength)) {
            verdict.Result = LinkResult::Success;
            verdict.Data = frame->substr(2, dataBytes);
        } else {
            verdict.Result = LinkResult::PortClosed;  // its code for a wrong length as well
        }
        break;
    }
    return verdict;
}

Line& TheLine() {
    static Line line;
    return line;
}

void OpenOnce() {
    static int count = 1;
    static char name[] = "framereader";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
    static bool open = false;
    if (open) return;
    open = true;
    ProgramFolder = "/dev/null";  // no file can stand in it, so nothing is logged
    ComTimeOutTicks = 2;
    ComRetries = kSends - 1;
    TheLine();
    Desktop.TickCount = [] { return TheLine().Clock(); };
    Desktop.MessageBox = [](const std::string& text, Box) -> Answer { Surprise("asked: " + text); };
    AfterSend = [] { TheLine().Sent(); };
    MSComm1.CommPort = 1;
    if (!MSComm1.Open()) Surprise("the port does not open: " + MSComm1.ErrorText());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size < kHeadBytes || size > kLongestInput) return 0;
    const Input input = InputOf(bytes, size);
    OpenOnce();
    TheLine().Begin(input);

    ByteString data = kUntouched;
    const LinkResult result = ReadPacketData(input.Request, input.ExpectedLength, data, false);

    const Verdict verdict = Judge(input);
    if (result != verdict.Result) {
        Surprise("result " + std::to_string(static_cast<int>(result)) + " instead of " +
                 std::to_string(static_cast<int>(verdict.Result)));
    }
    if (data != verdict.Data) Surprise("other data than the line brought");
    if (TheLine().Sends() != verdict.Sends) Surprise("other number of sends");
    return 0;
}
