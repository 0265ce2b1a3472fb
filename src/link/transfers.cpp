#include "link/transfers.h"

#include <algorithm>
#include <vector>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/packets.h"
#include "link/progress.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/desktop.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

namespace zandrel {

Control cmdReadAll, cmdWriteAll, cmdUpdate, optAutoUpdate;
MenuItem mnuRead, mnuWrite, mnuInitAllData;
std::int16_t PopupFrame = 0;
std::string LastUpdate;

namespace {

constexpr int kUpdateDelayMs = 500;
constexpr int kCellsWithoutWindow = 20;
constexpr char kOtherVersion[] = "You can't Update to a different Power-FC version.";

// Maps that begin at these blocks are never written as blocks.
constexpr std::uint8_t kFamilyM = 0x52;
constexpr std::uint8_t kFamilyO = 0x56;

constexpr std::uint8_t kCellWriteM = 49;
constexpr std::uint8_t kCellWriteO = 50;
constexpr std::uint8_t kCellOutcome = 111;

// What a build of family O is written by; any other block goes by its own code.
struct WriteCommand {
    std::uint8_t Block, Command;
};
constexpr WriteCommand kFamilyOCommands[] = {{0x5A, 0x33}, {0x5B, 0x34}, {0x5C, 0x35}, {0x5D, 0x36},
                                             {0x5E, 0x39}, {0x5F, 0x3A}, {0x60, 0x3B}, {0x65, 0x4B}};

constexpr std::uint8_t kSensorSelectWrite = 0x33;
constexpr std::uint8_t kFunctionSelectWrite = 0x4B;
constexpr int kSensorSelectLength = 107;

std::size_t At(int index) {
    return static_cast<std::size_t>(index);
}

ByteString Byte(int value) {
    return ByteString(1, static_cast<char>(value & 255));
}

// Bytes of `rest` from byte `first`, counted from 1, on.
ByteString From(const ByteString& rest, std::size_t first) {
    return rest.size() < first ? ByteString() : rest.substr(first - 1);
}

bool Sent(ByteString packet, bool show) {
    return ReadPacket(packet, show) == LinkResult::Success;
}

bool HasFullLength(int block) {
    return ReadData[At(block)].size() >= BlockLength[At(block)];
}

bool TakesPart(int block) {
    return BlockWrite[At(block)] && HasFullLength(block);
}

// Visible maps only: a map that this build lacks stands in the image, but not in the Power-FC.
bool MapIsShown(int map) {
    return SSTab1.TabVisible[At(map)];
}

int BlocksOf(int map) {
    return MapCellSize[At(map)] * 4;
}

bool TakesWholeBlocks(int map) {
    return MapFirstBlock[At(map)] != kFamilyO && MapFirstBlock[At(map)] != kFamilyM;
}

bool& CellChanged(int map, int row, int column) {
    return MapCellChanged[At(map)][At(row)][At(column)];
}

template <class Visit>
void ForEachCell(Visit visit) {
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) visit(row, column);
    }
}

int CountChangedCells(int map) {
    int count = 0;
    ForEachCell([&](int row, int column) { count += CellChanged(map, row, column) ? 1 : 0; });
    return count;
}

// A cell that is marked has a block that is marked, so that an Update goes on with it.
void MarkBlocksOfCells(int map) {
    ForEachCell([map](int row, int column) {
        if (CellChanged(map, row, column)) BlockChanged[At(PlaceOfCell(map, row, column).Block)] = true;
    });
}

// All cells have been sent. What was edited while the user could is marked still.
void MarkMapSent(int map) {
    for (int k = 0; k < BlocksOf(map); ++k) BlockChanged[At(MapFirstBlock[At(map)] + k)] = false;
    MarkBlocksOfCells(map);
}

// Sends one cell. The block before a map is that map's cell-write command; the families without one have a
// command of their own and are asked for the outcome.
bool SendCell(int map, int row, int column) {
    const int first = MapFirstBlock[At(map)];
    const int n = row + kMapSide * column - (kMapSide + 1);
    const int v = GetCell(map, row, column, false);
    const ByteString place = Byte(n % 256) + Byte(n / 256);
    if (!TakesWholeBlocks(map)) {
        const int command = first == kFamilyM ? kCellWriteM : kCellWriteO;
        if (WritePacket(Byte(command) + place + Byte(v)) != 0) {
            ShowNotResponding(true);
            return false;
        }
        return Sent(Byte(kCellOutcome), true);
    }
    ByteString packet = Byte(first - 1) + place + Byte(v);
    if (MapCellSize[At(map)] == 2) packet += Byte(v / 256);
    return Sent(packet, true);
}

// A select block reads back as it was sent when it was taken; the older builds take it by a second command.
// False: it did not arrive. A first write that the link has failed is no failure of the block.
bool WriteSelect(const ByteString& packet, const ByteString& rest, std::uint8_t second, int length,
                 const char* error) {
    const ByteString own = packet.substr(0, 1);
    const auto readsBack = [&] {
        ByteString frame = own;
        if (ReadPacket(frame, true) != LinkResult::Success) return false;
        return frame.substr(0, 1) + frame.substr(2, At(length)) == packet.substr(0, At(length) + 1);
    };
    if (!Sent(own + rest, true)) return false;
    if (readsBack()) return true;
    if (Sent(Byte(second) + rest, true) && readsBack()) return true;
    MessageBox(error, Box::Critical);
    return false;
}

// Writes a settings block. False: the link failed. `arrived` says whether the Power-FC has taken it.
bool WriteBlock(int block, bool& arrived) {
    bool failed = false;
    const ByteString data = ReadData[At(block)].substr(0, BlockLength[At(block)]);
    const bool sent = Sent(PrepareBlockWrite(Byte(block) + data, failed), true);
    arrived = sent && !failed;
    // What was not taken waits, even if it was sent only because all was.
    if (sent) BlockChanged[At(block)] = !arrived;
    return sent;
}

// The image holds blocks of more than one Power-FC after another was connected and only a part of it read.
// Nothing of the other one is written.
bool AllInForce(int first, int count) {
    return std::all_of(BlockInForce.begin() + first, BlockInForce.begin() + first + count,
                       [](bool inForce) { return inForce; });
}

bool CellIsInForce(int map, int row, int column) {
    return BlockInForce[At(PlaceOfCell(map, row, column).Block)];
}

bool ShownMapsAreInForce() {
    for (int map = 0; map < kMapTabs; ++map) {
        if (MapIsShown(map) && !AllInForce(MapFirstBlock[At(map)], BlocksOf(map))) return false;
    }
    return true;
}

// Looks at each thing that an Update would send: `wanted` or not.
template <class Wanted>
bool AnyChange(Wanted wanted) {
    bool any = false;
    for (int map = 0; map < kMapTabs; ++map) {
        if (!MapIsShown(map)) continue;
        for (int k = 0; k < BlocksOf(map); ++k) {
            const int block = MapFirstBlock[At(map)] + k;
            any = any || (BlockChanged[At(block)] && wanted(block));
        }
        ForEachCell([&](int row, int column) {
            any = any || (CellChanged(map, row, column) && wanted(PlaceOfCell(map, row, column).Block));
        });
    }
    for (int b = 0; b < 256; ++b) any = any || (BlockChanged[At(b)] && TakesPart(b) && wanted(b));
    return any;
}

bool AnythingToSend() {
    return AnyChange([](int) { return true; });
}

bool ChangesAreInForce() {
    return !AnyChange([](int block) { return !BlockInForce[At(block)]; });
}

void RefuseWrite() {
    MessageBox(std::string("First Read All, make changes, then WriteAll.\n") + kOtherVersion, Box::Critical);
}

void RefuseUpdate() {
    MessageBox(std::string("First Read All, make changes, then Update.\n") + kOtherVersion, Box::Critical);
    DebugLog("Update different version error");
}

// Sends the changed blocks of a map. False: the Power-FC does not take them, or not so.
bool UpdateMapBlocks(int map) {
    if (!TakesWholeBlocks(map)) return false;
    for (int k = 0; k < BlocksOf(map); ++k) {
        const int block = MapFirstBlock[At(map)] + k;
        if (!BlockChanged[At(block)]) continue;
        if (!Sent(Byte(block) + ReadData[At(block)], false)) {
            DebugLog("Update: Map write failed - try cell by cell");
            return false;
        }
        BlockChanged[At(block)] = false;
    }
    MapCellChanged[At(map)] = {};
    return true;
}

// Sends the changed cells of a map one by one. False: the link failed, or the user cancelled.
bool UpdateMapCells(int map) {
    const int count = CountChangedCells(map);
    if (count > kCellsWithoutWindow) ShowProgress(Progress2, "Updating " + SSTab1.TabCaption[At(map)]);
    int sent = 0;
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            if (!CellChanged(map, row, column)) continue;
            if (!CellIsInForce(map, row, column)) return false;
            if (!SendCell(map, row, column)) return false;
            CellChanged(map, row, column) = false;
            if (!Progress2.Visible) continue;
            // Cells that are edited meanwhile are sent too.
            Progress2.Bar = std::min(100.0, 100.0 * ++sent / count);
            Yield();  // the user may have cancelled, edited or closed
            if (Progress2.Cancelled) return false;
        }
    }
    MarkMapSent(map);
    return true;
}

bool UpdateMaps() {
    for (int map = 0; map < kMapTabs; ++map) {
        if (!MapIsShown(map)) continue;
        if (UpdateMapBlocks(map)) {
            MarkMapSent(map);
        } else if (!UpdateMapCells(map)) {
            MarkBlocksOfCells(map);
            return false;
        }
    }
    return true;
}

// False: the link failed.
bool UpdateBlocks() {
    for (int b = 0; b < 256; ++b) {
        if (!BlockChanged[At(b)] || !TakesPart(b)) continue;
        bool arrived = false;
        if (WriteBlock(b, arrived)) continue;
        MessageBox("Update error", Box::Critical);
        return false;
    }
    return true;
}

// All maps, then all settings. False: one failed, the user was told.
bool WriteEverything() {
    for (int map = 0; map < kMapTabs; ++map) {
        if (!MapIsShown(map)) continue;
        bool failed = false;
        WriteMap(map, failed);
        if (failed || CloseAsked) return false;
    }
    for (int b = 0; b < 256; ++b) {
        if (!TakesPart(b) || !BlockInForce[At(b)]) continue;
        bool arrived = false;
        if (WriteBlock(b, arrived)) continue;
        MessageBox("Write All Error " + Hex(static_cast<std::uint32_t>(b)), Box::Critical);
        return false;
    }
    return true;
}

std::vector<int> BlocksOfFrame(int frame) {
    std::vector<int> blocks;
    for (const std::string& entry : Split(FraSettings[frame].Tag, ',')) {
        const auto block = StrictWhole(entry);
        if (block && *block >= 0 && *block <= 255) blocks.push_back(*block);
    }
    return blocks;
}

// Two blocks prove writable only by being read.
void EnableIfRead(int frame, std::size_t block) {
    if (!FraSettings[frame].Visible || ReadData[block].size() < BlockLength[block]) return;
    FraSettings[frame].Enabled = true;
    BlockWrite[block] = true;
}

// Reads every block of the build. False: one failed, the user was told, the image is as it was before.
bool ReadAllBlocks(const std::array<ByteString, 256>& before) {
    const auto inForce = BlockInForce;
    for (int b = 0; b < 256; ++b) {
        const auto at = static_cast<std::size_t>(b);
        if (!BlockRead[at] || ReadBlock(b, BlockLength[at], true)) continue;
        MessageBox("Read All Error " + Hex(static_cast<std::uint32_t>(b)), Box::Critical);
        ReadData = before;
        BlockInForce = inForce;
        return false;
    }
    return true;
}

}  // namespace

void LoadTransfersDesign() {
    cmdReadAll = {.Caption = "Read All"};
    cmdWriteAll = {.Caption = "Write All", .Enabled = false};
    cmdUpdate = {.Caption = "Update", .Enabled = false};
    optAutoUpdate = {.Caption = "Auto Update"};
    mnuRead = {.Caption = "Read"};
    mnuWrite = {.Caption = "Write"};
    mnuInitAllData = {.Caption = "&Initialise All Data"};
    PopupFrame = 0;
    LastUpdate.clear();
    AfterEdit = UpdateEnable;
}

void cmdReadAll_Click() {
    if (LongOperationRuns()) return;
    const bool unsaved = DataChanged;
    Answer answer{};
    CheckUnsavedData(answer);
    if (answer == Answer::Cancel) return;
    if (unsaved && answer != Answer::Yes) BeforeUnsavedIsReplaced();
    if (mnuCompare.Checked) EndComparison();
    const LongOperation running;
    cmdReadAll.Enabled = false;
    BusyPointer(true);
    const auto before = ReadData;
    if (ValidVersion(true, true) && ReadAllBlocks(before)) {
        EnableIfRead(1470, 0x99);
        EnableIfRead(460, 0x97);
        BlockChanged.fill(false);
        MapCellChanged = {};
        ClearHistory();
        cmdUpdate.Enabled = false;
        cmdWriteAll.Enabled = true;
        SetCaption("Unsaved Data");
        DataChanged = true;
        AfterReadAll();
    }
    DisplayAllData();
    BusyPointer(false);
    cmdReadAll.Enabled = true;
}

bool ReadMap(int map) {
    // What was edited before is no way back from what is read now.
    ClearHistory();
    for (int k = 0; k < BlocksOf(map); ++k) {
        const int block = MapFirstBlock[At(map)] + k;
        if (!ReadBlock(block, 100, true)) return true;
        BlockChanged[At(block)] = false;
        ForEachCell([map, block](int row, int column) {
            if (PlaceOfCell(map, row, column).Block == block) CellChanged(map, row, column) = false;
        });
    }
    return false;
}

void cmdReadMap_Click(int map) {
    if (LongOperationRuns()) return;
    const LongOperation running;
    cmdReadMap[At(map)].Enabled = false;
    // Another Power-FC than before may have no such map.
    if (ValidVersion(true, true) && MapIsShown(map)) {
        static_cast<void>(ReadMap(map));
        RefreshUpdateButton();
    }
    DisplayMap(map, true);
    cmdReadMap[At(map)].Enabled = true;
}

void WriteMap(int map, bool& failed) {
    failed = false;
    const int first = MapFirstBlock[At(map)];
    if (TakesWholeBlocks(map)) {
        int k = 0;
        for (; k < BlocksOf(map) && Sent(Byte(first + k) + ReadData[At(first + k)], false); ++k) {
            BlockChanged[At(first + k)] = false;
        }
        if (k == BlocksOf(map)) {
            MapCellChanged[At(map)] = {};
            return;
        }
    }
    // A Power-FC that refuses a whole map block still takes its cells one by one.
    ShowProgress(Progress2, "Writing " + SSTab1.TabCaption[At(map)]);
    for (int row = 1; row <= kMapSide; ++row) {
        Progress2.Bar = row * 5;
        Yield();  // the user may cancel, edit or close
        for (int column = 1; column <= kMapSide; ++column) {
            if (!SendCell(map, row, column)) {
                HideProgress(Progress2);
                MarkBlocksOfCells(map);
                MessageBox("Error Writing Map", Box::Critical);
                failed = true;
                return;
            }
            CellChanged(map, row, column) = false;
            if (Progress2.Cancelled) {
                HideProgress(Progress2);
                MarkBlocksOfCells(map);
                return;
            }
        }
    }
    MarkMapSent(map);
    HideProgress(Progress2);
    Yield();  // the window goes
}

void cmdWriteMap_Click(int map) {
    if (LongOperationRuns()) return;
    const LongOperation running;
    cmdWriteMap[At(map)].Enabled = false;
    if (ValidVersion(true, true) && MapIsShown(map)) {
        bool failed = false;
        if (AllInForce(MapFirstBlock[At(map)], BlocksOf(map))) {
            WriteMap(map, failed);
        } else {
            RefuseWrite();
        }
    }
    RefreshUpdateButton();
    cmdWriteMap[At(map)].Enabled = true;
}

ByteString PrepareBlockWrite(const ByteString& packet, bool& failed) {
    failed = false;
    const ByteString own = packet.substr(0, 1);
    const int code = static_cast<std::uint8_t>(packet[0]);
    ByteString rest = packet.substr(1);
    // Behind the choice itself stand the sensors' names, which are not writable.
    if (code == SensorSelectBlock) rest = rest.substr(0, 1) + From(rest, 92);
    if (code == FunctionSelectBlock) rest = rest.substr(0, BlockLength[At(code)] == 136 ? 8 : 5);
    if (MapFirstBlock[0] == kFamilyO) {
        if (code == 0x5C) rest = rest.substr(0, 5) + From(rest, 10);
        int command = code;
        for (const WriteCommand& row : kFamilyOCommands) {
            if (row.Block == code) command = row.Command;
        }
        failed = !Sent(Byte(command) + rest, true);
        return own;
    }
    if (code == SensorSelectBlock) {
        failed =
            !WriteSelect(packet, rest, kSensorSelectWrite, kSensorSelectLength, "Airflow/PIM Write Error");
        return own;
    }
    if (code == FunctionSelectBlock) {
        failed = !WriteSelect(packet, rest, kFunctionSelectWrite, BlockLength[At(code)],
                              "Function Select Write Error");
        return own;
    }
    return own + rest;
}

void cmdWriteAll_Click() {
    if (LongOperationRuns()) return;
    const LongOperation running;
    if (!ValidVersion(true, false)) return;
    if (!cmdWriteAll.Enabled || !ShownMapsAreInForce()) {
        RefuseWrite();
        return;
    }
    cmdWriteAll.Enabled = false;
    BusyPointer(true);
    BeforeWriteAll();
    // What was cancelled, or not taken, can be sent later.
    if (WriteEverything()) cmdUpdate.Enabled = AnythingToSend();
    cmdWriteAll.Enabled = true;
    BusyPointer(false);
}

void cmdUpdate_Click() {
    if (LongOperationRuns()) return;
    const LongOperation running;
    StopTimer(Timer::Update);
    bool sent = false;
    if (ValidVersion(true, false)) {
        if (!cmdUpdate.Enabled || !ChangesAreInForce()) {
            cmdUpdate.Enabled = false;
            RefuseUpdate();
            return;
        }
        cmdUpdate.Enabled = false;
        BusyPointer(true);
        sent = UpdateMaps();
        if (sent) {
            HideProgress(Progress2);
            Yield();  // the window goes; what is edited now is sent with the rest
            if (ChangesAreInForce()) {
                sent = UpdateBlocks();
            } else {
                RefuseUpdate();
                sent = false;
            }
        }
    }
    HideProgress(Progress2);
    BusyPointer(false);
    // What was not sent can be sent later.
    cmdUpdate.Enabled = !sent || AnythingToSend();
    if (cmdUpdate.Enabled) return;
    StopTimer(Timer::Update);
    LastUpdate = Desktop.TimeOfDay();
}

void optAutoUpdate_Click() {
    if (optAutoUpdate.Value != 0) {
        UpdateEnable();
    } else {
        StopTimer(Timer::Update);
    }
}

void TimerUpdate_Timer() {
    StopTimer(Timer::Update);
    if (LongOperationRuns()) {
        StartTimer(Timer::Update, kUpdateDelayMs, TimerUpdate_Timer);
    } else if (cmdUpdate.Enabled) {
        cmdUpdate_Click();
    }
}

void mnuRead_Click() {
    if (LongOperationRuns()) return;
    const LongOperation running;
    if (!ValidVersion(true, false)) return;
    ClearHistory();
    bool read = true;
    for (const int block : BlocksOfFrame(PopupFrame)) {
        read = ReadBlock(block, BlockLength[At(block)], true);
        if (!read) break;
        BlockChanged[At(block)] = false;
    }
    RefreshUpdateButton();
    if (read) DisplayAllData();
}

void mnuWrite_Click() {
    if (LongOperationRuns()) return;
    const LongOperation running;
    if (!ValidVersion(true, false)) return;
    const std::vector<int> blocks = BlocksOfFrame(PopupFrame);
    const bool inForce = std::all_of(blocks.begin(), blocks.end(), [](int block) {
        return BlockLength[At(block)] == 0 || BlockInForce[At(block)];
    });
    if (!inForce || !ImageIsInForce()) {
        RefuseWrite();
        return;
    }
    for (const int block : blocks) {
        bool arrived = false;
        if (!WriteBlock(block, arrived)) {
            MessageBox("Write failed.", Box::Critical);
            return;
        }
        RefreshUpdateButton();
    }
}

void mnuInitAllData_Click() {
    if (LongOperationRuns()) return;
    const LongOperation running;
    if (!ValidVersion(true, true)) return;
    if (MessageBox("This will Initialise all Power-FC data. Are you Sure?", Box::YesNo) != Answer::Yes)
        return;
    if (!Sent(ByteString("\xF6\x00", 2), true)) return;
    MessageBox("You must now Reset the Power-FC for the\nInitialisation to complete. (Key-Off, Key-On.)",
               Box::Information);
}

void RefreshUpdateButton() {
    cmdUpdate.Enabled =
        std::any_of(BlockChanged.begin(), BlockChanged.end(), [](bool changed) { return changed; });
}

void UpdateEnable() {
    cmdUpdate.Enabled = true;
    if (optAutoUpdate.Value == 0) return;
    StopTimer(Timer::Update);
    StartTimer(Timer::Update, kUpdateDelayMs, TimerUpdate_Timer);
}

Unsent CountUnsent() {
    Unsent unsent;
    for (int b = 0; b < 256; ++b) unsent.Blocks += BlockChanged[At(b)] && TakesPart(b) ? 1 : 0;
    for (int map = 0; map < kMapTabs; ++map) {
        if (!MapIsShown(map)) continue;
        for (int k = 0; k < BlocksOf(map); ++k) {
            unsent.Blocks += BlockChanged[At(MapFirstBlock[At(map)] + k)] ? 1 : 0;
        }
        unsent.Cells += CountChangedCells(map);
    }
    return unsent;
}

}  // namespace zandrel
