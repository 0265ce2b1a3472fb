// The pseudo terminal and the clock of the wire. Used by the simulator's thread alone.
#pragma once

#include <cstdint>
#include <string>

namespace powerfc {

/// CLOCK_MONOTONIC in nanoseconds.
std::int64_t NowNs();

/// Sleeps until the clock reads `ns`; returns at once if it already does.
void SleepUntilNs(std::int64_t ns);

/// Real-time priority where it is allowed, and wake-ups without slack. A refusal does no harm.
void ClaimPriority();

class Terminal {
  public:
    Terminal() = default;
    ~Terminal() { Close(); }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Opens a terminal in raw mode, behind `link` if that isn't empty. Empty on success, otherwise why
    /// not. Its own end stays open too, so that the other side may close and open it at will.
    std::string Open(const std::string& link);
    /// Closes both ends and removes the link, if it is still this terminal's.
    void Close();
    bool IsOpen() const { return own_ >= 0; }
    /// The end to poll and read; -1 while closed.
    int Descriptor() const { return own_; }
    /// Name of the other end.
    const std::string& Name() const { return name_; }
    /// What the buffer of the terminal doesn't take is lost, as on a real line.
    void Write(const std::uint8_t* bytes, std::size_t count);
    /// Waits, for half a second at most, until the other side has read what was written: closing throws
    /// away what still stands in the terminal.
    void WaitUntilRead() const;

  private:
    int own_ = -1;
    int other_ = -1;
    std::string name_;
    std::string link_;
};

}  // namespace powerfc
