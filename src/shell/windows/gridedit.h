// The text box that opens in a map cell, one for all maps. It mirrors `txtGrid` and keeps its text in step.
#pragma once

#include <QLineEdit>
#include <functional>

namespace zandrel {

class MapGridView;

class GridEdit : public QLineEdit {
  public:
    using Runner = std::function<void(const std::function<void()>& action)>;
    /// `mirrors` tells whether the window is being brought in step: a focus lost then was not left by the
    /// user.
    GridEdit(Runner run, std::function<bool()> mirrors, QWidget* parent);

    /// Opens on `grid`, the map that the box edits, or closes.
    void Mirror(MapGridView* grid);

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void Open(MapGridView* grid);
    void Close();

    Runner run_;
    std::function<bool()> mirrors_;
    MapGridView* grid_ = nullptr;
    unsigned opening_ = 0;
};

/// True if a box that loses the focus for `reason` is left: not for a menu over it or another window.
bool IsLeft(Qt::FocusReason reason);

/// The keys of a text box that desktops differ in: Ctrl+Y does again what the box has undone, Ctrl+U is left
/// to Update and clears no line. True: `event` was one of them and is dealt with, but for the `redo` that it
/// asks for.
bool TakesKey(QEvent& event, bool& redo);

/// The same for a box that has a `redo` of its own.
template <class Box>
bool TakesKey(Box& box, QEvent& event) {
    bool redo = false;
    const bool taken = TakesKey(event, redo);
    if (redo) box.redo();
    return taken;
}

}  // namespace zandrel
