// Maps that are read and shown, and what an edit leaves behind: cells, flags, notices and steps of Undo.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "support/cleanstate.h"
#include "support/scripteddesktop.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mapediting.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/numbers.h"

namespace zandrel {

inline constexpr const char* kPlain = "RB26DETT6.42";      // INJ, IGN
inline constexpr const char* kSplitting = "13B-REW7.07";   // INJ, IGL, IGT, base; two kinds of injectors
inline constexpr const char* kWithBase = "1JZ-GTE23.12";   // INJ, IGN, base
inline constexpr const char* kWithTwoBases = "B18C2.02B";  // INJ, IGN, base, base

/// Shift states of a key.
enum : int { NoShift, Shift, Control, Alt = 4 };

class MapFixture : public CleanState {
  protected:
    MapFixture() {
        before_ = std::move(AfterEdit);
        AfterEdit = [this] { ++edits_; };
    }
    ~MapFixture() override { AfterEdit = std::move(before_); }

    // All cells of the build's maps read and shown: each map's middle value, 128, or 1000 on a base map.
    void Read(const char* key) {
        GridInit();
        ApplyBuild(key);
        for (int map = 0; map < kMapTabs; ++map) {
            if (!SSTab1.TabVisible[map]) continue;
            const bool words = MapCellSize[map] == 2;
            ByteString block;
            while (block.size() < 100) block += words ? ByteString("\xE8\x03") : ByteString("\x80");
            for (int k = 0; k < MapCellSize[map] * 4; ++k) ReadData[MapFirstBlock[map] + k] = block;
        }
        // 3000 rpm in every column, injectors of two sizes where the build has them.
        ByteString axis;
        while (axis.size() < 82) axis += "\xB8\x0B";
        for (const int block : {0x8A, 0x60, 0x61}) ReadData[block] = axis;
        for (const auto& [index, text] :
             {std::pair(500, "100.0"), {1500, "80.0"}, {1502, "550"}, {1503, "800"}}) {
            const auto block = static_cast<std::size_t>(LenientNumber(txtSetting[index].Tag));
            if (ReadData[block].empty()) ReadData[block] = ByteString(24, '\0');
            SetNumber(txtSetting[index].Tag, text);
        }
        DisplayAllData();
        Begin();
    }

    /// What stands now is what was read: nothing changed, nothing to undo, all maps shown.
    void Begin() {
        DisplayAllMaps();
        ForgetFlags();
        ClearHistory();
    }

    void ForgetFlags() {
        BlockChanged.fill(false);
        MapCellChanged = {};
        DataChanged = false;
        edits_ = 0;
    }

    static void Put(int map, int row, int column, int raw) {
        SetCell(map, row, column, raw);
        DisplayMap(map, true);
    }
    static int Raw(int map, int row, int column) { return GetCell(map, row, column, false); }
    static const std::string& Text(int map, int row, int column) { return Grid[map].TextMatrix[row][column]; }
    static void Select(int map, int row, int col, int rowSel, int colSel) {
        Grid[map].Selection = {row, col, rowSel, colSel};
    }
    static void Select(int map, int row, int col) { Select(map, row, col, row, col); }

    /// Opens the box on the selection, types `text` into it and presses Enter.
    static void Type(int map, const std::string& text) {
        StartGridEdit(map, text.substr(0, 1));
        txtGrid.Text = text;
        txtGrid_KeyPress(13);
    }

    static void Paste(int map, const std::string& text) {
        Clipboard() = text;
        EXPECT_TRUE(Grid_KeyDown(map, 86, Control));
    }

    static int Flags() {
        int flags = 0;
        for (const auto& map : MapCellChanged) {
            for (const auto& row : map) {
                for (const bool cell : row) flags += cell ? 1 : 0;
            }
        }
        return flags;
    }

    static int Steps() {
        int steps = 0;
        int map = -1;
        for (; CanUndo(); ++steps) Undo(map);
        return steps;
    }

    bool Untouched() const { return edits_ == 0 && !DataChanged && Flags() == 0 && !CanUndo(); }

    /// True if all cells of `map` show what the image holds.
    static bool ShowsWhatIsStored(int map) {
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column) {
                if (Text(map, row, column) == GridCellText(map, row, column)) continue;
                ADD_FAILURE() << "map " << map << " cell " << row << "," << column << " shows "
                              << Text(map, row, column) << " instead of " << GridCellText(map, row, column);
                return false;
            }
        }
        return true;
    }

    int edits_ = 0;

  private:
    std::function<void()> before_;
};

}  // namespace zandrel
