#include "tuning/binding.h"

#include "image/accessors.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

bool FrameIsShown(const Control& control) {
    return control.Frame < 0 || FraSettings[control.Frame].Visible;
}

// Fills the shown members of an array by `fill` and disables the others.
template <class Fill>
void FillArray(ControlArray& array, bool onlyShown, Fill fill) {
    for (auto& [index, control] : array) {
        control.Enabled = !onlyShown || FrameIsShown(control);
        if (control.Enabled) fill(control);
    }
}

}  // namespace

void DisplayAllData(bool onlyShown) {
    FillArray(txtSetting, onlyShown, [](Control& c) { c.Text = GetNumber(c.Tag); });
    FillArray(chkSetting, onlyShown, [](Control& c) { c.Value = GetFlag(c.Tag); });
    FillArray(chkSettingBit, onlyShown, [](Control& c) { c.Value = GetBit(c.Tag); });
    FillArray(optSetting, onlyShown, [](Control& c) { c.Value = GetOption(c.Tag) ? 1 : 0; });
    FillArray(lblSetting, onlyShown, [](Control& c) { c.Caption = GetString(c.Tag); });
    RefreshMonitor();
    ReloadMapRefTables();
    DisplayAllMaps();
    RefreshMapRefLabels();
}

}  // namespace zandrel
