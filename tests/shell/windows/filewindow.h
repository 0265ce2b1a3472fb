// The window with data files: a folder with files of builds, and file dialogs that are answered beforehand.
#pragma once

#include <string>
#include <vector>

#include "shell/windows/editfixture.h"
#include "util/desktop.h"

namespace zandrel {

inline constexpr char kUnsaved[] =
    "You have made setting changes that have not been saved.\nDo you want to save?";

class FileWindow : public EditTest {
  protected:
    FileWindow();
    ~FileWindow() override;

    /// Writes a file with what a Power-FC of build `key` holds, and with the block `without` left out.
    /// Returns its path.
    std::string FileOf(const std::string& key, const std::string& name, const std::string& tail = {},
                       int without = -1) const;

    /// Opens the file by the menu and the file dialog.
    void OpenByMenu(const std::string& path);

    /// Counts up the first setting of the first page, as a person does.
    void ChangeASetting();

    std::string Notes();

    std::string Chosen;             // what closes the next file dialogs; empty = Cancel
    std::vector<FileChoice> Asked;  // what they were asked
};

}  // namespace zandrel
