#include "image/accessors.h"

#include <benchmark/benchmark.h>

#include <functional>

#include "builddata.h"
#include "figures.h"
#include "heap.h"
#include "image/image.h"
#include "measurements.h"
#include "tuning/display.h"
#include "tuning/maps.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

constexpr int kRepetitions = 7;

// Keeps what was measured instead of printing it.
class Collector : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) Ns.push_back(run.GetAdjustedRealTime());
        }
    }
    std::vector<double> Ns;
};

// One call of what is measured; `n` counts up.
using Call = std::function<void(std::size_t n)>;

struct Subject {
    std::string Name;
    Call Run;
    std::size_t Cycle;  // calls until all inputs have been used once
};

double AllocationsACall(const Subject& subject) {
    const std::int64_t before = HeapAllocations();
    for (std::size_t n = 0; n < subject.Cycle; ++n) subject.Run(n);
    return static_cast<double>(HeapAllocations() - before) / static_cast<double>(subject.Cycle);
}

Subject NumbersOfAllSettings() {
    std::vector<std::string> tags;
    for (const auto& [index, control] : txtSetting) tags.push_back(control.Tag);
    const std::size_t count = tags.size();
    return {"GetNumber",
            [tags = std::move(tags)](std::size_t n) {
                benchmark::DoNotOptimize(GetNumber(tags[n % tags.size()]));
            },
            count};
}

Subject CellsOfMap(const std::string& name, int map) {
    return {name,
            [map](std::size_t n) {
                const int row = static_cast<int>(n / kMapSide % kMapSide) + 1;
                const int column = static_cast<int>(n % kMapSide) + 1;
                double previous = 0;
                std::string text;
                benchmark::DoNotOptimize(MapCellText(map, row, column, previous, false, text));
                benchmark::DoNotOptimize(text);
            },
            kMapSide * kMapSide};
}

void Measure(const Subject& subject) {
    const double allocations = AllocationsACall(subject);
    benchmark::RegisterBenchmark(subject.Name.c_str(),
                                 [&subject](benchmark::State& state) {
                                     std::size_t n = 0;
                                     for ([[maybe_unused]] auto step : state) subject.Run(n++);
                                 })
        ->MinTime(0.1)
        ->Repetitions(kRepetitions);
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::ClearRegisteredBenchmarks();
    AddFigure({subject.Name, Median(collector.Ns), "ns", 0});
    AddFigure({subject.Name + ", heap allocations a call", allocations, "", 2});
}

void MeasureCells(const std::string& name, int map) {
    double previous = 0;
    std::string text;
    if (map >= kMapTabs || !MapCellText(map, kMapSide / 2, kMapSide / 2, previous, false, text)) {
        AddFailure(name, "the build shows no such cell");
        return;
    }
    Measure(CellsOfMap(name, map));
}

}  // namespace

void MeasureAccessors() {
    const std::int64_t before = HeapAllocations();
    benchmark::DoNotOptimize(std::string(100, 'x'));
    if (HeapAllocations() != before + 1)
        AddFailure("Heap allocations", "one allocation is not counted as one");

    // A build with injection, ignition and base maps.
    const BuildData data = ContentsOf("B16A11.50C");
    ReadData = data.Blocks;
    Display(data);
    Measure(NumbersOfAllSettings());
    MeasureCells("MapCellText, injection map", InjMapIndex);
    MeasureCells("MapCellText, ignition map", InjMapIndex + 1);
    mnuBaseMapDisplay_Click(0);
    MeasureCells("MapCellText, base map", BaseMapIndex);
    mnuBaseMapDisplay_Click(3);
    MeasureCells("MapCellText, base map as fuel duty", BaseMapIndex);
    mnuBaseMapDisplay_Click(0);
}

}  // namespace zandrel
