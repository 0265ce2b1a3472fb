#include "shell/windows/emblem.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace zandrel {
namespace {

constexpr int kCells = 5;
constexpr QRgb kTile = 0xFF22262B;
constexpr QRgb kPull = 0xFFFFFFFF;

// Below this an icon has too few pixels for all cells.
constexpr int kSmallSide = 24;

}  // namespace

void PaintEmblem(QPainter& painter, double side, int cells, const QColor& rim, const QColor& line) {
    const double cell = side / cells;
    const double gap = cell * 0.12;
    painter.setPen(Qt::NoPen);
    for (int row = 0; row < cells; ++row) {
        for (int column = 0; column < cells; ++column) {
            const double heat = (cells - 1 - row + column) / (2.0 * (cells - 1));
            painter.setBrush(QColor::fromHsvF(static_cast<float>(0.33 * (1 - heat)), 0.75F, 0.85F));
            painter.drawRoundedRect(
                QRectF(column * cell + gap / 2, row * cell + gap / 2, cell - gap, cell - gap), gap, gap);
        }
    }
    // The pull keeps its place, however many cells there are.
    const double unit = side / kCells;
    QPainterPath pull(QPointF(unit * 0.5, unit * 4.3));
    pull.cubicTo(QPointF(unit * 2.4, unit * 4.3), QPointF(unit * 2.0, unit * 1.0),
                 QPointF(unit * 4.5, unit * 0.7));
    // A thinner line would fade in a small icon.
    const double weight = std::max(cell * 0.16, 1.1);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(rim, 2 * weight, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(pull);
    painter.setPen(QPen(line, weight, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(pull);
}

QImage IconImage(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(kTile));
    painter.drawRoundedRect(QRectF(0, 0, side, side), side / 8.0, side / 8.0);
    const double margin = side / 16.0;
    painter.translate(margin, margin);
    PaintEmblem(painter, side - 2 * margin, side <= kSmallSide ? 3 : kCells, QColor(kTile), QColor(kPull));
    return image;
}

QIcon ProgramIcon() {
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128}) icon.addPixmap(QPixmap::fromImage(IconImage(side)));
    return icon;
}

}  // namespace zandrel
