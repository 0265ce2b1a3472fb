// The menus of the main window, grouped by what a tuner does, and its keys.
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QShortcut>
#include <algorithm>

#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "shell/windows/commands.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/shown.h"
#include "tuning/display.h"
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
    BuildPowerFcMenu();
    BuildPortMenu();
    BuildSetupMenu();
    BuildMapsMenu();
    BuildHelpMenu();
    BuildKeys();
}

// An item that stands for a record: its click runs the row of the same name, with its index.
QAction* frmMain::AddItem(QMenu* menu, const char* name, const MenuItem& record, int index) {
    QAction* item = menu->addAction(QString());
    item->setObjectName(index < 0 ? QString::fromLatin1(name) : MemberName(name, index));
    connect(item, &QAction::triggered, this,
            [this, name, index] { Run([name, index] { CommandOf(name).Click(index); }); });
    items_.push_back({item, menu, &record, HasHandler(name), {}});
    return item;
}

QAction* frmMain::AddCommand(QMenu* menu, const char* name, const QString& caption,
                             const std::function<void()>& action) {
    QAction* item = menu->addAction(caption);
    item->setObjectName(QLatin1String(name));
    connect(item, &QAction::triggered, this, [this, action] { Run(action); });
    return item;
}

void frmMain::BuildFileMenu() {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("&File"));
    menu->setObjectName(QStringLiteral("mnuFile"));
    QAction* exit = menu->addAction(QStringLiteral("E&xit"));
    exit->setObjectName(QStringLiteral("mnuExit"));
    exit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    exit->setMenuRole(QAction::QuitRole);
    connect(exit, &QAction::triggered, this, [this] { close(); });
}

void frmMain::BuildPowerFcMenu() {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("&Power-FC"));
    menu->setObjectName(QStringLiteral("mnuPowerFc"));
    mnuReadAll_ = AddCommand(menu, "mnuReadAll", QStringLiteral("&Read All"),
                             [] { CommandOf("cmdReadAll").Click(-1); });
    mnuReadAll_->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_R), QKeySequence(Qt::Key_F5)});
    mnuReadMap_ = AddCommand(menu, "mnuReadMap", QStringLiteral("Read &Map"), [this] { ReadMapInView(); });
    mnuReadMap_->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R));
    menu->addSeparator();
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
    QMenu* menu = menuBar()->addMenu(QStringLiteral("&Maps"));
    menu->setObjectName(QStringLiteral("mnuSetupMaps"));
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
    addChoices("mnuMapColourScheme", "&Colour scheme", "mnuSetupMapColourScheme", mnuSetupMapColourScheme);
    addChoices("mnuSetupInjMap", "&INJ map", "mnuInjMapDisplay", mnuInjMapDisplay);
    mnuSetupBaseMap_ = addChoices("mnuSetupBaseMap", "&Base Map", "mnuBaseMapDisplay", mnuBaseMapDisplay);
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
}

void frmMain::ToggleFirstPort(bool open) {
    if (MSComm1.PortOpen() != open || LongOperationRuns()) return;
    Run([] { CommandOf("mnuCom").Click(0); });
}

void frmMain::ReadMapInView() {
    if (SSTab1.Tab < kMapTabs) CommandOf("cmdReadMap").Click(SSTab1.Tab);
}

void frmMain::MirrorMenus() {
    const bool runs = LongOperationRuns();
    for (BoundAction& item : items_) {
        const MenuItem& record = *item.Record;
        if (record.Caption != item.Caption) {
            item.Caption = record.Caption;
            // Ports carry device names: an "&" in one is no mnemonic.
            const bool port = item.Record >= mnuCom.data() && item.Record < mnuCom.data() + mnuCom.size();
            item.Action->setText(port
                                     ? WithoutMnemonic(record.Caption)
                                     : WithMnemonic(record.Caption, MnemonicsBeside(item.Menu, item.Action)));
        }
        if (item.Action->isCheckable() && item.Action->isChecked() != record.Checked) {
            item.Action->setChecked(record.Checked);
        }
        if (item.Action->isVisible() != record.Visible) item.Action->setVisible(record.Visible);
        const bool baseMode = item.Record >= mnuBaseMapDisplay.data() &&
                              item.Record < mnuBaseMapDisplay.data() + mnuBaseMapDisplay.size();
        const bool enabled = record.Enabled && item.Handled && !runs && (!baseMode || BaseMapIndex != kNoMap);
        if (item.Action->isEnabled() != enabled) item.Action->setEnabled(enabled);
    }
    const auto enable = [](QAction* action, bool enabled) {
        if (action->isEnabled() != enabled) action->setEnabled(enabled);
    };
    const bool mapInView = SSTab1.Tab < kMapTabs && !VerName.empty();
    enable(mnuReadAll_, cmdReadAll.Enabled && !runs);
    enable(mnuReadMap_,
           mapInView && cmdReadMap[static_cast<std::size_t>(std::min(SSTab1.Tab, kMapTabs - 1))].Enabled &&
               !runs);
    enable(mnuScan_, !runs && MSComm1.PortOpen());
    enable(mnuAbout_, !runs);
    enable(mnuSetupBaseMap_->menuAction(), BaseMapIndex != kNoMap);
}

}  // namespace zandrel
