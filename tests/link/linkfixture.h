// A simulated Power-FC on COM1, and the program's working port open on it.
#pragma once

#include <string>
#include <vector>

#include "simulator/simulator.h"
#include "support/cleanstate.h"

namespace zandrel {

using Frames = std::vector<std::string>;

class LinkFixture : public CleanState {
  protected:
    /// Starts the simulator and opens COM1 on it.
    explicit LinkFixture(powerfc::Options options = {});
    ~LinkFixture() override;

    /// Closes the port, replaces the simulator and opens the port again.
    void Restart(powerfc::Options options);

    /// Milliseconds between the request number `n` (from 0) and the one after it, as the device saw them.
    double GapMs(std::size_t n) const;

    std::unique_ptr<powerfc::Simulator> device;
};

/// The bytes of hexadecimal digits.
std::string Bytes(const std::string& digits);

/// Upper-case hexadecimal digits of bytes.
std::string Digits(const std::string& bytes);

/// Points port numbers at devices ("1=/dev/pts/3,2=..."); all others are not there, so that no test
/// touches a port of the machine.
void SetPorts(const std::string& ports);

}  // namespace zandrel
