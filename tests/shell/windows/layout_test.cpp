// Nothing is cut off and nothing overlaps, in a small and in a large window.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <set>

#include "shell/windows/windowfixture.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

struct Case {
    const char* Build;
    int Width, Height;
};

class Layout : public WindowTest, public testing::WithParamInterface<Case> {
  protected:
    QScrollArea* PageOf(int tab) { return Tabs()->widget(tab)->findChild<QScrollArea*>(); }

    static QList<QGroupBox*> FramesIn(QScrollArea* page) {
        QList<QGroupBox*> shown;
        for (auto* box : page->widget()->findChildren<QGroupBox*>()) {
            if (box->isVisible()) shown.push_back(box);
        }
        return shown;
    }

    static void ExpectWhole(QWidget* widget) {
        const std::string name = widget->objectName().toStdString();
        const auto* box = widget->parentWidget();
        EXPECT_TRUE(box->contentsRect().contains(widget->geometry())) << name;
        const int text = widget->sizeHint().width();
        if (auto* label = qobject_cast<QLabel*>(widget); label != nullptr && label->wordWrap()) {
            EXPECT_LE(label->heightForWidth(label->width()), label->height()) << name;
        } else if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
            const QFontMetrics metrics = edit->fontMetrics();
            const int around = text - 17 * metrics.horizontalAdvance(QLatin1Char('x'));
            EXPECT_LE(metrics.horizontalAdvance(edit->text()) + around, edit->width()) << name;
            EXPECT_LE(edit->sizeHint().height(), edit->height()) << name;
        } else if (label != nullptr || qobject_cast<QAbstractButton*>(widget) != nullptr) {
            EXPECT_LE(text, widget->width()) << name;
            EXPECT_LE(widget->sizeHint().height(), widget->height()) << name;
        }
    }

    static void ExpectFramesApart(const QList<QGroupBox*>& frames) {
        for (const auto* a : frames) {
            EXPECT_LE(a->fontMetrics().horizontalAdvance(a->title()), a->width()) << a->title().toStdString();
            for (const auto* b : frames) {
                if (a == b) continue;
                EXPECT_FALSE(a->geometry().intersects(b->geometry()))
                    << a->objectName().toStdString() << " " << b->objectName().toStdString();
            }
        }
    }
};

TEST_P(Layout, EveryShownFrame_HoldsItsControlsWhole) {
    ShowAt(GetParam().Width, GetParam().Height);
    ShowBuild(GetParam().Build);
    for (int tab = kFirstSettingsTab; tab < kGeneralTab; ++tab) {
        if (!SSTab1.TabVisible[tab]) continue;
        ClickTab(tab);
        QScrollArea* page = PageOf(tab);
        EXPECT_EQ(page->horizontalScrollBar()->maximum(), 0) << tab;
        const auto frames = FramesIn(page);
        EXPECT_FALSE(frames.isEmpty()) << tab;
        ExpectFramesApart(frames);
        for (auto* box : frames) {
            EXPECT_TRUE(box->parentWidget()->rect().contains(box->geometry()))
                << box->objectName().toStdString();
            for (auto* child : box->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
                if (child->isVisible()) ExpectWhole(child);
            }
        }
    }
}

std::string CaseName(const testing::TestParamInfo<Case>& info) {
    std::string name = info.param.Build;
    for (char& letter : name) {
        if (!std::isalnum(static_cast<unsigned char>(letter))) letter = '_';
    }
    return name + "_" + std::to_string(info.param.Width);
}

constexpr Case kCases[] = {
    {"RB26DETT6.42", 747, 542},   {"RB26DETT6.42", 1280, 800}, {"13B-REW7.07", 747, 542},
    {"13B-REW7.07", 1280, 800},   {"1JZGT-AT3.54", 747, 542},  {"1JZGT-AT3.54", 1280, 800},
    {"B18C2.02B", 747, 542},      {"B18C2.02B", 1280, 800},    {"RB26DETT3.11D", 747, 542},
    {"RB26DETT3.11D", 1280, 800},
};
INSTANTIATE_TEST_SUITE_P(Windows, Layout, testing::ValuesIn(kCases), CaseName);

class Flow : public Layout {};

TEST_F(Flow, WiderWindow_HasMoreColumnsAndLessHeight) {
    ShowAt(747, 542);
    ShowBuild("13B-REW7.07");
    ClickTab(6);
    const auto lefts = [this] {
        std::set<int> columns;
        for (const auto* box : FramesIn(PageOf(6))) columns.insert(box->x());
        return columns.size();
    };
    const auto narrow = lefts();
    Main.resize(1600, 1000);
    Settle();
    EXPECT_GT(lefts(), narrow);
    EXPECT_GE(narrow, 3U);
    Main.resize(420, 700);
    Settle();
    EXPECT_LT(lefts(), narrow);
}

TEST_F(Flow, HiddenFrames_TakeNoRoom) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(6);
    auto* boost = Member<QGroupBox>("FraSettings", 100);
    auto* first = Member<QGroupBox>("FraSettings", 120);
    const QPoint corner = first->pos();
    ASSERT_NE(boost->pos(), corner);
    for (auto& [index, frame] : FraSettings) {
        if (frame.Tab == 6 && index != 100) frame.Visible = false;
    }
    Main.Mirror();
    Settle();
    EXPECT_EQ(boost->pos(), corner);
    EXPECT_EQ(FramesIn(PageOf(6)).size(), 1);
}

TEST_F(Flow, AllTabs_StandInOneRow) {
    ShowAt(747, 542);
    ShowBuild("B18C2.02B");
    const QTabBar* bar = Tabs()->tabBar();
    int last = -1;
    for (int tab = 0; tab < kTabs; ++tab) {
        if (!SSTab1.TabVisible[tab]) continue;
        const QRect rect = bar->tabRect(tab);
        EXPECT_GT(rect.left(), last) << tab;
        EXPECT_LE(rect.right(), Main.width()) << tab;
        EXPECT_LT(bar->fontMetrics().horizontalAdvance(bar->tabText(tab)), rect.width()) << tab;
        last = rect.left();
    }
}

TEST_F(Flow, ButtonsStandInOneRowAboveTheTabs) {
    ShowAt(747, 542);
    const int top = Tabs()->mapTo(&Main, QPoint(0, 0)).y();
    int left = -1;
    for (const char* name : {"cmdReadAll", "cmdWriteAll", "cmdUpdate", "optAutoUpdate"}) {
        auto* button = Named<QAbstractButton>(QString::fromLatin1(name));
        const QPoint place = button->mapTo(&Main, QPoint(0, 0));
        EXPECT_LE(place.y() + button->height(), top) << name;
        EXPECT_GT(place.x(), left) << name;
        EXPECT_GE(button->width(), button->sizeHint().width()) << name;
        left = place.x();
    }
}

}  // namespace
}  // namespace zandrel
