// Files dragged onto the window from the desktop: which are taken, what is shown meanwhile and what is
// opened.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSysInfo>
#include <QTabBar>
#include <QtTest/QTest>
#include <filesystem>

#include "image/image.h"
#include "link/progress.h"
#include "shell/windows/droptarget.h"
#include "shell/windows/filewindow.h"
#include "support/scripteddesktop.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class Dropping : public FileWindow {
  protected:
    static QList<QUrl> Urls(const std::vector<std::string>& paths) {
        QList<QUrl> urls;
        for (const std::string& path : paths) urls += QUrl::fromLocalFile(Shown(path));
        return urls;
    }

    // The widget that the desktop's drag reaches at a place of the window, as the toolkit finds it.
    QWidget* TargetAt(const QPoint& place) {
        QWidget* widget = Main.childAt(place);
        if (widget == nullptr) widget = &Main;
        while (!widget->isWindow() && !widget->acceptDrops()) widget = widget->parentWidget();
        return widget;
    }

    // True: the drag is taken there.
    bool Over(const QPoint& place, const QMimeData& data, Qt::DropActions actions = Qt::CopyAction) {
        QWidget* target = TargetAt(place);
        if (entered_ != nullptr) {
            QDragLeaveEvent leave;
            QCoreApplication::sendEvent(entered_, &leave);
        }
        entered_ = target;
        QDragEnterEvent enter(target->mapFrom(&Main, place), actions, &data, Qt::LeftButton, {});
        enter.ignore();
        QCoreApplication::sendEvent(target, &enter);
        if (!enter.isAccepted()) return false;
        EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
        QDragMoveEvent move(target->mapFrom(&Main, place), actions, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &move);
        EXPECT_TRUE(move.isAccepted());
        return true;
    }

    bool DropAt(const QPoint& place, const QMimeData& data, Qt::DropActions actions = Qt::CopyAction) {
        if (!Over(place, data, actions)) return false;
        QWidget* target = TargetAt(place);
        QDropEvent drop(target->mapFrom(&Main, place), actions, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &drop);
        EXPECT_TRUE(drop.isAccepted());
        Settle();
        return true;
    }
    bool DropFiles(const QPoint& place, const std::vector<std::string>& paths) {
        QMimeData data;
        data.setUrls(Urls(paths));
        return DropAt(place, data);
    }

    QPoint OnTheTabs() { return Tabs()->mapTo(&Main, Tabs()->rect().center()); }
    QPoint OnTheForm() { return Named("cmdReadAll")->mapTo(&Main, QPoint(5, 5)); }
    std::string Title() { return Main.windowTitle().toStdString(); }

    // The frame that is shown, in the window's coordinates.
    QRect Frame() {
        QRect found;
        for (QWidget* frame : Main.findChildren<QWidget*>("DropFrame")) {
            if (!frame->isVisible()) continue;
            EXPECT_TRUE(found.isNull()) << "two frames at once";
            found = QRect(frame->mapTo(&Main, QPoint()), frame->size());
        }
        return found;
    }

  private:
    QWidget* entered_ = nullptr;
};

TEST_F(Dropping, OnTheForm_OpensTheFirstFile) {
    const std::string first = FileOf("RB26DETT6.42", "a.dat");
    EXPECT_TRUE(DropFiles(OnTheForm(), {first, FileOf("13B-REW7.07", "b.dat")}));
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - a.dat");
}

TEST_F(Dropping, OnTheTabs_OpensEveryFileInTurn) {
    const std::string second = FileOf("13B-REW7.07", "b.dat");
    EXPECT_TRUE(DropFiles(OnTheTabs(), {FileOf("RB26DETT6.42", "a.dat"), second}));
    EXPECT_EQ(Title(), "Zandrel [13B-REW v7.07] - b.dat");
    EXPECT_TRUE(Item("mnuRecentFile(1)")->text().endsWith("a.dat"));
}

TEST_F(Dropping, EverywhereOnATab_ReachesTheTabs) {
    EXPECT_TRUE(DropFiles(OnTheForm(), {FileOf("RB26DETT6.42", "a.dat")}));
    QTabBar* bar = Tabs()->tabBar();
    EXPECT_EQ(TargetAt(bar->mapTo(&Main, bar->rect().center())), Tabs());
    ClickTab(0);
    QWidget* grid = GridOf(0)->viewport();
    EXPECT_EQ(TargetAt(grid->mapTo(&Main, grid->rect().center())), Tabs());
    ClickTab(6);
    for (QWidget* box : Tabs()->currentWidget()->findChildren<QWidget*>()) {
        if (!box->isVisible()) continue;
        const QPoint place = box->mapTo(&Main, box->rect().center());
        EXPECT_EQ(TargetAt(place), Tabs()) << box->objectName().toStdString();
    }
    ClickTab(10);
    auto* notes = Named<QPlainTextEdit>("txtNotes");
    EXPECT_EQ(TargetAt(notes->mapTo(&Main, notes->rect().center())), Tabs());
}

TEST_F(Dropping, OnlyNamesThatEndInDat_AreTaken) {
    struct Row {
        const char* Name;
        bool Taken;
    };
    for (const Row& row : {Row{"a.dat", true}, Row{"a.DAT", true}, Row{"a.dAt", true}, Row{"mydat", true},
                           Row{"файл \"x\" y.dat", true}, Row{"a.dat ", false}, Row{"a.da", false},
                           Row{"at", false}, Row{"a.txt", false}, Row{"a.dat.bak", false}}) {
        for (const QPoint& place : {OnTheForm(), OnTheTabs()}) {
            QMimeData data;
            data.setUrls(Urls({Folder + "/" + row.Name}));
            EXPECT_EQ(Over(place, data), row.Taken) << row.Name;
            EXPECT_EQ(Frame().isNull(), !row.Taken) << row.Name;
        }
    }
}

TEST_F(Dropping, FirstNameDecides) {
    const std::string data = FileOf("RB26DETT6.42", "a.dat");
    const std::string text = FileOf("13B-REW7.07", "b.txt");
    EXPECT_FALSE(DropFiles(OnTheTabs(), {text, data}));
    EXPECT_EQ(Title(), "Zandrel [ v] - ");
    EXPECT_TRUE(DropFiles(OnTheTabs(), {data, text}));
    EXPECT_EQ(Title(), "Zandrel [13B-REW v7.07] - b.txt");
}

TEST_F(Dropping, WhatIsNoLocalFile_IsRefused) {
    const std::string path = FileOf("RB26DETT6.42", "a.dat");
    for (const char* url : {"http://example.org/a.dat", "sftp://host/a.dat", "file://elsewhere/tmp/a.dat",
                            "smb://host/share/a.dat", "a.dat", ""}) {
        QMimeData data;
        data.setUrls({QUrl(url), QUrl::fromLocalFile(Shown(path))});
        EXPECT_FALSE(Over(OnTheForm(), data)) << url;
        EXPECT_FALSE(Over(OnTheTabs(), data)) << url;
    }
    QMimeData text;
    text.setText(Shown(path));
    EXPECT_FALSE(Over(OnTheForm(), text));
    QMimeData nothing;
    EXPECT_FALSE(Over(OnTheTabs(), nothing));
}

TEST_F(Dropping, FileUrlsWithThisMachinesName_AreLocal) {
    for (const QString& host : {QStringLiteral("localhost"), QSysInfo::machineHostName()}) {
        QUrl url = QUrl::fromLocalFile("/tmp/a.dat");
        url.setHost(host);
        QMimeData data;
        data.setUrls({url, QUrl("http://example.org/b.dat"), QUrl::fromLocalFile("/tmp/c.dat")});
        EXPECT_EQ(FilesIn(data), (std::vector<std::string>{"/tmp/a.dat", "/tmp/c.dat"}))
            << host.toStdString();
    }
}

TEST_F(Dropping, WithoutTheRightToCopy_IsRefused) {
    QMimeData data;
    data.setUrls(Urls({FileOf("RB26DETT6.42", "a.dat")}));
    EXPECT_FALSE(DropAt(OnTheForm(), data, Qt::MoveAction));
    EXPECT_FALSE(DropAt(OnTheTabs(), data, Qt::LinkAction));
    EXPECT_TRUE(DropAt(OnTheTabs(), data, Qt::MoveAction | Qt::CopyAction));
    EXPECT_TRUE(std::filesystem::exists(Folder + "/a.dat"));
}

TEST_F(Dropping, Frame_StandsWhereItWillLandAndGoes) {
    QMimeData data;
    data.setUrls(Urls({FileOf("RB26DETT6.42", "a.dat")}));
    EXPECT_TRUE(Frame().isNull());
    EXPECT_TRUE(Over(OnTheTabs(), data));
    EXPECT_EQ(Frame(), QRect(Tabs()->mapTo(&Main, QPoint()), Tabs()->size()));
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(Tabs(), &leave);
    EXPECT_TRUE(Frame().isNull());
    EXPECT_TRUE(Over(OnTheForm(), data));
    EXPECT_EQ(Frame(), Main.rect());
    EXPECT_EQ(TargetAt(OnTheTabs()), Tabs()) << "the frame is in the way";
    EXPECT_TRUE(DropAt(OnTheForm(), data));
    EXPECT_TRUE(Frame().isNull());
}

TEST_F(Dropping, WhileAnOperationRuns_IsRefused) {
    QMimeData data;
    data.setUrls(Urls({FileOf("RB26DETT6.42", "a.dat")}));
    const LongOperation running;
    EXPECT_FALSE(Over(OnTheForm(), data));
    EXPECT_FALSE(Over(OnTheTabs(), data));
}

TEST_F(Dropping, UnsavedWork_IsAskedAbout) {
    EXPECT_TRUE(DropFiles(OnTheForm(), {FileOf("RB26DETT6.42", "a.dat")}));
    ChangeASetting();
    ExpectBox(kUnsaved, Box::SaveQuestion, Answer::Cancel);
    EXPECT_TRUE(DropFiles(OnTheForm(), {FileOf("13B-REW7.07", "b.dat")}));
    EXPECT_EQ(Title(), "Zandrel [RB26DETT v6.42] - a.dat");
    EXPECT_TRUE(DataChanged);
}

TEST_F(Dropping, Folder_CannotBeOpened) {
    std::filesystem::create_directory(Folder + "/folder.dat");
    ExpectBox("Error opening folder.dat", Box::Critical);
    EXPECT_TRUE(DropFiles(OnTheForm(), {Folder + "/folder.dat"}));
}

TEST_F(Dropping, OnTheHiddenSurvey_MakesATableOfLengths) {
    auto* survey = Named("txtRnD");
    EXPECT_FALSE(survey->isVisible());
    QMimeData data;
    data.setUrls(Urls({FileOf("RB26DETT6.42", "a.dat")}));
    QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(survey, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPoint(1, 1), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(survey, &drop);
    Settle();
    EXPECT_NE(Clipboard().find("\t0x30\t0x31\t"), std::string::npos);
    EXPECT_NE(Clipboard().find("\r\nRB26DETT\t6.42\t"), std::string::npos);
}

}  // namespace
}  // namespace zandrel
