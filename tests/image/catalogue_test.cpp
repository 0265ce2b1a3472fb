#include "image/catalogue.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <string>

#include "support/cleanstate.h"

namespace zandrel {
namespace {

TEST(Catalogue, FamiliesHaveTheirNumberOfBuilds) {
    std::map<char, int> count;
    for (const Build& build : Builds()) ++count[build.Family];
    const std::map<char, int> expected = {{'A', 31}, {'B', 1},  {'C', 69}, {'D', 1}, {'E', 1}, {'F', 7},
                                          {'G', 3},  {'H', 4},  {'I', 10}, {'J', 9}, {'K', 1}, {'L', 19},
                                          {'M', 11}, {'N', 30}, {'O', 7},  {'P', 10}};
    EXPECT_EQ(count, expected);
    EXPECT_EQ(Builds().size(), 214U);
}

// The whole table, byte for byte: a changed line of the catalogue has to be changed here too, on purpose.
TEST(Catalogue, WholeTable_IsTheGoldenOne) {
    std::string text;
    const auto add = [&text](const auto& record) {
        for (std::size_t i = 0; i < record.size(); ++i) text += (i == 0 ? "" : ",") + std::string(record[i]);
        text += "\n";
    };
    for (char family = 'A'; family <= 'P'; ++family) {
        text += std::string("family ") + family + ": ";
        add(SettingsRecordOfFamily(family));
    }
    for (const Build& build : Builds()) {
        text += std::string(build.Key) + ": " + build.Family + ": ";
        add(LogRecordOf(build));
    }
    const std::string path = std::string(ZANDREL_TEST_DATA) + "/catalogue.golden";
    const std::string golden = FileBytes(path);
    if (text != golden) std::ofstream(path + ".actual", std::ios::binary) << text;
    EXPECT_TRUE(text == golden) << "see " << path << ".actual";
}

// No code relies on where the engine's name ends.
TEST(Catalogue, KeysAreNotSplit) {
    EXPECT_NE(FindBuild(std::string("4G63") + "3.05B"), nullptr);
    EXPECT_EQ(FindBuild("4G633.05B"), FindBuild(std::string("4G633.0") + "5B"));
}

TEST(Catalogue, OnlyOneKeyStandsTwice) {
    std::map<std::string_view, int> count;
    for (const Build& build : Builds()) ++count[build.Key];
    for (const auto& [key, times] : count) EXPECT_EQ(times, key == "RB26DETT4.23" ? 2 : 1) << key;
}

TEST(Catalogue, TwiceListedKey_HasIdenticalRecords) {
    std::vector<const Build*> twice;
    for (const Build& build : Builds()) {
        if (build.Key == "RB26DETT4.23") twice.push_back(&build);
    }
    ASSERT_EQ(twice.size(), 2U);
    EXPECT_EQ(SettingsRecordOf(*twice[0]), SettingsRecordOf(*twice[1]));
    EXPECT_EQ(LogRecordOf(*twice[0]), LogRecordOf(*twice[1]));
    EXPECT_EQ(FindBuild("RB26DETT4.23"), twice[0]);
}

TEST(Catalogue, LookupIsByteForByte) {
    EXPECT_NE(FindBuild("RB25DET5.01A"), nullptr);
    EXPECT_NE(FindBuild("RB25DET5.01@"), nullptr);
    EXPECT_NE(FindBuild("RB25DET5.01A"), FindBuild("RB25DET5.01@"));
    EXPECT_NE(FindBuild("EJ2076.30b"), nullptr);
    EXPECT_NE(FindBuild("RB26 Pro4.30"), nullptr);
    EXPECT_EQ(FindBuild("RB25DET5.01"), nullptr);
    EXPECT_EQ(FindBuild("rb26dett6.42"), nullptr);
    EXPECT_EQ(FindBuild(" RB26DETT6.42"), nullptr);
    EXPECT_EQ(FindBuild("RB26DETT6.42 "), nullptr);
    EXPECT_EQ(FindBuild("EJ2076.30B"), nullptr);
    EXPECT_EQ(FindBuild(""), nullptr);
}

TEST(Catalogue, OrderWithinAFamily_IsKept) {
    std::string first, last;
    for (const Build& build : Builds()) {
        if (build.Family != 'N') continue;
        if (first.empty()) first = build.Key;
        last = build.Key;
    }
    EXPECT_EQ(first, "RB25DET5.00");
    EXPECT_EQ(last, "EJ20K7.20");
}

TEST(Catalogue, EveryCodeIsABlockNumberInHexadecimal) {
    for (char family = 'A'; family <= 'P'; ++family) {
        const SettingsRecord& record = SettingsRecordOfFamily(family);
        const std::set<std::string_view> loads = {"D", "L", "X", "L-AT1", "L-AT2"};
        EXPECT_TRUE(loads.count(record[0])) << family;
        for (std::size_t field = 1; field < record.size(); ++field) {
            const std::string_view code = record[field];
            if (code.empty()) continue;
            ASSERT_EQ(code.substr(0, 2), "&H") << family << field + 1;
            const int value = std::stoi(std::string(code.substr(2)), nullptr, 16);
            const bool longLayout = field + 1 == 19 || field + 1 == 21 || field + 1 == 27 || field + 1 == 45;
            EXPECT_LT(value, longLayout ? 0x200 : 0x100) << family << field + 1;
        }
    }
}

TEST(Catalogue, LongLayouts_StandWhereTheBuildsHaveThem) {
    const auto families = [](std::size_t field, std::string_view code) {
        std::string found;
        for (char family = 'A'; family <= 'P'; ++family) {
            if (SettingsRecordOfFamily(family)[field - 1] == code) found += family;
        }
        return found;
    };
    EXPECT_EQ(families(19, "&H1B8"), "DE");
    EXPECT_EQ(families(21, "&H1D6"), "DE");
    EXPECT_EQ(families(27, "&H1AC"), "E");
    EXPECT_EQ(families(45, "&H1A0"), "J");
    EXPECT_EQ(families(26, "&H5E"), "G");
}

TEST(Catalogue, ChosenCodes_AreThoseOfTheBuilds) {
    const auto code = [](const char* key, std::size_t field) {
        return SettingsRecordOf(*FindBuild(key))[field - 1];
    };
    EXPECT_EQ(code("RB26DETT6.42", 2), "&H86");
    EXPECT_EQ(code("RB26DETT6.42", 17), "&H8B");
    EXPECT_EQ(code("RB26DETT3.11D", 2), "&H56");
    EXPECT_EQ(code("13B-REW7.07", 3), "");
    EXPECT_EQ(code("13B-REW7.07", 5), "&H81");
    EXPECT_EQ(code("3S-GE4.08", 8), "&H6C");
    EXPECT_EQ(code("B18C2.02B", 10), "&H63");
    EXPECT_EQ(code("SR20T5-D3.06", 19), "&H7A");
    EXPECT_EQ(code("D15B1.10", 18), "&HD4");
    EXPECT_EQ(code("1JZGT-AT3.54", 1), "L-AT2");
}

TEST(Catalogue, EveryBuildsChannels_FillItsFrames) {
    // Bytes that each name takes of the Advanced frame.
    const std::map<std::string_view, int> steps = {
        {"RPM", 2},     {"PIM", 2},    {"Load", 2},    {"Inj +/-", 2}, {"Speed", 2},    {"RSVC", 2},
        {"IGN", 1},     {"Oil", 1},    {"PC%", 1},     {"WG%", 1},     {"Dwell", 1},    {"Knock", 1},
        {"PIM V", 2},   {"TPS V", 2},  {"AFL V", 2},   {"VTA V", 2},   {"MAFS1", 2},    {"MAFS2", 2},
        {"TPS2V", 2},   {"Inj ms", 2}, {"InjFrPr", 2}, {"InjFrSc", 2}, {"IGL", 1},      {"IGT", 1},
        {"FuelT", 1},   {"WtrT", 1},   {"AirT", 1},    {"AirT2", 1},   {"Boost", 2},    {"Duty", 2},
        {"BatV", 1},    {"O2S", 1},    {"O2S1", 1},    {"O2S2", 1},    {"MAFS Act", 2}, {"?\?\?", 1},
        {"?\?\?(2)", 2}};
    EXPECT_EQ(ChannelRows().size(), 14U);
    for (const ChannelRow& row : ChannelRows()) {
        int bytes = 0;
        bool ended = false;
        for (const std::string_view name : row.Advanced) {
            if (name.empty()) {
                ended = true;
                continue;
            }
            EXPECT_FALSE(ended) << name;  // no gap between the names
            ASSERT_TRUE(steps.count(name)) << name;
            bytes += steps.at(name);
        }
        EXPECT_LE(bytes, 30);
        for (const std::string_view name : row.Basic) EXPECT_FALSE(name.empty());
    }
}

TEST(Catalogue, PollCodes_AreThoseOfTheBuild) {
    const LogRecord record = LogRecordOf(*FindBuild("RB26DETT6.42"));
    EXPECT_EQ(record[10], "&HDA");
    EXPECT_EQ(record[11], "&HDE");
    EXPECT_EQ(record[12], "&HDB");
    EXPECT_EQ(record[13], "");
    EXPECT_EQ(record[14], "&HDD");
    EXPECT_EQ(record[23], "InjDuty");
    EXPECT_EQ(record[33], "RPM");
    EXPECT_EQ(LogRecordOf(*FindBuild("1JZGT-AT3.43"))[14], "&H1DD");
    EXPECT_EQ(LogRecordOf(*FindBuild("RB26DETT4.23"))[10], "&H66");
    EXPECT_EQ(LogRecordOf(*FindBuild("RB26DETT3.11D"))[33], "");
    EXPECT_EQ(LogRecordOf(*FindBuild("4G631.65"))[25], "KPM Frq");
}

TEST(Catalogue, DerivedFields_FollowTheFamily) {
    const auto log = [](const char* key, std::size_t field) {
        return LogRecordOf(*FindBuild(key))[field - 1];
    };
    struct Row {
        const char* Key;
        std::array<const char*, 10> Fields;
    };
    const Row rows[] = {
        {"1JZ-GTE23.12", {"&H9A", "", "&HBB", "&H9D", "&H8D", "", "", "&H92", "", ""}},         // A
        {"RB25DET2.33", {"&H9A", "&H97", "&H99", "", "&H8D", "", "", "&H92", "", ""}},          // C
        {"4G631.65", {"&H9A", "&H97", "&H99", "", "&H8D", "", "", "&H92", "", ""}},             // J
        {"RB26DETT6.42", {"&H9A", "&H97", "&H99", "", "&H8D", "", "", "&H92", "", ""}},         // N
        {"13B-REW7.07", {"&H9A", "", "&HBB", "&H9D", "", "&H8D", "", "&H92", "&H9F", "&H7B"}},  // L
        {"RB26DETT3.11D", {"", "", "", "", "&H5B", "", "", "", "", ""}},                        // O
    };
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < 10; ++i)
            EXPECT_EQ(log(row.Key, i + 1), row.Fields[i]) << row.Key << i + 1;
    }
    EXPECT_EQ(log("B18C2.02B", 17), "VTLI High");
    EXPECT_EQ(log("13B-REW7.07", 17), "F/C A/E");
    EXPECT_EQ(log("13B-REW7.07", 23), "?\?\?");
    EXPECT_EQ(log("RB26DETT6.42", 16), "Rev Limit");
    EXPECT_EQ(log("RB26DETT6.42", 17), "?\?\?");
}

TEST(Catalogue, AlternativesNeverStandTogether) {
    for (const Build& build : Builds()) {
        const SettingsRecord& record = SettingsRecordOf(build);
        const auto count = [&record](std::initializer_list<std::size_t> fields) {
            int present = 0;
            for (const std::size_t field : fields) present += record[field - 1].empty() ? 0 : 1;
            return present;
        };
        EXPECT_EQ(count({16, 17, 18, 19}), 1) << build.Key;
        EXPECT_EQ(count({28, 29}), 1) << build.Key;
        EXPECT_EQ(count({30, 31}), 1) << build.Key;
        EXPECT_EQ(count({42, 44}), 1) << build.Key;
        EXPECT_LE(count({54, 55}), 1) << build.Key;
        const LogRecord log = LogRecordOf(build);
        EXPECT_NE(log[4].empty(), log[5].empty()) << build.Key;
    }
}

}  // namespace
}  // namespace zandrel
