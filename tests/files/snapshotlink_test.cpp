// When an image is kept without a word: before a Read All over unsaved work, before a Write All, after a Read
// All that went through.
#include <gtest/gtest.h>

#include "files/datafile.h"
#include "files/datatext.h"
#include "files/filesfixture.h"
#include "files/snapshots.h"
#include "image/image.h"
#include "link/packets.h"
#include "link/transferfixture.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr char kUnsaved[] = "You have made setting changes that have not been saved.\nDo you want to save?";

class SnapshotLink : public TransferFixture {
  protected:
    SnapshotLink() { GridInit(); }

    static std::size_t Count() { return ListSnapshots().size(); }

    /// The file of the snapshot at `index`, newest first.
    static std::string Bytes(std::size_t index) { return FileBytes(ListSnapshots()[index].Path); }

    static std::string Image() { return FormatDataText(ReadData, txtNotes.Text); }
};

TEST_F(SnapshotLink, ReadAllThatWentThrough_IsKept) {
    ReadAllOf(kPlain);
    ASSERT_EQ(Count(), 1U);
    EXPECT_EQ(Bytes(0), Image());
    EXPECT_EQ(ListSnapshots()[0].Caption.substr(0, 14), "RB26DETT 6.42 ");
}

TEST_F(SnapshotLink, ReadAllOverUnsavedWork_KeepsItFirst) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    const std::string edited = Image();
    cmdReadAll_Click();
    ASSERT_EQ(Count(), 3U);
    EXPECT_EQ(Bytes(1), edited);
    EXPECT_EQ(Bytes(0), Image());
    EXPECT_NE(Image(), edited);
}

TEST_F(SnapshotLink, ReadAllAfterTheAnswerNo_KeepsWhatWasGivenUp) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    const std::string edited = Image();
    mnuSaveAs_Click = SaveAs;
    mnuCheckUnsavedData.Checked = true;
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::No);
    cmdReadAll_Click();
    ASSERT_EQ(Count(), 3U);
    EXPECT_EQ(Bytes(1), edited);
}

TEST_F(SnapshotLink, ReadAllAfterTheAnswerYes_KeepsOnlyWhatWasRead) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    FileDialogs dialogs;
    dialogs.Answer(Folder + "/saved.dat");
    mnuSaveAs_Click = SaveAs;
    mnuCheckUnsavedData.Checked = true;
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    cmdReadAll_Click();
    EXPECT_EQ(Count(), 2U);
}

TEST_F(SnapshotLink, ReadAllAfterTheAnswerCancel_KeepsNothing) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    mnuSaveAs_Click = SaveAs;
    mnuCheckUnsavedData.Checked = true;
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Cancel);
    cmdReadAll_Click();
    EXPECT_EQ(Count(), 1U);
}

TEST_F(SnapshotLink, ReadAllOverSavedWork_KeepsOnlyWhatWasRead) {
    ReadAllOf(kPlain);
    SaveFile(Folder + "/saved.dat");
    cmdReadAll_Click();
    EXPECT_EQ(Count(), 2U);
}

// The work is safe although the Power-FC does not answer.
TEST_F(SnapshotLink, ReadAllThatFails_HasKeptTheUnsavedWorkOnly) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    Impatient();
    device->DeadLine(true);
    ExpectMessage(kNotResponding);
    cmdReadAll_Click();
    ASSERT_EQ(Count(), 2U);
    EXPECT_EQ(Bytes(0), Image());
}

TEST_F(SnapshotLink, WriteAll_KeepsWhatItSends) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    cmdWriteAll_Click();
    ASSERT_EQ(Count(), 2U);
    EXPECT_EQ(Bytes(0), Image());
    ExpectDeviceEqualsImage();
}

TEST_F(SnapshotLink, WriteAllThatIsRefused_KeepsNothing) {
    ReadAllOf(kPlain);
    Connect(kBaseMap);
    ExpectMessage(kFirstReadAllWrite);
    cmdWriteAll_Click();
    EXPECT_EQ(Count(), 1U);
}

TEST_F(SnapshotLink, FolderThatCannotBe_StopsNeitherReadAllNorWriteAll) {
    PutFile(Folder + "/Snapshots", "a file stands in the way");
    ReadAllOf(kPlain);  // its lines in the log are gone
    Bump(0x8D);
    cmdWriteAll_Click();
    cmdReadAll_Click();
    ExpectDeviceEqualsImage();
    EXPECT_TRUE(ListSnapshots().empty());
    int lines = 0;
    for (const std::string& line : LogLines())
        lines += line.substr(0, 24) == "Could not keep snapshot " ? 1 : 0;
    EXPECT_EQ(lines, 3);
}

}  // namespace
}  // namespace zandrel
