#include "files/snapshots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>

#include "files/datafile.h"
#include "files/datatext.h"
#include "files/filesfixture.h"
#include "files/wholefile.h"
#include "support/scripteddesktop.h"
#include "tuning/settings.h"
#include "util/desktop.h"
#include "util/diagnostics.h"
#include "util/store.h"

namespace zandrel {
namespace {

using Titles = std::set<std::string>;

class Snapshots : public FilesFixture {
  protected:
    Snapshots() {
        ReadData = BlocksOf(kPlainBuild);
        txtNotes.Text = "Dyno, 3rd pull\r\n";
    }

    Titles Files() const {
        Titles titles;
        std::error_code none;
        for (const auto& entry : std::filesystem::directory_iterator(Folder + "/Snapshots", none)) {
            titles.insert(entry.path().filename().string());
        }
        return titles;
    }

    void Foreign(const std::string& title) const {
        std::filesystem::create_directories(Folder + "/Snapshots");
        Put("Snapshots/" + title, "F3414243\r\n");
    }

    static std::vector<std::string> Captions() {
        std::vector<std::string> captions;
        for (const Snapshot& snapshot : ListSnapshots()) captions.push_back(snapshot.Caption);
        return captions;
    }

    static std::string Minute(int minute) {
        return "2026-11-21 14." + std::string(minute < 10 ? "0" : "") + std::to_string(minute) + ".22";
    }
};

TEST_F(Snapshots, Kept_IsAnOrdinaryDataFileNamedByBuildAndTime) {
    KeepSnapshot("2026-11-21 14.03.22");
    EXPECT_EQ(Files(), Titles{"RB26DETT 6.42 2026-11-21 14.03.22.dat"});
    EXPECT_EQ(FileBytes(Folder + "/Snapshots/RB26DETT 6.42 2026-11-21 14.03.22.dat"),
              DataFile(ReadData, "TTDyno, 3rd pull\r\nTT\r\n"));
    EXPECT_EQ(LogText(), "");
}

TEST_F(Snapshots, Kept_ChangesNothingElse) {
    const Everything before = Now();
    KeepSnapshot();
    EXPECT_EQ(Differences(before, Now()), "");
    EXPECT_EQ(BusyPointers(), "");
}

TEST_F(Snapshots, TimeOfTheClock_IsLocalAndHasThePicture) {
    const std::regex picture("\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d");
    EXPECT_TRUE(std::regex_match(SnapshotTime(), picture)) << SnapshotTime();
    KeepSnapshot();
    ASSERT_EQ(Captions().size(), 1U);
    const std::time_t now = std::time(nullptr);
    char today[20];
    std::strftime(today, sizeof today, "%Y-%m-%d", std::localtime(&now));
    EXPECT_EQ(Captions()[0].substr(0, 25), std::string("RB26DETT 6.42 ") + today + " ");
}

TEST_F(Snapshots, SecondOfTheSameSecond_GetsANumber) {
    for (int k = 0; k < 3; ++k) KeepSnapshot(Minute(3));
    EXPECT_EQ(Files(),
              (Titles{"RB26DETT 6.42 2026-11-21 14.03.22.dat", "RB26DETT 6.42 2026-11-21 14.03.22 (2).dat",
                      "RB26DETT 6.42 2026-11-21 14.03.22 (3).dat"}));
    KeepSnapshot(Minute(2));
    EXPECT_EQ(Captions(),
              (std::vector<std::string>{
                  "RB26DETT 6.42 2026-11-21 14:03:22 (3)", "RB26DETT 6.42 2026-11-21 14:03:22 (2)",
                  "RB26DETT 6.42 2026-11-21 14:03:22", "RB26DETT 6.42 2026-11-21 14:02:22"}));
}

TEST_F(Snapshots, ImageThatNamesNoBuild_IsNotKept) {
    ReadData[0xF3].clear();
    KeepSnapshot();
    ReadData[0xF3] = "        ";
    KeepSnapshot();
    EXPECT_EQ(Files(), Titles{});
    EXPECT_FALSE(std::filesystem::exists(Folder + "/Snapshots"));
}

TEST_F(Snapshots, OldestFamily_IsNamedByItsOwnBlocks) {
    ReadData = BlocksOf(kOldestBuild);
    KeepSnapshot(Minute(3));
    EXPECT_EQ(Files(), Titles{"RB26DETT 3.11D 2026-11-21 14.03.22.dat"});
}

TEST_F(Snapshots, BuildWithCharactersThatNoNameTakes_IsNamedWithoutThem) {
    ReadData[0xF3] = "../a:b\\*";
    ReadData[0xF5] = "\"<\t>|";
    KeepSnapshot(Minute(3));
    EXPECT_EQ(Files(), Titles{"_._a_b__ _____ 2026-11-21 14.03.22.dat"});
    EXPECT_EQ(ListSnapshots().size(), 1U);
    EXPECT_EQ(LogText(), "");
}

TEST_F(Snapshots, FiftyFirst_DrivesOutTheOldestOnly) {
    for (int minute = 0; minute < 50; ++minute) KeepSnapshot(Minute(minute));
    EXPECT_EQ(Files().size(), 50U);
    ReadData = BlocksOf(kOtherBuild);
    KeepSnapshot(Minute(55));
    const Titles files = Files();
    EXPECT_EQ(files.size(), 50U);
    EXPECT_EQ(files.count("RB26DETT 6.42 2026-11-21 14.00.22.dat"), 0U);
    EXPECT_EQ(files.count("RB26DETT 6.42 2026-11-21 14.01.22.dat"), 1U);
    EXPECT_EQ(files.count("B16A1 1.50C 2026-11-21 14.55.22.dat"), 1U) << ListSnapshots()[0].Caption;
}

TEST_F(Snapshots, OfTheSameSecond_TheTenthIsNewerThanTheSecond) {
    for (int k = 0; k < 12; ++k) KeepSnapshot(Minute(3));
    const auto captions = Captions();
    ASSERT_EQ(captions.size(), 12U);
    for (std::size_t k = 0; k < 11; ++k) {
        EXPECT_EQ(captions[k], "RB26DETT 6.42 2026-11-21 14:03:22 (" + std::to_string(12 - k) + ")");
    }
}

// A clock that was wrong for a day must not make the new ones the oldest.
TEST_F(Snapshots, ClockSetBack_TheOneJustKeptStays) {
    for (int minute = 0; minute < 50; ++minute)
        KeepSnapshot("2036-01-01 00.00." + Minute(minute).substr(14, 2));
    KeepSnapshot(Minute(3));
    EXPECT_EQ(Files().size(), 50U);
    EXPECT_EQ(Files().count("RB26DETT 6.42 2026-11-21 14.03.22.dat"), 1U);
}

TEST_F(Snapshots, FilesOfOthersInTheFolder_AreNeitherListedNorRemoved) {
    const Titles others = {"my best.dat",
                           "RB26DETT 6.42 2026-11-21 14.03.22.bak",
                           "RB26DETT 6.42 2026-11-21 14.03.22",
                           "RB26DETT 6.42 2026-11-21.dat",
                           "2026-11-21 14.03.22.dat",
                           " 2026-11-21 14.03.22.dat",
                           "RB26DETT 6.42 2026-11-21 14:03:22.dat",
                           "RB26DETT 6.42 2026-11-21 14.03.22 (x).dat",
                           "RB26DETT 6.42 2026-11-21 14.03.22 ().dat",
                           "RB26DETT 6.42 2026-11-21 14.03.22 (12345).dat",
                           "RB26DETT 6.42 2026-11-21 14.03.22 final.dat",
                           "RB26DETT 6.42 2026-11-21 14.03.22(2).dat",
                           "RB26DETT 6.42 2O26-11-21 14.03.22.dat",
                           ".dat"};
    for (const std::string& title : others) Foreign(title);
    std::filesystem::create_directories(Folder + "/Snapshots/RB26DETT 6.42 2000-01-01 00.00.00.dat");
    EXPECT_EQ(Captions(), std::vector<std::string>{});
    for (int minute = 0; minute < 55; ++minute) KeepSnapshot(Minute(minute));
    EXPECT_EQ(Captions().size(), 50U);
    const Titles files = Files();
    for (const std::string& title : others) EXPECT_EQ(files.count(title), 1U) << title;
    EXPECT_EQ(files.count("RB26DETT 6.42 2000-01-01 00.00.00.dat"), 1U);
}

TEST_F(Snapshots, FolderThatCannotBe_IsALineInTheLogAndNoMore) {
    Put("Snapshots", "a file stands in the way");
    KeepSnapshot(Minute(3));
    EXPECT_EQ(LogLines(),
              std::vector<std::string>{"Could not keep snapshot RB26DETT 6.42 2026-11-21 14.03.22.dat"});
    EXPECT_TRUE(ListSnapshots().empty());
}

TEST_F(Snapshots, DiskThatIsFull_LeavesNoHalfFileAndDrivesNoneOut) {
    for (int minute = 0; minute < 50; ++minute) KeepSnapshot(Minute(minute));
    const Titles before = Files();
    Flush = [](int) { return false; };
    KeepSnapshot(Minute(55));
    Flush = FlushToDisk;
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(LogLines().size(), 1U);
}

TEST_F(Snapshots, NoFolder_ListsNothing) {
    EXPECT_TRUE(ListSnapshots().empty());
}

TEST_F(Snapshots, Opened_IsTheImageThatWasKept) {
    Open(Put("first.dat", DataFile(BlocksOf(kPlainBuild), "TTfirst\r\n")));
    KeepSnapshot(Minute(1));
    Open(Put("second.dat", DataFile(BlocksOf(kOtherBuild), "TTsecond\r\n")));
    KeepSnapshot(Minute(2));
    ASSERT_EQ(ListSnapshots().size(), 2U);
    const auto blocks = BlocksOf(kPlainBuild);
    OpenSnapshot(1);
    EXPECT_EQ(VerName, "RB26DETT");
    EXPECT_EQ(ReadData[0xF3], blocks[0xF3]);
    EXPECT_EQ(txtNotes.Text.substr(0, 5), "first");
    EXPECT_EQ(Now()["caption"], "Zandrel [RB26DETT v6.42] - RB26DETT 6.42 2026-11-21 14.01.22.dat");
    EXPECT_FALSE(DataChanged);
}

TEST_F(Snapshots, ListMadeBeforeANewOneWasKept_OpensWhatItSaid) {
    Open(Put("first.dat", DataFile(BlocksOf(kPlainBuild))));
    KeepSnapshot(Minute(1));
    static_cast<void>(ListSnapshots());
    Open(Put("second.dat", DataFile(BlocksOf(kOtherBuild))));
    KeepSnapshot(Minute(2));
    OpenSnapshot(0);
    EXPECT_EQ(VerName, "RB26DETT");
}

TEST_F(Snapshots, PlaceThatTheListHasNot_OpensNothing) {
    KeepSnapshot(Minute(1));
    static_cast<void>(ListSnapshots());
    const Everything before = Now();
    for (const int index : {-1, 1, 99}) OpenSnapshot(index);
    EXPECT_EQ(Differences(before, Now()), "");
}

TEST_F(Snapshots, OneThatIsGone_SaysSo) {
    KeepSnapshot(Minute(1));
    const std::string path = ListSnapshots()[0].Path;
    std::filesystem::remove(path);
    ExpectBox("Error opening RB26DETT 6.42 2026-11-21 14.01.22.dat", Box::Critical);
    OpenSnapshot(0);
}

TEST_F(Snapshots, Opened_AsksForUnsavedDataAsAnyFile) {
    KeepSnapshot(Minute(1));
    static_cast<void>(ListSnapshots());
    DataChanged = true;
    const Everything before = Now();
    ExpectBox("You have made setting changes that have not been saved.\nDo you want to save?",
              Box::SaveQuestion, Answer::Cancel);
    OpenSnapshot(0);
    EXPECT_EQ(Differences(before, Now()), "");
}

// A file saved beside the snapshots under their kind of name would go with the old ones.
TEST_F(Snapshots, SaveAsAfterOneWasOpened_ProposesTheMaps) {
    SaveSetting("Settings", "MapPath", Folder + "/Snapshots/");
    std::filesystem::create_directories(Folder + "/Snapshots");
    std::string folder;
    Desktop.ChooseFile = [&folder](const FileChoice& choice) {
        folder = choice.Folder;
        return std::string();
    };
    SaveAs();
    EXPECT_EQ(folder, Folder + "/Maps/");
    std::filesystem::create_directories(Folder + "/Tunes");
    SaveSetting("Settings", "MapPath", Folder + "/Tunes/");
    SaveAs();
    EXPECT_EQ(folder, Folder + "/Tunes/");
}

TEST_F(Snapshots, UnsavedWorkWithoutAName_IsKeptAsUnknown) {
    DataText data;
    data.Notes = "Before the rebuild\r\n";
    KeepSnapshotOf(data, "2026-11-21 14.03.22");
    EXPECT_EQ(Files(), Titles{"Unknown 2026-11-21 14.03.22.dat"});
}

}  // namespace
}  // namespace zandrel
