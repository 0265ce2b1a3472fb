// Update: what it sends, in which order, what a fault or a cancel leaves marked, and that a later one goes
// on where it ended.
#include <gtest/gtest.h>

#include <functional>

#include "image/accessors.h"
#include "image/image.h"
#include "link/identify.h"
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

class Update : public TransferFixture {
  protected:
    // All is sent, and the button says so.
    void ExpectAllSent() const {
        EXPECT_EQ(MarkedBlocks(), std::vector<int>());
        for (int map = 0; map < kMapTabs; ++map) EXPECT_EQ(MarkedCells(map), 0) << map;
        EXPECT_FALSE(cmdUpdate.Enabled);
        EXPECT_FALSE(Progress2.Visible);
        EXPECT_EQ(LastUpdate, "14:03:22");
        ExpectDeviceEqualsImage();
    }

    void ExpectSomeLeft() const {
        EXPECT_TRUE(cmdUpdate.Enabled);
        EXPECT_FALSE(Progress2.Visible);
        EXPECT_EQ(LastUpdate, "");
        EXPECT_EQ(BusyPointers().back(), '0');
    }

    // What was left is sent by the next one.
    void UpdateTheRest() {
        OnYield([] {});
        device->ClearFaults();
        if (!MSComm1.PortOpen()) mnuCom_Click(0);
        ASSERT_TRUE(cmdUpdate.Enabled);
        cmdUpdate_Click();
        ExpectAllSent();
    }
};

TEST_F(Update, OneCellChanged_SendsItsWholeBlock) {
    ReadAllOf(kPlain);
    BumpCell(0, 7, 9);  // number 166: the second block
    const Frames before = Contents();
    ASSERT_EQ(MarkedBlocks(), std::vector<int>{0x87});
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({BlockPacket(0x87)}));
    ExpectAllSent();
    EXPECT_NE(Contents(), before);
    EXPECT_TRUE(DataChanged);
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_EQ(BusyPointers(), "1010");  // Read All and Update
}

TEST_F(Update, OneSettingChanged_SendsItsBlockAlone) {
    ReadAllOf(kPlain);
    SetNumber(txtSetting[500].Tag, "50");
    ASSERT_EQ(MarkedBlocks(), std::vector<int>{0x8D});
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({BlockPacket(0x8D)}));
    ExpectAllSent();
}

TEST_F(Update, ManyChanges_MapsByTabThenSettingsByCode) {
    ReadAllOf(kPlain);
    Bump(0xAC);
    Bump(0x8E);
    BumpCell(1, 1, 20);
    BumpCell(0, 20, 20);
    BumpCell(0, 1, 1);
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({BlockPacket(0x86), BlockPacket(0x89), BlockPacket(0x84),
                                                BlockPacket(0x8E), BlockPacket(0xAC)}));
    ExpectAllSent();
}

TEST_F(Update, CellOfTwoBytes_SendsTheBlockThatHoldsIt) {
    ReadAllOf(kBaseMap);
    BumpCell(2, 20, 20);
    BumpCell(2, 11, 3);  // number 50: the first byte of the second block
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({BlockPacket(0xB1), BlockPacket(0xB7)}));
    ExpectAllSent();
}

TEST_F(Update, NothingChanged_IsRefused) {
    ReadAllOf(kPlain);
    ExpectBox(kFirstReadAllUpdate, Box::Critical);
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), Prelude());
    EXPECT_EQ(LogLines(), Frames{"Update different version error"});
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_EQ(LastUpdate, "");
}

TEST_F(Update, BlockThatIsNotWritable_IsNotSent) {
    ReadAllOf(kPlain);
    Bump(0xDD);
    Bump(0x8D);
    ASSERT_FALSE(BlockWrite[0xDD]);
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames{BlockPacket(0x8D)});
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0xDD});
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(Update, ShortBlock_IsPassedOver) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    Bump(0x8E);
    ReadData[0x8D].pop_back();
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames{BlockPacket(0x8E)});
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8D});
}

TEST_F(Update, BlockLongerThanOnThisBuild_SendsItsLengthOnly) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    ReadData[0x8D] += "more";
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames{Packet(0x8D, ReadData[0x8D].substr(0, 24))});
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
}

TEST_F(Update, MapThatIsNotShown_IsNotSent) {
    ReadAllOf(kPlain);
    BumpCell(1, 1, 1);
    BumpCell(0, 1, 1);
    SSTab1.TabVisible[1] = false;
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames{BlockPacket(0x86)});
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x81});
}

TEST_F(Update, ButtonAndPointer_WhileItRuns) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    std::string seen;
    AfterSend = [&] {
        seen += BusyPointers().back();
        seen += cmdUpdate.Enabled ? 'e' : 'd';
    };
    cmdUpdate_Click();
    EXPECT_EQ(seen, "0e0e0e1d");  // the three version blocks, then the write
}

TEST_F(Update, WhatWaits_IsCounted) {
    ReadAllOf(kPlain);
    EXPECT_EQ(CountUnsent().Blocks, 0);
    EXPECT_EQ(CountUnsent().Cells, 0);
    Bump(0x8D);
    BumpCell(0, 1, 1);
    BumpCell(0, 2, 1);
    BumpCell(1, 20, 20);
    EXPECT_EQ(CountUnsent().Blocks, 3);
    EXPECT_EQ(CountUnsent().Cells, 3);
    cmdUpdate_Click();
    EXPECT_EQ(CountUnsent().Blocks, 0);
    EXPECT_EQ(CountUnsent().Cells, 0);
}

// --- Cell by cell -------------------------------------------------------------------------------------

TEST_F(Update, MapBlockRefused_CellsGoOneByOneByTheCommandBeforeTheMap) {
    ReadAllOf(kPlain);
    Impatient();
    device->RefuseMapBlocks(true);
    BumpCell(0, 2, 1);
    BumpCell(0, 1, 20);
    BumpCell(0, 1, 3);
    BumpCell(1, 20, 20);
    cmdUpdate_Click();
    const Frames injection = {BlockPacket(0x86), BlockPacket(0x86), CellPacket(0, 1, 3), CellPacket(0, 1, 20),
                              CellPacket(0, 2, 1)};
    const Frames ignition = {BlockPacket(0x84), BlockPacket(0x84), CellPacket(1, 20, 20)};
    EXPECT_EQ(device->Received(), AfterPrelude(injection + ignition));
    EXPECT_EQ(injection[3], Packet(0x85, std::string("\x7C\x01") + ReadData[0x89][80]));
    int lines = 0;
    for (const std::string& line : LogLines()) lines += line == "Update: Map write failed - try cell by cell";
    EXPECT_EQ(lines, 2);
    ExpectAllSent();
    EXPECT_EQ(YieldCount(), 1);  // no window for so few
}

TEST_F(Update, MapBlockRefusedInTheMiddle_BlocksBeforeItAreSentAndAllCellsToo) {
    ReadAllOf(kPlain);
    Impatient();
    BumpCell(0, 1, 1);
    BumpCell(0, 1, 6);
    BumpCell(0, 1, 11);
    device->Silence(0x87, powerfc::kForever);
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), (Frames{BlockPacket(0x86), BlockPacket(0x87), BlockPacket(0x87), CellPacket(0, 1, 1),
                                CellPacket(0, 1, 6), CellPacket(0, 1, 11)}));
    ExpectAllSent();
}

TEST_F(Update, TwoByteCells_SendBothBytesAndNumbersAbove255) {
    ReadAllOf(kBaseMap);
    Impatient();
    device->RefuseMapBlocks(true);
    SetCell(2, 5, 14, 0x1234);  // number 264
    SetCell(2, 1, 1, 0xFFFE);
    cmdUpdate_Click();
    EXPECT_EQ(Writes(),
              (Frames{BlockPacket(0xB0), BlockPacket(0xB0), Packet(0xAF, std::string("\0\0\xFE\xFF", 4)),
                      Packet(0xAF, "\x08\x01\x34\x12")}));
    ExpectAllSent();
}

TEST_F(Update, SecondBaseMap_ByItsOwnCommand) {
    ReadAllOf(kTwoBaseMaps);
    Impatient();
    device->RefuseMapBlocks(true);
    BumpCell(3, 3, 2);
    cmdUpdate_Click();
    const Frames expected = {BlockPacket(0x63), BlockPacket(0x63), CellPacket(3, 3, 2)};
    EXPECT_EQ(Writes(), expected);
    EXPECT_EQ(expected[2].substr(0, 8), "62061600");
    ExpectAllSent();
}

TEST_F(Update, OldestFamily_CellsByCommandsOfTheirOwnAndTheOutcomeAsked) {
    ReadAllOf(kOldest);
    ComTimeOutTicks = 40;
    BumpCell(0, 3, 2);
    BumpCell(1, 19, 20);
    Bump(0x5B);
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), AfterPrelude(OldestCellPackets(0, 3, 2) + OldestCellPackets(1, 19, 20) +
                                               Frames{Packet(0x34, ReadData[0x5B]), Packet(0x5B)}));
    EXPECT_EQ(Writes()[0].substr(0, 8), "32051600");
    EXPECT_EQ(Writes()[1].substr(0, 8), "31058E01");
    ExpectAllSent();
}

TEST_F(Update, TwentyCells_NoWindow) {
    ReadAllOf(kPlain);
    Impatient();
    device->RefuseMapBlocks(true);
    BumpCells(0, 20);
    bool window = false;
    AfterSend = [&window] { window = window || Progress2.Visible; };
    cmdUpdate_Click();
    EXPECT_FALSE(window);
    EXPECT_EQ(YieldCount(), 1);
    ExpectAllSent();
}

TEST_F(Update, MoreThanTwentyCells_WindowWithItsBarAndATurnForEach) {
    ReadAllOf(kPlain);
    Impatient();
    device->RefuseMapBlocks(true);
    BumpCells(1, 25);
    std::vector<double> bars;
    std::string status;
    OnYield([&] {
        if (!Progress2.Visible) return;
        bars.push_back(Progress2.Bar);
        status = Progress2.Status;
    });
    cmdUpdate_Click();
    ASSERT_EQ(bars.size(), 25u);
    for (std::size_t i = 0; i < bars.size(); ++i) EXPECT_DOUBLE_EQ(bars[i], 4.0 * static_cast<double>(i + 1));
    EXPECT_EQ(status, "Updating " + SSTab1.TabCaption[1]);
    EXPECT_EQ(YieldCount(), 26);
    ExpectAllSent();
}

// --- Cancel -------------------------------------------------------------------------------------------

TEST_F(Update, CancelAfterEachCell_KeepsTheRestMarkedAndTheNextGoesOn) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    for (int at = 1; at <= 22; ++at) {
        SCOPED_TRACE(at);
        LastUpdate.clear();
        BumpCells(0, 22);
        Bump(0x5B);
        device->ClearJournal();
        int turns = 0;
        OnYield([&turns, at] { Progress2.Cancelled = ++turns == at; });
        cmdUpdate_Click();
        Frames cells;
        for (int i = 0; i < at; ++i) cells = cells + OldestCellPackets(0, 1 + i / 20, 1 + i % 20);
        EXPECT_EQ(device->Received(), AfterPrelude(cells));
        EXPECT_EQ(MarkedCells(0), 22 - at);
        EXPECT_TRUE(BlockChanged[0x56]);
        EXPECT_TRUE(BlockChanged[0x5B]);
        ExpectSomeLeft();
        UpdateTheRest();
        if (HasFailure()) return;
    }
}

TEST_F(Update, CancelInARefusedMap_TheNextGoesOn) {
    ReadAllOf(kPlain);
    Impatient();
    for (const int at : {1, 12, 30}) {
        SCOPED_TRACE(at);
        LastUpdate.clear();
        device->RefuseMapBlocks(true);
        BumpCells(0, 30);
        const std::vector<int> marked = MarkedBlocks();
        int turns = 0;
        OnYield([&turns, at] { Progress2.Cancelled = ++turns == at; });
        cmdUpdate_Click();
        EXPECT_EQ(MarkedCells(0), 30 - at);
        EXPECT_EQ(MarkedBlocks(), marked);
        ExpectSomeLeft();
        device->ClearJournal();
        OnYield([] {});
        cmdUpdate_Click();
        // The Power-FC still refuses the block: what was not sent goes cell by cell.
        EXPECT_EQ(Writes().size(), static_cast<std::size_t>(2 + 30 - at));
        ExpectAllSent();
        if (HasFailure()) return;
    }
}

TEST_F(Update, MainWindowCloses_EndsAtTheNextCellAndTheRestStaysMarked) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    BumpCells(0, 30);
    BumpCells(1, 30);
    OnYield([] { Progress2.Cancelled = ProgressScan.Cancelled = CloseAsked = true; });
    cmdUpdate_Click();
    EXPECT_EQ(MarkedCells(0), 29);
    EXPECT_EQ(MarkedCells(1), 30);
    ExpectSomeLeft();
    EXPECT_FALSE(LongOperationRuns());
    CloseAsked = false;
    UpdateTheRest();
}

// --- Edits while it runs ------------------------------------------------------------------------------

TEST_F(Update, CellEditedBehindTheOneBeingSent_StaysMarked) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    BumpCells(0, 25);
    int turns = 0;
    OnYield([&turns] {
        if (++turns == 10) BumpCell(0, 1, 4);
    });
    cmdUpdate_Click();
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_TRUE(MapCellChanged[0][1][4]);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x56});
    EXPECT_TRUE(cmdUpdate.Enabled);
    LastUpdate.clear();
    UpdateTheRest();
}

TEST_F(Update, CellEditedBeforeItsTurn_IsSentWithItsNewValue) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    BumpCells(0, 25);
    int turns = 0;
    OnYield([&turns] {
        if (++turns == 10) BumpCell(0, 2, 5);
    });
    cmdUpdate_Click();
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    EXPECT_EQ(device->BlockString(0x56), ReadData[0x56]);
    ExpectDeviceEqualsImage();
}

TEST_F(Update, CellOfAMapThatIsDone_StaysMarked) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    BumpCells(0, 1);
    BumpCells(1, 25);
    int turns = 0;
    OnYield([&turns] {
        if (++turns == 10) BumpCell(0, 20, 20);
    });
    cmdUpdate_Click();
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x59});
    EXPECT_TRUE(cmdUpdate.Enabled);
    LastUpdate.clear();
    UpdateTheRest();
}

// The button must not stay enabled for a change that went out with the rest.
TEST_F(Update, SettingEditedWhileItRuns_IsSentWithTheRest) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    BumpCells(0, 25);
    int turns = 0;
    OnYield([&turns] {
        if (++turns == 10) Bump(0x5B);
    });
    cmdUpdate_Click();
    EXPECT_EQ(Writes().back(), Packet(0x34, ReadData[0x5B]));
    ExpectAllSent();
}

TEST_F(Update, SettingEditedAsTheWindowGoes_IsSentWithTheRest) {
    ReadAllOf(kPlain);
    BumpCell(0, 1, 1);
    OnYield([] { Bump(0x8E); });
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), (Frames{BlockPacket(0x86), BlockPacket(0x8E)}));
    ExpectAllSent();
}

TEST_F(Update, CellsAddedWhileItRuns_BarStaysWithinItsRange) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    BumpCells(0, 21);
    int turns = 0;
    double most = 0;
    OnYield([&] {
        if (++turns == 5) {
            for (int column = 1; column <= 20; ++column) BumpCell(0, 10, column);
        }
        if (Progress2.Visible) most = std::max(most, Progress2.Bar);
    });
    cmdUpdate_Click();
    EXPECT_LE(most, 100);
    EXPECT_EQ(MarkedCells(0), 0);
    ExpectDeviceEqualsImage();
}

// --- Faults -------------------------------------------------------------------------------------------

TEST_F(Update, SettingThatFailsOnce_IsSentAgainAndDone) {
    ReadAllOf(kPlain);
    Impatient();
    for (const FaultCase& fault : kFaults) {
        SCOPED_TRACE(fault.Name);
        device->ClearJournal();
        Bump(0x8D);
        fault.Add(*device, 0x8D, 1);
        cmdUpdate_Click();
        EXPECT_EQ(Writes(), (Frames{BlockPacket(0x8D), BlockPacket(0x8D)}));
        ExpectAllSent();
    }
}

TEST_F(Update, SettingThatFails_TellsSoAndKeepsTheRest) {
    for (const FaultCase& fault : kFaults) {
        SCOPED_TRACE(fault.Name);
        ComTimeOutTicks = 250;
        ReadAllOf(kPlain);
        Impatient();
        LastUpdate.clear();
        Bump(0x8D);
        Bump(0x8E);
        Bump(0x8F);
        const std::string old = device->BlockString(0x8F);
        fault.Add(*device, 0x8E, powerfc::kForever);
        ExpectBox(kNotResponding, Box::Exclamation);
        ExpectBox("Update error", Box::Critical);
        cmdUpdate_Click();
        EXPECT_EQ(device->Received(),
                  AfterPrelude({BlockPacket(0x8D), BlockPacket(0x8E), BlockPacket(0x8E)}));
        EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x8E, 0x8F}));
        EXPECT_EQ(Digits(device->BlockString(0x8D)), Digits(ReadData[0x8D]));
        EXPECT_EQ(Digits(device->BlockString(0x8F)), Digits(old));
        ExpectSomeLeft();
        EXPECT_EQ(LogLines().back(), "Interface not responding error");
        UpdateTheRest();
        if (HasFailure()) return;
    }
}

TEST_F(Update, LateReply_ServesTheSendAfterIt) {
    ReadAllOf(kPlain);
    Impatient();
    Bump(0x8D);
    Bump(0x8E);
    device->Delay(0x8D, 60);
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), (Frames{BlockPacket(0x8D), BlockPacket(0x8D), BlockPacket(0x8E)}));
    ExpectAllSent();
}

TEST_F(Update, CellThatFails_EndsWithoutABoxOfItsOwn) {
    for (const FaultCase& fault : kFaults) {
        SCOPED_TRACE(fault.Name);
        ComTimeOutTicks = 250;
        ReadAllOf(kPlain);
        Impatient();
        device->RefuseMapBlocks(true);
        BumpCells(1, 25);
        Bump(0x8D);
        int turns = 0;
        OnYield([&] {
            if (++turns == 7) fault.Add(*device, 0x80, powerfc::kForever);
        });
        ExpectBox(kNotResponding, Box::Exclamation);
        cmdUpdate_Click();
        EXPECT_EQ(MarkedCells(1), 18);
        EXPECT_TRUE(MapCellChanged[1][1][8]);
        EXPECT_FALSE(MapCellChanged[1][1][7]);
        EXPECT_TRUE(BlockChanged[0x81]);
        EXPECT_TRUE(BlockChanged[0x8D]);
        EXPECT_EQ(Writes().back(), CellPacket(1, 1, 8));
        ExpectSomeLeft();
        UpdateTheRest();
        if (HasFailure()) return;
        LastUpdate.clear();
    }
}

TEST_F(Update, OldestFamilyOutcomeThatFails_KeepsTheCellMarked) {
    for (const int command : {50, 111}) {
        SCOPED_TRACE(command);
        ComRetries = kDefaultComRetries;
        ReadAllOf(kOldest);
        LastUpdate.clear();
        Impatient();
        BumpCells(0, 3);
        Bump(0x5F);
        device->Silence(command, powerfc::kForever);
        ExpectBox(kNotResponding, Box::Exclamation);
        cmdUpdate_Click();
        EXPECT_EQ(device->Received(), AfterPrelude(OldestCellPackets(0, 1, 1) + Frames{Packet(111)}));
        EXPECT_EQ(MarkedCells(0), 3);
        EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x56, 0x5F}));
        ExpectSomeLeft();
        UpdateTheRest();
    }
}

TEST_F(Update, OldestFamilyOutcomeLostOnce_IsAskedAgain) {
    ReadAllOf(kOldest);
    Impatient();
    BumpCells(0, 1);
    device->Silence(111, 1);
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), AfterPrelude(OldestCellPackets(0, 1, 1) + Frames{Packet(111)}));
    ExpectAllSent();
}

TEST_F(Update, LineDiesAtASetting_AndComesBack) {
    ReadAllOf(kPlain);
    Impatient();
    Bump(0x8D);
    Bump(0x8E);
    device->VanishAt(0x8E, 0);
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Update error", Box::Critical);
    cmdUpdate_Click();
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_FALSE(mnuCom[0].Checked);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8E});
    ExpectSomeLeft();
    device->Return();
    UpdateTheRest();
}

TEST_F(Update, LineDiesAtAMapBlock_CellsAreTriedAndEndIt) {
    ReadAllOf(kPlain);
    Impatient();
    BumpCells(0, 3);
    Bump(0x8E);
    device->VanishAt(0x86, 2);
    ExpectBox(kNotResponding, Box::Exclamation);  // at the first cell
    cmdUpdate_Click();
    EXPECT_EQ(MarkedCells(0), 3);
    ExpectSomeLeft();
    device->Return();
    UpdateTheRest();
}

TEST_F(Update, LineDiesAmongTheCells_AndComesBack) {
    for (const std::string version : {kPlain, kBaseMap, kOldest}) {
        SCOPED_TRACE(version);
        ComTimeOutTicks = 250;
        LastUpdate.clear();
        ReadAllOf(version);
        Impatient();
        const int map = version == kBaseMap ? 2 : 0;
        const int command = version == kOldest ? 111 : version == kBaseMap ? 0xAF : 0x85;
        device->RefuseMapBlocks(true);
        BumpCells(map, 25);
        int turns = 0;
        OnYield([&] {
            if (++turns == 24) device->VanishAt(command, 2);
        });
        ExpectBox(kNotResponding, Box::Exclamation);
        cmdUpdate_Click();
        EXPECT_EQ(MarkedCells(map), 1);
        EXPECT_FALSE(MarkedBlocks().empty());
        ExpectSomeLeft();
        device->Return();
        UpdateTheRest();
        if (HasFailure()) return;
    }
}

TEST_F(Update, PortGoneBeforeACellOfTheOldestFamily_TellsSo) {
    ReadAllOf(kOldest);
    Impatient();
    BumpCells(0, 25);
    int turns = 0;
    OnYield([&] {
        if (++turns == 5) MSComm1.Close();
    });
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdUpdate_Click();
    EXPECT_EQ(MarkedCells(0), 20);
    ExpectSomeLeft();
    UpdateTheRest();
}

TEST_F(Update, NobodyAnswersTheVersionQuery_NothingIsSentAndTheButtonStays) {
    ReadAllOf(kPlain);
    Impatient();
    Bump(0x8D);
    device->DeadLine(true);
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames());
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8D});
    ExpectSomeLeft();
    device->DeadLine(false);
    UpdateTheRest();
}

// --- Asked twice --------------------------------------------------------------------------------------

TEST_F(Update, AnythingAskedWhileItRuns_IsNotBegun) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    BumpCells(0, 22);
    PopupFrame = 500;
    OnYield([] {
        EXPECT_TRUE(LongOperationRuns());
        cmdUpdate.Enabled = true;  // as an edit makes it
        cmdUpdate_Click();
        cmdWriteAll_Click();
        cmdReadAll_Click();
        cmdReadMap_Click(0);
        cmdWriteMap_Click(0);
        mnuRead_Click();
        mnuWrite_Click();
        mnuInitAllData_Click();
        cmdUpdate.Enabled = false;
    });
    cmdUpdate_Click();
    Frames cells;
    for (int i = 0; i < 22; ++i) cells = cells + OldestCellPackets(0, 1 + i / 20, 1 + i % 20);
    EXPECT_EQ(device->Received(), AfterPrelude(cells));
    ExpectAllSent();
    EXPECT_FALSE(LongOperationRuns());
}

// --- Another Power-FC ---------------------------------------------------------------------------------

TEST_F(Update, AnotherPowerFc_IsRefusedAndTold) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    BumpCell(0, 1, 1);
    Connect(kBaseMap);
    const Frames before = Contents();
    ExpectBox(kFirstReadAllUpdate, Box::Critical);
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), Prelude());
    EXPECT_EQ(Contents(), before);
    EXPECT_EQ(LogLines(), (Frames{"Version change detected:1JZ-GTE23.12", "Update different version error"}));
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_FALSE(cmdWriteAll.Enabled);
    EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x86, 0x8D}));
    // A file saved now is one of the build that its blocks are of.
    EXPECT_EQ(ReadVerName(), "RB26DETT");
    EXPECT_EQ(ReadVerNumber(), "6.42");
    // Another edit enables the button; it stays a Power-FC that the image is not of.
    Bump(0x8D);
    ExpectBox(kFirstReadAllUpdate, Box::Critical);
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames());
    EXPECT_EQ(VerName, "RB26DETT");
}

TEST_F(Update, AnotherPowerFcAndTheFirstOneAgain_GoesOn) {
    ReadAllOf(kPlain);
    const Frames factory = Contents();
    Bump(0x8D);
    Connect(kBaseMap);
    ExpectBox(kFirstReadAllUpdate, Box::Critical);
    cmdUpdate_Click();
    Connect(kPlain);
    Bump(0x8E);
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), (Frames{BlockPacket(0x8D), BlockPacket(0x8E)}));
    ExpectAllSent();
}

TEST_F(Update, AnotherPowerFcMadeTheOneInForceByAReadMap_IsRefused) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    Connect(kBaseMap);
    cmdReadMap_Click(0);
    ASSERT_EQ(VerName + VerNumber, kBaseMap);
    device->ClearJournal();
    BumpCell(0, 1, 1);
    Bump(0x8E);
    ExpectBox(kFirstReadAllUpdate, Box::Critical);
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), Prelude());
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(Update, AnotherPowerFcWhoseMapWasRead_TakesChangesOfThatMap) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    cmdReadMap_Click(2);
    device->ClearJournal();
    BumpCell(2, 1, 1);
    cmdUpdate_Click();
    EXPECT_EQ(device->Received(), AfterPrelude({BlockPacket(0xB0)}));
    EXPECT_FALSE(cmdUpdate.Enabled);
}

// The other one's map may be changed; a setting that it was never asked for may not, not even while the map
// goes out.
TEST_F(Update, SettingOfTheFirstPowerFcEditedWhileTheSecondsMapGoesOut_IsRefused) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    cmdReadMap_Click(0);
    Impatient();
    device->RefuseMapBlocks(true);
    device->ClearJournal();
    const std::string before = device->BlockString(0x8E);
    BumpCells(0, 25);
    int turns = 0;
    OnYield([&turns] {
        if (++turns == 5) Bump(0x8E);
    });
    ExpectBox(kFirstReadAllUpdate, Box::Critical);
    cmdUpdate_Click();
    for (const std::string& frame : Writes()) EXPECT_NE(frame.substr(0, 2), "8E") << frame;
    EXPECT_EQ(Digits(device->BlockString(0x8E)), Digits(before));
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8E});
    EXPECT_EQ(MarkedCells(0), 0);
    EXPECT_EQ(LastUpdate, "");
}

// A build that nobody knows is scanned, and the scan empties the image.
TEST_F(Update, UnknownPowerFc_IsNotWritten) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    BumpCell(0, 1, 1);
    Connect("XYZ9.99");
    const Frames before = Contents();
    std::vector<std::string> boxes;
    Desktop.MessageBox = [&boxes](const std::string& text, Box) {
        boxes.push_back(text.substr(0, text.find('\n')));
        return Answer::Ok;
    };
    OnYield([] { ProgressScan.Cancelled = ProgressScan.Visible; });
    cmdUpdate_Click();
    EXPECT_EQ(boxes, Frames{"XYZ version 9.99 is not yet supported."});
    EXPECT_EQ(Writes(), Frames());
    OnYield([] {});
    // The first one again: the image no longer holds what was changed.
    Connect(kPlain);
    const Frames first = Contents();
    UpdateEnable();
    cmdUpdate_Click();
    EXPECT_EQ(boxes.back(), "First Read All, make changes, then Update.");
    EXPECT_EQ(Writes(), Frames());
    EXPECT_EQ(Contents(), first);
}

TEST_F(Update, ReadAllOfAnotherPowerFcFailed_IsRefused) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    BumpCell(1, 2, 2);
    Connect(kBaseMap);
    Impatient();
    device->Silence(0x90, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Read All Error 90", Box::Critical);
    cmdReadAll_Click();
    device->ClearFaults();
    device->ClearJournal();
    const Frames before = Contents();
    Bump(0x8E);
    ExpectBox(kFirstReadAllUpdate, Box::Critical);
    cmdUpdate_Click();
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    cmdWriteAll_Click();
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    cmdWriteMap_Click(1);
    EXPECT_EQ(Writes(), Frames());
    EXPECT_EQ(Contents(), before);
}

TEST_F(Update, ReadAllOfTheSamePowerFcFailed_KeepsTheChangesAndSendsThem) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    BumpCell(1, 2, 2);
    Impatient();
    device->Silence(0xAC, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Read All Error AC", Box::Critical);
    cmdReadAll_Click();
    device->ClearFaults();
    device->ClearJournal();
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), (Frames{BlockPacket(0x81), BlockPacket(0x8D)}));
    ExpectAllSent();
}

// The marks of cells that were edited for the first Power-FC are no changes of the second one's map.
TEST_F(Update, CellsMarkedForTheFirstPowerFc_AreNotWrittenToTheSecond) {
    ReadAllOf(kPlain);
    BumpCells(0, 30);
    Connect(kOldest);
    ComTimeOutTicks = 40;
    cmdReadMap_Click(1);
    ASSERT_EQ(VerName + VerNumber, kOldest);
    const std::string before = device->BlockString(0x56);
    device->ClearJournal();
    BumpCell(1, 1, 1);
    Desktop.MessageBox = [](const std::string&, Box) { return Answer::Ok; };  // a refusal is as good
    cmdUpdate_Click();
    for (const std::string& frame : Writes()) EXPECT_NE(frame.substr(0, 2), "32") << frame;
    EXPECT_EQ(Digits(device->BlockString(0x56)), Digits(before));
}

// What a frame's Read took from another Power-FC is not the first one's.
TEST_F(Update, BlockReadFromAnotherPowerFc_IsNotWrittenToTheFirst) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    device->SetBlock(0x8D, powerfc::Bytes(24, 0x77));
    PopupFrame = 500;
    mnuRead_Click();
    Connect(kPlain);
    const Frames before = Contents();
    Bump(0x8D, 24);
    Desktop.MessageBox = [](const std::string&, Box) { return Answer::Ok; };  // a refusal is as good
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames());
    EXPECT_EQ(Contents(), before);
}

}  // namespace
}  // namespace zandrel
