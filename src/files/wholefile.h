// Files taken in and written as a whole. A file that is written is there complete, or what stood there before
// still is.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace zandrel {

enum class [[nodiscard]] FileResult{Done, NotOpened, Failed, TooLarge};

/// Reads the file at `path`, at most `limit` bytes. NotOpened: there is no such file, or it is none that can
/// be read.
FileResult ReadWholeFile(const std::string& path, std::size_t limit, std::string& bytes);

/// Replaces the file at `path`; written beside its place, brought to the disk, then renamed. False: nothing
/// has changed.
[[nodiscard]] bool WriteWholeFile(const std::string& path, std::string_view bytes);

/// Brings what was written to an open file to the disk. False: it did not arrive.
bool FlushToDisk(int handle);

/// What `WriteWholeFile` flushes by. A test lets it fail, a measurement takes its time.
inline std::function<bool(int handle)> Flush = FlushToDisk;

/// True if there is such a folder and its files can be listed and opened.
bool FolderOpens(const std::string& path);

/// What stands behind the last separator of a path; all of it if there is none.
std::string FileTitleOf(const std::string& path);

/// The path up to the first place where its title stands: its folder, separator included.
std::string FolderOf(const std::string& path, const std::string& title);

/// True for a character that parts the folders of a path on this system.
bool IsSeparator(char c);

}  // namespace zandrel
