#include "shell/windows/droptarget.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QSysInfo>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <utility>

#include "files/datafile.h"
#include "link/progress.h"

namespace zandrel {
namespace {

class DropFrame : public QWidget {
  public:
    explicit DropFrame(QWidget* target) : QWidget(target) {
        setObjectName(QStringLiteral("DropFrame"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor colour = palette().color(QPalette::Highlight);
        const double width = fontMetrics().height() / 4.0;
        painter.setPen(QPen(colour, width));
        colour.setAlphaF(0.12F);
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(rect()).adjusted(width, width, -width, -width), width * 2, width * 2);
    }
};

// The path of a file of this machine; empty for all others.
std::string LocalPath(QUrl url) {
    if (!url.isLocalFile()) return {};
#ifndef _WIN32
    const QString host = url.host();
    if (!host.isEmpty() && host != QLatin1String("localhost") &&
        host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) != 0) {
        return {};
    }
    url.setHost(QString());
#endif
    return url.toLocalFile().toStdString();
}

// Nothing can be opened while an operation runs or a question stands.
bool IsFree() {
    return !LongOperationRuns() && QApplication::activeModalWidget() == nullptr;
}

}  // namespace

std::vector<std::string> FilesIn(const QMimeData& data) {
    std::vector<std::string> files;
    for (const QUrl& url : data.urls()) {
        std::string path = LocalPath(url);
        if (!path.empty()) {
            files.push_back(std::move(path));
        } else if (files.empty()) {
            return {};
        }
    }
    return files;
}

DropTarget::DropTarget(QWidget* target, Drop drop)
    : QObject(target), target_(target), frame_(new DropFrame(target)), drop_(std::move(drop)) {
    target->setAcceptDrops(true);
    target->installEventFilter(this);
}

// Files are only ever copied from the desktop, as far as that is concerned.
bool DropTarget::Takes(const QDropEvent& event) const {
    if (!(event.possibleActions() & Qt::CopyAction) || !IsFree()) return false;
    const std::vector<std::string> files = FilesIn(*event.mimeData());
    return !files.empty() && TakesDrop(files.front());
}

// The program that the files come from waits for the end of the drop; the opening may ask a question.
void DropTarget::Land(const QMimeData& data) {
    QTimer::singleShot(0, this, [this, files = FilesIn(data)] {
        if (!IsFree()) return;
        target_->window()->activateWindow();
        drop_(files);
    });
}

bool DropTarget::eventFilter(QObject* object, QEvent* event) {
    switch (event->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop: {
            auto* drag = static_cast<QDropEvent*>(event);
            const bool takes = Takes(*drag);
            const bool drops = event->type() == QEvent::Drop;
            if (takes) {
                drag->setDropAction(Qt::CopyAction);
                drag->accept();
                if (drops) Land(*drag->mimeData());
            } else {
                drag->ignore();
            }
            if (takes && !drops) {
                frame_->setGeometry(target_->rect());
                frame_->raise();
            }
            frame_->setVisible(takes && !drops);
            return true;
        }
        case QEvent::DragLeave:
            frame_->hide();
            return true;
        default:
            return QObject::eventFilter(object, event);
    }
}

}  // namespace zandrel
