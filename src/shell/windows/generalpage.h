// The general tab: what the program is, and what it asks its user to mind.
#pragma once

#include <QScrollArea>

namespace zandrel {

class GeneralPage : public QScrollArea {
  public:
    explicit GeneralPage(QWidget* parent = nullptr);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QWidget* panel_;
};

}  // namespace zandrel
