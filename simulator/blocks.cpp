#include "simulator/blocks.h"

#include <charconv>

namespace powerfc {
namespace {

struct MapRow {
    int Field;
    MapKind Kind;
    int CellBytes;
};

struct GroupRow {
    Record Where;
    int Field;
    int Length;
    int WideLength;  // with bit 8 of the code set; 0: the group has one form
    bool Writable;
};

// clang-format off
constexpr MapRow kMaps[] = {
    // settings record
    //  field  map                   bytes a cell
    {   2,     MapKind::Injection,   1 },
    {   3,     MapKind::Ignition,    1 },
    {   4,     MapKind::Leading,     1 },
    {   5,     MapKind::Trailing,    1 },
    {   6,     MapKind::Vvt,         1 },
    {   7,     MapKind::Intake,      1 },
    {   8,     MapKind::Exhaust,     1 },
    {   9,     MapKind::Base,        2 },
    {  10,     MapKind::BaseSecond,  2 },
};

constexpr GroupRow kGroups[] = {
    // record           field length wide  writable
    { Record::Settings, 11,     8,    0,  false },  // engine name
    { Record::Settings, 12,     5,    0,  false },  // version number
    { Record::Settings, 13,    11,    0,  true  },  // boost control
    { Record::Settings, 14,    13,    0,  true  },  // boost duties; read-only beside field 13 or 15
    { Record::Settings, 15,    11,    0,  true  },  // boost control, primary and secondary
    { Record::Settings, 16,    10,    0,  true  },  // rev and idle, 5 rows
    { Record::Settings, 17,    12,    0,  true  },  // 6 rows
    { Record::Settings, 18,    14,    0,  true  },  // 7 rows
    { Record::Settings, 19,    16,   18,  true  },  // 8 rows, 9 rows
    { Record::Settings, 20,     9,    0,  true  },  // turbo transition
    { Record::Settings, 21,    85,  136,  true  },  // function select, 5 or 8 functions
    { Record::Settings, 22,     4,    0,  true  },  // air-flow warning
    { Record::Settings, 23,     4,    0,  true  },  // injector warning
    { Record::Settings, 24,     4,    0,  true  },  // knock warning
    { Record::Settings, 25,     3,    0,  true  },  // O2 feedback
    { Record::Settings, 27,    10,   14,  true  },  // protect
    { Record::Settings, 28,    14,    0,  true  },  // water temperature correction with load points
    { Record::Settings, 29,    12,    0,  true  },  // the same without
    { Record::Settings, 30,    25,    0,  true  },  // accelerate injector with RPM points
    { Record::Settings, 31,    20,    0,  true  },  // the same without
    { Record::Settings, 32,    12,    0,  true  },  // cranking
    { Record::Settings, 33,     9,    0,  true  },  // injector against throttle movement
    { Record::Settings, 34,     9,    0,  true  },  // injector against fuel temperature
    { Record::Settings, 35,    12,    0,  true  },  // injector against throttle
    { Record::Settings, 36,    12,    0,  true  },  // injector against air temperature
    { Record::Settings, 37,     8,    0,  true  },  // injector against air temperature and boost
    { Record::Settings, 38,     6,    0,  true  },  // injector against water temperature and boost
    { Record::Settings, 39,    80,    0,  true  },  // map reference
    { Record::Settings, 40,    80,    0,  true  },  // map reference of the first base map
    { Record::Settings, 41,    80,    0,  true  },  // map reference of the second
    { Record::Settings, 42,   107,    0,  true  },  // PIM sensor select with injector adjustment
    { Record::Settings, 43,    20,    0,  true  },  // PIM scale and offset
    { Record::Settings, 44,   107,    0,  true  },  // air-flow sensor select with adjustment
    { Record::Settings, 45,    64,   64,  true  },  // air-flow curves: volts
    { Record::Settings, 46,    64,    0,  true  },  // air-flow curves 1 to 5
    { Record::Settings, 47,    64,    0,  true  },
    { Record::Settings, 48,    64,    0,  true  },
    { Record::Settings, 49,    64,    0,  true  },
    { Record::Settings, 50,    64,    0,  true  },
    { Record::Settings, 51,     6,    0,  true  },  // oiler against water temperature
    { Record::Settings, 52,     3,    0,  true  },  // fans against water temperature
    { Record::Settings, 53,     4,    0,  true  },  // ignition against water temperature
    { Record::Settings, 54,     4,    0,  true  },  // ignition against water temperature when cool
    { Record::Settings, 55,     4,    0,  true  },  // the same with temperatures of its own
    { Record::Settings, 56,     6,    0,  true  },  // ignition against battery voltage
    { Record::Settings, 57,     6,    0,  true  },  // dwell against RPM
    { Record::Settings, 58,     6,    0,  true  },  // second dwell against RPM
    { Record::Log,       1,     6,    0,  true  },  // ignition against air temperature
    { Record::Log,       2,     2,    0,  true  },  // boost against ignition
    { Record::Log,       3,     8,    0,  true  },  // ignition against throttle
    { Record::Log,       4,     4,    0,  true  },  // boost against ignition with RPM
    { Record::Log,       5,    24,    0,  true  },  // injectors
    { Record::Log,       6,    24,    0,  true  },  // injectors, primary and secondary
    { Record::Log,       7,     1,    0,  false },
    { Record::Log,       8,    12,    0,  true  },  // injector lag
    { Record::Log,       9,    12,    0,  true  },  // secondary injector lag
    { Record::Log,      10,     6,    0,  true  },  // injector overlap
};
// clang-format on

// The number of "&H1B8"; -1 for the empty text.
int CodeOf(std::string_view text) {
    int code = -1;
    if (text.substr(0, 2) == "&H") std::from_chars(text.data() + 2, text.data() + text.size(), code, 16);
    return code;
}

}  // namespace

int TransmissionLength(int code) {
    switch (code) {
        case 0x40:
        case 0x41:
            return 24;  // shift points: 3 shifts of 4 pairs
        case 0x42:
        case 0x43:
            return 12;  // lock-up zones: 2 of 3 pairs
        case 0x44:
            return 9;  // line pressure: 3 points of a byte and a word
        default:
            return 0;
    }
}

Shape ShapeOf(const zandrel::Build& build) {
    const zandrel::SettingsRecord& settings = zandrel::SettingsRecordOf(build);
    const zandrel::LogRecord log = zandrel::LogRecordOf(build);
    const auto settingsCode = [&](int field) {
        return CodeOf(settings[static_cast<std::size_t>(field - 1)]);
    };
    const auto logCode = [&](int field) { return CodeOf(log[static_cast<std::size_t>(field - 1)]); };

    Shape shape;
    shape.Family = build.Family;
    shape.Channels = &zandrel::ChannelRows()[build.Channels];
    for (const MapRow& row : kMaps) {
        const int code = settingsCode(row.Field);
        if (code >= 0) shape.Maps.push_back({row.Kind, code, row.CellBytes});
    }
    for (const GroupRow& row : kGroups) {
        const int code = row.Where == Record::Settings ? settingsCode(row.Field) : logCode(row.Field);
        if (code < 0) continue;
        const bool wide = code >= 256;
        GroupSpec group{row.Where,  row.Field,
                        code & 255, wide && row.WideLength ? row.WideLength : row.Length,
                        wide,       row.Writable};
        // The throttle table at 0x99 counts degrees from zero, that at 0xBB from -128.
        if (row.Where == Record::Log && row.Field == 3) group.Wide = code == 0x99;
        if (row.Where == Record::Settings && row.Field == 14) {
            group.Writable = settingsCode(13) < 0 && settingsCode(15) < 0;
        }
        shape.Groups.push_back(group);
        if (row.Where == Record::Settings && (row.Field == 42 || row.Field == 44))
            shape.SensorSelect = group.Code;
        if (row.Where == Record::Settings && row.Field == 21) shape.FunctionSelect = group.Code;
    }
    if (!shape.Oldest()) shape.Custom = 0xAD;
    if (settings[0] == "L-AT1") shape.Transmission = {0x40, 0x41, 0x42, 0x43};
    if (settings[0] == "L-AT2") shape.Transmission = {0x40, 0x41, 0x42, 0x43, 0x44};
    shape.BasicPoll = logCode(11);
    shape.SensorPoll = logCode(12);
    shape.MapPoll = logCode(13);
    const int names = logCode(15);
    shape.SensorNames = names & 255;
    if (names >= 256) shape.SwitchNames = 0xEB;
    return shape;
}

}  // namespace powerfc
