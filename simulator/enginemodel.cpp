#include "simulator/enginemodel.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace powerfc {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kIdleRpm = 950;

/// How a channel stands in a frame.
enum class Coding { Byte, Word, Boost, OneHot };

struct Channel {
    std::string_view Name;
    Coding As;
    double Scale;
    double Bias;
    double (*Value)(const Engine&);
};

// clang-format off
constexpr Channel kBasic[] = {
    // name        coding          scale bias
    { "InjDuty",   Coding::Word,   0.1,   0,  [](const Engine& e) { return e.DutyPercent; } },
    { "BatVolt",   Coding::Word,   0.1,   0,  [](const Engine& e) { return e.BatteryV; } },
    { "IGL",       Coding::Word,   1,   -25,  [](const Engine& e) { return e.IgnitionDeg; } },
    { "IGT",       Coding::Word,   1,   -25,  [](const Engine& e) { return e.TrailingDeg; } },
    { "IgnTmng",   Coding::Word,   1,     0,  [](const Engine& e) { return e.IgnitionDeg; } },
    { "PimVolt",   Coding::Word,   1,     0,  [](const Engine& e) { return e.PressureV * 1000; } },
    { "AirFlow",   Coding::Word,   1,     0,  [](const Engine& e) { return e.AirFlowV * 1000; } },
    { "KPM Frq",   Coding::Word,   1,     0,  [](const Engine& e) { return 30 + e.AirFlowV * 400; } },
    { "EngRev",    Coding::Word,   1,     0,  [](const Engine& e) { return e.Rpm; } },
    { "Rpm",       Coding::Word,   1,     0,  [](const Engine& e) { return e.Rpm; } },
    { "Speed",     Coding::Word,   1,     0,  [](const Engine& e) { return e.SpeedKph; } },
    { "Knock",     Coding::Word,   1,     0,  [](const Engine& e) { return e.Knock; } },
    { "Boost",     Coding::Boost,  1,     0,  [](const Engine& e) { return e.BoostKgCm2; } },
    { "WtrTemp",   Coding::Word,   1,   -80,  [](const Engine& e) { return e.WaterC; } },
    { "AirTemp",   Coding::Word,   1,   -80,  [](const Engine& e) { return e.AirC; } },
    { "*IgnTmng",  Coding::Byte,   1,     0,  [](const Engine& e) { return e.IgnitionDeg; } },
    { "*Knock",    Coding::Byte,   1,     0,  [](const Engine& e) { return e.Knock; } },
    { "*WtrTemp",  Coding::Byte,   1,   -80,  [](const Engine& e) { return e.WaterC; } },
    { "*AirTemp",  Coding::Byte,   1,   -80,  [](const Engine& e) { return e.AirC; } },
    { "*ATFtemp",  Coding::Byte,   1,   -80,  [](const Engine& e) { return e.GearboxC; } },
    { "*Throttl",  Coding::Byte,   1,     0,  [](const Engine& e) { return e.ThrottlePercent; } },
    { "*TorqCnv",  Coding::Byte,   1,     0,  [](const Engine& e) { return e.Gear >= 3 ? 100.0 : 0.0; } },
    { "*GearPos",  Coding::OneHot, 1,     0,  [](const Engine& e) { return std::max(e.Gear, 1.0); } },
};

// The four channels that a long sensor set puts beside the ten.
struct Extra { std::string_view Name; int Position; };
constexpr Extra kExtras[] = { {"*Throttl", 4}, {"*ATFtemp", 14}, {"*GearPos", 16}, {"*TorqCnv", 18} };

constexpr Channel kAdvanced[] = {
    // name        coding         scale  bias
    { "RPM",       Coding::Word,  1,      0,  [](const Engine& e) { return e.Rpm; } },
    { "PIM",       Coding::Word,  1,      0,  [](const Engine& e) { return e.Load; } },
    { "Load",      Coding::Word,  1,      0,  [](const Engine& e) { return e.Load; } },
    { "Inj +/-",   Coding::Word,  1,      0,  [](const Engine& e) { return e.CorrectionRaw; } },
    { "Speed",     Coding::Word,  1,      0,  [](const Engine& e) { return e.SpeedKph; } },
    { "RSVC",      Coding::Word,  1,      0,  [](const Engine& e) { return e.Rpm > 5500 ? 1.0 : 0.0; } },
    { "IGN",       Coding::Byte,  1,      0,  [](const Engine& e) { return e.IgnitionDeg; } },
    { "Oil",       Coding::Byte,  1,      0,  [](const Engine& e) { return e.OilDuty; } },
    { "PC%",       Coding::Byte,  1,      0,  [](const Engine& e) { return e.PrechargePercent; } },
    { "WG%",       Coding::Byte,  1,      0,  [](const Engine& e) { return e.WastegatePercent; } },
    { "Dwell",     Coding::Byte,  1,      0,  [](const Engine& e) { return e.DwellMs * 10; } },
    { "Knock",     Coding::Byte,  1,      0,  [](const Engine& e) { return e.Knock; } },
    { "PIM V",     Coding::Word,  0.001,  0,  [](const Engine& e) { return e.PressureV; } },
    { "TPS V",     Coding::Word,  0.001,  0,  [](const Engine& e) { return e.ThrottleV; } },
    { "AFL V",     Coding::Word,  0.001,  0,  [](const Engine& e) { return e.AirFlowV; } },
    { "VTA V",     Coding::Word,  0.001,  0,  [](const Engine& e) { return e.ThrottleV; } },
    { "MAFS1",     Coding::Word,  0.001,  0,  [](const Engine& e) { return e.AirFlowV; } },
    { "MAFS2",     Coding::Word,  0.001,  0,  [](const Engine& e) { return e.AirFlowV * 0.98; } },
    { "TPS2V",     Coding::Word,  0.001,  0,  [](const Engine& e) { return e.ThrottleV * 0.95; } },
    { "Inj ms",    Coding::Word,  0.004,  0,  [](const Engine& e) { return e.InjectorMs; } },
    { "InjFrPr",   Coding::Word,  0.004,  0,  [](const Engine& e) { return e.InjectorMs; } },
    { "InjFrSc",   Coding::Word,  0.004,  0,  [](const Engine& e) { return e.Rpm > 4000 ? e.InjectorMs * 0.7 : 0.0; } },
    { "IGL",       Coding::Byte,  1,    -25,  [](const Engine& e) { return e.IgnitionDeg; } },
    { "IGT",       Coding::Byte,  1,    -25,  [](const Engine& e) { return e.TrailingDeg; } },
    { "FuelT",     Coding::Byte,  1,    -80,  [](const Engine& e) { return e.FuelC; } },
    { "WtrT",      Coding::Byte,  1,    -80,  [](const Engine& e) { return e.WaterC; } },
    { "AirT",      Coding::Byte,  1,    -80,  [](const Engine& e) { return e.AirC; } },
    { "AirT2",     Coding::Byte,  1,    -80,  [](const Engine& e) { return e.AirC + 12; } },
    { "Boost",     Coding::Boost, 1,      0,  [](const Engine& e) { return e.BoostKgCm2; } },
    { "Duty",      Coding::Word,  0.005,  0,  [](const Engine& e) { return e.WastegatePercent; } },
    { "BatV",      Coding::Byte,  0.1,    0,  [](const Engine& e) { return e.BatteryV; } },
    { "O2S",       Coding::Byte,  0.005,  0,  [](const Engine& e) { return e.OxygenV; } },
    { "O2S1",      Coding::Byte,  0.005,  0,  [](const Engine& e) { return e.OxygenV; } },
    { "O2S2",      Coding::Byte,  0.005,  0,  [](const Engine& e) { return e.OxygenV * 0.97; } },
    { "MAFS Act",  Coding::Word,  0.16,   0,  [](const Engine& e) { return e.AirFlowV * 900; } },
    { "?\?\?",     Coding::Byte,  1,      0,  [](const Engine&)   { return 0xCC * 1.0; } },
    { "?\?\?(2)",  Coding::Word,  1,      0,  [](const Engine&)   { return 0xCCCC * 1.0; } },
};
// clang-format on

const Channel* Find(const Channel* begin, const Channel* end, std::string_view name) {
    const Channel* found = std::find_if(begin, end, [&](const Channel& c) { return c.Name == name; });
    return found == end ? nullptr : found;
}

void PutByte(Bytes& frame, int position, double raw) {
    frame[static_cast<std::size_t>(position - 1)] =
        static_cast<std::uint8_t>(std::clamp(std::nearbyint(raw), 0.0, 255.0));
}

void PutWord(Bytes& frame, int position, double raw) {
    const auto word = static_cast<unsigned>(std::clamp(std::nearbyint(raw), 0.0, 65535.0));
    frame[static_cast<std::size_t>(position - 1)] = static_cast<std::uint8_t>(word & 255);
    frame[static_cast<std::size_t>(position)] = static_cast<std::uint8_t>(word >> 8);
}

int WidthOf(const Channel& channel) {
    return channel.As == Coding::Byte || channel.As == Coding::OneHot ? 1 : 2;
}

void Put(Bytes& frame, int position, const Channel& channel, const Engine& engine) {
    const double value = channel.Value(engine);
    switch (channel.As) {
        case Coding::Byte:
            PutByte(frame, position, (value - channel.Bias) / channel.Scale);
            break;
        case Coding::Word:
            PutWord(frame, position, (value - channel.Bias) / channel.Scale);
            break;
        case Coding::Boost:
            // Over-pressure in hundredths of kg/cm2 with bit 15 set, vacuum in mmHg below 760.
            PutWord(frame, position, value >= 0 ? 32768 + value * 100 : std::max(760 + value * 735.56, 0.0));
            break;
        case Coding::OneHot:
            PutByte(frame, position, 1 << (static_cast<int>(value) - 1));
            break;
    }
}

double Ramp(double from, double to, double share) {
    return from + (to - from) * std::clamp(share, 0.0, 1.0);
}

double MapPlace(double value, double step) {
    return std::clamp(value / step - 1, 0.0, 19.0);
}

}  // namespace

Engine EngineAt(double seconds) {
    const double t = std::fmod(std::max(seconds, 0.0), kCycleSeconds);
    Engine e;
    e.Rpm = kIdleRpm + 25 * std::sin(t * 5);
    double fill = 0.12;  // share of a full cylinder charge, 1 = the air's own pressure
    if (t < 6) {
        // idle
    } else if (t < 9) {
        const double blip = std::max(0.0, std::sin((t - 6) / 1.5 * 2 * kPi));
        e.Rpm = kIdleRpm + 3800 * blip;
        e.ThrottlePercent = 45 * blip;
        fill = 0.12 + 0.35 * blip;
    } else if (t < 24) {
        const double inGear = std::fmod(t - 9, 3.75) / 3.75;
        e.Gear = 1 + std::floor((t - 9) / 3.75);
        e.Rpm = Ramp(e.Gear == 1 ? 1500 : 4200, 7600, inGear);
        e.ThrottlePercent = 100;
        fill = Ramp(0.7, 1.95, inGear * 1.6);
    } else {
        const double share = (t - 24) / 6;
        e.Gear = share < 0.8 ? 4 : 0;
        e.Rpm = Ramp(6000, kIdleRpm, share * 1.25);
        fill = Ramp(0.08, 0.12, share);
    }
    constexpr double kKphAt1000[] = {0, 8.5, 14, 20, 27, 36};
    e.SpeedKph = e.Rpm / 1000 * kKphAt1000[static_cast<int>(e.Gear)];
    e.Load = 800 + fill * 7000;
    e.BoostKgCm2 = fill - 1;
    e.InjectorMs = 0.7 + fill * 6.2;
    e.DutyPercent = e.InjectorMs * e.Rpm / 1200;
    e.CorrectionRaw = 128 + (fill < 1 ? 4 * std::sin(t * 3) : 0);
    e.IgnitionDeg = std::clamp(12 + e.Rpm / 4500 * 26 - fill * 14, 5.0, 45.0);
    e.TrailingDeg = e.IgnitionDeg - 10;
    e.DwellMs = 3.2;
    e.Knock = fill > 1.4 ? 12 + 10 * std::sin(t * 7) : 3 + 2 * std::sin(t * 2);
    e.WaterC = 82 + 3 * std::sin(t / kCycleSeconds * 2 * kPi);
    e.AirC = 32 + std::max(0.0, fill - 1) * 15;
    e.FuelC = 38;
    e.GearboxC = 75;
    e.OilDuty = e.Rpm / 100;
    e.BatteryV = e.Rpm > 1200 ? 14.1 : 13.6;
    e.AirFlowV = std::min(5.1, 0.9 + 0.9 * std::sqrt(fill * e.Rpm / 1000));
    e.ThrottleV = 0.45 + e.ThrottlePercent * 0.0375;
    e.PressureV = std::min(4.9, 0.4 + fill * 1.9);
    e.OxygenV = fill > 1 ? 0.88 : 0.45 + 0.35 * std::sin(t * 6);
    e.PrechargePercent = e.Rpm < 4500 ? 100 : 0;
    e.WastegatePercent = fill > 1 ? 42 : 0;
    return e;
}

Bytes BasicFrame(const Shape& shape, const Engine& engine) {
    Bytes frame(20, 0xCC);
    for (std::size_t row = 0; row < shape.Channels->Basic.size(); ++row) {
        const Channel* channel = Find(std::begin(kBasic), std::end(kBasic), shape.Channels->Basic[row]);
        if (channel) Put(frame, static_cast<int>(row) * 2 + 1, *channel, engine);
    }
    if (shape.LongSensors()) {
        for (const Extra& extra : kExtras) {
            Put(frame, extra.Position, *Find(std::begin(kBasic), std::end(kBasic), extra.Name), engine);
        }
    }
    return frame;
}

Bytes AdvancedFrame(const Shape& shape, const Engine& engine) {
    Bytes frame(30, 0xCC);
    int position = 1;
    for (const std::string_view name : shape.Channels->Advanced) {
        const Channel* channel = Find(std::begin(kAdvanced), std::end(kAdvanced), name);
        if (!channel || position + WidthOf(*channel) > 31) continue;
        Put(frame, position, *channel, engine);
        position += WidthOf(*channel);
    }
    return frame;
}

Bytes SensorFrame(const Shape& shape, const Engine& engine) {
    const bool longSet = shape.LongSensors();
    Bytes frame(longSet ? 28 : 18, 0xCC);
    const double volts[12] = {
        engine.AirFlowV,
        engine.ThrottleV,
        engine.OxygenV,
        engine.OxygenV * 0.97,
        1.1,
        2.6,
        0.4,
        engine.BatteryV / 5,
        engine.PressureV,
        engine.ThrottleV * 0.95,
        1.8,
        0,
    };
    const int analogues = longSet ? 12 : 8;
    for (int i = 0; i < analogues; ++i) {
        PutWord(frame, i * 2 + 1, volts[i] * 100);
        // Bit 7 of the high byte warns: the sensor is at the end of its range.
        frame[static_cast<std::size_t>(i * 2 + 1)] &= 1;
        if (volts[i] > 4.6) frame[static_cast<std::size_t>(i * 2 + 1)] |= 0x80;
    }
    const bool idle = engine.ThrottlePercent < 1;
    const bool neutral = engine.Gear == 0;
    PutByte(frame, analogues * 2 + 1,
            (neutral ? 0x08 : 0) | (idle ? 0x40 : 0) | (engine.SpeedKph > 0 ? 0x10 : 0));
    PutByte(frame, analogues * 2 + 2,
            0x01 | (engine.WaterC > 84 ? 0x04 : 0) | (engine.WastegatePercent > 0 ? 0x20 : 0));
    if (longSet) PutByte(frame, analogues * 2 + 3, 1 << static_cast<int>(engine.Gear));
    return frame;
}

Bytes MapFrame(const Engine& engine) {
    Bytes frame(2);
    PutByte(frame, 1, MapPlace(engine.Rpm, 400));
    PutByte(frame, 2, MapPlace(engine.Load, 800));
    return frame;
}

namespace {

// A wide-band sensor on AN1 and AN2 (difference), fuel and oil pressure, exhaust temperature, spare.
void AuxVolts(const Engine& engine, double (&volts)[8]) {
    volts[0] = engine.BoostKgCm2 > 0 ? 1.7 : 2.5;
    volts[1] = 0.05;
    volts[2] = 2.9 + engine.BoostKgCm2 * 0.5;
    volts[3] = std::min(4.8, 1.0 + engine.Rpm / 2500);
    volts[4] = 1.2 + engine.ThrottlePercent / 50;
    volts[5] = engine.Gear >= 1 ? 5 : 0;
    volts[6] = 2.5;
    volts[7] = 0;
}

}  // namespace

Bytes AuxWords(const Engine& engine) {
    double volts[8];
    AuxVolts(engine, volts);
    Bytes frame(16);
    for (int i = 0; i < 8; ++i) PutWord(frame, i * 2 + 1, volts[i] * 204.6);
    return frame;
}

Bytes AuxBytes(const Engine& engine) {
    double volts[8];
    AuxVolts(engine, volts);
    Bytes frame(4);
    for (int i = 0; i < 4; ++i) PutByte(frame, i + 1, volts[i] * 51);
    return frame;
}

}  // namespace powerfc
