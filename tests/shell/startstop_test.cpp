#include "shell/startstop.h"

#include <gtest/gtest.h>

#include "image/image.h"
#include "link/identify.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "shell/settingsstore.h"
#include "simulator/simulator.h"
#include "support/cleanstate.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

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
         {"MainLeft", "MainWindowState", "ComPort", "ComTimeOutTicks", "ComRetries", "MainTab",
          "ExitCheckUnsavedData", "MainMapRefLabels", "InjMapType", "MapColourScheme", "BaseMapType"}) {
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

TEST_F(StartStop, LongOperation_HoldsTheClose) {
    const LongOperation running;
    EXPECT_FALSE(frmMain_QueryUnload());
}

}  // namespace
}  // namespace zandrel
