// Blocks that older files lack are fetched from the Power-FC, if the user wants it.
#include <gtest/gtest.h>

#include "files/datafile.h"
#include "files/filesfixture.h"
#include "link/packets.h"
#include "link/transferfixture.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

struct Missing {
    std::size_t Block;
    int Frame;
    const char* Name;
};
constexpr Missing kIgnVsTps = {0x99, 1470, "IGN vs TPS"};
constexpr Missing kBoostVsIgn = {0x97, 460, "Boost vs Ign SF"};

std::string Question(const Missing& missing) {
    const std::string name = missing.Name;
    return "This file does not contain Settings 4 \"" + name +
           "\" data.\nDo you want to read the missing setting now from an attached Power-FC?\n\n"
           "Answer No to continue without \"" +
           name + "\".";
}

class MissingBlock : public TransferFixture {
  protected:
    // A build that has both blocks.
    static constexpr char kBuild[] = "RB26DETT6.42";

    MissingBlock() {
        Connect(kBuild);
        blocks_ = zandrel::BlocksOf(kBuild);
    }

    void OpenWithout(const std::vector<Missing>& missing) {
        for (const Missing& each : missing) blocks_[each.Block].clear();
        PutFile(Folder + "/old.dat", DataFile(blocks_));
        Open(Folder + "/old.dat");
    }

    std::array<ByteString, 256> blocks_;
};

TEST_F(MissingBlock, No_AcceptsTheFileWithTheFrameOutOfUse) {
    for (const Missing& missing : {kIgnVsTps, kBoostVsIgn}) {
        blocks_ = zandrel::BlocksOf(kBuild);
        BlockChanged[missing.Block] = true;
        ExpectBox(Question(missing), Box::YesNo, Answer::No);
        OpenWithout({missing});
        EXPECT_EQ(MainFormState.FileTitle, "old.dat");
        EXPECT_TRUE(FraSettings[missing.Frame].Visible);
        EXPECT_FALSE(FraSettings[missing.Frame].Enabled);
        EXPECT_FALSE(BlockWrite[missing.Block]);
        EXPECT_FALSE(BlockInForce[missing.Block]);
        EXPECT_FALSE(BlockChanged[missing.Block]);
        EXPECT_EQ(ReadData[missing.Block], "");
    }
    EXPECT_EQ(device->Received(), Frames{});
}

TEST_F(MissingBlock, Yes_ReadsJustThatBlock) {
    for (const Missing& missing : {kIgnVsTps, kBoostVsIgn}) {
        blocks_ = zandrel::BlocksOf(kBuild);
        device->ClearJournal();
        ExpectBox(Question(missing), Box::YesNo, Answer::Yes);
        OpenWithout({missing});
        EXPECT_EQ(device->Received(), Frames{Packet(static_cast<int>(missing.Block))});
        EXPECT_EQ(ReadData[missing.Block], device->BlockString(static_cast<int>(missing.Block)));
        EXPECT_TRUE(FraSettings[missing.Frame].Enabled);
        EXPECT_TRUE(BlockWrite[missing.Block]);
        EXPECT_TRUE(BlockInForce[missing.Block]);
        EXPECT_FALSE(BlockChanged[missing.Block]);
    }
}

TEST_F(MissingBlock, Both_AreAskedForInTheOrderOfTheirBlocks) {
    ExpectBox(Question(kBoostVsIgn), Box::YesNo, Answer::Yes);
    ExpectBox(Question(kIgnVsTps), Box::YesNo, Answer::No);
    OpenWithout({kIgnVsTps, kBoostVsIgn});
    EXPECT_TRUE(FraSettings[460].Enabled);
    EXPECT_FALSE(FraSettings[1470].Enabled);
}

TEST_F(MissingBlock, AShortBlock_IsAskedForToo) {
    blocks_[0x99].pop_back();
    ExpectBox(Question(kIgnVsTps), Box::YesNo, Answer::No);
    OpenWithout({});
    EXPECT_EQ(ReadData[0x99], blocks_[0x99]);
    EXPECT_FALSE(FraSettings[1470].Enabled);
    EXPECT_FALSE(BlockWrite[0x99]);
}

TEST_F(MissingBlock, FailedRead_AsksAgainUntilItArrives) {
    Impatient();
    device->Silence(0x99, 4);
    for (int i = 0; i < 2; ++i) {
        ExpectBox(Question(kIgnVsTps), Box::YesNo, Answer::Yes);
        ExpectMessage(kNotResponding);
    }
    ExpectBox(Question(kIgnVsTps), Box::YesNo, Answer::Yes);
    OpenWithout({kIgnVsTps});
    EXPECT_EQ(ReadData[0x99], device->BlockString(0x99));
    EXPECT_TRUE(FraSettings[1470].Enabled);
}

TEST_F(MissingBlock, FailedRead_ThenNoGoesOnWithout) {
    Impatient();
    device->Silence(0x99, powerfc::kForever);
    ExpectBox(Question(kIgnVsTps), Box::YesNo, Answer::Yes);
    ExpectMessage(kNotResponding);
    ExpectBox(Question(kIgnVsTps), Box::YesNo, Answer::No);
    OpenWithout({kIgnVsTps});
    EXPECT_EQ(MainFormState.FileTitle, "old.dat");
    EXPECT_FALSE(FraSettings[1470].Enabled);
}

TEST_F(MissingBlock, FetchedBlockOfAFileThatIsThenRejected_IsGivenBack) {
    ReadAllOf(kOldSelects);
    const Everything before = Now();
    blocks_[0xA0].clear();
    ExpectBox(Question(kBoostVsIgn), Box::YesNo, Answer::No);
    ExpectBox(Question(kIgnVsTps), Box::YesNo, Answer::No);
    ExpectBox("File Format Error: Missing Data A0", Box::Critical);
    OpenWithout({kIgnVsTps, kBoostVsIgn});
    EXPECT_EQ(Differences(before, Now()), "");
}

// The frame of what an image has proved writable stays in use when a file of another build is refused.
TEST_F(MissingBlock, RejectedFileAfterReadAll_TheFramesStayInUse) {
    ReadAllOf(kBuild);
    ASSERT_TRUE(FraSettings[1470].Enabled);
    ASSERT_TRUE(BlockWrite[0x99]);
    const Everything before = Now();
    auto other = zandrel::BlocksOf(kOldSelects);
    other[0xA0].clear();
    PutFile(Folder + "/other.dat", DataFile(other));
    ExpectBox("File Format Error: Missing Data A0", Box::Critical);
    Open(Folder + "/other.dat");
    EXPECT_EQ(Differences(before, Now()), "");
}

// What the file held was sent as it stood; the length of a longer frame does not fit into its one byte.
TEST_F(MissingBlock, MapBlockThatNoFrameCanCarry_IsNeverSent) {
    const auto map = static_cast<std::size_t>(0x86);
    blocks_[map].resize(400, 'x');
    OpenWithout({});
    device->ClearJournal();
    ExpectMessage(kFirstReadAllWrite);
    cmdWriteAll_Click();
    EXPECT_EQ(Writes(), Frames{});
    ExpectMessage(kFirstReadAllWrite);
    cmdWriteMap_Click(0);
    BumpCell(0, 1, 1);
    ExpectMessage(kFirstReadAllUpdate);
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames{});
}

TEST_F(MissingBlock, SettingsBlockOfAnyLength_IsSentWithItsOwnLength) {
    blocks_[0x8D].resize(1000, 'x');
    OpenWithout({});
    device->ClearJournal();
    ByteString own = ReadData[0x8D].substr(0, BlockLength[0x8D]);
    Bump(0x8D);
    own[0] = ReadData[0x8D][0];
    cmdUpdate_Click();
    EXPECT_EQ(Writes(), Frames{Packet(0x8D, own)});
}

// An opened file is what a Power-FC of its build takes with Write All.
TEST_F(MissingBlock, OpenedFile_CanBeWrittenWhole) {
    OpenWithout({});
    ReadData[0x86][0] = static_cast<char>(ReadData[0x86][0] + 1);
    cmdWriteAll_Click();
    ExpectDeviceEqualsImage();
}

}  // namespace
}  // namespace zandrel
