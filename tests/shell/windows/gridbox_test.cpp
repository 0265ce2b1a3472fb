// The box that opens in a cell: how it opens, what it stores and when, and where it stands.
#include <gtest/gtest.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QtTest/QTest>

#include "image/history.h"
#include "image/image.h"
#include "shell/windows/editfixture.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/mapediting.h"

namespace zandrel {
namespace {

class GridBox : public EditTest {
  protected:
    static GridSelection& Selection(int map) { return Grid[static_cast<std::size_t>(map)].Selection; }

    QRect CellRect(int map, int row, int column) {
        const MapGridView* grid = GridOf(map);
        return grid->visualRect(grid->model()->index(row - 1, column - 1));
    }

    // The box covers its cell's left top, as far as the grid lets it.
    void ExpectBoxOver(int map, int row, int column) {
        const QRect box = Box()->geometry();
        const QRect cell = CellRect(map, row, column);
        const QRect inside = GridOf(map)->viewport()->rect();
        EXPECT_TRUE(inside.contains(box)) << row << " " << column;
        EXPECT_TRUE(box.contains(cell.center())) << row << " " << column;
        EXPECT_LE(std::abs(box.left() - cell.left()), box.width() - cell.width() / 2) << row << " " << column;
        EXPECT_LE(std::abs(box.top() - cell.top()), 12) << row << " " << column;
    }
};

TEST_F(GridBox, DigitThenEnter_StoresAndClosesAndTheMapHasTheFocus) {
    ShowMap(0, 100);
    ClickCell(0, 3, 4);
    Type("1.25");
    ASSERT_TRUE(Box()->isVisible());
    EXPECT_EQ(Box()->text(), "1.25");
    ExpectBoxOver(0, 3, 4);
    EXPECT_EQ(CellsOtherThan(0, 100), 0) << "nothing is stored while typing";
    Key(Qt::Key_Return);
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_TRUE(GridOf(0)->hasFocus());
    EXPECT_EQ(Raw(0, 3, 4), 192);
    EXPECT_EQ(CellsOtherThan(0, 100), 1);
    EXPECT_EQ(GridOf(0)->model()->index(2, 3).data().toString(), "1.250");
    EXPECT_EQ(Selection(0), (GridSelection{3, 4, 3, 4}));
    EXPECT_TRUE(CanUndo());
}

TEST_F(GridBox, PadEnter_StoresToo) {
    ShowMap(0, 100);
    Type("1");
    Key(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_EQ(Raw(0, 1, 1), 128);
}

TEST_F(GridBox, ValueOverASelection_FillsItConvertedOnce) {
    ShowMap(0, 100);
    Drag(0, 8, 9, 6, 5);
    Type("1");
    ExpectBoxOver(0, 8, 9);
    Key(Qt::Key_Return);
    EXPECT_EQ(CellsOtherThan(0, 100), 15);
    EXPECT_EQ(Raw(0, 6, 5), 128);
    EXPECT_EQ(Raw(0, 8, 9), 128);
    EXPECT_EQ(Selection(0), (GridSelection{8, 9, 6, 5}));
}

TEST_F(GridBox, DoubleClick_OpensWithTheCellsTextSelected) {
    ShowMap(0, 100);
    DoubleClickCell(0, 7, 8);
    ASSERT_TRUE(Box()->isVisible());
    EXPECT_TRUE(Box()->hasFocus());
    EXPECT_EQ(Box()->text(), "0.891");
    EXPECT_EQ(Box()->selectedText(), "0.891");
    ExpectBoxOver(0, 7, 8);
    Type("1.5");
    EXPECT_EQ(Box()->text(), "1.5");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 7, 8), 255);
    EXPECT_EQ(GridOf(0)->model()->index(6, 7).data().toString(), "1.496") << "limited";
    EXPECT_EQ(CellsOtherThan(0, 100), 1);
}

TEST_F(GridBox, DoubleClickWithTheRightButtonOrOnALabel_OpensNothing) {
    ShowMap(0, 100);
    QTest::mouseDClick(GridOf(0)->viewport(), Qt::RightButton, {}, PlaceOf(0, 4, 4));
    Settle();
    EXPECT_FALSE(Box()->isVisible());
    auto* header = GridOf(0)->findChild<QWidget*>();
    ASSERT_NE(header, nullptr);
    for (QHeaderView* head : GridOf(0)->findChildren<QHeaderView*>()) {
        QTest::mouseDClick(head->viewport(), Qt::LeftButton, {}, QPoint(20, 10));
        Settle();
        EXPECT_FALSE(Box()->isVisible());
    }
}

TEST_F(GridBox, Escape_LeavesEverything) {
    ShowMap(0, 100);
    Type("1.3");
    Key(Qt::Key_Escape);
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_TRUE(GridOf(0)->hasFocus());
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    EXPECT_FALSE(CanUndo());
    Type("9");
    EXPECT_EQ(Box()->text(), "9");
    Key(Qt::Key_Escape);
}

TEST_F(GridBox, ClickOnAnotherCell_StoresWhereTheBoxStood) {
    ShowMap(0, 100);
    ClickCell(0, 3, 3);
    Type("1");
    ClickCell(0, 9, 9);
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_EQ(Raw(0, 3, 3), 128);
    EXPECT_EQ(CellsOtherThan(0, 100), 1);
    EXPECT_EQ(Selection(0), (GridSelection{9, 9, 9, 9}));
    EXPECT_TRUE(GridOf(0)->hasFocus());
}

// A formula works on the selection; the click that leaves the box must not have moved it before.
TEST_F(GridBox, FormulaLeftByAClick_WorksOnTheOldSelection) {
    ShowMap(0, 100);
    Drag(0, 2, 2, 3, 3);
    Type("*1.1");
    ClickCell(0, 15, 15);
    EXPECT_EQ(CellsOtherThan(0, 100), 4);
    EXPECT_EQ(Raw(0, 2, 2), 123);
    EXPECT_EQ(Raw(0, 15, 15), 100);
}

TEST_F(GridBox, RightClickElsewhere_StoresBeforeItsMenuOpens) {
    ShowMap(0, 100);
    ClickCell(0, 3, 3);
    Type("1");
    ClickCell(0, 9, 9, {}, Qt::RightButton);
    EXPECT_EQ(Raw(0, 3, 3), 128);
    EXPECT_EQ(CellsOtherThan(0, 100), 1);
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_TRUE(Named<QMenu>("mnuSetupMaps")->isVisible());
    Named<QMenu>("mnuSetupMaps")->hide();
    Settle();
}

TEST_F(GridBox, Tab_LeavesAndStores) {
    ShowMap(0, 100);
    Type("1");
    Key(Qt::Key_Tab);
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_EQ(Raw(0, 1, 1), 128);
}

TEST_F(GridBox, ClickOnAButton_StoresFirst) {
    ShowMap(0, 100);
    Type("1");
    Click(Named("optAutoUpdate"));
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_EQ(Raw(0, 1, 1), 128);
}

TEST_F(GridBox, ClickOnAnotherTab_StoresAndTheOtherTabIsInFront) {
    ShowMap(0, 100);
    for (const int tab : {1, 6}) {
        ClickTab(0);
        FillMap(0, 100);
        Type("1");
        ASSERT_TRUE(Box()->isVisible());
        ClickTab(tab);
        EXPECT_EQ(Raw(0, 1, 1), 128) << tab;
        EXPECT_FALSE(Box()->isVisible()) << tab;
        EXPECT_EQ(Tabs()->currentIndex(), tab);
        EXPECT_EQ(Tabs()->currentWidget(), Tabs()->widget(tab));
        EXPECT_TRUE(Tabs()->widget(tab)->isVisible()) << tab;
        EXPECT_EQ(SSTab1.Tab, tab);
    }
    ClickTab(1);
    EXPECT_TRUE(GridOf(1)->hasFocus());
}

TEST_F(GridBox, FormulaPlus_AddsRawSteps) {
    ShowMap(0, 100);
    Drag(0, 2, 2, 2, 4);
    DoubleClickCell(0, 2, 2);
    Drag(0, 2, 2, 2, 4);
    EXPECT_FALSE(Box()->isVisible());
    Type("1");
    Key(Qt::Key_Backspace);
    Type("+5");
    Key(Qt::Key_Return);
    EXPECT_EQ(CellsOtherThan(0, 100), 3);
    EXPECT_EQ(Raw(0, 2, 4), 105);
    Type("*2");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 2, 2), 255);
    EXPECT_EQ(Raw(0, 1, 1), 100);
}

TEST_F(GridBox, BadTexts_ChangeNothing) {
    ShowMap(0, 100);
    for (const char* text : {"", "x", "1x", "1.2.3", "1 2", "--1", "1e400", "-1e400", "nan", "inf", "+x?",
                             "+", "1,2,3", "$1", "0x10"}) {
        Type("1");
        Key(Qt::Key_Backspace);
        Type(QString::fromLatin1(text));
        ASSERT_TRUE(Box()->isVisible()) << text;
        Key(Qt::Key_Return);
        EXPECT_FALSE(Box()->isVisible()) << text;
        EXPECT_EQ(CellsOtherThan(0, 100), 0) << text;
        EXPECT_EQ(GridOf(0)->model()->index(0, 0).data().toString(), "0.891") << text;
    }
}

TEST_F(GridBox, DecimalComma_IsAPoint) {
    ShowMap(0, 100);
    Type("1,25");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 1, 1), 192);
    Type(",75");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 1, 1), 64);
}

TEST_F(GridBox, HugeNumbers_AreLimited) {
    ShowMap(0, 100);
    Type("1e300");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 1, 1), 255);
    Type("0");
    Key(Qt::Key_Backspace);
    Type("-1e300");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 1, 1), 0);
}

TEST_F(GridBox, MenuOfTheBarOverIt_DoesNotStore) {
    ShowMap(0, 100);
    Type("1");
    auto* menu = Named<QMenu>("mnuSetup");
    QTest::mouseClick(Main.menuBar(), Qt::LeftButton, {},
                      Main.menuBar()->actionGeometry(menu->menuAction()).center());
    Settle();
    ASSERT_TRUE(menu->isVisible());
    EXPECT_TRUE(Box()->isVisible());
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    QTest::keyClick(menu, Qt::Key_Escape);
    QTest::keyClick(Main.menuBar(), Qt::Key_Escape);
    Settle();
    EXPECT_TRUE(Box()->isVisible());
    EXPECT_TRUE(Box()->hasFocus());
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    Type(".5");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 1, 1), 255);
}

TEST_F(GridBox, ItsOwnMenu_DoesNotStore) {
    ShowMap(0, 100);
    Type("1");
    QContextMenuEvent ask(QContextMenuEvent::Mouse, QPoint(5, 5), Box()->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(Box(), &ask);
    Settle();
    QWidget* menu = QApplication::activePopupWidget();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(Box()->isVisible());
    QTest::keyClick(menu, Qt::Key_Escape);
    Settle();
    EXPECT_TRUE(Box()->isVisible());
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    Key(Qt::Key_Escape);
}

TEST_F(GridBox, AnotherWindow_DoesNotStore) {
    ShowMap(0, 100);
    Type("1");
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_TRUE(Box()->isVisible());
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    other.hide();
    QApplication::setActiveWindow(&Main);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Main));
    EXPECT_TRUE(Box()->hasFocus());
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 1, 1), 128);
}

TEST_F(GridBox, KeysOfTheMap_StayInTheBox) {
    ShowMap(0, 100);
    Drag(0, 5, 5, 6, 6);
    Type("1");
    for (const int key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Left,
                          Qt::Key_Right, Qt::Key_Home, Qt::Key_End, Qt::Key_F2}) {
        Key(key);
    }
    Key(Qt::Key_Plus, Qt::ControlModifier);
    Key(Qt::Key_Minus, Qt::ControlModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(Selection(0), (GridSelection{5, 5, 6, 6}));
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    EXPECT_TRUE(Box()->isVisible());
    EXPECT_EQ(Box()->text(), "1");
    Key(Qt::Key_End);
    Type(".25");
    Key(Qt::Key_Return);
    EXPECT_EQ(CellsOtherThan(0, 100), 4);
}

TEST_F(GridBox, UndoAndRedoKeys_AreTheBoxesOwn) {
    ShowMap(0, 100);
    Key(Qt::Key_Equal);
    Key(Qt::Key_Equal);
    Key(Qt::Key_Z, Qt::ControlModifier);
    ASSERT_TRUE(Item("mnuUndo")->isEnabled() && Item("mnuRedo")->isEnabled());
    Type("1");
    Type("23");
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Box()->isVisible());
    EXPECT_LT(Box()->text().size(), 3);
    EXPECT_EQ(Raw(0, 1, 1), 101);
    for (const auto& [key, modifiers] : {std::pair{Qt::Key_Y, Qt::KeyboardModifiers(Qt::ControlModifier)},
                                         {Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier}}) {
        Key(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_LT(Box()->text().size(), 3);
        for (int i = 0; i < 3; ++i) Key(key, modifiers);
        EXPECT_TRUE(Box()->isVisible());
        EXPECT_EQ(Box()->text(), "123");
        EXPECT_EQ(Raw(0, 1, 1), 101);
    }
    Key(Qt::Key_Escape);
    EXPECT_EQ(CellsOtherThan(0, 100), 1);
}

TEST_F(GridBox, EveryCornerOfTheMap_KeepsItInsideTheGrid) {
    for (const QSize size : {QSize(1280, 800), QSize(747, 542), QSize(520, 320)}) {
        Main.resize(size);
        Settle();
        ShowMap(0, 100);
        for (const auto& [row, column] : {std::pair{1, 1}, {1, 20}, {20, 1}, {20, 20}, {10, 10}}) {
            GridOf(0)->scrollTo(GridOf(0)->model()->index(row - 1, column - 1));
            ClickCell(0, row, column);
            Type("1");
            ASSERT_TRUE(Box()->isVisible());
            ExpectBoxOver(0, row, column);
            const QFontMetrics metrics(Box()->font());
            EXPECT_GE(Box()->width(), metrics.horizontalAdvance("*0.0000"));
            EXPECT_GE(Box()->height(), metrics.height());
            EXPECT_EQ(Box()->font(), GridOf(0)->CellFont());
            Key(Qt::Key_Escape);
        }
    }
}

TEST_F(GridBox, CellOutOfSight_ComesIntoSightWhenItsBoxOpens) {
    ShowMap(0, 100);
    Main.resize(520, 320);
    PaintOut();
    Key(Qt::Key_Home, Qt::ControlModifier);
    auto* bar = GridOf(0)->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    bar->setValue(bar->maximum());
    Type("1");
    ExpectBoxOver(0, 1, 1);
    Key(Qt::Key_Escape);
}

TEST_F(GridBox, MapThatScrolls_TakesTheBoxAlong) {
    Main.resize(520, 320);
    ShowMap(0, 100);
    ClickCell(0, 3, 3);
    Type("1");
    auto* bar = GridOf(0)->verticalScrollBar();
    bar->setValue(bar->value() + 10);
    Settle();
    ExpectBoxOver(0, 3, 3);
    Key(Qt::Key_Escape);
}

TEST_F(GridBox, WindowThatChangesItsSize_TakesTheBoxAlong) {
    ShowMap(0, 100);
    ClickCell(0, 12, 12);
    Type("1");
    ExpectBoxOver(0, 12, 12);
    Main.resize(900, 600);
    PaintOut();
    EXPECT_TRUE(Box()->isVisible());
    ExpectBoxOver(0, 12, 12);
    EXPECT_EQ(Box()->font(), GridOf(0)->CellFont());
    Key(Qt::Key_Escape);
}

TEST_F(GridBox, TabThatGoes_TakesTheBoxAlongAndStoresNothing) {
    ShowMap(1, 20);
    Type("9");
    ASSERT_TRUE(Box()->isVisible());
    SSTab1.TabVisible[1] = false;
    SSTab1.Tab = kGeneralTab;
    Main.Mirror();
    Settle();
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_FALSE(txtGrid.Visible);
    EXPECT_EQ(CellsOtherThan(1, 20), 0);
    EXPECT_FALSE(CanUndo());
    SSTab1.TabVisible[1] = true;
    Main.Mirror();
    ClickTab(1);
    EXPECT_FALSE(Box()->isVisible());
    ClickCell(1, 2, 2);
    Type("9");
    EXPECT_EQ(Box()->text(), "9");
    ExpectBoxOver(1, 2, 2);
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(1, 2, 2), 9);
}

TEST_F(GridBox, MenuCommand_StoresBeforeItRuns) {
    ShowMap(0, 100);
    Type("1");
    ClickItem("mnuMapColourScheme", "mnuSetupMapColourScheme(0)");
    EXPECT_FALSE(Box()->isVisible());
    EXPECT_EQ(Raw(0, 1, 1), 128);
    EXPECT_EQ(MapColourScheme, 0);
}

TEST_F(GridBox, ClosingTheWindow_StoresBeforeItAsks) {
    ShowMap(0, 100);
    mnuSaveAs_Click = [] {};
    DataChanged = false;
    Type("1");
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::Cancel);
    EXPECT_FALSE(Main.close());
    EXPECT_EQ(Raw(0, 1, 1), 128);
    EXPECT_TRUE(NoMessageLeft());
}

}  // namespace
}  // namespace zandrel
