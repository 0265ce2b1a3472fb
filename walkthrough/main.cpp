// zandrel-tour [--out FOLDER]: drives the real windows through the main job, prints each step with its
// time, leaves pictures, and fails loudly. It talks to whatever ZANDREL_PORTS names; without it, it starts
// powerfc-sim itself.
#include <signal.h>
#include <sys/prctl.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <cstdio>

#include "person.h"
#include "shell/settingsstore.h"
#include "shell/startstop.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/frmMain.h"
#include "steps.h"
#include "util/diagnostics.h"

namespace {

constexpr char kUsage[] =
    "usage: zandrel-tour [--out FOLDER]\n"
    "Drives the real windows through the main job and leaves pictures in FOLDER (default: tour).\n";

// The port number that ZANDREL_PORTS names first.
int FirstPort() {
    const QString first = qEnvironmentVariable("ZANDREL_PORTS").section(QLatin1Char('='), 0, 0);
    bool whole = false;
    const int number = first.trimmed().toInt(&whole);
    return whole && number >= 1 && number <= 16 ? number : 0;
}

bool StartSimulator(QProcess& simulator, const QString& journal) {
    // A tour that is killed takes its simulator along.
    simulator.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    simulator.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    simulator.start(
        QApplication::applicationDirPath() + QStringLiteral("/powerfc-sim"),
        {QStringLiteral("--version"), QStringLiteral("RB26DETT6.42"), QStringLiteral("--journal"), journal});
    if (!simulator.waitForStarted(5000) || !simulator.waitForReadyRead(5000)) return false;
    const QString terminal = QString::fromUtf8(simulator.readLine()).trimmed();
    // The machine's own ports are left alone.
    QString ports = QStringLiteral("1=") + terminal;
    for (int n = 2; n <= 16; ++n) ports += QStringLiteral(",%1=/nowhere").arg(n);
    qputenv("ZANDREL_PORTS", ports.toUtf8());
    std::printf("powerfc-sim: RB26DETT6.42 on %s\n", qPrintable(terminal));
    return true;
}

// What an earlier tour has left would pass for this one's. Only a tour's own files go: numbered pictures,
// and the log and journal of a folder that holds a tour's settings.
void ForgetEarlierTour(QDir folder) {
    if (!folder.exists(QStringLiteral("tour-settings.ini"))) return;
    for (const QString& file : folder.entryList({QStringLiteral("[0-9][0-9]-*.png")}, QDir::Files)) {
        folder.remove(file);
    }
    for (const char* file : {"DebugLog.txt", "journal.txt", "tour-settings.ini"}) {
        folder.remove(QLatin1String(file));
    }
}

void StopSimulator(QProcess& simulator) {
    if (simulator.state() == QProcess::NotRunning) return;
    simulator.terminate();
    simulator.waitForFinished(3000);
}

int Tour(const QString& folder, const zandrel::TourSetting& setting) {
    zandrel::ProgramFolder = folder.toStdString();
    zandrel::OpenSettingsStore(QDir(folder).filePath(QStringLiteral("tour-settings.ini")).toStdString());
    zandrel::LoadDesign();
    zandrel::frmMain window;
    zandrel::OpenDesktop(window);
    zandrel::BeginTour(window, folder);
    try {
        zandrel::frmMain_Load();
        window.Mirror();
        window.show();
        window.BuildAllPages();
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
    const QStringList arguments = QApplication::arguments();
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--help")) {
            std::printf("%s", kUsage);
            return 0;
        }
        if (arguments[i] != QStringLiteral("--out") || i + 1 == arguments.size()) {
            std::fprintf(stderr, "%s", kUsage);
            return 2;
        }
        folder = arguments[++i];
    }
    folder = QDir(folder).absolutePath();
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "can't make the folder %s\n", qPrintable(folder));
        return 2;
    }
    ForgetEarlierTour(QDir(folder));

    QProcess simulator;
    zandrel::TourSetting setting;
    setting.OwnSimulator = qEnvironmentVariableIsEmpty("ZANDREL_PORTS");
    setting.Journal = QDir(folder).filePath(QStringLiteral("journal.txt"));
    if (setting.OwnSimulator && !StartSimulator(simulator, setting.Journal)) {
        std::fprintf(stderr, "powerfc-sim does not start\n");
        return 1;
    }
    setting.PortNumber = FirstPort();
    if (setting.PortNumber == 0) {
        std::fprintf(stderr, "ZANDREL_PORTS names no port from 1 to 16\n");
        return 2;
    }
    setting.SwitchIgnition = [&simulator] { kill(static_cast<pid_t>(simulator.processId()), SIGUSR1); };
    const int result = Tour(folder, setting);
    StopSimulator(simulator);
    return result;
}
