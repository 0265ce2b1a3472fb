#include "figures.h"

#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zandrel {
namespace {

struct Line {
    Figure Row;
    std::string Failure;  // empty = measured
};
std::vector<Line> Lines;
std::vector<std::string> Remarks;

std::string Number(double value, const Figure& figure) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", figure.Decimals, value);
    return figure.Unit.empty() ? text : text + (" " + figure.Unit);
}

bool IsShort(const Line& line) {
    return !line.Failure.empty() || (line.Row.Limit > 0 && line.Row.Measured > line.Row.Limit);
}

}  // namespace

void AddFigure(const Figure& figure) {
    Lines.push_back({figure, {}});
}

void AddFailure(const std::string& name, const std::string& why) {
    Lines.push_back({{.Name = name}, why});
}

void AddRemark(const std::string& text) {
    Remarks.push_back(text);
}

bool PrintFigures() {
    std::size_t width = 4;
    for (const Line& line : Lines) width = std::max(width, line.Row.Name.size());
    const int columns = static_cast<int>(width);
    std::printf("%-*s  %12s  %12s  %6s\n", columns, "name", "measured", "limit", "ratio");
    for (const Line& line : Lines) {
        const Figure& row = line.Row;
        if (!line.Failure.empty()) {
            std::printf("%-*s  %12s  %12s  %6s  short: %s\n", columns, row.Name.c_str(), "-", "-", "-",
                        line.Failure.c_str());
            continue;
        }
        const std::string measured = Number(row.Measured, row);
        if (row.Limit <= 0) {
            std::printf("%-*s  %12s  %12s  %6s  -\n", columns, row.Name.c_str(), measured.c_str(), "-", "-");
            continue;
        }
        std::printf("%-*s  %12s  %12s  %6.3f  %s\n", columns, row.Name.c_str(), measured.c_str(),
                    Number(row.Limit, row).c_str(), row.Measured / row.Limit, IsShort(line) ? "short" : "ok");
    }
    for (const std::string& remark : Remarks) std::printf("%s\n", remark.c_str());
    return std::none_of(Lines.begin(), Lines.end(), IsShort);
}

double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double Quantile(std::vector<double> values, double share) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const auto count = static_cast<double>(values.size());
    return values[static_cast<std::size_t>(std::clamp(std::ceil(share * count) - 1, 0.0, count - 1))];
}

std::int64_t NowNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * std::int64_t{1'000'000'000} + now.tv_nsec;
}

}  // namespace zandrel
