// What a person sees of maps and settings, and what it has to be: worked out from the bytes of the image
// alone. Rows and columns of cells count from 1.
#pragma once

#include <QString>

class QAbstractItemView;

namespace zandrel {

QString Numbered(const char* name, int index);

/// Caption of a tab as part of a file name.
QString TabName(int tab);

/// Opens COM`number` by the Port menu.
void ChoosePort(int number);

/// Every block of the build has come in its full length; how many there are.
int CountBlocksRead();

/// What is unsaved will be asked about, and given up.
void ExpectToLoseChanges();

/// Clicks Read All; it has to succeed.
QString ReadEverything();

/// The grid of a map, which has to be in view.
QAbstractItemView& GridView(int map);
QString CellOnScreen(int map, int row, int column);

/// Raw value of a cell, and the value that it stands for in the plain display mode.
int RawCell(int map, int row, int column);
double PlainValue(int map, int row, int column);

/// A value in the map's format.
QString InFormat(int map, double value);
QString ExpectedCell(int map, int row, int column);

}  // namespace zandrel
