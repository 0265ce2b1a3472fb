// Which port the Corvane sits on, and which Power-FC stands behind it. Writes VerName, VerNumber and
// CorvaneVer.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace zandrel {

/// Ask the interface for its version at the next `ValidVersion`.
extern bool CheckCorvaneVer;

/// Auxiliary inputs of the interface: 4 or 8.
extern std::int16_t AuxChannelCount;

// Set by live/: a log is running; the monitor's auxiliary boxes follow the interface; the names of the log
// items and the monitor window follow the version.
inline std::function<bool()> LogRuns = [] { return false; };
inline std::function<void()> InitMonitorAux = [] {};
inline std::function<void()> LogItemNamesInit = [] {};
inline std::function<void()> InitMonitorWindow = [] {};

/// Listens on all ports while the user switches the ignition on, and opens the link where the Corvane
/// announces itself. Only the user's cancel ends the wait.
void ComAutoDetect();

/// True if the Power-FC that named itself last is of the version in force. A command that takes any known
/// build looks at this before it moves bytes.
bool ImageIsInForce();

/// Finds out which build is at hand: from the Power-FC (`read`), or from the image. With `initialise` the
/// display is rebuilt for it. False: no answer, or a build that the catalogue does not know.
bool ValidVersion(bool read, bool initialise);

std::string ReadVerName();
std::string ReadVerNumber();

/// Manual choice of the interface version: 0 "V1.X", 1 "V2.0".
void mnuSetupCorvaneVer_Click(int index);

/// 4 on a "V1.X" interface, otherwise 8. Nothing while a log runs.
void SetAuxChannelCount();

}  // namespace zandrel
