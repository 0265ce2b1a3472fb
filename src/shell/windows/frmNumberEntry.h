// The one-number dialog: a number in its picture, OK and Cancel.
#pragma once

#include <QDialog>
#include <functional>
#include <string>

#include "util/desktop.h"

class QLineEdit;

namespace zandrel {

class frmNumberEntry : public QDialog {
  public:
    using Done = std::function<void(const std::string& text)>;
    frmNumberEntry(NumberEntry entry, Done done, QWidget* over);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void Reformat();

    NumberEntry entry_;
    QLineEdit* txtNumber_;
};

}  // namespace zandrel
