// What has no handler yet is shown, but does nothing and says so.
#include "shell/windows/commands.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLineEdit>
#include <QMessageBox>
#include <QTabBar>
#include <QToolTip>
#include <QtTest/QTest>

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

TEST_F(Commands, SendingWithoutAHandler_IsDisabledWhateverTheRecordSays) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    for (Control* record : {&cmdWriteAll, &cmdUpdate, &optAutoUpdate}) record->Enabled = true;
    Main.Mirror();
    for (const char* name : {"cmdWriteAll", "cmdUpdate", "optAutoUpdate", "cmdWriteMap(0)"}) {
        auto* button = Named<QAbstractButton>(QString::fromLatin1(name));
        EXPECT_FALSE(button->isEnabled()) << name;
        EXPECT_EQ(button->toolTip().toStdString(), "Sending to the Power-FC is not part of this version.")
            << name;
    }
    EXPECT_TRUE(Named<QAbstractButton>("cmdReadAll")->isEnabled());
    EXPECT_TRUE(Named<QAbstractButton>("cmdReadMap(0)")->isEnabled());
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

TEST_F(Commands, TextBoxes_CanBeCopiedFromButNotTypedInto) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(6);
    auto* box = Member<QLineEdit>("txtSetting", 120);
    const QString before = box->text();
    QTest::mouseClick(box, Qt::LeftButton);
    QTest::keyClicks(box, "123");
    QTest::keyClick(box, Qt::Key_Delete);
    EXPECT_EQ(box->text(), before);
    EXPECT_TRUE(box->isEnabled());
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(box->selectedText(), before);
    EXPECT_EQ(ToolTipOver(box),
              FieldToolTip(txtSetting[120].Tag).toStdString() + "\nEditing is not part of this version.");
}

TEST_F(Commands, ChecksAndOptions_LookNormalAndStayPut) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(6);
    for (const char* name : {"chkSetting(140)", "chkSetting(180)", "optSetting(100)", "optSetting(101)"}) {
        auto* button = Named<QAbstractButton>(QString::fromLatin1(name));
        const bool before = button->isChecked();
        EXPECT_TRUE(button->isEnabled()) << name;
        Click(button);
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Space);
        EXPECT_EQ(button->isChecked(), before) << name;
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
    {
        const LongOperation running;
        Main.Mirror();
        for (const char* name : {"mnuReadAll", "mnuReadMap", "mnuScan", "mnuComAuto", "mnuCom(0)"}) {
            EXPECT_FALSE(Item(QString::fromLatin1(name))->isEnabled()) << name;
        }
        EXPECT_FALSE(Named<QAbstractButton>("cmdReadAll")->isEnabled());
        EXPECT_FALSE(Named<QAbstractButton>("cmdReadMap(0)")->isEnabled());
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
    for (const char* name : {"cmdReadAll",       "cmdWriteAll",
                             "cmdUpdate",        "optAutoUpdate",
                             "cmdReadMap",       "cmdWriteMap",
                             "cmdEditCurve",     "txtSetting",
                             "chkSetting",       "chkSettingBit",
                             "optSetting",       "Text1",
                             "txtNotes",         "mnuScan",
                             "mnuCom",           "mnuComAuto",
                             "mnuComShowAll",    "mnuSetupCorvaneVer",
                             "mnuMapRefLabels",  "mnuSetupMapColourScheme",
                             "mnuInjMapDisplay", "mnuBaseMapDisplay",
                             "comMapType",       "chkSplit"}) {
        EXPECT_EQ(CommandOf(name).Name, name);
    }
    EXPECT_FALSE(HasHandler("cmdNothing"));
}

}  // namespace
}  // namespace zandrel
