#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <algorithm>
#include <functional>

#include "figures.h"
#include "image/image.h"
#include "link/packets.h"
#include "link/transfers.h"
#include "measurements.h"
#include "pacedline.h"
#include "shell/windows/frmMain.h"
#include "tuning/mapediting.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

using powerfc::Bytes;
using powerfc::Direction;
using powerfc::JournalEntry;

constexpr int kUpdateRuns = 21;
constexpr int kCellRuns = 5;
constexpr double kLimit = 1.1;
constexpr char kBuild[] = "RB26DETT6.42";
// A build that takes its injection map cell by cell alone.
constexpr char kOldBuild[] = "RB26DETT3.12B";
constexpr int kOldInjectionBlock = 0x56;
constexpr std::uint8_t kOldCellWrite = 50;
constexpr std::uint8_t kOldOutcome = 111;
constexpr std::uint8_t kAcknowledge = 0xF2;
constexpr int kCells = kMapSide * kMapSide;
constexpr int kBarPaints = 5;  // so often at least is the bar seen to move

using Journal = std::vector<JournalEntry>;

bool IsFrame(const JournalEntry& entry, Direction way, const Bytes& frame) {
    return !entry.Malformed && entry.Way == way && entry.Data == frame;
}

bool IsExchange(const Journal& journal, std::size_t at, const Bytes& request, const Bytes& reply) {
    return at + 1 < journal.size() && IsFrame(journal[at], Direction::Received, request) &&
           IsFrame(journal[at + 1], Direction::Sent, reply);
}

bool IsBlockRead(const Journal& journal, std::size_t at, int block, const Bytes& data) {
    const auto code = static_cast<std::uint8_t>(block);
    return IsExchange(journal, at, powerfc::Frame(code), powerfc::Frame(code, data));
}

Bytes BytesOfBlock(int block) {
    const ByteString& data = ReadData[static_cast<std::size_t>(block)];
    return Bytes(data.begin(), data.end());
}

// One step up, or down in every other run, so that no cell comes to its limit.
void StepCells(int map, const GridSelection& cells, int run) {
    Grid[static_cast<std::size_t>(map)].Selection = cells;
    if (run % 2 == 0) {
        AddToSelection(map, 1);
    } else {
        SubFromSelection(map, 1);
    }
}

void Show(frmMain& main) {
    main.Mirror();
    QCoreApplication::processEvents();
}

// Why the journal is not that of an Update of the one block; empty if it is. A newer interface is asked for
// its version each time.
std::string FaultOfUpdate(PacedLine& line, const Journal& journal, int block) {
    if (journal.size() != 8) return std::to_string(journal.size()) + " frames instead of 8";
    if (!IsExchange(journal, 0, powerfc::Frame(1), powerfc::Frame(1, {'V', '2', '.', '0', 0})) ||
        !IsBlockRead(journal, 2, 0xF3, line.Device().Block(0xF3)) ||
        !IsBlockRead(journal, 4, 0xF5, line.Device().Block(0xF5)))
        return "the versions were not asked for";
    const auto code = static_cast<std::uint8_t>(block);
    if (!IsExchange(journal, 6, powerfc::Frame(code, BytesOfBlock(block)), powerfc::Frame(kAcknowledge)))
        return "the changed block was not sent";
    return {};
}

void MeasureUpdate(frmMain& main) {
    const std::string name = std::string("Update of one cell of ") + kBuild;
    PacedLine line(kBuild);
    if (!line.Error().empty()) return AddFailure(name, line.Error());
    cmdReadAll_Click();
    Show(main);

    constexpr int kMap = 0;
    constexpr GridSelection kCell{10, 10, 10, 10};
    const int block = PlaceOfCell(kMap, kCell.Row, kCell.Col).Block;
    std::vector<double> times, shares;
    std::size_t bytes = 0;
    for (int run = 0; run < kUpdateRuns; ++run) {
        StepCells(kMap, kCell, run);
        Show(main);
        line.Device().ClearJournal();
        const std::int64_t start = NowNs();
        TimerUpdate_Timer();
        const std::int64_t end = NowNs();
        Show(main);

        const Journal journal = line.Device().Journal();
        const std::string fault = FaultOfUpdate(line, journal, block);
        if (!fault.empty()) return AddFailure(name, fault);
        bytes = BytesOf(journal);
        times.push_back(Milliseconds(end - start));
        shares.push_back(times.back() / LineMs(bytes));
    }
    AddFigure({name + ", " + std::to_string(bytes) + " bytes", Median(times), "ms", 1});
    AddFigure({name + ", over the time of its bytes", Median(shares), "", 4, kLimit});
}

// Counts how often the bar of the progress window is painted.
class BarWatch : public QObject {
  public:
    BarWatch() { qApp->installEventFilter(this); }
    int Paints = 0;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint && object->objectName() == QLatin1String("ProgressBar1") &&
            static_cast<QWidget*>(object)->window()->objectName() == QLatin1String("frmProgress2"))
            ++Paints;
        return false;
    }
};

// What goes over the line for cell `n`, counted from 0 down the columns, of the map that begins at `block`.
struct CellTraffic {
    int Block;
    bool Old;  // by the command of the older builds

    Bytes Request(int n) const {
        const auto command = Old ? kOldCellWrite : static_cast<std::uint8_t>(Block - 1);
        const auto value = static_cast<std::uint8_t>(
            ReadData[static_cast<std::size_t>(Block + n / 100)][static_cast<std::size_t>(n % 100)]);
        return powerfc::Frame(
            command, {static_cast<std::uint8_t>(n % 256), static_cast<std::uint8_t>(n / 256), value});
    }
    std::size_t FramesACell() const { return Old ? 3 : 2; }

    bool IsCell(const Journal& journal, std::size_t at, int n) const {
        if (!Old) return IsExchange(journal, at, Request(n), powerfc::Frame(kAcknowledge));
        return IsFrame(journal[at], Direction::Received, Request(n)) &&
               IsExchange(journal, at + 1, powerfc::Frame(kOldOutcome), powerfc::Frame(kOldOutcome, {0}));
    }

    // Index of the first frame of the cells. They come row by row and end the journal; -1 if they don't.
    std::ptrdiff_t FirstIn(const Journal& journal) const {
        const std::size_t count = kCells * FramesACell();
        if (journal.size() < count) return -1;
        const std::size_t first = journal.size() - count;
        for (int k = 0; k < kCells; ++k) {
            const int n = k / kMapSide + k % kMapSide * kMapSide;
            if (!IsCell(journal, first + static_cast<std::size_t>(k) * FramesACell(), n)) return -1;
        }
        return static_cast<std::ptrdiff_t>(first);
    }
};

// One way of sending a map cell by cell.
struct CellWrite {
    std::string Name;
    std::function<void(int map)> Send;
};

int MapAt(int block) {
    const auto map = std::find(MapFirstBlock.begin(), MapFirstBlock.end(), block);
    return static_cast<int>(map - MapFirstBlock.begin());
}

// The clock begins with the last reply before the cells, or, where a refused block came before and nothing
// answered it, with the first cell. It ends with the command, when the progress window has gone.
void MeasureCells(frmMain& main, PacedLine& line, const CellWrite& write, int map, bool old) {
    const CellTraffic traffic{MapFirstBlock[static_cast<std::size_t>(map)], old};
    std::vector<double> times, shares;
    std::size_t bytes = 0;
    for (int run = 0; run < kCellRuns; ++run) {
        StepCells(map, {1, 1, kMapSide, kMapSide}, run);
        if (CountUnsent().Cells != kCells) return AddFailure(write.Name, "not every cell was changed");
        Show(main);
        line.Device().ClearJournal();
        const BarWatch bar;
        write.Send(map);
        const std::int64_t end = NowNs();
        Show(main);

        Journal journal = line.Device().Journal();
        const std::ptrdiff_t first = traffic.FirstIn(journal);
        if (first < 1) return AddFailure(write.Name, "not every cell was sent, or something else was");
        if (CountUnsent().Cells != 0) return AddFailure(write.Name, "cells are left");
        if (bar.Paints < kBarPaints) return AddFailure(write.Name, "the progress window was not painted");
        const JournalEntry& before = journal[static_cast<std::size_t>(first - 1)];
        const JournalEntry& cell = journal[static_cast<std::size_t>(first)];
        const std::int64_t startUs = before.Way == Direction::Sent ? before.LastUs : cell.FirstUs;
        journal.erase(journal.begin(), journal.begin() + first);
        bytes = BytesOf(journal);
        times.push_back(Milliseconds(end - startUs * 1000));
        shares.push_back(times.back() / LineMs(bytes));
    }
    AddFigure({write.Name + ", " + std::to_string(bytes) + " bytes", Median(times), "ms", 1});
    AddFigure({write.Name + ", over the time of its bytes", Median(shares), "", 4, kLimit});
}

void MeasureCellsOf(frmMain& main, const char* build, bool old) {
    const std::string name = std::string(" of 400 cells of ") + build;
    PacedLine line(build);
    if (!line.Error().empty()) return AddFailure("Write" + name, line.Error());
    cmdReadAll_Click();
    Show(main);
    const int map = old ? MapAt(kOldInjectionBlock) : 0;
    if (map >= kMapTabs || !DataChanged) return AddFailure("Write" + name, "the map was not read");
    // One attempt each: a lost frame spoils the figure and is to be seen.
    const auto retries = ComRetries;
    ComRetries = 0;
    line.Device().RefuseMapBlocks(!old);
    MeasureCells(main, line, {"Update" + name, [](int) { TimerUpdate_Timer(); }}, map, old);
    MeasureCells(main, line, {"Write Map" + name, cmdWriteMap_Click}, map, old);
    ComRetries = retries;
}

}  // namespace

void MeasureUpdating(frmMain& main) {
    MeasureUpdate(main);
    MeasureCellsOf(main, kOldBuild, true);
    MeasureCellsOf(main, kBuild, false);
    AddRemark(
        std::string("Update, Write Map: simulator as above; cell by cell with the progress window shown; ") +
        kBuild + " refuses whole map blocks then.");
}

}  // namespace zandrel
