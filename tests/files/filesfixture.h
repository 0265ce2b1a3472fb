// Data files in the test's own folder, file dialogs that are answered beforehand, and the state of the
// program as a whole, so that a test can say that nothing of it has changed.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "image/image.h"
#include "support/cleanstate.h"
#include "util/desktop.h"

namespace zandrel {

// Builds with and without the two blocks that older files lack.
inline constexpr char kPlainBuild[] = "RB26DETT6.42";
inline constexpr char kOtherBuild[] = "B16A11.50C";
inline constexpr char kOldestBuild[] = "RB26DETT3.11D";

/// What a file dialog was asked, and the path that closes it; an empty one cancels.
class FileDialogs {
  public:
    FileDialogs();
    ~FileDialogs();
    FileDialogs(const FileDialogs&) = delete;
    FileDialogs& operator=(const FileDialogs&) = delete;

    void Answer(const std::string& path) { answers_.push_back(path); }
    std::vector<FileChoice> Asked;

  private:
    std::vector<std::string> answers_;
};

/// The whole state that a rejected file has to leave alone, as texts by name.
using Everything = std::map<std::string, std::string>;
Everything Now();

/// Says which names of both differ, none = an empty text.
std::string Differences(const Everything& before, const Everything& after);

/// The blocks that a Power-FC of this build holds.
std::array<ByteString, 256> BlocksOf(const std::string& key);

/// A data file with these blocks, put together without the program's own writer.
std::string DataFile(const std::array<ByteString, 256>& blocks, const std::string& tail = {});

/// Writes a file of the test's own.
void PutFile(const std::string& path, const std::string& bytes);

/// Opens the file as the menu does.
void Open(const std::string& path);

/// Base of the tests that need no Power-FC.
class FilesFixture : public CleanState {
  protected:
    FilesFixture();

    /// A file in the test's folder. Returns its path.
    std::string Put(const std::string& name, const std::string& bytes) const;

    FileDialogs Dialogs;
};

}  // namespace zandrel
