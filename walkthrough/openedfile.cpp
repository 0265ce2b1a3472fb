#include "openedfile.h"

#include <QFileInfo>
#include <QTest>
#include <cstdio>

#include "checks.h"
#include "person.h"
#include "shell/programfolder.h"
#include "shell/startstop.h"
#include "shell/windows/frmMain.h"
#include "tuning/mainform.h"
#include "tuning/settings.h"
#include "util/desktop.h"

namespace zandrel {
namespace {

// There is no Power-FC to fetch from what an older file lacks.
void AnswerNo() {
    Desktop.MessageBox = [ask = Desktop.MessageBox](const std::string& text, Box box) {
        if (box != Box::YesNo) return ask(text, box);
        std::printf(
            "            asked, and answered No: %s\n",
            qPrintable(QString::fromStdString(text).replace(QLatin1Char('\n'), QStringLiteral(" / "))));
        return Answer::No;
    };
}

QString Open(frmMain& window, const QString& path) {
    AnswerNo();
    const std::string file = CommandLinePath(path.toStdString());
    frmMain_Load(file);
    window.Mirror();
    window.show();
    window.BuildAllPages();
    window.resize(1280, 800);
    QTest::qWait(50);
    const QString title = window.windowTitle();
    Require(title.contains(QStringLiteral("] - ") + QFileInfo(QString::fromStdString(file)).fileName()),
            QStringLiteral("the file is not open; the title is \"%1\"").arg(title));
    return title;
}

}  // namespace

void LookAtFile(frmMain& window, const QString& path) {
    Step(QStringLiteral("Open ") + path, [&] { return Open(window, path); });
    for (int tab = 0; tab < kTabs; ++tab) {
        const auto at = static_cast<std::size_t>(tab);
        if (!SSTab1.TabVisible[at]) continue;
        Step(QStringLiteral("Tab ") + QString::fromStdString(SSTab1.TabCaption[at]), [tab] {
            ChooseTab(tab);
            QTest::qWait(30);
            Picture(TabName(tab));
            return QString();
        });
    }
    Step(QStringLiteral("Close the window"), [&window] {
        Require(window.close(), QStringLiteral("it did not close"));
        return QString();
    });
    std::printf("The file was open: %d pictures\n", PictureCount());
}

}  // namespace zandrel
