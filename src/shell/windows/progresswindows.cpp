#include "shell/windows/progresswindows.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "link/progress.h"
#include "shell/windows/shown.h"

namespace zandrel {

ProgressWindow::ProgressWindow(const char* name, ProgressForm& record, Manner manner, QWidget* over)
    : QDialog(over),
      record_(record),
      lblStatus_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      cmdCancel_(new QPushButton(QStringLiteral("Cancel"), this)) {
    setObjectName(QLatin1String(name));
    setWindowTitle(manner == Manner::Modal ? QStringLiteral("Zandrel: Scan") : QStringLiteral("Zandrel"));
    lblStatus_->setObjectName(QStringLiteral("lblStatus"));
    lblStatus_->setTextFormat(Qt::PlainText);
    lblStatus_->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    lblStatus_->hide();
    bar_->setObjectName(QStringLiteral("ProgressBar1"));
    bar_->setRange(0, 100);
    bar_->setTextVisible(false);
    // Room for the longest hint, so that the window does not change its size under the pointer.
    bar_->setMinimumWidth(
        fontMetrics().horizontalAdvance(QLatin1String("Have you turned ON the ignition yet?....")));
    cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
    // The Enter that answered the box before does not cancel what it has just begun.
    cmdCancel_->setAutoDefault(false);
    connect(cmdCancel_, &QPushButton::clicked, this, [this] { reject(); });

    auto* column = new QVBoxLayout(this);
    column->setSpacing(fontMetrics().height() * 2 / 3);
    column->addWidget(lblStatus_);
    column->addWidget(bar_);
    column->addWidget(cmdCancel_, 0, Qt::AlignHCenter);
    column->setSizeConstraint(QLayout::SetFixedSize);
    setModal(manner == Manner::Modal);
    if (manner == Manner::OnTop) setWindowFlag(Qt::WindowStaysOnTopHint);
}

void ProgressWindow::Mirror() {
    if (record_.Status != status_) {
        status_ = record_.Status;
        lblStatus_->setText(Shown(status_));
        lblStatus_->setVisible(!status_.empty());
    }
    const int value = static_cast<int>(std::lround(std::clamp(record_.Bar, 0.0, 100.0)));
    if (bar_->value() != value) bar_->setValue(value);
    const bool waits = !record_.Cancelled;
    if (cmdCancel_->isEnabled() != waits) cmdCancel_->setEnabled(waits);
    if (record_.Visible == isVisible()) return;
    if (record_.Visible) {
        adjustSize();
        if (parentWidget() != nullptr) {
            const QRect over = parentWidget()->frameGeometry();
            move(over.center() - QPoint(width() / 2, height() / 2));
        }
    }
    setVisible(record_.Visible);
}

void ProgressWindow::reject() {
    record_.Cancelled = true;
    cmdCancel_->setEnabled(false);
}

void ProgressWindow::closeEvent(QCloseEvent* event) {
    if (!record_.Visible) {
        event->accept();
        return;
    }
    reject();
    event->ignore();
}

}  // namespace zandrel
