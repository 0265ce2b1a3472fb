#include "tuning/maps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "image/accessors.h"
#include "support/cleanstate.h"
#include "support/scripteddesktop.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "util/desktop.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

class Maps : public CleanState {
  protected:
    void Read(const char* key) {
        GridInit();
        ApplyBuild(key);
        for (int map = 0; map < kMapTabs; ++map) {
            if (!SSTab1.TabVisible[map]) continue;
            for (int k = 0; k < MapCellSize[map] * 4; ++k)
                ReadData[MapFirstBlock[map] + k] = ByteString(100, '\0');
        }
    }
    static void Cell(int map, int row, int column, int raw) { SetCell(map, row, column, raw); }

    // Injection 1.0, base 1000 steps (4 ms) in the cell, injectors at 100 %, 3000 rpm in its column.
    void BaseCell(const char* key, int column = 3) {
        Read(key);
        Cell(0, 2, column, 128);
        Cell(BaseMapIndex, 2, column, 1000);
        txtSetting[500].Text = "100.0";
        MapRefRpm[MapBaseTable[BaseMapIndex]][column - 1] = 3000;
    }
};

TEST_F(Maps, GridInit_TakesTheDesignTagsAndZeroesTheirBlocks) {
    ReadData[0xB7] = "x";
    GridInit();
    EXPECT_EQ(MapFirstBlock[0], 0x86);
    EXPECT_EQ(MapFirstBlock[5], 0xB0);
    EXPECT_EQ(MapCellSize[5], 2);
    EXPECT_EQ(MapScale[0], 0.00390625F);
    EXPECT_EQ(MapOffset[2], -25);
    EXPECT_EQ(MapFormat[0], "0.000");
    EXPECT_EQ(MapMax[5], 65535);
    for (const int block : {0x86, 0x89, 0x81, 0x84, 0x76, 0x71, 0x6C, 0xB0, 0xB7}) {
        EXPECT_EQ(ReadData[block], ByteString(100, '\0')) << block;
    }
    EXPECT_TRUE(ReadData[0x8A].empty());
    EXPECT_TRUE(ReadData[0xB8].empty());
}

TEST_F(Maps, UnreadMap_ShowsItsOffset) {
    Read("RB26DETT6.42");
    ReadData[0x86] = ByteString(99, '\xFF');
    EXPECT_EQ(GridCellText(0, 1, 1), "0.500");
}

TEST_F(Maps, InjectionMap_InItsThreeModes) {
    Read("RB26DETT6.42");
    Cell(0, 3, 4, 192);  // 1.25
    InjMapDisplay = 0;
    EXPECT_EQ(GridCellText(0, 3, 4), "1.250");
    InjMapDisplay = 1;
    EXPECT_EQ(GridCellText(0, 3, 4), "0.800");
    InjMapDisplay = 2;
    EXPECT_EQ(GridCellText(0, 3, 4), "11.760");
    InjMapDisplay = 7;
    EXPECT_EQ(GridCellText(0, 3, 4), "0.000");
}

TEST_F(Maps, EveryRawValue_HasALambdaAtTheDefaultScale) {
    Read("RB26DETT6.42");
    for (InjMapDisplay = 1; InjMapDisplay <= 2; ++InjMapDisplay) {
        for (int raw = 0; raw <= 255; ++raw) {
            Cell(0, 1, 1, raw);
            EXPECT_NE(GridCellText(0, 1, 1), "") << raw;
        }
    }
}

// Each of two base maps has axes of its own.
TEST_F(Maps, BaseTables_AreReadAndLabelledFromTheirOwnBlocks) {
    Read("B18C2.02B");
    const auto axis = [](int low) {
        ByteString bytes;
        for (int k = 0; k < 40; ++k) bytes += ByteString{static_cast<char>(low + k), '\1'};
        return bytes;
    };
    ReadData[0x8A] = axis(1);
    ReadData[0x60] = axis(51);
    ReadData[0x61] = axis(101);
    ReloadMapRefTables();
    EXPECT_EQ(MapRefRpm[0][0], 256 + 21);
    EXPECT_EQ(MapRefRpm[1][0], 256 + 71);
    EXPECT_EQ(MapRefRpm[2][0], 256 + 121);
    EXPECT_EQ(MapRefRpm[2][19], 256 + 140);
    EXPECT_EQ(MapRefRpm[2][20], 0);
    mnuMapRefLabels_Click();
    EXPECT_EQ(Grid[0].ColumnHead[1], "277");
    EXPECT_EQ(Grid[2].ColumnHead[1], "327");
    EXPECT_EQ(Grid[3].ColumnHead[1], "377");
    EXPECT_EQ(Grid[3].RowHead[1], "357");
}

TEST_F(Maps, CompareOfACellWithoutAValue_StaysEmpty) {
    BaseCell("B18C2.02B");
    mnuCompare.Checked = true;
    CompareMapIndex[2] = 3;
    BaseMapDisplay = 3;
    MapRefRpm[1].fill(0);
    MapRefRpm[2].fill(3000);
    EXPECT_EQ(GridCellText(2, 2, 3), "");
    EXPECT_EQ(GridCellColourSet(2, 2, 3), 0U);
}

TEST_F(Maps, InjectionValueOfZero_HasNoLambda) {
    Read("RB26DETT6.42");
    MapOffset[0] = 0;
    InjMapDisplay = 1;
    EXPECT_EQ(GridCellText(0, 1, 1), "");
}

TEST_F(Maps, OtherMaps_ShowScaleAndOffset) {
    Read("13B-REW7.07");
    Cell(1, 1, 1, 40);
    EXPECT_EQ(GridCellText(1, 1, 1), "15");
}

TEST_F(Maps, SplitDisplay_ShowsTheDistanceFromTheMapBefore) {
    Read("13B-REW7.07");
    Cell(1, 5, 6, 45);
    Cell(2, 5, 6, 40);
    EXPECT_EQ(GridCellText(2, 5, 6), "15");
    chkSplit[2].Value = 1;
    EXPECT_EQ(GridCellText(2, 5, 6), "5");
    Cell(2, 5, 6, 50);
    EXPECT_EQ(GridCellText(2, 5, 6), "-5");
}

TEST_F(Maps, BaseMap_InItsFourModes) {
    BaseCell("1JZ-GTE23.12");
    const int map = BaseMapIndex;
    BaseMapDisplay = 0;
    EXPECT_EQ(GridCellText(map, 2, 3), "4.000");
    BaseMapDisplay = 1;
    EXPECT_EQ(GridCellText(map, 2, 3), "4.000");
    BaseMapDisplay = 2;  // 20 ms a revolution less 4 x 100 / 100 / 2
    EXPECT_EQ(GridCellText(map, 2, 3), "18.000");
    BaseMapDisplay = 3;
    EXPECT_EQ(GridCellText(map, 2, 3), "10.000");
    BaseMapDisplay = 4;
    EXPECT_EQ(GridCellText(map, 2, 3), "0.000");
    Cell(0, 2, 3, 192);
    BaseMapDisplay = 1;
    EXPECT_EQ(GridCellText(map, 2, 3), "5.000");
}

TEST_F(Maps, BaseMap_WithPrimaryAndSecondaryInjectors) {
    BaseCell("13B-REW7.07");
    txtSetting[1500].Text = "50.0";
    txtSetting[1502].Text = "550";
    txtSetting[1503].Text = "1650";
    BaseMapDisplay = 3;  // 4 x 50 / 100 x 550 / 2200 = 0.5 ms of 20 ms
    EXPECT_EQ(GridCellText(BaseMapIndex, 2, 3), "2.500");
    BaseMapDisplay = 2;
    EXPECT_EQ(GridCellText(BaseMapIndex, 2, 3), "19.500");
    txtSetting[1502].Text = "0";
    txtSetting[1503].Text = "0";
    EXPECT_EQ(GridCellText(BaseMapIndex, 2, 3), "");
}

TEST_F(Maps, SecondBaseMap_HasItsOwnSpeeds) {
    BaseCell("B18C2.02B");
    const int second = BaseMapIndex + 1;
    Cell(second, 2, 3, 1000);
    MapRefRpm[2][2] = 6000;
    BaseMapDisplay = 2;
    EXPECT_EQ(GridCellText(BaseMapIndex, 2, 3), "18.000");
    EXPECT_EQ(GridCellText(second, 2, 3), "8.000");
}

TEST_F(Maps, HeadRoomWithoutSpeedOrInjector_HasNoValue) {
    BaseCell("1JZ-GTE23.12");
    for (BaseMapDisplay = 2; BaseMapDisplay <= 3; ++BaseMapDisplay) {
        EXPECT_EQ(GridCellText(BaseMapIndex, 2, 4), "");  // its column's speed is 0
    }
    BaseMapDisplay = 2;
    txtSetting[500].Text = "";
    EXPECT_EQ(GridCellText(BaseMapIndex, 2, 3), "");
    double previous = 7;
    std::string text = "old";
    EXPECT_FALSE(MapCellText(BaseMapIndex, 2, 3, previous, false, text));
    EXPECT_EQ(text, "");
}

TEST_F(Maps, CompareText_IsComparedLessImage) {
    Read("RB26DETT6.42");
    Cell(0, 1, 1, 128);
    MapCompare[0][1][1] = 192;
    double previous = 99;
    std::string text;
    EXPECT_TRUE(MapCellText(0, 1, 1, previous, false, text));
    EXPECT_EQ(text, "1.000");
    EXPECT_EQ(previous, 1.0);
    EXPECT_TRUE(MapCellText(0, 1, 1, previous, true, text));
    EXPECT_EQ(text, "0.250");
    EXPECT_EQ(previous, 1.25);
}

TEST_F(Maps, CompareMode_ShowsTheDifferenceInRedAndGreyWithoutAPartner) {
    Read("RB26DETT6.42");
    mnuCompare.Checked = true;
    CompareMapIndex = {0, 6, 6, 6, 6, 6};
    Cell(0, 1, 1, 128);
    MapCompare[0][1][1] = 192;
    DisplayAllMaps();
    EXPECT_EQ(Grid[0].TextMatrix[1][1], "0.250");
    EXPECT_EQ(Grid[0].CellBackColor[1][1], 255U);
    MapCompare[0][1][1] = 128;
    DisplayMap(0, true);
    EXPECT_EQ(Grid[0].TextMatrix[1][1], "0.000");
    EXPECT_EQ(Grid[0].CellBackColor[1][1], 0U);
    EXPECT_EQ(Grid[1].CellBackColor[1][1], 0xE0E0E0U);
    Cell(1, 1, 1, 40);
    DisplayMap(1, true);
    EXPECT_EQ(Grid[1].TextMatrix[1][1], "40");
    EXPECT_EQ(Grid[1].CellBackColor[1][1], 0xE0E0E0U);
}

TEST_F(Maps, ColourWhileComparing_GoesByTheTextInTheGrid) {
    Read("RB26DETT6.42");
    mnuCompare.Checked = true;
    CompareMapIndex[0] = 0;
    for (const auto& [text, colour] :
         {std::pair("0.250", 255U), {"-0.001", 255U}, {"0.000", 0U}, {"0", 0U}, {"", 0U}, {"abc", 0U}}) {
        Grid[0].TextMatrix[1][1] = text;
        EXPECT_EQ(GridCellColourSet(0, 1, 1), colour) << text;
    }
}

TEST_F(Maps, RedToGreen_OfTheInjectionMap) {
    Read("1JZ-GTE23.12");
    Cell(0, 1, 1, 128);
    EXPECT_EQ(GridCellColourSet(0, 1, 1), 128U * 256 + 127);
    EXPECT_EQ(GridCellColourSet(0, 2, 1), 255U);
    Cell(0, 1, 1, 255);
    EXPECT_EQ(GridCellColourSet(0, 1, 1), 255U * 256);
}

TEST_F(Maps, RedToGreen_OfTheMapsBetween) {
    Read("1JZ-GTE23.12");
    EXPECT_EQ(GridCellColourSet(1, 1, 1), 255U * 256);
    Cell(1, 1, 1, 30);
    EXPECT_EQ(GridCellColourSet(1, 1, 1), (255U - 120) * 256 + 120);
    Cell(1, 1, 1, 63);
    EXPECT_EQ(GridCellColourSet(1, 1, 1), 3U * 256 + 252);
    Cell(1, 1, 1, 200);
    EXPECT_EQ(GridCellColourSet(1, 1, 1), 3U * 256 + 252);
}

TEST_F(Maps, RedToGreen_OfTheBaseMap) {
    Read("1JZ-GTE23.12");
    const int map = BaseMapIndex;
    EXPECT_EQ(GridCellColourSet(map, 1, 1), 255U * 256);
    Cell(map, 1, 1, 2500);  // 127.5 rounds to the even 128
    EXPECT_EQ(GridCellColourSet(map, 1, 1), 127U * 256 + 128);
    Cell(map, 1, 1, 60000);
    EXPECT_EQ(GridCellColourSet(map, 1, 1), 255U);
}

TEST_F(Maps, WithoutABaseMap_NoMapCountsAsOne) {
    Read("1JZ-GTE23.12");
    Read("RB26DETT6.42");
    Cell(1, 1, 1, 10);
    EXPECT_EQ(GridCellColourSet(1, 1, 1), (255U - 40) * 256 + 40);
    BaseMapDisplay = 3;
    EXPECT_EQ(GridCellText(1, 1, 1), "10");
}

TEST_F(Maps, SchemeNoneAndUnknown_HaveNoColour) {
    Read("RB26DETT6.42");
    MapColourScheme = 0;
    EXPECT_EQ(GridCellColourSet(0, 1, 1), 0U);
    MapColourScheme = 5;
    EXPECT_EQ(GridCellColourSet(0, 1, 1), 0U);
}

TEST_F(Maps, AxisLabels_AreCellNumbersOrReferenceValues) {
    Read("RB26DETT6.42");
    RefreshMapRefLabels();
    EXPECT_EQ(Grid[0].ColumnHead[0], "");
    EXPECT_EQ(Grid[0].ColumnHead[1], "N01");
    EXPECT_EQ(Grid[0].ColumnHead[20], "N20");
    EXPECT_EQ(Grid[0].RowHead[1], "P01");
    EXPECT_EQ(Grid[5].RowHead[20], "P20");

    ByteString axis;
    for (int k = 0; k < 20; ++k) axis += ByteString{static_cast<char>(k + 1), '\1'};  // 257 to 276
    for (int k = 0; k < 20; ++k) axis += ByteString{static_cast<char>(k + 1), '\2'};  // 513 to 532
    ReadData[0x8A] = axis;
    mnuMapRefLabels_Click();
    EXPECT_TRUE(mnuMapRefLabels.Checked);
    EXPECT_EQ(Grid[0].ColumnHead[1], "513");
    EXPECT_EQ(Grid[0].ColumnHead[20], "532");
    EXPECT_EQ(Grid[0].RowHead[1], "257");
    EXPECT_EQ(Grid[0].RowHead[20], "276");
    EXPECT_EQ(Grid[0].FormatString.substr(0, 9), "|513|514|");
    mnuMapRefLabels_Click();
    EXPECT_EQ(Grid[0].ColumnHead[1], "N01");
}

TEST_F(Maps, UnreadAxis_LabelsAreEmpty) {
    Read("RB26DETT6.42");
    mnuMapRefLabels_Click();
    EXPECT_EQ(Grid[0].ColumnHead[1], "");
    EXPECT_EQ(Grid[0].RowHead[20], "");
}

TEST_F(Maps, ColumnsShareTheWidth_TheLabelColumnIsAFifthWider) {
    Grid[0].Width = 2120;
    RefreshMapRefLabels();
    EXPECT_FLOAT_EQ(Grid[0].ColWidth[1], 100);
    EXPECT_FLOAT_EQ(Grid[0].ColWidth[0], 120);
    EXPECT_EQ(Grid[0].ColAlignment[0], 7);
    EXPECT_EQ(Grid[0].ColAlignment[1], 1);
    EXPECT_EQ(Grid[0].ColAlignment[20], 1);
}

TEST_F(Maps, InjectionSelector_KeepsMenuAndListTogether) {
    Read("RB26DETT6.42");
    comMapType[0].ListIndex = 0;
    const unsigned before = Grid[0].Revision;
    mnuInjMapDisplay_Click(2);
    EXPECT_EQ(InjMapDisplay, 2);
    EXPECT_FALSE(mnuInjMapDisplay[0].Checked);
    EXPECT_TRUE(mnuInjMapDisplay[2].Checked);
    EXPECT_EQ(comMapType[0].ListIndex, 2);
    EXPECT_GT(Grid[0].Revision, before);
    comMapType[0].ListIndex = 1;
    comMapType_Click(0);
    EXPECT_EQ(InjMapDisplay, 1);
    EXPECT_TRUE(mnuInjMapDisplay[1].Checked);
}

TEST_F(Maps, InjectionMode_LeavesTheColoursAsTheyAre) {
    Read("RB26DETT6.42");
    Cell(0, 1, 1, 100);
    const auto before = GridCellColourSet(0, 1, 1);
    mnuInjMapDisplay_Click(1);
    EXPECT_EQ(GridCellColourSet(0, 1, 1), before);
}

TEST_F(Maps, BaseSelector_MovesBothBaseMaps) {
    Read("B18C2.02B");
    const unsigned other = Grid[1].Revision;
    const unsigned first = Grid[2].Revision;
    const unsigned second = Grid[3].Revision;
    comMapType[3].ListIndex = 3;
    comMapType_Click(3);
    EXPECT_EQ(BaseMapDisplay, 3);
    EXPECT_EQ(comMapType[2].ListIndex, 3);
    EXPECT_EQ(comMapType[3].ListIndex, 3);
    EXPECT_TRUE(mnuBaseMapDisplay[3].Checked);
    EXPECT_GT(Grid[2].Revision, first);
    EXPECT_GT(Grid[3].Revision, second);
    EXPECT_EQ(Grid[1].Revision, other);
}

TEST_F(Maps, BaseSelectorWithoutABaseMap_OnlyRemembersTheMode) {
    Read("RB26DETT6.42");
    mnuBaseMapDisplay_Click(2);
    EXPECT_EQ(BaseMapDisplay, 2);
    EXPECT_TRUE(mnuBaseMapDisplay[2].Checked);
    Read("1JZ-GTE23.12");
    EXPECT_EQ(comMapType[2].ListIndex, 2);
}

TEST_F(Maps, ColourSchemeSelector_TicksOneAndRedrawsAll) {
    const unsigned before = Grid[5].Revision;
    mnuSetupMapColourScheme_Click(0);
    EXPECT_EQ(MapColourScheme, 0);
    EXPECT_TRUE(mnuSetupMapColourScheme[0].Checked);
    EXPECT_FALSE(mnuSetupMapColourScheme[1].Checked);
    EXPECT_GT(Grid[5].Revision, before);
}

TEST_F(Maps, TabClick_RefreshesAMapTabAndNoOther) {
    Read("1JZ-GTE23.12");
    ReadData[0x8A] = ByteString(40, '\0') + ByteString("\x90\x01", 2) + ByteString(38, '\0');
    SSTab1.Tab = 6;
    const unsigned before = Grid[2].Revision;
    SSTab1_Click();
    EXPECT_EQ(Grid[2].Revision, before);
    EXPECT_EQ(MapRefRpm[0][0], 0);
    SSTab1.Tab = 2;
    SSTab1_Click();
    EXPECT_GT(Grid[2].Revision, before);
    EXPECT_EQ(MapRefRpm[0][0], 400);
}

TEST_F(Maps, MapTables_AreSinglesAndTheArithmeticIsDouble) {
    Read("1JZ-GTE23.12");
    Cell(BaseMapIndex, 1, 1, 65535);
    // 65535 steps of the single 0.004 are 262.1400125...
    EXPECT_EQ(GridCellText(BaseMapIndex, 1, 1), "262.140");
    MapFormat[BaseMapIndex] = "0.0000000";
    EXPECT_EQ(GridCellText(BaseMapIndex, 1, 1), "262.1400125");
}

// ---- the way back: from text to raw value

constexpr std::int32_t kUntouched = -77;

// The raw value of `text`; kUntouched if there is none.
std::int32_t RawOf(int map, const std::string& text, int row = 2, int column = 3) {
    std::int32_t raw = kUntouched;
    const bool worked = MapTextToRaw(map, text, row, column, raw);
    EXPECT_EQ(worked, raw != kUntouched) << text;
    return raw;
}

std::string Digits(double value) {
    return FormatNumber(value, "0.0000000000");
}

TEST_F(Maps, TextToRaw_OfTheInjectionMapInItsThreeModes) {
    Read("RB26DETT6.42");
    StoichAF = 15.25;
    for (int raw = 0; raw <= 255; ++raw) {
        const double correction = raw / 256.0 + 0.5;
        InjMapDisplay = 0;
        EXPECT_EQ(RawOf(0, Digits(correction)), raw);
        InjMapDisplay = 1;
        EXPECT_EQ(RawOf(0, Digits(1 / correction)), raw);
        InjMapDisplay = 2;
        EXPECT_EQ(RawOf(0, Digits(15.25 / correction)), raw);
    }
}

TEST_F(Maps, TextToRaw_OfTheOtherMaps) {
    Read("13B-REW7.07");
    for (int raw = 0; raw <= 255; ++raw) {
        EXPECT_EQ(RawOf(1, std::to_string(raw - 25)), raw);
        EXPECT_EQ(RawOf(2, std::to_string(raw - 25)), raw);
    }
    // No way back from the distance: what is typed is a value of this map.
    chkSplit[2].Value = 1;
    Cell(1, 2, 3, 100);
    EXPECT_EQ(RawOf(2, "10"), 35);
    Read("RB26DETT6.42");
    EXPECT_EQ(RawOf(1, "40"), 40);
}

TEST_F(Maps, TextToRaw_OfTheBaseMapWithOneKindOfInjectors) {
    BaseCell("1JZ-GTE23.12");
    txtSetting[500].Text = "80.0";
    const int map = BaseMapIndex;
    Cell(0, 2, 3, 64);  // 0.75
    for (int raw = 0; raw <= 65535; raw += 13) {
        const double base = raw * 0.004;
        BaseMapDisplay = 0;
        EXPECT_EQ(RawOf(map, Digits(base)), raw);
        BaseMapDisplay = 1;
        EXPECT_EQ(RawOf(map, Digits(base * 0.75)), raw);
        const double open = base * 0.75 * 0.8 / 2;  // of the 20 ms that a revolution takes
        BaseMapDisplay = 2;
        EXPECT_EQ(RawOf(map, Digits(20 - open)), raw);
        BaseMapDisplay = 3;
        EXPECT_EQ(RawOf(map, Digits(open * 5)), raw);
    }
}

TEST_F(Maps, TextToRaw_OfTheBaseMapWithTwoKindsOfInjectors) {
    BaseCell("13B-REW7.07");
    txtSetting[500].Text = "";  // counts on other builds
    txtSetting[1500].Text = "50.0";
    txtSetting[1502].Text = "550";
    txtSetting[1503].Text = "1650";
    const int map = BaseMapIndex;
    for (int raw = 0; raw <= 65535; raw += 13) {
        const double open = raw * 0.004 * 0.5 / 4;
        BaseMapDisplay = 2;
        EXPECT_EQ(RawOf(map, Digits(20 - open)), raw);
        BaseMapDisplay = 3;
        EXPECT_EQ(RawOf(map, Digits(open * 5)), raw);
    }
}

TEST_F(Maps, TextToRaw_TakesSpeedAndInjectionOfItsOwnCell) {
    BaseCell("B18C2.02B");
    Cell(0, 5, 6, 0);  // 0.5
    MapRefRpm[1][5] = 6000;
    MapRefRpm[2][2] = 1500;
    MapRefRpm[2][5] = 1000;
    const int map = BaseMapIndex;
    BaseMapDisplay = 1;
    EXPECT_EQ(RawOf(map, "4", 2, 3), 1000);
    EXPECT_EQ(RawOf(map, "4", 5, 6), 2000);
    BaseMapDisplay = 2;
    EXPECT_EQ(RawOf(map, "18", 2, 3), 1000);
    EXPECT_EQ(RawOf(map, "8", 5, 6), 2000);       // 2 ms of 10
    EXPECT_EQ(RawOf(map + 1, "38", 2, 3), 1000);  // 2 ms of 40
    EXPECT_EQ(RawOf(map + 1, "58", 5, 6), 2000);  // 2 ms of 60
}

// What the format tells apart comes back as it was, in every mode.
TEST_F(Maps, EveryRawValueShown_ComesBack) {
    Read("13B-REW7.07");
    for (InjMapDisplay = 0; InjMapDisplay <= 2; ++InjMapDisplay) {
        for (int raw = 0; raw <= 255; ++raw) {
            Cell(0, 2, 3, raw);
            EXPECT_EQ(RawOf(0, GridCellText(0, 2, 3)), raw) << InjMapDisplay;
        }
    }
    InjMapDisplay = 1;  // how the injection map shows makes no difference to the others
    for (int raw = 0; raw <= 255; ++raw) {
        Cell(1, 2, 3, raw);
        EXPECT_EQ(RawOf(1, GridCellText(1, 2, 3)), raw);
    }
    for (const char* key : {"13B-REW7.07", "1JZ-GTE23.12"}) {
        BaseCell(key);
        txtSetting[1500].Text = "90.0";
        txtSetting[1502].Text = "800";
        txtSetting[1503].Text = "550";
        txtSetting[500].Text = "90.0";
        Cell(0, 2, 3, 255);
        for (BaseMapDisplay = 0; BaseMapDisplay <= 3; ++BaseMapDisplay) {
            for (int raw = 0; raw <= 65535; ++raw) {
                Cell(BaseMapIndex, 2, 3, raw);
                ASSERT_EQ(RawOf(BaseMapIndex, GridCellText(BaseMapIndex, 2, 3)), raw)
                    << key << BaseMapDisplay;
            }
        }
    }
}

TEST_F(Maps, TextToRaw_IsLimitedToTheMap) {
    BaseCell("1JZ-GTE23.12");
    for (const auto& [text, raw] : {std::pair("-1", 0),
                                    {"0.499", 0},
                                    {"0.5", 0},
                                    {"1.49609375", 255},
                                    {"1.497", 255},
                                    {"1e300", 255},
                                    {"-1e300", 0}})
        EXPECT_EQ(RawOf(0, text), raw) << text;
    for (const auto& [text, raw] :
         {std::pair("-0.001", 0), {"262.14", 65535}, {"262.2", 65535}, {"1e300", 65535}})
        EXPECT_EQ(RawOf(BaseMapIndex, text), raw) << text;
    for (const auto& [text, raw] : {std::pair("-1", 0), {"255.4", 255}, {"256", 255}})
        EXPECT_EQ(RawOf(1, text), raw) << text;
    InjMapDisplay = 1;
    for (const auto& [text, raw] : {std::pair("2.1", 0), {"0.6", 255}, {"-1", 0}, {"1e-300", 255}})
        EXPECT_EQ(RawOf(0, text), raw) << text;
    MapMin[1] = 10;
    MapMax[1] = 20;
    for (const auto& [text, raw] : {std::pair("9", 10), {"10", 10}, {"15", 15}, {"20", 20}, {"21", 20}})
        EXPECT_EQ(RawOf(1, text), raw) << text;
}

TEST_F(Maps, TextToRaw_HalfAStepGoesToTheEvenOne) {
    Read("13B-REW7.07");
    for (const auto& [text, raw] : {std::pair("0.501953125", 0), {"0.505859375", 2}, {"0.509765625", 2}})
        EXPECT_EQ(RawOf(0, text), raw) << text;
    for (const auto& [text, raw] :
         {std::pair("-24.5", 0), {"-23.5", 2}, {"-22.5", 2}, {"-21.5", 4}, {"229.5", 254}})
        EXPECT_EQ(RawOf(1, text), raw) << text;
}

TEST_F(Maps, TextToRaw_ZeroInLambdaAndAirFuelRatioIsTheMost) {
    Read("RB26DETT6.42");
    MapMax[0] = 300;
    for (InjMapDisplay = 1; InjMapDisplay <= 2; ++InjMapDisplay) {
        for (const char* zero : {"0", "0.000", "-0", "+0", ".0", "0e5", "&H0", "1e-400"})
            EXPECT_EQ(RawOf(0, zero), 300) << zero;
    }
}

TEST_F(Maps, TextToRaw_OfNoNumberLeavesTheRawValue) {
    BaseCell("1JZ-GTE23.12");
    for (const char* text : {"",   " ",     "abc",    "1.2x", "x1.2", "1,2", "1 2", "--1", ".",    "e5",
                             "1e", "1e400", "-1e400", "inf",  "-inf", "nan", "&H",  "&HG", "0x10", "*2"}) {
        for (int mode = 0; mode <= 3; ++mode) {
            InjMapDisplay = std::min(mode, 2);
            BaseMapDisplay = mode;
            for (int map = 0; map <= BaseMapIndex; ++map)
                EXPECT_EQ(RawOf(map, text), kUntouched) << map << text;
        }
    }
}

TEST_F(Maps, TextToRaw_InAnUnknownModeHasNone) {
    BaseCell("1JZ-GTE23.12");
    for (const int mode : {-1, 3, 7}) {
        InjMapDisplay = mode;
        EXPECT_EQ(RawOf(0, "1"), kUntouched) << mode;
    }
    for (const int mode : {-1, 4, 7}) {
        BaseMapDisplay = mode;
        EXPECT_EQ(RawOf(BaseMapIndex, "1"), kUntouched) << mode;
    }
}

TEST_F(Maps, TextToRaw_WithoutSpeedOrInjectorHasNone) {
    BaseCell("1JZ-GTE23.12");
    const int map = BaseMapIndex;
    for (BaseMapDisplay = 2; BaseMapDisplay <= 3; ++BaseMapDisplay) {
        EXPECT_EQ(RawOf(map, "5", 2, 4), kUntouched);  // its column's speed is 0
        for (const char* none : {"", "0.0", "abc"}) {
            txtSetting[500].Text = none;
            EXPECT_EQ(RawOf(map, "5"), kUntouched) << none;
        }
        txtSetting[500].Text = "100.0";
        EXPECT_NE(RawOf(map, "5"), kUntouched);
    }
    for (BaseMapDisplay = 0; BaseMapDisplay <= 1; ++BaseMapDisplay) {
        txtSetting[500].Text = "";
        EXPECT_NE(RawOf(map, "5", 2, 4), kUntouched);
    }
}

TEST_F(Maps, TextToRaw_WithAnInjectorMissingHasNone) {
    BaseCell("13B-REW7.07");
    for (BaseMapDisplay = 2; BaseMapDisplay <= 3; ++BaseMapDisplay) {
        for (const int missing : {1500, 1502, 1503}) {
            for (const char* none : {"", "abc"}) {
                txtSetting[1500].Text = "50.0";
                txtSetting[1502].Text = txtSetting[1503].Text = "550";
                txtSetting[missing].Text = none;
                EXPECT_EQ(RawOf(BaseMapIndex, "5"), kUntouched) << missing;
            }
        }
        for (const int zero : {1500, 1502}) {
            txtSetting[1500].Text = "50.0";
            txtSetting[1502].Text = txtSetting[1503].Text = "550";
            txtSetting[zero].Text = "0";
            EXPECT_EQ(RawOf(BaseMapIndex, "5"), kUntouched) << zero;
        }
        txtSetting[1502].Text = "550";
        txtSetting[1500].Text = "50.0";
        txtSetting[1503].Text = "0";  // no second injectors
        EXPECT_NE(RawOf(BaseMapIndex, "5"), kUntouched);
    }
}

TEST_F(Maps, TextToRaw_OverAnInjectionValueOfZeroHasNone) {
    BaseCell("1JZ-GTE23.12");
    MapOffset[0] = 0;
    Cell(0, 2, 3, 0);
    for (BaseMapDisplay = 1; BaseMapDisplay <= 3; ++BaseMapDisplay) {
        EXPECT_EQ(RawOf(BaseMapIndex, "5"), kUntouched) << BaseMapDisplay;
        EXPECT_EQ(RawOf(BaseMapIndex, "0"), kUntouched) << BaseMapDisplay;
    }
    BaseMapDisplay = 0;
    EXPECT_EQ(RawOf(BaseMapIndex, "4"), 1000);
}

TEST_F(Maps, TextToRawOfTheCellInCompareMode_RestsOnTheImage) {
    BaseCell("1JZ-GTE23.12");
    mnuCompare.Checked = true;
    CompareMapIndex[0] = 0;
    MapCompare[0][2][3] = 0;
    BaseMapDisplay = 1;
    EXPECT_EQ(RawOf(BaseMapIndex, "4"), 1000);
}

// ---- display

TEST_F(Maps, DisplayMap_FillsEveryCellAndWithColourItsColour) {
    Read("1JZ-GTE23.12");
    std::mt19937 random(7);
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column)
            Cell(0, row, column, static_cast<int>(random() % 256));
    }
    Grid[0].TextMatrix = {};
    Grid[0].CellBackColor = {};
    DisplayMap(0, true);
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            const auto raw = static_cast<unsigned>(GetCell(0, row, column, false));
            EXPECT_EQ(Grid[0].TextMatrix[row][column], FormatNumber(raw / 256.0 + 0.5, "0.000"));
            EXPECT_EQ(Grid[0].CellBackColor[row][column], 256 * raw + 255 - raw);
        }
        EXPECT_EQ(Grid[0].TextMatrix[0][row], "");
        EXPECT_EQ(Grid[0].TextMatrix[row][0], "");
    }
}

TEST_F(Maps, DisplayMapWithoutColour_LeavesTheColours) {
    Read("RB26DETT6.42");
    DisplayMap(0, true);
    Cell(0, 1, 1, 100);
    MapColourScheme = 0;
    DisplayMap(0, false);
    EXPECT_EQ(Grid[0].TextMatrix[1][1], GridCellText(0, 1, 1));
    EXPECT_EQ(Grid[0].CellBackColor[1][1], 255U);
    DisplayMap(0, true);
    EXPECT_EQ(Grid[0].CellBackColor[1][1], 0U);
}

TEST_F(Maps, UnknownColourScheme_LeavesTheColours) {
    Read("RB26DETT6.42");
    Cell(0, 1, 1, 100);
    DisplayMap(0, true);
    const auto before = Grid[0].CellBackColor;
    Cell(0, 1, 1, 200);
    for (const std::int16_t scheme : {std::int16_t{2}, std::int16_t{5}, std::int16_t{-1}}) {
        MapColourScheme = scheme;
        DisplayMap(0, true);
        EXPECT_EQ(Grid[0].CellBackColor, before) << scheme;
        EXPECT_EQ(Grid[0].TextMatrix[1][1], GridCellText(0, 1, 1)) << scheme;
    }
}

TEST_F(Maps, ModeSelector_ShowsTheNewTextsAndLeavesTheColours) {
    BaseCell("1JZ-GTE23.12");
    DisplayAllMaps();
    const auto injection = Grid[0].CellBackColor;
    const auto base = Grid[BaseMapIndex].CellBackColor;
    MapColourScheme = 0;
    mnuInjMapDisplay_Click(1);
    mnuBaseMapDisplay_Click(3);
    EXPECT_EQ(Grid[0].CellBackColor, injection);
    EXPECT_EQ(Grid[BaseMapIndex].CellBackColor, base);
    EXPECT_EQ(Grid[0].TextMatrix[1][1], "2.000");
    EXPECT_EQ(Grid[BaseMapIndex].TextMatrix[2][3], "10.000");
}

TEST_F(Maps, DisplayMap_KeepsTheSelectionAndLetsPaintingGoOn) {
    Read("RB26DETT6.42");
    const GridSelection drawn{9, 8, 4, 5};
    Grid[0].Selection = drawn;
    for (const bool withColour : {false, true}) {
        const unsigned before = Grid[0].Revision;
        DisplayMap(0, withColour);
        EXPECT_EQ(Grid[0].Selection, drawn);
        EXPECT_TRUE(Grid[0].Redraw);
        EXPECT_GT(Grid[0].Revision, before);
    }
}

TEST_F(Maps, SavedSelection_ComesBackAndHoldsPaintingMeanwhile) {
    Grid[1].Selection = {9, 8, 4, 5};
    GridSelection saved;
    SaveGridSelection(1, saved);
    EXPECT_EQ(saved, (GridSelection{9, 8, 4, 5}));
    EXPECT_FALSE(Grid[1].Redraw);
    EXPECT_TRUE(Grid[0].Redraw);
    Grid[1].Selection = {1, 1, 1, 1};
    const unsigned before = Grid[1].Revision;
    RestoreGridSelection(1, saved);
    EXPECT_EQ(Grid[1].Selection, saved);
    EXPECT_TRUE(Grid[1].Redraw);
    EXPECT_GT(Grid[1].Revision, before);
}

TEST_F(Maps, SplitBox_ShowsItsMapAnew) {
    Read("13B-REW7.07");
    Cell(1, 5, 6, 45);
    Cell(2, 5, 6, 40);
    DisplayAllMaps();
    chkSplit[2].Value = 1;
    chkSplit_Click(2);
    EXPECT_EQ(Grid[2].TextMatrix[5][6], "5");
    chkSplit[2].Value = 0;
    chkSplit_Click(2);
    EXPECT_EQ(Grid[2].TextMatrix[5][6], "15");
}

// Its neighbour was edited in the meantime.
TEST_F(Maps, TabOfASplitMap_ShowsItAnewWhenItComesIntoView) {
    Read("13B-REW7.07");
    Cell(2, 5, 6, 40);
    chkSplit[2].Value = 1;
    DisplayAllMaps();
    Cell(1, 5, 6, 45);
    EXPECT_EQ(Grid[2].TextMatrix[5][6], "-40");
    SSTab1.Tab = 2;
    SSTab1_Click();
    EXPECT_EQ(Grid[2].TextMatrix[5][6], "5");
}

TEST_F(Maps, ListOfAnyOtherMap_ChoosesNoMode) {
    Read("1JZ-GTE23.12");
    for (const int map : {1, 3, 4, 5}) {
        if (map == BaseMapIndex + 1) continue;
        comMapType[map].ListIndex = 2;
        comMapType_Click(map);
        EXPECT_EQ(InjMapDisplay, 0) << map;
        EXPECT_EQ(BaseMapDisplay, 0) << map;
    }
}

// ---- the stoichiometric ratio

TEST_F(Maps, MenuOfTheInjectionMap_ShowsTheRatio) {
    mnuSetupInjMap_Click();
    EXPECT_EQ(mnuSetupInjMapStoich.Caption, "Stoich 14.70");
    StoichAF = 9.876;
    mnuSetupInjMap_Click();
    EXPECT_EQ(mnuSetupInjMapStoich.Caption, "Stoich 9.88");
    tr = [](const std::string& text) { return text == "Stoich" ? std::string("Ratio") : text; };
    mnuSetupInjMap_Click();
    EXPECT_EQ(mnuSetupInjMapStoich.Caption, "Ratio 9.88");
}

// What the dialog gives back after `typed` was typed.
void EnterStoich(const std::string& typed) {
    AnswerNumber(NumberEntryText(typed, "0.00"));
    mnuSetupInjMapStoich_Click();
}

constexpr const char* kStoichRefused =
    "Stoich should not be less than 10 or greater than 30. Stoich will not be changed.";

TEST_F(Maps, StoichDialog_AsksForTheRatioInItsFormat) {
    StoichAF = 15.126;
    AnswerNumber(std::nullopt);
    mnuSetupInjMapStoich_Click();
    EXPECT_EQ(LastNumberEntry().Caption, "Enter Stoichiometric AF");
    EXPECT_EQ(LastNumberEntry().Format, "0.00");
    EXPECT_EQ(LastNumberEntry().Text, "15.13");
    EXPECT_EQ(StoichAF, 15.126);  // cancelled
    EXPECT_TRUE(NoNumberLeft());
}

TEST_F(Maps, StoichEntered_IsTakenFromTenToThirty) {
    for (const auto& [typed, ratio] : {std::pair("10", 10.0),
                                       {"30", 30.0},
                                       {"14.7", 14.7},
                                       {"15,2", 15.2},
                                       {"30.004", 30.0},
                                       {"9.996", 10.0},
                                       {"1.5e1", 15.0},
                                       {"&HF", 15.0}}) {
        EnterStoich(typed);
        EXPECT_EQ(StoichAF, ratio) << typed;
    }
}

TEST_F(Maps, StoichOutOfBoundsOrNoNumber_IsRefusedWithAMessage) {
    for (const char* typed : {"9.99", "30.01", "0", "-15", "", " ", "abc", "15x", "1.5.2", "1,5,2", "inf",
                              "nan", "1e400", "1e300", "&H"}) {
        ExpectMessage(kStoichRefused);
        EnterStoich(typed);
        EXPECT_TRUE(NoMessageLeft()) << typed;
        EXPECT_EQ(StoichAF, 14.7) << typed;
    }
}

TEST_F(Maps, StoichEntered_ShowsAtTheNextDisplay) {
    Read("RB26DETT6.42");
    Cell(0, 1, 1, 128);
    InjMapDisplay = 2;
    DisplayAllMaps();
    const unsigned before = Grid[0].Revision;
    EnterStoich("29.4");
    EXPECT_EQ(Grid[0].TextMatrix[1][1], "14.700");
    EXPECT_EQ(Grid[0].Revision, before);
    DisplayMap(0, true);
    EXPECT_EQ(Grid[0].TextMatrix[1][1], "29.400");
}

}  // namespace
}  // namespace zandrel
