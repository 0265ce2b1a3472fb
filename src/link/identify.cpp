#include "link/identify.h"

#include <array>
#include <chrono>
#include <thread>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/scan.h"
#include "link/transfers.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "util/codepage.h"
#include "util/desktop.h"
#include "util/diagnostics.h"
#include "util/product.h"

namespace zandrel {

bool CheckCorvaneVer = true;
std::int16_t AuxChannelCount = 8;

namespace {

// Received texts of the listeners, one to each port and a spare.
std::array<std::string, 17> ReceiveBuffer;
constexpr std::size_t kKeptText = 4096;  // an announcement is short; a chattering device is not kept for ever

bool ListeningNow = false;

void CloseListeners() {
    for (SerialPort& port : MSComm) {
        if (port.PortOpen()) port.Close();
    }
}

void OpenListeners() {
    for (std::size_t i = 0; i < MSComm.size(); ++i) {
        ReceiveBuffer[i].clear();
        MSComm[i].CommPort = static_cast<int>(i) + 1;
        static_cast<void>(MSComm[i].Open());  // a port that is not there does not announce anything
    }
}

void MSComm_OnComm(std::size_t index) {
    std::string& buffer = ReceiveBuffer[index];
    buffer += MSComm[index].Input(0);
    if (buffer.size() > kKeptText) buffer.erase(0, buffer.size() - kKeptText);
}

// Version that the announcement in `buffer` tells; empty for none yet.
std::string FoundText(const std::string& buffer) {
    const auto mark = buffer.find("KVX:");
    if (mark != buffer.npos && buffer.size() >= mark + 8) return buffer.substr(mark + 4, 4);
    if (buffer.find("V1K") != buffer.npos || buffer.find("V2K") != buffer.npos) return "V1.x";
    return {};
}

void ShowHint(std::uint32_t t) {
    Progress2.Bar = (t % 1000) / 10.0;
    if (t < 8000) return;
    // A hint changes only when a look falls on its very millisecond.
    switch (t % 8000) {
        case 0:
            Progress2.Status = "Waiting for Corvane...";
            break;
        case 2000:
            Progress2.Status = "Have you turned ON the ignition yet?";
            break;
        case 4000:
            Progress2.Status = "Try turning the ignition off then on.";
            break;
        case 6000:
            Progress2.Status = "Check the Corvane LED is illuminated.";
            break;
        default:
            break;
    }
}

// Index of the port on which the Corvane announces itself, -1 when the user cancels.
int ListenForCorvane(std::string& found) {
    const std::uint32_t start = TickCount();
    while (!Progress2.Cancelled) {
        ShowHint(TickCount() - start);
        Yield();  // the user may have cancelled: seen before the next round, after this look at the buffers
        for (std::size_t i = 0; i < MSComm.size(); ++i) {
            MSComm_OnComm(i);
            found = FoundText(ReceiveBuffer[i]);
            if (!found.empty()) return static_cast<int>(i);
        }
        // Short enough to look at every millisecond, long enough not to burn a core while the user is busy.
        std::this_thread::sleep_for(std::chrono::microseconds(400));
    }
    return -1;
}

// Asks the interface which it is. False: no answer, or one that makes no sense.
bool ReadCorvaneVer() {
    ByteString answer;
    if (ReadPacketData("\x01", 0, answer, false) != LinkResult::Success) {
        ByteString query(1, '\0');
        if (ReadPacket(query, true) != LinkResult::Success) return false;
        CheckCorvaneVer = false;
        answer = ByteString("\x01\x00", 2);
    }
    if (answer.size() == 2) {
        CorvaneVer = "V1.X";
    } else if (answer.size() == 6) {
        CorvaneVer = FromCodePage(answer.substr(0, 4));
    } else {
        MessageBox("Invalid Corvane version response!", Box::Exclamation);
        DebugLog("Invalid Corvane version response!");
        return false;
    }
    SetAuxChannelCount();
    DisplayInitForCorvaneVer();
    InitMonitorAux();
    return true;
}

// What the Power-FC, or the image without one, was called when the version was looked at last.
std::string NamedEngine, NamedNumber;

// Fetches the blocks that name the build. The older families keep them in 0x6B and 0x6C.
bool ReadVersionBlocks() {
    if (ReadBlock(0xF3, 8, false)) return ReadBlock(0xF5, 5, true);
    if (ReadBlock(0x6B, 8, true)) {
        if (!ReadBlock(0x6C, 5, true)) return false;
        // This Power-FC has no 0xF3. What an earlier one left there would name the wrong build.
        ReadData[0xF3].clear();
        ReadData[0xF5].clear();
        return true;
    }
    DebugLog("Error reading PFC version");
    ShowNotResponding(true);
    return false;
}

void ScanUnknownVersion(const std::string& engine, const std::string& version) {
    MessageBox(engine + " version " + version + " is not yet supported.\n" +
                   "Please complete the following scan then save and email to\n" + kSupportAddress,
               Box::Critical);
    mnuScan_Click();
    SetCaption("scan " + engine + " v" + version + ".dat");
    if (mnuSaveAs_Click) mnuSaveAs_Click();
}

// The blocks that name the build, as the image held them before a Power-FC was asked.
class IdentityBefore {
  public:
    // The image stays one of the build that it is of.
    void PutBack() const {
        for (std::size_t i = 0; i < Blocks.size(); ++i) ReadData[kIdentity[i]] = Blocks[i];
    }

  private:
    static constexpr std::array<std::size_t, 4> kIdentity = {0xF3, 0xF5, 0x6B, 0x6C};
    std::array<ByteString, 4> Blocks = {ReadData[0xF3], ReadData[0xF5], ReadData[0x6B], ReadData[0x6C]};
};

bool FailValidVersion(bool reached) {
    ErrorLog("ValidVersion");
    return reached;
}

}  // namespace

void ComAutoDetect() {
    if (ListeningNow) return;
    const LongOperation running;
    ListeningNow = true;
    if (MSComm1.PortOpen()) MSComm1.Close();
    MessageBox(
        "1. Turn off ignition.\n"
        "2. Connect Corvane cable to Power-FC.\n"
        "3. Connect Corvane to this computer via serial or USB to serial cable.\n"
        "4. Get ready to turn ignition on after pressing OK.\n"
        "5. Press OK",
        Box::Information);
    ShowProgress(Progress2, "Turn igniton on now.");
    OpenListeners();
    std::string found;
    const int index = ListenForCorvane(found);
    HideProgress(Progress2);
    if (index >= 0) {
        MessageBox("Corvane " + FromCodePage(found) + " found on COM" + std::to_string(index + 1),
                   Box::Plain);
        CloseListeners();
        mnuCom[static_cast<std::size_t>(index)].Checked = false;
        mnuCom_Click(index);
    } else {
        MessageBox("Auto detect cancelled. No Corvane was found.\nCheck all connections, then try again.",
                   Box::Critical);
    }
    CloseListeners();
    ListeningNow = false;
}

std::string ReadVerName() {
    const std::string name = Trim(GetString("&HF3,1,8"));
    return name.empty() ? Trim(GetString("&H6B,1,8")) : name;
}

std::string ReadVerNumber() {
    return Trim(GetString(Trim(GetString("&HF3,1,8")).empty() ? "&H6C,1,5" : "&HF5,1,5"));
}

bool ImageIsInForce() {
    return !VerName.empty() && NamedEngine == VerName && NamedNumber == VerNumber;
}

bool ValidVersion(bool read, bool initialise) {
    ClearError();
    bool result = false;
    const IdentityBefore before;
    if (read) {
        if (!ComCheck(true)) return FailValidVersion(result);
        if (CheckCorvaneVer && !ReadCorvaneVer()) return FailValidVersion(result);
        if (!ReadVersionBlocks()) {
            before.PutBack();
            return FailValidVersion(result);
        }
    }
    const std::string engine = NamedEngine = ReadVerName();
    const std::string version = NamedNumber = ReadVerNumber();
    // While no version is in force, empty names are a change like any other.
    if (!VerName.empty() && engine == VerName && version == VerNumber) {
        result = true;
    } else {
        DebugLog("Version change detected:" + engine + version);
        cmdWriteAll.Enabled = false;
        cmdUpdate.Enabled = false;
        if (initialise) {
            const bool settings = ApplySettingsProfile(engine, version);
            const bool log = ApplyLogProfile(engine, version);
            result = settings && log;
            if (result) {
                VerName = engine;
                VerNumber = version;
                // What the image holds is of another Power-FC until it is read or loaded anew.
                BlockInForce.fill(false);
                BlockChanged.fill(false);
                MapCellChanged = {};
                ClearHistory();
                LastUpdate.clear();
                SetCaption("");
                if (read && !ReadBlock(ExtraBlock, BlockLength[ExtraBlock], true))
                    return FailValidVersion(result);
            }
        } else {
            result = IsKnownVersion(engine, version);
            // The image would be saved under the name of a build that it is not of.
            if (read && result) before.PutBack();
        }
        if (read && !result) ScanUnknownVersion(engine, version);
    }
    LogItemNamesInit();
    InitMonitorWindow();
    return result;
}

void mnuSetupCorvaneVer_Click(int index) {
    CorvaneVer = index == 0 ? "V1.X" : "V2.0";
    CheckCorvaneVer = true;
    SetAuxChannelCount();
    DisplayInitForCorvaneVer();
    InitMonitorAux();
}

void SetAuxChannelCount() {
    if (LogRuns()) return;
    AuxChannelCount = CorvaneVer == "V1.X" ? 4 : 8;
}

}  // namespace zandrel
