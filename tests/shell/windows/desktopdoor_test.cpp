#include "shell/windows/desktopdoor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest/QTest>

#include "link/progress.h"
#include "shell/windows/windowfixture.h"
#include "util/desktop.h"

namespace zandrel {
namespace {

class DesktopDoorTest : public WindowTest {
  protected:
    DesktopDoorTest() { OpenDesktop(Main); }

    // Runs `action` on the message box as soon as it stands.
    void WhenBoxStands(const std::function<void(QMessageBox*)>& action) {
        QTimer::singleShot(0, &Main, [action] {
            QMessageBox* box = nullptr;
            for (QWidget* window : QApplication::topLevelWidgets()) {
                auto* candidate = qobject_cast<QMessageBox*>(window);
                if (candidate != nullptr && candidate->isVisible()) box = candidate;
            }
            ASSERT_NE(box, nullptr);
            action(box);
        });
    }
};

TEST_F(DesktopDoorTest, Question_IsAskedWithItsButtonsAndAnswered) {
    ShowAt(800, 600);
    WhenBoxStands([](QMessageBox* box) {
        EXPECT_EQ(box->windowTitle(), "Zandrel");
        EXPECT_EQ(box->text(), "You <b>have</b>\nDo you?");
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_EQ(box->icon(), QMessageBox::Warning);
        EXPECT_EQ(box->standardButtons(), QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
    });
    EXPECT_EQ(MessageBox("You <b>have</b>\nDo you?", Box::SaveQuestion), Answer::Yes);
}

TEST_F(DesktopDoorTest, EveryBox_HasItsIconButtonsAndEscape) {
    ShowAt(800, 600);
    struct Row {
        Box Kind;
        QMessageBox::Icon Icon;
        int Buttons;
        Answer Escape;
    };
    const Row rows[] = {
        {Box::Plain, QMessageBox::NoIcon, 1, Answer::Ok},
        {Box::Critical, QMessageBox::Critical, 1, Answer::Ok},
        {Box::Exclamation, QMessageBox::Warning, 1, Answer::Ok},
        {Box::SaveQuestion, QMessageBox::Warning, 3, Answer::Cancel},
        {Box::YesNo, QMessageBox::Warning, 2, Answer::No},
        {Box::Information, QMessageBox::Information, 1, Answer::Ok},
        {Box::YesNoInformation, QMessageBox::Information, 2, Answer::No},
    };
    for (const Row& row : rows) {
        WhenBoxStands([&row](QMessageBox* box) {
            EXPECT_EQ(box->icon(), row.Icon);
            EXPECT_EQ(box->buttons().size(), row.Buttons);
            QTest::keyClick(box, Qt::Key_Escape);
        });
        EXPECT_EQ(MessageBox("x", row.Kind), row.Escape) << static_cast<int>(row.Kind);
    }
}

TEST_F(DesktopDoorTest, BoxBeforeTheWindowIsShown_StandsAlone) {
    WhenBoxStands([](QMessageBox* box) {
        EXPECT_EQ(box->parentWidget(), nullptr);
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    EXPECT_EQ(MessageBox("Error in frmMain_Load", Box::Critical), Answer::Ok);
}

TEST_F(DesktopDoorTest, ApplicationThatQuits_EndsTheWait) {
    ShowAt(800, 600);
    Answer answer = Answer::Yes;
    bool ended = false;
    QTimer::singleShot(0, &Main, [&] {
        QTimer::singleShot(0, &Main, [] { QCoreApplication::exit(0); });
        answer = MessageBox("x", Box::SaveQuestion);
        ended = true;
    });
    QApplication::exec();
    EXPECT_TRUE(ended);
    EXPECT_EQ(answer, Answer::Cancel);
}

TEST_F(DesktopDoorTest, Yield_MirrorsAndHandlesEvents) {
    ShowAt(800, 600);
    ShowProgress(Progress2, "Turn igniton on now.");
    bool handled = false;
    QTimer::singleShot(0, &Main, [&] { handled = true; });
    Yield();
    EXPECT_TRUE(handled);
    EXPECT_TRUE(Named<QDialog>("frmProgress2")->isVisible());
}

TEST_F(DesktopDoorTest, BusyPointer_IsAnAssignmentNotAStack) {
    BusyPointer(true);
    BusyPointer(true);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    BusyPointer(false);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    BusyPointer(false);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(DesktopDoorTest, QuestionWhileBusy_ShowsAnArrow) {
    ShowAt(800, 600);
    BusyPointer(true);
    WhenBoxStands([](QMessageBox* box) {
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
        box->reject();
    });
    MessageBox("x", Box::Exclamation);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    BusyPointer(false);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(DesktopDoorTest, Clipboard_TakesTheText) {
    Desktop.SetClipboard("PIM kg/m²");
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "PIM kg/m²");
}

TEST_F(DesktopDoorTest, FileToSave_IsProposedAndChosen) {
    ShowAt(800, 600);
    const auto withDialog = [this](const std::function<void(QFileDialog*)>& action) {
        QTimer::singleShot(0, &Main, [this, action] { action(Named<QFileDialog>("FileDialog")); });
    };
    withDialog([](QFileDialog* dialog) {
        EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
        dialog->reject();
    });
    EXPECT_EQ(Desktop.ChooseFile({.Save = true, .Name = "scan x.dat"}), "");
    const std::string path = Folder + "/scan RB26DETT v6.42.dat";
    withDialog([](QFileDialog* dialog) { QMetaObject::invokeMethod(dialog, "accept"); });
    EXPECT_EQ(Desktop.ChooseFile({.Save = true, .Folder = Folder, .Name = "scan RB26DETT v6.42.dat"}), path);
    // What a Power-FC calls itself leads to no other folder.
    withDialog([](QFileDialog* dialog) { QMetaObject::invokeMethod(dialog, "accept"); });
    EXPECT_EQ(Desktop.ChooseFile({.Save = true, .Folder = Folder, .Name = "scan ../\"A\" v\\1.dat"}),
              Folder + "/scan ..__A_ v_1.dat");
}

}  // namespace
}  // namespace zandrel
