#include "util/codepage.h"

#include <gtest/gtest.h>

namespace zandrel {
namespace {

TEST(CodePage, All256Bytes_SurviveARoundTrip) {
    std::string bytes;
    for (int b = 0; b < 256; ++b) bytes += static_cast<char>(b);
    EXPECT_EQ(ToCodePage(FromCodePage(bytes)), bytes);
}

TEST(CodePage, BytesOfTheUpperRows_AreWindows1252) {
    EXPECT_EQ(FromCodePage("\x80"), "€");
    EXPECT_EQ(FromCodePage("\x99"), "™");
    EXPECT_EQ(FromCodePage("\xB0"), "°");
    EXPECT_EQ(FromCodePage("\xFF"), "ÿ");
    EXPECT_EQ(FromCodePage("\x81"), "\xC2\x81");  // one of the five unused bytes
}

TEST(CodePage, TextWithoutAByte_BecomesAQuestionMark) {
    EXPECT_EQ(ToCodePage("日x"), "?x");
    EXPECT_EQ(ToCodePage("😀"), "?");
}

TEST(CodePage, BrokenUtf8_IsPassedOverByteByByte) {
    EXPECT_EQ(ToCodePage("\xC3"), "?");
    EXPECT_EQ(ToCodePage("\xE2\x82"), "??");
    EXPECT_EQ(ToCodePage("a\xFFz"), "a?z");
    EXPECT_EQ(ToCodePage("\xE0\x81\x81"), "???");  // a longer form than its point needs
}

}  // namespace
}  // namespace zandrel
