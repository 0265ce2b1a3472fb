#include "paintwatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <algorithm>
#include <chrono>
#include <thread>

namespace zandrel {
namespace {

// Qt gathers repaints for 5 ms; after so long a silence nothing is on its way any more.
constexpr std::int64_t kSilenceNs = 25'000'000;

std::int64_t SteadyNs() {
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

}  // namespace

PaintWatch::PaintWatch() {
    QCoreApplication::instance()->installEventFilter(this);
}

void PaintWatch::Settle() const {
    const std::int64_t from = SteadyNs();
    while (SteadyNs() - std::max(from, lastNs_) < kSilenceNs) {
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
}

bool PaintWatch::eventFilter(QObject* object, QEvent* event) {
    switch (event->type()) {
        case QEvent::Paint:
            ++paints_;
            return false;
        case QEvent::Expose:
        case QEvent::UpdateRequest:
        case QEvent::LayoutRequest: {
            if (inRound_) return false;
            // Delivered from here, so that what follows it is known to be over.
            const int before = paints_;
            inRound_ = true;
            QCoreApplication::sendEvent(object, event);
            inRound_ = false;
            lastNs_ = SteadyNs();
            if (paints_ != before) AfterRound();
            return true;
        }
        default:
            return false;
    }
}

}  // namespace zandrel
