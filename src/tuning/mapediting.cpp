#include "tuning/mapediting.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/desktop.h"
#include "util/numbers.h"

namespace zandrel {

GridEditBox txtGrid;
std::int16_t EditRow = 1, EditCol = 1, EditRowSel = 1, EditColSel = 1;
std::int16_t EditMap = -1;
std::int16_t LastGridButton = 0;
std::int16_t PopupGrid = 0;
bool GridSpaceFlag = false;
MenuItem mnuGridCopy, mnuGridPaste, mnuSep4, mnuGridInterpolate, mnuUndo, mnuRedo;

namespace {

constexpr std::int32_t kDeleteRaw = 128;  // 1.000 in the injection map
constexpr int kBigStep = 10;

bool KeyRepeats = false;  // the key at hand is held

enum Shift { NoShift = 0, ShiftDown = 1, ControlDown = 2 };
enum Key {
    KeySpace = 32,
    KeyDelete = 46,
    Key0 = 48,
    Key8 = 56,
    Key9 = 57,
    KeyA = 65,
    KeyC = 67,
    KeyV = 86,
    KeyPad0 = 96,
    KeyPad9 = 105,
    KeyPadTimes = 106,
    KeyPadPlus = 107,
    KeyPadMinus = 109,
    KeyPadPoint = 110,
    KeyPlus = 187,
    KeyComma = 188,
    KeyMinus = 189,
    KeyPoint = 190,
    KeyEnter = 13,
    KeyEscape = 27
};

std::size_t At(int index) {
    return static_cast<std::size_t>(index);
}

// A rectangle of cells, both ends included.
struct CellArea {
    int Top, Left, Bottom, Right;
};

CellArea AreaOf(const GridSelection& s) {
    return {std::min(s.Row, s.RowSel), std::min(s.Col, s.ColSel), std::max(s.Row, s.RowSel),
            std::max(s.Col, s.ColSel)};
}

CellArea SelectedArea(int map) {
    return AreaOf(Grid[At(map)].Selection);
}

std::string& TextOf(int map, int row, int column) {
    return Grid[At(map)].TextMatrix[At(row)][At(column)];
}

bool Splits(int map) {
    return chkSplit[At(map)].Value == 1;
}

std::optional<std::int32_t> WholeNumber(std::optional<double> number) {
    if (!number) return std::nullopt;
    const double whole = RoundEven(*number);
    if (whole < std::numeric_limits<std::int32_t>::min() || whole > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::int32_t>(whole);
}

void ShowCell(int map, int row, int column) {
    TextOf(map, row, column) = GridCellText(map, row, column);
    GridCellColourSet(map, row, column);
}

// Stores a new raw value, if it is one, and shows the cell.
void StoreCell(int map, int row, int column, std::int32_t raw) {
    if (raw != GetCell(map, row, column, false)) {
        SetCell(map, row, column, raw);
        MapCellChanged[At(map)][At(row)][At(column)] = true;
        DataChanged = true;
        EditDone();
    }
    ShowCell(map, row, column);
}

std::int32_t Within32Bits(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

// Gives each cell of `area`, row by row, the raw value that `newRaw` makes of it, as one step of Undo. No
// value ends it, and what the rest shows is what it holds. False: it ended so.
template <class NewRaw>
bool EditArea(int map, const CellArea& area, const char* name, NewRaw newRaw) {
    const Gesture gesture(name, KeyRepeats);
    GridSelection selection{};
    SaveGridSelection(map, selection);
    bool whole = true;
    for (int row = area.Top; row <= area.Bottom && whole; ++row) {
        for (int column = area.Left; column <= area.Right && whole; ++column) {
            const std::optional<std::int32_t> raw = newRaw(row, column);
            whole = raw.has_value();
            if (raw) StoreCell(map, row, column, *raw);
        }
    }
    if (!whole) DisplayMap(map, true);
    RestoreGridSelection(map, selection);
    return whole;
}

std::optional<std::int32_t> RawOfText(int map, const std::string& text, int row, int column) {
    std::int32_t raw = 0;
    if (!MapTextToRaw(map, WithDecimalPoint(text), row, column, raw)) return std::nullopt;
    return raw;
}

// A greater value that is shown means a smaller raw one in some displays.
int StepOf(int map) {
    return Splits(map) || (map == InjMapIndex && InjMapDisplay != 0) ? -1 : 1;
}

void TakeEditFields(int map) {
    const GridSelection& selection = Grid[At(map)].Selection;
    EditRow = static_cast<std::int16_t>(selection.Row);
    EditCol = static_cast<std::int16_t>(selection.Col);
    EditRowSel = static_cast<std::int16_t>(selection.RowSel);
    EditColSel = static_cast<std::int16_t>(selection.ColSel);
}

void CopySelection(int map) {
    Desktop.SetClipboard(GridClip(map));
}

// What a cell shows may be coarser than what it holds: a text that says what was shown before is no edit.
bool SaysTheSame(const std::string& text, const std::string& shown) {
    const auto number = StrictNumber(WithDecimalPoint(text));
    return number && number == StrictNumber(shown);
}

// Stores the texts of the selected cells that differ from those of `before`.
void CommitTexts(int map, const CellTable<std::string>& before) {
    EditArea(map, SelectedArea(map), "Values", [map, &before](int row, int column) {
        const std::string& text = TextOf(map, row, column);
        if (SaysTheSame(text, before[At(row)][At(column)])) {
            return std::optional(GetCell(map, row, column, false));
        }
        if (!Splits(map)) return RawOfText(map, text, row, column);
        const auto split = WholeNumber(StrictNumber(WithDecimalPoint(text)));
        if (!split) return split;
        return std::optional(Within32Bits(std::int64_t{GetCell(map - 1, row, column, false)} - *split));
    });
}

// The texts of a map as it is now; what was displayed may be older.
CellTable<std::string> ShownNow(int map) {
    DisplayMap(map, false);
    return Grid[At(map)].TextMatrix;
}

void PasteSelection(int map) {
    const auto before = ShownNow(map);
    SetGridClip(map, Desktop.GetClipboard());
    const Gesture gesture("Paste", KeyRepeats);
    CommitTexts(map, before);
}

bool PlainKey(int map, int keyCode) {
    const auto start = [map](char first) {
        StartGridEdit(map, std::string(1, first));
        return true;
    };
    if (keyCode >= Key0 && keyCode <= Key9) return start(static_cast<char>(keyCode));
    if (keyCode >= KeyPad0 && keyCode <= KeyPad9) return start(static_cast<char>(keyCode - 48));
    switch (keyCode) {
        case KeyPadTimes:
            return start('*');
        case KeyPadPoint:
        case KeyPoint:
            return start('.');
        case KeyComma:
            return start(',');
        case KeyPadPlus:
        case KeyPlus:
            AddToSelection(map, StepOf(map));
            return true;
        case KeyPadMinus:
        case KeyMinus:
            SubFromSelection(map, StepOf(map));
            return true;
        case KeyDelete:
            // Where an old box stood is no concern of this key.
            TakeEditFields(map);
            SetSelection(map, kDeleteRaw);
            return true;
        case KeySpace:
            GridSpaceFlag = true;
            return true;
        default:
            return false;
    }
}

bool ControlKey(int map, int keyCode) {
    switch (keyCode) {
        case KeyA:
            Grid[At(map)].Selection = {1, 1, kMapSide, kMapSide};
            return true;
        case KeyC:
            CopySelection(map);
            return true;
        case KeyV:
            PasteSelection(map);
            return true;
        case KeyPadPlus:
        case KeyPlus:
            AddToSelection(map, StepOf(map) * kBigStep);
            return true;
        case KeyPadMinus:
        case KeyMinus:
            SubFromSelection(map, StepOf(map) * kBigStep);
            return true;
        default:
            return false;
    }
}

bool TakeKey(int map, int keyCode, int shift) {
    switch (shift) {
        case NoShift:
            return PlainKey(map, keyCode);
        case ShiftDown:
            if (keyCode != Key8) return false;
            StartGridEdit(map, "*");
            return true;
        case ControlDown:
            return ControlKey(map, keyCode);
        default:
            return false;
    }
}

// What was typed into the box goes into the cells.
void CommitBox(int map, const std::string& text) {
    const char first = text.empty() ? '\0' : text[0];
    if (first == '+') {
        const auto amount = WholeNumber(LeadingNumber(WithDecimalPoint(text.substr(1))));
        if (amount) AddToSelection(map, *amount);
    } else if (first == '*') {
        const auto factor = LeadingNumber(WithDecimalPoint(text.substr(1)));
        if (factor) MultiplySelection(map, *factor);
    } else if (Splits(map)) {
        const auto raw = WholeNumber(LeadingNumber(WithDecimalPoint(text)));
        if (raw) SetSelection(map, *raw);
    } else if (const CellArea area = AreaOf({EditRow, EditCol, EditRowSel, EditColSel});
               area.Top != area.Bottom || area.Left != area.Right ||
               !SaysTheSame(text, GridCellText(map, area.Top, area.Left))) {
        const auto raw = RawOfText(map, text, std::min(EditRow, EditRowSel), std::min(EditCol, EditColSel));
        if (raw) SetSelection(map, *raw);
    }
}

// After a change by Undo: everything shows what the image holds, and the map that has changed comes into
// view.
void ShowUndone(bool changed, int map) {
    if (!changed) return;
    DisplayAllData();
    if (map < 0 || map >= kMapTabs || !SSTab1.TabVisible[At(map)] || SSTab1.Tab == map) return;
    SSTab1.Tab = map;
    SSTab1_Click();
}

}  // namespace

void LoadMapEditingDesign() {
    txtGrid = {};
    EditRow = EditCol = EditRowSel = EditColSel = 1;
    EditMap = -1;
    LastGridButton = 0;
    PopupGrid = 0;
    GridSpaceFlag = false;
    mnuGridCopy = {.Caption = "&Copy", .Visible = false};
    mnuGridPaste = {.Caption = "&Paste", .Visible = false};
    mnuSep4 = {.Caption = "-", .Visible = false};
    mnuGridInterpolate = {.Caption = "&Interpolate"};
    mnuUndo = {.Caption = "&Undo", .Enabled = false};
    mnuRedo = {.Caption = "&Redo", .Enabled = false};
}

void ShowGridEdit(int map) {
    txtGrid.Visible = true;
    txtGrid.Text.clear();
    txtGrid.SelStart = 0;
    txtGrid.SelectAll = false;
    ++txtGrid.Openings;
    TakeEditFields(map);
    EditMap = static_cast<std::int16_t>(map);
}

void StartGridEdit(int map, const std::string& text) {
    ShowGridEdit(map);
    txtGrid.Text = text;
    txtGrid.SelStart = 1;
}

void CancelGridEdit() {
    EditMap = -1;
    txtGrid.Visible = false;
}

void AddToSelection(int map, std::int32_t amount) {
    EditArea(map, SelectedArea(map), "Step", [map, amount](int row, int column) {
        const std::int64_t sum = std::int64_t{GetCell(map, row, column, false)} + amount;
        return std::optional(static_cast<double>(sum) > double{MapMax[At(map)]}
                                 ? static_cast<std::int32_t>(MapMax[At(map)])
                                 : Within32Bits(sum));
    });
}

void SubFromSelection(int map, std::int32_t amount) {
    EditArea(map, SelectedArea(map), "Step", [map, amount](int row, int column) {
        const std::int64_t rest = std::int64_t{GetCell(map, row, column, false)} - amount;
        return std::optional(static_cast<double>(rest) < double{MapMin[At(map)]}
                                 ? static_cast<std::int32_t>(MapMin[At(map)])
                                 : Within32Bits(rest));
    });
}

void MultiplySelection(int map, double factor) {
    EditArea(map, SelectedArea(map), "Scale", [map, factor](int row, int column) {
        const auto shown = StrictNumber(TextOf(map, row, column));
        return shown ? RawOfText(map, FormatNumber(factor * *shown, ""), row, column) : std::nullopt;
    });
}

void SetSelection(int map, std::int32_t raw) {
    const CellArea area = AreaOf({EditRow, EditCol, EditRowSel, EditColSel});
    EditArea(map, area, "Value", [map, raw](int row, int column) {
        if (!Splits(map)) return std::optional(raw);
        const double rest = static_cast<double>(GetCell(map - 1, row, column, false)) - raw;
        return std::optional(
            static_cast<std::int32_t>(std::clamp(rest, double{MapMin[At(map)]}, double{MapMax[At(map)]})));
    });
}

void CommitGridText(int map) {
    CommitTexts(map, {});
}

std::string GridClip(int map) {
    const CellArea area = SelectedArea(map);
    std::string text;
    for (int row = area.Top; row <= area.Bottom; ++row) {
        if (row > area.Top) text += '\r';
        for (int column = area.Left; column <= area.Right; ++column) {
            if (column > area.Left) text += '\t';
            text += TextOf(map, row, column);
        }
    }
    return text;
}

void SetGridClip(int map, const std::string& text) {
    const CellArea area = SelectedArea(map);
    std::size_t at = 0;
    for (int row = area.Top; row <= area.Bottom && at < text.size(); ++row) {
        std::size_t end = text.find_first_of("\r\n", at);
        if (end == text.npos) end = text.size();
        for (int column = area.Left; column <= area.Right && at <= end; ++column) {
            const std::size_t tab = std::min(text.find('\t', at), end);
            TextOf(map, row, column) = text.substr(at, tab - at);
            at = tab + 1;
        }
        at = end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
    }
}

bool Grid_KeyDown(int map, int keyCode, int shift, bool repeats) {
    if (mnuCompare.Checked) return false;
    KeyRepeats = repeats;
    const bool taken = TakeKey(map, keyCode, shift);
    KeyRepeats = false;
    return taken;
}

void Grid_MouseDown(int, int button) {
    LastGridButton = static_cast<std::int16_t>(button);
}

void Grid_DblClick(int map) {
    if (LastGridButton != 1 || mnuCompare.Checked) return;
    ShowGridEdit(map);
    const GridSelection& selection = Grid[At(map)].Selection;
    txtGrid.Text = TextOf(map, selection.Row, selection.Col);
    txtGrid.SelectAll = true;
}

void txtGrid_KeyPress(int keyCode) {
    if (keyCode != KeyEnter && keyCode != KeyEscape) return;
    if (keyCode == KeyEscape) EditMap = -1;
    txtGrid_LostFocus();
    txtGrid.Visible = false;
}

void txtGrid_LostFocus() {
    if (!txtGrid.Visible) return;
    txtGrid.Visible = false;
    if (EditMap < 0 || EditMap >= kMapTabs || mnuCompare.Checked) return;
    CommitBox(EditMap, txtGrid.Text);
}

void mnuGridCopy_Click() {
    CopySelection(PopupGrid);
}

void mnuGridPaste_Click() {
    if (!mnuCompare.Checked) PasteSelection(PopupGrid);
}

void mnuGridInterpolate_Click() {
    if (mnuCompare.Checked) return;
    const CellArea area = SelectedArea(PopupGrid);
    const auto corner = [](int row, int column) { return StrictNumber(TextOf(PopupGrid, row, column)); };
    const auto tl = corner(area.Top, area.Left), tr = corner(area.Top, area.Right);
    const auto bl = corner(area.Bottom, area.Left), br = corner(area.Bottom, area.Right);
    if (!tl || !tr || !bl || !br) return;
    const auto before = ShownNow(PopupGrid);
    const auto between = [](int i, int first, int last, double a, double b) {
        return first == last ? a : static_cast<double>(i - first) / (last - first) * (b - a) + a;
    };
    for (int row = area.Top; row <= area.Bottom; ++row) {
        const double a = between(row, area.Top, area.Bottom, *tl, *bl);
        const double b = between(row, area.Top, area.Bottom, *tr, *br);
        for (int column = area.Left; column <= area.Right; ++column) {
            TextOf(PopupGrid, row, column) = FormatNumber(between(column, area.Left, area.Right, a, b), "");
        }
    }
    const Gesture gesture("Interpolate");
    CommitTexts(PopupGrid, before);
}

void mnuReCalcBase_Click() {
    if (mnuCompare.Checked || BaseMapIndex == kNoMap || !mnuReCalcBase.Enabled) return;
    const Gesture gesture("ReCalc Base");
    const bool second = BaseMapIndex + 1 < kMapTabs && SSTab1.TabVisible[At(BaseMapIndex + 1)];
    const std::int32_t display = InjMapDisplay;
    InjMapDisplay = 0;
    const auto fold = [](int map, int row, int column, double factor) {
        SetCell(map, row, column,
                static_cast<std::int32_t>(RoundEven(GetCell(map, row, column, false) * factor)));
    };
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            // The factor as the map shows it: the last digit of the result rests on that.
            double previous = 0;
            std::string text;
            MapCellText(InjMapIndex, row, column, previous, false, text);
            const auto factor = StrictNumber(text);
            if (!factor) continue;
            fold(BaseMapIndex, row, column, *factor);
            if (second) fold(BaseMapIndex + 1, row, column, *factor);
            SetCell(InjMapIndex, row, column, kDeleteRaw);
        }
    }
    InjMapDisplay = display;
    DisplayMap(InjMapIndex, true);
    DisplayMap(BaseMapIndex, true);
    if (second) DisplayMap(BaseMapIndex + 1, true);
    EditDone();
}

void mnuUndo_Click() {
    if (mnuCompare.Checked) return;
    int map = -1;
    const bool changed = Undo(map);
    ShowUndone(changed, map);
}

void mnuRedo_Click() {
    if (mnuCompare.Checked) return;
    int map = -1;
    const bool changed = Redo(map);
    ShowUndone(changed, map);
}

void RefreshUndoItems() {
    const auto name = [](MenuItem& item, const char* caption, const std::string& step, bool any) {
        item.Caption = step.empty() ? caption : caption + (" " + step);
        item.Enabled = any && !mnuCompare.Checked;
    };
    name(mnuUndo, "&Undo", UndoName(), CanUndo());
    name(mnuRedo, "&Redo", RedoName(), CanRedo());
}

}  // namespace zandrel
