#include "link/progress.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QtTest/QTest>

#include "shell/windows/progresswindows.h"
#include "shell/windows/windowfixture.h"

namespace zandrel {
namespace {

class ProgressWindows : public WindowTest {
  protected:
    template <class Window>
    Window* WindowOf(const char* name) {
        return static_cast<Window*>(Named<QDialog>(QString::fromLatin1(name)));
    }
};

TEST_F(ProgressWindows, Progress2_FollowsItsRecord) {
    ShowAt(800, 600);
    auto* window = WindowOf<ProgressWindow>("frmProgress2");
    EXPECT_FALSE(window->isVisible());
    ShowProgress(Progress2, "Turn igniton on now.");
    Progress2.Bar = 42.4;
    Main.Mirror();
    EXPECT_TRUE(window->isVisible());
    EXPECT_FALSE(window->isModal());
    EXPECT_TRUE(window->windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_EQ(window->findChild<QLabel*>("lblStatus")->text(), "Turn igniton on now.");
    EXPECT_EQ(window->findChild<QProgressBar*>("ProgressBar1")->value(), 42);
    EXPECT_TRUE(Main.frameGeometry().contains(window->geometry().center()));
    HideProgress(Progress2);
    Main.Mirror();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ProgressWindows, EveryHint_FitsTheWindow) {
    ShowAt(800, 600);
    ShowProgress(Progress2, "");
    for (const char* hint :
         {"Turn igniton on now.", "Waiting for Corvane...", "Have you turned ON the ignition yet?",
          "Try turning the ignition off then on.", "Check the Corvane LED is illuminated.",
          "A status that is a good deal longer than all the others that are known today"}) {
        Progress2.Status = hint;
        Main.Mirror();
        Settle();
        auto* label = WindowOf<ProgressWindow>("frmProgress2")->findChild<QLabel*>("lblStatus");
        EXPECT_LE(label->sizeHint().width(), label->width()) << hint;
    }
}

TEST_F(ProgressWindows, CancelByButton_SetsTheFlagAndTheOperationHides) {
    ShowAt(800, 600);
    ShowProgress(Progress2, "x");
    Main.Mirror();
    auto* window = WindowOf<ProgressWindow>("frmProgress2");
    auto* cancel = window->findChild<QPushButton*>("cmdCancel");
    QTest::mouseClick(cancel, Qt::LeftButton);
    EXPECT_TRUE(Progress2.Cancelled);
    EXPECT_TRUE(window->isVisible());
    EXPECT_FALSE(cancel->isEnabled());
    HideProgress(Progress2);
    ShowProgress(Progress2, "again");
    Main.Mirror();
    EXPECT_TRUE(cancel->isEnabled());
}

TEST_F(ProgressWindows, CancelByEscape) {
    ShowAt(800, 600);
    ShowProgress(ProgressScan, "");
    Main.Mirror();
    auto* window = WindowOf<ProgressWindow>("frmProgressScan");
    EXPECT_TRUE(window->isModal());
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_TRUE(ProgressScan.Cancelled);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(ProgressWindows, CancelByClosing) {
    ShowAt(800, 600);
    ShowProgress(ProgressScan, "");
    Main.Mirror();
    auto* window = WindowOf<ProgressWindow>("frmProgressScan");
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(ProgressScan.Cancelled);
    EXPECT_FALSE(Progress2.Cancelled);
}

}  // namespace
}  // namespace zandrel
