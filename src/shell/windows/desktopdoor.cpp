#include "shell/windows/desktopdoor.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <vector>

#include "link/progress.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmNumberEntry.h"
#include "shell/windows/shown.h"
#include "util/desktop.h"

namespace zandrel {
namespace {

bool PointerIsBusy = false;

struct BoxRow {
    Box Kind;
    QMessageBox::Icon Icon;
    QMessageBox::StandardButtons Buttons;
    QMessageBox::StandardButton Escape;
};

// clang-format off
const BoxRow kBoxes[] = {
    {Box::Plain,            QMessageBox::NoIcon,      QMessageBox::Ok,                     QMessageBox::Ok},
    {Box::Critical,         QMessageBox::Critical,    QMessageBox::Ok,                     QMessageBox::Ok},
    {Box::Exclamation,      QMessageBox::Warning,     QMessageBox::Ok,                     QMessageBox::Ok},
    {Box::SaveQuestion,     QMessageBox::Warning,
     QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,                             QMessageBox::Cancel},
    {Box::YesNo,            QMessageBox::Warning,     QMessageBox::Yes | QMessageBox::No,  QMessageBox::No},
    {Box::Information,      QMessageBox::Information, QMessageBox::Ok,                     QMessageBox::Ok},
    {Box::YesNoInformation, QMessageBox::Information, QMessageBox::Yes | QMessageBox::No,  QMessageBox::No},
};
// clang-format on

Answer AnswerOf(QMessageBox::StandardButton button) {
    switch (button) {
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        case QMessageBox::Cancel:
            return Answer::Cancel;
        default:
            return Answer::Ok;
    }
}

// What a box stands over: a progress window that stays on top would cover a box over the main window.
QWidget* Over(frmMain* main) {
    if (main == nullptr || !main->isVisible()) return nullptr;
    auto* progress = main->findChild<QDialog*>(QStringLiteral("frmProgress2"));
    return progress != nullptr && progress->isVisible() ? progress : static_cast<QWidget*>(main);
}

// What has to stand on the screen before anything else goes on.
struct ShownProgress {
    bool Progress = Progress2.Visible;
    bool Scan = ProgressScan.Visible;
    std::string Status = Progress2.Status;
    bool operator==(const ShownProgress&) const = default;
};

// Shows a dialog and waits until it is closed or the application ends.
void WaitFor(QDialog& dialog) {
    QEventLoop loop;
    QObject::connect(&dialog, &QDialog::finished, &loop, &QEventLoop::quit);
    dialog.open();
    loop.exec();
}

Answer ShowBox(QWidget* over, const std::string& text, Box box) {
    const BoxRow* row = kBoxes;
    for (const BoxRow& candidate : kBoxes) {
        if (candidate.Kind == box) row = &candidate;
    }
    QMessageBox window(over);
    window.setObjectName(QStringLiteral("MessageBox"));
    window.setWindowTitle(QStringLiteral("Zandrel"));
    window.setTextFormat(Qt::PlainText);
    window.setText(Shown(text));
    window.setIcon(row->Icon);
    window.setStandardButtons(row->Buttons);
    window.setEscapeButton(row->Escape);
    // A question may come while an operation keeps the pointer busy.
    const bool busy = PointerIsBusy;
    if (busy) QApplication::setOverrideCursor(Qt::ArrowCursor);
    WaitFor(window);
    if (busy) QApplication::restoreOverrideCursor();
    const auto button = window.standardButton(window.clickedButton());
    return AnswerOf(button == QMessageBox::NoButton ? row->Escape : button);
}

// A filter shows its text as it stands; its pattern, in brackets behind, stays hidden. On systems whose names
// need no dot "*.*" means every file, and ".DAT" is ".dat" in capitals.
QString NameFilter(const std::string& filter) {
    const QString shown = Shown(filter);
    QString pattern = shown.section(QLatin1Char('('), -1).section(QLatin1Char(')'), 0, 0);
    if (pattern == QLatin1String("*.*")) pattern = QStringLiteral("*");
    if (pattern != pattern.toUpper()) pattern += QLatin1Char(' ') + pattern.toUpper();
    return QStringLiteral("%1 (%2)").arg(shown, pattern);
}

// A folder that has gone gives way to the one above it.
QString NearestFolder(const std::string& folder) {
    QString path = QDir::cleanPath(Shown(folder));
    while (!QDir(path).exists()) {
        const QString above = QDir::cleanPath(path + QStringLiteral("/.."));
        if (above == path || above.startsWith(QLatin1String(".."))) return QDir::homePath();
        path = above;
    }
    return path;
}

// A proposed name stays a name: engines and files are called what they are called, and the dialog takes
// quotes for its own.
QString ProposedName(const std::string& name) {
    QString proposed = Printable(name);
    for (QChar& letter : proposed) {
        if (QStringLiteral("/\\\"").contains(letter)) letter = QLatin1Char('_');
    }
    return proposed;
}

std::string ChooseFile(QWidget* over, const FileChoice& choice) {
    QFileDialog window(over);
    window.setObjectName(QStringLiteral("FileDialog"));
    window.setWindowTitle(QStringLiteral("Zandrel"));
    window.setAcceptMode(choice.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    window.setFileMode(choice.Save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    window.setOption(QFileDialog::HideNameFilterDetails);
    QStringList filters;
    for (const std::string& filter : choice.Filters) filters += NameFilter(filter);
    if (!filters.isEmpty()) {
        window.setNameFilters(filters);
        window.selectNameFilter(filters[std::clamp<qsizetype>(choice.FilterIndex, 0, filters.size() - 1)]);
    }
    if (!choice.Suffix.empty()) window.setDefaultSuffix(Shown(choice.Suffix));
    if (!choice.Folder.empty()) window.setDirectory(NearestFolder(choice.Folder));
    if (!choice.Name.empty()) window.selectFile(ProposedName(choice.Name));
    const bool busy = PointerIsBusy;
    if (busy) QApplication::setOverrideCursor(Qt::ArrowCursor);
    WaitFor(window);
    if (busy) QApplication::restoreOverrideCursor();
    if (window.result() != QDialog::Accepted || window.selectedFiles().isEmpty()) return {};
    return window.selectedFiles().first().toStdString();
}

// An assignment, not a stack: twice busy is busy.
void SetPointer(bool busy) {
    if (busy == PointerIsBusy) return;
    PointerIsBusy = busy;
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::restoreOverrideCursor();
    }
}

// A timer that fires once, then shows what came of it.
void OpenTimers(frmMain& main) {
    const QPointer<frmMain> window = &main;
    std::vector<QPointer<QTimer>> timers;
    for (int i = 0; i < static_cast<int>(Timer::Count); ++i) {
        auto* timer = new QTimer(&main);
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        timers.push_back(timer);
    }
    Desktop.StartTimer = [timers, window](Timer which, int milliseconds, const std::function<void()>& fire) {
        QTimer* timer = timers[static_cast<std::size_t>(which)];
        if (timer == nullptr) return;
        timer->disconnect();
        QObject::connect(timer, &QTimer::timeout, window, [window, fire] {
            fire();
            window->Mirror();
        });
        timer->start(milliseconds);
    };
    Desktop.StopTimer = [timers](Timer which) {
        if (QTimer* timer = timers[static_cast<std::size_t>(which)]) timer->stop();
    };
}

}  // namespace

void OpenDesktop(frmMain& main) {
    const QPointer<frmMain> window = &main;
    Desktop.Yield = [window, shown = ShownProgress{}, last = std::uint32_t{0}]() mutable {
        if (window == nullptr) return;
        // Loops yield far more often than an eye can follow.
        constexpr std::uint32_t kMirrorMs = 50;
        const std::uint32_t now = TickCount();
        if (now - last >= kMirrorMs || shown != ShownProgress{}) {
            window->Mirror();
            shown = {};
            last = now;
        }
        // While a menu fills itself a click must not overtake it.
        QCoreApplication::processEvents(window->MenuOpens() ? QEventLoop::ExcludeUserInputEvents
                                                            : QEventLoop::AllEvents);
    };
    Desktop.MessageBox = [window](const std::string& text, Box box) {
        if (window != nullptr) window->Mirror();
        return ShowBox(Over(window), text, box);
    };
    Desktop.BusyPointer = SetPointer;
    Desktop.ChooseFile = [window](const FileChoice& choice) {
        if (window != nullptr) window->Mirror();
        return ChooseFile(Over(window), choice);
    };
    Desktop.SetClipboard = [](const std::string& text) { QApplication::clipboard()->setText(Shown(text)); };
    Desktop.GetClipboard = [] { return QApplication::clipboard()->text().toStdString(); };
    Desktop.EnterNumber = [window](const NumberEntry& entry, const frmNumberEntry::Done& done) {
        auto* dialog = new frmNumberEntry(
            entry,
            [window, done](const std::string& text) {
                done(text);
                if (window != nullptr) window->Mirror();
            },
            Over(window));
        dialog->open();
    };
    OpenTimers(main);
}

}  // namespace zandrel
