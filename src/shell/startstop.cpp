#include "shell/startstop.h"

#include <algorithm>

#include "files/datafile.h"
#include "files/journal.h"
#include "files/recentfiles.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "shell/settingsstore.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/mapediting.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

constexpr double kDefaultStoichAF = 14.7;

// Takes a setting into `target`. False: the store holds a text that is none of the type.
template <class Value, class Target>
bool Take(const std::optional<Value>& value, Target& target) {
    if (value) target = static_cast<Target>(*value);
    return value.has_value();
}

// No screen reaches further, and the arithmetic of windows does not either.
float Reachable(float twips) {
    constexpr float kFurthest = 480'000;
    return std::clamp(twips, -kFurthest, kFurthest);
}

bool RestoreWindow() {
    MainForm& form = MainFormState;
    const bool restored =
        Take(GetSingle("MainLeft", 450), form.Left) && Take(GetSingle("MainTop", 450), form.Top) &&
        Take(GetSingle("MainHeight", 8130), form.Height) && Take(GetSingle("MainWidth", 11205), form.Width) &&
        Take(GetInteger("MainWindowState", 0), form.WindowState);
    for (float* length : {&form.Left, &form.Top, &form.Height, &form.Width}) *length = Reachable(*length);
    return restored;
}

// What is outside of all that makes sense counts as not there.
std::int32_t OrDefault(std::int32_t value, std::int32_t least, std::int32_t most, std::int32_t fallback) {
    return value >= least && value <= most ? value : fallback;
}

// A silent line has to end some time.
constexpr std::int32_t kLongestWait = 60'000;  // milliseconds
constexpr std::int32_t kMostRetries = 100;

bool RestorePort() {
    std::int32_t port = 0;
    if (!Take(GetLong("ComPort", 0), port)) return false;
    if (port >= 1 && port <= 16 && mnuCom[static_cast<std::size_t>(port - 1)].Visible) mnuCom_Click(port - 1);
    return true;
}

bool RestoreLinkSettings() {
    if (!Take(GetLong("ComTimeOutTicks", kDefaultComTimeOutTicks), ComTimeOutTicks)) return false;
    ComTimeOutTicks = OrDefault(ComTimeOutTicks, 1, kLongestWait, kDefaultComTimeOutTicks);
    txtComTimeOut = std::to_string(ComTimeOutTicks);
    if (!Take(GetLong("ComRetries", kDefaultComRetries), ComRetries)) return false;
    ComRetries = OrDefault(ComRetries, 0, kMostRetries, kDefaultComRetries);
    txtComRetries = std::to_string(ComRetries);
    return true;
}

// Only the general tab shows until a version is known.
void HideTabs() {
    SSTab1.TabVisible.fill(false);
    SSTab1.TabVisible[kGeneralTab] = true;
    SSTab1.TabsPerRow = 1;
}

bool RestoreTicks() {
    return Take(GetBoolean("StaurtupLoadDefault", false), mnuLoadDefaultAtStart.Checked) &&
           Take(GetBoolean("ExitSaveDefault", false), mnuSaveDefaultOnExit.Checked) &&
           Take(GetBoolean("ExitCheckUnsavedData", true), mnuCheckUnsavedData.Checked);
}

// What the user asked for, and otherwise the default file, but not over what was recovered.
void OpenFirstFile(const std::string& commandLine, bool recovered) {
    if (!commandLine.empty()) {
        std::string path = commandLine;
        OpenFile(path, true);
    } else if (mnuLoadDefaultAtStart.Checked && !recovered) {
        mnuDefault_Click();
    }
}

bool RestoreTab() {
    std::int16_t tab = 0;
    if (!Take(GetInteger("MainTab", kTabs - 1), tab)) return false;
    const bool shown = tab >= 0 && tab < kTabs && SSTab1.TabVisible[static_cast<std::size_t>(tab)];
    SSTab1.Tab = shown ? tab : kGeneralTab;
    return true;
}

bool RestoreMapRefLabels() {
    bool labels = false;
    if (!Take(GetBoolean("MainMapRefLabels", false), labels)) return false;
    if (labels) mnuMapRefLabels_Click();
    return true;
}

bool RestoreStoich() {
    StoichAF = LenientNumber(GetSetting("Settings", "StoichAF", "14.7"));
    if (StoichAF < 10 || StoichAF > 30) StoichAF = kDefaultStoichAF;
    return true;
}

bool RestoreMapDisplay() {
    std::int32_t injection = 0;
    std::int16_t colours = 0;
    std::int32_t base = 0;
    if (!Take(GetLong("InjMapType", 0), injection)) return false;
    mnuInjMapDisplay_Click(OrDefault(injection, 0, 2, 0));
    if (!Take(GetInteger("MapColourScheme", 1), colours)) return false;
    mnuSetupMapColourScheme_Click(OrDefault(colours, 0, 1, 1));
    if (!Take(GetLong("BaseMapType", 0), base)) return false;
    mnuBaseMapDisplay_Click(OrDefault(base, 0, 3, 0));
    return true;
}

bool RecoveryWanted = false;

// The start order up to the first file. False: a step failed and the rest is skipped.
bool BeginStart() {
    GetRecentFiles();
    DebugLogInit();
    RecoveryWanted = AskRecovery();
    MainFormReady = true;
    CorvaneVer = GetSetting("Settings", "LastCorvaneVer", "V2.0");
    SetAuxChannelCount();
    DisplayInitForCorvaneVer();
    CheckCorvaneVer = true;
    GridInit();
    DisplayAllData();
    if (!RestoreWindow()) return false;
    if (!RestorePort()) return false;
    if (!RestoreLinkSettings()) return false;
    DataChanged = false;
    HideTabs();
    return RestoreTicks();
}

// The start order from the first file on.
bool EndStart() {
    if (!RestoreTab()) return false;
    if (!RestoreMapRefLabels()) return false;
    if (!RestoreStoich()) return false;
    if (!RestoreMapDisplay()) return false;
    HideProgress(Progress2);
    return true;
}

void SavePort() {
    if (MSComm1.PortOpen()) MSComm1.Close();
    for (std::size_t i = 0; i < mnuCom.size(); ++i) {
        if (mnuCom[i].Checked) SaveNumber("ComPort", static_cast<double>(i + 1));
    }
}

void SaveWindow() {
    SaveNumber("MainWindowState", MainFormState.WindowState);
    if (MainFormState.WindowState != 0) return;
    SaveNumber("MainLeft", MainFormState.Left);
    SaveNumber("MainTop", MainFormState.Top);
    SaveNumber("MainHeight", MainFormState.Height);
    SaveNumber("MainWidth", MainFormState.Width);
    SaveNumber("MainTab", SSTab1.Tab);
}

}  // namespace

void LoadDesign() {
    LoadSettingsDesign();
    LoadMapsDesign();
    LoadMapEditingDesign();
    LoadTransfersDesign();
    LoadFilesDesign();
    RefreshMapRefLabels();
    MainFormState = {};
    SetCaption("");
}

void frmMain_Load(const std::string& commandLine) {
    const bool begun = BeginStart();
    // Also where the start has failed: what a crash has left waits for nothing. Nothing is opened over it.
    const bool recovered = RecoveryWanted && RecoverJournal();
    BeginJournal();
    if (begun) OpenFirstFile(commandLine, recovered);
    if (begun && EndStart()) return;
    KeepUnreadStore();
    MessageBox("Error in frmMain_Load", Box::Critical);
}

bool frmMain_QueryUnload() {
    if (LongOperationRuns()) return false;
    Answer answer{};
    CheckUnsavedData(answer);
    return answer != Answer::Cancel;
}

void frmMain_Unload() {
    SaveSetting("Settings", "LastCorvaneVer", CorvaneVer);
    SavePort();
    SaveWindow();
    SaveBoolean("MainMapRefLabels", mnuMapRefLabels.Checked);
    // By its name alone: it comes to stand in the current folder, while the start loads the program folder's.
    // Where no Power-FC is known there is nothing to save, and a good file to lose.
    if (mnuSaveDefaultOnExit.Checked && !ReadVerName().empty()) SaveFile("default.dat");
    SaveBoolean("StaurtupLoadDefault", mnuLoadDefaultAtStart.Checked);
    SaveBoolean("ExitSaveDefault", mnuSaveDefaultOnExit.Checked);
    SaveBoolean("ExitCheckUnsavedData", mnuCheckUnsavedData.Checked);
    SaveNumber("StoichAF", StoichAF);
    SaveNumber("InjMapType", InjMapDisplay);
    SaveNumber("MapColourScheme", MapColourScheme);
    SaveNumber("BaseMapType", BaseMapDisplay);
    FlushSettingsStore();
    EndJournal();
}

}  // namespace zandrel
