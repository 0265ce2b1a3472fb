// What has no handler yet is shown, but does nothing and says so.
#include "shell/windows/commands.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLineEdit>
#include <QMessageBox>
#include <QTabBar>
#include <QToolTip>
#include <QtTest/QTest>

#include "image/image.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "shell/windows/windowfixture.h"
#include "support/scripteddesktop.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class Commands : public WindowTest {
  protected:
    static std::string ToolTipOver(QWidget* widget) {
        QHelpEvent help(QEvent::ToolTip, widget->rect().center(),
                        widget->mapToGlobal(widget->rect().center()));
        QCoreApplication::sendEvent(widget, &help);
        const std::string text = QToolTip::text().toStdString();
        QToolTip::hideText();
        Settle();
        return text;
    }
};

TEST_F(Commands, SendingButtons_FollowTheirRecords) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    for (const bool enabled : {true, false}) {
        for (Control* record : {&cmdWriteAll, &cmdUpdate, &cmdReadMap[0], &cmdWriteMap[0]})
            record->Enabled = enabled;
        Main.Mirror();
        for (const char* name : {"cmdWriteAll", "cmdUpdate", "cmdReadMap(0)", "cmdWriteMap(0)"}) {
            EXPECT_EQ(Named<QAbstractButton>(QString::fromLatin1(name))->isEnabled(), enabled) << name;
        }
    }
    for (const char* name : {"cmdReadAll", "cmdWriteAll", "cmdUpdate", "optAutoUpdate", "cmdWriteMap(0)"}) {
        EXPECT_FALSE(Named<QAbstractButton>(QString::fromLatin1(name))->toolTip().isEmpty()) << name;
    }
    EXPECT_TRUE(Named<QAbstractButton>("cmdReadAll")->isEnabled());
    EXPECT_TRUE(Named<QAbstractButton>("optAutoUpdate")->isEnabled());
}

TEST_F(Commands, CurveButtons_AreNamedAndSayThatTheyComeLater) {
    ShowAt(1280, 800);
    ShowBuild("13B-REW7.07");
    ClickTab(6);
    auto* button = Member<QAbstractButton>("cmdEditCurve", 130);
    EXPECT_EQ(button->text(), "Low");
    EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(ToolTipOver(button), "Editing curves is not part of this version.");
}

TEST_F(Commands, LockedTextBox_CanBeCopiedFromButNotTypedInto) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(6);
    txtSetting[120].Locked = true;
    Main.Mirror();
    auto* box = Member<QLineEdit>("txtSetting", 120);
    const QString before = box->text();
    const ByteString stored = ReadData[0x8B];
    QTest::mouseClick(box, Qt::LeftButton);
    QTest::keyClicks(box, "123");
    QTest::keyClick(box, Qt::Key_Delete);
    EXPECT_EQ(box->text(), before);
    EXPECT_TRUE(box->isEnabled());
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(box->selectedText(), before);
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(ReadData[0x8B], stored);
    EXPECT_EQ(ToolTipOver(box), FieldToolTip(txtSetting[120].Tag).toStdString());
}

TEST_F(Commands, ChecksAndOptions_AreNamed) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(6);
    for (const char* name : {"chkSetting(140)", "chkSetting(180)", "optSetting(100)", "optSetting(101)"}) {
        EXPECT_TRUE(Named<QAbstractButton>(QString::fromLatin1(name))->isEnabled()) << name;
    }
    EXPECT_EQ(Member<QAbstractButton>("chkSetting", 180)->text(), "Flag 1");
    EXPECT_EQ(Member<QAbstractButton>("chkSetting", 189)->text(), "Flag 10");
}

TEST_F(Commands, ReadMap_IsForAMapInViewOfAKnownBuild) {
    ShowAt(1280, 800);
    EXPECT_FALSE(Item("mnuReadMap")->isEnabled());
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    EXPECT_TRUE(Item("mnuReadMap")->isEnabled());
    ClickTab(6);
    EXPECT_FALSE(Item("mnuReadMap")->isEnabled());
}

TEST_F(Commands, WhileALongOperationRuns_NothingCanBeStarted) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    for (Control* record : {&cmdWriteAll, &cmdUpdate}) record->Enabled = true;
    {
        const LongOperation running;
        Main.Mirror();
        for (const char* name : {"mnuReadAll",
                                 "mnuReadMap",
                                 "mnuWriteAll",
                                 "mnuWriteMap",
                                 "mnuUpdate",
                                 "mnuInitAllData",
                                 "mnuRead",
                                 "mnuWrite",
                                 "mnuUndo",
                                 "mnuGridInterpolate",
                                 "mnuReCalcBase",
                                 "mnuOpen",
                                 "mnuSaveAs",
                                 "mnuDefault",
                                 "mnuLoadDefaultAtStart",
                                 "mnuSaveDefaultOnExit",
                                 "mnuCheckUnsavedData",
                                 "mnuScan",
                                 "mnuComAuto",
                                 "mnuCom(0)"}) {
            EXPECT_FALSE(Item(QString::fromLatin1(name))->isEnabled()) << name;
        }
        EXPECT_FALSE(Named<QAbstractButton>("cmdReadAll")->isEnabled());
        for (const char* name : {"cmdReadMap(0)", "cmdWriteMap(0)", "cmdWriteAll", "cmdUpdate"}) {
            EXPECT_FALSE(Named<QAbstractButton>(QString::fromLatin1(name))->isEnabled()) << name;
        }
    }
    Main.Mirror();
    EXPECT_TRUE(Item("mnuReadAll")->isEnabled());
    EXPECT_TRUE(Named<QAbstractButton>("cmdReadMap(0)")->isEnabled());
}

TEST_F(Commands, About_NamesTheVersion) {
    ShowAt(1280, 800);
    Item("mnuAbout")->trigger();
    auto* box = Named<QMessageBox>("frmAbout");
    EXPECT_TRUE(box->isVisible());
    EXPECT_EQ(box->text(), "Zandrel v2.132");
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_FALSE(box->isVisible());
}

TEST_F(Commands, EveryNameOfAWindow_HasARow) {
    for (const char* name : {"cmdReadAll",
                             "cmdWriteAll",
                             "cmdUpdate",
                             "optAutoUpdate",
                             "cmdReadMap",
                             "cmdWriteMap",
                             "cmdEditCurve",
                             "txtSetting",
                             "chkSetting",
                             "chkSettingBit",
                             "optSetting",
                             "lblSetting",
                             "Text1",
                             "txtNotes",
                             "mnuOpen",
                             "mnuOpenSnapshot",
                             "mnuDefault",
                             "mnuSaveAs",
                             "mnuRecentFile",
                             "mnuLoadDefaultAtStart",
                             "mnuSaveDefaultOnExit",
                             "mnuCheckUnsavedData",
                             "mnuUndo",
                             "mnuRedo",
                             "mnuRead",
                             "mnuWrite",
                             "mnuInitAllData",
                             "mnuScan",
                             "mnuCom",
                             "mnuComAuto",
                             "mnuComShowAll",
                             "mnuSetupCorvaneVer",
                             "mnuGridCopy",
                             "mnuGridPaste",
                             "mnuGridInterpolate",
                             "mnuMapRefLabels",
                             "mnuSetupMapColourScheme",
                             "mnuInjMapDisplay",
                             "mnuSetupInjMapStoich",
                             "mnuBaseMapDisplay",
                             "mnuReCalcBase",
                             "comMapType",
                             "chkSplit"}) {
        EXPECT_EQ(CommandOf(name).Name, name);
    }
    EXPECT_FALSE(HasHandler("cmdNothing"));
}

}  // namespace
}  // namespace zandrel
