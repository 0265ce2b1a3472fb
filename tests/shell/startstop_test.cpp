#include "shell/startstop.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "files/datafile.h"
#include "files/datatext.h"
#include "files/journal.h"
#include "files/recentfiles.h"
#include "files/wholefile.h"
#include "image/accessors.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "shell/settingsstore.h"
#include "simulator/simulator.h"
#include "support/cleanstate.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

class StartStop : public CleanState {
  protected:
    StartStop() {
        MainFormReady = false;
        std::string ports = "1=" + device_.PortName();
        for (int n = 2; n <= 16; ++n) ports += "," + std::to_string(n) + "=/nowhere";
        setenv("ZANDREL_PORTS", ports.c_str(), 1);
    }
    ~StartStop() override { EndJournal(); }
    static std::string Stored(const std::string& key) { return GetSetting("Settings", key, "(none)"); }
    static void Store(const std::string& key, const std::string& value) {
        SaveSetting("Settings", key, value);
    }

    powerfc::Simulator device_;
};

TEST_F(StartStop, EmptyStore_StartsWithTheDefaults) {
    frmMain_Load();
    EXPECT_EQ(MainFormState.Left, 450);
    EXPECT_EQ(MainFormState.Top, 450);
    EXPECT_EQ(MainFormState.Width, 11205);
    EXPECT_EQ(MainFormState.Height, 8130);
    EXPECT_EQ(MainFormState.WindowState, 0);
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_EQ(CorvaneVer, "V2.0");
    EXPECT_TRUE(CheckCorvaneVer);
    EXPECT_EQ(StoichAF, 14.7);
    EXPECT_EQ(ComTimeOutTicks, 250);
    EXPECT_EQ(ComRetries, 2);
    EXPECT_EQ(txtComTimeOut, "250");
    EXPECT_EQ(txtComRetries, "2");
    EXPECT_TRUE(MainFormReady);
    EXPECT_FALSE(DataChanged);
    for (int tab = 0; tab < kGeneralTab; ++tab) EXPECT_FALSE(SSTab1.TabVisible[tab]) << tab;
    EXPECT_TRUE(SSTab1.TabVisible[kGeneralTab]);
    EXPECT_EQ(SSTab1.Tab, kGeneralTab);
    EXPECT_EQ(SSTab1.TabsPerRow, 1);
    EXPECT_TRUE(mnuInjMapDisplay[0].Checked);
    EXPECT_TRUE(mnuSetupMapColourScheme[1].Checked);
    EXPECT_TRUE(mnuBaseMapDisplay[0].Checked);
    EXPECT_TRUE(mnuSetupCorvaneVer[1].Checked);
    EXPECT_FALSE(mnuMapRefLabels.Checked);
    EXPECT_TRUE(mnuCheckUnsavedData.Checked);
    EXPECT_EQ(ReadData[0x86], ByteString(100, '\0'));
    EXPECT_TRUE(device_.Received().empty());
}

TEST_F(StartStop, StoredValues_ComeBack) {
    Store("MainLeft", "1200");
    Store("MainWindowState", "2");
    Store("LastCorvaneVer", "V1.X");
    Store("ComTimeOutTicks", "40000");
    Store("ComRetries", "5");
    Store("MainMapRefLabels", "True");
    Store("StoichAF", "9.99");
    Store("InjMapType", "2");
    Store("MapColourScheme", "0");
    Store("BaseMapType", "3");
    Store("ExitCheckUnsavedData", "False");
    Store("MainTab", "7");
    frmMain_Load();
    EXPECT_EQ(MainFormState.Left, 1200);
    EXPECT_EQ(MainFormState.WindowState, 2);
    EXPECT_TRUE(mnuSetupCorvaneVer[0].Checked);
    EXPECT_TRUE(chkSettingBit[552].Visible);
    EXPECT_EQ(ComTimeOutTicks, 40000);
    EXPECT_EQ(txtComTimeOut, "40000");
    EXPECT_EQ(ComRetries, 5);
    EXPECT_TRUE(mnuMapRefLabels.Checked);
    EXPECT_EQ(StoichAF, 14.7);  // below 10
    EXPECT_EQ(InjMapDisplay, 2);
    EXPECT_EQ(MapColourScheme, 0);
    EXPECT_EQ(BaseMapDisplay, 3);
    EXPECT_FALSE(mnuCheckUnsavedData.Checked);
    EXPECT_EQ(SSTab1.Tab, kGeneralTab);  // tab 7 is hidden until a version is known
}

TEST_F(StartStop, StoichAF_OutsideItsRangeOrNoNumber_FallsBack) {
    for (const auto& [text, expected] : {std::pair<const char*, double>{"10", 10},
                                         {"30", 30},
                                         {"30.1", 14.7},
                                         {"9.9", 14.7},
                                         {"petrol", 14.7},
                                         {"12.5x", 12.5}}) {
        Store("StoichAF", text);
        frmMain_Load();
        EXPECT_EQ(StoichAF, expected) << text;
    }
}

TEST_F(StartStop, StoredPort_IsOpenedAndNothingSent) {
    Store("ComPort", "1");
    frmMain_Load();
    EXPECT_TRUE(MSComm1.PortOpen());
    EXPECT_TRUE(mnuCom[0].Checked);
    EXPECT_TRUE(device_.Received().empty());
}

TEST_F(StartStop, StoredPortOutsideTheRangeOrHidden_IsIgnored) {
    for (const char* port : {"0", "17", "-1"}) {
        Store("ComPort", port);
        frmMain_Load();
        EXPECT_FALSE(MSComm1.PortOpen()) << port;
    }
    Store("ComPort", "1");
    mnuCom[0].Visible = false;
    frmMain_Load();
    EXPECT_FALSE(MSComm1.PortOpen());
}

TEST_F(StartStop, StoredPortThatIsGone_IsToldAndTheStartGoesOn) {
    Store("ComPort", "5");
    Store("InjMapType", "1");
    ExpectMessage("Error opening Com5");
    frmMain_Load();
    EXPECT_EQ(InjMapDisplay, 1);
}

TEST_F(StartStop, UnparsableKey_IsToldAndTheRestSkipped) {
    for (const char* key :
         {"MainLeft", "MainWindowState", "ComPort", "ComTimeOutTicks", "ComRetries", "MainTab", "MainTop",
          "MainHeight", "MainWidth", "StaurtupLoadDefault", "ExitSaveDefault", "ExitCheckUnsavedData",
          "MainMapRefLabels", "InjMapType", "MapColourScheme", "BaseMapType"}) {
        OpenSettingsStore(Folder + "/" + key + ".ini");
        Store(key, "garbage");
        ExpectBox("Error in frmMain_Load", Box::Critical);
        frmMain_Load();
        EXPECT_TRUE(NoMessageLeft()) << key;
    }
    OpenSettingsStore(Folder + "/again.ini");
    Store("MainTop", "x");
    Store("InjMapType", "2");
    InjMapDisplay = 0;
    ExpectMessage("Error in frmMain_Load");
    frmMain_Load();
    EXPECT_EQ(InjMapDisplay, 0);
    EXPECT_TRUE(MainFormReady);
}

TEST_F(StartStop, Stop_WritesItsKeys) {
    Store("ComPort", "1");
    frmMain_Load();
    MainFormState.Left = 600;
    MainFormState.Width = 12000;
    SSTab1.Tab = 12;
    mnuInjMapDisplay_Click(1);
    mnuBaseMapDisplay_Click(2);
    mnuSetupMapColourScheme_Click(0);
    mnuMapRefLabels_Click();
    StoichAF = 14.68;
    CorvaneVer = "V1.X";
    frmMain_Unload();
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_EQ(Stored("LastCorvaneVer"), "V1.X");
    EXPECT_EQ(Stored("ComPort"), "1");
    EXPECT_EQ(Stored("MainWindowState"), "0");
    EXPECT_EQ(Stored("MainLeft"), "600");
    EXPECT_EQ(Stored("MainTop"), "450");
    EXPECT_EQ(Stored("MainHeight"), "8130");
    EXPECT_EQ(Stored("MainWidth"), "12000");
    EXPECT_EQ(Stored("MainTab"), "12");
    EXPECT_EQ(Stored("MainMapRefLabels"), "True");
    EXPECT_EQ(Stored("ExitCheckUnsavedData"), "True");
    EXPECT_EQ(Stored("StoichAF"), "14.68");
    EXPECT_EQ(Stored("InjMapType"), "1");
    EXPECT_EQ(Stored("BaseMapType"), "2");
    EXPECT_EQ(Stored("MapColourScheme"), "0");
    EXPECT_EQ(Stored("ComTimeOutTicks"), "(none)");
    EXPECT_EQ(Stored("ComRetries"), "(none)");
}

TEST_F(StartStop, StopWhileMaximised_KeepsTheNormalPlaceAndTheTab) {
    Store("MainLeft", "700");
    Store("MainTab", "3");
    frmMain_Load();
    MainFormState.WindowState = 2;
    MainFormState.Left = 0;
    frmMain_Unload();
    EXPECT_EQ(Stored("MainWindowState"), "2");
    EXPECT_EQ(Stored("MainLeft"), "700");
    EXPECT_EQ(Stored("MainTab"), "3");
}

TEST_F(StartStop, StopWithoutAPort_KeepsTheOldNumber) {
    Store("ComPort", "1");
    frmMain_Load();
    mnuCom_Click(0);
    frmMain_Unload();
    EXPECT_EQ(Stored("ComPort"), "1");
}

TEST_F(StartStop, Cancel_KeepsTheProgramAndTheStore) {
    frmMain_Load();
    DataChanged = true;
    mnuSaveAs_Click = [] {};
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::Cancel);
    EXPECT_FALSE(frmMain_QueryUnload());
    EXPECT_EQ(Stored("LastCorvaneVer"), "(none)");
    // Yes, but the save fails.
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::Yes);
    EXPECT_FALSE(frmMain_QueryUnload());
    EXPECT_TRUE(DataChanged);
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::No);
    EXPECT_TRUE(frmMain_QueryUnload());
}

// Each row: a key that can't be read, and how far the start has come then.
TEST_F(StartStop, UnparsableKey_StopsTheStartAtItsPlace) {
    struct Row {
        const char* Key;
        bool PlaceKnown, PortOpen, LinkKnown, TabsHidden, LabelsTicked, ModeKnown;
    };
    for (const Row& row : {Row{"MainLeft", false, false, false, false, false, false},
                           Row{"ComPort", true, false, false, false, false, false},
                           Row{"ComTimeOutTicks", true, true, false, false, false, false},
                           Row{"StaurtupLoadDefault", true, true, true, true, false, false},
                           Row{"ExitSaveDefault", true, true, true, true, false, false},
                           Row{"ExitCheckUnsavedData", true, true, true, true, false, false},
                           Row{"MainTab", true, true, true, true, false, false},
                           Row{"MainMapRefLabels", true, true, true, true, false, false},
                           Row{"InjMapType", true, true, true, true, true, false},
                           Row{"MapColourScheme", true, true, true, true, true, true}}) {
        SCOPED_TRACE(row.Key);
        OpenSettingsStore(Folder + "/at-" + row.Key + ".ini");
        if (MSComm1.PortOpen()) mnuCom_Click(0);
        LoadDesign();
        InjMapDisplay = 0;
        ComRetries = 2;
        Store("MainTop", "999");
        Store("ComPort", "1");
        Store("ComRetries", "7");
        Store("MainMapRefLabels", "True");
        Store("InjMapType", "2");
        Store(row.Key, "garbage");
        ExpectMessage("Error in frmMain_Load");
        frmMain_Load();
        EXPECT_EQ(MainFormState.Top == 999, row.PlaceKnown);
        EXPECT_EQ(MSComm1.PortOpen(), row.PortOpen);
        EXPECT_EQ(ComRetries == 7, row.LinkKnown);
        EXPECT_EQ(!SSTab1.TabVisible[0], row.TabsHidden);
        EXPECT_EQ(mnuMapRefLabels.Checked, row.LabelsTicked);
        EXPECT_EQ(InjMapDisplay == 2, row.ModeKnown);
    }
}

constexpr char kUnsaved[] = "You have made setting changes that have not been saved.\nDo you want to save?";

// A data file of build `key` in the test's folder.
class StartWithFile : public StartStop {
  protected:
    StartWithFile() : current_(std::filesystem::current_path()) { std::filesystem::current_path(Folder); }
    ~StartWithFile() override { std::filesystem::current_path(current_); }

    static std::array<ByteString, 256> BlocksOf(const std::string& key) {
        powerfc::Options options;
        options.Version = key;
        const powerfc::Simulator device(options);
        std::array<ByteString, 256> blocks;
        for (const int code : device.BlockCodes()) {
            blocks[static_cast<std::size_t>(code)] = device.BlockString(code);
        }
        return blocks;
    }

    std::string FileOf(const std::string& key, const std::string& name) {
        const std::string path = Folder + "/" + name;
        EXPECT_TRUE(WriteWholeFile(path, FormatDataText(BlocksOf(key), "")));
        return path;
    }

    // As the end of one run and the beginning of the next.
    void StartAnew(const std::string& commandLine = "") {
        FlushSettingsStore();
        OpenSettingsStore(Folder + "/settings.ini");
        ReadData.fill({});
        BlockChanged.fill(false);
        VerName.clear();
        VerNumber.clear();
        MainFormReady = false;
        for (MenuItem& item : mnuCom) item = {};
        LoadDesign();
        frmMain_Load(commandLine);
    }

    static std::string Recent(int n) {
        return GetSetting("RecentDatFiles", "RecentFile" + std::to_string(n), "(none)");
    }

    std::filesystem::path current_;
};

TEST_F(StartWithFile, CommandLine_IsOpenedWithoutAQuestion) {
    const std::string path = FileOf("RB26DETT6.42", "my map.dat");
    frmMain_Load(path);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - my map.dat");
    EXPECT_EQ(ReadData[0x8D], BlocksOf("RB26DETT6.42")[0x8D]);
    EXPECT_TRUE(SSTab1.TabVisible[0]);
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_FALSE(DataChanged);
    EXPECT_EQ(Recent(1), path);
    EXPECT_EQ(mnuRecentFile[0].Tag, path);
    EXPECT_EQ(Stored("MapPath"), Folder + "/");
    EXPECT_TRUE(device_.Received().empty());
    EXPECT_EQ(BusyPointers(), "10");
}

TEST_F(StartWithFile, QuotedPath_LeavesTheDefaultFileAlone) {
    const std::string path = FileOf("RB26DETT6.42", "a b.dat");
    FileOf("SR20DET5.08", "default.dat");
    Store("StaurtupLoadDefault", "True");
    frmMain_Load("\"" + path + "\"");
    EXPECT_EQ(VerName, "RB26DETT");
    EXPECT_EQ(Recent(1), path);
    EXPECT_EQ(Recent(2), "(none)");
    EXPECT_TRUE(mnuLoadDefaultAtStart.Checked);
}

TEST_F(StartWithFile, OneQuoteOrNoSuchFile_IsToldAndTheStartGoesOn) {
    const std::string path = FileOf("RB26DETT6.42", "x.dat");
    Store("InjMapType", "2");
    ExpectBox("Error opening x.dat\"", Box::Critical);
    frmMain_Load(path + "\"");
    EXPECT_EQ(VerName, "");
    EXPECT_EQ(InjMapDisplay, 2);
    ExpectBox("Error opening nothing.dat", Box::Critical);
    frmMain_Load(Folder + "/nothing.dat");
    EXPECT_EQ(Recent(1), "(none)");
    EXPECT_EQ(SSTab1.Tab, kGeneralTab);
}

TEST_F(StartWithFile, NamesInAnyScript_AreOpened) {
    int n = 0;
    for (const char* name :
         {"\u65e5\u672c\u8a9e.dat", "\u0437\u0430\u043c\u0435\u0440 1.dat", "\u0645\u0644\u0641.dat",
          "it's \"so\" 100% & ;=,#.dat", " blank .dat", "\u00e9t\u00e9 [1].dat", "a\nb.dat"}) {
        const std::string path = FileOf("RB26DETT6.42", name);
        StartAnew(path);
        EXPECT_EQ(MainFormState.FileTitle, name);
        EXPECT_EQ(Recent(1), path);
        ++n;
        // The list is in the store, whatever stands in a name.
        FlushSettingsStore();
        OpenSettingsStore(Folder + "/settings.ini");
        EXPECT_EQ(Recent(1), path) << n;
    }
}

TEST_F(StartWithFile, DefaultFile_IsLoadedOnlyWhenTicked) {
    const std::string path = FileOf("RB26DETT6.42", "default.dat");
    frmMain_Load();
    EXPECT_EQ(VerName, "");
    Store("StaurtupLoadDefault", "True");
    StartAnew();
    EXPECT_EQ(VerName, "RB26DETT");
    EXPECT_EQ(Recent(1), path);
    std::filesystem::remove(path);
    ExpectBox("Error opening default.dat", Box::Critical);
    StartAnew();
    EXPECT_EQ(VerName, "");
}

TEST_F(StartWithFile, StoredTab_ComesBackWhenTheFileShowsIt) {
    const std::string path = FileOf("RB26DETT6.42", "x.dat");
    Store("MainTab", "8");
    frmMain_Load(path);
    ASSERT_TRUE(SSTab1.TabVisible[8]);
    EXPECT_EQ(SSTab1.Tab, 8);
    for (const char* hidden : {"-1", "99", "32767"}) {
        Store("MainTab", hidden);
        StartAnew(path);
        EXPECT_EQ(SSTab1.Tab, kGeneralTab) << hidden;
    }
}

TEST_F(StartWithFile, RejectedFile_IsToldAndTheWindowStaysEmpty) {
    std::ofstream(Folder + "/broken.dat") << "TTnotes only\r\n";
    ExpectBox("broken.dat[ v] is not recognised, or the Power-FC is not supported by this version",
              Box::Critical);
    frmMain_Load(Folder + "/broken.dat");
    EXPECT_FALSE(SSTab1.TabVisible[0]);
    EXPECT_EQ(SSTab1.Tab, kGeneralTab);
    EXPECT_EQ(Recent(1), Folder + "/broken.dat");
    EXPECT_TRUE(mnuInjMapDisplay[0].Checked) << "the start goes on";
}

TEST_F(StartWithFile, UnparsableKeyBeforeIt_OpensNoFile) {
    const std::string path = FileOf("RB26DETT6.42", "x.dat");
    Store("ExitSaveDefault", "perhaps");
    ExpectMessage("Error in frmMain_Load");
    frmMain_Load(path);
    EXPECT_EQ(VerName, "");
    EXPECT_EQ(Recent(1), "(none)");
}

TEST_F(StartWithFile, Restart_BringsEverythingBackAsItWasLeft) {
    const std::string path = FileOf("RB26DETT6.42", "default.dat");
    Store("ComPort", "1");
    frmMain_Load(path);
    MainFormState.Left = 1500;
    MainFormState.Top = 900;
    MainFormState.Width = 13000;
    MainFormState.Height = 9000;
    SSTab1.Tab = 8;
    ASSERT_TRUE(SSTab1.TabVisible[8]);
    mnuLoadDefaultAtStart.Checked = true;
    mnuSaveDefaultOnExit.Checked = true;
    mnuCheckUnsavedData.Checked = false;
    mnuMapRefLabels_Click();
    mnuInjMapDisplay_Click(2);
    mnuSetupMapColourScheme_Click(0);
    mnuBaseMapDisplay_Click(1);
    StoichAF = 13.2;
    ASSERT_TRUE(frmMain_QueryUnload());
    frmMain_Unload();
    StartAnew();
    EXPECT_EQ(MainFormState.Left, 1500);
    EXPECT_EQ(MainFormState.Top, 900);
    EXPECT_EQ(MainFormState.Width, 13000);
    EXPECT_EQ(MainFormState.Height, 9000);
    EXPECT_EQ(SSTab1.Tab, 8);
    EXPECT_TRUE(MSComm1.PortOpen());
    EXPECT_TRUE(mnuLoadDefaultAtStart.Checked);
    EXPECT_TRUE(mnuSaveDefaultOnExit.Checked);
    EXPECT_FALSE(mnuCheckUnsavedData.Checked);
    EXPECT_TRUE(mnuMapRefLabels.Checked);
    EXPECT_EQ(InjMapDisplay, 2);
    EXPECT_EQ(MapColourScheme, 0);
    EXPECT_EQ(BaseMapDisplay, 1);
    EXPECT_EQ(StoichAF, 13.2);
    EXPECT_EQ(ReadData[0x8D], BlocksOf("RB26DETT6.42")[0x8D]);
    EXPECT_TRUE(device_.Received().empty());
}

TEST_F(StartWithFile, SaveDefaultOnExit_WritesToTheCurrentFolderWithoutItsName) {
    const std::string path = FileOf("RB26DETT6.42", "x.dat");
    std::filesystem::create_directory(Folder + "/elsewhere");
    frmMain_Load(path);
    std::filesystem::current_path(Folder + "/elsewhere");
    frmMain_Unload();
    EXPECT_FALSE(std::filesystem::exists("default.dat")) << "not ticked";
    mnuSaveDefaultOnExit.Checked = true;
    frmMain_Unload();
    EXPECT_EQ(FileBytes(Folder + "/elsewhere/default.dat"), FileBytes(path));
    EXPECT_FALSE(std::filesystem::exists(Folder + "/default.dat")) << "the program folder's own";
    EXPECT_EQ(Recent(1), "default.dat");
    EXPECT_EQ(Recent(2), path);
    EXPECT_EQ(Stored("ExitSaveDefault"), "True");
}

TEST_F(StartWithFile, SaveDefaultThatFails_DoesNotStopTheStop) {
    frmMain_Load(FileOf("RB26DETT6.42", "x.dat"));
    mnuSaveDefaultOnExit.Checked = true;
    std::filesystem::create_directory("default.dat");
    frmMain_Unload();
    EXPECT_EQ(Stored("ExitSaveDefault"), "True");
    EXPECT_EQ(Stored("BaseMapType"), "0");
}

TEST_F(StartWithFile, CancelOrAFailedSave_WritesNothingToTheStore) {
    frmMain_Load(FileOf("RB26DETT6.42", "x.dat"));
    FlushSettingsStore();
    const std::string before = FileBytes(Folder + "/settings.ini");
    mnuSaveAs_Click = SaveAs;
    DataChanged = true;
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Cancel);
    EXPECT_FALSE(frmMain_QueryUnload());
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    Desktop.ChooseFile = [this](const FileChoice&) { return Folder + "/missing/x.dat"; };
    EXPECT_FALSE(frmMain_QueryUnload()) << "the save failed";
    EXPECT_TRUE(DataChanged);
    FlushSettingsStore();
    EXPECT_EQ(Stored("LastCorvaneVer"), "(none)");
    EXPECT_EQ(FileBytes(Folder + "/settings.ini").find("MainLeft"), std::string::npos) << before;
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    Desktop.ChooseFile = [this](const FileChoice&) { return Folder + "/saved.dat"; };
    EXPECT_TRUE(frmMain_QueryUnload());
    EXPECT_FALSE(FileBytes(Folder + "/saved.dat").empty());
    mnuCheckUnsavedData.Checked = false;
    DataChanged = true;
    EXPECT_TRUE(frmMain_QueryUnload()) << "not asked";
}

// A crash leaves its edits; they come back before any file is opened, also where the store fails the start.
class AfterCrash : public StartWithFile, public testing::WithParamInterface<bool> {};

TEST_P(AfterCrash, UnsavedEdits_AreOfferedBeforeAnyFile) {
    const std::string path = FileOf("RB26DETT6.42", "default.dat");
    Store("StaurtupLoadDefault", "True");
    frmMain_Load(path);
    const int before = GetCell(0, 1, 1, false);
    SetCell(0, 1, 1, before + 1);
    ASSERT_TRUE(DataChanged);
    // Another run ends without its stop: its journal lies there, held by nobody.
    const std::string journal = FileBytes(Folder + "/Unsaved.journal");
    ASSERT_FALSE(journal.empty());
    frmMain_Unload();
    EXPECT_FALSE(std::filesystem::exists(Folder + "/Unsaved.journal"));
    std::ofstream(Folder + "/Unsaved.journal", std::ios::binary) << journal;
    if (!GetParam()) Store("MainTop", "garbage");
    std::vector<std::string> boxes;
    Desktop.MessageBox = [&boxes](const std::string& text, Box box) {
        boxes.push_back(text);
        return box == Box::YesNo ? Answer::Yes : box == Box::SaveQuestion ? Answer::Cancel : Answer::Ok;
    };
    DataChanged = false;
    StartAnew(path);
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(boxes[0].find("Zandrel did not end properly."), 0U) << boxes[0];
    // The file that was asked for is not opened over them without a question.
    EXPECT_EQ(boxes[1].find(GetParam() ? "You have made setting changes" : "Error in frmMain_Load"), 0U);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(GetCell(0, 1, 1, false), before + 1);
    EXPECT_EQ(VerName, "RB26DETT");
    frmMain_Unload();
    EXPECT_FALSE(std::filesystem::exists(Folder + "/Unsaved.journal"));
}

INSTANTIATE_TEST_SUITE_P(StoreReadable, AfterCrash, testing::Bool());

// A display mode that is none showed 0 in every cell for good, and a retry without end held the window.
TEST_F(StartStop, NumbersThatMakeNoSense_CountAsNotThere) {
    Store("InjMapType", "99");
    Store("BaseMapType", "-1");
    Store("MapColourScheme", "2");
    Store("ComRetries", "2147483647");
    Store("ComTimeOutTicks", "2147483647");
    frmMain_Load();
    EXPECT_EQ(InjMapDisplay, 0);
    EXPECT_EQ(BaseMapDisplay, 0);
    EXPECT_EQ(MapColourScheme, 1);
    EXPECT_EQ(ComRetries, kDefaultComRetries);
    EXPECT_EQ(txtComRetries, "2");
    EXPECT_EQ(ComTimeOutTicks, kDefaultComTimeOutTicks);
    EXPECT_EQ(txtComTimeOut, "250");
}

TEST_F(StartStop, RubbishOfTheRightType_IsTakenWithoutHarm) {
    struct Row {
        const char *Key, *Value;
    };
    for (const Row& row : {Row{"MainLeft", "3e38"},
                           Row{"MainTop", "-3e38"},
                           Row{"MainHeight", "0"},
                           Row{"MainWidth", "-1"},
                           Row{"MainWindowState", "-32768"},
                           Row{"MainWindowState", "7"},
                           Row{"MainTab", "32767"},
                           Row{"MainTab", "-32768"},
                           Row{"ComPort", "2147483647"},
                           Row{"ComPort", "-2147483648"},
                           Row{"ComTimeOutTicks", "-2147483648"},
                           Row{"ComRetries", "-2147483648"},
                           Row{"InjMapType", "2147483647"},
                           Row{"InjMapType", "-1"},
                           Row{"MapColourScheme", "32767"},
                           Row{"BaseMapType", "-2147483648"},
                           Row{"StoichAF", "1e308"},
                           Row{"StoichAF", "\xff\xfe"},
                           Row{"LastCorvaneVer", ""},
                           Row{"LastCorvaneVer", "\x01 any \xff text"},
                           Row{"MapPath", "\x01/nowhere"},
                           Row{"MapPath", ""}}) {
        SCOPED_TRACE(std::string(row.Key) + "=" + row.Value);
        OpenSettingsStore(Folder + "/right.ini");
        std::filesystem::remove(Folder + "/right.ini");
        OpenSettingsStore(Folder + "/right.ini");
        Store(row.Key, row.Value);
        LoadDesign();
        frmMain_Load();
        frmMain_Unload();
        EXPECT_LE(std::abs(MainFormState.Left), 480'000);
        EXPECT_LE(std::abs(MainFormState.Top), 480'000);
        EXPECT_FALSE(MSComm1.PortOpen());
        EXPECT_GE(StoichAF, 10);
        EXPECT_LE(StoichAF, 30);
    }
    for (int n = 1; n <= 4; ++n)
        SaveSetting("RecentDatFiles", "RecentFile" + std::to_string(n), "\x01&/\xff\n");
    frmMain_Load();
    EXPECT_TRUE(mnuRecentFile[3].Visible);
}

TEST_F(StartStop, StartThatCouldNotTakeTheKeysIn_KeepsThemBesideTheStore) {
    OpenSettingsStore("");
    const std::string text = "[Settings]\nMainLeft=oops\nInjMapType=2\n; mine\nhalf a li";
    std::ofstream(Folder + "/settings.ini") << text;
    OpenSettingsStore(Folder + "/settings.ini");
    ExpectBox("Error in frmMain_Load", Box::Critical);
    frmMain_Load();
    frmMain_Unload();
    EXPECT_EQ(FileBytes(Folder + "/settings.ini.unread"), text);
    const std::string now = FileBytes(Folder + "/settings.ini");
    EXPECT_NE(now.find("\nMainLeft=450\n"), now.npos) << "the stop heals it";
    EXPECT_NE(now.find("\n; mine\nhalf a li\n"), now.npos);
    EXPECT_EQ(LogLines().back(),
              "The settings could not be taken in; they are kept as " + Folder + "/settings.ini.unread");
    // And the next start is a good one, which leaves no copy.
    std::filesystem::remove(Folder + "/settings.ini.unread");
    OpenSettingsStore(Folder + "/settings.ini");
    frmMain_Load();
    EXPECT_FALSE(std::filesystem::exists(Folder + "/settings.ini.unread"));
}

// The file of a clean stop, cut off wherever: the start comes up, and what could be read
// counts.
TEST_F(StartStop, StoreCutOffAnywhere_StartsAndLosesNoWholeLine) {
    Store("MapPath", "/home/me/Maps;1/");
    Store("MainMapRefLabels", "True");
    frmMain_Load();
    frmMain_Unload();
    const std::string whole = FileBytes(Folder + "/settings.ini");
    ASSERT_GT(whole.size(), 200U);
    int failed = 0;
    Desktop.MessageBox = [&failed](const std::string& text, Box) {
        EXPECT_EQ(text, "Error in frmMain_Load");
        ++failed;
        return Answer::Ok;
    };
    for (std::size_t size = 0; size < whole.size(); size += 3) {
        const std::string path = Folder + "/cut.ini";
        std::ofstream(path, std::ios::binary | std::ios::trunc) << whole.substr(0, size);
        OpenSettingsStore(path);
        LoadDesign();
        failed = 0;
        frmMain_Load();
        EXPECT_LE(failed, 1);
        // Only a line that was cut behind its "=" can be no value.
        const std::string last =
            whole.substr(0, size).substr(size == 0 ? 0 : whole.rfind('\n', size - 1) + 1);
        if (last.find('=') == last.npos) {
            EXPECT_EQ(failed, 0) << last;
        }
        frmMain_Unload();
        EXPECT_FALSE(FileBytes(path).empty());
    }
}

TEST_F(StartStop, StoreThatTakesNothing_StartsAndStops) {
    // A folder stands where the file should.
    OpenSettingsStore(Folder);
    frmMain_Load();
    EXPECT_EQ(MainFormState.Left, 450);
    frmMain_Unload();
    EXPECT_EQ(Stored("MainLeft"), "450");
    EXPECT_TRUE(std::filesystem::is_directory(Folder));
}

TEST_F(StartStop, LongOperation_HoldsTheClose) {
    const LongOperation running;
    EXPECT_FALSE(frmMain_QueryUnload());
}

}  // namespace
}  // namespace zandrel
