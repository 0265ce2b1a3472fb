#include "link/packets.h"

#include <gtest/gtest.h>

#include <ctime>

#include "image/image.h"
#include "link/linkfixture.h"
#include "link/port.h"
#include "support/scripteddesktop.h"

namespace zandrel {
namespace {

constexpr char kNoPort[] = "No COM port has been selected.\nWould you like to AutoDetect the COM port now?";
constexpr char kNotResponding[] = "Interface not responding!";

class Packets : public LinkFixture {
  protected:
    Packets() { ComTimeOutTicks = 40; }

    static LinkResult Ask(const std::string& digits, bool show = false) {
        ByteString command = Bytes(digits);
        return ReadPacket(command, show);
    }
};

TEST_F(Packets, BareRead_SendsThreeBytes) {
    EXPECT_EQ(Digits(FrameOf("\x8D")), "8D0270");
    ByteString command = "\x8D";
    ASSERT_EQ(ReadPacket(command, true), LinkResult::Success);
    EXPECT_EQ(device->Received(), (Frames{"8D0270"}));
    EXPECT_EQ(command, Bytes("8D1A") + device->BlockString(0x8D) + command.back());
    EXPECT_EQ(LogText(), "");
}

TEST_F(Packets, Write_CarriesItsBytesAndWaitsForTheAcknowledge) {
    EXPECT_EQ(Digits(FrameOf(Bytes("8D0102"))), "8D0401026B");
    ByteString command = "\xA9" + Bytes("05010203");
    ASSERT_EQ(ReadPacket(command, true), LinkResult::Success);
    EXPECT_EQ(command[0], '\xF2');
    EXPECT_EQ(device->BlockString(0xA9), Bytes("05010203"));
}

TEST_F(Packets, CommandThatBeginsWith1_ExpectsAReadReply) {
    ByteString command = Bytes("0100");
    ASSERT_EQ(ReadPacket(command, true), LinkResult::Success);
    EXPECT_EQ(Digits(command.substr(0, 2)), "0112");
}

TEST_F(Packets, ReplyOfThreeBytes_IsJudgedAtOnce) {
    ComTimeOutTicks = 5000;
    device->ReplaceReply(0x8D, powerfc::FromHex("8D0270"));
    ByteString command = "\x8D";
    const auto start = TickCount();
    ASSERT_EQ(ReadPacket(command, true), LinkResult::Success);
    EXPECT_LT(TickCount() - start, 2500U);
    EXPECT_EQ(Digits(command), "8D0270");
    EXPECT_EQ(device->Received().size(), 1U);
}

TEST_F(Packets, LengthBelow2_CountsAsThreeBytes) {
    device->ReplaceReply(0x8D, powerfc::FromHex("8D0072"));
    ByteString command = "\x8D";
    ASSERT_EQ(ReadPacket(command, true), LinkResult::Success);
    EXPECT_EQ(Digits(command), "8D0072");
}

TEST_F(Packets, ValuesUsed_AreWrittenBack) {
    ByteString command = "\x8D";
    int timeOut = 0;
    int retries = -1;
    ASSERT_EQ(ReadPacket(command, false, timeOut, retries), LinkResult::Success);
    EXPECT_EQ(timeOut, 40);
    EXPECT_EQ(retries, 2);
    command = "\x8D";
    timeOut = 77;
    retries = 0;
    ASSERT_EQ(ReadPacket(command, false, timeOut, retries), LinkResult::Success);
    EXPECT_EQ(timeOut, 77);
    EXPECT_EQ(retries, 0);
}

TEST_F(Packets, RetriesZero_IsOneSend) {
    device->Silence(0x8D, powerfc::kForever);
    ByteString command = "\x8D";
    int timeOut = 20;
    int retries = 0;
    EXPECT_EQ(ReadPacket(command, false, timeOut, retries), LinkResult::NoReply);
    EXPECT_EQ(device->Received(), (Frames{"8D0270"}));
    EXPECT_EQ(command, "\x8D");
}

TEST_F(Packets, EveryExchange_BeginsWithAnEmptyBuffer) {
    device->Say(powerfc::Frame(0x8D, {1}));  // a good frame of an earlier exchange
    while (MSComm1.InBufferCount() < 4) ASSERT_TRUE(MSComm1.WaitForInput(500));
    ByteString command = "\x8D";
    ASSERT_EQ(ReadPacket(command, false), LinkResult::Success);
    EXPECT_EQ(command.size(), 27U);
    EXPECT_EQ(device->Received().size(), 1U);
    EXPECT_EQ(LogText(), "");
}

TEST_F(Packets, AfterSend_RunsOncePerSend) {
    int sends = 0;
    AfterSend = [&sends] { ++sends; };
    device->Silence(0x8D, 1);
    ASSERT_EQ(Ask("8D"), LinkResult::Success);
    EXPECT_EQ(sends, 2);
}

TEST_F(Packets, ExchangeNeverYields) {
    device->Silence(0x8D, 2);
    ASSERT_EQ(Ask("8D"), LinkResult::Success);
    EXPECT_EQ(YieldCount(), 0);
}

TEST_F(Packets, Wait_DoesNotBurnTheProcessor) {
    ComTimeOutTicks = 300;
    ComRetries = 0;
    device->DeadLine(true);
    const std::clock_t before = std::clock();
    EXPECT_EQ(Ask("8D"), LinkResult::NoReply);
    EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.1);
}

TEST_F(Packets, ClosedPort_GivesOneWithoutABox) {
    mnuCom_Click(0);
    EXPECT_EQ(Ask("8D"), LinkResult::PortClosed);
    EXPECT_EQ(LogLines(), (Frames{"COM port not open"}));
    EXPECT_TRUE(device->Received().empty());
}

TEST_F(Packets, ClosedPortAndShow_OffersTheAutoDetection) {
    mnuCom_Click(0);
    ExpectBox(kNoPort, Box::YesNoInformation, Answer::No);
    EXPECT_EQ(Ask("8D", true), LinkResult::PortClosed);
    EXPECT_EQ(LogLines(), (Frames{"COM port not open"}));
}

TEST_F(Packets, Failure_IsShownOnlyWhenAsked) {
    device->Silence(0x8D, powerfc::kForever);
    EXPECT_EQ(Ask("8D", false), LinkResult::NoReply);
    EXPECT_EQ(LogLines().back(), "Maximum retries exceeded");
    ExpectBox(kNotResponding, Box::Exclamation);
    EXPECT_EQ(Ask("8D", true), LinkResult::NoReply);
    EXPECT_EQ(LogLines().back(), "Interface not responding error");
    EXPECT_TRUE(MSComm1.PortOpen());
}

TEST_F(Packets, LaterBadReply_OverwritesTheResult) {
    device->WrongCode(0x8D, 1);
    device->BadChecksum(0x8D, 1);
    device->Silence(0x8D, 1);
    EXPECT_EQ(Ask("8D"), LinkResult::BadReply);
    device->BadChecksum(0x8D, 1);
    device->WrongCode(0x8D, 2);
    EXPECT_EQ(Ask("8D"), LinkResult::WrongCode);
}

TEST_F(Packets, DataOfABlock_ComesWithoutItsFrame) {
    ByteString data;
    ASSERT_EQ(ReadPacketData("\x8D", 24, data, true), LinkResult::Success);
    EXPECT_EQ(data, device->BlockString(0x8D));
}

TEST_F(Packets, ExpectedLengthZero_CarriesTheChecksumByteAlong) {
    ByteString data;
    ASSERT_EQ(ReadPacketData("\x8D", 0, data, true), LinkResult::Success);
    ASSERT_EQ(data.size(), 25U);
    EXPECT_EQ(data.substr(0, 24), device->BlockString(0x8D));
    EXPECT_EQ(FrameOf("\x8D" + device->BlockString(0x8D)).back(), data.back());
}

TEST_F(Packets, WrongLength_KeepsTheOldData) {
    ByteString data = "old";
    ExpectMessage(kNotResponding);
    EXPECT_EQ(ReadPacketData("\x8D", 25, data, true), LinkResult::PortClosed);
    EXPECT_EQ(data, "old");
    EXPECT_EQ(LogLines(), (Frames{"Incorrect length packet error. Received 24 expected 25",
                                  "Interface not responding error"}));
}

TEST_F(Packets, LinkSettingBoxes_TakeSixteenBitsOrKeepTheOldValue) {
    txtComTimeOut = "500";
    txtComTimeOut_Change();
    EXPECT_EQ(ComTimeOutTicks, 500);
    for (const char* text : {"", "x", "40000", "-40000", "1e9"}) {
        txtComTimeOut = text;
        txtComTimeOut_Change();
        EXPECT_EQ(ComTimeOutTicks, 500) << text;
        txtComRetries = text;
        txtComRetries_Change();
        EXPECT_EQ(ComRetries, 2) << text;
    }
    txtComRetries = "0";
    txtComRetries_Change();
    EXPECT_EQ(ComRetries, 0);
}

TEST_F(Packets, WriteWithoutAPort_GivesOne) {
    mnuCom_Click(0);
    EXPECT_EQ(WritePacket("\x8D"), 1);
    ExpectMessage(kNoPort, Answer::No);
    EXPECT_EQ(ComFlush(), 1);
}

TEST_F(Packets, Reset_OpensThePortAnew) {
    ComReset();
    EXPECT_TRUE(MSComm1.PortOpen());
    ASSERT_EQ(Ask("8D"), LinkResult::Success);
    mnuCom_Click(0);
    ComReset();  // opens a closed one too
    EXPECT_TRUE(MSComm1.PortOpen());
}

}  // namespace
}  // namespace zandrel
