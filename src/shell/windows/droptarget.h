// A widget that takes data files dragged onto it from the desktop. While they are over it, a frame shows
// where they will land.
#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

class QDropEvent;
class QMimeData;
class QWidget;

namespace zandrel {

class DropTarget : public QObject {
  public:
    using Drop = std::function<void(const std::vector<std::string>& files)>;

    /// `drop` runs with the paths of what was dropped, once the desktop has its answer.
    DropTarget(QWidget* target, Drop drop);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    bool Takes(const QDropEvent& event) const;
    void Land(const QMimeData& data);

    QWidget* target_;
    QWidget* frame_;
    Drop drop_;
};

/// The paths of the local files in `data`. Empty if the first one is not local.
std::vector<std::string> FilesIn(const QMimeData& data);

}  // namespace zandrel
