#include "shell/windows/shown.h"

#include <gtest/gtest.h>

#include "support/cleanstate.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

TEST(ReadableOn, EveryColourOfTheScheme_HasContrast) {
    for (int b = 0; b < 256; ++b) {
        for (const int number : {256 * b + (255 - b), 256 * (255 - b) + b}) {
            const QColor back = ColourOf(static_cast<std::uint32_t>(number));
            EXPECT_GE(Contrast(back, ReadableOn(back)), 4.5) << number;
        }
    }
    for (const std::uint32_t number : {0xE0E0E0U, 255U}) {
        const QColor back = ColourOf(number);
        EXPECT_GE(Contrast(back, ReadableOn(back)), 4.5) << number;
    }
}

TEST(Contrast, BlackOnWhite_IsTwentyOne) {
    EXPECT_NEAR(Contrast(Qt::black, Qt::white), 21, 0.01);
    EXPECT_NEAR(Contrast(Qt::red, Qt::red), 1, 0.001);
}

TEST(ColourOf, RedStandsInTheLowByte) {
    EXPECT_EQ(ColourOf(0x0000FF), QColor(255, 0, 0));
    EXPECT_EQ(ColourOf(0xFF0000), QColor(0, 0, 255));
}

TEST(FieldToolTip, NumberField_TellsBlockByteAndStep) {
    EXPECT_EQ(FieldToolTip("&H8D,19,2,0.004,0,0.000").toStdString(), "Block 8D, byte 19, step 0.004");
    EXPECT_EQ(FieldToolTip("&HB8,1,2,1,0,0").toStdString(), "Block B8, byte 1, step 1");
    EXPECT_EQ(FieldToolTip("141,3,2,.004,0,0.000").toStdString(), "Block 8D, byte 3, step 0.004");
}

TEST(FieldToolTip, Flag_TellsBlockAndByte) {
    EXPECT_EQ(FieldToolTip("&HD6,4,0").toStdString(), "Block D6, byte 4");
}

TEST(FieldToolTip, NoField_IsEmpty) {
    EXPECT_TRUE(FieldToolTip("").isEmpty());
    EXPECT_TRUE(FieldToolTip("&HAB,&HD5").isEmpty());
    EXPECT_TRUE(FieldToolTip("x,1,2,3,4,5").isEmpty());
}

TEST(Printable, ControlCharacters_BecomeBlanksAndEndsFallAway) {
    EXPECT_EQ(Printable(std::string("a\x01"
                                    "b\0 \x02",
                                    6))
                  .toStdString(),
              "a b");
    EXPECT_TRUE(Printable("  \t ").isEmpty());
}

TEST(Captions, Ampersands_AreLettersOrMnemonics) {
    EXPECT_EQ(WithoutMnemonic("A&B").toStdString(), "A&&B");
    EXPECT_EQ(WithMnemonic("Read All").toStdString(), "&Read All");
    EXPECT_EQ(WithMnemonic("MapRef &Labels").toStdString(), "MapRef &Labels");
    EXPECT_TRUE(WithMnemonic("").isEmpty());
    EXPECT_EQ(WithMnemonic("Base x INJ", "b").toStdString(), "B&ase x INJ");
    EXPECT_EQ(WithMnemonic("(x)", "x").toStdString(), "(x)");
    EXPECT_EQ(MnemonicOf("MapRef &Labels"), QChar(u'l'));
    EXPECT_TRUE(MnemonicOf("a && b").isNull());
}

class FieldWidth : public CleanState {};

TEST_F(FieldWidth, EveryField_HasRoomForItsHighestAndLowestValue) {
    for (const auto& [index, text] : txtSetting) {
        const auto tag = Split(text.Tag, ',');
        const int characters = FieldCharacters(text.Tag);
        const double highest = tag[2] == "2" ? 65535 : tag[2] == "129" ? -128 : 255;
        const auto longest = FormatNumber(highest * LenientNumber(tag[3]) + LenientNumber(tag[4]), tag[5]);
        EXPECT_GE(characters, static_cast<int>(longest.size())) << index;
    }
}

}  // namespace
}  // namespace zandrel
