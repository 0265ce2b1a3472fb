#include "shell/windows/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QInputMethod>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "files/datafile.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "shell/startstop.h"
#include "shell/windows/commands.h"
#include "shell/windows/droptarget.h"
#include "shell/windows/generalpage.h"
#include "shell/windows/gridedit.h"
#include "shell/windows/mapgrid.h"
#include "shell/windows/mappage.h"
#include "shell/windows/progresswindows.h"
#include "shell/windows/settingspage.h"
#include "shell/windows/shown.h"
#include "shell/windows/tabrow.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/mapediting.h"
#include "tuning/maps.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr float kTwipsAPixel = 15;  // 1440 to the inch, at 96 pixels

void ShowIfOther(QLabel* label, const QString& text) {
    if (label->text() != text) label->setText(text);
}

QString PortInWords() {
    for (std::size_t i = 0; i < mnuCom.size(); ++i) {
        if (!mnuCom[i].Checked) continue;
        const int number = static_cast<int>(i) + 1;
        const QString name = QStringLiteral("COM%1").arg(number);
        const QString device = Shown(ComDevice(number));
        // Chosen, but closed by a detection that was cancelled: no command would find it.
        if (!MSComm1.PortOpen()) return name + QStringLiteral(" · closed");
        return device.isEmpty() || device == name ? name : name + QStringLiteral(" · ") + device;
    }
    return QStringLiteral("No port chosen");
}

QString UnsentInWords() {
    const auto count = [](int number, const char* one, const char* many) {
        return QStringLiteral("%1 %2").arg(number).arg(QLatin1String(number == 1 ? one : many));
    };
    const Unsent unsent = CountUnsent();
    QString text;
    if (unsent.Blocks > 0) text = count(unsent.Blocks, "block", "blocks");
    if (unsent.Cells > 0) {
        if (!text.isEmpty()) text += QStringLiteral(", ");
        text += count(unsent.Cells, "cell", "cells");
    }
    if (!text.isEmpty()) text.prepend(QStringLiteral("Not sent: "));
    if (LastUpdate.empty()) return text;
    const QString update = QStringLiteral("Updated ") + Shown(LastUpdate);
    return text.isEmpty() ? update : text + QStringLiteral(" · ") + update;
}

// The screen that shows enough of `place` for its title to be grasped, or the first one.
QRect ScreenFor(const QRect& place) {
    constexpr int kGrasp = 64;
    const QRect title(place.left(), place.top(), place.width(), kGrasp / 2);
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect seen = screen->availableGeometry() & title;
        if (seen.width() >= kGrasp && seen.height() >= kGrasp / 4) return screen->availableGeometry();
    }
    return QGuiApplication::primaryScreen()->availableGeometry();
}

QRect KeptOn(const QRect& screen, QRect place) {
    place.setWidth(std::min(place.width(), screen.width()));
    place.setHeight(std::min(place.height(), screen.height()));
    if ((screen & place).isEmpty() || !screen.contains(place.topLeft())) {
        place.moveLeft(std::clamp(place.left(), screen.left(), screen.right() + 1 - place.width()));
        place.moveTop(std::clamp(place.top(), screen.top(), screen.bottom() + 1 - place.height()));
    }
    return place;
}

}  // namespace

frmMain::frmMain(QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("frmMain"));
    auto* body = new QWidget(this);
    auto* column = new QVBoxLayout(body);
    const int gap = fontMetrics().height() / 3;
    column->setContentsMargins(gap, gap, gap, 0);
    column->setSpacing(gap);
    column->addWidget(BuildButtons());
    BuildTabs();
    column->addWidget(SSTab1_, 1);
    setCentralWidget(body);
    BuildStatusBar();
    BuildMenus();
    BuildDropTargets();
    txtGrid_ = new GridEdit([this](const std::function<void()>& action) { Run(action); },
                            [this] { return mirrors_; }, this);
    frmProgress2_ = new ProgressWindow("frmProgress2", Progress2, ProgressWindow::Manner::OnTop, this);
    frmProgressScan_ =
        new ProgressWindow("frmProgressScan", ProgressScan, ProgressWindow::Manner::Modal, this);
    setMinimumSize(fontMetrics().averageCharWidth() * 60, fontMetrics().height() * 16);
    Mirror();
}

// The box that has the focus loses it while the pages go: that is no edit, and asks a window that stands yet.
frmMain::~frmMain() {
    mirrors_ = true;
    delete takeCentralWidget();
}

QWidget* frmMain::BuildButtons() {
    auto* bar = new QWidget(this);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* name) {
        auto* button = new QPushButton(bar);
        button->setObjectName(QLatin1String(name));
        connect(button, &QPushButton::clicked, this, [this, name] {
            // A mnemonic clicks without taking the focus.
            CommitOpenBox();
            Run([name] { CommandOf(name).Click(-1); });
        });
        row->addWidget(button);
        return button;
    };
    cmdReadAll_ = add("cmdReadAll");
    cmdReadAll_->setToolTip(QStringLiteral("Read everything from the Power-FC (Ctrl+R)"));
    QFont bold = cmdReadAll_->font();
    bold.setBold(true);
    cmdReadAll_->setFont(bold);
    cmdWriteAll_ = add("cmdWriteAll");
    cmdWriteAll_->setToolTip(QStringLiteral("Write everything to the Power-FC"));
    cmdUpdate_ = add("cmdUpdate");
    cmdUpdate_->setToolTip(QStringLiteral("Send what has changed (Ctrl+U)"));
    optAutoUpdate_ = new QCheckBox(bar);
    optAutoUpdate_->setObjectName(QStringLiteral("optAutoUpdate"));
    optAutoUpdate_->setToolTip(QStringLiteral("Send what has changed half a second after the last change"));
    connect(optAutoUpdate_, &QCheckBox::clicked, this, [this](bool checked) {
        Run([checked] {
            optAutoUpdate.Value = checked ? 1 : 0;
            CommandOf("optAutoUpdate").Click(-1);
        });
    });
    row->addSpacing(fontMetrics().height() / 2);
    row->addWidget(optAutoUpdate_);
    row->addStretch(1);
    return bar;
}

void frmMain::BuildTabs() {
    SSTab1_ = new TabRow(this);
    SSTab1_->setObjectName(QStringLiteral("SSTab1"));
    for (int tab = 0; tab < kTabs; ++tab) {
        QWidget* page = nullptr;
        if (tab < kMapTabs) {
            const auto run = [this](const std::function<void()>& action) {
                CommitOpenBox();
                Run(action);
            };
            const auto popup = [this](int map, const QPoint& place) { OpenGridMenu(map, place); };
            page = mapPages_[static_cast<std::size_t>(tab)] = new MapPage(tab, run, popup);
        } else if (tab == kGeneralTab) {
            page = new GeneralPage;
        } else {
            // Filled when it is first to be seen.
            page = new QWidget;
            auto* layout = new QVBoxLayout(page);
            layout->setContentsMargins(0, 0, 0, 0);
        }
        holders_[static_cast<std::size_t>(tab)] = page;
        SSTab1_->addTab(page, QString());
    }
    connect(SSTab1_, &QTabWidget::currentChanged, this, [this](int tab) { TabChanged(tab); });
    connect(SSTab1_, &QTabWidget::tabBarClicked, this, [this](int tab) {
        if (tab >= 0 && tab == SSTab1_->currentIndex()) FocusTab(tab);
    });
}

// Files dropped on the tabs are opened one after the other, of those dropped elsewhere only the first.
void frmMain::BuildDropTargets() {
    const auto add = [this](QWidget* target, void (*drop)(const std::vector<std::string>& files)) {
        new DropTarget(target, [this, drop](const std::vector<std::string>& files) {
            CommitOpenBox();
            Run([&] { drop(files); });
        });
    };
    add(this, Form_OLEDragDrop);
    add(SSTab1_, SSTab1_OLEDragDrop);
    // For whoever surveys the lengths of blocks; nothing shows it.
    auto* survey = new QPlainTextEdit(QStringLiteral("Drop .dat \nhere\n"), centralWidget());
    survey->setObjectName(QStringLiteral("txtRnD"));
    survey->setReadOnly(true);
    survey->hide();
    add(survey, txtRnD_OLEDragDrop);
}

void frmMain::BuildStatusBar() {
    const auto add = [this](const char* name, int stretch) {
        auto* label = new QLabel(this);
        label->setObjectName(QLatin1String(name));
        label->setTextFormat(Qt::PlainText);
        label->setContentsMargins(fontMetrics().height() / 3, 0, fontMetrics().height() / 3, 0);
        statusBar()->addWidget(label, stretch);
        return label;
    };
    lblPort_ = add("lblPort", 0);
    lblInterface_ = add("lblInterface", 0);
    lblBuild_ = add("lblBuild", 1);
    lblUnsent_ = add("lblUnsent", 0);
}

SettingsPage* frmMain::BuildPage(int tab) {
    const auto at = static_cast<std::size_t>(tab);
    if (settingsPages_[at] == nullptr) {
        settingsPages_[at] = new SettingsPage(
            tab, {.Run = [this](const std::function<void()>& action) { Run(action); },
                  .LeaveControls = [this] { SSTab1_->tabBar()->setFocus(); },
                  .OpenFrameMenu = [this](int frame, const QPoint& place) { OpenFrameMenu(frame, place); },
                  .Mirrors = [this] { return mirrors_; }});
        holders_[at]->layout()->addWidget(settingsPages_[at]);
    }
    return settingsPages_[at];
}

void frmMain::BuildAllPages() {
    for (int tab = kFirstSettingsTab; tab < kGeneralTab; ++tab) BuildPage(tab);
}

void frmMain::Run(const std::function<void()>& action) {
    action();
    Mirror();
}

void frmMain::CommitOpenBox() {
    // What an input method still composes is typed, too.
    QGuiApplication::inputMethod()->commit();
    if (txtGrid.Visible) Run(txtGrid_LostFocus);
    for (SettingsPage* page : settingsPages_) {
        if (page != nullptr) page->CommitEdited();
    }
}

void frmMain::Mirror() {
    // Mirroring may make widgets show or hide, and with that lose the focus.
    if (mirrors_) return;
    mirrors_ = true;
    RefreshUndoItems();
    MirrorTitle();
    MirrorTabs();
    MirrorPages();
    MirrorButtons();
    MirrorStatusBar();
    MirrorMenus();
    mirrors_ = false;
    if (std::exchange(tabMoved_, false)) FocusTab(SSTab1.Tab);
    txtGrid_->Mirror(EditMap >= 0 ? mapPages_[static_cast<std::size_t>(EditMap)]->GridView() : nullptr);
    frmProgress2_->Mirror();
    frmProgressScan_->Mirror();
    CloseIfAsked();
}

void frmMain::MirrorTitle() {
    const std::string& title = MainFormState.Caption;
    if (title == title_ && !title.empty()) return;
    title_ = title;
    // A file may be called "[*]"; what Qt puts a mark in place of stands there twice.
    const QString mark = QStringLiteral("[*]");
    setWindowTitle(title.empty() ? QStringLiteral("Zandrel") : Shown(title).replace(mark, mark + mark));
}

void frmMain::MirrorTabs() {
    const QSignalBlocker quiet(SSTab1_);
    bool changed = false;
    for (int tab = 0; tab < kTabs; ++tab) {
        const auto at = static_cast<std::size_t>(tab);
        const QString caption = WithoutMnemonic(SSTab1.TabCaption[at]);
        const bool visible = SSTab1.TabVisible[at];
        if (SSTab1_->tabText(tab) == caption && SSTab1_->isTabVisible(tab) == visible) continue;
        changed = true;
        SSTab1_->setTabText(tab, caption);
        SSTab1_->setTabVisible(tab, visible);
    }
    if (changed) SSTab1_->FitCaptions();
    if (SSTab1_->currentIndex() == SSTab1.Tab) return;
    if (SSTab1.Tab >= kFirstSettingsTab && SSTab1.Tab < kGeneralTab) BuildPage(SSTab1.Tab);
    SSTab1_->setCurrentIndex(SSTab1.Tab);
    tabMoved_ = true;
}

void frmMain::MirrorPages() {
    for (MapPage* page : mapPages_) page->Mirror();
    for (std::size_t tab = kFirstSettingsTab; tab < kGeneralTab; ++tab) {
        if (settingsPages_[tab] != nullptr) settingsPages_[tab]->Mirror();
    }
}

void frmMain::MirrorButtons() {
    MirrorButton(cmdReadAll_, cmdReadAll, "cmdReadAll");
    MirrorButton(cmdWriteAll_, cmdWriteAll, "cmdWriteAll");
    MirrorButton(cmdUpdate_, cmdUpdate, "cmdUpdate");
    MirrorButton(optAutoUpdate_, optAutoUpdate, "optAutoUpdate");
    if (optAutoUpdate_->isChecked() != (optAutoUpdate.Value != 0)) {
        optAutoUpdate_->setChecked(optAutoUpdate.Value != 0);
    }
}

void frmMain::MirrorStatusBar() {
    ShowIfOther(lblPort_, PortInWords());
    // Before the first reading the interface's version is what it was the last time.
    ShowIfOther(lblInterface_, QStringLiteral("Interface ") + Printable(CorvaneVer) +
                                   (VerName.empty() ? QStringLiteral(" (not asked yet)") : QString()));
    ShowIfOther(lblBuild_, VerName.empty() && VerNumber.empty()
                               ? QStringLiteral("No Power-FC read yet")
                               : Printable(VerName) + QStringLiteral(" v") + Printable(VerNumber));
    ShowIfOther(lblUnsent_, UnsentInWords());
}

void frmMain::TabChanged(int tab) {
    if (tab < 0) return;
    if (tab >= kFirstSettingsTab && tab < kGeneralTab) BuildPage(tab);
    SSTab1.Tab = tab;
    // A window in the background tells nobody that the focus has gone.
    CommitOpenBox();
    Run(SSTab1_Click);
    FocusTab(tab);
}

// The map itself, or the tab strip: a press on a tab leaves whatever box had the focus.
void frmMain::FocusTab(int tab) {
    if (tab < kMapTabs) {
        mapPages_[static_cast<std::size_t>(tab)]->GridView()->setFocus();
    } else {
        SSTab1_->tabBar()->setFocus();
    }
}

void frmMain::mousePressEvent(QMouseEvent* event) {
    SSTab1_->tabBar()->setFocus();
    QMainWindow::mousePressEvent(event);
}

void frmMain::setVisible(bool visible) {
    if (visible && !placed_) {
        placed_ = true;
        PlaceWindow();
    }
    QMainWindow::setVisible(visible);
}

void frmMain::PlaceWindow() {
    const MainForm& form = MainFormState;
    const auto pixels = [](float twips) { return static_cast<int>(std::lround(twips / kTwipsAPixel)); };
    const QRect wanted(pixels(form.Left), pixels(form.Top), pixels(form.Width), pixels(form.Height));
    normalPlace_ = KeptOn(ScreenFor(wanted), wanted);
    resize(normalPlace_.size());
    move(normalPlace_.topLeft());
    if (form.WindowState == 2) setWindowState(Qt::WindowMaximized);
    if (form.WindowState == 1) setWindowState(Qt::WindowMinimized);
}

// Follows the window while it is normal, for the day when it closes maximised.
void frmMain::KeepPlace() {
    if (!placed_ || !isVisible() ||
        (windowState() & (Qt::WindowMaximized | Qt::WindowMinimized | Qt::WindowFullScreen))) {
        return;
    }
    normalPlace_ = QRect(pos(), size());
}

void frmMain::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    KeepPlace();
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    KeepPlace();
}

void frmMain::SavePlace() {
    MainForm& form = MainFormState;
    form.Left = static_cast<float>(normalPlace_.left()) * kTwipsAPixel;
    form.Top = static_cast<float>(normalPlace_.top()) * kTwipsAPixel;
    form.Width = static_cast<float>(normalPlace_.width()) * kTwipsAPixel;
    form.Height = static_cast<float>(normalPlace_.height()) * kTwipsAPixel;
    form.WindowState = isMinimized() ? 1 : isMaximized() ? 2 : 0;
}

void frmMain::closeEvent(QCloseEvent* event) {
    if (unloaded_) {
        event->accept();
        return;
    }
    event->ignore();
    if (LongOperationRuns()) {
        // The operation looks at its cancel flag between two exchanges; the window goes once it has ended.
        Progress2.Cancelled = ProgressScan.Cancelled = true;
        CloseAsked = true;
        return;
    }
    CloseAsked = false;
    CommitOpenBox();
    if (!frmMain_QueryUnload()) {
        Mirror();
        return;
    }
    SavePlace();
    frmMain_Unload();
    unloaded_ = true;
    event->accept();
    QCoreApplication::quit();
}

void frmMain::CloseIfAsked() {
    if (!CloseAsked || LongOperationRuns()) return;
    CloseAsked = false;
    QTimer::singleShot(0, this, [this] { close(); });
}

}  // namespace zandrel
