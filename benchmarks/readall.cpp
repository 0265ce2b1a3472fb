#include <pthread.h>
#include <sched.h>

#include <QCoreApplication>
#include <cstdlib>
#include <thread>

#include "figures.h"
#include "image/image.h"
#include "link/port.h"
#include "link/transfers.h"
#include "measurements.h"
#include "shell/windows/frmMain.h"
#include "simulator/simulator.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr int kRuns = 7;
constexpr char kBuild[] = "RB26DETT6.42";
constexpr double kBitsAByte = 10;
constexpr double kBaud = 57600;

// Everything forgotten, so that the version is asked for and the display set up in every run.
void ForgetAll() {
    ReadData.fill({});
    BlockChanged.fill(false);
    DataChanged = false;
    VerName.clear();
    VerNumber.clear();
}

bool PriorityIsAllowed() {
    bool allowed = false;
    std::thread([&allowed] {
        sched_param priority{};
        priority.sched_priority = 10;
        allowed = pthread_setschedparam(pthread_self(), SCHED_FIFO, &priority) == 0;
    }).join();
    return allowed;
}

struct Traffic {
    std::size_t Bytes = 0;
    std::vector<double> PausesUs;  // last byte of a reply to first byte of the next request
    bool Clean = true;
};

Traffic TrafficOf(const std::vector<powerfc::JournalEntry>& journal) {
    Traffic traffic;
    std::int64_t replyUs = 0;
    for (const powerfc::JournalEntry& entry : journal) {
        traffic.Bytes += entry.Data.size();
        if (entry.Malformed) traffic.Clean = false;
        if (entry.Way == powerfc::Direction::Sent) {
            replyUs = entry.LastUs;
        } else if (replyUs != 0) {
            traffic.PausesUs.push_back(static_cast<double>(entry.FirstUs - replyUs));
        }
    }
    return traffic;
}

}  // namespace

void MeasureReadAll(frmMain& main) {
    const std::string name = std::string("Read All of ") + kBuild;
    powerfc::Options options;
    options.Version = kBuild;
    options.Pace = true;
    powerfc::Simulator device(options);
    if (!device.Error().empty()) {
        AddFailure(name, device.Error());
        return;
    }
    setenv("ZANDREL_PORTS", ("1=" + device.PortName()).c_str(), 1);
    mnuCom_Click(0);

    std::vector<double> times, shares, pauses;
    std::size_t bytes = 0;
    for (int run = 0; run < kRuns; ++run) {
        ForgetAll();
        device.ClearJournal();
        const std::int64_t start = NowNs();
        cmdReadAll_Click();
        const std::int64_t end = NowNs();
        main.Mirror();
        QCoreApplication::processEvents();

        const Traffic traffic = TrafficOf(device.Journal());
        if (!DataChanged || !traffic.Clean) {
            AddFailure(name, "the simulated Power-FC was not read");
            return;
        }
        bytes = traffic.Bytes;
        times.push_back(Milliseconds(end - start));
        shares.push_back(times.back() / (static_cast<double>(bytes) * kBitsAByte / kBaud * 1000));
        pauses.insert(pauses.end(), traffic.PausesUs.begin(), traffic.PausesUs.end());
    }
    mnuCom_Click(0);
    setenv("ZANDREL_PORTS", "1=/nowhere", 1);

    AddFigure({name + ", " + std::to_string(bytes) + " bytes", Median(times), "ms", 1});
    AddFigure({name + ", over the time of its bytes", Median(shares), "", 4, 1.05});
    AddFigure({"Pause from reply to next request, median", Median(pauses), "us", 0, 300});
    AddFigure({"Pause from reply to next request, 95th of 100", Quantile(pauses, 0.95), "us", 0});
    AddRemark(
        std::string("Read All: simulator in this process, paced at 57600 baud, ") +
        (PriorityIsAllowed() ? "at real-time priority." : "without real-time priority (not allowed here)."));
}

}  // namespace zandrel
