// Where the focus goes: a press on a tab or on bare ground leaves the box that had it.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTabBar>
#include <QTableView>
#include <QtTest/QTest>

#include "link/port.h"
#include "link/progress.h"
#include "shell/windows/windowfixture.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class Focus : public WindowTest {
  protected:
    Focus() {
        ShowAt(1280, 800);
        ShowBuild("RB26DETT6.42");
    }
    bool TabStripHasIt() { return Tabs()->tabBar()->hasFocus(); }
};

TEST_F(Focus, PressOnTheTabInView_LeavesTheTextBox) {
    ClickTab(6);
    auto* box = Member<QLineEdit>("txtSetting", 120);
    QTest::mouseClick(box, Qt::LeftButton);
    ASSERT_TRUE(box->hasFocus());
    ClickTab(6);
    EXPECT_TRUE(TabStripHasIt());
}

TEST_F(Focus, PressOnAnotherTab_GoesToTheMapOrTheTabStrip) {
    ClickTab(6);
    QTest::mouseClick(Member<QLineEdit>("txtSetting", 120), Qt::LeftButton);
    ClickTab(7);
    EXPECT_TRUE(TabStripHasIt());
    ClickTab(0);
    EXPECT_TRUE(Member<QTableView>("Grid", 0)->hasFocus());
}

TEST_F(Focus, PressBesideTheMap_GoesToTheMap) {
    ClickTab(0);
    auto* grid = Member<QTableView>("Grid", 0);
    Named("cmdReadAll")->setFocus();
    auto* read = Member<QWidget>("cmdReadMap", 0);
    QWidget* page = read->parentWidget();
    QTest::mouseClick(page, Qt::LeftButton, {}, QPoint(read->x() - 40, read->geometry().center().y()));
    EXPECT_TRUE(grid->hasFocus());
}

TEST_F(Focus, PressOnTheBareWindow_GoesToTheTabStrip) {
    ClickTab(6);
    QTest::mouseClick(Member<QLineEdit>("txtSetting", 120), Qt::LeftButton);
    QWidget* body = Main.centralWidget();
    QTest::mouseClick(body, Qt::LeftButton, {}, QPoint(body->width() - 3, 3));
    EXPECT_TRUE(TabStripHasIt());
}

TEST_F(Focus, ItemsOfAMenu_HaveMnemonicsOfTheirOwn) {
    for (QMenu* menu : Main.findChildren<QMenu*>()) {
        QString letters;
        for (const QAction* item : menu->actions()) {
            const QChar letter = MnemonicOf(item->text());
            if (letter.isNull()) continue;
            EXPECT_FALSE(letters.contains(letter)) << item->text().toStdString();
            letters += letter;
        }
    }
}

TEST_F(Focus, Scan_NeedsAPort) {
    ASSERT_FALSE(MSComm1.PortOpen());
    EXPECT_FALSE(Item("mnuScan")->isEnabled());
}

TEST_F(Focus, TickedButClosedPort_IsToldAsClosed) {
    mnuCom[0].Checked = true;
    Main.Mirror();
    EXPECT_TRUE(Named<QLabel>("lblPort")->text().contains(QStringLiteral("closed")));
}

// Rows that scroll once pushed the last column out of sight.
TEST_F(Focus, LowWindow_ScrollsRowsButNoColumns) {
    ClickTab(0);
    Main.resize(1000, 300);
    PaintOut();
    auto* grid = Member<QTableView>("Grid", 0);
    EXPECT_GT(grid->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(grid->horizontalScrollBar()->maximum(), 0);
}

}  // namespace
}  // namespace zandrel
