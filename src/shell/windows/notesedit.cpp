#include "shell/windows/notesedit.h"

#include <QApplication>
#include <QMimeData>
#include <QTextDocument>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "shell/windows/gridedit.h"
#include "shell/windows/shown.h"
#include "util/codepage.h"

namespace zandrel {
namespace {

// As much of `notes` as is shown: whole lines where there are any.
std::string Beginning(const std::string& notes) {
    const std::size_t end = notes.rfind("\r\n", NotesEdit::kLongest);
    if (end != std::string::npos && end > 0) return notes.substr(0, end);
    std::size_t cut = NotesEdit::kLongest;
    while (cut > 0 && (static_cast<unsigned char>(notes[cut]) & 0xC0) == 0x80) --cut;  // within a character
    return notes.substr(0, cut);
}

}  // namespace

NotesEdit::NotesEdit(std::function<void(const std::string& notes)> edited, std::function<void()> rest,
                     QWidget* parent)
    : QPlainTextEdit(parent), edited_(std::move(edited)), rest_(std::move(rest)), pause_(new QTimer(this)) {
    constexpr int kPauseMs = 1000;
    pause_->setSingleShot(true);
    pause_->setInterval(kPauseMs);
    connect(pause_, &QTimer::timeout, this, [this] { rest_(); });
    setTabChangesFocus(true);
    setAcceptDrops(false);  // a file that is dropped here is opened
    connect(this, &QPlainTextEdit::textChanged, this, [this] { TextChanged(); });
}

void NotesEdit::ShowNotes(const std::string& notes) {
    shows_ = true;
    tooLong_ = notes.size() > kLongest;
    QString text = Shown(tooLong_ ? Beginning(notes) : notes);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    if (tooLong_) text += QStringLiteral("\n...");
    setPlainText(text);
    last_ = Lines();
    shows_ = false;
    Lock(false);
}

void NotesEdit::Lock(bool locked) {
    if (isReadOnly() != (locked || tooLong_)) setReadOnly(locked || tooLong_);
}

// The text as it was typed: the plain text of a document has common blanks in place of those that don't
// break.
QString NotesEdit::Lines() const {
    QString text = document()->toRawText();
    for (QChar& letter : text) {
        if (letter == QChar::ParagraphSeparator || letter == QChar::LineSeparator) letter = QLatin1Char('\n');
    }
    return text;
}

void NotesEdit::TextChanged() {
    if (shows_) return;
    QString text = Lines();
    if (text == last_) return;
    last_ = text;
    edited_(text.replace(QLatin1Char('\n'), QLatin1String("\r\n")).toStdString());
    if (!pause_->isActive()) pause_->start();
}

void NotesEdit::Rest() {
    if (!pause_->isActive()) return;
    pause_->stop();
    rest_();
}

bool NotesEdit::event(QEvent* event) {
    return TakesKey(*this, *event) || QPlainTextEdit::event(event);
}

// What a file can't hold is seen now, and not when the file is opened again.
void NotesEdit::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    if (isReadOnly()) return;
    const std::string text = Lines().toStdString();
    const std::string kept = FromCodePage(ToCodePage(text));
    if (kept != text) Replace(kept);
    Rest();
}

void NotesEdit::Replace(const std::string& text) {
    const int place = textCursor().position();
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    all.insertText(Shown(text));
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::min(place, document()->characterCount() - 1));
    setTextCursor(cursor);
}

void NotesEdit::insertFromMimeData(const QMimeData* source) {
    if (document()->characterCount() + source->text().size() > kLongest) {
        QApplication::beep();
        return;
    }
    QPlainTextEdit::insertFromMimeData(source);
}

}  // namespace zandrel
