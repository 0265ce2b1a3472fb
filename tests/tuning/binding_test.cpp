#include "tuning/binding.h"

#include <gtest/gtest.h>

#include "image/image.h"
#include "support/cleanstate.h"
#include "tuning/display.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class Binding : public CleanState {};

TEST_F(Binding, EveryKindOfControl_ShowsTheImage) {
    ApplyBuild("RB26DETT6.42");
    ReadData[0x8D] = ByteString("\0\x80", 2) + ByteString(22, '\0');
    ReadData[0xAC] = ByteString("\1\0\0\0\0\0\0\0\0\xFF", 10);
    ReadData[0xAD] = ByteString("\x81\xFE\0\0\0\0\0\0", 8);
    ReadData[0xCE] = ByteString(1, '\3') + ByteString(106, 'A');
    ReadData[0xF3] = "RB26DETT";
    DisplayAllData();
    EXPECT_EQ(txtSetting[500].Text, "100.0");
    EXPECT_EQ(txtSetting[506].Text, "-131.07");
    EXPECT_EQ(chkSetting[180].Value, 1);
    EXPECT_EQ(chkSetting[181].Value, 0);
    EXPECT_EQ(chkSetting[189].Value, 1);
    EXPECT_EQ(chkSettingBit[550].Value, 1);
    EXPECT_EQ(chkSettingBit[551].Value, 1);
    EXPECT_EQ(chkSettingBit[553].Value, 0);
    EXPECT_EQ(optSetting[1343].Value, 1);
    EXPECT_EQ(optSetting[1340].Value, 0);
    EXPECT_EQ(lblSetting[190].Caption, "RB26DETT");
    EXPECT_EQ(lblSetting[1340].Caption, std::string(18, 'A'));
}

TEST_F(Binding, OnlyShown_DisablesControlsOfHiddenFramesAndKeepsTheirText) {
    ApplyBuild("RB26DETT6.42");
    ReadData[0x8D] = ByteString(24, '\1');
    txtSetting[1500].Text = "old";
    txtSetting[500].Text = "old";
    chkSetting[1180].Value = 1;
    optSetting[1101].Value = 1;
    lblSetting[1140].Caption = "old";
    FraSettings[550].Visible = false;
    chkSettingBit[550].Value = 1;
    DisplayAllData(true);
    EXPECT_EQ(chkSetting[1180].Value, 1);
    EXPECT_FALSE(chkSetting[1180].Enabled);
    EXPECT_EQ(optSetting[1101].Value, 1);
    EXPECT_FALSE(optSetting[1101].Enabled);
    EXPECT_EQ(lblSetting[1140].Caption, "old");
    EXPECT_FALSE(lblSetting[1140].Enabled);
    EXPECT_EQ(chkSettingBit[550].Value, 1);
    EXPECT_FALSE(chkSettingBit[550].Enabled);
    EXPECT_EQ(txtSetting[1500].Text, "old");
    EXPECT_FALSE(txtSetting[1500].Enabled);
    EXPECT_NE(txtSetting[500].Text, "old");
    EXPECT_TRUE(txtSetting[500].Enabled);
    EXPECT_TRUE(lblSetting[100].Enabled);  // stands in no frame
    DisplayAllData();
    EXPECT_TRUE(txtSetting[1500].Enabled);
    EXPECT_NE(txtSetting[1500].Text, "old");
}

TEST_F(Binding, UnreadBlocks_ShowEmptyAndClear) {
    ApplyBuild("RB26DETT6.42");
    txtSetting[500].Text = "stale";
    chkSetting[180].Value = 1;
    DisplayAllData();
    EXPECT_EQ(txtSetting[500].Text, "");
    EXPECT_EQ(chkSetting[180].Value, 0);
    EXPECT_EQ(lblSetting[190].Caption, "");
}

TEST_F(Binding, MapsMonitorAndLabels_AreRefreshedInTheirOrder) {
    ApplyBuild("RB26DETT6.42");
    ReadData[0x8A] = ByteString(40, '\0') + ByteString("\x90\x01", 2) + ByteString(38, '\0');
    mnuMapRefLabels.Checked = true;
    const unsigned before = Grid[0].Revision;
    unsigned atMonitor = 0;
    std::string textAtMonitor;
    ReadData[0x8D] = ByteString(24, '\1');
    RefreshMonitor = [&] {
        atMonitor = Grid[0].Revision;
        textAtMonitor = txtSetting[500].Text;
    };
    DisplayAllData();
    EXPECT_EQ(atMonitor, before);
    EXPECT_NE(textAtMonitor, "");
    for (const MapGrid& grid : Grid) EXPECT_GT(grid.Revision, 0U);
    EXPECT_GT(Grid[0].Revision, before);
    EXPECT_EQ(Grid[0].ColumnHead[1], "400");
    EXPECT_EQ(MapRefRpm[0][0], 400);
}

}  // namespace
}  // namespace zandrel
