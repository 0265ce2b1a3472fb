// A layout that lets frames of unequal size flow in columns, down the first, then down the next, so that the
// page becomes as short as its width allows. Hidden frames take no room.
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
        QSize Wanted;
        std::size_t Column = 0;
        QRect Rect = {};
    };
    struct Plan {
        std::vector<Place> Places;
        std::vector<int> Widths = {};  // of the columns
        int Height = 0;
    };
    Plan PlanFor(int width) const;
    int Fill(Plan& plan, int height) const;
    void Settle(Plan& plan, int room) const;
    int Gap() const;

    std::vector<QLayoutItem*> items_;
};

}  // namespace zandrel
