#include "checks.h"

#include <QAbstractItemView>
#include <charconv>

#include "image/image.h"
#include "link/port.h"
#include "link/transfers.h"
#include "person.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

// The fields of a map's Tag.
QStringList TagOf(int map) {
    return QString::fromStdString(Grid[static_cast<std::size_t>(map)].Tag).split(QLatin1Char(','));
}

}  // namespace

QString Numbered(const char* name, int index) {
    return QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index);
}

QString TabName(int tab) {
    QString name = QString::fromStdString(SSTab1.TabCaption[static_cast<std::size_t>(tab)]).toLower();
    return name.replace(QLatin1Char(' '), QLatin1Char('-'));
}

void ChoosePort(int number) {
    ChooseItem({QStringLiteral("mnuPort"), Numbered("mnuCom", number - 1)});
    Require(MSComm1.PortOpen(), QStringLiteral("COM%1 did not open").arg(number));
}

int CountBlocksRead() {
    int blocks = 0;
    for (std::size_t b = 0; b < 256; ++b) {
        if (!BlockRead[b]) continue;
        Require(ReadData[b].size() == BlockLength[b],
                QStringLiteral("block %1 is not whole").arg(b, 2, 16, QLatin1Char('0')));
        ++blocks;
    }
    return blocks;
}

void ExpectToLoseChanges() {
    if (!DataChanged || !mnuCheckUnsavedData.Checked) return;
    Expect(QStringLiteral("You have made setting changes that have not been saved."), QStringLiteral("No"));
}

QString ReadEverything() {
    ExpectToLoseChanges();
    Click(QStringLiteral("cmdReadAll"));
    ComeBack();
    Require(cmdWriteAll.Enabled, QStringLiteral("Read All did not succeed"));
    Require(!VerName.empty(), QStringLiteral("no version is in force"));
    return QStringLiteral("%1 v%2, interface %3: %4 blocks")
        .arg(QString::fromStdString(VerName), QString::fromStdString(VerNumber),
             QString::fromStdString(CorvaneVer))
        .arg(CountBlocksRead());
}

QAbstractItemView& GridView(int map) {
    auto* view = qobject_cast<QAbstractItemView*>(&Find(Numbered("Grid", map)));
    Require(view != nullptr, QStringLiteral("the map has no grid"));
    return *view;
}

QString CellOnScreen(int map, int row, int column) {
    const QAbstractItemModel* model = GridView(map).model();
    return model->index(row - 1, column - 1).data().toString();
}

int RawCell(int map, int row, int column) {
    const int size = TagOf(map)[1].toInt();
    const int place = ((column - 1) * 20 + row - 1) * size;
    const ByteString& block =
        ReadData[static_cast<std::size_t>(MapFirstBlock[static_cast<std::size_t>(map)] + place / 100)];
    const auto at = static_cast<std::size_t>(place % 100);
    int raw = static_cast<std::uint8_t>(block[at]);
    if (size == 2) raw += 256 * static_cast<std::uint8_t>(block[at + 1]);
    return raw;
}

double PlainValue(int map, int row, int column) {
    const QStringList tag = TagOf(map);
    return RawCell(map, row, column) * double{tag[2].toFloat()} + tag[3].toDouble();
}

QString InFormat(int map, double value) {
    const std::string& format = MapFormat[static_cast<std::size_t>(map)];
    const auto point = format.find('.');
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed,
                                   point == format.npos ? 0 : static_cast<int>(format.size() - point - 1));
    return QString::fromLatin1(text, end.ptr - text);
}

QString ExpectedCell(int map, int row, int column) {
    return InFormat(map, PlainValue(map, row, column));
}

}  // namespace zandrel
