#include "editing.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QSet>
#include <QTest>
#include <array>
#include <chrono>
#include <cmath>

#include "checks.h"
#include "image/image.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "person.h"
#include "simulated.h"
#include "steps.h"
#include "tuning/display.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

using Image = std::array<ByteString, 256>;

constexpr int kInjection = 0;  // map tabs
constexpr int kIgnition = 1;

constexpr double kInjectionStep = 0.00390625;
constexpr int kRawOfOne = 128;

struct Area {
    int Top, Left, Bottom, Right;
};

template <class Visit>
void ForEachCell(const Area& area, Visit visit) {
    for (int row = area.Top; row <= area.Bottom; ++row) {
        for (int column = area.Left; column <= area.Right; ++column) visit(row, column);
    }
}

QString InWords(const Area& area) {
    return QStringLiteral("rows %1 to %2, columns %3 to %4")
        .arg(area.Top)
        .arg(area.Bottom)
        .arg(area.Left)
        .arg(area.Right);
}

QPoint CentreOf(int map, int row, int column) {
    const QAbstractItemView& grid = GridView(map);
    return grid.visualRect(grid.model()->index(row - 1, column - 1)).center();
}

// A click on the first cell, then Shift with the arrows.
void SelectCells(int map, const Area& area) {
    ChooseTab(map);
    QAbstractItemView& grid = GridView(map);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, CentreOf(map, area.Top, area.Left));
    for (int i = area.Left; i < area.Right; ++i) QTest::keyClick(&grid, Qt::Key_Right, Qt::ShiftModifier);
    for (int i = area.Top; i < area.Bottom; ++i) QTest::keyClick(&grid, Qt::Key_Down, Qt::ShiftModifier);
    const auto selected = grid.selectionModel()->selectedIndexes().size();
    const int wanted = (area.Bottom - area.Top + 1) * (area.Right - area.Left + 1);
    Require(selected == wanted,
            QStringLiteral("%1 cells are selected in place of %2").arg(selected).arg(wanted));
}

// The cells of `area` hold these raw values and show them; all others are as in `before`.
template <class Raw>
void RequireCells(int map, const Area& area, const std::array<std::array<int, 21>, 21>& before, Raw raw) {
    ForEachCell({1, 1, kMapSide, kMapSide}, [&](int row, int column) {
        const bool edited =
            row >= area.Top && row <= area.Bottom && column >= area.Left && column <= area.Right;
        const int wanted = edited ? raw(row, column)
                                  : before[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
        const int found = RawCell(map, row, column);
        Require(found == wanted, QStringLiteral("cell %1, %2 holds %3 in place of %4")
                                     .arg(row)
                                     .arg(column)
                                     .arg(found)
                                     .arg(wanted));
        Require(CellOnScreen(map, row, column) == ExpectedCell(map, row, column),
                QStringLiteral("cell %1, %2 does not show what it holds").arg(row).arg(column));
    });
}

std::array<std::array<int, 21>, 21> RawCells(int map) {
    std::array<std::array<int, 21>, 21> cells{};
    ForEachCell({1, 1, kMapSide, kMapSide}, [&](int row, int column) {
        cells[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = RawCell(map, row, column);
    });
    return cells;
}

int RawOfCorrection(double value) {
    return static_cast<int>(std::nearbyint(std::clamp((value - 0.5) / kInjectionStep, 0.0, 255.0)));
}

QString StatusBar() {
    const auto* label = qobject_cast<QLabel*>(&Find(QStringLiteral("lblUnsent")));
    Require(label != nullptr, QStringLiteral("the status bar does not tell what waits"));
    return label->text();
}

void RequireStatus(const QString& beginning) {
    Require(StatusBar().startsWith(beginning),
            QStringLiteral("the status bar says \"%1\" in place of \"%2\"").arg(StatusBar(), beginning));
}

bool CanUpdate() {
    return Find(QStringLiteral("cmdUpdate")).isEnabled();
}

QByteArray DataOf(int block) {
    return QByteArray::fromStdString(ReadData[static_cast<std::size_t>(block)]);
}

QString WriteOf(int block) {
    return FrameHex(block, DataOf(block));
}

// Number of a cell in its map, as the cell writes count it.
QByteArray CellNumber(int row, int column) {
    const int n = row + kMapSide * column - (kMapSide + 1);
    return QByteArray(1, static_cast<char>(n % 256)) + static_cast<char>(n / 256);
}

void RequireWrites(const SimulatedPowerFc& device, const QStringList& expected) {
    const QStringList writes = device.Writes();
    for (qsizetype i = 0; i < std::max(writes.size(), expected.size()); ++i) {
        const QString wanted = i < expected.size() ? expected[i] : QStringLiteral("nothing");
        const QString came = i < writes.size() ? writes[i] : QStringLiteral("nothing");
        Require(came == wanted,
                QStringLiteral("write %1 to the Power-FC: %2 in place of %3").arg(i + 1).arg(came, wanted));
    }
}

void ClickUpdate() {
    Click(QStringLiteral("cmdUpdate"));
    Require(!CanUpdate(), QStringLiteral("Update did not go through"));
    RequireStatus(QStringLiteral("Updated "));
}

// Another Read All brings back what stands in the image.
QString ReadBack() {
    const Image sent = ReadData;
    const QString found = ReadEverything();
    for (std::size_t b = 0; b < 256; ++b) {
        Require(ReadData[b] == sent[b],
                QStringLiteral("block %1 did not come back as it was sent").arg(b, 2, 16, QLatin1Char('0')));
    }
    Require(!CanUpdate(), QStringLiteral("something still waits to be sent"));
    return found;
}

void RequireBox(int index, const QString& shown, int block, int offset, const QByteArray& bytes) {
    const auto* box = qobject_cast<QLineEdit*>(&Find(Numbered("txtSetting", index)));
    Require(box->text() == shown,
            QStringLiteral("the box shows \"%1\" in place of \"%2\"").arg(box->text(), shown));
    Require(DataOf(block).mid(offset - 1, bytes.size()) == bytes,
            QStringLiteral("block %1 holds other bytes").arg(block, 2, 16, QLatin1Char('0')));
}

// In the desktop's own colours and in dark ones.
void PictureInBoth(const QString& name) {
    const QPalette light = QApplication::palette();
    QTest::qWait(20);
    Picture(name);
    QApplication::setPalette(DarkPalette());
    QTest::qWait(20);
    Picture(QStringLiteral("dark-") + name);
    QApplication::setPalette(light);
}

QString TypeSettings(SimulatedPowerFc& device) {
    device.Mark();
    ChooseTab(kFirstSettingsTab + 1);
    const QString untouched = qobject_cast<QLineEdit*>(&Find(QStringLiteral("txtSetting(202)")))->text();
    TypeInto(QStringLiteral("txtSetting(202)"), QStringLiteral("abc"));
    Press(Qt::Key_Tab);
    Require(qobject_cast<QLineEdit*>(&Find(QStringLiteral("txtSetting(202)")))->text() == untouched,
            QStringLiteral("letters were taken for a number"));
    Require(!CanUpdate(), QStringLiteral("letters count as a change"));
    TypeInto(QStringLiteral("txtSetting(201)"), QStringLiteral("1.1"));
    Press(Qt::Key_Tab);
    RequireBox(201, QStringLiteral("1.094"), 0x8F, 2, QByteArray(1, 70));
    TypeInto(QStringLiteral("txtSetting(200)"), QStringLiteral("9"));
    QTest::qWait(20);
    Picture(QStringLiteral("typed"));
    Press(Qt::Key_Tab);
    RequireBox(200, QStringLiteral("3.984"), 0x8F, 1, QByteArray(1, '\xFF'));
    RequireStatus(QStringLiteral("Not sent: 1 block"));
    PictureInBoth(QStringLiteral("clamped"));

    ChooseTab(kFirstSettingsTab);
    TypeInto(QStringLiteral("txtSetting(120)"), QStringLiteral("7250.6"));
    Press(Qt::Key_Return);
    RequireBox(120, QStringLiteral("7251"), 0x8B, 1, QByteArray::fromHex("531C"));
    const char flag = DataOf(0xD6)[0];
    Click(QStringLiteral("chkSetting(140)"));
    Require(DataOf(0xD6)[0] != flag, QStringLiteral("the box was not ticked"));
    RequireStatus(QStringLiteral("Not sent: 3 blocks"));
    RequireWrites(device, {});
    return QStringLiteral("9 became 3.984, 1.1 became 1.094, 7250.6 became 7251; nothing was sent");
}

QString StepCells() {
    const Area area{3, 3, 5, 5};
    const auto before = RawCells(kInjection);
    SelectCells(kInjection, area);
    Press(Qt::Key_Plus);
    Press(Qt::Key_Plus, Qt::ControlModifier);
    Press(Qt::Key_Minus);
    Press(Qt::Key_Plus);
    RequireCells(kInjection, area, before, [&](int row, int column) {
        return std::min(255, before[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] + 11);
    });
    RequireStatus(QStringLiteral("Not sent: 4 blocks, 9 cells"));
    return QStringLiteral("+, Ctrl and +, -, +: 11 steps up in ") + InWords(area);
}

QString ScaleCells() {
    const Area area{6, 16, 9, 19};
    const auto before = RawCells(kInjection);
    std::array<std::array<double, 21>, 21> shown{};
    ForEachCell(area, [&](int row, int column) {
        shown[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] =
            CellOnScreen(kInjection, row, column).toDouble();
    });
    SelectCells(kInjection, area);
    Press(Qt::Key_Asterisk);
    QWidget& box = Find(QStringLiteral("txtGrid"));
    Require(box.hasFocus(), QStringLiteral("the box in the cell does not take the focus"));
    QTest::keyClicks(&box, QStringLiteral("1.05"));
    PictureInBoth(QStringLiteral("formula"));
    Press(Qt::Key_Return);
    Require(!OnScreen(QStringLiteral("txtGrid")), QStringLiteral("the box in the cell did not close"));
    RequireCells(kInjection, area, before, [&](int row, int column) {
        return RawOfCorrection(1.05 * shown[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
    });
    return QStringLiteral("*1.05 over ") + InWords(area);
}

QString PasteCells() {
    const Area area{2, 12, 3, 13};
    const auto before = RawCells(kInjection);
    SelectCells(kInjection, area);
    // Of a spreadsheet with a decimal comma, a column and a row more than are selected.
    QApplication::clipboard()->setText(QStringLiteral("1.000\t0,950\t7\r\n1.250\t0.500\t7\r\n7\t7\t7\r\n"));
    Press(Qt::Key_V, Qt::ControlModifier);
    const int pasted[2][2] = {{kRawOfOne, 115}, {192, 0}};
    RequireCells(kInjection, area, before, [&](int row, int column) { return pasted[row - 2][column - 12]; });
    Press(Qt::Key_C, Qt::ControlModifier);
    Require(QApplication::clipboard()->text() == QStringLiteral("1.000\t0.949\r1.250\t0.500"),
            QStringLiteral("the clipboard holds \"%1\"").arg(QApplication::clipboard()->text()));
    return QStringLiteral("four cells from the clipboard and back");
}

QString InterpolateCells() {
    const Area area{4, 7, 12, 10};
    SelectCells(kInjection, {4, 7, 4, 7});
    Press(Qt::Key_0);
    QTest::keyClicks(&Find(QStringLiteral("txtGrid")), QStringLiteral(".9"));
    Press(Qt::Key_Return);
    Require(RawCell(kInjection, 4, 7) == RawOfCorrection(0.9),
            QStringLiteral("a typed value was not stored"));
    const auto before = RawCells(kInjection);
    SelectCells(kInjection, area);
    const auto corner = [](int row, int column) { return CellOnScreen(kInjection, row, column).toDouble(); };
    const double tl = corner(4, 7), tr = corner(4, 10), bl = corner(12, 7), br = corner(12, 10);
    const QPoint inside = CentreOf(kInjection, 5, 8);
    QTest::mouseClick(GridView(kInjection).viewport(), Qt::RightButton, {}, inside);
    PictureInBoth(QStringLiteral("popup"));
    ChooseInOpenMenu(QStringLiteral("mnuSetupMaps"), QStringLiteral("mnuGridInterpolate"));
    RequireCells(kInjection, area, before, [&](int row, int column) {
        const double down = (row - 4) / 8.0;
        const double right = (column - 7) / 3.0;
        const double a = tl + down * (bl - tl);
        const double b = tr + down * (br - tr);
        return RawOfCorrection(a + right * (b - a));
    });
    QTest::qWait(20);  // the menu takes its own items back
    return QStringLiteral("between the corners of ") + InWords(area);
}

QString UndoAndRedo() {
    const Image after = ReadData;
    Press(Qt::Key_Z, Qt::ControlModifier);
    Require(ReadData != after, QStringLiteral("Ctrl+Z took nothing back"));
    const Image before = ReadData;
    Require(RawCell(kInjection, 4, 7) == RawOfCorrection(0.9),
            QStringLiteral("Ctrl+Z took back more than the interpolation"));
    Press(Qt::Key_Y, Qt::ControlModifier);
    Require(ReadData == after, QStringLiteral("Ctrl+Y did not bring it back"));
    ChooseItem({QStringLiteral("mnuEdit"), QStringLiteral("mnuUndo")});
    Require(ReadData == before, QStringLiteral("Undo of the menu did not do as the key"));
    Require(CellOnScreen(kInjection, 8, 8) == ExpectedCell(kInjection, 8, 8),
            QStringLiteral("the map does not show what came back"));
    ChooseItem({QStringLiteral("mnuEdit"), QStringLiteral("mnuRedo")});
    Require(ReadData == after, QStringLiteral("Redo of the menu did not do as the key"));
    return QStringLiteral("one step for the whole interpolation");
}

QString UpdateByButton(SimulatedPowerFc& device) {
    device.Mark();
    QTest::qWait(20);
    Picture(QStringLiteral("not-sent"));
    RequireStatus(QStringLiteral("Not sent: 7 blocks, "));
    ClickUpdate();
    RequireWrites(device, {WriteOf(0x86), WriteOf(0x87), WriteOf(0x88), WriteOf(0x89), WriteOf(0x8B),
                           WriteOf(0x8F), FrameHex(0xD6, DataOf(0xD6).left(5))});
    return QStringLiteral("the four blocks of the map and three of settings, each once");
}

// Three changes 100 ms apart make one Update, half a second after the last of them.
QString UpdateByItself(SimulatedPowerFc& device) {
    using std::chrono::microseconds;
    const auto now = [] {
        return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count();
    };
    // The desktop's timer may be a twentieth off.
    constexpr std::int64_t kEarliestUs = 470'000;
    constexpr std::int64_t kLatestUs = 1'500'000;
    device.Mark();
    Click(QStringLiteral("optAutoUpdate"));
    WaitUntil([&] { return !device.Requests().empty() && !CanUpdate(); }, 5000,
              QStringLiteral("the timer did not fire"));
    RequireWrites(device, {});
    SelectCells(kInjection, {18, 1, 19, 2});
    const auto before = RawCells(kInjection);
    device.Mark();
    std::int64_t last = 0;
    for (int i = 0; i < 3; ++i) {
        if (i > 0) QTest::qWait(100);
        last = now();
        Press(Qt::Key_Plus);
    }
    Require(device.Requests().empty(), QStringLiteral("something was sent before the last change"));
    WaitUntil([&] { return !CanUpdate(); }, 5000, QStringLiteral("the change was not sent"));
    RequireCells(kInjection, {18, 1, 19, 2}, before, [&](int row, int column) {
        return before[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] + 3;
    });
    RequireWrites(device, {WriteOf(0x86)});
    const std::int64_t wait = device.Requests().front().Us - last;
    Require(wait >= kEarliestUs && wait <= kLatestUs,
            QStringLiteral("it was sent %1 ms after the last change").arg(wait / 1000));
    Click(QStringLiteral("optAutoUpdate"));
    return QStringLiteral("one block, once, %1 ms after the last of three changes").arg(wait / 1000);
}

QString WriteTheMapAndAFrame(SimulatedPowerFc& device) {
    device.Mark();
    ChooseTab(kIgnition);
    Click(Numbered("cmdWriteMap", kIgnition));
    const int first = MapFirstBlock[kIgnition];
    QStringList expected;
    for (int k = 0; k < 4; ++k) expected.append(WriteOf(first + k));
    RequireWrites(device, expected);

    ChooseTab(kFirstSettingsTab);
    QWidget& frame = Find(QStringLiteral("FraSettings(120)"));
    QTest::mouseClick(&frame, Qt::RightButton, {}, QPoint(frame.width() - 5, frame.height() - 5));
    QTest::qWait(20);
    Picture(QStringLiteral("frame-popup"));
    ChooseInOpenMenu(QStringLiteral("mnuPopUp1"), QStringLiteral("mnuWrite"));
    RequireWrites(device, expected << WriteOf(0x8B));
    QTest::mouseClick(&frame, Qt::RightButton, {}, QPoint(frame.width() - 5, frame.height() - 5));
    ChooseInOpenMenu(QStringLiteral("mnuPopUp1"), QStringLiteral("mnuRead"));
    RequireWrites(device, expected);
    return QStringLiteral("IgnMap in four blocks, Rev / Idle in one, and read back");
}

// The Power-FC is another one by the time of the Update: nothing reaches it.
QString UpdateToAnother(const TourSetting& setting) {
    SimulatedPowerFc& other = *setting.Simulators[AutomaticBuild];
    SelectCells(kInjection, {1, 1, 1, 1});
    Press(Qt::Key_Minus);
    Require(CanUpdate(), QStringLiteral("the change does not wait to be sent"));
    ChoosePort(AutomaticBuild + 1);
    other.Mark();
    Expect(QStringLiteral("First Read All, make changes, then Update."), QStringLiteral("OK"));
    Click(QStringLiteral("cmdUpdate"));
    RequireWrites(other, {});
    Require(!other.Requests().empty(), QStringLiteral("the other Power-FC was not asked for its name"));
    return QStringLiteral("refused, nothing was written");
}

QString OldestWritesItsWay(SimulatedPowerFc& device) {
    ChoosePort(OldestBuild + 1);
    const QString found = ReadEverything();
    SelectCells(kInjection, {10, 11, 10, 12});
    Press(Qt::Key_Plus, Qt::ControlModifier);
    SelectCells(kIgnition, {7, 20, 7, 20});
    Press(Qt::Key_Minus);
    ChooseTab(kFirstSettingsTab);
    TypeInto(QStringLiteral("txtSetting(120)"), QStringLiteral("7777"));
    Press(Qt::Key_Return);
    TypeInto(QStringLiteral("txtSetting(1100)"), QStringLiteral("0.9"));
    Press(Qt::Key_Return);
    Click(QStringLiteral("chkSetting(140)"));
    RequireStatus(QStringLiteral("Not sent: 5 blocks, 3 cells"));
    device.Mark();
    ClickUpdate();
    const auto cell = [](int command, int map, int row, int column) {
        return FrameHex(command, CellNumber(row, column) + static_cast<char>(RawCell(map, row, column)));
    };
    const QByteArray boost = DataOf(0x5C);
    RequireWrites(device, {cell(50, kInjection, 10, 11), cell(50, kInjection, 10, 12),
                           cell(49, kIgnition, 7, 20), FrameHex(0x35, boost.left(5) + boost.mid(9)),
                           FrameHex(0x3B, DataOf(0x60)), FrameHex(0x4B, DataOf(0x65).left(5))});
    int outcomes = 0;
    for (const Request& request : device.Requests()) outcomes += request.Hex == FrameHex(111, {}) ? 1 : 0;
    Require(outcomes == 3, QStringLiteral("%1 outcomes were asked for in place of 3").arg(outcomes));
    ReadBack();
    return found + QStringLiteral("; three cells and three blocks by commands of their own, and read back");
}

QString AutomaticWrites(SimulatedPowerFc& device) {
    ChoosePort(AutomaticBuild + 1);
    const QString found = ReadEverything();
    ChooseTab(kGeneralTab - 1);
    TypeInto(QStringLiteral("txtSetting(600)"), QStringLiteral("300"));
    Press(Qt::Key_Tab);
    RequireBox(600, QStringLiteral("255"), 0x40, 1, QByteArray(1, '\xFF'));
    TypeInto(QStringLiteral("txtSetting(700)"), QStringLiteral("12.5"));
    Press(Qt::Key_Tab);
    RequireBox(700, QStringLiteral("12"), 0x44, 1, QByteArray(1, 12));
    QTest::qWait(20);
    Picture(QStringLiteral("automatic"));
    ChooseTab(kFirstSettingsTab + 2);
    Click(QStringLiteral("optSetting(1341)"));
    Require(DataOf(0xCE)[0] == 1, QStringLiteral("the sensor was not chosen"));
    ChooseTab(kFirstSettingsTab);
    Click(QStringLiteral("chkSetting(1147)"));
    SelectCells(kIgnition, {20, 20, 20, 20});
    Press(Qt::Key_Plus);
    device.Mark();
    ClickUpdate();
    const QByteArray sensors = DataOf(0xCE);
    RequireWrites(device,
                  {WriteOf(MapFirstBlock[kIgnition] + 3), WriteOf(0x40), WriteOf(0x44),
                   FrameHex(0xCE, sensors.left(1) + sensors.mid(91)), FrameHex(0xD6, DataOf(0xD6).left(8))});
    ReadBack();
    return found + QStringLiteral("; gearbox, sensor and function select, one map block, and read back");
}

// Cells that went out one by one, by the code before the map.
QStringList CellWrites(const SimulatedPowerFc& device, int map) {
    const QString code = FrameHex(MapFirstBlock[static_cast<std::size_t>(map)] - 1, {}).left(2);
    return device.Writes().filter(QRegularExpression(QLatin1Char('^') + code));
}

QString RefusedAndCancelled(SimulatedPowerFc& device) {
    ChoosePort(RefusingBuild + 1);
    ReadEverything();
    ChooseTab(kInjection);
    Press(Qt::Key_A, Qt::ControlModifier);
    Press(Qt::Key_Plus, Qt::ControlModifier);
    SelectCells(BaseMapIndex, {9, 9, 10, 9});
    Press(Qt::Key_Plus, Qt::ControlModifier);
    RequireStatus(QStringLiteral("Not sent: 5 blocks, 402 cells"));
    SelectCells(kInjection, {1, 1, 1, 1});
    device.Mark();
    Once([] { return OnScreen(QStringLiteral("frmProgress2")) && Progress2.Bar >= 30; },
         [] {
             PictureInBoth(QStringLiteral("progress"));
             QWidget& window = Find(QStringLiteral("frmProgress2"));
             QTest::mouseClick(window.findChild<QAbstractButton*>(QStringLiteral("cmdCancel")),
                               Qt::LeftButton);
         });
    Click(QStringLiteral("cmdUpdate"));
    Require(!OnScreen(QStringLiteral("frmProgress2")), QStringLiteral("the progress window stays"));
    Require(CanUpdate(), QStringLiteral("what was not sent can't be sent"));
    const auto sent = CellWrites(device, kInjection).size();
    Require(sent >= 120 && sent < 400, QStringLiteral("%1 cells went out before the cancel").arg(sent));
    RequireStatus(QStringLiteral("Not sent: 5 blocks, %1 cells").arg(402 - sent));
    QTest::qWait(20);
    Picture(QStringLiteral("cancelled"));
    return QStringLiteral("%1 of 400 cells went out; the status bar says: %2").arg(sent).arg(StatusBar());
}

QString RefusedAndResumed(SimulatedPowerFc& device) {
    ClickUpdate();
    QStringList expected;
    ForEachCell({1, 1, kMapSide, kMapSide}, [&](int row, int column) {
        expected.append(FrameHex(MapFirstBlock[kInjection] - 1,
                                 CellNumber(row, column) + static_cast<char>(RawCell(0, row, column))));
    });
    Require(CellWrites(device, kInjection) == expected,
            QStringLiteral("the cells of both Updates are not the map, each once"));
    QStringList base;
    for (const int row : {9, 10}) {
        const int raw = RawCell(BaseMapIndex, row, 9);
        base.append(
            FrameHex(MapFirstBlock[static_cast<std::size_t>(BaseMapIndex)] - 1,
                     CellNumber(row, 9) + static_cast<char>(raw % 256) + static_cast<char>(raw / 256)));
    }
    Require(CellWrites(device, BaseMapIndex) == base,
            QStringLiteral("the cells of the base map did not go out so"));
    ReadBack();
    return QStringLiteral("the rest of 400 cells and two of the base map, and read back");
}

double Number(int index) {
    return qobject_cast<QLineEdit*>(&Find(Numbered("txtSetting", index)))->text().toDouble();
}

// A map in one of its modes: one cell against its own arithmetic, and a picture for the manual.
void LookAtMode(int map, int mode, const char* name, int row, int column, double value) {
    SelectCells(map, {row, column, row, column});
    if (mode >= 0) ChooseEntry(Numbered("comMapType", map), mode);
    const double shown = CellOnScreen(map, row, column).toDouble();
    Require(std::abs(shown - value) <= 0.00051,
            QStringLiteral("%1 shows %2 in place of %3").arg(QLatin1String(name)).arg(shown).arg(value));
    QTest::qWait(30);
    PictureOf(QStringLiteral("mode-") + QLatin1String(name), *GridView(map).parentWidget());
}

QString AllModes(QWidget& window) {
    ChoosePort(RotaryBuild + 1);
    ReadEverything();
    ChooseTab(kGeneralTab - 2);
    const double share = Number(1500) / 100 * Number(1502) / (Number(1502) + Number(1503));
    ChooseTab(kFirstSettingsTab + 2);
    constexpr int row = 15, column = 16;
    const double revolution = 60'000 / Number(320 + column - 1);
    const QSize before = window.size();
    window.resize(900, 600);
    const double correction = PlainValue(kInjection, row, column);
    LookAtMode(kInjection, 1, "lambda", row, column, 1 / correction);
    LookAtMode(kInjection, 2, "af", row, column, StoichAF / correction);
    LookAtMode(kInjection, 0, "correction", row, column, correction);
    const int base = BaseMapIndex;
    const double time = PlainValue(base, row, column);
    LookAtMode(base, 1, "base-inj", row, column, time * correction);
    LookAtMode(base, 2, "headroom", row, column, revolution - time * correction * share);
    LookAtMode(base, 3, "duty", row, column, time * correction * share / revolution * 100);
    LookAtMode(base, 0, "base", row, column, time);
    int split = kNoMap;
    for (int map = 1; map < base; ++map) {
        if (chkSplit[static_cast<std::size_t>(map)].Visible) split = map;
    }
    Require(split != kNoMap, QStringLiteral("no map can be split"));
    ChooseTab(split);
    Click(Numbered("chkSplit", split));
    LookAtMode(split, -1, "split", row, column,
               RawCell(split - 1, row, column) - RawCell(split, row, column));
    Click(Numbered("chkSplit", split));
    window.resize(before);
    return QStringLiteral("eight modes of cell %1, %2 are what its bytes give").arg(row).arg(column);
}

QString Stoichiometry() {
    ChooseTab(kInjection);
    const double before = StoichAF;
    const auto enter = [](const QString& text, const char* picture) {
        ChooseItem({QStringLiteral("mnuSetupMaps"), QStringLiteral("mnuSetupInjMap"),
                    QStringLiteral("mnuSetupInjMapStoich")});
        TypeInto(QStringLiteral("txtNumber"), text);
        QTest::qWait(20);
        if (*picture != '\0') PictureInBoth(QLatin1String(picture));
        Press(Qt::Key_Return);
        WaitUntil([] { return !OnScreen(QStringLiteral("frmNumberEntry")); }, 5000,
                  QStringLiteral("the number dialog did not close"));
    };
    Expect(QStringLiteral("Stoich should not be less than 10"), QStringLiteral("OK"));
    enter(QStringLiteral("9.6"), "");
    Require(StoichAF == before, QStringLiteral("a ratio below 10 was taken"));
    enter(QStringLiteral("13.2"), "stoich");
    Require(StoichAF == 13.2, QStringLiteral("the ratio was not taken"));
    ChooseEntry(Numbered("comMapType", kInjection), 2);
    const QString cell = CellOnScreen(kInjection, 11, 15);
    Require(cell == InFormat(kInjection, 13.2 / PlainValue(kInjection, 11, 15)),
            QStringLiteral("AF ratio shows ") + cell);
    ChooseEntry(Numbered("comMapType", kInjection), 0);
    return QStringLiteral("9.6 is refused, with 13.2 cell 11, 15 shows ") + cell;
}

QString ReCalcBase() {
    ChooseTab(BaseMapIndex);
    const Image before = ReadData;
    const auto base = RawCells(BaseMapIndex);
    const auto injection = RawCells(kInjection);
    ChooseItem({QStringLiteral("mnuSetupMaps"), QStringLiteral("mnuReCalcBase")});
    RequireCells(BaseMapIndex, {1, 1, kMapSide, kMapSide}, base, [&](int row, int column) {
        const double exact =
            0.5 + kInjectionStep * injection[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
        const double factor = InFormat(kInjection, exact).toDouble();
        return static_cast<int>(
            std::nearbyint(base[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] * factor));
    });
    ChooseTab(kInjection);
    RequireCells(kInjection, {1, 1, kMapSide, kMapSide}, injection, [](int, int) { return kRawOfOne; });
    Press(Qt::Key_Z, Qt::ControlModifier);
    Require(ReadData == before, QStringLiteral("Ctrl+Z did not bring both maps back"));
    return QStringLiteral("the correction went into the base map and came back by one Undo");
}

}  // namespace

void EditAndSend(QWidget& window, const TourSetting& setting) {
    SimulatedPowerFc& device = *setting.Simulators[MainBuild];
    const auto step = [](const char* name, const std::function<QString()>& action) {
        Step(QLatin1String(name), action);
    };
    step("Settings typed", [&] { return TypeSettings(device); });
    step("Map cells stepped", StepCells);
    step("Map cells scaled in the box", ScaleCells);
    step("Map cells pasted", PasteCells);
    step("Map cells interpolated", InterpolateCells);
    step("Undo and Redo", UndoAndRedo);
    step("Update", [&] { return UpdateByButton(device); });
    step("Auto Update", [&] { return UpdateByItself(device); });
    step("A second Read All returns what was sent", ReadBack);
    step("Write Map, and Write and Read of a frame", [&] { return WriteTheMapAndAFrame(device); });
    step("Update to another Power-FC", [&] { return UpdateToAnother(setting); });
    step("The oldest kind of build", [&] { return OldestWritesItsWay(*setting.Simulators[OldestBuild]); });
    step("A build with an automatic gearbox",
         [&] { return AutomaticWrites(*setting.Simulators[AutomaticBuild]); });
    step("Map blocks refused: cell by cell, cancelled",
         [&] { return RefusedAndCancelled(*setting.Simulators[RefusingBuild]); });
    step("Cell by cell, resumed", [&] { return RefusedAndResumed(*setting.Simulators[RefusingBuild]); });
    step("All display modes", [&] { return AllModes(window); });
    step("Stoichiometric ratio", Stoichiometry);
    step("ReCalc Base", ReCalcBase);
}

}  // namespace zandrel
