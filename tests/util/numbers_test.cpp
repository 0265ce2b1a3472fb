#include "util/numbers.h"

#include <gtest/gtest.h>

namespace zandrel {
namespace {

TEST(StrictNumber, WholeTextIsANumber_GivesIt) {
    EXPECT_EQ(StrictNumber("12"), 12.0);
    EXPECT_EQ(StrictNumber(" 0.0030517578125 "), 0.0030517578125);
    EXPECT_EQ(StrictNumber(".004"), 0.004);
    EXPECT_EQ(StrictNumber("5."), 5.0);
    EXPECT_EQ(StrictNumber("-131.072"), -131.072);
    EXPECT_EQ(StrictNumber("+50"), 50.0);
    EXPECT_EQ(StrictNumber("1e3"), 1000.0);
    EXPECT_EQ(StrictNumber("&H8D"), 141.0);
    EXPECT_EQ(StrictNumber("&h1b8"), 440.0);
}

TEST(StrictNumber, AnythingElse_GivesNoValue) {
    for (const char* text : {"",
                             " ",
                             "abc",
                             "12a",
                             "1 2",
                             "1,5",
                             "&H",
                             "&HG",
                             "--1",
                             "+-1",
                             ".",
                             "-",
                             "e5",
                             "inf",
                             "-inf",
                             "nan",
                             "infinity",
                             "1e400",
                             "-1e400",
                             "0x10",
                             "12 rpm",
                             "1e",
                             "&H10000000000000000"}) {
        EXPECT_EQ(StrictNumber(text), std::nullopt) << text;
    }
}

TEST(StrictNumber, TooSmallForADouble_IsZero) {
    EXPECT_EQ(StrictNumber("1e-400"), 0.0);
    EXPECT_EQ(StrictNumber("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_EQ(StrictNumber(std::string(400, '9') + "e-5"), std::nullopt);
}

TEST(StrictWhole, FractionsRoundToEven_AndRangeIs32Bits) {
    EXPECT_EQ(StrictWhole("2.5"), 2);
    EXPECT_EQ(StrictWhole("3.5"), 4);
    EXPECT_EQ(StrictWhole("2147483647"), 2147483647);
    EXPECT_EQ(StrictWhole("2147483648"), std::nullopt);
    EXPECT_EQ(StrictWhole("x"), std::nullopt);
}

TEST(LenientNumber, StopsAtTheFirstCharacterThatCannotGoOn) {
    EXPECT_EQ(LenientNumber("&HA7,4"), 167.0);
    EXPECT_EQ(LenientNumber("  12rpm"), 12.0);
    EXPECT_EQ(LenientNumber("-3.5x"), -3.5);
    EXPECT_EQ(LenientNumber(".004"), 0.004);
    EXPECT_EQ(LenientNumber("rpm"), 0.0);
    EXPECT_EQ(LenientNumber(""), 0.0);
    EXPECT_EQ(LenientNumber("inf"), 0.0);
    EXPECT_EQ(LenientNumber("1e400"), 0.0);
}

TEST(LeadingNumber, ReadsAsTheLenientOne_ButTooLargeIsNoValue) {
    EXPECT_EQ(LeadingNumber("12rpm"), 12.0);
    EXPECT_EQ(LeadingNumber(" -3.5x"), -3.5);
    EXPECT_EQ(LeadingNumber("&HA7,4"), 167.0);
    EXPECT_EQ(LeadingNumber("1e-400"), 0.0);
    EXPECT_EQ(LeadingNumber("1e308"), 1e308);
    for (const char* text : {"", " ", "rpm", "inf", "-inf", "nan", "-", "+", ".", "&H", "&HG", "*2", ",5"})
        EXPECT_EQ(LeadingNumber(text), 0.0) << text;
    for (const char* text : {"1e400", "-1e400", "1e400x", " 1e309 "})
        EXPECT_EQ(LeadingNumber(text), std::nullopt) << text;
}

TEST(WithDecimalPoint, CommaOfATextThatIsANumberThen_BecomesAPoint) {
    EXPECT_EQ(WithDecimalPoint("0,95"), "0.95");
    EXPECT_EQ(WithDecimalPoint(",5"), ".5");
    EXPECT_EQ(WithDecimalPoint("5,"), "5.");
    EXPECT_EQ(WithDecimalPoint(" -1,25 "), " -1.25 ");
    EXPECT_EQ(WithDecimalPoint("1,5e3"), "1.5e3");
}

TEST(WithDecimalPoint, AnyOtherText_StaysAsItIs) {
    for (const char* text :
         {"", "0.95", "12", "&HFF", "abc", "a,b", ",", "1,2,3", "1,234.5", "1.234,5", "0,95x", "x0,95", "1,e",
          "1e400,5", "1,5e400", "1 ,5", "1, 5", "inf,5", "*0,95"}) {
        EXPECT_EQ(WithDecimalPoint(text), text) << text;
    }
}

TEST(RoundEven, TiesGoToTheEvenNumber) {
    EXPECT_EQ(RoundEven(2.5), 2.0);
    EXPECT_EQ(RoundEven(3.5), 4.0);
    EXPECT_EQ(RoundEven(-2.5), -2.0);
}

TEST(FormatNumber, Picture_GivesItsDecimals) {
    EXPECT_EQ(FormatNumber(4, "0.000"), "4.000");
    EXPECT_EQ(FormatNumber(950, "0"), "950");
    EXPECT_EQ(FormatNumber(0.5, "0"), "0");  // the tie goes to the even digit
    EXPECT_EQ(FormatNumber(1.5, "0"), "2");
    EXPECT_EQ(FormatNumber(2.5, "0"), "2");
    EXPECT_EQ(FormatNumber(0.125, "0.00"), "0.12");
    EXPECT_EQ(FormatNumber(-1234567.891, "0.00"), "-1234567.89");
}

TEST(FormatNumber, ExactBinaryValue_DecidesWhatLooksLikeATie) {
    // 1.005 and 2.675 are stored a little below themselves; 0.375 is exact, a true tie.
    EXPECT_EQ(FormatNumber(1.005, "0.00"), "1.00");
    EXPECT_EQ(FormatNumber(2.675, "0.00"), "2.67");
    EXPECT_EQ(FormatNumber(0.375, "0.00"), "0.38");
}

TEST(FormatNumber, NoMinusBeforeAZero) {
    EXPECT_EQ(FormatNumber(-0.0004, "0.000"), "0.000");
    EXPECT_EQ(FormatNumber(-0.0, "0"), "0");
    EXPECT_EQ(FormatNumber(-0.0, ""), "0");
    EXPECT_EQ(FormatNumber(-0.0006, "0.000"), "-0.001");
}

TEST(FormatNumber, EmptyPicture_IsTheGeneralForm) {
    EXPECT_EQ(FormatNumber(12, ""), "12");
    EXPECT_EQ(FormatNumber(0.1, ""), "0.1");
    EXPECT_EQ(FormatNumber(14.7, ""), "14.7");
    EXPECT_EQ(FormatNumber(-2.5, ""), "-2.5");
}

TEST(NumberText, BlankBeforeANumberOfZeroAndAbove) {
    EXPECT_EQ(NumberText(0), " 0");
    EXPECT_EQ(NumberText(251), " 251");
    EXPECT_EQ(NumberText(-3), "-3");
}

TEST(Hex2, TwoDigits_UpperOnesAreLost) {
    EXPECT_EQ(Hex2(5), "05");
    EXPECT_EQ(Hex2(0xAB), "AB");
    EXPECT_EQ(Hex2(0x1AB), "AB");
    EXPECT_EQ(Hex2(0), "00");
}

TEST(Hex, NoLeadingZero) {
    EXPECT_EQ(Hex(5), "5");
    EXPECT_EQ(Hex(0x8D), "8D");
}

TEST(SafeNumber, EmptyAndBadTexts_GiveZero) {
    EXPECT_EQ(SafeNumber(""), 0);
    EXPECT_EQ(SafeNumber("abc"), 0);
    EXPECT_EQ(SafeNumber("14.7"), 14.7);
}

TEST(FormatPoint, HasAPoint) {
    EXPECT_EQ(FormatPoint(0.251, "0.000"), "0.251");
}

TEST(MinMaxSingle, SmallerAndLarger) {
    EXPECT_EQ(MinSingle(1.5F, -2), -2);
    EXPECT_EQ(MaxSingle(1.5F, -2), 1.5F);
}

// What is beyond every type is a zero or too large, by the side on which it lies.
TEST(Numbers, BeyondEveryType_IsZeroOrNone) {
    EXPECT_EQ(StrictNumber("1e-9999"), 0);
    EXPECT_EQ(StrictNumber("-1.5E-99999"), 0);
    EXPECT_EQ(StrictNumber("0." + std::string(6000, '0') + "1"), 0);
    EXPECT_EQ(StrictNumber("1e-400"), 0);
    EXPECT_EQ(StrictNumber("1e9999"), std::nullopt);
    EXPECT_EQ(StrictNumber(std::string(6000, '9')), std::nullopt);
    EXPECT_EQ(StrictNumber(std::string(400, '9') + "e-9"), std::nullopt);
}

}  // namespace
}  // namespace zandrel
