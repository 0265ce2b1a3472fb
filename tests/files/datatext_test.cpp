#include "files/datatext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "simulator/simulator.h"
#include "support/cleanstate.h"

namespace zandrel {
namespace {

using namespace std::string_literals;

const std::string kGolden = std::string(ZANDREL_TEST_DATA) + "/golden/";

DataText Parse(std::string_view bytes) {
    DataText data;
    ParseDataText(bytes, data);
    return data;
}

std::string Digits(const ByteString& bytes) {
    return powerfc::ToHex(powerfc::Bytes(bytes.begin(), bytes.end()));
}

// Every record of the text as "block=digits", in the order of the blocks.
std::string Records(std::string_view bytes) {
    const DataText data = Parse(bytes);
    std::string records;
    for (std::size_t b = 0; b < data.Blocks.size(); ++b) {
        EXPECT_EQ(data.Present[b], !data.Blocks[b].empty()) << b;
        if (data.Blocks[b].empty()) continue;
        records += powerfc::ToHex({static_cast<std::uint8_t>(b)}) + "=" + Digits(data.Blocks[b]) + " ";
    }
    if (!records.empty()) records.pop_back();
    return records;
}

TEST(DataText, SmallImage_IsWrittenAsTheGoldenFileByteForByte) {
    std::array<ByteString, 256> blocks;
    blocks[0xF5] = "\x07";
    blocks[0xF3] = "ABC";
    const std::string golden = FileBytes(kGolden + "small.dat");
    ASSERT_EQ(golden.size(), 23U);
    EXPECT_EQ(FormatDataText(blocks, "abc"), golden);
    const DataText read = Parse(golden);
    EXPECT_EQ(read.Blocks, blocks);
    EXPECT_EQ(read.Notes, "abc\r\n");
}

TEST(DataText, WriterGivesUpperCasePairsInAscendingBlocksWithoutEmptyOnes) {
    std::array<ByteString, 256> blocks;
    blocks[0xFF] = "\xAB\xCD\xEF";
    blocks[0x00] = "\x00\x0A"s;
    blocks[0x9A] = "\xFF";
    EXPECT_EQ(FormatDataText(blocks, ""), "00000A\r\n9AFF\r\nFFABCDEF\r\n");
    EXPECT_EQ(FormatDataText({}, ""), "");
}

TEST(DataText, EveryByteAndEveryBlock_AreWrittenAndReadAsTheyAre) {
    std::array<ByteString, 256> blocks;
    std::string expected;
    ByteString all;
    for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
    for (std::size_t b = 0; b < 256; ++b) {
        std::rotate(all.begin(), all.begin() + 1, all.end());
        blocks[b] = all;
        expected += powerfc::ToHex({static_cast<std::uint8_t>(b)}) + Digits(all) + "\r\n";
    }
    EXPECT_EQ(FormatDataText(blocks, ""), expected);
    EXPECT_EQ(Parse(expected).Blocks, blocks);
}

TEST(DataText, RandomImages_SurviveExactly) {
    std::mt19937 random(20);
    for (int round = 0; round < 200; ++round) {
        std::array<ByteString, 256> blocks;
        for (ByteString& block : blocks) {
            block.resize(random() % 4 == 0 ? 0 : random() % 300);
            for (char& c : block) c = static_cast<char>(random());
        }
        ASSERT_EQ(Parse(FormatDataText(blocks, "notes")).Blocks, blocks) << round;
    }
}

struct LineRow {
    const char* Name;
    std::string Bytes;
    std::string Records;
};

TEST(DataText, EveryKindOfLine_ReadsAsTold) {
    const LineRow rows[] = {
        {"lower case", "f3ab\r\n", "F3=AB"},
        {"mixed case", "fEaB0c\r\n", "FE=AB0C"},
        {"no line end at the end", "F3AB", "F3=AB"},
        {"LF alone", "F3AB\nF501\n", "F3=AB F5=01"},
        {"CR alone", "F3AB\rF501\r", "F3=AB F5=01"},
        {"all line ends mixed", "F3AB\r\nF501\nF602\rF703\n\r\nF804", "F3=AB F5=01 F6=02 F7=03 F8=04"},
        {"odd number of digits", "F3ABC\r\n", "F3=AB0C"},
        {"an odd last digit that is none", "F3ABX\r\n", "F3=AB00"},
        {"two characters of data are the least", "F30\r\n", ""},
        {"block number alone", "F3\r\n", ""},
        {"one character", "F\r\n", ""},
        {"empty lines", "\r\n\n\r\r\n", ""},
        {"empty file", "", ""},
        {"blank lines are blocks of zeros", "    \r\n", "00=00"},
        {"pair of no digits", "F3ZZ01\r\n", "F3=0001"},
        {"pair of one leading digit", "F34Z01\r\n", "F3=0401"},
        {"pair with its digit behind", "F3Z401\r\n", "F3=0001"},
        {"first pair no number", "ZZ0102\r\n", "00=0102"},
        {"first pair of one digit", "7Z0102\r\n", "07=0102"},
        {"last record wins", "F30102\r\nF501\r\nF303\r\n", "F3=03 F5=01"},
        {"notes in lower case are a block", "ttAB\r\n", "00=AB"},
        {"a sign is no digit", "-1+2\r\n", "00=00"},
        {"a prefix is no number", "&HF3\r\n", "00=F3"},
        {"byte order mark before the first record",
         "\xEF\xBB\xBF"
         "F3AB\r\n",
         "00=003A0B"},
        {"NUL bytes", "F3\0\0AB\r\n"s, "F3=00AB"},
        {"NUL bytes alone", "\0\0\0\0\0"s, "00=0000"},
        {"UTF-16",
         "\xFF\xFE"
         "F\0"
         "3\0"
         "A\0"s,
         "00=0F030A"},
        {"bytes above ASCII", "\xFC\xFC\xFC\xFC\n", "00=00"},
        {"end mark of old systems", "F3AB\r\n\x1A", "F3=AB"},
        {"data behind notes", "TTa\r\nF3AB\r\n", "F3=AB"},
    };
    for (const LineRow& row : rows) EXPECT_EQ(Records(row.Bytes), row.Records) << row.Name;
}

TEST(DataText, NoteLines_EndWithCrLfEach) {
    EXPECT_EQ(Parse("TTabc").Notes, "abc\r\n");
    EXPECT_EQ(Parse("TT").Notes, "\r\n");
    EXPECT_EQ(Parse("TTa\nTTb\rTTc\r\n").Notes, "a\r\nb\r\nc\r\n");
    EXPECT_EQ(Parse("TT a TT\r\n").Notes, " a TT\r\n");
    EXPECT_EQ(Parse("T\r\nTXab\r\n").Notes, "");
}

TEST(DataText, NotesGainALineEndWithEachLoadAndALineWithEachSave) {
    EXPECT_EQ(FormatDataText({}, "a\r\nb"), "TTa\r\nTTb\r\n");
    EXPECT_EQ(Parse("TTa\r\nTTb\r\n").Notes, "a\r\nb\r\n");
    EXPECT_EQ(FormatDataText({}, "a\r\nb\r\n"), "TTa\r\nTTb\r\nTT\r\n");
    EXPECT_EQ(Parse("TTa\r\nTTb\r\nTT\r\n").Notes, "a\r\nb\r\n\r\n");
    EXPECT_EQ(FormatDataText({}, "\r\n"), "TT\r\nTT\r\n");
}

TEST(DataText, NotesAreInTheCodePage) {
    EXPECT_EQ(FormatDataText({}, "10\u20AC caf\u00E9 \u201Ea\u201C"),
              "TT10\x80 caf\xE9 \x84"
              "a\x93\r\n");
    EXPECT_EQ(Parse("TT10\x80 caf\xE9 \x84"
                    "a\x93")
                  .Notes,
              "10\u20AC caf\u00E9 \u201Ea\u201C\r\n");
    // What the code page lacks becomes a question mark, one to a character.
    EXPECT_EQ(FormatDataText({}, "\u30C1\u30E5"), "TT??\r\n");
    std::string all;
    for (int c = 1; c < 256; ++c) {
        if (c != '\r' && c != '\n') all += static_cast<char>(c);
    }
    EXPECT_EQ(FormatDataText({}, Parse("TT" + all).Notes), "TT" + all + "\r\nTT\r\n");
}

// A note that was pasted with the line ends of another system made a block of what stood behind them.
TEST(DataText, ForeignLineEndInTheNotes_MakesNoBlock) {
    for (const char* end : {"\n", "\r"}) {
        const std::string text = FormatDataText({}, std::string("see") + end + "F3414243" + end);
        EXPECT_EQ(text, "TTsee\r\nTTF3414243\r\nTT\r\n");
        EXPECT_EQ(Records(text), "");
    }
}

}  // namespace
}  // namespace zandrel
