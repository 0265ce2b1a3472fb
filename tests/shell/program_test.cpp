// The program itself: what it makes of its command line, of what the last run has left, and of a store that
// holds rubbish. A witness inside it tells what its window shows, and closes it.
#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <filesystem>
#include <fstream>

#include "files/datatext.h"
#include "files/wholefile.h"
#include "simulator/simulator.h"
#include "support/cleanstate.h"

namespace zandrel {
namespace {

constexpr char kNoFile[] = "Zandrel [ v] - ";

class Program : public CleanState {
  protected:
    Program() {
        std::filesystem::create_directory(Folder + "/home");
        Settings(Folder + "/settings.ini");
    }

    void Settings(const std::string& path) { settings_ = path; }

    void WriteSettings(const std::string& text) const {
        std::ofstream(settings_, std::ios::binary | std::ios::trunc) << text;
    }

    /// A data file with this name in the test's folder.
    std::string MakeFile(const std::string& name) const {
        powerfc::Options options;
        options.Version = "RB26DETT6.42";
        const powerfc::Simulator device(options);
        std::array<ByteString, 256> blocks;
        for (const int code : device.BlockCodes()) {
            blocks[static_cast<std::size_t>(code)] = device.BlockString(code);
        }
        EXPECT_TRUE(WriteWholeFile(Folder + "/" + name, FormatDataText(blocks, "")));
        return Folder + "/" + name;
    }

    /// Runs the program in the test's folder until it shows `title` or a box, and closes it. What was seen.
    std::string Run(const QStringList& arguments, const std::string& title) {
        std::filesystem::remove(Folder + "/seen");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const auto set = [&environment](const char* name, const std::string& value) {
            environment.insert(QLatin1String(name), QString::fromStdString(value));
        };
        set("HOME", Folder);
        set("ZANDREL_HOME", Folder + "/home");
        set("ZANDREL_SETTINGS", settings_);
        set("ZANDREL_PORTS", "1=/nowhere");
        set("ZANDREL_WITNESS", Folder + "/seen");
        set("ZANDREL_WITNESS_TITLE", title);
        set("QT_QPA_GENERIC_PLUGINS", "zandrelwitness");
        set("QT_PLUGIN_PATH", ZANDREL_BUILD "/tests/plugins");
        set("QT_QPA_PLATFORM", "offscreen");
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(QString::fromStdString(Folder));
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral(ZANDREL_BUILD "/zandrel"), arguments);
        if (!process.waitForFinished(50'000) || process.exitStatus() != QProcess::NormalExit) {
            process.kill();
            process.waitForFinished();
            return "crashed or stuck: " + process.readAll().toStdString();
        }
        code_ = process.exitCode();
        const std::string seen = FileBytes(Folder + "/seen");
        return seen.substr(0, seen.find('\n'));
    }

    std::string settings_;
    int code_ = 0;
};

TEST_F(Program, EverythingOnItsCommandLine_IsOnePath) {
    MakeFile("my first map.dat");
    const std::string title = "Zandrel [RB26DETT v6.42] - my first map.dat";
    for (const QStringList& arguments : {QStringList{"my", "first", "map.dat"},
                                         QStringList{"my first map.dat"}, QStringList{"\"my first map.dat\""},
                                         QStringList{QString::fromStdString(Folder + "/my first map.dat")}}) {
        EXPECT_EQ(Run(arguments, title), "title: " + title) << arguments.join('|').toStdString();
        EXPECT_EQ(code_, 0);
        // Wherever the program stands the next time, the list finds the file.
        const std::string store = FileBytes(settings_);
        EXPECT_NE(store.find("RecentFile1=" + Folder + "/my first map.dat\n"), store.npos) << store;
        EXPECT_EQ(store.find("RecentFile2"), store.npos);
    }
}

TEST_F(Program, FileThatIsNotThere_IsTold) {
    EXPECT_EQ(Run({"no", "such.dat"}, kNoFile), "box: Error opening no such.dat");
}

TEST_F(Program, NextRun_ComesUpAsItWasLeft) {
    const std::string file = MakeFile("default.dat");
    std::filesystem::rename(file, Folder + "/home/default.dat");
    WriteSettings(
        "[Settings]\nStaurtupLoadDefault=True\nMainTab=8\nMainLeft=600\nMainWidth=11700\nMapColourScheme="
        "0\n");
    const std::string title = "Zandrel [RB26DETT v6.42] - default.dat";
    std::string before;
    for (int run = 1; run <= 2; ++run) {
        EXPECT_EQ(Run({}, title), "title: " + title);
        const std::string store = FileBytes(settings_);
        for (const char* line :
             {"\nStaurtupLoadDefault=True\n", "\nMainTab=8\n", "\nMainLeft=600\n", "\nMainWidth=11700\n",
              "\nMapColourScheme=0\n", "\nExitCheckUnsavedData=True\n"}) {
            EXPECT_NE(store.find(line), store.npos) << line << store;
        }
        if (run == 2) {
            EXPECT_EQ(store, before) << "a run that changes nothing";
        }
        before = store;
    }
    EXPECT_FALSE(std::filesystem::exists(Folder + "/home/Unsaved.journal"));
}

// Each key with a text that is none of its type: the box, and no crash. Behind a good start the window closes
// with code 0.
TEST_F(Program, RubbishInAKey_IsToldAndNeverCrashes) {
    for (const char* key :
         {"MainLeft", "MainTop", "MainHeight", "MainWidth", "MainWindowState", "MainTab", "ComPort",
          "ComTimeOutTicks", "ComRetries", "StaurtupLoadDefault", "ExitSaveDefault", "ExitCheckUnsavedData",
          "MainMapRefLabels", "InjMapType", "MapColourScheme", "BaseMapType"}) {
        WriteSettings("[Settings]\n" + std::string(key) + "=\xff\x01 rubbish\n");
        EXPECT_EQ(Run({}, kNoFile), "box: Error in frmMain_Load") << key;
    }
}

TEST_F(Program, RubbishOfTheRightType_StillShowsTheWindow) {
    for (const char* line :
         {"MainLeft=3e38", "MainTop=-3e38", "MainHeight=-3e38", "MainWidth=3e38", "MainWidth=0",
          "MainWindowState=-32768", "MainTab=32767", "ComPort=-2147483648", "ComTimeOutTicks=-2147483648",
          "ComRetries=2147483647", "InjMapType=2147483647", "MapColourScheme=-32768", "BaseMapType=-1",
          "StoichAF=\xff", "LastCorvaneVer=\xff\x01", "MapPath=\xff\x01", "half a li"}) {
        const std::string file = MakeFile("x.dat");
        const std::string title = "Zandrel [RB26DETT v6.42] - x.dat";
        WriteSettings("[RecentDatFiles]\nRecentFile1=\x01\xff&&\n[Settings]\n" + std::string(line) + "\n");
        EXPECT_EQ(Run({"x.dat"}, title), "title: " + title) << line;
        EXPECT_EQ(code_, 0) << line;
    }
}

TEST_F(Program, StoreOrHomeThatTakesNothing_DoesNotStopIt) {
    Settings(Folder + "/missing/settings.ini");
    EXPECT_EQ(Run({}, kNoFile), std::string("title: ") + kNoFile);
    EXPECT_EQ(code_, 0);
    Settings(Folder);
    std::filesystem::remove_all(Folder + "/home");
    EXPECT_EQ(Run({}, kNoFile), std::string("title: ") + kNoFile);
    EXPECT_EQ(code_, 0);
}

}  // namespace
}  // namespace zandrel
