// The program's emblem: a corner of a map, from lean to rich, with the pull of an engine across it. The one
// on the general tab, the windows' icon and the icons that are installed are all painted here.
#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>

class QPainter;

namespace zandrel {

/// Paints the emblem into the square of `side` pixels at the origin, `cells` by `cells` cells; the pull in
/// `line`, set off by `rim`.
void PaintEmblem(QPainter& painter, double side, int cells, const QColor& rim, const QColor& line);

/// The icon, `side` by `side` pixels: the emblem on a dark tile, that stands out on any desktop.
QImage IconImage(int side);

/// The icon in the sizes that window managers ask for.
QIcon ProgramIcon();

}  // namespace zandrel
