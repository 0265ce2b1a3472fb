// The tabs of the main window in one row: their captions become a little smaller where the window is too
// narrow for all of them.
#pragma once

#include <QTabWidget>

namespace zandrel {

class TabRow : public QTabWidget {
  public:
    explicit TabRow(QWidget* parent = nullptr);

    /// Fits the captions to the width. To be called when tabs have come or gone.
    void FitCaptions();

  protected:
    void resizeEvent(QResizeEvent* event) override;
};

}  // namespace zandrel
