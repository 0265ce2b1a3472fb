// The status bar counts what waits to be sent and tells when the last Update went through.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QtTest/QTest>

#include "image/image.h"
#include "link/port.h"
#include "link/transfers.h"
#include "shell/windows/editfixture.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"

namespace zandrel {
namespace {

class StatusBar : public EditTest {
  protected:
    std::string Text() { return Named<QLabel>("lblUnsent")->text().toStdString(); }
};

TEST_F(StatusBar, NothingChanged_IsEmpty) {
    ShowMap(0, 100);
    EXPECT_EQ(Text(), "");
}

TEST_F(StatusBar, CountsBlocksAndCells) {
    ShowMap(0, 100);
    Key(Qt::Key_Equal);
    EXPECT_EQ(Text(), "Not sent: 1 block, 1 cell");
    Key(Qt::Key_Equal);
    EXPECT_EQ(Text(), "Not sent: 1 block, 1 cell");
    Drag(0, 1, 1, 2, 2);
    Key(Qt::Key_Equal);
    EXPECT_EQ(Text(), "Not sent: 1 block, 4 cells");
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Equal);
    EXPECT_EQ(Text(), "Not sent: 4 blocks, 400 cells");
    ClickTab(6);
    Click(Member<QAbstractButton>("chkSetting", 180));
    EXPECT_EQ(Text(), "Not sent: 5 blocks, 400 cells");
}

TEST_F(StatusBar, SettingAlone_HasNoCells) {
    ShowMap(0, 100);
    ClickTab(6);
    Click(Member<QAbstractButton>("chkSetting", 180));
    EXPECT_EQ(Text(), "Not sent: 1 block");
}

TEST_F(StatusBar, LastUpdate_IsToldBesideWhatWaits) {
    ShowMap(0, 100);
    LastUpdate = "14:03:22";
    Main.Mirror();
    EXPECT_EQ(Text(), "Updated 14:03:22");
    Key(Qt::Key_Equal);
    EXPECT_EQ(Text(), "Not sent: 1 block, 1 cell · Updated 14:03:22");
}

TEST_F(StatusBar, LongestTexts_StandWholeInTheDesignSize) {
    ShowMap(0, 100);
    Main.resize(747, 542);
    BlockChanged.fill(true);
    MapCellChanged = {};
    for (auto& row : MapCellChanged[0]) row.fill(true);
    for (auto& row : MapCellChanged[1]) row.fill(true);
    LastUpdate = "14:03:22";
    mnuCom[15].Checked = true;
    Main.Mirror();
    PaintOut();
    EXPECT_NE(Text().find(" blocks, 800 cells · Updated 14:03:22"), std::string::npos) << Text();
    EXPECT_EQ(Main.size(), QSize(747, 542));
    for (const char* name : {"lblPort", "lblInterface", "lblBuild", "lblUnsent"}) {
        const auto* label = Named<QLabel>(QString::fromLatin1(name));
        EXPECT_GE(label->width(), label->sizeHint().width()) << name;
        EXPECT_LE(label->mapTo(&Main, label->rect().bottomRight()).x(), Main.width()) << name;
    }
}

}  // namespace
}  // namespace zandrel
