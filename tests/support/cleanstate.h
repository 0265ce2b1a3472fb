// Every module-wide table back in the state that the program starts with, and a folder of the test's own
// for the diagnostics log and the settings store.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zandrel {

/// Base of all tests: clean tables, scripted desktop, folder of its own, removed afterwards.
class CleanState : public testing::Test {
  protected:
    CleanState();
    ~CleanState() override;

    /// Folder of this test; `ProgramFolder` points there.
    std::string Folder;

    /// Lines of DebugLog.txt without run head, without their time stamps and line ends.
    std::vector<std::string> LogLines() const;

    /// The whole of DebugLog.txt.
    std::string LogText() const;
};

/// Engine and number of a catalogue key, as the blocks of a Power-FC hold them.
struct VersionTexts {
    std::string Engine, Number;
};
VersionTexts SplitKey(const std::string& key);

/// Applies both records of build `key` to the display, as an identification does.
void ApplyBuild(const std::string& key);

/// A file's bytes; empty if there is none.
std::string FileBytes(const std::string& path);

}  // namespace zandrel
