#include "tuning/binding.h"

#include "image/accessors.h"
#include "image/history.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/codepage.h"
#include "util/desktop.h"

namespace zandrel {
namespace {

constexpr std::size_t kTunerBlock = 0xAD;
constexpr std::size_t kTunerLength = 8;
constexpr int kRawNames[] = {628, 629};

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

bool SettingsTakeFocus() {
    return !mnuCompare.Checked;
}

void txtSetting_LostFocus(int index) {
    Control& box = txtSetting[index];
    const Gesture gesture("Setting");
    SetNumber(box.Tag, box.Text);
    box.Text = GetNumber(box.Tag);
}

void chkSetting_Click(int index) {
    Control& box = chkSetting[index];
    const Gesture gesture("Setting");
    SetFlag(box.Tag, box.Value);
    box.Value = GetFlag(box.Tag);
}

void chkSettingBit_Click(int index) {
    Control& box = chkSettingBit[index];
    const Gesture gesture("Setting");
    SetBit(box.Tag, box.Value);
    box.Value = GetBit(box.Tag);
}

void optSetting_Click(int index) {
    const Control& chosen = optSetting[index];
    if (chosen.Value == 0) return;
    const Gesture gesture("Setting");
    SetOption(chosen.Tag);
    for (auto& [other, option] : optSetting) {
        if (option.Frame == chosen.Frame) option.Value = GetOption(option.Tag) ? 1 : 0;
    }
}

void Text1_LostFocus() {
    ByteString string = ToCodePage(Text1.Text) + ByteString(kTunerLength, ' ');
    string.resize(kTunerLength);
    const Gesture gesture("Tuner string");
    ReplaceBlock(kTunerBlock, string);
    DisplayAllData();
}

void lblSetting_Click(int index) {
    for (const int names : kRawNames) {
        if (index == names) Desktop.SetClipboard(lblSetting[index].Caption);
    }
}

}  // namespace zandrel
