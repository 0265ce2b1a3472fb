#include "paintwatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <chrono>

namespace zandrel {

PaintWatch::PaintWatch() {
    QCoreApplication::instance()->installEventFilter(this);
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
            lastNs_ = std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
            if (paints_ != before) AfterRound();
            return true;
        }
        default:
            return false;
    }
}

}  // namespace zandrel
