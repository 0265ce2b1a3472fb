// The live frames: lengths, places and units, read as the log reads them.
#include "port.h"
#include "simulator/enginemodel.h"

namespace powerfc {
namespace {

int ByteAt(const Bytes& data, int position) {
    return data.at(static_cast<std::size_t>(position - 1));
}
int WordAt(const Bytes& data, int position) {
    return ByteAt(data, position) + 256 * ByteAt(data, position + 1);
}

Options Version(const std::string& key) {
    Options options;
    options.Version = key;
    return options;
}

constexpr double kIdle = 3, kPull = 22;  // seconds of the cycle

TEST(LiveData, Lengths_ByBuild) {
    struct Row {
        const char* Key;
        std::uint8_t Basic, Sensors, Map;
        std::size_t SensorBytes;
    };
    const Row rows[] = {{"RB26DETT6.42", 0xDA, 0xDE, 0xDB, 18},
                        {"1JZGT-AT3.54", 0xDA, 0xDE, 0xDB, 28},
                        {"RB26DETT3.11D", 0x66, 0x6A, 0x68, 18}};
    for (const Row& row : rows) {
        Simulator device(Version(row.Key));
        Port port(device.PortName());
        EXPECT_EQ(DataOf(port.Ask(0xF0)).size(), 30u) << row.Key;
        EXPECT_EQ(DataOf(port.Ask(row.Basic)).size(), 20u) << row.Key;
        EXPECT_EQ(DataOf(port.Ask(row.Sensors)).size(), row.SensorBytes) << row.Key;
        EXPECT_EQ(DataOf(port.Ask(row.Map)).size(), 2u) << row.Key;
    }
}

TEST(LiveData, Aux_EightWordsOrFourBytes) {
    const Engine engine = EngineAt(kPull);
    {
        Simulator device;
        device.HoldEngineAt(kPull);
        Port port(device.PortName());
        const Bytes frame = port.Ask(0x01, {0});
        EXPECT_EQ(frame[0], 1);
        ASSERT_EQ(DataOf(frame).size(), 16u);
        EXPECT_NEAR(WordAt(DataOf(frame), 5) / 204.6, 2.9 + engine.BoostKgCm2 * 0.5, 0.01);
        EXPECT_EQ(WordAt(DataOf(frame), 11), 1023);  // 5 V
    }
    Options options;
    options.Interface = "V1.X";
    Simulator device(options);
    device.HoldEngineAt(kPull);
    Port port(device.PortName());
    EXPECT_NEAR(ByteAt(DataOf(port.Ask(0x00)), 3) / 51.0, 2.9 + engine.BoostKgCm2 * 0.5, 0.02);
}

TEST(LiveData, BasicAndAdvanced_OfOneBuildTellTheSameEngine) {
    Simulator device;
    device.HoldEngineAt(kPull);
    const Engine engine = EngineAt(kPull);
    Port port(device.PortName());
    const Bytes basic = DataOf(port.Ask(0xDA));
    EXPECT_NEAR(WordAt(basic, 1) * 0.1, engine.DutyPercent, 0.06);
    EXPECT_NEAR(WordAt(basic, 7), engine.Rpm, 0.5);
    EXPECT_GT(WordAt(basic, 11), 32768);  // boost above the air's pressure
    EXPECT_NEAR(WordAt(basic, 11) - 32768, engine.BoostKgCm2 * 100, 0.5);
    EXPECT_NEAR(WordAt(basic, 15) - 80, engine.WaterC, 0.5);
    EXPECT_NEAR(WordAt(basic, 19) * 0.1, engine.BatteryV, 0.06);
    const Bytes advanced = DataOf(port.Ask(0xF0));
    EXPECT_EQ(WordAt(advanced, 1), WordAt(basic, 7));
    EXPECT_NEAR(WordAt(advanced, 9) * 0.004, engine.InjectorMs, 0.003);
    EXPECT_NEAR(ByteAt(advanced, 13), engine.IgnitionDeg, 0.5);
    EXPECT_EQ(WordAt(advanced, 15), WordAt(basic, 11));
    EXPECT_NEAR(ByteAt(advanced, 19) - 80, engine.WaterC, 0.5);
    EXPECT_NEAR(WordAt(advanced, 29) * 0.001, engine.ThrottleV, 0.001);
}

TEST(LiveData, Idle_VacuumBelow760) {
    Simulator device;
    device.HoldEngineAt(kIdle);
    Port port(device.PortName());
    const Bytes basic = DataOf(port.Ask(0xDA));
    EXPECT_LT(WordAt(basic, 11), 760);
    EXPECT_NEAR(WordAt(basic, 7), 950, 30);
}

TEST(LiveData, LongSet_BytesBetweenTheWords) {
    Simulator device(Version("1JZGT-AT3.54"));
    device.HoldEngineAt(kPull);
    const Engine engine = EngineAt(kPull);
    Port port(device.PortName());
    const Bytes basic = DataOf(port.Ask(0xDA));
    EXPECT_NEAR(ByteAt(basic, 3), engine.IgnitionDeg, 0.5);
    EXPECT_EQ(ByteAt(basic, 4), 100);  // throttle
    EXPECT_NEAR(ByteAt(basic, 13), engine.Knock, 0.5);
    EXPECT_EQ(ByteAt(basic, 14) - 80, 75);  // gearbox oil
    EXPECT_EQ(ByteAt(basic, 16), 1 << (static_cast<int>(engine.Gear) - 1));
    EXPECT_EQ(ByteAt(basic, 18), 100);
}

TEST(LiveData, RotaryChannels_LeadingAndTrailing) {
    Simulator device(Version("13B-REW5.08"));
    device.HoldEngineAt(kPull);
    Port port(device.PortName());
    const Bytes basic = DataOf(port.Ask(0xDA));
    EXPECT_EQ(WordAt(basic, 3) - WordAt(basic, 5), 10);
    const Bytes advanced = DataOf(port.Ask(0xF0));
    EXPECT_EQ(ByteAt(advanced, 13) - ByteAt(advanced, 14), 10);
    EXPECT_GT(WordAt(advanced, 29), 0);  // secondary injectors at speed
}

TEST(LiveData, Sensors_NineBitsAndTheWarning) {
    Simulator device;
    device.HoldEngineAt(kPull);
    const Engine engine = EngineAt(kPull);
    Port port(device.PortName());
    const Bytes data = DataOf(port.Ask(0xDE));
    const double volts = ((ByteAt(data, 2) & 1) * 256 + ByteAt(data, 1)) / 100.0;
    EXPECT_NEAR(volts, engine.AirFlowV, 0.01);
    EXPECT_EQ((ByteAt(data, 2) & 0x80) != 0, engine.AirFlowV > 4.6);
    EXPECT_EQ(ByteAt(data, 18) & 1, 1);  // fuel pump
}

TEST(LiveData, MapFrame_CellOfSpeedAndLoad) {
    Simulator device;
    device.HoldEngineAt(kPull);
    const Engine engine = EngineAt(kPull);
    Port port(device.PortName());
    const Bytes data = DataOf(port.Ask(0xDB));
    EXPECT_NEAR(ByteAt(data, 1), engine.Rpm / 400 - 1, 0.51);
    EXPECT_NEAR(ByteAt(data, 2), engine.Load / 800 - 1, 0.51);
}

TEST(Engine, OneCycle_IdlesRevsAndPullsThroughTheLoadRange) {
    double least = 1e9, most = 0, lowLoad = 1e9, highLoad = 0, topGear = 0;
    for (int i = 0; i < 3000; ++i) {
        const Engine e = EngineAt(i * kCycleSeconds / 3000);
        least = std::min(least, e.Rpm);
        most = std::max(most, e.Rpm);
        lowLoad = std::min(lowLoad, e.Load);
        highLoad = std::max(highLoad, e.Load);
        topGear = std::max(topGear, e.Gear);
        EXPECT_GE(e.IgnitionDeg, 5);
        EXPECT_LE(e.IgnitionDeg, 45);
        EXPECT_GE(e.DutyPercent, 0);
        EXPECT_LT(e.DutyPercent, 100);
    }
    EXPECT_NEAR(least, 930, 30);
    EXPECT_GT(most, 7500);
    EXPECT_LT(lowLoad, 2000);
    EXPECT_GT(highLoad, 14000);
    EXPECT_EQ(topGear, 4);
    EXPECT_EQ(EngineAt(5).Rpm, EngineAt(5 + kCycleSeconds).Rpm);
}

}  // namespace
}  // namespace powerfc
