#include <gtest/gtest.h>

#include <cmath>

#include "tuning/mapediting.h"
#include "tuning/mapfixture.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class ReCalcBase : public MapFixture {
  protected:
    // Every cell another raw value, so that none can stand in for its neighbour.
    void FillMaps() {
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column) {
                SetCell(0, row, column, (row * 37 + column * 11) % 256);
                SetCell(BaseMapIndex, row, column, 100 + 97 * row + 1501 * column);
                if (BaseMapIndex + 1 < kMapTabs && SSTab1.TabVisible[BaseMapIndex + 1])
                    SetCell(BaseMapIndex + 1, row, column, 200 + 53 * row + 701 * column);
            }
        }
        Begin();
    }

    // The base cell times the factor as the injection map shows it: thousandths.
    static int Folded(int base, int injection) {
        const double shown = std::nearbyint((injection / 256.0 + 0.5) * 1000) / 1000;
        return static_cast<int>(std::nearbyint(base * shown));
    }
};

TEST_F(ReCalcBase, EveryCell_TakesTheFactorThatTheInjectionMapShows) {
    Read(kWithBase);
    FillMaps();
    CellTable<int> injection{}, base{};
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            injection[row][column] = Raw(0, row, column);
            base[row][column] = Raw(BaseMapIndex, row, column);
        }
    }
    mnuReCalcBase_Click();
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            EXPECT_EQ(Raw(BaseMapIndex, row, column), Folded(base[row][column], injection[row][column]))
                << row << "," << column;
            EXPECT_EQ(Raw(0, row, column), 128) << row << "," << column;
            EXPECT_EQ(Text(0, row, column), "1.000") << row << "," << column;
        }
    }
    EXPECT_TRUE(ShowsWhatIsStored(BaseMapIndex));
}

// 0.50390625 shows as 0.504: the last digit of the result rests on that.
TEST_F(ReCalcBase, Factor_IsTheRoundedOne) {
    Read(kWithBase);
    Put(0, 1, 1, 1);
    Put(BaseMapIndex, 1, 1, 10000);
    mnuReCalcBase_Click();
    EXPECT_EQ(Raw(BaseMapIndex, 1, 1), 5040);
}

TEST_F(ReCalcBase, HalfAStep_GoesToTheEvenOne) {
    Read(kWithBase);
    Put(0, 1, 1, 0);
    Put(0, 1, 2, 0);
    Put(BaseMapIndex, 1, 1, 1001);  // 500.5
    Put(BaseMapIndex, 1, 2, 1003);  // 501.5
    mnuReCalcBase_Click();
    EXPECT_EQ(Raw(BaseMapIndex, 1, 1), 500);
    EXPECT_EQ(Raw(BaseMapIndex, 1, 2), 502);
}

TEST_F(ReCalcBase, FactorOne_LeavesTheImageAsItWas) {
    Read(kWithBase);
    const auto image = ReadData;
    mnuReCalcBase_Click();
    EXPECT_TRUE(ReadData == image);
    EXPECT_EQ(Flags(), 0);
    EXPECT_FALSE(DataChanged);
    EXPECT_FALSE(CanUndo());
    EXPECT_EQ(edits_, 1);  // the buttons are looked at anyway
}

TEST_F(ReCalcBase, InjectionMapOfZeros_HalvesTheBaseMapAndThenReadsOne) {
    Read(kWithBase);
    for (int k = 0; k < 4; ++k) ReadData[MapFirstBlock[0] + k] = ByteString(100, '\0');
    Begin();
    mnuReCalcBase_Click();
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            EXPECT_EQ(Raw(BaseMapIndex, row, column), 500);
            EXPECT_EQ(Text(0, row, column), "1.000");
        }
    }
    EXPECT_EQ(Flags(), 800);
}

TEST_F(ReCalcBase, LambdaAndAirFuelRatio_ComeBackAfterIt) {
    for (int mode = 0; mode <= 2; ++mode) {
        Read(kWithBase);
        FillMaps();
        Put(0, 1, 1, 192);
        Put(BaseMapIndex, 1, 1, 1000);
        mnuInjMapDisplay_Click(mode);
        mnuReCalcBase_Click();
        EXPECT_EQ(InjMapDisplay, mode);
        EXPECT_EQ(Raw(BaseMapIndex, 1, 1), 1250) << mode;
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column)
                EXPECT_EQ(Text(0, row, column), mode == 2 ? "14.700" : "1.000") << row << "," << column;
        }
    }
}

TEST_F(ReCalcBase, DisplayOfTheBaseMap_DoesNotMatter) {
    for (int mode = 0; mode <= 3; ++mode) {
        Read(kWithBase);
        Put(0, 1, 1, 192);
        mnuBaseMapDisplay_Click(mode);
        mnuReCalcBase_Click();
        EXPECT_EQ(Raw(BaseMapIndex, 1, 1), 1250) << mode;
        EXPECT_EQ(BaseMapDisplay, mode);
        EXPECT_TRUE(ShowsWhatIsStored(BaseMapIndex));
    }
}

TEST_F(ReCalcBase, SecondBaseMap_TakesTheSameFactor) {
    Read(kWithTwoBases);
    FillMaps();
    const int first = Raw(BaseMapIndex, 3, 4), second = Raw(BaseMapIndex + 1, 3, 4);
    const int injection = Raw(0, 3, 4);
    ASSERT_NE(injection, 128);
    mnuReCalcBase_Click();
    EXPECT_EQ(Raw(BaseMapIndex, 3, 4), Folded(first, injection));
    EXPECT_EQ(Raw(BaseMapIndex + 1, 3, 4), Folded(second, injection));
    EXPECT_EQ(Raw(0, 3, 4), 128);
    EXPECT_TRUE(ShowsWhatIsStored(BaseMapIndex));
    EXPECT_TRUE(ShowsWhatIsStored(BaseMapIndex + 1));
}

TEST_F(ReCalcBase, TabAfterTheBaseMapOutOfView_KeepsItsCells) {
    Read(kWithTwoBases);
    FillMaps();
    SSTab1.TabVisible[BaseMapIndex + 1] = false;
    const int second = Raw(BaseMapIndex + 1, 3, 4);
    mnuReCalcBase_Click();
    EXPECT_EQ(Raw(BaseMapIndex + 1, 3, 4), second);
    EXPECT_EQ(Raw(0, 3, 4), 128);
}

TEST_F(ReCalcBase, CellsAtTheTop_KeepTheLowByteOfTheProductUnderTheHighestHighByte) {
    Read(kWithBase);
    Put(0, 1, 1, 255);  // 1.496
    Put(0, 1, 2, 127);  // 0.996
    Put(BaseMapIndex, 1, 1, 65535);
    Put(BaseMapIndex, 1, 2, 65535);
    Put(BaseMapIndex, 1, 3, 65535);
    mnuReCalcBase_Click();
    // 98040 is 0x17EF8, 65273 and 65535 are words.
    EXPECT_EQ(Raw(BaseMapIndex, 1, 1), 0xFFF8);
    EXPECT_EQ(Raw(BaseMapIndex, 1, 2), 65273);
    EXPECT_EQ(Raw(BaseMapIndex, 1, 3), 65535);
    EXPECT_EQ(Raw(0, 1, 1), 128);
}

TEST_F(ReCalcBase, AllOfIt_IsOneNoticeAndOneStep) {
    Read(kWithTwoBases);
    FillMaps();
    const auto image = ReadData;
    mnuReCalcBase_Click();
    EXPECT_EQ(edits_, 1);
    EXPECT_EQ(UndoName(), "ReCalc Base");
    EXPECT_TRUE(DataChanged);
    for (const int first : {int{MapFirstBlock[0]}, int{MapFirstBlock[BaseMapIndex]}})
        EXPECT_TRUE(BlockChanged[first]);
    EXPECT_TRUE(MapCellChanged[0][3][4]);
    EXPECT_TRUE(MapCellChanged[BaseMapIndex][3][4]);
    EXPECT_TRUE(MapCellChanged[BaseMapIndex + 1][3][4]);
    const auto folded = ReadData;
    mnuUndo_Click();
    EXPECT_TRUE(ReadData == image);
    EXPECT_FALSE(CanUndo());
    EXPECT_TRUE(ShowsWhatIsStored(0));
    EXPECT_TRUE(ShowsWhatIsStored(BaseMapIndex));
    mnuRedo_Click();
    EXPECT_TRUE(ReadData == folded);
}

TEST_F(ReCalcBase, SecondTime_ChangesNothingMore) {
    Read(kWithBase);
    FillMaps();
    mnuReCalcBase_Click();
    const auto folded = ReadData;
    mnuReCalcBase_Click();
    EXPECT_TRUE(ReadData == folded);
    EXPECT_EQ(Steps(), 1);
}

TEST_F(ReCalcBase, WithoutABaseMapOrWhileComparing_DoesNothing) {
    struct Row {
        const char* Name;
        const char* Build;
        std::function<void()> Prevent;
    };
    for (const Row& row :
         {Row{"no base map", kPlain, [] {}}, Row{"comparing", kWithBase, [] { mnuCompare.Checked = true; }},
          Row{"item disabled", kWithBase, [] { mnuReCalcBase.Enabled = false; }}}) {
        mnuCompare.Checked = false;
        Read(row.Build);
        Put(0, 1, 1, 192);
        Begin();
        row.Prevent();
        const auto image = ReadData;
        mnuReCalcBase_Click();
        EXPECT_TRUE(ReadData == image) << row.Name;
        EXPECT_TRUE(Untouched()) << row.Name;
    }
}

TEST_F(ReCalcBase, Item_IsEnabledForBuildsWithABaseMapAlone) {
    for (const auto& [key, enabled] : {std::pair(kPlain, false),
                                       {kWithBase, true},
                                       {kPlain, false},
                                       {kSplitting, true},
                                       {kWithTwoBases, true}}) {
        Read(key);
        EXPECT_EQ(mnuReCalcBase.Enabled, enabled) << key;
    }
}

TEST_F(ReCalcBase, UnreadMaps_TakeNoByte) {
    Read(kWithBase);
    for (auto& block : ReadData) block.clear();
    Begin();
    mnuReCalcBase_Click();
    for (int block = 0; block < 256; ++block) {
        EXPECT_EQ(ReadData[block], "") << block;
        EXPECT_FALSE(BlockChanged[block]) << block;
    }
    EXPECT_FALSE(CanUndo());
}

}  // namespace
}  // namespace zandrel
