#include "tuning/mapediting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <random>

#include "tuning/mapfixture.h"
#include "tuning/settings.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

class MapEditing : public MapFixture {};

// ---- the tail of an edit

TEST_F(MapEditing, ChangedCell_RaisesItsFlagsAndShowsItsTextAndColour) {
    Read(kPlain);
    Select(0, 7, 3);
    AddToSelection(0, 64);
    EXPECT_EQ(Raw(0, 7, 3), 192);
    EXPECT_EQ(Text(0, 7, 3), "1.250");
    EXPECT_EQ(Grid[0].CellBackColor[7][3], 192U * 256 + 63);
    EXPECT_TRUE(MapCellChanged[0][7][3]);
    EXPECT_EQ(Flags(), 1);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 1);
    // Row 7 of column 3 is the 47th cell.
    for (int block = 0; block < 256; ++block) EXPECT_EQ(BlockChanged[block], block == 0x86) << block;
    EXPECT_EQ(ReadData[0x86], ByteString(46, '\x80') + '\xC0' + ByteString(53, '\x80'));
}

TEST_F(MapEditing, SameValueAgain_LeavesTheCellAloneAndShowsItAnew) {
    Read(kPlain);
    Select(0, 7, 3);
    Grid[0].TextMatrix[7][3] = "stale";
    Grid[0].CellBackColor[7][3] = 1;
    EditRow = EditRowSel = 7;
    EditCol = EditColSel = 3;
    SetSelection(0, 128);
    EXPECT_TRUE(Untouched());
    EXPECT_FALSE(BlockChanged[0x86]);
    EXPECT_EQ(Text(0, 7, 3), "1.000");
    EXPECT_EQ(Grid[0].CellBackColor[7][3], 128U * 256 + 127);
}

// The new value differs from the stored one, but is no byte: what is stored stays.
TEST_F(MapEditing, NewValueThatTheClampBringsBack_RaisesTheFlagsOfCellAndImage) {
    Read(kPlain);
    Put(0, 1, 1, 0);
    ForgetFlags();
    ClearHistory();
    Select(0, 1, 1);
    AddToSelection(0, -1);
    EXPECT_EQ(Raw(0, 1, 1), 0);
    EXPECT_TRUE(MapCellChanged[0][1][1]);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 1);
    EXPECT_FALSE(BlockChanged[0x86]);
    EXPECT_FALSE(CanUndo());
}

TEST_F(MapEditing, UnreadMap_TakesNoByte) {
    Read(kPlain);
    for (int k = 0; k < 4; ++k) ReadData[0x86 + k].clear();
    Begin();
    Select(0, 1, 1, 20, 20);
    AddToSelection(0, 1);
    Type(0, "1.2");
    Paste(0, "1.3");
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(ReadData[0x86 + k], "");
        EXPECT_FALSE(BlockChanged[0x86 + k]);
    }
    EXPECT_FALSE(CanUndo());
    EXPECT_TRUE(ShowsWhatIsStored(0));
}

TEST_F(MapEditing, Selection_StaysAsItWasDrawnAndPaintingGoesOn) {
    Read(kPlain);
    const GridSelection drawn{9, 8, 4, 5};
    const std::function<void()> edits[] = {[] { AddToSelection(0, 1); },
                                           [] { SubFromSelection(0, 1); },
                                           [] { MultiplySelection(0, 1.01); },
                                           [] { SetSelection(0, 7); },
                                           [] { CommitGridText(0); },
                                           [] {
                                               Grid[0].TextMatrix[5][5] = "bad";
                                               CommitGridText(0);
                                           }};
    for (const auto& edit : edits) {
        Grid[0].Selection = drawn;
        const unsigned before = Grid[0].Revision;
        edit();
        EXPECT_EQ(Grid[0].Selection, drawn);
        EXPECT_TRUE(Grid[0].Redraw);
        EXPECT_GT(Grid[0].Revision, before);
    }
}

TEST_F(MapEditing, SelectionDrawnInAnyDirection_IsTheSameRectangle) {
    Read(kPlain);
    for (const GridSelection& drawn : {GridSelection{4, 5, 9, 8}, {9, 8, 4, 5}, {4, 8, 9, 5}, {9, 5, 4, 8}}) {
        Begin();
        Grid[0].Selection = drawn;
        AddToSelection(0, 1);
        EXPECT_EQ(Flags(), 6 * 4);
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column) {
                const bool inside = row >= 4 && row <= 9 && column >= 5 && column <= 8;
                EXPECT_EQ(Raw(0, row, column), inside ? 129 : 128) << row << "," << column;
                EXPECT_EQ(MapCellChanged[0][row][column], inside) << row << "," << column;
            }
        }
        SubFromSelection(0, 1);
    }
}

// ---- stepping

TEST_F(MapEditing, AddAndSub_StopAtTheLimitOfTheirDirectionAlone) {
    struct Row {
        bool Add;
        int Raw;
        std::int32_t Amount;
        int Expected;
    };
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    Read(kPlain);
    for (const Row& row :
         {Row{true, 100, 1, 101}, Row{true, 254, 1, 255}, Row{true, 255, 1, 255}, Row{true, 250, 10, 255},
          Row{true, 100, -100, 0}, Row{true, 100, -101, 0}, Row{true, 100, kMost, 255},
          Row{true, 100, kLeast, 0}, Row{false, 100, 1, 99}, Row{false, 1, 1, 0}, Row{false, 0, 1, 0},
          Row{false, 5, 10, 0}, Row{false, 100, -155, 255}, Row{false, 100, -156, 255},
          Row{false, 100, kMost, 0}, Row{false, 100, kLeast, 255}, Row{true, 100, 0, 100}}) {
        Put(0, 2, 2, row.Raw);
        Select(0, 2, 2);
        row.Add ? AddToSelection(0, row.Amount) : SubFromSelection(0, row.Amount);
        EXPECT_EQ(Raw(0, 2, 2), row.Expected) << row.Add << " " << row.Raw << " " << row.Amount;
        EXPECT_EQ(Text(0, 2, 2), GridCellText(0, 2, 2));
    }
}

// No lower limit stands in the way of adding: what comes below no cell can hold.
TEST_F(MapEditing, Add_HasNoLowerLimitAndSubNoUpperOne) {
    Read(kPlain);
    MapMin[0] = 50;
    MapMax[0] = 200;
    Put(0, 1, 1, 60);
    Select(0, 1, 1);
    AddToSelection(0, -30);
    EXPECT_EQ(Raw(0, 1, 1), 30);
    SubFromSelection(0, 1);
    EXPECT_EQ(Raw(0, 1, 1), 50);
    SubFromSelection(0, -190);
    EXPECT_EQ(Raw(0, 1, 1), 240);
    AddToSelection(0, 1);
    EXPECT_EQ(Raw(0, 1, 1), 200);
}

TEST_F(MapEditing, WordMap_StepsAcrossItsBytesAndStopsAtItsLimits) {
    Read(kWithBase);
    const int map = BaseMapIndex;
    Select(map, 20, 20);
    Put(map, 20, 20, 255);
    AddToSelection(map, 1);
    EXPECT_EQ(Raw(map, 20, 20), 256);
    AddToSelection(map, 65279);
    EXPECT_EQ(Raw(map, 20, 20), 65535);
    AddToSelection(map, 1);
    EXPECT_EQ(Raw(map, 20, 20), 65535);
    SubFromSelection(map, 65535);
    EXPECT_EQ(Raw(map, 20, 20), 0);
    SubFromSelection(map, 1);
    EXPECT_EQ(Raw(map, 20, 20), 0);
    AddToSelection(map, -1);
    EXPECT_EQ(Raw(map, 20, 20), 0);
    EXPECT_EQ(Text(map, 20, 20), "0.000");
}

// ---- scaling

TEST_F(MapEditing, Multiply_ScalesWhatIsShown) {
    Read(kPlain);
    Put(0, 1, 1, 0);    // 0.500
    Put(0, 1, 2, 255);  // 1.496
    Begin();
    Select(0, 1, 1, 1, 3);
    MultiplySelection(0, 1.1);
    EXPECT_EQ(Raw(0, 1, 1), 13);   // 0.55: 12.8
    EXPECT_EQ(Raw(0, 1, 2), 255);  // 1.6456 is above the map
    EXPECT_EQ(Raw(0, 1, 3), 154);  // 1.1: 153.6
    EXPECT_EQ(Flags(), 2);
}

TEST_F(MapEditing, Multiply_InEachModeOfTheInjectionMap) {
    Read(kPlain);
    Select(0, 1, 1);
    InjMapDisplay = 1;
    Put(0, 1, 1, 128);
    MultiplySelection(0, 0.8);  // lambda 0.8 is 1.25
    EXPECT_EQ(Raw(0, 1, 1), 192);
    InjMapDisplay = 2;
    Put(0, 1, 1, 128);
    MultiplySelection(0, 0.8);  // 11.76 of 14.7
    EXPECT_EQ(Raw(0, 1, 1), 192);
    MultiplySelection(0, 0);
    EXPECT_EQ(Raw(0, 1, 1), 255);
}

TEST_F(MapEditing, Multiply_RestsOnTheTextAsItStandsInTheGrid) {
    Read(kPlain);
    InjMapDisplay = 2;
    DisplayMap(0, true);
    StoichAF = 29.4;  // the text is still 14.700
    Select(0, 1, 1);
    MultiplySelection(0, 2);
    EXPECT_EQ(Raw(0, 1, 1), 128);
    EXPECT_EQ(Text(0, 1, 1), "29.400");
}

TEST_F(MapEditing, Multiply_EndsAtACellWithoutANumberAndKeepsTheCellsBefore) {
    Read(kPlain);
    Select(0, 1, 1, 2, 2);
    Grid[0].TextMatrix[1][2] = "";
    MultiplySelection(0, 1.1);
    EXPECT_EQ(Raw(0, 1, 1), 154);
    for (const auto& [row, column] : {std::pair(1, 2), {2, 1}, {2, 2}}) EXPECT_EQ(Raw(0, row, column), 128);
    EXPECT_EQ(Flags(), 1);
    EXPECT_TRUE(ShowsWhatIsStored(0));
}

TEST_F(MapEditing, MultiplyByTooMuch_ChangesNothing) {
    Read(kPlain);
    Put(1, 1, 1, 200);
    ForgetFlags();
    ClearHistory();
    Select(1, 1, 1);
    MultiplySelection(1, 1e307);
    EXPECT_EQ(Raw(1, 1, 1), 200);
    EXPECT_TRUE(Untouched());
    EXPECT_TRUE(ShowsWhatIsStored(1));
    MultiplySelection(1, 1e300);
    EXPECT_EQ(Raw(1, 1, 1), 255);
}

// ---- setting

TEST_F(MapEditing, SetSelection_FillsTheCellsThatTheBoxStoodOn) {
    Read(kPlain);
    Select(0, 2, 2, 3, 4);
    ShowGridEdit(0);
    Select(0, 10, 10, 11, 11);
    SetSelection(0, 7);
    EXPECT_EQ(Flags(), 6);
    EXPECT_EQ(Raw(0, 2, 2), 7);
    EXPECT_EQ(Raw(0, 3, 4), 7);
    EXPECT_EQ(Raw(0, 10, 10), 128);
    EXPECT_EQ(Grid[0].Selection, (GridSelection{10, 10, 11, 11}));
}

TEST_F(MapEditing, SetSelectionBeyondAByte_StoresTheLimit) {
    Read(kPlain);
    Select(0, 1, 1);
    ShowGridEdit(0);
    SetSelection(0, 300);
    EXPECT_EQ(Raw(0, 1, 1), 255);
    SetSelection(0, -300);
    EXPECT_EQ(Raw(0, 1, 1), 0);
}

TEST_F(MapEditing, SetSelectionInSplitDisplay_IsTheMapBeforeLessTheValueWithinTheLimits) {
    struct Row {
        int Before;
        std::int32_t Given;
        int Expected;
    };
    Read(kSplitting);
    chkSplit[2].Value = 1;
    Select(2, 4, 4);
    ShowGridEdit(2);
    for (const Row& row : {Row{50, 5, 45}, Row{50, -5, 55}, Row{50, 51, 0}, Row{250, -6, 255},
                           Row{50, 1000000, 0}, Row{50, std::numeric_limits<std::int32_t>::min(), 255},
                           Row{50, std::numeric_limits<std::int32_t>::max(), 0}}) {
        Put(1, 4, 4, row.Before);
        SetSelection(2, row.Given);
        EXPECT_EQ(Raw(2, 4, 4), row.Expected) << row.Before << " " << row.Given;
        EXPECT_EQ(Raw(1, 4, 4), row.Before);
    }
}

// ---- texts into values

TEST_F(MapEditing, CommitGridText_ConvertsEachTextInItsOwnCell) {
    Read(kWithBase);
    const int map = BaseMapIndex;
    BaseMapDisplay = 1;
    Put(0, 1, 1, 0);    // factor 0.5
    Put(0, 1, 2, 128);  // 1.0
    DisplayMap(map, true);
    Select(map, 1, 1, 1, 2);
    Grid[map].TextMatrix[1][1] = Grid[map].TextMatrix[1][2] = "4";
    CommitGridText(map);
    EXPECT_EQ(Raw(map, 1, 1), 2000);
    EXPECT_EQ(Raw(map, 1, 2), 1000);
    EXPECT_EQ(Text(map, 1, 1), "4.000");
}

TEST_F(MapEditing, CommitGridTextInSplitDisplay_TakesAWholeNumberWithoutLimits) {
    Read(kSplitting);
    chkSplit[2].Value = 1;
    Put(1, 1, 1, 50);
    Put(1, 1, 2, 50);
    Put(1, 1, 3, 50);
    Put(1, 1, 4, 50);
    Begin();
    Select(2, 1, 1, 1, 4);
    Paste(2, "10\t2.5\t-300\t300");
    EXPECT_EQ(Raw(2, 1, 1), 40);
    EXPECT_EQ(Raw(2, 1, 2), 48);   // 2.5 is the even 2
    EXPECT_EQ(Raw(2, 1, 3), 255);  // 350, held by the byte
    EXPECT_EQ(Raw(2, 1, 4), 0);
    EXPECT_EQ(Text(2, 1, 1), "10");
    EXPECT_TRUE(ShowsWhatIsStored(2));
}

TEST_F(MapEditing, BadTextInSplitDisplay_EndsThere) {
    Read(kSplitting);
    chkSplit[2].Value = 1;
    for (const char* bad : {"", "x", "1e400", "inf", "1e10", "5x", "1.2.3"}) {
        Put(1, 1, 1, 50);
        Put(2, 1, 1, 50);
        Put(2, 1, 2, 30);
        Put(2, 1, 3, 30);
        ForgetFlags();
        Select(2, 1, 1, 1, 3);
        Paste(2, std::string("10\t") + bad + "\t10");
        EXPECT_EQ(Raw(2, 1, 1), 40) << bad;
        EXPECT_EQ(Raw(2, 1, 2), 30) << bad;
        EXPECT_EQ(Raw(2, 1, 3), 30) << bad;
        EXPECT_TRUE(ShowsWhatIsStored(2)) << bad;
    }
}

// ---- keys

struct KeyPress {
    int Key;
    int Shift;
};

TEST_F(MapEditing, KeysThatOpenTheBox_BringTheirCharacter) {
    Read(kPlain);
    std::vector<std::pair<KeyPress, std::string>> rows = {
        {{106, NoShift}, "*"}, {{110, NoShift}, "."}, {{190, NoShift}, "."},
        {{188, NoShift}, ","}, {{56, Shift}, "*"},
    };
    for (int digit = 0; digit <= 9; ++digit) {
        rows.push_back({{48 + digit, NoShift}, std::to_string(digit)});
        rows.push_back({{96 + digit, NoShift}, std::to_string(digit)});
    }
    for (const auto& [press, text] : rows) {
        Select(0, 3, 4, 5, 6);
        EditMap = -1;
        txtGrid = {};
        EXPECT_TRUE(Grid_KeyDown(0, press.Key, press.Shift)) << press.Key;
        EXPECT_TRUE(txtGrid.Visible) << press.Key;
        EXPECT_EQ(txtGrid.Text, text) << press.Key;
        EXPECT_EQ(txtGrid.SelStart, 1) << press.Key;
        EXPECT_FALSE(txtGrid.SelectAll) << press.Key;
        EXPECT_EQ(txtGrid.Openings, 1U) << press.Key;
        EXPECT_EQ(EditMap, 0) << press.Key;
        EXPECT_EQ(EditRow, 3);
        EXPECT_EQ(EditCol, 4);
        EXPECT_EQ(EditRowSel, 5);
        EXPECT_EQ(EditColSel, 6);
    }
    EXPECT_TRUE(Untouched());
}

TEST_F(MapEditing, KeysThatStep_ChangeTheSelectionByOneOrTen) {
    Read(kPlain);
    const std::pair<KeyPress, int> rows[] = {
        {{107, NoShift}, 1},  {{187, NoShift}, 1},  {{109, NoShift}, -1},  {{189, NoShift}, -1},
        {{107, Control}, 10}, {{187, Control}, 10}, {{109, Control}, -10}, {{189, Control}, -10},
    };
    for (const auto& [press, difference] : rows) {
        for (int map = 0; map <= 1; ++map) {
            Put(map, 2, 2, 100);
            Select(map, 2, 2);
            ForgetFlags();
            EXPECT_TRUE(Grid_KeyDown(map, press.Key, press.Shift)) << press.Key;
            EXPECT_EQ(Raw(map, 2, 2), 100 + difference) << press.Key;
            EXPECT_EQ(edits_, 1);
        }
    }
}

TEST_F(MapEditing, StepInLambdaAndAirFuelRatio_GoesTheOtherWay) {
    Read(kWithBase);
    for (int mode = 1; mode <= 2; ++mode) {
        InjMapDisplay = mode;
        for (int map = 0; map <= 2; ++map) {
            const int sign = map == 0 ? -1 : 1;
            Put(map, 2, 2, 100);
            Select(map, 2, 2);
            const std::string before = Text(map, 2, 2);
            Grid_KeyDown(map, 187, NoShift);
            EXPECT_EQ(Raw(map, 2, 2), 100 + sign) << map;
            EXPECT_GT(StrictNumber(Text(map, 2, 2)), StrictNumber(before)) << map;  // what is shown rises
            Grid_KeyDown(map, 187, Control);
            EXPECT_EQ(Raw(map, 2, 2), 100 + 11 * sign) << map;
            Grid_KeyDown(map, 189, Control);
            Grid_KeyDown(map, 109, NoShift);
            EXPECT_EQ(Raw(map, 2, 2), 100) << map;
        }
    }
}

TEST_F(MapEditing, StepInSplitDisplay_GoesTheOtherWayOnItsMapAlone) {
    Read(kSplitting);
    chkSplit[2].Value = 1;
    Put(1, 1, 1, 100);
    Put(2, 1, 1, 90);
    EXPECT_EQ(Text(2, 1, 1), "10");
    Select(2, 1, 1);
    Grid_KeyDown(2, 107, NoShift);
    EXPECT_EQ(Raw(2, 1, 1), 89);
    EXPECT_EQ(Text(2, 1, 1), "11");
    Grid_KeyDown(2, 109, Control);
    EXPECT_EQ(Raw(2, 1, 1), 99);
    Select(1, 1, 1);
    Grid_KeyDown(1, 107, NoShift);
    EXPECT_EQ(Raw(1, 1, 1), 101);
}

// Nothing lies below raw 0, but the new value differs from the stored one.
TEST_F(MapEditing, StepInSplitDisplayAtZero_StaysThereAndRaisesTheFlags) {
    Read(kSplitting);
    chkSplit[2].Value = 1;
    Put(2, 1, 1, 0);
    ForgetFlags();
    ClearHistory();
    Select(2, 1, 1);
    Grid_KeyDown(2, 107, NoShift);
    EXPECT_EQ(Raw(2, 1, 1), 0);
    EXPECT_TRUE(MapCellChanged[2][1][1]);
    EXPECT_TRUE(DataChanged);
    EXPECT_FALSE(CanUndo());
}

TEST_F(MapEditing, Delete_WritesTheMiddleIntoTheSelectionAndNotWhereAnOldBoxStood) {
    Read(kPlain);
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) SetCell(0, row, column, 10);
    }
    Begin();
    Select(0, 1, 1);
    ShowGridEdit(0);
    CancelGridEdit();
    Select(0, 5, 6, 4, 4);
    EXPECT_TRUE(Grid_KeyDown(0, 46, NoShift));
    EXPECT_EQ(Raw(0, 1, 1), 10);
    EXPECT_EQ(Flags(), 6);
    EXPECT_EQ(Raw(0, 4, 4), 128);
    EXPECT_EQ(Text(0, 5, 6), "1.000");
    EXPECT_EQ(edits_, 1);
    EXPECT_EQ(Steps(), 1);
}

TEST_F(MapEditing, DeleteInSplitDisplay_IsTheMapBeforeLessTheMiddle) {
    Read(kSplitting);
    chkSplit[2].Value = 1;
    Put(1, 1, 1, 150);
    Select(2, 1, 1);
    Grid_KeyDown(2, 46, NoShift);
    EXPECT_EQ(Raw(2, 1, 1), 22);
}

TEST_F(MapEditing, Space_IsRememberedAndDoesNothingElse) {
    Read(kPlain);
    EXPECT_TRUE(Grid_KeyDown(0, 32, NoShift));
    EXPECT_TRUE(GridSpaceFlag);
    EXPECT_TRUE(Untouched());
    EXPECT_FALSE(txtGrid.Visible);
}

TEST_F(MapEditing, SelectAll_TakesEveryCell) {
    Read(kPlain);
    Select(0, 5, 5, 3, 3);
    EXPECT_TRUE(Grid_KeyDown(0, 65, Control));
    EXPECT_EQ(Grid[0].Selection, (GridSelection{1, 1, 20, 20}));
    EXPECT_TRUE(Untouched());
}

// What the text names: a key with the one state that goes with it.
bool IsAKeyOfTheMap(int key, int shift) {
    switch (shift) {
        case NoShift:
            return (key >= 48 && key <= 57) || (key >= 96 && key <= 107) || key == 109 || key == 110 ||
                   (key >= 187 && key <= 190) || key == 46 || key == 32;
        case Shift:
            return key == 56;
        case Control:
            return key == 65 || key == 67 || key == 86 || key == 107 || key == 187 || key == 109 ||
                   key == 189;
        default:
            return false;
    }
}

TEST_F(MapEditing, AnyOtherKeyOrShiftState_DoesNothing) {
    Read(kPlain);
    Select(0, 2, 2, 3, 3);
    Clipboard() = "kept";
    const auto image = ReadData;
    int taken = 0, left = 0;
    for (int shift = 0; shift <= 7; ++shift) {
        for (int key = 0; key <= 255; ++key) {
            if (IsAKeyOfTheMap(key, shift)) {
                ++taken;
                continue;
            }
            ++left;
            EXPECT_FALSE(Grid_KeyDown(0, key, shift)) << key << " with " << shift;
            EXPECT_FALSE(txtGrid.Visible) << key << " with " << shift;
            EXPECT_FALSE(GridSpaceFlag) << key << " with " << shift;
            EXPECT_EQ(Grid[0].Selection, (GridSelection{2, 2, 3, 3})) << key << " with " << shift;
            EXPECT_EQ(Clipboard(), "kept") << key << " with " << shift;
        }
    }
    EXPECT_EQ(taken, 30 + 1 + 7);
    EXPECT_GT(left, 2000);
    EXPECT_TRUE(ReadData == image);
    EXPECT_TRUE(Untouched());
}

TEST_F(MapEditing, CompareMode_LetsNoKeyButtonOrMenuEditAnything) {
    Read(kWithBase);
    Put(0, 1, 1, 60);
    ForgetFlags();
    ClearHistory();
    SetNumber("&H86,1,1,1,0,0", "61");  // a step that Undo must not take back now
    ForgetFlags();
    mnuCompare.Checked = true;
    const auto image = ReadData;
    Select(0, 1, 1, 5, 5);
    Clipboard() = "1.2\t1.3";
    for (int shift = 0; shift <= 7; ++shift) {
        for (int key = 0; key <= 255; ++key) EXPECT_FALSE(Grid_KeyDown(0, key, shift)) << key << " " << shift;
    }
    EXPECT_EQ(Clipboard(), "1.2\t1.3");
    EXPECT_EQ(Grid[0].Selection, (GridSelection{1, 1, 5, 5}));
    EXPECT_FALSE(GridSpaceFlag);
    Grid_MouseDown(0, 1);
    Grid_DblClick(0);
    EXPECT_FALSE(txtGrid.Visible);
    PopupGrid = 0;
    mnuGridPaste_Click();
    mnuGridInterpolate_Click();
    mnuReCalcBase_Click();
    mnuUndo_Click();
    mnuRedo_Click();
    EXPECT_TRUE(ReadData == image);
    EXPECT_EQ(edits_, 0);
    EXPECT_EQ(Flags(), 0);
    EXPECT_FALSE(DataChanged);
    EXPECT_TRUE(CanUndo());
    EXPECT_FALSE(CanRedo());
    RefreshUndoItems();
    EXPECT_FALSE(mnuUndo.Enabled);
}

TEST_F(MapEditing, CopyByTheMenu_WorksInCompareModeToo) {
    Read(kPlain);
    mnuCompare.Checked = true;
    CompareMapIndex[0] = 0;
    MapCompare[0][1][1] = 192;
    DisplayMap(0, true);
    Select(0, 1, 1);
    PopupGrid = 0;
    mnuGridCopy_Click();
    EXPECT_EQ(Clipboard(), "0.250");
}

TEST_F(MapEditing, BoxOpenWhenCompareBegins_StoresNothing) {
    Read(kPlain);
    Select(0, 1, 1);
    StartGridEdit(0, "1");
    txtGrid.Text = "1.25";
    mnuCompare.Checked = true;
    txtGrid_LostFocus();
    EXPECT_FALSE(txtGrid.Visible);
    EXPECT_TRUE(Untouched());
}

// ---- the box in the cell

TEST_F(MapEditing, ShowGridEdit_OpensAnEmptyBoxOnTheSelection) {
    Read(kPlain);
    txtGrid.Text = "old";
    txtGrid.SelStart = 1;
    txtGrid.SelectAll = true;
    Select(1, 9, 8, 4, 5);
    ShowGridEdit(1);
    EXPECT_TRUE(txtGrid.Visible);
    EXPECT_EQ(txtGrid.Text, "");
    EXPECT_EQ(txtGrid.SelStart, 0);
    EXPECT_FALSE(txtGrid.SelectAll);
    EXPECT_EQ(txtGrid.Openings, 1U);
    EXPECT_EQ(EditMap, 1);
    EXPECT_EQ(EditRow, 9);
    EXPECT_EQ(EditCol, 8);
    EXPECT_EQ(EditRowSel, 4);
    EXPECT_EQ(EditColSel, 5);
    ShowGridEdit(1);
    EXPECT_EQ(txtGrid.Openings, 2U);
}

TEST_F(MapEditing, DoubleClick_OpensTheBoxWithTheCellsText) {
    Read(kPlain);
    Put(0, 3, 3, 192);
    Select(0, 3, 3, 6, 6);
    Grid_MouseDown(0, 1);
    EXPECT_EQ(LastGridButton, 1);
    Grid_DblClick(0);
    EXPECT_TRUE(txtGrid.Visible);
    EXPECT_EQ(txtGrid.Text, "1.250");
    EXPECT_EQ(EditMap, 0);
    EXPECT_EQ(EditRow, 3);
}

TEST_F(MapEditing, DoubleClickOfAnyOtherButton_OpensNothing) {
    Read(kPlain);
    for (const int button : {0, 2, 3, 4, -1}) {
        Grid_MouseDown(0, button);
        Grid_DblClick(0);
        EXPECT_FALSE(txtGrid.Visible) << button;
    }
}

TEST_F(MapEditing, EnterStores_EscapeDoesNot_OtherKeysAreTheBoxes) {
    Read(kPlain);
    Select(0, 1, 1);
    StartGridEdit(0, "1");
    txtGrid.Text = "1.25";
    for (int key = 0; key < 256; ++key) {
        if (key == 13 || key == 27) continue;
        txtGrid_KeyPress(key);
        ASSERT_TRUE(txtGrid.Visible) << key;
    }
    EXPECT_TRUE(Untouched());
    txtGrid_KeyPress(27);
    EXPECT_FALSE(txtGrid.Visible);
    EXPECT_EQ(EditMap, -1);
    EXPECT_TRUE(Untouched());
    txtGrid_LostFocus();  // the box loses the focus as it goes
    EXPECT_TRUE(Untouched());

    StartGridEdit(0, "1");
    txtGrid.Text = "1.25";
    txtGrid_KeyPress(13);
    EXPECT_FALSE(txtGrid.Visible);
    EXPECT_EQ(Raw(0, 1, 1), 192);
    EXPECT_EQ(edits_, 1);
    txtGrid_LostFocus();
    EXPECT_EQ(edits_, 1);
}

TEST_F(MapEditing, FormulaStoredByEnter_IsDoneOnce) {
    Read(kPlain);
    Select(0, 1, 1);
    StartGridEdit(0, "+");
    txtGrid.Text = "+5";
    txtGrid_KeyPress(13);
    txtGrid_LostFocus();
    txtGrid_LostFocus();
    EXPECT_EQ(Raw(0, 1, 1), 133);
}

TEST_F(MapEditing, BoxThatLosesTheFocus_Stores) {
    Read(kPlain);
    Select(0, 1, 1);
    StartGridEdit(0, "1");
    txtGrid.Text = "1.25";
    txtGrid_LostFocus();
    EXPECT_FALSE(txtGrid.Visible);
    EXPECT_EQ(Raw(0, 1, 1), 192);
}

TEST_F(MapEditing, CancelledBox_StoresNothing) {
    Read(kPlain);
    Select(0, 1, 1);
    StartGridEdit(0, "1");
    txtGrid.Text = "1.25";
    CancelGridEdit();
    EXPECT_FALSE(txtGrid.Visible);
    txtGrid_LostFocus();
    EXPECT_TRUE(Untouched());
}

TEST_F(MapEditing, TypedValue_FillsTheSelectionConvertedAtItsTopLeftCell) {
    Read(kWithBase);
    const int map = BaseMapIndex;
    BaseMapDisplay = 1;
    Put(0, 2, 2, 0);  // factor 0.5 in the top left cell, 1.0 in the others
    DisplayMap(map, true);
    for (const GridSelection& drawn : {GridSelection{2, 2, 3, 3}, {3, 3, 2, 2}, {2, 3, 3, 2}}) {
        Begin();
        Grid[map].Selection = drawn;
        Type(map, "8");
        for (int row = 2; row <= 3; ++row) {
            for (int column = 2; column <= 3; ++column)
                EXPECT_EQ(Raw(map, row, column), 4000) << row << "," << column;
        }
        EXPECT_EQ(Text(map, 2, 2), "8.000");
        EXPECT_EQ(Text(map, 3, 3), "16.000");
        EXPECT_EQ(edits_, 1);
        EXPECT_EQ(Steps(), 1);
    }
}

TEST_F(MapEditing, TypedTexts_OfTheInjectionMap) {
    struct Row {
        const char* Text;
        int Expected;  // of a cell that held 128
    };
    Read(kPlain);
    for (const Row& row :
         {Row{"1.25", 192}, Row{"1,25", 192}, Row{" 1.25 ", 192}, Row{"1.25e0", 192}, Row{".75", 64},
          Row{",75", 64}, Row{"0", 0}, Row{"-5", 0}, Row{"-1e300", 0}, Row{"9999", 255}, Row{"1e300", 255},
          Row{"&H1", 128}, Row{"&HFF", 255},
          // formulas
          Row{"+5", 133}, Row{"+-5", 123}, Row{"+2.5", 130}, Row{"+3.5", 132}, Row{"+3,5", 132},
          Row{"+300", 255}, Row{"+-300", 0}, Row{"+", 128}, Row{"+abc", 128}, Row{"+5abc", 133},
          Row{"+1e400", 128}, Row{"+1e10", 128}, Row{"+-1e10", 128}, Row{"+inf", 128}, Row{"+nan", 128},
          Row{"+&HA", 138}, Row{"*1.1", 154}, Row{"*1,1", 154}, Row{"*0,95", 115}, Row{"*1.1x", 154},
          Row{"*1e300", 255}, Row{"*-1", 0}, Row{"*", 0}, Row{"*abc", 0}, Row{"*inf", 0}, Row{"*1e400", 128},
          // no numbers
          Row{"", 128}, Row{" ", 128}, Row{"abc", 128}, Row{"1.25x", 128}, Row{"1 25", 128},
          Row{"1,2,5", 128}, Row{"1.2,5", 128}, Row{"1e400", 128}, Row{"-1e400", 128}, Row{"inf", 128},
          Row{"-inf", 128}, Row{"nan", 128}, Row{"infinity", 128}, Row{"&H", 128}, Row{"&HG", 128},
          Row{"1e", 128}, Row{"--5", 128}, Row{"/2", 128}, Row{" +5", 255}, Row{" *2", 128}}) {
        Put(0, 2, 2, 128);
        Put(0, 2, 3, 128);
        ForgetFlags();
        ClearHistory();
        Select(0, 2, 2, 2, 3);
        Type(0, row.Text);
        EXPECT_EQ(Raw(0, 2, 2), row.Expected) << row.Text;
        EXPECT_EQ(Raw(0, 2, 3), row.Expected) << row.Text;
        EXPECT_FALSE(txtGrid.Visible) << row.Text;
        EXPECT_TRUE(ShowsWhatIsStored(0)) << row.Text;
        if (row.Expected == 128) {
            EXPECT_TRUE(Untouched()) << row.Text;
        } else {
            EXPECT_EQ(edits_, 1) << row.Text;
            EXPECT_EQ(Steps(), 1) << row.Text;
        }
    }
}

// The key takes care of displays in which more is less; the formula is raw steps.
TEST_F(MapEditing, TypedPlus_AddsRawStepsInEveryMode) {
    Read(kSplitting);
    InjMapDisplay = 1;
    Select(0, 1, 1);
    Begin();
    Type(0, "+5");
    EXPECT_EQ(Raw(0, 1, 1), 133);
    chkSplit[2].Value = 1;
    DisplayMap(2, true);
    Select(2, 1, 1);
    Type(2, "+5");
    EXPECT_EQ(Raw(2, 1, 1), 133);
}

TEST_F(MapEditing, FormulaInABox_WorksOnThePresentSelection) {
    Read(kPlain);
    Select(0, 1, 1);
    StartGridEdit(0, "+");
    txtGrid.Text = "+5";
    Select(0, 2, 2);
    txtGrid_LostFocus();
    EXPECT_EQ(Raw(0, 1, 1), 128);
    EXPECT_EQ(Raw(0, 2, 2), 133);
}

TEST_F(MapEditing, TypedZeroInLambda_IsTheRichestCell) {
    Read(kPlain);
    Select(0, 1, 1);
    for (int mode = 1; mode <= 2; ++mode) {
        Put(0, 1, 1, 10);
        InjMapDisplay = mode;
        Type(0, "0");
        EXPECT_EQ(Raw(0, 1, 1), 255) << mode;
    }
}

TEST_F(MapEditing, TypedTextsInSplitDisplay_AreDistancesFromTheMapBefore) {
    struct Row {
        const char* Text;
        int Expected;  // the map before holds 100, the cell 90
    };
    Read(kSplitting);
    chkSplit[2].Value = 1;
    Select(2, 1, 1);
    for (const Row& row : {Row{"5", 95}, Row{"-5", 105}, Row{"2.5", 98}, Row{"3.5", 96}, Row{"2,5", 98},
                           Row{"200", 0}, Row{"-200", 255}, Row{"1e9", 0}, Row{"", 100}, Row{"abc", 100},
                           Row{"5x", 95}, Row{"inf", 100}, Row{"1e400", 90}, Row{"1e10", 90},
                           Row{"-1e10", 90}, Row{"&HA", 90}, Row{"+5", 95}, Row{"+-5", 85}, Row{"+1e400", 90},
                           // A factor scales the distance shown, 10; the product is taken as a value of this
                           // map, whose raw values lie 25 higher.
                           Row{"*2", 45}, Row{"*", 25}, Row{"*0,5", 30}, Row{"*1e400", 90}}) {
        Put(1, 1, 1, 100);
        Put(2, 1, 1, 90);
        Type(2, row.Text);
        EXPECT_EQ(Raw(2, 1, 1), row.Expected) << row.Text;
        EXPECT_EQ(Text(2, 1, 1), GridCellText(2, 1, 1)) << row.Text;
    }
}

// ---- the clipboard

TEST_F(MapEditing, Copy_GivesTabsBetweenCellsAndCarriageReturnsBetweenRows) {
    Read(kPlain);
    Put(0, 2, 3, 192);
    Put(0, 3, 2, 64);
    Select(0, 3, 3, 2, 2);
    Clipboard() = "old";
    EXPECT_TRUE(Grid_KeyDown(0, 67, Control));
    EXPECT_EQ(Clipboard(), "1.000\t1.250\r0.750\t1.000");
    EXPECT_EQ(GridClip(0), Clipboard());
    Select(0, 2, 3);
    PopupGrid = 0;
    mnuGridCopy_Click();
    EXPECT_EQ(Clipboard(), "1.250");
}

TEST_F(MapEditing, CopyAndPasteOfAllCells_ChangesNothingAndComesBackToAnotherMap) {
    Read(kPlain);
    int raw = 0;
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) SetCell(0, row, column, raw++ % 256);
    }
    Begin();
    Select(0, 1, 1, 20, 20);
    Grid_KeyDown(0, 67, Control);
    Paste(0, Clipboard());
    EXPECT_TRUE(Untouched());
    const auto image = ReadData;
    Grid_KeyDown(0, 46, NoShift);
    EXPECT_FALSE(ReadData == image);
    ForgetFlags();
    Paste(0, Clipboard());
    EXPECT_TRUE(ReadData == image);
    EXPECT_EQ(edits_, 1);
}

TEST_F(MapEditing, SetGridClip_WritesTextsAlone) {
    Read(kPlain);
    Select(0, 1, 1, 1, 2);
    SetGridClip(0, "1.25\t0.75");
    EXPECT_EQ(Text(0, 1, 1), "1.25");
    EXPECT_EQ(Text(0, 1, 2), "0.75");
    EXPECT_TRUE(Untouched());
    EXPECT_EQ(Raw(0, 1, 1), 128);
}

TEST_F(MapEditing, Paste_OfEveryLineEnd) {
    Read(kPlain);
    for (const char* end : {"\r", "\n", "\r\n"}) {
        for (const bool last : {false, true}) {
            Select(0, 1, 1, 20, 20);
            Grid_KeyDown(0, 46, NoShift);
            Begin();
            // A spreadsheet ends its last row too; that is no row more.
            Select(0, 2, 2, 4, 3);
            Paste(0, std::string("1.25\t0.75") + end + "0.5\t1" + (last ? end : ""));
            EXPECT_EQ(Raw(0, 2, 2), 192) << last;
            EXPECT_EQ(Raw(0, 2, 3), 64) << last;
            EXPECT_EQ(Raw(0, 3, 2), 0) << last;
            EXPECT_EQ(Raw(0, 3, 3), 128) << last;
            EXPECT_EQ(Raw(0, 4, 2), 128) << last;
            EXPECT_EQ(Flags(), 3) << last;
            EXPECT_EQ(edits_, 1) << last;
            EXPECT_TRUE(ShowsWhatIsStored(0)) << last;
            EXPECT_EQ(Steps(), 1) << last;
            DisplayMap(0, true);
        }
    }
}

// A value that a stale display happened to show was taken for no edit, and the cells beside it for edits.
TEST_F(MapEditing, PasteOverAStaleDisplay_MeansTheRatioOfNow) {
    Read(kPlain);
    mnuInjMapDisplay_Click(2);
    Select(0, 1, 1, 1, 2);
    StoichAF = 16;  // the grid shows 14.700 still
    ASSERT_EQ(Text(0, 1, 1), "14.700");
    Paste(0, "14.7");
    EXPECT_EQ(Raw(0, 1, 1), 151);  // 16 / 14.7 = 1.088
    EXPECT_EQ(Text(0, 1, 1), "14.681");
    EXPECT_EQ(Raw(0, 1, 2), 128);
    EXPECT_EQ(Text(0, 1, 2), "16.000");
}

TEST_F(MapEditing, InterpolationOverAStaleDisplay_MeansTheRatioOfNow) {
    Read(kPlain);
    mnuInjMapDisplay_Click(2);
    Select(0, 1, 1, 1, 3);
    StoichAF = 16;
    PopupGrid = 0;
    mnuGridInterpolate_Click();
    for (int column = 1; column <= 3; ++column) EXPECT_EQ(Raw(0, 1, column), 151) << column;
}

TEST_F(MapEditing, PasteOfMoreThanIsSelected_FillsTheSelectionAlone) {
    Read(kPlain);
    Select(0, 2, 2, 3, 3);
    Paste(0, "1.25\t1.25\t1.25\r\n1.25\t1.25\t1.25\r\n1.25\t1.25\t1.25\r\n");
    EXPECT_EQ(Flags(), 4);
    for (int row = 1; row <= 5; ++row) {
        for (int column = 1; column <= 5; ++column) {
            const bool inside = row >= 2 && row <= 3 && column >= 2 && column <= 3;
            EXPECT_EQ(Raw(0, row, column), inside ? 192 : 128) << row << "," << column;
        }
    }
    EXPECT_TRUE(ShowsWhatIsStored(0));
}

TEST_F(MapEditing, PasteOfLessThanIsSelected_LeavesTheRest) {
    Read(kPlain);
    Select(0, 2, 2, 20, 20);
    Paste(0, "1.25");
    EXPECT_EQ(Flags(), 1);
    EXPECT_EQ(Raw(0, 2, 2), 192);
}

TEST_F(MapEditing, PasteOfRaggedRows_LeavesTheCellsThatARowLacks) {
    Read(kPlain);
    Select(0, 1, 1, 3, 3);
    Paste(0, "1.25\r\n1.25\t1.25\t1.25\t1.25\r\n1.25\t1.25");
    EXPECT_EQ(Flags(), 6);
    EXPECT_EQ(Raw(0, 1, 2), 128);
    EXPECT_EQ(Raw(0, 1, 3), 128);
    EXPECT_EQ(Raw(0, 2, 3), 192);
    EXPECT_EQ(Raw(0, 3, 2), 192);
    EXPECT_EQ(Raw(0, 3, 3), 128);
    EXPECT_TRUE(ShowsWhatIsStored(0));
}

TEST_F(MapEditing, PasteWithABadCell_KeepsTheCellsBeforeAndShowsWhatIsStored) {
    Read(kPlain);
    for (const char* bad : {"", "x", "1.25x", "1e400", "inf", "nan", "+-1", "1 2", "1.2.3", "1,2,3", "&H",
                            "#DIV/0!", "\xC3\xA9"}) {
        Select(0, 1, 1, 20, 20);
        Grid_KeyDown(0, 46, NoShift);
        Begin();
        Select(0, 1, 1, 2, 3);
        Paste(0, std::string("1.25\t") + bad + "\t1.25\r1.25\t1.25\t1.25");
        EXPECT_EQ(Raw(0, 1, 1), 192) << bad;
        EXPECT_EQ(Flags(), 1) << bad;
        EXPECT_EQ(edits_, 1) << bad;
        EXPECT_TRUE(ShowsWhatIsStored(0)) << bad;
        EXPECT_EQ(Steps(), 1) << bad;
        DisplayMap(0, true);
    }
}

TEST_F(MapEditing, PasteThatBeginsWithABadCell_ChangesNothing) {
    Read(kPlain);
    Select(0, 1, 1, 2, 2);
    Paste(0, "abc\t1.25\r1.25\t1.25");
    EXPECT_TRUE(Untouched());
    EXPECT_TRUE(ShowsWhatIsStored(0));
}

TEST_F(MapEditing, EmptyClipboard_ChangesNothing) {
    Read(kPlain);
    Select(0, 1, 1, 20, 20);
    Paste(0, "");
    EXPECT_TRUE(Untouched());
    EXPECT_TRUE(ShowsWhatIsStored(0));
}

TEST_F(MapEditing, PastedDecimalComma_IsReadAsAPoint) {
    Read(kPlain);
    Select(0, 1, 1, 1, 4);
    Paste(0, "1,25\t,75\t 0,5 \t1,25e0");
    EXPECT_EQ(Raw(0, 1, 1), 192);
    EXPECT_EQ(Raw(0, 1, 2), 64);
    EXPECT_EQ(Raw(0, 1, 3), 0);
    EXPECT_EQ(Raw(0, 1, 4), 192);
    EXPECT_EQ(Text(0, 1, 1), "1.250");
}

TEST_F(MapEditing, PastedValuesBeyondTheMap_AreItsLimits) {
    Read(kWithBase);
    Select(0, 1, 1, 1, 2);
    Paste(0, "-1e300\t1e300");
    EXPECT_EQ(Raw(0, 1, 1), 0);
    EXPECT_EQ(Raw(0, 1, 2), 255);
    const int map = BaseMapIndex;
    Select(map, 1, 1, 1, 2);
    Paste(map, "-1\t1000");
    EXPECT_EQ(Raw(map, 1, 1), 0);
    EXPECT_EQ(Raw(map, 1, 2), 65535);
}

TEST_F(MapEditing, PasteByTheMenu_GoesIntoTheGridOfThePopup) {
    Read(kPlain);
    Select(0, 1, 1);
    Select(1, 1, 1);
    PopupGrid = 1;
    Clipboard() = "40";
    mnuGridPaste_Click();
    EXPECT_EQ(Raw(0, 1, 1), 128);
    EXPECT_EQ(Raw(1, 1, 1), 40);
    EXPECT_EQ(UndoName(), "Paste");
    EXPECT_EQ(Steps(), 1);
}

TEST_F(MapEditing, PasteOfTenMegabytes_TakesBoundedTime) {
    constexpr std::size_t kSize = 10'000'000;
    const auto filled = [](const std::string& piece) {
        std::string text;
        while (text.size() < kSize) text += piece;
        return text;
    };
    struct Row {
        const char* Name;
        std::string Text;
    };
    const Row rows[] = {{"cells", filled("1.25\t")},
                        {"rows", filled("1.25\r\n")},
                        {"table", filled("1.25\t1.25\t1.25\r\n")},
                        {"digits", std::string(kSize, '1')},
                        {"zeros", "0." + std::string(kSize, '0')},
                        {"letters", std::string(kSize, 'x')},
                        {"tabs", std::string(kSize, '\t')},
                        {"line ends", std::string(kSize, '\r')},
                        {"commas", std::string(kSize, ',')},
                        {"blanks", std::string(kSize, ' ')}};
    Read(kPlain);
    for (const Row& row : rows) {
        Select(0, 1, 1, 20, 20);
        const auto begin = std::chrono::steady_clock::now();
        Paste(0, row.Text);
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        EXPECT_LT(seconds.count(), 5) << row.Name;
        EXPECT_TRUE(ShowsWhatIsStored(0)) << row.Name;
    }
}

// ---- interpolation

TEST_F(MapEditing, Interpolate_FillsTheSelectionFromItsCorners) {
    Read(kPlain);
    const auto corners = [](int tl, int tr, int bl, int br) {
        SetCell(1, 2, 3, tl);
        SetCell(1, 2, 7, tr);
        SetCell(1, 4, 3, bl);
        SetCell(1, 4, 7, br);
    };
    for (const GridSelection& drawn : {GridSelection{2, 3, 4, 7}, {4, 7, 2, 3}, {2, 7, 4, 3}}) {
        for (int row = 2; row <= 4; ++row) {
            for (int column = 3; column <= 7; ++column) SetCell(1, row, column, 99);
        }
        corners(10, 50, 30, 110);
        Begin();
        Grid[1].Selection = drawn;
        PopupGrid = 1;
        mnuGridInterpolate_Click();
        const int expected[3][5] = {{10, 20, 30, 40, 50}, {20, 35, 50, 65, 80}, {30, 50, 70, 90, 110}};
        for (int row = 2; row <= 4; ++row) {
            for (int column = 3; column <= 7; ++column)
                EXPECT_EQ(Raw(1, row, column), expected[row - 2][column - 3]) << row << "," << column;
        }
        EXPECT_EQ(Flags(), 11);
        EXPECT_EQ(edits_, 1);
        EXPECT_EQ(Grid[1].Selection, drawn);
        EXPECT_EQ(UndoName(), "Interpolate");
        EXPECT_EQ(Steps(), 1);
        EXPECT_EQ(Raw(1, 3, 4), 99);
    }
}

TEST_F(MapEditing, InterpolateOfOneCellOneRowAndOneColumn) {
    Read(kPlain);
    PopupGrid = 1;
    Put(1, 5, 5, 77);
    Begin();
    Select(1, 5, 5);
    mnuGridInterpolate_Click();
    EXPECT_TRUE(Untouched());
    Put(1, 5, 1, 10);
    Put(1, 5, 5, 30);
    Select(1, 5, 1, 5, 5);
    mnuGridInterpolate_Click();
    for (int column = 1; column <= 5; ++column) EXPECT_EQ(Raw(1, 5, column), 5 + 5 * column) << column;
    Put(1, 1, 9, 10);
    Put(1, 5, 9, 30);
    Select(1, 5, 9, 1, 9);
    mnuGridInterpolate_Click();
    for (int row = 1; row <= 5; ++row) EXPECT_EQ(Raw(1, row, 9), 5 + 5 * row) << row;
}

TEST_F(MapEditing, InterpolateBetweenSteps_RoundsToTheEvenOne) {
    Read(kPlain);
    PopupGrid = 1;
    Put(1, 1, 1, 10);
    Put(1, 1, 3, 13);
    Put(1, 2, 1, 11);
    Put(1, 2, 3, 14);
    Select(1, 1, 1, 1, 3);
    mnuGridInterpolate_Click();
    EXPECT_EQ(Raw(1, 1, 2), 12);  // 11.5
    Select(1, 2, 1, 2, 3);
    mnuGridInterpolate_Click();
    EXPECT_EQ(Raw(1, 2, 2), 12);  // 12.5
}

// The shown values lie on a line, whatever the raw ones do.
TEST_F(MapEditing, Interpolate_IsLinearInWhatIsShownInEveryMode) {
    Read(kSplitting);
    chkSplit[2].Value = 1;
    const auto value = [](int map, int row, int column) {
        return StrictNumber(Text(map, row, column)).value_or(-1e9);
    };
    const auto check = [&](int map, int left, int right, double tolerance) {
        Put(map, 6, 2, left);
        Put(map, 6, 12, right);
        Select(map, 6, 2, 6, 12);
        PopupGrid = static_cast<std::int16_t>(map);
        const double a = value(map, 6, 2), b = value(map, 6, 12);
        EXPECT_GT(std::abs(b - a), 20 * tolerance);
        mnuGridInterpolate_Click();
        EXPECT_EQ(Raw(map, 6, 2), left);
        EXPECT_EQ(Raw(map, 6, 12), right);
        for (int column = 2; column <= 12; ++column)
            EXPECT_NEAR(value(map, 6, column), a + (column - 2) * (b - a) / 10, tolerance)
                << map << " " << column;
    };
    // The tolerance is half the widest step that the mode shows between the two ends.
    check(0, 0, 255, 0.0025);
    InjMapDisplay = 1;
    check(0, 0, 255, 0.0085);
    InjMapDisplay = 2;
    check(0, 0, 255, 0.12);
    InjMapDisplay = 0;
    check(1, 10, 200, 0.51);
    check(2, 10, 110, 0.51);
    for (int column = 1; column <= kMapSide; ++column) SetCell(0, 6, column, 100 + column);
    const int base = BaseMapIndex;
    for (int mode = 0; mode <= 3; ++mode) {
        mnuBaseMapDisplay_Click(mode);
        check(base, 500, 60000, 0.006);
    }
}

TEST_F(MapEditing, InterpolateWithAnEmptyCorner_ChangesNothing) {
    Read(kPlain);
    PopupGrid = 0;
    Put(0, 1, 1, 10);
    for (const auto& [row, column] : {std::pair(1, 1), {1, 3}, {3, 1}, {3, 3}}) {
        Begin();
        Select(0, 1, 1, 3, 3);
        Grid[0].TextMatrix[row][column] = "";
        mnuGridInterpolate_Click();
        EXPECT_TRUE(Untouched()) << row << "," << column;
    }
}

TEST_F(MapEditing, InterpolateInADisplayWithoutValues_ChangesNothing) {
    Read(kWithBase);
    for (auto& table : MapRefRpm) table.fill(0);
    mnuBaseMapDisplay_Click(2);
    EXPECT_EQ(Text(BaseMapIndex, 1, 1), "");
    Select(BaseMapIndex, 1, 1, 20, 20);
    PopupGrid = BaseMapIndex;
    mnuGridInterpolate_Click();
    MultiplySelection(BaseMapIndex, 2);
    Type(BaseMapIndex, "5");
    Paste(BaseMapIndex, "5");
    EXPECT_TRUE(Untouched());
    EXPECT_TRUE(ShowsWhatIsStored(BaseMapIndex));
}

// ---- one gesture

TEST_F(MapEditing, EveryEditOfAllCells_IsOneNoticeAndOneStep) {
    Read(kPlain);
    struct Row {
        const char* Name;
        std::function<void()> Edit;
    };
    const Row rows[] = {{"Step", [] { Grid_KeyDown(0, 187, Control); }},
                        {"Step", [] { Grid_KeyDown(0, 189, NoShift); }},
                        {"Value", [] { Grid_KeyDown(0, 46, NoShift); }},
                        {"Step", [] { Type(0, "+5"); }},
                        {"Scale", [] { Type(0, "*1.1"); }},
                        {"Value", [] { Type(0, "1.1"); }},
                        {"Interpolate",
                         [] {
                             PopupGrid = 0;
                             mnuGridInterpolate_Click();
                         }},
                        {"Paste", [] {
                             std::string text;
                             for (int k = 0; k < 400; ++k) text += k % 20 == 19 ? "0.7\r" : "0.7\t";
                             Paste(0, text);
                         }}};
    for (const Row& row : rows) {
        for (int r = 1; r <= kMapSide; ++r) {
            for (int column = 1; column <= kMapSide; ++column) SetCell(0, r, column, 100);
        }
        SetCell(0, 20, 20, 110);
        Begin();
        const auto image = ReadData;
        Select(0, 1, 1, 20, 20);
        row.Edit();
        EXPECT_EQ(edits_, 1) << row.Name;
        EXPECT_EQ(UndoName(), row.Name);
        EXPECT_GT(Flags(), 300) << row.Name;
        EXPECT_EQ(Steps(), 1) << row.Name;
        EXPECT_TRUE(ReadData == image) << row.Name;
    }
}

// ---- Undo and Redo of the menu

TEST_F(MapEditing, UndoOfTheMenu_ShowsWhatItBringsBackAndItsMap) {
    Read(kPlain);
    Select(1, 2, 2);
    AddToSelection(1, 5);
    SSTab1.Tab = 0;
    ForgetFlags();
    mnuUndo_Click();
    EXPECT_EQ(Raw(1, 2, 2), 128);
    EXPECT_EQ(Text(1, 2, 2), "128");
    EXPECT_TRUE(MapCellChanged[1][2][2]);
    EXPECT_TRUE(BlockChanged[0x81]);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 1);
    EXPECT_EQ(SSTab1.Tab, 1);
    SSTab1.Tab = kGeneralTab;
    mnuRedo_Click();
    EXPECT_EQ(Raw(1, 2, 2), 133);
    EXPECT_EQ(Text(1, 2, 2), "133");
    EXPECT_EQ(SSTab1.Tab, 1);
}

TEST_F(MapEditing, UndoOfASetting_ShowsItAndLeavesTheTabInView) {
    Read(kPlain);
    ReadData[0x8D] = ByteString(24, '\1');
    SetNumber(txtSetting[500].Tag, "50");
    SSTab1.Tab = 1;
    mnuUndo_Click();
    EXPECT_EQ(txtSetting[500].Text, GetNumber(txtSetting[500].Tag));
    EXPECT_EQ(ReadData[0x8D], ByteString(24, '\1'));
    EXPECT_EQ(SSTab1.Tab, 1);
}

TEST_F(MapEditing, UndoOfAMapWithoutATab_StaysWhereItIs) {
    Read(kPlain);
    Select(1, 2, 2);
    AddToSelection(1, 5);
    SSTab1.TabVisible[1] = false;
    SSTab1.Tab = 0;
    mnuUndo_Click();
    EXPECT_EQ(SSTab1.Tab, 0);
    EXPECT_EQ(Raw(1, 2, 2), 128);
}

TEST_F(MapEditing, UndoWithNothingToUndo_DoesNothing) {
    Read(kPlain);
    Grid[0].TextMatrix[1][1] = "as it was";
    mnuUndo_Click();
    mnuRedo_Click();
    EXPECT_EQ(Text(0, 1, 1), "as it was");
    EXPECT_TRUE(Untouched());
}

TEST_F(MapEditing, UndoItems_NameTheNextStep) {
    Read(kPlain);
    RefreshUndoItems();
    EXPECT_EQ(mnuUndo.Caption, "&Undo");
    EXPECT_EQ(mnuRedo.Caption, "&Redo");
    EXPECT_FALSE(mnuUndo.Enabled);
    EXPECT_FALSE(mnuRedo.Enabled);
    Select(0, 1, 1);
    AddToSelection(0, 5);
    RefreshUndoItems();
    EXPECT_EQ(mnuUndo.Caption, "&Undo Step");
    EXPECT_TRUE(mnuUndo.Enabled);
    EXPECT_FALSE(mnuRedo.Enabled);
    mnuUndo_Click();
    RefreshUndoItems();
    EXPECT_EQ(mnuUndo.Caption, "&Undo");
    EXPECT_FALSE(mnuUndo.Enabled);
    EXPECT_EQ(mnuRedo.Caption, "&Redo Step");
    EXPECT_TRUE(mnuRedo.Enabled);
}

TEST_F(MapEditing, Design_HidesWhatThePopupAloneShows) {
    LoadMapEditingDesign();
    EXPECT_FALSE(mnuGridCopy.Visible);
    EXPECT_FALSE(mnuGridPaste.Visible);
    EXPECT_FALSE(mnuSep4.Visible);
    EXPECT_TRUE(mnuGridInterpolate.Visible);
    EXPECT_EQ(EditMap, -1);
    EXPECT_FALSE(txtGrid.Visible);
    EXPECT_FALSE(GridSpaceFlag);
}

// ---- anything in any order

class RandomEdits : public MapFixture {
  protected:
    int Upto(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

    std::string AnyText() {
        static const char* const kTexts[] = {"1",   "1.25", "0,8",   "",    "abc", "-3", "1e400",
                                             "40",  "+7",   "*1.03", "*0",  "inf", "14", "1e300",
                                             "&HA", "5x",   ".9",    "+-9", "*,97"};
        return kTexts[Upto(static_cast<int>(std::size(kTexts)) - 1)];
    }

    std::string AnyClip() {
        std::string text;
        static const char* const kBetween[] = {"\t", "\t", "\t", "\r", "\n", "\r\n"};
        for (int k = Upto(30); k >= 0; --k) {
            text += Upto(15) == 0 ? AnyText() : std::to_string(Upto(2000) / 1000.0);
            text += kBetween[Upto(5)];
        }
        return text;
    }

    void AnyEdit(int map) {
        static const int kKeys[] = {107, 187, 109, 189, 46, 32, 67, 86, 65};
        if (Upto(3) > 0) Select(map, 1 + Upto(19), 1 + Upto(19), 1 + Upto(19), 1 + Upto(19));
        PopupGrid = static_cast<std::int16_t>(map);
        switch (Upto(7)) {
            case 0:
            case 1:
            case 2:
                Grid_KeyDown(map, kKeys[Upto(8)], Upto(2));
                break;
            case 3:
            case 4:
                Type(map, AnyText());
                break;
            case 5:
                Paste(map, AnyClip());
                break;
            case 6:
                mnuGridInterpolate_Click();
                break;
            default:
                Upto(9) == 0 ? mnuReCalcBase_Click() : mnuGridPaste_Click();
        }
    }

    // Modes change what is shown and edited, never the image.
    void AnyMode() {
        mnuInjMapDisplay_Click(Upto(2));
        mnuBaseMapDisplay_Click(Upto(3));
        if (chkSplit[2].Visible) chkSplit[2].Value = Upto(1);
        DisplayAllMaps();
    }

    void Run(const char* key, unsigned seed) {
        random_.seed(seed);
        Read(key);
        // Anything in the cells, but no edit: there is no way back beyond it.
        std::vector<int> maps;
        for (int map = 0; map < kMapTabs; ++map) {
            if (!SSTab1.TabVisible[map]) continue;
            maps.push_back(map);
            for (int k = 0; k < MapCellSize[map] * 4; ++k) {
                for (char& byte : ReadData[MapFirstBlock[map] + k]) byte = static_cast<char>(Upto(255));
            }
        }
        Begin();
        const auto begin = ReadData;
        for (int round = 0; round < 200 && !HasFailure(); ++round) {
            if (Upto(9) == 0) AnyMode();
            const auto before = ReadData;
            const int map = maps[static_cast<std::size_t>(Upto(static_cast<int>(maps.size()) - 1))];
            DisplayMap(map, true);
            ForgetFlags();
            AnyEdit(map);
            EXPECT_LE(edits_, 1) << "round " << round;
            CheckFlags(before);
            // A base map shows the injection map's change, and a split display its neighbour's, when its tab
            // comes into view.
            EXPECT_TRUE(ShowsWhatIsStored(map)) << key << " seed " << seed << " round " << round;
            if (Upto(14) == 0) mnuUndo_Click();
            if (Upto(14) == 0) mnuRedo_Click();
        }
        while (CanRedo()) mnuRedo_Click();
        const auto end = ReadData;
        EXPECT_FALSE(end == begin);
        for (; CanUndo(); ++undone_) mnuUndo_Click();
        EXPECT_TRUE(ReadData == begin) << key << " seed " << seed;
        while (CanRedo()) mnuRedo_Click();
        EXPECT_TRUE(ReadData == end) << key << " seed " << seed;
        for (const int map : maps) EXPECT_TRUE(ShowsWhatIsStored(map)) << key << " seed " << seed;
    }

    // A block is marked where its bytes have changed and nowhere else; a changed cell is marked too.
    void CheckFlags(const std::array<ByteString, 256>& before) {
        for (int block = 0; block < 256; ++block) {
            EXPECT_EQ(ReadData[block].size(), before[block].size()) << block;
            // A gesture may bring a byte back to what it was: that stays marked.
            EXPECT_TRUE(BlockChanged[block] || ReadData[block] == before[block]) << block;
            EXPECT_TRUE(!BlockChanged[block] || (DataChanged && edits_ == 1)) << block;
        }
    }

    int undone_ = 0;

  private:
    std::mt19937 random_;
};

TEST_F(RandomEdits, OfEveryBuild_ShowWhatIsStoredAndGoAllTheWayBackAndForth) {
    for (const char* key : {kPlain, kSplitting, kWithBase, kWithTwoBases}) {
        for (unsigned seed = 1; seed <= 3; ++seed) {
            SCOPED_TRACE(key);
            Run(key, seed);
            if (HasFailure()) return;
        }
    }
    EXPECT_GT(undone_, 1000);
}

}  // namespace
}  // namespace zandrel
