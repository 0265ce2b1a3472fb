#include "shell/windows/windowfixture.h"

#include <QApplication>
#include <QTabBar>
#include <QtTest/QTest>
#include <algorithm>

#include "image/image.h"
#include "tuning/binding.h"

namespace zandrel {
WindowTest::WindowTest() = default;

void WindowTest::ShowAt(int width, int height) {
    Main.show();
    Main.BuildAllPages();
    Main.resize(width, height);
    QApplication::setActiveWindow(&Main);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Main));
    Settle();
}

std::string WindowTest::Pattern(int block, int length) {
    std::string bytes;
    for (int i = 0; i < length; ++i) bytes += static_cast<char>((block * 5 + i * 37 + 11) & 255);
    return bytes;
}

void WindowTest::ShowBuild(const std::string& key) {
    ApplyBuild(key);
    for (int block = 0; block < 256; ++block) {
        const auto at = static_cast<std::size_t>(block);
        if (BlockRead[at]) ReadData[at] = Pattern(block, BlockLength[at]);
    }
    DisplayAllData();
    Main.Mirror();
    Settle();
}

void WindowTest::ClickTab(int tab) {
    QTabBar* bar = Tabs()->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(tab).center());
    Settle();
}

void WindowTest::Click(QWidget* widget) {
    // A check box answers where its mark and text are.
    QTest::mouseClick(widget, Qt::LeftButton, {},
                      QPoint(std::min(10, widget->width() / 2), widget->height() / 2));
    Settle();
}

namespace {

class PaintWatch : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* event) override {
        Painted |= event->type() == QEvent::Paint;
        return false;
    }
    bool Painted = false;
};

}  // namespace

// What is asked for before is painted together with the status bar's text.
void WindowTest::PaintOut() {
    auto* marker = Named(QStringLiteral("lblPort"));
    PaintWatch watch;
    marker->installEventFilter(&watch);
    marker->update();
    EXPECT_TRUE(QTest::qWaitFor([&watch] { return watch.Painted; }, 2000));
    Settle();
}

void WindowTest::Settle() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

}  // namespace zandrel
