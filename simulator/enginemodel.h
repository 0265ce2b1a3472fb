// A small engine: it idles, revs, pulls through the gears and slows down again, in a cycle of 30
// seconds. The same second gives the same engine.
#pragma once

#include "simulator/blocks.h"
#include "simulator/simulator.h"

namespace powerfc {

/// Physical values, units in the names.
struct Engine {
    double Rpm = 0;
    double ThrottlePercent = 0;
    double Load = 0;        // in the units of the map reference, 800 to 16000
    double BoostKgCm2 = 0;  // above the air's pressure; below it negative
    double InjectorMs = 0;
    double DutyPercent = 0;
    double CorrectionRaw = 0;
    double IgnitionDeg = 0;
    double TrailingDeg = 0;
    double DwellMs = 0;
    double Knock = 0;
    double WaterC = 0, AirC = 0, FuelC = 0, GearboxC = 0;
    double OilDuty = 0;
    double BatteryV = 0;
    double SpeedKph = 0;
    double AirFlowV = 0, ThrottleV = 0, PressureV = 0, OxygenV = 0;
    double PrechargePercent = 0, WastegatePercent = 0;
    double Gear = 0;  // 0: neutral
};

/// Seconds of one cycle, after which it begins anew.
inline constexpr double kCycleSeconds = 30;

/// The engine at `seconds` since power-up.
Engine EngineAt(double seconds);

/// Data bytes of the live frames. Bytes that no channel fills are 0xCC.
Bytes BasicFrame(const Shape& shape, const Engine& engine);     // 20 bytes
Bytes AdvancedFrame(const Shape& shape, const Engine& engine);  // 30 bytes
Bytes SensorFrame(const Shape& shape, const Engine& engine);    // 18 bytes, 28 on a long sensor set
Bytes MapFrame(const Engine& engine);                           // N and P, each 0 to 19

/// Auxiliary inputs of the interface: 8 words of 204.6 a volt, or 4 bytes of 51 a volt.
Bytes AuxWords(const Engine& engine);
Bytes AuxBytes(const Engine& engine);

}  // namespace powerfc
