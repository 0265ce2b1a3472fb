// The two progress windows. They mirror their records and answer with `Cancelled`, whether by the button,
// by Escape or by closing; the operation itself hides them.
#pragma once

#include <QDialog>
#include <string>

class QLabel;
class QProgressBar;
class QPushButton;

namespace zandrel {

struct ProgressForm;

class ProgressWindow : public QDialog {
  public:
    ProgressWindow(const char* name, ProgressForm& record, QWidget* over);

    void Mirror();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

  private:
    ProgressForm& record_;
    QLabel* lblStatus_;
    QProgressBar* bar_;
    QPushButton* cmdCancel_;
    std::string status_;
};

/// Auto detection and map writes: modeless and on top.
class frmProgress2 : public ProgressWindow {
  public:
    explicit frmProgress2(QWidget* over);
};

/// Version scan: modal.
class frmProgressScan : public ProgressWindow {
  public:
    explicit frmProgressScan(QWidget* over);
};

}  // namespace zandrel
