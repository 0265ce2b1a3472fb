// How the program comes up and goes down. Works on the records; the window is built before and shown after.
#pragma once

#include <string>

namespace zandrel {

/// Puts every record into its design state, before the window is built.
void LoadDesign();

/// The start order. A command line that is not empty is, as a whole, the path of a file to open. A failure
/// shows "Error in frmMain_Load" and skips the rest; the program stays up.
void frmMain_Load(const std::string& commandLine = {});

/// True: the window may close. False: the user chose Cancel, or a long operation still runs.
bool frmMain_QueryUnload();

/// The stop order: writes the settings store and closes the port.
void frmMain_Unload();

}  // namespace zandrel
