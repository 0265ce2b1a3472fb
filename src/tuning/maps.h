// The 20 by 20 maps: how a raw cell becomes text and colour, what labels its axes bear, and the display
// selectors. The raw cells stay in the image. Map tables are indexed by map = tab number; rows and columns
// of cells count from 1, a column is one engine speed, a row one load point.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "image/image.h"
#include "tuning/settings.h"
#include "util/controls.h"

namespace zandrel {

/// A map grid of 21 by 21: row 0 and column 0 carry labels. The cells' texts and colours are asked for
/// when they are painted; `Revision` grows whenever the cells have to be painted anew.
struct MapGrid {
    std::string Tag;  // map descriptor
    std::string FormatString;
    std::array<std::string, kMapSide + 1> ColumnHead;  // TextMatrix(0, column)
    std::array<std::string, kMapSide + 1> RowHead;     // TextMatrix(row, 0)
    std::array<int, kMapSide + 1> ColAlignment{};      // 1 left, 7 right
    std::array<float, kMapSide + 1> ColWidth{};        // same unit as Width
    float Width = 0;
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

/// Text that the grid shows in a cell: the value, or in compare mode the difference.
std::string GridCellText(int map, int row, int column);

/// Back colour of a cell, red in the low byte; 0 = the default colour.
std::uint32_t GridCellColourSet(int map, int row, int column);

/// Has the grid of a map painted anew, with or without its colours.
void DisplayMap(int map, bool withColour);
void DisplayAllMaps();

/// Reads `MapRefRpm` from the axis blocks.
void ReloadMapRefTables();

/// Sets the label row and column of all grids: axis values, or N01 to N20 and P01 to P20.
void RefreshMapRefLabels();

void mnuInjMapDisplay_Click(int index);
void mnuBaseMapDisplay_Click(int index);
void mnuSetupMapColourScheme_Click(int index);
void mnuMapRefLabels_Click();
void comMapType_Click(int map);
void chkSplit_Click(int map);

/// The tab in view has changed.
void SSTab1_Click();

}  // namespace zandrel
