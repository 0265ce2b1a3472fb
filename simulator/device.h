// The Power-FC and its interface box as one: takes a request, changes its state, gives the reply frame.
// Knows neither terminal nor time nor faults.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "simulator/contents.h"
#include "simulator/simulator.h"

namespace powerfc {

class Device {
  public:
    explicit Device(const Options& options);

    /// Carries out a good request frame. The reply is a whole frame; nothing: no answer.
    std::optional<Bytes> Respond(const Bytes& frame, double seconds);

    bool HasBlock(int code) const { return code >= 0 && code < 256 && !memory_[Index(code)].empty(); }
    Bytes Block(int code) const { return HasBlock(code) ? memory_[Index(code)] : Bytes(); }
    void SetBlock(int code, Bytes data);
    bool Writable(int code) const;
    std::string Announcement() const;
    const std::string& Error() const { return error_; }

    bool RefuseMapBlocks = false;
    SelectWrites Selects;

  private:
    static std::size_t Index(int code) { return static_cast<std::size_t>(code); }
    std::optional<Bytes> Interface(std::uint8_t code, const Bytes& data, double seconds);
    std::optional<Bytes> Read(std::uint8_t code, double seconds);
    bool Write(std::uint8_t code, const Bytes& data);
    bool WriteOldest(std::uint8_t code, const Bytes& data);
    bool WriteMapBlock(int code, const Bytes& data);
    bool WriteWhole(int code, const Bytes& data);
    bool WriteCell(const MapSpec& map, const Bytes& data);
    bool WriteSelect(int code, const Bytes& data, bool obeyed);
    int TrimmedHead(int code) const;
    const MapSpec* MapOfBlock(int code) const;

    std::string interface_;
    bool shortVersionAnswer_;
    Shape shape_;
    Memory factory_;
    Memory memory_;
    bool cellTaken_ = false;  // outcome of the oldest builds' last cell write
    std::string error_;
};

}  // namespace powerfc
