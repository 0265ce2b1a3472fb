// The simulated Power-FCs of a tour: powerfc-sim as processes, each on a port of its own, and what their
// journals say.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

namespace zandrel {

struct Request {
    std::int64_t Us = 0;  // of the steady clock, when its first bytes came in
    QString Hex;          // "8D0270"; a malformed one has "!" before it
    bool CarriesData() const;
};

class SimulatedPowerFc {
  public:
    SimulatedPowerFc() = default;
    ~SimulatedPowerFc();
    SimulatedPowerFc(const SimulatedPowerFc&) = delete;
    SimulatedPowerFc& operator=(const SimulatedPowerFc&) = delete;

    /// Starts a Power-FC of the build `version` with further options of powerfc-sim.
    bool Start(const QString& version, const QStringList& options, const QString& journal);
    void Stop();

    const QString& Version() const { return version_; }
    const QString& Terminal() const { return terminal_; }
    const QString& JournalFile() const { return journal_; }

    /// The start-up text again.
    void SwitchIgnition() const;

    /// `Requests` and `Writes` begin here.
    void Mark();
    std::vector<Request> Requests() const;
    /// The requests that carry data.
    QStringList Writes() const;

  private:
    QProcess process_;
    QString version_, terminal_, journal_;
    qint64 mark_ = 0;
};

/// The frame of a request: code, length, data, checksum, as hexadecimal digits.
QString FrameHex(int code, const QByteArray& data);

}  // namespace zandrel
