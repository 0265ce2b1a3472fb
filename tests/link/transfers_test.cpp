#include "link/transfers.h"

#include <gtest/gtest.h>

#include "image/accessors.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/linkfixture.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr char kNotResponding[] = "Interface not responding!";

class Transfers : public LinkFixture {
  protected:
    Transfers() {
        ComTimeOutTicks = 40;
        GridInit();
    }

    static powerfc::Options Of(const std::string& version) {
        powerfc::Options options;
        options.Version = version;
        return options;
    }

    // Codes of the requests received, in order.
    std::vector<int> Codes() const {
        std::vector<int> codes;
        for (const std::string& frame : device->Received())
            codes.push_back(std::stoi(frame.substr(0, 2), nullptr, 16));
        return codes;
    }
};

TEST_F(Transfers, ReadAll_ReadsEveryReadableBlockInAscendingOrder) {
    cmdReadAll_Click();
    std::vector<int> expected = {0x01, 0xF3, 0xF5, 0xDD};
    for (int b = 0; b < 256; ++b) {
        if (BlockRead[b]) expected.push_back(b);
    }
    EXPECT_EQ(Codes(), expected);
    for (int b = 0; b < 256; ++b) {
        if (!BlockRead[b]) continue;
        EXPECT_EQ(Digits(ReadData[b]), Digits(device->BlockString(b))) << b;
    }
    EXPECT_TRUE(cmdReadAll.Enabled);
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - Unsaved Data");
    EXPECT_EQ(lblSetting[190].Caption, "RB26DETT");
    EXPECT_EQ(YieldCount(), 0);
}

TEST_F(Transfers, ReadAll_ClearsTheChangeFlags) {
    BlockChanged[0x8D] = true;
    cmdUpdate.Enabled = true;
    cmdReadAll_Click();
    EXPECT_FALSE(BlockChanged[0x8D]);
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(Transfers, ReadAll_EnablesTheFramesThatProveTheirBlocks) {
    cmdReadAll_Click();
    SetFrameEnabled(1470, false);
    SetFrameEnabled(460, false);
    BlockWrite[0x99] = BlockWrite[0x97] = false;
    cmdReadAll_Click();
    EXPECT_TRUE(FraSettings[1470].Enabled);
    EXPECT_TRUE(FraSettings[460].Enabled);
    EXPECT_TRUE(BlockWrite[0x99]);
    EXPECT_TRUE(BlockWrite[0x97]);
}

TEST_F(Transfers, ReadAll_HiddenFrameOrShortBlock_ProvesNothing) {
    Restart(Of("1JZ-GTE23.12"));  // has neither of the two frames
    cmdReadAll_Click();
    EXPECT_FALSE(FraSettings[1470].Visible);
    EXPECT_FALSE(BlockWrite[0x99]);
    EXPECT_FALSE(BlockWrite[0x97]);
}

TEST_F(Transfers, ReadAll_BlockOfWrongLength_RestoresTheImage) {
    cmdReadAll_Click();
    const auto before = ReadData;
    device->SetBlock(0x8E, powerfc::Bytes(12, 7));
    device->WrongLength(0x90, powerfc::kForever);
    ExpectMessage(kNotResponding);
    ExpectBox("Read All Error 90", Box::Critical);
    cmdReadAll_Click();
    EXPECT_EQ(ReadData, before);
    EXPECT_TRUE(cmdReadAll.Enabled);
    EXPECT_EQ(txtSetting[500].Text, GetNumber(txtSetting[500].Tag));
}

TEST_F(Transfers, ReadAll_SilentBlock_RestoresTheImageAndKeepsTheButtons) {
    device->Silence(0x51, powerfc::kForever);
    device->Silence(0x81, powerfc::kForever);
    const auto before = ReadData;
    ExpectMessage(kNotResponding);
    ExpectMessage("Read All Error 81");
    cmdReadAll_Click();
    EXPECT_EQ(ReadData, before);
    EXPECT_FALSE(cmdWriteAll.Enabled);
    EXPECT_FALSE(DataChanged);
    EXPECT_EQ(VerName, "RB26DETT");
}

TEST_F(Transfers, ReadAll_BlockCodeInTheMessage_HasNoLeadingZero) {
    ASSERT_TRUE(ValidVersion(true, true));
    ASSERT_TRUE(RegisterBlock("&H05", 3, true, false));
    ExpectMessage(kNotResponding);
    ExpectMessage("Read All Error 5");
    cmdReadAll_Click();
}

TEST_F(Transfers, ReadAll_AnotherBuild_RebuildsTheDisplayFirst) {
    cmdReadAll_Click();
    Restart(Of("B18C2.02B"));
    cmdReadAll_Click();
    EXPECT_EQ(VerName + VerNumber, "B18C2.02B");
    EXPECT_TRUE(SSTab1.TabVisible[3]);
    EXPECT_EQ(Digits(ReadData[0x63]), Digits(device->BlockString(0x63)));
    EXPECT_EQ(Digits(ReadData[0x60]), Digits(device->BlockString(0x60)));
}

TEST_F(Transfers, ReadAll_CancelOfTheQuestion_SendsNothing) {
    DataChanged = true;
    mnuSaveAs_Click = [] {};
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::Cancel);
    cmdReadAll_Click();
    EXPECT_TRUE(device->Received().empty());
    EXPECT_TRUE(DataChanged);
}

TEST_F(Transfers, ReadAll_EndsAComparison) {
    int ended = 0;
    EndComparison = [&ended] { ++ended; };
    cmdReadAll_Click();
    EXPECT_EQ(ended, 0);
    mnuCompare.Checked = true;
    cmdReadAll_Click();
    EXPECT_EQ(ended, 1);
}

TEST_F(Transfers, ReadAll_WhileItRuns_IsNotStartedTwice) {
    bool enabledWithin = true;
    bool busy = false;
    int depth = 0;
    Desktop.BusyPointer = [&](bool now) {
        busy = now;
        depth += now ? 1 : -1;
    };
    AfterSend = [&] {
        enabledWithin = cmdReadAll.Enabled;
        cmdReadAll_Click();
        EXPECT_TRUE(busy);
    };
    cmdReadAll_Click();
    EXPECT_FALSE(enabledWithin);
    EXPECT_EQ(depth, 0);
    EXPECT_FALSE(LongOperationRuns());
}

TEST_F(Transfers, ReadAll_WithoutAPort_ChangesNothing) {
    mnuCom_Click(0);
    const auto before = ReadData;
    ExpectMessage("No COM port has been selected.\nWould you like to AutoDetect the COM port now?",
                  Answer::No);
    cmdReadAll_Click();
    EXPECT_EQ(ReadData, before);
    EXPECT_TRUE(cmdReadAll.Enabled);
    EXPECT_FALSE(cmdWriteAll.Enabled);
}

TEST_F(Transfers, ReadAll_LineDiesInTheMiddle_RestoresTheImageAndEnds) {
    device->VanishAt(0x90, 3);
    const auto before = ReadData;
    ExpectMessage(kNotResponding);
    ExpectMessage("Read All Error 90");
    cmdReadAll_Click();
    EXPECT_EQ(ReadData, before);
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_TRUE(cmdReadAll.Enabled);
}

TEST_F(Transfers, ReadMap_ReadsItsBlocksAlone) {
    ASSERT_TRUE(ValidVersion(true, true));
    device->ClearJournal();
    const unsigned before = Grid[1].Revision;
    cmdReadMap_Click(1);
    EXPECT_EQ(Codes(), (std::vector<int>{0x01, 0xF3, 0xF5, 0x81, 0x82, 0x83, 0x84}));
    EXPECT_EQ(Digits(ReadData[0x84]), Digits(device->BlockString(0x84)));
    EXPECT_GT(Grid[1].Revision, before);
    EXPECT_TRUE(cmdReadMap[1].Enabled);
    EXPECT_FALSE(cmdWriteAll.Enabled);
}

TEST_F(Transfers, ReadMap_OfTwoByteCells_ReadsEightBlocks) {
    Restart(Of("1JZ-GTE23.12"));
    ASSERT_TRUE(ValidVersion(true, true));
    device->ClearJournal();
    EXPECT_FALSE(ReadMap(2));
    EXPECT_EQ(Codes(), (std::vector<int>{0xB0, 0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7}));
}

TEST_F(Transfers, ReadMap_Failure_EndsTheLoopAndShowsWhatIsThere) {
    ASSERT_TRUE(ValidVersion(true, true));
    device->Silence(0x82, powerfc::kForever);
    ExpectMessage(kNotResponding);
    const unsigned before = Grid[1].Revision;
    cmdReadMap_Click(1);
    EXPECT_EQ(Digits(ReadData[0x81]), Digits(device->BlockString(0x81)));
    EXPECT_EQ(ReadData[0x83], ByteString(100, '\0'));
    EXPECT_GT(Grid[1].Revision, before);
    EXPECT_TRUE(cmdReadMap[1].Enabled);
}

TEST_F(Transfers, ReadMap_ButtonIsDisabledForTheTime) {
    bool enabledWithin = true;
    AfterSend = [&enabledWithin] { enabledWithin = cmdReadMap[0].Enabled; };
    cmdReadMap_Click(0);
    EXPECT_FALSE(enabledWithin);
    EXPECT_TRUE(cmdReadMap[0].Enabled);
}

TEST_F(Transfers, ReadMap_WithoutAVersion_IsDrawnAllTheSame) {
    device->DeadLine(true);
    const unsigned before = Grid[0].Revision;
    ExpectMessage(kNotResponding);
    cmdReadMap_Click(0);
    EXPECT_GT(Grid[0].Revision, before);
    EXPECT_TRUE(cmdReadMap[0].Enabled);
}

// The Power-FC was swapped for one without that map: its blocks there are no map's.
TEST_F(Transfers, ReadMap_ThatTheNewBuildLacks_IsNotRead) {
    Restart(Of("1JZ-GTE23.12"));
    ASSERT_TRUE(ValidVersion(true, true));
    Restart(Of("RB26DETT6.42"));
    cmdReadMap_Click(2);
    EXPECT_EQ(Codes(), (std::vector<int>{0x01, 0xF3, 0xF5, 0xDD}));
}

TEST_F(Transfers, UpdateButton_FollowsTheChangeFlags) {
    RefreshUpdateButton();
    EXPECT_FALSE(cmdUpdate.Enabled);
    BlockChanged[255] = true;
    RefreshUpdateButton();
    EXPECT_TRUE(cmdUpdate.Enabled);
    BlockChanged[255] = false;
    RefreshUpdateButton();
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(Transfers, Edit_EnablesTheUpdateButton) {
    cmdReadAll_Click();
    SetNumber(txtSetting[500].Tag, "50");
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_TRUE(BlockChanged[0x8D]);
}

}  // namespace
}  // namespace zandrel
