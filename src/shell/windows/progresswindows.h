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

/// frmProgress2 stands modeless on top, frmProgressScan is modal.
class ProgressWindow : public QDialog {
  public:
    enum class Manner { OnTop, Modal };
    ProgressWindow(const char* name, ProgressForm& record, Manner manner, QWidget* over);

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

}  // namespace zandrel
