#include "simulator/faults.h"

#include <algorithm>

#include "simulator/frames.h"

namespace powerfc {
namespace {

constexpr std::uint8_t kMessageCode = 2;
constexpr std::uint8_t kAcknowledge = 0xF2;

// Neither the awaited code nor one that has a meaning of its own.
std::uint8_t OtherCode(std::uint8_t code) {
    for (const std::uint8_t change : {0x10, 0x20, 0x40}) {
        const auto other = static_cast<std::uint8_t>(code ^ change);
        if (other != kMessageCode && other != kAcknowledge) return other;
    }
    return static_cast<std::uint8_t>(code ^ 0x30);
}

}  // namespace

void FaultQueue::Add(Fault fault) {
    if (fault.Left != 0) faults_.push_back(std::move(fault));
}

template <class Predicate>
std::optional<Fault> FaultQueue::TakeFirst(int code, Predicate wanted) {
    const auto found = std::find_if(faults_.begin(), faults_.end(), [&](const Fault& fault) {
        return (fault.Code == kAnyCode || fault.Code == code) && wanted(fault);
    });
    if (found == faults_.end()) return std::nullopt;
    Fault fault = *found;
    if (found->Left != kForever && --found->Left == 0) faults_.erase(found);
    return fault;
}

int FaultQueue::TakeDelay(int code) {
    const auto delay = TakeFirst(code, [](const Fault& fault) { return fault.Kind == FaultKind::Delay; });
    return delay ? delay->Number : 0;
}

std::optional<Fault> FaultQueue::Take(int code) {
    return TakeFirst(code, [](const Fault& fault) { return fault.Kind != FaultKind::Delay; });
}

bool CarriedOut(FaultKind kind) {
    return kind != FaultKind::Silence && kind != FaultKind::InterfaceError &&
           kind != FaultKind::AcknowledgeThenSilence;
}

Bytes Spoil(const Fault& fault, const Bytes& answer) {
    if (fault.Kind == FaultKind::ReplaceReply) return fault.Reply;
    Bytes frame = answer;
    if (frame.empty()) return frame;
    const auto number = static_cast<std::size_t>(std::max(fault.Number, 0));
    switch (fault.Kind) {
        case FaultKind::BadChecksum:
            ++frame.back();
            break;
        case FaultKind::WrongCode:
            return Frame(OtherCode(frame[0]), Bytes(frame.begin() + 2, frame.end() - 1));
        case FaultKind::ShortFrame:
            frame.resize(fault.Number < 0 ? frame.size() / 2 : std::min(number, frame.size()));
            break;
        case FaultKind::WrongLength: {
            Bytes data(frame.begin() + 2, frame.end() - 1);
            const auto length = static_cast<std::ptrdiff_t>(data.size()) + fault.Number;
            data.resize(static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(length, 0, 253)), 0xCC);
            return Frame(frame[0], data);
        }
        case FaultKind::FlipBit:
            if (number / 8 < frame.size()) frame[number / 8] ^= static_cast<std::uint8_t>(1u << (number % 8));
            break;
        case FaultKind::DropByte:
            if (number < frame.size()) frame.erase(frame.begin() + static_cast<std::ptrdiff_t>(number));
            break;
        default:
            break;
    }
    return frame;
}

Bytes InterfaceMessage(int messageClass, int command) {
    return Frame(kMessageCode, {static_cast<std::uint8_t>(messageClass), static_cast<std::uint8_t>(command)});
}

}  // namespace powerfc
