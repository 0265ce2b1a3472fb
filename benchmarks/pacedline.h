// A simulated Power-FC at the true speed of the line, on the first port, and what its journal tells.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/simulator.h"

namespace zandrel {

/// A paced Power-FC with the program's link open to it, as long as it lives. The image knows no build yet.
class PacedLine {
  public:
    explicit PacedLine(const std::string& build);
    ~PacedLine();
    PacedLine(const PacedLine&) = delete;
    PacedLine& operator=(const PacedLine&) = delete;

    powerfc::Simulator& Device() { return device_; }

    /// Empty if all is well, otherwise why there is no link.
    std::string Error() const;

  private:
    powerfc::Simulator device_;
};

/// Everything read is forgotten, so that the version is asked for and the display set up anew.
void ForgetAll();

/// All bytes of the frames, both ways.
std::size_t BytesOf(const std::vector<powerfc::JournalEntry>& journal);

/// What so many bytes take on the line, in milliseconds: 10 bits a byte at 57600 baud.
double LineMs(std::size_t bytes);

/// Whether threads of this process may have real-time priority, as the paced Power-FC wants it.
std::string PriorityInWords();

}  // namespace zandrel
