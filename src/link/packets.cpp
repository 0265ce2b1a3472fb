#include "link/packets.h"

#include <algorithm>

#include "image/image.h"
#include "link/identify.h"
#include "link/port.h"
#include "util/desktop.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

namespace zandrel {

std::int32_t ComTimeOutTicks = kDefaultComTimeOutTicks;
std::int32_t ComRetries = kDefaultComRetries;
std::string txtComTimeOut = std::to_string(kDefaultComTimeOutTicks);
std::string txtComRetries = std::to_string(kDefaultComRetries);

namespace {

constexpr std::uint8_t kInterfaceMessage = 2;
constexpr std::uint8_t kWriteAcknowledge = 0xF2;

std::uint8_t ByteAt(const ByteString& bytes, std::size_t position) {
    return position < bytes.size() ? static_cast<std::uint8_t>(bytes[position]) : 0;
}

std::uint8_t SumOf(const ByteString& bytes) {
    std::uint8_t sum = 0;
    for (const char c : bytes) sum = static_cast<std::uint8_t>(sum + static_cast<std::uint8_t>(c));
    return sum;
}

void LogFrame(const ByteString& frame) {
    std::string line;
    for (const char c : frame) line += Hex2(static_cast<std::uint8_t>(c));
    DebugLog(line);
}

std::optional<std::int32_t> SixteenBits(const std::string& text) {
    const auto value = StrictWhole(text);
    if (!value || *value < -32768 || *value > 32767) return std::nullopt;
    return value;
}

// The allowance of a send: it grows with each attempt. A negative time-out is none.
std::uint32_t DeadlineMs(int timeOut, int number) {
    constexpr std::int64_t kLongest = 24 * 60 * 60 * 1000;
    const std::int64_t deadline = std::int64_t{timeOut} * number;
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(deadline, 0, kLongest));
}

enum class Wait { Arrived, Expired, Failed };

// What one send brought.
enum class Outcome { Reply, TryAgain, PortFailed };

// One send and the wait for its reply. Deadlines count from the send, in milliseconds.
struct Attempt {
    const ByteString& Command;
    int Number;
    std::uint32_t Start;
    std::uint32_t Deadline;
    bool ReadReplyExpected;
    bool Acknowledged = false;
    bool PassedOver = false;  // a frame has come that was not the reply
    ByteString Frame = {};

    std::uint32_t Elapsed() const { return TickCount() - Start; }
    std::string Prefix() const { return "#" + std::to_string(Number); }

    void Log(const std::string& line) const {
        if (Acknowledged) DebugLog("Command Acknowledged");
        DebugLog(Prefix() + line);
    }

    void LogTimeOut(const char* what, int received) const {
        Log(" Time out " + std::string(what) + ": 0x" + Hex(ByteAt(Command, 0)) + "; waited" +
            NumberText(Elapsed()) + "; bytes received" + NumberText(received));
    }

    Wait For(int count) const {
        for (;;) {
            // A device that talks on and on does not hold the exchange beyond its deadline.
            const bool late = PassedOver && Elapsed() > Deadline;
            if (!late && MSComm1.InBufferCount() >= count) return Wait::Arrived;
            const std::uint32_t elapsed = Elapsed();
            if (elapsed > Deadline) return Wait::Expired;
            if (!MSComm1.WaitForInput(static_cast<int>(Deadline - elapsed) + 1)) return Wait::Failed;
        }
    }

    // Lets the line fall silent before the next send.
    Outcome WaitOut() const {
        for (std::uint32_t elapsed = Elapsed(); elapsed <= Deadline; elapsed = Elapsed()) {
            if (!MSComm1.WaitForInput(static_cast<int>(Deadline - elapsed) + 1)) return Outcome::PortFailed;
            MSComm1.Input(0);
        }
        return Outcome::TryAgain;
    }

    Outcome Run(LinkResult& result);
    bool TakeFrame(Outcome& outcome);
};

// Takes one whole frame from the line. False: none came; `outcome` tells how the attempt ends.
bool Attempt::TakeFrame(Outcome& outcome) {
    outcome = Outcome::TryAgain;
    Frame.clear();
    const Wait header = For(3);
    if (header == Wait::Arrived) {
        Frame = MSComm1.Input(3);
        const int rest = ByteAt(Frame, 1) - 2;
        const Wait data = rest > 0 ? For(rest) : Wait::Arrived;
        if (data == Wait::Arrived) {
            if (rest > 0) Frame += MSComm1.Input(rest);
            return true;
        }
        if (data == Wait::Expired) {
            LogTimeOut("data", MSComm1.InBufferCount() + 3);
            Frame += MSComm1.Input(0);
            LogFrame(Frame);
            return false;
        }
    } else if (header == Wait::Expired) {
        const int received = MSComm1.InBufferCount();
        LogTimeOut("header", received);
        const ByteString rest = MSComm1.Input(0);
        if (!rest.empty()) LogFrame(rest);
        return false;
    }
    outcome = Outcome::PortFailed;
    return false;
}

Outcome Attempt::Run(LinkResult& result) {
    for (;;) {
        Outcome outcome{};
        if (!TakeFrame(outcome)) return outcome;
        PassedOver = true;  // unless it proves to be the reply
        if (SumOf(Frame) != 255) {
            Log(" Checksum error: 0x" + Hex(ByteAt(Command, 0)));
            LogFrame(Frame);
            result = LinkResult::BadReply;
            return WaitOut();
        }
        const std::uint8_t code = ByteAt(Frame, 0);
        if (code == kInterfaceMessage) {
            const std::uint8_t messageClass = ByteAt(Frame, 2);
            if (messageClass == 0) {
                if (ByteAt(Frame, 3) != ByteAt(Command, 0)) return WaitOut();
                Acknowledged = true;
            } else if (messageClass <= 3) {
                Log(" Corvane Internal error:");
                LogFrame(Frame);
                result = LinkResult::BadReply;
                return WaitOut();
            }
            continue;  // the true reply is still to come, in the same deadline
        }
        if (code == (ReadReplyExpected ? ByteAt(Command, 0) : kWriteAcknowledge)) return Outcome::Reply;
        Log(ReadReplyExpected ? " Incorrect read reply - expected 0x" + Hex2(ByteAt(Command, 0))
                              : " Incorrect write reply - expected 0xF2");
        result = LinkResult::WrongCode;
        LogFrame(Frame);
    }
}

}  // namespace

void txtComTimeOut_Change() {
    ComTimeOutTicks = SixteenBits(txtComTimeOut).value_or(ComTimeOutTicks);
}

void txtComRetries_Change() {
    ComRetries = SixteenBits(txtComRetries).value_or(ComRetries);
}

bool ComCheck(bool ask) {
    if (MSComm1.PortOpen()) return true;
    if (ask && MessageBox("No COM port has been selected.\nWould you like to AutoDetect the COM port now?",
                          Box::YesNoInformation) == Answer::Yes) {
        ComAutoDetect();
        if (MSComm1.PortOpen()) return true;
    }
    DebugLog("COM port not open");
    return false;
}

void ComReset() {
    if (MSComm1.PortOpen()) MSComm1.Close();
    if (MSComm1.Open()) return;
    // A port that is gone is no chosen port: one click on it chooses it again when it is back.
    mnuCom[static_cast<std::size_t>(MSComm1.CommPort - 1)].Checked = false;
}

int ComFlush() {
    if (!ComCheck(true)) return 1;
    // What stands in the driver behind a full buffer is dropped too; a chattering device is not waited for.
    for (int round = 0; round < 8 && !MSComm1.Input(0).empty(); ++round) {
    }
    return 0;
}

ByteString FrameOf(const ByteString& command) {
    if (command.empty()) return {};
    ByteString frame = command;
    frame.insert(1, 1, static_cast<char>(command.size() + 1));
    frame += static_cast<char>(255 - SumOf(frame));
    return frame;
}

int WritePacket(const ByteString& command) {
    if (command.empty() || !ComCheck(false)) return 1;
    if (MSComm1.Output(FrameOf(command))) return 0;
    RaiseError(MSComm1.ErrorText());
    return 1;
}

LinkResult ReadPacket(ByteString& command, bool show, int& timeOut, int& retries) {
    ClearError();
    if (!ComCheck(show)) return LinkResult::PortClosed;
    if (timeOut == 0) timeOut = ComTimeOutTicks;
    if (retries == -1) retries = ComRetries;
    LinkResult result = LinkResult::NoReply;
    for (int number = 1;; ++number) {
        if (number - 1 > retries) {
            DebugLog("Maximum retries exceeded");
            ShowNotResponding(show);
            return result;
        }
        Outcome outcome = Outcome::PortFailed;
        if (ComFlush() == 0) {
            const std::uint32_t start = TickCount();
            if (WritePacket(command) == 0) {
                AfterSend();
                const bool read = command.size() == 1 || command[0] == 1;
                const auto deadline = DeadlineMs(timeOut, number);
                Attempt attempt{command, number, start, deadline, read};
                outcome = attempt.Run(result);
                if (outcome == Outcome::Reply) {
                    command = std::move(attempt.Frame);
                    return LinkResult::Success;
                }
                if (outcome == Outcome::PortFailed) RaiseError(MSComm1.ErrorText());
            }
        }
        if (outcome == Outcome::PortFailed) {
            ErrorLog("ReadPacket");
            ShowNotResponding(show);
            return result;
        }
    }
}

LinkResult ReadPacket(ByteString& command, bool show) {
    int timeOut = 0;
    int retries = -1;
    return ReadPacket(command, show, timeOut, retries);
}

LinkResult ReadPacketData(const ByteString& command, int expectedLength, ByteString& data, bool show) {
    ByteString frame = command;
    const LinkResult result = ReadPacket(frame, show);
    if (result != LinkResult::Success) return result;
    if (expectedLength == 0) {
        data = frame.substr(2);
        return LinkResult::Success;
    }
    const int count = static_cast<int>(frame.size()) - 3;
    if (count == expectedLength) {
        data = frame.substr(2, static_cast<std::size_t>(count));
        return LinkResult::Success;
    }
    DebugLog("Incorrect length packet error. Received " + std::to_string(count) + " expected " +
             std::to_string(expectedLength));
    ShowNotResponding(show);
    return LinkResult::PortClosed;
}

bool ReadBlock(int block, int length, bool show) {
    const ByteString command(1, static_cast<char>(block));
    const auto at = static_cast<std::size_t>(block);
    if (ReadPacketData(command, length, ReadData[at], show) != LinkResult::Success) return false;
    BlockInForce[at] = ImageIsInForce();
    return true;
}

void ShowNotResponding(bool show) {
    if (!show) return;
    DebugLog("Interface not responding error");
    MessageBox("Interface not responding!", Box::Exclamation);
    ComReset();
}

}  // namespace zandrel
