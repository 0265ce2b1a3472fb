#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QPaintEvent>
#include <QTableView>
#include <QTest>
#include <functional>

#include "builddata.h"
#include "figures.h"
#include "image/accessors.h"
#include "image/image.h"
#include "measurements.h"
#include "paintwatch.h"
#include "shell/windows/frmMain.h"
#include "tuning/display.h"
#include "tuning/mapediting.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

constexpr int kRuns = 15;
constexpr int kRepeats = 60;
constexpr double kStepMs = 8;
constexpr double kBulkMs = 12;
constexpr double kRepeatMs = 1000.0 / 30;
constexpr int kCells = kMapSide * kMapSide;
// An interpolation leaves the corners, and whatever cell lay on its slope before.
constexpr int kInterpolated = kCells * 9 / 10;
constexpr char kBuild[] = "B16A11.50C";

// Whether all of a widget has been painted since it was asked last.
class WholePaint : public QObject {
  public:
    explicit WholePaint(QWidget* widget) : widget_(widget) { widget->installEventFilter(this); }
    bool Taken() { return std::exchange(seen_, QRegion()).contains(widget_->rect()); }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) seen_ += static_cast<QPaintEvent*>(event)->region();
        return false;
    }

  private:
    QWidget* widget_;
    QRegion seen_;
};

using Cells = std::array<std::int32_t, kCells>;

Cells CellsOf(int map) {
    Cells cells{};
    for (int n = 0; n < kCells; ++n) {
        cells[static_cast<std::size_t>(n)] = GetCell(map, n / kMapSide + 1, n % kMapSide + 1, false);
    }
    return cells;
}

int CountOther(const Cells& a, const Cells& b) {
    int count = 0;
    for (std::size_t n = 0; n < a.size(); ++n) count += a[n] != b[n] ? 1 : 0;
    return count;
}

// The bulk edits of one map, all its cells selected, each from the event to the picture.
class Editing {
  public:
    Editing(frmMain& main, int map, QTableView* grid)
        : main_(main), map_(map), grid_(grid), painted_(grid->viewport()) {}

    std::string Fault;  // why something could not be measured
    std::vector<double> Steps, UndoneSteps, Pastes, UndonePastes, Interpolations, UndoneInterpolations,
        Repeats;

    void Run() {
        Settle();
        grid_->setFocus();
        QTest::keyClick(grid_, Qt::Key_A, Qt::ControlModifier);
        Settle();
        if (Grid[static_cast<std::size_t>(map_)].Selection != GridSelection{1, 1, kMapSide, kMapSide}) {
            Fault = "not all cells are selected";
            return;
        }
        PopupGrid = static_cast<std::int16_t>(map_);
        PrepareClipboard();
        for (int run = 0; run < kRuns && Fault.empty(); ++run) Round();
        for (int n = 0; n < kRepeats && Fault.empty(); ++n) Repeat(n);
    }

  private:
    void Settle() {
        main_.Mirror();
        watch_.Settle();
        painted_.Taken();
    }

    // The map as it would be ten steps higher.
    void PrepareClipboard() {
        AddToSelection(map_, 10);
        QApplication::clipboard()->setText(QString::fromStdString(GridClip(map_)));
        mnuUndo_Click();
        Settle();
    }

    void Round() {
        const Cells before = CellsOf(map_);
        const auto undo = [&](std::vector<double>& times) {
            Time(times, "Undo", 0, [this] { Trigger("mnuUndo"); });
            if (Fault.empty() && CellsOf(map_) != before) Fault = "Undo has not brought every cell back";
        };
        Time(Steps, "Ctrl and plus", kCells,
             [this] { QTest::keyClick(grid_, Qt::Key_Plus, Qt::ControlModifier); });
        undo(UndoneSteps);
        Time(Pastes, "Paste", kCells, [this] { QTest::keyClick(grid_, Qt::Key_V, Qt::ControlModifier); });
        undo(UndonePastes);
        Time(Interpolations, "Interpolation", kInterpolated, [this] { Trigger("mnuGridInterpolate"); });
        undo(UndoneInterpolations);
    }

    // A key that is held down, up and down by turns so that no cell comes to its limit.
    void Repeat(int n) {
        const bool up = n % 20 < 10;
        Time(Repeats, "A held plus", kCells, [this, up] {
            QKeyEvent press(QEvent::KeyPress, up ? Qt::Key_Plus : Qt::Key_Minus, Qt::NoModifier,
                            up ? QStringLiteral("+") : QStringLiteral("-"), true);
            QApplication::sendEvent(grid_, &press);
        });
    }

    void Trigger(const char* name) {
        auto* action = main_.findChild<QAction*>(QLatin1String(name));
        if (action == nullptr) {
            Fault = std::string("there is no ") + name;
        } else {
            action->trigger();
        }
    }

    void Time(std::vector<double>& times, const char* what, int fewest, const std::function<void()>& edit) {
        if (!Fault.empty()) return;
        const Cells before = CellsOf(map_);
        const std::int64_t start = NowNs();
        edit();
        watch_.Settle();
        if (!Fault.empty()) return;
        if (CountOther(before, CellsOf(map_)) < fewest) {
            Fault = std::string(what) + " has not changed every cell";
        } else if (!painted_.Taken() || watch_.LastNs() < start) {
            Fault = std::string(what) + " was not painted";
        }
        times.push_back(Milliseconds(watch_.LastNs() - start));
    }

    frmMain& main_;
    int map_;
    QTableView* grid_;
    PaintWatch watch_;
    WholePaint painted_;
};

}  // namespace

void MeasureEditing(frmMain& main) {
    constexpr char kName[] = "Edits of 400 cells";
    const BuildData data = ContentsOf(kBuild);
    ReadData = data.Blocks;
    Display(data);
    main.activateWindow();
    // The maps of one byte and of two a cell, each in a display that takes some arithmetic.
    mnuInjMapDisplay_Click(2);
    mnuBaseMapDisplay_Click(1);
    Figure step{"Ctrl and plus over 400 cells, window repainted", 0, "ms", 2, kStepMs};
    Figure held{"A held plus over 400 cells, 95th of 100 repeats", 0, "ms", 2, kRepeatMs};
    Figure paste{"Paste of 400 cells, window repainted", 0, "ms", 2, kBulkMs};
    Figure interpolation{"Interpolation of 400 cells, window repainted", 0, "ms", 2, kBulkMs};
    Figure undo{"Undo of such an edit, window repainted", 0, "ms", 2, kStepMs};
    const auto worse = [](Figure& figure, double ms) { figure.Measured = std::max(figure.Measured, ms); };
    for (const int map : {int{InjMapIndex}, int{BaseMapIndex}}) {
        SSTab1.Tab = map;
        SSTab1_Click();
        main.Mirror();
        auto* grid = main.findChild<QTableView*>(QStringLiteral("Grid(%1)").arg(map));
        if (grid == nullptr) return AddFailure(kName, "there is no grid");
        Editing editing(main, map, grid);
        editing.Run();
        if (!editing.Fault.empty()) return AddFailure(kName, editing.Fault);
        worse(step, Median(editing.Steps));
        worse(held, Quantile(editing.Repeats, 0.95));
        worse(paste, Median(editing.Pastes));
        worse(interpolation, Median(editing.Interpolations));
        for (const auto* times : {&editing.UndoneSteps, &editing.UndonePastes, &editing.UndoneInterpolations})
            worse(undo, Median(*times));
    }
    mnuInjMapDisplay_Click(0);
    mnuBaseMapDisplay_Click(0);
    for (const Figure& figure : {step, held, paste, interpolation, undo}) AddFigure(figure);
    AddRemark(
        std::string("Edits: ") + kBuild +
        ", from the key or menu to the picture; the slower of injection map (AF ratio) and base map (Base "
        "x INJ).");
}

}  // namespace zandrel
