// Every fault of the line against an exchange: what is sent again, when, what the log says, and that
// nothing spoilt is ever taken.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "image/image.h"
#include "link/linkfixture.h"
#include "link/packets.h"
#include "link/port.h"
#include "support/scripteddesktop.h"

namespace zandrel {
namespace {

constexpr int kTimeOut = 120;
// A send follows its predecessor by the deadline and at least the millisecond past it; the slack is what
// a loaded machine may take.
constexpr double kSlackMs = 60;
// The device may notice the first of two sends that much later than it was sent.
constexpr double kLateMs = 15;

class Faults : public LinkFixture {
  protected:
    Faults() { ComTimeOutTicks = kTimeOut; }

    LinkResult Read(const char* digits = "8D") {
        reply_ = Bytes(digits);
        return ReadPacket(reply_, false);
    }

    // The n-th send (from 1) was followed by the next one when its own deadline had passed.
    void ExpectDeadline(std::size_t n) const {
        const double gap = GapMs(n - 1);
        EXPECT_GT(gap, static_cast<double>(n) * kTimeOut - kLateMs);
        EXPECT_LT(gap, static_cast<double>(n) * kTimeOut + kSlackMs);
    }

    void ExpectReplyOfBlock(int code) const {
        EXPECT_EQ(Digits(reply_),
                  Digits(FrameOf(ByteString(1, static_cast<char>(code)) + device->BlockString(code))));
    }

    // True if the log's line `n` begins and ends so; between them stand the milliseconds waited.
    void ExpectTimeOutLine(std::size_t n, const std::string& begin, const std::string& end,
                           int deadline) const {
        const Frames lines = LogLines();
        ASSERT_LT(n, lines.size());
        const std::string& line = lines[n];
        ASSERT_EQ(line.substr(0, begin.size()), begin);
        ASSERT_GE(line.size(), begin.size() + end.size());
        EXPECT_EQ(line.substr(line.size() - end.size()), end);
        const int waited = std::stoi(line.substr(begin.size()));
        EXPECT_GT(waited, deadline);
        EXPECT_LT(waited, deadline + kSlackMs);
    }

    ByteString reply_;
};

TEST_F(Faults, ReplyLostOnce_SameFrameIsSentAgainAfterTheFirstDeadline) {
    device->Silence(0x8D, 1);
    ASSERT_EQ(Read(), LinkResult::Success);
    ExpectReplyOfBlock(0x8D);
    EXPECT_EQ(device->Received(), (Frames{"8D0270", "8D0270"}));
    ExpectDeadline(1);
    ExpectTimeOutLine(0, "#1 Time out header: 0x8D; waited ", "; bytes received 0", kTimeOut);
    EXPECT_EQ(LogLines().size(), 1U);
}

TEST_F(Faults, NoReplyAtAll_DeadlinesGrowAndTheResultIs2) {
    device->DeadLine(true);
    EXPECT_EQ(Read(), LinkResult::NoReply);
    EXPECT_EQ(device->Received(), (Frames{"8D0270", "8D0270", "8D0270"}));
    ExpectDeadline(1);
    ExpectDeadline(2);
    ExpectTimeOutLine(0, "#1 Time out header: 0x8D; waited ", "; bytes received 0", kTimeOut);
    ExpectTimeOutLine(1, "#2 Time out header: 0x8D; waited ", "; bytes received 0", 2 * kTimeOut);
    ExpectTimeOutLine(2, "#3 Time out header: 0x8D; waited ", "; bytes received 0", 3 * kTimeOut);
    EXPECT_EQ(LogLines()[3], "Maximum retries exceeded");
    EXPECT_EQ(Digits(reply_), "8D");
}

TEST_F(Faults, LateReplyWithinTheDeadline_IsTaken) {
    device->Delay(0x8D, kTimeOut / 2);
    ASSERT_EQ(Read(), LinkResult::Success);
    EXPECT_EQ(device->Received().size(), 1U);
    EXPECT_EQ(LogText(), "");
}

TEST_F(Faults, ReplyLaterThanTheDeadline_ServesTheNextSend) {
    device->Delay(0x8D, kTimeOut * 3 / 2);
    const LinkResult result = Read();
    ASSERT_EQ(result, LinkResult::Success);
    ExpectReplyOfBlock(0x8D);
    EXPECT_EQ(device->Received().size(), 2U);
}

TEST_F(Faults, BadChecksum_IsLoggedWithItsFrameAndTheDeadlineWaitedOut) {
    device->BadChecksum(0x8D, 1);
    ASSERT_EQ(Read(), LinkResult::Success);
    ExpectReplyOfBlock(0x8D);
    ExpectDeadline(1);
    const Frames lines = LogLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "#1 Checksum error: 0x8D");
    EXPECT_EQ(lines[1].substr(0, 4), "8D1A");
    EXPECT_EQ(lines[1].size(), 54U);
}

TEST_F(Faults, BadChecksumsOnly_GiveResult3) {
    device->BadChecksum(0x8D, powerfc::kForever);
    EXPECT_EQ(Read(), LinkResult::BadReply);
    EXPECT_EQ(device->Received().size(), 3U);
    ExpectDeadline(1);
    ExpectDeadline(2);
}

TEST_F(Faults, WrongCodeThenSilence_GivesResult4) {
    device->WrongCode(0x8D, powerfc::kForever);
    EXPECT_EQ(Read(), LinkResult::WrongCode);
    EXPECT_EQ(device->Received().size(), 3U);
    ExpectDeadline(1);
    const Frames lines = LogLines();
    EXPECT_EQ(lines[0], "#1 Incorrect read reply - expected 0x8D");
    EXPECT_EQ(lines[1].size(), 54U);
    EXPECT_EQ(lines[2].substr(0, 21), "#1 Time out header: 0");
}

TEST_F(Faults, OneWrongCodeAmongSilence_GivesResult4) {
    device->WrongCode(0x8D, 1);
    device->Silence(0x8D, 2);
    EXPECT_EQ(Read(), LinkResult::WrongCode);
    EXPECT_EQ(device->Received().size(), 3U);
}

TEST_F(Faults, LaterAttempts_BearTheirNumber) {
    device->Silence(0x8D, 1);
    device->BadChecksum(0x8D, 1);
    device->InterfaceError(0x8D, 2, 1);
    EXPECT_EQ(Read(), LinkResult::BadReply);
    const Frames lines = LogLines();
    ASSERT_GE(lines.size(), 4U);
    EXPECT_EQ(lines[1], "#2 Checksum error: 0x8D");
    EXPECT_EQ(lines[3], "#3 Corvane Internal error:");
}

// A device that sends good frames of another code without end once held the exchange for ever.
TEST_F(Faults, EndlessWrongFrames_EndWithTheDeadline) {
    ComRetries = 0;
    device->Silence(0x8D);
    powerfc::Bytes flood;
    for (int i = 0; i < 150; ++i) {
        for (const std::uint8_t byte : powerfc::Frame(0x8E, {1})) flood.push_back(byte);
    }
    std::atomic<bool> talking = true;
    std::thread talker([&] {
        while (talking) device->Say(flood);
    });
    const auto start = TickCount();
    const LinkResult result = Read();
    const auto waited = TickCount() - start;
    talking = false;
    // The talker may stand before a full line: what it says is read until it ends.
    MSComm1.Close();
    device->Vanish();
    talker.join();
    EXPECT_EQ(result, LinkResult::WrongCode);
    EXPECT_LT(waited, 2000U);
}

TEST_F(Faults, PortPulledOutWhileTheDeadlineIsWaitedOut_EndsTheExchange) {
    ComTimeOutTicks = 3000;
    ComRetries = 0;
    powerfc::Bytes spoilt = powerfc::Frame(0x8D, {1, 2});
    spoilt.back() ^= 1;
    device->ReplaceReply(0x8D, spoilt);
    std::thread puller([this] {
        // Not before the spoilt reply has been taken.
        while (LogText().find("Checksum error") == std::string::npos) std::this_thread::yield();
        device->Vanish();
    });
    const auto start = TickCount();
    EXPECT_EQ(Read(), LinkResult::BadReply);
    EXPECT_LT(TickCount() - start, 2500U);
    puller.join();
}

TEST_F(Faults, WrongCodeOfALowBlock_IsLoggedWithTwoDigits) {
    device->SetBlock(0x05, {1});
    device->WrongCode(0x05, 1);
    ASSERT_EQ(Read("05"), LinkResult::Success);
    EXPECT_EQ(LogLines()[0], "#1 Incorrect read reply - expected 0x05");
    EXPECT_EQ(LogLines()[2].substr(0, 24), "#1 Time out header: 0x5;");
}

TEST_F(Faults, WrongWriteReply_NamesTheAcknowledge) {
    device->WrongCode(0xA9, powerfc::kForever);
    EXPECT_EQ(Read("A901020304"), LinkResult::WrongCode);
    EXPECT_EQ(LogLines()[0], "#1 Incorrect write reply - expected 0xF2");
    EXPECT_EQ(device->Received().size(), 3U);
}

TEST_F(Faults, InterfaceErrors_AreLoggedAndSentAgain) {
    for (int errorClass = 1; errorClass <= 3; ++errorClass) {
        device->ClearJournal();
        device->InterfaceError(0x8D, errorClass, 1);
        ASSERT_EQ(Read(), LinkResult::Success) << errorClass;
        EXPECT_EQ(device->Received().size(), 2U);
        ExpectDeadline(1);
    }
    const Frames lines = LogLines();
    EXPECT_EQ(lines[0], "#1 Corvane Internal error:");
    EXPECT_EQ(lines[1].substr(0, 2), "02");
    device->InterfaceError(0x8D, 1, powerfc::kForever);
    EXPECT_EQ(Read(), LinkResult::BadReply);
}

TEST_F(Faults, InterfaceMessageOfAnotherClass_IsPassedOver) {
    powerfc::Bytes reply = powerfc::Frame(2, {4, 0x8D});
    for (const std::uint8_t byte : powerfc::Frame(0x8D, {7})) reply.push_back(byte);
    device->ReplaceReply(0x8D, reply);
    ASSERT_EQ(Read(), LinkResult::Success);
    EXPECT_EQ(Digits(reply_), Digits(FrameOf(Bytes("8D07"))));
    EXPECT_EQ(LogText(), "");
}

TEST_F(Faults, AcknowledgeThenReply_LogsNothing) {
    powerfc::Options options;
    options.Ack = true;
    Restart(options);
    ASSERT_EQ(Read(), LinkResult::Success);
    ExpectReplyOfBlock(0x8D);
    ASSERT_EQ(Read("A901020304"), LinkResult::Success);
    EXPECT_EQ(LogText(), "");
}

TEST_F(Faults, AcknowledgeThenSilence_IsToldBeforeTheTimeOut) {
    device->AcknowledgeThenSilence(0x8D, 1);
    ASSERT_EQ(Read(), LinkResult::Success);
    EXPECT_EQ(LogLines()[0], "Command Acknowledged");
    ExpectTimeOutLine(1, "#1 Time out header: 0x8D; waited ", "; bytes received 0", kTimeOut);
    EXPECT_EQ(LogLines().size(), 2U);
    EXPECT_EQ(device->Received().size(), 2U);
}

TEST_F(Faults, AcknowledgeBeforeABadFrame_IsToldBeforeItsLine) {
    const powerfc::Bytes acknowledge = powerfc::Frame(2, {0, 0x8D});
    struct Row {
        powerfc::Bytes Reply;
        const char* Line;
    };
    powerfc::Bytes spoilt = powerfc::Frame(0x8D, {1, 2});
    spoilt.back() ^= 1;
    const Row rows[] = {
        {spoilt, "#1 Checksum error: 0x8D"},
        {powerfc::Frame(2, {1}), "#1 Corvane Internal error:"},
        {powerfc::Frame(0x8E, {1}), "#1 Incorrect read reply - expected 0x8D"},
        {{0x8D, 0x1A, 1, 2}, "#1 Time out data: 0x8D; waited "},
    };
    for (const Row& row : rows) {
        const std::size_t before = LogLines().size();
        powerfc::Bytes reply = acknowledge;
        reply.insert(reply.end(), row.Reply.begin(), row.Reply.end());
        device->ReplaceReply(0x8D, reply);
        ASSERT_EQ(Read(), LinkResult::Success);
        const Frames lines = LogLines();
        ASSERT_GT(lines.size(), before + 1);
        EXPECT_EQ(lines[before], "Command Acknowledged");
        EXPECT_EQ(lines[before + 1].substr(0, std::string(row.Line).size()), row.Line);
    }
}

TEST_F(Faults, AcknowledgeOfAnotherCommand_WaitsTheDeadlineOut) {
    device->AcknowledgeOther(0x8D, 0x8E);
    ASSERT_EQ(Read(), LinkResult::Success);
    EXPECT_EQ(device->Received().size(), 2U);
    ExpectDeadline(1);
    EXPECT_EQ(LogText(), "");
}

TEST_F(Faults, FrameCutShort_IsADataTimeOutWithItsBytes) {
    device->ShortFrame(0x8D, 1, 10);
    ASSERT_EQ(Read(), LinkResult::Success);
    ExpectReplyOfBlock(0x8D);
    ExpectDeadline(1);
    ExpectTimeOutLine(0, "#1 Time out data: 0x8D; waited ", "; bytes received 10", kTimeOut);
    EXPECT_EQ(LogLines()[1].size(), 20U);
    EXPECT_EQ(LogLines().size(), 2U);
}

TEST_F(Faults, HeaderCutShort_IsAHeaderTimeOutWithItsBytes) {
    device->ShortFrame(0x8D, 1, 2);
    ASSERT_EQ(Read(), LinkResult::Success);
    ExpectTimeOutLine(0, "#1 Time out header: 0x8D; waited ", "; bytes received 2", kTimeOut);
    EXPECT_EQ(LogLines()[1], "8D1A");
}

TEST_F(Faults, FrameInPieces_IsPutTogether) {
    device->SplitDelivery(0x8D, 8);
    ASSERT_EQ(Read(), LinkResult::Success);
    ExpectReplyOfBlock(0x8D);
    EXPECT_EQ(device->Received().size(), 1U);
    EXPECT_EQ(LogText(), "");
}

TEST_F(Faults, WrongLength_NeverReachesTheData) {
    ComRetries = 0;
    for (const int change : {-1, 1, -20, 5}) {
        device->WrongLength(0x8D, 1, change);
        ByteString data = "old";
        EXPECT_EQ(ReadPacketData("\x8D", 24, data, false), LinkResult::PortClosed);
        EXPECT_EQ(data, "old");
        EXPECT_EQ(LogLines().back(),
                  "Incorrect length packet error. Received " + std::to_string(24 + change) + " expected 24");
    }
}

TEST_F(Faults, BitTurnedOverAnywhere_IsNeverTaken) {
    ComTimeOutTicks = 3;
    ComRetries = 0;
    const int bits = 8 * static_cast<int>(device->Block(0xA9).size() + 3);
    for (int bit = 0; bit < bits; ++bit) {
        device->FlipBit(0xA9, bit);
        ByteString data = "old";
        EXPECT_NE(ReadPacketData("\xA9", 4, data, false), LinkResult::Success) << bit;
        EXPECT_EQ(data, "old") << bit;
    }
    ComTimeOutTicks = 250;
    ByteString data;
    EXPECT_EQ(ReadPacketData("\xA9", 4, data, false), LinkResult::Success);
    EXPECT_EQ(data, device->BlockString(0xA9));
}

TEST_F(Faults, ByteLostAnywhere_IsNeverTaken) {
    ComTimeOutTicks = 3;
    ComRetries = 0;
    const int bytes = static_cast<int>(device->Block(0x8D).size()) + 3;
    for (int index = 0; index < bytes; ++index) {
        device->DropByte(0x8D, index);
        ByteString data = "old";
        EXPECT_NE(ReadPacketData("\x8D", 24, data, false), LinkResult::Success) << index;
        EXPECT_EQ(data, "old") << index;
    }
}

TEST_F(Faults, PortPulledOutWhileWaiting_EndsTheExchangeByItsResult) {
    ComTimeOutTicks = 2000;
    device->VanishAt(0x8D);
    const auto start = TickCount();
    EXPECT_EQ(Read(), LinkResult::NoReply);
    EXPECT_LT(TickCount() - start, 1500U);
    const Frames lines = LogLines();
    ASSERT_EQ(lines.size(), 1U);
    const std::string end = " error in ReadPacket";
    ASSERT_GT(lines[0].size(), end.size());
    EXPECT_EQ(lines[0].substr(lines[0].size() - end.size()), end);
}

TEST_F(Faults, PortPulledOutInTheMiddleOfAReply_TakesNothing) {
    ComTimeOutTicks = 2000;
    device->VanishAt(0x8D, 12);
    ByteString data = "old";
    EXPECT_NE(ReadPacketData("\x8D", 24, data, false), LinkResult::Success);
    EXPECT_EQ(data, "old");
}

TEST_F(Faults, PortPulledOutAndBack_CanBeChosenAgainByOneClick) {
    powerfc::Options options;
    options.LinkPath = Folder + "/tty";
    Restart(options);
    device->VanishAt(0x8D);
    ExpectMessage("Interface not responding!");
    reply_ = "\x8D";
    EXPECT_EQ(ReadPacket(reply_, true), LinkResult::NoReply);
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_FALSE(mnuCom[0].Checked);
    ExpectMessage("Error opening Com1");
    mnuCom_Click(0);
    device->Return();
    mnuCom_Click(0);
    EXPECT_TRUE(mnuCom[0].Checked);
    EXPECT_EQ(Read(), LinkResult::Success);
}

TEST_F(Faults, PortGoneBeforeTheSend_EndsTheExchange) {
    device->Vanish();
    EXPECT_EQ(Read(), LinkResult::NoReply);
    EXPECT_EQ(LogLines().size(), 1U);
}

}  // namespace
}  // namespace zandrel
