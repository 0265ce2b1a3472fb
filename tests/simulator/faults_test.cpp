// Each fault, met by a bare client.
#include "simulator/faults.h"

#include "port.h"
#include "simulator/frames.h"

namespace powerfc {
namespace {

class Faults : public testing::Test {
  protected:
    Faults() : port(device.PortName()) { good = port.Ask(0xF5); }
    // The fault has worn off.
    void ExpectGood() {
        EXPECT_EQ(port.Ask(0xF5), good);
        EXPECT_TRUE(port.Empty());
    }
    Simulator device;
    Port port;
    Bytes good;
};

TEST_F(Faults, Silence_CountedAndNotCarriedOut) {
    const Bytes before = device.Block(0x97);
    device.Silence(0x97, 2);
    EXPECT_TRUE(port.StaysSilent(Frame(0x97, {1, 2})));
    EXPECT_TRUE(port.StaysSilent(Frame(0x97, {1, 2})));
    EXPECT_EQ(device.Block(0x97), before);
    EXPECT_EQ(port.Ask(0x97, {1, 2}), kTaken);
    EXPECT_EQ(ToHex(device.Block(0x97)), "0102");
}

TEST_F(Faults, AnyCode_MeetsWhateverComes) {
    device.Silence(kAnyCode, 1);
    EXPECT_TRUE(port.StaysSilent(Frame(0x8D)));
    ExpectGood();
}

TEST_F(Faults, Forever_UntilCleared) {
    device.Silence(0xF5, kForever);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(port.StaysSilent(Frame(0xF5)));
    device.ClearFaults();
    ExpectGood();
}

TEST_F(Faults, SameCode_QueueInOrder) {
    device.BadChecksum(0xF5);
    device.Silence(0xF5);
    device.WrongCode(0xF5);
    EXPECT_NE(SumOf(port.Ask(0xF5)), 255);
    EXPECT_TRUE(port.StaysSilent(Frame(0xF5)));
    EXPECT_NE(port.Ask(0xF5)[0], 0xF5);
    ExpectGood();
}

TEST_F(Faults, Delay_AnswerComesLate_AlsoASpoiltOne) {
    device.ClearJournal();
    device.Delay(0xF5, 60);
    EXPECT_EQ(port.Ask(0xF5), good);
    device.Delay(0xF5, 60);
    device.BadChecksum(0xF5);
    EXPECT_EQ(SumOf(port.Ask(0xF5)), 0);
    const auto journal = device.Journal();
    ASSERT_EQ(journal.size(), 4u);
    EXPECT_GE(journal[1].FirstUs - journal[0].LastUs, 60'000);
    EXPECT_GE(journal[3].FirstUs - journal[2].LastUs, 60'000);
    ExpectGood();
}

TEST_F(Faults, Delay_DoesNotHoldTheDestructorUp) {
    const auto start = std::chrono::steady_clock::now();
    {
        Simulator slow;
        Port other(slow.PortName());
        slow.Delay(0xF5, 600'000);
        other.Send(Frame(0xF5));
        ASSERT_TRUE(slow.WaitForEntries(1, kPatienceMs));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kPatienceMs));
}

TEST_F(Faults, BadChecksum_OffByOne) {
    device.BadChecksum(0xF5);
    Bytes bad = good;
    ++bad.back();
    EXPECT_EQ(port.Ask(0xF5), bad);
    ExpectGood();
}

TEST_F(Faults, WrongCode_AGoodFrameAllTheSame) {
    device.WrongCode(0xF5);
    const Bytes reply = port.Ask(0xF5);
    EXPECT_NE(reply[0], 0xF5);
    EXPECT_NE(reply[0], 2);
    EXPECT_EQ(DataOf(reply), DataOf(good));
    EXPECT_EQ(SumOf(reply), 255);
    device.WrongCode(0x97);
    const Bytes taken = port.Ask(0x97, {1, 2});
    EXPECT_NE(taken[0], 0xF2);
    EXPECT_EQ(ToHex(device.Block(0x97)), "0102");  // carried out
}

TEST(WrongCode, EveryCode_NeitherAwaitedNorAMessageNorAnAcknowledge) {
    for (int code = 0; code < 256; ++code) {
        const Bytes spoilt =
            Spoil({FaultKind::WrongCode, code, 1, 0, {}}, Frame(static_cast<std::uint8_t>(code)));
        EXPECT_NE(spoilt[0], code);
        EXPECT_NE(spoilt[0], 0x02) << code;
        EXPECT_NE(spoilt[0], 0xF2) << code;
    }
}

TEST_F(Faults, InterfaceError_ItsClassInByteTwo) {
    for (const int errorClass : {1, 2, 3, 7}) {
        device.InterfaceError(0x97, errorClass);
        const Bytes reply = port.Ask(0x97, {1, 2});
        EXPECT_EQ(reply[0], 2);
        EXPECT_EQ(reply[2], errorClass);
        EXPECT_EQ(SumOf(reply), 255);
    }
    EXPECT_NE(ToHex(device.Block(0x97)), "0102");
    ExpectGood();
}

TEST_F(Faults, ShortFrame_OnlyItsBeginning) {
    device.ShortFrame(0xF5);
    device.ShortFrame(0xF5, 1, 7);
    device.ShortFrame(0xF5, 1, 0);
    port.Send(Frame(0xF5));
    EXPECT_EQ(port.Take(4), Bytes(good.begin(), good.begin() + 4));
    port.Send(Frame(0xF5));
    EXPECT_EQ(port.Take(7), Bytes(good.begin(), good.begin() + 7));
    EXPECT_TRUE(port.StaysSilent(Frame(0xF5)));
    ExpectGood();
}

TEST_F(Faults, SplitDelivery_WholeButWithPauses) {
    device.ClearJournal();
    device.SplitDelivery(0xF5, 20);
    EXPECT_EQ(port.Ask(0xF5), good);
    const auto journal = device.Journal();
    ASSERT_EQ(journal.size(), 2u);
    EXPECT_EQ(journal[1].Data, good);
    EXPECT_GE(journal[1].LastUs - journal[1].FirstUs, 40'000);
    ExpectGood();
}

TEST_F(Faults, SplitDelivery_OfAnAcknowledge) {
    device.SplitDelivery(0x97, 1);
    EXPECT_EQ(port.Ask(0x97, {1, 2}), kTaken);
    ExpectGood();
}

TEST_F(Faults, WrongLength_AWellFormedFrame) {
    device.WrongLength(0xF5);
    device.WrongLength(0xF5, 1, 2);
    const Bytes shorter = port.Ask(0xF5);
    EXPECT_EQ(DataOf(shorter).size(), 4u);
    EXPECT_EQ(SumOf(shorter), 255);
    const Bytes longer = port.Ask(0xF5);
    EXPECT_EQ(DataOf(longer).size(), 7u);
    EXPECT_EQ(SumOf(longer), 255);
    ExpectGood();
}

TEST_F(Faults, AcknowledgeThenSilence_AndOfAnotherCommand) {
    device.AcknowledgeThenSilence(0xF5);
    device.AcknowledgeOther(0xF5, 0x8D);
    EXPECT_EQ(port.Ask(0xF5), Frame(2, {0, 0xF5}));
    EXPECT_EQ(port.Ask(0xF5), Frame(2, {0, 0x8D}));
    EXPECT_TRUE(port.Empty());
    ExpectGood();
}

TEST_F(Faults, FlipBit_EveryBitOfTheFrame) {
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        device.FlipBit(0xF5, static_cast<int>(bit));
        port.Send(Frame(0xF5));
        Bytes expected = good;
        expected[bit / 8] ^= static_cast<std::uint8_t>(1u << (bit % 8));
        EXPECT_EQ(port.Take(good.size()), expected) << bit;
        EXPECT_NE(SumOf(expected), 255);
    }
    device.FlipBit(0xF5, static_cast<int>(good.size() * 8));
    EXPECT_EQ(port.Ask(0xF5), good);
    ExpectGood();
}

TEST_F(Faults, DropByte_EveryByteOfTheFrame) {
    for (std::size_t index = 0; index < good.size(); ++index) {
        device.DropByte(0xF5, static_cast<int>(index));
        port.Send(Frame(0xF5));
        Bytes expected = good;
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(index));
        EXPECT_EQ(port.Take(expected.size()), expected) << index;
        EXPECT_TRUE(port.Empty());
    }
    ExpectGood();
}

TEST_F(Faults, ReplaceReply_RawBytes_AlsoForACodeThatIsSilent) {
    device.ReplaceReply(0xF5, FromHex("0011"));
    device.ReplaceReply(0x03, FromHex("AABBCC"));
    port.Send(Frame(0xF5));
    EXPECT_EQ(ToHex(port.Take(2)), "0011");
    port.Send(Frame(0x03));
    EXPECT_EQ(ToHex(port.Take(3)), "AABBCC");
    ExpectGood();
}

TEST_F(Faults, RefuseMapBlocks_CellsStillTaken) {
    device.RefuseMapBlocks(true);
    const Bytes before = device.Block(0x86);
    EXPECT_TRUE(port.StaysSilent(Frame(0x86, Bytes(100, 7))));
    EXPECT_EQ(device.Block(0x86), before);
    EXPECT_EQ(port.Ask(0x85, {0, 0, 7}), kTaken);
    EXPECT_EQ(device.Block(0x86)[0], 7);
    EXPECT_EQ(port.Ask(0x97, {1, 2}), kTaken);
    device.RefuseMapBlocks(false);
    EXPECT_EQ(port.Ask(0x86, Bytes(100, 7)), kTaken);
}

TEST_F(Faults, DeadLine_HearsButNeverAnswers) {
    device.DeadLine(true);
    device.ClearJournal();
    port.Send(Frame(0xF5));
    port.Send(Frame(0x01));
    ASSERT_TRUE(device.WaitForEntries(2, kPatienceMs));
    device.DeadLine(false);
    ExpectGood();
    EXPECT_EQ(device.Received(), (std::vector<std::string>{"F50208", "0102FC", "F50208"}));
    EXPECT_EQ(device.Journal().size(), 4u);
}

}  // namespace
}  // namespace powerfc
