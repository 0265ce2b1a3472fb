// What a click or an edit runs, one row to a control array. A row without a handler belongs to work that
// this version does not have yet: its controls are shown, but do nothing and say so.
#pragma once

#include <QString>
#include <string_view>

#include "util/controls.h"

class QAbstractButton;

namespace zandrel {

struct Command {
    std::string_view Name;     // control or control array
    void (*Click)(int index);  // nullptr: not in this version
    const char* Later;         // tool tip while there is no handler
};

/// The row of `name`. Every name that a window asks for has one.
const Command& CommandOf(std::string_view name);

/// True if the controls of that name do something.
bool HasHandler(std::string_view name);

/// Brings a button in step with its record: caption, visible, and enabled only while the record says so,
/// its command has a handler and no long operation runs.
void MirrorButton(QAbstractButton* button, const Control& record, std::string_view name);

}  // namespace zandrel
