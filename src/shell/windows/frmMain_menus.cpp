// The menus of the main window, grouped by what a tuner does, and its keys.
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QShortcut>
#include <QTimer>
#include <algorithm>

#include "files/datafile.h"
#include "files/recentfiles.h"
#include "files/snapshots.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "shell/windows/commands.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/mapgrid.h"
#include "shell/windows/mappage.h"
#include "shell/windows/shown.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/mapediting.h"
#include "tuning/maps.h"
#include "util/diagnostics.h"
#include "util/product.h"

namespace zandrel {
namespace {

// Mnemonic letters of a menu's other items.
QString MnemonicsBeside(const QMenu* menu, const QAction* item) {
    QString taken;
    for (const QAction* other : menu->actions()) {
        const QChar letter = other == item ? QChar() : MnemonicOf(other->text());
        if (!letter.isNull()) taken += letter;
    }
    return taken;
}

}  // namespace

void frmMain::BuildMenus() {
    BuildFileMenu();
    BuildEditMenu();
    BuildPowerFcMenu();
    BuildPortMenu();
    BuildSetupMenu();
    BuildMapsMenu();
    BuildHelpMenu();
    BuildFrameMenu();
    BuildKeys();
}

// An item that stands for a record: its click runs the row of the same name, with its index.
QAction* frmMain::AddItem(QMenu* menu, const char* name, const MenuItem& record, int index) {
    QAction* item = menu->addAction(QString());
    item->setObjectName(index < 0 ? QString::fromLatin1(name) : MemberName(name, index));
    connect(item, &QAction::triggered, this, [this, name, index] {
        CommitOpenBox();
        Run([name, index] { CommandOf(name).Click(index); });
    });
    items_.push_back({item, menu, &record, HasHandler(name), {}});
    return item;
}

QAction* frmMain::AddCommand(QMenu* menu, const char* name, const QString& caption,
                             const std::function<void()>& action) {
    QAction* item = menu->addAction(caption);
    item->setObjectName(QLatin1String(name));
    connect(item, &QAction::triggered, this, [this, action] {
        CommitOpenBox();
        Run(action);
    });
    return item;
}

void frmMain::BuildFileMenu() {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("&File"));
    menu->setObjectName(QStringLiteral("mnuFile"));
    AddItem(menu, "mnuOpen", mnuOpen)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    mnuOpenSnapshot_ = menu->addMenu(QStringLiteral("Open S&napshot"));
    mnuOpenSnapshot_->setObjectName(QStringLiteral("mnuOpenSnapshot"));
    connect(mnuOpenSnapshot_, &QMenu::aboutToShow, this, [this] { OpenSnapshotMenu(); });
    AddItem(menu, "mnuDefault", mnuDefault);
    AddItem(menu, "mnuSaveAs", mnuSaveAs)
        ->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_S), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)});
    menu->addSeparator();
    AddItem(menu, "mnuLoadDefaultAtStart", mnuLoadDefaultAtStart)->setCheckable(true);
    AddItem(menu, "mnuSaveDefaultOnExit", mnuSaveDefaultOnExit)->setCheckable(true);
    AddItem(menu, "mnuCheckUnsavedData", mnuCheckUnsavedData)->setCheckable(true);
    mnuRecentFileSep_ = menu->addSeparator();
    for (std::size_t i = 0; i < mnuRecentFile.size(); ++i) {
        AddItem(menu, "mnuRecentFile", mnuRecentFile[i], static_cast<int>(i));
    }
    menu->addSeparator();
    QAction* exit = menu->addAction(QStringLiteral("E&xit"));
    exit->setObjectName(QStringLiteral("mnuExit"));
    exit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    exit->setMenuRole(QAction::QuitRole);
    connect(exit, &QAction::triggered, this, [this] { close(); });
}

// What is there is looked up anew each time.
void frmMain::OpenSnapshotMenu() {
    mnuOpenSnapshot_->clear();
    const std::vector<Snapshot> snapshots = ListSnapshots();
    for (std::size_t i = 0; i < snapshots.size(); ++i) {
        const int index = static_cast<int>(i);
        QAction* item = AddCommand(mnuOpenSnapshot_, "", WithoutMnemonic(snapshots[i].Caption),
                                   [index] { CommandOf("mnuOpenSnapshot").Click(index); });
        item->setObjectName(MemberName("mnuOpenSnapshot", index));
        item->setStatusTip(Printable(snapshots[i].Path));
    }
    if (snapshots.empty()) mnuOpenSnapshot_->addAction(QStringLiteral("None kept yet"))->setEnabled(false);
}

void frmMain::BuildEditMenu() {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("&Edit"));
    menu->setObjectName(QStringLiteral("mnuEdit"));
    AddItem(menu, "mnuUndo", mnuUndo)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    AddItem(menu, "mnuRedo", mnuRedo)
        ->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
}

// The menu of a frame: its blocks alone are read or written.
void frmMain::BuildFrameMenu() {
    mnuPopUp1_ = new QMenu(this);
    mnuPopUp1_->setObjectName(QStringLiteral("mnuPopUp1"));
    AddItem(mnuPopUp1_, "mnuRead", mnuRead);
    AddItem(mnuPopUp1_, "mnuWrite", mnuWrite);
}

void frmMain::OpenFrameMenu(int frame, const QPoint& place) {
    PopupFrame = static_cast<std::int16_t>(frame);
    mnuPopUp1_->popup(place);
}

void frmMain::BuildPowerFcMenu() {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("&Power-FC"));
    menu->setObjectName(QStringLiteral("mnuPowerFc"));
    mnuReadAll_ = AddCommand(menu, "mnuReadAll", QStringLiteral("&Read All"),
                             [] { CommandOf("cmdReadAll").Click(-1); });
    mnuReadAll_->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_R), QKeySequence(Qt::Key_F5)});
    mnuWriteAll_ = AddCommand(menu, "mnuWriteAll", QStringLiteral("&Write All"),
                              [] { CommandOf("cmdWriteAll").Click(-1); });
    mnuUpdate_ = AddCommand(menu, "mnuUpdate", QStringLiteral("&Update\tCtrl+U"),
                            [] { CommandOf("cmdUpdate").Click(-1); });
    menu->addSeparator();
    mnuReadMap_ =
        AddCommand(menu, "mnuReadMap", QStringLiteral("Read &Map"), [this] { RunOnMapInView("cmdReadMap"); });
    mnuReadMap_->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R));
    mnuWriteMap_ = AddCommand(menu, "mnuWriteMap", QStringLiteral("Wri&te Map"),
                              [this] { RunOnMapInView("cmdWriteMap"); });
    menu->addSeparator();
    AddItem(menu, "mnuInitAllData", mnuInitAllData);
    mnuScan_ = AddCommand(menu, "mnuScan", QStringLiteral("&Scan"), [] { CommandOf("mnuScan").Click(-1); });
}

void frmMain::BuildPortMenu() {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("P&ort"));
    menu->setObjectName(QStringLiteral("mnuPort"));
    AddItem(menu, "mnuComAuto", mnuComAuto);
    menu->addSeparator();
    for (int i = 0; i < static_cast<int>(mnuCom.size()); ++i) {
        AddItem(menu, "mnuCom", mnuCom[static_cast<std::size_t>(i)], i)->setCheckable(true);
    }
    AddItem(menu, "mnuComNone", mnuComNone);
    menu->addSeparator();
    AddItem(menu, "mnuComShowAll", mnuComShowAll)->setCheckable(true);
    connect(menu, &QMenu::aboutToShow, this, [this] { OpenPortMenu(); });
}

void frmMain::OpenPortMenu() {
    if (menuOpens_ || LongOperationRuns()) return;
    menuOpens_ = true;
    ComPortMenu_Open();
    for (std::size_t i = 0; i < mnuCom.size(); ++i) {
        if (mnuCom[i].Visible) mnuCom[i].Caption = ComCaption(static_cast<int>(i) + 1);
    }
    menuOpens_ = false;
    Mirror();
}

void frmMain::BuildSetupMenu() {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("&Setup"));
    menu->setObjectName(QStringLiteral("mnuSetup"));
    QMenu* versions = menu->addMenu(QStringLiteral("&Interface Version"));
    versions->setObjectName(QStringLiteral("mnuSetupCorvane"));
    for (int i = 0; i < static_cast<int>(mnuSetupCorvaneVer.size()); ++i) {
        AddItem(versions, "mnuSetupCorvaneVer", mnuSetupCorvaneVer[static_cast<std::size_t>(i)], i)
            ->setCheckable(true);
    }
}

void frmMain::BuildMapsMenu() {
    QMenu* menu = mnuSetupMaps_ = menuBar()->addMenu(QStringLiteral("&Maps"));
    menu->setObjectName(QStringLiteral("mnuSetupMaps"));
    AddItem(menu, "mnuGridCopy", mnuGridCopy);
    AddItem(menu, "mnuGridPaste", mnuGridPaste);
    mnuSep4_ = menu->addSeparator();
    AddItem(menu, "mnuGridInterpolate", mnuGridInterpolate);
    menu->addSeparator();
    // From the menu bar the commands work on the map in view.
    connect(menu, &QMenu::aboutToShow, this, [this] {
        if (!popupOpens_ && SSTab1.Tab < kMapTabs) PopupGrid = static_cast<std::int16_t>(SSTab1.Tab);
    });
    QAction* labels = AddItem(menu, "mnuMapRefLabels", mnuMapRefLabels);
    labels->setCheckable(true);
    labels->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
    const auto addChoices = [&](const char* name, const char* caption, const char* itemName,
                                const auto& records) {
        QMenu* choices = menu->addMenu(QString::fromLatin1(caption));
        choices->setObjectName(QLatin1String(name));
        for (std::size_t i = 0; i < records.size(); ++i) {
            AddItem(choices, itemName, records[i], static_cast<int>(i))->setCheckable(true);
        }
        return choices;
    };
    addChoices("mnuMapColourScheme", "Colour &scheme", "mnuSetupMapColourScheme", mnuSetupMapColourScheme);
    QMenu* injection = addChoices("mnuSetupInjMap", "I&NJ map", "mnuInjMapDisplay", mnuInjMapDisplay);
    injection->addSeparator();
    AddItem(injection, "mnuSetupInjMapStoich", mnuSetupInjMapStoich);
    connect(injection, &QMenu::aboutToShow, this, [this] { Run(mnuSetupInjMap_Click); });
    mnuSetupBaseMap_ = addChoices("mnuSetupBaseMap", "&Base Map", "mnuBaseMapDisplay", mnuBaseMapDisplay);
    menu->addSeparator();
    AddItem(menu, "mnuReCalcBase", mnuReCalcBase);
}

// The Maps menu over a map, with what works on its selection.
void frmMain::OpenGridMenu(int map, const QPoint& place) {
    mapPages_[static_cast<std::size_t>(map)]->GridView()->setFocus();
    PopupGrid = static_cast<std::int16_t>(map);
    const auto showItems = [](bool visible) {
        mnuGridCopy.Visible = mnuGridPaste.Visible = mnuSep4.Visible = visible;
    };
    showItems(true);
    Mirror();
    popupOpens_ = true;
    mnuSetupMaps_->popup(place);
    popupOpens_ = false;
    // Hidden again only when the item that was chosen has run.
    connect(
        mnuSetupMaps_, &QMenu::aboutToHide, this,
        [this, showItems] {
            QTimer::singleShot(0, this, [this, showItems] {
                showItems(false);
                Mirror();
            });
        },
        Qt::SingleShotConnection);
}

void frmMain::BuildHelpMenu() {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("&Help"));
    menu->setObjectName(QStringLiteral("mnuHelp"));
    QAction* about = mnuAbout_ = menu->addAction(QStringLiteral("&About Zandrel"));
    about->setObjectName(QStringLiteral("mnuAbout"));
    about->setMenuRole(QAction::AboutRole);
    connect(about, &QAction::triggered, this, [this] { ShowAbout(); });
}

void frmMain::ShowAbout() {
    auto* box = new QMessageBox(this);
    box->setObjectName(QStringLiteral("frmAbout"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QStringLiteral("About Zandrel"));
    box->setTextFormat(Qt::PlainText);
    box->setText(QString::fromUtf8(kProgramVersion));
    box->setInformativeText(
        QStringLiteral("Tuning editor and data logger for the Power-FC.\n"
                       "Free software under the GNU General Public License, version 3 or later."));
    box->open();
}

// F10 with a port open, F9 with none, is a click on the first port of the menu.
void frmMain::BuildKeys() {
    const auto add = [this](Qt::Key key, bool whileOpen) {
        auto* shortcut = new QShortcut(QKeySequence(key), this);
        connect(shortcut, &QShortcut::activated, this, [this, whileOpen] { ToggleFirstPort(whileOpen); });
    };
    add(Qt::Key_F10, true);
    add(Qt::Key_F9, false);
    // What is being typed may be the first change: only when it is stored there is something to send.
    auto* update = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_U), this);
    connect(update, &QShortcut::activated, this, [this] {
        CommitOpenBox();
        if (cmdUpdate.Enabled) Run([] { CommandOf("cmdUpdate").Click(-1); });
    });
}

void frmMain::ToggleFirstPort(bool open) {
    if (MSComm1.PortOpen() != open || LongOperationRuns()) return;
    Run([] { CommandOf("mnuCom").Click(0); });
}

void frmMain::RunOnMapInView(const char* name) {
    if (SSTab1.Tab < kMapTabs) CommandOf(name).Click(SSTab1.Tab);
}

QString frmMain::CaptionOf(const BoundAction& item) const {
    const std::string& caption = item.Record->Caption;
    const auto isOneOf = [&item](const auto& records) {
        return item.Record >= records.data() && item.Record < records.data() + records.size();
    };
    // Ports carry device names: an "&" in one is no mnemonic.
    if (isOneOf(mnuCom)) return WithoutMnemonic(caption);
    if (!isOneOf(mnuRecentFile)) return WithMnemonic(caption, MnemonicsBeside(item.Menu, item.Action));
    // Only the digit is one, whatever the file is called, and a long name gets no menu across the screen.
    constexpr int kLongest = 70;
    const QString path =
        fontMetrics().elidedText(Printable(caption.substr(std::min<std::size_t>(1, caption.size()))),
                                 Qt::ElideMiddle, kLongest * fontMetrics().averageCharWidth());
    return QLatin1Char('&') + WithoutMnemonic(path.toStdString());
}

void frmMain::MirrorMenus() {
    const bool runs = LongOperationRuns();
    for (BoundAction& item : items_) {
        const MenuItem& record = *item.Record;
        if (record.Caption != item.Caption) {
            item.Caption = record.Caption;
            item.Action->setText(CaptionOf(item));
        }
        if (record.Tag != item.Tag) {
            item.Tag = record.Tag;
            item.Action->setStatusTip(Printable(record.Tag));
        }
        if (item.Action->isCheckable() && item.Action->isChecked() != record.Checked) {
            item.Action->setChecked(record.Checked);
        }
        if (item.Action->isVisible() != record.Visible) item.Action->setVisible(record.Visible);
        const bool baseMode = item.Record >= mnuBaseMapDisplay.data() &&
                              item.Record < mnuBaseMapDisplay.data() + mnuBaseMapDisplay.size();
        const bool fits =
            baseMode ? BaseMapIndex != kNoMap : item.Record != &mnuGridInterpolate || SSTab1.Tab < kMapTabs;
        const bool enabled = record.Enabled && item.Handled && !runs && fits;
        if (item.Action->isEnabled() != enabled) item.Action->setEnabled(enabled);
    }
    const auto enable = [](QAction* action, bool enabled) {
        if (action->isEnabled() != enabled) action->setEnabled(enabled);
    };
    const bool mapInView = SSTab1.Tab < kMapTabs && !VerName.empty();
    enable(mnuOpenSnapshot_->menuAction(), !runs);
    enable(mnuReadAll_, cmdReadAll.Enabled && !runs);
    const auto map = static_cast<std::size_t>(std::min(SSTab1.Tab, kMapTabs - 1));
    enable(mnuReadMap_, mapInView && cmdReadMap[map].Enabled && !runs);
    enable(mnuWriteMap_, mapInView && cmdWriteMap[map].Enabled && !runs);
    enable(mnuWriteAll_, cmdWriteAll.Enabled && !runs);
    enable(mnuUpdate_, cmdUpdate.Enabled && !runs);
    if (mnuSep4_->isVisible() != mnuSep4.Visible) mnuSep4_->setVisible(mnuSep4.Visible);
    if (mnuRecentFileSep_->isVisible() != mnuRecentFileSep.Visible) {
        mnuRecentFileSep_->setVisible(mnuRecentFileSep.Visible);
    }
    enable(mnuScan_, !runs && MSComm1.PortOpen());
    enable(mnuAbout_, !runs);
    enable(mnuSetupBaseMap_->menuAction(), BaseMapIndex != kNoMap);
}

}  // namespace zandrel
