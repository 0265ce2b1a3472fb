// How a block goes out that is not written as it is read: the select blocks and the oldest family.
#include <gtest/gtest.h>

#include "image/image.h"
#include "link/packets.h"
#include "link/transferfixture.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

constexpr char kSensorError[] = "Airflow/PIM Write Error";
constexpr char kFunctionError[] = "Function Select Write Error";

// A select block: where it is, how much of it can be written, its second command and its error.
struct SelectCase {
    const char* Build;
    int Block;
    int Length;
    int Head;  // writable bytes at its begin
    int Tail;  // writable bytes at its end
    int Second;
    const char* Error;
};

// clang-format off
const SelectCase kSelects[] = {
    {kPlain,      0xCE, 107, 1, 16, 0x33, kSensorError  },
    {kBaseMap,    0xCB, 107, 1, 16, 0x33, kSensorError  },
    {kOldSelects, 0x5A, 107, 1, 16, 0x33, kSensorError  },
    {kPlain,      0xD6,  85, 5,  0, 0x4B, kFunctionError},
    {kOldSelects, 0x65,  85, 5,  0, 0x4B, kFunctionError},
    {kGearbox,    0xD6, 136, 8,  0, 0x4B, kFunctionError},
    {kGearbox2,   0xD6, 136, 8,  0, 0x4B, kFunctionError},
};

// What stands where on the oldest family, and what a write of its counting bytes sends.
struct OldestCase {
    int Block, Length, Command;
    const char* Sent;
};
const OldestCase kOldestBlocks[] = {
    {0x5A, 107, 0x33, "015C5D5E5F606162636465666768696A6B"},
    {0x5B,  24, 0x34, "0102030405060708090A0B0C0D0E0F101112131415161718"},
    {0x5C,  13, 0x35, "01020304050A0B0C0D"},
    {0x5D,  20, 0x36, "0102030405060708090A0B0C0D0E0F1011121314"},
    {0x5E,  12, 0x39, "0102030405060708090A0B0C"},
    {0x5F,  12, 0x3A, "0102030405060708090A0B0C"},
    {0x60,  10, 0x3B, "0102030405060708090A"},
    {0x65,  85, 0x4B, "0102030405"},
    {0x9B,   6, 0x9B, "010203040506"},  // any other keeps its own code
};
// clang-format on

class BlockWriting : public TransferFixture {
  protected:
    static ByteString Counting(int count) {
        ByteString bytes;
        for (int i = 1; i <= count; ++i) bytes += static_cast<char>(i);
        return bytes;
    }

    // The writable bytes of the case's block, as the image has them.
    static ByteString Trimmed(const SelectCase& row) {
        const ByteString& data = ReadData[row.Block];
        return data.substr(0, static_cast<std::size_t>(row.Head)) +
               data.substr(data.size() - static_cast<std::size_t>(row.Tail));
    }

    static ByteString WholePacket(int block) { return static_cast<char>(block) + ReadData[block]; }

    void ReadAndBump(const SelectCase& row) {
        ComTimeOutTicks = kDefaultComTimeOutTicks;
        ReadAllOf(row.Build);
        ASSERT_EQ(BlockLength[row.Block], row.Length);
        ASSERT_EQ(ReadData[row.Block].size(), static_cast<std::size_t>(row.Length));
        Bump(row.Block, 1);
        Bump(row.Block, row.Tail > 0 ? row.Length : row.Head);
        if (row.Tail > 0) Bump(row.Block, row.Length - row.Tail + 1);
    }

    // The left of a select write is always a bare read.
    void Prepare(const SelectCase& row, bool fails) {
        bool failed = !fails;
        EXPECT_EQ(Digits(PrepareBlockWrite(WholePacket(row.Block), failed)),
                  Digits(ByteString(1, static_cast<char>(row.Block))));
        EXPECT_EQ(failed, fails);
    }
};

TEST_F(BlockWriting, OrdinaryBlock_IsLeftToTheCallerAsItIs) {
    for (const char* build : {kPlain, kBaseMap, kOldSelects, kGearbox}) {
        ReadAllOf(build);
        for (int b = 0; b < 256; ++b) {
            if (!BlockRead[b] || b == SensorSelectBlock || b == FunctionSelectBlock) continue;
            bool failed = true;
            EXPECT_EQ(Digits(PrepareBlockWrite(WholePacket(b), failed)), Digits(WholePacket(b)))
                << build << b;
            EXPECT_FALSE(failed);
        }
        EXPECT_EQ(device->Received(), Frames());
    }
}

TEST_F(BlockWriting, Select_OwnCommandWithTheWritableBytesAndReadBack) {
    for (const SelectCase& row : kSelects) {
        SCOPED_TRACE(testing::Message() << row.Build << " " << row.Block);
        ReadAndBump(row);
        Prepare(row, false);
        EXPECT_EQ(device->Received(), (Frames{Packet(row.Block, Trimmed(row)), Packet(row.Block)}));
        EXPECT_EQ(Digits(device->BlockString(row.Block)), Digits(ReadData[row.Block]));
    }
}

TEST_F(BlockWriting, SensorSelect_NinetyBytesAreLeftOut) {
    ReadAllOf(kPlain);
    ByteString data = Counting(107);
    bool failed = false;
    ExpectBox(kSensorError, Box::Critical);  // the names are other ones
    static_cast<void>(PrepareBlockWrite('\xCE' + data, failed));
    EXPECT_EQ(device->Received()[0], Packet(0xCE, Bytes("015C5D5E5F606162636465666768696A6B")));
}

TEST_F(BlockWriting, SelectReadBackDifferent_SecondCommandIsTried) {
    for (const SelectCase& row : kSelects) {
        SCOPED_TRACE(testing::Message() << row.Build << " " << row.Block);
        ReadAndBump(row);
        device->ObeySelects(powerfc::SelectWrites::SecondCode);
        Prepare(row, false);
        EXPECT_EQ(device->Received(), (Frames{Packet(row.Block, Trimmed(row)), Packet(row.Block),
                                              Packet(row.Second, Trimmed(row)), Packet(row.Block)}));
        EXPECT_EQ(Digits(device->BlockString(row.Block)), Digits(ReadData[row.Block]));
    }
}

TEST_F(BlockWriting, SelectNeverTaken_BothCommandsAreTriedAndToldOfOnce) {
    for (const SelectCase& row : kSelects) {
        SCOPED_TRACE(testing::Message() << row.Build << " " << row.Block);
        ReadAndBump(row);
        const std::string before = device->BlockString(row.Block);
        device->ObeySelects(powerfc::SelectWrites::Never);
        ExpectBox(row.Error, Box::Critical);
        Prepare(row, true);
        EXPECT_EQ(device->Received(), (Frames{Packet(row.Block, Trimmed(row)), Packet(row.Block),
                                              Packet(row.Second, Trimmed(row)), Packet(row.Block)}));
        EXPECT_EQ(Digits(device->BlockString(row.Block)), Digits(before));
    }
}

// A byte that differs anywhere counts, the last one too; a byte more than the block has does not.
TEST_F(BlockWriting, SelectReadBackOtherwiseAtItsEnd_SecondCommandIsTried) {
    for (const SelectCase& row : kSelects) {
        SCOPED_TRACE(testing::Message() << row.Build << " " << row.Block);
        ReadAndBump(row);
        powerfc::Bytes other(ReadData[row.Block].begin(), ReadData[row.Block].end());
        other.back() ^= 1;
        device->ReplaceReply(row.Block, powerfc::Frame(0xF2));
        device->ReplaceReply(row.Block, powerfc::Frame(static_cast<std::uint8_t>(row.Block), other));
        device->ObeySelects(powerfc::SelectWrites::OwnCode);
        Prepare(row, false);
        EXPECT_EQ(device->Received().size(), 4u);
        device->ClearJournal();
        device->WrongLength(row.Block, 2, +1);
        Prepare(row, false);
        EXPECT_EQ(device->Received().size(), 2u);
        device->ClearJournal();
        device->WrongLength(row.Block, 2, -1);
        Prepare(row, false);
        EXPECT_EQ(device->Received().size(), 4u);
    }
}

TEST_F(BlockWriting, SelectFirstCommandFails_EndsWithTheLinksOwnBox) {
    for (const SelectCase& row : {kSelects[0], kSelects[3]}) {
        ReadAndBump(row);
        Impatient();
        device->Silence(row.Block, 2);
        ExpectBox(kNotResponding, Box::Exclamation);
        Prepare(row, true);
        EXPECT_EQ(device->Received(),
                  (Frames{Packet(row.Block, Trimmed(row)), Packet(row.Block, Trimmed(row))}));
    }
}

// Silence is no equal answer: the second command is tried, and reading back shows that it stands.
TEST_F(BlockWriting, SelectReadBackFails_SecondCommandIsTried) {
    for (const SelectCase& row : {kSelects[0], kSelects[3]}) {
        ReadAndBump(row);
        Impatient();
        device->ReplaceReply(row.Block, powerfc::Frame(0xF2));
        device->Silence(row.Block, 2);
        ExpectBox(kNotResponding, Box::Exclamation);
        Prepare(row, false);
        EXPECT_EQ(device->Received(),
                  (Frames{Packet(row.Block, Trimmed(row)), Packet(row.Block), Packet(row.Block),
                          Packet(row.Second, Trimmed(row)), Packet(row.Block)}));
    }
}

TEST_F(BlockWriting, SelectSecondCommandFails_IsTold) {
    for (const SelectCase& row : {kSelects[0], kSelects[3]}) {
        ReadAndBump(row);
        Impatient();
        device->ObeySelects(powerfc::SelectWrites::Never);
        device->Silence(row.Second, 2);
        ExpectBox(kNotResponding, Box::Exclamation);
        ExpectBox(row.Error, Box::Critical);
        Prepare(row, true);
        EXPECT_EQ(device->Received(),
                  (Frames{Packet(row.Block, Trimmed(row)), Packet(row.Block),
                          Packet(row.Second, Trimmed(row)), Packet(row.Second, Trimmed(row))}));
    }
}

TEST_F(BlockWriting, SelectSecondReadBackFails_IsTold) {
    for (const SelectCase& row : {kSelects[0], kSelects[3]}) {
        ReadAndBump(row);
        Impatient();
        powerfc::Bytes other(ReadData[row.Block].begin(), ReadData[row.Block].end());
        other[0] ^= 1;
        device->ReplaceReply(row.Block, powerfc::Frame(0xF2));
        device->ReplaceReply(row.Block, powerfc::Frame(static_cast<std::uint8_t>(row.Block), other));
        device->Silence(row.Block, 2);
        ExpectBox(kNotResponding, Box::Exclamation);
        ExpectBox(row.Error, Box::Critical);
        Prepare(row, true);
        EXPECT_EQ(device->Received().size(), 5u);
    }
}

TEST_F(BlockWriting, OldestFamily_EachBlockByItsCommand) {
    ReadAllOf(kOldest);
    for (const OldestCase& row : kOldestBlocks) {
        SCOPED_TRACE(row.Block);
        if (!device->HasBlock(row.Block))
            device->SetBlock(row.Block, powerfc::Bytes(static_cast<std::size_t>(row.Length), 0));
        const std::string before = device->BlockString(row.Block);
        ASSERT_EQ(before.size(), static_cast<std::size_t>(row.Length));
        device->ClearJournal();
        bool failed = true;
        EXPECT_EQ(Digits(PrepareBlockWrite(static_cast<char>(row.Block) + Counting(row.Length), failed)),
                  Digits(ByteString(1, static_cast<char>(row.Block))));
        EXPECT_FALSE(failed);
        EXPECT_EQ(device->Received(), Frames{Packet(row.Command, Bytes(row.Sent))});
        // What is not sent stays as it was.
        std::string after = before;
        for (const char c : Bytes(row.Sent)) after[static_cast<std::size_t>(c - 1)] = c;
        EXPECT_EQ(Digits(device->BlockString(row.Block)), Digits(after));
    }
}

TEST_F(BlockWriting, OldestFamily_CommandThatFails_HasNotArrived) {
    ReadAllOf(kOldest);
    Impatient();
    for (const OldestCase& row : kOldestBlocks) {
        SCOPED_TRACE(row.Block);
        device->Silence(row.Command, 2);
        ExpectBox(kNotResponding, Box::Exclamation);
        bool failed = false;
        EXPECT_EQ(PrepareBlockWrite(static_cast<char>(row.Block) + Counting(row.Length), failed),
                  ByteString(1, static_cast<char>(row.Block)));
        EXPECT_TRUE(failed);
    }
}

// --- Within the transfers -----------------------------------------------------------------------------

TEST_F(BlockWriting, UpdateOfSelects_EndsWithABareReadOfEach) {
    for (const SelectCase& row : kSelects) {
        SCOPED_TRACE(testing::Message() << row.Build << " " << row.Block);
        ReadAndBump(row);
        cmdUpdate_Click();
        EXPECT_EQ(device->Received(),
                  AfterPrelude({Packet(row.Block, Trimmed(row)), Packet(row.Block), Packet(row.Block)}));
        EXPECT_EQ(MarkedBlocks(), std::vector<int>());
        EXPECT_FALSE(cmdUpdate.Enabled);
        ExpectDeviceEqualsImage();
    }
}

TEST_F(BlockWriting, UpdateOfSelectNeverTaken_SendsTheRestAndKeepsItMarked) {
    for (const SelectCase& row : kSelects) {
        SCOPED_TRACE(testing::Message() << row.Build << " " << row.Block);
        ReadAndBump(row);
        LastUpdate.clear();
        Bump(0x8E);
        device->ObeySelects(powerfc::SelectWrites::Never);
        ExpectBox(row.Error, Box::Critical);
        cmdUpdate_Click();
        EXPECT_EQ(MarkedBlocks(), std::vector<int>{row.Block});
        EXPECT_TRUE(cmdUpdate.Enabled);
        EXPECT_EQ(LastUpdate, "");
        EXPECT_EQ(Digits(device->BlockString(0x8E)), Digits(ReadData[0x8E]));
        device->ObeySelects(powerfc::SelectWrites::SecondCode);
        cmdUpdate_Click();
        EXPECT_EQ(MarkedBlocks(), std::vector<int>());
        EXPECT_FALSE(cmdUpdate.Enabled);
        ExpectDeviceEqualsImage();
    }
}

TEST_F(BlockWriting, UpdateOfSelectWhoseWriteIsLost_KeepsItMarked) {
    for (const SelectCase& row : {kSelects[0], kSelects[3]}) {
        ReadAndBump(row);
        Impatient();
        LastUpdate.clear();
        device->Silence(row.Block, 2);  // the bare read after it is answered
        ExpectBox(kNotResponding, Box::Exclamation);
        cmdUpdate_Click();
        EXPECT_EQ(MarkedBlocks(), std::vector<int>{row.Block});
        EXPECT_TRUE(cmdUpdate.Enabled);
        EXPECT_EQ(LastUpdate, "");
        cmdUpdate_Click();
        EXPECT_EQ(MarkedBlocks(), std::vector<int>());
        ExpectDeviceEqualsImage();
    }
}

TEST_F(BlockWriting, UpdateOfSelectSilentForGood_IsAnUpdateError) {
    ReadAndBump(kSelects[0]);
    Impatient();
    device->Silence(0xCE, powerfc::kForever);
    ExpectBox(kNotResponding, Box::Exclamation);  // the write
    ExpectBox(kNotResponding, Box::Exclamation);  // the bare read
    ExpectBox("Update error", Box::Critical);
    cmdUpdate_Click();
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0xCE});
    EXPECT_TRUE(cmdUpdate.Enabled);
}

TEST_F(BlockWriting, UpdateOfOldestFamilyWhoseWriteIsLost_KeepsItMarked) {
    ReadAllOf(kOldest);
    Impatient();
    Bump(0x5B);
    Bump(0x5D);
    device->Silence(0x34, 2);
    ExpectBox(kNotResponding, Box::Exclamation);
    cmdUpdate_Click();
    EXPECT_EQ(MarkedBlocks(), std::vector<int>{0x5B});
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_EQ(LastUpdate, "");
    EXPECT_EQ(Digits(device->BlockString(0x5D)), Digits(ReadData[0x5D]));
    cmdUpdate_Click();
    EXPECT_EQ(MarkedBlocks(), std::vector<int>());
    ExpectDeviceEqualsImage();
}

// Nobody has edited the function select: it is sent because all is, and waits because it was not taken.
TEST_F(BlockWriting, WriteAllWithSelectsNeverTaken_GoesOnAndKeepsThemMarked) {
    ReadAndBump(kSelects[0]);
    Bump(0x8E);
    powerfc::Bytes other = device->Block(0xD6);
    other[0] ^= 1;
    device->SetBlock(0xD6, other);
    device->ObeySelects(powerfc::SelectWrites::Never);
    ExpectBox(kSensorError, Box::Critical);
    ExpectBox(kFunctionError, Box::Critical);
    cmdWriteAll_Click();
    EXPECT_EQ(MarkedBlocks(), (std::vector<int>{0xCE, 0xD6}));
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_TRUE(cmdWriteAll.Enabled);
}

}  // namespace
}  // namespace zandrel
