// zandrel-tour [--out FOLDER] [FILE.dat]: drives the real windows through the main job, prints each step with
// its time, leaves pictures, and fails loudly. It talks to whatever ZANDREL_PORTS names; without it, it
// starts powerfc-sim itself, and only then it writes. With a data file it opens that instead, and looks at
// it.
#include <QApplication>
#include <QDir>
#include <QFile>
#include <cstdio>
#include <iterator>

#include "files.h"
#include "openedfile.h"
#include "person.h"
#include "shell/settingsstore.h"
#include "shell/startstop.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/frmMain.h"
#include "simulated.h"
#include "steps.h"
#include "util/diagnostics.h"

namespace {

constexpr char kUsage[] =
    "usage: zandrel-tour [--out FOLDER] [FILE.dat]\n"
    "Drives the real windows through the main job, or opens FILE.dat in them, and leaves pictures in FOLDER\n"
    "(default: tour).\n";

// The port number that ZANDREL_PORTS names first.
int FirstPort() {
    const QString first = qEnvironmentVariable("ZANDREL_PORTS").section(QLatin1Char('='), 0, 0);
    bool whole = false;
    const int number = first.trimmed().toInt(&whole);
    return whole && number >= 1 && number <= 16 ? number : 0;
}

struct Start {
    const char* Version;
    QStringList Options;
};

// In the order of `Simulated`. The one that refuses is paced, so that its writes can be watched and
// cancelled.
const Start kStarts[] = {
    {"RB26DETT6.42", {}}, {"RB26DETT3.11D", {}},
    {"1JZGT-AT3.54", {}}, {"RB26_1-D7.34A", {QStringLiteral("--refuse-maps"), QStringLiteral("--pace")}},
    {"13B-REW7.07", {}},
};
static_assert(std::size(kStarts) == zandrel::SimulatedCount);

bool StartSimulators(zandrel::SimulatedPowerFc (&simulators)[zandrel::SimulatedCount], const QDir& folder) {
    QString ports;
    for (int i = 0; i < zandrel::SimulatedCount; ++i) {
        const QString version = QLatin1String(kStarts[i].Version);
        const QString journal = folder.filePath(QStringLiteral("journal-%1.txt").arg(i + 1));
        if (!simulators[i].Start(version, kStarts[i].Options, journal)) return false;
        ports += QStringLiteral("%1=%2,").arg(i + 1).arg(simulators[i].Terminal());
        std::printf("powerfc-sim: %s on %s, COM%d\n", kStarts[i].Version,
                    qPrintable(simulators[i].Terminal()), i + 1);
    }
    // The machine's own ports are left alone.
    for (int n = zandrel::SimulatedCount + 1; n <= 16; ++n) ports += QStringLiteral("%1=/nowhere,").arg(n);
    ports.chop(1);
    qputenv("ZANDREL_PORTS", ports.toUtf8());
    return true;
}

// A file alone is looked at.
void UseNoPorts() {
    QStringList ports;
    for (int n = 1; n <= 16; ++n) ports.append(QStringLiteral("%1=/nowhere").arg(n));
    qputenv("ZANDREL_PORTS", ports.join(QLatin1Char(',')).toUtf8());
}

// What an earlier tour has left would pass for this one's. Only a tour's own files go: numbered pictures,
// and the log and journals of a folder that holds a tour's settings.
void ForgetEarlierTour(QDir folder) {
    if (!folder.exists(QStringLiteral("tour-settings.ini"))) return;
    const QStringList own = {QStringLiteral("[0-9][0-9]-*.png"), QStringLiteral("journal-[0-9].txt"),
                             QStringLiteral("Unsaved*")};
    for (const QString& file : folder.entryList(own, QDir::Files)) {
        folder.remove(file);
    }
    for (const char* file : {"DebugLog.txt", "tour-settings.ini", "default.dat", "tour car.dat",
                             "other build.dat", "broken.dat"}) {
        folder.remove(QLatin1String(file));
    }
}

// An empty `file`: the whole tour.
int Tour(const QString& folder, const zandrel::TourSetting& setting, const QString& file, bool again) {
    zandrel::ProgramFolder = folder.toStdString();
    zandrel::OpenSettingsStore(QDir(folder).filePath(QStringLiteral("tour-settings.ini")).toStdString());
    zandrel::LoadDesign();
    zandrel::frmMain window;
    zandrel::OpenDesktop(window);
    zandrel::BeginTour(window, folder);
    try {
        if (!file.isEmpty()) {
            zandrel::LookAtFile(window, file);
            return 0;
        }
        zandrel::frmMain_Load();
        window.Mirror();
        window.show();
        window.BuildAllPages();
        if (again) {
            zandrel::ComeBackAsLeft(window);
            return 0;
        }
        zandrel::WalkThrough(window, setting);
    } catch (const zandrel::TourFailure& failure) {
        std::printf("            FAILED: %s\n", qPrintable(failure.Reason));
        std::fflush(stdout);
        try {
            zandrel::Picture(QStringLiteral("failed"));
        } catch (const zandrel::TourFailure& again) {
            std::printf("            and no picture of it: %s\n", qPrintable(again.Reason));
        }
        return 1;
    }
    std::printf("The tour is through: %d pictures in %s\n", zandrel::PictureCount(), qPrintable(folder));
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // The offscreen screen tells at length what it can't do.
    qputenv("QT_LOGGING_RULES", "qt.qpa.*=false;*.warning=false");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QString folder = QStringLiteral("tour");
    QString file;
    bool again = false;  // the next run, that a tour has set up
    const QStringList arguments = QApplication::arguments();
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--help")) {
            std::printf("%s", kUsage);
            return 0;
        }
        if (arguments[i] == QStringLiteral("--out") && i + 1 < arguments.size()) {
            folder = arguments[++i];
        } else if (arguments[i] == QStringLiteral("--again")) {
            again = true;
        } else if (!arguments[i].startsWith(QStringLiteral("--"))) {
            file = arguments.mid(i).join(QLatin1Char(' '));
            break;
        } else {
            std::fprintf(stderr, "%s", kUsage);
            return 2;
        }
    }
    folder = QDir(folder).absolutePath();
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "can't make the folder %s\n", qPrintable(folder));
        return 2;
    }
    if (!again) ForgetEarlierTour(QDir(folder));

    zandrel::SimulatedPowerFc simulators[zandrel::SimulatedCount];
    zandrel::TourSetting setting;
    if (!file.isEmpty()) {
        UseNoPorts();
    } else if (qEnvironmentVariableIsEmpty("ZANDREL_PORTS")) {
        if (!StartSimulators(simulators, QDir(folder))) {
            std::fprintf(stderr, "powerfc-sim does not start\n");
            return 1;
        }
        for (zandrel::SimulatedPowerFc& simulator : simulators) setting.Simulators.push_back(&simulator);
    }
    setting.PortNumber = FirstPort();
    if (setting.PortNumber == 0) {
        std::fprintf(stderr, "ZANDREL_PORTS names no port from 1 to 16\n");
        return 2;
    }
    setting.Folder = folder;
    const int result = Tour(folder, setting, file, again);
    if (result != 0 || !setting.OwnSimulator()) return result;
    std::fflush(stdout);
    return QProcess::execute(QApplication::applicationFilePath(),
                             {QStringLiteral("--again"), QStringLiteral("--out"), folder});
}
