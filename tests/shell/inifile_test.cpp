#include "shell/inifile.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace zandrel {
namespace {

using Value = std::optional<std::string>;

TEST(IniFile, KeysOfSections_AreFound) {
    const IniFile file(
        "[Settings]\nMainLeft=450\n[RecentDatFiles]\r\n RecentFile1 = a b.dat \r\nMainLeft=1\n");
    EXPECT_EQ(file.Find("Settings", "MainLeft"), Value("450"));
    EXPECT_EQ(file.Find("RecentDatFiles", "RecentFile1"), Value("a b.dat"));
    EXPECT_EQ(file.Find("RecentDatFiles", "MainLeft"), Value("1"));
    EXPECT_EQ(file.Find("Settings", "RecentFile1"), std::nullopt);
    EXPECT_EQ(file.Find("Settings", "mainleft"), std::nullopt);
}

TEST(IniFile, OfTwoLinesOfAKey_TheLastCounts) {
    IniFile file("[S]\nA=1\n[T]\nA=2\n[S]\nA=3\n");
    EXPECT_EQ(file.Find("S", "A"), Value("3"));
    file.Set("S", "A", "4");
    EXPECT_EQ(file.Bytes(), "[S]\nA=1\n[T]\nA=2\n[S]\nA=4\n");
}

TEST(IniFile, QuotesAndEscapes_AreRead) {
    const IniFile file(
        "[S]\nA=\"a;b, c\"\nB=\"C:\\\\Maps\\\\x.dat\"\nC=\\xe9\\x20ac!\nD=@@at\nE=1,2,3\n"
        "F=\"a\\\"b\"\nG=\\q\\\nH=\nI=a=b\n");
    EXPECT_EQ(file.Find("S", "A"), Value("a;b, c"));
    EXPECT_EQ(file.Find("S", "B"), Value("C:\\Maps\\x.dat"));
    EXPECT_EQ(file.Find("S", "C"), Value("\u00e9\u20ac!"));
    EXPECT_EQ(file.Find("S", "D"), Value("@at"));
    EXPECT_EQ(file.Find("S", "E"), Value("1,2,3"));
    EXPECT_EQ(file.Find("S", "F"), Value("a\"b"));
    EXPECT_EQ(file.Find("S", "G"), Value("\\q\\"));
    EXPECT_EQ(file.Find("S", "H"), Value(""));
    EXPECT_EQ(file.Find("S", "I"), Value("a=b"));
}

TEST(IniFile, NewKeys_ComeToTheEndOfTheirSection) {
    IniFile file("[S]\nA=1\n\n[T]\nB=2\n");
    file.Set("S", "C", "3");
    file.Set("T", "D", "4");
    file.Set("U", "E", "5");
    file.Set("S", "F", "6");
    EXPECT_EQ(file.Bytes(), "[S]\nA=1\nC=3\nF=6\n\n[T]\nB=2\nD=4\n\n[U]\nE=5\n");
    IniFile empty;
    empty.Set("S", "A", "1");
    EXPECT_EQ(empty.Bytes(), "[S]\nA=1\n");
}

TEST(IniFile, WhatIsNotUnderstood_StaysAsItStands) {
    const std::string bytes =
        std::string("\xEF\xBB\xBF; mine\n[S]\n# a=b\nrubbish\nA = 1 \nB=2\n[cut\n\0\x01\n", 48);
    IniFile file(bytes);
    EXPECT_EQ(file.Bytes(), bytes);
    EXPECT_EQ(file.Find("S", "A"), Value("1"));
    file.Set("S", "A", "1");
    EXPECT_EQ(file.Bytes(), bytes) << "the same value is no change";
    file.Set("S", "B", "9");
    std::string changed = bytes;
    changed.replace(changed.find("B=2"), 3, "B=9");
    EXPECT_EQ(file.Bytes(), changed);
}

TEST(IniFile, CutAnywhere_TakesTheWholeLinesAndLosesNothing) {
    const std::string whole =
        "[Settings]\nMainLeft=450\nMapPath=\"/home/a;b/\"\n[RecentDatFiles]\nRecentFile1=/x.dat\n";
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::string cut = whole.substr(0, size);
        IniFile file(cut);
        EXPECT_EQ(file.Bytes(), cut);
        file.Set("Settings", "MainTop", "7");
        const IniFile again(file.Bytes());
        EXPECT_EQ(again.Find("Settings", "MainTop"), Value("7")) << size;
        for (const char* key : {"MainLeft", "MapPath"}) {
            EXPECT_EQ(again.Find("Settings", key), IniFile(cut).Find("Settings", key)) << size;
        }
        std::istringstream lines(cut);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_NE(file.Bytes().find(line + "\n"), std::string::npos) << size << " " << line;
        }
    }
}

// Whatever is put in comes out, and no line of the file is touched by a value.
TEST(IniFile, AnyValue_ComesBack) {
    std::mt19937 random(7);
    const std::string pieces[] = {"\\",
                                  "\"",
                                  "@",
                                  ";",
                                  ",",
                                  "=",
                                  " ",
                                  "\t",
                                  "\n",
                                  "\r",
                                  "x",
                                  "0",
                                  "f",
                                  "#",
                                  "[",
                                  "]",
                                  std::string(1, '\0'),
                                  "\x01",
                                  "\x7f",
                                  "\u00e9",
                                  "\u65e5",
                                  "\xff",
                                  "%",
                                  "C:\\Maps"};
    for (int round = 0; round < 20'000; ++round) {
        std::string value;
        for (std::size_t n = random() % 8; n > 0; --n) value += pieces[random() % std::size(pieces)];
        IniFile file("[S]\nA=1\nB=2\n");
        file.Set("S", "A", value);
        const IniFile again(file.Bytes());
        ASSERT_EQ(again.Find("S", "A"), Value(value)) << file.Bytes();
        ASSERT_EQ(again.Find("S", "B"), Value("2")) << file.Bytes();
    }
}

TEST(IniFile, RandomBytes_AreTakenInAndKept) {
    std::mt19937 random(11);
    for (int round = 0; round < 5000; ++round) {
        std::string bytes;
        for (std::size_t n = random() % 120; n > 0; --n) {
            bytes += random() % 3 == 0 ? "[]=\n\r\"\\x;@S"[random() % 11] : static_cast<char>(random() % 256);
        }
        IniFile file(bytes);
        ASSERT_EQ(file.Bytes(), bytes);
        file.Set("S", "A", "1");
        ASSERT_EQ(IniFile(file.Bytes()).Find("S", "A"), Value("1"));
    }
}

}  // namespace
}  // namespace zandrel
