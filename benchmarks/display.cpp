#include <array>

#include "builddata.h"
#include "figures.h"
#include "image/image.h"
#include "measurements.h"
#include "paintwatch.h"
#include "shell/windows/frmMain.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

constexpr int kLogicRuns = 201;
constexpr int kWindowRuns = 11;

constexpr char kFewControls[] = "RB26DETT6.42";
constexpr char kManyControls[] = "B16A11.50C";

// Two builds that show different frames, tabs and numbers, by turns.
class TwoBuilds {
  public:
    TwoBuilds() : builds_{ContentsOf(kFewControls), ContentsOf(kManyControls)} {}
    const BuildData& Next() {
        turn_ ^= 1;
        ReadData = builds_[turn_].Blocks;
        return builds_[turn_];
    }

  private:
    std::array<BuildData, 2> builds_;
    std::size_t turn_ = 0;
};

void MeasureLogic(TwoBuilds& builds) {
    std::vector<double> times;
    for (int n = 0; n < kLogicRuns; ++n) {
        const BuildData& build = builds.Next();
        const std::int64_t start = NowNs();
        Display(build);
        times.push_back(Milliseconds(NowNs() - start));
    }
    AddFigure({"Display of another build, the logic alone", Median(times), "ms", 2, 3});
}

}  // namespace

void MeasureDisplay(frmMain& main) {
    TwoBuilds builds;
    MeasureLogic(builds);

    const PaintWatch watch;
    double worst = 0;
    std::string worstTab;
    for (int tab = 0; tab < kTabs; ++tab) {
        std::vector<double> times;
        std::string caption;
        for (int n = 0; n < kWindowRuns + 2; ++n) {
            const BuildData& build = builds.Next();
            SSTab1.Tab = tab;
            const int paints = watch.Paints();
            const std::int64_t start = NowNs();
            Display(build);
            main.Mirror();
            watch.Settle();
            // The first round of each build brings the tab into view; a build without it shows another.
            if (n < 2 || SSTab1.Tab != tab) continue;
            if (watch.Paints() == paints || watch.LastNs() < start) {
                AddFailure("Display of another build", "nothing was painted");
                return;
            }
            caption = SSTab1.TabCaption[static_cast<std::size_t>(tab)];
            times.push_back(Milliseconds(watch.LastNs() - start));
        }
        if (const double median = Median(times); median > worst) {
            worst = median;
            worstTab = caption;
        }
    }
    AddFigure({"Display of another build, window repainted", worst, "ms", 1, 50});
    AddRemark(std::string("Display: ") + kFewControls + " and " + kManyControls +
              " by turns, all pages built, window 1280 by 800; the slowest tab, which is \"" + worstTab +
              "\".");
}

}  // namespace zandrel
