// Undo and redo over the whole image: what the write accessors have changed, one step to a gesture of the
// user. All edits of bytes go through `Carry`, undone ones too, so that flags and notice are the same.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "util/text.h"

namespace zandrel {

/// A run of bytes of one block, before and after an edit. `Map` -1: no cell of a map.
struct Change {
    std::size_t Block = 0;
    std::size_t Start = 0;  // from 0
    ByteString Before = {};
    ByteString After = {};
    int Map = -1, Row = 0, Column = 0;
    bool Whole = false;  // the block has no other bytes
};

/// Runs once after each gesture that has edited, and after Undo and Redo, before `AfterEdit`. Set by files/.
inline std::function<void()> AfterGesture = [] {};

/// Puts `change.After` in the place of `change.Before`, raises the flags and keeps the change for Undo.
void Carry(Change change);

/// An edit has ended: `AfterEdit` runs, within a gesture once at its end.
void EditDone();

/// While one lives, all changes make one step, called `name`. The outermost of nested gestures counts. One
/// that goes on, as a held key does, adds to the step before, if that has the same name.
class Gesture {
  public:
    explicit Gesture(std::string_view name, bool goesOn = false);
    ~Gesture();
    Gesture(const Gesture&) = delete;
    Gesture& operator=(const Gesture&) = delete;
};

bool CanUndo();
bool CanRedo();

/// Name of the step that comes next; empty if there is none.
std::string UndoName();
std::string RedoName();

/// Takes the last step back, or does it again. False: nothing was changed. `map` becomes the map whose cells
/// are all that has changed, or -1.
bool Undo(int& map);
bool Redo(int& map);

/// The image was replaced: there is no way back beyond this.
void ClearHistory();

}  // namespace zandrel
