// A Qt plugin that reports from inside the program when its window stands painted, as a line on the
// descriptor in ZANDREL_READY_FD: nanoseconds of the steady clock, resident kilobytes, the window's title.
#include <unistd.h>

#include <QApplication>
#include <QFile>
#include <QGenericPlugin>
#include <QWidget>

#include "paintwatch.h"

namespace {

QByteArray ResidentKilobytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return "0";
    const QByteArray text = status.readAll();
    const auto at = text.indexOf("VmRSS:");
    return at < 0 ? QByteArray("0") : text.mid(at + 6, text.indexOf("kB", at) - at - 6).trimmed();
}

QByteArray Title() {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible()) return window->windowTitle().toUtf8();
    }
    return {};
}

void Report(std::int64_t ns) {
    const int descriptor = qEnvironmentVariableIntValue("ZANDREL_READY_FD");
    const QByteArray line =
        QByteArray::number(qlonglong{ns}) + ' ' + ResidentKilobytes() + ' ' + Title() + '\n';
    [[maybe_unused]] const ssize_t written = write(descriptor, line.data(), std::size_t(line.size()));
}

}  // namespace

class ReadyPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "readyplugin.json")

  public:
    QObject* create(const QString&, const QString&) override {
        auto* watch = new zandrel::PaintWatch;
        watch->AfterRound = [watch] {
            Report(watch->LastNs());
            watch->AfterRound = [] {};
        };
        return watch;
    }
};

#include "readyplugin.moc"
