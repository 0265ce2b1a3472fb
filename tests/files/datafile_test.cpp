#include "files/datafile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "files/filesfixture.h"
#include "files/recentfiles.h"
#include "files/unprivileged.h"
#include "files/wholefile.h"
#include "image/accessors.h"
#include "image/history.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/store.h"

namespace zandrel {
namespace {

constexpr char kUnsaved[] = "You have made setting changes that have not been saved.\nDo you want to save?";

class DataFileTest : public FilesFixture {
  protected:
    ~DataFileTest() override { Flush = FlushToDisk; }

    static std::string MapPath() { return GetSetting("Settings", "MapPath", "none"); }
    static std::string Recent(int n) {
        return GetSetting("RecentDatFiles", "RecentFile" + std::to_string(n), "none");
    }

    // Opens a whole file of the build. Returns its path.
    std::string OpenBuild(const std::string& key, const std::string& name = "a.dat") {
        const std::string path = Put(name, DataFile(zandrel::BlocksOf(key), "TTa note\r\n"));
        Open(path);
        return path;
    }
};

// --- Opening -------------------------------------------------------------------------------------------

TEST_F(DataFileTest, GoodFile_IsTheImageAndTheDisplayFollows) {
    const auto blocks = zandrel::BlocksOf(kPlainBuild);
    cmdUpdate.Enabled = true;
    const std::string path = OpenBuild(kPlainBuild);
    EXPECT_EQ(VerName + VerNumber, kPlainBuild);
    for (std::size_t b = 0; b < 256; ++b) {
        EXPECT_EQ(ReadData[b], BlockRead[b] ? blocks[b] : ByteString()) << b;
        EXPECT_EQ(BlockInForce[b], !ReadData[b].empty()) << b;
        EXPECT_FALSE(BlockChanged[b]) << b;
    }
    EXPECT_EQ(txtNotes.Text, "a note\r\n");
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - a.dat");
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_FALSE(DataChanged);
    EXPECT_EQ(MapPath(), Folder + "/");
    EXPECT_EQ(Recent(1), path);
    EXPECT_EQ(BusyPointers(), "10");
    // What is shown is what was loaded.
    double none = 0;
    std::string text;
    MapCellText(0, 1, 1, none, false, text);
    EXPECT_EQ(Grid[0].TextMatrix[1][1], text);
    EXPECT_NE(text, "");
    EXPECT_TRUE(Dialogs.Asked.empty());
}

TEST_F(DataFileTest, FileOfAnotherBuild_RebuildsTheDisplay) {
    OpenBuild(kPlainBuild);
    const Everything first = Now();
    OpenBuild(kOtherBuild, "b.dat");
    EXPECT_EQ(VerName + VerNumber, kOtherBuild);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [B16A1 v1.50C] - b.dat");
    EXPECT_NE(Now().at("tabs"), first.at("tabs"));
    OpenBuild(kPlainBuild);
    EXPECT_EQ(Differences(first, Now()), "");
}

TEST_F(DataFileTest, OldestFamily_IsKnownByItsOwnVersionBlocks) {
    auto blocks = zandrel::BlocksOf(kOldestBuild);
    ASSERT_TRUE(blocks[0xF3].empty());
    OpenBuild(kOldestBuild);
    EXPECT_EQ(VerName + VerNumber, kOldestBuild);
}

TEST_F(DataFileTest, NameAndNumber_AreTrimmed) {
    auto blocks = zandrel::BlocksOf(kPlainBuild);
    blocks[0xF3] = "  RB26DETT ";  // bytes 1 to 8 are " RB26DET"
    blocks[0xF5] = " 6.42";
    ExpectBox("a.dat[RB26DE v6.42] is not recognised, or the Power-FC is not supported by this version",
              Box::Critical);
    Open(Put("a.dat", DataFile(blocks)));
    blocks[0xF3] = "RB26DETT";
    Open(Put("a.dat", DataFile(blocks)));
    EXPECT_EQ(VerNumber, "6.42");
}

TEST_F(DataFileTest, BlockThatTheBuildDoesNotRead_IsDropped) {
    auto blocks = zandrel::BlocksOf(kPlainBuild);
    ASSERT_TRUE(blocks[0x10].empty());
    blocks[0x10] = "stray";
    BlockChanged[0x10] = true;
    Open(Put("a.dat", DataFile(blocks)));
    EXPECT_EQ(VerName, "RB26DETT");
    EXPECT_EQ(ReadData[0x10], "");
    EXPECT_FALSE(BlockChanged[0x10]);
}

TEST_F(DataFileTest, BlockThatIsLongerThanTheBuilds_IsKeptAndSavedWhole) {
    auto blocks = zandrel::BlocksOf(kPlainBuild);
    const std::size_t map = 0x86;
    ASSERT_EQ(blocks[map].size(), 100U);
    blocks[map] += "tail";
    Open(Put("a.dat", DataFile(blocks)));
    EXPECT_EQ(ReadData[map], blocks[map]);
    SaveFile(Folder + "/b.dat");
    EXPECT_EQ(FileBytes(Folder + "/b.dat"), DataFile(ReadData));
}

// A map block goes over the line as it stands in the image, and a frame holds no more than 253 bytes.
TEST_F(DataFileTest, MapBlockThatNoFrameCanCarry_IsKeptButNotSent) {
    auto blocks = zandrel::BlocksOf(kPlainBuild);
    const std::size_t map = 0x86, setting = 0x8D;
    for (const std::size_t size : {253U, 254U, 1000U, 4'000'000U}) {
        blocks[map].resize(size, 'x');
        blocks[setting].resize(size, 'y');
        Open(Put("a.dat", DataFile(blocks)));
        EXPECT_EQ(ReadData[map].size(), size);
        EXPECT_EQ(BlockInForce[map], size <= 253);
        EXPECT_TRUE(BlockInForce[setting]) << "only its own length is sent";
    }
}

TEST_F(DataFileTest, BlockOfExactlyItsLength_IsAccepted_OneByteShortIsNot) {
    OpenBuild(kPlainBuild);
    const auto blocks = ReadData;
    for (std::size_t b = 0; b < 256; ++b) {
        if (!BlockRead[b] || BlockLength[b] < 2 || b == 0xF3 || b == 0xF5) continue;
        auto cut = blocks;
        cut[b].resize(BlockLength[b]);
        Open(Put("b.dat", DataFile(cut)));
        EXPECT_EQ(MainFormState.FileTitle, "b.dat") << b;
        cut[b].pop_back();
        if (b == 0x99 || b == 0x97) continue;
        char digits[8];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(b));
        ExpectBox(std::string("File Format Error: Missing Data ") + digits, Box::Critical);
        Open(Put("c.dat", DataFile(cut)));
        EXPECT_EQ(MainFormState.FileTitle, "b.dat") << b;
    }
}

TEST_F(DataFileTest, EveryNewOpening_EndsUndo) {
    OpenBuild(kPlainBuild);
    {
        const Gesture gesture("Map");
        SetCell(0, 1, 1, GetCell(0, 1, 1, false) ^ 1);
    }
    ASSERT_TRUE(CanUndo());
    DataChanged = false;
    OpenBuild(kPlainBuild);
    EXPECT_FALSE(CanUndo());
    EXPECT_FALSE(MapCellChanged[0][1][1]);
}

// --- Paths and dialogs ---------------------------------------------------------------------------------

TEST_F(DataFileTest, QuotedPath_IsOpenedWithoutItsQuotes) {
    const std::string path = Put("a b.dat", DataFile(zandrel::BlocksOf(kPlainBuild)));
    std::string opened = "\"" + path + "\"";
    OpenFile(opened, true);
    EXPECT_EQ(opened, path);
    EXPECT_EQ(MainFormState.FileTitle, "a b.dat");
    EXPECT_EQ(Recent(1), path);
}

TEST_F(DataFileTest, PathWithOneQuote_IsTakenAsItStands) {
    const std::string path = Put("a.dat", DataFile(zandrel::BlocksOf(kPlainBuild)));
    const Everything before = Now();
    ExpectBox("Error opening a.dat\"", Box::Critical);
    Open(path + "\"");
    ExpectBox("Error opening a.dat", Box::Critical);
    Open("\"" + path);
    ExpectBox("Error opening \"", Box::Critical);
    Open("\"");
    // Two quotes with nothing between them are no wish to be asked.
    ExpectBox("Error opening ", Box::Critical);
    Open("\"\"");
    EXPECT_EQ(Differences(before, Now()), "");
    EXPECT_EQ(MapPath(), "none");
    EXPECT_EQ(Recent(1), "none");
}

TEST_F(DataFileTest, NamesInAnyScriptWithBlanksAndQuotes_AreOpenedAndSaved) {
    const std::string bytes = DataFile(zandrel::BlocksOf(kPlainBuild));
    for (const char* name :
         {"\u30C1\u30E5\u30FC\u30F3.dat", "\u0434\u0432\u0430 \u0441\u043B\u043E\u0432\u0430.dat",
          "it's \"mine\" & more.dat", "  blanks  .dat", "\U0001F697.dat", "no suffix"}) {
        Open(Put(name, bytes));
        EXPECT_EQ(MainFormState.FileTitle, name);
        const std::string other = std::string("again ") + name;
        Dialogs.Answer(Folder + "/" + other);
        SaveAs();
        EXPECT_EQ(MainFormState.FileTitle, other);
        EXPECT_EQ(FileBytes(Folder + "/" + other), bytes.substr(0, FileBytes(Folder + "/" + other).size()));
        EXPECT_EQ(Recent(1), Folder + "/" + other);
    }
}

TEST_F(DataFileTest, MenuOpen_AsksInTheRememberedFolder) {
    const std::string path = Put("a.dat", DataFile(zandrel::BlocksOf(kPlainBuild)));
    Dialogs.Answer(path);
    mnuOpen_Click();
    ASSERT_EQ(Dialogs.Asked.size(), 1U);
    const FileChoice first = Dialogs.Asked[0];
    EXPECT_FALSE(first.Save);
    EXPECT_EQ(first.Folder, ProgramFolder + "/Maps/");
    EXPECT_EQ(first.Name, "");
    ASSERT_EQ(first.Filters.size(), 2U);
    EXPECT_EQ(first.Filters[static_cast<std::size_t>(first.FilterIndex)], "Data Files(*.dat)");
    EXPECT_EQ(MainFormState.FileTitle, "a.dat");
    EXPECT_EQ(Recent(1), path);
    Dialogs.Answer("");
    mnuOpen_Click();
    EXPECT_EQ(Dialogs.Asked.back().Folder, Folder + "/");
}

TEST_F(DataFileTest, RememberedFolderThatIsGone_FallsBackToTheDefault) {
    for (const std::string& folder :
         {Folder + "/gone/", std::string(), std::string("\n"), Folder + "/settings.ini"}) {
        SaveSetting("Settings", "MapPath", folder);
        Dialogs.Answer("");
        mnuOpen_Click();
        EXPECT_EQ(Dialogs.Asked.back().Folder, ProgramFolder + "/Maps/") << folder;
        Dialogs.Answer("");
        SaveAs();
        EXPECT_EQ(Dialogs.Asked.back().Folder, ProgramFolder + "/Maps/") << folder;
    }
}

TEST_F(DataFileTest, CancelledOpenDialog_LeavesEverything) {
    OpenBuild(kPlainBuild);
    const Everything before = Now();
    Dialogs.Answer("");
    mnuOpen_Click();
    EXPECT_EQ(Differences(before, Now()), "");
    EXPECT_EQ(BusyPointers(), "10");
}

TEST_F(DataFileTest, Default_IsLookedForInTheProgramFolder) {
    const Everything before = Now();
    ExpectBox("Error opening default.dat", Box::Critical);
    mnuDefault_Click();
    EXPECT_EQ(Differences(before, Now()), "");
    Put("default.dat", DataFile(zandrel::BlocksOf(kPlainBuild)));
    SaveSetting("Settings", "MapPath", "/elsewhere/");
    mnuDefault_Click();
    EXPECT_EQ(MainFormState.FileTitle, "default.dat");
    EXPECT_EQ(MapPath(), ProgramFolder + "/");
}

TEST_F(DataFileTest, RecentItem_OpensItsPath) {
    const std::string first = OpenBuild(kPlainBuild, "a.dat");
    const std::string second = OpenBuild(kOtherBuild, "b.dat");
    ASSERT_EQ(mnuRecentFile[1].Tag, first);
    mnuRecentFile_Click(1);
    EXPECT_EQ(MainFormState.FileTitle, "a.dat");
    EXPECT_EQ(mnuRecentFile[0].Tag, first);
    EXPECT_EQ(mnuRecentFile[1].Tag, second);
}

TEST_F(DataFileTest, Comparison_EndsBeforeTheDialog) {
    int ended = 0;
    EndComparison = [&ended] {
        ++ended;
        mnuCompare.Checked = false;
    };
    mnuCompare.Checked = true;
    Dialogs.Answer("");
    mnuOpen_Click();
    EXPECT_EQ(ended, 1);
    OpenBuild(kPlainBuild);
    EXPECT_EQ(ended, 1);
}

// A click while all blocks are being read or written replaced the image under it.
TEST_F(DataFileTest, WhileALongOperationRuns_NothingIsOpened) {
    const std::string path = Put("a.dat", DataFile(zandrel::BlocksOf(kPlainBuild)));
    const Everything before = Now();
    DataChanged = true;
    {
        const LongOperation running;
        Open(path);
        mnuOpen_Click();
    }
    DataChanged = false;
    EXPECT_EQ(Differences(before, Now()), "");
}

// --- The question about unsaved data -------------------------------------------------------------------

TEST_F(DataFileTest, UnsavedData_CancelLeavesEverything) {
    OpenBuild(kPlainBuild);
    DataChanged = true;
    const Everything before = Now();
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Cancel);
    mnuOpen_Click();
    EXPECT_EQ(Differences(before, Now()), "");
}

TEST_F(DataFileTest, UnsavedData_NoOpensAndItIsSavedDataThen) {
    OpenBuild(kPlainBuild);
    DataChanged = true;
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::No);
    OpenBuild(kOtherBuild);
    EXPECT_EQ(VerName, "B16A1");
    EXPECT_FALSE(DataChanged);
}

TEST_F(DataFileTest, UnsavedData_YesSavesFirst) {
    OpenBuild(kPlainBuild);
    const auto blocks = ReadData;
    DataChanged = true;
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    Dialogs.Answer(Folder + "/kept.dat");
    OpenBuild(kOtherBuild);
    EXPECT_EQ(FileBytes(Folder + "/kept.dat"), DataFile(blocks, "TTa note\r\nTT\r\n"));
    EXPECT_EQ(VerName, "B16A1");
}

TEST_F(DataFileTest, UnsavedData_YesThatCannotBeSavedOpensNothing) {
    OpenBuild(kPlainBuild);
    DataChanged = true;
    const Everything before = Now();
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    Dialogs.Answer(Folder + "/none/kept.dat");
    mnuOpen_Click();
    EXPECT_EQ(Differences(before, Now()), "");
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    Dialogs.Answer("");
    mnuOpen_Click();
    EXPECT_EQ(Differences(before, Now()), "");
}

TEST_F(DataFileTest, OpeningDoesNotTouchTheMarkOfUnsavedData) {
    mnuCheckUnsavedData.Checked = false;
    DataChanged = true;
    OpenBuild(kPlainBuild);
    EXPECT_TRUE(DataChanged);
}

// --- Saving --------------------------------------------------------------------------------------------

TEST_F(DataFileTest, SavedImage_IsTheGoldenFileByteForByte) {
    OpenBuild(kPlainBuild);
    txtNotes.Text = "Stage 2\r\n\r\n1.2 bar, caf\u00E9";
    Dialogs.Answer(Folder + "/saved.dat");
    SaveAs();
    const std::string saved = FileBytes(Folder + "/saved.dat");
    const std::string golden = std::string(ZANDREL_TEST_DATA) + "/golden/rb26dett642.dat";
    if (saved != FileBytes(golden)) PutFile(golden + ".actual", saved);
    EXPECT_EQ(saved, FileBytes(golden)) << "see " << golden << ".actual";
}

TEST_F(DataFileTest, SavedAndOpenedImage_IsTheSame) {
    OpenBuild(kOtherBuild);
    txtNotes.Text.clear();
    const auto blocks = ReadData;
    SaveFile(Folder + "/b.dat");
    const std::string saved = FileBytes(Folder + "/b.dat");
    EXPECT_EQ(saved, DataFile(blocks));
    ReadData.fill({});
    Open(Folder + "/b.dat");
    EXPECT_EQ(ReadData, blocks);
    SaveFile(Folder + "/c.dat");
    EXPECT_EQ(FileBytes(Folder + "/c.dat"), saved);
}

TEST_F(DataFileTest, SaveAs_ProposesTheTitleAndTakesTheChosenOne) {
    OpenBuild(kPlainBuild, "a - b.dat");
    DataChanged = true;
    Dialogs.Answer(Folder + "/c.dat");
    SaveAs();
    ASSERT_EQ(Dialogs.Asked.size(), 1U);
    const FileChoice choice = Dialogs.Asked[0];
    EXPECT_TRUE(choice.Save);
    EXPECT_EQ(choice.Name, "a - b.dat");
    EXPECT_EQ(choice.Folder, Folder + "/");
    EXPECT_EQ(choice.Filters[static_cast<std::size_t>(choice.FilterIndex)], "Data Files(*.dat)");
    EXPECT_FALSE(DataChanged);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - c.dat");
    EXPECT_EQ(Recent(1), Folder + "/c.dat");
    EXPECT_EQ(MapPath(), Folder + "/");
}

TEST_F(DataFileTest, CancelledSaveDialog_LeavesEverything) {
    OpenBuild(kPlainBuild);
    DataChanged = true;
    const Everything before = Now();
    Dialogs.Answer("");
    SaveAs();
    EXPECT_EQ(Differences(before, Now()), "");
    DataChanged = false;
}

TEST_F(DataFileTest, SaveByPath_LeavesTheTitleThatNoDialogHasChosen) {
    OpenBuild(kPlainBuild);
    SaveFile(Folder + "/default.dat");
    EXPECT_EQ(MainFormState.FileTitle, "a.dat");
    EXPECT_EQ(Recent(1), Folder + "/default.dat");
    // The title of the last dialog counts, whichever file it was for.
    Dialogs.Answer(Folder + "/c.dat");
    SaveAs();
    OpenBuild(kPlainBuild);
    SaveFile(Folder + "/default.dat");
    EXPECT_EQ(MainFormState.FileTitle, "c.dat");
}

TEST_F(DataFileTest, FileThatCannotBeWritten_SaysNothingAndChangesNothing) {
    OpenBuild(kPlainBuild);
    const std::string closed = Folder + "/closed";
    std::filesystem::create_directory(closed);
    PutFile(closed + "/old.dat", "old");
    chmod(closed.c_str(), 0555);
    DataChanged = true;
    const Everything before = Now();
    {
        const Unprivileged person(Folder);
        for (const char* name : {"/closed/old.dat", "/closed/new.dat", "/none/a.dat", "/closed"}) {
            Dialogs.Answer(Folder + name);
            SaveAs();
            EXPECT_EQ(Differences(before, Now()), "") << name;
        }
    }
    EXPECT_EQ(FileBytes(closed + "/old.dat"), "old");
    EXPECT_EQ(Recent(1), Folder + "/a.dat");
    // The folder was chosen all the same.
    EXPECT_EQ(MapPath(), Folder + "/");
    chmod(closed.c_str(), 0755);
    DataChanged = false;
    OpenBuild(kOtherBuild);
    EXPECT_EQ(VerName, "B16A1") << "opening works after a failed save";
}

TEST_F(DataFileTest, FullDisk_KeepsTheOldFileAndTheMarkOfUnsavedData) {
    const std::string path = OpenBuild(kPlainBuild);
    const std::string old = FileBytes(path);
    DataChanged = true;
    const Everything before = Now();
    rlimit room{};
    getrlimit(RLIMIT_FSIZE, &room);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = room;
    small.rlim_cur = 1000;
    setrlimit(RLIMIT_FSIZE, &small);
    Dialogs.Answer(path);
    SaveAs();
    setrlimit(RLIMIT_FSIZE, &room);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(FileBytes(path), old);
    EXPECT_EQ(Differences(before, Now()), "");
    Flush = [](int) { return false; };
    Dialogs.Answer(path);
    SaveAs();
    EXPECT_EQ(FileBytes(path), old);
    EXPECT_EQ(Differences(before, Now()), "");
    DataChanged = false;
}

TEST_F(DataFileTest, ProposedNameOfAnUnknownVersion_IsSavedWithTheBlocksFound) {
    ReadData.fill({});
    ReadData[0xF3] = "NEWENGIN";
    ReadData[0xF5] = "9.99 ";
    SetCaption("scan NEWENGIN v9.99.dat");
    Dialogs.Answer(Folder + "/scan NEWENGIN v9.99.dat");
    mnuSaveAs_Click();
    EXPECT_EQ(Dialogs.Asked[0].Name, "scan NEWENGIN v9.99.dat");
    EXPECT_EQ(FileBytes(Folder + "/scan NEWENGIN v9.99.dat"), "F34E4557454E47494E\r\nF5392E393920\r\n");
}

}  // namespace
}  // namespace zandrel
