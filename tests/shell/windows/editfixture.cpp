#include "shell/windows/editfixture.h"

#include <QApplication>
#include <QtTest/QTest>

#include "image/accessors.h"
#include "image/image.h"

namespace zandrel {

EditTest::EditTest() {
    ShowAt(1280, 800);
}

void EditTest::ShowMap(int map, int raw, const std::string& key) {
    ShowBuild(key);
    FillMap(map, raw);
    ClickTab(map);
    ASSERT_TRUE(GridOf(map)->hasFocus());
}

void EditTest::FillMap(int map, int raw) {
    const auto at = static_cast<std::size_t>(map);
    std::string block(100, static_cast<char>(raw));
    if (MapCellSize[at] == 2) {
        for (std::size_t i = 0; i < block.size(); i += 2) {
            block[i] = static_cast<char>(raw % 256);
            block[i + 1] = static_cast<char>(raw / 256);
        }
    }
    for (int k = 0; k < MapCellSize[at] * 4; ++k)
        ReadData[MapFirstBlock[at] + static_cast<std::size_t>(k)] = block;
    DisplayAllMaps();
    Main.Mirror();
    Settle();
}

QPoint EditTest::PlaceOf(int map, int row, int column) {
    const MapGridView* grid = GridOf(map);
    return grid->visualRect(grid->model()->index(row - 1, column - 1)).center();
}

void EditTest::ClickCell(int map, int row, int column, Qt::KeyboardModifiers modifiers,
                         Qt::MouseButton button) {
    QTest::mouseClick(GridOf(map)->viewport(), button, modifiers, PlaceOf(map, row, column));
    Settle();
}

void EditTest::DoubleClickCell(int map, int row, int column) {
    // A double click begins as a click.
    ClickCell(map, row, column);
    QTest::mouseDClick(GridOf(map)->viewport(), Qt::LeftButton, {}, PlaceOf(map, row, column));
    Settle();
}

void EditTest::Drag(int map, int row, int column, int rowSel, int colSel) {
    QWidget* viewport = GridOf(map)->viewport();
    const QPoint from = PlaceOf(map, row, column);
    const QPoint to = PlaceOf(map, rowSel, colSel);
    QTest::mousePress(viewport, Qt::LeftButton, {}, from);
    QTest::mouseMove(viewport, (from + to) / 2);
    QTest::mouseMove(viewport, to);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
    Settle();
}

void EditTest::Key(int key, Qt::KeyboardModifiers modifiers) {
    QWidget* focus = QApplication::focusWidget();
    ASSERT_NE(focus, nullptr);
    QTest::keyClick(focus, static_cast<Qt::Key>(key), modifiers);
    Settle();
}

void EditTest::Type(const QString& text) {
    for (const QChar letter : text) {
        QWidget* focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        QTest::keyClick(focus, letter.toLatin1());
        Settle();
    }
}

void EditTest::ClickItem(const QString& menu, const QString& item) {
    auto* window = Named<QMenu>(menu);
    window->popup(Main.mapToGlobal(QPoint(10, 10)));
    Settle();
    ClickItemOf(window, item);
}

void EditTest::ClickItemOf(QMenu* menu, const QString& item) {
    QAction* action = Item(item);
    ASSERT_TRUE(action->isVisible() && action->isEnabled()) << item.toStdString();
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
    Settle();
}

int EditTest::Raw(int map, int row, int column) {
    return GetCell(map, row, column, false);
}

int EditTest::CellsOtherThan(int map, int raw) {
    int count = 0;
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) count += Raw(map, row, column) != raw ? 1 : 0;
    }
    return count;
}

}  // namespace zandrel
