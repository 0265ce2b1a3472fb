// zandrel-bench: prints a table of what the program takes; ends with 1 if a row exceeds its limit.
#include <QApplication>
#include <QTemporaryDir>
#include <cstdio>

#include "figures.h"
#include "link/packets.h"
#include "measurements.h"
#include "shell/settingsstore.h"
#include "shell/startstop.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/frmMain.h"
#include "util/desktop.h"
#include "util/diagnostics.h"

int main(int argc, char** argv) {
    const QTemporaryDir home;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt complains where a session has none.
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Zandrel"));
    zandrel::ProgramFolder = home.path().toStdString();
    zandrel::OpenSettingsStore(home.filePath(QStringLiteral("settings.ini")).toStdString());
    zandrel::LoadDesign();
    zandrel::frmMain main;
    zandrel::OpenDesktop(main);
    zandrel::Desktop.MessageBox = [](const std::string& text, zandrel::Box) {
        zandrel::AddFailure("Unexpected message", text);
        return zandrel::Answer::Cancel;
    };
    zandrel::frmMain_Load();
    main.Mirror();
    main.show();
    // Only now: with its first show the window takes its stored place.
    main.resize(1280, 800);
    main.BuildAllPages();
    QCoreApplication::processEvents();
    if (main.size() != QSize(1280, 800)) zandrel::AddFailure("Window of 1280 by 800", "it has another size");

    zandrel::MeasureStart();
    zandrel::MeasureReadAll(main);
    zandrel::MeasureUpdating(main);
    zandrel::MeasureDisplay(main);
    zandrel::MeasureEditing(main);
    zandrel::MeasureFiles(main);
    zandrel::MeasureAccessors();
    return zandrel::PrintFigures() ? 0 : 1;
}
