#include "person.h"

#include <signal.h>
#include <unistd.h>

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <deque>

namespace zandrel {
namespace {

struct ExpectedBox {
    QString Text, Caption;
};

QPointer<QWidget> Window;
QDir Folder;
std::deque<ExpectedBox> Boxes;
QString Surprise;  // a box that nobody announced, or no box where one was announced
int Pictures = 0;
QElapsedTimer Clock;

QAbstractButton* ButtonOf(const QMessageBox& box, const QString& caption) {
    for (QAbstractButton* button : box.buttons()) {
        if (QString(button->text()).remove(QLatin1Char('&')) == caption) return button;
    }
    return nullptr;
}

// Presses Cancel in whatever progress window stands on the screen.
void CancelProgress() {
    for (const char* name : {"frmProgress2", "frmProgressScan"}) {
        auto* window = Window->findChild<QWidget*>(QLatin1String(name));
        auto* cancel =
            window == nullptr ? nullptr : window->findChild<QAbstractButton*>(QStringLiteral("cmdCancel"));
        if (cancel != nullptr && cancel->isVisible() && cancel->isEnabled())
            QTest::mouseClick(cancel, Qt::LeftButton);
    }
}

// A step that takes so long hangs.
constexpr unsigned kLongestStepSeconds = 300;

void StepHangs(int) {
    constexpr char text[] = "            FAILED: the step hangs\n";
    static_cast<void>(!write(STDOUT_FILENO, text, sizeof text - 1));
    _exit(1);
}

// Looks for a message box and answers it as a person told beforehand would.
void AnswerBoxes() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        if (box == nullptr || !box->isVisible() || box->property("answered").toBool()) continue;
        std::printf("            message: %s\n",
                    qPrintable(box->text().replace(QLatin1Char('\n'), QStringLiteral(" / "))));
        QAbstractButton* button = nullptr;
        if (!Boxes.empty() && box->text().startsWith(Boxes.front().Text)) {
            button = ButtonOf(*box, Boxes.front().Caption);
            Boxes.pop_front();
        } else if (Surprise.isEmpty()) {
            Surprise = QStringLiteral("unexpected message: ") + box->text();
            if (Surprise.contains(QStringLiteral("is not yet supported"))) {
                std::printf("            its scan runs now, two minutes at the most\n");
            }
        }
        if (button == nullptr) button = box->buttons().constFirst();
        box->setProperty("answered", true);
        QTest::mouseClick(button, Qt::LeftButton);
        break;
    }
    // What follows an unexpected box tells nothing more, but for the scan of an unknown build.
    if (!Surprise.isEmpty() && !Surprise.contains(QStringLiteral("is not yet supported"))) CancelProgress();
}

QMenu& MenuNamed(const QString& name) {
    auto* menu = Window->findChild<QMenu*>(name);
    if (menu == nullptr) Fail(QStringLiteral("no menu ") + name);
    return *menu;
}

void Keep(const QPixmap& picture, const QString& name) {
    const QString file = QStringLiteral("%1-%2.png").arg(++Pictures, 2, 10, QLatin1Char('0')).arg(name);
    Require(picture.save(Folder.filePath(file)), QStringLiteral("can't write ") + file);
}

}  // namespace

void Fail(const QString& reason) {
    throw TourFailure{reason};
}

void Require(bool condition, const QString& otherwise) {
    if (!condition) Fail(otherwise);
}

void BeginTour(QWidget& window, const QString& folder) {
    Window = &window;
    Folder = QDir(folder);
    Clock.start();
    auto* watch = new QTimer(&window);
    QObject::connect(watch, &QTimer::timeout, &window, [] { AnswerBoxes(); });
    watch->start(15);
}

void Step(const QString& name, const std::function<QString()>& action) {
    std::printf("[%7.3f s] %s\n", static_cast<double>(Clock.elapsed()) / 1000, qPrintable(name));
    std::fflush(stdout);
    Boxes.clear();
    Surprise.clear();
    QElapsedTimer step;
    step.start();
    signal(SIGALRM, StepHangs);
    alarm(kLongestStepSeconds);
    QString found;
    try {
        ComeBack();
        found = action();
    } catch (const TourFailure& failure) {
        // What went wrong first is the reason.
        Fail(Surprise.isEmpty() ? failure.Reason : Surprise);
    }
    alarm(0);
    QTest::qWait(20);  // a box that the step has left behind shows itself
    if (!Surprise.isEmpty()) Fail(Surprise);
    if (!Boxes.empty()) Fail(QStringLiteral("this message did not come: ") + Boxes.front().Text);
    std::printf("            %s (%lld ms)\n", qPrintable(found.isEmpty() ? QStringLiteral("done") : found),
                static_cast<long long>(step.elapsed()));
    std::fflush(stdout);
}

void ComeBack() {
    if (!Window->isVisible()) return;
    QTest::qWait(5);
    if (Window->isActiveWindow() || QApplication::activeModalWidget() != nullptr) return;
    Window->activateWindow();
    WaitUntil([] { return Window->isActiveWindow(); }, 5000, QStringLiteral("the window is not active"));
}

void Expect(const QString& text, const QString& caption) {
    Boxes.push_back({text, caption});
}

bool OnScreen(const QString& name) {
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->objectName() == name && widget->isVisible()) return true;
    }
    return false;
}

QWidget& Find(const QString& name) {
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->objectName() == name && widget->isVisible()) return *widget;
    }
    Fail(name + QStringLiteral(" is not on the screen"));
}

void Click(const QString& name) {
    QWidget& widget = Find(name);
    Require(widget.isEnabled(), name + QStringLiteral(" can't be clicked: it is disabled"));
    QTest::mouseClick(&widget, Qt::LeftButton);
}

void TypeInto(const QString& name, const QString& text) {
    auto* box = qobject_cast<QLineEdit*>(&Find(name));
    Require(box != nullptr && box->isEnabled() && !box->isReadOnly(),
            name + QStringLiteral(" can't be typed into"));
    QTest::mouseClick(box, Qt::LeftButton);
    Require(box->hasFocus(), name + QStringLiteral(" does not take the focus"));
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box, text);
}

void Press(int key, int modifiers) {
    QWidget* focus = QApplication::focusWidget();
    Require(focus != nullptr, QStringLiteral("nothing has the focus"));
    QTest::keyClick(focus, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
}

void ChooseInOpenMenu(const QString& menu, const QString& item) {
    QMenu& open = MenuNamed(menu);
    WaitUntil([&open] { return open.isVisible(); }, 5000, menu + QStringLiteral(" did not open"));
    for (QAction* action : open.actions()) {
        if (action->objectName() != item) continue;
        Require(action->isVisible() && action->isEnabled(), item + QStringLiteral(" can't be chosen"));
        QTest::mouseClick(&open, Qt::LeftButton, {}, open.actionGeometry(action).center());
        ComeBack();
        return;
    }
    Fail(item + QStringLiteral(" is not in the menu"));
}

void ChooseItem(const std::vector<QString>& path) {
    QMenu& first = MenuNamed(path.front());
    auto* bar = Window->findChild<QMenuBar*>();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(first.menuAction()).center());
    QMenu* open = &first;
    for (std::size_t i = 1; i < path.size(); ++i) {
        WaitUntil([open] { return open->isVisible(); }, 5000,
                  open->objectName() + QStringLiteral(" did not open"));
        QAction* item = nullptr;
        for (QAction* action : open->actions()) {
            const bool submenu = action->menu() != nullptr && action->menu()->objectName() == path[i];
            if (action->objectName() == path[i] || submenu) item = action;
        }
        Require(item != nullptr && item->isVisible(), path[i] + QStringLiteral(" is not in the menu"));
        Require(item->isEnabled(), path[i] + QStringLiteral(" is disabled"));
        QMenu* next = item->menu();
        QTest::mouseClick(open, Qt::LeftButton, {}, open->actionGeometry(item).center());
        if (next != nullptr) open = next;
    }
    ComeBack();
}

void ChooseFileBy(const std::vector<QString>& item, const QString& path) {
    Once([] { return OnScreen(QStringLiteral("fileNameEdit")); },
         [path] {
             auto& name = static_cast<QLineEdit&>(Find(QStringLiteral("fileNameEdit")));
             name.setFocus();
             name.selectAll();
             QTest::keyClicks(&name, path);
             QTest::qWait(20);
             Picture(QStringLiteral("file-dialog"));
             // The names that the box offers would take the key, and a row that is selected goes before it.
             name.completer()->popup()->hide();
             for (auto* view : name.window()->findChildren<QAbstractItemView*>()) view->clearSelection();
             name.setText(path);
             QMetaObject::invokeMethod(name.window(), "accept", Qt::QueuedConnection);
         });
    ChooseItem(item);
    Require(!OnScreen(QStringLiteral("FileDialog")), QStringLiteral("the file dialog did not close"));
}

void ChooseTab(int tab) {
    auto* tabs = Window->findChild<QTabWidget*>(QStringLiteral("SSTab1"));
    Require(tabs != nullptr && tabs->isTabVisible(tab), QStringLiteral("tab %1 is not shown").arg(tab));
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(tab).center());
    Require(tabs->currentIndex() == tab, QStringLiteral("tab %1 did not come up").arg(tab));
}

void ChooseEntry(const QString& name, int index) {
    auto* list = qobject_cast<QComboBox*>(&Find(name));
    Require(list != nullptr && list->isEnabled(), name + QStringLiteral(" can't be chosen from"));
    list->setFocus();
    for (int presses = 0; list->currentIndex() != index && presses < 20; ++presses) {
        QTest::keyClick(list, list->currentIndex() < index ? Qt::Key_Down : Qt::Key_Up);
    }
    Require(list->currentIndex() == index, name + QStringLiteral(" does not follow the keys"));
}

void WaitUntil(const std::function<bool()>& condition, int milliseconds, const QString& otherwise) {
    if (!QTest::qWaitFor(condition, milliseconds)) Fail(otherwise);
}

void Once(const std::function<bool()>& condition, const std::function<void()>& action) {
    auto* look = new QTimer(Window);
    QObject::connect(look, &QTimer::timeout, Window, [look, condition, action] {
        if (!condition()) return;
        look->stop();
        look->deleteLater();
        // No exception may cross the event loop.
        try {
            action();
        } catch (const TourFailure& failure) {
            if (Surprise.isEmpty()) Surprise = failure.Reason;
            CancelProgress();
        }
    });
    look->start(10);
}

void Picture(const QString& name) {
    QPixmap picture = Window->grab();
    QPainter painter(&picture);
    // What stands over the window: menus and progress windows.
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget == Window || !widget->isVisible() || widget->isHidden()) continue;
        const QPixmap over = widget->grab();
        const QPoint place = widget->pos() - Window->pos();
        painter.drawPixmap(place, over);
        // A frame in place of the one that a desktop draws.
        painter.setPen(Window->palette().color(QPalette::Mid));
        painter.drawRect(QRect(place, widget->size()).adjusted(-1, -1, 0, 0));
    }
    painter.end();
    Keep(picture, name);
}

void PictureOf(const QString& name, QWidget& widget) {
    Keep(widget.grab(), name);
}

QPalette DarkPalette() {
    QPalette dark;
    const QColor window(0x2B, 0x2D, 0x30);
    const QColor base(0x1E, 0x1F, 0x22);
    const QColor text(0xE6, 0xE6, 0xE6);
    dark.setColor(QPalette::Window, window);
    dark.setColor(QPalette::WindowText, text);
    dark.setColor(QPalette::Base, base);
    dark.setColor(QPalette::AlternateBase, window);
    dark.setColor(QPalette::Text, text);
    dark.setColor(QPalette::Button, window.lighter(120));
    dark.setColor(QPalette::ButtonText, text);
    dark.setColor(QPalette::ToolTipBase, base);
    dark.setColor(QPalette::ToolTipText, text);
    dark.setColor(QPalette::PlaceholderText, text.darker(150));
    dark.setColor(QPalette::Light, window.lighter(130));
    dark.setColor(QPalette::Mid, QColor(0x4A, 0x4D, 0x52));
    dark.setColor(QPalette::Dark, base);
    dark.setColor(QPalette::Shadow, Qt::black);
    dark.setColor(QPalette::Highlight, QColor(0x3D, 0x7D, 0xD8));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        dark.setColor(QPalette::Disabled, role, QColor(0x8A, 0x8C, 0x90));
    }
    // The shadow of a text that is disabled.
    dark.setColor(QPalette::Disabled, QPalette::Light, base);
    return dark;
}

int PictureCount() {
    return Pictures;
}

}  // namespace zandrel
