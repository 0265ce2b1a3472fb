// Write Map: whole blocks, and the cells one by one where the Power-FC does not take them so; Read Map's
// part in what is marked.
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
#include "util/numbers.h"

namespace zandrel {
namespace {

class MapWriting : public TransferFixture {
  protected:
    static Frames BlockPackets(int map) {
        Frames frames;
        for (int k = 0; k < 4 * MapCellSize[map]; ++k) frames.push_back(BlockPacket(MapFirstBlock[map] + k));
        return frames;
    }

    // The first `count` cells in the order in which they are sent.
    static Frames Cells(int map, int count = kMapSide * kMapSide) {
        Frames frames;
        for (int i = 0; i < count; ++i) {
            const int row = 1 + i / kMapSide;
            const int column = 1 + i % kMapSide;
            frames = frames + (MapFirstBlock[map] == 0x52 || MapFirstBlock[map] == 0x56
                                   ? OldestCellPackets(map, row, column)
                                   : Frames{CellPacket(map, row, column)});
        }
        return frames;
    }

    // The map's cells are all other ones on the Power-FC.
    void ScrambleDevice(int map) {
        for (int k = 0; k < 4 * MapCellSize[map]; ++k) {
            powerfc::Bytes bytes = device->Block(MapFirstBlock[map] + k);
            for (auto& byte : bytes) byte ^= 0x55;
            device->SetBlock(MapFirstBlock[map] + k, bytes);
        }
    }

    void ExpectMapSent(int map) const {
        EXPECT_EQ(MarkedCells(map), 0);
        for (int k = 0; k < 4 * MapCellSize[map]; ++k) {
            const int block = MapFirstBlock[map] + k;
            EXPECT_FALSE(BlockChanged[block]) << block;
            EXPECT_EQ(Digits(device->BlockString(block)), Digits(ReadData[block])) << block;
        }
        EXPECT_TRUE(cmdWriteMap[map].Enabled);
        EXPECT_FALSE(Progress2.Visible);
    }

    void WriteAgain(int map) {
        OnYield([] {});
        device->ClearFaults();
        if (!MSComm1.PortOpen()) mnuCom_Click(0);
        cmdWriteMap_Click(map);
        ExpectMapSent(map);
    }
};

TEST_F(MapWriting, BlocksTaken_AreSentInOrderWithoutAWindow) {
    ReadAllOf(kPlain);
    ScrambleDevice(1);
    BumpCell(1, 5, 5);
    BumpCell(0, 1, 1);
    cmdWriteMap_Click(1);
    EXPECT_EQ(device->Received(), AfterPrelude(BlockPackets(1)));
    ExpectMapSent(1);
    EXPECT_EQ(YieldCount(), 0);
    // The other map still waits.
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x86});
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_TRUE(DataChanged);
}

TEST_F(MapWriting, LastThatWaited_TheUpdateButtonGoesOut) {
    ReadAllOf(kPlain);
    BumpCell(1, 5, 5);
    ASSERT_TRUE(cmdUpdate.Enabled);
    cmdWriteMap_Click(1);
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(MapWriting, TwoByteMap_EightBlocks) {
    ReadAllOf(kBaseMap);
    ScrambleDevice(2);
    cmdWriteMap_Click(2);
    EXPECT_EQ(device->Received(), AfterPrelude(BlockPackets(2)));
    EXPECT_EQ(Writes().size(), 8u);
    ExpectMapSent(2);
}

TEST_F(MapWriting, Button_IsDisabledForTheTime) {
    ReadAllOf(kPlain);
    bool enabled = false;
    AfterSend = [&enabled] { enabled = enabled || cmdWriteMap[0].Enabled; };
    cmdWriteMap_Click(0);
    EXPECT_FALSE(enabled);
    EXPECT_TRUE(cmdWriteMap[0].Enabled);
}

TEST_F(MapWriting, BlockRefusedInTheMiddle_TheWholeMapGoesCellByCell) {
    ReadAllOf(kPlain);
    Impatient();
    ScrambleDevice(0);
    device->Silence(0x88, powerfc::kForever);
    cmdWriteMap_Click(0);
    EXPECT_EQ(device->Received(), AfterPrelude(Frames{BlockPacket(0x86), BlockPacket(0x87), BlockPacket(0x88),
                                                      BlockPacket(0x88)} +
                                               Cells(0)));
    ExpectMapSent(0);
}

TEST_F(MapWriting, CellByCell_WindowBarAndTurns) {
    struct Row {
        const char* Build;
        int Map;
    };
    for (const Row& row :
         {Row{kPlain, 0}, Row{kBaseMap, 2}, Row{kTwoBaseMaps, 3}, Row{kOldest, 0}, Row{kOldest, 1}}) {
        SCOPED_TRACE(testing::Message() << row.Build << " " << row.Map);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(row.Build);
        Impatient();
        ScrambleDevice(row.Map);
        device->RefuseMapBlocks(true);
        std::vector<double> bars;
        std::string status;
        const int turnsBefore = YieldCount();
        OnYield([&] {
            if (!Progress2.Visible) return;
            bars.push_back(Progress2.Bar);
            status = Progress2.Status;
        });
        cmdWriteMap_Click(row.Map);
        std::vector<double> expected;
        for (int i = 1; i <= 20; ++i) expected.push_back(i * 5);
        EXPECT_EQ(bars, expected);
        EXPECT_EQ(status, "Writing " + SSTab1.TabCaption[row.Map]);
        EXPECT_EQ(YieldCount() - turnsBefore, 21);
        Frames blocks;
        if (std::string(row.Build) != kOldest) blocks = Frames(2, BlockPacket(MapFirstBlock[row.Map]));
        EXPECT_EQ(device->Received(), AfterPrelude(blocks + Cells(row.Map)));
        ExpectMapSent(row.Map);
        if (HasFailure()) return;
    }
}

// A cancel falls between two cells: the one under way is still sent.
TEST_F(MapWriting, CancelInEachRow_KeepsTheRestMarkedAndUpdateGoesOn) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    for (int at = 1; at <= 20; ++at) {
        SCOPED_TRACE(at);
        for (int row = 1; row <= 20; ++row) BumpCell(0, row, 1 + row % 20);
        BumpCell(0, at, 20);
        const std::vector<int> marked = MarkedBlocks();
        const int cells = MarkedCells(0);
        device->ClearJournal();
        OnYield([at] { Progress2.Cancelled = Progress2.Bar == at * 5; });
        cmdWriteMap_Click(0);
        EXPECT_EQ(device->Received(), AfterPrelude(Cells(0, (at - 1) * 20 + 1)));
        // One cell of each row before has arrived; the first one of row 20 was edited too.
        EXPECT_EQ(MarkedCells(0), cells - (at - 1) - (at == 20 ? 1 : 0));
        EXPECT_TRUE(MapCellChanged[0][at][20]);
        EXPECT_EQ(MarkedBlocks(), marked);
        EXPECT_TRUE(cmdUpdate.Enabled);
        EXPECT_TRUE(cmdWriteMap[0].Enabled);
        EXPECT_FALSE(Progress2.Visible);
        OnYield([] {});
        cmdUpdate_Click();
        EXPECT_FALSE(cmdUpdate.Enabled);
        ExpectMapSent(0);
        if (HasFailure()) return;
    }
}

TEST_F(MapWriting, CancelAsTheWindowGoes_ChangesNothing) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    ScrambleDevice(1);
    OnYield([] { Progress2.Cancelled = !Progress2.Visible; });
    cmdWriteMap_Click(1);
    ExpectMapSent(1);
}

TEST_F(MapWriting, CancelledWithoutAnEdit_LeavesNothingMarked) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    OnYield([] { Progress2.Cancelled = true; });
    cmdWriteMap_Click(1);
    EXPECT_EQ(device->Received(), AfterPrelude(Cells(1, 1)));
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(MapWriting, EditsWhileItRuns_StayMarked) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    OnYield([] {
        if (Progress2.Bar != 50 || !Progress2.Visible) return;
        BumpCell(0, 3, 17);  // sent already
        BumpCell(0, 17, 3);  // goes out with the rest
        BumpCell(1, 1, 1);   // another map
    });
    cmdWriteMap_Click(0);
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_TRUE(MapCellChanged[0][3][17]);
    EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x52, 0x59}));
    EXPECT_TRUE(cmdUpdate.Enabled);
    OnYield([] {});
    cmdUpdate_Click();
    ExpectMapSent(0);
    ExpectMapSent(1);
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(MapWriting, MainWindowCloses_EndsAfterTheCell) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    BumpCell(0, 20, 20);
    OnYield([] {
        if (Progress2.Bar == 15) Progress2.Cancelled = ProgressScan.Cancelled = CloseAsked = true;
    });
    cmdWriteMap_Click(0);
    EXPECT_EQ(device->Received(), AfterPrelude(Cells(0, 41)));
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x59});
    EXPECT_FALSE(LongOperationRuns());
}

// --- Faults -------------------------------------------------------------------------------------------

TEST_F(MapWriting, CellThatFails_CellsBeforeItAreOnThePowerFc) {
    struct Row {
        const char* Build;
        int Map, Command;
    };
    for (const Row& row : {Row{kPlain, 0, 0x85}, Row{kBaseMap, 2, 0xAF}, Row{kOldest, 1, 111}}) {
        for (const FaultCase& fault : kFaults) {
            SCOPED_TRACE(testing::Message() << row.Build << " " << fault.Name);
            ComTimeOutTicks = kDefaultComTimeOutTicks;
            ReadAllOf(row.Build);
            Impatient();
            ScrambleDevice(row.Map);
            BumpCell(row.Map, 3, 20);
            BumpCell(row.Map, 4, 1);
            BumpCell(row.Map, 20, 20);
            const std::vector<int> marked = MarkedBlocks();
            const std::string last = device->BlockString(MapFirstBlock[row.Map]);
            device->RefuseMapBlocks(true);
            OnYield([&] {
                if (Progress2.Bar == 20) fault.Add(*device, row.Command, powerfc::kForever);
            });
            ExpectBox(kNotResponding, Box::Exclamation);
            ExpectBox("Error Writing Map", Box::Critical);
            cmdWriteMap_Click(row.Map);
            EXPECT_FALSE(MapCellChanged[row.Map][3][20]);
            EXPECT_EQ(MarkedCells(row.Map), 2);
            EXPECT_EQ(MarkedBlocks(), marked);
            EXPECT_TRUE(cmdUpdate.Enabled);
            EXPECT_TRUE(cmdWriteMap[row.Map].Enabled);
            EXPECT_FALSE(Progress2.Visible);
            // Rows 1 to 3 of the first column have arrived, row 5 has not.
            const auto size = static_cast<std::size_t>(MapCellSize[row.Map]);
            const std::string now = device->BlockString(MapFirstBlock[row.Map]);
            EXPECT_EQ(Digits(now.substr(0, 3 * size)),
                      Digits(ReadData[MapFirstBlock[row.Map]].substr(0, 3 * size)));
            EXPECT_EQ(Digits(now.substr(4 * size, 16 * size)), Digits(last.substr(4 * size, 16 * size)));
            WriteAgain(row.Map);
            if (HasFailure()) return;
        }
    }
}

TEST_F(MapWriting, CellLostOnce_IsSentAgain) {
    ReadAllOf(kPlain);
    Impatient();
    ScrambleDevice(0);
    device->RefuseMapBlocks(true);
    device->Silence(0x85, 1);
    cmdWriteMap_Click(0);
    EXPECT_EQ(Writes().size(), 2u + 401u);
    ExpectMapSent(0);
}

TEST_F(MapWriting, LineDiesAndComesBack) {
    struct Row {
        const char* Build;
        int Map, Command;
    };
    for (const Row& row : {Row{kPlain, 0, 0x85}, Row{kBaseMap, 2, 0xAF}, Row{kOldest, 0, 111}}) {
        SCOPED_TRACE(row.Build);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(row.Build);
        Impatient();
        ScrambleDevice(row.Map);
        BumpCell(row.Map, 20, 20);
        device->RefuseMapBlocks(true);
        OnYield([&] {
            if (Progress2.Bar == 50) device->VanishAt(row.Command, 1);
        });
        ExpectBox(kNotResponding, Box::Exclamation);
        ExpectBox("Error Writing Map", Box::Critical);
        cmdWriteMap_Click(row.Map);
        EXPECT_FALSE(MSComm1.PortOpen());
        EXPECT_EQ(MarkedCells(row.Map), 1);
        EXPECT_TRUE(cmdUpdate.Enabled);
        EXPECT_TRUE(cmdWriteMap[row.Map].Enabled);
        device->Return();
        WriteAgain(row.Map);
        if (HasFailure()) return;
    }
}

TEST_F(MapWriting, NobodyAnswersTheVersionQuery_NothingIsSent) {
    ReadAllOf(kPlain);
    Impatient();
    BumpCell(0, 1, 1);
    device->DeadLine(true);
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdWriteMap_Click(0);
    EXPECT_EQ(Writes(), Frames());
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_TRUE(cmdWriteMap[0].Enabled);
}

TEST_F(MapWriting, AskedTwice_BeginsOnce) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    PopupFrame = 500;
    OnYield([] {
        EXPECT_FALSE(cmdWriteMap[0].Enabled);
        cmdWriteMap_Click(0);
        cmdWriteMap_Click(1);
        cmdReadMap_Click(1);
        cmdUpdate_Click();
        cmdWriteAll_Click();
        cmdReadAll_Click();
        mnuRead_Click();
        mnuWrite_Click();
        mnuInitAllData_Click();
        EXPECT_FALSE(cmdWriteMap[0].Enabled);
    });
    cmdWriteMap_Click(0);
    EXPECT_EQ(device->Received(), AfterPrelude(Cells(0)));
    ExpectMapSent(0);
}

// --- Another Power-FC ---------------------------------------------------------------------------------

TEST_F(MapWriting, AnotherPowerFc_IsRefusedAndStaysSo) {
    for (const std::string other : {kBaseMap, kTwoBaseMaps, kOldest}) {
        SCOPED_TRACE(other);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(kPlain);
        BumpCell(0, 1, 1);
        Connect(other);
        if (other == kOldest) ComTimeOutTicks = 30;
        const Frames before = Contents();
        for (int time = 0; time < 2; ++time) {
            ExpectBox(kFirstReadAllWrite, Box::Critical);
            cmdWriteMap_Click(0);
            EXPECT_EQ(Writes(), Frames());
            EXPECT_TRUE(cmdWriteMap[0].Enabled);
        }
        EXPECT_EQ(Contents(), before);
        EXPECT_EQ(VerName + VerNumber, other);
    }
}

TEST_F(MapWriting, AnotherPowerFcWhoseMapWasRead_TakesThatMapAlone) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    cmdReadMap_Click(1);
    device->ClearJournal();
    cmdWriteMap_Click(1);
    EXPECT_EQ(device->Received(), AfterPrelude(BlockPackets(1)));
    device->ClearJournal();
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    cmdWriteMap_Click(0);
    EXPECT_EQ(Writes(), Frames());
}

TEST_F(MapWriting, MapHalfReadFromAnotherPowerFc_IsRefused) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    Impatient();
    device->Silence(0x84, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdReadMap_Click(1);
    device->ClearFaults();
    device->ClearJournal();
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    cmdWriteMap_Click(1);
    EXPECT_EQ(Writes(), Frames());
}

TEST_F(MapWriting, MapThatTheNewBuildLacks_IsNotWritten) {
    ReadAllOf(kTwoBaseMaps);
    Connect(kPlain);
    cmdWriteMap_Click(3);
    EXPECT_EQ(Writes(), Frames());
    EXPECT_TRUE(cmdWriteMap[3].Enabled);
}

// --- Read Map -----------------------------------------------------------------------------------------

TEST_F(MapWriting, ReadMap_TakesTheMarksAndTheWayBack) {
    ReadAllOf(kPlain);
    BumpCell(0, 1, 1);
    BumpCell(1, 1, 1);
    ASSERT_TRUE(CanUndo());
    cmdReadMap_Click(0);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x81});
    EXPECT_EQ(MarkedCells(0), 0);
    EXPECT_EQ(MarkedCells(1), 1);
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_FALSE(CanUndo());
    EXPECT_EQ(Digits(ReadData[0x86]), Digits(device->BlockString(0x86)));
    cmdReadMap_Click(1);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    EXPECT_FALSE(cmdUpdate.Enabled);
}

// What was read before the failure is in step again, its cells too; the button follows.
TEST_F(MapWriting, ReadMapThatFails_TakesTheMarksOfWhatItHasRead) {
    ReadAllOf(kPlain);
    Impatient();
    BumpCell(0, 1, 1);  // 0x86
    device->Silence(0x87, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdReadMap_Click(0);
    EXPECT_EQ(Digits(ReadData[0x86]), Digits(device->BlockString(0x86)));
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    EXPECT_EQ(MarkedCells(0), 0);
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(MapWriting, ReadMapThatFails_KeepsTheMarksOfWhatItHasNotRead) {
    ReadAllOf(kPlain);
    Impatient();
    BumpCell(0, 1, 6);  // 0x87
    device->Silence(0x87, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdReadMap_Click(0);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x87});
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_TRUE(cmdUpdate.Enabled);
}

}  // namespace
}  // namespace zandrel
