// The real main window, driven by the events that a person causes.
#pragma once

#include <QAction>
#include <QTabWidget>
#include <QWidget>
#include <string>

#include "shell/windows/frmMain.h"
#include "shell/windows/shown.h"
#include "support/cleanstate.h"

namespace zandrel {

class WindowTest : public CleanState {
  protected:
    WindowTest();

    /// Shows the window with all its pages, `width` by `height` pixels.
    void ShowAt(int width, int height);

    /// Shows build `key` with patterns in all its blocks.
    void ShowBuild(const std::string& key);

    /// The pattern of `block`: every byte differs from its neighbours.
    static std::string Pattern(int block, int length);

    template <class Widget = QWidget>
    Widget* Named(const QString& name) {
        auto* widget = Main.findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name.toStdString();
        return widget;
    }
    template <class Widget = QWidget>
    Widget* Member(const char* array, int index) {
        return Named<Widget>(MemberName(array, index));
    }
    QAction* Item(const QString& name) { return Named<QAction>(name); }
    QTabWidget* Tabs() { return Named<QTabWidget>(QStringLiteral("SSTab1")); }

    /// Clicks the tab as a person does.
    void ClickTab(int tab);

    static void Click(QWidget* widget);

    /// Lets everything be painted that waits to be.
    void PaintOut();

    static void Settle();

    frmMain Main;
};

}  // namespace zandrel
