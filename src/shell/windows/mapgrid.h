// A map of 20 by 20 as a table with a label row and a label column that stay put. Texts, colours and
// selection are the record's; the view turns keys and mouse into the map's own and mirrors what came of it.
#pragma once

#include <QAbstractTableModel>
#include <QFont>
#include <QPointer>
#include <QTableView>
#include <array>
#include <functional>

#include "tuning/maps.h"

namespace zandrel {

/// Cells, labels and colours of map `map`. Rows and columns count from 0 here.
class MapModel : public QAbstractTableModel {
  public:
    explicit MapModel(int map, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    const QString& CellText(int row, int column) const;
    std::uint32_t CellColour(int row, int column) const;  // 0 = the default colour
    Qt::Alignment ColumnAlignment(int column) const;      // -1 = the label column
    int Map() const { return map_; }

    /// Takes texts and colours from the record. True for each cell that has changed.
    using Changes = std::array<std::array<bool, kMapSide>, kMapSide>;
    Changes Take();

  private:
    int map_;
    std::array<std::array<QString, kMapSide>, kMapSide> texts_;
    std::array<std::array<std::uint32_t, kMapSide>, kMapSide> colours_{};
};

class MapGridView : public QTableView {
  public:
    /// `run` runs an action of the user and shows what came of it; `popup` opens the menu of the map at a
    /// place on the screen.
    using Runner = std::function<void(const std::function<void()>& action)>;
    using Popup = std::function<void(int map, const QPoint& place)>;
    MapGridView(int map, Runner run, Popup popup, QWidget* parent = nullptr);

    /// Takes over selection, texts and colours, if the record has them anew; repaints the cells that differ.
    void Mirror();

    /// Puts the box over the current cell, which comes into sight. While the box stands there it keeps to
    /// its cell, however the map is laid out.
    void PlaceBox(QWidget* box);

    /// Font that lets the longest text of the map fit its column.
    const QFont& CellFont() const { return cellFont_; }

    /// Room beside a cell's text, in pixels.
    int Padding() const { return padding_; }

    /// True for the cell where the selection began: the box opens there.
    bool IsCurrent(const QModelIndex& cell) const;

    void keyboardSearch(const QString&) override {}

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    MapGrid& Record() const;
    void TakeSelection();
    void BeginAtLabels(bool inFirstRow, bool inFirstColumn);
    void ShowSelection();
    void ShowCells();
    void LayOut();
    int LongestText(const QFont& font) const;

    MapModel* model_;
    Runner run_;
    Popup popup_;
    static constexpr int kLeastPadding = 2;
    QFont cellFont_;
    int padding_ = kLeastPadding;
    unsigned revision_ = ~0U;
    GridSelection selection_;  // as shown
    QPointer<QWidget> box_;
    bool showsSelection_ = false;
};

}  // namespace zandrel
