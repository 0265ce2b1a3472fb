#include "tuning/binding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <optional>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "support/cleanstate.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

class Binding : public CleanState {
  protected:
    Binding() {
        before_ = std::move(AfterEdit);
        AfterEdit = [this] { ++edits_; };
    }
    ~Binding() override { AfterEdit = std::move(before_); }

    /// Every block that a setting can lie in, each byte `byte`.
    void ReadEverything(char byte) {
        ApplyBuild("RB26DETT6.42");
        for (ByteString& block : ReadData) block = ByteString(255, byte);
        DisplayAllData();
        ForgetFlags();
        ClearHistory();
    }
    void ForgetFlags() {
        BlockChanged.fill(false);
        DataChanged = false;
        edits_ = 0;
    }
    bool NothingMarked() const {
        return edits_ == 0 && !DataChanged &&
               std::none_of(BlockChanged.begin(), BlockChanged.end(), [](bool changed) { return changed; });
    }

    static void Leave(int index, const std::string& text) {
        txtSetting[index].Text = text;
        txtSetting_LostFocus(index);
    }
    static int ByteAt(int block, int offset) {
        return static_cast<unsigned char>(ReadData[block][static_cast<std::size_t>(offset - 1)]);
    }

    int edits_ = 0;

  private:
    std::function<void()> before_;
};

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

// ---- a text box is left

TEST_F(Binding, ValueTypedIntoABox_IsStoredAndShownRoundedInItsFormat) {
    ReadEverything('\x10');
    Leave(520, "4.0021");  // 1000.5 steps of 0.004 and a little
    EXPECT_EQ(ReadData[0x92].substr(0, 3), "\xE9\x03\x10");
    EXPECT_EQ(txtSetting[520].Text, "4.004");
    EXPECT_TRUE(BlockChanged[0x92]);
    EXPECT_EQ(std::count(BlockChanged.begin(), BlockChanged.end(), true), 1);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 1);
    EXPECT_EQ(UndoName(), "Setting");
    int map = 0;
    EXPECT_TRUE(Undo(map));
    EXPECT_EQ(map, -1);
    EXPECT_EQ(ReadData[0x92], ByteString(255, '\x10'));
    EXPECT_FALSE(CanUndo());
}

TEST_F(Binding, SecondLeave_ChangesNothing) {
    ReadEverything('\x10');
    Leave(520, "4.0021");
    ForgetFlags();
    txtSetting_LostFocus(520);
    EXPECT_TRUE(NothingMarked());
}

// A box stores what it shows, and this one shows fewer digits than a step has.
TEST_F(Binding, BoxThatIsOnlyPassedThrough_StoresWhatItShows) {
    ReadEverything('\0');
    ReadData[0x8D].replace(0, 2, "\x01\x80");
    DisplayAllData();
    EXPECT_EQ(txtSetting[500].Text, "100.0");
    txtSetting_LostFocus(500);
    EXPECT_EQ(ReadData[0x8D].substr(0, 2), ByteString("\x00\x80", 2));
}

// The raw bytes that a number belongs to; no value: it is out of all bounds and nothing is stored.
std::optional<ByteString> BytesOf(const std::vector<std::string>& fields, double number) {
    const double quotient = (number - std::stod(fields[4])) / std::stod(fields[3]);
    if (std::abs(quotient) > FLT_MAX) return std::nullopt;
    const double least = fields[2] == "129" ? -128 : 0;
    const double most = fields[2] == "129" ? 127 : fields[2] == "2" ? 65535 : 255;
    const int raw =
        static_cast<int>(std::nearbyint(std::min(most, std::max(least, double(float(quotient))))));
    ByteString bytes(1, static_cast<char>(raw & 255));
    if (fields[2] == "2") bytes += static_cast<char>(raw >> 8);
    return bytes;
}

TEST_F(Binding, NumbersOfEverySize_AreHeldByEveryBox) {
    ReadEverything('\x10');
    const auto image = ReadData;
    for (const auto& [text, number] : {std::pair("0", 0.0),
                                       {"1", 1.0},
                                       {"-1", -1.0},
                                       {"100000", 1e5},
                                       {"-100000", -1e5},
                                       {"1e30", 1e30},
                                       {"-1e30", -1e30},
                                       {"1e300", 1e300},
                                       {"-1e300", -1e300},
                                       {"&HFF", 255.0},
                                       {" 7 ", 7.0},
                                       {"1e-400", 0.0}}) {
        for (auto& [index, box] : txtSetting) {
            ReadData = image;
            const auto fields = Split(box.Tag, ',');
            ASSERT_EQ(fields.size(), 6U) << box.Tag;
            const auto block = static_cast<std::size_t>(LenientNumber(fields[0]));
            const std::size_t at = std::stoul(fields[1]) - 1;
            ByteString expected = image[block];
            const auto bytes = BytesOf(fields, number);
            if (bytes) expected.replace(at, bytes->size(), *bytes);
            Leave(index, text);
            EXPECT_EQ(ReadData[block], expected) << index << " " << box.Tag << " " << text;
            EXPECT_EQ(box.Text, GetNumber(box.Tag)) << index << " " << text;
        }
    }
}

TEST_F(Binding, TextsThatAreNoNumber_ChangeNoBoxOfAnyKind) {
    ReadEverything('\x10');
    const auto image = ReadData;
    for (const char* text :
         {"",    " ",        "abc", "12x", "x12",  "1 2",    "--1",    "+-1",      "1.2.3",
          ".",   "-",        "+",   "e5",  "1e",   "1e400",  "-1e400", "inf",      "-inf",
          "nan", "infinity", "&H",  "&HG", "0x10", "12 rpm", "*2",     "\xC3\xA9", "\xFF"}) {
        for (auto& [index, box] : txtSetting) {
            Leave(index, text);
            EXPECT_EQ(box.Text, GetNumber(box.Tag)) << index << " " << text;
            EXPECT_NE(box.Text, "") << index << " " << text;
        }
        EXPECT_TRUE(ReadData == image) << text;
        EXPECT_TRUE(NothingMarked()) << text;
    }
    EXPECT_FALSE(CanUndo());
}

TEST_F(Binding, VeryLongTexts_ChangeNothingOrAreHeld) {
    ReadEverything('\x10');
    Leave(520, std::string(1'000'000, 'x'));
    EXPECT_TRUE(NothingMarked());
    Leave(520, std::string(1'000'000, '9'));
    EXPECT_TRUE(NothingMarked());
    Leave(520, "4." + std::string(1'000'000, '0'));
    EXPECT_EQ(txtSetting[520].Text, "4.000");
}

TEST_F(Binding, BoxOfAnUnreadBlock_GoesBlankAndLeavesNoTrace) {
    ApplyBuild("RB26DETT6.42");
    for (auto& [index, box] : txtSetting) {
        Leave(index, "5");
        EXPECT_EQ(box.Text, "") << index;
    }
    for (const ByteString& block : ReadData) EXPECT_EQ(block, "");
    EXPECT_TRUE(NothingMarked());
    EXPECT_FALSE(CanUndo());
}

// Its bytes are compared with the rest of its block.
TEST_F(Binding, SignedByteBox_RaisesItsFlagsEvenForTheSameValue) {
    ReadEverything('\xFE');
    EXPECT_EQ(txtSetting[550].Text, "2");
    txtSetting_LostFocus(550);
    EXPECT_TRUE(BlockChanged[0xAD]);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(ReadData[0xAD], ByteString(255, '\xFE'));
    EXPECT_FALSE(CanUndo());
    Leave(550, "1000");  // scale -1: the most that is shown is the least that is stored
    EXPECT_EQ(ByteAt(0xAD, 2), 0x80);
    EXPECT_EQ(txtSetting[550].Text, "128");
    Leave(550, "-1000");
    EXPECT_EQ(ByteAt(0xAD, 2), 0x7F);
    EXPECT_EQ(txtSetting[550].Text, "-127");
}

// ---- boxes and options are clicked

TEST_F(Binding, FlagBoxClicked_StoresItsMeaning) {
    struct Row {
        int Index;
        int Block, Offset;
        int Before, Value, After;
    };
    ReadEverything('\x10');
    for (const Row& row :
         {Row{140, 0xD6, 1, 0x10, 1, 0}, Row{140, 0xD6, 1, 0, 1, 0}, Row{140, 0xD6, 1, 0, 0, 255},
          Row{140, 0xD6, 1, 0x10, 0, 0x10}, Row{144, 0xD6, 5, 1, 1, 0}, Row{180, 0xAC, 1, 0x10, 1, 0x10},
          Row{180, 0xAC, 1, 1, 1, 1}, Row{180, 0xAC, 1, 0, 1, 255}, Row{180, 0xAC, 1, 1, 0, 0},
          Row{180, 0xAC, 1, 0, 0, 0}, Row{189, 0xAC, 10, 0, 1, 255}}) {
        ReadData[row.Block][static_cast<std::size_t>(row.Offset - 1)] = static_cast<char>(row.Before);
        ForgetFlags();
        ClearHistory();
        chkSetting[row.Index].Value = row.Value;
        chkSetting_Click(row.Index);
        EXPECT_EQ(ByteAt(row.Block, row.Offset), row.After) << row.Index << " " << row.Before;
        EXPECT_EQ(chkSetting[row.Index].Value, row.Value);
        const bool changed = row.Before != row.After;
        EXPECT_EQ(BlockChanged[row.Block], changed);
        EXPECT_EQ(edits_, changed ? 1 : 0);
        EXPECT_EQ(UndoName(), changed ? "Setting" : "");
    }
}

TEST_F(Binding, BitBoxClicked_LeavesTheOtherBits) {
    ReadEverything('\0');
    int expected = 0;
    for (const auto& [index, mask] : {std::pair(550, 128), {551, 1}, {552, 2}, {553, 4}}) {
        chkSettingBit[index].Value = 1;
        chkSettingBit_Click(index);
        expected |= mask;
        EXPECT_EQ(ByteAt(0xAD, 1), expected) << index;
    }
    ReadData[0xAD][0] = '\xFF';
    expected = 0xFF;
    for (const auto& [index, mask] : {std::pair(550, 128), {551, 1}, {552, 2}, {553, 4}}) {
        chkSettingBit[index].Value = 0;
        chkSettingBit_Click(index);
        expected &= ~mask;
        EXPECT_EQ(ByteAt(0xAD, 1), expected) << index;
        ForgetFlags();
        chkSettingBit_Click(index);
        EXPECT_TRUE(NothingMarked()) << index;
    }
    EXPECT_EQ(ReadData[0xAD].substr(1), ByteString(254, '\0'));
    EXPECT_EQ(UndoName(), "Setting");
}

TEST_F(Binding, OptionClicked_TakesTheWholeByteAndClearsItsFellows) {
    ReadEverything('\xF3');
    EXPECT_EQ(optSetting[1343].Value, 1);
    optSetting[1340].Value = 1;
    optSetting_Click(1340);
    EXPECT_EQ(ByteAt(0xCE, 1), 0);  // the bits outside the mask go too
    EXPECT_EQ(ByteAt(0xCE, 2), 0xF3);
    for (int index = 1340; index <= 1344; ++index) EXPECT_EQ(optSetting[index].Value, index == 1340) << index;
    EXPECT_EQ(edits_, 1);
    EXPECT_TRUE(BlockChanged[0xCE]);
    EXPECT_EQ(UndoName(), "Setting");
    int map = 0;
    EXPECT_TRUE(Undo(map));
    EXPECT_EQ(ByteAt(0xCE, 1), 0xF3);
}

TEST_F(Binding, OptionThatHoldsAlreadyOrIsNotSet_ChangesNothing) {
    ReadEverything('\xF3');
    optSetting[1343].Value = 1;
    optSetting_Click(1343);
    EXPECT_EQ(ByteAt(0xCE, 1), 0xF3);
    optSetting[1340].Value = 0;
    optSetting_Click(1340);
    EXPECT_EQ(ByteAt(0xCE, 1), 0xF3);
    EXPECT_TRUE(NothingMarked());
    EXPECT_FALSE(CanUndo());
}

TEST_F(Binding, EveryOption_StoresItsOwnValue) {
    ReadEverything('\x0F');
    for (auto& [index, option] : optSetting) {
        const auto fields = Split(option.Tag, ',');
        const int block = static_cast<int>(LenientNumber(fields[0]));
        const int offset = std::stoi(fields[1]);
        constexpr int before = 0x87;
        ReadData[block][static_cast<std::size_t>(offset - 1)] = static_cast<char>(before);
        option.Value = 1;
        optSetting_Click(index);
        const int mask = std::stoi(fields[3]);
        const int value = std::stoi(fields[2]);
        EXPECT_EQ(ByteAt(block, offset), (before & mask) == value ? before : value) << index;
        EXPECT_EQ(option.Value, 1) << index;
    }
}

TEST_F(Binding, BoxesAndOptionsOfUnreadBlocks_SpringBack) {
    ApplyBuild("RB26DETT6.42");
    for (auto& [index, box] : chkSetting) {
        box.Value = 1;
        chkSetting_Click(index);
        EXPECT_EQ(box.Value, 0) << index;
    }
    for (auto& [index, box] : chkSettingBit) {
        box.Value = 1;
        chkSettingBit_Click(index);
        EXPECT_EQ(box.Value, 0) << index;
    }
    for (auto& [index, option] : optSetting) {
        option.Value = 1;
        optSetting_Click(index);
        EXPECT_EQ(option.Value, 0) << index;
    }
    for (const ByteString& block : ReadData) EXPECT_EQ(block, "");
    EXPECT_TRUE(NothingMarked());
}

// Filling the controls may click them.
TEST_F(Binding, ClicksOnWhatIsShown_ChangeNothing) {
    for (const char byte : {'\0', '\1', '\x55', '\xFF'}) {
        ReadEverything(byte);
        const auto image = ReadData;
        for (auto& [index, box] : chkSetting) chkSetting_Click(index);
        for (auto& [index, box] : chkSettingBit) chkSettingBit_Click(index);
        for (auto& [index, option] : optSetting) optSetting_Click(index);
        EXPECT_TRUE(ReadData == image);
        EXPECT_TRUE(NothingMarked());
        EXPECT_FALSE(CanUndo());
    }
}

TEST_F(Binding, DisplayAllData_MarksNothing) {
    ReadEverything('\x10');
    DisplayAllData();
    DisplayAllData(true);
    EXPECT_TRUE(NothingMarked());
    EXPECT_FALSE(CanUndo());
}

// ---- the tuner string

TEST_F(Binding, TunerString_IsEightCharactersInPlaceOfTheWholeBlock) {
    struct Row {
        const char* Text;
        const char* Bytes;
    };
    for (const Row& row :
         {Row{"", "        "}, Row{"Tom", "Tom     "}, Row{"12345678", "12345678"},
          Row{"123456789", "12345678"}, Row{" x", " x      "}, Row{"\xC3\xA9\xE2\x82\xAC", "\xE9\x80      "},
          Row{"\xE6\x97\xA5\xE6\x9C\xAC", "??      "}, Row{"1234567\xC3\xA9", "1234567\xE9"},
          Row{"12345678\xC3\xA9", "12345678"}}) {
        ReadEverything('\x10');
        Text1.Text = row.Text;
        Text1_LostFocus();
        EXPECT_EQ(ReadData[0xAD], row.Bytes) << row.Text;
        EXPECT_TRUE(BlockChanged[0xAD]);
        EXPECT_EQ(std::count(BlockChanged.begin(), BlockChanged.end(), true), 1);
        EXPECT_TRUE(DataChanged);
        EXPECT_EQ(edits_, 1);
        EXPECT_EQ(lblSetting[550].Caption, GetString("&HAD,1,8"));
        EXPECT_EQ(Text1.Text, row.Text);  // an entry alone: the image never fills it
        EXPECT_EQ(UndoName(), "Tuner string");
        int map = 0;
        EXPECT_TRUE(Undo(map));
        EXPECT_EQ(ReadData[0xAD], ByteString(255, '\x10'));
        EXPECT_FALSE(CanUndo());
    }
}

TEST_F(Binding, TunerStringOfAMillionCharacters_IsCut) {
    ReadEverything('\x10');
    Text1.Text = std::string(1'000'000, 'x');
    Text1_LostFocus();
    EXPECT_EQ(ReadData[0xAD], "xxxxxxxx");
}

TEST_F(Binding, SameTunerStringAgain_IsMarkedAgain) {
    ReadEverything('\x10');
    Text1.Text = "Tom";
    Text1_LostFocus();
    ForgetFlags();
    Text1_LostFocus();
    EXPECT_TRUE(BlockChanged[0xAD]);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 1);
}

TEST_F(Binding, TunerString_ShowsAllSettingsAnew) {
    ReadEverything('\x10');
    FraSettings[550].Visible = false;
    txtSetting[520].Text = "stale";
    Text1_LostFocus();
    EXPECT_EQ(txtSetting[520].Text, GetNumber(txtSetting[520].Tag));
    EXPECT_EQ(lblSetting[550].Caption, "        ");  // hidden frames too
}

// ---- names to the clipboard

TEST_F(Binding, RawSensorNamesClicked_GoToTheClipboard) {
    ReadEverything('A');
    ASSERT_TRUE(lblSetting.Exists(628) && lblSetting.Exists(629));
    for (auto& [index, label] : lblSetting) {
        Clipboard() = "kept";
        lblSetting_Click(index);
        const bool copied = index == 628 || index == 629;
        EXPECT_EQ(Clipboard(), copied ? label.Caption : "kept") << index;
    }
    EXPECT_EQ(lblSetting[628].Caption, std::string(48, 'A'));
    EXPECT_EQ(lblSetting[629].Caption, std::string(72, 'A'));
    ReadData[0xDD].clear();
    DisplayAllData();
    lblSetting_Click(628);
    EXPECT_EQ(Clipboard(), "");
}

TEST_F(Binding, WhileComparing_NoSettingTakesTheFocus) {
    EXPECT_TRUE(SettingsTakeFocus());
    mnuCompare.Checked = true;
    EXPECT_FALSE(SettingsTakeFocus());
}

}  // namespace
}  // namespace zandrel
