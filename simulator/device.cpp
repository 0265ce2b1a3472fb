#include "simulator/device.h"

#include <algorithm>

#include "simulator/enginemodel.h"

namespace powerfc {
namespace {

constexpr std::uint8_t kAcknowledge = 0xF2;
constexpr std::uint8_t kAdvancedPoll = 0xF0;
constexpr std::uint8_t kInitialise = 0xF6;

// Second write commands of the two select blocks.
constexpr std::uint8_t kSensorSelectSecond = 0x33;
constexpr std::uint8_t kFunctionSelectSecond = 0x4B;

// The tail of a sensor-select block that can be written begins at this byte, counted from 1.
constexpr int kSensorSelectTail = 92;

// Builds of the oldest kind: write commands are not the block codes.
constexpr std::uint8_t kOldIgnitionCell = 49;
constexpr std::uint8_t kOldInjectionCell = 50;
constexpr std::uint8_t kOldOutcome = 111;
struct OldWrite {
    int Block;
    std::uint8_t Command;
};
// clang-format off
constexpr OldWrite kOldWrites[] = {
    { 0x5A, 0x33 }, { 0x5B, 0x34 }, { 0x5C, 0x35 }, { 0x5D, 0x36 },
    { 0x5E, 0x39 }, { 0x5F, 0x3A }, { 0x60, 0x3B }, { 0x65, 0x4B },
};
// clang-format on

}  // namespace

Device::Device(const Options& options)
    : Selects(options.Selects),
      interface_(options.Interface),
      shortVersionAnswer_(options.ShortVersionAnswer) {
    const zandrel::Build* known = zandrel::FindBuild(options.Version);
    const zandrel::Build* build = known ? known : zandrel::FindBuild(options.UnknownIsLike);
    if (!build) {
        error_ = "No such version: " + options.UnknownIsLike;
        build = &zandrel::Builds().front();
    }
    if (interface_.size() != 4) error_ = "An interface version has four characters: " + interface_;
    shape_ = ShapeOf(*build);
    factory_ = FactoryContents(shape_, SplitKey(options.Version));
    if (!options.ImageFile.empty()) {
        const Memory before = factory_;
        if (!LoadImage(options.ImageFile, known == nullptr, factory_)) {
            error_ = "Can't take the blocks of " + options.ImageFile;
            factory_ = before;
        }
        for (const GroupSpec& group : shape_.Groups) {
            const bool version = group.Where == Record::Settings && (group.Field == 11 || group.Field == 12);
            if (version) factory_[Index(group.Code)] = before[Index(group.Code)];
        }
    }
    memory_ = factory_;
}

void Device::SetBlock(int code, Bytes data) {
    if (code >= 0 && code < 256) memory_[Index(code)] = std::move(data);
}

const MapSpec* Device::MapOfBlock(int code) const {
    for (const MapSpec& map : shape_.Maps) {
        if (code >= map.FirstBlock && code < map.FirstBlock + map.Blocks()) return &map;
    }
    return nullptr;
}

bool Device::Writable(int code) const {
    if (!HasBlock(code) || code == shape_.SensorNames || code == shape_.SwitchNames) return false;
    for (const GroupSpec& group : shape_.Groups) {
        if (group.Code == code && !group.Writable) return false;
    }
    return true;
}

std::string Device::Announcement() const {
    return interface_ == "V1.X" ? "V2K" : "KVX:" + interface_;
}

std::optional<Bytes> Device::Respond(const Bytes& frame, double seconds) {
    const std::uint8_t code = frame[0];
    const Bytes data(frame.begin() + 2, frame.end() - 1);
    if (code <= 1) return Interface(code, data, seconds);
    if (data.empty()) return Read(code, seconds);
    if (code == kInitialise && data == Bytes{0}) {
        memory_ = factory_;
        return Frame(kAcknowledge);
    }
    if (shape_.Oldest()) {
        if (code == kOldIgnitionCell || code == kOldInjectionCell) {
            // No acknowledge: the outcome is asked for by a command of its own.
            const int first = code == kOldIgnitionCell ? 0x52 : 0x56;
            const MapSpec* map = MapOfBlock(first);
            cellTaken_ = map && WriteCell(*map, data);
            return std::nullopt;
        }
        return WriteOldest(code, data) ? std::optional(Frame(kAcknowledge)) : std::nullopt;
    }
    return Write(code, data) ? std::optional(Frame(kAcknowledge)) : std::nullopt;
}

std::optional<Bytes> Device::Interface(std::uint8_t code, const Bytes& data, double seconds) {
    const bool old = interface_ == "V1.X";
    if (code == 0) {
        if (!old || !data.empty()) return std::nullopt;
        return Frame(0, AuxBytes(EngineAt(seconds)));
    }
    if (data.empty()) {
        if (old) return shortVersionAnswer_ ? std::optional(Frame(1, {1})) : std::nullopt;
        Bytes answer(interface_.begin(), interface_.end());
        answer.push_back(0);
        return Frame(1, answer);
    }
    if (old || data != Bytes{0}) return std::nullopt;
    return Frame(1, AuxWords(EngineAt(seconds)));
}

std::optional<Bytes> Device::Read(std::uint8_t code, double seconds) {
    if (code == kAdvancedPoll) return Frame(code, AdvancedFrame(shape_, EngineAt(seconds)));
    if (code == shape_.BasicPoll) return Frame(code, BasicFrame(shape_, EngineAt(seconds)));
    if (code == shape_.SensorPoll) return Frame(code, SensorFrame(shape_, EngineAt(seconds)));
    if (code == shape_.MapPoll) return Frame(code, MapFrame(EngineAt(seconds)));
    if (shape_.Oldest() && code == kOldOutcome) {
        const bool taken = cellTaken_;
        cellTaken_ = false;
        return taken ? std::optional(Frame(code, {0})) : std::nullopt;
    }
    if (!HasBlock(code)) return std::nullopt;
    return Frame(code, memory_[code]);
}

bool Device::Write(std::uint8_t code, const Bytes& data) {
    for (const MapSpec& map : shape_.Maps) {
        // The code before a map's first block is the command that writes one of its cells. A block of
        // another group may have that code, so the length decides.
        const bool cell = code == map.FirstBlock - 1 && static_cast<int>(data.size()) == 2 + map.CellBytes;
        if (cell) return WriteCell(map, data);
    }
    if (code == shape_.SensorSelect || code == shape_.FunctionSelect) {
        return WriteSelect(code, data, Selects == SelectWrites::OwnCode);
    }
    const bool second = Selects == SelectWrites::SecondCode;
    if (code == kSensorSelectSecond) return WriteSelect(shape_.SensorSelect, data, second);
    if (code == kFunctionSelectSecond) return WriteSelect(shape_.FunctionSelect, data, second);
    if (MapOfBlock(code)) return !RefuseMapBlocks && WriteWhole(code, data);
    return Writable(code) && WriteWhole(code, data);
}

bool Device::WriteOldest(std::uint8_t code, const Bytes& data) {
    const auto* row = std::find_if(std::begin(kOldWrites), std::end(kOldWrites),
                                   [&](const OldWrite& write) { return write.Command == code; });
    if (row == std::end(kOldWrites)) {
        // Blocks without a command of their own keep their code; maps go cell by cell.
        const bool translated = std::any_of(std::begin(kOldWrites), std::end(kOldWrites),
                                            [&](const OldWrite& write) { return write.Block == code; });
        return !translated && !MapOfBlock(code) && Writable(code) && WriteWhole(code, data);
    }
    if (row->Block == shape_.SensorSelect || row->Block == shape_.FunctionSelect) {
        return WriteSelect(row->Block, data, Selects != SelectWrites::Never);
    }
    if (row->Block != 0x5C) return WriteWhole(row->Block, data);
    // The boost block is written without its bytes 6 to 9, the duties of another build.
    Bytes& block = memory_[0x5C];
    if (block.size() != 13 || data.size() != 9) return false;
    std::copy(data.begin(), data.begin() + 5, block.begin());
    std::copy(data.begin() + 5, data.end(), block.begin() + 9);
    return true;
}

bool Device::WriteWhole(int code, const Bytes& data) {
    Bytes& block = memory_[Index(code)];
    if (block.empty() || block.size() != data.size()) return false;
    block = data;
    return true;
}

bool Device::WriteCell(const MapSpec& map, const Bytes& data) {
    if (static_cast<int>(data.size()) != 2 + map.CellBytes) return false;
    const int cell = data[0] + 256 * data[1];
    if (cell >= 400) return false;
    const int place = cell * map.CellBytes;
    Bytes& block = memory_[Index(map.FirstBlock + place / 100)];
    if (block.size() < 100) return false;
    std::copy(data.begin() + 2, data.end(), block.begin() + place % 100);
    return true;
}

// Bytes at the head of a select block that can be written.
int Device::TrimmedHead(int code) const {
    if (code == shape_.SensorSelect) return 1;
    return memory_[Index(code)].size() == 136 ? 8 : 5;
}

bool Device::WriteSelect(int code, const Bytes& data, bool obeyed) {
    if (!HasBlock(code)) return false;
    Bytes& block = memory_[Index(code)];
    const auto head = static_cast<std::size_t>(TrimmedHead(code));
    const auto tailAt = static_cast<std::size_t>(kSensorSelectTail - 1);
    const bool tailed = code == shape_.SensorSelect && block.size() > tailAt;
    const std::size_t tail = tailed ? block.size() - tailAt : 0;
    if (data.size() != head + tail) return false;
    if (!obeyed) return true;
    const auto middle = data.begin() + static_cast<std::ptrdiff_t>(head);
    std::copy(data.begin(), middle, block.begin());
    if (tailed) std::copy(middle, data.end(), block.begin() + static_cast<std::ptrdiff_t>(tailAt));
    return true;
}

}  // namespace powerfc
