#include "tuning/display.h"

#include <gtest/gtest.h>

#include "image/image.h"
#include "support/cleanstate.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

using Tabs = std::vector<int>;

class Display : public CleanState {
  protected:
    static Tabs VisibleTabs() {
        Tabs tabs;
        for (int tab = 0; tab < kTabs; ++tab) {
            if (SSTab1.TabVisible[tab]) tabs.push_back(tab);
        }
        return tabs;
    }
    // A settings record with nothing but the given arguments (from 1).
    static SettingsRecord Only(std::initializer_list<std::pair<int, std::string_view>> arguments) {
        SettingsRecord record{};
        for (const auto& [n, text] : arguments) record[n - 1] = text;
        return record;
    }
    static LogRecord OnlyLog(std::initializer_list<std::pair<int, std::string_view>> arguments) {
        LogRecord record{};
        for (const auto& [n, text] : arguments) record[n - 1] = text;
        return record;
    }
};

TEST_F(Display, NothingAtAll_ShowsTheFirstAndFifthPageAndTheGeneralTab) {
    DisplayInit1({});
    DisplayInit2({});
    EXPECT_EQ(VisibleTabs(), (Tabs{6, 10, 12}));
    EXPECT_EQ(SSTab1.TabsPerRow, 3);
    EXPECT_FALSE(mnuReCalcBase.Enabled);
}

TEST_F(Display, BeforeTheFormIsReady_NothingHappens) {
    MainFormReady = false;
    ReadData[1] = "x";
    ASSERT_TRUE(RegisterBlock("&H8D", 24, true, true));
    DisplayInit1(SettingsRecordOf(*FindBuild("RB26DETT6.42")));
    EXPECT_TRUE(BlockRead[0x8D]);
    EXPECT_FALSE(FraSettings[120].Visible);
}

TEST_F(Display, IsKnownVersion_ChangesNothingAndLeavesTheFormReady) {
    MainFormReady = false;
    EXPECT_TRUE(IsKnownVersion("RB26DETT", "6.42"));
    EXPECT_TRUE(MainFormReady);
    EXPECT_FALSE(FraSettings[120].Visible);
    EXPECT_FALSE(IsKnownVersion("RB26DETT", "9.99"));
    EXPECT_TRUE(MainFormReady);
}

TEST_F(Display, UnknownBuild_ChangesNothing) {
    ASSERT_TRUE(RegisterBlock("&H8D", 24, true, true));
    EXPECT_FALSE(ApplySettingsProfile("RB26DETT", "9.99"));
    EXPECT_FALSE(ApplyLogProfile("RB26DETT", "9.99"));
    EXPECT_TRUE(BlockRead[0x8D]);
}

TEST_F(Display, Rb26_ShowsItsMapsPagesAndFrames) {
    ApplyBuild("RB26DETT6.42");
    EXPECT_EQ(VisibleTabs(), (Tabs{0, 1, 6, 7, 8, 9, 10, 12}));
    EXPECT_EQ(SSTab1.TabsPerRow, 8);
    EXPECT_EQ(SSTab1.TabCaption[0], "InjMap");
    EXPECT_EQ(SSTab1.TabCaption[1], "IgnMap");
    std::vector<int> shown;
    for (const auto& [index, frame] : FraSettings) {
        if (!frame.Visible) continue;
        EXPECT_TRUE(frame.Enabled) << index;
        shown.push_back(index);
    }
    EXPECT_EQ(shown,
              (std::vector<int>{100, 120, 140, 150, 155, 160, 170, 180, 190, 200, 215, 230, 240,  280, 290,
                                300, 370, 400, 410, 420, 430, 450, 460, 500, 520, 550, 560, 1340, 1470}));
    EXPECT_EQ(FraSettings[120].Tag, "&H8B");
    EXPECT_EQ(txtSetting[120].Tag, "&H8B,1,2,1,0,0");
    EXPECT_EQ(BlockLength[0x8B], 12);
    EXPECT_EQ(FraSettings[100].Tag, "&HAB,&HD5");
    EXPECT_EQ(txtSetting[108].Tag, "&HD5,6,1,1,0,0");
    EXPECT_FALSE(BlockWrite[0xD5]);
    EXPECT_FALSE(BlockWrite[0xF3]);
    EXPECT_TRUE(BlockRead[0xF3]);
    EXPECT_EQ(SensorSelectBlock, 0xCE);
    EXPECT_EQ(FunctionSelectBlock, 0xD6);
    EXPECT_EQ(lblGeneral[200].Caption, "Load");
    EXPECT_EQ(lblGeneral[300].Caption, "Load");
    EXPECT_EQ(BaseMapIndex, kNoMap);
    EXPECT_FALSE(mnuReCalcBase.Enabled);
    EXPECT_EQ(BlockA, 0xDA);
    EXPECT_EQ(BlockB, 0xDE);
    EXPECT_EQ(BlockC, 0xDB);
    EXPECT_EQ(ExtraBlock, 0xDD);
    EXPECT_EQ(BlockLength[0xDD], 80);
    EXPECT_FALSE(BlockWrite[0xDD]);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - ");
}

TEST_F(Display, PressureLoad_NamesTheLabels) {
    ApplyBuild("1JZ-GTE23.12");
    EXPECT_EQ(lblGeneral[200].Caption, "PIM kg/m²");
    EXPECT_EQ(lblGeneral[300].Caption, "PIM");
    EXPECT_EQ(SSTab1.TabCaption[2], "BaseMap");
    EXPECT_EQ(BaseMapIndex, 2);
    EXPECT_TRUE(mnuReCalcBase.Enabled);
    EXPECT_TRUE(comMapType[2].Visible);
    EXPECT_EQ(FraSettings[340].Tag, "&HCB,&HBC");
    EXPECT_TRUE(FraSettings[350].Visible);
    EXPECT_FALSE(FraSettings[1340].Visible);
    EXPECT_EQ(SensorSelectBlock, 0xCB);
    EXPECT_EQ(optSetting[340].Tag, "&HCB,1,0,7");
    EXPECT_EQ(txtSetting[340].Tag, "&HBC,1,2,0.15,0,0");
    EXPECT_FALSE(FraSettings[370].Visible);
}

TEST_F(Display, SensorSelectOfAnotherCode_LeavesThePimBoxesOnTheirBlock) {
    ApplyBuild("1JZGT-D6.03");
    EXPECT_EQ(FraSettings[340].Tag, "&HCE,&HBC");
    EXPECT_EQ(optSetting[344].Tag, "&HCE,1,4,7");
    EXPECT_EQ(lblSetting[344].Tag, "&HCE,74,18");
    EXPECT_EQ(txtSetting[340].Tag, "&HBC,1,2,0.15,0,0");
    EXPECT_EQ(txtSetting[365].Tag, "&HCE,107,1,0.390625,50,0.0");
    EXPECT_EQ(cmdEditCurve[350].Tag.substr(0, 14), "8;Const,,,,,,0");
    EXPECT_NE(cmdEditCurve[350].Tag.find(";&HCE,99,"), std::string::npos);
}

TEST_F(Display, TwoBaseMaps_BearTheirNamesAndTables) {
    BaseMapDisplay = 1;
    ApplyBuild("B18C2.02B");
    EXPECT_EQ(BaseMapIndex, 2);
    EXPECT_EQ(SSTab1.TabCaption[2], "BaseVT0");
    EXPECT_EQ(SSTab1.TabCaption[3], "BaseVT1");
    EXPECT_EQ(MapBaseTable[2], 1);
    EXPECT_EQ(MapBaseTable[3], 2);
    EXPECT_TRUE(comMapType[3].Visible);
    EXPECT_EQ(comMapType[2].ListIndex, 1);
    EXPECT_EQ(comMapType[3].ListIndex, 1);
    EXPECT_EQ(MapFirstBlock[3], 0x63);
    EXPECT_EQ(BlockLength[0x6A], 100);
    EXPECT_TRUE(BlockRead[0x6A]);
    EXPECT_FALSE(BlockWrite[0x6A]);
    EXPECT_EQ(MapRefBlock, (std::array<std::string, 3>{"&H8A", "&H60", "&H61"}));
    EXPECT_EQ(lblRevIdle[121].Caption, "VTLI High");
}

TEST_F(Display, MapsFillTheTabsWithoutGaps) {
    ApplyBuild("13B-REW7.07");
    EXPECT_EQ(SSTab1.TabCaption[0], "InjMap");
    EXPECT_EQ(SSTab1.TabCaption[1], "IglMap");
    EXPECT_EQ(SSTab1.TabCaption[2], "IgtMap");
    EXPECT_EQ(SSTab1.TabCaption[3], "BaseMap");
    EXPECT_EQ(BaseMapIndex, 3);
    EXPECT_EQ(Grid[2].Tag, "&H81,1,1,-25,0,0,255");
    EXPECT_EQ(chkSplit[2].Caption, "DisplaySplit");
    EXPECT_TRUE(chkSplit[2].Visible);
    EXPECT_FALSE(chkSplit[1].Visible);
    EXPECT_EQ(MapOffset[2], -25);
    EXPECT_TRUE(FraSettings[2100].Visible);
    EXPECT_TRUE(FraSettings[440].Visible);
    EXPECT_EQ(FraSettings[430].Caption, "IGL Dwell vs RPM");
    EXPECT_EQ(FraSettings[520].Caption, "InjPr Lag (mS) vs BatV");
    EXPECT_TRUE(FraSettings[1500].Visible);
    EXPECT_TRUE(FraSettings[1410].Visible);
}

TEST_F(Display, CaptionsOfOneBuild_DoNotStayForTheNext) {
    ApplyBuild("13B-REW7.07");
    ApplyBuild("RB26DETT6.42");
    EXPECT_EQ(FraSettings[430].Caption, "IGN Dwell vs RPM");
    EXPECT_EQ(FraSettings[520].Caption, "Inj Lag (mS) vs BatV");
    EXPECT_EQ(BaseMapIndex, kNoMap);
    EXPECT_EQ(VisibleTabs(), (Tabs{0, 1, 6, 7, 8, 9, 10, 12}));
    EXPECT_FALSE(BlockRead[0xB0]);
    EXPECT_FALSE(mnuReCalcBase.Enabled);
}

TEST_F(Display, AutomaticGearbox_AddsItsPageAndBlocks) {
    ApplyBuild("1JZGT-AT3.43");
    EXPECT_TRUE(SSTab1.TabVisible[11]);
    EXPECT_EQ(BlockLength[0x40], 24);
    EXPECT_EQ(BlockLength[0x41], 24);
    EXPECT_EQ(BlockLength[0x42], 12);
    EXPECT_EQ(BlockLength[0x43], 12);
    EXPECT_FALSE(BlockRead[0x44]);
    EXPECT_FALSE(FraSettings[700].Visible);
    EXPECT_TRUE(FraSettings[1120].Visible);
    EXPECT_FALSE(FraSettings[120].Visible);
    EXPECT_TRUE(FraSettings[1140].Visible);
    EXPECT_TRUE(FraSettings[180].Visible);
    EXPECT_EQ(FraSettings[1120].Tag, "184");
    EXPECT_EQ(BlockLength[0xB8], 18);
    EXPECT_EQ(BlockLength[0xD6], 136);
    EXPECT_EQ(FunctionSelectBlock, 0xD6);
    EXPECT_EQ(ExtraBlock, 0xDD);
    EXPECT_EQ(BlockLength[0xDD], 48);
    EXPECT_EQ(BlockLength[0xEB], 72);
    EXPECT_FALSE(BlockWrite[0xEB]);

    ApplyBuild("1JZGT-AT3.54");
    EXPECT_EQ(BlockLength[0x44], 9);
    EXPECT_TRUE(BlockWrite[0x44]);
    EXPECT_TRUE(FraSettings[700].Visible);
    EXPECT_TRUE(FraSettings[1180].Visible);
    EXPECT_EQ(BlockLength[0xAC], 14);
}

TEST_F(Display, FlagsAboveTheDefaultRange_KeepTheirDesignCode) {
    DisplayInit1(Only({{27, "&H120"}}));
    EXPECT_EQ(FraSettings[1180].Tag, "32");
    EXPECT_EQ(chkSetting[1189].Tag, "32,10,255");
    EXPECT_EQ(chkSetting[1190].Tag, "&HAC,11,255");
    EXPECT_EQ(chkSetting[1193].Tag, "&HAC,14,255");
}

TEST_F(Display, RangesTouchOnlyMembersOfTheirFrame) {
    DisplayInit1(Only({{22, "&H11"}, {23, "&H22"}, {13, "&H33"}}));
    EXPECT_EQ(txtSetting[155].Tag, "&H11,2,2,0.005,0,0.000");
    EXPECT_EQ(txtSetting[156].Tag, "&H11,4,1,1,0,0");
    EXPECT_EQ(txtSetting[150].Tag, "&H22,2,2,0.1,0,0.0");
    EXPECT_EQ(FraSettings[155].Tag, "&H11,4");
    EXPECT_EQ(lblSetting[100].Tag, "&H69,1,80");
    EXPECT_EQ(txtSetting[107].Tag, "&H33,11,1,1,0,0");
    EXPECT_EQ(txtSetting[108].Tag, "&HD5,6,1,1,0,0");
}

TEST_F(Display, FourteenthArgument_IsAFrameOfItsOwnOrTheSecondEntry) {
    DisplayInit1(Only({{14, "&H21"}}));
    EXPECT_TRUE(FraSettings[1100].Visible);
    EXPECT_EQ(txtSetting[1109].Tag, "&H21,7,1,1,0,0");
    EXPECT_EQ(txtSetting[1110].Tag, "&H5C,8,1,1,0,0");  // above the default range
    EXPECT_EQ(optSetting[1103].Tag, "&H21,1,3,3");
    EXPECT_TRUE(BlockWrite[0x21]);

    DisplayInit1(Only({{13, "&H20"}, {14, "&H21"}}));
    EXPECT_FALSE(FraSettings[1100].Visible);
    EXPECT_EQ(FraSettings[100].Tag, "&H20,&H21");
    EXPECT_EQ(txtSetting[107].Tag, "&H20,11,1,1,0,0");
    EXPECT_EQ(txtSetting[108].Tag, "&H21,6,1,1,0,0");
    EXPECT_EQ(optSetting[100].Tag, "&H20,3,0,3");
    EXPECT_FALSE(BlockWrite[0x21]);
    EXPECT_EQ(BlockLength[0x21], 13);
}

TEST_F(Display, HeightOfTheRevIdleFrame_FollowsTheLastArgumentGiven) {
    const auto under = [](int index) { return txtSetting[index].Top + txtSetting[index].Height + 80; };
    DisplayInit1(Only({{16, "&H60"}}));
    EXPECT_EQ(FraSettings[120].Height, under(124));
    EXPECT_EQ(BlockLength[0x60], 10);
    DisplayInit1(Only({{17, "&H60"}}));
    EXPECT_EQ(FraSettings[120].Height, under(125));
    DisplayInit1(Only({{16, "&H60"}, {18, "&H60"}}));
    EXPECT_EQ(FraSettings[120].Height, under(126));
    EXPECT_EQ(BlockLength[0x60], 14);
    DisplayInit1(Only({{19, "&H7A"}}));
    EXPECT_EQ(FraSettings[120].Height, under(127));
    EXPECT_EQ(BlockLength[0x7A], 16);
    EXPECT_GT(under(127), under(124));
}

TEST_F(Display, ArgumentOfExactly256_SelectsTheAlternativeWithCodeZero) {
    DisplayInit1(Only({{19, "256"}, {21, "&H100"}, {27, "256"}, {45, "256"}}));
    EXPECT_TRUE(FraSettings[1120].Visible);
    EXPECT_FALSE(FraSettings[120].Visible);
    EXPECT_EQ(FraSettings[1120].Tag, "0");
    EXPECT_TRUE(FraSettings[1140].Visible);
    EXPECT_FALSE(FraSettings[140].Visible);
    EXPECT_EQ(FraSettings[1140].Tag, "0");
    EXPECT_TRUE(FraSettings[1180].Visible);
    EXPECT_FALSE(FraSettings[180].Visible);
    EXPECT_EQ(FraSettings[1180].Tag, "0");
    EXPECT_EQ(FraSettings[370].Tag.substr(0, 3), "0,&");
    EXPECT_EQ(AirFlowXScale, 0.001);
    EXPECT_TRUE(BlockRead[0]);
    DisplayInit2(OnlyLog({{15, "256"}}));
    EXPECT_EQ(ExtraBlock, 0);
    EXPECT_EQ(BlockLength[0], 48);
    EXPECT_EQ(BlockLength[0xEB], 72);
}

TEST_F(Display, MoreMapsThanTabs_AreLeftOut) {
    DisplayInit1(Only({{2, "&H10"},
                       {3, "&H20"},
                       {4, "&H30"},
                       {5, "&H40"},
                       {6, "&H50"},
                       {7, "&H60"},
                       {8, "&H70"},
                       {9, "&H80"},
                       {10, "&H90"}}));
    EXPECT_EQ(SSTab1.TabCaption[5], "VvinMap");
    EXPECT_EQ(SSTab1.TabCaption[6], "Settings 1");
    EXPECT_EQ(BaseMapIndex, kNoMap);
    DisplayInit1(Only({{10, "&H90"}}));  // a second base map without any other
    EXPECT_EQ(SSTab1.TabCaption[0], "BaseVT1");
    EXPECT_EQ(MapBaseTable[0], 0);
}

TEST_F(Display, MapTab_StartsWithItsSelectorsInDesignState) {
    chkSplit[2].Value = 1;
    comMapType[2].Items = {"x"};
    comMapType[2].ListIndex = 0;
    comMapType[2].Visible = true;
    comMapType[0].Visible = false;
    ApplyBuild("13B-REW7.07");
    EXPECT_EQ(chkSplit[2].Value, 0);
    EXPECT_EQ(comMapType[2].Items, (std::vector<std::string>{"Base (msec)", "Base x INJ (msec)",
                                                             "Head room (msec)", "Fuel duty (%)"}));
    EXPECT_EQ(comMapType[2].ListIndex, -1);
    EXPECT_FALSE(comMapType[2].Visible);
    EXPECT_TRUE(comMapType[0].Visible);
    EXPECT_EQ(comMapType[0].Items.size(), 3U);
}

TEST_F(Display, InjectorLabels_AreEnabledWithTheirFrame) {
    for (int i = 500; i <= 505; ++i) lblGeneral[i].Enabled = false;
    DisplayInit2(OnlyLog({{5, "&H8D"}}));
    for (int i = 500; i <= 505; ++i) EXPECT_TRUE(lblGeneral[i].Enabled) << i;
}

TEST_F(Display, FunctionSelect_SetsItsBlockOnlyWhenItsFrameShows) {
    DisplayInit1(Only({{21, "&H65"}}));
    EXPECT_EQ(FunctionSelectBlock, 0x65);
    EXPECT_EQ(BlockLength[0x65], 85);
    EXPECT_EQ(chkSetting[144].Tag, "&H65,5,0");
    EXPECT_EQ(lblSetting[144].Tag, "&H65,70,16");
    DisplayInit1({});
    EXPECT_EQ(FunctionSelectBlock, 0x65);
}

TEST_F(Display, WaterTemperatureCorrection_HidesTheBoostRowOfTheShortForm) {
    DisplayInit1(Only({{29, "&H5F"}}));
    EXPECT_FALSE(txtSetting[212].Visible);
    EXPECT_FALSE(txtSetting[213].Visible);
    EXPECT_EQ(BlockLength[0x5F], 12);
    EXPECT_EQ(txtSetting[211].Tag, "&H5F,12,1,0.015625,0,0.000");
    EXPECT_EQ(txtSetting[212].Tag, "&H8F,13,1,256,0,0");
    DisplayInit1(Only({{28, "&H8F"}}));
    EXPECT_TRUE(txtSetting[213].Visible);
    EXPECT_EQ(BlockLength[0x8F], 14);
}

TEST_F(Display, CurvesTakeTheCode_ConstantAxesStay) {
    DisplayInit1(Only({{28, "&H21"}, {20, "&H22"}, {31, "&H23"}}));
    EXPECT_EQ(cmdEditCurve[200].Tag, "6;Const,,,,,,0,-30,-10,10,30,50,80;&H21,6,-1,1,0.015625,0,0.000");
    EXPECT_EQ(cmdEditCurve[131].Tag, "3;&H22,3,-1,1,0.390625,0,0;&H22,9,-1,1,40,0,0");
    EXPECT_EQ(cmdEditCurve[34].Tag, "5;Const,,,,,,0,1000,2000,3000,4000,5000;&H5D,9,-2,2,0.004,0,0.000");
}

TEST_F(Display, MapReferenceInBlock51_IsReadOnly) {
    DisplayInit1(Only({{39, "&H51"}}));
    for (int i = 300; i <= 339; ++i) EXPECT_TRUE(txtSetting[i].Locked) << i;
    EXPECT_EQ(cmdEditCurve[300].Tag, "20,LockX,LockY;&H51,1,2,2,1,0,0;&H51,41,2,2,1,0,0");
    EXPECT_EQ(MapRefBlock[0], "&H51");
    DisplayInit1(Only({{39, "&H8A"}}));
    EXPECT_FALSE(txtSetting[339].Locked);
    EXPECT_EQ(cmdEditCurve[300].Tag, "20;&H8A,1,2,2,1,0,0;&H8A,41,2,2,1,0,0");
    EXPECT_EQ(txtSetting[339].Tag, "&H8A,79,2,1,0,0");
}

TEST_F(Display, AirFlowCurves_LieOverVoltsOrFrequency) {
    DisplayInit1(Only({{45, "&H1A0"}, {46, "&HA1"}}));
    EXPECT_TRUE(BlockRead[0xA0]);
    EXPECT_EQ(BlockLength[0xA0], 64);
    EXPECT_EQ(BlockLength[0xA1], 64);
    EXPECT_EQ(uctAirFlowGrid.Caption, "Kpm Frq");
    EXPECT_EQ(cmdEditCurve[370].Tag, "32;&HA0,1,2,2,0.001,0,0.000;&HA1,1,2,2,1,0,0");
    EXPECT_EQ(cmdEditCurve[374].Tag, "32;&HA0,1,2,2,0.001,0,0.000;&HA5,1,2,2,1,0,0");
    DisplayInit1(Only({{45, "&HA0"}}));
    EXPECT_EQ(uctAirFlowGrid.Caption, "Voltage");
    EXPECT_EQ(AirFlowXScale, 0.005);
    EXPECT_EQ(cmdEditCurve[370].Tag, "32;&HA0,1,2,2,0.005,0,0.000;&HA1,1,2,2,1,0,0");
}

TEST_F(Display, PagesShowWhenAnyOfTheirArgumentsIsGiven) {
    DisplayInit1(Only({{38, "&H90"}}));
    EXPECT_EQ(VisibleTabs(), (Tabs{6, 7, 12}));
    DisplayInit1(Only({{52, "&H7F"}}));
    EXPECT_EQ(VisibleTabs(), (Tabs{6, 8, 12}));
    DisplayInit1(Only({{45, "&HA0"}}));
    EXPECT_EQ(VisibleTabs(), (Tabs{6, 8, 12}));
    DisplayInit1(Only({{50, "&HA5"}}));
    EXPECT_EQ(VisibleTabs(), (Tabs{6, 12}));
    DisplayInit1(Only({{58, "&H9E"}}));
    EXPECT_EQ(VisibleTabs(), (Tabs{6, 9, 12}));
    DisplayInit1({});
    DisplayInit2(OnlyLog({{4, "&H9D"}}));
    EXPECT_EQ(VisibleTabs(), (Tabs{6, 9, 10, 12}));
}

TEST_F(Display, ThirdLogArgument_ComparesTheNumber) {
    for (const char* code : {"&H99", "153"}) {
        HideAllFrames();
        DisplayInit2(OnlyLog({{3, code}}));
        EXPECT_TRUE(FraSettings[1470].Visible) << code;
        EXPECT_FALSE(FraSettings[470].Visible) << code;
    }
    HideAllFrames();
    DisplayInit2(OnlyLog({{3, "&HBB"}}));
    EXPECT_FALSE(FraSettings[1470].Visible);
    EXPECT_TRUE(FraSettings[470].Visible);
    EXPECT_EQ(BlockLength[0xBB], 8);
}

TEST_F(Display, LogArguments_SetUpTheirFrames) {
    DisplayInit2(
        OnlyLog({{7, "&H31"}, {15, "&H69"}, {16, "Rev Limit"}, {11, "&H66"}, {12, "&H6A"}, {13, "&H68"}}));
    EXPECT_EQ(BlockLength[0x31], 1);
    EXPECT_FALSE(BlockWrite[0x31]);
    EXPECT_EQ(BlockLength[0x69], 80);
    EXPECT_EQ(ExtraBlock, 0x69);
    EXPECT_EQ(BlockA, 0x66);
    EXPECT_EQ(BlockB, 0x6A);
    EXPECT_EQ(BlockC, 0x68);
    EXPECT_EQ(lblRevIdle[120].Caption, "Rev Limit");
}

TEST_F(Display, CustomFeatures_AreMissingWhenTheFirstMapIs56) {
    ApplyBuild("RB26DETT3.11D");
    EXPECT_FALSE(FraSettings[550].Visible);
    EXPECT_FALSE(BlockRead[0xAD]);
    EXPECT_TRUE(FraSettings[560].Visible);
    EXPECT_TRUE(FraSettings[1100].Visible);
    EXPECT_TRUE(FraSettings[1215].Visible);
    EXPECT_EQ(FraSettings[500].Tag, "&H5B");
    EXPECT_EQ(txtSetting[511].Tag, "&H5B,23,2,0.004,-131.072,0.00");
    EXPECT_EQ(MapFirstBlock[0], 0x56);
    EXPECT_EQ(FraSettings[190].Tag, "&H6B,&H6C");
    EXPECT_EQ(lblSetting[191].Tag, "&H6C,1,5");
    ApplyBuild("RB26DETT6.42");
    EXPECT_TRUE(FraSettings[550].Visible);
    EXPECT_EQ(BlockLength[0xAD], 8);
    EXPECT_TRUE(BlockWrite[0xAD]);
}

TEST_F(Display, TabInView_StaysWhereItIsStillVisible) {
    ApplyBuild("RB26DETT6.42");
    SSTab1.Tab = 8;
    ApplyBuild("RB26DETT6.42");
    EXPECT_EQ(SSTab1.Tab, 8);
    ApplyBuild("1JZGT-AT3.54");
    SSTab1.Tab = 11;
    ApplyBuild("RB26DETT6.42");
    EXPECT_EQ(SSTab1.Tab, kGeneralTab);
}

TEST_F(Display, CorvaneVersion_DecidesOverAntiLagAndPullUps) {
    CorvaneVer = "V1.X";
    DisplayInitForCorvaneVer();
    EXPECT_TRUE(chkSettingBit[552].Visible);
    EXPECT_TRUE(txtSetting[550].Visible);
    EXPECT_TRUE(txtSetting[551].Visible);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(lblAntiLag[i].Visible);
    EXPECT_FALSE(chkSettingBit[553].Visible);
    EXPECT_FALSE(lblInternalPullups.Visible);
    EXPECT_TRUE(mnuSetupCorvaneVer[0].Checked);
    EXPECT_FALSE(mnuSetupCorvaneVer[1].Checked);
    for (const char* version : {"V2.0", "V3.1", ""}) {
        CorvaneVer = version;
        DisplayInitForCorvaneVer();
        EXPECT_FALSE(chkSettingBit[552].Visible);
        EXPECT_FALSE(txtSetting[551].Visible);
        EXPECT_FALSE(lblAntiLag[2].Visible);
        EXPECT_TRUE(chkSettingBit[553].Visible);
        EXPECT_TRUE(lblInternalPullups.Visible);
        EXPECT_FALSE(mnuSetupCorvaneVer[0].Checked);
        EXPECT_EQ(mnuSetupCorvaneVer[1].Checked, CorvaneVer == "V2.0");
    }
}

TEST_F(Display, SetFrameEnabled_ReachesTheFramesFirstTenMembers) {
    SetFrameEnabled(1340, false);
    EXPECT_TRUE(FraSettings[1340].Visible);
    EXPECT_FALSE(FraSettings[1340].Enabled);
    EXPECT_FALSE(txtSetting[1347].Enabled);
    EXPECT_FALSE(lblGeneral[1347].Enabled);
    EXPECT_FALSE(lblSetting[1344].Enabled);
    EXPECT_FALSE(optSetting[1344].Enabled);
    SetFrameEnabled(1340, true);
    EXPECT_TRUE(txtSetting[1340].Enabled);
    EXPECT_TRUE(optSetting[1340].Enabled);

    SetFrameEnabled(1180, false);
    EXPECT_FALSE(chkSetting[1189].Enabled);
    EXPECT_TRUE(chkSetting[1190].Enabled);
    SetFrameEnabled(300, false);
    EXPECT_FALSE(cmdEditCurve[300].Enabled);
    EXPECT_FALSE(txtSetting[309].Enabled);
    EXPECT_TRUE(txtSetting[310].Enabled);
}

TEST_F(Display, TranslationReachesTabsSplitAndRevIdleRows) {
    tr = [](const std::string& text) { return "*" + text; };
    ApplyBuild("13B-REW7.07");
    EXPECT_EQ(SSTab1.TabCaption[0], "*InjMap");
    EXPECT_EQ(chkSplit[2].Caption, "*DisplaySplit");
    EXPECT_EQ(lblRevIdle[121].Caption, "*F/C A/E");
    EXPECT_EQ(SSTab1.TabCaption[6], "Settings 1");
}

TEST_F(Display, LiveDataNames_AreHandedOn) {
    std::string first;
    InitLogChannels = [&first](const LogRecord& record) { first = record[23]; };
    ApplyBuild("RB26DETT6.42");
    EXPECT_EQ(first, "InjDuty");
}

}  // namespace
}  // namespace zandrel
