// Random edits, updates, refusals, losses and cancels: what is not on the Power-FC is marked, what is not
// marked is on it, and nothing is sent that has not changed. A failure names its seed; ZANDREL_SEED runs
// another one.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>
#include <set>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transferfixture.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/mapediting.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

constexpr int kRounds = 1000;
constexpr int kTimeOut = 20;

const std::set<std::string> kKnownMessages = {
    kNotResponding,
    "Update error",
    "Error Writing Map",
    "Write failed.",
    "Airflow/PIM Write Error",
    "Function Select Write Error",
    "No COM port has been selected.\nWould you like to AutoDetect the COM port now?",
};

class WriteProperty : public TransferFixture, public testing::WithParamInterface<const char*> {
  protected:
    // --- Chance -----------------------------------------------------------------------------------

    int Below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random_); }
    bool OneIn(int count) { return Below(count) == 0; }

    template <class T>
    T Any(const std::vector<T>& from) {
        return from[static_cast<std::size_t>(Below(static_cast<int>(from.size())))];
    }

    bool Oldest() const { return MapFirstBlock[0] == 0x56; }

    // --- Edits ------------------------------------------------------------------------------------

    // Bytes that the Power-FC takes: another one would be told of at every write.
    bool Takes(int block, int first, int count) const {
        const int last = first + count - 1;
        if (last > std::ssize(ReadData[block])) return false;
        if (block == SensorSelectBlock) return last == 1 || first >= 92;
        if (block == FunctionSelectBlock) return last <= (BlockLength[block] == 136 ? 8 : 5);
        if (block == 0x5C && Oldest()) return last <= 5 || first >= 10;
        return true;
    }

    void EditByte() {
        const int block = Any(settings_);
        const int offset = 1 + Below(static_cast<int>(ReadData[block].size()));
        const std::string head =
            "&H" + Hex2(static_cast<std::uint32_t>(block)) + "," + std::to_string(offset) + ",";
        const int kind = Below(6);
        if (!Takes(block, offset, kind == 1 ? 2 : 1)) return;
        // A signed byte that is written marks its block, whether it is another one or not.
        if (kind == 2) touched_[block] = true;
        switch (kind) {
            case 0:
                SetNumber(head + "1,1,0,0", std::to_string(Below(300) - 20));
                break;
            case 1:
                SetNumber(head + "2,0.5,3,0.0", std::to_string(Below(40000)));
                break;
            case 2:
                SetNumber(head + "129,1,0,0", std::to_string(Below(300) - 150));
                break;
            case 3:
                SetBit(head + std::to_string(1 << Below(8)), Below(2));
                break;
            case 4:
                SetFlag(head + std::to_string(Below(2)), Below(2));
                break;
            default:
                SetOption(head + std::to_string(Below(8)) + ",7");
                break;
        }
    }

    void EditCells() {
        const int map = Any(maps_);
        GridSelection& selection = Grid[map].Selection;
        selection = {1 + Below(20), 1 + Below(20), 1 + Below(20), 1 + Below(20)};
        if (!OneIn(4)) selection.RowSel = selection.Row, selection.ColSel = selection.Col;
        if (OneIn(2)) {
            AddToSelection(map, 1 + Below(9));
        } else {
            SubFromSelection(map, 1 + Below(9));
        }
    }

    void Edit() {
        const auto before = ReadData;
        std::vector<std::vector<std::int32_t>> cells;
        for (const int map : maps_) cells.push_back(CellsOf(map));
        const int kind = Below(10);
        int map = 0;
        if (kind < 4) {
            EditByte();
        } else if (kind < 7) {
            SetCell(Any(maps_), 1 + Below(20), 1 + Below(20), Below(256));
        } else if (kind < 8) {
            EditCells();
        } else if (kind < 9) {
            Undo(map);
        } else {
            Redo(map);
        }
        for (int b = 0; b < 256; ++b) {
            if (ReadData[b] == before[b]) continue;
            touched_[b] = true;
            EXPECT_TRUE(BlockChanged[b]) << "block " << Hex2(static_cast<std::uint32_t>(b)) << " was edited";
            EXPECT_TRUE(cmdUpdate.Enabled);
            EXPECT_TRUE(optAutoUpdate.Value == 0 || TimerRuns(Timer::Update));
        }
        for (std::size_t m = 0; m < maps_.size(); ++m) {
            const auto now = CellsOf(maps_[m]);
            for (std::size_t i = 0; i < now.size(); ++i) {
                if (now[i] != cells[m][i]) touchedCells_[maps_[m]].insert(static_cast<int>(i));
            }
        }
    }

    // Raw cells of a map, column by column as they are numbered on the line.
    static std::vector<std::int32_t> CellsOf(int map) {
        std::vector<std::int32_t> cells;
        for (int column = 1; column <= kMapSide; ++column) {
            for (int row = 1; row <= kMapSide; ++row) cells.push_back(GetCell(map, row, column, false));
        }
        return cells;
    }

    // --- Faults -----------------------------------------------------------------------------------

    // A command that this build's writes use.
    int AnyCommand() {
        if (Oldest() && OneIn(3)) return Any(std::vector<int>{49, 50, 111});
        std::vector<int> codes;
        for (const int b : MarkedBlocks()) codes.push_back(b);
        for (const int map : maps_) codes.push_back(MapFirstBlock[map] - 1);
        codes.push_back(Any(std::vector<int>{0x33, 0x34, 0x35, 0x39, 0x4B}));
        codes.push_back(Any(settings_));
        return Any(codes);
    }

    void AddFault() {
        const int code = AnyCommand();
        const int count = OneIn(3) ? powerfc::kForever : 1 + Below(2);
        switch (Below(6)) {
            case 0:
                device->Silence(code, count);
                break;
            case 1:
                device->BadChecksum(code, count);
                break;
            case 2:
                device->WrongCode(code, count);
                break;
            case 3:
                device->InterfaceError(code, 1 + Below(3), count);
                break;
            case 4:
                device->ShortFrame(code, count);
                break;
            default:
                device->AcknowledgeThenSilence(code, count);
                break;
        }
    }

    // The line is sound again. A build without 0xF3 answers it at once with nothing, so that no round waits
    // for its silence.
    void Mend() {
        device->ClearFaults();
        device->RefuseMapBlocks(refuses_);
        device->ObeySelects(Any(std::vector<powerfc::SelectWrites>{powerfc::SelectWrites::OwnCode,
                                                                   powerfc::SelectWrites::OwnCode,
                                                                   powerfc::SelectWrites::SecondCode}));
        if (!device->HasBlock(0xF3)) device->ReplaceReply(0xF3, powerfc::Frame(0xF3), powerfc::kForever);
        if (!MSComm1.PortOpen()) {
            device->Return();
            mnuCom_Click(0);
            ASSERT_TRUE(MSComm1.PortOpen());
        }
        CloseAsked = false;
    }

    // What the user does while a progress window stands.
    void PrepareTurns() {
        const int cancelAt = OneIn(3) ? 1 + Below(40) : -1;
        const int closeAt = OneIn(20) ? 1 + Below(40) : -1;
        const int editAt = OneIn(4) ? 1 + Below(40) : -1;
        turns_ = 0;
        OnYield([this, cancelAt, closeAt, editAt] {
            ++turns_;
            if (turns_ == cancelAt) Progress2.Cancelled = true;
            if (turns_ == closeAt) Progress2.Cancelled = CloseAsked = true;
            if (turns_ == editAt) Edit();
            if (OneIn(30)) cmdUpdate_Click();  // it runs already
        });
    }

    // --- What has to hold -------------------------------------------------------------------------

    // All that the Power-FC holds otherwise than the image is marked.
    void ExpectDifferencesMarked() {
        for (const int b : settings_) {
            if (device->BlockString(b) == ReadData[b]) continue;
            EXPECT_TRUE(BlockChanged[b])
                << "block " << Hex2(static_cast<std::uint32_t>(b)) << " is not on the Power-FC";
        }
        for (const int map : maps_) {
            for (int k = 0; k < 4 * MapCellSize[map]; ++k) {
                const int b = MapFirstBlock[map] + k;
                const std::string present = device->BlockString(b);
                if (present == ReadData[b]) continue;
                EXPECT_TRUE(BlockChanged[b])
                    << "map block " << Hex2(static_cast<std::uint32_t>(b)) << " is not on the Power-FC";
                for (std::size_t i = 0; i < 100; ++i) {
                    if (present[i] == ReadData[b][i]) continue;
                    const int cell = (k * 100 + static_cast<int>(i)) / MapCellSize[map];
                    EXPECT_TRUE(MapCellChanged[map][1 + cell % 20][1 + cell / 20])
                        << "map " << map << " cell " << cell << " is not on the Power-FC";
                }
            }
        }
    }

    // The block that a write command of the oldest family stands for.
    static int OldestBlock(int command) {
        constexpr std::array<std::array<int, 2>, 8> kCommands = {{{0x33, 0x5A},
                                                                  {0x34, 0x5B},
                                                                  {0x35, 0x5C},
                                                                  {0x36, 0x5D},
                                                                  {0x39, 0x5E},
                                                                  {0x3A, 0x5F},
                                                                  {0x3B, 0x60},
                                                                  {0x4B, 0x65}}};
        for (const auto& row : kCommands) {
            if (row[0] == command) return row[1];
        }
        return command;
    }

    // No block and no cell was sent that has not changed since all was last in step.
    void ExpectOnlyChangesSent() {
        for (const std::string& frame : Writes()) {
            ASSERT_NE(frame[0], '!') << frame;
            const std::string bytes = Bytes(frame);
            const int code = static_cast<std::uint8_t>(bytes[0]);
            const int number =
                static_cast<std::uint8_t>(bytes[2]) + 256 * static_cast<std::uint8_t>(bytes[3]);
            int map = -1;
            for (const int m : maps_) {
                const bool own = Oldest() ? code == (m == 0 ? 50 : 49) : code == MapFirstBlock[m] - 1;
                if (own && std::ssize(bytes) == 5 + MapCellSize[m]) map = m;
            }
            if (map >= 0) {
                EXPECT_EQ(touchedCells_[map].count(number), 1u) << frame << ": the cell has not changed";
                continue;
            }
            int block = code;
            if (Oldest()) block = OldestBlock(code);
            if (!Oldest() && code == 0x33 && !BlockWrite[0x33]) block = SensorSelectBlock;
            if (!Oldest() && code == 0x4B && !BlockWrite[0x4B]) block = FunctionSelectBlock;
            EXPECT_TRUE(touched_[block]) << frame << ": the block has not changed";
        }
    }

    void ExpectBegunAndEnded() const {
        EXPECT_FALSE(LongOperationRuns());
        EXPECT_FALSE(Progress2.Visible);
        EXPECT_TRUE(BusyPointers().empty() || BusyPointers().back() == '0');
        for (int map = 0; map < kMapTabs; ++map) EXPECT_TRUE(cmdWriteMap[map].Enabled);
    }

    void RunUpdate() {
        if (!cmdUpdate.Enabled) return;
        if (OneIn(2)) {
            for (int faults = Below(3); faults > 0; --faults) AddFault();
        }
        if (OneIn(40)) device->DeadLine(true);
        if (OneIn(25)) device->VanishAt(AnyCommand(), Below(3));
        PrepareTurns();
        device->ClearJournal();
        LastUpdate.clear();
        if (TimerRuns(Timer::Update)) {
            FireTimer(Timer::Update);
        } else {
            cmdUpdate_Click();
        }
        OnYield([] {});
        ExpectBegunAndEnded();
        ExpectOnlyChangesSent();
        Mend();
        Settle();
        ExpectDifferencesMarked();
        if (cmdUpdate.Enabled) {
            ++failed_;
            return;
        }
        ++succeeded_;
        EXPECT_EQ(MarkedBlocks(), std::vector<int>());
        for (const int map : maps_) EXPECT_EQ(MarkedCells(map), 0);
        EXPECT_EQ(LastUpdate, "14:03:22");
        ExpectDeviceEqualsImage();
        touched_ = {};
        touchedCells_ = {};
    }

    void RunWriteMap() {
        if (OneIn(2)) AddFault();
        PrepareTurns();
        cmdWriteMap_Click(Any(maps_));
        OnYield([] {});
        ExpectBegunAndEnded();
        Mend();
        Settle();
        ExpectDifferencesMarked();
    }

    void RunFrameWrite() {
        const int blocks[] = {Any(settings_), Any(settings_)};
        PopupFrame = 100;
        FraSettings[100].Tag = std::to_string(blocks[0]) + "," + std::to_string(blocks[1]);
        if (OneIn(2)) AddFault();
        mnuWrite_Click();
        // A block that was sent and not taken waits, changed or not.
        for (const int b : blocks) touched_[b] = touched_[b] || BlockChanged[b];
        ExpectBegunAndEnded();
        Mend();
        Settle();
        ExpectDifferencesMarked();
    }

    // What was still on its way to the Power-FC has arrived.
    static void Settle() {
        ByteString query = "\x01";
        int timeOut = 2000, retries = 2;
        ASSERT_EQ(ReadPacket(query, false, timeOut, retries), LinkResult::Success);
    }

    void Prepare() {
        const char* given = std::getenv("ZANDREL_SEED");
        seed_ = given ? static_cast<unsigned>(std::atoi(given)) : 20030307u;
        random_.seed(seed_);
        ReadAllOf(GetParam());
        for (int b = 0; b < 256; ++b) {
            if (BlockWrite[b]) settings_.push_back(b);
        }
        for (int map = 0; map < kMapTabs; ++map) {
            if (SSTab1.TabVisible[map]) maps_.push_back(map);
        }
        ComTimeOutTicks = kTimeOut;
        ComRetries = 1;
        Mend();
        Desktop.MessageBox = [](const std::string& text, Box box) {
            EXPECT_EQ(kKnownMessages.count(text), 1u) << text;
            return box == Box::YesNoInformation ? Answer::No : Answer::Ok;
        };
    }

    std::mt19937 random_;
    unsigned seed_ = 0;
    std::vector<int> settings_;  // blocks that can be written, but no map's
    std::vector<int> maps_;      // in view
    bool refuses_ = false;
    int turns_ = 0;
    int succeeded_ = 0, failed_ = 0;
    std::array<bool, 256> touched_{};                // edited since all was in step
    std::array<std::set<int>, kMaps> touchedCells_;  // their numbers on the line
};

TEST_P(WriteProperty, EditsUpdatesAndLosses_MarksAndPowerFcStayTrueToEachOther) {
    Prepare();
    for (int round = 0; round < kRounds && !HasFatalFailure(); ++round) {
        SCOPED_TRACE(testing::Message() << "seed " << seed_ << ", round " << round);
        const int action = Below(100);
        if (action < 85) {
            Edit();
        } else if (action < 93) {
            RunUpdate();
        } else if (action < 95) {
            RunWriteMap();
        } else if (action < 97) {
            RunFrameWrite();
        } else if (action < 99) {
            optAutoUpdate.Value = 1 - optAutoUpdate.Value;
            optAutoUpdate_Click();
        } else {
            refuses_ = !refuses_ && OneIn(2);
            device->RefuseMapBlocks(refuses_);
        }
        if (HasFailure()) break;
    }
    // The chances are such that a run meets both ends often.
    EXPECT_GT(succeeded_, 10);
    EXPECT_GT(failed_, 1);
    RecordProperty("succeeded", succeeded_);
    RecordProperty("failed", failed_);
}

INSTANTIATE_TEST_SUITE_P(Families, WriteProperty,
                         testing::Values(kBaseMap, kTwoBaseMaps, kOldest, kGearbox, kGearbox2),
                         [](const auto& info) {
                             std::string name;
                             for (const char c : std::string(info.param))
                                 name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             return name;
                         });

}  // namespace
}  // namespace zandrel
