// Where the window stands, and what happens when it goes.
#include <gtest/gtest.h>

#include <QScreen>
#include <QtTest/QTest>

#include "image/image.h"
#include "link/progress.h"
#include "shell/settingsstore.h"
#include "shell/windows/windowfixture.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"

namespace zandrel {
namespace {

class Closing : public WindowTest {
  protected:
    static void PlaceAt(float left, float top, float width, float height, int state = 0) {
        MainFormState.Left = left * 15;
        MainFormState.Top = top * 15;
        MainFormState.Width = width * 15;
        MainFormState.Height = height * 15;
        MainFormState.WindowState = state;
    }
    static std::string Stored(const char* key) { return GetSetting("Settings", key, "(none)"); }
};

TEST_F(Closing, Place_ComesFromTheRecordAndGoesBackToIt) {
    PlaceAt(60, 40, 700, 500);
    Main.show();
    EXPECT_EQ(Main.pos(), QPoint(60, 40));
    EXPECT_EQ(Main.size(), QSize(700, 500));
    Main.move(20, 30);
    Main.resize(640, 480);
    Settle();
    EXPECT_TRUE(Main.close());
    EXPECT_EQ(Stored("MainLeft"), "300");
    EXPECT_EQ(Stored("MainTop"), "450");
    EXPECT_EQ(Stored("MainWidth"), "9600");
    EXPECT_EQ(Stored("MainHeight"), "7200");
    EXPECT_EQ(Stored("MainWindowState"), "0");
}

TEST_F(Closing, DesignPlace_Is747By542) {
    Main.show();
    EXPECT_EQ(Main.size(), QSize(747, 542));
    EXPECT_EQ(Main.pos(), QPoint(30, 30));
}

TEST_F(Closing, PlaceOffEveryScreen_IsBroughtBack) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    struct Row {
        float Left, Top, Width, Height;
    };
    for (const Row& row : {Row{9000, 50, 700, 500}, Row{50, 9000, 700, 500}, Row{-9000, -9000, 700, 500},
                           Row{-690, 10, 700, 500}, Row{0, 0, 5000, 5000}}) {
        PlaceAt(row.Left, row.Top, row.Width, row.Height);
        frmMain window;
        window.show();
        EXPECT_TRUE(screen.contains(window.pos())) << row.Left << " " << row.Top;
        EXPECT_TRUE(screen.contains(QRect(window.pos(), window.size()))) << row.Left << " " << row.Top;
    }
}

TEST_F(Closing, MaximisedWindow_KeepsItsNormalPlace) {
    PlaceAt(60, 40, 640, 480, 2);
    Main.show();
    Settle();
    EXPECT_TRUE(Main.isMaximized());
    EXPECT_TRUE(Main.close());
    EXPECT_EQ(MainFormState.WindowState, 2);
    EXPECT_EQ(MainFormState.Left, 60 * 15);
    EXPECT_EQ(MainFormState.Top, 40 * 15);
    EXPECT_EQ(MainFormState.Width, 640 * 15);
    EXPECT_EQ(MainFormState.Height, 480 * 15);
    EXPECT_EQ(Stored("MainWindowState"), "2");
    EXPECT_EQ(Stored("MainLeft"), "(none)");
}

TEST_F(Closing, MaximisedWindowMadeNormal_HasItsOldSize) {
    PlaceAt(60, 40, 640, 480, 2);
    Main.show();
    Settle();
    Main.showNormal();
    Settle();
    EXPECT_EQ(Main.size(), QSize(640, 480));
}

TEST_F(Closing, MinimisedWindow_ComesBackMinimised) {
    PlaceAt(60, 40, 640, 480, 1);
    Main.show();
    Settle();
    EXPECT_TRUE(Main.isMinimized());
    EXPECT_TRUE(Main.close());
    EXPECT_EQ(MainFormState.WindowState, 1);
    EXPECT_EQ(MainFormState.Width, 640 * 15);
}

TEST_F(Closing, CancelAtTheSaveQuestion_KeepsTheWindow) {
    Main.show();
    mnuSaveAs_Click = [] {};
    DataChanged = true;
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::Cancel);
    EXPECT_FALSE(Main.close());
    EXPECT_TRUE(Main.isVisible());
    EXPECT_EQ(Stored("LastCorvaneVer"), "(none)");
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::No);
    EXPECT_TRUE(Main.close());
    EXPECT_EQ(Stored("LastCorvaneVer"), "V2.0");
}

TEST_F(Closing, WhileALongOperationRuns_CancelsItAndWaits) {
    Main.show();
    {
        const LongOperation running;
        EXPECT_FALSE(Main.close());
        EXPECT_TRUE(Progress2.Cancelled);
        EXPECT_TRUE(ProgressScan.Cancelled);
        ShowProgress(ProgressScan, "");
        EXPECT_TRUE(ProgressScan.Cancelled) << "what still begins is cancelled at once";
        HideProgress(ProgressScan);
        Main.Mirror();
        Settle();
        EXPECT_TRUE(Main.isVisible());
        EXPECT_EQ(Stored("LastCorvaneVer"), "(none)");
    }
    Main.Mirror();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Main.isVisible(); }, 2000));
    EXPECT_EQ(Stored("LastCorvaneVer"), "V2.0");
    EXPECT_FALSE(CloseAsked);
}

TEST_F(Closing, ExitItem_ClosesTheWindow) {
    ShowAt(700, 500);
    QTest::keyClick(&Main, Qt::Key_Q, Qt::ControlModifier);
    Settle();
    EXPECT_FALSE(Main.isVisible());
    EXPECT_EQ(Stored("LastCorvaneVer"), "V2.0");
}

}  // namespace
}  // namespace zandrel
