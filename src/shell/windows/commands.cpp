#include "shell/windows/commands.h"

#include <QAbstractButton>
#include <algorithm>
#include <iterator>

#include "link/identify.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/scan.h"
#include "link/transfers.h"
#include "shell/windows/shown.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

constexpr char kNoSending[] = "Sending to the Power-FC is not part of this version.";
constexpr char kNoCurves[] = "Editing curves is not part of this version.";
constexpr char kNoEditing[] = "Editing is not part of this version.";

// clang-format off
constexpr Command kCommands[] = {
    {"cmdReadAll",              [](int) { cmdReadAll_Click(); },      ""},
    {"cmdWriteAll",             nullptr,                              kNoSending},
    {"cmdUpdate",               nullptr,                              kNoSending},
    {"optAutoUpdate",           nullptr,                              kNoSending},
    {"cmdReadMap",              cmdReadMap_Click,                     ""},
    {"cmdWriteMap",             nullptr,                              kNoSending},
    {"cmdEditCurve",            nullptr,                              kNoCurves},
    {"txtSetting",              nullptr,                              kNoEditing},
    {"chkSetting",              nullptr,                              kNoEditing},
    {"chkSettingBit",           nullptr,                              kNoEditing},
    {"optSetting",              nullptr,                              kNoEditing},
    {"Text1",                   nullptr,                              "Editing the tuner string is not part of this version."},
    {"txtNotes",                nullptr,                              kNoEditing},
    {"comMapType",              comMapType_Click,                     ""},
    {"chkSplit",                chkSplit_Click,                       ""},
    {"mnuScan",                 [](int) { mnuScan_Click(); },         ""},
    {"mnuCom",                  mnuCom_Click,                         ""},
    {"mnuComAuto",              [](int) { ComAutoDetect(); },         ""},
    {"mnuComShowAll",           [](int) { mnuComShowAll_Click(); },   ""},
    {"mnuSetupCorvaneVer",      mnuSetupCorvaneVer_Click,             ""},
    {"mnuMapRefLabels",         [](int) { mnuMapRefLabels_Click(); }, ""},
    {"mnuSetupMapColourScheme", mnuSetupMapColourScheme_Click,        ""},
    {"mnuInjMapDisplay",        mnuInjMapDisplay_Click,               ""},
    {"mnuBaseMapDisplay",       mnuBaseMapDisplay_Click,              ""},
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
