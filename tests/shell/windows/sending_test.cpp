// Edits sent to a Power-FC by the real window: by Update, by itself, whole, map by map and frame by frame;
// the windows that stand meanwhile, and the person who uses them.
#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest/QTest>
#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "image/image.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "shell/startstop.h"
#include "shell/windows/desktopdoor.h"
#include "shell/windows/editfixture.h"
#include "simulator/simulator.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "util/desktop.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr int kInjection = 0x86;
constexpr int kInjectionCell = 0x85;  // the command before the map writes a cell
constexpr int kRevIdle = 0x8B;

class Sending : public EditTest {
  protected:
    Sending() {
        OpenDesktop(Main);
        frmMain_Load();
        mnuCheckUnsavedData.Checked = false;
        // The person at the screen: looks again and again, as a timer.
        QObject::connect(&person_, &QTimer::timeout, &Main, [this] { Look(); });
        person_.start(1);
    }
    ~Sending() override {
        optAutoUpdate.Value = 0;
        StopTimer(Timer::Update);
        unsetenv("ZANDREL_PORTS");
    }

    // Connects a Power-FC and reads it whole, by the buttons.
    void ReadAllOf(const std::string& version, int map = 0) {
        powerfc::Options options;
        options.Version = version;
        device_ = std::make_unique<powerfc::Simulator>(options);
        std::string ports = "1=" + device_->PortName();
        for (int n = 2; n <= 16; ++n) ports += "," + std::to_string(n) + "=/nowhere";
        setenv("ZANDREL_PORTS", ports.c_str(), 1);
        ClickItem("mnuPort", "mnuCom(0)");
        ASSERT_TRUE(MSComm1.PortOpen());
        ReadAll();
        ASSERT_EQ(VerName + VerNumber, version);
        ClickTab(map);
        device_->ClearJournal();
    }
    void ReadAll() {
        Click(Named("cmdReadAll"));
        ASSERT_TRUE(Named("cmdWriteAll")->isEnabled());
    }

    // Lost frames end quickly from now on: two sends of each.
    static void Impatient() {
        ComTimeOutTicks = 100;
        ComRetries = 1;
    }

    // Whole map blocks are refused, and each cell takes its time, so that the progress window is seen.
    void RefuseBlocks(int cellMs = 2) {
        Impatient();
        device_->RefuseMapBlocks(true);
        device_->Delay(kInjectionCell, cellMs, powerfc::kForever);
    }

    // Presses OK in every message box, and does `WhileItRuns` once a progress window stands.
    void Look() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (!window->isVisible()) continue;
            if (auto* box = qobject_cast<QMessageBox*>(window)) {
                Told.push_back(box->text().toStdString());
                QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
                return;
            }
            if (window->objectName() != "frmProgress2" || !WhileItRuns) continue;
            const auto action = std::exchange(WhileItRuns, nullptr);
            action();
        }
    }

    QPushButton* CancelButton() { return Named("frmProgress2")->findChild<QPushButton*>("cmdCancel"); }

    // Hexadecimal texts of the frames with data: all that could change the Power-FC.
    std::vector<std::string> Writes() const {
        std::vector<std::string> writes;
        for (const std::string& frame : device_->Received()) {
            if (frame.size() > 6) writes.push_back(frame);
        }
        return writes;
    }
    int CellWrites() const {
        const auto frames = device_->Received();
        return static_cast<int>(std::count_if(frames.begin(), frames.end(), [](const std::string& frame) {
            return frame.rfind("85", 0) == 0;
        }));
    }
    std::string BlockFrame(int block) const {
        const ByteString& data = ReadData[static_cast<std::size_t>(block)];
        return powerfc::ToHex(
            powerfc::Frame(static_cast<std::uint8_t>(block), powerfc::Bytes(data.begin(), data.end())));
    }

    void ExpectInStep() const {
        for (int b = 0; b < 256; ++b) {
            if (device_->Writable(b) && BlockLength[static_cast<std::size_t>(b)] > 0) {
                EXPECT_EQ(device_->BlockString(b), ReadData[static_cast<std::size_t>(b)]) << "block " << b;
            }
        }
    }

    static int MarkedCells(int map) {
        int count = 0;
        for (int row = 1; row <= kMapSide; ++row) {
            for (int column = 1; column <= kMapSide; ++column) {
                count += MapCellChanged[static_cast<std::size_t>(map)][static_cast<std::size_t>(row)]
                                       [static_cast<std::size_t>(column)]
                             ? 1
                             : 0;
            }
        }
        return count;
    }

    std::string Unsent() { return Named<QLabel>("lblUnsent")->text().toStdString(); }

    // Steps every cell of the map in view.
    void StepAll() {
        Key(Qt::Key_A, Qt::ControlModifier);
        Key(Qt::Key_Plus, Qt::ControlModifier);
    }

    void FrameMenu(int frame, const char* item) {
        auto* box = Member<QGroupBox>("FraSettings", frame);
        QTest::mouseClick(box, Qt::RightButton, {}, QPoint(box->width() - 3, box->height() - 3));
        Settle();
        ClickItemOf(Named<QMenu>("mnuPopUp1"), QString::fromLatin1(item));
    }

    std::function<void()> WhileItRuns;
    std::vector<std::string> Told;
    std::unique_ptr<powerfc::Simulator> device_;
    QTimer person_;
};

TEST_F(Sending, EditThenUpdate_SendsItsBlockAndASecondReadAllReturnsIt) {
    ReadAllOf("RB26DETT6.42");
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    ClickCell(0, 3, 4);
    Type("1.25");
    Key(Qt::Key_Return);
    ASSERT_EQ(Raw(0, 3, 4), 192);
    ASSERT_TRUE(Named("cmdUpdate")->isEnabled());
    EXPECT_EQ(Unsent(), "Not sent: 1 block, 1 cell");
    EXPECT_EQ(Writes(), std::vector<std::string>{});
    Click(Named("cmdUpdate"));
    EXPECT_EQ(Writes(), std::vector<std::string>{BlockFrame(kInjection)});
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    EXPECT_EQ(MarkedCells(0), 0);
    EXPECT_EQ(Unsent().substr(0, 8), "Updated ");
    EXPECT_EQ(Unsent().size(), std::string("Updated 14:03:22").size());
    ExpectInStep();
    const ByteString sent = ReadData[kInjection];
    ReadAll();
    EXPECT_EQ(ReadData[kInjection], sent);
    EXPECT_EQ(GridOf(0)->model()->index(2, 3).data().toString(), "1.250");
    EXPECT_EQ(Told, std::vector<std::string>{});
}

TEST_F(Sending, SettingLeftByItsShortCut_IsStoredAndSent) {
    ReadAllOf("RB26DETT6.42", 6);
    auto* box = Member<QLineEdit>("txtSetting", 120);
    QTest::mouseClick(box, Qt::LeftButton);
    box->selectAll();
    Type("7200");
    Key(Qt::Key_Return);
    QTest::mouseClick(box, Qt::LeftButton);
    box->selectAll();
    Type("7300");
    Key(Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(Writes(), std::vector<std::string>{BlockFrame(kRevIdle)});
    EXPECT_EQ(ReadData[kRevIdle].substr(0, 2), "\x84\x1C");
    ExpectInStep();
}

TEST_F(Sending, AutoUpdate_SendsHalfASecondAfterTheLastChange) {
    ReadAllOf("RB26DETT6.42");
    Click(Named("optAutoUpdate"));
    QTest::qWait(700);
    EXPECT_EQ(Writes(), std::vector<std::string>{});
    GridOf(0)->setFocus();
    QElapsedTimer sinceLast;
    for (int i = 0; i < 4; ++i) {
        Key(Qt::Key_A, Qt::ControlModifier);
        Key(Qt::Key_Equal);
        sinceLast.start();
        QTest::qWait(200);
        EXPECT_EQ(Writes(), std::vector<std::string>{}) << i;
    }
    ASSERT_TRUE(QTest::qWaitFor([this] { return Writes().size() == 4; }, 3000));
    EXPECT_GE(sinceLast.elapsed(), 450);
    ASSERT_TRUE(QTest::qWaitFor([] { return !cmdUpdate.Enabled && !LongOperationRuns(); }, 2000));
    EXPECT_EQ(Writes(), (std::vector<std::string>{BlockFrame(0x86), BlockFrame(0x87), BlockFrame(0x88),
                                                  BlockFrame(0x89)}));
    ExpectInStep();
    EXPECT_TRUE(QTest::qWaitFor([this] { return Unsent().substr(0, 8) == "Updated "; }, 2000));
    // Nothing more to send, nothing more is sent.
    device_->ClearJournal();
    QTest::qWait(700);
    EXPECT_EQ(device_->Received(), std::vector<std::string>{});
    EXPECT_EQ(Told, std::vector<std::string>{});
}

TEST_F(Sending, AutoUpdateTurnedOff_SendsNothing) {
    ReadAllOf("RB26DETT6.42");
    Click(Named("optAutoUpdate"));
    ASSERT_TRUE(QTest::qWaitFor([] { return !cmdUpdate.Enabled && !LongOperationRuns(); }, 2000));
    Click(Named("optAutoUpdate"));
    device_->ClearJournal();
    GridOf(0)->setFocus();
    Key(Qt::Key_Equal);
    QTest::qWait(800);
    EXPECT_EQ(device_->Received(), std::vector<std::string>{});
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
}

TEST_F(Sending, AutoUpdateTicked_SendsWhatWaits) {
    ReadAllOf("RB26DETT6.42");
    Key(Qt::Key_Equal);
    Click(Named("optAutoUpdate"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return Writes().size() == 1; }, 3000));
    ASSERT_TRUE(QTest::qWaitFor([] { return !LongOperationRuns(); }, 2000));
    ExpectInStep();
}

TEST_F(Sending, WriteAll_SendsMapsAndSettings) {
    ReadAllOf("RB26DETT6.42");
    StepAll();
    Click(Named("cmdWriteAll"));
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    EXPECT_TRUE(Named("cmdWriteAll")->isEnabled());
    EXPECT_EQ(MarkedCells(0), 0);
    EXPECT_EQ(Unsent(), "");
    ExpectInStep();
    const auto writes = Writes();
    EXPECT_EQ(writes[0], BlockFrame(0x86));
    EXPECT_GT(writes.size(), 20U);
    EXPECT_EQ(Told, std::vector<std::string>{});
}

TEST_F(Sending, WriteMap_SendsThatMapAlone) {
    ReadAllOf("RB26DETT6.42", 1);
    StepAll();
    ClickTab(0);
    StepAll();
    EXPECT_EQ(Unsent(), "Not sent: 8 blocks, 800 cells");
    Click(Member<QWidget>("cmdWriteMap", 0));
    EXPECT_EQ(Writes(), (std::vector<std::string>{BlockFrame(0x86), BlockFrame(0x87), BlockFrame(0x88),
                                                  BlockFrame(0x89)}));
    EXPECT_EQ(Unsent(), "Not sent: 4 blocks, 400 cells");
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
    EXPECT_TRUE(Named("cmdWriteMap(0)")->isEnabled());
    ClickTab(1);
    ClickItem("mnuPowerFc", "mnuWriteMap");
    EXPECT_EQ(Unsent(), "");
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    ExpectInStep();
}

TEST_F(Sending, FrameMenu_ReadsAndWritesItsBlockAlone) {
    ReadAllOf("RB26DETT6.42", 6);
    auto* box = Member<QLineEdit>("txtSetting", 120);
    QTest::mouseClick(box, Qt::LeftButton);
    box->selectAll();
    Type("7200");
    FrameMenu(120, "mnuWrite");
    EXPECT_EQ(Writes(), std::vector<std::string>{BlockFrame(kRevIdle)});
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    ExpectInStep();
    powerfc::Bytes other = device_->Block(kRevIdle);
    other[0] = 0x10;
    other[1] = 0x0E;
    device_->SetBlock(kRevIdle, other);
    FrameMenu(120, "mnuRead");
    EXPECT_EQ(box->text(), "3600");
    EXPECT_FALSE(Item("mnuUndo")->isEnabled()) << "what was read is no edit";
    EXPECT_EQ(Told, std::vector<std::string>{});
}

TEST_F(Sending, RefusedBlocks_GoCellByCellBehindAWindowThatCanBeCancelledAndResumed) {
    ReadAllOf("RB26DETT6.42");
    RefuseBlocks();
    StepAll();
    WhileItRuns = [this] {
        EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
        EXPECT_EQ(Named("frmProgress2")->findChild<QLabel*>("lblStatus")->text(), "Updating InjMap");
        QTest::mouseClick(CancelButton(), Qt::LeftButton);
    };
    Click(Named("cmdUpdate"));
    EXPECT_FALSE(WhileItRuns);
    EXPECT_FALSE(Named("frmProgress2")->isVisible());
    const int sent = CellWrites();
    EXPECT_GT(sent, 0);
    EXPECT_LT(sent, 400);
    EXPECT_EQ(MarkedCells(0), 400 - sent);
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
    EXPECT_EQ(Unsent().substr(0, 10), "Not sent: ");
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    device_->ClearJournal();
    Click(Named("cmdUpdate"));
    EXPECT_EQ(CellWrites(), 400 - sent) << "what was sent is not sent again";
    EXPECT_FALSE(Named("frmProgress2")->isVisible());
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    EXPECT_EQ(MarkedCells(0), 0);
    ExpectInStep();
    EXPECT_EQ(Told, std::vector<std::string>{});
}

TEST_F(Sending, FewCells_GoWithoutAWindow) {
    ReadAllOf("RB26DETT6.42");
    RefuseBlocks(0);
    Drag(0, 1, 1, 4, 5);
    Key(Qt::Key_Equal);
    WhileItRuns = [] { ADD_FAILURE() << "a window for twenty cells"; };
    Click(Named("cmdUpdate"));
    EXPECT_EQ(CellWrites(), 20);
    EXPECT_TRUE(WhileItRuns);
    ExpectInStep();
}

TEST_F(Sending, WriteMapCancelled_LeavesTheRestMarked) {
    ReadAllOf("RB26DETT6.42");
    RefuseBlocks();
    StepAll();
    WhileItRuns = [this] {
        EXPECT_EQ(Named("frmProgress2")->findChild<QLabel*>("lblStatus")->text(), "Writing InjMap");
        EXPECT_FALSE(Named("cmdWriteMap(0)")->isEnabled());
        QTest::keyClick(Named("frmProgress2"), Qt::Key_Escape);
    };
    Click(Member<QWidget>("cmdWriteMap", 0));
    EXPECT_GT(MarkedCells(0), 0);
    EXPECT_EQ(MarkedCells(0), 400 - CellWrites());
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
    EXPECT_TRUE(Named("cmdWriteMap(0)")->isEnabled());
    Click(Named("cmdUpdate"));
    ExpectInStep();
    EXPECT_EQ(Told, std::vector<std::string>{});
}

TEST_F(Sending, WindowClosedWhileTheProgressWindowStands_EndsBetweenTwoCells) {
    ReadAllOf("RB26DETT6.42");
    RefuseBlocks();
    StepAll();
    WhileItRuns = [this] {
        EXPECT_FALSE(Main.close());
        EXPECT_TRUE(Main.isVisible());
    };
    Click(Named("cmdUpdate"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Main.isVisible(); }, 3000));
    EXPECT_FALSE(Named("frmProgress2")->isVisible());
    EXPECT_FALSE(LongOperationRuns());
    EXPECT_LT(CellWrites(), 400);
    EXPECT_EQ(MarkedCells(0), 400 - CellWrites());
    EXPECT_FALSE(MSComm1.PortOpen());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Sending, AskedForTwice_IsDoneOnce) {
    ReadAllOf("RB26DETT6.42");
    RefuseBlocks();
    Click(Named("optAutoUpdate"));
    GridOf(0)->setFocus();
    StepAll();
    WhileItRuns = [this] {
        for (const char* name :
             {"cmdUpdate", "cmdWriteAll", "cmdReadAll", "cmdWriteMap(0)", "cmdReadMap(0)"}) {
            EXPECT_FALSE(Named(QString::fromLatin1(name))->isEnabled()) << name;
            QTest::mouseClick(Named(QString::fromLatin1(name)), Qt::LeftButton);
        }
        for (const char* name : {"mnuUpdate", "mnuWriteAll", "mnuReadAll", "mnuRead", "mnuWrite",
                                 "mnuInitAllData", "mnuUndo", "mnuScan"}) {
            EXPECT_FALSE(Item(QString::fromLatin1(name))->isEnabled()) << name;
        }
        QTest::keyClick(&Main, Qt::Key_U, Qt::ControlModifier);
        QTest::keyClick(&Main, Qt::Key_R, Qt::ControlModifier);
    };
    Click(Named("cmdUpdate"));
    EXPECT_FALSE(WhileItRuns);
    EXPECT_EQ(CellWrites(), 400);
    ExpectInStep();
    // The timer that ran out meanwhile finds nothing to do.
    device_->ClearJournal();
    QTest::qWait(1200);
    EXPECT_EQ(Writes(), std::vector<std::string>{});
    EXPECT_EQ(Told, std::vector<std::string>{});
}

TEST_F(Sending, EditsWhileTheProgressWindowStands_StayMarkedUntilTheyAreSent) {
    ReadAllOf("RB26DETT6.42");
    RefuseBlocks();
    StepAll();
    WhileItRuns = [this] {
        // The first cell has been sent; this is another value of it.
        ASSERT_FALSE(MapCellChanged[0][1][1]);
        ClickCell(0, 1, 1);
        QTest::keyClick(GridOf(0), Qt::Key_Minus);
        ASSERT_TRUE(MapCellChanged[0][1][1]);
    };
    Click(Named("cmdUpdate"));
    EXPECT_FALSE(WhileItRuns);
    EXPECT_EQ(MarkedCells(0), 1);
    EXPECT_TRUE(BlockChanged[kInjection]);
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
    EXPECT_NE(device_->BlockString(kInjection), ReadData[kInjection]);
    EXPECT_EQ(Unsent().substr(0, 25), "Not sent: 1 block, 1 cell");
    device_->ClearJournal();
    Click(Named("cmdUpdate"));
    EXPECT_EQ(CellWrites(), 1);
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    ExpectInStep();
}

TEST_F(Sending, LineThatDiesAmongTheCells_KeepsTheRestForTheNextUpdate) {
    ReadAllOf("RB26DETT6.42");
    RefuseBlocks();
    StepAll();
    WhileItRuns = [this] { device_->DeadLine(true); };
    Click(Named("cmdUpdate"));
    ASSERT_FALSE(Told.empty());
    EXPECT_EQ(Told[0], "Interface not responding!");
    EXPECT_FALSE(Named("frmProgress2")->isVisible());
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
    EXPECT_GT(MarkedCells(0), 0);
    EXPECT_LT(MarkedCells(0), 400);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    Told.clear();
    device_->DeadLine(false);
    Click(Named("cmdUpdate"));
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    ExpectInStep();
    EXPECT_EQ(Told, std::vector<std::string>{});
}

TEST_F(Sending, AnotherPowerFcAtTheCable_IsNotWrittenTo) {
    ReadAllOf("RB26DETT6.42");
    const std::string refused =
        "First Read All, make changes, then Update.\nYou can't Update to a different Power-FC version.";
    const std::string other = "4.08D";
    device_->SetBlock(0xF5, powerfc::Bytes(other.begin(), other.end()));
    // A new edit enables the button again; the other Power-FC is found again.
    for (int round = 0; round < 2; ++round) {
        StepAll();
        ASSERT_TRUE(Named("cmdUpdate")->isEnabled());
        Click(Named("cmdUpdate"));
        EXPECT_EQ(Told, std::vector<std::string>{refused});
        EXPECT_EQ(Writes(), std::vector<std::string>{});
        EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
        EXPECT_FALSE(Named("cmdWriteAll")->isEnabled());
        EXPECT_EQ(MarkedCells(0), 400);
        Told.clear();
        QApplication::setActiveWindow(&Main);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Main));
        GridOf(0)->setFocus();
    }
}

TEST_F(Sending, OldestBuild_GoesCellByCellAtOnce) {
    ComTimeOutTicks = 20;  // it does not know all of the version questions
    ReadAllOf("RB26DETT3.11D");
    ComTimeOutTicks = 20;
    Drag(0, 1, 1, 5, 6);
    Key(Qt::Key_Equal);
    bool seen = false;
    device_->Delay(50, 5, powerfc::kForever);
    device_->Delay(49, 5, powerfc::kForever);
    WhileItRuns = [&seen] { seen = true; };
    Click(Named("cmdUpdate"));
    EXPECT_TRUE(seen);
    EXPECT_EQ(MarkedCells(0), 0);
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    EXPECT_EQ(Told, std::vector<std::string>{});
    ExpectInStep();
    const auto writes = Writes();
    EXPECT_EQ(writes.size(), 30U);
    for (const std::string& frame : writes) EXPECT_EQ(frame.substr(0, 2), "32");
}

TEST_F(Sending, UndoOfWhatWasSent_IsSentByTheNextUpdate) {
    ReadAllOf("RB26DETT6.42");
    const ByteString before = ReadData[kInjection];
    Key(Qt::Key_Equal);
    Click(Named("cmdUpdate"));
    EXPECT_NE(device_->BlockString(kInjection), before);
    GridOf(0)->setFocus();
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Named("cmdUpdate")->isEnabled());
    Click(Named("cmdUpdate"));
    EXPECT_EQ(device_->BlockString(kInjection), before);
    ExpectInStep();
}

TEST_F(Sending, ReadAll_ClearsUndoAndWhatWaited) {
    ReadAllOf("RB26DETT6.42");
    StepAll();
    EXPECT_TRUE(Item("mnuUndo")->isEnabled());
    ReadAll();
    EXPECT_FALSE(Item("mnuUndo")->isEnabled());
    EXPECT_FALSE(Item("mnuRedo")->isEnabled());
    EXPECT_FALSE(Named("cmdUpdate")->isEnabled());
    EXPECT_EQ(Unsent(), "");
    ExpectInStep();
}

TEST_F(Sending, PasteIntoTheWholeMap_ArrivesByteForByte) {
    ReadAllOf("RB26DETT6.42");
    std::string all;
    for (int row = 1; row <= kMapSide; ++row) {
        for (int column = 1; column <= kMapSide; ++column) {
            all += std::to_string(0.6 + 0.02 * row + 0.01 * column).substr(0, 5);
            all += column < kMapSide ? "\t" : "\r\n";
        }
    }
    Desktop.SetClipboard(all);
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_V, Qt::ControlModifier);
    Click(Named("cmdUpdate"));
    EXPECT_EQ(Writes().size(), 4U);
    ExpectInStep();
    EXPECT_EQ(GridOf(0)->model()->index(19, 19).data().toString(), "1.199");
}

}  // namespace
}  // namespace zandrel
