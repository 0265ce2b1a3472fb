#include "image/accessors.h"

#include <gtest/gtest.h>

#include "image/image.h"
#include "support/cleanstate.h"

namespace zandrel {
namespace {

class Accessors : public CleanState {
  protected:
    Accessors() {
        AfterEdit = [this] { ++edits_; };
    }
    ~Accessors() override {
        AfterEdit = [] {};
    }

    // A block of `size` bytes 0xCC with `bytes` laid in from offset (from 1).
    static void Fill(int block, std::size_t size, std::size_t offset, const ByteString& bytes) {
        ReadData[block] = ByteString(size, '\xCC');
        ReadData[block].replace(offset - 1, bytes.size(), bytes);
    }

    // True if no write has left a trace in block and flags.
    bool NothingChanged(int block) const { return !BlockChanged[block] && !DataChanged && edits_ == 0; }

    static void ForgetChanges() {
        BlockChanged.fill(false);
        DataChanged = false;
    }

    int edits_ = 0;
};

const std::string kInjector = "&H8D,19,2,0.004,0,0.000";

TEST_F(Accessors, NumberField_ShowsScaledValueInItsFormat) {
    Fill(0x8D, 24, 19, "\xE8\x03");
    EXPECT_EQ(GetNumber(kInjector), "4.000");
}

TEST_F(Accessors, NumberDescriptor_TakesBlanksAndFractionsWithoutLeadingZero) {
    Fill(0x8D, 24, 3, "\x01\x80");
    EXPECT_EQ(GetNumber("&H8D,3,2, 0.0030517578125,0,0.0"), "100.0");
    Fill(0x92, 12, 11, ByteString("\xE8\x03", 2));
    EXPECT_EQ(GetNumber("&H92,11,2,.004,0,0.000"), "4.000");
}

TEST_F(Accessors, UnreadBlock_ShowsEmptyAndClearAndTakesNoWrite) {
    EXPECT_EQ(GetNumber(kInjector), "");
    EXPECT_EQ(GetString("&HF3,1,8"), "");
    EXPECT_EQ(GetFlag("&HAD,1,0"), 0);
    EXPECT_EQ(GetBit("&HAC,14,255"), 0);
    EXPECT_FALSE(GetOption("&HCE,1,0,7"));
    SetNumber(kInjector, "4");
    SetFlag("&H8D,1,0", 1);
    SetBit("&H8D,1,255", 1);
    SetOption("&H8D,1,1,7");
    EXPECT_EQ(ReadData[0x8D], "");
    EXPECT_TRUE(NothingChanged(0x8D));
}

TEST_F(Accessors, OffsetPastTheEnd_ReadsEmpty) {
    ReadData[0x8D] = ByteString(18, 'x');
    EXPECT_EQ(GetNumber(kInjector), "");
    SetNumber(kInjector, "4");
    EXPECT_EQ(ReadData[0x8D], ByteString(18, 'x'));
    EXPECT_TRUE(NothingChanged(0x8D));
}

TEST_F(Accessors, SignedByte_ReadsTwosComplement) {
    Fill(0xAD, 8, 2, "\xFE");
    EXPECT_EQ(GetNumber("&HAD,2,129,-1,0,0"), "2");
    EXPECT_EQ(GetNumber("&HAD,2,129,1,0,0"), "-2");
}

TEST_F(Accessors, WordWithOnlyItsFirstByteInTheBlock_ShowsTheValueOffset) {
    ReadData[0x8D] = ByteString(19, '\x7F');
    EXPECT_EQ(GetNumber("&H8D,19,2,0.004,-131.072,0.000"), "-131.072");
}

TEST_F(Accessors, SizeOfALiveItem_ReadsEmptyAndWritesNoByte) {
    Fill(0x8D, 24, 1, "ab");
    EXPECT_EQ(GetNumber("&H8D,1,130,1,0,0"), "");
    const ByteString before = ReadData[0x8D];
    SetNumber("&H8D,1,130,1,0,0", "5");
    SetNumber("&H8D,1,3,1,0,0", "5");
    EXPECT_EQ(ReadData[0x8D], before);
    EXPECT_TRUE(NothingChanged(0x8D));
}

TEST_F(Accessors, EmptyFormat_IsTheGeneralForm) {
    Fill(0x8D, 24, 1, "\x05");
    EXPECT_EQ(GetNumber("&H8D,1,1,0.5,0,"), "2.5");
}

TEST_F(Accessors, BrokenDescriptors_ReadEmptyAndWriteNothing) {
    ReadData[0x8D] = ByteString(24, '\1');
    for (const char* descriptor : {"", "x,1,1,1,0,0", "&H18D,1,1,1,0,0", "-1,1,1,1,0,0", "256,1,1,1,0,0",
                                   "&H8D,x,1,1,0,0", "&H8D,0,1,1,0,0", "&H8D,-3,1,1,0,0", "&H8D,1,x,1,0,0",
                                   "&H8D,1", "&H8D", "&H8D,1e9,1,1,0,0", ",,,,,"}) {
        EXPECT_EQ(GetNumber(descriptor), "") << descriptor;
        SetNumber(descriptor, "7");
        EXPECT_TRUE(NothingChanged(0x8D)) << descriptor;
    }
    for (const char* descriptor :
         {"", "x,1,1,1", "&H18D,1,1,1", "&H8D,x,1,1", "&H8D,0,1,1", "&H8D,1", "&H8D,25,1,1"}) {
        EXPECT_EQ(GetFlag(descriptor), 0) << descriptor;
        EXPECT_EQ(GetBit(descriptor), 0) << descriptor;
        EXPECT_FALSE(GetOption(descriptor)) << descriptor;
        EXPECT_EQ(GetString(descriptor), "") << descriptor;
        SetFlag(descriptor, 0);
        SetBit(descriptor, 0);
        SetOption(descriptor);
        EXPECT_TRUE(NothingChanged(0x8D)) << descriptor;
    }
    EXPECT_EQ(GetBit("&H8D,1,1e300"), 0);
    EXPECT_EQ(GetString("&H8D,1,x"), "");
    EXPECT_EQ(GetString("&H8D,1,-1"), "");
}

TEST_F(Accessors, GetString_TakesBytesOfTheCodePageAndStopsAtTheBlocksEnd) {
    ReadData[0xF3] = "RB26DETT";
    EXPECT_EQ(GetString("&HF3,1,8"), "RB26DETT");
    EXPECT_EQ(GetString("&HF3,5,8"), "DETT");
    ReadData[0xF3] = "\x80\xB0";
    EXPECT_EQ(GetString("&HF3,1,8"), "€°");
}

TEST_F(Accessors, FlagPolarity_ZeroInvertsTheBox) {
    struct Row {
        char Byte;
        const char* Descriptor;
        int Expected;
    };
    for (const Row& row : {Row{0, "&HD6,1,0", 1}, Row{1, "&HD6,1,0", 0}, Row{'\xFF', "&HD6,1,0", 0},
                           Row{0, "&HD6,1,255", 0}, Row{1, "&HD6,1,255", 1}, Row{'\xFF', "&HD6,1,2", 1}}) {
        ReadData[0xD6] = ByteString(1, row.Byte);
        EXPECT_EQ(GetFlag(row.Descriptor), row.Expected) << row.Descriptor << int{row.Byte};
    }
}

TEST_F(Accessors, GetBit_AnyBitOfTheMaskCounts) {
    ReadData[0xAD] = ByteString(1, '\x80');
    EXPECT_EQ(GetBit("&HAD,1,128"), 1);
    EXPECT_EQ(GetBit("&HAD,1,1"), 0);
    EXPECT_EQ(GetBit("&HAD,1,255"), 1);
}

TEST_F(Accessors, GetOption_ComparesTheMaskedByte) {
    ReadData[0xCE] = ByteString(1, '\xF3');
    EXPECT_TRUE(GetOption("&HCE,1,3,7"));
    EXPECT_FALSE(GetOption("&HCE,1,1,7"));
}

TEST_F(Accessors, SetNumber_RoundsTiesToEven) {
    ReadData[0x8D] = ByteString(24, '\0');
    SetNumber(kInjector, "4.002");
    EXPECT_EQ(GetWord(ReadData[0x8D], 19), 1000);
    SetNumber(kInjector, "4.006");
    EXPECT_EQ(GetWord(ReadData[0x8D], 19), 1002);
    EXPECT_TRUE(BlockChanged[0x8D]);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 2);
}

TEST_F(Accessors, SetNumber_ValueAboveTheRange_StoresTheLimit) {
    ReadData[0x8D] = ByteString(4, '\0');
    SetNumber("&H8D,1,1,1,0,0", "300");
    EXPECT_EQ(GetNumber("&H8D,1,1,1,0,0"), "255");
    SetNumber("&H8D,2,129,1,0,0", "300");
    EXPECT_EQ(GetNumber("&H8D,2,129,1,0,0"), "127");
    SetNumber("&H8D,2,129,1,0,0", "-300");
    EXPECT_EQ(GetNumber("&H8D,2,129,1,0,0"), "-128");
    SetNumber("&H8D,3,2,1,0,0", "70000");
    EXPECT_EQ(GetNumber("&H8D,3,2,1,0,0"), "65535");
    SetNumber("&H8D,3,2,1,0,0", "-1");
    EXPECT_EQ(GetNumber("&H8D,3,2,1,0,0"), "0");
}

TEST_F(Accessors, SetNumber_TextThatIsNoNumber_ChangesNothing) {
    ReadData[0x8D] = ByteString(24, '\1');
    for (const char* text : {"", "abc", "1,5", "4 5", "inf", "nan", "1e400", "1e39", "-1e300", "--2"}) {
        SetNumber("&H8D,1,1,1,0,0", text);
        EXPECT_TRUE(NothingChanged(0x8D)) << text;
    }
    SetNumber("&H8D,1,1,0,0,0", "5");  // scale 0
    SetNumber("&H8D,1,1,,0,0", "5");
    EXPECT_TRUE(NothingChanged(0x8D));
}

TEST_F(Accessors, SetNumber_SameBytes_RaiseNoFlag) {
    Fill(0x8D, 24, 19, "\xE8\x03");
    SetNumber(kInjector, "4.001");  // 1000.25 steps
    EXPECT_TRUE(NothingChanged(0x8D));
}

TEST_F(Accessors, SetNumber_SignedByte_StoresTwosComplement) {
    ReadData[0xAD] = ByteString(8, '\0');
    SetNumber("&HAD,2,129,1,0,0", "-1");
    EXPECT_EQ(ReadData[0xAD], ByteString("\0\xFF\0\0\0\0\0\0", 8));
    EXPECT_EQ(GetNumber("&HAD,2,129,1,0,0"), "-1");
}

TEST_F(Accessors, SetNumber_SignedByteUnchanged_CountsAsChangedUnlessItIsTheLast) {
    ReadData[0xAD] = ByteString(8, '\5');
    SetNumber("&HAD,2,129,1,0,0", "5");
    EXPECT_TRUE(BlockChanged[0xAD]);
    ForgetChanges();
    edits_ = 0;
    SetNumber("&HAD,8,129,1,0,0", "5");
    EXPECT_TRUE(NothingChanged(0xAD));
}

TEST_F(Accessors, SetNumber_WordAtTheLastByte_NeverGrowsTheBlock) {
    ReadData[0x8D] = ByteString(19, '\0');
    SetNumber(kInjector, "4");
    EXPECT_EQ(ReadData[0x8D], ByteString(18, '\0') + "\xE8");
}

TEST_F(Accessors, SetFlag_StoresByPolarity) {
    ReadData[0xD6] = ByteString(1, '\xFF');
    SetFlag("&HD6,1,0", 1);
    EXPECT_EQ(ReadData[0xD6], ByteString(1, '\0'));
    SetFlag("&HD6,1,0", 0);
    EXPECT_EQ(ReadData[0xD6], "\xFF");
    SetFlag("&HD6,1,255", 0);
    EXPECT_EQ(ReadData[0xD6], ByteString(1, '\0'));
    SetFlag("&HD6,1,255", 1);
    EXPECT_EQ(ReadData[0xD6], "\xFF");
    EXPECT_EQ(edits_, 4);
}

TEST_F(Accessors, SetFlag_ByteThatMeansTheSame_Stays) {
    ReadData[0xAC] = "\1";
    SetFlag("&HAC,1,255", 1);
    EXPECT_EQ(ReadData[0xAC], "\1");
    EXPECT_TRUE(NothingChanged(0xAC));
}

TEST_F(Accessors, SetBit_ChangesTheMasksBitsAlone) {
    ReadData[0xAC] = "\x0F";
    SetBit("&HAC,1,255", 1);
    EXPECT_EQ(ReadData[0xAC], "\xFF");
    SetBit("&HAC,1,255", 0);
    EXPECT_EQ(ReadData[0xAC], ByteString(1, '\0'));
    SetBit("&HAC,1,4", 1);
    SetBit("&HAC,1,128", 1);
    SetBit("&HAC,1,4", 0);
    EXPECT_EQ(ReadData[0xAC], "\x80");
    edits_ = 0;
    ForgetChanges();
    SetBit("&HAC,1,128", 1);
    EXPECT_TRUE(NothingChanged(0xAC));
}

TEST_F(Accessors, SetOption_ClearsTheBitsOutsideTheMask) {
    ReadData[0xCE] = "\xF3";
    SetOption("&HCE,1,0,7");
    EXPECT_EQ(ReadData[0xCE], ByteString(1, '\0'));
    EXPECT_TRUE(BlockChanged[0xCE]);
}

TEST_F(Accessors, SetOption_AlreadySelected_LeavesTheByte) {
    ReadData[0xCE] = "\xF3";
    SetOption("&HCE,1,3,7");
    EXPECT_EQ(ReadData[0xCE], "\xF3");
    EXPECT_TRUE(NothingChanged(0xCE));
}

class Cells : public Accessors {
  protected:
    Cells() {
        MapFirstBlock[0] = 0x86;
        MapCellSize[0] = 1;
        MapFirstBlock[1] = 0xB0;
        MapCellSize[1] = 2;
        for (int b = 0x86; b < 0x8A; ++b) ReadData[b] = ByteString(100, '\0');
        for (int b = 0xB0; b < 0xB8; ++b) ReadData[b] = ByteString(100, '\0');
    }
};

TEST_F(Cells, PlaceOfCell_RunsDownTheColumns) {
    const CellPlace first = PlaceOfCell(0, 1, 1);
    EXPECT_EQ(first.Block, 0x86);
    EXPECT_EQ(first.Offset, 1);
    const CellPlace second = PlaceOfCell(0, 2, 1);
    EXPECT_EQ(second.Offset, 2);
    const CellPlace sixth = PlaceOfCell(0, 1, 6);
    EXPECT_EQ(sixth.Block, 0x87);
    EXPECT_EQ(sixth.Offset, 1);
    const CellPlace last = PlaceOfCell(1, 20, 20);
    EXPECT_EQ(last.Block, 0xB7);
    EXPECT_EQ(last.Offset, 99);
}

TEST_F(Cells, GetCell_ReadsOneAndTwoBytes) {
    ReadData[0x87][0] = '\x80';
    EXPECT_EQ(GetCell(0, 1, 6, false), 128);
    ReadData[0xB7][98] = '\x34';
    ReadData[0xB7][99] = '\x12';
    EXPECT_EQ(GetCell(1, 20, 20, false), 0x1234);
}

TEST_F(Cells, BlockShorterThanAMapBlock_ReadsZero) {
    ReadData[0x86] = ByteString(99, '\x7F');
    EXPECT_EQ(GetCell(0, 1, 1, false), 0);
}

TEST_F(Cells, CompareCells_ComeFromTheOtherTableWithinItsBounds) {
    MapCompare[0][20][20] = 77;
    MapCompare[0][0][0] = 5;
    EXPECT_EQ(GetCell(0, 20, 20, true), 77);
    EXPECT_EQ(GetCell(0, 0, 0, true), 5);
    EXPECT_EQ(GetCell(0, 21, 1, true), 0);
    EXPECT_EQ(GetCell(0, 1, -1, true), 0);
    EXPECT_EQ(GetCell(7, 1, 1, true), 0);
    EXPECT_EQ(GetCell(-1, 1, 1, false), 0);
}

TEST_F(Cells, SetCell_WritesAndRaisesAllThreeFlags) {
    SetCell(0, 1, 6, 200);
    EXPECT_EQ(GetCell(0, 1, 6, false), 200);
    EXPECT_TRUE(MapCellChanged[0][1][6]);
    EXPECT_TRUE(BlockChanged[0x87]);
    EXPECT_FALSE(BlockChanged[0x86]);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 1);
}

TEST_F(Cells, SetCell_SameValue_RaisesNothing) {
    SetCell(0, 1, 1, 0);
    EXPECT_FALSE(MapCellChanged[0][1][1]);
    EXPECT_TRUE(NothingChanged(0x86));
}

TEST_F(Cells, SetCell_OverLargeWord_KeepsItsLowByteAnd255) {
    SetCell(1, 1, 1, 0x12345);
    EXPECT_EQ(GetCell(1, 1, 1, false), 0xFF45);
}

TEST_F(Cells, SetCell_OutOfRangeByte_IsClamped) {
    SetCell(0, 1, 1, 300);
    EXPECT_EQ(GetCell(0, 1, 1, false), 255);
    SetCell(0, 1, 1, -1);
    EXPECT_EQ(GetCell(0, 1, 1, false), 0);
}

TEST_F(Cells, SetCell_UnreadBlockOrNoCell_LeavesNoTrace) {
    ReadData[0x86].clear();
    SetCell(0, 1, 1, 5);
    SetCell(0, 0, 1, 5);
    SetCell(0, 1, 21, 5);
    SetCell(9, 1, 1, 5);
    SetCell(1, 1, 1, -1);  // no byte stands for the remainder
    EXPECT_TRUE(NothingChanged(0x86));
    EXPECT_TRUE(NothingChanged(0xB0));
}

TEST(Clamps, LimitsAndTies) {
    EXPECT_EQ(ClampByte(-0.1F), 0);
    EXPECT_EQ(ClampByte(2.5F), 2);
    EXPECT_EQ(ClampByte(3.5F), 4);
    EXPECT_EQ(ClampByte(255.4F), 255);
    EXPECT_EQ(ClampByte(1e30F), 255);
    EXPECT_EQ(ClampSignedByte(-129), -128);
    EXPECT_EQ(ClampSignedByte(-2.5F), -2);
    EXPECT_EQ(ClampSignedByte(127.6F), 127);
    EXPECT_EQ(ClampWord(-5), 0);
    EXPECT_EQ(ClampWord(1000.5F), 1000);
    EXPECT_EQ(ClampWord(65535.9F), 65535);
}

TEST(GetWord, PositionsCountFromOneAndBothBytesMustBeThere) {
    const ByteString bytes("\xE8\x03\x01", 3);
    EXPECT_EQ(GetWord(bytes, 1), 1000);
    EXPECT_EQ(GetWord(bytes, 2), 0x103);
    EXPECT_EQ(GetWord(bytes, 3), 0);
    EXPECT_EQ(GetWord(bytes, 4), 0);
    EXPECT_EQ(GetWord(bytes, 0), 0);
    EXPECT_EQ(GetWord("", 1), 0);
}

TEST(ToSigned, UpperHalfIsNegative) {
    EXPECT_EQ(ToSigned(127), 127);
    EXPECT_EQ(ToSigned(128), -128);
    EXPECT_EQ(ToSigned(255), -1);
}

}  // namespace
}  // namespace zandrel
