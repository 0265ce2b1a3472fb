#include "steps.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QTest>

#include "checks.h"
#include "editing.h"
#include "files.h"
#include "image/accessors.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "person.h"
#include "simulated.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

// The shown text boxes of a page show the number that their bytes stand for.
int CheckTextBoxes(int tab) {
    int checked = 0;
    for (const auto& [index, record] : txtSetting) {
        if (record.Tab != tab || !record.Visible || !FraSettings[record.Frame].Visible) continue;
        const QString name = Numbered("txtSetting", index);
        if (!OnScreen(name)) {
            Require(record.Frame == 120 && record.Top + record.Height > FraSettings[120].Height,
                    name + QStringLiteral(" is not on the screen"));
            continue;
        }
        const auto* box = qobject_cast<QLineEdit*>(&Find(name));
        Require(box != nullptr, name + QStringLiteral(" is no text box"));
        const std::string expected = GetNumber(record.Tag);
        Require(!expected.empty() && box->text().toStdString() == expected,
                name + QStringLiteral(" shows \"%1\"").arg(box->text()));
        ++checked;
    }
    return checked;
}

int CheckBoxes(const ControlArray& array, const char* arrayName, int tab, int (*value)(const Control&)) {
    int checked = 0;
    for (const auto& [index, record] : array) {
        if (record.Tab != tab || !record.Visible || !FraSettings[record.Frame].Visible) continue;
        const QString name = Numbered(arrayName, index);
        const auto* box = qobject_cast<QAbstractButton*>(&Find(name));
        Require(box != nullptr && box->isChecked() == (value(record) != 0),
                name + QStringLiteral(" shows the wrong state"));
        ++checked;
    }
    return checked;
}

QString CheckSettingsPage(int tab) {
    ChooseTab(tab);
    QTest::qWait(30);
    const int numbers = CheckTextBoxes(tab);
    int boxes = CheckBoxes(chkSetting, "chkSetting", tab, [](const Control& c) { return GetFlag(c.Tag); });
    boxes += CheckBoxes(chkSettingBit, "chkSettingBit", tab, [](const Control& c) { return GetBit(c.Tag); });
    boxes +=
        CheckBoxes(optSetting, "optSetting", tab, [](const Control& c) { return GetOption(c.Tag) ? 1 : 0; });
    Picture(TabName(tab));
    return QStringLiteral("%1 numbers and %2 boxes show their bytes").arg(numbers).arg(boxes);
}

QString CheckMapTab(int map) {
    ChooseTab(map);
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            const QString shown = CellOnScreen(map, row, column);
            Require(shown == ExpectedCell(map, row, column),
                    QStringLiteral("cell %1, %2 shows \"%3\"").arg(row).arg(column).arg(shown));
        }
    }
    QTest::qWait(30);
    Picture(TabName(map));
    return QStringLiteral("400 cells, first %1, last %2")
        .arg(CellOnScreen(map, 1, 1), CellOnScreen(map, 20, 20));
}

QString WalkThroughModes(int map, const QString& menu, const char* items, int count) {
    ChooseTab(map);
    QStringList cells;
    for (int mode = 0; mode < count; ++mode) {
        // Now by the list, now by the menu.
        if (mode % 2 == 0) {
            ChooseEntry(Numbered("comMapType", map), mode);
        } else {
            ChooseItem({QStringLiteral("mnuSetupMaps"), menu, Numbered(items, mode)});
        }
        const QString cell = CellOnScreen(map, 11, 15);
        const double plain = PlainValue(map, 11, 15);
        const bool injection = map == InjMapIndex;
        const bool right = mode == 0   ? cell == InFormat(map, plain)
                           : injection ? cell == InFormat(map, (mode == 1 ? 1 : StoichAF) / plain)
                                       : !cell.isEmpty();
        Require(right, QStringLiteral("mode %1 shows \"%2\"").arg(mode).arg(cell));
        cells.append(cell);
        if (mode > 0) Picture(TabName(map) + QStringLiteral("-mode%1").arg(mode));
    }
    ChooseEntry(Numbered("comMapType", map), 0);
    return QStringLiteral("cell 11, 15 in its modes: ") + cells.join(QStringLiteral(", "));
}

QString MoveInTheMap() {
    ChooseTab(0);
    QAbstractItemView& grid = GridView(0);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {},
                      grid.visualRect(grid.model()->index(2, 3)).center());
    QTest::keyClick(&grid, Qt::Key_Right);
    QTest::keyClick(&grid, Qt::Key_Down);
    Require(grid.currentIndex().row() == 3 && grid.currentIndex().column() == 4,
            QStringLiteral("the arrow keys did not move the cell"));
    QTest::keyClick(&grid, Qt::Key_A, Qt::ControlModifier);
    Require(grid.selectionModel()->selectedIndexes().size() == 400,
            QStringLiteral("Ctrl+A did not select all cells"));
    QTest::keyClick(&grid, Qt::Key_Left);
    return QStringLiteral("arrow keys move, Ctrl+A selects 400 cells");
}

QString LabelTheAxes() {
    ChooseItem({QStringLiteral("mnuSetupMaps"), QStringLiteral("mnuMapRefLabels")});
    Require(mnuMapRefLabels.Checked, QStringLiteral("the item is not ticked"));
    const QAbstractItemModel* model = GridView(0).model();
    const QString last = model->headerData(19, Qt::Horizontal).toString();
    Require(last.toStdString() == Grid[0].ColumnHead[20] && last != QStringLiteral("N20"),
            QStringLiteral("the last column is labelled ") + last);
    Picture(QStringLiteral("injmap-labels"));
    return QStringLiteral("the columns end at %1").arg(last);
}

QString WithoutColours() {
    ChooseItem({QStringLiteral("mnuSetupMaps"), QStringLiteral("mnuMapColourScheme"),
                QStringLiteral("mnuSetupMapColourScheme(0)")});
    Require(MapColourScheme == 0, QStringLiteral("the scheme did not change"));
    Picture(QStringLiteral("injmap-plain"));
    ChooseItem({QStringLiteral("mnuSetupMaps"), QStringLiteral("mnuMapColourScheme"),
                QStringLiteral("mnuSetupMapColourScheme(1)")});
    Require(MapColourScheme == 1, QStringLiteral("the scheme did not come back"));
    return {};
}

QString ReadOneMap() {
    ChooseTab(0);
    const auto before = ReadData;
    const unsigned revision = Grid[0].Revision;
    Click(QStringLiteral("cmdReadMap(0)"));
    Require(Grid[0].Revision > revision, QStringLiteral("the map was not shown anew"));
    Require(ReadData == before, QStringLiteral("the map did not come back as it was"));
    return QStringLiteral("the map came back as it was");
}

QString OtherSizesAndColours(QWidget& window) {
    const QSize before = window.size();
    const QPalette light = QApplication::palette();
    const auto look = [&](const QString& name) {
        for (const int tab : {0, kFirstSettingsTab}) {
            ChooseTab(tab);
            QTest::qWait(50);
            Picture(name + QLatin1Char('-') + TabName(tab));
        }
    };
    window.resize(747, 542);
    look(QStringLiteral("small"));
    window.resize(1600, 1000);
    look(QStringLiteral("large"));
    QApplication::setPalette(DarkPalette());
    look(QStringLiteral("dark"));
    QApplication::setPalette(light);
    window.resize(before);
    return QStringLiteral("747 x 542, 1600 x 1000 and a dark palette");
}

QString DetectThePort(const TourSetting& setting) {
    Expect(QStringLiteral("1. Turn off ignition."), QStringLiteral("OK"));
    Expect(QStringLiteral("Corvane V2.0 found on COM%1").arg(setting.PortNumber), QStringLiteral("OK"));
    Once([] { return OnScreen(QStringLiteral("frmProgress2")); },
         [&setting] {
             Picture(QStringLiteral("autodetect"));
             setting.Simulators[MainBuild]->SwitchIgnition();
         });
    ChooseItem({QStringLiteral("mnuPort"), QStringLiteral("mnuComAuto")});
    Require(MSComm1.PortOpen() && mnuCom[static_cast<std::size_t>(setting.PortNumber - 1)].Checked,
            QStringLiteral("the port did not open"));
    return QStringLiteral("found on COM%1").arg(setting.PortNumber);
}

QString ScanAndCancel() {
    Once([] { return OnScreen(QStringLiteral("frmProgressScan")) && ProgressScan.Bar >= 1; },
         [] {
             Picture(QStringLiteral("scan"));
             for (QAbstractButton* button :
                  Find(QStringLiteral("frmProgressScan")).findChildren<QAbstractButton*>()) {
                 if (button->isVisible()) QTest::mouseClick(button, Qt::LeftButton);
             }
         });
    ChooseItem({QStringLiteral("mnuPowerFc"), QStringLiteral("mnuScan")});
    Require(!ProgressScan.Visible && ProgressScan.Cancelled,
            QStringLiteral("the scan did not end by its button"));
    return QStringLiteral("cancelled at %1 %").arg(ProgressScan.Bar, 0, 'f', 1);
}

}  // namespace

void WalkThrough(QWidget& window, const TourSetting& setting) {
    Step(QStringLiteral("Start: one tab"), [&] {
        WaitUntil([&window] { return window.isVisible(); }, 5000,
                  QStringLiteral("the window did not come up"));
        for (int tab = 0; tab < kTabs; ++tab) {
            Require(SSTab1.TabVisible[static_cast<std::size_t>(tab)] == (tab == kGeneralTab),
                    QStringLiteral("more than the general tab shows"));
        }
        window.resize(1280, 800);
        QTest::qWait(50);
        Picture(QStringLiteral("start"));
        if (!setting.OwnSimulator()) return QString();
        Require(setting.Simulators[MainBuild]->Requests().empty(),
                QStringLiteral("something was sent at start"));
        return QStringLiteral("nothing was sent");
    });
    Step(QStringLiteral("Choose COM%1 in the Port menu").arg(setting.PortNumber), [&] {
        if (MSComm1.PortOpen()) return QStringLiteral("it is open already");
        ChoosePort(setting.PortNumber);
        return QString::fromStdString(ComCaption(setting.PortNumber));
    });
    if (setting.OwnSimulator()) {
        Step(QStringLiteral("Auto detection of the Corvane"), [&] { return DetectThePort(setting); });
    }
    Step(QStringLiteral("Read All"), [] { return ReadEverything(); });
    for (int tab = 0; tab < kGeneralTab; ++tab) {
        if (!SSTab1.TabVisible[static_cast<std::size_t>(tab)]) continue;
        const QString caption = QString::fromStdString(SSTab1.TabCaption[static_cast<std::size_t>(tab)]);
        Step(QStringLiteral("Tab ") + caption,
             [tab] { return tab < kMapTabs ? CheckMapTab(tab) : CheckSettingsPage(tab); });
    }
    Step(QStringLiteral("Move about in the injection map"), [] { return MoveInTheMap(); });
    Step(QStringLiteral("Injection map: correction, lambda, air-fuel ratio"),
         [] { return WalkThroughModes(0, QStringLiteral("mnuSetupInjMap"), "mnuInjMapDisplay", 3); });
    if (BaseMapIndex != kNoMap) {
        Step(QStringLiteral("Base map: base, base x injection, head room, fuel duty"), [] {
            return WalkThroughModes(BaseMapIndex, QStringLiteral("mnuSetupBaseMap"), "mnuBaseMapDisplay", 4);
        });
    }
    Step(QStringLiteral("Label the axes"), [] {
        ChooseTab(0);
        return LabelTheAxes();
    });
    Step(QStringLiteral("Colour scheme off and on"), [] { return WithoutColours(); });
    Step(QStringLiteral("Read one map"), [] { return ReadOneMap(); });
    Step(QStringLiteral("Other window sizes, dark palette"),
         [&window] { return OtherSizesAndColours(window); });
    Step(QStringLiteral("Start a scan and cancel it"), [] { return ScanAndCancel(); });
    Step(QStringLiteral("Read All again, by its key"), [&window] {
        const unsigned revision = Grid[0].Revision;
        window.activateWindow();
        WaitUntil([&window] { return window.isActiveWindow(); }, 5000,
                  QStringLiteral("the window is not active"));
        ExpectToLoseChanges();
        QTest::keyClick(&window, Qt::Key_R, Qt::ControlModifier);
        Require(Grid[0].Revision > revision, QStringLiteral("Read All did not run"));
        return QStringLiteral("%1 blocks").arg(CountBlocksRead());
    });
    if (setting.OwnSimulator()) {
        EditAndSend(window, setting);
        WorkWithFiles(window, setting, setting.Folder);
    }
    Step(QStringLiteral("Close the window"), [&window] {
        ExpectToLoseChanges();
        window.close();
        Require(!window.isVisible() && !MSComm1.PortOpen(), QStringLiteral("it did not close"));
        return QString();
    });
}

}  // namespace zandrel
