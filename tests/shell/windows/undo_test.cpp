// Undo and Redo over the whole image, by their keys and items.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QMenu>
#include <QTabBar>
#include <QtTest/QTest>

#include "image/history.h"
#include "image/image.h"
#include "link/transfers.h"
#include "shell/windows/editfixture.h"
#include "support/scripteddesktop.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mapediting.h"

namespace zandrel {
namespace {

class UndoByHand : public EditTest {
  protected:
    static void UndoKey() { Key(Qt::Key_Z, Qt::ControlModifier); }
    static void RedoKey() { Key(Qt::Key_Y, Qt::ControlModifier); }

    std::string Caption(const char* item) {
        return Item(QString::fromLatin1(item))->text().remove('&').toStdString();
    }
    bool Enabled(const char* item) { return Item(QString::fromLatin1(item))->isEnabled(); }
};

TEST_F(UndoByHand, StepsOfAMap_GoBackAndForthOneByOne) {
    ShowMap(0, 100);
    Drag(0, 1, 1, 2, 2);
    Key(Qt::Key_Equal);
    Key(Qt::Key_Delete);
    Type("1.25");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(0, 2, 2), 192);
    for (const int raw : {128, 101, 100}) {
        UndoKey();
        EXPECT_EQ(Raw(0, 1, 1), raw);
        EXPECT_EQ(Raw(0, 2, 2), raw);
        EXPECT_EQ(GridOf(0)->model()->index(1, 1).data().toString().toStdString(), GridCellText(0, 2, 2));
    }
    EXPECT_FALSE(Enabled("mnuUndo"));
    UndoKey();
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    RedoKey();
    EXPECT_EQ(Raw(0, 2, 2), 101);
    Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Raw(0, 2, 2), 128);
    RedoKey();
    EXPECT_EQ(Raw(0, 2, 2), 192);
    EXPECT_FALSE(Enabled("mnuRedo"));
}

TEST_F(UndoByHand, ItemsNameTheirStepAndAreEnabledWhileThereIsOne) {
    ShowMap(0, 100);
    EXPECT_EQ(Caption("mnuUndo"), "Undo");
    EXPECT_EQ(Caption("mnuRedo"), "Redo");
    EXPECT_FALSE(Enabled("mnuUndo"));
    EXPECT_FALSE(Enabled("mnuRedo"));
    Key(Qt::Key_Equal);
    const std::string step = UndoName();
    EXPECT_FALSE(step.empty());
    EXPECT_EQ(Caption("mnuUndo"), "Undo " + step);
    EXPECT_TRUE(Enabled("mnuUndo"));
    EXPECT_FALSE(Enabled("mnuRedo"));
    ClickItem("mnuEdit", "mnuUndo");
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    EXPECT_EQ(Caption("mnuUndo"), "Undo");
    EXPECT_EQ(Caption("mnuRedo"), "Redo " + step);
    EXPECT_FALSE(Enabled("mnuUndo"));
    ClickItem("mnuEdit", "mnuRedo");
    EXPECT_EQ(CellsOtherThan(0, 100), 1);
    EXPECT_EQ(Caption("mnuRedo"), "Redo");
}

TEST_F(UndoByHand, NewEdit_TakesRedoAway) {
    ShowMap(0, 100);
    Key(Qt::Key_Equal);
    UndoKey();
    Key(Qt::Key_Delete);
    EXPECT_FALSE(Enabled("mnuRedo"));
    RedoKey();
    EXPECT_EQ(Raw(0, 1, 1), 128);
}

TEST_F(UndoByHand, Undone_WaitsToBeSentAgain) {
    ShowMap(0, 100);
    Key(Qt::Key_Equal);
    BlockChanged.fill(false);
    MapCellChanged = {};
    cmdUpdate.Enabled = false;
    DataChanged = false;
    UndoKey();
    EXPECT_TRUE(BlockChanged[0x86]);
    EXPECT_TRUE(MapCellChanged[0][1][1]);
    EXPECT_FALSE(MapCellChanged[0][2][1]);
    EXPECT_TRUE(DataChanged);
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
}

TEST_F(UndoByHand, Settings_AreStepsToo) {
    ShowMap(0, 100);
    ClickTab(6);
    auto* box = Member<QLineEdit>("txtSetting", 120);
    const QString before = box->text();
    QTest::mouseClick(box, Qt::LeftButton);
    box->selectAll();
    Type("1234");
    Key(Qt::Key_Return);
    auto* check = Member<QAbstractButton>("chkSetting", 180);
    const bool ticked = check->isChecked();
    Click(check);
    ASSERT_NE(check->isChecked(), ticked);
    Tabs()->tabBar()->setFocus();
    UndoKey();
    EXPECT_EQ(check->isChecked(), ticked);
    EXPECT_EQ(box->text(), "1234");
    UndoKey();
    EXPECT_EQ(box->text(), before);
    EXPECT_FALSE(Enabled("mnuUndo"));
    RedoKey();
    EXPECT_EQ(box->text(), "1234");
    RedoKey();
    EXPECT_NE(check->isChecked(), ticked);
}

TEST_F(UndoByHand, InATextBox_TheKeysAreTheBoxesOwn) {
    ShowMap(0, 100);
    Key(Qt::Key_Equal);
    Key(Qt::Key_Equal);
    UndoKey();
    ClickTab(6);
    auto* box = Member<QLineEdit>("txtSetting", 120);
    const QString before = box->text();
    QTest::mouseClick(box, Qt::LeftButton);
    box->selectAll();
    Type("77");
    UndoKey();
    UndoKey();
    UndoKey();
    EXPECT_EQ(box->text(), before);
    EXPECT_EQ(Raw(0, 1, 1), 101);
    RedoKey();
    EXPECT_NE(box->text(), before);
    EXPECT_EQ(Raw(0, 1, 1), 101) << "the image's redo is not the box's";
    EXPECT_TRUE(box->hasFocus());
    box->setText(before);
    UndoKey();
    RedoKey();
    EXPECT_EQ(Raw(0, 1, 1), 101);
}

TEST_F(UndoByHand, PasteAndInterpolate_AreOneStepEach) {
    ShowMap(0, 100);
    Key(Qt::Key_A, Qt::ControlModifier);
    std::string all;
    for (int row = 1; row <= 20; ++row) {
        for (int column = 1; column <= 20; ++column) {
            all += std::to_string(1.0 + row * 0.01).substr(0, 5) + (column < 20 ? "\t" : "\r");
        }
    }
    Clipboard() = all;
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(CellsOtherThan(0, 100), 400);
    EXPECT_EQ(Caption("mnuUndo"), "Undo Paste");
    const int corner = Raw(0, 20, 1);
    Drag(0, 1, 1, 20, 20);
    Key(Qt::Key_Plus, Qt::ControlModifier);
    ClickItem("mnuSetupMaps", "mnuGridInterpolate");
    UndoKey();
    UndoKey();
    EXPECT_EQ(Raw(0, 20, 1), corner);
    UndoKey();
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    EXPECT_FALSE(Enabled("mnuUndo"));
}

TEST_F(UndoByHand, ReCalcBase_IsOneStepOverBothMaps) {
    ShowBuild("13B-REW7.07");
    FillMap(0, 64);
    FillMap(3, 1000);
    ClickTab(3);
    ASSERT_TRUE(Item("mnuReCalcBase")->isEnabled());
    ClickItem("mnuSetupMaps", "mnuReCalcBase");
    EXPECT_EQ(CellsOtherThan(0, 128), 0);
    EXPECT_EQ(CellsOtherThan(3, 750), 0);
    EXPECT_EQ(Caption("mnuUndo"), "Undo ReCalc Base");
    UndoKey();
    EXPECT_EQ(CellsOtherThan(0, 64), 0);
    EXPECT_EQ(CellsOtherThan(3, 1000), 0);
    EXPECT_EQ(Tabs()->currentIndex(), 3) << "more than one map has changed";
    RedoKey();
    EXPECT_EQ(CellsOtherThan(0, 128), 0);
    EXPECT_EQ(GridOf(3)->model()->index(0, 0).data().toString(), "3.000");
}

TEST_F(UndoByHand, ReCalcBase_NeedsABaseMap) {
    ShowMap(0, 100);
    EXPECT_FALSE(Item("mnuReCalcBase")->isEnabled());
}

TEST_F(UndoByHand, MapThatChanged_ComesIntoView) {
    ShowMap(1, 20);
    Key(Qt::Key_Equal);
    ClickTab(6);
    Tabs()->tabBar()->setFocus();
    UndoKey();
    EXPECT_EQ(Tabs()->currentIndex(), 1);
    EXPECT_EQ(SSTab1.Tab, 1);
    EXPECT_TRUE(GridOf(1)->isVisible());
    EXPECT_EQ(GridOf(1)->model()->index(0, 0).data().toString().toStdString(), GridCellText(1, 1, 1));
    ClickTab(0);
    RedoKey();
    EXPECT_EQ(Tabs()->currentIndex(), 1);
    // The keys go on working from there.
    UndoKey();
    EXPECT_EQ(CellsOtherThan(1, 20), 0);
}

TEST_F(UndoByHand, WhileComparing_IsDisabled) {
    ShowMap(0, 100);
    Key(Qt::Key_Equal);
    mnuCompare.Checked = true;
    Main.Mirror();
    EXPECT_FALSE(Enabled("mnuUndo"));
    UndoKey();
    EXPECT_EQ(Raw(0, 1, 1), 101);
}

TEST_F(UndoByHand, StepInTheBox_IsTakenBackAsOne) {
    ShowMap(0, 100);
    Key(Qt::Key_A, Qt::ControlModifier);
    Type("*");
    Type("1.1");
    Key(Qt::Key_Return);
    EXPECT_EQ(CellsOtherThan(0, 100), 400);
    UndoKey();
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    EXPECT_FALSE(Enabled("mnuUndo"));
}

}  // namespace
}  // namespace zandrel
