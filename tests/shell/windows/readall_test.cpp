// The main job: a click on Read All, from a Power-FC to the screen.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTableView>
#include <QtTest/QTest>

#include "image/image.h"
#include "link/port.h"
#include "link/transfers.h"
#include "shell/startstop.h"
#include "shell/windows/windowfixture.h"
#include "simulator/simulator.h"
#include "support/scripteddesktop.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

constexpr char kNoPort[] = "No COM port has been selected.\nWould you like to AutoDetect the COM port now?";

class ReadAllByClick : public WindowTest {
  protected:
    ReadAllByClick() {
        std::string ports = "1=" + device_.PortName();
        for (int n = 2; n <= 16; ++n) ports += "," + std::to_string(n) + "=/nowhere";
        setenv("ZANDREL_PORTS", ports.c_str(), 1);
        frmMain_Load();
        ShowAt(1280, 800);
    }
    ~ReadAllByClick() override { unsetenv("ZANDREL_PORTS"); }

    void ChoosePort() {
        auto* menu = Named<QMenu>("mnuPort");
        menu->popup(Main.mapToGlobal(QPoint(10, 10)));
        Settle();
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(Item("mnuCom(0)")).center());
        Settle();
    }

    powerfc::Simulator device_;
};

TEST_F(ReadAllByClick, WithoutAPort_AsksForTheDetection) {
    ExpectMessage(kNoPort, Answer::No);
    Click(Named("cmdReadAll"));
    EXPECT_TRUE(NoMessageLeft());
    EXPECT_EQ(Named<QLabel>("lblBuild")->text(), "No Power-FC read yet");
    EXPECT_TRUE(Named("cmdReadAll")->isEnabled());
}

TEST_F(ReadAllByClick, PortChosen_FillsAllTabs) {
    ChoosePort();
    ASSERT_TRUE(MSComm1.PortOpen());
    EXPECT_TRUE(Item("mnuCom(0)")->isChecked());
    EXPECT_EQ(Named<QLabel>("lblPort")->text().toStdString(), "COM1 · " + device_.PortName());
    Click(Named("cmdReadAll"));
    EXPECT_EQ(Named<QLabel>("lblBuild")->text(), "RB26DETT v6.42");
    EXPECT_TRUE(Tabs()->isTabVisible(0));
    EXPECT_TRUE(Tabs()->isTabVisible(10));
    const auto rev = static_cast<unsigned char>(device_.Block(0x8B)[0]) +
                     256 * static_cast<unsigned char>(device_.Block(0x8B)[1]);
    EXPECT_EQ(Member<QLineEdit>("txtSetting", 120)->text().toInt(), rev);
    ClickTab(0);
    EXPECT_EQ(Member<QTableView>("Grid", 0)->model()->index(0, 0).data().toString().toStdString(),
              GridCellText(0, 1, 1));
    EXPECT_TRUE(Named("cmdWriteAll")->isEnabled());
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    EXPECT_EQ(Main.windowTitle(), "Zandrel [RB26DETT v6.42] - Unsaved Data");
}

TEST_F(ReadAllByClick, ByKeysAndOneMapByItsButton) {
    ChoosePort();
    QTest::keyClick(&Main, Qt::Key_F5);
    EXPECT_EQ(Named<QLabel>("lblBuild")->text(), "RB26DETT v6.42");
    ClickTab(0);
    const auto before = Member<QTableView>("Grid", 0)->model()->index(0, 0).data().toString();
    device_.SetBlock(0x86, powerfc::Bytes(100, 0x7B));
    Click(Member<QWidget>("cmdReadMap", 0));
    const auto after = Member<QTableView>("Grid", 0)->model()->index(0, 0).data().toString();
    EXPECT_NE(after, before);
    EXPECT_EQ(ReadData[0x86], ByteString(100, '\x7B'));
    device_.SetBlock(0x86, powerfc::Bytes(100, 0x7C));
    QTest::keyClick(&Main, Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(ReadData[0x86], ByteString(100, '\x7C'));
}

TEST_F(ReadAllByClick, F9AndF10_OpenAndCloseTheFirstPort) {
    QTest::keyClick(&Main, Qt::Key_F10);
    EXPECT_FALSE(MSComm1.PortOpen());
    QTest::keyClick(&Main, Qt::Key_F9);
    EXPECT_TRUE(MSComm1.PortOpen());
    QTest::keyClick(&Main, Qt::Key_F9);
    EXPECT_TRUE(MSComm1.PortOpen());
    QTest::keyClick(&Main, Qt::Key_F10);
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_EQ(Named<QLabel>("lblPort")->text(), "No port chosen");
}

}  // namespace
}  // namespace zandrel
