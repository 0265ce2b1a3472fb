// The 20 by 20 maps: how a raw cell becomes text and colour, what labels its axes bear, and the display
// selectors. The raw cells stay in the image. Map tables are indexed by map = tab number; rows and columns
// of cells count from 1, a column is one engine speed, a row one load point.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "image/image.h"
#include "tuning/settings.h"
#include "util/controls.h"

namespace zandrel {

/// A rectangle of cells: where it began and where it was drawn to, which may lie left of or above it.
struct GridSelection {
    int Row = 1, Col = 1, RowSel = 1, ColSel = 1;
    bool operator==(const GridSelection&) const = default;
};

/// Value for each row 0 to 20 and column 0 to 20; row 0 and column 0 are not used.
template <class T>
using CellTable = std::array<std::array<T, kMapSide + 1>, kMapSide + 1>;

/// A map grid of 21 by 21: row 0 and column 0 carry labels. Its cells keep the text and colour that they
/// were given last; `Revision` grows whenever some of them have to be painted anew.
struct MapGrid {
    std::string Tag;  // map descriptor
    std::string FormatString;
    std::array<std::string, kMapSide + 1> ColumnHead;  // TextMatrix(0, column)
    std::array<std::string, kMapSide + 1> RowHead;     // TextMatrix(row, 0)
    std::array<int, kMapSide + 1> ColAlignment{};      // 1 left, 7 right
    std::array<float, kMapSide + 1> ColWidth{};        // same unit as Width
    float Width = 0;
    CellTable<std::string> TextMatrix;
    CellTable<std::uint32_t> CellBackColor{};  // red in the low byte; 0 = the default colour
    GridSelection Selection;
    bool Redraw = true;  // false: what changes is painted together later
    unsigned Revision = 0;
};

// Indexed by map tab 0 to 5.
extern std::array<MapGrid, kMapTabs> Grid;
extern std::array<ComboBox, kMapTabs> comMapType;
extern std::array<Control, kMapTabs> chkSplit;
extern std::array<Control, kMapTabs> cmdReadMap;
extern std::array<Control, kMapTabs> cmdWriteMap;

/// 0; 1 and 2 on the first and second of two base maps: entry of `MapRefBlock` and row of `MapRefRpm`.
extern std::array<std::uint8_t, kMaps> MapBaseTable;

/// Engine speed of each column, counted from 0, of the three base tables; 0 = not known.
extern std::array<std::array<double, 21>, 3> MapRefRpm;

extern std::int32_t InjMapDisplay;   // 0 correction, 1 lambda, 2 air-fuel ratio
extern std::int32_t BaseMapDisplay;  // 0 base ms, 1 base x injection ms, 2 head room ms, 3 fuel duty %
extern double StoichAF;
extern std::int16_t MapColourScheme;  // 0 none, 1 red to green

// For each map the slot of its partner in the compared file; 6 and above: none. Written by files/.
extern std::array<int, kMapTabs> CompareMapIndex;

extern MenuItem mnuCompare;
extern MenuItem mnuSetupInjMapStoich;
extern MenuItem mnuMapRefLabels;
extern std::array<MenuItem, 3> mnuInjMapDisplay;
extern std::array<MenuItem, 4> mnuBaseMapDisplay;
extern std::array<MenuItem, 2> mnuSetupMapColourScheme;

/// Puts grids, selectors and menus into their design state.
void LoadMapsDesign();

/// Once at start: fills the map tables from the grids' Tags and the maps' blocks with zeros, so that the
/// maps can be drawn before any read.
void GridInit();

/// Takes the seven fields of `Grid[map].Tag` into the map tables.
void TakeMapTag(int map);

/// Display value and text of a cell. `previous` counts only with `useCompare`, is subtracted from the
/// value and becomes it: a call for the image, then one for the compared file, give the difference. False:
/// no value (an axis of 0 rpm, an injector setting that is not known); `text` is empty then.
bool MapCellText(int map, int row, int column, double& previous, bool useCompare, std::string& text);

/// Raw value of `text` in the present display mode: the inverse of `MapCellText`, limited to `MapMin` and
/// `MapMax`, rounded to the nearest whole number, ties to even. `row` and `col` say which cell's speed and
/// injection value count. False: the text is no number, or none can be worked out; `raw` stays.
bool MapTextToRaw(int map, std::string_view text, int row, int col, std::int32_t& raw);

/// Text of a cell as it is now: the value, or in compare mode the difference.
std::string GridCellText(int map, int row, int column);

/// Gives a cell the colour of its value, and returns it. A colour scheme that is unknown leaves it.
std::uint32_t GridCellColourSet(int map, int row, int column);

/// Fills the grid of a map anew, with or without its colours.
void DisplayMap(int map, bool withColour);
void DisplayAllMaps();

/// Saving holds painting back, restoring releases it.
void SaveGridSelection(int map, GridSelection& selection);
void RestoreGridSelection(int map, const GridSelection& selection);

/// Reads `MapRefRpm` from the axis blocks.
void ReloadMapRefTables();

/// Sets the label row and column of all grids: axis values, or N01 to N20 and P01 to P20.
void RefreshMapRefLabels();

void mnuInjMapDisplay_Click(int index);
void mnuBaseMapDisplay_Click(int index);
void mnuSetupMapColourScheme_Click(int index);
void mnuMapRefLabels_Click();

/// The menu of the injection map opens: the ratio stands in its item.
void mnuSetupInjMap_Click();

/// Asks for the stoichiometric ratio. What the grids show follows at their next display.
void mnuSetupInjMapStoich_Click();

void comMapType_Click(int map);
void chkSplit_Click(int map);

/// The tab in view has changed.
void SSTab1_Click();

}  // namespace zandrel
