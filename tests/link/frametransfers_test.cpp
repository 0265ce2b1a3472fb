// Read and Write of a frame's popup, and the initialise command.
#include <gtest/gtest.h>

#include <functional>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transferfixture.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr char kInitQuestion[] = "This will Initialise all Power-FC data. Are you Sure?";
constexpr char kInitDone[] =
    "You must now Reset the Power-FC for the\nInitialisation to complete. (Key-Off, Key-On.)";

constexpr int kFrame = 100;  // takes the Tag of a test

class FrameTransfers : public TransferFixture {
  protected:
    void OpenPopup(const std::string& tag) {
        PopupFrame = kFrame;
        FraSettings[kFrame].Tag = tag;
    }
};

// --- Read ---------------------------------------------------------------------------------------------

TEST_F(FrameTransfers, Read_BlocksOfTheTagInItsOrder) {
    ReadAllOf(kPlain);
    PopupFrame = 370;
    ASSERT_EQ(FraSettings[370].Tag, "&HA0,&HA1,&HA2,&HA3,&HA4,&HA5");
    for (int b = 0xA0; b <= 0xA5; ++b) device->SetBlock(b, powerfc::Bytes(64, static_cast<std::uint8_t>(b)));
    mnuRead_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({Packet(0xA0), Packet(0xA1), Packet(0xA2), Packet(0xA3),
                                                Packet(0xA4), Packet(0xA5)}));
    for (int b = 0xA0; b <= 0xA5; ++b) EXPECT_EQ(ReadData[b], ByteString(64, static_cast<char>(b)));
}

TEST_F(FrameTransfers, Read_AnyOrderIsKept) {
    ReadAllOf(kPlain);
    OpenPopup("&H8F,&H8D,142");
    mnuRead_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({Packet(0x8F), Packet(0x8D), Packet(0x8E)}));
}

TEST_F(FrameTransfers, Read_ShowsWhatWasReadAndTakesItsMarks) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    Bump(0x8E);
    ASSERT_TRUE(CanUndo());
    PopupFrame = 500;
    ASSERT_EQ(FraSettings[500].Tag, "&H8D");
    powerfc::Bytes bytes = device->Block(0x8D);
    bytes[1] = 0x12;
    device->SetBlock(0x8D, bytes);
    mnuRead_Click();
    EXPECT_EQ(Digits(ReadData[0x8D]), Digits(device->BlockString(0x8D)));
    EXPECT_EQ(txtSetting[500].Text, GetNumber(txtSetting[500].Tag));
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8E});
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_FALSE(CanUndo());
    OpenPopup("&H8E");
    mnuRead_Click();
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(FrameTransfers, ReadThatFails_EndsAndShowsNothing) {
    ReadAllOf(kPlain);
    Impatient();
    OpenPopup("&H8D,&H8E,&H8F");
    Bump(0x8D);
    Bump(0x8E);
    const std::string text = txtSetting[500].Text;
    device->SetBlock(0x8D, powerfc::Bytes(24, 0x31));
    device->Silence(0x8E, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    mnuRead_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({Packet(0x8D), Packet(0x8E), Packet(0x8E)}));
    EXPECT_EQ(ReadData[0x8D], ByteString(24, 0x31));
    EXPECT_EQ(txtSetting[500].Text, text);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8E});
    EXPECT_TRUE(cmdUpdate.Enabled);
}

// The last mark has gone with the block that was read: nothing is left to send.
TEST_F(FrameTransfers, ReadThatFailsBehindTheLastMark_TheButtonGoesOut) {
    ReadAllOf(kPlain);
    Impatient();
    OpenPopup("&H8D,&H8E");
    Bump(0x8D);
    device->Silence(0x8E, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    mnuRead_Click();
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(FrameTransfers, ReadOfWrongLength_KeepsTheBlock) {
    ReadAllOf(kPlain);
    OpenPopup("&H8D");
    const auto before = ReadData[0x8D];
    device->WrongLength(0x8D, 1, +1);
    ExpectBox(kNotResponding, Box::Exclamation);
    mnuRead_Click();
    EXPECT_EQ(ReadData[0x8D], before);
}

TEST_F(FrameTransfers, NobodyAnswersTheVersionQuery_NothingHappens) {
    ReadAllOf(kPlain);
    Impatient();
    OpenPopup("&H8D");
    Bump(0x8D);
    device->DeadLine(true);
    for (auto* click : {mnuRead_Click, mnuWrite_Click, mnuInitAllData_Click}) {
        ExpectBox(kNotResponding, Box::Exclamation);
        click();
    }
    EXPECT_EQ(Writes(), Frames());
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8D});
    EXPECT_TRUE(cmdUpdate.Enabled);
}

// --- Write --------------------------------------------------------------------------------------------

TEST_F(FrameTransfers, Write_BlocksOfTheTagWhetherChangedOrNot) {
    ReadAllOf(kPlain);
    OpenPopup("&H8F,&H8D");
    Bump(0x8D);
    Bump(0x8E);
    BumpCell(0, 1, 1);
    mnuWrite_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({BlockPacket(0x8F), BlockPacket(0x8D)}));
    EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x86, 0x8E}));
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_EQ(Digits(device->BlockString(0x8D)), Digits(ReadData[0x8D]));
}

TEST_F(FrameTransfers, WriteOfTheLastMark_TheButtonGoesOut) {
    ReadAllOf(kPlain);
    PopupFrame = 500;
    Bump(0x8D);
    mnuWrite_Click();
    EXPECT_EQ(Writes(), Frames{BlockPacket(0x8D)});
    EXPECT_FALSE(cmdUpdate.Enabled);
    ExpectDeviceEqualsImage();
}

TEST_F(FrameTransfers, WriteOfSelects_GoesTheirWay) {
    ReadAllOf(kPlain);
    OpenPopup("&HCE,&HD6");
    Bump(0xCE);
    Bump(0xD6);
    mnuWrite_Click();
    const std::string &sensor = ReadData[0xCE], &function = ReadData[0xD6];
    EXPECT_EQ(device->Received(),
              AfterPrelude({Packet(0xCE, sensor.substr(0, 1) + sensor.substr(91)), Packet(0xCE), Packet(0xCE),
                            Packet(0xD6, function.substr(0, 5)), Packet(0xD6), Packet(0xD6)}));
    ExpectDeviceEqualsImage();
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(FrameTransfers, WriteOfSelectsNeverTaken_KeepsTheirMarks) {
    ReadAllOf(kPlain);
    OpenPopup("&HCE,&HD6,&H8E");
    Bump(0xCE);
    Bump(0xD6);
    Bump(0x8E);
    device->ObeySelects(powerfc::SelectWrites::Never);
    ExpectBox("Airflow/PIM Write Error", Box::Critical);
    ExpectBox("Function Select Write Error", Box::Critical);
    mnuWrite_Click();
    EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0xCE, 0xD6}));
    EXPECT_TRUE(cmdUpdate.Enabled);
}

TEST_F(FrameTransfers, WriteOnTheOldestFamily_ByItsCommands) {
    ReadAllOf(kOldest);
    ComTimeOutTicks = 40;
    OpenPopup("&H5D,&H5B");
    mnuWrite_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({Packet(0x36, ReadData[0x5D]), Packet(0x5D),
                                                Packet(0x34, ReadData[0x5B]), Packet(0x5B)}));
}

TEST_F(FrameTransfers, WriteThatFails_BlocksBeforeItAreOnThePowerFc) {
    for (const FaultCase& fault : kFaults) {
        SCOPED_TRACE(fault.Name);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(kPlain);
        Impatient();
        OpenPopup("&H8D,&H8E,&H8F");
        for (const int b : {0x8D, 0x8E, 0x8F}) Bump(b);
        fault.Add(*device, 0x8E, powerfc::kForever);
        ExpectBox(kNotResponding, Box::Exclamation);
        ExpectBox("Write failed.", Box::Critical);
        mnuWrite_Click();
        EXPECT_EQ(device->Received(),
                  AfterPrelude({BlockPacket(0x8D), BlockPacket(0x8E), BlockPacket(0x8E)}));
        EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x8E, 0x8F}));
        EXPECT_EQ(Digits(device->BlockString(0x8D)), Digits(ReadData[0x8D]));
        EXPECT_NE(device->BlockString(0x8F), ReadData[0x8F]);
        EXPECT_TRUE(cmdUpdate.Enabled);
        device->ClearFaults();
        mnuWrite_Click();
        EXPECT_EQ(MarkedBlocks(), std::vector<int>());
        ExpectDeviceEqualsImage();
    }
}

// The Tag of that frame names a block 4, which no build has.
TEST_F(FrameTransfers, WriteOfABlockThatTheBuildLacks_Fails) {
    ReadAllOf(kOldSelects);
    Impatient();
    PopupFrame = 155;
    ASSERT_EQ(FraSettings[155].Tag, "&HA7,4");
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Write failed.", Box::Critical);
    mnuWrite_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({BlockPacket(0xA7), Packet(4), Packet(4)}));
}

TEST_F(FrameTransfers, LineDiesInAWrite_AndComesBack) {
    ReadAllOf(kPlain);
    Impatient();
    OpenPopup("&H8D,&H8E");
    Bump(0x8D);
    Bump(0x8E);
    device->VanishAt(0x8E, 1);
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Write failed.", Box::Critical);
    mnuWrite_Click();
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8E});
    EXPECT_FALSE(MSComm1.PortOpen());
    device->Return();
    device->ClearFaults();
    mnuCom_Click(0);
    mnuWrite_Click();
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    ExpectDeviceEqualsImage();
}

TEST_F(FrameTransfers, AskedWhileAnotherRuns_IsNotBegun) {
    ReadAllOf(kPlain);
    OpenPopup("&H8D");
    const LongOperation running;
    mnuRead_Click();
    mnuWrite_Click();
    mnuInitAllData_Click();
    EXPECT_EQ(device->Received(), Frames());
}

// --- Another Power-FC ---------------------------------------------------------------------------------

TEST_F(FrameTransfers, WriteToAnotherPowerFc_IsRefused) {
    for (const std::string other : {kBaseMap, kTwoBaseMaps, kGearbox, kOldest}) {
        SCOPED_TRACE(other);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(kPlain);
        OpenPopup("&H8D");
        Bump(0x8D);
        Connect(other);
        if (other == kOldest) ComTimeOutTicks = 30;
        const Frames before = Contents();
        ExpectBox(kFirstReadAllWrite, Box::Critical);
        mnuWrite_Click();
        EXPECT_EQ(Writes(), Frames());
        EXPECT_EQ(Contents(), before);
        EXPECT_TRUE(BlockChanged[0x8D]);
        if (HasFailure()) return;
    }
}

TEST_F(FrameTransfers, WriteToAnotherPowerFcMadeTheOneInForceByAReadMap_IsRefused) {
    ReadAllOf(kPlain);
    OpenPopup("&H8D");
    Bump(0x8D);
    Connect(kBaseMap);
    cmdReadMap_Click(0);
    OpenPopup("&H8D");
    device->ClearJournal();
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    mnuWrite_Click();
    EXPECT_EQ(device->Received(), Prelude());
    // Once it is read from the new one it may be written to it.
    mnuRead_Click();
    Bump(0x8D);
    mnuWrite_Click();
    EXPECT_EQ(Writes(), Frames{BlockPacket(0x8D)});
}

TEST_F(FrameTransfers, WriteOfSomeBlocksNotRead_SendsNone) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    cmdReadMap_Click(0);
    OpenPopup("&H8D");
    mnuRead_Click();
    OpenPopup("&H8D,&H8E");
    device->ClearJournal();
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    mnuWrite_Click();
    EXPECT_EQ(Writes(), Frames());
}

// --- Initialise ---------------------------------------------------------------------------------------

TEST_F(FrameTransfers, Initialise_IsSentAfterYes) {
    ReadAllOf(kPlain);
    const Frames factory = Contents();
    device->SetBlock(0x8D, powerfc::Bytes(24, 9));
    Bump(0x8E);
    const auto image = ReadData;
    ExpectBox(kInitQuestion, Box::YesNo, Answer::Yes);
    ExpectBox(kInitDone, Box::Information);
    mnuInitAllData_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({Packet(0xF6, std::string(1, '\0'))}));
    EXPECT_EQ(Contents(), factory);
    EXPECT_EQ(ReadData, image);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8E});
    EXPECT_TRUE(cmdUpdate.Enabled);
}

TEST_F(FrameTransfers, Initialise_NotAfterNo) {
    ReadAllOf(kPlain);
    ExpectBox(kInitQuestion, Box::YesNo, Answer::No);
    mnuInitAllData_Click();
    EXPECT_EQ(device->Received(), Prelude());
}

TEST_F(FrameTransfers, InitialiseThatFails_TellsOfTheLinkAlone) {
    ReadAllOf(kPlain);
    Impatient();
    device->Silence(0xF6, powerfc::kForever);
    ExpectBox(kInitQuestion, Box::YesNo, Answer::Yes);
    ExpectBox(kNotResponding, Box::Exclamation);
    mnuInitAllData_Click();
    EXPECT_EQ(Writes().size(), 2u);
}

TEST_F(FrameTransfers, InitialiseOfAnotherPowerFc_AsksAfterTheDisplayFollowed) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    ExpectBox(kInitQuestion, Box::YesNo, Answer::Yes);
    ExpectBox(kInitDone, Box::Information);
    mnuInitAllData_Click();
    EXPECT_EQ(VerName + VerNumber, kBaseMap);
    EXPECT_FALSE(cmdWriteAll.Enabled);
}

}  // namespace
}  // namespace zandrel
