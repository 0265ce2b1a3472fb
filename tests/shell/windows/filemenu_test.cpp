// Data files by the File menu: what a person clicks, and what the window and the disk hold afterwards.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QtTest/QTest>
#include <filesystem>
#include <fstream>

#include "files/datafile.h"
#include "files/recentfiles.h"
#include "files/snapshots.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/transfers.h"
#include "shell/settingsstore.h"
#include "shell/startstop.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/filewindow.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

constexpr char kBuild[] = "RB26DETT6.42";
constexpr char kOther[] = "13B-REW7.07";

class FileMenu : public FileWindow {
  protected:
    std::string Title() { return Main.windowTitle().toStdString(); }

    // The tabs with a map in view, where no cursor blinks.
    QImage Look() {
        ClickTab(0);
        PaintOut();
        return Tabs()->grab().toImage();
    }

    std::string Recent(int index) {
        const QAction* item = Item(MemberName("mnuRecentFile", index));
        return item->isVisible() ? item->text().toStdString() : "(hidden)";
    }
};

TEST_F(FileMenu, Open_FillsTheWindow) {
    OpenByMenu(FileOf(kBuild, "my car.dat", "TTshim 0.8\r\nTT\r\nTTsecond\r\n"));
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - my car.dat");
    EXPECT_EQ(Named<QLabel>("lblBuild")->text(), "RB26DETT v6.42");
    EXPECT_TRUE(Tabs()->isTabVisible(0));
    EXPECT_TRUE(Tabs()->isTabVisible(10));
    EXPECT_EQ(Notes(), "shim 0.8\n\nsecond\n");
    const int rev =
        static_cast<unsigned char>(ReadData[0x8B][0]) + 256 * static_cast<unsigned char>(ReadData[0x8B][1]);
    EXPECT_EQ(Member<QLineEdit>("txtSetting", 120)->text().toInt(), rev);
    EXPECT_TRUE(Named("cmdWriteAll")->isEnabled());
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    EXPECT_FALSE(DataChanged);
    ASSERT_EQ(Asked.size(), 1U);
    EXPECT_FALSE(Asked[0].Save);
    EXPECT_EQ(Asked[0].Filters, (std::vector<std::string>{"All Files (*.*)", "Data Files(*.dat)"}));
    EXPECT_EQ(Asked[0].FilterIndex, 1);
}

TEST_F(FileMenu, OpenCancelled_LeavesEverything) {
    OpenByMenu(FileOf(kBuild, "a.dat"));
    const QImage before = Look();
    OpenByMenu("");
    EXPECT_EQ(Look(), before);
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - a.dat");
}

TEST_F(FileMenu, Keys_OpenAndSave) {
    Chosen = FileOf(kBuild, "a.dat");
    QTest::keyClick(&Main, Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - a.dat");
    for (const auto& [modifiers, name] : {std::pair{Qt::KeyboardModifiers(Qt::ControlModifier), "b.dat"},
                                          std::pair{Qt::ControlModifier | Qt::ShiftModifier, "c.dat"}}) {
        Chosen = Folder + "/" + name;
        QTest::keyClick(&Main, Qt::Key_S, modifiers);
        EXPECT_EQ(FileBytes(Chosen), FileBytes(Folder + "/a.dat"));
        EXPECT_EQ(Title(), std::string("Zandrel [RB26DETT v6.42] - ") + name);
        EXPECT_TRUE(Asked.back().Save);
        EXPECT_EQ(Asked.back().FilterIndex, 1);
        EXPECT_EQ(Asked.back().Suffix, "dat");
        EXPECT_EQ(Asked.back().Folder, Folder + "/");
    }
    EXPECT_EQ(Asked.back().Name, "b.dat");
}

TEST_F(FileMenu, FileOfAnotherBuild_RebuildsTheDisplay) {
    OpenByMenu(FileOf(kBuild, "a.dat"));
    const QImage first = Look();
    OpenByMenu(FileOf(kOther, "rotary.dat"));
    EXPECT_EQ(Title(), "Zandrel [13B-REW v7.07] - rotary.dat");
    EXPECT_EQ(Named<QLabel>("lblBuild")->text(), "13B-REW v7.07");
    for (int tab = 0; tab < kTabs; ++tab) {
        EXPECT_EQ(Tabs()->isTabVisible(tab), SSTab1.TabVisible[static_cast<std::size_t>(tab)]) << tab;
    }
    EXPECT_NE(Look(), first);
    OpenByMenu(Folder + "/a.dat");
    EXPECT_EQ(Look(), first);
}

// A box over the window may show the file that is being refused; what stands behind it afterwards is what
// stood there before.
TEST_F(FileMenu, RefusedFile_LeavesTheDisplay) {
    OpenByMenu(FileOf(kBuild, "a.dat", "TTmine\r\n"));
    const QImage before = Look();
    struct Row {
        std::string Path, Message;
    };
    const Row rows[] = {
        {FileOf(kBuild, "short.dat", "TTtheirs\r\n", 0x8B), "File Format Error: Missing Data 8B"},
        {FileOf(kOther, "other.dat", "TTtheirs\r\n", 0x86), "File Format Error: Missing Data 86"},
        {FileOf(kBuild, "unknown.dat", "F358595A\r\n"),
         "unknown.dat[XYZ v6.42] is not recognised, or the Power-FC is not supported by this version"},
        {Folder + "/none.dat", "Error opening none.dat"},
    };
    for (const Row& row : rows) {
        ExpectBox(row.Message, Box::Critical);
        OpenByMenu(row.Path);
        EXPECT_TRUE(NoMessageLeft());
        EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - a.dat") << row.Path;
        EXPECT_EQ(Notes(), "mine\n") << row.Path;
        EXPECT_EQ(Look(), before) << row.Path;
    }
}

TEST_F(FileMenu, RefusedFirstFile_LeavesTheGeneralTabAlone) {
    ExpectBox("File Format Error: Missing Data 8B", Box::Critical);
    OpenByMenu(FileOf(kBuild, "short.dat", "", 0x8B));
    for (int tab = 0; tab < kTabs; ++tab) EXPECT_EQ(Tabs()->isTabVisible(tab), tab == kGeneralTab) << tab;
    EXPECT_EQ(Named<QLabel>("lblBuild")->text(), "No Power-FC read yet");
    EXPECT_EQ(Title(), "Zandrel [ v] - ");
    EXPECT_FALSE(Named("cmdWriteAll")->isEnabled());
}

TEST_F(FileMenu, Default_IsThatOfTheProgramFolder) {
    ExpectBox("Error opening default.dat", Box::Critical);
    ClickItem("mnuFile", "mnuDefault");
    FileOf(kBuild, "default.dat");
    ClickItem("mnuFile", "mnuDefault");
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - default.dat");
    EXPECT_TRUE(Asked.empty());
}

TEST_F(FileMenu, RecentFiles_AreListedAndOpened) {
    const QAction* before = nullptr;
    for (QAction* item : Named<QMenu>("mnuFile")->actions()) {
        if (item == Item("mnuRecentFile(0)")) break;
        before = item;
    }
    ASSERT_TRUE(before != nullptr && before->isSeparator());
    EXPECT_FALSE(before->isVisible());
    EXPECT_EQ(Recent(0), "(hidden)");
    std::filesystem::create_directory(Folder + "/R&D");
    const std::string folder = Folder.substr(Folder.rfind('/') + 1);
    OpenByMenu(FileOf(kBuild, "first.dat"));
    OpenByMenu(FileOf(kBuild, "R&D/a & b.dat"));
    OpenByMenu(FileOf(kOther, "тест \"x\"\t1.dat"));
    EXPECT_TRUE(before->isVisible());
    EXPECT_EQ(Recent(0), "&1 .../" + folder + "/тест \"x\" 1.dat");
    EXPECT_EQ(Recent(1), "&2 .../R&&D/a && b.dat");
    EXPECT_EQ(Recent(2), "&3 .../" + folder + "/first.dat");
    EXPECT_EQ(Recent(3), "(hidden)");
    EXPECT_EQ(Item("mnuRecentFile(1)")->statusTip().toStdString(), Folder + "/R&D/a & b.dat");
    ClickItem("mnuFile", "mnuRecentFile(2)");
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - first.dat");
    EXPECT_EQ(Recent(0), "&1 .../" + folder + "/first.dat");
    // By its digit.
    auto* menu = Named<QMenu>("mnuFile");
    menu->popup(Main.mapToGlobal(QPoint(10, 10)));
    Settle();
    QTest::keyClick(menu, Qt::Key_2);
    Settle();
    EXPECT_EQ(Title(), "Zandrel [13B-REW v7.07] - тест \"x\"\t1.dat");
}

TEST_F(FileMenu, LongRecentName_IsCutInItsMiddle) {
    const std::string name = std::string(120, 'a') + std::string(100, 'z') + ".dat";
    OpenByMenu(FileOf(kBuild, name));
    EXPECT_LT(Recent(0).size(), 140U);
    EXPECT_TRUE(Recent(0).ends_with("zz.dat"));
    EXPECT_EQ(mnuRecentFile[0].Tag, Folder + "/" + name);
}

TEST_F(FileMenu, Ticks_AreFlippedByAClick) {
    struct Row {
        const char* Name;
        const MenuItem* Record;
        bool First;
    };
    for (const Row& row : {Row{"mnuLoadDefaultAtStart", &mnuLoadDefaultAtStart, false},
                           Row{"mnuSaveDefaultOnExit", &mnuSaveDefaultOnExit, false},
                           Row{"mnuCheckUnsavedData", &mnuCheckUnsavedData, true}}) {
        EXPECT_EQ(Item(row.Name)->isChecked(), row.First) << row.Name;
        ClickItem("mnuFile", row.Name);
        EXPECT_EQ(row.Record->Checked, !row.First) << row.Name;
        EXPECT_EQ(Item(row.Name)->isChecked(), !row.First) << row.Name;
        ClickItem("mnuFile", row.Name);
        EXPECT_EQ(row.Record->Checked, row.First) << row.Name;
        EXPECT_EQ(Item(row.Name)->isChecked(), row.First) << row.Name;
    }
}

TEST_F(FileMenu, WhatIsHalfTyped_IsSaved) {
    OpenByMenu(FileOf(kBuild, "a.dat"));
    ClickTab(6);
    auto* box = Member<QLineEdit>("txtSetting", 120);
    QTest::mouseClick(box, Qt::LeftButton);
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box, "7251");
    Chosen = Folder + "/b.dat";
    QTest::keyClick(box, Qt::Key_S, Qt::ControlModifier);
    EXPECT_NE(FileBytes(Chosen).find("\n8B531C"), std::string::npos);
    EXPECT_FALSE(DataChanged);
}

TEST_F(FileMenu, UnsavedWork_IsAskedAboutBeforeAnOpen) {
    OpenByMenu(FileOf(kBuild, "a.dat"));
    FileOf(kOther, "b.dat");
    ChangeASetting();
    const auto changed = ReadData;

    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Cancel);
    OpenByMenu(Folder + "/b.dat");
    EXPECT_EQ(ReadData, changed);
    EXPECT_EQ(Asked.size(), 1U);

    // Yes, and then no name: nothing is opened.
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    OpenByMenu("");
    ASSERT_EQ(Asked.size(), 2U);
    EXPECT_TRUE(Asked[1].Save);
    EXPECT_EQ(ReadData, changed);
    EXPECT_TRUE(DataChanged);

    // Yes, by a click on a recent file.
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    Chosen = Folder + "/mine.dat";
    ClickItem("mnuFile", "mnuRecentFile(0)");
    EXPECT_TRUE(FileBytes(Folder + "/mine.dat").find("\n8B581B") != std::string::npos ||
                FileBytes(Folder + "/mine.dat").find("\n8BBC1B") != std::string::npos);
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - a.dat");

    ChangeASetting();
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::No);
    OpenByMenu(Folder + "/b.dat");
    EXPECT_EQ(Title(), "Zandrel [13B-REW v7.07] - b.dat");
    EXPECT_FALSE(DataChanged);
}

TEST_F(FileMenu, UnsavedWork_IsNotAskedAboutWithoutTheTick) {
    OpenByMenu(FileOf(kBuild, "a.dat"));
    ClickItem("mnuFile", "mnuCheckUnsavedData");
    ChangeASetting();
    OpenByMenu(FileOf(kOther, "b.dat"));
    EXPECT_EQ(Title(), "Zandrel [13B-REW v7.07] - b.dat");
}

TEST_F(FileMenu, UnsavedWork_IsAskedAboutBeforeAReadAll) {
    OpenByMenu(FileOf(kBuild, "a.dat"));
    ChangeASetting();
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Cancel);
    Click(Named("cmdReadAll"));
    EXPECT_TRUE(NoMessageLeft());
    EXPECT_TRUE(DataChanged);
}

// The save says nothing; the window stays and asks again.
TEST_F(FileMenu, SaveThatFails_KeepsTheWindowAndAsksAgain) {
    OpenByMenu(FileOf(kBuild, "a.dat"));
    ChangeASetting();
    const std::string title = Title();
    Chosen = Folder + "/no folder/b.dat";
    for (int i = 0; i < 2; ++i) {
        ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
        EXPECT_FALSE(Main.close());
        EXPECT_TRUE(NoMessageLeft());
        EXPECT_TRUE(Main.isVisible());
        EXPECT_TRUE(DataChanged);
        EXPECT_EQ(Title(), title);
    }
    EXPECT_EQ(GetSetting("Settings", "LastCorvaneVer", "(none)"), "(none)");
    Chosen = Folder + "/b.dat";
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Yes);
    EXPECT_TRUE(Main.close());
    EXPECT_TRUE(std::filesystem::exists(Chosen));
}

TEST_F(FileMenu, Snapshots_AreListedAnewAndOpened) {
    auto* menu = Named<QMenu>("mnuOpenSnapshot");
    const auto open = [&] {
        menu->popup(Main.mapToGlobal(QPoint(10, 10)));
        Settle();
    };
    open();
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_FALSE(menu->actions().first()->isEnabled());
    menu->hide();
    OpenByMenu(FileOf(kBuild, "a.dat"));
    KeepSnapshot("2026-01-02 03.04.05");
    OpenByMenu(FileOf(kOther, "b.dat"));
    KeepSnapshot("2026-01-03 03.04.05");
    open();
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions()[0]->text(), "13B-REW 7.07 2026-01-03 03:04:05");
    EXPECT_EQ(menu->actions()[1]->text(), "RB26DETT 6.42 2026-01-02 03:04:05");
    ClickItemOf(menu, "mnuOpenSnapshot(1)");
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - RB26DETT 6.42 2026-01-02 03.04.05.dat");
}

TEST_F(FileMenu, TitleWithTheMarkOfChanges_IsShownAsItStands) {
    OpenByMenu(FileOf(kBuild, "my[*].dat"));
    // Doubled, the mark stands for itself.
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - my[*][*].dat");
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - my[*].dat");
}

// The dialogs of the desktop's own door.
class FileDialogOnScreen : public FileMenu {
  protected:
    FileDialogOnScreen() { OpenDesktop(Main); }

    void WithDialog(const std::function<void(QFileDialog*)>& action) {
        QTimer::singleShot(0, &Main, [this, action] {
            const QPointer<QFileDialog> dialog = Named<QFileDialog>("FileDialog");
            action(dialog);
            if (dialog == nullptr || !dialog->isVisible()) return;
            ADD_FAILURE() << "the dialog stands open";
            dialog->reject();
        });
    }

    static void TypeName(QFileDialog* dialog, const QString& name) {
        auto* edit = dialog->findChild<QLineEdit*>("fileNameEdit");
        ASSERT_NE(edit, nullptr);
        dialog->findChild<QAbstractItemView*>("listView")->clearSelection();
        edit->setText(name);
        QMetaObject::invokeMethod(dialog, "accept");
    }
};

TEST_F(FileDialogOnScreen, Filters_AreNamedAndDataFilesComeFirst) {
    FileOf(kBuild, "a.dat");
    FileOf(kBuild, "B.DAT");
    FileOf(kBuild, "noending");
    SaveSetting("Settings", "MapPath", Folder + "/");
    WithDialog([this](QFileDialog* dialog) {
        EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(dialog->directory().path().toStdString(), Folder);
        auto* filters = dialog->findChild<QComboBox*>("fileTypeCombo");
        ASSERT_NE(filters, nullptr);
        ASSERT_EQ(filters->count(), 2);
        EXPECT_EQ(filters->itemText(0), "All Files (*.*)");
        EXPECT_EQ(filters->itemText(1), "Data Files(*.dat)");
        EXPECT_EQ(filters->currentIndex(), 1);
        const auto* files = dialog->findChild<QAbstractItemView*>("listView");
        const auto shown = [files] {
            QStringList names;
            const QAbstractItemModel* model = files->model();
            for (int row = 0; row < model->rowCount(files->rootIndex()); ++row) {
                names += model->index(row, 0, files->rootIndex()).data().toString();
            }
            names.sort();
            return names.join(' ').toStdString();
        };
        EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == "B.DAT a.dat"; }, 5000)) << shown();
        filters->setCurrentIndex(0);
        emit filters->activated(0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return shown().find("noending") != std::string::npos; }, 5000))
            << shown();
        TypeName(dialog, "a.dat");
    });
    Item("mnuOpen")->trigger();
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - a.dat");
}

TEST_F(FileDialogOnScreen, SaveAs_ProposesTheTitleAddsTheEndingAndAsksBeforeOverwriting) {
    WithDialog([this](QFileDialog* dialog) { TypeName(dialog, Shown(FileOf(kBuild, "my car.dat"))); });
    Item("mnuOpen")->trigger();
    std::ofstream(Folder + "/there.dat") << "kept";
    WithDialog([this](QFileDialog* dialog) {
        EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(dialog->findChild<QLineEdit*>("fileNameEdit")->text(), "my car.dat");
        bool asked = false;
        QTimer person;
        QObject::connect(&person, &QTimer::timeout, dialog, [&asked] {
            auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (question == nullptr) return;
            asked = true;
            question->button(QMessageBox::No)->click();
        });
        person.start(10);
        TypeName(dialog, Shown(Folder) + "/there");
        EXPECT_TRUE(asked);
        EXPECT_TRUE(dialog->isVisible());
        TypeName(dialog, Shown(Folder) + "/new");
    });
    Item("mnuSaveAs")->trigger();
    EXPECT_EQ(FileBytes(Folder + "/there.dat"), "kept");
    EXPECT_EQ(FileBytes(Folder + "/new.dat"), FileBytes(Folder + "/my car.dat"));
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - new.dat");
}

TEST_F(FileDialogOnScreen, FolderThatHasGone_GivesWayToTheOneAbove) {
    WithDialog([this](QFileDialog* dialog) {
        EXPECT_EQ(dialog->directory().path().toStdString(), Folder);
        dialog->reject();
    });
    EXPECT_EQ(Desktop.ChooseFile({.Folder = Folder + "/gone/deeper/"}), "");
}

}  // namespace
}  // namespace zandrel
