// The notes: lines on the screen, CR LF in the record and in the file; nothing that was typed is lost.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QPlainTextEdit>
#include <QtTest/QTest>

#include "image/history.h"
#include "image/image.h"
#include "shell/windows/filewindow.h"
#include "shell/windows/notesedit.h"
#include "support/scripteddesktop.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class Notes : public FileWindow {
  protected:
    Notes() {
        OpenByMenu(FileOf("RB26DETT6.42", "a.dat", "TTshim 0.8\r\nTTsecond\r\n"));
        ClickTab(10);
    }
    NotesEdit* Editor() { return static_cast<NotesEdit*>(Named<QPlainTextEdit>("txtNotes")); }
    void ToTheEnd() {
        QTest::mouseClick(Editor()->viewport(), Qt::LeftButton);
        ASSERT_TRUE(Editor()->hasFocus());
        Key(Qt::Key_End, Qt::ControlModifier);
    }
};

TEST_F(Notes, WhatIsTyped_StandsInTheRecordAtOnce) {
    EXPECT_FALSE(DataChanged);
    ToTheEnd();
    EXPECT_FALSE(DataChanged);
    Type("x");
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\nx");
    Key(Qt::Key_Return);
    Type("y");
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\nx\r\ny");
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled()) << "notes are nothing to send";
}

TEST_F(Notes, SavedAndOpenedAgain_GainOneLineEnd) {
    ToTheEnd();
    Type("x");
    Chosen = Folder + "/b.dat";
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(DataChanged);
    EXPECT_TRUE(FileBytes(Chosen).ends_with("\r\nTTshim 0.8\r\nTTsecond\r\nTTx\r\n"));
    ClickItem("mnuFile", "mnuOpen");
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\nx\r\n");
    EXPECT_EQ(Editor()->toPlainText(), "shim 0.8\nsecond\nx\n");
}

TEST_F(Notes, Closing_AsksAboutThem) {
    ToTheEnd();
    Type("x");
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    Chosen = Folder + "/b.dat";
    EXPECT_TRUE(Main.close());
    EXPECT_TRUE(FileBytes(Chosen).ends_with("TTx\r\n"));
}

TEST_F(Notes, Showing_IsNoEdit) {
    Main.Mirror();
    Editor()->setFocus();
    Key(Qt::Key_Tab);
    EXPECT_FALSE(DataChanged);
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\n");
}

TEST_F(Notes, Undo_IsTheEditorsOwn) {
    ChangeASetting();
    const auto image = ReadData;
    ClickTab(10);
    ToTheEnd();
    Type("xyz");
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\n");
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(ReadData, image) << "nothing is left to undo in the notes";
    Key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\nxyz");
    EXPECT_EQ(ReadData, image);
}

// On some desktops Ctrl+U clears a line.
TEST_F(Notes, CtrlU_IsLeftToUpdate) {
    ToTheEnd();
    Type("x");
    Key(Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\nx");
}

TEST_F(Notes, UndoOfTheEditor_EndsWhereAFileIsOpened) {
    ToTheEnd();
    Type("x");
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::No);
    OpenByMenu(FileOf("RB26DETT6.42", "b.dat", "TTother\r\n"));
    Editor()->setFocus();
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(txtNotes.Text, "other\r\n");
    EXPECT_FALSE(DataChanged);
}

TEST_F(Notes, BlanksThatDontBreak_Stay) {
    OpenByMenu(FileOf("RB26DETT6.42", "b.dat",
                      "TT1.0\xA0"
                      "bar \xB5\r\n"));
    ToTheEnd();
    Type("x");
    EXPECT_EQ(txtNotes.Text, "1.0\u00A0bar \u00B5\r\nx");
}

TEST_F(Notes, WhatNoFileHolds_IsShownAsItWillBeSaved) {
    ToTheEnd();
    QApplication::clipboard()->setText(QString::fromUtf8("до €5 😀"));
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\nдо €5 😀");
    Tabs()->tabBar()->setFocus();
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\n?? €5 ?");
    EXPECT_EQ(Editor()->toPlainText(), QString::fromUtf8("shim 0.8\nsecond\n?? €5 ?"));
}

TEST_F(Notes, WhileComparing_TheyKeepTheFocusAway) {
    ToTheEnd();
    mnuCompare.Checked = true;
    Main.Mirror();
    Settle();
    EXPECT_TRUE(Editor()->isReadOnly());
    QTest::keyClick(Editor(), Qt::Key_X);
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\n");
    Tabs()->tabBar()->setFocus();
    QTest::mouseClick(Editor()->viewport(), Qt::LeftButton);
    EXPECT_FALSE(Editor()->hasFocus());
    mnuCompare.Checked = false;
    Main.Mirror();
    EXPECT_FALSE(Editor()->isReadOnly());
}

TEST_F(Notes, TooLongToBeEdited_AreKept) {
    std::string tail;
    for (int line = 0; line < 1'000'000; ++line) tail += "TTline\r\n";
    OpenByMenu(FileOf("RB26DETT6.42", "b.dat", tail));
    ASSERT_EQ(txtNotes.Text.size(), 6'000'000U);
    EXPECT_TRUE(Editor()->isReadOnly());
    EXPECT_LE(Editor()->document()->characterCount(), NotesEdit::kLongest + 10);
    Chosen = Folder + "/c.dat";
    ClickItem("mnuFile", "mnuSaveAs");
    EXPECT_EQ(FileBytes(Chosen), FileBytes(Folder + "/b.dat") + "TT\r\n");
    OpenByMenu(Folder + "/a.dat");
    EXPECT_FALSE(Editor()->isReadOnly());
}

TEST_F(Notes, PasteBeyondWhatCanBeEdited_IsRefused) {
    ToTheEnd();
    QApplication::clipboard()->setText(QString(NotesEdit::kLongest, QLatin1Char('x')));
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(txtNotes.Text, "shim 0.8\r\nsecond\r\n");
    EXPECT_FALSE(DataChanged);
}

}  // namespace
}  // namespace zandrel
