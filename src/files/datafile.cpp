#include "files/datafile.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <numeric>

#include "files/datatext.h"
#include "files/journal.h"
#include "files/recentfiles.h"
#include "files/snapshots.h"
#include "files/wholefile.h"
#include "image/history.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/packets.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/desktop.h"
#include "util/diagnostics.h"
#include "util/numbers.h"
#include "util/store.h"

namespace zandrel {

MenuItem mnuOpen, mnuSaveAs, mnuDefault, mnuLoadDefaultAtStart, mnuSaveDefaultOnExit;

namespace {

constexpr std::size_t kLargestFile = 16U << 20;
constexpr std::size_t kIgnVsTps = 0x99;
constexpr std::size_t kBoostVsIgn = 0x97;
constexpr int kIgnVsTpsFrame = 1470;
constexpr int kBoostVsIgnFrame = 460;
constexpr std::size_t kLongestData = 253;  // of a block on the line

// Title of the file that the dialog has chosen last.
std::string DialogTitle;

// Everything that a rejected file has to give back.
struct Before {
    decltype(ReadData) Blocks = ReadData;
    decltype(BlockChanged) Changed = BlockChanged;
    decltype(BlockInForce) InForce = BlockInForce;
    decltype(MapCellChanged) Cells = MapCellChanged;
    decltype(BlockLength) Length = BlockLength;
    decltype(BlockRead) Read = BlockRead;
    decltype(BlockWrite) Write = BlockWrite;
    std::string Notes = txtNotes.Text;
    std::string Engine = VerName, Number = VerNumber;
    std::string Updated = LastUpdate;
    TabStrip Tabs = SSTab1;
    bool IgnVsTps = FraSettings[kIgnVsTpsFrame].Enabled;
    bool BoostVsIgn = FraSettings[kBoostVsIgnFrame].Enabled;
};

std::string MapFolder() {
    const std::string fallback = ProgramFolder + "/Maps/";
    const std::string folder = GetSetting("Settings", "MapPath", fallback);
    return FolderOpens(folder) ? folder : fallback;
}

FileChoice DataFileChoice(bool save) {
    return {.Save = save,
            .Filters = {"All Files (*.*)", "Data Files(*.dat)"},
            .FilterIndex = 1,
            .Folder = MapFolder(),
            .Suffix = save ? "dat" : ""};
}

// Offers to fetch a block that older files lack, as often as that fails.
void ReadMissing(std::size_t block, const std::string& name) {
    const std::string question = "This file does not contain Settings 4 \"" + name +
                                 "\" data.\nDo you want to read the missing setting now from an attached "
                                 "Power-FC?\n\nAnswer No to continue without \"" +
                                 name + "\".";
    while (MessageBox(question, Box::YesNo) == Answer::Yes) {
        if (ReadBlock(static_cast<int>(block), BlockLength[block], true)) return;
    }
}

// Keeps what the build reads and drops all else. False: a block is missing, the user was told.
bool CheckBlocks() {
    for (std::size_t b = 0; b < ReadData.size(); ++b) {
        if (!BlockRead[b]) {
            ReadData[b].clear();
        } else if (ReadData[b].size() < BlockLength[b]) {
            if (b == kIgnVsTps) {
                ReadMissing(b, "IGN vs TPS");
            } else if (b == kBoostVsIgn) {
                ReadMissing(b, "Boost vs Ign SF");
            } else {
                MessageBox("File Format Error: Missing Data " + Hex2(static_cast<std::uint32_t>(b)),
                           Box::Critical);
                return false;
            }
        }
    }
    return true;
}

// A frame whose block the file lacks is shown, but can't be edited or sent.
void EnableIfComplete(int frame, std::size_t block) {
    if (!FraSettings[frame].Visible) return;
    const bool complete = ReadData[block].size() >= BlockLength[block];
    SetFrameEnabled(frame, complete);
    BlockWrite[block] = complete;
}

// What was loaded may be sent, but for map blocks too long for the line: they are sent as they stand.
void PutInForce() {
    for (std::size_t b = 0; b < ReadData.size(); ++b) BlockInForce[b] = !ReadData[b].empty();
    for (int map = 0; map < kMapTabs; ++map) {
        const auto tab = static_cast<std::size_t>(map);
        if (!SSTab1.TabVisible[tab]) continue;
        for (int k = 0; k < MapCellSize[tab] * 4; ++k) {
            const auto b = static_cast<std::size_t>(MapFirstBlock[tab] + k);
            if (ReadData[b].size() > kLongestData) BlockInForce[b] = false;
        }
    }
}

// Takes the blocks and notes of a file in.
void TakeIn(DataText data) {
    ReadData = std::move(data.Blocks);
    txtNotes.Text = std::move(data.Notes);
    for (std::size_t b = 0; b < ReadData.size(); ++b) {
        if (data.Present[b]) BlockChanged[b] = false;
    }
}

// False: the user was told why not.
bool AcceptImage(const std::string& title, bool mayLack) {
    if (!ValidVersion(false, true)) {
        MessageBox(title + "[" + ReadVerName() + " v" + ReadVerNumber() +
                       "] is not recognised, or the Power-FC is not supported by this version",
                   Box::Critical);
        return false;
    }
    if (!mayLack && !CheckBlocks()) return false;
    EnableIfComplete(kIgnVsTpsFrame, kIgnVsTps);
    EnableIfComplete(kBoostVsIgnFrame, kBoostVsIgn);
    PutInForce();
    BlockChanged.fill(false);
    MapCellChanged = {};
    ClearHistory();
    DisplayAllData();
    cmdUpdate.Enabled = false;
    cmdWriteAll.Enabled = true;
    SetCaption(title);
    return true;
}

// What of an earlier build no settings record brings back.
void RestoreFrame(int frame, bool enabled) {
    if (FraSettings[frame].Visible) SetFrameEnabled(frame, enabled);
}

// The display of the build that was in force before, or of none.
void RestoreVersion(const Before& before) {
    VerName = before.Engine;
    VerNumber = before.Number;
    LastUpdate = before.Updated;
    if (VerName.empty()) {
        HideAllFrames();
        mnuReCalcBase.Enabled = false;
    } else {
        ApplySettingsProfile(VerName, VerNumber);
        ApplyLogProfile(VerName, VerNumber);
        RestoreFrame(kIgnVsTpsFrame, before.IgnVsTps);
        RestoreFrame(kBoostVsIgnFrame, before.BoostVsIgn);
    }
    BlockLength = before.Length;
    BlockRead = before.Read;
    BlockWrite = before.Write;
    SSTab1 = before.Tabs;
    LogItemNamesInit();
    InitMonitorWindow();
    SetCaption("");
    DisplayAllData();
}

// The image and the display of before, both of one build again.
void Restore(Before& before) {
    ReadData = std::move(before.Blocks);
    txtNotes.Text = before.Notes;
    BlockChanged = before.Changed;
    BlockInForce = before.InForce;
    MapCellChanged = before.Cells;
    if (VerName != before.Engine || VerNumber != before.Number) RestoreVersion(before);
}

// False: the image is as it was, the user was told why.
bool Replace(DataText data, const std::string& title, bool mayLack) {
    Before before;
    TakeIn(std::move(data));
    if (AcceptImage(title, mayLack)) return true;
    Restore(before);
    return false;
}

std::string WithoutQuotes(const std::string& path) {
    const bool quoted = path.size() >= 2 && path.front() == '"' && path.back() == '"';
    return quoted ? path.substr(1, path.size() - 2) : path;
}

// Length of a block as its frame on the line counts it.
std::size_t SurveyLength(std::size_t block) {
    const ByteString& data = ReadData[block];
    std::size_t sum = block + data.size() + 1;
    for (const char byte : data) sum += static_cast<std::uint8_t>(byte);
    return data.size() + 1 - ((sum & 255) > 254 ? 1 : 0);
}

}  // namespace

void LoadFilesDesign() {
    mnuOpen = {.Caption = "&Open..."};
    mnuSaveAs = {.Caption = "Save &As..."};
    mnuDefault = {.Caption = "Open &Default"};
    mnuLoadDefaultAtStart = {.Caption = "Load Default at Start"};
    mnuSaveDefaultOnExit = {.Caption = "Save Default on Exit"};
    mnuRecentFile.fill({.Visible = false});
    mnuRecentFileSep = {.Caption = "-", .Visible = false};
    DialogTitle.clear();
    mnuSaveAs_Click = SaveAs;
    EndJournal();
    AfterGesture = WriteJournal;
    BeforeUnsavedIsReplaced = BeforeWriteAll = [] { KeepSnapshot(); };
    AfterReadAll = [] {
        RestartJournal();
        KeepSnapshot();
    };
}

void OpenFile(std::string& path, bool validate) {
    // What is being read or written is not replaced on the way.
    if (LongOperationRuns()) return;
    Answer answer{};
    CheckUnsavedData(answer);
    if (answer == Answer::Cancel) return;
    if (mnuCompare.Checked) EndComparison();
    if (path.empty()) {
        path = Desktop.ChooseFile(DataFileChoice(false));
        if (path.empty()) return;
        DialogTitle = FileTitleOf(path);
    } else {
        path = WithoutQuotes(path);
    }
    const std::string title = FileTitleOf(path);
    std::string bytes;
    const FileResult read = ReadWholeFile(path, kLargestFile, bytes);
    if (read == FileResult::NotOpened) {
        MessageBox("Error opening " + title, Box::Critical);
        return;
    }
    SaveSetting("Settings", "MapPath", FolderOf(path, title));
    const LongOperation running;
    BusyPointer(true);
    if (read != FileResult::Done) {
        MessageBox("File Format Error", Box::Critical);
    } else {
        DataText data;
        ParseDataText(bytes, data);
        if (validate) {
            if (Replace(std::move(data), title, false)) RestartJournal();
        } else {
            TakeIn(std::move(data));
            RestartJournal();
            // Nobody knows yet which build these blocks are of.
            BlockInForce.fill(false);
            MapCellChanged = {};
            ClearHistory();
        }
    }
    UpdateFileMenu(path);
    BusyPointer(false);
}

bool TakeInImage(DataText data, const std::string& title) {
    const LongOperation running;
    BusyPointer(true);
    const bool accepted = Replace(std::move(data), title, true);
    BusyPointer(false);
    return accepted;
}

void SaveFile(const std::string& path) {
    if (!WriteWholeFile(path, FormatDataText(ReadData, txtNotes.Text))) {
        DebugLog("Could not save " + path);
        return;
    }
    SetCaption(DialogTitle);
    DataChanged = false;
    RestartJournal();
    UpdateFileMenu(path);
}

void mnuOpen_Click() {
    std::string path;
    OpenFile(path, true);
}

void mnuDefault_Click() {
    std::string path = ProgramFolder + "/default.dat";
    OpenFile(path, true);
}

void mnuRecentFile_Click(int index) {
    std::string path = mnuRecentFile[static_cast<std::size_t>(index)].Tag;
    OpenFile(path, true);
}

void SaveAs() {
    FileChoice choice = DataFileChoice(true);
    // Snapshots are removed when they are old; what is saved on purpose stays.
    if (IsSnapshotFolder(choice.Folder)) choice.Folder = ProgramFolder + "/Maps/";
    const auto dash = MainFormState.Caption.find(" - ");
    if (dash != std::string::npos) choice.Name = MainFormState.Caption.substr(dash + 3);
    const std::string path = Desktop.ChooseFile(choice);
    if (path.empty()) return;
    DialogTitle = FileTitleOf(path);
    SaveSetting("Settings", "MapPath", FolderOf(path, DialogTitle));
    SaveFile(path);
}

bool TakesDrop(const std::string& firstFile) {
    std::string end = firstFile.substr(firstFile.size() - std::min<std::size_t>(3, firstFile.size()));
    for (char& c : end) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return end == "dat";
}

void Form_OLEDragDrop(const std::vector<std::string>& files) {
    if (files.empty()) return;
    std::string path = files.front();
    OpenFile(path, true);
}

void SSTab1_OLEDragDrop(const std::vector<std::string>& files) {
    for (std::string path : files) OpenFile(path, true);
}

void txtRnD_OLEDragDrop(const std::vector<std::string>& files) {
    std::string table = "\t";
    for (std::uint32_t block = 0x30; block <= 0xFF; ++block) table += "\t0x" + Hex2(block);
    table += "\r\n";
    for (std::string path : files) {
        OpenFile(path, false);
        table += ReadVerName() + "\t" + ReadVerNumber();
        for (std::size_t block = 0x30; block <= 0xFF; ++block) {
            table += "\t";
            if (!ReadData[block].empty()) table += std::to_string(SurveyLength(block));
        }
        table += "\r\n";
    }
    Desktop.SetClipboard(table);
}

}  // namespace zandrel
