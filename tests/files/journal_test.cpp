#include "files/journal.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>

#include "files/datafile.h"
#include "files/datatext.h"
#include "files/filesfixture.h"
#include "files/processlock.h"
#include "files/snapshots.h"
#include "files/wholefile.h"
#include "image/accessors.h"
#include "image/history.h"
#include "link/transfers.h"
#include "shell/startstop.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/text.h"

namespace zandrel {
namespace {

// What the start does with what a crash has left.
bool Recovered() {
    const bool wanted = AskRecovery();
    const bool recovered = wanted && RecoverJournal();
    BeginJournal();
    return recovered;
}

constexpr char kUnsaved[] = "You have made setting changes that have not been saved.\nDo you want to save?";

class Journal : public FilesFixture {
  protected:
    Journal() {
        Open(Put("base.dat", DataFile(BlocksOf(kPlainBuild), "TTfirst line\r\nTT\r\nTTthird\r\n")));
        BeginJournal();
    }
    ~Journal() override {
        Flush = FlushToDisk;
        EndJournal();
    }

    std::string Path() const { return Folder + "/Unsaved.journal"; }
    bool Stands() const { return std::filesystem::exists(Path()); }
    std::string Bytes() const { return FileBytes(Path()); }

    /// All that the journal has in the folder.
    std::string Left() const {
        return QDir(QString::fromStdString(Folder))
            .entryList({"Unsaved*"}, QDir::Files)
            .join(' ')
            .toStdString();
    }

    /// A program comes up whose forerunner left `journal` and nothing else.
    void Restart(const std::string& journal) {
        std::filesystem::remove(Folder + "/DebugLog.txt");
        LoadDesign();
        ReadData.fill({});
        BlockChanged.fill(false);
        BlockInForce.fill(false);
        MapCellChanged = {};
        ClearHistory();
        GridInit();
        VerName.clear();
        VerNumber.clear();
        DataChanged = false;
        mnuSaveAs_Click = SaveAs;
        Put("Unsaved.journal", journal);
    }

    void Crash() { Restart(Bytes()); }

    static void Edit(int value = 7) { SetNumber("&H8D,3,1,1,0,0", std::to_string(value)); }

    /// Lines of gestures, the notes' among them.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const std::string& line : Split(Bytes(), '\n')) {
            if (line.substr(0, 1) == "+") lines.push_back(line);
        }
        return lines;
    }
};

TEST_F(Journal, NothingEdited_LeavesNoFile) {
    EXPECT_FALSE(Stands());
    EXPECT_FALSE(JournalWaits());
    WriteJournal();
    EndJournal();
    EXPECT_EQ(Left(), "");
}

TEST_F(Journal, FirstEdit_WritesTheWholeImage) {
    Edit();
    EXPECT_EQ(Bytes().substr(0, Bytes().find("\r\n+") + 2), DataFile(ReadData));
    EXPECT_EQ(Lines().size(), 1U);
}

TEST_F(Journal, EachGesture_AddsOneLineAndLeavesTheRestAsItIs) {
    Edit();
    const std::string before = Bytes();
    {
        const Gesture gesture("Fill");
        for (int row = 1; row <= kMapSide; ++row) SetCell(0, row, 3, 100 + row);
        EXPECT_EQ(Bytes(), before);
    }
    EXPECT_EQ(Bytes().substr(0, before.size()), before);
    EXPECT_EQ(Lines().size(), 2U);
    int map = 0;
    Undo(map);
    EXPECT_EQ(Lines().size(), 3U);
    Redo(map);
    EXPECT_EQ(Lines().size(), 4U);
}

TEST_F(Journal, GestureThatChangesNoByte_AddsNoLine) {
    Edit(7);
    const std::string before = Bytes();
    EditDone();
    EXPECT_EQ(Bytes(), before);
}

TEST_F(Journal, Recovered_StandsAsAnOpenedFileButUnsaved) {
    Edit();
    SetCell(0, 3, 4, 77);
    const auto image = ReadData;
    const std::string notes = txtNotes.Text;
    Crash();
    cmdUpdate.Enabled = true;
    ASSERT_TRUE(JournalWaits());
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, image);
    EXPECT_EQ(txtNotes.Text, notes);
    EXPECT_EQ(VerName + VerNumber, kPlainBuild);
    EXPECT_TRUE(DataChanged);
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_FALSE(CanUndo());
    EXPECT_EQ(std::count(BlockChanged.begin(), BlockChanged.end(), true), 0);
    EXPECT_TRUE(BlockInForce[0x8D]);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - Recovered Data");
    EXPECT_EQ(Grid[0].TextMatrix[3][4], GridCellText(0, 3, 4));
    EXPECT_TRUE(SSTab1.TabVisible[0]);
    EXPECT_EQ(BusyPointers().substr(BusyPointers().size() - 2), "10");
}

TEST_F(Journal, Recovered_ChangesNeitherRecentListNorFolder) {
    Edit();
    const auto settings = FileBytes(Folder + "/settings.ini");
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(FileBytes(Folder + "/settings.ini"), settings);
}

TEST_F(Journal, AnySeriesOfGestures_IsRecoveredAsItStood) {
    std::mt19937 random(3);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    for (int series = 0; series < 40; ++series) {
        for (int k = below(12); k >= 0; --k) {
            int map = 0;
            switch (below(7)) {
                case 0:
                    Edit(below(256));
                    break;
                case 1: {
                    const Gesture gesture("Fill");
                    const int rows = 1 + below(20), columns = 1 + below(20);
                    for (int row = 1; row <= rows; ++row) {
                        for (int column = 1; column <= columns; ++column) SetCell(0, row, column, below(256));
                    }
                    break;
                }
                case 2:
                    ReplaceBlock(0x8D, ReadData[0x8D] + ByteString(static_cast<std::size_t>(below(3)), 'x'));
                    break;
                case 3:
                    txtNotes.Text.insert(static_cast<std::size_t>(below(5)), "\r\nline");
                    WriteJournal();
                    break;
                case 4:
                    Undo(map);
                    break;
                case 5:
                    Redo(map);
                    break;
                default:
                    SetCell(1, 1 + below(20), 1 + below(20), below(256));
                    break;
            }
        }
        Edit(series);
        const auto image = ReadData;
        const std::string notes = txtNotes.Text;
        Crash();
        ASSERT_TRUE(RecoverJournal());
        ASSERT_EQ(ReadData, image) << series;
        ASSERT_EQ(txtNotes.Text, notes) << series;
        BeginJournal();
    }
}

// A file's notes gain a line end each time that they are read; those of the journal are what they were.
TEST_F(Journal, NotesOfAnyKind_AreRecoveredExactly) {
    for (const std::string notes :
         {"", "no line end", "\r\n\r\n", "a\r\nb", "Gru\xC3\x9F \xE2\x82\xAC \xD0\x96",
          "+8D@0-0=00 *1\r\n+\nTT\rF3414243", "  \t "}) {
        txtNotes.Text = notes;
        Edit(1);
        Edit(2);
        Crash();
        ASSERT_TRUE(RecoverJournal());
        EXPECT_EQ(txtNotes.Text, notes);
        BeginJournal();
    }
}

TEST_F(Journal, BlockThatGrowsOrShrinks_IsRecovered) {
    Edit();
    const ByteString before = ReadData[0x8D];
    for (const ByteString& bytes : {before + "more", before, before + before, "<" + before}) {
        ReplaceBlock(0x8D, bytes);
        Crash();
        ASSERT_TRUE(RecoverJournal());
        EXPECT_EQ(ReadData[0x8D], bytes);
        BeginJournal();
    }
}

// A read of a map or a frame is no gesture, but what is edited next stands on it.
TEST_F(Journal, BytesThatCameFromThePowerFc_AreRecoveredWithTheNextEdit) {
    Edit();
    ReadData[0x86] = ByteString(100, '\x42');
    Edit(8);
    const auto image = ReadData;
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, image);
}

TEST_F(Journal, LineCutOffAnywhere_IsIgnored) {
    Edit(1);
    Edit(2);
    const std::string whole = Bytes();
    const auto image = ReadData;
    Edit(3);
    const std::string torn = Bytes();
    for (std::size_t size = whole.size(); size < torn.size(); ++size) {
        Restart(torn.substr(0, size));
        ASSERT_TRUE(RecoverJournal()) << size;
        EXPECT_EQ(ReadData, image) << size;
        EXPECT_EQ(LogText().find("Unsaved"), std::string::npos);
    }
    Restart(torn);
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData[0x8D][2], 3);
}

TEST_F(Journal, ByteThatIsWrong_EndsWhatIsRecoveredThere) {
    Edit(1);
    Edit(2);
    const std::size_t third = Bytes().size();
    Edit(3);
    const std::size_t end = Bytes().size();
    Edit(4);
    const std::string good = Bytes();
    for (std::size_t at = third; at < end; ++at) {
        std::string bad = good;
        bad[at] = bad[at] == '5' ? '6' : '5';
        Restart(bad);
        ASSERT_TRUE(RecoverJournal()) << at;
        EXPECT_EQ(ReadData[0x8D][2], 2) << at;
    }
}

TEST_F(Journal, ThatCannotBeRead_IsSetAsideWithALineInTheLogAndNoQuestion) {
    Edit();
    const std::string good = Bytes();
    const std::string base = good.substr(0, good.find("\r\n+") + 2);
    std::string wrong = good;
    wrong[10] = wrong[10] == '5' ? '6' : '5';
    for (const std::string& bad :
         {std::string(), std::string("\0\0\0\0", 4), std::string("nonsense"), base, base + "+",
          base + "+*0\r\n", base + "+8D@00000000-00000001=07 *0000000000000000\r\n", wrong,
          good.substr(0, good.size() - 1), std::string("+"), std::string("+*\r\n"), std::string("\r\n+"),
          std::string(1 << 20, '+'), std::string(1 << 20, '\n')}) {
        Restart(bad);
        EXPECT_FALSE(Recovered()) << bad.substr(0, 40);
        const std::string said = "Unsaved changes could not be read: ";
        ASSERT_EQ(LogLines().size(), 1U);
        ASSERT_EQ(LogLines()[0].substr(0, said.size()), said);
        EXPECT_EQ(FileBytes(LogLines()[0].substr(said.size())), bad);
        EXPECT_FALSE(Stands());
        EXPECT_FALSE(DataChanged);
        EndJournal();
    }
}

TEST_F(Journal, OfABuildThatIsNotKnown_IsToldAndKeptAsASnapshot) {
    ReadData[0xF3] = "NONESUCH";
    Edit();
    const std::string image = FormatDataText(ReadData, txtNotes.Text);
    Crash();
    const Everything before = Now();
    ExpectBox("Zandrel did not end properly. Your unsaved changes of " +
                  QFileInfo(QString::fromStdString(Path()))
                      .lastModified()
                      .toString("yyyy-MM-dd HH:mm:ss")
                      .toStdString() +
                  " can be recovered.\nDo you want to recover them?",
              Box::YesNo, Answer::Yes);
    ExpectBox(
        "Recovered Data[NONESUCH v6.42] is not recognised, or the Power-FC is not supported by this version",
        Box::Critical);
    EXPECT_FALSE(Recovered());
    EXPECT_EQ(Differences(before, Now()), "");
    EXPECT_FALSE(Stands());
    ASSERT_EQ(ListSnapshots().size(), 1U);
    EXPECT_EQ(FileBytes(ListSnapshots()[0].Path), image);
}

// A Read All that broke off leaves an image that no file would be accepted with; the edits in it count.
TEST_F(Journal, OfAnImageThatLacksABlock_IsRecoveredAllTheSame) {
    ReadData[0x8E].clear();
    Edit(7);
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData[0x8D][2], 7);
    EXPECT_TRUE(ReadData[0x8E].empty());
    EXPECT_TRUE(DataChanged);
}

class JournalOffer : public Journal {
  protected:
    JournalOffer() {
        Edit();
        image_ = ReadData;
        Crash();
        QFile file(QString::fromStdString(Path()));
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        EXPECT_TRUE(
            file.setFileTime(QDateTime(QDate(2026, 11, 21), QTime(14, 3, 22)), QFile::FileModificationTime));
    }

    static void Expect(Answer answer) {
        ExpectBox(
            "Zandrel did not end properly. Your unsaved changes of 2026-11-21 14:03:22 can be recovered.\n"
            "Do you want to recover them?",
            Box::YesNo, answer);
    }

    std::array<ByteString, 256> image_;
};

TEST_F(JournalOffer, Yes_Recovers) {
    Expect(Answer::Yes);
    EXPECT_TRUE(Recovered());
    EXPECT_EQ(ReadData, image_);
    EXPECT_TRUE(DataChanged);
    EXPECT_TRUE(Stands()) << "unsaved work is safe until it is saved";
    EXPECT_TRUE(ListSnapshots().empty());
}

TEST_F(JournalOffer, No_LeavesTheImageAloneAndKeepsASnapshot) {
    Expect(Answer::No);
    const Everything before = Now();
    EXPECT_FALSE(Recovered());
    EXPECT_EQ(Differences(before, Now()), "");
    EXPECT_EQ(Left(), "Unsaved.lock");
    ASSERT_EQ(ListSnapshots().size(), 1U);
    EndJournal();
    EXPECT_EQ(Left(), "");
    EXPECT_FALSE(JournalWaits());
    EXPECT_FALSE(Recovered());
}

TEST_F(JournalOffer, AfterYes_ASecondCrashGivesTheSameWithoutAnEdit) {
    Expect(Answer::Yes);
    ASSERT_TRUE(Recovered());
    Crash();
    ASSERT_TRUE(JournalWaits());
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, image_);
}

TEST_F(JournalOffer, AfterYes_EditsGoOnInTheSameJournal) {
    Expect(Answer::Yes);
    ASSERT_TRUE(Recovered());
    Edit(99);
    EXPECT_EQ(Left(), "Unsaved.journal Unsaved.lock");
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData[0x8D][2], 99);
}

TEST_F(JournalOffer, AfterYes_SavingEndsIt) {
    Expect(Answer::Yes);
    ASSERT_TRUE(Recovered());
    SaveFile(Folder + "/saved.dat");
    EXPECT_FALSE(Stands());
}

TEST_F(JournalOffer, AfterNo_EditsBeginAJournalAnew) {
    Expect(Answer::No);
    ASSERT_FALSE(Recovered());
    Open(Folder + "/base.dat");
    Edit(42);
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData[0x8D][2], 42);
}

// Who never was asked has not said No.
TEST_F(JournalOffer, NeverMade_LeavesWhatWaits) {
    EXPECT_TRUE(JournalWaits());
    BeginJournal();
    Open(Folder + "/base.dat");
    Edit(42);
    EXPECT_EQ(Left(), "Unsaved 2.journal Unsaved 2.lock Unsaved.journal");
    EndJournal();
    EXPECT_EQ(Left(), "Unsaved.journal");
    EXPECT_TRUE(JournalWaits());
}

TEST_F(JournalOffer, DiskIsFull_RecoversAllTheSame) {
    Expect(Answer::Yes);
    Flush = [](int) { return false; };
    EXPECT_TRUE(Recovered());
    EXPECT_EQ(ReadData, image_);
    EXPECT_TRUE(Stands());
    EXPECT_EQ(LogLines().back(), "Could not journal unsaved changes");
    Flush = FlushToDisk;
    Edit(5);
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData[0x8D][2], 5);
}

TEST_F(Journal, SavedOrReplaced_HasNoJournal) {
    Edit();
    ASSERT_TRUE(Stands());
    SaveFile(Folder + "/saved.dat");
    EXPECT_FALSE(Stands());
    Edit(8);
    ASSERT_TRUE(Stands());
    mnuCheckUnsavedData.Checked = false;
    Open(Folder + "/base.dat");
    EXPECT_FALSE(Stands());
    Edit(9);
    ASSERT_TRUE(Stands());
    AfterReadAll();
    EXPECT_FALSE(Stands());
    Edit(10);
    ASSERT_TRUE(Stands());
    std::string path = Folder + "/base.dat";
    OpenFile(path, false);
    EXPECT_FALSE(Stands());
    Edit(11);
    ASSERT_TRUE(Stands());
    mnuCheckUnsavedData.Checked = true;
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::No);
    Answer answer{};
    CheckUnsavedData(answer);
    // The edits stand in the image yet, and may stay there: what was to replace them may be cancelled.
    EXPECT_TRUE(Stands());
    Open(Folder + "/base.dat");
    EXPECT_FALSE(Stands());
    EXPECT_EQ(LogText().find("journal"), std::string::npos);
}

TEST_F(Journal, EditAfterASave_IsRecoveredOnTopOfIt) {
    Edit(1);
    SetCell(0, 1, 1, 50);
    SaveFile(Folder + "/saved.dat");
    Edit(2);
    const auto image = ReadData;
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, image);
}

TEST_F(Journal, WorkThatStaysUnsaved_KeepsItsJournal) {
    Edit();
    const std::string before = Bytes();
    // A save that fails.
    SaveFile(Folder + "/missing/saved.dat");
    EXPECT_EQ(Bytes(), before);
    // A dialog that is cancelled.
    Dialogs.Answer("");
    SaveAs();
    EXPECT_EQ(Bytes(), before);
    // The question answered with Cancel.
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Cancel);
    Open(Folder + "/base.dat");
    EXPECT_EQ(Bytes(), before);
    // Files that are refused.
    mnuCheckUnsavedData.Checked = false;
    ExpectBox("Error opening missing.dat", Box::Critical);
    Open(Folder + "/missing.dat");
    EXPECT_EQ(Bytes(), before);
    ExpectMessage("bad.dat[ v] is not recognised, or the Power-FC is not supported by this version");
    Open(Put("bad.dat", "nothing in it\r\n"));
    EXPECT_EQ(Bytes(), before);
    const auto image = ReadData;
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, image);
}

TEST_F(Journal, CleanStop_LeavesNothing) {
    Edit();
    EXPECT_EQ(Left(), "Unsaved.journal Unsaved.lock");
    EndJournal();
    EXPECT_EQ(Left(), "");
    Edit(8);
    EXPECT_EQ(Left(), "") << "there is no journal after the end";
    EXPECT_FALSE(JournalWaits());
}

TEST_F(Journal, OfAProgramThatRuns_IsNeitherOfferedNorTouched) {
    Edit();
    const std::string theirs = Bytes();
    Crash();
    auto other = ProcessLock::Take(Folder + "/Unsaved.lock");
    ASSERT_TRUE(other);
    EXPECT_FALSE(Recovered());
    Open(Folder + "/base.dat");
    Edit(9);
    EXPECT_EQ(Left(), "Unsaved 2.journal Unsaved 2.lock Unsaved.journal Unsaved.lock");
    SaveFile(Folder + "/saved.dat");
    EXPECT_EQ(Bytes(), theirs);
    EndJournal();
    EXPECT_EQ(Left(), "Unsaved.journal Unsaved.lock");
    EXPECT_EQ(Bytes(), theirs);
    other.reset();
    EXPECT_TRUE(JournalWaits());
}

TEST_F(Journal, TwoThatWait_TheNewestIsOfferedAndTheOtherAtTheNextStart) {
    Edit(1);
    const std::string older = Bytes();
    Edit(2);
    const std::string newer = Bytes();
    Restart(older);
    Put("Unsaved 2.journal", newer);
    QFile file(QString::fromStdString(Path()));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFile::FileModificationTime));
    file.close();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData[0x8D][2], 2);
    BeginJournal();
    EndJournal();
    EXPECT_EQ(Left(), "Unsaved.journal");
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData[0x8D][2], 1);
}

TEST_F(Journal, LockLeftByACrash_StandsInNobodysWay) {
    Edit(3);
    const std::string journal = Bytes();
    for (const std::string lock : {"", "1\ninit\nelsewhere\n"}) {
        Restart(journal);
        Put("Unsaved.lock", lock);
        EXPECT_TRUE(RecoverJournal()) << lock;
        BeginJournal();
        EndJournal();
        EXPECT_EQ(Left(), "");
    }
}

TEST_F(Journal, Lock_IsHeldOnceAndGoneWithItsFile) {
    const std::string path = Folder + "/one.lock";
    auto held = ProcessLock::Take(path);
    ASSERT_TRUE(held);
    EXPECT_FALSE(ProcessLock::Take(path));
    held.reset();
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(ProcessLock::Take(path));
    EXPECT_FALSE(ProcessLock::Take(Folder + "/missing/one.lock"));
}

TEST_F(Journal, BaseThatWasBeingWrittenAtTheCrash_IsClearedAway) {
    EndJournal();
    Put("Unsaved.journal.Xy12Ab", "half");
    Put("Unsaved.journals", "another's");
    Put("Unsaved work.dat", "another's");
    BeginJournal();
    EXPECT_EQ(Left(), "Unsaved work.dat Unsaved.journals Unsaved.lock");
}

TEST_F(Journal, NinePrograms_TheTenthWorksWithoutOne) {
    EndJournal();
    std::vector<std::unique_ptr<ProcessLock>> others;
    for (int k = 1; k <= 9; ++k) {
        const std::string number = k == 1 ? "" : " " + std::to_string(k);
        others.push_back(ProcessLock::Take(Folder + "/Unsaved" + number + ".lock"));
        ASSERT_TRUE(others.back());
    }
    BeginJournal();
    Edit(1);
    Edit(2);
    const auto lines = LogLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Could not journal unsaved changes"), 1);
    others[4].reset();
    Edit(3);
    EXPECT_TRUE(std::filesystem::exists(Folder + "/Unsaved 5.journal"));
    EndJournal();
}

TEST_F(Journal, DiskThatIsFullForAWhile_IsOneLineInTheLogAndThenGoesOn) {
    Flush = [](int) { return false; };
    for (int k = 0; k < 5; ++k) Edit(k);
    EXPECT_FALSE(Stands());
    const auto lines = LogLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Could not journal unsaved changes"), 1);
    Flush = FlushToDisk;
    Edit(9);
    const auto image = ReadData;
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, image);
}

// The disk is full in the middle of a line.
TEST_F(Journal, LineThatDidNotFit_IsInANewBaseAtOnce) {
    Edit(1);
    const std::string bytes = Bytes();
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit tight = old;
    tight.rlim_cur = bytes.size() + 20;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    {
        const Gesture gesture("Fill");
        for (int row = 1; row <= kMapSide; ++row) SetCell(0, row, 1, 11);
    }
    const auto filled = ReadData;
    const std::string base = Bytes();
    EXPECT_LE(base.size(), bytes.size() + 20);
    Edit(2);
    const std::string next = Bytes();
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, handler);
    const auto after = ReadData;
    Restart(base);
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, filled);
    Restart(next);
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, after);
}

TEST_F(Journal, LongDayOfEdits_StaysSmallAndIsRecovered) {
    std::uintmax_t largest = 0;
    Edit();
    for (int k = 0; k < 4000; ++k) {
        const Gesture gesture("Fill");
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column)
                SetCell(0, row, column, (k + row + column) % 256);
        }
        if (k % 50 == 0) largest = std::max(largest, std::filesystem::file_size(Path()));
    }
    EXPECT_LT(largest, 1'200'000U);
    EXPECT_GT(largest, 500'000U);
    const auto image = ReadData;
    Crash();
    ASSERT_TRUE(RecoverJournal());
    EXPECT_EQ(ReadData, image);
}

TEST_F(Journal, GestureOverAWholeMap_CostsLessThanAMillisecond) {
    Edit();
    std::vector<double> costs;
    double cost = 0;
    AfterGesture = [&cost] {
        const auto start = std::chrono::steady_clock::now();
        WriteJournal();
        cost = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    for (int k = 0; k < 101; ++k) {
        const Gesture gesture("Fill");
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column)
                SetCell(0, row, column, (7 * k + row + column) % 256);
        }
        if (k > 0) costs.push_back(cost);
    }
    EXPECT_EQ(Lines().size(), 102U);
    std::sort(costs.begin(), costs.end());
    EXPECT_LT(costs[costs.size() / 2], 1.0);
    std::printf("median %.3f ms, most %.3f ms\n", costs[costs.size() / 2], costs.back());
}

}  // namespace
}  // namespace zandrel
