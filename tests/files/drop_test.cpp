// Files dropped on the window, on its tabs, and on the survey of block lengths.
#include <gtest/gtest.h>

#include "files/datafile.h"
#include "files/filesfixture.h"
#include "image/history.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/store.h"

namespace zandrel {
namespace {

class Drop : public FilesFixture {
  protected:
    std::string PutBuild(const std::string& key, const std::string& name) const {
        return Put(name, DataFile(zandrel::BlocksOf(key)));
    }
};

TEST_F(Drop, OnlyNamesThatEndInDat_AreTaken) {
    for (const char* name : {"/a.dat", "/a.DAT", "/a.DaT", "adat", "dat", "/a b/\u30C1.dat"})
        EXPECT_TRUE(TakesDrop(name)) << name;
    for (const char* name : {"", "t", "at", "/a.txt", "/a.dat.bak", "/a.dat ", "/dat/a", "/a.d\u00E0t"})
        EXPECT_FALSE(TakesDrop(name)) << name;
}

TEST_F(Drop, OnTheWindow_TheFirstIsOpened) {
    const std::string a = PutBuild(kPlainBuild, "a.dat");
    const std::string b = PutBuild(kOtherBuild, "b.dat");
    Form_OLEDragDrop({a, b});
    EXPECT_EQ(MainFormState.FileTitle, "a.dat");
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), a);
    Form_OLEDragDrop({});
    EXPECT_EQ(MainFormState.FileTitle, "a.dat");
}

TEST_F(Drop, OnTheTabs_AllAreOpenedInTurn) {
    const std::string a = PutBuild(kPlainBuild, "a.dat");
    const std::string b = PutBuild(kOtherBuild, "b.dat");
    ExpectBox("Error opening none.dat", Box::Critical);
    SSTab1_OLEDragDrop({a, Folder + "/none.dat", b});
    EXPECT_EQ(MainFormState.FileTitle, "b.dat");
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), b);
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile2", ""), a);
}

TEST_F(Drop, OnTheTabs_EachAsksAboutUnsavedData) {
    const std::string a = PutBuild(kPlainBuild, "a.dat");
    const std::string b = PutBuild(kOtherBuild, "b.dat");
    DataChanged = true;
    const std::string question =
        "You have made setting changes that have not been saved.\nDo you want to save?";
    ExpectBox(question, Box::SaveQuestion, Answer::Cancel);
    ExpectBox(question, Box::SaveQuestion, Answer::No);
    SSTab1_OLEDragDrop({a, b});
    EXPECT_EQ(MainFormState.FileTitle, "b.dat");
}

std::vector<std::vector<std::string>> Table(const std::string& text) {
    std::vector<std::vector<std::string>> rows;
    for (std::string line : Split(text, '\n')) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) rows.push_back(Split(line, '\t'));
    }
    return rows;
}

TEST_F(Drop, OnTheSurvey_LengthsOfAllFilesGoToTheClipboard) {
    std::array<ByteString, 256> blocks;
    blocks[0xF3] = "ENGINE  ";
    blocks[0xF5] = "1.23 ";
    blocks[0x10] = "not counted";
    blocks[0x30] = "x";
    blocks[0xFF] = ByteString(300, '\0');
    const std::string a = Put("a.dat", DataFile(blocks));
    const std::string b = Put("b.dat", "3100\r\n");
    txtRnD_OLEDragDrop({a, b});
    const auto rows = Table(Clipboard());
    ASSERT_EQ(rows.size(), 3U);
    for (const auto& row : rows) ASSERT_EQ(row.size(), 2 + 0x100 - 0x30U);
    EXPECT_EQ(rows[0][0], "");
    EXPECT_EQ(rows[0][1], "");
    EXPECT_EQ(rows[0][2], "0x30");
    EXPECT_EQ(rows[0].back(), "0xFF");
    EXPECT_EQ(rows[1][0], "ENGINE");
    EXPECT_EQ(rows[1][1], "1.23");
    EXPECT_EQ(rows[1][2], "2");
    EXPECT_EQ(rows[1][3], "");
    EXPECT_EQ(rows[1].back(), "301");
    EXPECT_EQ(rows[2][0], "");
    EXPECT_EQ(rows[2][3], "2");
    EXPECT_EQ(ReadData[0x31], ByteString(1, '\0'));
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), b);
}

// Block number, bytes, their count and 1 come to 255 where the last byte is the frame's own checksum.
TEST_F(Drop, OnTheSurvey_AChecksumAtTheEndIsNotCounted) {
    std::array<ByteString, 256> blocks;
    // 0x40 + 0x10 + 0x20 + checksum + 3 bytes + 1 = 255
    const auto checksum = [](int rest) {
        return ByteString("\x10\x20") + static_cast<char>(255 - 0x40 - 0x30 - 4 + rest);
    };
    for (const auto& [off, length] : {std::pair{0, "3"}, std::pair{-1, "4"}, std::pair{1, "4"}}) {
        blocks[0x40] = checksum(off);
        txtRnD_OLEDragDrop({Put("a.dat", DataFile(blocks))});
        EXPECT_EQ(Table(Clipboard())[1][2 + 0x10], length) << off;
    }
}

TEST_F(Drop, OnTheSurvey_NothingIsJudgedOrShownAndNothingMayBeSent) {
    Open(PutBuild(kPlainBuild, "a.dat"));
    const Everything before = Now();
    const std::string notes = Put("b.dat", "8D00\r\nTTnote\r\n");
    BlockChanged[0x8D] = BlockChanged[0x8E] = true;
    txtRnD_OLEDragDrop({notes});
    const Everything after = Now();
    for (const char* same :
         {"caption", "version", "tabs", "BlockRead", "BlockWrite", "map 0", "txtSetting 500"})
        EXPECT_EQ(after.count(same) != 0 ? after.at(same) : "",
                  before.count(same) != 0 ? before.at(same) : "")
            << same;
    EXPECT_EQ(ReadData[0x8D], ByteString(1, '\0'));
    EXPECT_EQ(ReadData[0x86], "");
    EXPECT_EQ(txtNotes.Text, "note\r\n");
    EXPECT_FALSE(BlockChanged[0x8D]);
    EXPECT_TRUE(BlockChanged[0x8E]);
    for (std::size_t b = 0; b < 256; ++b) EXPECT_FALSE(BlockInForce[b]) << b;
}

}  // namespace
}  // namespace zandrel
