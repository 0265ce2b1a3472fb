#include "link/scan.h"

#include <gtest/gtest.h>

#include "image/image.h"
#include "link/identify.h"
#include "link/linkfixture.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class Scan : public LinkFixture {
  protected:
    Scan() {
        // Every block answers, so that the scan needs not wait for the missing ones.
        for (int b = 0; b < 256; ++b) {
            if (!device->HasBlock(b))
                device->ReplaceReply(b, powerfc::Frame(static_cast<std::uint8_t>(b), {9}));
        }
    }
    // Data of a scanned block: with the checksum byte of its frame at the end.
    ByteString Scanned(int code) const {
        const ByteString frame = FrameOf(ByteString(1, static_cast<char>(code)) + device->BlockString(code));
        return frame.substr(2);
    }
};

TEST_F(Scan, EveryCode_IsAskedForOnceAndKeptWithItsChecksum) {
    ReadData[0x8D] = "old";
    BlockChanged[3] = true;
    cmdUpdate.Enabled = true;
    cmdReadAll.Enabled = false;
    double lastBar = 0;
    OnYield([&lastBar] { lastBar = ProgressScan.Bar; });
    mnuScan_Click();
    const Frames received = device->Received();
    ASSERT_EQ(received.size(), 256U);
    for (int b = 0; b < 256; ++b) {
        EXPECT_EQ(received[b], Digits(FrameOf(ByteString(1, static_cast<char>(b)))));
    }
    EXPECT_EQ(ReadData[0x8D], Scanned(0x8D));
    EXPECT_EQ(ReadData[0xF3], Scanned(0xF3));
    EXPECT_FALSE(BlockChanged[3]);
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_TRUE(cmdReadAll.Enabled);
    EXPECT_FALSE(ProgressScan.Visible);
    EXPECT_DOUBLE_EQ(ProgressScan.Bar, 255 / 2.55);
    EXPECT_EQ(YieldCount(), 257);
}

TEST_F(Scan, Cancel_KeepsWhatWasReadAndTheFlags) {
    ReadData[200] = "old";
    BlockChanged[3] = true;
    MapCellChanged[1][2][3] = true;
    DataChanged = true;
    int kept = 0;
    BeforeUnsavedIsReplaced = [&kept] { kept += ReadData[200] == "old" ? 1 : 10; };
    cmdUpdate.Enabled = true;
    OnYield([] {
        // The first yield brings the window up; the 101st is the one after code 99.
        if (YieldCount() == 101) ProgressScan.Cancelled = true;
    });
    mnuScan_Click();
    EXPECT_EQ(device->Received().size(), 100U);
    // A cancel is seen when the exchange of its code is over, so that 99 is the last one kept.
    for (int b = 0; b < 256; ++b) {
        if (b == 2) continue;  // the interface's own code: its messages are no blocks
        EXPECT_EQ(ReadData[b].empty(), b >= 100) << b;
    }
    EXPECT_TRUE(BlockChanged[3]);
    EXPECT_TRUE(MapCellChanged[1][2][3]);
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_FALSE(ProgressScan.Visible);
    EXPECT_EQ(kept, 1) << "unsaved work is kept before it is replaced";
}

TEST_F(Scan, WrongCodeOrSilence_LeavesTheBlockEmptyAfterOneSend) {
    device->ClearFaults();
    // Code 3 has a block, which would be kept if its reply bore the right code.
    device->SetBlock(3, {1, 2});
    device->WrongCode(3, 1);
    OnYield([] {
        if (YieldCount() == 5) ProgressScan.Cancelled = true;
    });
    const auto start = TickCount();
    mnuScan_Click();
    const auto waited = TickCount() - start;
    EXPECT_EQ(device->Received(), (Frames{"0002FD", "0102FC", "0202FB", "0302FA"}));
    EXPECT_TRUE(ReadData[0].empty());
    EXPECT_FALSE(ReadData[1].empty());  // the interface's own answer
    EXPECT_TRUE(ReadData[3].empty());
    EXPECT_GT(waited, 1500U);  // three codes waited half a second each
}

TEST_F(Scan, BlockLengths_StayThoseOfTheLastVersion) {
    ApplyBuild("RB26DETT6.42");
    mnuScan_Click();
    EXPECT_EQ(BlockLength[0x8D], 24);
    EXPECT_EQ(ReadData[0x8D].size(), 25U);
    EXPECT_EQ(txtSetting[500].Text.empty(), false);
}

TEST_F(Scan, RunningLogOrAskedForClose_KeepsTheImage) {
    ReadData[0x8D] = "kept";
    LogRuns = [] { return true; };
    mnuScan_Click();
    EXPECT_EQ(ReadData[0x8D], "kept");
    LogRuns = [] { return false; };
    CloseAsked = true;
    mnuScan_Click();  // ends after its first code
    EXPECT_EQ(device->Received().size(), 1U);
}

TEST_F(Scan, WhileItRuns_NothingElseCanBegin) {
    OnYield([] {
        EXPECT_TRUE(LongOperationRuns());
        EXPECT_FALSE(cmdReadAll.Enabled);
        EXPECT_TRUE(ProgressScan.Visible);
        ProgressScan.Cancelled = YieldCount() > 5;
    });
    mnuScan_Click();
    EXPECT_FALSE(LongOperationRuns());
    EXPECT_TRUE(cmdReadAll.Enabled);
}

TEST_F(Scan, FailingPort_LeavesNoBlock) {
    mnuCom_Click(0);
    mnuScan_Click();
    for (const ByteString& block : ReadData) EXPECT_TRUE(block.empty());
    EXPECT_TRUE(device->Received().empty());
}

}  // namespace
}  // namespace zandrel
