// The short tour: one data file opened at the start, as the command line does, and looked at.
#pragma once

#include <QString>

namespace zandrel {

class frmMain;

/// Starts `window` with the file at `path`, and leaves a picture of each of its tabs. Throws TourFailure if
/// the file is refused.
void LookAtFile(frmMain& window, const QString& path);

}  // namespace zandrel
