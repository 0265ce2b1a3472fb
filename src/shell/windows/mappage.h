// One map tab of the main window: the selectors and the buttons of the map above its grid.
#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QPushButton;

namespace zandrel {

class MapGridView;

class MapPage : public QWidget {
  public:
    /// `run` runs an action of the user and shows what came of it.
    using Runner = std::function<void(const std::function<void()>& action)>;
    using Popup = std::function<void(int map, const QPoint& place)>;
    MapPage(int map, Runner run, Popup popup, QWidget* parent = nullptr);

    void Mirror();
    MapGridView* GridView() const { return grid_; }

  protected:
    void mousePressEvent(QMouseEvent* event) override;

  private:
    void MirrorSelector();
    void MirrorSplit();
    void MirrorButtons();

    int map_;
    Runner run_;
    QComboBox* comMapType_;
    QCheckBox* chkSplit_;
    QPushButton* cmdReadMap_;
    QPushButton* cmdWriteMap_;
    MapGridView* grid_;
    std::vector<std::string> items_;
    std::string splitCaption_;
};

}  // namespace zandrel
