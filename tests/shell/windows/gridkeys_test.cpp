// Keys on a map, as a keyboard of the US layout and its number pad deliver them.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QtTest/QTest>

#include "image/history.h"
#include "image/image.h"
#include "shell/windows/editfixture.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mapediting.h"

namespace zandrel {
namespace {

constexpr auto kNone = Qt::NoModifier;
constexpr auto kShift = Qt::ShiftModifier;
constexpr auto kCtrl = Qt::ControlModifier;
constexpr auto kAlt = Qt::AltModifier;
constexpr auto kPad = Qt::KeypadModifier;

class GridKeys : public EditTest {
  protected:
    static GridSelection& Selection(int map) { return Grid[static_cast<std::size_t>(map)].Selection; }
};

struct OpeningKey {
    int Key;
    Qt::KeyboardModifiers Modifiers;
    const char* Text;
};

TEST_F(GridKeys, Characters_OpenTheBox) {
    ShowMap(0, 100);
    std::vector<OpeningKey> rows = {
        {Qt::Key_Asterisk, kPad, "*"}, {Qt::Key_Asterisk, kShift, "*"}, {Qt::Key_Asterisk, kNone, "*"},
        {Qt::Key_Period, kPad, "."},   {Qt::Key_Period, kNone, "."},    {Qt::Key_Comma, kNone, ","},
        {Qt::Key_Comma, kPad, "."},
    };
    const std::string digits = "0123456789";
    for (int i = 0; i < 10; ++i) {
        rows.push_back({Qt::Key_0 + i, kNone, digits.c_str() + i});
        rows.push_back({Qt::Key_0 + i, kPad, digits.c_str() + i});
    }
    for (const OpeningKey& row : rows) {
        Key(row.Key, row.Modifiers);
        EXPECT_TRUE(Box()->isVisible()) << row.Text;
        EXPECT_TRUE(Box()->hasFocus()) << row.Text;
        EXPECT_EQ(Box()->text().toStdString(), std::string(row.Text).substr(0, 1));
        EXPECT_EQ(Box()->cursorPosition(), 1) << row.Text;
        EXPECT_EQ(Box()->selectedText(), QString()) << row.Text;
        Key(Qt::Key_Escape);
        EXPECT_FALSE(Box()->isVisible()) << row.Text;
        EXPECT_TRUE(GridOf(0)->hasFocus()) << row.Text;
    }
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    EXPECT_FALSE(CanUndo());
}

struct StepKey {
    int Key;
    Qt::KeyboardModifiers Modifiers;
    int Step;
};

TEST_F(GridKeys, PlusAndMinus_StepTheSelection) {
    ShowMap(0, 100);
    Drag(0, 3, 4, 5, 6);
    const StepKey rows[] = {
        {Qt::Key_Plus, kPad, 1},
        {Qt::Key_Equal, kNone, 1},
        {Qt::Key_Plus, kShift, 1},
        {Qt::Key_Plus, kNone, 1},
        {Qt::Key_Minus, kPad, -1},
        {Qt::Key_Minus, kNone, -1},
        {Qt::Key_Plus, kPad | kCtrl, 10},
        {Qt::Key_Equal, kCtrl, 10},
        {Qt::Key_Plus, kShift | kCtrl, 10},
        {Qt::Key_Plus, kCtrl, 10},
        {Qt::Key_Minus, kPad | kCtrl, -10},
        {Qt::Key_Minus, kCtrl, -10},
    };
    int raw = 100;
    for (const StepKey& row : rows) {
        Key(row.Key, row.Modifiers);
        raw += row.Step;
        for (const auto& [r, c] : {std::pair{3, 4}, {5, 6}, {4, 5}}) EXPECT_EQ(Raw(0, r, c), raw) << row.Key;
        EXPECT_EQ(Raw(0, 2, 4), 100);
        EXPECT_EQ(Raw(0, 6, 6), 100);
        EXPECT_EQ(Raw(0, 3, 7), 100);
        EXPECT_EQ(GridOf(0)->model()->index(2, 3).data().toString().toStdString(), GridCellText(0, 3, 4));
        EXPECT_FALSE(Box()->isVisible());
    }
    EXPECT_EQ(Selection(0), (GridSelection{3, 4, 5, 6}));
}

TEST_F(GridKeys, WrongModifiers_DoNothing) {
    ShowMap(0, 100);
    ClickCell(0, 5, 5);
    const OpeningKey rows[] = {
        {Qt::Key_5, kCtrl, "ctrl 5"},
        {Qt::Key_5, kAlt, "alt 5"},
        {Qt::Key_5, kPad | kCtrl, "ctrl pad 5"},
        {Qt::Key_5, kPad | kShift, "shift pad 5"},
        {Qt::Key_Asterisk, kCtrl | kShift, "ctrl shift 8"},
        {Qt::Key_Asterisk, kPad | kCtrl, "ctrl pad *"},
        {Qt::Key_Asterisk, kPad | kShift, "shift pad *"},
        {Qt::Key_Underscore, kShift, "_"},
        {Qt::Key_Greater, kShift, ">"},
        {Qt::Key_Less, kShift, "<"},
        {Qt::Key_Exclam, kShift, "!"},
        {Qt::Key_Plus, kPad | kShift, "shift pad +"},
        {Qt::Key_Minus, kPad | kShift, "shift pad -"},
        {Qt::Key_Plus, kAlt, "alt +"},
        {Qt::Key_Minus, kAlt, "alt -"},
        {Qt::Key_Equal, kAlt | kCtrl, "ctrl alt ="},
        {Qt::Key_Delete, kShift, "shift delete"},
        {Qt::Key_Delete, kCtrl, "ctrl delete"},
        {Qt::Key_Period, kCtrl, "ctrl ."},
        {Qt::Key_Comma, kAlt, "alt ,"},
        {Qt::Key_Space, kCtrl, "ctrl space"},
        {Qt::Key_Space, kShift, "shift space"},
        {Qt::Key_A, kNone, "a"},
        {Qt::Key_C, kNone, "c"},
        {Qt::Key_V, kNone, "v"},
        {Qt::Key_A, kCtrl | kShift, "ctrl shift a"},
        {Qt::Key_V, kCtrl | kShift, "ctrl shift v"},
        {Qt::Key_V, kCtrl | kAlt, "ctrl alt v"},
        {Qt::Key_Slash, kNone, "/"},
        {Qt::Key_Return, kNone, "enter"},
        {Qt::Key_Escape, kNone, "escape"},
        {Qt::Key_F2, kNone, "F2"},
    };
    Clipboard() = "1.2";
    for (const OpeningKey& row : rows) {
        Key(row.Key, row.Modifiers);
        EXPECT_FALSE(Box()->isVisible()) << row.Text;
        EXPECT_EQ(CellsOtherThan(0, 100), 0) << row.Text;
        EXPECT_EQ(Selection(0), (GridSelection{5, 5, 5, 5})) << row.Text;
        EXPECT_FALSE(GridSpaceFlag) << row.Text;
    }
    EXPECT_FALSE(DataChanged);
    EXPECT_EQ(Clipboard(), "1.2");
}

// A letter used to jump to the cell whose text begins with it; digits open the box instead.
TEST_F(GridKeys, TypeAhead_DoesNotMove) {
    ShowMap(0, 100);
    ReadData[0x86][7] = '\xFF';
    DisplayAllMaps();
    Main.Mirror();
    Type("1");
    EXPECT_EQ(Selection(0), (GridSelection{1, 1, 1, 1}));
    Key(Qt::Key_Escape);
    Type("xyz");
    EXPECT_EQ(Selection(0), (GridSelection{1, 1, 1, 1}));
}

TEST_F(GridKeys, Delete_Writes128IntoTheSelection) {
    ShowMap(0, 100);
    Drag(0, 2, 2, 3, 3);
    Key(Qt::Key_Delete);
    EXPECT_EQ(CellsOtherThan(0, 100), 4);
    EXPECT_EQ(Raw(0, 2, 2), 128);
    EXPECT_EQ(Raw(0, 3, 3), 128);
    // Where the box stood before is no matter.
    ClickCell(0, 10, 10);
    Key(Qt::Key_5);
    Key(Qt::Key_Escape);
    ClickCell(0, 12, 12);
    Key(Qt::Key_Delete, kPad);
    EXPECT_EQ(Raw(0, 10, 10), 100);
    EXPECT_EQ(Raw(0, 12, 12), 128);
    EXPECT_EQ(CellsOtherThan(0, 100), 5);
}

TEST_F(GridKeys, Space_SetsItsFlagAndNothingElse) {
    ShowMap(0, 100);
    ClickCell(0, 5, 5);
    Key(Qt::Key_Space);
    EXPECT_TRUE(GridSpaceFlag);
    EXPECT_EQ(Selection(0), (GridSelection{5, 5, 5, 5}));
    EXPECT_TRUE(GridOf(0)->selectionModel()->isSelected(GridOf(0)->model()->index(4, 4)));
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
}

TEST_F(GridKeys, HeldKey_StepsWithEveryRepeatAndStartsTheTimerOnceEach) {
    ShowMap(0, 100);
    Key(Qt::Key_A, kCtrl);
    Click(Named("optAutoUpdate"));
    GridOf(0)->setFocus();
    const int before = TimerStarts(Timer::Update);
    for (int i = 0; i < 20; ++i) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Plus, kShift, QStringLiteral("+"), i > 0);
        QCoreApplication::sendEvent(GridOf(0), &press);
    }
    QTest::keyRelease(GridOf(0), Qt::Key_Plus, kShift);
    EXPECT_EQ(CellsOtherThan(0, 120), 0);
    EXPECT_EQ(TimerStarts(Timer::Update) - before, 20);
    EXPECT_EQ(GridOf(0)->model()->index(19, 19).data().toString().toStdString(), GridCellText(0, 20, 20));
    // One step of Undo, however long it was held; a new press is a new one.
    Key(Qt::Key_Plus, kShift);
    Key(Qt::Key_Z, kCtrl);
    EXPECT_EQ(CellsOtherThan(0, 120), 0);
    Key(Qt::Key_Z, kCtrl);
    EXPECT_EQ(CellsOtherThan(0, 100), 0);
    EXPECT_FALSE(CanUndo());
}

TEST_F(GridKeys, PlusAtTheUpperAndMinusAtTheLowerEnd_Stay) {
    ShowMap(0, 254);
    Key(Qt::Key_Equal);
    Key(Qt::Key_Equal);
    Key(Qt::Key_Equal, kCtrl);
    EXPECT_EQ(Raw(0, 1, 1), 255);
    ShowMap(0, 5);
    Key(Qt::Key_Minus, kCtrl);
    EXPECT_EQ(Raw(0, 1, 1), 0);
}

TEST_F(GridKeys, InLambda_PlusLowersTheRawValue) {
    ShowMap(0, 100);
    mnuInjMapDisplay_Click(1);
    Main.Mirror();
    Key(Qt::Key_Equal);
    EXPECT_EQ(Raw(0, 1, 1), 99);
    Key(Qt::Key_Minus, kCtrl);
    EXPECT_EQ(Raw(0, 1, 1), 109);
}

TEST_F(GridKeys, Arrows_MoveAndWithShiftSelect) {
    ShowMap(0, 100);
    Key(Qt::Key_Down);
    Key(Qt::Key_Right);
    Key(Qt::Key_Right);
    EXPECT_EQ(Selection(0), (GridSelection{2, 3, 2, 3}));
    Key(Qt::Key_Down, kShift);
    Key(Qt::Key_Right, kShift);
    EXPECT_EQ(Selection(0), (GridSelection{2, 3, 3, 4}));
    Key(Qt::Key_Equal);
    EXPECT_EQ(CellsOtherThan(0, 100), 4);
    Key(Qt::Key_Up);
    Key(Qt::Key_Left);
    EXPECT_EQ(Selection(0), (GridSelection{2, 3, 2, 3}));
    // The pad without its number lock.
    Key(Qt::Key_Down, kPad);
    EXPECT_EQ(Selection(0), (GridSelection{3, 3, 3, 3}));
}

TEST_F(GridKeys, CtrlCAndCtrlV_CarryTheSelection) {
    ShowMap(0, 100);
    ReadData[0x86][1] = '\x80';   // row 2, column 1
    ReadData[0x86][20] = '\x91';  // row 1, column 2
    DisplayAllMaps();
    Main.Mirror();
    Drag(0, 1, 1, 2, 2);
    Key(Qt::Key_C, kCtrl);
    EXPECT_EQ(Clipboard(), "0.891\t1.066\r1.000\t0.891");
    Drag(0, 10, 10, 11, 11);
    Key(Qt::Key_V, kCtrl);
    EXPECT_EQ(Raw(0, 10, 10), 100);
    EXPECT_EQ(Raw(0, 10, 11), 0x91);
    EXPECT_EQ(Raw(0, 11, 10), 0x80);
    EXPECT_EQ(Selection(0), (GridSelection{10, 10, 11, 11}));
}

TEST_F(GridKeys, PasteOfABadText_ShowsWhatIsStored) {
    ShowMap(0, 100);
    Drag(0, 1, 1, 1, 4);
    Clipboard() = "1.000\tx\t1.000\t1.000";
    Key(Qt::Key_V, kCtrl);
    EXPECT_EQ(Raw(0, 1, 1), 128);
    EXPECT_EQ(CellsOtherThan(0, 100), 1);
    for (int c = 0; c < 4; ++c) {
        EXPECT_EQ(GridOf(0)->model()->index(0, c).data().toString(), c == 0 ? "1.000" : "0.891") << c;
    }
}

TEST_F(GridKeys, WhileComparing_NoKeyEdits) {
    ShowMap(0, 100);
    mnuCompare.Checked = true;
    Clipboard() = "1.2";
    for (const OpeningKey& row : {OpeningKey{Qt::Key_5, kNone, "5"},
                                  {Qt::Key_Equal, kNone, "="},
                                  {Qt::Key_Minus, kCtrl, "-"},
                                  {Qt::Key_Delete, kNone, "delete"},
                                  {Qt::Key_V, kCtrl, "v"},
                                  {Qt::Key_Space, kNone, "space"}}) {
        Key(row.Key, row.Modifiers);
        EXPECT_FALSE(Box()->isVisible()) << row.Text;
        EXPECT_EQ(CellsOtherThan(0, 100), 0) << row.Text;
    }
    EXPECT_FALSE(GridSpaceFlag);
    DoubleClickCell(0, 4, 4);
    EXPECT_FALSE(Box()->isVisible());
    Key(Qt::Key_Down);
    EXPECT_EQ(Selection(0), (GridSelection{5, 4, 5, 4})) << "looking around is not editing";
}

TEST_F(GridKeys, SplitDisplay_StepsTheOtherWay) {
    ShowBuild("13B-REW7.07");
    FillMap(1, 90);
    ShowMap(2, 60, "13B-REW7.07");
    FillMap(1, 90);
    Click(Member<QWidget>("chkSplit", 2));
    Key(Qt::Key_Tab);
    ClickCell(2, 1, 1);
    Key(Qt::Key_Equal);
    EXPECT_EQ(Raw(2, 1, 1), 59);
    Key(Qt::Key_1);
    Type("2");
    Key(Qt::Key_Return);
    EXPECT_EQ(Raw(2, 1, 1), 78);
}

}  // namespace
}  // namespace zandrel
