#include "tuning/maps.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "image/accessors.h"
#include "tuning/display.h"
#include "util/desktop.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {

std::array<MapGrid, kMapTabs> Grid;
std::array<ComboBox, kMapTabs> comMapType;
std::array<Control, kMapTabs> chkSplit;
std::array<Control, kMapTabs> cmdReadMap;
std::array<Control, kMapTabs> cmdWriteMap;
std::array<std::uint8_t, kMaps> MapBaseTable{};
std::array<std::array<double, 21>, 3> MapRefRpm{};
std::int32_t InjMapDisplay = 0;
std::int32_t BaseMapDisplay = 0;
double StoichAF = 14.7;
std::int16_t MapColourScheme = 1;
std::array<int, kMapTabs> CompareMapIndex = {6, 6, 6, 6, 6, 6};
MenuItem mnuCompare;
MenuItem mnuSetupInjMapStoich;
MenuItem mnuMapRefLabels;
std::array<MenuItem, 3> mnuInjMapDisplay;
std::array<MenuItem, 4> mnuBaseMapDisplay;
std::array<MenuItem, 2> mnuSetupMapColourScheme;

namespace {

constexpr const char* kDesignTags[kMapTabs] = {"&H86,1,0.00390625,0.5,0.000,0,255",
                                               "&H81,1,1,0,0,0,255",
                                               "&H76,1,1,-25,0,0,255",
                                               "&H71,1,1,0,0,0,255",
                                               "&H6C,1,1,0,0,0,255",
                                               "&HB0,2,0.004,0,0.000,0,65535"};

constexpr const char* kCellLabels =
    "|N01|N02|N03|N04|N05|N06|N07|N08|N09|N10|N11|N12|N13|N14|N15|N16|N17|N18|N19|N20;"
    "|P01|P02|P03|P04|P05|P06|P07|P08|P09|P10|P11|P12|P13|P14|P15|P16|P17|P18|P19|P20";

constexpr std::uint32_t kRed = 255;
constexpr std::uint32_t kGrey = 0xE0E0E0;
constexpr int kNoPartner = 6;

std::size_t At(int index) {
    return static_cast<std::size_t>(index);
}

// The number in a settings box. No value while its block has not been read: a head room worked out from
// no injector at all would mislead.
std::optional<double> NumberIn(int index) {
    return StrictNumber(txtSetting[index].Text);
}

// Milliseconds of one revolution at the speed of a column.
std::optional<double> RevolutionMs(int map, int column) {
    const double rpm = MapRefRpm[MapBaseTable[At(map)]][At(column - 1)];
    if (rpm == 0) return std::nullopt;
    return 60.0 / rpm * 1000.0;
}

// A base value brought down to what one injector has to deliver.
std::optional<double> ScaleByInjectors(double v) {
    if (FraSettings[1500].Visible) {
        const auto share = NumberIn(1500);
        const auto primary = NumberIn(1502);
        const auto secondary = NumberIn(1503);
        if (!share || !primary || !secondary || *primary + *secondary == 0) return std::nullopt;
        v = *share * v / 100;
        return *primary * v / (*primary + *secondary);
    }
    const auto share = NumberIn(500);
    if (!share) return std::nullopt;
    return *share * v / 100 / 2;
}

// The way back. A division by zero shows in the result.
std::optional<double> UndoInjectors(double u) {
    if (FraSettings[1500].Visible) {
        const auto share = NumberIn(1500);
        const auto primary = NumberIn(1502);
        const auto secondary = NumberIn(1503);
        if (!share || !primary || !secondary) return std::nullopt;
        return u * (*primary + *secondary) / *primary / *share * 100;
    }
    const auto share = NumberIn(500);
    if (!share) return std::nullopt;
    return u / *share * 100 * 2;
}

double Shown(int map, int raw) {
    return raw * double{MapScale[At(map)]} + double{MapOffset[At(map)]};
}

std::optional<double> InjectionValue(int map, int raw) {
    const double v = Shown(map, raw);
    switch (InjMapDisplay) {
        case 0:
            return v;
        case 1:
        case 2:
            if (v == 0) return std::nullopt;
            return (InjMapDisplay == 1 ? 1 : StoichAF) / v;
        default:
            return 0;
    }
}

std::optional<double> BaseValue(int map, int row, int column, int raw, bool useCompare) {
    if (BaseMapDisplay == 0) return Shown(map, raw);
    if (BaseMapDisplay < 0 || BaseMapDisplay > 3) return 0;
    const double injection = Shown(InjMapIndex, GetCell(InjMapIndex, row, column, useCompare));
    const double v = injection * raw * double{MapScale[At(map)]} + double{MapOffset[At(map)]};
    if (BaseMapDisplay == 1) return v;
    const auto scaled = ScaleByInjectors(v);
    const auto revolution = RevolutionMs(map, column);
    if (!scaled || !revolution) return std::nullopt;
    return BaseMapDisplay == 2 ? *revolution - *scaled : *scaled / *revolution * 100;
}

std::optional<double> CellValue(int map, int row, int column, bool useCompare) {
    const int raw = GetCell(map, row, column, useCompare);
    if (map == InjMapIndex) return InjectionValue(map, raw);
    if (map >= BaseMapIndex) return BaseValue(map, row, column, raw, useCompare);
    if (map < kMapTabs && chkSplit[At(map)].Value == 1) {
        return (GetCell(map - 1, row, column, useCompare) - raw) * double{MapScale[At(map)]};
    }
    return Shown(map, raw);
}

std::optional<double> RawOfInjection(int map, double t) {
    const double s = MapScale[At(map)];
    const double o = MapOffset[At(map)];
    switch (InjMapDisplay) {
        case 0:
            return (t - o) / s;
        case 1:
        case 2:
            if (t == 0) return double{MapMax[At(map)]};
            return ((InjMapDisplay == 1 ? 1 : StoichAF) / t - o) / s;
        default:
            return std::nullopt;
    }
}

std::optional<double> RawOfBase(int map, double t, int row, int column) {
    const double s = MapScale[At(map)];
    const double o = MapOffset[At(map)];
    if (BaseMapDisplay == 0) return (t - o) / s;
    if (BaseMapDisplay < 0 || BaseMapDisplay > 3) return std::nullopt;
    const double a = Shown(InjMapIndex, GetCell(InjMapIndex, row, column, false));
    if (BaseMapDisplay == 1) return (t - o) / s / a;
    const auto revolution = RevolutionMs(map, column);
    if (!revolution) return std::nullopt;
    const auto u = UndoInjectors(BaseMapDisplay == 2 ? *revolution - t : t * *revolution / 100);
    if (!u) return std::nullopt;
    return (*u - o) / s / a;
}

std::uint32_t HighIsGreen(int b) {
    return static_cast<std::uint32_t>(256 * b + (255 - b));
}

std::uint32_t HighIsRed(int b) {
    return static_cast<std::uint32_t>(256 * (255 - b) + b);
}

std::uint32_t RedToGreen(int map, int row, int column) {
    const int raw = GetCell(map, row, column, false);
    if (map == InjMapIndex) return HighIsGreen(raw & 255);
    if (map < BaseMapIndex) return HighIsRed(std::min(63, raw) * 4);
    return HighIsRed(ClampByte(static_cast<float>(std::min(5000, raw) * 255.0 / 5000)));
}

// Spreads a format string ("|a|b;|x|y") over the label row and column.
void TakeFormatString(MapGrid& grid) {
    const auto halves = Split(grid.FormatString, ';');
    const auto spread = [](const std::string& half, std::array<std::string, kMapSide + 1>& heads) {
        const auto items = Split(half, '|');
        for (std::size_t i = 0; i < heads.size(); ++i) heads[i] = i < items.size() ? items[i] : "";
    };
    spread(halves[0], grid.ColumnHead);
    spread(halves.size() > 1 ? halves[1] : "", grid.RowHead);
}

std::string AxisLabels(const std::string& block) {
    const auto axis = [&block](int start) {
        std::string labels;
        for (int k = 0; k < kMapSide; ++k) {
            labels += "|" + GetNumber(block + "," + std::to_string(start + 2 * k) + ",2,1,0,0");
        }
        return labels;
    };
    return axis(41) + ";" + axis(1);
}

void ShowBaseMode(int map) {
    DisplayMap(map, false);
    if (comMapType[At(map)].ListIndex != BaseMapDisplay) comMapType[At(map)].ListIndex = BaseMapDisplay;
}

template <std::size_t Count>
void TickOne(std::array<MenuItem, Count>& items, int index) {
    for (std::size_t k = 0; k < Count; ++k) items[k].Checked = static_cast<int>(k) == index;
}

}  // namespace

void LoadMapsDesign() {
    Grid = {};
    comMapType = {};
    chkSplit = {};
    cmdReadMap = {};
    cmdWriteMap = {};
    for (int i = 0; i < kMapTabs; ++i) {
        Grid[At(i)].Tag = kDesignTags[i];
        Grid[At(i)].Width = 10000;
        chkSplit[At(i)].Visible = false;
        cmdReadMap[At(i)].Caption = "Rea&d Map";
        cmdWriteMap[At(i)].Caption = "Wri&te Map";
        comMapType[At(i)].Items = {"Base (msec)", "Base x INJ (msec)", "Head room (msec)", "Fuel duty (%)"};
    }
    comMapType[0].Items = {"Correction", "Lambda", "AF ratio"};
    CompareMapIndex.fill(kNoPartner);
    MapBaseTable.fill(0);
    MapRefRpm = {};
    mnuCompare = {.Caption = "Compare"};
    mnuSetupInjMapStoich = {.Caption = "Stoich 14.70"};
    mnuMapRefLabels = {.Caption = "MapRef &Labels"};
    mnuInjMapDisplay = {MenuItem{"Correction"}, MenuItem{"Lambda"}, MenuItem{"AF ratio"}};
    mnuBaseMapDisplay = {MenuItem{"Base (msec)"}, MenuItem{"Base x INJ"}, MenuItem{"Head room (msec)"},
                         MenuItem{"Fuel duty (%)"}};
    mnuSetupMapColourScheme = {MenuItem{"None"}, MenuItem{"Red to Green"}};
}

void TakeMapTag(int map) {
    auto fields = Split(Grid[At(map)].Tag, ',');
    fields.resize(7);
    const auto number = [&fields](std::size_t i) { return static_cast<float>(LenientNumber(fields[i])); };
    MapFirstBlock[At(map)] = static_cast<std::uint8_t>(number(0));
    MapCellSize[At(map)] = static_cast<std::int32_t>(number(1));
    MapScale[At(map)] = number(2);
    MapOffset[At(map)] = number(3);
    MapFormat[At(map)] = fields[4];
    MapMin[At(map)] = number(5);
    MapMax[At(map)] = number(6);
}

void GridInit() {
    for (int map = 0; map < kMapTabs; ++map) {
        TakeMapTag(map);
        for (int k = 0; k < MapCellSize[At(map)] * 4; ++k) {
            ReadData[At(MapFirstBlock[At(map)] + k)] = ByteString(100, '\0');
        }
    }
}

bool MapCellText(int map, int row, int column, double& previous, bool useCompare, std::string& text) {
    text.clear();
    const auto v = CellValue(map, row, column, useCompare);
    if (!v || !std::isfinite(*v)) return false;
    if (!useCompare) previous = 0;
    text = FormatNumber(*v - previous, MapFormat[At(map)]);
    previous = *v;
    return true;
}

bool MapTextToRaw(int map, std::string_view text, int row, int col, std::int32_t& raw) {
    const auto t = StrictNumber(text);
    if (!t) return false;
    std::optional<double> x;
    if (map == InjMapIndex) {
        x = RawOfInjection(map, *t);
    } else if (map >= BaseMapIndex) {
        x = RawOfBase(map, *t, row, col);
    } else {
        x = (*t - double{MapOffset[At(map)]}) / double{MapScale[At(map)]};
    }
    if (!x || !std::isfinite(*x)) return false;
    raw = static_cast<std::int32_t>(
        RoundEven(std::clamp(*x, double{MapMin[At(map)]}, double{MapMax[At(map)]})));
    return true;
}

std::string GridCellText(int map, int row, int column) {
    double previous = 0;
    std::string text;
    if (!MapCellText(map, row, column, previous, false, text)) return {};
    if (mnuCompare.Checked && CompareMapIndex[At(map)] < kNoPartner) {
        MapCellText(CompareMapIndex[At(map)], row, column, previous, true, text);
    }
    return text;
}

std::uint32_t GridCellColourSet(int map, int row, int column) {
    std::uint32_t& colour = Grid[At(map)].CellBackColor[At(row)][At(column)];
    if (mnuCompare.Checked && CompareMapIndex[At(map)] >= kNoPartner) {
        colour = kGrey;
    } else if (mnuCompare.Checked) {
        colour = SafeNumber(Grid[At(map)].TextMatrix[At(row)][At(column)]) != 0 ? kRed : 0;
    } else if (MapColourScheme == 0) {
        colour = 0;
    } else if (MapColourScheme == 1) {
        colour = RedToGreen(map, row, column);
    }
    return colour;
}

void DisplayMap(int map, bool withColour) {
    MapGrid& grid = Grid[At(map)];
    GridSelection selection;
    if (withColour) SaveGridSelection(map, selection);
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            grid.TextMatrix[At(row)][At(column)] = GridCellText(map, row, column);
            if (withColour) GridCellColourSet(map, row, column);
        }
    }
    if (withColour) RestoreGridSelection(map, selection);
    ++grid.Revision;
}

void SaveGridSelection(int map, GridSelection& selection) {
    selection = Grid[At(map)].Selection;
    Grid[At(map)].Redraw = false;
}

void RestoreGridSelection(int map, const GridSelection& selection) {
    MapGrid& grid = Grid[At(map)];
    grid.Selection = selection;
    grid.Redraw = true;
    ++grid.Revision;
}

void DisplayAllMaps() {
    for (int map = 0; map < kMapTabs; ++map) DisplayMap(map, true);
}

void ReloadMapRefTables() {
    for (std::size_t table = 0; table < MapRefRpm.size(); ++table) {
        for (int k = 0; k < 21; ++k) {
            const std::string offset = std::to_string(41 + 2 * k);
            MapRefRpm[table][At(k)] = SafeNumber(GetNumber(MapRefBlock[table] + "," + offset + ",2,1,0,0"));
        }
    }
}

void RefreshMapRefLabels() {
    for (int i = 0; i < kMapTabs; ++i) {
        MapGrid& grid = Grid[At(i)];
        grid.FormatString =
            mnuMapRefLabels.Checked ? AxisLabels(MapRefBlock[MapBaseTable[At(i)]]) : kCellLabels;
        TakeFormatString(grid);
        const float width = grid.Width / 21.2F;
        grid.ColAlignment.fill(1);
        grid.ColAlignment[0] = 7;
        grid.ColWidth.fill(std::floor(width));
        grid.ColWidth[0] = width * 1.2F;
        ++grid.Revision;
    }
}

void mnuInjMapDisplay_Click(int index) {
    InjMapDisplay = index;
    TickOne(mnuInjMapDisplay, index);
    DisplayMap(InjMapIndex, false);
    if (comMapType[At(InjMapIndex)].ListIndex != index) comMapType[At(InjMapIndex)].ListIndex = index;
}

void mnuBaseMapDisplay_Click(int index) {
    BaseMapDisplay = index;
    TickOne(mnuBaseMapDisplay, index);
    if (BaseMapIndex == kNoMap || !SSTab1.TabVisible[At(BaseMapIndex)]) return;
    ShowBaseMode(BaseMapIndex);
    if (MapBaseTable[At(BaseMapIndex)] > 0) ShowBaseMode(BaseMapIndex + 1);
}

void mnuSetupMapColourScheme_Click(int index) {
    TickOne(mnuSetupMapColourScheme, index);
    MapColourScheme = static_cast<std::int16_t>(index);
    DisplayAllMaps();
}

void mnuMapRefLabels_Click() {
    mnuMapRefLabels.Checked = !mnuMapRefLabels.Checked;
    RefreshMapRefLabels();
}

void mnuSetupInjMap_Click() {
    mnuSetupInjMapStoich.Caption = tr("Stoich") + " " + FormatNumber(StoichAF, "0.00");
}

void mnuSetupInjMapStoich_Click() {
    constexpr const char* kPicture = "0.00";
    EnterNumber(
        {"Enter Stoichiometric AF", kPicture, FormatNumber(StoichAF, kPicture)}, [](const std::string& text) {
            const double ratio = SafeNumber(text);
            if (ratio < 10 || ratio > 30) {
                MessageBox(
                    "Stoich should not be less than 10 or greater than 30. Stoich will not be changed.",
                    Box::Exclamation);
                return;
            }
            StoichAF = ratio;
        });
}

void comMapType_Click(int map) {
    const int index = comMapType[At(map)].ListIndex;
    if (map == InjMapIndex) {
        mnuInjMapDisplay_Click(index);
    } else if (BaseMapIndex != kNoMap && (map == BaseMapIndex || map == BaseMapIndex + 1)) {
        mnuBaseMapDisplay_Click(index);
    }
}

void chkSplit_Click(int map) {
    DisplayMap(map, true);
}

void SSTab1_Click() {
    const int tab = SSTab1.Tab;
    if (tab >= kMapTabs) return;
    if (chkSplit[At(tab)].Value == 1 && !mnuCompare.Checked) DisplayMap(tab, true);
    RefreshMapRefLabels();
    ReloadMapRefTables();
    DisplayMap(tab, true);
}

}  // namespace zandrel
