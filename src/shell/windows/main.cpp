// Zandrel: tuning editor and data logger for the Power-FC.
#include <QApplication>
#include <QStandardPaths>
#include <QTimer>

#include "shell/programfolder.h"
#include "shell/settingsstore.h"
#include "shell/startstop.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/emblem.h"
#include "shell/windows/frmMain.h"
#include "util/diagnostics.h"

namespace {

std::string FolderOfProgram() {
    const QString userFolder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return zandrel::ChooseProgramFolder(qEnvironmentVariable("ZANDREL_HOME").toStdString(),
                                        QApplication::applicationDirPath().toStdString(),
                                        userFolder.toStdString());
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Zandrel"));
    // By the name of its desktop file a desktop finds what belongs to the window.
    QApplication::setDesktopFileName(QStringLiteral("zandrel"));
    QApplication::setWindowIcon(zandrel::ProgramIcon());
    // A message box during the start is the last window when it closes; only the main window ends the
    // program.
    QApplication::setQuitOnLastWindowClosed(false);

    zandrel::ProgramFolder = FolderOfProgram();
    zandrel::OpenSettingsStore(qEnvironmentVariable("ZANDREL_SETTINGS").toStdString());
    zandrel::LoadDesign();
    zandrel::frmMain main;
    zandrel::OpenDesktop(main);
    // Blanks in a path need no quotes: the whole of the command line is one.
    const QString words = QApplication::arguments().mid(1).join(QLatin1Char(' '));
    zandrel::frmMain_Load(zandrel::CommandLinePath(words.toStdString()));
    main.Mirror();
    main.show();
    // The settings pages fill themselves at the first turn of the event loop.
    QTimer::singleShot(0, &main, [&main] { main.BuildAllPages(); });
    return QApplication::exec();
}
