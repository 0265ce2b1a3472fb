// Version queries, messages of the interface, malformed requests and the journal.
#include "port.h"

namespace powerfc {
namespace {

Options With(const std::string& version, const std::string& interface) {
    Options options;
    options.Version = version;
    options.Interface = interface;
    return options;
}

TEST(VersionQuery, NewInterface_FourCharactersAndOneByte) {
    Simulator device;
    Port port(device.PortName());
    EXPECT_EQ(ToHex(port.Ask(0x01)), ToHex(Frame(1, {'V', '2', '.', '0', 0})));
    EXPECT_TRUE(port.StaysSilent(Frame(0x00)));
}

TEST(VersionQuery, OldInterface_SilentButAnswersItsInputs) {
    Simulator device(With("RB26DETT6.42", "V1.X"));
    Port port(device.PortName());
    EXPECT_TRUE(port.StaysSilent(Frame(0x01)));
    EXPECT_TRUE(port.StaysSilent(Frame(0x01, {0})));
    EXPECT_EQ(DataOf(port.Ask(0x00)).size(), 4u);
}

TEST(VersionQuery, OldInterfaceThatAnswers_OneByte) {
    Options options = With("RB26DETT6.42", "V1.X");
    options.ShortVersionAnswer = true;
    Simulator device(options);
    Port port(device.PortName());
    EXPECT_EQ(DataOf(port.Ask(0x01)).size(), 1u);
}

TEST(VersionQuery, InterfaceOfAWrongLength_IsAnError) {
    EXPECT_NE(Simulator(With("RB26DETT6.42", "V2")).Error(), "");
}

TEST(Ack, BeforeEveryReply_NamesTheCommand) {
    Options options;
    options.Ack = true;
    Simulator device(options);
    Port port(device.PortName());
    EXPECT_EQ(port.Ask(0xF3), Frame(2, {0, 0xF3}));
    EXPECT_EQ(port.TakeFrame()[0], 0xF3);
    EXPECT_EQ(port.Ask(0x97, {1, 2}), Frame(2, {0, 0x97}));
    EXPECT_EQ(port.TakeFrame(), kTaken);
}

TEST(Announce, AtPowerUp_TextOfTheInterface) {
    Options options;
    options.Announce = true;
    {
        Simulator device(options);
        Port port(device.PortName());
        EXPECT_EQ(port.Take(8), Bytes({'K', 'V', 'X', ':', 'V', '2', '.', '0'}));
    }
    options.Interface = "V1.X";
    Simulator device(options);
    Port port(device.PortName());
    EXPECT_EQ(port.Take(3), Bytes({'V', '2', 'K'}));
}

TEST(Say, RawBytes_ComeAsTheyAre) {
    Simulator device;
    Port port(device.PortName());
    device.Say("V1K");
    device.Say(Bytes{0x00, 0xFF});
    EXPECT_EQ(port.Take(5), Bytes({'V', '1', 'K', 0x00, 0xFF}));
}

TEST(Requests, Malformed_SilentAndMarkedInTheJournal) {
    Simulator device;
    Port port(device.PortName());
    port.Send(FromHex("8D0271"));
    ASSERT_TRUE(device.WaitForEntries(1, kPatienceMs));
    port.Send(FromHex("8D0070"));
    ASSERT_TRUE(device.WaitForEntries(2, kPatienceMs));
    port.Send(FromHex("8D04"));  // stops short
    ASSERT_TRUE(device.WaitForEntries(3, kPatienceMs));
    EXPECT_EQ(port.Ask(0xF3)[0], 0xF3);
    EXPECT_EQ(device.Received(), (std::vector<std::string>{"!8D0271", "!8D0070", "!8D04", "F3020A"}));
    EXPECT_TRUE(port.Empty());
}

TEST(Journal, HoldsBothFramesInOrderWithTimes) {
    Simulator device;
    Port port(device.PortName());
    const Bytes reply = port.Ask(0xF5);
    const auto journal = device.Journal();
    ASSERT_EQ(journal.size(), 2u);
    EXPECT_EQ(journal[0].Way, Direction::Received);
    EXPECT_EQ(ToHex(journal[0].Data), "F50208");
    EXPECT_EQ(journal[1].Way, Direction::Sent);
    EXPECT_EQ(journal[1].Data, reply);
    EXPECT_LE(journal[0].FirstUs, journal[0].LastUs);
    EXPECT_LE(journal[0].LastUs, journal[1].FirstUs);
    EXPECT_LE(journal[1].FirstUs, journal[1].LastUs);
    const auto nowUs = std::chrono::duration_cast<std::chrono::microseconds>(
                           std::chrono::steady_clock::now().time_since_epoch())
                           .count();
    EXPECT_LE(journal[1].LastUs, nowUs);
    EXPECT_GT(journal[0].FirstUs, nowUs - kPatienceMs * 1000);
    device.ClearJournal();
    EXPECT_TRUE(device.Journal().empty());
}

TEST(Journal, File_ALineAFrame) {
    TempFolder folder;
    Options options;
    options.JournalFile = folder.File("journal.txt");
    {
        Simulator device(options);
        Port port(device.PortName());
        port.Ask(0xF5);
    }
    FILE* file = fopen(options.JournalFile.c_str(), "rb");
    ASSERT_TRUE(file);
    long long first = 0, last = 0;
    char way = 0, hex[64] = {};
    ASSERT_EQ(fscanf(file, "%lld %lld %c %63s", &first, &last, &way, hex), 4);
    EXPECT_STREQ(hex, "F50208");
    EXPECT_EQ(way, '>');
    ASSERT_EQ(fscanf(file, "%lld %lld %c %63s", &first, &last, &way, hex), 4);
    EXPECT_STREQ(hex, ToHex(Frame(0xF5, {'6', '.', '4', '2', ' '})).c_str());
    EXPECT_EQ(way, '<');
    EXPECT_GT(last, 0);
    fclose(file);
}

TEST(Journal, FileThatCannotBeWritten_IsAnError) {
    Options options;
    options.JournalFile = "/nonexistent/journal.txt";
    EXPECT_NE(Simulator(options).Error(), "");
}

}  // namespace
}  // namespace powerfc
