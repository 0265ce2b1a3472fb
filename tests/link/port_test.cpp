#include "link/port.h"

#include <gtest/gtest.h>

#include "link/linkfixture.h"
#include "link/packets.h"
#include "support/scripteddesktop.h"

namespace zandrel {
namespace {

class Port : public LinkFixture {
  protected:
    static std::vector<int> Offered() {
        std::vector<int> numbers;
        for (int n = 1; n <= 16; ++n) {
            if (mnuCom[n - 1].Visible) numbers.push_back(n);
        }
        return numbers;
    }
};

TEST_F(Port, ClickOnAnItem_OpensItsPortAndTicksItAlone) {
    powerfc::Simulator second;
    SetPorts("1=" + device->PortName() + ",3=" + second.PortName());
    mnuCom_Click(2);
    EXPECT_TRUE(MSComm1.PortOpen());
    EXPECT_EQ(MSComm1.CommPort, 3);
    EXPECT_FALSE(mnuCom[0].Checked);
    EXPECT_TRUE(mnuCom[2].Checked);
    ByteString command = "\x8D";
    EXPECT_EQ(ReadPacket(command, false), LinkResult::Success);
    EXPECT_EQ(second.Received(), (Frames{"8D0270"}));
    mnuCom_Click(2);
}

TEST_F(Port, SecondClickOnTheTickedItem_LeavesNoPort) {
    mnuCom_Click(0);
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_FALSE(mnuCom[0].Checked);
}

TEST_F(Port, PortThatIsNotThere_IsToldAndNothingTicked) {
    ExpectBox("Error opening Com5", Box::Critical);
    mnuCom_Click(4);
    EXPECT_FALSE(MSComm1.PortOpen());
    for (const MenuItem& item : mnuCom) EXPECT_FALSE(item.Checked);
    EXPECT_EQ(LogText(), "");
}

TEST_F(Port, Exists_IfItOpens) {
    powerfc::Simulator second;
    SetPorts("2=" + second.PortName());
    EXPECT_TRUE(ComPortExists(2));
    EXPECT_FALSE(ComPortExists(5));
    EXPECT_FALSE(MSComm2.PortOpen());
}

TEST_F(Port, Menu_OffersWhatExistsAndYieldsAtEachPort) {
    powerfc::Simulator second;
    SetPorts("1=" + device->PortName() + ",7=" + second.PortName());
    ComPortMenu_Open();
    EXPECT_EQ(Offered(), (std::vector<int>{1, 7}));
    EXPECT_FALSE(mnuComNone.Visible);
    EXPECT_EQ(YieldCount(), 16);
    EXPECT_TRUE(MSComm1.PortOpen());
}

TEST_F(Port, TickedPort_IsOfferedEvenWhenItIsGone) {
    SetPorts("");
    ComPortMenu_Open();
    EXPECT_EQ(Offered(), (std::vector<int>{1}));
}

TEST_F(Port, MenuWithoutAnyPort_SaysSo) {
    mnuCom_Click(0);
    SetPorts("");
    ComPortMenu_Open();
    EXPECT_TRUE(Offered().empty());
    EXPECT_TRUE(mnuComNone.Visible);
}

TEST_F(Port, ShowAll_OffersAllSixteenUntilItIsUnticked) {
    mnuComShowAll_Click();
    EXPECT_TRUE(mnuComShowAll.Checked);
    EXPECT_EQ(Offered().size(), 16U);
    EXPECT_FALSE(mnuComNone.Visible);
    mnuComShowAll_Click();
    EXPECT_EQ(Offered(), (std::vector<int>{1}));
}

TEST_F(Port, Devices_FollowTheSystemUnlessOverridden) {
    setenv("ZANDREL_PORTS", " 1 = /some/tty ,2=/other,broken,x=/y,17=/z", 1);
    EXPECT_EQ(ComDevice(1), "/some/tty");
    EXPECT_EQ(ComDevice(2), "/other");
    EXPECT_EQ(ComDevice(3), "/dev/ttyS2");
    EXPECT_EQ(ComDevice(4), "/dev/ttyS3");
    EXPECT_EQ(ComDevice(5), "/dev/ttyUSB0");
    EXPECT_EQ(ComDevice(12), "/dev/ttyUSB7");
    EXPECT_EQ(ComDevice(13), "/dev/ttyACM0");
    EXPECT_EQ(ComDevice(16), "/dev/ttyACM3");
    EXPECT_EQ(ComCaption(2), "COM2  /other");
}

TEST_F(Port, OpenPort_CanBeOpenedAnewAtWill) {
    for (int i = 0; i < 5; ++i) {
        mnuCom_Click(0);
        EXPECT_FALSE(MSComm1.PortOpen());
        mnuCom_Click(0);
        EXPECT_TRUE(MSComm1.PortOpen());
        ByteString command = "\x8D";
        EXPECT_EQ(ReadPacket(command, false), LinkResult::Success);
    }
}

TEST_F(Port, ClosedPort_TakesAndGivesNothing) {
    SerialPort port;
    EXPECT_FALSE(port.PortOpen());
    EXPECT_EQ(port.InBufferCount(), 0);
    EXPECT_EQ(port.Input(0), "");
    EXPECT_FALSE(port.Output("x"));
    EXPECT_FALSE(port.WaitForInput(0));
    port.Close();
}

TEST_F(Port, InputBuffer_HoldsAKilobyteAndTheFlushEmptiesTheDriverToo) {
    device->Say(std::string(3000, 'x'));
    for (int look = 0; look < 50 && MSComm1.InBufferCount() < 1024; ++look) MSComm1.WaitForInput(100);
    EXPECT_EQ(MSComm1.InBufferCount(), 1024);
    EXPECT_EQ(ComFlush(), 0);
    EXPECT_EQ(MSComm1.InBufferCount(), 0);
}

TEST_F(Port, Input_TakesAtMostTheCount) {
    device->Say("abcdef");
    while (MSComm1.InBufferCount() < 6) ASSERT_TRUE(MSComm1.WaitForInput(1000));
    EXPECT_EQ(MSComm1.Input(2), "ab");
    EXPECT_EQ(MSComm1.Input(0), "cdef");
    EXPECT_EQ(MSComm1.InBufferCount(), 0);
}

}  // namespace
}  // namespace zandrel
