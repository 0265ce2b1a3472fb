// The recent file list: four paths in the store, newest first, and their menu items.
#pragma once

#include <array>
#include <string>

#include "util/controls.h"

namespace zandrel {

/// The list of data files. Items count from 0; the full path lies in `Tag`.
extern std::array<MenuItem, 4> mnuRecentFile;
extern MenuItem mnuRecentFileSep;

/// Rebuilds the menu from the store.
void GetRecentFiles();

/// Puts `path` at the head of the list and rebuilds the menu.
void UpdateFileMenu(const std::string& path);

/// A path as its menu item shows it: the last folder and the file name.
std::string ShortPath(const std::string& path);

}  // namespace zandrel
