// The second half of the tour: settings and maps edited, sent and read back, on four kinds of builds.
#pragma once

class QWidget;

namespace zandrel {

struct TourSetting;

/// Goes on from a Read All of the first of the tour's own simulators. What arrives is checked byte for byte
/// in its journal.
void EditAndSend(QWidget& window, const TourSetting& setting);

}  // namespace zandrel
