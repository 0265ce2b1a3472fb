#include "shell/windows/mapgrid.h"

#include <QHeaderView>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cmath>

#include "shell/windows/shown.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

constexpr double kSmallestFont = 0.7;  // of the desktop's font
constexpr int kLeft = 1;               // ColAlignment: 1 left, 7 right, both centred vertically

const MapGrid& Record(int map) {
    return Grid[static_cast<std::size_t>(map)];
}

void DrawCellText(QPainter* painter, const QRect& rect, int padding, Qt::Alignment alignment,
                  const QString& text) {
    painter->drawText(rect.adjusted(padding, 0, -padding, 0),
                      static_cast<int>(alignment) | Qt::TextSingleLine, text);
}

// The label row and the label column.
class MapHead : public QHeaderView {
  public:
    MapHead(Qt::Orientation orientation, MapGridView* grid) : QHeaderView(orientation, grid), grid_(grid) {
        setSectionsClickable(true);
        setHighlightSections(false);
        setSectionResizeMode(QHeaderView::Fixed);
        setMinimumSectionSize(8);
    }

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override {
        painter->save();
        painter->fillRect(rect, palette().button());
        painter->setPen(palette().color(QPalette::Mid));
        painter->drawLine(rect.bottomLeft(), rect.bottomRight());
        painter->drawLine(rect.topRight(), rect.bottomRight());
        painter->setPen(palette().color(QPalette::ButtonText));
        painter->setFont(grid_->CellFont());
        const auto alignment = model()->headerData(section, orientation(), Qt::TextAlignmentRole).toInt();
        DrawCellText(painter, rect.adjusted(0, 0, -1, -1), grid_->Padding(), Qt::Alignment(alignment),
                     model()->headerData(section, orientation(), Qt::DisplayRole).toString());
        painter->restore();
    }

  private:
    MapGridView* grid_;
};

// Paints a cell in the colour of its value. A selected cell keeps its colour and gets a frame.
class CellPainter : public QStyledItemDelegate {
  public:
    explicit CellPainter(MapGridView* grid) : QStyledItemDelegate(grid), grid_(grid) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto* model = static_cast<const MapModel*>(index.model());
        const std::uint32_t number = GridCellColourSet(model->Map(), index.row() + 1, index.column() + 1);
        const QColor back = number != 0 ? ColourOf(number) : option.palette.color(QPalette::Base);
        const QColor ink = number != 0 ? ReadableOn(back) : option.palette.color(QPalette::Text);
        painter->fillRect(option.rect, back);
        painter->setFont(grid_->CellFont());
        painter->setPen(ink);
        DrawCellText(painter, option.rect, grid_->Padding(), model->ColumnAlignment(index.column()),
                     model->CellText(index.row(), index.column()));
        if (option.state.testFlag(QStyle::State_Selected)) {
            const bool current = index == grid_->currentIndex();
            DrawFrame(painter, option.rect, option.palette.color(QPalette::Highlight), ink, current);
        }
    }

  private:
    static void DrawFrame(QPainter* painter, const QRect& rect, const QColor& outer, const QColor& inner,
                          bool current) {
        const auto ring = [&](int inset, const QColor& colour) {
            painter->setPen(colour);
            painter->drawRect(rect.adjusted(inset, inset, -1 - inset, -1 - inset));
        };
        ring(0, outer);
        ring(1, outer);
        if (current) ring(2, inner);
    }

    MapGridView* grid_;
};

}  // namespace

MapModel::MapModel(int map, QObject* parent) : QAbstractTableModel(parent), map_(map) {}

int MapModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kMapSide;
}

int MapModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kMapSide;
}

QString MapModel::CellText(int row, int column) const {
    return Shown(GridCellText(map_, row + 1, column + 1));
}

Qt::Alignment MapModel::ColumnAlignment(int column) const {
    const int alignment = Record(map_).ColAlignment[static_cast<std::size_t>(column + 1)];
    return (alignment <= kLeft ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter;
}

QVariant MapModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    switch (role) {
        case Qt::DisplayRole:
            return CellText(index.row(), index.column());
        case Qt::TextAlignmentRole:
            return static_cast<int>(ColumnAlignment(index.column()));
        case Qt::BackgroundRole: {
            const std::uint32_t number = GridCellColourSet(map_, index.row() + 1, index.column() + 1);
            return number != 0 ? QVariant(ColourOf(number)) : QVariant();
        }
        default:
            return {};
    }
}

QVariant MapModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const bool columns = orientation == Qt::Horizontal;
    if (role == Qt::TextAlignmentRole) return static_cast<int>(ColumnAlignment(columns ? section : -1));
    if (role != Qt::DisplayRole) return {};
    const auto at = static_cast<std::size_t>(section + 1);
    return Shown(columns ? Record(map_).ColumnHead[at] : Record(map_).RowHead[at]);
}

void MapModel::Refresh() {
    emit dataChanged(index(0, 0), index(kMapSide - 1, kMapSide - 1));
}

MapGridView::MapGridView(int map, QWidget* parent) : QTableView(parent), model_(new MapModel(map, this)) {
    setObjectName(MemberName("Grid", map));
    setModel(model_);
    setHorizontalHeader(new MapHead(Qt::Horizontal, this));
    setVerticalHeader(new MapHead(Qt::Vertical, this));
    setItemDelegate(new CellPainter(this));
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setCornerButtonEnabled(true);
    setCurrentIndex(model_->index(0, 0));
}

void MapGridView::Mirror() {
    if (revision_ == Record(model_->Map()).Revision || !isVisible()) return;
    revision_ = Record(model_->Map()).Revision;
    LayOut();
    model_->Refresh();
    horizontalHeader()->viewport()->update();
    verticalHeader()->viewport()->update();
}

int MapGridView::LongestText(const QFontMetrics& metrics) const {
    int longest = 0;
    for (int line = 0; line < kMapSide; ++line) {
        for (int column = 0; column < kMapSide; ++column) {
            longest = std::max(longest, metrics.horizontalAdvance(model_->CellText(line, column)));
        }
        for (const auto orientation : {Qt::Horizontal, Qt::Vertical}) {
            const QString head = model_->headerData(line, orientation, Qt::DisplayRole).toString();
            longest = std::max(longest, metrics.horizontalAdvance(head));
        }
    }
    return longest;
}

// The columns share the width in the proportions of the record, the rows the height; the font gives way
// before anything is cut off, and only then the grid scrolls.
void MapGridView::LayOut() {
    const int frame = 2 * frameWidth();
    const int height = this->height() - frame;
    // Where the rows have to scroll, their bar takes its part of the width.
    const int leastRow = QFontMetrics(Scaled(font(), kSmallestFont)).height() + 3;
    const bool scrolls = leastRow * (kMapSide + 1) > height;
    const int total = width() - frame - (scrolls ? verticalScrollBar()->sizeHint().width() : 0);
    if (total <= 0 || height <= 0) return;
    const MapGrid& record = Record(model_->Map());
    std::array<double, kMapSide + 1> share{};
    double sum = 0;
    for (std::size_t c = 0; c < share.size(); ++c) {
        share[c] = record.ColWidth[c] > 0 ? double{record.ColWidth[c]} : c == 0 ? 1.2 : 1.0;
        sum += share[c];
    }

    constexpr int kAround = 2 * kLeastPadding + 3;  // with the grid line
    const int longest = std::max(1, LongestText(fontMetrics()));
    const int room = static_cast<int>(total * share[1] / sum) - kAround;
    const double factor = std::clamp(double(room) / longest, kSmallestFont, 1.0);
    cellFont_ = factor < 1 ? Scaled(font(), factor) : font();
    const int fitted = LongestText(QFontMetrics(cellFont_));
    const int narrowest = fitted + kAround - 1;
    // The longest text stands in the middle of its column, all others begin or end with it.
    padding_ = std::max(kLeastPadding, (static_cast<int>(total * share[1] / sum) - 1 - fitted) / 2);

    verticalHeader()->setFixedWidth(static_cast<int>(std::lround(total * share[0] / sum)));
    double edge = share[0];
    int x = static_cast<int>(std::lround(total * edge / sum));
    for (int column = 0; column < kMapSide; ++column) {
        edge += share[static_cast<std::size_t>(column + 1)];
        const int next = static_cast<int>(std::lround(total * edge / sum));
        horizontalHeader()->resizeSection(column, std::max(next - x, factor > kSmallestFont ? 8 : narrowest));
        x = next;
    }

    const int lowest = QFontMetrics(cellFont_).height() + 3;
    const int headHeight = std::max(lowest, height / (kMapSide + 1));
    horizontalHeader()->setFixedHeight(headHeight);
    const int rest = height - headHeight;
    for (int row = 0; row < kMapSide; ++row) {
        const int rowHeight = rest * (row + 1) / kMapSide - rest * row / kMapSide;
        verticalHeader()->resizeSection(row, std::max(rowHeight, lowest));
    }
}

void MapGridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    Grid[static_cast<std::size_t>(model_->Map())].Width = static_cast<float>(width());
    LayOut();
}

void MapGridView::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    revision_ = Record(model_->Map()).Revision;
    LayOut();
}

void MapGridView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) LayOut();
}

}  // namespace zandrel
