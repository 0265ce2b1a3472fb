// The selection that a person draws is the record's, with the corner where it began.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QHeaderView>
#include <QtTest/QTest>
#include <algorithm>

#include "image/image.h"
#include "shell/windows/editfixture.h"
#include "tuning/mapediting.h"

namespace zandrel {

void PrintTo(const GridSelection& s, std::ostream* out) {
    *out << s.Row << "," << s.Col << " to " << s.RowSel << "," << s.ColSel;
}

namespace {

class SelectionSync : public EditTest {
  protected:
    static GridSelection& Record(int map = 0) { return Grid[static_cast<std::size_t>(map)].Selection; }

    // The record is `expected`, and the view shows that rectangle.
    void ExpectSelection(const GridSelection& expected, int map = 0) {
        EXPECT_EQ(Record(map), expected);
        const MapGridView* grid = GridOf(map);
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column) {
                const bool in = row >= std::min(expected.Row, expected.RowSel) &&
                                row <= std::max(expected.Row, expected.RowSel) &&
                                column >= std::min(expected.Col, expected.ColSel) &&
                                column <= std::max(expected.Col, expected.ColSel);
                ASSERT_EQ(grid->selectionModel()->isSelected(grid->model()->index(row - 1, column - 1)), in)
                    << row << " " << column;
            }
        }
        EXPECT_TRUE(grid->IsCurrent(grid->model()->index(expected.Row - 1, expected.Col - 1)));
    }

    void ClickHeader(QHeaderView* header, int section, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(header->viewport(), Qt::LeftButton, modifiers, PlaceOn(header, section));
        Settle();
    }
    static QPoint PlaceOn(QHeaderView* header, int section) {
        const int at = header->sectionViewportPosition(section) + header->sectionSize(section) / 2;
        return header->orientation() == Qt::Horizontal ? QPoint(at, 5) : QPoint(5, at);
    }
};

TEST_F(SelectionSync, Drag_InEveryDirection) {
    ShowMap(0, 100);
    const GridSelection drags[] = {
        {3, 4, 8, 9}, {8, 9, 3, 4}, {3, 9, 8, 4},   {8, 4, 3, 9},   {5, 5, 5, 9},   {5, 9, 5, 5},
        {9, 5, 5, 5}, {5, 5, 9, 5}, {1, 1, 20, 20}, {20, 20, 1, 1}, {1, 20, 20, 1}, {7, 7, 7, 7},
    };
    for (const GridSelection& drag : drags) {
        Drag(0, drag.Row, drag.Col, drag.RowSel, drag.ColSel);
        ExpectSelection(drag);
    }
}

TEST_F(SelectionSync, DragThatTurnsBack_KeepsWhereItBegan) {
    ShowMap(0, 100);
    QWidget* viewport = GridOf(0)->viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, PlaceOf(0, 10, 10));
    for (const GridSelection& at :
         {GridSelection{10, 10, 14, 15}, GridSelection{10, 10, 6, 15}, GridSelection{10, 10, 6, 4},
          GridSelection{10, 10, 10, 4}, GridSelection{10, 10, 10, 10}, GridSelection{10, 10, 11, 10}}) {
        QTest::mouseMove(viewport, PlaceOf(0, at.RowSel, at.ColSel));
        Settle();
        ExpectSelection(at);
    }
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, PlaceOf(0, 11, 10));
    ExpectSelection({10, 10, 11, 10});
}

TEST_F(SelectionSync, ShiftClick_ReachesToTheClickedCell) {
    ShowMap(0, 100);
    ClickCell(0, 10, 10);
    ClickCell(0, 12, 14, Qt::ShiftModifier);
    ExpectSelection({10, 10, 12, 14});
    ClickCell(0, 4, 3, Qt::ShiftModifier);
    ExpectSelection({10, 10, 4, 3});
    ClickCell(0, 6, 6);
    ExpectSelection({6, 6, 6, 6});
}

TEST_F(SelectionSync, CtrlClick_MakesOneRectangleToo) {
    ShowMap(0, 100);
    ClickCell(0, 10, 10);
    ClickCell(0, 15, 15, Qt::ControlModifier);
    ExpectSelection({10, 10, 15, 15});
}

TEST_F(SelectionSync, ShiftArrows_InEveryDirection) {
    ShowMap(0, 100);
    ClickCell(0, 10, 10);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    ExpectSelection({10, 10, 11, 11});
    for (int i = 0; i < 3; ++i) Key(Qt::Key_Up, Qt::ShiftModifier);
    ExpectSelection({10, 10, 8, 11});
    for (int i = 0; i < 3; ++i) Key(Qt::Key_Left, Qt::ShiftModifier);
    ExpectSelection({10, 10, 8, 8});
    Key(Qt::Key_Home, Qt::ShiftModifier);
    ExpectSelection({10, 10, 8, 1});
    Key(Qt::Key_End, Qt::ShiftModifier);
    ExpectSelection({10, 10, 8, 20});
    Key(Qt::Key_Left);
    ExpectSelection({8, 19, 8, 19});
}

// The box of a column that was chosen by its label used to open in the last row.
TEST_F(SelectionSync, ColumnHeads_SelectFromTheTop) {
    ShowMap(0, 100);
    ClickCell(0, 10, 10);
    QHeaderView* heads = GridOf(0)->horizontalHeader();
    ClickHeader(heads, 4);
    ExpectSelection({1, 5, 20, 5});
    ClickHeader(heads, 7, Qt::ShiftModifier);
    ExpectSelection({1, 5, 20, 8});
    QTest::mousePress(heads->viewport(), Qt::LeftButton, {}, PlaceOn(heads, 12));
    QTest::mouseMove(heads->viewport(), PlaceOn(heads, 11));
    QTest::mouseMove(heads->viewport(), PlaceOn(heads, 9));
    QTest::mouseRelease(heads->viewport(), Qt::LeftButton, {}, PlaceOn(heads, 9));
    Settle();
    ExpectSelection({1, 13, 20, 10});
}

TEST_F(SelectionSync, RowHeads_SelectFromTheLeft) {
    ShowMap(0, 100);
    ClickCell(0, 10, 10);
    QHeaderView* heads = GridOf(0)->verticalHeader();
    ClickHeader(heads, 4);
    ExpectSelection({5, 1, 5, 20});
    ClickHeader(heads, 7, Qt::ShiftModifier);
    ExpectSelection({5, 1, 8, 20});
}

TEST_F(SelectionSync, CornerButton_SelectsAllFromTheFirstCell) {
    ShowMap(0, 100);
    for (const auto& [row, column] : {std::pair{10, 10}, {1, 1}, {20, 20}, {1, 20}, {20, 1}}) {
        ClickCell(0, row, column);
        Click(GridOf(0)->findChild<QAbstractButton*>());
        ExpectSelection({1, 1, 20, 20});
    }
}

TEST_F(SelectionSync, CtrlA_SelectsAllFromTheFirstCell) {
    ShowMap(0, 100);
    for (const auto& [row, column] : {std::pair{10, 10}, {1, 1}, {20, 20}, {1, 20}}) {
        ClickCell(0, row, column);
        Key(Qt::Key_A, Qt::ControlModifier);
        ExpectSelection({1, 1, 20, 20});
        Type("1");
        EXPECT_EQ(EditRow, 1);
        EXPECT_EQ(EditCol, 1);
        EXPECT_TRUE(Box()->geometry().contains(PlaceOf(0, 1, 1)));
        Key(Qt::Key_Escape);
        ExpectSelection({1, 1, 20, 20});
    }
}

TEST_F(SelectionSync, AfterCtrlA_ArrowsAndShiftGoOnFromASingleCell) {
    ShowMap(0, 100);
    ClickCell(0, 10, 10);
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Down);
    EXPECT_EQ(Record().Row, Record().RowSel);
    EXPECT_EQ(Record().Col, Record().ColSel);
    ExpectSelection(Record());
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    ExpectSelection(Record());
    ClickCell(0, 3, 3);
    Key(Qt::Key_A, Qt::ControlModifier);
    ClickCell(0, 5, 6, Qt::ShiftModifier);
    ExpectSelection(Record());
    ClickCell(0, 7, 7);
    ExpectSelection({7, 7, 7, 7});
}

TEST_F(SelectionSync, EachMap_KeepsItsOwn) {
    ShowMap(0, 100);
    Drag(0, 2, 2, 4, 4);
    ClickTab(1);
    Drag(1, 9, 9, 7, 7);
    ClickTab(0);
    ExpectSelection({2, 2, 4, 4});
    ClickTab(1);
    ExpectSelection({9, 9, 7, 7}, 1);
}

TEST_F(SelectionSync, EditOfADrawnUpSelection_KeepsItsDirection) {
    ShowMap(0, 100);
    Drag(0, 9, 9, 7, 6);
    Key(Qt::Key_Equal);
    EXPECT_EQ(CellsOtherThan(0, 100), 12);
    ExpectSelection({9, 9, 7, 6});
    Key(Qt::Key_Up, Qt::ShiftModifier);
    ExpectSelection({9, 9, 6, 6});
}

}  // namespace
}  // namespace zandrel
