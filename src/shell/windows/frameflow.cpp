#include "shell/windows/frameflow.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace zandrel {
namespace {

// A frame with word-wrapped notes is content with its least width; all others want what they hint.
int WidthOf(const QLayoutItem* item) {
    const int least = item->minimumSize().width();
    return item->hasHeightForWidth() ? least : std::max(least, item->sizeHint().width());
}

int HeightOf(const QLayoutItem* item, int width) {
    return item->hasHeightForWidth() ? item->heightForWidth(width) : item->sizeHint().height();
}

}  // namespace

FrameFlow::FrameFlow(QWidget* parent) : QLayout(parent) {}

FrameFlow::~FrameFlow() {
    for (QLayoutItem* item : items_) delete item;
}

void FrameFlow::addItem(QLayoutItem* item) {
    items_.push_back(item);
}

int FrameFlow::count() const {
    return static_cast<int>(items_.size());
}

QLayoutItem* FrameFlow::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* FrameFlow::takeAt(int index) {
    QLayoutItem* item = itemAt(index);
    if (item != nullptr) items_.erase(items_.begin() + index);
    return item;
}

int FrameFlow::Gap() const {
    const int given = spacing();
    return given >= 0 ? given : 8;
}

// Fills columns of at most `height` one after the other. Returns the width that they take.
int FrameFlow::Fill(Plan& plan, int height) const {
    const int gap = Gap();
    plan.Widths.assign(1, 0);
    int bottom = 0;
    for (Place& place : plan.Places) {
        if (bottom > 0 && bottom + place.Wanted.height() > height) {
            plan.Widths.push_back(0);
            bottom = 0;
        }
        place.Column = plan.Widths.size() - 1;
        plan.Widths.back() = std::max(plan.Widths.back(), place.Wanted.width());
        bottom += place.Wanted.height() + gap;
    }
    int width = gap * static_cast<int>(plan.Widths.size() - 1);
    for (const int each : plan.Widths) width += each;
    return width;
}

// The lowest column height whose columns fit beside each other; one column if none does.
FrameFlow::Plan FrameFlow::PlanFor(int width) const {
    Plan plan;
    for (QLayoutItem* item : items_) {
        if (item->isEmpty()) continue;
        const int wanted = WidthOf(item);
        plan.Places.push_back({item, QSize(wanted, HeightOf(item, wanted))});
    }
    if (plan.Places.empty()) return plan;
    std::vector<int> heights;  // of all runs of neighbours: no other column height makes a difference
    for (std::size_t first = 0; first < plan.Places.size(); ++first) {
        int height = 0;
        for (std::size_t last = first; last < plan.Places.size(); ++last) {
            height += plan.Places[last].Wanted.height();
            heights.push_back(height);
            height += Gap();
        }
    }
    std::sort(heights.begin(), heights.end());
    int tallest = 0;
    for (const Place& place : plan.Places) tallest = std::max(tallest, place.Wanted.height());
    int taken = 0;
    for (const int height : heights) {
        if (height < tallest) continue;
        taken = Fill(plan, height);
        if (taken <= width) break;
    }
    if (taken > width) taken = Fill(plan, QLAYOUTSIZE_MAX);
    Settle(plan, std::max(0, width - taken));
    return plan;
}

// Columns take up to a sixth more than they need where the window has the room; frames are then placed for
// good, since one with word-wrapped notes is lower in a wider column.
void FrameFlow::Settle(Plan& plan, int room) const {
    const int gap = Gap();
    const auto columns = static_cast<int>(plan.Widths.size());
    for (int& width : plan.Widths) width += std::min(width / 6, room / columns);
    std::vector<int> lefts(plan.Widths.size(), 0);
    for (std::size_t i = 1; i < lefts.size(); ++i) lefts[i] = lefts[i - 1] + plan.Widths[i - 1] + gap;
    std::vector<int> bottoms(plan.Widths.size(), 0);
    for (Place& place : plan.Places) {
        const int width = plan.Widths[place.Column];
        const int height = HeightOf(place.Item, width);
        place.Rect = QRect(lefts[place.Column], bottoms[place.Column], width, height);
        bottoms[place.Column] += height + gap;
    }
    plan.Height = *std::max_element(bottoms.begin(), bottoms.end()) - gap;
}

int FrameFlow::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    return PlanFor(width - margins.left() - margins.right()).Height + margins.top() + margins.bottom();
}

QSize FrameFlow::minimumSize() const {
    int width = 0;
    for (const QLayoutItem* item : items_) {
        if (!item->isEmpty()) width = std::max(width, WidthOf(item));
    }
    const QMargins margins = contentsMargins();
    return {width + margins.left() + margins.right(), margins.top() + margins.bottom()};
}

QSize FrameFlow::sizeHint() const {
    const QSize least = minimumSize();
    const int width = least.width() * 3;
    return {width, heightForWidth(width)};
}

void FrameFlow::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    const QRect inner = rect.marginsRemoved(contentsMargins());
    for (const Place& place : PlanFor(inner.width()).Places) {
        place.Item->setGeometry(place.Rect.translated(inner.topLeft()));
    }
}

}  // namespace zandrel
