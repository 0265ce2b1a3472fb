#include "shell/windows/commands.h"

#include <QAbstractButton>
#include <algorithm>
#include <iterator>

#include "files/datafile.h"
#include "files/snapshots.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/scan.h"
#include "link/transfers.h"
#include "shell/windows/shown.h"
#include "tuning/binding.h"
#include "tuning/mainform.h"
#include "tuning/mapediting.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

constexpr char kNoCurves[] = "Editing curves is not part of this version.";

void Flip(MenuItem& item) {
    item.Checked = !item.Checked;
}

// clang-format off
constexpr Command kCommands[] = {
    {"cmdReadAll",              [](int) { cmdReadAll_Click(); },            ""},
    {"cmdWriteAll",             [](int) { cmdWriteAll_Click(); },           ""},
    {"cmdUpdate",               [](int) { cmdUpdate_Click(); },             ""},
    {"optAutoUpdate",           [](int) { optAutoUpdate_Click(); },         ""},
    {"cmdReadMap",              cmdReadMap_Click,                           ""},
    {"cmdWriteMap",             cmdWriteMap_Click,                          ""},
    {"cmdEditCurve",            nullptr,                                    kNoCurves},
    {"txtSetting",              txtSetting_LostFocus,                       ""},
    {"chkSetting",              chkSetting_Click,                           ""},
    {"chkSettingBit",           chkSettingBit_Click,                        ""},
    {"optSetting",              optSetting_Click,                           ""},
    {"lblSetting",              lblSetting_Click,                           ""},
    {"Text1",                   [](int) { Text1_LostFocus(); },             ""},
    {"txtNotes",                [](int) { DataChanged = true; },            ""},
    {"comMapType",              comMapType_Click,                           ""},
    {"chkSplit",                chkSplit_Click,                             ""},
    {"mnuOpen",                 [](int) { mnuOpen_Click(); },               ""},
    {"mnuOpenSnapshot",         OpenSnapshot,                               ""},
    {"mnuDefault",              [](int) { mnuDefault_Click(); },            ""},
    {"mnuSaveAs",               [](int) { if (mnuSaveAs_Click) mnuSaveAs_Click(); }, ""},
    {"mnuRecentFile",           mnuRecentFile_Click,                        ""},
    {"mnuLoadDefaultAtStart",   [](int) { Flip(mnuLoadDefaultAtStart); },   ""},
    {"mnuSaveDefaultOnExit",    [](int) { Flip(mnuSaveDefaultOnExit); },    ""},
    {"mnuCheckUnsavedData",     [](int) { Flip(mnuCheckUnsavedData); },     ""},
    {"mnuUndo",                 [](int) { mnuUndo_Click(); },               ""},
    {"mnuRedo",                 [](int) { mnuRedo_Click(); },               ""},
    {"mnuRead",                 [](int) { mnuRead_Click(); },               ""},
    {"mnuWrite",                [](int) { mnuWrite_Click(); },              ""},
    {"mnuInitAllData",          [](int) { mnuInitAllData_Click(); },        ""},
    {"mnuScan",                 [](int) { mnuScan_Click(); },               ""},
    {"mnuCom",                  mnuCom_Click,                               ""},
    {"mnuComAuto",              [](int) { ComAutoDetect(); },               ""},
    {"mnuComShowAll",           [](int) { mnuComShowAll_Click(); },         ""},
    {"mnuSetupCorvaneVer",      mnuSetupCorvaneVer_Click,                   ""},
    {"mnuGridCopy",             [](int) { mnuGridCopy_Click(); },           ""},
    {"mnuGridPaste",            [](int) { mnuGridPaste_Click(); },          ""},
    {"mnuGridInterpolate",      [](int) { mnuGridInterpolate_Click(); },    ""},
    {"mnuMapRefLabels",         [](int) { mnuMapRefLabels_Click(); },       ""},
    {"mnuSetupMapColourScheme", mnuSetupMapColourScheme_Click,              ""},
    {"mnuInjMapDisplay",        mnuInjMapDisplay_Click,                     ""},
    {"mnuSetupInjMapStoich",    [](int) { mnuSetupInjMapStoich_Click(); },  ""},
    {"mnuBaseMapDisplay",       mnuBaseMapDisplay_Click,                    ""},
    {"mnuReCalcBase",           [](int) { mnuReCalcBase_Click(); },         ""},
};
// clang-format on

constexpr Command kNothing = {"", nullptr, ""};

}  // namespace

const Command& CommandOf(std::string_view name) {
    const auto row = std::find_if(std::begin(kCommands), std::end(kCommands),
                                  [name](const Command& command) { return command.Name == name; });
    return row == std::end(kCommands) ? kNothing : *row;
}

bool HasHandler(std::string_view name) {
    return CommandOf(name).Click != nullptr;
}

void MirrorButton(QAbstractButton* button, const Control& record, std::string_view name) {
    const QString text = WithMnemonic(record.Caption);
    if (button->text() != text) button->setText(text);
    const bool enabled = record.Enabled && HasHandler(name) && !LongOperationRuns();
    if (button->isEnabled() != enabled) button->setEnabled(enabled);
    if (button->isHidden() == record.Visible) button->setVisible(record.Visible);
}

}  // namespace zandrel
