// Pushes the image into all setting controls. Controls keep no value of their own: what they show is what
// the image holds.
#pragma once

#include <functional>

namespace zandrel {

/// Fills every setting control and has every map painted anew. With `onlyShown` the controls of hidden
/// frames are disabled and keep what they showed.
void DisplayAllData(bool onlyShown = false);

/// Runs inside `DisplayAllData`, after the settings and before the maps. Set by live/.
inline std::function<void()> RefreshMonitor = [] {};

}  // namespace zandrel
