#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstdlib>
#include <optional>

#include "builddata.h"
#include "figures.h"
#include "files/datatext.h"
#include "files/wholefile.h"
#include "measurements.h"

namespace zandrel {
namespace {

constexpr int kStarts = 6;  // the first brings the files into memory and does not count
constexpr int kPatienceMs = 20'000;

struct Start {
    double Ms;         // from the spawn to the painted window
    double Megabytes;  // resident at that moment
    std::string Title;
};

// The program's report. Nothing: the program ended or is stuck.
std::optional<Start> ReadReport(int descriptor, std::int64_t startNs) {
    std::string line;
    for (;;) {
        pollfd watched = {descriptor, POLLIN, 0};
        char c = 0;
        if (poll(&watched, 1, kPatienceMs) <= 0 || read(descriptor, &c, 1) != 1) return std::nullopt;
        if (c == '\n') break;
        line += c;
    }
    char* rest = nullptr;
    const std::int64_t ns = std::strtoll(line.c_str(), &rest, 10);
    const std::int64_t kilobytes = std::strtoll(rest, &rest, 10);
    const std::string title = rest == nullptr || *rest == 0 ? "" : rest + 1;
    return Start{Milliseconds(ns - startNs), static_cast<double>(kilobytes) / 1024, title};
}

std::vector<std::string> Environment(const QString& home, int descriptor) {
    const std::string folder = home.toStdString();
    const std::string plugins = QCoreApplication::applicationDirPath().toStdString() + "/benchmarks/plugins";
    std::vector<std::string> all = {"ZANDREL_HOME=" + folder,
                                    "ZANDREL_SETTINGS=" + folder + "/settings.ini",
                                    "ZANDREL_PORTS=1=/nowhere",
                                    "ZANDREL_READY_FD=" + std::to_string(descriptor),
                                    "QT_QPA_GENERIC_PLUGINS=zandrelready",
                                    "QT_PLUGIN_PATH=" + plugins,
                                    "QT_QPA_PLATFORM=offscreen"};
    for (const char* name : {"PATH", "HOME", "LANG", "LC_ALL", "LD_LIBRARY_PATH", "XDG_RUNTIME_DIR"}) {
        if (const char* value = std::getenv(name)) all.push_back(std::string(name) + "=" + value);
    }
    return all;
}

// With an empty `file` the program starts without one.
std::optional<Start> StartOnce(std::string file) {
    const QTemporaryDir home;
    int ends[2];
    if (pipe(ends) != 0) return std::nullopt;
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    std::vector<std::string> environment = Environment(home.path(), ends[1]);
    std::vector<char*> variables;
    for (std::string& variable : environment) variables.push_back(variable.data());
    variables.push_back(nullptr);
    std::string program = QCoreApplication::applicationDirPath().toStdString() + "/zandrel";
    char* arguments[] = {program.data(), file.empty() ? nullptr : file.data(), nullptr};

    pid_t child = 0;
    const std::int64_t startNs = NowNs();
    const int failed = posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, variables.data());
    close(ends[1]);
    std::optional<Start> start;
    if (failed == 0) {
        start = ReadReport(ends[0], startNs);
        kill(child, SIGTERM);
        waitpid(child, nullptr, 0);
    }
    close(ends[0]);
    return start;
}

// The median of some starts whose window bears `title`, and the memory then; nothing where one failed.
std::optional<Start> MedianStart(const std::string& row, const std::string& file, const std::string& title) {
    std::vector<double> times, memory;
    for (int n = 0; n < kStarts; ++n) {
        const auto start = StartOnce(file);
        if (!start || start->Title != title) {
            AddFailure(row, !start ? "the program did not show its window" : "its title is " + start->Title);
            return std::nullopt;
        }
        if (n == 0) continue;
        times.push_back(start->Ms);
        memory.push_back(start->Megabytes);
    }
    return Start{Median(times), Median(memory), title};
}

}  // namespace

void MeasureStart() {
    const std::string plain = "Start to shown and painted window";
    if (const auto start = MedianStart(plain, "", "Zandrel [ v] - ")) {
        AddFigure({plain, start->Ms, "ms", 0, 400});
        AddFigure({"Memory then", start->Megabytes, "MB", 1, 120});
    }
    const std::string opening = "Start that opens a data file, to its shown and painted window";
    const QTemporaryDir folder;
    const std::string file = folder.filePath(QStringLiteral("all of it.dat")).toStdString();
    if (!WriteWholeFile(file, FormatDataText(ContentsOf("RB26DETT6.42").Blocks, "Notes\r\n"))) {
        AddFailure(opening, "its file could not be written");
    } else if (const auto start = MedianStart(opening, file, "Zandrel [RB26DETT v6.42] - all of it.dat")) {
        AddFigure({opening, start->Ms, "ms", 0, 500});
    }
}

}  // namespace zandrel
