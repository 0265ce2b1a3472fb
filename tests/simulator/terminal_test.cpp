// The terminal and its link: closing, opening, vanishing and coming back.
#include <atomic>
#include <thread>

#include "port.h"

namespace powerfc {
namespace {

TEST(Terminal, ClosedAndOpenedAtWill) {
    Simulator device;
    for (int i = 0; i < 20; ++i) {
        Port port(device.PortName());
        ASSERT_TRUE(port.IsOpen());
        EXPECT_EQ(port.Ask(0xF5)[0], 0xF5);
    }
}

TEST(Terminal, Link_LeadsThereAndGoesAtTheEnd) {
    TempFolder folder;
    Options options;
    options.LinkPath = folder.File("powerfc");
    {
        Simulator device(options);
        EXPECT_EQ(device.Error(), "");
        EXPECT_EQ(device.PortName(), options.LinkPath);
        EXPECT_TRUE(std::filesystem::is_symlink(options.LinkPath));
        Port port(options.LinkPath);
        EXPECT_EQ(port.Ask(0xF5)[0], 0xF5);
    }
    EXPECT_FALSE(std::filesystem::is_symlink(std::filesystem::symlink_status(options.LinkPath)));
}

TEST(Terminal, StaleLink_IsReplaced_AFileIsNot) {
    TempFolder folder;
    Options options;
    options.LinkPath = folder.File("powerfc");
    std::filesystem::create_symlink("/nonexistent", options.LinkPath);
    {
        Simulator device(options);
        EXPECT_EQ(device.Error(), "");
        EXPECT_TRUE(Port(options.LinkPath).IsOpen());
    }
    fclose(fopen(options.LinkPath.c_str(), "w"));
    Simulator device(options);
    EXPECT_NE(device.Error(), "");
    EXPECT_TRUE(std::filesystem::is_regular_file(options.LinkPath));
}

TEST(Terminal, LinkTakenOverByAnother_IsLeftAlone) {
    TempFolder folder;
    Options options;
    options.LinkPath = folder.File("powerfc");
    auto first = std::make_unique<Simulator>(options);
    Simulator second(options);
    first.reset();
    EXPECT_EQ(Port(options.LinkPath).Ask(0xF5)[0], 0xF5);
}

TEST(Vanish, ReaderIsThrownOut_LinkIsGone_ReturnBringsItBack) {
    TempFolder folder;
    Options options;
    options.LinkPath = folder.File("powerfc");
    options.Announce = true;
    Simulator device(options);
    Port port(device.PortName());
    EXPECT_EQ(port.Take(8).size(), 8u);
    device.SetBlock(0x97, {9, 9});
    device.Vanish();
    EXPECT_TRUE(port.Take(1).empty());
    EXPECT_TRUE(port.Gone());
    EXPECT_FALSE(Port(options.LinkPath).IsOpen());
    device.Vanish();  // twice does no harm

    device.Return();
    EXPECT_EQ(device.Error(), "");
    Port again(options.LinkPath);
    ASSERT_TRUE(again.IsOpen());
    EXPECT_EQ(again.Take(8).size(), 8u);  // announced anew
    EXPECT_EQ(ToHex(DataOf(again.Ask(0x97))), "0909");
}

TEST(Vanish, WhileAnAnswerIsAwaited_EndsTheWait) {
    Simulator device;
    Port port(device.PortName());
    device.VanishAt(0x86, 10);
    port.Send(Frame(0x86));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(port.Take(103).size(), 10u);
    EXPECT_TRUE(port.Gone());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kPatienceMs));
    device.Return();
    Port again(device.PortName());
    EXPECT_EQ(again.Ask(0x86).size(), 103u);
}

TEST(Vanish, BreaksADelayedAnswerOff) {
    Simulator device;
    Port port(device.PortName());
    device.Delay(0xF5, 600'000);
    port.Send(Frame(0xF5));
    ASSERT_TRUE(device.WaitForEntries(1, kPatienceMs));
    device.Vanish();
    EXPECT_TRUE(port.Take(1).empty());
    device.Return();
    Port again(device.PortName());
    EXPECT_EQ(again.Ask(0xF5)[0], 0xF5);
}

TEST(Threads, ManyAskAndChangeAtOnce) {
    Simulator device;
    device.SetBlock(0x97, Bytes(2, 0));  // the prodder may begin late
    std::atomic<bool> done = false;
    std::thread prodder([&] {
        int i = 0;
        while (!done) {
            device.SetBlock(0x97, Bytes(2, static_cast<std::uint8_t>(++i)));
            device.HoldEngineAt(i % 30);
            device.Silence(0x03);
            device.Block(0x97);
            device.Journal();
            if (i % 50 == 0) device.ClearJournal();
        }
    });
    Port port(device.PortName());
    for (int i = 0; i < 300; ++i) {
        const Bytes data = DataOf(port.Ask(0x97));
        EXPECT_EQ(data, Bytes(2, data.empty() ? std::uint8_t{0} : data[0]));
        EXPECT_EQ(DataOf(port.Ask(0xDA)).size(), 20u);
    }
    done = true;
    prodder.join();
}

}  // namespace
}  // namespace powerfc
