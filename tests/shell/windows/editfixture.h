// Maps and settings edited by hand: what a person clicks and types, and what the image holds afterwards.
#pragma once

#include <QLineEdit>
#include <QMenu>
#include <string>

#include "shell/windows/mapgrid.h"
#include "shell/windows/windowfixture.h"
#include "tuning/maps.h"

namespace zandrel {

class EditTest : public WindowTest {
  protected:
    EditTest();

    /// Shows build `key` with map `map` in front, all of its cells at `raw`.
    void ShowMap(int map, int raw, const std::string& key = "RB26DETT6.42");

    /// Gives all cells of `map` the raw value and shows them.
    void FillMap(int map, int raw);

    MapGridView* GridOf(int map) { return static_cast<MapGridView*>(Member<QTableView>("Grid", map)); }
    QLineEdit* Box() { return Named<QLineEdit>(QStringLiteral("txtGrid")); }

    /// Place of a cell on the grid's viewport. Rows and columns count from 1.
    QPoint PlaceOf(int map, int row, int column);

    void ClickCell(int map, int row, int column, Qt::KeyboardModifiers modifiers = {},
                   Qt::MouseButton button = Qt::LeftButton);
    void DoubleClickCell(int map, int row, int column);

    /// Presses in the first cell, moves to the second and lets go.
    void Drag(int map, int row, int column, int rowSel, int colSel);

    /// A key, to whatever has the focus.
    static void Key(int key, Qt::KeyboardModifiers modifiers = {});

    /// The letters one by one, each to whatever has the focus then.
    static void Type(const QString& text);

    /// Opens `menu` at a place on the window and clicks one of its items.
    void ClickItem(const QString& menu, const QString& item);
    void ClickItemOf(QMenu* menu, const QString& item);

    static int Raw(int map, int row, int column);

    /// Cells of `map` whose raw value is not `raw`.
    static int CellsOtherThan(int map, int raw);
};

}  // namespace zandrel
