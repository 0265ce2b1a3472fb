// Write All: everything goes out, maps first; what ends it, and what stands then.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "image/accessors.h"
#include "image/catalogue.h"
#include "image/image.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transferfixture.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

class WriteAll : public TransferFixture {
  protected:
    // The blocks of the maps in view.
    static Frames MapPackets() {
        Frames frames;
        for (int map = 0; map < kMapTabs; ++map) {
            if (!SSTab1.TabVisible[map]) continue;
            for (int k = 0; k < 4 * MapCellSize[map]; ++k)
                frames.push_back(BlockPacket(MapFirstBlock[map] + k));
        }
        return frames;
    }

    // The settings from `first` up to `last`; a select block is read back twice.
    static Frames SettingPackets(int first = 0, int last = 255) {
        Frames frames;
        for (int b = first; b <= last; ++b) {
            if (!BlockWrite[b]) continue;
            const std::string& data = ReadData[b];
            if (b == SensorSelectBlock) {
                frames =
                    frames + Frames{Packet(b, data.substr(0, 1) + data.substr(91)), Packet(b), Packet(b)};
            } else if (b == FunctionSelectBlock) {
                frames = frames +
                         Frames{Packet(b, data.substr(0, data.size() == 136 ? 8 : 5)), Packet(b), Packet(b)};
            } else {
                frames.push_back(BlockPacket(b));
            }
        }
        return frames;
    }

    static Frames CellPackets(int map, int rows = kMapSide) {
        Frames frames;
        for (int row = 1; row <= rows; ++row) {
            for (int column = 1; column <= kMapSide; ++column) {
                frames = frames + (MapFirstBlock[map] == 0x52 || MapFirstBlock[map] == 0x56
                                       ? OldestCellPackets(map, row, column)
                                       : Frames{CellPacket(map, row, column)});
            }
        }
        return frames;
    }

    // All that can be written gets other bytes than the image has.
    void ScrambleDevice() {
        for (const int code : device->BlockCodes()) {
            if (!device->Writable(code)) continue;
            powerfc::Bytes bytes = device->Block(code);
            std::size_t keepFrom = bytes.size(), keepTo = bytes.size();
            if (code == SensorSelectBlock) keepFrom = 1, keepTo = 91;
            if (code == FunctionSelectBlock) keepFrom = bytes.size() == 136 ? 8 : 5;
            if (code == 0x5C && MapFirstBlock[0] == 0x56) keepFrom = 5, keepTo = 9;
            for (std::size_t i = 0; i < bytes.size(); ++i) {
                if (i < keepFrom || i >= keepTo) bytes[i] ^= 0x55;
            }
            device->SetBlock(code, bytes);
        }
    }

    void ExpectAllSent() const {
        EXPECT_EQ(MarkedBlocks(), std::vector<int>());
        for (int map = 0; map < kMapTabs; ++map) EXPECT_EQ(MarkedCells(map), 0);
        EXPECT_FALSE(cmdUpdate.Enabled);
        EXPECT_TRUE(cmdWriteAll.Enabled);
        EXPECT_FALSE(Progress2.Visible);
        EXPECT_EQ(BusyPointers().back(), '0');
        ExpectDeviceEqualsImage();
    }

    void WriteAllAgain() {
        OnYield([] {});
        device->ClearFaults();
        if (!MSComm1.PortOpen()) mnuCom_Click(0);
        cmdWriteAll_Click();
        ExpectAllSent();
    }
};

TEST_F(WriteAll, AllMapsThenAllSettings_InOrder) {
    ReadAllOf(kPlain);
    ScrambleDevice();
    BumpCell(0, 4, 4);
    Bump(0x8D);
    cmdWriteAll_Click();
    EXPECT_EQ(device->Received(), AfterPrelude(MapPackets() + SettingPackets()));
    EXPECT_EQ(MapPackets().size(), 8u);
    EXPECT_GT(SettingPackets().size(), 30u);
    ExpectAllSent();
    EXPECT_EQ(YieldCount(), 0);
    EXPECT_EQ(BusyPointers(), "1010");
    EXPECT_EQ(LastUpdate, "");
}

TEST_F(WriteAll, OneBuildOfEachFamily_RestoresAllThatCanBeWritten) {
    std::string families;
    for (const Build& build : Builds()) {
        if (families.find(build.Family) != families.npos) continue;
        families += build.Family;
        SCOPED_TRACE(build.Key);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ComRetries = 0;
        ReadAllOf(std::string(build.Key));
        ComTimeOutTicks = build.Family == 'O' ? 40 : kDefaultComTimeOutTicks;
        ScrambleDevice();
        cmdWriteAll_Click();
        ExpectAllSent();
        if (HasFailure()) return;
    }
    EXPECT_EQ(families.size(), 16u);
}

TEST_F(WriteAll, BeforeAReadAll_IsRefused) {
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    cmdWriteAll_Click();
    EXPECT_EQ(device->Received(), Prelude());
    EXPECT_FALSE(cmdWriteAll.Enabled);
}

TEST_F(WriteAll, ShortBlock_IsPassedOverWithoutAWord) {
    ReadAllOf(kPlain);
    ReadData[0x8E].pop_back();
    BlockChanged[0x8E] = true;
    cmdWriteAll_Click();
    for (const std::string& frame : Writes()) EXPECT_NE(frame.substr(0, 2), "8E");
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8E});
}

TEST_F(WriteAll, MapThatIsNotShown_IsNotSent) {
    ReadAllOf(kPlain);
    SSTab1.TabVisible[1] = false;
    cmdWriteAll_Click();
    for (const std::string& frame : Writes()) {
        EXPECT_TRUE(frame.substr(0, 2) < "81" || frame.substr(0, 2) > "84") << frame;
    }
}

TEST_F(WriteAll, ButtonAndPointer_WhileItRuns) {
    ReadAllOf(kPlain);
    int writes = 0;
    AfterSend = [&] {
        if (BusyPointers().back() == '0') return;
        ++writes;
        EXPECT_FALSE(cmdWriteAll.Enabled);
    };
    cmdWriteAll_Click();
    EXPECT_EQ(writes, static_cast<int>((MapPackets() + SettingPackets()).size()));
    EXPECT_TRUE(cmdWriteAll.Enabled);
}

// --- Faults -------------------------------------------------------------------------------------------

TEST_F(WriteAll, SettingThatFails_BlocksBeforeItAreOnThePowerFc) {
    for (const FaultCase& fault : kFaults) {
        SCOPED_TRACE(fault.Name);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(kPlain);
        Impatient();
        ScrambleDevice();
        BumpCell(0, 1, 1);
        for (const int block : {0x8D, 0x90, 0xAC}) Bump(block);
        const std::string later = device->BlockString(0xAC);
        fault.Add(*device, 0x90, powerfc::kForever);
        ExpectBox(kNotResponding, Box::Exclamation);
        ExpectBox("Write All Error 90", Box::Critical);
        cmdWriteAll_Click();
        EXPECT_EQ(device->Received(),
                  AfterPrelude(MapPackets() + SettingPackets(0, 0x90) + Frames{BlockPacket(0x90)}));
        EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x90, 0xAC}));
        EXPECT_EQ(Digits(device->BlockString(0x8F)), Digits(ReadData[0x8F]));
        EXPECT_EQ(Digits(device->BlockString(0xAC)), Digits(later));
        EXPECT_TRUE(cmdWriteAll.Enabled);
        EXPECT_TRUE(cmdUpdate.Enabled);
        EXPECT_EQ(BusyPointers().back(), '0');
        WriteAllAgain();
        if (HasFailure()) return;
    }
}

TEST_F(WriteAll, AnswerLostOnce_IsSentAgain) {
    ReadAllOf(kPlain);
    Impatient();
    ScrambleDevice();
    device->Silence(0x83, 1);
    device->BadChecksum(0x90, 1);
    cmdWriteAll_Click();
    EXPECT_EQ(Writes().size(), MapPackets().size() + SettingPackets().size() - 4 + 2);  // four bare reads
    ExpectAllSent();
}

TEST_F(WriteAll, BlockCodeInTheMessage_HasNoLeadingZero) {
    ReadAllOf(kPlain);
    Impatient();
    ASSERT_TRUE(RegisterBlock("&H05", 3, true, true));
    ReadData[5] = "abc";
    BlockInForce[5] = true;
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Write All Error 5", Box::Critical);
    cmdWriteAll_Click();
}

TEST_F(WriteAll, CellThatFails_EndsAllOfIt) {
    ReadAllOf(kPlain);
    Impatient();
    ScrambleDevice();
    BumpCell(0, 1, 1);
    BumpCell(0, 3, 7);
    BumpCell(1, 1, 1);
    Bump(0x8D);
    device->RefuseMapBlocks(true);
    int turns = 0;
    OnYield([&] {
        if (++turns == 3) device->Silence(0x85, powerfc::kForever);
    });
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Error Writing Map", Box::Critical);
    cmdWriteAll_Click();
    EXPECT_EQ(device->Received(),
              AfterPrelude(Frames{BlockPacket(0x86), BlockPacket(0x86)} + CellPackets(0, 2) +
                           Frames{CellPacket(0, 3, 1), CellPacket(0, 3, 1)}));
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_EQ(MarkedCells(1), 1);
    EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x81, 0x86, 0x87, 0x8D}));
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_FALSE(Progress2.Visible);
    EXPECT_EQ(BusyPointers().back(), '0');
    WriteAllAgain();
}

TEST_F(WriteAll, MapBlocksRefused_EachMapGoesCellByCellBehindItsWindow) {
    ReadAllOf(kBaseMap);
    Impatient();
    ScrambleDevice();
    device->RefuseMapBlocks(true);
    Frames seen;
    OnYield([&] {
        if (Progress2.Visible) seen.push_back(Progress2.Status + NumberText(Progress2.Bar));
    });
    cmdWriteAll_Click();
    Frames expected, maps;
    for (int map = 0; map < 3; ++map) {
        for (int row = 1; row <= 20; ++row)
            expected.push_back("Writing " + SSTab1.TabCaption[map] + NumberText(row * 5));
        maps = maps + Frames{BlockPacket(MapFirstBlock[map]), BlockPacket(MapFirstBlock[map])} +
               CellPackets(map);
    }
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(YieldCount(), 3 * 21);
    EXPECT_EQ(device->Received(), AfterPrelude(maps + SettingPackets()));
    ExpectAllSent();
}

TEST_F(WriteAll, OldestFamily_CellByCellAtOnceAndSettingsByTheirCommands) {
    ReadAllOf(kOldest);
    ComTimeOutTicks = 40;
    ScrambleDevice();
    cmdWriteAll_Click();
    const Frames maps = Prelude() + CellPackets(0) + CellPackets(1);
    const Frames received = device->Received();
    ASSERT_GT(received.size(), maps.size());
    EXPECT_EQ(Frames(received.begin(), received.begin() + std::ssize(maps)), maps);
    const std::string& select = ReadData[0x5A];
    EXPECT_EQ(
        std::count(received.begin(), received.end(), Packet(0x33, select.substr(0, 1) + select.substr(91))),
        1);
    ExpectAllSent();
}

TEST_F(WriteAll, LineDiesInTheMiddle_AndComesBack) {
    struct Row {
        const char* Build;
        int Code;  // the request whose answer breaks off
        bool Refuse;
        const char* Error;
    };
    // clang-format off
    const Row rows[] = {
        {kPlain,   0x90, false, "Write All Error 90"},
        {kPlain,   0x85, true,  "Error Writing Map"},
        {kBaseMap, 0xAF, true,  "Error Writing Map"},
        {kOldest,  111,  false, "Error Writing Map"},
        {kPlain,   0x83, false, "Error Writing Map"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.Build << " " << row.Code);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(row.Build);
        Impatient();
        ScrambleDevice();
        for (int map = 0; map < kMapTabs; ++map) {
            if (SSTab1.TabVisible[map]) BumpCell(map, 20, 20);
        }
        device->RefuseMapBlocks(row.Refuse);
        device->VanishAt(row.Code, 2);
        ExpectBox(kNotResponding, Box::Exclamation);
        ExpectBox(row.Error, Box::Critical);
        cmdWriteAll_Click();
        EXPECT_FALSE(MSComm1.PortOpen());
        EXPECT_TRUE(cmdWriteAll.Enabled);
        EXPECT_FALSE(Progress2.Visible);
        EXPECT_EQ(BusyPointers().back(), '0');
        device->Return();
        WriteAllAgain();
        if (HasFailure()) return;
    }
}

// --- Cancel, edits and close while it runs ------------------------------------------------------------

TEST_F(WriteAll, CancelInAMap_EndsThatMapAlone) {
    ReadAllOf(kPlain);
    Impatient();
    ScrambleDevice();
    BumpCell(0, 1, 1);
    BumpCell(0, 9, 9);
    device->RefuseMapBlocks(true);
    OnYield([] {
        if (Progress2.Visible && Progress2.Bar == 25 &&
            Progress2.Status == "Writing " + SSTab1.TabCaption[0]) {
            Progress2.Cancelled = true;
        }
    });
    cmdWriteAll_Click();
    EXPECT_EQ(device->Received(),
              AfterPrelude(Frames{BlockPacket(0x86), BlockPacket(0x86)} + CellPackets(0, 4) +
                           Frames{CellPacket(0, 5, 1), BlockPacket(0x81), BlockPacket(0x81)} +
                           CellPackets(1) + SettingPackets()));
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0x86, 0x87}));
    EXPECT_TRUE(cmdUpdate.Enabled);  // the map can be gone on with
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_FALSE(Progress2.Visible);
}

TEST_F(WriteAll, EditsWhileItRuns_StayMarkedUntilTheyAreSent) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    ScrambleDevice();
    int turns = 0;
    OnYield([&turns] {
        ++turns;
        if (turns == 10) {
            BumpCell(0, 2, 2);    // sent already
            BumpCell(0, 15, 15);  // goes out with the rest
            Bump(0x5B);           // goes out with the rest
        }
        if (turns == 25) BumpCell(0, 20, 1);  // its map is done
    });
    cmdWriteAll_Click();
    EXPECT_EQ(MarkedCells(0), 2);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x56});
    EXPECT_TRUE(cmdUpdate.Enabled);
    OnYield([] {});
    cmdUpdate_Click();
    ExpectAllSent();
}

TEST_F(WriteAll, MainWindowCloses_EndsAtOnce) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    ScrambleDevice();
    Bump(0x5B);
    OnYield([] { Progress2.Cancelled = ProgressScan.Cancelled = CloseAsked = true; });
    cmdWriteAll_Click();
    EXPECT_EQ(device->Received(), AfterPrelude(OldestCellPackets(0, 1, 1)));
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x5B});
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_EQ(BusyPointers().back(), '0');
    EXPECT_FALSE(LongOperationRuns());
}

TEST_F(WriteAll, AskedTwice_BeginsOnce) {
    ReadAllOf(kOldest);
    ComRetries = 0;
    PopupFrame = 500;
    OnYield([] {
        EXPECT_FALSE(cmdWriteAll.Enabled);
        cmdWriteAll.Enabled = true;
        cmdWriteAll_Click();
        cmdWriteAll.Enabled = false;
        cmdUpdate_Click();
        cmdReadAll_Click();
        cmdReadMap_Click(1);
        cmdWriteMap_Click(1);
        mnuRead_Click();
        mnuWrite_Click();
        mnuInitAllData_Click();
    });
    cmdWriteAll_Click();
    const Frames received = device->Received();
    EXPECT_EQ(std::count(received.begin(), received.end(), Packet(0x6B)), 1);
    ExpectAllSent();
}

// --- Another Power-FC ---------------------------------------------------------------------------------

TEST_F(WriteAll, AnotherPowerFc_IsRefused) {
    for (const std::string other : {kBaseMap, kOldest, kTwoBaseMaps}) {
        SCOPED_TRACE(other);
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(kPlain);
        Bump(0x8D);
        Connect(other);
        ComTimeOutTicks = other == kOldest ? 30 : kDefaultComTimeOutTicks;
        const Frames before = Contents();
        ExpectBox(kFirstReadAllWrite, Box::Critical);
        cmdWriteAll_Click();
        EXPECT_EQ(device->Received(), Prelude());
        EXPECT_EQ(Contents(), before);
        EXPECT_FALSE(cmdWriteAll.Enabled);
        EXPECT_FALSE(cmdUpdate.Enabled);
        EXPECT_EQ(BlockChanged[0x8D], true);
    }
}

TEST_F(WriteAll, AnotherPowerFcMadeTheOneInForceByAReadMap_IsRefused) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    cmdReadMap_Click(0);
    device->ClearJournal();
    BumpCell(0, 1, 1);
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    cmdWriteAll_Click();
    EXPECT_EQ(device->Received(), Prelude());
}

TEST_F(WriteAll, MapThatIsNotOfTheVersionInForce_IsRefused) {
    ReadAllOf(kPlain);
    BlockInForce[0x83] = false;
    ExpectBox(kFirstReadAllWrite, Box::Critical);
    cmdWriteAll_Click();
    EXPECT_EQ(device->Received(), Prelude());
}

TEST_F(WriteAll, SettingThatIsNotOfTheVersionInForce_IsPassedOver) {
    ReadAllOf(kPlain);
    BlockInForce[0x8D] = false;
    cmdWriteAll_Click();
    for (const std::string& frame : Writes()) EXPECT_NE(frame.substr(0, 2), "8D");
    EXPECT_EQ(Writes().size() + 1, MapPackets().size() + SettingPackets().size() - 4);  // bare reads
}

TEST_F(WriteAll, AnotherPowerFcReadWhole_GetsItsOwnImage) {
    ReadAllOf(kPlain);
    ReadAllOf(kBaseMap);
    cmdWriteAll_Click();
    EXPECT_EQ(device->Received(), AfterPrelude(MapPackets() + SettingPackets()));
    ExpectAllSent();
}

TEST_F(WriteAll, NobodyAnswersTheVersionQuery_NothingIsSent) {
    ReadAllOf(kPlain);
    Impatient();
    device->DeadLine(true);
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdWriteAll_Click();
    EXPECT_EQ(Writes(), Frames());
    EXPECT_TRUE(cmdWriteAll.Enabled);
}

}  // namespace
}  // namespace zandrel
