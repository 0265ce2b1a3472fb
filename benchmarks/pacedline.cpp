#include "pacedline.h"

#include <pthread.h>
#include <sched.h>

#include <cstdlib>
#include <thread>

#include "image/history.h"
#include "image/image.h"
#include "link/port.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr double kBitsAByte = 10;
constexpr double kBaud = 57600;

powerfc::Options Paced(const std::string& build) {
    powerfc::Options options;
    options.Version = build;
    options.Pace = true;
    return options;
}

}  // namespace

PacedLine::PacedLine(const std::string& build) : device_(Paced(build)) {
    ForgetAll();
    if (!device_.Error().empty()) return;
    setenv("ZANDREL_PORTS", ("1=" + device_.PortName()).c_str(), 1);
    mnuCom_Click(0);
}

PacedLine::~PacedLine() {
    if (mnuCom[0].Checked) mnuCom_Click(0);
    setenv("ZANDREL_PORTS", "1=/nowhere", 1);
    ForgetAll();
}

std::string PacedLine::Error() const {
    if (!device_.Error().empty()) return device_.Error();
    return mnuCom[0].Checked ? "" : "the port can't be opened";
}

void ForgetAll() {
    ReadData.fill({});
    BlockChanged.fill(false);
    BlockInForce.fill(false);
    MapCellChanged = {};
    ClearHistory();
    DataChanged = false;
    VerName.clear();
    VerNumber.clear();
}

std::size_t BytesOf(const std::vector<powerfc::JournalEntry>& journal) {
    std::size_t bytes = 0;
    for (const powerfc::JournalEntry& entry : journal) bytes += entry.Data.size();
    return bytes;
}

double LineMs(std::size_t bytes) {
    return static_cast<double>(bytes) * kBitsAByte / kBaud * 1000;
}

std::string PriorityInWords() {
    bool allowed = false;
    std::thread([&allowed] {
        sched_param priority{};
        priority.sched_priority = 10;
        allowed = pthread_setschedparam(pthread_self(), SCHED_FIFO, &priority) == 0;
    }).join();
    return allowed ? "at real-time priority" : "without real-time priority (not allowed here)";
}

}  // namespace zandrel
