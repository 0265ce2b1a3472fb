#include "simulated.h"

#include <signal.h>
#include <sys/prctl.h>

#include <QCoreApplication>
#include <QFile>
#include <numeric>

#include "person.h"

namespace zandrel {

bool Request::CarriesData() const {
    bool whole = false;
    return Hex.mid(2, 2).toInt(&whole, 16) > 2 && whole;
}

SimulatedPowerFc::~SimulatedPowerFc() {
    Stop();
}

bool SimulatedPowerFc::Start(const QString& version, const QStringList& options, const QString& journal) {
    version_ = version;
    journal_ = journal;
    // A tour that is killed takes its simulators along.
    process_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(
        QCoreApplication::applicationDirPath() + QStringLiteral("/powerfc-sim"),
        QStringList{QStringLiteral("--version"), version, QStringLiteral("--journal"), journal} + options);
    if (!process_.waitForStarted(5000) || !process_.waitForReadyRead(5000)) return false;
    terminal_ = QString::fromUtf8(process_.readLine()).trimmed();
    return !terminal_.isEmpty();
}

void SimulatedPowerFc::Stop() {
    if (process_.state() == QProcess::NotRunning) return;
    process_.terminate();
    if (process_.waitForFinished(3000)) return;
    process_.kill();
    process_.waitForFinished(3000);
}

void SimulatedPowerFc::SwitchIgnition() const {
    kill(static_cast<pid_t>(process_.processId()), SIGUSR1);
}

void SimulatedPowerFc::Mark() {
    mark_ = QFile(journal_).size();
}

std::vector<Request> SimulatedPowerFc::Requests() const {
    QFile file(journal_);
    Require(file.open(QIODevice::ReadOnly) && file.seek(mark_), journal_ + QStringLiteral(" can't be read"));
    std::vector<Request> requests;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QList<QByteArray> parts = line.split(' ');
        if (parts.size() < 4 || parts[2] != ">") continue;
        const QString hex = QString::fromLatin1(parts[3]);
        requests.push_back({parts[0].toLongLong(), parts.size() > 4 ? QLatin1Char('!') + hex : hex});
    }
    return requests;
}

QStringList SimulatedPowerFc::Writes() const {
    QStringList writes;
    for (const Request& request : Requests()) {
        Require(!request.Hex.startsWith(QLatin1Char('!')),
                QStringLiteral("a malformed request went out: ") + request.Hex);
        if (request.CarriesData()) writes.append(request.Hex);
    }
    return writes;
}

QString FrameHex(int code, const QByteArray& data) {
    QByteArray frame;
    frame.append(static_cast<char>(code));
    frame.append(static_cast<char>(data.size() + 2));
    frame.append(data);
    const int sum = std::accumulate(frame.begin(), frame.end(), 0,
                                    [](int total, char byte) { return total + static_cast<quint8>(byte); });
    frame.append(static_cast<char>(255 - sum % 256));
    return QString::fromLatin1(frame.toHex().toUpper());
}

}  // namespace zandrel
