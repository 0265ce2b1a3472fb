// Auto Update: when its timer starts, and what it does when it fires.
#include <gtest/gtest.h>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transferfixture.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

class AutoUpdate : public TransferFixture {
  protected:
    void Tick() {
        optAutoUpdate.Value = 1;
        optAutoUpdate_Click();
    }

    // Read whole, the box ticked, nothing to send.
    void Begin(const std::string& version = kPlain) {
        ReadAllOf(version);
        optAutoUpdate.Value = 1;
    }
};

TEST_F(AutoUpdate, NotTicked_AnEditStartsNoTimer) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_EQ(TimerStarts(Timer::Update), 0);
}

TEST_F(AutoUpdate, Ticked_AnEditIsSentHalfASecondLater) {
    Begin();
    Bump(0x8D);
    EXPECT_TRUE(TimerRuns(Timer::Update));
    EXPECT_EQ(TimerInterval(Timer::Update), 500);
    EXPECT_EQ(device->Received(), Frames());
    FireTimer(Timer::Update);
    EXPECT_EQ(device->Received(), AfterPrelude({BlockPacket(0x8D)}));
    EXPECT_FALSE(TimerRuns(Timer::Update));
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_EQ(LastUpdate, "14:03:22");
    ExpectDeviceEqualsImage();
}

TEST_F(AutoUpdate, EachEdit_StartsTheHalfSecondAnew) {
    Begin();
    Bump(0x8D);
    BumpCell(0, 1, 1);
    Bump(0x8E);
    EXPECT_EQ(TimerStarts(Timer::Update), 3);
    FireTimer(Timer::Update);
    EXPECT_EQ(Writes(), (Frames{BlockPacket(0x86), BlockPacket(0x8D), BlockPacket(0x8E)}));
    EXPECT_FALSE(TimerRuns(Timer::Update));
}

TEST_F(AutoUpdate, FourHundredCellsInOneGesture_AreOneChange) {
    Begin();
    {
        const Gesture paste("Paste");
        BumpCells(0, 400);
    }
    EXPECT_EQ(TimerStarts(Timer::Update), 1);
    FireTimer(Timer::Update);
    EXPECT_EQ(Writes().size(), 4u);
}

TEST_F(AutoUpdate, UndoAndRedo_AreSentToo) {
    Begin();
    BumpCell(0, 1, 1);
    FireTimer(Timer::Update);
    int map = 0;
    ASSERT_TRUE(Undo(map));
    EXPECT_TRUE(TimerRuns(Timer::Update));
    FireTimer(Timer::Update);
    ExpectDeviceEqualsImage();
    ASSERT_TRUE(Redo(map));
    FireTimer(Timer::Update);
    ExpectDeviceEqualsImage();
    EXPECT_EQ(Writes().size(), 3u);
}

TEST_F(AutoUpdate, EditThatChangesNothing_StartsNoTimer) {
    Begin();
    SetNumber("&H8D,1,1,1,0,0", std::to_string(static_cast<std::uint8_t>(ReadData[0x8D][0])));
    SetCell(0, 1, 1, GetCell(0, 1, 1, false));
    EXPECT_EQ(TimerStarts(Timer::Update), 0);
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(AutoUpdate, TickedWithChangesWaiting_SendsThem) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    Tick();
    EXPECT_TRUE(TimerRuns(Timer::Update));
    FireTimer(Timer::Update);
    EXPECT_EQ(Writes(), Frames{BlockPacket(0x8D)});
}

TEST_F(AutoUpdate, TickRemoved_StartsNothing) {
    ReadAllOf(kPlain);
    Bump(0x8D);
    optAutoUpdate.Value = 0;
    optAutoUpdate_Click();
    EXPECT_EQ(TimerStarts(Timer::Update), 0);
}

// An edit that was made while the box was ticked went out half a second after the tick had been removed.
TEST_F(AutoUpdate, TickRemovedBeforeTheTimer_SendsNothing) {
    Begin();
    Bump(0x8D);
    ASSERT_TRUE(TimerRuns(Timer::Update));
    optAutoUpdate.Value = 0;
    optAutoUpdate_Click();
    EXPECT_FALSE(TimerRuns(Timer::Update));
    EXPECT_TRUE(BlockChanged[0x8D]);
    EXPECT_TRUE(cmdUpdate.Enabled);
}

TEST_F(AutoUpdate, UpdatePressedBeforeTheTimer_StopsIt) {
    Begin();
    Bump(0x8D);
    cmdUpdate_Click();
    EXPECT_FALSE(TimerRuns(Timer::Update));
    EXPECT_EQ(Writes().size(), 1u);
}

TEST_F(AutoUpdate, FiresWithTheButtonDisabled_DoesNothing) {
    Begin();
    Bump(0x8D);
    cmdUpdate.Enabled = false;  // a Read All has taken the change
    FireTimer(Timer::Update);
    EXPECT_EQ(device->Received(), Frames());
    EXPECT_FALSE(TimerRuns(Timer::Update));
}

TEST_F(AutoUpdate, ReadAllBeforeTheTimer_LeavesItNothingToSend) {
    Begin();
    Bump(0x8D);
    cmdReadAll_Click();
    device->ClearJournal();
    if (TimerRuns(Timer::Update)) FireTimer(Timer::Update);
    EXPECT_EQ(device->Received(), Frames());
}

TEST_F(AutoUpdate, FiresWhileALongOperationRuns_WaitsHalfASecondMore) {
    Begin();
    Bump(0x8D);
    {
        const LongOperation running;
        FireTimer(Timer::Update);
        EXPECT_EQ(device->Received(), Frames());
        EXPECT_TRUE(TimerRuns(Timer::Update));
        EXPECT_EQ(TimerInterval(Timer::Update), 500);
        FireTimer(Timer::Update);
        EXPECT_TRUE(TimerRuns(Timer::Update));
    }
    FireTimer(Timer::Update);
    EXPECT_EQ(Writes(), Frames{BlockPacket(0x8D)});
    EXPECT_FALSE(TimerRuns(Timer::Update));
}

TEST_F(AutoUpdate, EditWhileAnUpdateRuns_IsSentByTheNext) {
    Begin(kOldest);
    ComRetries = 0;
    BumpCells(0, 25);
    int turns = 0;
    OnYield([&turns] {
        ++turns;
        if (turns == 5) BumpCell(0, 1, 1);
        if (turns == 8) FireTimer(Timer::Update);
    });
    FireTimer(Timer::Update);
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_TRUE(TimerRuns(Timer::Update));
    OnYield([] {});
    FireTimer(Timer::Update);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_FALSE(TimerRuns(Timer::Update));
    ExpectDeviceEqualsImage();
}

TEST_F(AutoUpdate, UpdateFails_IsNotTriedOverAndOver) {
    Begin();
    Impatient();
    Bump(0x8D);
    device->Silence(0x8D, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Update error", Box::Critical);
    FireTimer(Timer::Update);
    EXPECT_FALSE(TimerRuns(Timer::Update));
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x8D});
    device->ClearFaults();
    Bump(0x8E);  // the next edit sends both
    FireTimer(Timer::Update);
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    ExpectDeviceEqualsImage();
}

TEST_F(AutoUpdate, UpdatePressedBeforeTheTimerFails_IsNotTriedByItAgain) {
    Begin();
    Impatient();
    Bump(0x8D);
    device->Silence(0x8D, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);
    ExpectBox("Update error", Box::Critical);
    cmdUpdate_Click();
    EXPECT_FALSE(TimerRuns(Timer::Update));
    Bump(0x8E);
    device->DeadLine(true);
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdUpdate_Click();
    EXPECT_FALSE(TimerRuns(Timer::Update));
    EXPECT_TRUE(cmdUpdate.Enabled);
}

TEST_F(AutoUpdate, AnotherPowerFc_IsRefused) {
    Begin();
    Bump(0x8D);
    Connect(kBaseMap);
    const Frames before = Contents();
    ExpectBox(kFirstReadAllUpdate, Box::Critical);
    FireTimer(Timer::Update);
    EXPECT_EQ(device->Received(), Prelude());
    EXPECT_EQ(Contents(), before);
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_FALSE(TimerRuns(Timer::Update));
}

TEST_F(AutoUpdate, AnotherPowerFcMadeTheOneInForceByAReadMap_IsNotWritten) {
    Begin();
    Bump(0x8D);
    Connect(kBaseMap);
    cmdReadMap_Click(0);
    device->ClearJournal();
    const Frames before = Contents();
    Desktop.MessageBox = [](const std::string& text, Box) {
        EXPECT_EQ(text, kFirstReadAllUpdate);
        return Answer::Ok;
    };
    if (TimerRuns(Timer::Update)) FireTimer(Timer::Update);
    Bump(0x8E);
    FireTimer(Timer::Update);
    EXPECT_EQ(Writes(), Frames());
    EXPECT_EQ(Contents(), before);
}

}  // namespace
}  // namespace zandrel
