// Every build of the catalogue, over its terminal.
#include <map>
#include <set>

#include "port.h"
#include "simulator/blocks.h"

namespace powerfc {
namespace {

// Length of every block of a build. Two groups of different length on one code would be a fault.
std::map<int, int> LengthsOf(const Shape& shape) {
    std::map<int, int> lengths;
    const auto add = [&](int code, int length) {
        const auto [place, fresh] = lengths.emplace(code, length);
        EXPECT_TRUE(fresh || place->second == length) << "block " << code;
    };
    for (const GroupSpec& group : shape.Groups) add(group.Code, group.Length);
    for (const MapSpec& map : shape.Maps) {
        for (int i = 0; i < map.Blocks(); ++i) add(map.FirstBlock + i, 100);
    }
    for (const int code : shape.Transmission) add(code, TransmissionLength(code));
    if (shape.Custom >= 0) add(shape.Custom, 8);
    add(shape.SensorNames, shape.LongSensors() ? 48 : 80);
    if (shape.LongSensors()) add(shape.SwitchNames, 72);
    return lengths;
}

std::string Trimmed(const Bytes& bytes) {
    std::string text(bytes.begin(), bytes.end());
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

TEST(Builds, All214_AnswerEveryBlockWithItsLength) {
    std::set<std::string_view> seen;
    for (const zandrel::Build& build : zandrel::Builds()) {
        seen.insert(build.Key);
        Options options;
        options.Version = build.Key;
        Simulator device(options);
        ASSERT_EQ(device.Error(), "") << build.Key;
        Port port(device.PortName());
        const auto lengths = LengthsOf(ShapeOf(build));
        for (const auto& [code, length] : lengths) {
            const Bytes frame = port.Ask(static_cast<std::uint8_t>(code));
            ASSERT_EQ(frame.size(), static_cast<std::size_t>(length + 3)) << build.Key << " block " << code;
            EXPECT_EQ(frame[0], code) << build.Key;
            EXPECT_EQ(frame[1], length + 2) << build.Key << " block " << code;
            EXPECT_EQ(DataOf(frame), device.Block(code)) << build.Key << " block " << code;
        }
        EXPECT_EQ(device.BlockCodes().size(), lengths.size()) << build.Key;

        const VersionKey key = SplitKey(build.Key);
        const bool oldest = build.Family == 'O';
        EXPECT_EQ(
            Trimmed(DataOf(port.Ask(oldest ? 0x6B : 0xF3))) + Trimmed(DataOf(port.Ask(oldest ? 0x6C : 0xF5))),
            build.Key);
        EXPECT_EQ(key.Engine + key.Number, build.Key);
    }
    EXPECT_EQ(zandrel::Builds().size(), 214u);
    EXPECT_EQ(seen.size(), 213u);  // one key stands twice
}

TEST(Builds, OneOfEachFamily_StaysSilentOnCodesItLacks) {
    std::set<char> families;
    for (const zandrel::Build& build : zandrel::Builds()) {
        if (!families.insert(build.Family).second) continue;
        Options options;
        options.Version = build.Key;
        Simulator device(options);
        Port port(device.PortName());
        const Shape shape = ShapeOf(build);
        const std::uint8_t sentinel = shape.Oldest() ? 0x6B : 0xF3;
        for (int code = 2; code < 256; ++code) {
            const bool poll =
                code == 0xF0 || code == shape.BasicPoll || code == shape.SensorPoll || code == shape.MapPoll;
            if (poll || device.HasBlock(code)) continue;
            EXPECT_TRUE(port.StaysSilent(Frame(static_cast<std::uint8_t>(code)), sentinel))
                << build.Key << " " << code;
        }
    }
    EXPECT_EQ(families.size(), 16u);
}

TEST(Builds, LengthsByHand) {
    struct Row {
        const char* Key;
        int Code, Length;
    };
    // clang-format off
    const Row rows[] = {
        {"RB26DETT6.42",  0xF3,   8}, {"RB26DETT6.42",  0xF5,   5}, {"RB26DETT6.42",  0x86, 100}, {"RB26DETT6.42", 0x89, 100},
        {"RB26DETT6.42",  0x8B,  12}, {"RB26DETT6.42",  0xCE, 107}, {"RB26DETT6.42",  0xD6,  85}, {"RB26DETT6.42", 0xA5,  64},
        {"RB26DETT6.42",  0x97,   2}, {"RB26DETT6.42",  0x99,   8}, {"RB26DETT6.42",  0xAD,   8}, {"RB26DETT6.42", 0xDD,  80},
        {"RB26DETT6.42",  0xB0,   0}, {"RB26DETT6.42",  0x40,   0}, {"RB26DETT6.42",  0x6B,   0},
        {"1JZGT-AT3.54",  0xDD,  48}, {"1JZGT-AT3.54",  0xEB,  72}, {"1JZGT-AT3.54",  0x40,  24}, {"1JZGT-AT3.54", 0x43,  12},
        {"1JZGT-AT3.54",  0xB8,  18}, {"1JZGT-AT3.54",  0xD6, 136},
        {"13B-REW5.08",   0x76, 100}, {"13B-REW5.08",   0xB7, 100}, {"13B-REW5.08",   0x7E,   6}, {"13B-REW5.08",  0x8D,  24},
        {"RB26DETT3.11D", 0x56, 100}, {"RB26DETT3.11D", 0x52, 100}, {"RB26DETT3.11D", 0x5B,  24}, {"RB26DETT3.11D", 0x60, 10},
        {"RB26DETT3.11D", 0x6B,   8}, {"RB26DETT3.11D", 0x6C,   5}, {"RB26DETT3.11D", 0xAD,   0}, {"RB26DETT3.11D", 0xF3,  0},
    };
    // clang-format on
    for (const Row& row : rows) {
        Options options;
        options.Version = row.Key;
        EXPECT_EQ(Simulator(options).Block(row.Code).size(), static_cast<std::size_t>(row.Length))
            << row.Key << " block " << std::hex << row.Code;
    }
}

TEST(Builds, TransmissionTables_FourOrFive) {
    for (const zandrel::Build& build : zandrel::Builds()) {
        const std::size_t expected = build.Family == 'D' ? 4 : build.Family == 'E' ? 5 : 0;
        EXPECT_EQ(ShapeOf(build).Transmission.size(), expected) << build.Key;
    }
}

TEST(Builds, UnknownVersion_OwnNameOtherwiseLikeAKnownOne) {
    Options options;
    options.Version = "XYZZY9.99";
    Simulator device(options);
    EXPECT_EQ(device.Error(), "");
    EXPECT_EQ(device.BlockString(0xF3), "XYZZY   ");
    EXPECT_EQ(device.BlockString(0xF5), "9.99 ");
    EXPECT_EQ(device.Block(0x86).size(), 100u);
}

int Word(const Bytes& block, int position) {
    return block.at(static_cast<std::size_t>(position - 1)) +
           256 * block.at(static_cast<std::size_t>(position));
}

TEST(Contents, MapReference_AscendingSpeedAndLoad) {
    Simulator device;
    const Bytes axes = device.Block(0x8A);
    for (int k = 0; k < 20; ++k) {
        EXPECT_EQ(Word(axes, 41 + 2 * k), 400 * (k + 1));
        EXPECT_EQ(Word(axes, 1 + 2 * k), 800 * (k + 1));
    }
}

TEST(Contents, Maps_LookLikeAnEngines) {
    Options options;
    options.Version = "13B-REW5.08";
    Simulator device(options);
    const auto cell = [&](int first, int bytes, int row, int column) {
        const int place = (row + 20 * column - 21) * bytes;
        const Bytes block = device.Block(first + place / 100);
        return bytes == 2 ? Word(block, place % 100 + 1) : block.at(static_cast<std::size_t>(place % 100));
    };
    EXPECT_NEAR(cell(0x86, 1, 4, 2), 128, 8);  // about 1.0 at low load
    EXPECT_GT(cell(0x86, 1, 20, 18), 140);     // richer at full load
    EXPECT_LT(cell(0xB0, 2, 2, 10), cell(0xB0, 2, 20, 10));
    EXPECT_NEAR(cell(0xB0, 2, 20, 13) * 0.004, 8.0, 0.5);  // ms
    for (int row = 1; row <= 20; ++row) {
        for (int column = 1; column <= 20; ++column) {
            const int leading = cell(0x76, 1, row, column) - 25;
            EXPECT_GE(leading, 5);
            EXPECT_LE(leading, 45);
            EXPECT_EQ(cell(0x81, 1, row, column) - 25, leading - 10);
        }
    }
}

TEST(Contents, SensibleSettings) {
    Simulator device;
    EXPECT_EQ(Word(device.Block(0x8B), 1), 8000);   // rev limit
    EXPECT_EQ(Word(device.Block(0x8B), 9), 950);    // idle
    EXPECT_EQ(Word(device.Block(0x8D), 1), 32768);  // 100 %
    EXPECT_EQ(device.BlockString(0xD6).substr(5, 16), "Boost control   ");
    EXPECT_EQ(device.BlockString(0xCE).substr(1, 18), "Standard meter    ");
    EXPECT_EQ(device.BlockString(0xDD).substr(0, 8), "AirFTPS ");
    EXPECT_EQ(device.BlockString(0xDD).substr(32, 6), "STRA/C");
    EXPECT_EQ(device.Block(0xA7)[0], 0xCC);  // set by nothing
}

TEST(Contents, Image_ReplacesBlocksButNotTheVersion) {
    TempFolder folder;
    const std::string path = folder.File("image.dat");
    FILE* file = fopen(path.c_str(), "wb");
    ASSERT_TRUE(file);
    // The fan block is none of this build's; the idle block is one byte short; 0x97 one byte long, as a
    // scan leaves it.
    fputs(
        "7F010203\r\n8B0102030405060708090A0B\r\n9711227E\r\n99A1A2A3A4A5A6A7A8\r\nF34142434445464748\r\nTTa "
        "note\r\n",
        file);
    fclose(file);
    Options options;
    options.ImageFile = path;
    Simulator device(options);
    EXPECT_EQ(device.Error(), "");
    EXPECT_FALSE(device.HasBlock(0x7F));
    EXPECT_EQ(Word(device.Block(0x8B), 1), 8000);
    EXPECT_EQ(ToHex(device.Block(0x97)), "1122");
    EXPECT_EQ(ToHex(device.Block(0x99)), "A1A2A3A4A5A6A7A8");
    EXPECT_EQ(device.BlockString(0xF3), "RB26DETT");
}

TEST(Contents, ImageThatIsNone_IsAnError) {
    TempFolder folder;
    const std::string path = folder.File("image.dat");
    FILE* file = fopen(path.c_str(), "wb");
    ASSERT_TRUE(file);
    fputs("97112\r\n", file);
    fclose(file);
    Options options;
    options.ImageFile = path;
    EXPECT_NE(Simulator(options).Error(), "");
    options.ImageFile = folder.File("absent.dat");
    EXPECT_NE(Simulator(options).Error(), "");
}

}  // namespace
}  // namespace powerfc
