#include "shell/windows/settingspage.h"

#include <QCheckBox>
#include <QEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRadioButton>
#include <QStyle>
#include <QToolButton>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "files/journal.h"
#include "image/image.h"
#include "shell/windows/commands.h"
#include "shell/windows/frameflow.h"
#include "shell/windows/gridedit.h"
#include "shell/windows/notesedit.h"
#include "shell/windows/shown.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/settings.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

constexpr int kSwitchNamesBlock = 0xEB;     // second block of the long sensor set
constexpr char kBoundProperty[] = "bound";  // place of a widget's record in the page's list
constexpr char kFrameProperty[] = "frame";  // index of a frame

int GapOf(const QWidget* widget, double lines) {
    return std::max(1, static_cast<int>(widget->fontMetrics().height() * lines));
}

// A label that heads a number, such as "+80C" or "10000", stands flush with the numbers.
bool BeginsLikeNumber(const std::string& caption) {
    return !caption.empty() && std::string_view("+-0123456789").find(caption[0]) != std::string_view::npos;
}

int WidthOfField(const QLineEdit* edit, const std::string& tag) {
    // What the style adds around seventeen letters is what it adds around any text.
    const QFontMetrics metrics = edit->fontMetrics();
    const int around = edit->sizeHint().width() - 17 * metrics.horizontalAdvance(QLatin1Char('x'));
    return std::max(around, 8) + (FieldCharacters(tag) + 1) * metrics.horizontalAdvance(QLatin1Char('0'));
}

QLineEdit* NumberField(const std::string& tag, QWidget* parent) {
    auto* edit = new QLineEdit(parent);
    edit->setAlignment(Qt::AlignRight);
    edit->setAcceptDrops(false);  // what is dropped would stand there without the focus, and be left never
    edit->setMinimumWidth(WidthOfField(edit, tag));
    edit->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    edit->setMaximumWidth(edit->minimumWidth());
    return edit;
}

// Notes are journalled while they are typed; not if they were saved in the meantime.
void KeepNotes() {
    if (DataChanged) WriteJournal();
}

QLabel* PlainLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLabel* WrappedNote(QWidget* parent) {
    QLabel* note = PlainLabel(parent);
    note->setWordWrap(true);
    note->setFont(Scaled(note->font(), 0.9));
    return note;
}

QToolButton* CurveButton(QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setFont(Scaled(button->font(), 0.9));
    return button;
}

// Fields that stand in one column get one width, boxes and lines of text one height.
void EvenOutFields(QGridLayout* grid) {
    const int line = GapOf(grid->parentWidget(), 1.45);
    for (int column = 0; column < grid->columnCount(); ++column) {
        std::vector<QWidget*> fields;
        int width = 0;
        for (int row = 0; row < grid->rowCount(); ++row) {
            QLayoutItem* item = grid->itemAtPosition(row, column);
            if (item == nullptr || item->widget() == nullptr) continue;
            if (qobject_cast<QAbstractButton*>(item->widget()) != nullptr &&
                qobject_cast<QToolButton*>(item->widget()) == nullptr) {
                item->widget()->setMinimumHeight(line);
            }
            if (qobject_cast<QLineEdit*>(item->widget()) == nullptr) continue;
            fields.push_back(item->widget());
            width = std::max(width, item->widget()->minimumWidth());
        }
        for (QWidget* field : fields) field->setFixedWidth(width);
    }
}

int CurveOfRank(int frame, int rank) {
    for (const auto& [index, button] : cmdEditCurve) {
        if (button.Frame == frame && rank-- == 0) return index;
    }
    return -1;
}

std::string FlagName(int number) {
    return "Flag " + std::to_string(number + 1);
}

bool IsRevIdleFrame(int frame) {
    return frame == 120 || frame == 1120;
}

// A tab's own text is of use where its block holds names. On a build with a second base map the block of the
// short sensor names is a piece of that map.
bool HoldsNames(const Control& record) {
    const int block = static_cast<int>(LenientNumber(record.Tag));
    return (block == ExtraBlock || block == kSwitchNamesBlock) && !Printable(record.Caption).isEmpty();
}

bool IsShown(const Control& record, int index) {
    if (record.Frame < 0) return record.Visible && HoldsNames(record);
    if (!record.Visible) return false;
    if (!IsRevIdleFrame(record.Frame)) return true;
    return RowStandsInFrame(txtSetting[index], FraSettings[record.Frame]);
}

}  // namespace

bool RowStandsInFrame(const Control& row, const Control& frame) {
    return frame.Height <= 0 || row.Top + row.Height <= frame.Height;
}

SettingsPage::SettingsPage(int tab, Window window, QWidget* parent)
    : QScrollArea(parent), tab_(tab), window_(std::move(window)) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    auto* inner = new QWidget;
    auto* column = new QVBoxLayout(inner);
    const int gap = GapOf(this, 0.5);
    column->setContentsMargins(gap, gap, gap, gap);
    column->setSpacing(gap);
    for (const auto& [index, label] : lblSetting) {
        if (label.Frame < 0 && label.Tab == tab) AddTabText(index, inner, column);
    }
    auto* flow = new FrameFlow;
    flow->setContentsMargins(0, 0, 0, 0);
    flow->setSpacing(gap);
    for (const int frame : FramesOfTab(tab)) flow->addWidget(BuildFrame(frame));
    column->addLayout(flow);
    column->addStretch(1);
    setWidget(inner);
    Mirror();
}

void SettingsPage::AddTabText(int index, QWidget* parent, QLayout* layout) {
    QLabel* label = PlainLabel(parent);
    label->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    layout->addWidget(Bind(Kind::BlockText, label, "lblSetting", lblSetting, index));
}

QWidget* SettingsPage::Bind(Kind kind, QWidget* widget, const char* name, const ControlArray& array,
                            int index) {
    widget->setObjectName(MemberName(name, index));
    widget->setProperty(kBoundProperty, static_cast<int>(bounds_.size()));
    widget->installEventFilter(this);
    bounds_.push_back({kind, name, widget, &array, index, nullptr, HasHandler(name), {}});
    if (kind == Kind::Check || kind == Kind::Option) ConnectClick(widget, name, index);
    return widget;
}

// A click is tried on the record; what it then shows is what the image holds.
void SettingsPage::ConnectClick(QWidget* widget, const char* name, int index) {
    auto* button = static_cast<QAbstractButton*>(widget);
    connect(button, &QAbstractButton::clicked, this, [this, button, name, index](bool checked) {
        window_.Run([&] {
            if (!SettingsTakeFocus()) return;
            const bool option = qobject_cast<QRadioButton*>(button) != nullptr;
            Control& record = option                                   ? optSetting[index]
                              : std::string_view(name) == "chkSetting" ? chkSetting[index]
                                                                       : chkSettingBit[index];
            record.Value = option || checked ? 1 : 0;
            CommandOf(name).Click(index);
        });
    });
}

QWidget* SettingsPage::BindSingle(Kind kind, QWidget* widget, const char* name, const Control& record) {
    Bind(kind, widget, name, txtSetting, 0)->setObjectName(QLatin1String(name));
    bounds_.back().Array = nullptr;
    bounds_.back().Single = &record;
    return widget;
}

QGroupBox* SettingsPage::BuildFrame(int frame) {
    auto* box = new QGroupBox;
    box->setObjectName(MemberName("FraSettings", frame));
    box->setProperty(kFrameProperty, frame);
    box->installEventFilter(this);
    auto* grid = new QGridLayout(box);
    const int gap = GapOf(this, 0.3);
    grid->setHorizontalSpacing(gap * 2);
    grid->setVerticalSpacing(gap);
    grid->setContentsMargins(gap * 2, gap * 2, gap * 2, gap * 2);
    int columns = 0;
    QLabel* rowLabel = nullptr;
    int labelRow = -1;
    for (const LayoutCell& cell : LayoutOfFrame(frame)) {
        columns = std::max(columns, cell.Column + cell.Columns);
        if (cell.Kind == '|') {
            grid->setColumnMinimumWidth(cell.Column, gap * 2);
            continue;
        }
        QWidget* widget = BuildMember(frame, cell, box);
        if (cell.Kind == 'L' && !cell.InHeadRow) {
            rowLabel = static_cast<QLabel*>(widget);
            labelRow = cell.Row;
        } else if (cell.Kind == 't' && cell.Row == labelRow && rowLabel->buddy() == nullptr) {
            rowLabel->setBuddy(widget);
        }
        Qt::Alignment alignment = Qt::AlignVCenter;
        auto* label = qobject_cast<QLabel*>(widget);
        if (label != nullptr && cell.InHeadRow) {
            label->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
            if (cell.Row > 0) label->setMinimumHeight(GapOf(label, 1.45));
        } else if (label != nullptr && !label->wordWrap() && cell.Kind == 'L' &&
                   BeginsLikeNumber(bounds_.back().Record().Caption)) {
            label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        } else if (cell.Kind == 't' || cell.Kind == 'k' || cell.Kind == 'e') {
            alignment |= Qt::AlignLeft;
        }
        if (cell.Kind == 'n' || (label != nullptr)) alignment = {};
        grid->addWidget(widget, cell.Row, cell.Column, 1, cell.Columns, alignment);
    }
    EvenOutFields(grid);
    // What is to spare stands right of the fields; notes take it.
    const bool hasNotes = frame == 550 || frame == 560;
    grid->setColumnStretch(hasNotes ? columns - 1 : columns, 1);
    grid->setRowStretch(grid->rowCount(), 1);
    frames_.push_back({box, frame, {}});
    return box;
}

QWidget* SettingsPage::BuildMember(int frame, const LayoutCell& cell, QWidget* parent) {
    const int index = frame + cell.Number;
    switch (cell.Kind) {
        case 'L': {
            const bool revIdle = IsRevIdleFrame(frame);
            return Bind(Kind::Label, PlainLabel(parent), revIdle ? "lblRevIdle" : "lblGeneral",
                        revIdle ? lblRevIdle : lblGeneral, index);
        }
        case 't':
            return Bind(Kind::Text, NumberField(txtSetting[index].Tag, parent), "txtSetting", txtSetting,
                        index);
        case 'c': {
            auto* check = new QCheckBox(parent);
            // A flag without a name of its own, in a block or anywhere, goes by its number.
            if (!ControlExists(lblSetting, index)) check->setText(Shown(FlagName(cell.Number)));
            return Bind(Kind::Check, check, "chkSetting", chkSetting, index);
        }
        case 'b':
            return Bind(Kind::Check, new QCheckBox(parent), "chkSettingBit", chkSettingBit, index);
        case 'o': {
            auto* option = new QRadioButton(parent);
            option->setAutoExclusive(false);
            return Bind(Kind::Option, option, "optSetting", optSetting, index);
        }
        case 's': {
            QLabel* label = PlainLabel(parent);
            label->setTextInteractionFlags(Qt::TextSelectableByMouse);
            const int letters = static_cast<int>(LenientNumber(Split(lblSetting[index].Tag, ',')[2]));
            label->setMinimumWidth(label->fontMetrics().averageCharWidth() * letters);
            return Bind(Kind::BlockText, label, "lblSetting", lblSetting, index);
        }
        case 'k':
            return Bind(Kind::Button, CurveButton(parent), "cmdEditCurve", cmdEditCurve,
                        CurveOfRank(frame, cell.Number));
        case 'a': {
            QLabel* label = cell.Number == 2 ? WrappedNote(parent) : PlainLabel(parent);
            return Bind(Kind::Label, label, "lblAntiLag", lblAntiLag, cell.Number);
        }
        case 'p':
            return BindSingle(Kind::Label, WrappedNote(parent), "lblInternalPullups", lblInternalPullups);
        case 'e': {
            auto* entry = new QLineEdit(parent);
            entry->setMaxLength(8);
            entry->setAcceptDrops(false);
            entry->setFixedWidth(entry->fontMetrics().horizontalAdvance(QLatin1String("WWWWWWWW")) +
                                 GapOf(entry, 1));
            return BindSingle(Kind::Entry, entry, "Text1", Text1);
        }
        case 'n': {
            auto* notes =
                new NotesEdit([this](const std::string& text) { EditNotes(text); }, KeepNotes, parent);
            notes->setMinimumSize(notes->fontMetrics().averageCharWidth() * 36, GapOf(notes, 6));
            notes->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
            notes->setMaximumHeight(notes->minimumHeight());
            return BindSingle(Kind::Notes, notes, "txtNotes", txtNotes);
        }
        default: {
            QLabel* heading = PlainLabel(parent);
            heading->setText(Shown(cell.Heading));
            return heading;
        }
    }
}

void SettingsPage::Mirror() {
    for (BoundFrame& frame : frames_) MirrorFrame(frame);
    for (Bound& bound : bounds_) MirrorControl(bound);
}

void SettingsPage::MirrorFrame(BoundFrame& frame) {
    const Control& record = FraSettings[frame.Index];
    if (record.Caption != frame.Caption) {
        frame.Caption = record.Caption;
        frame.Widget->setTitle(WithoutMnemonic(record.Caption));
    }
    if (record.Enabled != frame.Enabled) {
        frame.Enabled = record.Enabled;
        frame.Widget->setEnabled(record.Enabled);
    }
    if (record.Visible != frame.Visible) {
        frame.Visible = record.Visible;
        frame.Widget->setVisible(record.Visible);
    }
}

void SettingsPage::MirrorControl(Bound& bound) {
    const Control& record = bound.Record();
    const bool isText = bound.What == Kind::Text || bound.What == Kind::Notes || bound.What == Kind::Entry;
    const std::string& text = isText ? record.Text : record.Caption;
    if (text != bound.Text) {
        bound.Text = text;
        ShowText(bound);
    }
    if (bound.What == Kind::Check || bound.What == Kind::Option) {
        auto* button = static_cast<QAbstractButton*>(bound.Widget);
        if (button->isChecked() != (record.Value != 0)) button->setChecked(record.Value != 0);
    }
    const bool visible = IsShown(record, bound.Index);
    if (visible != bound.Visible) {
        bound.Visible = visible;
        bound.Widget->setVisible(visible);
    }
    const bool needsHandler = bound.What == Kind::Button || bound.What == Kind::Entry;
    const bool enabled = record.Enabled && (bound.Handled || !needsHandler);
    if (enabled != bound.Enabled) {
        bound.Enabled = enabled;
        bound.Widget->setEnabled(enabled);
    }
    if (bound.What == Kind::Text && record.BackColour != bound.BackColour) {
        bound.BackColour = record.BackColour;
        QPalette palette;
        if (record.BackColour != 0) {
            palette.setColor(QPalette::Base, ColourOf(record.BackColour));
            palette.setColor(QPalette::Text, ReadableOn(ColourOf(record.BackColour)));
        }
        bound.Widget->setPalette(palette);
    }
    if ((bound.What == Kind::Text || bound.What == Kind::Entry) && bound.Handled) {
        auto* edit = static_cast<QLineEdit*>(bound.Widget);
        const bool locked = record.Locked || !SettingsTakeFocus();
        if (edit->isReadOnly() != locked) edit->setReadOnly(locked);
    }
    if (bound.What == Kind::Notes) {
        static_cast<NotesEdit*>(bound.Widget)->Lock(record.Locked || !SettingsTakeFocus());
    }
}

void SettingsPage::ShowText(const Bound& bound) {
    switch (bound.What) {
        case Kind::Text:
        case Kind::Entry:
            static_cast<QLineEdit*>(bound.Widget)->setText(Shown(bound.Text));
            break;
        case Kind::Notes:
            static_cast<NotesEdit*>(bound.Widget)->ShowNotes(bound.Text);
            break;
        case Kind::Check:
        case Kind::Option:
        case Kind::Button:
            static_cast<QAbstractButton*>(bound.Widget)->setText(WithoutMnemonic(bound.Text));
            break;
        case Kind::Label:
            static_cast<QLabel*>(bound.Widget)->setText(Shown(bound.Text));
            break;
        case Kind::BlockText:
            static_cast<QLabel*>(bound.Widget)->setText(Printable(bound.Text));
            NameFlagOrOption(bound);
            break;
    }
}

// Each letter counts at once: notes have no end that could be missed.
void SettingsPage::EditNotes(const std::string& notes) {
    for (Bound& bound : bounds_) {
        if (bound.What == Kind::Notes) bound.Text = notes;
    }
    txtNotes.Text = notes;
    window_.Run([] { CommandOf("txtNotes").Click(-1); });
}

// The box or option that stands beside the text of a block is called by it.
void SettingsPage::NameFlagOrOption(const Bound& bound) {
    for (const char* array : {"chkSetting", "optSetting"}) {
        auto* button = bound.Widget->parentWidget()->findChild<QAbstractButton*>(
            MemberName(array, bound.Index), Qt::FindDirectChildrenOnly);
        if (button != nullptr) button->setAccessibleName(Printable(bound.Text));
    }
}

QString SettingsPage::ToolTipOf(const Bound& bound) {
    const Control& record = bound.Record();
    if (!record.ToolTip.empty()) return Shown(record.ToolTip);
    if (bound.What == Kind::Notes && static_cast<NotesEdit*>(bound.Widget)->TooLong()) {
        return QStringLiteral("These notes are too long to be edited here; they are kept as they are.");
    }
    if (bound.What == Kind::Button || bound.What == Kind::Entry) {
        return bound.Handled ? QString() : QString::fromUtf8(CommandOf(bound.Name).Later);
    }
    // Boxes that can be read but not changed look as usual: the tool tip says it.
    const QString field = FieldToolTip(record.Tag);
    const QString later = QString::fromUtf8(CommandOf(bound.Name).Later);
    if (bound.Handled || later.isEmpty()) return field;
    return field.isEmpty() ? later : field + QLatin1Char('\n') + later;
}

// The box has lost the focus: what was typed goes into the image, and the box shows what is stored.
void SettingsPage::Leave(Bound& bound) {
    if (!bound.Handled || !SettingsTakeFocus()) return;
    auto* edit = static_cast<QLineEdit*>(bound.Widget);
    bound.Text = edit->text().toStdString();
    edit->setModified(false);
    const int index = bound.Index;
    if (bound.What == Kind::Text) {
        if (!txtSetting[index].Locked) {
            txtSetting[index].Text = bound.Text;
            window_.Run([index] { CommandOf("txtSetting").Click(index); });
        }
    } else {
        Text1.Text = bound.Text;
        window_.Run([] { CommandOf("Text1").Click(-1); });
    }
}

void SettingsPage::CommitEdited() {
    for (Bound& bound : bounds_) {
        const bool isBox = bound.What == Kind::Text || bound.What == Kind::Entry;
        if (!isBox || !static_cast<QLineEdit*>(bound.Widget)->isModified()) continue;
        Leave(bound);
        bound.Stored = bound.Widget->hasFocus();
    }
}

bool SettingsPage::ControlEvent(Bound& bound, QEvent* event) {
    const bool clicks = bound.What == Kind::Check || bound.What == Kind::Option;
    const bool isBox = bound.What == Kind::Text || bound.What == Kind::Entry;
    if (isBox && TakesKey(*static_cast<QLineEdit*>(bound.Widget), *event)) return true;
    switch (event->type()) {
        case QEvent::ToolTip: {
            const QString text = ToolTipOf(bound);
            if (text.isEmpty()) return false;
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, bound.Widget);
            return true;
        }
        case QEvent::FocusIn:
            bound.Stored = false;
            if ((isBox || clicks || bound.What == Kind::Notes) && !SettingsTakeFocus())
                window_.LeaveControls();
            return false;
        case QEvent::FocusOut:
            // What is half typed when its box goes belongs to nothing any more: the record shows again.
            if (isBox && window_.Mirrors()) ShowText(bound);
            if (isBox && !entered_ && !window_.Mirrors() &&
                IsLeft(static_cast<QFocusEvent*>(event)->reason())) {
                const bool stored = bound.Stored && !static_cast<QLineEdit*>(bound.Widget)->isModified();
                bound.Stored = false;
                if (!stored) Leave(bound);
            }
            return false;
        case QEvent::KeyPress: {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (!isBox || (key != Qt::Key_Return && key != Qt::Key_Enter)) return false;
            // Enter stores once; that the focus goes then is no second leave.
            if (bound.What == Kind::Text) {
                Leave(bound);
                entered_ = true;
            }
            window_.LeaveControls();
            entered_ = false;
            return true;
        }
        case QEvent::MouseButtonRelease:
            if (bound.What == Kind::BlockText && bound.Handled &&
                static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
                CommandOf(bound.Name).Click(bound.Index);
            return false;
        default:
            return false;
    }
}

// A click beside the controls stores the box that was open; the right button opens the frame's menu.
bool SettingsPage::FrameEvent(int frame, QEvent* event) {
    if (event->type() != QEvent::MouseButtonPress || !FraSettings[frame].Enabled) return false;
    const auto* press = static_cast<QMouseEvent*>(event);
    window_.LeaveControls();
    if (press->button() == Qt::RightButton) window_.OpenFrameMenu(frame, press->globalPosition().toPoint());
    return true;
}

bool SettingsPage::eventFilter(QObject* object, QEvent* event) {
    bool taken = false;
    if (const QVariant place = object->property(kBoundProperty); place.isValid()) {
        taken = ControlEvent(bounds_[static_cast<std::size_t>(place.toInt())], event);
    } else if (const QVariant frame = object->property(kFrameProperty); frame.isValid()) {
        taken = FrameEvent(frame.toInt(), event);
    }
    return taken || QScrollArea::eventFilter(object, event);
}

}  // namespace zandrel
