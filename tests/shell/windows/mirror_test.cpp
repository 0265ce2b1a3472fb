// What the records say is what the window shows, on builds whose pages differ most.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTableView>

#include "image/image.h"
#include "shell/windows/settingspage.h"
#include "shell/windows/windowfixture.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class Mirror : public WindowTest, public testing::WithParamInterface<const char*> {
  protected:
    // Whether a widget would be seen with its tab in front.
    bool Seen(const QWidget* widget, int tab) { return widget->isVisibleTo(Tabs()->widget(tab)); }

    static bool RowIsCut(const Control& record, int index) {
        return record.Frame == 120 &&
               txtSetting[index].Top + txtSetting[index].Height > FraSettings[120].Height;
    }

    template <class Check>
    void ForEach(const ControlArray& array, const char* name, Check check) {
        for (const auto& [index, record] : array) {
            auto* widget = Member<QWidget>(name, index);
            if (widget == nullptr || record.Frame < 0) continue;
            const bool shown = record.Visible && FraSettings[record.Frame].Visible &&
                               !((&array == &txtSetting || &array == &lblRevIdle) && RowIsCut(record, index));
            EXPECT_EQ(Seen(widget, record.Tab), shown) << name << "(" << index << ")";
            if (shown) check(widget, record, index);
        }
    }

    static void TextAgrees(QWidget* widget, const Control& record, int index) {
        EXPECT_EQ(qobject_cast<QLineEdit*>(widget)->text().toStdString(), record.Text) << index;
        EXPECT_FALSE(record.Text.empty()) << index << " " << record.Tag;
        EXPECT_EQ(widget->isEnabled(), record.Enabled) << index;
    }
    static void CaptionAgrees(QWidget* widget, const Control& record, int index) {
        EXPECT_EQ(qobject_cast<QLabel*>(widget)->text(), Printable(record.Caption)) << index;
    }
    static void ValueAgrees(QWidget* widget, const Control& record, int index) {
        EXPECT_EQ(qobject_cast<QAbstractButton*>(widget)->isChecked(), record.Value != 0) << index;
    }
};

TEST_P(Mirror, EveryVisibleRecord_HasAVisibleWidgetThatSaysTheSame) {
    ShowAt(1280, 800);
    ShowBuild(GetParam());
    for (const auto& [index, record] : FraSettings) {
        auto* box = Member<QGroupBox>("FraSettings", index);
        EXPECT_EQ(Seen(box, record.Tab), record.Visible) << index;
        EXPECT_EQ(box->title().toStdString(), record.Caption) << index;
    }
    ForEach(txtSetting, "txtSetting", TextAgrees);
    ForEach(chkSetting, "chkSetting", ValueAgrees);
    ForEach(chkSettingBit, "chkSettingBit", ValueAgrees);
    ForEach(optSetting, "optSetting", ValueAgrees);
    ForEach(lblSetting, "lblSetting", CaptionAgrees);
    ForEach(lblGeneral, "lblGeneral", CaptionAgrees);
    ForEach(lblRevIdle, "lblRevIdle", CaptionAgrees);
    ForEach(lblAntiLag, "lblAntiLag", CaptionAgrees);
    ForEach(cmdEditCurve, "cmdEditCurve", [](QWidget*, const Control&, int) {});
    for (int tab = 0; tab < kTabs; ++tab) {
        EXPECT_EQ(Tabs()->isTabVisible(tab), SSTab1.TabVisible[tab]) << tab;
        EXPECT_EQ(Tabs()->tabText(tab).toStdString(), SSTab1.TabCaption[tab]) << tab;
    }
    EXPECT_EQ(Tabs()->currentIndex(), SSTab1.Tab);
}

TEST_P(Mirror, EveryMapCell_SaysWhatTheMapSays) {
    ShowAt(1280, 800);
    ShowBuild(GetParam());
    mnuMapRefLabels_Click();
    Main.Mirror();
    for (int map = 0; map < kMapTabs; ++map) {
        if (!SSTab1.TabVisible[map]) continue;
        const auto* model = Member<QTableView>("Grid", map)->model();
        for (int line = 0; line < kMapSide; ++line) {
            for (int column = 0; column < kMapSide; ++column) {
                const QModelIndex cell = model->index(line, column);
                EXPECT_EQ(cell.data().toString().toStdString(), GridCellText(map, line + 1, column + 1));
                EXPECT_EQ(cell.data(Qt::BackgroundRole).value<QColor>(),
                          ColourOf(GridCellColourSet(map, line + 1, column + 1)));
            }
            EXPECT_EQ(model->headerData(line, Qt::Vertical).toString().toStdString(),
                      Grid[map].RowHead[line + 1]);
            EXPECT_EQ(model->headerData(line, Qt::Horizontal).toString().toStdString(),
                      Grid[map].ColumnHead[line + 1]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Builds, Mirror,
                         testing::Values("RB26DETT6.42", "13B-REW7.07", "1JZGT-AT3.54", "B18C2.02B",
                                         "RB26DETT3.11D"));

class MirrorOnce : public WindowTest {};

TEST_F(MirrorOnce, OneBuildAfterTheOther_LeavesNothingOfTheFirst) {
    ShowAt(1280, 800);
    ShowBuild("13B-REW7.07");
    EXPECT_TRUE(Member<QWidget>("FraSettings", 1500)->isVisibleTo(Tabs()->widget(10)));
    ShowBuild("RB26DETT6.42");
    EXPECT_FALSE(Member<QWidget>("FraSettings", 1500)->isVisibleTo(Tabs()->widget(10)));
    EXPECT_TRUE(Member<QWidget>("FraSettings", 500)->isVisibleTo(Tabs()->widget(10)));
    EXPECT_FALSE(Tabs()->isTabVisible(3));
}

TEST_F(MirrorOnce, RevAndIdleRows_EndWhereTheFrameEnds) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT3.11D");  // five rows
    QWidget* page = Tabs()->widget(6);
    for (int i = 120; i < 128; ++i) {
        EXPECT_EQ(Member<QWidget>("txtSetting", i)->isVisibleTo(page), i <= 124) << i;
        EXPECT_EQ(Member<QWidget>("lblRevIdle", i)->isVisibleTo(page), i <= 124) << i;
    }
}

TEST_F(MirrorOnce, InterfaceVersion_TurnsTheCustomFeaturesOver) {
    DisplayInitForCorvaneVer();
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    QWidget* page = Tabs()->widget(10);
    EXPECT_FALSE(Member<QWidget>("chkSettingBit", 552)->isVisibleTo(page));
    EXPECT_TRUE(Named(QStringLiteral("lblInternalPullups"))->isVisibleTo(page));
    CorvaneVer = "V1.X";
    DisplayInitForCorvaneVer();
    Main.Mirror();
    EXPECT_TRUE(Member<QWidget>("chkSettingBit", 552)->isVisibleTo(page));
    EXPECT_TRUE(Member<QWidget>("txtSetting", 550)->isVisibleTo(page));
    EXPECT_TRUE(Member<QWidget>("lblAntiLag", 2)->isVisibleTo(page));
    EXPECT_FALSE(Named(QStringLiteral("lblInternalPullups"))->isVisibleTo(page));
    EXPECT_FALSE(Member<QWidget>("chkSettingBit", 553)->isVisibleTo(page));
}

// On builds with a second base map the block of the short sensor names is a piece of that map: its bytes
// stood on the page as a line of nonsense.
TEST_F(MirrorOnce, SensorNames_ShowOnlyWhereTheirBlockHoldsNames) {
    ShowAt(1280, 800);
    ShowBuild("B18C2.02B");
    EXPECT_FALSE(Member<QWidget>("lblSetting", 100)->isVisibleTo(Tabs()->widget(10)));
    ShowBuild("RB26DETT3.11D");
    ReadData[0x69] = "AirFTPS O2-1";
    DisplayAllData();
    Main.Mirror();
    EXPECT_TRUE(Member<QWidget>("lblSetting", 100)->isVisibleTo(Tabs()->widget(10)));
    EXPECT_EQ(Member<QLabel>("lblSetting", 100)->text(), "AirFTPS O2-1");
    ReadData[0x69] = std::string(80, '\0');
    DisplayAllData();
    Main.Mirror();
    EXPECT_FALSE(Member<QWidget>("lblSetting", 100)->isVisibleTo(Tabs()->widget(10)));
}

TEST_F(MirrorOnce, TextsOfBlocks_AreNeverTakenForMarkup) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    lblSetting[140].Caption = "<b>A&B</b>";
    Main.Mirror();
    auto* label = Member<QLabel>("lblSetting", 140);
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
    EXPECT_EQ(label->text(), "<b>A&B</b>");
    EXPECT_EQ(label->buddy(), nullptr);
    EXPECT_EQ(Member<QWidget>("chkSetting", 140)->accessibleName(), "<b>A&B</b>");
}

TEST_F(MirrorOnce, LockedDisabledAndColouredRecords_AreFollowed) {
    ShowAt(1280, 800);
    ShowBuild("RB26DETT6.42");
    txtSetting[120].Enabled = false;
    txtSetting[121].BackColour = 0x0000FF;
    txtNotes.Text = "shim 0.8";
    FraSettings[500].Enabled = false;
    Main.Mirror();
    EXPECT_FALSE(Member<QWidget>("txtSetting", 120)->isEnabled());
    EXPECT_EQ(Member<QWidget>("txtSetting", 121)->palette().color(QPalette::Base), QColor(255, 0, 0));
    EXPECT_EQ(Named<QPlainTextEdit>(QStringLiteral("txtNotes"))->toPlainText(), "shim 0.8");
    EXPECT_FALSE(Member<QWidget>("txtSetting", 500)->isEnabled());
    txtSetting[121].BackColour = 0;
    Main.Mirror();
    EXPECT_EQ(Member<QWidget>("txtSetting", 121)->palette().color(QPalette::Base),
              Member<QWidget>("txtSetting", 122)->palette().color(QPalette::Base));
}

TEST_F(MirrorOnce, StatusBarAndTitle_TellInWords) {
    ShowAt(1280, 800);
    EXPECT_EQ(Named<QLabel>(QStringLiteral("lblPort"))->text(), "No port chosen");
    EXPECT_EQ(Named<QLabel>(QStringLiteral("lblInterface"))->text(), "Interface V2.0 (not asked yet)");
    EXPECT_EQ(Named<QLabel>(QStringLiteral("lblBuild"))->text(), "No Power-FC read yet");
    ShowBuild("RB26DETT6.42");
    EXPECT_EQ(Named<QLabel>(QStringLiteral("lblBuild"))->text(), "RB26DETT v6.42");
    EXPECT_EQ(Named<QLabel>(QStringLiteral("lblInterface"))->text(), "Interface V2.0");
    SetCaption("Unsaved Data");
    Main.Mirror();
    EXPECT_EQ(Main.windowTitle(), "Zandrel [RB26DETT v6.42] - Unsaved Data");
}

// Counts the events by which a widget is laid out, painted or changed anew.
class UpdateCounter : public QObject {
  public:
    explicit UpdateCounter(const QObject* marker) : marker_(marker) {}
    bool eventFilter(QObject* object, QEvent* event) override {
        switch (event->type()) {
            case QEvent::LayoutRequest:
            case QEvent::Paint:
            case QEvent::Show:
            case QEvent::Hide:
            case QEvent::EnabledChange:
                if (object->isWidgetType() && object != marker_)
                    Changed.push_back(object->objectName().toStdString());
                break;
            default:
                break;
        }
        return false;
    }
    std::vector<std::string> Changed;

  private:
    const QObject* marker_;
};

TEST_F(MirrorOnce, NothingChanged_TouchesNoWidget) {
    ShowAt(1280, 800);
    ShowBuild("13B-REW7.07");
    for (int tab = 0; tab < kTabs; ++tab) {
        if (SSTab1.TabVisible[tab]) ClickTab(tab);
    }
    ClickTab(10);
    PaintOut();
    UpdateCounter counter(Named("lblPort"));
    QCoreApplication::instance()->installEventFilter(&counter);
    Main.Mirror();
    Settle();
    EXPECT_EQ(counter.Changed, std::vector<std::string>{});
    txtSetting[1500].Text = "2.0";
    Main.Mirror();
    PaintOut();
    EXPECT_THAT(counter.Changed, testing::Contains("txtSetting(1500)"));
    EXPECT_THAT(counter.Changed, testing::Not(testing::Contains("txtSetting(1501)")));
}

TEST_F(MirrorOnce, PagesBuiltLate_ShowWhatTheRecordsSay) {
    Main.show();
    ShowBuild("RB26DETT6.42");
    EXPECT_EQ(Main.findChild<QWidget*>(QStringLiteral("txtSetting(120)")), nullptr);
    Main.BuildAllPages();
    EXPECT_EQ(Member<QLineEdit>("txtSetting", 120)->text().toStdString(), txtSetting[120].Text);
    EXPECT_FALSE(Member<QWidget>("FraSettings", 1120)->isVisibleTo(Tabs()->widget(6)));
}

}  // namespace
}  // namespace zandrel
