#include "support/cleanstate.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "shell/settingsstore.h"
#include "shell/startstop.h"
#include "support/scripteddesktop.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "util/diagnostics.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

void CleanImage() {
    ReadData.fill({});
    BlockLength.fill(0);
    ClearBlockFlags();
    BlockChanged.fill(false);
    BlockInForce.fill(false);
    ClearHistory();
    DataChanged = false;
    MapCompare = {};
    MapCellChanged = {};
    MapBaseTable.fill(0);
    MapRefRpm = {};
    MapRefBlock = {};
}

void CleanLink() {
    if (MSComm1.PortOpen()) MSComm1.Close();
    for (MenuItem& item : mnuCom) item = {};
    mnuComShowAll.Checked = false;
    ComTimeOutTicks = kDefaultComTimeOutTicks;
    ComRetries = kDefaultComRetries;
    CheckCorvaneVer = true;
    AuxChannelCount = 8;
    Progress2 = {};
    ProgressScan = {};
    CloseAsked = false;
}

void CleanHooks() {
    AfterSend = [] {};
    LogRuns = [] { return false; };
    InitMonitorAux = [] {};
    LogItemNamesInit = [] {};
    InitMonitorWindow = [] {};
    RefreshMonitor = [] {};
    InitLogChannels = [](const LogRecord&) {};
    EndComparison = [] {};
    tr = [](const std::string& text) { return text; };
}

}  // namespace

CleanState::CleanState() {
    char pattern[] = "/tmp/zandrel-test-XXXXXX";
    Folder = mkdtemp(pattern);
    OpenScriptedDesktop();
    OpenSettingsStore(Folder + "/settings.ini");
    CleanImage();
    CleanLink();
    CleanHooks();
    VerName.clear();
    VerNumber.clear();
    CorvaneVer = "V2.0";
    InjMapDisplay = BaseMapDisplay = 0;
    StoichAF = 14.7;
    MapColourScheme = 1;
    InjMapIndex = 0;
    BaseMapIndex = kNoMap;
    mnuCheckUnsavedData.Checked = true;
    mnuReCalcBase.Enabled = false;
    MainFormReady = true;
    ProgramFolder = Folder;
    LoadDesign();
    // Saving is asked about only where a test means it.
    mnuSaveAs_Click = nullptr;
    DebugLogInit();
}

CleanState::~CleanState() {
    EXPECT_TRUE(NoMessageLeft());
    CleanLink();
    std::error_code ignored;
    std::filesystem::remove_all(Folder, ignored);
}

std::string CleanState::LogText() const {
    return FileBytes(Folder + "/DebugLog.txt");
}

std::vector<std::string> CleanState::LogLines() const {
    std::vector<std::string> lines;
    for (std::string line : Split(LogText(), '\n')) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line.substr(0, 3) == "***") continue;
        const auto blank = line.find(' ');
        const bool stamped =
            blank != line.npos && line.find('.') == blank - 4 && StrictNumber(line.substr(0, blank));
        lines.push_back(stamped ? line.substr(blank + 1) : line);
    }
    return lines;
}

VersionTexts SplitKey(const std::string& key) {
    const auto digit = key.find('.') - 1;
    return {key.substr(0, digit), key.substr(digit)};
}

void ApplyBuild(const std::string& key) {
    const VersionTexts version = SplitKey(key);
    ASSERT_TRUE(ApplySettingsProfile(version.Engine, version.Number)) << key;
    ASSERT_TRUE(ApplyLogProfile(version.Engine, version.Number)) << key;
    VerName = version.Engine;
    VerNumber = version.Number;
    SetCaption("");
}

std::string FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

}  // namespace zandrel
