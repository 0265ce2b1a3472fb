#include "image/history.h"

#include <gtest/gtest.h>

#include <optional>

#include "image/accessors.h"
#include "image/image.h"
#include "support/cleanstate.h"

namespace zandrel {
namespace {

class History : public CleanState {
  protected:
    History() {
        before_ = std::move(AfterEdit);
        AfterEdit = [this] { ++edits_; };
        ReadData[0x8D] = ByteString(24, '\x10');
        ReadData[0x92] = ByteString(12, '\x20');
        MapFirstBlock[0] = 0x86;
        MapCellSize[0] = 1;
        MapFirstBlock[1] = 0xB0;
        MapCellSize[1] = 2;
        for (const int block : {0x86, 0x87, 0x88, 0x89}) ReadData[block] = ByteString(100, '\x30');
        for (int block = 0xB0; block <= 0xB7; ++block) ReadData[block] = ByteString(100, '\x40');
    }
    ~History() override { AfterEdit = std::move(before_); }

    static void ForgetFlags() {
        BlockChanged.fill(false);
        MapCellChanged = {};
        DataChanged = false;
    }

    /// The map that Undo or Redo names; no value where it changed nothing.
    static std::optional<int> Back() {
        int map = -99;
        return Undo(map) ? std::optional(map) : std::nullopt;
    }
    static std::optional<int> Again() {
        int map = -99;
        return Redo(map) ? std::optional(map) : std::nullopt;
    }

    static int Steps() {
        int steps = 0;
        int map = -1;
        for (; CanUndo(); ++steps) Undo(map);
        return steps;
    }

    int edits_ = 0;

  private:
    std::function<void()> before_;
};

constexpr const char* kByte = "&H8D,3,1,1,0,0";
constexpr const char* kOther = "&H92,5,1,1,0,0";

TEST_F(History, Empty_HasNothingToUndoOrRedo) {
    EXPECT_FALSE(CanUndo());
    EXPECT_FALSE(CanRedo());
    EXPECT_EQ(UndoName(), "");
    EXPECT_EQ(RedoName(), "");
    EXPECT_EQ(Back(), std::nullopt);
    EXPECT_EQ(Again(), std::nullopt);
    EXPECT_EQ(edits_, 0);
    EXPECT_FALSE(DataChanged);
}

TEST_F(History, EveryWriteAccessor_MakesAStepOfItsOwn) {
    const auto whole = ReadData;
    SetNumber(kByte, "7");
    SetFlag("&H8D,4,1", 0);
    SetBit("&H8D,5,1", 1);
    SetOption("&H8D,6,2,7");
    SetCell(0, 1, 1, 9);
    SetCell(1, 20, 20, 1000);
    ReplaceBlock(0x92, "12345678");
    EXPECT_EQ(edits_, 7);
    const auto edited = ReadData;
    EXPECT_EQ(Steps(), 7);
    EXPECT_EQ(ReadData, whole);
    for (int k = 0; k < 7; ++k) EXPECT_TRUE(Again()) << k;
    EXPECT_EQ(ReadData, edited);
    EXPECT_FALSE(CanRedo());
}

TEST_F(History, WriteOutsideAnyGesture_IsCalledEdit) {
    SetNumber(kByte, "7");
    EXPECT_EQ(UndoName(), "Edit");
}

TEST_F(History, Gesture_IsOneStepAndOneNotice) {
    const auto whole = ReadData;
    {
        const Gesture gesture("Paste");
        SetNumber(kByte, "7");
        SetNumber(kOther, "8");
        SetNumber(kByte, "9");
        EXPECT_EQ(edits_, 0);
        EXPECT_FALSE(CanUndo());
    }
    EXPECT_EQ(edits_, 1);
    EXPECT_EQ(UndoName(), "Paste");
    EXPECT_EQ(Back(), -1);
    EXPECT_EQ(edits_, 2);
    EXPECT_EQ(ReadData, whole);
    EXPECT_FALSE(CanUndo());
    EXPECT_EQ(RedoName(), "Paste");
    EXPECT_EQ(Again(), -1);
    EXPECT_EQ(edits_, 3);
    EXPECT_EQ(ReadData[0x8D][2], 9);
    EXPECT_EQ(ReadData[0x92][4], 8);
}

TEST_F(History, GestureThatChangesNothing_LeavesNoStepAndNoNotice) {
    {
        const Gesture gesture("Setting");
        SetNumber(kByte, "16");
        SetNumber(kByte, "abc");
    }
    EXPECT_FALSE(CanUndo());
    EXPECT_EQ(edits_, 0);
}

TEST_F(History, NestedGestures_AreTheOutermostOne) {
    const auto whole = ReadData;
    {
        const Gesture outer("Paste");
        {
            const Gesture inner("Values");
            SetNumber(kByte, "7");
        }
        EXPECT_EQ(edits_, 0);
        EXPECT_FALSE(CanUndo());
        {
            const Gesture inner("Values");
            SetNumber(kOther, "8");
        }
    }
    EXPECT_EQ(edits_, 1);
    EXPECT_EQ(UndoName(), "Paste");
    EXPECT_TRUE(Back());
    EXPECT_EQ(ReadData, whole);
}

TEST_F(History, GestureAfterAnotherOne_HasItsOwnName) {
    {
        const Gesture gesture("Step");
        SetNumber(kByte, "7");
    }
    {
        const Gesture gesture("Scale");
        SetNumber(kByte, "8");
    }
    EXPECT_EQ(UndoName(), "Scale");
    EXPECT_TRUE(Back());
    EXPECT_EQ(UndoName(), "Step");
    EXPECT_EQ(RedoName(), "Scale");
}

TEST_F(History, UndoAndRedoWithinAGesture_AreRefused) {
    SetNumber(kByte, "7");
    SetNumber(kByte, "8");
    EXPECT_TRUE(Back());
    {
        const Gesture gesture("Paste");
        EXPECT_EQ(Back(), std::nullopt);
        EXPECT_EQ(Again(), std::nullopt);
    }
    EXPECT_EQ(ReadData[0x8D][2], 7);
    EXPECT_TRUE(CanUndo());
    EXPECT_TRUE(CanRedo());
}

TEST_F(History, UndoAndRedo_RaiseTheFlagsOfASetting) {
    SetNumber(kByte, "7");
    for (int k = 0; k < 2; ++k) {
        ForgetFlags();
        edits_ = 0;
        EXPECT_EQ(k == 0 ? Back() : Again(), -1);
        for (int block = 0; block < 256; ++block) EXPECT_EQ(BlockChanged[block], block == 0x8D) << block;
        EXPECT_TRUE(DataChanged);
        EXPECT_EQ(edits_, 1);
        EXPECT_EQ(MapCellChanged, MapTable<bool>{});
    }
}

TEST_F(History, UndoAndRedo_RaiseTheFlagOfEachCellAndNoOther) {
    {
        const Gesture gesture("Step");
        SetCell(1, 3, 4, 1000);
        SetCell(1, 20, 20, 1000);
    }
    MapTable<bool> expected{};
    expected[1][3][4] = expected[1][20][20] = true;
    for (int k = 0; k < 2; ++k) {
        ForgetFlags();
        edits_ = 0;
        EXPECT_EQ(k == 0 ? Back() : Again(), 1);
        EXPECT_EQ(MapCellChanged, expected);
        for (int block = 0; block < 256; ++block)
            EXPECT_EQ(BlockChanged[block], block == 0xB1 || block == 0xB7) << block;
        EXPECT_TRUE(DataChanged);
        EXPECT_EQ(edits_, 1);
    }
}

TEST_F(History, StepOverTwoMapsOrASetting_NamesNoMap) {
    {
        const Gesture gesture("ReCalc Base");
        SetCell(0, 1, 1, 1);
        SetCell(1, 1, 1, 1);
    }
    {
        const Gesture gesture("Mixed");
        SetCell(0, 1, 2, 1);
        SetNumber(kByte, "7");
    }
    EXPECT_EQ(Back(), -1);
    EXPECT_EQ(Back(), -1);
    EXPECT_EQ(Again(), -1);
}

TEST_F(History, SameByteChangedTwiceInAGesture_ComesBackToTheFirstValue) {
    {
        const Gesture gesture("Values");
        for (int raw = 1; raw <= 50; ++raw) SetCell(0, 1, 1, raw);
    }
    EXPECT_EQ(Back(), 0);
    EXPECT_EQ(GetCell(0, 1, 1, false), 0x30);
    EXPECT_EQ(Again(), 0);
    EXPECT_EQ(GetCell(0, 1, 1, false), 50);
}

TEST_F(History, NewEdit_DropsWhatCouldBeRedone) {
    SetNumber(kByte, "7");
    SetNumber(kByte, "8");
    EXPECT_TRUE(Back());
    EXPECT_TRUE(CanRedo());
    SetNumber(kOther, "9");
    EXPECT_FALSE(CanRedo());
    EXPECT_EQ(Again(), std::nullopt);
    EXPECT_EQ(ReadData[0x8D][2], 7);
    EXPECT_EQ(Steps(), 2);
}

TEST_F(History, EditThatChangesNothing_KeepsWhatCouldBeRedone) {
    SetNumber(kByte, "7");
    EXPECT_TRUE(Back());
    SetNumber(kByte, "16");
    SetNumber(kByte, "letters");
    SetNumber("&HC0,1,1,1,0,0", "5");
    EXPECT_TRUE(CanRedo());
}

// A signed byte compares with the rest of its block: typing what it holds raises its flags.
TEST_F(History, SignedByteStoredAnew_RaisesItsFlagsAndMakesNoStep) {
    SetNumber("&H8D,3,129,1,0,0", "16");
    EXPECT_TRUE(BlockChanged[0x8D]);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 1);
    EXPECT_FALSE(CanUndo());
    SetNumber("&H8D,3,129,1,0,0", "-1");
    EXPECT_EQ(Steps(), 1);
    SetNumber("&H8D,3,129,1,0,0", "16");
    EXPECT_TRUE(CanRedo());  // nothing new that would stand in its way
}

TEST_F(History, BlockReplacedMeanwhile_StaysAsItIs) {
    struct Row {
        const char* Name;
        ByteString Block;
    };
    for (const Row& row : {Row{"empty", ""}, Row{"ends before the byte", ByteString(2, '\x10')},
                           Row{"one byte", "x"}, Row{"another value", ByteString(24, '\x55')}}) {
        ClearHistory();
        ReadData[0x8D] = ByteString(24, '\x10');
        SetNumber(kByte, "7");
        ReadData[0x8D] = row.Block;
        ForgetFlags();
        edits_ = 0;
        EXPECT_EQ(Back(), std::nullopt) << row.Name;
        EXPECT_EQ(ReadData[0x8D], row.Block) << row.Name;
        EXPECT_EQ(Again(), std::nullopt) << row.Name;
        EXPECT_EQ(ReadData[0x8D], row.Block) << row.Name;
        EXPECT_FALSE(BlockChanged[0x8D]) << row.Name;
        EXPECT_FALSE(DataChanged) << row.Name;
        EXPECT_EQ(edits_, 0) << row.Name;
    }
}

TEST_F(History, WordOfWhichOnlyOneByteIsLeft_StaysAsItIs) {
    SetCell(1, 1, 5, 1000);
    ReadData[0xB0] = ByteString("\xE8", 1);
    ReadData[0xB1].clear();
    EXPECT_EQ(Back(), std::nullopt);
    EXPECT_EQ(ReadData[0xB0], ByteString("\xE8", 1));
    EXPECT_EQ(ReadData[0xB1], "");
}

TEST_F(History, OneBlockOfAStepReplaced_TheOthersComeBack) {
    {
        const Gesture gesture("Values");
        SetNumber(kByte, "7");
        SetNumber(kOther, "8");
    }
    ReadData[0x8D] = ByteString(24, '\x55');
    ForgetFlags();
    EXPECT_TRUE(Back());
    EXPECT_EQ(ReadData[0x8D], ByteString(24, '\x55'));
    EXPECT_FALSE(BlockChanged[0x8D]);
    EXPECT_EQ(ReadData[0x92], ByteString(12, '\x20'));
    EXPECT_TRUE(BlockChanged[0x92]);
}

TEST_F(History, ClearHistory_LeavesNoWayBackOrForth) {
    SetNumber(kByte, "7");
    SetNumber(kByte, "8");
    EXPECT_TRUE(Back());
    ClearHistory();
    EXPECT_FALSE(CanUndo());
    EXPECT_FALSE(CanRedo());
    EXPECT_EQ(Back(), std::nullopt);
    EXPECT_EQ(Again(), std::nullopt);
    EXPECT_EQ(ReadData[0x8D][2], 7);
}

TEST_F(History, ClearHistoryWithinAGesture_ForgetsItsFirstPartAlone) {
    {
        const Gesture gesture("Values");
        SetNumber(kByte, "7");
        ClearHistory();
        SetNumber(kOther, "8");
    }
    EXPECT_EQ(edits_, 1);
    EXPECT_TRUE(Back());
    EXPECT_EQ(ReadData[0x8D][2], 7);
    EXPECT_EQ(ReadData[0x92][4], 0x20);
}

TEST_F(History, MoreStepsThanAreKept_LoseTheOldest) {
    for (int k = 0; k < 301; ++k) SetNumber(kByte, std::to_string(k % 2 == 0 ? 17 : 18));
    EXPECT_EQ(Steps(), 300);
    EXPECT_EQ(ReadData[0x8D][2], 17);  // the first of them stays done
    for (int k = 0; k < 300; ++k) ASSERT_TRUE(Again()) << k;
    EXPECT_FALSE(CanRedo());
    EXPECT_EQ(ReadData[0x8D][2], 17);
}

TEST_F(History, ReplacedBlockOfAnotherLength_ComesBackWhole) {
    for (const ByteString& bytes :
         {ByteString("12345678"), ByteString(100, 'x'), ByteString(1, 'y'), ByteString()}) {
        ForgetFlags();
        ReplaceBlock(0x92, bytes);
        EXPECT_EQ(ReadData[0x92], bytes);
        EXPECT_TRUE(BlockChanged[0x92]);
        EXPECT_TRUE(DataChanged);
        EXPECT_TRUE(Back());
        EXPECT_EQ(ReadData[0x92], ByteString(12, '\x20'));
        EXPECT_TRUE(Again());
        EXPECT_EQ(ReadData[0x92], bytes);
        EXPECT_TRUE(Back());
    }
}

TEST_F(History, UnreadBlockReplaced_IsUnreadAgainAfterUndo) {
    ReplaceBlock(0xAD, "12345678");
    EXPECT_TRUE(Back());
    EXPECT_EQ(ReadData[0xAD], "");
    EXPECT_TRUE(Again());
    EXPECT_EQ(ReadData[0xAD], "12345678");
}

TEST_F(History, BlockReplacedByTheSame_RaisesItsFlagsAndMakesNoStep) {
    ReplaceBlock(0x92, ByteString(12, '\x20'));
    EXPECT_TRUE(BlockChanged[0x92]);
    EXPECT_TRUE(DataChanged);
    EXPECT_EQ(edits_, 1);
    EXPECT_FALSE(CanUndo());
}

TEST_F(History, EditDoneInAGesture_IsTheOneNoticeAtItsEnd) {
    {
        const Gesture gesture("Step");
        EditDone();
        EditDone();
        EXPECT_EQ(edits_, 0);
    }
    EXPECT_EQ(edits_, 1);
    EditDone();
    EXPECT_EQ(edits_, 2);
    { const Gesture gesture("Step"); }
    EXPECT_EQ(edits_, 2);
}

TEST_F(History, NoticeAtTheEndOfAGesture_FindsTheStepClosed) {
    bool could = false;
    AfterEdit = [&could] { could = CanUndo(); };
    {
        const Gesture gesture("Step");
        SetNumber(kByte, "7");
    }
    EXPECT_TRUE(could);
}

}  // namespace
}  // namespace zandrel
