// Moves blocks between the image and the Power-FC. Every command first makes sure of the version and stops
// at its first failure; what was sent stays sent.
#pragma once

#include "util/controls.h"

namespace zandrel {

extern Control cmdReadAll;
extern Control cmdWriteAll;  // enabled after a successful Read All or a file load for the version in force
extern Control cmdUpdate;    // enabled while there are changes to send
extern Control optAutoUpdate;

/// Puts the buttons into their design state.
void LoadTransfersDesign();

void cmdReadAll_Click();

/// Reads one map's blocks. True = it failed.
bool ReadMap(int map);
void cmdReadMap_Click(int map);

/// `cmdUpdate` is enabled exactly when some block waits to be sent.
void RefreshUpdateButton();

/// A change waits to be sent. Runs after every edit.
void UpdateEnable();

}  // namespace zandrel
