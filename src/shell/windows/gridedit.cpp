#include "shell/windows/gridedit.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <utility>

#include "shell/windows/mapgrid.h"
#include "shell/windows/shown.h"
#include "tuning/mapediting.h"

namespace zandrel {

bool IsLeft(Qt::FocusReason reason) {
    return reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason &&
           reason != Qt::MenuBarFocusReason;
}

bool TakesKey(QEvent& event, bool& redo) {
    if (event.type() != QEvent::ShortcutOverride && event.type() != QEvent::KeyPress) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    if (key.modifiers() != Qt::ControlModifier) return false;
    const bool offered = event.type() == QEvent::ShortcutOverride;
    if (key.key() == Qt::Key_U) {
        event.setAccepted(!offered);
        return true;
    }
    if (key.key() != Qt::Key_Y) return false;
    event.accept();
    redo = !offered;
    return true;
}

GridEdit::GridEdit(Runner run, std::function<bool()> mirrors, QWidget* parent)
    : QLineEdit(parent), run_(std::move(run)), mirrors_(std::move(mirrors)) {
    setObjectName(QStringLiteral("txtGrid"));
    setTextMargins(0, 0, 0, 0);
    connect(this, &QLineEdit::textEdited, this,
            [](const QString& text) { txtGrid.Text = text.toStdString(); });
    hide();
}

void GridEdit::Mirror(MapGridView* grid) {
    if (txtGrid.Visible && (grid == nullptr || !grid->isVisible())) CancelGridEdit();
    if (!txtGrid.Visible) {
        if (!isHidden()) Close();
    } else if (opening_ != txtGrid.Openings) {
        Open(grid);
    }
}

void GridEdit::Open(MapGridView* grid) {
    opening_ = txtGrid.Openings;
    if (parentWidget() != grid->viewport()) setParent(grid->viewport());
    grid_ = grid;
    grid->PlaceBox(this);
    setText(Shown(txtGrid.Text));
    if (txtGrid.SelectAll) {
        selectAll();
    } else {
        setCursorPosition(txtGrid.SelStart);
    }
    show();
    setFocus();
}

void GridEdit::Close() {
    const bool focused = hasFocus();
    hide();
    if (focused) grid_->setFocus();
}

bool GridEdit::event(QEvent* event) {
    return TakesKey(*this, *event) || QLineEdit::event(event);
}

void GridEdit::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
        run_([key] { txtGrid_KeyPress(key == Qt::Key_Escape ? 27 : 13); });
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
    // What the box has no use for must not reach the map under it.
    event->accept();
}

// Tab stores and goes back to the map; the next control might be a button.
bool GridEdit::focusNextPrevChild(bool) {
    run_(txtGrid_LostFocus);
    return true;
}

void GridEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (txtGrid.Visible && !mirrors_() && IsLeft(event->reason())) run_(txtGrid_LostFocus);
}

}  // namespace zandrel
