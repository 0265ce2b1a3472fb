#include <gtest/gtest.h>

#include <QHeaderView>
#include <QImage>
#include <QPaintEvent>
#include <QRegion>
#include <QScrollBar>
#include <QTableView>
#include <QtTest/QTest>

#include "image/image.h"
#include "shell/windows/mapgrid.h"
#include "shell/windows/windowfixture.h"
#include "tuning/display.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

class MapGridTest : public WindowTest {
  protected:
    MapGridView* GridOf(int map) { return static_cast<MapGridView*>(Member<QTableView>("Grid", map)); }

    static std::vector<int> Selected(const QTableView* grid) {
        int top = 99, left = 99, bottom = -1, right = -1;
        for (const QModelIndex& cell : grid->selectionModel()->selectedIndexes()) {
            top = std::min(top, cell.row());
            left = std::min(left, cell.column());
            bottom = std::max(bottom, cell.row());
            right = std::max(right, cell.column());
        }
        return {top, left, bottom, right};
    }
};

TEST_F(MapGridTest, TwentyByTwenty_FitWithoutScrollingAt1280By800) {
    ShowAt(1280, 800);
    ShowBuild("B18C2.02B");
    // The longest numbers that a base map can hold.
    for (int block = MapFirstBlock[2]; block < MapFirstBlock[2] + 8; ++block)
        ReadData[block] = std::string(100, '\xFF');
    DisplayAllMaps();
    for (const int map : {0, 1, 2, 3}) {
        ClickTab(map);
        const MapGridView* grid = GridOf(map);
        EXPECT_EQ(grid->horizontalScrollBar()->maximum(), 0) << map;
        EXPECT_EQ(grid->verticalScrollBar()->maximum(), 0) << map;
        const QFontMetrics metrics(grid->CellFont());
        for (int i = 0; i < kMapSide; ++i) {
            const QString text = grid->model()->index(0, i).data().toString();
            EXPECT_LT(metrics.horizontalAdvance(text), grid->columnWidth(i)) << map << " " << i;
            EXPECT_LT(metrics.height(), grid->rowHeight(i)) << map;
        }
    }
}

TEST_F(MapGridTest, SmallWindow_ShrinksTheFontBeforeItCuts) {
    ShowAt(747, 542);
    ShowBuild("B18C2.02B");
    ClickTab(2);
    const MapGridView* grid = GridOf(2);
    const QFontMetrics metrics(grid->CellFont());
    for (int c = 0; c < kMapSide; ++c) {
        for (int r = 0; r < kMapSide; ++r) {
            EXPECT_LE(metrics.horizontalAdvance(grid->model()->index(r, c).data().toString()),
                      grid->columnWidth(c));
        }
    }
}

TEST_F(MapGridTest, ColumnsKeepTheProportionsOfTheRecord) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    const MapGridView* grid = GridOf(0);
    EXPECT_NEAR(double(grid->verticalHeader()->width()) / grid->columnWidth(5), 1.2, 0.05);
    for (int c = 0; c < kMapSide; ++c) EXPECT_NEAR(grid->columnWidth(c), grid->columnWidth(0), 1);
    EXPECT_EQ(Grid[0].Width, static_cast<float>(grid->width()));
    EXPECT_EQ(grid->model()->index(0, 0).data(Qt::TextAlignmentRole).toInt() & Qt::AlignLeft, Qt::AlignLeft);
    EXPECT_EQ(grid->model()->headerData(0, Qt::Vertical, Qt::TextAlignmentRole).toInt() & Qt::AlignRight,
              Qt::AlignRight);
}

TEST_F(MapGridTest, Keys_MoveAndSelect) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    MapGridView* grid = GridOf(0);
    ASSERT_TRUE(grid->hasFocus());
    QTest::keyClick(grid, Qt::Key_Down);
    QTest::keyClick(grid, Qt::Key_Right);
    EXPECT_EQ(grid->currentIndex(), grid->model()->index(1, 1));
    QTest::keyClick(grid, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(grid, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(grid, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(Selected(grid), (std::vector<int>{1, 1, 2, 3}));
    QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Selected(grid), (std::vector<int>{0, 0, 19, 19}));
}

TEST_F(MapGridTest, Mouse_SelectsARectangle) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    MapGridView* grid = GridOf(0);
    const auto centre = [&](int r, int c) { return grid->visualRect(grid->model()->index(r, c)).center(); };
    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, centre(3, 4));
    QTest::mouseMove(grid->viewport(), centre(6, 8));
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, centre(6, 8));
    EXPECT_EQ(Selected(grid), (std::vector<int>{3, 4, 6, 8}));
}

TEST_F(MapGridTest, SelectionSurvivesANewReading) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    MapGridView* grid = GridOf(0);
    QTest::keyClick(grid, Qt::Key_Down);
    QTest::keyClick(grid, Qt::Key_Down, Qt::ShiftModifier);
    ReadData[0x86] = std::string(100, '\x40');
    DisplayAllMaps();
    Main.Mirror();
    Settle();
    EXPECT_EQ(Selected(grid), (std::vector<int>{1, 0, 2, 0}));
}

TEST_F(MapGridTest, SelectedCell_KeepsItsColourAndGetsAFrame) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ReadData[0x86] = std::string(100, '\x00');
    DisplayAllMaps();
    ClickTab(0);
    MapGridView* grid = GridOf(0);
    grid->setCurrentIndex(grid->model()->index(1, 1));
    Settle();
    const QImage picture = grid->viewport()->grab().toImage();
    const QRect cell = grid->visualRect(grid->model()->index(1, 1));
    const QColor back = ColourOf(GridCellColourSet(0, 2, 2));
    EXPECT_EQ(picture.pixelColor(cell.left() + 4, cell.top() + 4), back);
    EXPECT_EQ(picture.pixelColor(cell.left(), cell.top() + 4), grid->palette().color(QPalette::Highlight));
    const QRect other = grid->visualRect(grid->model()->index(5, 1));
    EXPECT_EQ(picture.pixelColor(other.left(), other.top() + 4), back);
}

TEST_F(MapGridTest, PaintedNumbers_ReadWellOnEveryColour) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    std::string column;
    for (int raw = 0; raw < 100; ++raw) column += static_cast<char>(raw * 255 / 99);
    ReadData[0x86] = column;
    DisplayAllMaps();
    ClickTab(0);
    MapGridView* grid = GridOf(0);
    const QImage picture = grid->viewport()->grab().toImage();
    for (int c = 0; c < 5; ++c) {
        for (int r = 0; r < kMapSide; ++r) {
            const QRect cell = grid->visualRect(grid->model()->index(r, c)).adjusted(3, 3, -3, -3);
            const QColor back = ColourOf(GridCellColourSet(0, r + 1, c + 1));
            double best = 0;
            for (int x = cell.left(); x <= cell.right(); ++x) {
                for (int y = cell.top(); y <= cell.bottom(); ++y) {
                    best = std::max(best, Contrast(picture.pixelColor(x, y), back));
                }
            }
            EXPECT_GE(best, 4.5) << r << " " << c;
        }
    }
}

TEST_F(MapGridTest, Scroll_KeepsTheLabelsInPlace) {
    ShowAt(420, 300);
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    MapGridView* grid = GridOf(0);
    ASSERT_GT(grid->verticalScrollBar()->maximum(), 0);
    const QRect rowHeads = grid->verticalHeader()->geometry();
    const QRect columnHeads = grid->horizontalHeader()->geometry();
    QTest::keyClick(grid, Qt::Key_End, Qt::ControlModifier);
    Settle();
    EXPECT_GT(grid->verticalScrollBar()->value(), 0);
    EXPECT_EQ(grid->verticalHeader()->geometry(), rowHeads);
    EXPECT_EQ(grid->horizontalHeader()->geometry(), columnHeads);
}

// What is painted of a widget.
class PaintCounter : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) Painted += static_cast<QPaintEvent*>(event)->region();
        return false;
    }
    QRegion Painted;
};

TEST_F(MapGridTest, RepaintsOnlyTheCellsThatDiffer) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    PaintOut();
    const MapGridView* grid = GridOf(0);
    PaintCounter counter;
    grid->viewport()->installEventFilter(&counter);
    Main.Mirror();
    PaintOut();
    EXPECT_TRUE(counter.Painted.isEmpty());
    ++Grid[1].Revision;  // another map's
    Main.Mirror();
    PaintOut();
    EXPECT_TRUE(counter.Painted.isEmpty());
    DisplayMap(0, false);  // all anew, but the same
    Main.Mirror();
    PaintOut();
    EXPECT_TRUE(counter.Painted.isEmpty());
    ReadData[0x86][4] = static_cast<char>(ReadData[0x86][4] + 1);  // row 5, column 1
    DisplayMap(0, true);
    Main.Mirror();
    PaintOut();
    EXPECT_EQ(counter.Painted.boundingRect(), grid->visualRect(grid->model()->index(4, 0)));
}

TEST_F(MapGridTest, NoColourScheme_UsesThePalette) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ReadData[0x86] = std::string(100, '\x00');
    mnuSetupMapColourScheme_Click(0);
    Main.Mirror();
    ClickTab(0);
    MapGridView* grid = GridOf(0);
    const QImage picture = grid->viewport()->grab().toImage();
    const QRect cell = grid->visualRect(grid->model()->index(5, 5));
    EXPECT_EQ(picture.pixelColor(cell.topLeft() + QPoint(1, 1)), grid->palette().color(QPalette::Base));
}

}  // namespace
}  // namespace zandrel
