#include "shell/windows/generalpage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/windows/emblem.h"
#include "shell/windows/shown.h"
#include "tuning/settings.h"
#include "util/product.h"

namespace zandrel {
namespace {

class Emblem : public QWidget {
  public:
    explicit Emblem(QWidget* parent) : QWidget(parent) {
        const int side = fontMetrics().height() * 7;
        setFixedSize(side, side);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        PaintEmblem(painter, width(), 5, palette().color(QPalette::Window),
                    palette().color(QPalette::WindowText));
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
