#include "link/transfers.h"

#include <algorithm>

#include "image/accessors.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/packets.h"
#include "link/progress.h"
#include "tuning/binding.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/desktop.h"
#include "util/numbers.h"

namespace zandrel {

Control cmdReadAll, cmdWriteAll, cmdUpdate, optAutoUpdate;

namespace {

// Two blocks prove writable only by being read.
void EnableIfRead(int frame, std::size_t block) {
    if (!FraSettings[frame].Visible || ReadData[block].size() < BlockLength[block]) return;
    FraSettings[frame].Enabled = true;
    BlockWrite[block] = true;
}

// Reads every block of the build. False: one failed, the user was told, the image is as it was before.
bool ReadAllBlocks(const std::array<ByteString, 256>& before) {
    for (int b = 0; b < 256; ++b) {
        const auto at = static_cast<std::size_t>(b);
        if (!BlockRead[at] || ReadBlock(b, BlockLength[at], true)) continue;
        MessageBox("Read All Error " + Hex(static_cast<std::uint32_t>(b)), Box::Critical);
        ReadData = before;
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
    AfterEdit = UpdateEnable;
}

void cmdReadAll_Click() {
    if (LongOperationRuns()) return;
    Answer answer{};
    CheckUnsavedData(answer);
    if (answer == Answer::Cancel) return;
    if (mnuCompare.Checked) EndComparison();
    const LongOperation running;
    cmdReadAll.Enabled = false;
    BusyPointer(true);
    const auto before = ReadData;
    if (ValidVersion(true, true) && ReadAllBlocks(before)) {
        EnableIfRead(1470, 0x99);
        EnableIfRead(460, 0x97);
        BlockChanged.fill(false);
        cmdUpdate.Enabled = false;
        cmdWriteAll.Enabled = true;
        SetCaption("Unsaved Data");
        DataChanged = true;
    }
    DisplayAllData();
    BusyPointer(false);
    cmdReadAll.Enabled = true;
}

bool ReadMap(int map) {
    const auto at = static_cast<std::size_t>(map);
    for (int k = 0; k < MapCellSize[at] * 4; ++k) {
        if (!ReadBlock(MapFirstBlock[at] + k, 100, true)) return true;
    }
    return false;
}

void cmdReadMap_Click(int map) {
    if (LongOperationRuns()) return;
    const LongOperation running;
    Control& button = cmdReadMap[static_cast<std::size_t>(map)];
    button.Enabled = false;
    // Another Power-FC than before may have no such map.
    if (ValidVersion(true, true) && SSTab1.TabVisible[static_cast<std::size_t>(map)]) {
        static_cast<void>(ReadMap(map));
    }
    DisplayMap(map, true);
    button.Enabled = true;
}

void RefreshUpdateButton() {
    cmdUpdate.Enabled =
        std::any_of(BlockChanged.begin(), BlockChanged.end(), [](bool changed) { return changed; });
}

void UpdateEnable() {
    cmdUpdate.Enabled = true;
}

}  // namespace zandrel
