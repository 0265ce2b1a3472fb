// The diagnostics log (DebugLog.txt in the program folder), the version in force that its lines carry,
// and the description of the current run-time error. Anyone may log; only identification writes VerName
// and VerNumber.
#pragma once

#include <string>

namespace zandrel {

/// Folder of the program: DebugLog.txt and the folders of the user's files stand in it. Set at start.
extern std::string ProgramFolder;

/// Engine name and version number in force, as last accepted by `ValidVersion`; empty before the first.
extern std::string VerName;
extern std::string VerNumber;

/// Starts the log of this run: the next line writes the run head, seconds count from now.
void DebugLogInit();

/// Appends one entry; the file is opened and closed for it, so that a crash loses nothing. A failure
/// (full disk, read-only folder) is silent.
void DebugLog(const std::string& text);

/// Begins a routine with an error exit: no error is current.
void ClearError();

/// Makes `description` the current run-time error; empty for an error without words of its own.
void RaiseError(const std::string& description);

/// Logs the current error under the name of the routine that caught it, and marks it as reported.
void ErrorLog(const std::string& routine);

}  // namespace zandrel
