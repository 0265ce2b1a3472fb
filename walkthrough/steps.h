// The steps of the tour: the main job from the chosen port to the closed window.
#pragma once

#include <QString>
#include <vector>

class QWidget;

namespace zandrel {

class SimulatedPowerFc;

/// The Power-FCs that the tour starts, in the order of their ports from COM1 on.
enum Simulated { MainBuild, OldestBuild, AutomaticBuild, RefusingBuild, RotaryBuild, SimulatedCount };

struct TourSetting {
    int PortNumber = 1;                         // COM port that the Power-FC is on
    QString Folder;                             // of pictures and files
    std::vector<SimulatedPowerFc*> Simulators;  // empty: the Power-FC is not the tour's own
    bool OwnSimulator() const { return !Simulators.empty(); }
};

/// Walks through the main job on `window`. A Power-FC that is not the tour's own is only read. Throws
/// TourFailure at the first step that fails.
void WalkThrough(QWidget& window, const TourSetting& setting);

}  // namespace zandrel
