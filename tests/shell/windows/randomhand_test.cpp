// A hand that does whatever comes to its mind: after each of its doings the window shows what the image
// holds, what differs from the beginning is marked, and Undo leads all the way back.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QTabBar>
#include <QtTest/QTest>
#include <algorithm>
#include <random>
#include <vector>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "shell/windows/editfixture.h"
#include "support/scripteddesktop.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mapediting.h"

namespace zandrel {
namespace {

class RandomHand : public EditTest, public testing::WithParamInterface<int> {
  protected:
    int Pick(int first, int last) { return std::uniform_int_distribution<int>(first, last)(random_); }
    template <class Value>
    const Value& OneOf(const std::vector<Value>& values) {
        return values[static_cast<std::size_t>(Pick(0, static_cast<int>(values.size()) - 1))];
    }
    static int TabInView() { return SSTab1.Tab; }
    static bool MapInView() { return TabInView() < kMapTabs; }

    void TypeSomething() {
        Type(OneOf<QString>(
            {"1", "0.9", "1.234", "25", "7000", "99999", "-3", "1e400", "x", "", "1,1", ".5"}));
    }

    void OnMap() {
        const int map = TabInView();
        const auto cell = [this] { return Pick(1, kMapSide); };
        switch (Pick(0, 11)) {
            case 0:
                ClickCell(map, cell(), cell());
                break;
            case 1:
                Drag(map, cell(), cell(), cell(), cell());
                break;
            case 2:
                ClickCell(map, cell(), cell(), Qt::ShiftModifier);
                break;
            case 3:
                Key(OneOf<int>({Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right}),
                    Pick(0, 1) != 0 ? Qt::ShiftModifier : Qt::NoModifier);
                break;
            case 4:
                Key(OneOf<int>({Qt::Key_Equal, Qt::Key_Minus}),
                    Pick(0, 1) != 0 ? Qt::ControlModifier : Qt::NoModifier);
                break;
            case 5:
                Key(Qt::Key_Delete);
                break;
            case 6:
                Type(OneOf<QString>({"1", "0", "*", ".", ","}));
                TypeSomething();
                break;
            case 7:
                DoubleClickCell(map, cell(), cell());
                TypeSomething();
                break;
            case 8:
                Key(OneOf<int>({Qt::Key_C, Qt::Key_V, Qt::Key_A}), Qt::ControlModifier);
                break;
            case 9: {
                QHeaderView* heads =
                    Pick(0, 1) != 0 ? GridOf(map)->horizontalHeader() : GridOf(map)->verticalHeader();
                const int at = heads->sectionViewportPosition(cell() - 1) + 3;
                QTest::mouseClick(heads->viewport(), Qt::LeftButton, {},
                                  heads->orientation() == Qt::Horizontal ? QPoint(at, 4) : QPoint(4, at));
                break;
            }
            case 10:
                ClickCell(map, cell(), cell(), {}, Qt::RightButton);
                ClickItemOf(Named<QMenu>("mnuSetupMaps"),
                            OneOf<QString>({"mnuGridCopy", "mnuGridPaste", "mnuGridInterpolate"}));
                break;
            default:
                if (!rotary_ || Pick(0, 1) != 0) {
                    ClickItem("mnuSetupInjMap", MemberName("mnuInjMapDisplay", Pick(0, 2)));
                } else if (map == 2) {
                    Click(Member<QWidget>("chkSplit", 2));
                } else {
                    ClickItem("mnuSetupBaseMap", MemberName("mnuBaseMapDisplay", Pick(0, 3)));
                }
        }
    }

    // A control of the page in view that can be clicked where it stands.
    template <class Widget>
    Widget* SomeOf(const char* array) {
        std::vector<Widget*> seen;
        for (auto* widget : Tabs()->currentWidget()->findChildren<Widget*>()) {
            if (widget->objectName().startsWith(QLatin1String(array)) && widget->isVisible() &&
                widget->isEnabled())
                seen.push_back(widget);
        }
        return seen.empty() ? nullptr : OneOf(seen);
    }

    void OnSettings() {
        if (auto* box = SomeOf<QLineEdit>("txtSetting("); box != nullptr && Pick(0, 2) != 0) {
            QTest::mouseClick(box, Qt::LeftButton);
            if (Pick(0, 1) != 0) box->selectAll();
            TypeSomething();
        } else if (auto* button = SomeOf<QAbstractButton>("chkSetting"); button != nullptr) {
            Click(button);
        } else if (auto* option = SomeOf<QAbstractButton>("optSetting"); option != nullptr) {
            Click(option);
        }
    }

    void Leave() {
        switch (Pick(0, 5)) {
            case 0:
                Key(Qt::Key_Return);
                break;
            case 1:
                Key(Qt::Key_Escape);
                break;
            case 2:
                Key(Qt::Key_Tab);
                break;
            case 3:
                ClickItem("mnuMapColourScheme", MemberName("mnuSetupMapColourScheme", Pick(0, 1)));
                break;
            default:
                break;
        }
    }

    void DoSomething() {
        if (QApplication::focusWidget() == nullptr) Tabs()->tabBar()->setFocus();
        switch (Pick(0, 9)) {
            case 0:
                ClickTab(
                    OneOf<int>(rotary_ ? std::vector{0, 1, 2, 3, 6, 10} : std::vector{0, 1, 6, 7, 9, 10}));
                break;
            case 1:
                Key(OneOf<int>({Qt::Key_Z, Qt::Key_Y}), Qt::ControlModifier);
                break;
            case 2:
                Leave();
                break;
            case 3:
                if (Pick(0, 3) == 0) Main.resize(Pick(760, 1280), Pick(560, 800));
                break;
            default:
                MapInView() ? OnMap() : OnSettings();
        }
        Settle();
    }

    void ExpectMapAsStored(int map) {
        const MapGridView* grid = GridOf(map);
        const GridSelection& s = Grid[static_cast<std::size_t>(map)].Selection;
        const auto* model = static_cast<const MapModel*>(grid->model());
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column) {
                ASSERT_EQ(model->CellText(row - 1, column - 1).toStdString(), GridCellText(map, row, column))
                    << map << " " << row << " " << column;
                const bool selected = row >= std::min(s.Row, s.RowSel) && row <= std::max(s.Row, s.RowSel) &&
                                      column >= std::min(s.Col, s.ColSel) &&
                                      column <= std::max(s.Col, s.ColSel);
                ASSERT_EQ(grid->selectionModel()->isSelected(model->index(row - 1, column - 1)), selected)
                    << map << " " << row << " " << column;
            }
        }
    }

    void ExpectAllAsStored() {
        if (MapInView()) ExpectMapAsStored(TabInView());
        for (const auto& [index, record] : txtSetting) {
            auto* box = Main.findChild<QLineEdit*>(MemberName("txtSetting", index));
            if (box == nullptr || !FraSettings[record.Frame].Visible || box->isModified()) continue;
            ASSERT_EQ(box->text().toStdString(), GetNumber(record.Tag)) << index;
        }
        for (const auto& [index, record] : chkSetting) {
            if (!FraSettings[record.Frame].Visible) continue;
            ASSERT_EQ(Member<QAbstractButton>("chkSetting", index)->isChecked(), GetFlag(record.Tag) != 0);
        }
        for (const auto& [index, record] : optSetting) {
            if (!FraSettings[record.Frame].Visible) continue;
            ASSERT_EQ(Member<QAbstractButton>("optSetting", index)->isChecked(), GetOption(record.Tag));
        }
        ASSERT_EQ(Item("mnuUndo")->isEnabled(), CanUndo());
        ASSERT_EQ(Item("mnuRedo")->isEnabled(), CanRedo());
        ASSERT_EQ(Tabs()->currentIndex(), TabInView());
        ASSERT_EQ(Box()->isVisible(), txtGrid.Visible);
        for (std::size_t block = 0; block < 256; ++block) {
            ASSERT_EQ(ReadData[block].size(), begin_[block].size()) << block;
            ASSERT_TRUE(BlockChanged[block] || ReadData[block] == begin_[block]) << block;
        }
    }

    bool rotary_ = GetParam() % 2 == 0;  // a build with a split map and a base map
    std::mt19937 random_{static_cast<unsigned>(GetParam())};
    std::array<ByteString, 256> begin_;
};

TEST_P(RandomHand, WindowAndImage_StayInStep) {
    ShowBuild(rotary_ ? "13B-REW7.07" : "RB26DETT6.42");
    ClickTab(0);
    BlockChanged.fill(false);
    begin_ = ReadData;
    for (int step = 0; step < 120; ++step) {
        DoSomething();
        ExpectAllAsStored();
        if (HasFatalFailure()) FAIL() << "step " << step << " in tab " << TabInView();
    }
    Main.Mirror();
    ClickTab(1);
    GridOf(1)->setFocus();
    int steps = 0;
    for (; CanUndo(); ++steps) {
        Item("mnuUndo")->trigger();
        ExpectAllAsStored();
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_EQ(ReadData, begin_);
    EXPECT_GE(steps, 5);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomHand, testing::Range(1, 9));

}  // namespace
}  // namespace zandrel
