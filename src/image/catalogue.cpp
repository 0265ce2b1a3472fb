#include "image/catalogue.h"

namespace zandrel {
namespace {

// Rows are the fields of the settings record, columns the families of builds with one record. Codes are
// block numbers; with bit 8 set the block is the code less 256 and has the build's longer layout.
// clang-format off
struct FieldRow { std::array<std::string_view, 16> Family; };

constexpr std::array<FieldRow, 58> kFields = {{
    //             A       B       C       D        E        F       G       H       I       J        K       L       M       N       O       P      
    /*  1 */ {{ "D"   , "D"   , "L"   , "L-AT1", "L-AT2", "L"   , "X"   , "X"   , "X"   , "L"    , "D"   , "D"   , "D"   , "L"   , "L"   , "D"    }},  // load and gearbox code
    /*  2 */ {{ "&H86", "&H86", "&H86", "&H86" , "&H86" , "&H86", "&H86", "&H86", "&H86", "&H86" , "&H86", "&H86", "&H86", "&H86", "&H56", "&H86" }},  // InjMap
    /*  3 */ {{ "&H81", "&H81", "&H81", "&H81" , "&H81" , "&H81", "&H81", "&H81", "&H81", "&H81" , "&H81", ""    , "&H81", "&H81", "&H52", "&H81" }},  // IgnMap
    /*  4 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , "&H76", ""    , ""    , ""     , ""    , "&H76", ""    , ""    , ""    , ""     }},  // IglMap
    /*  5 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , "&H81", ""    , ""    , ""    , ""     }},  // IgtMap
    /*  6 */ {{ ""    , "&H71", ""    , "&H71" , "&H71" , "&H71", "&H71", "&H71", ""    , ""     , ""    , ""    , ""    , ""    , ""    , ""     }},  // VvtMap
    /*  7 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , "&H71", ""     , ""    , ""    , ""    , ""    , ""    , ""     }},  // VvinMap
    /*  8 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , "&H6C", ""     , ""    , ""    , ""    , ""    , ""    , ""     }},  // VvexMap
    /*  9 */ {{ "&HB0", "&HB0", ""    , ""     , ""     , ""    , "&HB0", "&HB0", "&HB0", ""     , "&HB0", "&HB0", "&HB0", ""    , ""    , "&HB0" }},  // BaseMap
    /* 10 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , ""    , "&H63", ""    , ""    , ""     }},  // BaseVT1
    /* 11 */ {{ "&HF3", "&HF3", "&HF3", "&HF3" , "&HF3" , "&HF3", "&HF3", "&HF3", "&HF3", "&HF3" , "&HF3", "&HF3", "&HF3", "&HF3", "&H6B", "&HF3" }},  // version block, engine
    /* 12 */ {{ "&HF5", "&HF5", "&HF5", "&HF5" , "&HF5" , "&HF5", "&HF5", "&HF5", "&HF5", "&HF5" , "&HF5", "&HF5", "&HF5", "&HF5", "&H6C", "&HF5" }},  // version block, number
    /* 13 */ {{ "&HAB", "&HAB", "&HAB", "&HAB" , "&HAB" , "&HAB", "&HAB", "&HAB", "&HAB", "&HAB" , "&HAB", ""    , "&HAB", "&HAB", ""    , "&HAB" }},  // boost, first form
    /* 14 */ {{ "&HD5", "&HD5", "&H5C", "&HD5" , "&HD5" , "&HD5", "&HD5", "&HD5", "&HD5", "&HD5" , "&HD5", ""    , "&HD5", "&HD5", "&H5C", "&HD5" }},  // boost, second form or field
    /* 15 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , "&HAB", ""    , ""    , ""    , ""     }},  // boost, third form
    /* 16 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , ""    , ""    , ""    , "&H60", ""     }},  // rev and idle, 10 bytes
    /* 17 */ {{ ""    , ""    , "&H8B", ""     , ""     , ""    , ""    , ""    , ""    , "&H8B" , ""    , ""    , ""    , "&H8B", ""    , ""     }},  // rev and idle, 12 bytes
    /* 18 */ {{ "&HB8", "&HB8", ""    , ""     , ""     , "&HB8", "&HB8", "&HB8", "&HB8", ""     , "&HD4", "&HB8", ""    , ""    , ""    , ""     }},  // rev and idle, 14 bytes
    /* 19 */ {{ ""    , ""    , ""    , "&H1B8", "&H1B8", ""    , ""    , ""    , ""    , ""     , ""    , ""    , "&HBF", ""    , ""    , "&H7A" }},  // rev and idle, 16 bytes
    /* 20 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , "&H7D", ""    , ""    , ""    , ""     }},  // turbo transition
    /* 21 */ {{ "&HD6", "&HD6", "&H65", "&H1D6", "&H1D6", "&HD6", "&HD6", "&HD6", "&HD6", "&HD6" , "&HD6", "&HD6", "&HD6", "&HD6", "&H65", "&HD6" }},  // function select
    /* 22 */ {{ ""    , ""    , "&HA7", ""     , ""     , ""    , ""    , ""    , ""    , "&HA7" , ""    , ""    , ""    , "&HA7", ""    , ""     }},  // air-flow warning
    /* 23 */ {{ "&HA8", "&HA8", "&HA8", ""     , ""     , ""    , ""    , ""    , ""    , "&HA8" , "&HA8", "&HA8", "&HA8", "&HA8", ""    , "&HA8" }},  // injector warning
    /* 24 */ {{ "&HA9", "&HA9", "&HA9", "&HA9" , "&HA9" , "&HA9", ""    , "&HA9", "&HA9", "&HA9" , "&HA9", "&HA9", "&HA9", "&HA9", ""    , "&HA9" }},  // knock warning
    /* 25 */ {{ "&HAA", "&HAA", "&HAA", "&HAA" , "&HAA" , "&HAA", "&HAA", "&HAA", "&HAA", "&HAA" , "&HAA", "&HAA", "&HAA", "&HAA", ""    , "&HAA" }},  // O2 feedback
    /* 26 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , "&H5E", ""    , ""    , ""     , ""    , ""    , ""    , ""    , ""    , ""     }},  // not used
    /* 27 */ {{ "&HAC", "&HAC", "&HAC", "&HAC" , "&H1AC", "&HAC", "&HAC", "&HAC", "&HAC", "&HAC" , "&HAC", "&HAC", "&HAC", "&HAC", ""    , "&HAC" }},  // protect
    /* 28 */ {{ "&H8F", "&H8F", "&H8F", "&H8F" , "&H8F" , "&H8F", "&H8F", "&H8F", "&H8F", "&H8F" , "&H8F", "&H8F", "&H8F", "&H8F", ""    , "&H8F" }},  // water temperature correction, 14 bytes
    /* 29 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , ""    , ""    , ""    , "&H5F", ""     }},  // water temperature correction, 12 bytes
    /* 30 */ {{ "&H93", "&H93", "&H93", "&H93" , "&H93" , "&H93", "&H93", "&H93", "&H93", "&H93" , "&H93", "&H93", "&H93", "&H93", ""    , "&H93" }},  // accelerate injector, 25 bytes
    /* 31 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , ""    , ""    , ""    , "&H5D", ""     }},  // accelerate injector, 20 bytes
    /* 32 */ {{ "&H8E", "&H8E", "&H8E", "&H8E" , "&H8E" , "&H8E", "&H8E", "&H8E", "&H8E", "&H8E" , "&H8E", "&H8E", "&H8E", "&H8E", "&H5E", "&H8E" }},  // cranking
    /* 33 */ {{ "&H94", "&H94", "&H94", "&H94" , "&H94" , "&H94", "&H94", "&H94", "&H94", "&H94" , "&H94", "&H94", "&H94", "&H94", ""    , "&H94" }},  // injector against acceleration TPS
    /* 34 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , "&H7C", ""    , ""    , ""    , ""     }},  // injector against fuel temperature
    /* 35 */ {{ "&HBA", "&HBA", ""    , "&HBA" , "&HBA" , "&HBA", "&HBA", "&HBA", "&HBA", ""     , "&HBA", "&HBA", "&HBA", ""    , ""    , "&HBA" }},  // injector against TPS
    /* 36 */ {{ "&HB9", "&HB9", ""    , "&HB9" , "&HB9" , "&HB9", "&HB9", "&HB9", "&HB9", ""     , "&HB9", "&HB9", "&HB9", ""    , ""    , "&HB9" }},  // injector against air temperature
    /* 37 */ {{ "&H91", "&H91", "&H91", "&H91" , "&H91" , "&H91", "&H91", "&H91", "&H91", "&H91" , "&H91", "&H91", "&H91", "&H91", ""    , "&H91" }},  // injector against air temperature and boost
    /* 38 */ {{ "&H90", "&H90", "&H90", "&H90" , "&H90" , "&H90", "&H90", "&H90", "&H90", "&H90" , "&H90", "&H90", "&H90", "&H90", ""    , "&H90" }},  // injector against water temperature and boost
    /* 39 */ {{ "&H8A", "&H8A", "&H8A", "&H8A" , "&H8A" , "&H8A", "&H8A", "&H8A", "&H8A", "&H8A" , "&H8A", "&H8A", "&H8A", "&H8A", "&H51", "&H8A" }},  // map reference
    /* 40 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , ""    , "&H60", ""    , ""    , ""     }},  // map reference of the base VT0
    /* 41 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , ""    , "&H61", ""    , ""    , ""     }},  // map reference of the base VT1
    /* 42 */ {{ "&HCB", "&HCE", ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , "&HCB", "&HCB", "&HCB", ""    , ""    , "&HCB" }},  // sensor select, first form
    /* 43 */ {{ "&HBC", "&HBC", ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , "&HBC", "&HBC", "&HBC", ""    , ""    , "&HBC" }},  // PIM scale and offset
    /* 44 */ {{ ""    , ""    , "&H5A", "&HCE" , "&HCE" , "&HCE", "&HCE", "&HCE", "&HCE", "&HCE" , ""    , ""    , ""    , "&HCE", "&H5A", ""     }},  // sensor select, air flow form
    /* 45 */ {{ ""    , ""    , "&HA0", "&HA0" , "&HA0" , "&HA0", "&HA0", "&HA0", "&HA0", "&H1A0", ""    , ""    , ""    , "&HA0", ""    , ""     }},  // air-flow curve 1
    /* 46 */ {{ ""    , ""    , "&HA1", "&HA1" , "&HA1" , "&HA1", "&HA1", "&HA1", "&HA1", "&HA1" , ""    , ""    , ""    , "&HA1", ""    , ""     }},  // air-flow curve 2
    /* 47 */ {{ ""    , ""    , "&HA2", "&HA2" , "&HA2" , "&HA2", "&HA2", "&HA2", "&HA2", "&HA2" , ""    , ""    , ""    , "&HA2", ""    , ""     }},  // air-flow curve 3
    /* 48 */ {{ ""    , ""    , "&HA3", "&HA3" , "&HA3" , "&HA3", "&HA3", "&HA3", "&HA3", "&HA3" , ""    , ""    , ""    , "&HA3", ""    , ""     }},  // air-flow curve 4
    /* 49 */ {{ ""    , ""    , "&HA4", "&HA4" , "&HA4" , "&HA4", "&HA4", "&HA4", "&HA4", "&HA4" , ""    , ""    , ""    , "&HA4", ""    , ""     }},  // air-flow curve 5
    /* 50 */ {{ ""    , ""    , "&HA5", "&HA5" , "&HA5" , "&HA5", "&HA5", "&HA5", "&HA5", "&HA5" , ""    , ""    , ""    , "&HA5", ""    , ""     }},  // air-flow curve 6
    /* 51 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , "&H7E", ""    , ""    , ""    , ""     }},  // oiler against water temperature
    /* 52 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , "&H7F", ""    , ""    , ""    , ""     }},  // fan against water temperature
    /* 53 */ {{ "&H98", "&H98", "&H98", "&H98" , "&H98" , "&H98", "&H98", "&H98", "&H98", "&H98" , "&H98", "&H98", "&H98", "&H98", ""    , "&H98" }},  // ignition against water temperature
    /* 54 */ {{ "&H96", "&H96", "&H96", "&H96" , "&H96" , "&H96", "&H96", "&H96", "&H96", "&H96" , "&H96", ""    , "&H96", "&H96", ""    , "&H96" }},  // ignition against water temperature when cool, first form
    /* 55 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , "&H96", ""    , ""    , ""    , ""     }},  // the same, second form
    /* 56 */ {{ "&H9C", "&H9C", "&H9C", "&H9C" , "&H9C" , "&H9C", "&H9C", "&H9C", "&H9C", "&H9C" , "&H9C", "&H9C", "&H9C", "&H9C", ""    , "&H9C" }},  // ignition against battery voltage
    /* 57 */ {{ "&H9B", "&H9B", "&H9B", "&H9B" , "&H9B" , "&H9B", "&H9B", "&H9B", "&H9B", "&H9B" , "&H9B", "&H9B", "&H9B", "&H9B", ""    , "&H9B" }},  // dwell against RPM
    /* 58 */ {{ ""    , ""    , ""    , ""     , ""     , ""    , ""    , ""    , ""    , ""     , ""    , "&H9E", ""    , ""    , ""    , ""     }},  // second dwell against RPM
}};
// clang-format on

constexpr std::array<SettingsRecord, 16> TransposeFields() {
    std::array<SettingsRecord, 16> records{};
    for (std::size_t family = 0; family < 16; ++family) {
        for (std::size_t field = 0; field < 58; ++field)
            records[family][field] = kFields[field].Family[family];
    }
    return records;
}
constexpr std::array<SettingsRecord, 16> kSettingsRecords = TransposeFields();

// The log record's blocks and captions, a line to each group of families. These rows are derived, not
// read off hardware: docs/catalogue.md gives the reasoning for each.
// clang-format off
struct DerivedField { int Field; std::string_view Families; std::string_view Code; };

constexpr DerivedField kDerivedFields[] = {
    { 1, "ABCDEFGHIJKLMNP",  "&H9A"},  // derived: ignition against air temperature
    { 2, "CJN",              "&H97"},  // derived: boost against ignition, first form
    { 3, "CJN",              "&H99"},  // derived: ignition against TPS, second form
    { 3, "ABDEFGHIKLMP",     "&HBB"},  // derived: ignition against TPS, first form
    { 4, "ABDEFGHIKLMP",     "&H9D"},  // derived: boost against ignition, second form
    { 5, "ABCDEFGHIJKMNP",   "&H8D"},  // derived: injectors
    { 5, "O",                "&H5B"},  // derived: injectors of the oldest builds
    { 6, "L",                "&H8D"},  // derived: injectors, primary and secondary
    { 8, "ABCDEFGHIJKLMNP",  "&H92"},  // derived: injector lag
    { 9, "L",                "&H9F"},  // derived: secondary injector lag
    {10, "L",                "&H7B"},  // derived: injector overlap
};

// Fields 16 to 23: the captions of the rev and idle rows.
struct DerivedCaptions { std::string_view Families; std::array<std::string_view, 8> Captions; };

constexpr DerivedCaptions kDerivedCaptions[] = {
    {"M",        {"Rev Limit", "VTLI High", "VTLI Low", "F/C A/E", "F/C A/C", "Idle A/E", "Idle A/C", "?\?\?"}},       // derived
    {"ABFGHIKL", {"Rev Limit", "F/C A/E", "F/C E/L", "F/C A/C", "Idle A/E", "Idle E/L", "Idle A/C", "?\?\?"}},         // derived
    {"CDEJNOP",  {"Rev Limit", "?\?\?", "?\?\?", "?\?\?", "?\?\?", "?\?\?", "?\?\?", "?\?\?"}},  // derived
};

// Channel sets. "???" and "???(2)" are one and two bytes of unknown meaning.
using BasicSet = std::array<std::string_view, 10>;
using AdvancedSet = std::array<std::string_view, 21>;

constexpr BasicSet kB1 = {"InjDuty", "IgnTmng", "AirFlow", "EngRev", "Speed", "Boost", "Knock", "WtrTemp", "AirTemp", "BatVolt"};
constexpr BasicSet kB2 = {"InjDuty", "IgnTmng", "PimVolt", "EngRev", "Speed", "Boost", "Knock", "WtrTemp", "AirTemp", "BatVolt"};
constexpr BasicSet kB3 = {"InjDuty", "IGL", "IGT", "Rpm", "Speed", "Boost", "Knock", "WtrTemp", "AirTemp", "BatVolt"};
constexpr BasicSet kB4 = {"InjDuty", "IgnTmng", "KPM Frq", "EngRev", "Speed", "Boost", "Knock", "WtrTemp", "AirTemp", "BatVolt"};
constexpr BasicSet kB5 = {"InjDuty", "*IgnTmng", "AirFlow", "EngRev", "Speed", "Boost", "*Knock", "*WtrTemp", "*AirTemp", "BatVolt"};

constexpr AdvancedSet kA1 = {"RPM", "Load", "MAFS1", "?\?\?(2)", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "MAFS Act", "O2S1", "?\?\?", "TPS V"};
constexpr AdvancedSet kA2 = {"RPM", "Load", "MAFS1", "MAFS2", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "MAFS Act", "O2S1", "O2S2", "TPS V"};
constexpr AdvancedSet kA3 = {"RPM", "PIM", "AFL V", "VTA V", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "?\?\?(2)", "O2S1", "O2S2", "?\?\?", "?\?\?"};
constexpr AdvancedSet kA4 = {"RPM", "PIM", "PIM V", "TPS V", "InjFrPr", "Inj +/-", "IGL", "IGT", "FuelT", "Oil", "PC%",
                        "WG%", "WtrT", "AirT", "Knock", "BatV", "Speed", "?\?\?(2)", "O2S", "?\?\?", "InjFrSc"};
constexpr AdvancedSet kA5 = {"RPM", "PIM", "PIM V", "TPS V", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "?\?\?(2)", "O2S", "AirT2", "TPS2V"};
constexpr AdvancedSet kA6 = {"RPM", "PIM", "PIM V", "TPS V", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "RSVC", "O2S", "?\?\?", "?\?\?(2)"};
constexpr AdvancedSet kA7 = {"RPM", "PIM", "PIM V", "TPS V", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "?\?\?(2)", "O2S", "?\?\?", "?\?\?", "?\?\?"};
constexpr AdvancedSet kA8 = {"RPM", "PIM", "PIM V", "TPS V", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "?\?\?(2)", "O2S1", "O2S2", "?\?\?"};
constexpr AdvancedSet kA9 = {};
constexpr AdvancedSet kA10 = {"RPM", "PIM", "PIM V", "TPS V", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "?\?\?(2)", "O2S1", "O2S2", "?\?\?(2)"};
constexpr AdvancedSet kA11 = {"RPM", "Load", "AFL V", "VTA V", "Inj ms", "Inj +/-", "IGN", "Dwell", "Boost", "Duty",
                        "WtrT", "AirT", "Knock", "BatV", "Speed", "?\?\?(2)", "O2S1", "O2S2", "?\?\?", "?\?\?"};

constexpr ChannelRow kChannelRows[] = {
    /*  0 */ {kB1, kA1,  "&H66", "&H6A", "&H68", "&H69"},
    /*  1 */ {kB1, kA1,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /*  2 */ {kB1, kA2,  "&H66", "&H6A", "&H68", "&H69"},
    /*  3 */ {kB1, kA2,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /*  4 */ {kB1, kA3,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /*  5 */ {kB1, kA9,  "&H66", "&H6A", "&H68", "&H69"},
    /*  6 */ {kB2, kA5,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /*  7 */ {kB2, kA6,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /*  8 */ {kB2, kA7,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /*  9 */ {kB2, kA8,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /* 10 */ {kB2, kA10, "&HDA", "&HDE", "&HDB", "&HDD"},
    /* 11 */ {kB3, kA4,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /* 12 */ {kB4, kA2,  "&HDA", "&HDE", "&HDB", "&HDD"},
    /* 13 */ {kB5, kA11, "&HDA", "&HDE", "&HDB", "&H1DD"},
};

constexpr Build kBuilds[] = {
    {"1JZ-GTE23.12",   'A',  8},
    {"1JZ-GTE23.13",   'A',  8},
    {"1JZ-GTE33.20",   'A',  8},
    {"1JZ-GTE33.20A",  'A',  8},
    {"1JZ-GTE33.21",   'A',  8},
    {"1JGT2PRO3.122",  'A',  8},
    {"1JGT3PRO3.212",  'A',  8},
    {"2JGT1PRO4.10C",  'A',  8},
    {"2JZ-GTE14.10",   'A',  8},
    {"2JZ-GTE14.10B",  'A',  8},
    {"3S-GTE1.44",     'A',  6},
    {"3S-GTE1.61",     'A',  6},
    {"3S-GTE22.01A",   'A',  6},
    {"3S-GTE22.12",    'A',  6},
    {"3S-GTE22.12A",   'A',  6},
    {"3S-GTE22.20",    'A',  6},
    {"3S-GTE33.12B",   'A',  6},
    {"3S-GTE33.20",    'A',  6},
    {"3SGT1PRO1.612",  'A',  6},
    {"3S-GTE1.51A",    'A',  6},
    {"4A-GE1.00",      'A',  6},
    {"4A-GE11.14A",    'A',  6},
    {"4AGE1PRO1.142",  'A',  6},
    {"4E-FTE11.10",    'A',  6},
    {"4E-FTE11.31",    'A',  6},
    {"4E-FTE21.31",    'A',  6},
    {"4G63-D2.21B",    'A', 10},
    {"4G63-D4.03",     'A', 10},
    {"4G63-D6.10",     'A', 10},
    {"4G63D-US6.10",   'A', 10},
    {"4G63D-US6.11",   'A', 10},
    {"1JZGT-D6.03",    'B',  8},
    {"4A-GE22.01",     'C',  0},
    {"4A-GE33.00",     'C',  0},
    {"RB20DET2.32A",   'C',  0},
    {"RB20DET2.32B",   'C',  0},
    {"RB25DET2.20E",   'C',  0},
    {"RB25DET2.32A",   'C',  0},
    {"RB25DET2.322",   'C',  0},
    {"RB25DET2.33",    'C',  0},
    {"RB25DET4.33A",   'C',  0},
    {"RB25DET4.34",    'C',  0},
    {"RB25DET4.35A",   'C',  0},
    {"RB25DET4.36",    'C',  0},
    {"RB201PRO2.322",  'C',  0},
    {"RB251PRO2.322",  'C',  0},
    {"RB252PRO4.332",  'C',  0},
    {"RB26DETT4.23",   'C',  2},
    {"RB26DETT4.08D",  'C',  2},
    {"RB26DETT4.08Z",  'C',  2},
    {"RB26DETT4.09",   'C',  2},
    {"RB26DETT4.10",   'C',  2},
    {"RB26DETT4.23",   'C',  2},
    {"RB26 Pro4.30",   'C',  2},
    {"RB26PRO4.30A",   'C',  2},
    {"RB26PRO4.31",    'C',  2},
    {"RB26PRO14.31",   'C',  2},
    {"RB26PRO4.40",    'C',  2},
    {"RB26PRO4.41",    'C',  2},
    {"RB26PRO24.41",   'C',  2},
    {"RB261PRO5.032",  'C',  2},
    {"RB26PRO25.032",  'C',  2},
    {"SR20DET13.00B",  'C',  0},
    {"SR20DET13.01",   'C',  0},
    {"SR20DET13.12A",  'C',  0},
    {"SR20DET13.13",   'C',  0},
    {"SR20DET13.20",   'C',  0},
    {"SR20DET23.00B",  'C',  0},
    {"SR20DET23.01",   'C',  0},
    {"SR20DET23.12A",  'C',  0},
    {"SR20DE23.13",    'C',  0},
    {"SR20DE33.13",    'C',  0},
    {"SR20DET34.00A",  'C',  0},
    {"SR20DET34.00B",  'C',  0},
    {"SR20DET34.01",   'C',  0},
    {"SR20DE14.12",    'C',  0},
    {"SR20DET34.12B",  'C',  0},
    {"SR20DET34.20",   'C',  0},
    {"SR203PRO4.202",  'C',  0},
    {"SR20DET43.00B",  'C',  0},
    {"SR20DET43.00C",  'C',  0},
    {"SR20DET43.01A",  'C',  0},
    {"SR20DET43.12A",  'C',  0},
    {"SR20DE43.13",    'C',  0},
    {"SR20DET51.33",   'C',  0},
    {"SR206PRO1.332",  'C',  0},
    {"SR20DET51.35",   'C',  0},
    {"SR20DET53.12A",  'C',  0},
    {"SR201PRO3.202",  'C',  0},
    {"SR202PRO3.122",  'C',  0},
    {"SR204PRO3.122",  'C',  0},
    {"SR205PRO3.122",  'C',  0},
    {"CA18DET3.13",    'C',  0},
    {"CA181PRO3.132",  'C',  0},
    {"EJ20G2.33D",     'C',  0},
    {"EJ20G2.40A",     'C',  0},
    {"EJ20GPRO2.402",  'C',  0},
    {"EJ20K4.03A",     'C',  0},
    {"EJ20K5.00",      'C',  0},
    {"EJ20KPRO4.032",  'C',  0},
    {"EJ20R4.03A",     'C',  0},
    {"1JZGT-AT3.43",   'D', 13},
    {"1JZGT-AT3.54",   'E', 13},
    {"1JZ-GTE1.87",    'F',  4},
    {"1JZ-GTE1.88",    'F',  4},
    {"1JZ-GTE1.91A",   'F',  4},
    {"1JZ-GTE2.10",    'F',  4},
    {"1JZ-GTE2.02",    'F',  4},
    {"1JZ-GTE4.03",    'F',  4},
    {"1JGT1PRO2.102",  'F',  4},
    {"1ZZ-FE3.14",     'G',  4},
    {"1ZZ-FE3.20",     'G',  4},
    {"1ZZ-FET4.12",    'G',  4},
    {"2ZZ-GE2.50B",    'H',  4},
    {"2ZZ-GE2.61",     'H',  4},
    {"2ZZ-GE2.71A",    'H',  4},
    {"2ZZ-GET2.71",    'H',  4},
    {"3S-GE3.63",      'I',  4},
    {"3S-GE3.66",      'I',  4},
    {"3S-GE3.67",      'I',  4},
    {"3S-GE3.70",      'I',  4},
    {"3S-GE3.70A",     'I',  4},
    {"3S-GE3.80A",     'I',  4},
    {"3S-GE4.08",      'I',  4},
    {"3S-GE4.09",      'I',  4},
    {"3S-GE4.09A",     'I',  4},
    {"3S-GE4.10A",     'I',  4},
    {"4G631.65",       'J', 12},
    {"4G631.67C",      'J', 12},
    {"4G631.68",       'J', 12},
    {"4G633.05B",      'J', 12},
    {"4G635.28",       'J', 12},
    {"4G63US3.05B",    'J', 12},
    {"4G63-US3.05B",   'J', 12},
    {"4G63-US5.28",    'J', 12},
    {"4G63-US5.32",    'J', 12},
    {"D15B1.10",       'K', 10},
    {"13B-REW1.92A",   'L', 11},
    {"13B-REW1.93",    'L', 11},
    {"13B-REW3.11",    'L', 11},
    {"13B-REW3.11A",   'L', 11},
    {"13B-REW4.11",    'L', 11},
    {"13B-REW5.06",    'L', 11},
    {"13B-REW5.07",    'L', 11},
    {"13B-REW5.08",    'L', 11},
    {"13B-REW6.07",    'L', 11},
    {"13B-REW7.06",    'L', 11},
    {"13B-REW7.07",    'L', 11},
    {"13BR1PRO4.002",  'L', 11},
    {"13BR2PRO2.112",  'L', 11},
    {"13BR3PRO3.002",  'L', 11},
    {"13B-REW22.01B",  'L', 11},
    {"13B-REW22.11",   'L', 11},
    {"13B13.01",       'L', 11},
    {"13B13.10A",      'L', 11},
    {"13B13.11",       'L', 11},
    {"B16A11.50C",     'M',  7},
    {"B16B1.48A",      'M',  7},
    {"B16B21.48B",     'M',  7},
    {"B16B1.50A",      'M',  7},
    {"B16B1.501",      'M',  7},
    {"B16B3.11",       'M',  7},
    {"B18C1PRO1.522",  'M',  7},
    {"B18C1.523",      'M',  7},
    {"B18C2.02A",      'M',  7},
    {"B18C2.02B",      'M',  7},
    {"B18C4.10",       'M',  7},
    {"RB25DET5.00",    'N',  1},
    {"RB25DET5.01A",   'N',  1},
    {"RB25DET5.01@",   'N',  1},
    {"RB25DET5.10",    'N',  1},
    {"RB25DET7.00",    'N',  1},
    {"RB25DET5.11",    'N',  1},
    {"RB26DETT6.42",   'N',  3},
    {"RB26DETT6.43",   'N',  3},
    {"RB26DETT6.44A",  'N',  3},
    {"RB26DETT6.45A",  'N',  3},
    {"RB26DETT7.03B",  'N',  3},
    {"RB26DETT8.02",   'N',  3},
    {"RB26DETT8.02A",  'N',  3},
    {"RB26DETT8.03",   'N',  3},
    {"RB26DETT8.04A",  'N',  3},
    {"RB26DETT9.00",   'N',  3},
    {"SR20DET15.01",   'N',  1},
    {"SR20DET15.02",   'N',  1},
    {"SR20DET15.03",   'N',  1},
    {"SR20DET16.00",   'N',  1},
    {"SR20DET24.06",   'N',  1},
    {"SR20DET35.05",   'N',  1},
    {"SR20DET44.05",   'N',  1},
    {"SR20DET52.04",   'N',  1},
    {"SR20DET52.05",   'N',  1},
    {"EJ2076.23A",     'N',  1},
    {"EJ2076.30",      'N',  1},
    {"EJ2076.30b",     'N',  1},
    {"EJ20K7.12",      'N',  1},
    {"EJ20K7.20",      'N',  1},
    {"RB26DETT3.11D",  'O',  5},
    {"RB26DETT3.12B",  'O',  5},
    {"SR20DET11.70B",  'O',  5},
    {"SR20DET11.88D",  'O',  5},
    {"SR20DET22.15D",  'O',  5},
    {"SR20DET32.15D",  'O',  5},
    {"SR20DET42.15D",  'O',  5},
    {"RB26_1-D7.34A",  'P',  9},
    {"RB26_2-D7.32",   'P',  9},
    {"RB26_2-D7.34A",  'P',  9},
    {"RB25T1-D8.00",   'P',  9},
    {"RB25T2-D6.00",   'P',  9},
    {"SR20T1-D6.03",   'P',  9},
    {"SR20T1-D7.00",   'P',  9},
    {"SR20T2-D5.11A",  'P',  9},
    {"SR20T4-D5.01A",  'P',  9},
    {"SR20T5-D3.06",   'P',  9},
};
// clang-format on

constexpr bool ChannelsAreIndices() {
    for (const Build& build : kBuilds) {
        if (build.Family < 'A' || build.Family > 'P' || build.Channels >= std::size(kChannelRows))
            return false;
    }
    return true;
}
// Every family has one row of captions, and no field two rows for one family.
constexpr bool DerivedRowsAreSound() {
    for (char family = 'A'; family <= 'P'; ++family) {
        int captions = 0;
        for (const DerivedCaptions& row : kDerivedCaptions)
            captions += row.Families.find(family) != row.Families.npos;
        if (captions != 1) return false;
        for (const DerivedField& row : kDerivedFields) {
            int rows = 0;
            for (const DerivedField& other : kDerivedFields) {
                rows += other.Field == row.Field && other.Families.find(family) != other.Families.npos;
            }
            if (rows > 1) return false;
        }
    }
    return true;
}
static_assert(DerivedRowsAreSound());
static_assert(std::size(kBuilds) == 214);
static_assert(ChannelsAreIndices());

}  // namespace

std::span<const Build> Builds() {
    return kBuilds;
}

const Build* FindBuild(std::string_view key) {
    for (const Build& build : kBuilds) {
        if (build.Key == key) return &build;
    }
    return nullptr;
}

const SettingsRecord& SettingsRecordOfFamily(char family) {
    return kSettingsRecords[static_cast<std::size_t>(family - 'A')];
}

std::span<const ChannelRow> ChannelRows() {
    return kChannelRows;
}

const SettingsRecord& SettingsRecordOf(const Build& build) {
    return SettingsRecordOfFamily(build.Family);
}

LogRecord LogRecordOf(const Build& build) {
    LogRecord record{};
    for (const DerivedField& row : kDerivedFields) {
        if (row.Families.find(build.Family) != row.Families.npos) record[row.Field - 1] = row.Code;
    }
    const ChannelRow& channels = kChannelRows[build.Channels];
    record[10] = channels.BlockA;
    record[11] = channels.BlockB;
    record[12] = channels.BlockC;
    record[14] = channels.SensorNameBlock;
    for (const DerivedCaptions& row : kDerivedCaptions) {
        if (row.Families.find(build.Family) == row.Families.npos) continue;
        for (std::size_t i = 0; i < row.Captions.size(); ++i) record[15 + i] = row.Captions[i];
    }
    for (std::size_t i = 0; i < channels.Basic.size(); ++i) record[23 + i] = channels.Basic[i];
    for (std::size_t i = 0; i < channels.Advanced.size(); ++i) record[33 + i] = channels.Advanced[i];
    return record;
}

}  // namespace zandrel
