// The measurements. Each adds its rows to the table.
#pragma once

namespace zandrel {

class frmMain;

/// Start of the program and its memory, each run a process of its own.
void MeasureStart();

/// Read All from a simulated Power-FC at the true speed of the line.
void MeasureReadAll(frmMain& main);

/// Update of one cell and cell-by-cell writes of a map, at the true speed of the line.
void MeasureUpdating(frmMain& main);

/// Fitting the display to another build: the logic alone, and with the window repainted.
void MeasureDisplay(frmMain& main);

/// Edits of all cells of a map by keys and menus, until the window stands painted.
void MeasureEditing(frmMain& main);

/// Data files: opening until all is shown, reading alone, saving.
void MeasureFiles(frmMain& main);

/// Single accessors: time and heap allocations a call.
void MeasureAccessors();

}  // namespace zandrel
