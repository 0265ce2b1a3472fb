// The steps of the tour: the main job from the chosen port to the closed window.
#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace zandrel {

struct TourSetting {
    int PortNumber = 1;                    // COM port that the Power-FC is on
    bool OwnSimulator = false;             // the tour has started the simulator itself
    QString Journal;                       // its journal then
    std::function<void()> SwitchIgnition;  // makes the Corvane announce itself
};

/// Walks through the main job on `window`. Throws TourFailure at the first step that fails.
void WalkThrough(QWidget& window, const TourSetting& setting);

}  // namespace zandrel
