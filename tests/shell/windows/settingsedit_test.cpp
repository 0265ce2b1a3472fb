// Settings typed and clicked: what is stored when a box is left, by whatever way, and when nothing is.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QtTest/QTest>

#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "link/transfers.h"
#include "shell/windows/editfixture.h"
#include "shell/windows/gridedit.h"
#include "support/scripteddesktop.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/mapediting.h"

namespace zandrel {
namespace {

constexpr std::size_t kRevIdle = 0x8B;  // words: txtSetting 120 to 127
constexpr std::size_t kBoost = 0xAB;    // bytes of 0.05: txtSetting 100; options 100 to 103 in byte 3
constexpr std::size_t kCustom = 0xAD;   // frame 550

class SettingsEdit : public EditTest {
  protected:
    SettingsEdit() {
        ShowBuild("RB26DETT6.42");
        ReadData[kRevIdle] = std::string("\x40\x1F\xE8\x03", 4) + std::string(20, '\x05');
        DisplayAllData();
        Main.Mirror();
        ClickTab(6);
        BlockChanged.fill(false);
        DataChanged = false;
    }

    QLineEdit* TextBox(int index) { return Member<QLineEdit>("txtSetting", index); }
    QAbstractButton* Button(const char* array, int index) { return Member<QAbstractButton>(array, index); }
    bool TabStripHasTheFocus() { return Tabs()->tabBar()->hasFocus(); }

    // A click into the box and the text in the place of what stood there.
    void TypeInto(QLineEdit* box, const QString& text) {
        QTest::mouseClick(box, Qt::LeftButton);
        ASSERT_TRUE(box->hasFocus());
        box->selectAll();
        Key(Qt::Key_Delete);
        Type(text);
        ASSERT_EQ(box->text(), text);
    }
    void TypeInto(int index, const QString& text) { TypeInto(TextBox(index), text); }

    QPoint BareGroundOf(int frame) {
        auto* box = Member<QGroupBox>("FraSettings", frame);
        return {box->width() - 3, box->height() - 3};
    }
    void ClickFrame(int frame, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(Member<QGroupBox>("FraSettings", frame), button, {}, BareGroundOf(frame));
        Settle();
    }

    static int Word(std::size_t block, std::size_t at) {
        return static_cast<unsigned char>(ReadData[block][at]) +
               256 * static_cast<unsigned char>(ReadData[block][at + 1]);
    }
};

TEST_F(SettingsEdit, Typing_StoresNothingUntilTheBoxIsLeft) {
    TypeInto(120, "7200");
    EXPECT_EQ(Word(kRevIdle, 0), 8000);
    EXPECT_FALSE(DataChanged);
    ClickFrame(120);
    EXPECT_EQ(Word(kRevIdle, 0), 7200);
    EXPECT_TRUE(DataChanged);
    EXPECT_TRUE(BlockChanged[kRevIdle]);
    EXPECT_TRUE(TabStripHasTheFocus());
    EXPECT_EQ(TextBox(120)->text(), "7200");
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
}

TEST_F(SettingsEdit, EveryWayOfLeaving_Stores) {
    const std::vector<std::function<void()>> ways = {
        [this] { QTest::mouseClick(TextBox(121), Qt::LeftButton); },
        [] { Key(Qt::Key_Tab); },
        [] { Key(Qt::Key_Backtab, Qt::ShiftModifier); },
        [] { Key(Qt::Key_Return); },
        [] { Key(Qt::Key_Enter, Qt::KeypadModifier); },
        [this] { ClickFrame(180); },
        [this] { ClickTab(6); },
        [this] { ClickTab(7); },
        [this] { ClickTab(0); },
        [this] { Click(Button("chkSetting", 180)); },
        [this] { Click(Named("optAutoUpdate")); },
        [this] {
            QWidget* body = Main.centralWidget();
            QTest::mouseClick(body, Qt::LeftButton, {}, QPoint(body->width() - 3, 3));
        },
    };
    int value = 5000;
    for (std::size_t way = 0; way < ways.size(); ++way) {
        ClickTab(6);
        TypeInto(120, QString::number(++value));
        ways[way]();
        Settle();
        EXPECT_EQ(Word(kRevIdle, 0), value) << "way " << way;
        EXPECT_EQ(TextBox(120)->text().toInt(), value) << "way " << way;
        EXPECT_FALSE(TextBox(120)->hasFocus()) << "way " << way;
    }
}

TEST_F(SettingsEdit, Tab_GoesToTheNextBox) {
    TypeInto(120, "7000");
    Key(Qt::Key_Tab);
    EXPECT_TRUE(TextBox(121)->hasFocus());
    EXPECT_EQ(TextBox(121)->selectedText(), TextBox(121)->text());
}

TEST_F(SettingsEdit, Enter_LeavesOnceAndTheTabStripHasTheFocus) {
    int edits = 0;
    AfterEdit = [&edits] {
        ++edits;
        // Something else that changes meanwhile must not be taken for typed.
        ReadData[kRevIdle][0] = '\x01';
    };
    TypeInto(120, "7200");
    Key(Qt::Key_Return);
    EXPECT_EQ(edits, 1);
    EXPECT_TRUE(TabStripHasTheFocus());
    EXPECT_EQ(UndoName(), "Setting");
    int map = 0;
    Undo(map);
    EXPECT_FALSE(CanUndo());
}

TEST_F(SettingsEdit, EnterInTheTunerString_LeavesOnce) {
    ClickTab(10);
    int edits = 0;
    AfterEdit = [&edits] { ++edits; };
    TypeInto(Named<QLineEdit>("Text1"), "abc");
    Key(Qt::Key_Return);
    EXPECT_EQ(edits, 1);
    EXPECT_TRUE(TabStripHasTheFocus());
}

TEST_F(SettingsEdit, ClampedAndRoundedValue_ShowsAtOnce) {
    struct Row {
        int Index;
        const char* Typed;
        const char* Shown;
    };
    const Row rows[] = {
        {120, "70000", "65535"}, {120, "-5", "0"},      {120, "2.5", "2"},     {120, "3.5", "4"},
        {120, "1e30", "65535"},  {120, "-1e30", "0"},   {100, "0.93", "0.95"}, {100, "99", "12.75"},
        {100, "-1", "0.00"},     {104, "255.4", "255"}, {104, "256", "255"},   {150, "12.34", "12.3"},
        {104, " 12 ", "12"},     {104, "&H10", "16"},
    };
    for (const Row& row : rows) {
        TypeInto(row.Index, row.Typed);
        Key(Qt::Key_Return);
        EXPECT_EQ(TextBox(row.Index)->text().toStdString(), row.Shown) << row.Typed;
        EXPECT_EQ(TextBox(row.Index)->text().toStdString(), GetNumber(txtSetting[row.Index].Tag));
    }
}

TEST_F(SettingsEdit, BadTexts_ChangeNothingAndTheStoredValueComesBack) {
    for (const char* text : {"", "x", "12x", "1 2", "1e400", "-1e400", "nan", "inf", "1.2.3", "--1", "1,2,3",
                             "+", ".", "0x10", "99999999999999999999999999999x"}) {
        TypeInto(120, text);
        Key(Qt::Key_Return);
        EXPECT_EQ(TextBox(120)->text(), "8000") << text;
        EXPECT_EQ(Word(kRevIdle, 0), 8000) << text;
        EXPECT_FALSE(DataChanged) << text;
        EXPECT_FALSE(BlockChanged[kRevIdle]) << text;
        EXPECT_FALSE(Named("cmdUpdate")->isEnabled()) << text;
    }
}

TEST_F(SettingsEdit, LongText_IsNoTrouble) {
    QTest::mouseClick(TextBox(120), Qt::LeftButton);
    QApplication::clipboard()->setText(QString(100000, u'9'));
    TextBox(120)->selectAll();
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_GT(TextBox(120)->text().size(), 10000);
    Key(Qt::Key_Return);
    EXPECT_TRUE(TextBox(120)->text() == "65535" || TextBox(120)->text() == "8000")
        << TextBox(120)->text().toStdString();
    EXPECT_EQ(TextBox(120)->text().toInt(), Word(kRevIdle, 0));
}

TEST_F(SettingsEdit, BlockThatWasNotRead_GoesBlankAndStoresNothing) {
    ReadData[kRevIdle].clear();
    TypeInto(120, "7200");
    Key(Qt::Key_Return);
    EXPECT_EQ(TextBox(120)->text(), "");
    EXPECT_TRUE(ReadData[kRevIdle].empty());
    EXPECT_FALSE(DataChanged);
    EXPECT_FALSE(BlockChanged[kRevIdle]);
}

TEST_F(SettingsEdit, UnchangedBox_IsNoEdit) {
    QTest::mouseClick(TextBox(120), Qt::LeftButton);
    Key(Qt::Key_Return);
    EXPECT_FALSE(DataChanged);
    EXPECT_FALSE(CanUndo());
}

TEST_F(SettingsEdit, OneEdit_TouchesItsFieldAlone) {
    const auto before = ReadData;
    TypeInto(121, "1234");
    Key(Qt::Key_Return);
    for (std::size_t block = 0; block < 256; ++block) {
        if (block != kRevIdle) {
            EXPECT_EQ(ReadData[block], before[block]) << block;
        }
    }
    EXPECT_EQ(Word(kRevIdle, 2), 1234);
    EXPECT_EQ(ReadData[kRevIdle].substr(4), before[kRevIdle].substr(4));
    EXPECT_EQ(ReadData[kRevIdle].substr(0, 2), before[kRevIdle].substr(0, 2));
}

TEST_F(SettingsEdit, CheckBoxes_ByMouseAndSpace) {
    auto* check = Button("chkSetting", 180);
    ReadData[0xAC][0] = '\0';
    DisplayAllData();
    Main.Mirror();
    const bool before = check->isChecked();
    Click(check);
    EXPECT_EQ(check->isChecked(), !before);
    EXPECT_EQ(ReadData[0xAC][0], '\xFF');
    EXPECT_TRUE(BlockChanged[0xAC]);
    QTest::keyClick(check, Qt::Key_Space);
    EXPECT_EQ(check->isChecked(), before);
    EXPECT_EQ(ReadData[0xAC][0], '\0');
}

TEST_F(SettingsEdit, CheckBoxOfABit_LeavesTheOtherBits) {
    ClickTab(10);
    ReadData[kCustom][0] = '\x55';
    DisplayAllData();
    Main.Mirror();
    auto* check = Button("chkSettingBit", 552);  // mask 2
    EXPECT_FALSE(check->isChecked());
    Click(check);
    EXPECT_TRUE(check->isChecked());
    EXPECT_EQ(ReadData[kCustom][0], '\x57');
    Click(check);
    EXPECT_EQ(ReadData[kCustom][0], '\x55');
}

TEST_F(SettingsEdit, CheckBoxOfABlockThatWasNotRead_StaysUnticked) {
    ReadData[0xAC].clear();
    DisplayAllData();
    Main.Mirror();
    auto* check = Button("chkSetting", 180);
    const bool before = check->isChecked();
    Click(check);
    EXPECT_EQ(check->isChecked(), before);
    EXPECT_FALSE(DataChanged);
}

TEST_F(SettingsEdit, Options_ChooseOneOfTheirFrame) {
    ReadData[kBoost][2] = '\0';
    DisplayAllData();
    Main.Mirror();
    EXPECT_TRUE(Button("optSetting", 100)->isChecked());
    Click(Button("optSetting", 102));
    EXPECT_EQ(ReadData[kBoost][2], '\x02');
    for (int i = 100; i < 104; ++i) EXPECT_EQ(Button("optSetting", i)->isChecked(), i == 102) << i;
    // A click on the chosen one does not take it away.
    Click(Button("optSetting", 102));
    EXPECT_TRUE(Button("optSetting", 102)->isChecked());
    EXPECT_EQ(ReadData[kBoost][2], '\x02');
    QTest::keyClick(Button("optSetting", 101), Qt::Key_Space);
    for (int i = 100; i < 104; ++i) EXPECT_EQ(Button("optSetting", i)->isChecked(), i == 101) << i;
}

TEST_F(SettingsEdit, TunerString_IsWrittenAsAWhole) {
    ClickTab(10);
    auto* entry = Named<QLineEdit>("Text1");
    TypeInto(entry, "joe");
    Key(Qt::Key_Tab);
    EXPECT_EQ(ReadData[kCustom], "joe     ");
    EXPECT_TRUE(BlockChanged[kCustom]);
    EXPECT_EQ(Member<QLabel>("lblSetting", 550)->text(), "joe");
    // It takes eight characters, and passing through it empty blanks the string.
    QTest::mouseClick(entry, Qt::LeftButton);
    entry->selectAll();
    Type("123456789");
    EXPECT_EQ(entry->text(), "12345678");
    Key(Qt::Key_Return);
    EXPECT_EQ(ReadData[kCustom], "12345678");
    QTest::mouseClick(entry, Qt::LeftButton);
    entry->selectAll();
    Key(Qt::Key_Delete);
    ClickFrame(550);
    EXPECT_EQ(ReadData[kCustom], "        ");
}

TEST_F(SettingsEdit, RightClickOnAFrame_OpensItsMenuAndStoresFirst) {
    TypeInto(120, "7200");
    ClickFrame(180, Qt::RightButton);
    auto* menu = Named<QMenu>("mnuPopUp1");
    ASSERT_TRUE(menu->isVisible());
    EXPECT_EQ(PopupFrame, 180);
    EXPECT_EQ(Word(kRevIdle, 0), 7200);
    EXPECT_EQ(menu->actions().size(), 2);
    QString captions;
    for (const QAction* item : menu->actions()) captions += item->text().remove('&') + ' ';
    EXPECT_EQ(captions, "Read Write ");
    QTest::keyClick(menu, Qt::Key_Escape);
    ClickFrame(120, Qt::RightButton);
    EXPECT_EQ(PopupFrame, 120);
    QTest::keyClick(menu, Qt::Key_Escape);
}

TEST_F(SettingsEdit, FrameMenuWithoutAPort_Asks) {
    for (const char* item : {"mnuRead", "mnuWrite"}) {
        ClickFrame(120, Qt::RightButton);
        ExpectMessage("No COM port has been selected.\nWould you like to AutoDetect the COM port now?",
                      Answer::No);
        ClickItemOf(Named<QMenu>("mnuPopUp1"), QString::fromLatin1(item));
        EXPECT_TRUE(NoMessageLeft()) << item;
    }
}

TEST_F(SettingsEdit, RightClickOnALabel_OpensTheFramesMenu) {
    auto* label = Member<QWidget>("lblRevIdle", 120);
    QTest::mouseClick(label, Qt::RightButton);
    Settle();
    auto* menu = Named<QMenu>("mnuPopUp1");
    EXPECT_TRUE(menu->isVisible());
    EXPECT_EQ(PopupFrame, 120);
    QTest::keyClick(menu, Qt::Key_Escape);
}

TEST_F(SettingsEdit, RawNames_GoToTheClipboardByAClick) {
    for (const int index : {628, 629}) {
        if (!ControlExists(lblSetting, index)) continue;
        lblSetting[index].Caption = "names " + std::to_string(index);
        Main.Mirror();
        QTest::mouseClick(Member<QWidget>("lblSetting", index), Qt::LeftButton);
        EXPECT_EQ(Clipboard(), "names " + std::to_string(index));
    }
    Clipboard() = "kept";
    QTest::mouseClick(Member<QWidget>("lblSetting", 140), Qt::LeftButton);
    EXPECT_EQ(Clipboard(), "kept");
}

class Comparing : public SettingsEdit {
  protected:
    Comparing() {
        mnuCompare.Checked = true;
        Main.Mirror();
    }
};

TEST_F(Comparing, NoSettingTakesTheFocusAndNothingChanges) {
    const auto before = ReadData;
    for (QLineEdit* box : {TextBox(120), TextBox(104), TextBox(151)}) {
        QTest::mouseClick(box, Qt::LeftButton);
        EXPECT_FALSE(box->hasFocus());
        EXPECT_TRUE(TabStripHasTheFocus());
        const QString text = box->text();
        Type("9");
        EXPECT_EQ(box->text(), text);
        box->setFocus(Qt::TabFocusReason);
        EXPECT_FALSE(box->hasFocus());
    }
    for (const char* name : {"chkSetting(180)", "optSetting(100)", "optSetting(103)"}) {
        auto* button = Named<QAbstractButton>(QString::fromLatin1(name));
        const bool checked = button->isChecked();
        Click(button);
        EXPECT_EQ(button->isChecked(), checked) << name;
        EXPECT_FALSE(button->hasFocus()) << name;
    }
    ClickTab(10);
    for (const char* name : {"Text1", "txtNotes", "txtSetting(500)", "chkSettingBit(552)"}) {
        auto* widget = Named(QString::fromLatin1(name));
        QTest::mouseClick(widget, Qt::LeftButton);
        EXPECT_FALSE(widget->hasFocus()) << name;
        widget->setFocus(Qt::TabFocusReason);
        EXPECT_FALSE(widget->hasFocus()) << name;
    }
    EXPECT_EQ(ReadData, before);
    EXPECT_FALSE(DataChanged);
}

TEST_F(Comparing, TabKey_PassesTheSettings) {
    Tabs()->tabBar()->setFocus();
    for (int i = 0; i < 5; ++i) {
        Key(Qt::Key_Tab);
        QWidget* focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        EXPECT_FALSE(focus->objectName().startsWith("txtSetting")) << focus->objectName().toStdString();
    }
}

// What stands half typed in a box belongs to the Power-FC that it was typed for.
TEST_F(SettingsEdit, FrameThatIsHiddenWhileItsBoxHasTheFocus_StoresNothing) {
    const auto before = ReadData;
    TypeInto(120, "7200");
    FraSettings[120].Visible = false;
    Main.Mirror();
    Settle();
    EXPECT_EQ(ReadData, before);
    EXPECT_FALSE(DataChanged);
    FraSettings[120].Visible = true;
    Main.Mirror();
    Settle();
    EXPECT_EQ(TextBox(120)->text(), "8000") << "what was typed is not what is stored";
    QTest::mouseClick(TextBox(120), Qt::LeftButton);
    Key(Qt::Key_Return);
    EXPECT_EQ(ReadData, before);
}

TEST_F(SettingsEdit, VersionThatChangesWhileABoxHasTheFocus_StoresNothing) {
    TypeInto(120, "7200");
    ApplyBuild("13B-REW7.07");
    for (int block = 0; block < 256; ++block) {
        const auto at = static_cast<std::size_t>(block);
        if (BlockRead[at]) ReadData[at] = Pattern(block, BlockLength[at]);
    }
    const auto before = ReadData;
    DisplayAllData();
    Main.Mirror();
    Settle();
    EXPECT_EQ(ReadData, before);
    ClickTab(7);
    ClickTab(6);
    EXPECT_EQ(ReadData, before);
    EXPECT_EQ(TextBox(120)->text().toStdString(), txtSetting[120].Text);
    EXPECT_FALSE(DataChanged);
}

TEST_F(SettingsEdit, TabThatIsHiddenWhileItsBoxHasTheFocus_StoresNothing) {
    const auto before = ReadData;
    TypeInto(120, "7200");
    SSTab1.TabVisible[6] = false;
    SSTab1.Tab = kGeneralTab;
    Main.Mirror();
    Settle();
    EXPECT_EQ(ReadData, before);
    SSTab1.TabVisible[6] = true;
    Main.Mirror();
    ClickTab(6);
    EXPECT_EQ(TextBox(120)->text(), "8000");
    EXPECT_EQ(ReadData, before);
}

TEST_F(SettingsEdit, MenuOverABox_StoresNothingUntilACommandRuns) {
    TypeInto(120, "7200");
    auto* menu = Named<QMenu>("mnuSetupMaps");
    QTest::mouseClick(Main.menuBar(), Qt::LeftButton, {},
                      Main.menuBar()->actionGeometry(menu->menuAction()).center());
    Settle();
    ASSERT_TRUE(menu->isVisible());
    EXPECT_EQ(Word(kRevIdle, 0), 8000);
    QTest::keyClick(menu, Qt::Key_Escape);
    QTest::keyClick(Main.menuBar(), Qt::Key_Escape);
    Settle();
    EXPECT_TRUE(TextBox(120)->hasFocus());
    EXPECT_EQ(TextBox(120)->text(), "7200");
    EXPECT_EQ(Word(kRevIdle, 0), 8000);
    ClickItem("mnuMapColourScheme", "mnuSetupMapColourScheme(0)");
    EXPECT_EQ(Word(kRevIdle, 0), 7200);
}

TEST_F(SettingsEdit, CommandChosenByTheMenuKeys_StoresFirst) {
    TypeInto(120, "7200");
    // Alt alone goes to the menu bar.
    QTest::keyPress(TextBox(120), Qt::Key_Alt);
    QTest::keyRelease(TextBox(120), Qt::Key_Alt);
    Settle();
    ASSERT_TRUE(Main.menuBar()->hasFocus());
    EXPECT_EQ(Word(kRevIdle, 0), 8000);
    QTest::keyClick(Main.menuBar(), Qt::Key_M);
    Settle();
    auto* menu = Named<QMenu>("mnuSetupMaps");
    ASSERT_TRUE(menu->isVisible());
    EXPECT_EQ(Word(kRevIdle, 0), 8000);
    QTest::keyClick(menu, Qt::Key_L);
    Settle();
    EXPECT_TRUE(mnuMapRefLabels.Checked);
    EXPECT_EQ(Word(kRevIdle, 0), 7200);
}

TEST_F(SettingsEdit, ShortCut_StoresFirst) {
    TypeInto(120, "7200");
    Key(Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(mnuMapRefLabels.Checked);
    EXPECT_EQ(Word(kRevIdle, 0), 7200);
}

// Ctrl+U clears the line in some desktops' text boxes; here it sends what has changed.
TEST_F(SettingsEdit, CtrlU_IsUpdateInATextBoxToo) {
    TypeInto(121, "900");
    Key(Qt::Key_Return);
    ASSERT_TRUE(Item("mnuUpdate")->isEnabled());
    TypeInto(120, "7200");
    ExpectMessage("No COM port has been selected.\nWould you like to AutoDetect the COM port now?",
                  Answer::No);
    Key(Qt::Key_U, Qt::ControlModifier);
    EXPECT_TRUE(NoMessageLeft());
    EXPECT_EQ(Word(kRevIdle, 0), 7200);
    EXPECT_EQ(TextBox(120)->text(), "7200");
}

// Desktops differ in these keys: in one Ctrl+U clears the line, in another Ctrl+Y is none of the box's.
TEST_F(SettingsEdit, KeysThatDesktopsDifferIn_MeanTheSameEverywhere) {
    TypeInto(120, "7200");
    TextBox(120)->undo();
    const QString undone = TextBox(120)->text();
    const auto send = [this](QEvent::Type type, int key) {
        QKeyEvent event(type, key, Qt::ControlModifier);
        event.ignore();
        EXPECT_TRUE(TakesKey(*TextBox(120), event));
        return event.isAccepted();
    };
    EXPECT_FALSE(send(QEvent::ShortcutOverride, Qt::Key_U));
    EXPECT_TRUE(send(QEvent::KeyPress, Qt::Key_U));
    EXPECT_EQ(TextBox(120)->text(), undone);
    EXPECT_TRUE(send(QEvent::ShortcutOverride, Qt::Key_Y));
    EXPECT_EQ(TextBox(120)->text(), undone);
    EXPECT_TRUE(send(QEvent::KeyPress, Qt::Key_Y));
    EXPECT_NE(TextBox(120)->text(), undone);
    QKeyEvent other(QEvent::KeyPress, Qt::Key_Y, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(TakesKey(*TextBox(120), other));
}

TEST_F(SettingsEdit, ClosingTheWindow_StoresFirst) {
    mnuSaveAs_Click = [] {};
    TypeInto(120, "7200");
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::Cancel);
    EXPECT_FALSE(Main.close());
    EXPECT_EQ(Word(kRevIdle, 0), 7200);
    EXPECT_TRUE(NoMessageLeft());
    EXPECT_TRUE(Main.isVisible());
}

// A window in the background has no focus; what was typed stood on the screen, but was stored nowhere.
TEST_F(SettingsEdit, WindowInTheBackground_StoresBeforeItsTabChangesAndBeforeItCloses) {
    TypeInto(120, "7200");
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    Tabs()->setCurrentIndex(7);
    EXPECT_EQ(Word(kRevIdle, 0), 7200);
    Tabs()->setCurrentIndex(6);
    EXPECT_EQ(TextBox(120)->text(), "7200");

    other.hide();
    QApplication::setActiveWindow(&Main);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Main));
    TypeInto(120, "7300");
    QWidget third;
    third.show();
    QApplication::setActiveWindow(&third);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&third));
    mnuSaveAs_Click = [] {};
    ExpectMessage("You have made setting changes that have not been saved.\nDo you want to save?",
                  Answer::Cancel);
    EXPECT_FALSE(Main.close());
    EXPECT_EQ(Word(kRevIdle, 0), 7300);
}

TEST_F(SettingsEdit, AnotherWindow_StoresNothing) {
    TypeInto(120, "7200");
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_EQ(Word(kRevIdle, 0), 8000);
    other.hide();
    QApplication::setActiveWindow(&Main);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Main));
    EXPECT_TRUE(TextBox(120)->hasFocus());
    EXPECT_EQ(TextBox(120)->text(), "7200");
}

}  // namespace
}  // namespace zandrel
