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

FrameFlow::Plan FrameFlow::PlanFor(int width, int columns) const {
    const int gap = Gap();
    const int share = (width - (columns - 1) * gap) / columns;
    if (share < 1) return {{}, QLAYOUTSIZE_MAX, QLAYOUTSIZE_MAX};
    const auto spanOf = [&](const QLayoutItem* item) {
        return std::clamp((WidthOf(item) + gap + share + gap - 1) / (share + gap), 1, columns);
    };
    // Columns no wider than the frames need, or a little more where that fills the window.
    int needed = 0;
    for (const QLayoutItem* item : items_) {
        if (item->isEmpty()) continue;
        const int span = spanOf(item);
        needed = std::max(needed, (WidthOf(item) - (span - 1) * gap + span - 1) / span);
    }
    const int column = std::min(share, std::max(needed + needed / 4, 1));

    Plan plan;
    int spread = 0;
    std::vector<int> bottoms(static_cast<std::size_t>(columns), 0);
    for (QLayoutItem* item : items_) {
        if (item->isEmpty()) continue;
        const int span = spanOf(item);
        spread += span - 1;
        int best = 0;
        int top = QLAYOUTSIZE_MAX;
        for (int first = 0; first + span <= columns; ++first) {
            const int under = *std::max_element(bottoms.begin() + first, bottoms.begin() + first + span);
            if (under < top) {
                top = under;
                best = first;
            }
        }
        const int itemWidth = std::max(span * column + (span - 1) * gap, std::min(WidthOf(item), width));
        const int height = HeightOf(item, itemWidth);
        plan.Places.push_back({item, QRect(best * (column + gap), top, itemWidth, height)});
        std::fill(bottoms.begin() + best, bottoms.begin() + best + span, top + height + gap);
    }
    plan.Height = std::max(0, *std::max_element(bottoms.begin(), bottoms.end()) - gap);
    // Frames over several columns look restless: they have to save some height.
    plan.Cost = plan.Height + spread * gap * 3;
    return plan;
}

FrameFlow::Plan FrameFlow::BestPlan(int width) const {
    constexpr int kMostColumns = 16;
    int narrowest = QLAYOUTSIZE_MAX;
    for (const QLayoutItem* item : items_) {
        if (!item->isEmpty()) narrowest = std::min(narrowest, WidthOf(item));
    }
    const int most = std::clamp((width + Gap()) / (std::max(narrowest, 1) + Gap()), 1, kMostColumns);
    Plan best = PlanFor(width, 1);
    for (int columns = 2; columns <= most; ++columns) {
        Plan plan = PlanFor(width, columns);
        if (plan.Cost < best.Cost) best = std::move(plan);
    }
    return best;
}

int FrameFlow::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    return BestPlan(width - margins.left() - margins.right()).Height + margins.top() + margins.bottom();
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
    for (const Place& place : BestPlan(inner.width()).Places) {
        place.Item->setGeometry(place.Rect.translated(inner.topLeft()));
    }
}

}  // namespace zandrel
