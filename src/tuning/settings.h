// The settings controls of the main window: what each frame holds and which bytes each control shows.
// The arrays start in their design state; DisplayInit1 and DisplayInit2 edit them for the build in force.
// Written by tuning/display, tuning/binding and link/transfers; mirrored by the windows.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "util/controls.h"

namespace zandrel {

// One integer space is shared: frame n owns the members from n upward. Tags hold field descriptors.
extern ControlArray FraSettings;    // Tag: the blocks that the frame's Read and Write move
extern ControlArray txtSetting;     // numbers
extern ControlArray chkSetting;     // flag bytes
extern ControlArray chkSettingBit;  // single bits
extern ControlArray optSetting;     // one of several values of a byte
extern ControlArray lblSetting;     // texts held in a block
extern ControlArray cmdEditCurve;   // curve texts
extern ControlArray lblGeneral;     // fixed labels, numbered from their frame's number upward
extern ControlArray lblRevIdle;     // labels of the rev and idle rows, frames 120 and 1120
extern ControlArray lblAntiLag;     // labels of the anti-lag fields, frame 550
extern Control lblInternalPullups;
extern Control Text1;           // tuner string entry, frame 550
extern Control txtNotes;        // frame 560
extern Control uctAirFlowGrid;  // frame 370; Caption is the name of its X axis
extern double AirFlowXScale;    // volts (0.005) or frequency (0.001) a step

// Tabs of SSTab1, counted from 0: six maps, six pages of settings, the general page.
inline constexpr int kTabs = 13;
inline constexpr int kMapTabs = 6;
inline constexpr int kFirstSettingsTab = 6;
inline constexpr int kGeneralTab = 12;

struct TabStrip {
    std::array<std::string, kTabs> TabCaption;
    std::array<bool, kTabs> TabVisible{};
    int Tab = kGeneralTab;
    int TabsPerRow = 1;
};
extern TabStrip SSTab1;

/// Puts every array into its design state: what the window is before a version is known.
void LoadSettingsDesign();

/// Frames of a settings page, in the order in which they stand.
std::vector<int> FramesOfTab(int tab);

/// Step and name of the X axis of the air-flow curves.
void SetXscale(double scale);
void SetXName(const std::string& text);

/// The texts of the general page, in the order in which they stand.
std::array<std::string, 3> GeneralTexts();

}  // namespace zandrel
