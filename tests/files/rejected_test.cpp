// A rejected file leaves nothing of itself in force; the recent list and the folder change all the same.
#include <gtest/gtest.h>

#include "files/datafile.h"
#include "files/filesfixture.h"
#include "files/recentfiles.h"
#include "image/accessors.h"
#include "image/history.h"
#include "link/identify.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/store.h"

namespace zandrel {
namespace {

constexpr char kNotRecognised[] = " is not recognised, or the Power-FC is not supported by this version";

class RejectedFile : public FilesFixture {
  protected:
    // An image with edits of all kinds, as it stands in the middle of the work.
    void Work(const std::string& key = kPlainBuild) {
        Open(Put("work.dat", DataFile(zandrel::BlocksOf(key), "TTmy notes\r\n")));
        mnuCheckUnsavedData.Checked = false;
        {
            const Gesture gesture("Map");
            SetCell(0, 3, 4, GetCell(0, 3, 4, false) ^ 1);
        }
        BlockChanged[0x8D] = true;
        cmdUpdate.Enabled = true;
        SSTab1.Tab = 0;
        DisplayAllData();
    }

    // Opens the file and says what it has left behind.
    std::string LeftBy(const std::string& path) const {
        const Everything before = Now();
        Open(path);
        return Differences(before, Now());
    }

    void ExpectListed(const std::string& path) const {
        EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), path);
        EXPECT_EQ(mnuRecentFile[0].Tag, path);
        EXPECT_EQ(GetSetting("Settings", "MapPath", ""), Folder + "/");
    }
};

TEST_F(RejectedFile, NotesOnlyOrEmpty_IsOfNoVersion) {
    for (const char* bytes : {"", "TTa note\r\n", "\r\n\r\n", "F3\r\n"}) {
        const std::string path = Put("a.dat", bytes);
        ExpectBox(std::string("a.dat[ v]") + kNotRecognised, Box::Critical);
        EXPECT_EQ(LeftBy(path), "") << bytes;
        ExpectListed(path);
        Work();
        ExpectBox(std::string("a.dat[ v]") + kNotRecognised, Box::Critical);
        EXPECT_EQ(LeftBy(path), "") << bytes;
        ExpectListed(path);
        EXPECT_EQ(txtNotes.Text, "my notes\r\n");
    }
}

TEST_F(RejectedFile, UnknownVersion_IsNamed) {
    auto blocks = zandrel::BlocksOf(kPlainBuild);
    blocks[0xF5] = "9.99 ";
    const std::string path = Put("odd name.dat", DataFile(blocks, "TTother notes\r\n"));
    Work();
    ExpectBox(std::string("odd name.dat[RB26DETT v9.99]") + kNotRecognised, Box::Critical);
    EXPECT_EQ(LeftBy(path), "");
    ExpectListed(path);
    // The identification has put both buttons out of use; the next edit brings Update back.
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_FALSE(cmdWriteAll.Enabled);
}

TEST_F(RejectedFile, VersionBlocksOfTheOlderFamily_AreNamedToo) {
    std::array<ByteString, 256> blocks;
    blocks[0x6B] = "OLD     ";
    blocks[0x6C] = "1.0  ";
    ExpectBox(std::string("a.dat[OLD v1.0]") + kNotRecognised, Box::Critical);
    EXPECT_EQ(LeftBy(Put("a.dat", DataFile(blocks))), "");
}

TEST_F(RejectedFile, MissingBlockOfTheSameBuild_TheFirstOneIsNamed) {
    Work();
    auto blocks = zandrel::BlocksOf(kPlainBuild);
    blocks[0x8D].clear();
    blocks[0xA0].clear();
    blocks[0x10] = "stray";
    const std::string path = Put("a.dat", DataFile(blocks, "TTother notes\r\n"));
    ExpectBox("File Format Error: Missing Data 8D", Box::Critical);
    EXPECT_EQ(LeftBy(path), "");
    ExpectListed(path);
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_TRUE(CanUndo());
}

// Image and display belonged to two builds when a file of another one was refused.
TEST_F(RejectedFile, MissingBlockOfAnotherBuild_TheOldBuildIsBack) {
    Work();
    LastUpdate = "14:03:22";
    auto blocks = zandrel::BlocksOf(kOtherBuild);
    std::size_t missing = 0;
    for (std::size_t b = 0x80; missing == 0; ++b) {
        if (!blocks[b].empty() && b != 0x97 && b != 0x99) missing = b;
    }
    blocks[missing].clear();
    const std::string path = Put("a.dat", DataFile(blocks));
    char digits[8];
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(missing));
    std::string versions;
    InitMonitorWindow = [&versions] { versions += VerName + " "; };
    ExpectBox(std::string("File Format Error: Missing Data ") + digits, Box::Critical);
    EXPECT_EQ(LeftBy(path), "");
    ExpectListed(path);
    EXPECT_EQ(versions, "B16A1 RB26DETT ");
    EXPECT_EQ(LastUpdate, "14:03:22");
    EXPECT_EQ(ReadVerName(), VerName);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - work.dat");
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_FALSE(cmdWriteAll.Enabled);
    EXPECT_EQ(BusyPointers(), "1010");
}

TEST_F(RejectedFile, MissingBlockWithNoBuildBefore_NoBuildIsInForce) {
    auto blocks = zandrel::BlocksOf(kPlainBuild);
    blocks[0x8D].clear();
    ExpectBox("File Format Error: Missing Data 8D", Box::Critical);
    EXPECT_EQ(LeftBy(Put("a.dat", DataFile(blocks))), "");
    EXPECT_EQ(VerName, "");
    EXPECT_FALSE(mnuReCalcBase.Enabled);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [ v] - ");
    // The next good file is one of another version.
    Open(Put("b.dat", DataFile(zandrel::BlocksOf(kPlainBuild))));
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - b.dat");
    EXPECT_TRUE(SSTab1.TabVisible[0]);
}

TEST_F(RejectedFile, AnImageWithAFrameOutOfUse_HasItOutOfUseAgain) {
    for (const char* key : {"RB26DETT6.42", "1JZ-GTE23.12", "1JZGT-AT3.43"}) {
        Open(Put("b.dat", DataFile(zandrel::BlocksOf(key))));
        for (const std::size_t block : {0x97U, 0x99U}) {
            if (!BlockRead[block]) continue;
            auto blocks = zandrel::BlocksOf(key);
            blocks[block].clear();
            const Everything whole = Now();
            ExpectMessage(
                std::string("This file does not contain Settings 4 \"") +
                    (block == 0x99 ? "IGN vs TPS" : "Boost vs Ign SF") +
                    "\" data.\nDo you want to read the missing setting now from an attached Power-FC?\n\n"
                    "Answer No to continue without \"" +
                    (block == 0x99 ? "IGN vs TPS" : "Boost vs Ign SF") + "\".",
                Answer::No);
            Open(Put("b.dat", DataFile(blocks)));
            EXPECT_FALSE(BlockWrite[block]);
            auto other = zandrel::BlocksOf(kOtherBuild);
            other[0xF4].clear();
            for (std::size_t b = 0x30; b < 0x97; ++b) other[b].clear();
            const Everything before = Now();
            bool told = false;
            Desktop.MessageBox = [&told](const std::string& text, Box) {
                told = text.rfind("File Format Error: Missing Data ", 0) == 0;
                return Answer::Ok;
            };
            Open(Put("c.dat", DataFile(other)));
            EXPECT_TRUE(told);
            EXPECT_EQ(Differences(before, Now()), "") << key;
            OpenScriptedDesktop();
            Open(Put("b.dat", DataFile(zandrel::BlocksOf(key))));
            EXPECT_EQ(Differences(whole, Now()), "") << key;
        }
    }
}

TEST_F(RejectedFile, FileThatFailsWhileItIsRead_IsAFormatError) {
    Work();
    const Everything before = Now();
    ExpectBox("File Format Error", Box::Critical);
    Open("/proc/self/mem");
    EXPECT_EQ(Differences(before, Now()), "");
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), "/proc/self/mem");
    EXPECT_EQ(GetSetting("Settings", "MapPath", ""), "/proc/self/");
    EXPECT_EQ(BusyPointers(), "1010");
}

TEST_F(RejectedFile, FileThatCannotBeOpened_ChangesNothingElseEither) {
    Work();
    SaveSetting("Settings", "MapPath", "/maps/");
    const std::string recent = mnuRecentFile[0].Tag;
    for (const std::string& path : {Folder + "/none.dat", Folder, Folder + "/none/a.dat"}) {
        const Everything before = Now();
        ExpectBox("Error opening " + path.substr(path.rfind('/') + 1), Box::Critical);
        Open(path);
        EXPECT_EQ(Differences(before, Now()), "");
    }
    EXPECT_EQ(GetSetting("Settings", "MapPath", ""), "/maps/");
    EXPECT_EQ(mnuRecentFile[0].Tag, recent);
    EXPECT_EQ(BusyPointers(), "10");
}

}  // namespace
}  // namespace zandrel
