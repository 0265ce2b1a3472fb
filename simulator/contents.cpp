#include "simulator/contents.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace powerfc {
namespace {

/// Up to 32 numbers or texts of a table row.
struct Numbers {
    template <class... Value>
    constexpr Numbers(Value... value) : Count(sizeof...(value)), At{static_cast<double>(value)...} {}
    int Count;
    double At[32];
};
struct Texts {
    template <class... Value>
    constexpr Texts(Value... value) : Count(sizeof...(value)), At{value...} {}
    int Count;
    std::string_view At[16];
};

/// Which of a group's two forms a row is for.
enum class Form { Any, Plain, Wide };

constexpr Record kSet = Record::Settings;
constexpr Record kLog = Record::Log;

/// Numbers at `Offset`, counted from 1, every `Step` bytes; raw = (number - Bias) / Scale. Size 2: low
/// byte first. Numbers past the end of the block are left out.
struct NumberRow {
    Record Where;
    int Field;
    Form For;
    int Offset, Step, Size;
    double Scale, Bias;
    Numbers Values;
};

struct TextRow {
    Record Where;
    int Field;
    Form For;
    int Offset, Step, Length;
    Texts Values;
};

// clang-format off
constexpr NumberRow kNumbers[] = {
    // group     form       offset step size  scale            bias   values
    // Boost control: setting in use, kg/cm2, duty %
    { kSet, 13,  Form::Any,     3,   1,  1,   1,                  0,  {1} },
    { kSet, 13,  Form::Any,     4,   1,  1,   0.05,               0,  {0.70, 0.90, 1.05, 1.20} },
    { kSet, 13,  Form::Any,     8,   1,  1,   1,                  0,  {30, 38, 44, 50} },
    { kSet, 14,  Form::Any,     1,   1,  1,   1,                  0,  {1} },
    { kSet, 14,  Form::Any,     2,   1,  1,   0.05,               0,  {0.70, 0.90, 1.05, 1.20} },
    { kSet, 14,  Form::Any,     6,   1,  1,   1,                  0,  {32, 40, 46, 52} },
    { kSet, 14,  Form::Any,    10,   1,  1,   1,                  0,  {30, 38, 44, 50} },
    { kSet, 15,  Form::Any,     3,   1,  1,   1,                  0,  {2} },
    { kSet, 15,  Form::Any,     4,   1,  1,   0.05,               0,  {0.70, 0.80, 0.70, 0.85} },
    { kSet, 15,  Form::Any,     8,   1,  1,   1,                  0,  {30, 35, 40, 48} },
    // Rev and idle, rpm: rev limit, then fuel cut and idle in the order of the build's rows
    { kSet, 16,  Form::Any,     1,   2,  2,   1,                  0,  {8000, 1400, 1500, 950, 1050} },
    { kSet, 17,  Form::Any,     1,   2,  2,   1,                  0,  {8000, 1400, 1450, 1500, 950, 1050} },
    { kSet, 18,  Form::Any,     1,   2,  2,   1,                  0,  {8000, 1400, 1450, 1500, 950, 1000, 1050} },
    { kSet, 19,  Form::Plain,   1,   2,  2,   1,                  0,  {8000, 5600, 5200, 1400, 1500, 950, 1050, 0} },
    { kSet, 19,  Form::Wide,    1,   2,  2,   1,                  0,  {7200, 1600, 1400, 1450, 1500, 750, 700, 800, 850} },
    // Turbo transition: throttle V, then rpm low and high
    { kSet, 20,  Form::Any,     1,   1,  1,   0.01953125,         0,  {1.5, 2.5, 3.5} },
    { kSet, 20,  Form::Any,     4,   1,  1,   40,                 0,  {4000, 4240, 4480, 4400, 4640, 4880} },
    // Function select: 0 is on
    { kSet, 21,  Form::Plain,   1,   1,  1,   1,                  0,  {0, 255, 0, 255, 0} },
    { kSet, 21,  Form::Wide,    1,   1,  1,   1,                  0,  {0, 255, 0, 255, 0, 0, 255, 0} },
    // Warnings: threshold, setting
    { kSet, 22,  Form::Any,     2,   1,  2,   0.005,              0,  {5.0} },
    { kSet, 22,  Form::Any,     4,   1,  1,   1,                  0,  {1} },
    { kSet, 23,  Form::Any,     2,   1,  2,   0.1,                0,  {98.0} },
    { kSet, 23,  Form::Any,     4,   1,  1,   1,                  0,  {1} },
    { kSet, 24,  Form::Any,     2,   1,  2,   1,                  0,  {60} },
    { kSet, 24,  Form::Any,     4,   1,  1,   1,                  0,  {2} },
    { kSet, 25,  Form::Any,     2,   1,  2,   0.00390625,         0,  {1.0} },
    { kSet, 27,  Form::Any,     1,   1,  1,   1,                  0,  {255, 255, 0, 255, 0, 255, 0, 0, 255, 0, 255, 0, 0, 255} },
    // Water temperature correction at +80 +50 +30 +10 -10 -30 C, low load then high; load points
    { kSet, 28,  Form::Any,     1,   1,  1,   0.015625,           0,  {1.0, 1.03125, 1.09375, 1.203125, 1.40625, 1.703125} },
    { kSet, 28,  Form::Any,     7,   1,  1,   0.015625,           0,  {1.0, 1.015625, 1.0625, 1.140625, 1.296875, 1.5} },
    { kSet, 28,  Form::Any,    13,   1,  1,   256,                0,  {2560, 7680} },
    { kSet, 29,  Form::Any,     1,   1,  1,   0.015625,           0,  {1.0, 1.03125, 1.09375, 1.203125, 1.40625, 1.703125} },
    { kSet, 29,  Form::Any,     7,   1,  1,   0.015625,           0,  {1.0, 1.015625, 1.0625, 1.140625, 1.296875, 1.5} },
    // Accelerate injector: rpm, ms amount, ms decay
    { kSet, 30,  Form::Any,     1,   1,  1,   40,                 0,  {5000, 4000, 3000, 2000, 1000} },
    { kSet, 30,  Form::Any,     6,   2,  2,   0.004,              0,  {1.200, 1.600, 2.200, 3.000, 4.000} },
    { kSet, 30,  Form::Any,    16,   2,  2,   0.004,              0,  {0.240, 0.280, 0.320, 0.400, 0.480} },
    { kSet, 31,  Form::Any,     1,   2,  2,   0.004,              0,  {1.200, 1.600, 2.200, 3.000, 4.000} },
    { kSet, 31,  Form::Any,    11,   2,  2,   0.004,              0,  {0.240, 0.280, 0.320, 0.400, 0.480} },
    // Cranking ms at +80 ... -30 C
    { kSet, 32,  Form::Any,     1,   2,  2,   0.004,              0,  {6.0, 9.2, 13.6, 22.0, 40.0, 72.0} },
    // Injector against throttle movement, fuel temperature, throttle, air temperature
    { kSet, 33,  Form::Any,     1,   3,  1,   0.0048828125,       0,  {1.0, 0.5, 0.1} },
    { kSet, 33,  Form::Any,     2,   3,  2,   0.00390625,         0,  {1.5, 1.0, 0.5} },
    { kSet, 34,  Form::Any,     1,   3,  1,   1,                -80,  {90, 60, 30} },
    { kSet, 34,  Form::Any,     2,   3,  2,   0.00390625,         0,  {1.125, 1.0625, 1.0} },
    { kSet, 35,  Form::Any,     1,   2,  1,   0.01953125,         0,  {4.0, 3.0, 2.0, 1.5, 1.0, 0.5} },
    { kSet, 35,  Form::Any,     2,   2,  1,   0.0078125,          0,  {1.125, 1.09375, 1.0625, 1.03125, 1.0, 1.0} },
    { kSet, 36,  Form::Any,     1,   2,  2,   0.00390625,         0,  {0.9375, 0.96875, 1.0, 1.03125, 1.0625, 1.125} },
    { kSet, 37,  Form::Any,     1,   2,  1,   1,                -80,  {80, 60, 40} },
    { kSet, 37,  Form::Any,     2,   2,  1,   0.0078125,          0,  {1.125, 1.0625, 1.0} },
    { kSet, 37,  Form::Any,     7,   1,  1,   256,                0,  {10240, 15360} },
    { kSet, 38,  Form::Any,     1,   2,  1,   1,                -80,  {105, 90} },
    { kSet, 38,  Form::Any,     2,   2,  1,   0.0078125,          0,  {1.125, 1.0} },
    { kSet, 38,  Form::Any,     5,   1,  1,   256,                0,  {10240, 15360} },
    // Injector adjustment %, by rpm 1000 to 8000 and by sensor volts; air-flow adjustment %
    { kSet, 42,  Form::Any,     1,   1,  1,   1,                  0,  {1} },
    { kSet, 42,  Form::Any,    92,   1,  1,   0.390625,          50,  {100, 100, 100, 101.5625, 101.5625, 100, 99.21875, 98.4375,
                                                                       100, 100, 100, 100.78125, 101.5625, 102.34375, 103.125, 103.125} },
    { kSet, 43,  Form::Any,     1,   4,  2,   0.15,               0,  {1500, 2250, 3000, 3750, 4500} },
    { kSet, 43,  Form::Any,     3,   4,  2,   1,                  0,  {120, 100, 80, 60, 40} },
    { kSet, 44,  Form::Any,     1,   1,  1,   1,                  0,  {2} },
    { kSet, 44,  Form::Any,    92,   2,  2,   0.1,                0,  {100.0, 100.0, 100.0, 101.0, 101.5, 102.0, 101.0, 100.0} },
    // Oiler and fans against water temperature
    { kSet, 51,  Form::Any,     1,   2,  1,   1,                -80,  {110, 90, 60} },
    { kSet, 51,  Form::Any,     2,   2,  1,   0.0078125,          0,  {1.25, 1.125, 1.0} },
    { kSet, 52,  Form::Any,     1,   1,  1,   1,                -80,  {92, 97, 103} },
    // Ignition: degrees of retard against water temperature, hot and cool; battery; dwell
    { kSet, 53,  Form::Any,     1,   2,  1,   1,                -80,  {110, 95} },
    { kSet, 53,  Form::Any,     2,   2,  1,   1,                  0,  {6, 0} },
    { kSet, 54,  Form::Any,     1,   1,  1,   1,                  0,  {0, 2, 4, 8} },
    { kSet, 55,  Form::Any,     1,   2,  1,   1,                -80,  {60, -10} },
    { kSet, 55,  Form::Any,     2,   2,  1,   1,                  0,  {0, 5} },
    { kSet, 56,  Form::Any,     1,   1,  1,   0.015625,           0,  {0.84375, 0.90625, 1.0, 1.203125, 1.40625, 1.703125} },
    { kSet, 57,  Form::Any,     1,   1,  1,   1,                  0,  {30, 38, 60, 96, 128, 140} },
    { kSet, 58,  Form::Any,     1,   1,  1,   1,                  0,  {32, 40, 64, 100, 130, 144} },
    { kLog,  1,  Form::Any,     1,   2,  1,   1,                -80,  {90, 70, 50} },
    { kLog,  1,  Form::Any,     2,   2,  1,   1,                  0,  {6, 3, 0} },
    { kLog,  2,  Form::Any,     1,   1,  1,   256,                0,  {12800, 7680} },
    { kLog,  3,  Form::Any,     1,   2,  1,   0.01953125,         0,  {4.0, 3.0, 2.0, 1.0} },
    { kLog,  3,  Form::Plain,   2,   2,  1,   1,               -128,  {-3, -2, 0, 2} },
    { kLog,  3,  Form::Wide,    2,   2,  1,   1,                  0,  {6, 4, 2, 0} },
    { kLog,  4,  Form::Any,     1,   1,  1,   4,                  0,  {600, 200} },
    { kLog,  4,  Form::Any,     3,   1,  1,   256,                0,  {7680, 12800} },
    // Injectors: correction %, lag ms
    { kLog,  5,  Form::Any,     1,   2,  2,   0.0030517578125,    0,  {100, 100, 100, 100, 100, 100} },
    { kLog,  5,  Form::Any,    13,   2,  2,   0.004,       -131.072,  {0.0, 0.0, 0.04, 0.0, -0.04, 0.0} },
    { kLog,  6,  Form::Any,     1,   2,  2,   0.0030517578125,    0,  {100, 98} },
    { kLog,  6,  Form::Any,     5,   2,  2,   0.004,       -131.072,  {0.0, 0.08, 0.0, 0.12} },
    { kLog,  6,  Form::Any,    13,   2,  2,   1,                  0,  {550, 850} },
    { kLog,  6,  Form::Any,    17,   2,  2,   0.1,                0,  {45.0} },
    { kLog,  6,  Form::Any,    19,   2,  2,   0.004,              0,  {1.8} },
    { kLog,  8,  Form::Any,     1,   2,  2,   0.004,              0,  {0.480, 0.600, 0.760, 1.000, 1.480, 2.400} },
    { kLog,  9,  Form::Any,     1,   2,  2,   0.004,              0,  {0.520, 0.640, 0.800, 1.080, 1.560, 2.520} },
    { kLog, 10,  Form::Any,     1,   2,  1,   256,                0,  {15360, 10240, 5120} },
    { kLog, 10,  Form::Any,     2,   2,  1,   1,                  0,  {24, 16, 8} },
};

constexpr TextRow kTexts[] = {
    // group     form       offset step length
    { kSet, 21,  Form::Plain,   6,  16,  16,  {"Boost control", "Injector warn", "Knock warning", "O2 feedback", "Idle-IG control"} },
    { kSet, 21,  Form::Wide,    9,  16,  16,  {"Boost control", "Injector warn", "Knock warning", "O2 feedback", "Idle-IG control",
                                               "Lock-up control", "Shift control", "Line pressure"} },
    { kSet, 42,  Form::Any,     2,  18,  18,  {"Standard sensor", "2.0 bar sensor", "3.0 bar sensor", "4.0 bar sensor", "Custom sensor"} },
    { kSet, 44,  Form::Any,     2,  18,  18,  {"Standard meter", "Meter 65 mm", "Meter 80 mm", "Meter 90 mm", "Custom meter"} },
};

// Sensor names: analogue inputs of four characters, switches of three.
constexpr Texts kAnalogueNames = {"AirF", "TPS ", "O2-1", "O2-2", "WtrT", "AirT", "EGRT", "BatV", "PIM ", "TPS2", "OilT", "Aux "};
constexpr Texts kInputNames  = {"STR", "A/C", "PSW", "NTR", "SPD", "E/L", "IDL", "CLT"};
constexpr Texts kOutputNames = {"FPD", "A/R", "FN1", "FN2", "CCN", "WGV", "EVP", "CEL"};
constexpr Texts kGearNames   = {"P/N", "1st", "2nd", "3rd", "4th", "REV", "LUP", "TCC"};

// Gearbox tables: pairs of throttle % and kph; the line pressure is a byte % and a word.
constexpr Numbers kShiftUp   = {10, 18, 30, 30, 60, 42, 100, 55, 10, 35, 30, 55, 60, 80, 100, 105, 10, 55, 30, 80, 60, 120, 100, 160};
constexpr Numbers kShiftDown = {10, 10, 30, 18, 60, 28, 100, 40, 10, 25, 30, 40, 60, 60, 100, 85, 10, 42, 30, 60, 60, 95, 100, 130};
constexpr Numbers kFullLock  = {10, 60, 40, 85, 80, 120, 10, 50, 40, 75, 80, 110};
constexpr Numbers kFlexLock  = {10, 45, 40, 65, 80, 95, 10, 40, 40, 60, 80, 90};
struct LinePressure { int ThrottlePercent, Setting; };
constexpr LinePressure kLinePressure[] = { {100, 900}, {50, 550}, {0, 250} };
// clang-format on

// The map axes: 20 columns of engine speed, 20 rows of load.
constexpr double kRpmStep = 400;
constexpr double kLoadStep = 800;

void Put(Bytes& block, int offset, int size, double raw) {
    const double top = size == 1 ? 255 : 65535;
    const auto value = static_cast<unsigned>(std::clamp(std::nearbyint(raw), 0.0, top));
    for (int i = 0; i < size; ++i) {
        const auto place = static_cast<std::size_t>(offset - 1 + i);
        if (place < block.size()) block[place] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

// Filled with blanks to `length`.
void PutText(Bytes& block, int offset, int length, std::string_view text) {
    for (int i = 0; i < length; ++i) {
        const auto place = static_cast<std::size_t>(offset - 1 + i);
        const auto at = static_cast<std::size_t>(i);
        if (place < block.size()) block[place] = at < text.size() ? static_cast<std::uint8_t>(text[at]) : ' ';
    }
}

bool Fits(Form form, bool wide) {
    return form == Form::Any || (form == Form::Wide) == wide;
}

// The engine's needs at one cell, in degrees, ms or factors. Load 0 to 1 over the rows.
double MapValue(MapKind kind, double rpm, double load) {
    const double advance =
        std::clamp(12 + 28 * std::min(1.0, rpm / 4500) - 26 * std::max(0.0, load - 0.3), 5.0, 45.0);
    const double filling = 1 - 0.25 * std::abs(rpm - 5200) / 5200;  // best where the cams breathe best
    const double band = std::max(0.0, 1 - std::abs(rpm - 3600) / 3600);
    switch (kind) {
        case MapKind::Injection:
            // Lean while cruising, richer towards full load and top speed.
            return 1.0 - 0.03 * std::max(0.0, 1 - std::abs(load - 0.35) / 0.25) +
                   0.2 * std::max(0.0, load - 0.5) * (0.6 + rpm / 10000);
        case MapKind::Ignition:
        case MapKind::Leading:
            return advance;
        case MapKind::Trailing:
            return advance - 10;
        case MapKind::Vvt:
        case MapKind::Intake:
            return 40 * band * (0.4 + 0.6 * load);
        case MapKind::Exhaust:
            return 20 * band * load;
        case MapKind::Base:
            return 0.6 + 7.4 * load * filling;
        case MapKind::BaseSecond:
            return 0.7 + 7.9 * load * filling;
    }
    return 0;
}

double MapRaw(MapKind kind, double value) {
    switch (kind) {
        case MapKind::Injection:
            return (value - 0.5) * 256;
        case MapKind::Leading:
        case MapKind::Trailing:
            return value + 25;
        case MapKind::Base:
        case MapKind::BaseSecond:
            return value / 0.004;
        default:
            return value;
    }
}

void FillMap(const MapSpec& map, Memory& memory) {
    for (int i = 0; i < map.Blocks(); ++i)
        memory[static_cast<std::size_t>(map.FirstBlock + i)].assign(100, 0xCC);
    for (int cell = 0; cell < 400; ++cell) {
        // Column by column: a column is one engine speed.
        const int row = cell % 20 + 1;
        const int column = cell / 20 + 1;
        const double raw = MapRaw(map.Kind, MapValue(map.Kind, column * kRpmStep, row / 20.0));
        const int place = cell * map.CellBytes;
        Put(memory[static_cast<std::size_t>(map.FirstBlock + place / 100)], place % 100 + 1, map.CellBytes,
            raw);
    }
}

void FillMapReference(Bytes& block) {
    for (int k = 0; k < 20; ++k) {
        Put(block, 1 + 2 * k, 2, (k + 1) * kLoadStep);
        Put(block, 41 + 2 * k, 2, (k + 1) * kRpmStep);
    }
}

// Row 0: the volts of 32 points up to 5.12 V; rows 1 to 5: ever larger meters.
void FillAirFlow(int row, bool fineVolts, Bytes& block) {
    for (int k = 0; k < 32; ++k) {
        const double volts = 0.16 * (k + 1);
        const double flow = (0.7 + 0.3 * row) * std::pow(volts, 3) * 80;
        Put(block, 2 * k + 1, 2, row > 0 ? flow : volts / (fineVolts ? 0.001 : 0.005));
    }
}

void FillGroup(const GroupSpec& group, Bytes& block) {
    for (const NumberRow& row : kNumbers) {
        if (row.Where != group.Where || row.Field != group.Field || !Fits(row.For, group.Wide)) continue;
        for (int i = 0; i < row.Values.Count; ++i) {
            Put(block, row.Offset + i * row.Step, row.Size, (row.Values.At[i] - row.Bias) / row.Scale);
        }
    }
    for (const TextRow& row : kTexts) {
        if (row.Where != group.Where || row.Field != group.Field || !Fits(row.For, group.Wide)) continue;
        for (int i = 0; i < row.Values.Count; ++i) {
            PutText(block, row.Offset + i * row.Step, row.Length, row.Values.At[i]);
        }
    }
    if (group.Where != Record::Settings) return;
    if (group.Field >= 39 && group.Field <= 41) FillMapReference(block);
    if (group.Field >= 45 && group.Field <= 50) FillAirFlow(group.Field - 45, group.Wide, block);
}

void PutTexts(Bytes& block, int offset, int length, const Texts& texts, int count) {
    for (int i = 0; i < count; ++i) PutText(block, offset + i * length, length, texts.At[i]);
}

void FillSensorNames(const Shape& shape, Memory& memory) {
    Bytes& names = memory[static_cast<std::size_t>(shape.SensorNames)];
    if (!shape.LongSensors()) {
        names.assign(80, 0xCC);
        PutTexts(names, 1, 4, kAnalogueNames, 8);
        PutTexts(names, 33, 3, kInputNames, 8);
        PutTexts(names, 57, 3, kOutputNames, 8);
        return;
    }
    names.assign(48, 0xCC);
    PutTexts(names, 1, 4, kAnalogueNames, 12);
    Bytes& switches = memory[static_cast<std::size_t>(shape.SwitchNames)];
    switches.assign(72, 0xCC);
    PutTexts(switches, 1, 3, kInputNames, 8);
    PutTexts(switches, 25, 3, kOutputNames, 8);
    PutTexts(switches, 49, 3, kGearNames, 8);
}

void FillTransmission(int code, Bytes& block) {
    block.assign(static_cast<std::size_t>(TransmissionLength(code)), 0xCC);
    if (code == 0x44) {
        for (int i = 0; i < 3; ++i) {
            Put(block, 1 + 3 * i, 1, kLinePressure[i].ThrottlePercent);
            Put(block, 2 + 3 * i, 2, kLinePressure[i].Setting);
        }
        return;
    }
    const Numbers& numbers = code == 0x40   ? kShiftUp
                             : code == 0x41 ? kShiftDown
                             : code == 0x42 ? kFullLock
                                            : kFlexLock;
    for (int i = 0; i < numbers.Count; ++i) Put(block, 1 + i, 1, numbers.At[i]);
}

}  // namespace

Memory FactoryContents(const Shape& shape, const VersionKey& version) {
    Memory memory;
    for (const GroupSpec& group : shape.Groups) {
        Bytes& block = memory[static_cast<std::size_t>(group.Code)];
        block.assign(static_cast<std::size_t>(group.Length), 0xCC);
        FillGroup(group, block);
        if (group.Where != Record::Settings) continue;
        if (group.Field == 11) PutText(block, 1, 8, version.Engine);
        if (group.Field == 12) PutText(block, 1, 5, version.Number);
    }
    for (const MapSpec& map : shape.Maps) FillMap(map, memory);
    for (const int code : shape.Transmission) FillTransmission(code, memory[static_cast<std::size_t>(code)]);
    FillSensorNames(shape, memory);
    if (shape.Custom >= 0) {
        // Features enabled with the boost switch, 5 degrees of anti-lag retard, factor 1.0, a name.
        const Bytes custom = {0x81, 0xFB, 0x80, 'T', 'U', 'N', 'E', 'R'};
        memory[static_cast<std::size_t>(shape.Custom)] = custom;
    }
    return memory;
}

bool LoadImage(const std::string& path, bool takeAll, Memory& memory) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return false;
    std::string line;
    while (std::getline(file, line)) {
        while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.pop_back();
        if (line.empty() || line.substr(0, 2) == "TT") continue;
        Bytes bytes = FromHex(line);
        if (bytes.empty() || bytes.size() * 2 != line.size()) return false;
        Bytes& block = memory[bytes.front()];
        bytes.erase(bytes.begin());
        if (!takeAll || !block.empty()) {
            if (block.empty() || bytes.size() < block.size()) continue;
            bytes.resize(block.size());
        }
        block = bytes;
    }
    return true;
}

}  // namespace powerfc
