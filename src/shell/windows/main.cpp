// Zandrel: tuning editor and data logger for the Power-FC.
#include <QApplication>
#include <QTimer>

#include "shell/settingsstore.h"
#include "shell/startstop.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/frmMain.h"
#include "util/diagnostics.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Zandrel"));
    // A message box during the start is the last window when it closes; only the main window ends the
    // program.
    QApplication::setQuitOnLastWindowClosed(false);

    const QString home = qEnvironmentVariable("ZANDREL_HOME");
    zandrel::ProgramFolder = (home.isEmpty() ? QApplication::applicationDirPath() : home).toStdString();
    zandrel::OpenSettingsStore(qEnvironmentVariable("ZANDREL_SETTINGS").toStdString());
    zandrel::LoadDesign();
    zandrel::frmMain main;
    zandrel::OpenDesktop(main);
    zandrel::frmMain_Load();
    main.Mirror();
    main.show();
    // The settings pages fill themselves at the first turn of the event loop.
    QTimer::singleShot(0, &main, [&main] { main.BuildAllPages(); });
    return QApplication::exec();
}
