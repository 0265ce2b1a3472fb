// Tells when a window has really been painted: not when it was asked to, but when the last widget of the
// round is done and the picture is handed to the screen.
#pragma once

#include <QObject>
#include <cstdint>
#include <functional>

namespace zandrel {

class PaintWatch : public QObject {
  public:
    /// Watches every widget of the application as long as it lives.
    PaintWatch();

    /// Widgets painted so far.
    int Paints() const { return paints_; }

    /// End of the last round in which something was laid out or painted, in nanoseconds of the steady clock.
    std::int64_t LastNs() const { return lastNs_; }

    /// Runs the event loop until the windows stand still.
    void Settle() const;

    /// Runs after each round in which something was painted.
    std::function<void()> AfterRound = [] {};

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    int paints_ = 0;
    std::int64_t lastNs_ = 0;
    bool inRound_ = false;
};

}  // namespace zandrel
