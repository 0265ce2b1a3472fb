#include "shell/windows/mapgrid.h"

#include <QAbstractButton>
#include <QHash>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cmath>
#include <utility>

#include "shell/windows/shown.h"
#include "tuning/mapediting.h"

namespace zandrel {
namespace {

constexpr double kSmallestFont = 0.7;  // of the desktop's font
constexpr int kLeft = 1;               // ColAlignment: 1 left, 7 right, both centred vertically

MapGrid& RecordOf(int map) {
    return Grid[static_cast<std::size_t>(map)];
}

// The key codes that the map knows. 0: none of them.
struct MapKey {
    int Code = 0;
    int Shift = 0;
};

MapKey KeyOf(const QKeyEvent& event) {
    const bool pad = event.modifiers() & Qt::KeypadModifier;
    MapKey key;
    if (event.modifiers() & Qt::ShiftModifier) key.Shift |= 1;
    if (event.modifiers() & Qt::ControlModifier) key.Shift |= 2;
    if (event.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) key.Shift |= 4;
    const int code = event.key();
    // Where a keyboard has plus or times on a shifted key, the shift belongs to the character.
    const int unshifted = key.Shift & ~1;
    if (code >= Qt::Key_0 && code <= Qt::Key_9) {
        // Some keyboards have the digits on shifted keys; one that sends a digit has typed a digit.
        const bool typed = event.nativeScanCode() != 0 && event.text() == QChar(code);
        return {(pad ? 96 : 48) + code - Qt::Key_0, typed && !pad ? unshifted : key.Shift};
    }
    switch (code) {
        case Qt::Key_Asterisk:
            return pad ? MapKey{106, key.Shift} : key.Shift == 0 ? MapKey{106, 0} : MapKey{56, key.Shift};
        case Qt::Key_Plus:
            return pad ? MapKey{107, key.Shift} : MapKey{187, unshifted};
        case Qt::Key_Equal:
            return {187, key.Shift};
        case Qt::Key_Minus:
            return {pad ? 109 : 189, key.Shift};
        case Qt::Key_Period:
            return {pad ? 110 : 190, pad ? key.Shift : unshifted};
        case Qt::Key_Comma:
            // A number pad's mark is the point, whatever it bears.
            return {pad ? 110 : 188, pad ? key.Shift : unshifted};
        case Qt::Key_Delete:
            return {46, key.Shift};
        case Qt::Key_Space:
            return {32, key.Shift};
        case Qt::Key_A:
        case Qt::Key_C:
        case Qt::Key_V:
            return {code, key.Shift};
        default:
            return {};
    }
}

// Widths of texts in a font, letter by letter: measuring each text anew would take longer than painting it.
class TextWidths {
  public:
    explicit TextWidths(const QFont& font) : metrics_(font) { widths_.fill(-1); }

    double Of(const QString& text) const {
        double sum = 0;
        for (const QChar letter : text) {
            const auto code = static_cast<std::size_t>(letter.unicode());
            if (code >= widths_.size()) return metrics_.horizontalAdvance(text);
            if (widths_[code] < 0) widths_[code] = metrics_.horizontalAdvance(letter);
            sum += widths_[code];
        }
        return sum;
    }

  private:
    QFontMetricsF metrics_;
    mutable std::array<double, 128> widths_;
};

int ButtonOf(const QMouseEvent& event) {
    return event.button() == Qt::LeftButton ? 1 : event.button() == Qt::RightButton ? 2 : 4;
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

// Black or white on a colour number; working it out takes longer than painting with it.
const QColor& InkOn(std::uint32_t number) {
    static QHash<std::uint32_t, QColor> inks;
    auto ink = inks.find(number);
    if (ink == inks.end()) ink = inks.insert(number, ReadableOn(ColourOf(number)));
    return *ink;
}

// Paints a cell in the colour of its value. A selected cell keeps its colour within a frame.
class CellPainter : public QStyledItemDelegate {
  public:
    explicit CellPainter(MapGridView* grid) : QStyledItemDelegate(grid), grid_(grid) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto* model = static_cast<const MapModel*>(index.model());
        const std::uint32_t number = model->CellColour(index.row(), index.column());
        const QColor back = number != 0 ? ColourOf(number) : option.palette.color(QPalette::Base);
        const QColor ink = number != 0 ? InkOn(number) : option.palette.color(QPalette::Text);
        QRect inner = option.rect;
        const auto ring = [&](int width, const QColor& colour) {
            painter->fillRect(inner, colour);
            inner.adjust(width, width, -width, -width);
        };
        if (option.state.testFlag(QStyle::State_Selected)) {
            ring(2, option.palette.color(QPalette::Highlight));
            if (grid_->IsCurrent(index)) ring(1, ink);
        }
        painter->fillRect(inner, back);
        painter->setFont(grid_->CellFont());
        painter->setPen(ink);
        DrawCellText(painter, option.rect, grid_->Padding(), model->ColumnAlignment(index.column()),
                     model->CellText(index.row(), index.column()));
    }

  private:
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

const QString& MapModel::CellText(int row, int column) const {
    return texts_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
}

std::uint32_t MapModel::CellColour(int row, int column) const {
    return colours_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
}

MapModel::Changes MapModel::Take() {
    Changes changes{};
    const MapGrid& record = RecordOf(map_);
    for (std::size_t row = 0; row < kMapSide; ++row) {
        for (std::size_t column = 0; column < kMapSide; ++column) {
            QString& text = texts_[row][column];
            std::uint32_t& colour = colours_[row][column];
            const std::string& newText = record.TextMatrix[row + 1][column + 1];
            const std::uint32_t newColour = record.CellBackColor[row + 1][column + 1];
            const bool sameText = text == QLatin1String(newText.data(), static_cast<int>(newText.size()));
            if (sameText && colour == newColour) continue;
            if (!sameText) text = Shown(newText);
            colour = newColour;
            changes[row][column] = true;
        }
    }
    return changes;
}

Qt::Alignment MapModel::ColumnAlignment(int column) const {
    const int alignment = RecordOf(map_).ColAlignment[static_cast<std::size_t>(column + 1)];
    return (alignment <= kLeft ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter;
}

QVariant MapModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    switch (role) {
        case Qt::DisplayRole:
            return Shown(RecordOf(map_).TextMatrix[static_cast<std::size_t>(index.row() + 1)]
                                                  [static_cast<std::size_t>(index.column() + 1)]);
        case Qt::TextAlignmentRole:
            return static_cast<int>(ColumnAlignment(index.column()));
        case Qt::BackgroundRole: {
            const std::uint32_t number =
                RecordOf(map_).CellBackColor[static_cast<std::size_t>(index.row() + 1)]
                                            [static_cast<std::size_t>(index.column() + 1)];
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
    return Shown(columns ? RecordOf(map_).ColumnHead[at] : RecordOf(map_).RowHead[at]);
}

MapGridView::MapGridView(int map, Runner run, Popup popup, QWidget* parent)
    : QTableView(parent), model_(new MapModel(map, this)), run_(std::move(run)), popup_(std::move(popup)) {
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
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { TakeSelection(); });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { TakeSelection(); });
    for (QHeaderView* heads : {horizontalHeader(), verticalHeader()}) {
        const bool columns = heads == horizontalHeader();
        connect(heads, &QHeaderView::sectionPressed, this, [=, this] { BeginAtLabels(columns, !columns); });
        connect(heads, &QHeaderView::sectionEntered, this, [=, this] { BeginAtLabels(columns, !columns); });
    }
    connect(findChild<QAbstractButton*>(), &QAbstractButton::clicked, this,
            [this] { BeginAtLabels(true, true); });
}

MapGrid& MapGridView::Record() const {
    return RecordOf(model_->Map());
}

bool MapGridView::IsCurrent(const QModelIndex& cell) const {
    return cell.row() + 1 == selection_.Row && cell.column() + 1 == selection_.Col;
}

// The selection began at the corner that lies opposite to the current cell.
void MapGridView::TakeSelection() {
    if (showsSelection_) return;
    QRect area;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        area |= QRect(QPoint(range.left(), range.top()), QPoint(range.right(), range.bottom()));
    }
    const QModelIndex current = currentIndex();
    if (area.isEmpty()) {
        if (!current.isValid()) return;
        area = QRect(current.column(), current.row(), 1, 1);
    }
    const bool rowAtEdge = current.row() == area.top() || current.row() == area.bottom();
    const bool columnAtEdge = current.column() == area.left() || current.column() == area.right();
    GridSelection taken{area.top() + 1, area.left() + 1, area.bottom() + 1, area.right() + 1};
    if (rowAtEdge && columnAtEdge) {
        if (current.row() == area.top()) std::swap(taken.Row, taken.RowSel);
        if (current.column() == area.left()) std::swap(taken.Col, taken.ColSel);
    }
    selection_ = Record().Selection = taken;
    viewport()->update();
}

// Whole columns, chosen by their labels, begin in the first row, whole rows in the first column.
void MapGridView::BeginAtLabels(bool inFirstRow, bool inFirstColumn) {
    if (inFirstRow && selection_.Row > selection_.RowSel) std::swap(selection_.Row, selection_.RowSel);
    if (inFirstColumn && selection_.Col > selection_.ColSel) std::swap(selection_.Col, selection_.ColSel);
    Record().Selection = selection_;
    viewport()->update();
}

void MapGridView::ShowSelection() {
    if (selection_ == Record().Selection) return;
    selection_ = Record().Selection;
    showsSelection_ = true;
    const auto cell = [this](int row, int column) { return model_->index(row - 1, column - 1); };
    const GridSelection& s = selection_;
    selectionModel()->select(QItemSelection(cell(std::min(s.Row, s.RowSel), std::min(s.Col, s.ColSel)),
                                            cell(std::max(s.Row, s.RowSel), std::max(s.Col, s.ColSel))),
                             QItemSelectionModel::ClearAndSelect);
    // A selection that holds the current cell was not asked to scroll to its end.
    if (!selectionModel()->isSelected(currentIndex())) {
        selectionModel()->setCurrentIndex(cell(s.RowSel, s.ColSel), QItemSelectionModel::NoUpdate);
    }
    showsSelection_ = false;
    viewport()->update();
}

void MapGridView::Mirror() {
    ShowSelection();
    if (revision_ == Record().Revision || !Record().Redraw || !isVisible()) return;
    revision_ = Record().Revision;
    ShowCells();
}

void MapGridView::ShowCells() {
    const MapModel::Changes changes = model_->Take();
    LayOut();
    // Many small pieces take longer to paint than the whole that they lie in.
    constexpr int kFew = 8;
    QRect all;
    int count = 0;
    for (int row = 0; row < kMapSide; ++row) {
        for (int column = 0; column < kMapSide; ++column) {
            if (!changes[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]) continue;
            const QRect cell = visualRect(model_->index(row, column));
            all |= cell;
            if (++count <= kFew) viewport()->update(cell);
        }
    }
    if (count > kFew) viewport()->update(all);
    horizontalHeader()->viewport()->update();
    verticalHeader()->viewport()->update();
}

void MapGridView::PlaceBox(QWidget* box) {
    constexpr int kLeft = 3, kTaller = 7;
    box_ = box;
    box->setFont(cellFont_);
    const QModelIndex current = model_->index(selection_.Row - 1, selection_.Col - 1);
    scrollTo(current);
    const QRect cell = visualRect(current);
    const int formula = QFontMetrics(cellFont_).horizontalAdvance(QLatin1String("*0.0000")) + 14;
    QRect place(cell.left() - kLeft, cell.top(), std::max(cell.width() - 1, formula),
                cell.height() + kTaller);
    place.moveLeft(std::clamp(place.left(), 0, std::max(0, viewport()->width() - place.width())));
    place.moveTop(std::clamp(place.top(), 0, std::max(0, viewport()->height() - place.height())));
    box->setGeometry(place);
}

void MapGridView::keyPressEvent(QKeyEvent* event) {
    const MapKey key = KeyOf(*event);
    if (key.Code == 0) {
        QTableView::keyPressEvent(event);
        return;
    }
    run_([&] { Grid_KeyDown(model_->Map(), key.Code, key.Shift, event->isAutoRepeat()); });
    event->accept();
}

void MapGridView::mousePressEvent(QMouseEvent* event) {
    Grid_MouseDown(model_->Map(), ButtonOf(*event));
    // The menu is for what is selected; beside it, for the cell under the pointer.
    const bool inSelection = selectionModel()->isSelected(indexAt(event->position().toPoint()));
    if (event->button() == Qt::RightButton && inSelection) {
        event->accept();
        return;
    }
    QTableView::mousePressEvent(event);
}

void MapGridView::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    if (event->button() == Qt::RightButton) popup_(model_->Map(), event->globalPosition().toPoint());
}

void MapGridView::mouseDoubleClickEvent(QMouseEvent* event) {
    Grid_MouseDown(model_->Map(), ButtonOf(*event));
    if (!indexAt(event->position().toPoint()).isValid()) return;
    run_([this] { Grid_DblClick(model_->Map()); });
}

// The key that asks for a menu; the mouse has asked already.
void MapGridView::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const QModelIndex cell = model_->index(selection_.Row - 1, selection_.Col - 1);
        popup_(model_->Map(), viewport()->mapToGlobal(visualRect(cell).center()));
    }
    event->accept();
}

int MapGridView::LongestText(const QFont& font) const {
    const TextWidths widths(font);
    double longest = 0;
    for (int line = 0; line < kMapSide; ++line) {
        for (int column = 0; column < kMapSide; ++column) {
            longest = std::max(longest, widths.Of(model_->CellText(line, column)));
        }
        for (const auto orientation : {Qt::Horizontal, Qt::Vertical}) {
            longest = std::max(longest,
                               widths.Of(model_->headerData(line, orientation, Qt::DisplayRole).toString()));
        }
    }
    return static_cast<int>(std::ceil(longest));
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
    const MapGrid& record = Record();
    std::array<double, kMapSide + 1> share{};
    double sum = 0;
    for (std::size_t c = 0; c < share.size(); ++c) {
        share[c] = record.ColWidth[c] > 0 ? double{record.ColWidth[c]} : c == 0 ? 1.2 : 1.0;
        sum += share[c];
    }

    constexpr int kAround = 2 * kLeastPadding + 3;  // with the grid line
    const int longest = std::max(1, LongestText(font()));
    const int room = static_cast<int>(total * share[1] / sum) - kAround;
    const double factor = std::clamp(double(room) / longest, kSmallestFont, 1.0);
    cellFont_ = factor < 1 ? Scaled(font(), factor) : font();
    const int fitted = LongestText(cellFont_);
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
    if (box_ != nullptr && box_->isVisible() && box_->parentWidget() == viewport()) PlaceBox(box_);
}

void MapGridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    Record().Width = static_cast<float>(width());
    LayOut();
}

void MapGridView::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    revision_ = Record().Revision;
    ShowSelection();
    ShowCells();
}

void MapGridView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) LayOut();
}

}  // namespace zandrel
