// The notes of the image: lines on the screen, texts that end with CR LF in the record.
#pragma once

#include <QPlainTextEdit>
#include <functional>
#include <string>

class QTimer;

namespace zandrel {

class NotesEdit : public QPlainTextEdit {
  public:
    /// Notes of more characters are shown in part and can't be edited here.
    static constexpr int kLongest = 1 << 18;

    /// `edited` gets the whole text after each edit of the user's; `rest` runs a second after the first of
    /// some, and when the box is left.
    NotesEdit(std::function<void(const std::string& notes)> edited, std::function<void()> rest,
              QWidget* parent = nullptr);

    /// Shows other notes. The way back of the editor ends there.
    void ShowNotes(const std::string& notes);

    /// Notes that are locked, or too long, can be read and copied from.
    void Lock(bool locked);
    bool TooLong() const { return tooLong_; }

  protected:
    bool event(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;

  private:
    QString Lines() const;
    void TextChanged();
    void Replace(const std::string& text);

    void Rest();

    std::function<void(const std::string& notes)> edited_;
    std::function<void()> rest_;
    QTimer* pause_;
    QString last_;  // as shown or told last
    bool shows_ = false;
    bool tooLong_ = false;
};

}  // namespace zandrel
