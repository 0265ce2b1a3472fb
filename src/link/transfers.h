// Moves blocks between the image and the Power-FC. Every command first makes sure of the version and stops
// at its first failure; what was sent stays sent.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "util/controls.h"
#include "util/text.h"

namespace zandrel {

extern Control cmdReadAll;
extern Control cmdWriteAll;  // enabled after a successful Read All or a file load for the version in force
extern Control cmdUpdate;    // enabled while there are changes to send
extern Control optAutoUpdate;

extern MenuItem mnuRead, mnuWrite;  // popup of a frame
extern MenuItem mnuInitAllData;
extern std::int16_t PopupFrame;  // the frame that the popup was opened for

/// When the last Update went through, local time "14:03:22"; empty if none has.
extern std::string LastUpdate;

// Set by files/: a Read All is about to take the place of unsaved work; a Write All has passed its checks and
// begins; a Read All went through.
inline std::function<void()> BeforeUnsavedIsReplaced = [] {};
inline std::function<void()> BeforeWriteAll = [] {};
inline std::function<void()> AfterReadAll = [] {};

/// Puts the buttons into their design state.
void LoadTransfersDesign();

void cmdReadAll_Click();

/// Reads one map's blocks. True = it failed.
bool ReadMap(int map);
void cmdReadMap_Click(int map);

/// Writes a map: block by block, or cell by cell where the Power-FC does not take the blocks. A cancel ends
/// it with `failed` false; what was not sent stays marked.
void WriteMap(int map, bool& failed);
void cmdWriteMap_Click(int map);

/// The packet that the caller is to send to write the block `packet` (code, then all its data). A block that
/// is not written as it is read goes out here, and what is left to the caller is a bare read of it; `failed`
/// then says that it did not arrive.
ByteString PrepareBlockWrite(const ByteString& packet, bool& failed);

void cmdWriteAll_Click();

/// Sends what has changed.
void cmdUpdate_Click();
void optAutoUpdate_Click();

/// 500 ms have passed since the last change.
void TimerUpdate_Timer();

// The blocks of the frame `PopupFrame`.
void mnuRead_Click();
void mnuWrite_Click();

void mnuInitAllData_Click();

/// `cmdUpdate` is enabled exactly when some block waits to be sent.
void RefreshUpdateButton();

/// A change waits to be sent. Runs after every edit; with Auto Update it is sent 500 ms after the last one.
void UpdateEnable();

/// What has changed and can be sent, but was not yet.
struct Unsent {
    int Blocks = 0;
    int Cells = 0;
};
Unsent CountUnsent();

}  // namespace zandrel
