// The part of the tour that works with data files, and the next run of the program.
#pragma once

#include <QString>

class QWidget;

namespace zandrel {

struct TourSetting;

/// Saves, opens, opens a file of another build, is refused a broken one, and sets up what the next run has to
/// bring back. The files go into `folder`.
void WorkWithFiles(QWidget& window, const TourSetting& setting, const QString& folder);

/// The next run: window, tab, port and ticks as `WorkWithFiles` left them.
void ComeBackAsLeft(QWidget& window);

}  // namespace zandrel
