#include "tuning/maps.h"

#include <gtest/gtest.h>

#include "image/accessors.h"
#include "support/cleanstate.h"
#include "tuning/display.h"

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
    EXPECT_EQ(GridCellText(0, 1, 1), "0.250");
    EXPECT_EQ(GridCellColourSet(0, 1, 1), 255U);
    MapCompare[0][1][1] = 128;
    EXPECT_EQ(GridCellText(0, 1, 1), "0.000");
    EXPECT_EQ(GridCellColourSet(0, 1, 1), 0U);
    EXPECT_EQ(GridCellColourSet(1, 1, 1), 0xE0E0E0U);
    Cell(1, 1, 1, 40);
    EXPECT_EQ(GridCellText(1, 1, 1), "40");
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

}  // namespace
}  // namespace zandrel
