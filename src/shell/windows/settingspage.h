// One settings tab of the main window: its frames and controls, built once from the records and then only
// mirrored.
#pragma once

#include <QScrollArea>
#include <functional>
#include <string>
#include <vector>

#include "shell/windows/framelayout.h"
#include "util/controls.h"

class QGridLayout;
class QGroupBox;

namespace zandrel {

class SettingsPage : public QScrollArea {
  public:
    /// What a page asks of its window: to run an action and show what came of it, to take the focus away from
    /// the controls, and to open the menu of a frame.
    struct Window {
        std::function<void(const std::function<void()>& action)> Run;
        std::function<void()> LeaveControls;
        std::function<void(int frame, const QPoint& place)> OpenFrameMenu;
        std::function<bool()> Mirrors;  // a focus that is lost now was not left by the user
    };

    /// Builds the page of tab `tab` from the records as they are now.
    SettingsPage(int tab, Window window, QWidget* parent = nullptr);

    /// Brings the widgets in step with their records; touches only what has changed.
    void Mirror();

    /// Stores what was typed and not left yet, before a command works on the image. A window in the
    /// background has no focus to go by.
    void CommitEdited();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    enum class Kind { Text, Notes, Entry, Check, Option, Label, BlockText, Button };

    // A widget, the record that it shows, and what was shown last.
    struct Bound {
        Kind What;
        const char* Name;
        QWidget* Widget;
        const ControlArray* Array;  // nullptr: Single is the record
        int Index;
        const Control* Single;
        bool Handled;  // an edit or a click of it does something
        std::string Text;
        bool Visible = true;
        bool Enabled = true;
        std::uint32_t BackColour = 0;
        bool Stored = false;  // a command has stored the text already, while the box had the focus
        const Control& Record() const { return Single != nullptr ? *Single : (*Array)[Index]; }
    };
    struct BoundFrame {
        QGroupBox* Widget;
        int Index;
        std::string Caption;
        bool Visible = true;
        bool Enabled = true;
    };

    QGroupBox* BuildFrame(int frame);
    QWidget* BuildMember(int frame, const LayoutCell& cell, QWidget* parent);
    void AddTabText(int index, QWidget* parent, QLayout* layout);
    QWidget* Bind(Kind kind, QWidget* widget, const char* name, const ControlArray& array, int index);
    QWidget* BindSingle(Kind kind, QWidget* widget, const char* name, const Control& record);
    void MirrorFrame(BoundFrame& frame);
    void MirrorControl(Bound& bound);
    static void ShowText(const Bound& bound);
    void EditNotes(const std::string& notes);
    static void NameFlagOrOption(const Bound& bound);
    static QString ToolTipOf(const Bound& bound);

    bool ControlEvent(Bound& bound, QEvent* event);
    bool FrameEvent(int frame, QEvent* event);
    void Leave(Bound& bound);
    void ConnectClick(QWidget* widget, const char* name, int index);

    int tab_;
    Window window_;
    bool entered_ = false;  // Enter has stored a box already, which now loses the focus
    std::vector<BoundFrame> frames_;
    std::vector<Bound> bounds_;
};

/// True if a row of the rev and idle frames ends within the frame's height.
bool RowStandsInFrame(const Control& row, const Control& frame);

}  // namespace zandrel
