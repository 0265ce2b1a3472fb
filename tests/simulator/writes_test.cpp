// Every kind of write, and what the Power-FC holds afterwards.
#include <algorithm>

#include "port.h"

namespace powerfc {
namespace {

Options Version(const std::string& key) {
    Options options;
    options.Version = key;
    return options;
}

Bytes Counting(std::size_t count, int from = 1) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(from + static_cast<int>(i));
    return bytes;
}

TEST(Write, WholeBlock_TakenAndReadBack) {
    Simulator device;
    Port port(device.PortName());
    EXPECT_EQ(port.Ask(0x8D, Counting(24)), kTaken);
    EXPECT_EQ(device.Block(0x8D), Counting(24));
    EXPECT_EQ(DataOf(port.Ask(0x8D)), Counting(24));
}

TEST(Write, WrongLengthOrUnknownOrReadOnly_SilentAndNothingChanges) {
    struct Row {
        int Code;
        std::size_t Length;
    };
    const Row rows[] = {{0x8D, 23}, {0x8D, 25}, {0x86, 99},  {0x86, 101}, {0x7F, 3},  {0xF3, 8}, {0xF5, 5},
                        {0xDD, 80}, {0xD5, 13}, {0xCE, 107}, {0xD6, 85},  {0xCE, 16}, {0xD6, 8}, {0xCE, 18},
                        {0xD6, 4},  {0x33, 16}, {0x4B, 8},   {0x85, 2},   {0x85, 4},  {0xF6, 2}};
    Simulator device;
    Port port(device.PortName());
    std::vector<Bytes> before;
    for (const int code : device.BlockCodes()) before.push_back(device.Block(code));
    for (const Row& row : rows) {
        EXPECT_TRUE(port.StaysSilent(Frame(static_cast<std::uint8_t>(row.Code), Counting(row.Length))))
            << std::hex << row.Code << " with " << row.Length;
    }
    std::vector<Bytes> after;
    for (const int code : device.BlockCodes()) after.push_back(device.Block(code));
    EXPECT_EQ(before, after);
}

TEST(Write, MapBlock_Whole) {
    Simulator device;
    Port port(device.PortName());
    EXPECT_EQ(port.Ask(0x87, Counting(100)), kTaken);
    EXPECT_EQ(device.Block(0x87), Counting(100));
}

TEST(Write, SingleCell_ByTheCommandBeforeTheMap) {
    Simulator device;
    Port port(device.PortName());
    const Bytes first = device.Block(0x86);
    // Cell 399 is row 20 of column 20: the last byte of the fourth block.
    EXPECT_EQ(port.Ask(0x85, {399 % 256, 399 / 256, 0x5A}), kTaken);
    EXPECT_EQ(device.Block(0x89)[99], 0x5A);
    EXPECT_EQ(port.Ask(0x80, {20, 0, 33}), kTaken);  // ignition, row 1 of column 2
    EXPECT_EQ(device.Block(0x81)[20], 33);
    EXPECT_EQ(device.Block(0x86), first);
    EXPECT_TRUE(port.StaysSilent(Frame(0x85, {400 % 256, 400 / 256, 0x5A})));
}

TEST(Write, TwoByteCell_CountsInCellsLowByteFirst) {
    Simulator device(Version("3S-GTE1.44"));
    Port port(device.PortName());
    EXPECT_EQ(port.Ask(0xAF, {60, 0, 0x34, 0x12}), kTaken);  // byte 120: the second block
    EXPECT_EQ(device.Block(0xB1)[20], 0x34);
    EXPECT_EQ(device.Block(0xB1)[21], 0x12);
    EXPECT_TRUE(port.StaysSilent(Frame(0xAF, {60, 0, 0x34})));
}

TEST(Write, SensorSelect_OnlyHeadAndTailChange) {
    Simulator device;
    Port port(device.PortName());
    const Bytes before = device.Block(0xCE);
    EXPECT_EQ(port.Ask(0xCE, Counting(17, 100)), kTaken);
    const Bytes after = device.Block(0xCE);
    ASSERT_EQ(after.size(), 107u);
    EXPECT_EQ(after[0], 100);
    EXPECT_TRUE(std::equal(before.begin() + 1, before.begin() + 91, after.begin() + 1));
    EXPECT_EQ(Bytes(after.begin() + 91, after.end()), Counting(16, 101));
}

TEST(Write, FunctionSelect_FiveOrEightFlags) {
    {
        Simulator device;
        Port port(device.PortName());
        EXPECT_EQ(port.Ask(0xD6, {1, 2, 3, 4, 5}), kTaken);
        EXPECT_EQ(ToHex(device.Block(0xD6)).substr(0, 12), "010203040542");
    }
    Simulator device(Version("1JZGT-AT3.54"));
    Port port(device.PortName());
    EXPECT_EQ(port.Ask(0xD6, Counting(8)), kTaken);
    EXPECT_EQ(ToHex(device.Block(0xD6)).substr(0, 18), "010203040506070842");
    EXPECT_TRUE(port.StaysSilent(Frame(0xD6, Counting(5))));
}

TEST(Write, SelectsBySecondCode_OwnCodeAcknowledgedWithoutEffect) {
    Simulator device;
    device.ObeySelects(SelectWrites::SecondCode);
    Port port(device.PortName());
    const Bytes sensors = device.Block(0xCE), functions = device.Block(0xD6);
    EXPECT_EQ(port.Ask(0xCE, Counting(17)), kTaken);
    EXPECT_EQ(port.Ask(0xD6, Counting(5)), kTaken);
    EXPECT_EQ(device.Block(0xCE), sensors);
    EXPECT_EQ(device.Block(0xD6), functions);
    EXPECT_EQ(port.Ask(0x33, Counting(17)), kTaken);
    EXPECT_EQ(port.Ask(0x4B, Counting(5)), kTaken);
    EXPECT_EQ(device.Block(0xCE)[0], 1);
    EXPECT_EQ(device.Block(0xCE)[106], 17);
    EXPECT_EQ(device.Block(0xD6)[4], 5);
}

TEST(Write, SelectsNever_BothCodesWithoutEffect) {
    Simulator device;
    device.ObeySelects(SelectWrites::Never);
    Port port(device.PortName());
    const Bytes before = device.Block(0xCE);
    EXPECT_EQ(port.Ask(0xCE, Counting(17)), kTaken);
    EXPECT_EQ(port.Ask(0x33, Counting(17)), kTaken);
    EXPECT_EQ(device.Block(0xCE), before);
}

TEST(Write, Initialise_RestoresTheFactoryContents) {
    Simulator device;
    Port port(device.PortName());
    const Bytes factory = device.Block(0x8D);
    EXPECT_EQ(port.Ask(0x8D, Counting(24)), kTaken);
    EXPECT_EQ(port.Ask(0xF6, {0}), kTaken);
    EXPECT_EQ(device.Block(0x8D), factory);
    EXPECT_TRUE(port.StaysSilent(Frame(0xF6)));
}

class Oldest : public testing::Test {
  protected:
    Oldest() : device(Version("RB26DETT3.11D")), port(device.PortName()) {}
    bool Silent(std::uint8_t code, const Bytes& data = {}) {
        return port.StaysSilent(Frame(code, data), 0x6B);
    }
    Simulator device;
    Port port;
};

TEST_F(Oldest, Cell_OutcomeByACommandOfItsOwn) {
    EXPECT_TRUE(Silent(111));
    port.Send(Frame(49, {20, 0, 17}));
    EXPECT_EQ(port.Ask(111)[0], 111);
    EXPECT_EQ(device.Block(0x52)[20], 17);
    port.Send(Frame(50, {399 % 256, 399 / 256, 99}));
    EXPECT_EQ(port.Ask(111)[0], 111);
    EXPECT_EQ(device.Block(0x59)[99], 99);
    EXPECT_TRUE(Silent(111));  // the outcome is told once
    EXPECT_TRUE(Silent(50, {400 % 256, 400 / 256, 1}));
    EXPECT_TRUE(Silent(111));
}

TEST_F(Oldest, TranslatedCommands_ReachTheirBlocks) {
    struct Row {
        std::uint8_t Command;
        int Block;
        std::size_t Length;
    };
    const Row rows[] = {
        {0x34, 0x5B, 24}, {0x36, 0x5D, 20}, {0x39, 0x5E, 12}, {0x3A, 0x5F, 12}, {0x3B, 0x60, 10}};
    for (const Row& row : rows) {
        EXPECT_TRUE(Silent(static_cast<std::uint8_t>(row.Block), Counting(row.Length))) << row.Block;
        EXPECT_EQ(port.Ask(row.Command, Counting(row.Length)), kTaken) << row.Block;
        EXPECT_EQ(device.Block(row.Block), Counting(row.Length)) << row.Block;
    }
    EXPECT_EQ(port.Ask(0x33, Counting(17)), kTaken);
    EXPECT_EQ(device.Block(0x5A)[0], 1);
    EXPECT_EQ(device.Block(0x5A)[106], 17);
    EXPECT_EQ(port.Ask(0x4B, Counting(5)), kTaken);
    EXPECT_EQ(device.Block(0x65)[4], 5);
    EXPECT_EQ(port.Ask(0x51, Counting(80)), kTaken);  // keeps its own code
    EXPECT_EQ(device.Block(0x51), Counting(80));
}

TEST_F(Oldest, BoostBlock_FourBytesDropOut) {
    const Bytes before = device.Block(0x5C);
    EXPECT_TRUE(Silent(0x35, Counting(13)));
    EXPECT_EQ(port.Ask(0x35, Counting(9)), kTaken);
    const Bytes after = device.Block(0x5C);
    EXPECT_EQ(Bytes(after.begin(), after.begin() + 5), Counting(5));
    EXPECT_TRUE(std::equal(before.begin() + 5, before.begin() + 9, after.begin() + 5));
    EXPECT_EQ(Bytes(after.begin() + 9, after.end()), Counting(4, 6));
}

TEST_F(Oldest, WholeMapBlock_NotTaken) {
    EXPECT_TRUE(Silent(0x56, Counting(100)));
    EXPECT_NE(device.Block(0x56), Counting(100));
}

TEST(Write, SameCommandOnANewerBuild_IsNotTranslated) {
    // This build has block 0x5C too, but its maps lie elsewhere.
    Simulator device(Version("RB26DETT4.08D"));
    Port port(device.PortName());
    EXPECT_TRUE(device.HasBlock(0x5C));
    EXPECT_TRUE(port.StaysSilent(Frame(0x35, Counting(9))));
}

}  // namespace
}  // namespace powerfc
