// The selectors of maps and menus, by mouse and keys.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTableView>
#include <QtTest/QTest>

#include "link/port.h"
#include "shell/windows/windowfixture.h"
#include "tuning/display.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

class Selectors : public WindowTest {
  protected:
    void Choose(QComboBox* combo, int row) {
        combo->showPopup();
        Settle();
        auto* list = combo->view();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualRect(list->model()->index(row, 0)).center());
        Settle();
    }

    // Opens the menu by its mnemonic or mouse and clicks the item.
    void ClickItem(const QString& menuName, const QString& itemName) {
        auto* menu = Named<QMenu>(menuName);
        menu->popup(Main.mapToGlobal(QPoint(10, 10)));
        Settle();
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(Item(itemName)).center());
        Settle();
    }

    std::string CellOf(int map) {
        return Member<QTableView>("Grid", map)->model()->index(0, 0).data().toString().toStdString();
    }
};

TEST_F(Selectors, TabClick_TellsTheLogicAndGivesTheGridTheFocus) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(1);
    EXPECT_EQ(SSTab1.Tab, 1);
    EXPECT_TRUE(Member<QTableView>("Grid", 1)->hasFocus());
    ClickTab(6);
    EXPECT_EQ(SSTab1.Tab, 6);
    EXPECT_TRUE(Member<QWidget>("FraSettings", 120)->isVisible());
}

TEST_F(Selectors, HiddenTabOfTheRecords_LeavesTheRow) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(9);
    SSTab1.TabVisible[9] = false;
    SSTab1.Tab = kGeneralTab;
    Main.Mirror();
    EXPECT_FALSE(Tabs()->isTabVisible(9));
    EXPECT_EQ(Tabs()->currentIndex(), kGeneralTab);
    EXPECT_EQ(SSTab1.Tab, kGeneralTab);
}

TEST_F(Selectors, InjectionMode_ByComboAndByMenu) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickTab(0);
    auto* combo = Member<QComboBox>("comMapType", 0);
    const std::string correction = CellOf(0);
    Choose(combo, 2);
    EXPECT_EQ(InjMapDisplay, 2);
    EXPECT_NE(CellOf(0), correction);
    EXPECT_TRUE(Item("mnuInjMapDisplay(2)")->isChecked());
    EXPECT_FALSE(Item("mnuInjMapDisplay(0)")->isChecked());
    EXPECT_TRUE(Member<QTableView>("Grid", 0)->hasFocus());
    ClickItem("mnuSetupInjMap", "mnuInjMapDisplay(1)");
    EXPECT_EQ(InjMapDisplay, 1);
    EXPECT_EQ(combo->currentIndex(), 1);
    ClickItem("mnuSetupInjMap", "mnuInjMapDisplay(1)");
    EXPECT_TRUE(Item("mnuInjMapDisplay(1)")->isChecked()) << "a second click must not take the tick away";
    combo->setFocus();
    QTest::keyClick(combo, Qt::Key_Up);
    EXPECT_EQ(InjMapDisplay, 0);
    EXPECT_EQ(CellOf(0), correction);
}

TEST_F(Selectors, BaseMode_ReachesBothBaseMaps) {
    ShowAt(1280, 800);
    ShowBuild("B18C2.02B");
    ClickTab(3);
    Choose(Member<QComboBox>("comMapType", 3), 1);
    EXPECT_EQ(BaseMapDisplay, 1);
    EXPECT_EQ(Member<QComboBox>("comMapType", 2)->currentIndex(), 1);
    EXPECT_TRUE(Item("mnuBaseMapDisplay(1)")->isChecked());
}

TEST_F(Selectors, BaseModes_AreDisabledWithoutABaseMap) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    EXPECT_FALSE(Item("mnuBaseMapDisplay(0)")->isEnabled());
    EXPECT_FALSE(Named<QMenu>("mnuSetupBaseMap")->menuAction()->isEnabled());
    EXPECT_FALSE(Member<QWidget>("comMapType", 1)->isVisibleTo(Tabs()->widget(1)));
    ShowBuild("13B-REW7.07");
    EXPECT_TRUE(Item("mnuBaseMapDisplay(0)")->isEnabled());
    EXPECT_TRUE(Member<QWidget>("comMapType", 3)->isVisibleTo(Tabs()->widget(3)));
}

TEST_F(Selectors, Split_ByClick) {
    ShowAt(1280, 800);
    ShowBuild("13B-REW7.07");
    ClickTab(2);
    auto* split = Member<QCheckBox>("chkSplit", 2);
    ASSERT_TRUE(split->isVisible());
    EXPECT_FALSE(Member<QCheckBox>("chkSplit", 1)->isVisibleTo(Tabs()->widget(1)));
    const std::string plain = CellOf(2);
    Click(split);
    EXPECT_EQ(chkSplit[2].Value, 1);
    EXPECT_NE(CellOf(2), plain);
    Click(split);
    EXPECT_EQ(CellOf(2), plain);
}

TEST_F(Selectors, ColourSchemeAndLabels_ByMenu) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    ClickItem("mnuMapColourScheme", "mnuSetupMapColourScheme(0)");
    EXPECT_EQ(MapColourScheme, 0);
    EXPECT_TRUE(Item("mnuSetupMapColourScheme(0)")->isChecked());
    EXPECT_FALSE(Item("mnuSetupMapColourScheme(1)")->isChecked());
    const auto* model = Member<QTableView>("Grid", 0)->model();
    EXPECT_EQ(model->headerData(0, Qt::Horizontal).toString(), "N01");
    ClickItem("mnuSetupMaps", "mnuMapRefLabels");
    EXPECT_TRUE(Item("mnuMapRefLabels")->isChecked());
    EXPECT_EQ(model->headerData(0, Qt::Horizontal).toString().toStdString(), Grid[0].ColumnHead[1]);
    EXPECT_NE(Grid[0].ColumnHead[1], "N01");
    QTest::keyClick(&Main, Qt::Key_L, Qt::ControlModifier);
    EXPECT_FALSE(mnuMapRefLabels.Checked);
}

TEST_F(Selectors, InterfaceVersion_ByMenu) {
    ShowAt(1280, 800);
    ClickItem("mnuSetupCorvane", "mnuSetupCorvaneVer(0)");
    EXPECT_EQ(CorvaneVer, "V1.X");
    EXPECT_TRUE(Item("mnuSetupCorvaneVer(0)")->isChecked());
    EXPECT_FALSE(Item("mnuSetupCorvaneVer(1)")->isChecked());
}

TEST_F(Selectors, PortMenu_OffersWhatExistsAndSaysSoWhenNothingDoes) {
    std::string ports;
    for (int n = 1; n <= 16; ++n) ports += (n > 1 ? "," : "") + std::to_string(n) + "=/nowhere";
    setenv("ZANDREL_PORTS", ports.c_str(), 1);
    ShowAt(1280, 800);
    auto* menu = Named<QMenu>("mnuPort");
    menu->popup(Main.mapToGlobal(QPoint(10, 10)));
    Settle();
    EXPECT_TRUE(Item("mnuComNone")->isVisible());
    for (int i = 0; i < 16; ++i) EXPECT_FALSE(Item(MemberName("mnuCom", i))->isVisible()) << i;
    menu->hide();
    ClickItem("mnuPort", "mnuComShowAll");
    EXPECT_TRUE(mnuComShowAll.Checked);
    menu->popup(Main.mapToGlobal(QPoint(10, 10)));
    Settle();
    EXPECT_FALSE(Item("mnuComNone")->isVisible());
    for (int i = 0; i < 16; ++i) {
        EXPECT_TRUE(Item(MemberName("mnuCom", i))->isVisible()) << i;
        EXPECT_TRUE(Item(MemberName("mnuCom", i))->text().contains(QStringLiteral("COM%1").arg(i + 1)));
    }
    menu->hide();
    unsetenv("ZANDREL_PORTS");
}

TEST_F(Selectors, MenusHoldWhatExistsNow) {
    QStringList titles;
    for (const QAction* menu : Main.menuBar()->actions()) titles.push_back(menu->text());
    EXPECT_EQ(titles.join(' ').toStdString(), "&File &Edit &Power-FC P&ort &Setup &Maps &Help");
}

}  // namespace
}  // namespace zandrel
