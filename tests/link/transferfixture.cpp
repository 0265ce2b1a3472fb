#include "link/transferfixture.h"

#include <filesystem>

#include "image/accessors.h"
#include "image/image.h"
#include "link/packets.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

namespace zandrel {

TransferFixture::TransferFixture() {
    GridInit();
    HoldTimeOfDay("14:03:22");
    mnuCheckUnsavedData.Checked = false;
}

void TransferFixture::Connect(const std::string& version) {
    powerfc::Options options;
    options.Version = version;
    Restart(options);
}

void TransferFixture::ReadAllOf(const std::string& version) {
    Connect(version);
    const auto timeOut = ComTimeOutTicks;
    // A build without 0xF3 is asked for it in vain: a short wait keeps the tests short.
    if (version == kOldest) ComTimeOutTicks = 50;
    cmdReadAll_Click();
    if (version != kOldest) ComTimeOutTicks = timeOut;
    ASSERT_EQ(VerName + VerNumber, version);
    ASSERT_TRUE(cmdWriteAll.Enabled);
    DataChanged = false;
    std::filesystem::remove(Folder + "/DebugLog.txt");
    device->ClearJournal();
}

void TransferFixture::Impatient() {
    ComTimeOutTicks = 40;
    ComRetries = 1;
}

Frames TransferFixture::Prelude() const {
    if (!device->HasBlock(0xF3)) {
        Frames frames = {Packet(0x01)};
        for (int i = 0; i <= ComRetries; ++i) frames.push_back(Packet(0xF3));
        return frames + Frames{Packet(0x6B), Packet(0x6C)};
    }
    return {Packet(0x01), Packet(0xF3), Packet(0xF5)};
}

Frames TransferFixture::Writes() const {
    Frames writes;
    for (const std::string& frame : device->Received()) {
        if (frame.size() > 6) writes.push_back(frame);
    }
    return writes;
}

Frames TransferFixture::AfterPrelude(const Frames& frames) const {
    return Prelude() + frames;
}

void TransferFixture::ExpectDeviceEqualsImage() const {
    for (int b = 0; b < 256; ++b) {
        if (device->Writable(b) && BlockLength[b] > 0) {
            EXPECT_EQ(Digits(device->BlockString(b)), Digits(ReadData[b])) << "block " << Hex2(b);
        }
    }
}

Frames TransferFixture::Contents() const {
    Frames contents;
    for (const int code : device->BlockCodes()) {
        contents.push_back(Packet(code) + " " + Digits(device->BlockString(code)));
    }
    return contents;
}

const std::vector<FaultCase> kFaults = {
    {"silence", [](auto& device, int code, int n) { device.Silence(code, n); }},
    {"bad checksum", [](auto& device, int code, int n) { device.BadChecksum(code, n); }},
    {"wrong code", [](auto& device, int code, int n) { device.WrongCode(code, n); }},
    {"interface error", [](auto& device, int code, int n) { device.InterfaceError(code, 2, n); }},
    {"short frame", [](auto& device, int code, int n) { device.ShortFrame(code, n); }},
    {"acknowledged only", [](auto& device, int code, int n) { device.AcknowledgeThenSilence(code, n); }},
    {"lost byte", [](auto& device, int code, int n) { device.DropByte(code, 1, n); }},
};

std::string Packet(int code, const std::string& data) {
    return powerfc::ToHex(
        powerfc::Frame(static_cast<std::uint8_t>(code), powerfc::Bytes(data.begin(), data.end())));
}

std::string BlockPacket(int block) {
    return Packet(block, ReadData[block].substr(0, BlockLength[block]));
}

namespace {

// Number of the cell and its bytes, low byte first.
std::string CellData(int map, int row, int column) {
    const int number = (row - 1) + 20 * (column - 1);
    const int size = MapCellSize[map];
    const int at = number * size;
    return std::string{static_cast<char>(number % 256), static_cast<char>(number / 256)} +
           ReadData[MapFirstBlock[map] + at / 100].substr(static_cast<std::size_t>(at % 100),
                                                          static_cast<std::size_t>(size));
}

}  // namespace

std::string CellPacket(int map, int row, int column) {
    return Packet(MapFirstBlock[map] - 1, CellData(map, row, column));
}

Frames OldestCellPackets(int map, int row, int column) {
    return {Packet(map == 0 ? 50 : 49, CellData(map, row, column)), Packet(111)};
}

void Bump(int block, int offset) {
    const auto byte = static_cast<std::uint8_t>(ReadData[block].at(static_cast<std::size_t>(offset - 1)));
    SetNumber("&H" + Hex2(static_cast<std::uint8_t>(block)) + "," + std::to_string(offset) + ",1,1,0,0",
              std::to_string((byte + 1) % 256));
}

void BumpCell(int map, int row, int column) {
    SetCell(map, row, column, (GetCell(map, row, column, false) + 1) % (MapCellSize[map] == 2 ? 65536 : 256));
}

void BumpCells(int map, int count) {
    for (int i = 0; i < count; ++i) BumpCell(map, 1 + i / kMapSide, 1 + i % kMapSide);
}

std::vector<int> MarkedBlocks() {
    std::vector<int> marked;
    for (int b = 0; b < 256; ++b) {
        if (BlockChanged[b]) marked.push_back(b);
    }
    return marked;
}

int MarkedCells(int map) {
    int count = 0;
    for (const auto& row : MapCellChanged[map]) {
        for (const bool changed : row) count += changed ? 1 : 0;
    }
    return count;
}

Frames operator+(Frames left, const Frames& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

}  // namespace zandrel
