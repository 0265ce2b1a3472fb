// Maps edited in place: keys, the box in a cell, the clipboard, interpolation, ReCalc Base, and Undo. Every
// edit compares the new raw value with the stored one; only a real change reaches the image. Maps are tab
// numbers; rows and columns of cells count from 1. One call is one step of Undo.
#pragma once

#include <cstdint>
#include <string>

#include "util/controls.h"

namespace zandrel {

/// The text box that opens in a cell. The window mirrors it and keeps `Text` in step while it is open.
struct GridEditBox {
    bool Visible = false;
    std::string Text;
    int SelStart = 0;        // where the cursor stands when it opens
    bool SelectAll = false;  // or all of it is selected
    unsigned Openings = 0;   // grows each time it opens
};
extern GridEditBox txtGrid;

extern std::int16_t EditRow, EditCol, EditRowSel, EditColSel;  // selection when the box opened
extern std::int16_t EditMap;                                   // map that the box edits; -1 = cancelled
extern std::int16_t LastGridButton;                            // 1 left, 2 right
extern std::int16_t PopupGrid;                                 // the map that the menu commands work on
extern bool GridSpaceFlag;

extern MenuItem mnuGridCopy, mnuGridPaste, mnuSep4;  // visible in the popup alone
extern MenuItem mnuGridInterpolate;
extern MenuItem mnuUndo, mnuRedo;

void LoadMapEditingDesign();

/// Opens the empty box on the current cell of `map`.
void ShowGridEdit(int map);

/// The same with `text` in it, and typing goes on after its first character.
void StartGridEdit(int map, const std::string& text);

/// Closes the box without a change. The box is gone with the map that it stood on.
void CancelGridEdit();

/// Raises or lowers the selected cells by `amount` raw steps, up to `MapMax` or down to `MapMin`.
void AddToSelection(int map, std::int32_t amount);
void SubFromSelection(int map, std::int32_t amount);

/// Multiplies the values that the selected cells show.
void MultiplySelection(int map, double factor);

/// Stores `raw` in the cells of the `Edit` fields; in split display the map before it less `raw`.
void SetSelection(int map, std::int32_t raw);

/// Stores the values of the texts in the selected cells, all of them. Ends at the first text that is no
/// value; the cells before it are stored, it and those behind it show again what they hold.
void CommitGridText(int map);

/// Texts of the selected cells: tabs between cells, CR between rows.
std::string GridClip(int map);

/// Spreads `text` over the selected cells from the top left; it stops at the selection's edge. Rows end with
/// CR, LF or CR LF. Only texts: `CommitGridText` stores them.
void SetGridClip(int map, const std::string& text);

/// A key on the grid. `keyCode`: digits 48 to 57, number pad 96 to 105, letters as capitals. `shift`: 1
/// shift, 2 control, 4 alt. A held key `repeats`, and its steps are one to Undo. False: the key is none of
/// the map's, the grid may have it.
bool Grid_KeyDown(int map, int keyCode, int shift, bool repeats = false);

/// The mouse on the grid. `button` 1 left, 2 right.
void Grid_MouseDown(int map, int button);
void Grid_DblClick(int map);

/// A key in the box: 13 stores, 27 cancels.
void txtGrid_KeyPress(int keyCode);

/// The box has lost the focus: it stores its value and closes.
void txtGrid_LostFocus();

void mnuGridCopy_Click();
void mnuGridPaste_Click();
void mnuGridInterpolate_Click();

/// Folds the injection map into the base map or maps: afterwards they alone give the same injector time.
void mnuReCalcBase_Click();

void mnuUndo_Click();
void mnuRedo_Click();

/// Captions and enabled states of Undo and Redo.
void RefreshUndoItems();

}  // namespace zandrel
