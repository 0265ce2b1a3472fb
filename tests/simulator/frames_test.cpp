#include "simulator/frames.h"

#include <gtest/gtest.h>

namespace powerfc {
namespace {

TEST(Frame, BareRequest_ThreeBytes) {
    EXPECT_EQ(ToHex(Frame(0x8D)), "8D0270");
}

TEST(Frame, WithData_SumsTo255) {
    EXPECT_EQ(ToHex(Frame(0x8D, {1, 2})), "8D0401026B");
    EXPECT_EQ(SumOf(Frame(0x33, Bytes(253, 0xCC))), 255);
}

TEST(Hex, BothWays_AndStopsAtAWrongDigit) {
    EXPECT_EQ(FromHex("00ffA5"), (Bytes{0x00, 0xFF, 0xA5}));
    EXPECT_EQ(FromHex("12G4"), (Bytes{0x12}));
    EXPECT_EQ(ToHex({0x00, 0xFF, 0xA5}), "00FFA5");
}

TEST(WireTime, TenBitsAByte) {
    EXPECT_EQ(WireTimeUs(1), 174);
    EXPECT_EQ(WireTimeUs(5760), 1'000'000);
    EXPECT_EQ(WireTimeNs(3), 520'833);
}

std::optional<Request> Only(const Bytes& bytes) {
    FrameReader reader;
    reader.Feed(bytes.data(), bytes.size(), 10, 20);
    return reader.Next();
}

TEST(FrameReader, GoodFrame_Whole) {
    const auto request = Only(Frame(0x8D, {1, 2}));
    ASSERT_TRUE(request);
    EXPECT_FALSE(request->Malformed);
    EXPECT_EQ(ToHex(request->Data), "8D0401026B");
    EXPECT_EQ(request->FirstNs, 10);
    EXPECT_EQ(request->LastNs, 20);
}

TEST(FrameReader, ByteByByte_OneFrameAtTheEnd) {
    FrameReader reader;
    const Bytes frame = Frame(0x86, Bytes(100, 0x55));
    for (std::size_t i = 0; i < frame.size(); ++i) {
        EXPECT_FALSE(reader.Next()) << i;
        reader.Feed(&frame[i], 1, static_cast<int>(i), static_cast<int>(i));
    }
    const auto request = reader.Next();
    ASSERT_TRUE(request);
    EXPECT_EQ(request->Data, frame);
    EXPECT_EQ(request->FirstNs, 0);
    EXPECT_EQ(request->LastNs, 102);
    EXPECT_FALSE(reader.Pending());
}

TEST(FrameReader, TwoFramesAtOnce_BothInOrder) {
    FrameReader reader;
    Bytes both = Frame(0xF3);
    const Bytes second = Frame(0xF5);
    both.insert(both.end(), second.begin(), second.end());
    reader.Feed(both.data(), both.size(), 0, 0);
    EXPECT_EQ(reader.Next()->Data[0], 0xF3);
    EXPECT_EQ(reader.Next()->Data[0], 0xF5);
    EXPECT_FALSE(reader.Next());
}

TEST(FrameReader, SpoiltFrames_Malformed) {
    const char* const rows[] = {
        "8D0271",      // checksum one too many
        "8D026F",      // one too few
        "8D0070",      // length 0
        "8D0171",      // length 1
        "8D040102",    // short by one byte, given up below
        "8E0401026B",  // code turned over
        "8D",          // a single byte
    };
    for (const char* row : rows) {
        FrameReader reader;
        const Bytes bytes = FromHex(row);
        reader.Feed(bytes.data(), bytes.size(), 0, 0);
        auto request = reader.Next();
        if (!request) request = reader.GiveUp();
        ASSERT_TRUE(request) << row;
        EXPECT_TRUE(request->Malformed) << row;
        EXPECT_EQ(request->Data, bytes) << row;
        EXPECT_FALSE(reader.Pending()) << row;
    }
}

TEST(SplitKey, AtOneCharacterBeforeTheDot) {
    struct Row {
        const char *Key, *Engine, *Number;
    };
    const Row rows[] = {
        {"RB26DETT6.42", "RB26DETT", "6.42"},
        {"RB26_1-D7.34A", "RB26_1-D", "7.34A"},
        {"RB26 Pro4.30", "RB26 Pro", "4.30"},
        {"4A-GE11.14A", "4A-GE1", "1.14A"},
        {"13B13.01", "13B1", "3.01"},
        {"NODOT", "NODOT", ""},
        {"NOSUCHENGINE9.99ABC", "NOSUCHEN", "9.99A"},
        {".5", "", ".5"},
    };
    for (const Row& row : rows) {
        const VersionKey key = SplitKey(row.Key);
        EXPECT_EQ(key.Engine, row.Engine) << row.Key;
        EXPECT_EQ(key.Number, row.Number) << row.Key;
    }
}

}  // namespace
}  // namespace powerfc
