#include "shell/settingsstore.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/cleanstate.h"

namespace zandrel {
namespace {

class Store : public CleanState {
  protected:
    void Write(const std::string& text) {
        std::ofstream(Folder + "/other.ini", std::ios::binary) << text;
        OpenSettingsStore(Folder + "/other.ini");
    }
};

TEST_F(Store, MissingKey_GivesTheDefault) {
    EXPECT_EQ(GetSetting("Settings", "LastCorvaneVer", "V2.0"), "V2.0");
    EXPECT_EQ(GetSingle("MainLeft", 450), 450);
    EXPECT_EQ(GetInteger("MainTab", 12), 12);
    EXPECT_EQ(GetLong("ComPort", 0), 0);
    EXPECT_EQ(GetBoolean("MainMapTrace", false), false);
}

TEST_F(Store, ValuesSurviveInSectionsAndKeysAsSpelt) {
    SaveSetting("RecentDatFiles", "RecentFile1", "C:\\Maps\\a b,c.dat");
    SaveBoolean("StaurtupLoadDefault", true);
    SaveNumber("StoichAF", 14.7);
    SaveNumber("MainLeft", -450.5);
    SaveSetting("Settings", "MonitorInclude", "0,0,0,0,1");
    FlushSettingsStore();
    OpenSettingsStore(Folder + "/settings.ini");
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), "C:\\Maps\\a b,c.dat");
    EXPECT_EQ(GetSetting("Settings", "StaurtupLoadDefault", ""), "True");
    EXPECT_EQ(GetSetting("Settings", "StoichAF", ""), "14.7");
    EXPECT_EQ(GetSingle("MainLeft", 0), -450.5F);
    EXPECT_EQ(GetSetting("Settings", "MonitorInclude", ""), "0,0,0,0,1");
    const std::string file = FileBytes(Folder + "/settings.ini");
    EXPECT_NE(file.find("[Settings]"), file.npos);
    EXPECT_NE(file.find("[RecentDatFiles]"), file.npos);
    EXPECT_NE(file.find("\nStaurtupLoadDefault=True"), file.npos);
}

TEST_F(Store, CommaListTypedWithoutQuotes_IsOneText) {
    Write("[Settings]\nMonitorInclude=0,0,1,0,1\n");
    EXPECT_EQ(GetSetting("Settings", "MonitorInclude", ""), "0,0,1,0,1");
}

TEST_F(Store, Booleans_AreWordsOrNumbers) {
    Write("[Settings]\nA=True\nB=false\nC=-1\nD=0\nE=maybe\nF=\n");
    EXPECT_EQ(GetBoolean("A", false), true);
    EXPECT_EQ(GetBoolean("B", true), false);
    EXPECT_EQ(GetBoolean("C", false), true);
    EXPECT_EQ(GetBoolean("D", true), false);
    EXPECT_EQ(GetBoolean("E", true), std::nullopt);
    EXPECT_EQ(GetBoolean("F", true), std::nullopt);
}

TEST_F(Store, NumbersOutsideTheirType_AreNoValues) {
    Write("[Settings]\nA=32767\nB=32768\nC=2147483648\nD=x\nE=1e39\nF=12,5\n");
    EXPECT_EQ(GetInteger("A", 0), 32767);
    EXPECT_EQ(GetInteger("B", 0), std::nullopt);
    EXPECT_EQ(GetLong("B", 0), 32768);
    EXPECT_EQ(GetLong("C", 0), std::nullopt);
    EXPECT_EQ(GetLong("D", 0), std::nullopt);
    EXPECT_EQ(GetSingle("E", 0), std::nullopt);
    EXPECT_EQ(GetSingle("F", 0), std::nullopt);
}

}  // namespace
}  // namespace zandrel
