// The menu of a map by the right button, and the same menu in the bar.
#include <gtest/gtest.h>

#include <QContextMenuEvent>
#include <QMenu>
#include <QMenuBar>
#include <QtTest/QTest>

#include "image/history.h"
#include "image/image.h"
#include "shell/windows/editfixture.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mapediting.h"

namespace zandrel {
namespace {

class GridPopup : public EditTest {
  protected:
    static GridSelection& Selection(int map) { return Grid[static_cast<std::size_t>(map)].Selection; }

    QMenu* Menu() { return Named<QMenu>("mnuSetupMaps"); }

    void RightClick(int map, int row, int column) {
        ClickCell(map, row, column, {}, Qt::RightButton);
        ASSERT_TRUE(Menu()->isVisible());
    }

    void CloseMenu() {
        QTest::keyClick(Menu(), Qt::Key_Escape);
        Settle();
        ASSERT_FALSE(Menu()->isVisible());
    }

    // Opens the menu as a person does, by a press on its title.
    void OpenFromBar() {
        QTest::mouseClick(Main.menuBar(), Qt::LeftButton, {},
                          Main.menuBar()->actionGeometry(Menu()->menuAction()).center());
        Settle();
        ASSERT_TRUE(Menu()->isVisible());
    }

    std::vector<bool> PopupItemsSeen() {
        return {Item("mnuGridCopy")->isVisible(), Item("mnuGridPaste")->isVisible()};
    }
};

TEST_F(GridPopup, RightClickInTheSelection_KeepsIt) {
    ShowMap(0, 100);
    Drag(0, 3, 4, 6, 8);
    RightClick(0, 5, 5);
    EXPECT_EQ(Selection(0), (GridSelection{3, 4, 6, 8}));
    EXPECT_EQ(PopupGrid, 0);
    CloseMenu();
    EXPECT_EQ(Selection(0), (GridSelection{3, 4, 6, 8}));
    EXPECT_TRUE(GridOf(0)->hasFocus());
}

TEST_F(GridPopup, RightClickBesideTheSelection_TakesTheCellUnderThePointer) {
    ShowMap(0, 100);
    Drag(0, 3, 4, 6, 8);
    RightClick(0, 12, 13);
    EXPECT_EQ(Selection(0), (GridSelection{12, 13, 12, 13}));
    CloseMenu();
}

TEST_F(GridPopup, CopyAndPaste_AreSeenInThePopupAlone) {
    ShowMap(0, 100);
    const std::vector<bool> hidden = {false, false}, seen = {true, true};
    EXPECT_EQ(PopupItemsSeen(), hidden);
    RightClick(0, 1, 1);
    EXPECT_EQ(PopupItemsSeen(), seen);
    EXPECT_TRUE(Item("mnuGridInterpolate")->isVisible());
    CloseMenu();
    EXPECT_EQ(PopupItemsSeen(), hidden);
    OpenFromBar();
    EXPECT_EQ(PopupItemsSeen(), hidden);
    EXPECT_TRUE(Item("mnuGridInterpolate")->isVisible());
    CloseMenu();
    QTest::keyClick(Main.menuBar(), Qt::Key_Escape);
    // Twice in a row.
    RightClick(0, 2, 2);
    CloseMenu();
    RightClick(0, 2, 2);
    EXPECT_EQ(PopupItemsSeen(), seen);
    CloseMenu();
    EXPECT_EQ(PopupItemsSeen(), hidden);
}

TEST_F(GridPopup, CopyThenPaste_CarryTheValues) {
    ShowMap(0, 100);
    ReadData[0x86][1] = '\x80';  // row 2, column 1
    DisplayAllMaps();
    Main.Mirror();
    Drag(0, 1, 1, 2, 2);
    RightClick(0, 1, 1);
    ClickItemOf(Menu(), "mnuGridCopy");
    EXPECT_EQ(Clipboard(), "0.891\t0.891\r1.000\t0.891");
    EXPECT_EQ(PopupItemsSeen(), (std::vector<bool>{false, false}));
    Drag(0, 10, 10, 11, 11);
    RightClick(0, 11, 11);
    ClickItemOf(Menu(), "mnuGridPaste");
    EXPECT_EQ(Raw(0, 11, 10), 128);
    EXPECT_EQ(Raw(0, 11, 11), 100);
    EXPECT_EQ(CellsOtherThan(0, 100), 2);
    EXPECT_EQ(Selection(0), (GridSelection{10, 10, 11, 11}));
    EXPECT_EQ(GridOf(0)->model()->index(10, 9).data().toString(), "1.000");
}

TEST_F(GridPopup, PasteFromASpreadsheet_TakesItsLinesAndCommas) {
    ShowMap(0, 100);
    Drag(0, 1, 1, 3, 3);
    for (const char* text :
         {"1,1\t1,2\t1,3\r\n1\t1\t1\r\n0,9\t0,9\t0,9\r\n", "1.1\t1.2\t1.3\n1\t1\t1\n0.9\t0.9\t0.9\n",
          "1.1\t1.2\t1.3\r1\t1\t1\r0.9\t0.9\t0.9"}) {
        FillMap(0, 100);
        Clipboard() = text;
        RightClick(0, 2, 2);
        ClickItemOf(Menu(), "mnuGridPaste");
        EXPECT_EQ(Raw(0, 1, 1), 154) << text;
        EXPECT_EQ(Raw(0, 1, 3), 205) << text;
        EXPECT_EQ(Raw(0, 2, 2), 128) << text;
        EXPECT_EQ(Raw(0, 3, 3), 102) << text;
        EXPECT_EQ(CellsOtherThan(0, 100), 9) << text;
    }
}

TEST_F(GridPopup, PasteOfMoreAndOfRaggedRows_StopsAtTheSelection) {
    ShowMap(0, 100);
    Drag(0, 2, 2, 3, 3);
    Clipboard() = "1\t1\t1\t1\r1\r1\t1\t1";
    RightClick(0, 2, 2);
    ClickItemOf(Menu(), "mnuGridPaste");
    EXPECT_EQ(CellsOtherThan(0, 100), 3);
    EXPECT_EQ(Raw(0, 3, 3), 100);
}

TEST_F(GridPopup, PasteOfTenMegabytes_FillsTheSelectionAlone) {
    ShowMap(0, 100);
    Drag(0, 1, 1, 20, 20);
    std::string line;
    while (line.size() < 10000) line += "1.000\t";
    std::string all;
    while (all.size() < 10 * 1024 * 1024) all += line + "\r\n";
    Clipboard() = all;
    RightClick(0, 2, 2);
    ClickItemOf(Menu(), "mnuGridPaste");
    EXPECT_EQ(CellsOtherThan(0, 128), 0);
    FillMap(0, 100);
    Clipboard() = std::string(10 * 1024 * 1024, '1');
    RightClick(0, 2, 2);
    ClickItemOf(Menu(), "mnuGridPaste");
    EXPECT_EQ(GridOf(0)->model()->index(0, 0).data().toString().toStdString(), GridCellText(0, 1, 1));
    EXPECT_EQ(Raw(0, 1, 2), 100);
}

TEST_F(GridPopup, Interpolate_FillsFromTheCorners) {
    ShowMap(1, 20);
    ReadData[0x81][0] = '\x0A';                       // row 1, column 1
    ReadData[0x81][2] = '\x14';                       // row 3, column 1
    ReadData[0x81][40] = '\x1E';                      // row 1, column 3
    ReadData[0x81][42] = '\x28';                      // row 3, column 3
    ReadData[0x81][1] = ReadData[0x81][21] = '\x63';  // what lies between does not count
    DisplayAllMaps();
    Main.Mirror();
    Drag(1, 3, 3, 1, 1);
    RightClick(1, 2, 2);
    ClickItemOf(Menu(), "mnuGridInterpolate");
    const int expected[3][3] = {{10, 20, 30}, {15, 25, 35}, {20, 30, 40}};
    for (int r = 1; r <= 3; ++r) {
        for (int c = 1; c <= 3; ++c) EXPECT_EQ(Raw(1, r, c), expected[r - 1][c - 1]) << r << " " << c;
    }
    EXPECT_EQ(Selection(1), (GridSelection{3, 3, 1, 1}));
}

TEST_F(GridPopup, MenuBar_ActsOnTheMapInView) {
    ShowMap(0, 100);
    Drag(0, 1, 1, 1, 3);
    RightClick(0, 1, 2);
    CloseMenu();
    ClickTab(1);
    FillMap(1, 20);
    ReadData[0x81][40] = '\x28';  // row 1, column 3
    DisplayAllMaps();
    Main.Mirror();
    Drag(1, 1, 1, 1, 3);
    OpenFromBar();
    EXPECT_EQ(PopupGrid, 1);
    ClickItemOf(Menu(), "mnuGridInterpolate");
    EXPECT_EQ(Raw(1, 1, 2), 30);
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
}

TEST_F(GridPopup, Interpolate_NeedsAMapInView) {
    ShowMap(0, 100);
    EXPECT_TRUE(Item("mnuGridInterpolate")->isEnabled());
    ClickTab(6);
    EXPECT_FALSE(Item("mnuGridInterpolate")->isEnabled());
}

TEST_F(GridPopup, MenuKey_OpensIt) {
    ShowMap(0, 100);
    ClickCell(0, 4, 4);
    QContextMenuEvent ask(QContextMenuEvent::Keyboard, QPoint(), GridOf(0)->mapToGlobal(QPoint()));
    QCoreApplication::sendEvent(GridOf(0)->viewport(), &ask);
    Settle();
    ASSERT_TRUE(Menu()->isVisible());
    EXPECT_TRUE(Item("mnuGridPaste")->isVisible());
    CloseMenu();
}

TEST_F(GridPopup, WhileComparing_CopiesButDoesNotPasteOrInterpolate) {
    ShowMap(0, 100);
    mnuCompare.Checked = true;
    Drag(0, 1, 1, 2, 2);
    RightClick(0, 1, 1);
    ClickItemOf(Menu(), "mnuGridCopy");
    EXPECT_FALSE(Clipboard().empty());
    Clipboard() = "1\t1\r1\t1";
    RightClick(0, 1, 1);
    ClickItemOf(Menu(), "mnuGridPaste");
    RightClick(0, 1, 1);
    ClickItemOf(Menu(), "mnuGridInterpolate");
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    EXPECT_FALSE(DataChanged);
}

}  // namespace
}  // namespace zandrel
