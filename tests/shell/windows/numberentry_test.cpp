// The one-number dialog, asked for the stoichiometric ratio.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest/QTest>

#include "image/image.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/editfixture.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

constexpr char kOutOfRange[] =
    "Stoich should not be less than 10 or greater than 30. Stoich will not be changed.";

class NumberEntryDialog : public EditTest {
  protected:
    NumberEntryDialog() {
        OpenDesktop(Main);
        ShowMap(0, 100);
        ClickItem("mnuSetupInjMap", "mnuInjMapDisplay(2)");
    }

    QDialog* Dialog() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == "frmNumberEntry" && window->isVisible())
                return static_cast<QDialog*>(window);
        }
        return nullptr;
    }

    // Opens the dialog by its item; the call comes back with the dialog open.
    QLineEdit* Open() {
        ClickItem("mnuSetupInjMap", "mnuSetupInjMapStoich");
        QDialog* dialog = Dialog();
        EXPECT_NE(dialog, nullptr);
        return dialog == nullptr ? nullptr : dialog->findChild<QLineEdit*>("txtNumber");
    }

    static void Enter(QLineEdit* number, const QString& text) {
        number->selectAll();
        QTest::keyClicks(number, text);
    }
};

TEST_F(NumberEntryDialog, Opens_WithItsCaptionAndTheRatio) {
    QLineEdit* number = Open();
    ASSERT_NE(number, nullptr);
    EXPECT_EQ(Dialog()->windowTitle(), "Enter Stoichiometric AF");
    EXPECT_TRUE(Dialog()->isModal());
    EXPECT_EQ(number->text(), "14.70");
    EXPECT_EQ(number->selectedText(), "14.70");
    EXPECT_TRUE(number->hasFocus());
    EXPECT_EQ(StoichAF, 14.7);
    QTest::keyClick(Dialog(), Qt::Key_Escape);
    Settle();
    EXPECT_EQ(Dialog(), nullptr);
}

TEST_F(NumberEntryDialog, Enter_IsOkAndTheGridsFollowAtTheirNextDisplay) {
    const std::string before = GridCellText(0, 1, 1);
    const QString shown = GridOf(0)->model()->index(0, 0).data().toString();
    Enter(Open(), "13.2");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Dialog(), nullptr);
    EXPECT_EQ(StoichAF, 13.2);
    EXPECT_EQ(GridOf(0)->model()->index(0, 0).data().toString(), shown);
    EXPECT_NE(GridCellText(0, 1, 1), before);
    ClickTab(1);
    ClickTab(0);
    EXPECT_EQ(GridOf(0)->model()->index(0, 0).data().toString().toStdString(), GridCellText(0, 1, 1));
    // The item tells the ratio when its menu opens.
    auto* menu = Named<QMenu>("mnuSetupInjMap");
    menu->popup(Main.mapToGlobal(QPoint(10, 10)));
    Settle();
    EXPECT_EQ(Item("mnuSetupInjMapStoich")->text().remove('&'), "Stoich 13.20");
    menu->hide();
}

TEST_F(NumberEntryDialog, OkButton_TakesTheNumber) {
    Enter(Open(), "15");
    QTest::mouseClick(Dialog()->findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(StoichAF, 15);
}

TEST_F(NumberEntryDialog, EscapeAndCancel_KeepTheRatio) {
    Enter(Open(), "13.2");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    Settle();
    EXPECT_EQ(Dialog(), nullptr);
    EXPECT_EQ(StoichAF, 14.7);
    Enter(Open(), "13.2");
    QTest::mouseClick(Dialog()->findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(Dialog(), nullptr);
    EXPECT_EQ(StoichAF, 14.7);
    Enter(Open(), "13.2");
    Dialog()->close();
    Settle();
    EXPECT_EQ(StoichAF, 14.7);
}

TEST_F(NumberEntryDialog, LeavingTheNumber_PutsItInItsPicture) {
    struct Row {
        const char* Typed;
        const char* Shown;
    };
    QLineEdit* number = Open();
    for (const Row& row : {Row{"13", "13.00"}, Row{"14.678", "14.68"}, Row{"x", "0.00"}, Row{"", "0.00"}}) {
        QTest::mouseClick(number, Qt::LeftButton);
        number->selectAll();
        QTest::keyClick(number, Qt::Key_Delete);
        QTest::keyClicks(number, QString::fromLatin1(row.Typed));
        QTest::keyClick(number, Qt::Key_Tab);
        Settle();
        EXPECT_FALSE(number->hasFocus());
        EXPECT_EQ(number->text().toStdString(), row.Shown) << row.Typed;
    }
    QTest::keyClick(Dialog(), Qt::Key_Escape);
}

TEST_F(NumberEntryDialog, OutOfRange_IsToldAndTheRatioStays) {
    for (const char* text : {"9.99", "30.01", "", "x", "-14.7", "1e400"}) {
        Enter(Open(), "0");
        auto* number = Dialog()->findChild<QLineEdit*>("txtNumber");
        number->selectAll();
        QTest::keyClick(number, Qt::Key_Delete);
        QTest::keyClicks(number, QString::fromLatin1(text));
        std::string told;
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, &Main, [&told] {
            for (QWidget* window : QApplication::topLevelWidgets()) {
                auto* box = qobject_cast<QMessageBox*>(window);
                if (box == nullptr || !box->isVisible()) continue;
                told = box->text().toStdString();
                QTest::keyClick(box, Qt::Key_Escape);
            }
        });
        answer.start(1);
        QTest::keyClick(number, Qt::Key_Return);
        Settle();
        EXPECT_EQ(told, kOutOfRange) << text;
        EXPECT_EQ(StoichAF, 14.7) << text;
        EXPECT_EQ(Dialog(), nullptr) << text;
    }
}

TEST_F(NumberEntryDialog, LimitsThemselves_AreTaken) {
    Enter(Open(), "10");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(StoichAF, 10);
    Enter(Open(), "30");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(StoichAF, 30);
}

}  // namespace
}  // namespace zandrel
