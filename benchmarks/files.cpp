#include <algorithm>
#include <array>
#include <string>

#include "builddata.h"
#include "figures.h"
#include "files/datafile.h"
#include "files/datatext.h"
#include "files/wholefile.h"
#include "image/image.h"
#include "measurements.h"
#include "paintwatch.h"
#include "shell/windows/frmMain.h"
#include "tuning/mainform.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr int kReads = 101;
constexpr int kLargeReads = 9;
constexpr int kOpenings = 9;
constexpr int kSaves = 41;
constexpr std::size_t kLargest = 16U << 20;
constexpr double kMegabytesPerSecond = 300;
constexpr char kFewControls[] = "RB26DETT6.42";
constexpr char kManyControls[] = "B16A11.50C";
constexpr char kNotes[] = "Stage 2\r\n1.2 bar at 4500 rpm\r\n98 octane";

std::string DataOf(const char* build) {
    return FormatDataText(ContentsOf(build).Blocks, kNotes);
}

bool Put(const std::string& path, const std::string& bytes) {
    if (WriteWholeFile(path, bytes)) return true;
    AddFailure("Data files", "the file cannot be written");
    return false;
}

// From the disk to blocks and notes; 0 where that failed.
double ReadMs(const std::string& path, int runs) {
    std::vector<double> times;
    for (int n = 0; n < runs; ++n) {
        const std::int64_t start = NowNs();
        std::string bytes;
        DataText data;
        const bool done = ReadWholeFile(path, kLargest, bytes) == FileResult::Done;
        if (done) ParseDataText(bytes, data);
        times.push_back(Milliseconds(NowNs() - start));
        if (!done || (data.Notes.empty() && data.Blocks[0x86].empty())) {
            AddFailure("Reading of a data file", "nothing was read");
            return 0;
        }
    }
    return Median(times);
}

std::string Repeated(const std::string& part) {
    std::string bytes;
    bytes.reserve(kLargest);
    while (bytes.size() + part.size() <= kLargest) bytes += part;
    return bytes;
}

void MeasureReading(const std::string& path) {
    if (!Put(path, DataOf(kManyControls))) return;
    AddFigure({"Reading of a full data file alone", ReadMs(path, kReads), "ms", 3, 2});
    double worst = 0;
    std::size_t size = 0;
    for (const std::string& part :
         {DataOf(kManyControls), std::string("TT1.2 bar at 4500 rpm, 98 octane\r\n")}) {
        const std::string bytes = Repeated(part);
        if (!Put(path, bytes)) return;
        if (const double ms = ReadMs(path, kLargeReads); ms > worst) {
            worst = ms;
            size = bytes.size();
        }
    }
    const double limit = static_cast<double>(kLargest) / 1e6 / kMegabytesPerSecond * 1000;
    AddFigure({"Reading of a data file of 16 MB", worst, "ms", 1, limit});
    AddRemark(
        "Reading: from the disk's cache to blocks and notes; of 16 MB the slower of all blocks and all "
        "notes, " +
        std::to_string(static_cast<int>(static_cast<double>(size) / 1e3 / worst)) + " MB/s.");
}

// Files of two builds that show different frames, tabs and numbers, by turns.
void MeasureOpening(frmMain& main, const std::string& folder) {
    constexpr char kName[] = "Opening of a data file of another build, window repainted";
    const std::array<std::string, 2> paths = {folder + "/a.dat", folder + "/b.dat"};
    if (!Put(paths[0], DataOf(kFewControls)) || !Put(paths[1], DataOf(kManyControls))) return;
    const PaintWatch watch;
    double worst = 0;
    std::string worstTab;
    for (int tab = 0; tab < kTabs; ++tab) {
        std::vector<double> times;
        for (int n = 0; n < kOpenings + 2; ++n) {
            const std::string& path = paths[static_cast<std::size_t>(n % 2)];
            DataChanged = false;
            SSTab1.Tab = tab;
            const int paints = watch.Paints();
            const std::int64_t start = NowNs();
            std::string opened = path;
            OpenFile(opened, true);
            main.Mirror();
            watch.Settle();
            if (MainFormState.FileTitle != FileTitleOf(path)) return AddFailure(kName, "it was not opened");
            // The first round of each build brings the tab into view; a build without it shows another.
            if (n < 2 || SSTab1.Tab != tab) continue;
            if (watch.Paints() == paints || watch.LastNs() < start)
                return AddFailure(kName, "nothing was painted");
            times.push_back(Milliseconds(watch.LastNs() - start));
        }
        if (const double median = Median(times); median > worst) {
            worst = median;
            worstTab = SSTab1.TabCaption[static_cast<std::size_t>(tab)];
        }
    }
    AddFigure({kName, worst, "ms", 1, 60});
    AddRemark(std::string("Opening: ") + kFewControls + " and " + kManyControls +
              " by turns, all pages built; the slowest tab, which is \"" + worstTab + "\".");
}

void MeasureSaving(const std::string& path) {
    std::vector<double> saves, flushes;
    double flushed = 0;
    Flush = [&flushed](int handle) {
        const std::int64_t start = NowNs();
        const bool done = FlushToDisk(handle);
        flushed += Milliseconds(NowNs() - start);
        return done;
    };
    for (int n = 0; n < kSaves; ++n) {
        DataChanged = true;
        flushed = 0;
        const std::int64_t start = NowNs();
        SaveFile(path);
        const double all = Milliseconds(NowNs() - start);
        if (DataChanged) {
            AddFailure("Saving of a full data file", "it was not saved");
            break;
        }
        saves.push_back(all - flushed);
        flushes.push_back(flushed);
    }
    Flush = FlushToDisk;
    AddFigure({"Saving of a full data file, but for the disk's flush", Median(saves), "ms", 3, 5});
    AddFigure({"That flush", Median(flushes), "ms", 3});
}

}  // namespace

void MeasureFiles(frmMain& main) {
    const std::string folder = ProgramFolder;
    MeasureReading(folder + "/read.dat");
    MeasureOpening(main, folder);
    MeasureSaving(folder + "/saved.dat");
    DataChanged = false;
}

}  // namespace zandrel
