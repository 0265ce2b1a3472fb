// Binds the setting controls to the image: pushes the image into all of them, and an edited one's value back.
// Controls keep no value of their own: after every edit they show what the image holds.
#pragma once

#include <functional>

namespace zandrel {

/// Fills every setting control and has every map painted anew. With `onlyShown` the controls of hidden
/// frames are disabled and keep what they showed.
void DisplayAllData(bool onlyShown = false);

/// False while comparing: no setting control may hold the focus then, so that none can be edited.
bool SettingsTakeFocus();

/// The box `txtSetting(index)` has lost the focus: its `Text` is stored, and it shows what was stored.
void txtSetting_LostFocus(int index);

/// A box or option was clicked; its `Value` says how it stands now.
void chkSetting_Click(int index);
void chkSettingBit_Click(int index);
void optSetting_Click(int index);

/// Passing through the entry writes the tuner string, an empty one too.
void Text1_LostFocus();

/// The raw sensor names go to the clipboard; a click on any other text does nothing.
void lblSetting_Click(int index);

/// Runs inside `DisplayAllData`, after the settings and before the maps. Set by live/.
inline std::function<void()> RefreshMonitor = [] {};

}  // namespace zandrel
