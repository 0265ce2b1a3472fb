#include "shell/windows/generalpage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/windows/shown.h"
#include "tuning/settings.h"
#include "util/product.h"

namespace zandrel {
namespace {

// A corner of a map, from lean to rich, with the pull of an engine across it.
class Emblem : public QWidget {
  public:
    explicit Emblem(QWidget* parent) : QWidget(parent) {
        const int side = fontMetrics().height() * 7;
        setFixedSize(side, side);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        constexpr int kCells = 5;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const double cell = double(width()) / kCells;
        const double gap = cell * 0.12;
        painter.setPen(Qt::NoPen);
        for (int row = 0; row < kCells; ++row) {
            for (int column = 0; column < kCells; ++column) {
                const double heat = (kCells - 1 - row + column) / (2.0 * (kCells - 1));
                painter.setBrush(QColor::fromHsvF(static_cast<float>(0.33 * (1 - heat)), 0.75F, 0.85F));
                painter.drawRoundedRect(
                    QRectF(column * cell + gap / 2, row * cell + gap / 2, cell - gap, cell - gap), gap, gap);
            }
        }
        QPainterPath pull(QPointF(cell * 0.5, cell * 4.3));
        pull.cubicTo(QPointF(cell * 2.4, cell * 4.3), QPointF(cell * 2.0, cell * 1.0),
                     QPointF(cell * 4.5, cell * 0.7));
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(QPalette::Window), cell * 0.32, Qt::SolidLine, Qt::RoundCap));
        painter.drawPath(pull);
        painter.setPen(QPen(palette().color(QPalette::WindowText), cell * 0.16, Qt::SolidLine, Qt::RoundCap));
        painter.drawPath(pull);
    }
};

}  // namespace

GeneralPage::GeneralPage(QWidget* parent) : QScrollArea(parent), panel_(new QWidget) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    auto* column = new QVBoxLayout(panel_);
    const int line = fontMetrics().height();
    column->setSpacing(line);
    column->setContentsMargins(0, line * 2, 0, line);
    column->addWidget(new Emblem(panel_), 0, Qt::AlignHCenter);

    auto* version = new QLabel(QString::fromUtf8(kProgramVersion), panel_);
    version->setObjectName(QStringLiteral("lblVersion"));
    version->setFont(Scaled(version->font(), 1.8));
    version->setAlignment(Qt::AlignHCenter);
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(version);

    const auto texts = GeneralTexts();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        auto* text = new QLabel(panel_);
        text->setObjectName(MemberName("lblNotice", static_cast<int>(i)));
        text->setTextFormat(Qt::PlainText);
        text->setText(Shown(texts[i]).trimmed());
        text->setWordWrap(true);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        column->addWidget(text);
    }
    column->addStretch(1);
    auto* inner = new QWidget;
    auto* across = new QHBoxLayout(inner);
    across->addStretch(1);
    across->addWidget(panel_);
    across->addStretch(1);
    setWidget(inner);
}

void GeneralPage::resizeEvent(QResizeEvent* event) {
    // About seventy letters a line read best.
    const int letters = fontMetrics().averageCharWidth();
    panel_->setFixedWidth(std::clamp(viewport()->width() - 6 * letters, 20 * letters, 72 * letters));
    QScrollArea::resizeEvent(event);
}

}  // namespace zandrel
