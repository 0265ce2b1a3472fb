// Opening and saving tuning data files, the image on disk. A file names its Power-FC only by the
// identification blocks in it; all is taken in first and judged then, and a rejected file leaves nothing of
// itself in force.
#pragma once

#include <string>
#include <vector>

#include "util/controls.h"

namespace zandrel {

struct DataText;

extern MenuItem mnuOpen, mnuSaveAs, mnuDefault;
extern MenuItem mnuLoadDefaultAtStart, mnuSaveDefaultOnExit;

void LoadFilesDesign();

/// Opens the file at `path`, or asks which one if it is empty; `path` becomes what was opened. With
/// `validate` false the blocks and notes are taken in and nothing else is done.
void OpenFile(std::string& path, bool validate);

/// Puts `data` in the place of the image, as `OpenFile` does with a file called `title`. False: it is not
/// taken, the user was told, and the image is as it was.
bool TakeInImage(DataText data, const std::string& title);

/// Writes image and notes to `path`. A file that cannot be written changes nothing and says nothing.
void SaveFile(const std::string& path);

void mnuOpen_Click();
void mnuDefault_Click();
void mnuRecentFile_Click(int index);

/// Asks for a name and saves.
void SaveAs();

/// True if a drop of files with this one first is taken: its name ends in "dat", in any case.
bool TakesDrop(const std::string& firstFile);

// Files dropped on the window: the first is opened. On the tabs: all are, one after the other.
void Form_OLEDragDrop(const std::vector<std::string>& files);
void SSTab1_OLEDragDrop(const std::vector<std::string>& files);

/// The lengths of all blocks of these files, as a table on the clipboard. The image ends as the last file.
void txtRnD_OLEDragDrop(const std::vector<std::string>& files);

}  // namespace zandrel
