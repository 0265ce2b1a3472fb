#include "link/linkfixture.h"

#include <cstdlib>

#include "link/port.h"

namespace zandrel {

LinkFixture::LinkFixture(powerfc::Options options) {
    Restart(std::move(options));
}

LinkFixture::~LinkFixture() {
    if (MSComm1.PortOpen()) MSComm1.Close();
    SetPorts("1=/nowhere");
}

void LinkFixture::Restart(powerfc::Options options) {
    if (MSComm1.PortOpen()) mnuCom_Click(0);
    device.reset();
    // A terminal's own name goes to the next one who asks when it vanishes: a test beside this one perhaps.
    if (options.LinkPath.empty()) options.LinkPath = Folder + "/tty";
    device = std::make_unique<powerfc::Simulator>(std::move(options));
    EXPECT_EQ(device->Error(), "");
    SetPorts("1=" + device->PortName());
    mnuCom_Click(0);
    EXPECT_TRUE(MSComm1.PortOpen());
}

double LinkFixture::GapMs(std::size_t n) const {
    std::vector<std::int64_t> times;
    for (const powerfc::JournalEntry& entry : device->Journal()) {
        if (entry.Way == powerfc::Direction::Received) times.push_back(entry.FirstUs);
    }
    EXPECT_GT(times.size(), n + 1);
    return times.size() > n + 1 ? static_cast<double>(times[n + 1] - times[n]) / 1000 : 0;
}

std::string Bytes(const std::string& digits) {
    const powerfc::Bytes bytes = powerfc::FromHex(digits);
    return {bytes.begin(), bytes.end()};
}

std::string Digits(const std::string& bytes) {
    return powerfc::ToHex(powerfc::Bytes(bytes.begin(), bytes.end()));
}

void SetPorts(const std::string& ports) {
    std::string all = ports;
    for (int n = 1; n <= 16; ++n) all += "," + std::to_string(n) + "=/nowhere";
    setenv("ZANDREL_PORTS", all.c_str(), 1);
}

}  // namespace zandrel
