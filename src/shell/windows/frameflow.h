// A layout that lets frames of unequal height flow in columns: as many columns as the width has room for,
// each frame at the highest free place, in their order. Hidden frames take no room.
#pragma once

#include <QLayout>
#include <vector>

namespace zandrel {

class FrameFlow : public QLayout {
  public:
    explicit FrameFlow(QWidget* parent = nullptr);
    ~FrameFlow() override;

    void addItem(QLayoutItem* item) override;
    int count() const override;
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;

    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

  private:
    struct Place {
        QLayoutItem* Item;
        QRect Rect;
    };
    struct Plan {
        std::vector<Place> Places;
        int Height = 0;
        int Cost = 0;
    };
    Plan PlanFor(int width, int columns) const;
    Plan BestPlan(int width) const;
    int Gap() const;

    std::vector<QLayoutItem*> items_;
};

}  // namespace zandrel
