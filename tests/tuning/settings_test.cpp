#include "tuning/settings.h"

#include <gtest/gtest.h>

#include "support/cleanstate.h"
#include "util/text.h"

namespace zandrel {
namespace {

class SettingsDesign : public CleanState {};

TEST_F(SettingsDesign, Tags_AreComposedOfTheRun) {
    EXPECT_EQ(txtSetting[120].Tag, "&HB8,1,2,1,0,0");
    EXPECT_EQ(txtSetting[127].Tag, "&HB8,15,2,1,0,0");
    EXPECT_EQ(txtSetting[511].Tag, "&H8D,23,2,0.004,-131.072,0.00");
    EXPECT_EQ(txtSetting[525].Tag, "&H92,11,2,.004,0,0.000");
    EXPECT_EQ(txtSetting[550].Tag, "&HAD,2,129,-1,0,0");
    EXPECT_EQ(txtSetting[365].Tag, "&HCB,107,1,0.390625,50,0.0");
    EXPECT_EQ(txtSetting[349].Tag, "&HBC,19,2,1,0,0");
    EXPECT_EQ(chkSetting[1193].Tag, "&HAC,14,255");
    EXPECT_EQ(chkSettingBit[553].Tag, "&HAD,1,4");
    EXPECT_EQ(optSetting[2101].Tag, "&HAB,3,2,2");
    EXPECT_EQ(lblSetting[1147].Tag, "&HD6,121,16");
    EXPECT_EQ(lblSetting[628].Tag, "&HDD,1,48");
    EXPECT_EQ(FraSettings[155].Tag, "&HA7,4");
    EXPECT_EQ(FraSettings[370].Tag, "&HA0,&HA1,&HA2,&HA3,&HA4,&HA5");
    EXPECT_EQ(cmdEditCurve[256].Tag, "6;&HBA,11,-2,1,0.0195312,0,0.000;&HBA,12,-2,1,0.0078125,0,0.000");
}

TEST_F(SettingsDesign, ArraysHaveTheirMembers) {
    EXPECT_EQ(FraSettings.Members.size(), 57U);
    EXPECT_EQ(txtSetting.Members.size(), 495U);
    EXPECT_EQ(chkSetting.Members.size(), 37U);
    EXPECT_EQ(chkSettingBit.Members.size(), 4U);
    EXPECT_EQ(optSetting.Members.size(), 20U);
    EXPECT_EQ(lblSetting.Members.size(), 29U);
    EXPECT_EQ(cmdEditCurve.Members.size(), 43U);
    EXPECT_FALSE(ControlExists(txtSetting, 128));
}

TEST_F(SettingsDesign, CurveButtonsUnderForeignNumbers_HangInTheirFrames) {
    EXPECT_EQ(cmdEditCurve[33].Frame, 380);
    EXPECT_EQ(cmdEditCurve[34].Frame, 1215);
    EXPECT_EQ(cmdEditCurve[37].Frame, 1215);
    EXPECT_EQ(cmdEditCurve[16].Frame, 1340);
}

TEST_F(SettingsDesign, ThreeTexts_StandOnTheirTabAndInNoFrame) {
    for (const auto& [index, tab] : {std::pair{100, 10}, {628, 11}, {629, 11}}) {
        EXPECT_EQ(lblSetting[index].Frame, -1);
        EXPECT_EQ(lblSetting[index].Tab, tab);
    }
}

TEST_F(SettingsDesign, FramesStandOnTheirTabs) {
    EXPECT_EQ(FraSettings[120].Tab, 6);
    EXPECT_EQ(FraSettings[1215].Tab, 7);
    EXPECT_EQ(FraSettings[1340].Tab, 8);
    EXPECT_EQ(FraSettings[1470].Tab, 9);
    EXPECT_EQ(FraSettings[1500].Tab, 10);
    EXPECT_EQ(FraSettings[700].Tab, 11);
    EXPECT_FALSE(FraSettings[120].Visible);
}

TEST_F(SettingsDesign, LabelsAndNotes_KeepTheirWording) {
    EXPECT_EQ(lblRevIdle[127].Caption, "?\?\?");
    EXPECT_EQ(lblRevIdle[1128].Caption, "Idle A/C");
    EXPECT_EQ(lblGeneral[321].Caption, "20");
    EXPECT_EQ(lblGeneral[550].Caption, "Tuner string (8 char)");
    EXPECT_EQ(lblAntiLag[0].Caption, "IGN Anti Lag Retard");
    EXPECT_EQ(
        lblAntiLag[2].Caption,
        "*Antilag is not supported by all Power-FC's and this feature has been removed from Corvane's made "
        "after 16 Oct 2005.");
    EXPECT_EQ(lblInternalPullups.Caption,
              "*This option allows simple wiring and logging of switchs (good for Boost Switch feature) but "
              "reduces "
              "AN5-8 input accuracy. Only use if all AN5-8 are switch inputs.");
    EXPECT_EQ(FraSettings[550].Caption,
              "Corvane Custom Features (Key Off / Key On for changes to take effect)");
    EXPECT_EQ(GeneralTexts()[0],
              "Only Power FC versions which we have tested will be supported by this software. ");
    EXPECT_NE(GeneralTexts()[2].find("scan file"), std::string::npos);
}

TEST_F(SettingsDesign, TabsBearTheirDesignCaptions) {
    EXPECT_EQ(SSTab1.TabCaption[0], "INJ Map");
    EXPECT_EQ(SSTab1.TabCaption[4], "VTEX Map");
    EXPECT_EQ(SSTab1.TabCaption[6], "Settings 1");
    EXPECT_EQ(SSTab1.TabCaption[12], "Zandrel");
}

TEST_F(SettingsDesign, CurveSpecifications_HaveThreeSectionsOfTheirShape) {
    for (const auto& [index, button] : cmdEditCurve) {
        const auto sections = Split(button.Tag, ';');
        ASSERT_EQ(sections.size(), 3U) << index;
        for (std::size_t axis = 1; axis <= 2; ++axis) {
            const auto parts = Split(sections[axis], ',');
            if (parts[0] == "Const") {
                EXPECT_GE(parts.size(), 8U) << index;
            } else {
                EXPECT_EQ(parts.size(), 7U) << index;
            }
        }
    }
}

}  // namespace
}  // namespace zandrel
