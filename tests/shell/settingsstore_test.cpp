#include "shell/settingsstore.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <QCoreApplication>
#include <cstdlib>
#include <filesystem>
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

std::string Named(const std::string& key, const std::string& value) {
    return "[Settings]\n" + key + "=" + value + "\n";
}

TEST_F(Store, FileOfEarlierVersions_IsRead) {
    Write(
        "[General]\nx=1\n\n[RecentDatFiles]\nRecentFile1=/home/a/Maps/b "
        "c.dat\n\n[Settings]\nLastCorvaneVer=V2.0\n"
        "MapPath=\"/home/a;b/Maps/\"\nMainLeft=450\n");
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), "/home/a/Maps/b c.dat");
    EXPECT_EQ(GetSetting("Settings", "MapPath", ""), "/home/a;b/Maps/");
    EXPECT_EQ(GetSingle("MainLeft", 0), 450);
}

TEST_F(Store, OtherRunsKeys_AreKept) {
    Write(Named("MainLeft", "1"));
    SaveSetting("Settings", "MainTop", "2");
    // Another run of the program closes in between.
    std::ofstream(Folder + "/other.ini") << Named("MainLeft", "10") + "MapPath=/x/\n";
    FlushSettingsStore();
    EXPECT_EQ(FileBytes(Folder + "/other.ini"), "[Settings]\nMainLeft=10\nMapPath=/x/\nMainTop=2\n");
}

TEST_F(Store, WhatIsWritten_ComesToTheDiskAtTheNextTurnOfTheEventLoop) {
    Write("");
    SaveSetting("RecentDatFiles", "RecentFile1", "/a.dat");
    SaveSetting("Settings", "MapPath", "/");
    EXPECT_EQ(FileBytes(Folder + "/other.ini"), "");
    EXPECT_EQ(GetSetting("Settings", "MapPath", ""), "/");
    QCoreApplication::processEvents();
    EXPECT_EQ(FileBytes(Folder + "/other.ini"),
              "[RecentDatFiles]\nRecentFile1=/a.dat\n\n[Settings]\nMapPath=/\n");
    EXPECT_FALSE(std::filesystem::exists(Folder + "/other.ini.lock"));
}

TEST_F(Store, NothingNew_LeavesTheFileAlone) {
    Write("[Settings]\r\nMainLeft = 1\r\n");
    SaveSetting("Settings", "MainLeft", "1");
    FlushSettingsStore();
    EXPECT_EQ(FileBytes(Folder + "/other.ini"), "[Settings]\r\nMainLeft = 1\r\n");
}

TEST_F(Store, WhatCannotBeRead_IsNotReplacedAndToldOnce) {
    const std::string path = Folder + "/unreadable.ini";
    // Two that no rights open: a folder, and a file that is none of settings.
    for (const bool folder : {true, false}) {
        std::filesystem::remove_all(path);
        if (folder) {
            std::filesystem::create_directory(path);
        } else {
            std::ofstream(path) << "[Settings]\nMainLeft=7\n";
            std::filesystem::resize_file(path, 3U << 20);
        }
        OpenSettingsStore(path);
        EXPECT_EQ(GetSingle("MainLeft", 450), 450);
        SaveNumber("MainLeft", 1);
        FlushSettingsStore();
        SaveNumber("MainTop", 2);
        FlushSettingsStore();
        EXPECT_EQ(GetSingle("MainLeft", 450), 1) << "this run remembers it";
        EXPECT_EQ(LogLines().back(), "The settings cannot be read and are not replaced: " + path);
        if (!folder) {
            EXPECT_EQ(std::filesystem::file_size(path), 3U << 20);
        }
    }
    EXPECT_EQ(LogLines().size(), 2U);
}

TEST_F(Store, FullDiskOrNoSuchFolder_KeepsTheOldFileAndIsWrittenWhenItCan) {
    Write(Named("MainLeft", "1"));
    // As on a full disk: a file may not grow beyond so many bytes.
    signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full = {8, before.rlim_max};
    SaveNumber("MainLeft", 2);
    setrlimit(RLIMIT_FSIZE, &full);
    FlushSettingsStore();
    FlushSettingsStore();
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(FileBytes(Folder + "/other.ini"), Named("MainLeft", "1"));
    EXPECT_EQ(GetSingle("MainLeft", 0), 2);
    FlushSettingsStore();
    EXPECT_EQ(FileBytes(Folder + "/other.ini"), Named("MainLeft", "2"));

    const std::string nowhere = Folder + "/missing/settings.ini";
    OpenSettingsStore(nowhere);
    SaveNumber("MainLeft", 3);
    FlushSettingsStore();
    EXPECT_EQ(GetSingle("MainLeft", 0), 3);
    EXPECT_EQ(LogLines().back(), "The settings cannot be written: " + nowhere);
    EXPECT_FALSE(std::filesystem::exists(Folder + "/missing"));
}

TEST_F(Store, UsersOwnStore_HasItsFolderMade) {
    const char* before = std::getenv("XDG_CONFIG_HOME");
    const std::string restored = before == nullptr ? "" : before;
    setenv("XDG_CONFIG_HOME", (Folder + "/config").c_str(), 1);
    OpenSettingsStore("");
    SaveNumber("MainLeft", 3);
    FlushSettingsStore();
    if (before == nullptr) {
        unsetenv("XDG_CONFIG_HOME");
    } else {
        setenv("XDG_CONFIG_HOME", restored.c_str(), 1);
    }
    EXPECT_EQ(FileBytes(Folder + "/config/Zandrel/Zandrel.ini"), Named("MainLeft", "3"));
}

}  // namespace
}  // namespace zandrel
