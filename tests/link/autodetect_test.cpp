#include <gtest/gtest.h>

#include "link/identify.h"
#include "link/linkfixture.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "support/scripteddesktop.h"

namespace zandrel {
namespace {

constexpr char kInstructions[] =
    "1. Turn off ignition.\n2. Connect Corvane cable to Power-FC.\n"
    "3. Connect Corvane to this computer via serial or USB to serial cable.\n"
    "4. Get ready to turn ignition on after pressing OK.\n5. Press OK";
constexpr char kCancelled[] =
    "Auto detect cancelled. No Corvane was found.\nCheck all connections, then try again.";

class AutoDetect : public LinkFixture {
  protected:
    AutoDetect() {
        SetPorts("1=" + device->PortName() + ",3=" + other_.PortName());
        ExpectBox(kInstructions, Box::Information);
    }

    // Runs `step` at the n-th yield (from 1); a search that goes on for long after the last one is
    // cancelled, so that a failing test ends.
    void At(int n, std::function<void()> step) {
        steps_[n] = std::move(step);
        OnYield([this] {
            const auto step = steps_.find(YieldCount());
            if (step != steps_.end()) step->second();
            if (YieldCount() > 20000) Progress2.Cancelled = true;
        });
    }

    powerfc::Simulator other_;

  private:
    std::map<int, std::function<void()>> steps_;
};

TEST_F(AutoDetect, Announcement_OpensTheLinkOnItsPort) {
    At(3, [this] { other_.Say("KVX:V2.0"); });
    ExpectBox("Corvane V2.0 found on COM3", Box::Plain);
    ComAutoDetect();
    EXPECT_TRUE(MSComm1.PortOpen());
    EXPECT_EQ(MSComm1.CommPort, 3);
    EXPECT_TRUE(mnuCom[2].Checked);
    EXPECT_FALSE(mnuCom[0].Checked);
    EXPECT_FALSE(Progress2.Visible);
    for (const SerialPort& port : MSComm) EXPECT_FALSE(port.PortOpen());
    mnuCom_Click(2);
}

TEST_F(AutoDetect, TickedPortThatAnnouncesItself_IsOpenedAgain) {
    At(3, [this] { device->Say("xxKVX:V3.1yy"); });
    ExpectMessage("Corvane V3.1 found on COM1");
    ComAutoDetect();
    EXPECT_TRUE(MSComm1.PortOpen());
    EXPECT_TRUE(mnuCom[0].Checked);
}

TEST_F(AutoDetect, AnnouncementInPieces_WaitsForItsFourthCharacter) {
    int completeAt = 0;
    At(2, [this] { other_.Say("KVX:V2."); });
    At(200, [&] {
        other_.Say("0");
        completeAt = YieldCount();
    });
    ExpectMessage("Corvane V2.0 found on COM3");
    ComAutoDetect();
    EXPECT_GE(YieldCount(), completeAt);
    EXPECT_EQ(completeAt, 200);
    mnuCom_Click(2);
}

TEST_F(AutoDetect, OldAnnouncements_AreReportedAsV1) {
    At(2, [this] { other_.Say("...V2K..."); });
    ExpectMessage("Corvane V1.x found on COM3");
    ComAutoDetect();
    mnuCom_Click(2);
    ExpectBox(kInstructions, Box::Information);
    const int begin = YieldCount();
    At(begin + 2, [this] { other_.Say("V1K"); });
    ExpectMessage("Corvane V1.x found on COM3");
    ComAutoDetect();
    mnuCom_Click(2);
}

TEST_F(AutoDetect, Cancel_EndsTheSearchBeforeTheNextRound) {
    At(2, [] {
        EXPECT_TRUE(Progress2.Visible);
        EXPECT_EQ(Progress2.Status, "Turn igniton on now.");
        Progress2.Cancelled = true;
    });
    ExpectBox(kCancelled, Box::Critical);
    ComAutoDetect();
    EXPECT_EQ(YieldCount(), 2);
    EXPECT_TRUE(mnuCom[0].Checked);  // the choice stays, though its port is closed now
    EXPECT_FALSE(Progress2.Visible);
    EXPECT_FALSE(MSComm1.PortOpen());
    for (const SerialPort& port : MSComm) EXPECT_FALSE(port.PortOpen());
}

// A cancel of the round before is seen first, even when the announcement has come meanwhile.
TEST_F(AutoDetect, CancelledBeforeTheAnnouncementIsLookedAt_FindsNothing) {
    At(1, [this] {
        other_.Say("KVX:V2.");  // no find yet
        Progress2.Cancelled = true;
    });
    At(2, [this] { other_.Say("0"); });
    ExpectMessage(kCancelled);
    ComAutoDetect();
    EXPECT_EQ(YieldCount(), 1);
}

TEST_F(AutoDetect, CloseAskedForMeanwhile_EndsTheSearchAtOnce) {
    CloseAsked = true;
    ExpectMessage(kCancelled);
    ComAutoDetect();
    EXPECT_EQ(YieldCount(), 0);
}

TEST_F(AutoDetect, OtherChatter_IsNoFind) {
    At(2, [this] { other_.Say("$GPGGA,KVX V2.0, V2 K"); });
    At(300, [] { Progress2.Cancelled = true; });
    ExpectMessage(kCancelled);
    ComAutoDetect();
    EXPECT_EQ(YieldCount(), 300);
}

TEST_F(AutoDetect, BarSweepsOnceASecond_HintsChangeOnTheirMillisecondOnly) {
    struct Look {
        std::uint32_t Time;
        double Bar;
        const char* Status;
    };
    const Look looks[] = {
        {0, 0, "Turn igniton on now."},
        {999, 99.9, "Turn igniton on now."},
        {4000, 0, "Turn igniton on now."},
        {7999, 99.9, "Turn igniton on now."},
        {8001, 0.1, "Turn igniton on now."},
        {10000, 0, "Have you turned ON the ignition yet?"},
        {10500, 50, "Have you turned ON the ignition yet?"},
        {12001, 0.1, "Have you turned ON the ignition yet?"},
        {12000, 0, "Try turning the ignition off then on."},
        {14000, 0, "Check the Corvane LED is illuminated."},
        {15999, 99.9, "Check the Corvane LED is illuminated."},
        {16000, 0, "Waiting for Corvane..."},
        {18000, 0, "Have you turned ON the ignition yet?"},
    };
    std::size_t n = 0;
    bool started = false;
    // The first look at the clock is the start of the search.
    Desktop.TickCount = [&] {
        if (!started) {
            started = true;
            return std::uint32_t{1000};
        }
        return n < std::size(looks) ? 1000 + looks[n].Time : 1000U;
    };
    OnYield([&] {
        ASSERT_LT(n, std::size(looks));
        EXPECT_DOUBLE_EQ(Progress2.Bar, looks[n].Bar) << looks[n].Time;
        EXPECT_EQ(Progress2.Status, looks[n].Status) << looks[n].Time;
        if (++n == std::size(looks)) Progress2.Cancelled = true;
    });
    ExpectMessage(kCancelled);
    ComAutoDetect();
    EXPECT_EQ(n, std::size(looks));
}

TEST_F(AutoDetect, PortsThatDoNotOpen_AreLeftOut) {
    SetPorts("");
    At(5, [] { Progress2.Cancelled = true; });
    ExpectMessage(kCancelled);
    ComAutoDetect();
}

TEST_F(AutoDetect, StartedTwice_RunsOnce) {
    At(2, [] {
        ComAutoDetect();  // asks nothing: it runs already
        EXPECT_TRUE(LongOperationRuns());
        Progress2.Cancelled = true;
    });
    ExpectMessage(kCancelled);
    ComAutoDetect();
    EXPECT_FALSE(LongOperationRuns());
}

TEST_F(AutoDetect, OfferOfTheLink_LeadsHere) {
    OpenScriptedDesktop();  // the instructions come only after the offer
    mnuCom_Click(0);
    ExpectMessage("No COM port has been selected.\nWould you like to AutoDetect the COM port now?",
                  Answer::Yes);
    ExpectMessage(kInstructions);
    At(2, [this] { device->Say("KVX:V2.0"); });
    ExpectMessage("Corvane V2.0 found on COM1");
    EXPECT_TRUE(ComCheck(true));
}

}  // namespace
}  // namespace zandrel
