// Operations that run inside a click while the window stays alive: auto detection and scan, over the real
// door to the desktop.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest/QTest>
#include <vector>

#include "image/image.h"
#include "link/port.h"
#include "link/progress.h"
#include "shell/settingsstore.h"
#include "shell/startstop.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/windowfixture.h"
#include "simulator/simulator.h"

namespace zandrel {
namespace {

class LongOperations : public WindowTest {
  protected:
    LongOperations() {
        std::string ports;
        for (int n = 1; n <= 16; ++n) {
            ports +=
                (n > 1 ? "," : "") + std::to_string(n) + "=" + (n == 3 ? device_.PortName() : "/nowhere");
        }
        setenv("ZANDREL_PORTS", ports.c_str(), 1);
        OpenDesktop(Main);
        frmMain_Load();
        ShowAt(800, 600);
        // The person at the screen: looks again and again, as a timer.
        QObject::connect(&person_, &QTimer::timeout, &Main, [this] { Look(); });
        person_.start(2);
    }
    ~LongOperations() override { unsetenv("ZANDREL_PORTS"); }

    // Presses OK in every message box, and does `WhileItRuns` once a progress window stands.
    void Look() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (!window->isVisible()) continue;
            if (auto* box = qobject_cast<QMessageBox*>(window)) {
                Questions.push_back(box->text().toStdString());
                QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
                return;
            }
            auto* cancel = window->findChild<QPushButton*>("cmdCancel");
            if (cancel == nullptr || window == &Main || !WhileItRuns) continue;
            const auto action = std::exchange(WhileItRuns, nullptr);
            action(cancel);
        }
    }

    std::function<void(QPushButton* cancel)> WhileItRuns;
    std::vector<std::string> Questions;
    powerfc::Simulator device_;
    QTimer person_;
};

TEST_F(LongOperations, AutoDetect_FindsTheAnnouncingPortAndOpensIt) {
    WhileItRuns = [this](QPushButton*) {
        EXPECT_TRUE(Named("frmProgress2")->isVisible());
        EXPECT_FALSE(Named("cmdReadAll")->isEnabled());
        device_.Announce();
    };
    Item("mnuComAuto")->trigger();
    ASSERT_EQ(Questions.size(), 2U);
    EXPECT_EQ(Questions[1], "Corvane V2.0 found on COM3");
    EXPECT_TRUE(MSComm1.PortOpen());
    EXPECT_TRUE(Item("mnuCom(2)")->isChecked());
    EXPECT_FALSE(Named("frmProgress2")->isVisible());
    EXPECT_TRUE(Named("cmdReadAll")->isEnabled());
    EXPECT_EQ(Named<QLabel>("lblPort")->text().toStdString(), "COM3 · " + device_.PortName());
}

TEST_F(LongOperations, AutoDetect_CancelledByItsButton) {
    WhileItRuns = [](QPushButton* cancel) { QTest::mouseClick(cancel, Qt::LeftButton); };
    Item("mnuComAuto")->trigger();
    ASSERT_EQ(Questions.size(), 2U);
    EXPECT_EQ(Questions[1],
              "Auto detect cancelled. No Corvane was found.\nCheck all connections, then try again.");
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_FALSE(Named("frmProgress2")->isVisible());
    EXPECT_TRUE(Main.isVisible());
}

TEST_F(LongOperations, WindowClosedDuringTheDetection_ClosesOnceItHasEnded) {
    WhileItRuns = [this](QPushButton*) { EXPECT_FALSE(Main.close()); };
    Item("mnuComAuto")->trigger();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Main.isVisible(); }, 2000));
    EXPECT_EQ(GetSetting("Settings", "LastCorvaneVer", "(none)"), "V2.0");
}

TEST_F(LongOperations, Scan_ShowsItsWindowAndEndsByEscape) {
    mnuCom_Click(2);
    for (int code = 0; code < 256; ++code)
        device_.SetBlock(code, powerfc::Bytes(4, static_cast<std::uint8_t>(code)));
    WhileItRuns = [this](QPushButton* cancel) {
        EXPECT_TRUE(Named("frmProgressScan")->isVisible());
        EXPECT_TRUE(Named<QDialog>("frmProgressScan")->isModal());
        QTest::keyClick(cancel->window(), Qt::Key_Escape);
    };
    Item("mnuScan")->trigger();
    EXPECT_FALSE(Named("frmProgressScan")->isVisible());
    EXPECT_TRUE(ReadData[0xFF].empty());
    EXPECT_FALSE(LongOperationRuns());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace zandrel
