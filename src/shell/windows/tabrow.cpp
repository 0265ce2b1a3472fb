#include "shell/windows/tabrow.h"

#include <QTabBar>
#include <algorithm>

#include "shell/windows/shown.h"

namespace zandrel {

TabRow::TabRow(QWidget* parent) : QTabWidget(parent) {
    tabBar()->setExpanding(false);
    setElideMode(Qt::ElideNone);
}

void TabRow::FitCaptions() {
    constexpr double kSmallest = 0.85;  // below that the row scrolls
    int letters = 0;
    for (int tab = 0; tab < count(); ++tab) {
        if (isTabVisible(tab)) letters += fontMetrics().horizontalAdvance(tabText(tab));
    }
    QFont wanted = font();
    tabBar()->setFont(wanted);
    const int missing = tabBar()->sizeHint().width() - width();
    if (missing > 0 && letters > 0) {
        wanted = Scaled(wanted, std::clamp(1 - double(missing + count()) / letters, kSmallest, 1.0));
    }
    tabBar()->setFont(wanted);
}

void TabRow::resizeEvent(QResizeEvent* event) {
    QTabWidget::resizeEvent(event);
    FitCaptions();
}

}  // namespace zandrel
