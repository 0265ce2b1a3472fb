// A person at the window: clicks, keys and looks. Every routine acts through events on real widgets, and
// what can't be found or clicked fails the tour.
#pragma once

#include <QPalette>
#include <QString>
#include <functional>
#include <string>
#include <vector>

class QWidget;

namespace zandrel {

/// The tour has failed at its present step; main() prints `Reason` and ends with 1.
struct TourFailure {
    QString Reason;
};

[[noreturn]] void Fail(const QString& reason);
void Require(bool condition, const QString& otherwise);

/// Where the pictures go, and the window that is driven.
void BeginTour(QWidget& window, const QString& folder);

/// Runs one step and prints its name, what it found and how long it took. Message boxes that come up
/// within it have to be those announced by `Expect`, in order.
void Step(const QString& name, const std::function<QString()>& action);

/// A message box that begins with `text` will come up in this step; the button with `caption` is clicked.
void Expect(const QString& text, const QString& caption);

/// A desktop makes the window active again when a menu or a message over it has closed; the offscreen screen
/// does not.
void ComeBack();

/// The visible widget of that name (a control's name with its index, as "txtSetting(500)").
QWidget& Find(const QString& name);

/// True if a widget of that name is on the screen now.
bool OnScreen(const QString& name);

void Click(const QString& name);

/// Clicks the text box and types `text` in place of what it holds. The box keeps the focus.
void TypeInto(const QString& name, const QString& text);

/// A key for whatever has the focus.
void Press(int key, int modifiers = 0);

/// Clicks the item of the menu, which stands open.
void ChooseInOpenMenu(const QString& menu, const QString& item);

/// Chooses an item that opens a file dialog, types `path` there and presses Enter.
void ChooseFileBy(const std::vector<QString>& item, const QString& path);

/// Opens the menus of that path one by one and clicks the item ("mnuPort", "mnuCom(0)").
void ChooseItem(const std::vector<QString>& path);

/// Clicks the tab of index `tab`.
void ChooseTab(int tab);

/// Chooses entry `index` of a list with the keyboard.
void ChooseEntry(const QString& name, int index);

/// Turns of the event loop until `condition` holds; fails after `milliseconds`.
void WaitUntil(const std::function<bool()>& condition, int milliseconds, const QString& otherwise);

/// Runs `action` once as soon as `condition` holds, while the step goes on.
void Once(const std::function<bool()>& condition, const std::function<void()>& action);

/// Leaves a picture of the window, with whatever stands over it.
void Picture(const QString& name);

/// Leaves a picture of one widget alone.
void PictureOf(const QString& name, QWidget& widget);

/// A dark palette, as a desktop may have it.
QPalette DarkPalette();

/// The pictures left so far.
int PictureCount();

}  // namespace zandrel
