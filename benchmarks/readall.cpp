#include <QCoreApplication>

#include "figures.h"
#include "image/image.h"
#include "link/transfers.h"
#include "measurements.h"
#include "pacedline.h"
#include "shell/windows/frmMain.h"

namespace zandrel {
namespace {

constexpr int kRuns = 7;
constexpr char kBuild[] = "RB26DETT6.42";

struct Traffic {
    std::vector<double> PausesUs;  // last byte of a reply to first byte of the next request
    bool Clean = true;
};

Traffic TrafficOf(const std::vector<powerfc::JournalEntry>& journal) {
    Traffic traffic;
    std::int64_t replyUs = 0;
    for (const powerfc::JournalEntry& entry : journal) {
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
    PacedLine line(kBuild);
    if (!line.Error().empty()) {
        AddFailure(name, line.Error());
        return;
    }

    std::vector<double> times, shares, pauses;
    std::size_t bytes = 0;
    for (int run = 0; run < kRuns; ++run) {
        ForgetAll();
        line.Device().ClearJournal();
        const std::int64_t start = NowNs();
        cmdReadAll_Click();
        const std::int64_t end = NowNs();
        main.Mirror();
        QCoreApplication::processEvents();

        const auto journal = line.Device().Journal();
        const Traffic traffic = TrafficOf(journal);
        if (!DataChanged || !traffic.Clean) {
            AddFailure(name, "the simulated Power-FC was not read");
            return;
        }
        bytes = BytesOf(journal);
        times.push_back(Milliseconds(end - start));
        shares.push_back(times.back() / LineMs(bytes));
        pauses.insert(pauses.end(), traffic.PausesUs.begin(), traffic.PausesUs.end());
    }

    AddFigure({name + ", " + std::to_string(bytes) + " bytes", Median(times), "ms", 1});
    AddFigure({name + ", over the time of its bytes", Median(shares), "", 4, 1.05});
    AddFigure({"Pause from reply to next request, median", Median(pauses), "us", 0, 300});
    AddFigure({"Pause from reply to next request, 95th of 100", Quantile(pauses, 0.95), "us", 0});
    AddRemark("Read All: simulator in this process, paced at 57600 baud, " + PriorityInWords() + ".");
}

}  // namespace zandrel
