// A map of 20 by 20 as a table with a label row and a label column that stay put. Texts and colours are
// asked for when cells are painted; nothing is kept that the logic does not know.
#pragma once

#include <QAbstractTableModel>
#include <QFont>
#include <QTableView>

namespace zandrel {

/// Cells, labels and colours of map `map`. Rows and columns count from 0 here.
class MapModel : public QAbstractTableModel {
  public:
    explicit MapModel(int map, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    QString CellText(int row, int column) const;
    Qt::Alignment ColumnAlignment(int column) const;  // -1 = the label column
    int Map() const { return map_; }

    /// Tells the view that the cells have to be painted anew.
    void Refresh();

  private:
    int map_;
};

class MapGridView : public QTableView {
  public:
    explicit MapGridView(int map, QWidget* parent = nullptr);

    /// Repaints if the map's revision has grown since the last time.
    void Mirror();

    /// Font that lets the longest text of the map fit its column.
    const QFont& CellFont() const { return cellFont_; }

    /// Room beside a cell's text, in pixels.
    int Padding() const { return padding_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void LayOut();
    int LongestText(const QFontMetrics& metrics) const;

    MapModel* model_;
    static constexpr int kLeastPadding = 2;
    QFont cellFont_;
    int padding_ = kLeastPadding;
    unsigned revision_ = ~0U;
};

}  // namespace zandrel
