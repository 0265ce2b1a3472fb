// Where the program's own files stand: DebugLog.txt, default.dat and the folders of the user's files.
#pragma once

#include <string>

namespace zandrel {

/// True if a file can be made in `folder`. It is tried: rights alone do not tell.
bool TakesFiles(const std::string& folder);

/// The program folder: `home` if it is given, else the executable's folder where that takes files (a copy on
/// a stick), else the user's data folder, which is made if it is missing.
std::string ChooseProgramFolder(const std::string& home, const std::string& executableFolder,
                                const std::string& userFolder);

/// The path of a command line's words: all of them, as one text. A file that is there by its name alone gets
/// its folder before it, so that it is found from elsewhere too.
std::string CommandLinePath(const std::string& words);

}  // namespace zandrel
