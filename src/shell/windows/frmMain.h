// The main window: buttons, tabs, menus and status bar over the records of the floors below. Its handlers
// call the logic and then mirror what came of it.
#pragma once

#include <QMainWindow>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "tuning/settings.h"
#include "util/controls.h"

class QAction;
class QCheckBox;
class QLabel;
class QMenu;
class QPushButton;

namespace zandrel {

class GridEdit;
class ProgressWindow;
class MapPage;
class SettingsPage;
class TabRow;

class frmMain : public QMainWindow {
  public:
    /// Builds the window from the records as they are; `LoadDesign` comes before it.
    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    /// Brings every widget of every window in step with the records; touches only what has changed.
    void Mirror();

    /// Builds the settings pages that have not been needed yet.
    void BuildAllPages();

    /// True while the port menu fills itself.
    bool MenuOpens() const { return menuOpens_; }

    /// The first time it also puts the window where `MainFormState` says.
    void setVisible(bool visible) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    struct BoundAction {
        QAction* Action;
        QMenu* Menu;
        const MenuItem* Record;
        bool Handled;
        std::string Caption;
        std::string Tag = {};
    };

    // Runs what the user asked for, then shows what came of it.
    void Run(const std::function<void()>& action);
    void CloseIfAsked();

    // Stores what stands in an open box; a command works on the image, not on what is being typed.
    void CommitOpenBox();

    QWidget* BuildButtons();
    void BuildTabs();
    void BuildDropTargets();
    void BuildStatusBar();
    SettingsPage* BuildPage(int tab);

    void BuildMenus();
    void BuildFileMenu();
    void OpenSnapshotMenu();
    void BuildEditMenu();
    void BuildPowerFcMenu();
    void BuildFrameMenu();
    void BuildPortMenu();
    void BuildSetupMenu();
    void BuildMapsMenu();
    void BuildHelpMenu();
    void BuildKeys();
    QAction* AddItem(QMenu* menu, const char* name, const MenuItem& record, int index = -1);
    QString CaptionOf(const BoundAction& item) const;
    QAction* AddCommand(QMenu* menu, const char* name, const QString& caption,
                        const std::function<void()>& action);
    void OpenPortMenu();
    void ShowAbout();
    void ToggleFirstPort(bool open);
    void RunOnMapInView(const char* name);
    void OpenGridMenu(int map, const QPoint& place);
    void OpenFrameMenu(int frame, const QPoint& place);

    void MirrorTitle();
    void MirrorTabs();
    void MirrorPages();
    void MirrorButtons();
    void MirrorStatusBar();
    void MirrorMenus();

    void TabChanged(int tab);
    void FocusTab(int tab);
    void PlaceWindow();
    void KeepPlace();
    void SavePlace();

    TabRow* SSTab1_ = nullptr;
    std::array<MapPage*, kMapTabs> mapPages_{};
    std::array<QWidget*, kTabs> holders_{};  // pages of SSTab1
    std::array<SettingsPage*, kTabs> settingsPages_{};
    QPushButton* cmdReadAll_ = nullptr;
    QPushButton* cmdWriteAll_ = nullptr;
    QPushButton* cmdUpdate_ = nullptr;
    QCheckBox* optAutoUpdate_ = nullptr;
    QLabel* lblPort_ = nullptr;
    QLabel* lblInterface_ = nullptr;
    QLabel* lblBuild_ = nullptr;
    QLabel* lblUnsent_ = nullptr;
    GridEdit* txtGrid_ = nullptr;
    QMenu* mnuOpenSnapshot_ = nullptr;
    QAction* mnuRecentFileSep_ = nullptr;
    QAction* mnuReadAll_ = nullptr;
    QAction* mnuReadMap_ = nullptr;
    QAction* mnuWriteAll_ = nullptr;
    QAction* mnuWriteMap_ = nullptr;
    QAction* mnuUpdate_ = nullptr;
    QAction* mnuSep4_ = nullptr;
    QMenu* mnuSetupMaps_ = nullptr;
    QMenu* mnuPopUp1_ = nullptr;
    QAction* mnuScan_ = nullptr;
    QAction* mnuAbout_ = nullptr;
    QMenu* mnuSetupBaseMap_ = nullptr;
    std::vector<BoundAction> items_;
    ProgressWindow* frmProgress2_ = nullptr;
    ProgressWindow* frmProgressScan_ = nullptr;

    std::string title_;
    bool menuOpens_ = false;
    bool mirrors_ = false;
    bool tabMoved_ = false;  // by the logic, not by the user
    bool popupOpens_ = false;
    bool placed_ = false;
    bool unloaded_ = false;
    QRect normalPlace_;  // left and top of the frame, size of the content
};

}  // namespace zandrel
