// The table of what was measured, and the small sums that all measurements need.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zandrel {

/// One row. A row with a limit is short when `Measured` lies above it. `Decimals` shapes both numbers.
struct Figure {
    std::string Name;
    double Measured = 0;
    std::string Unit = {};
    int Decimals = 1;
    double Limit = 0;  // 0 = none
};

/// Adds a row to the table.
void AddFigure(const Figure& figure);

/// Adds a row that counts as short: what it names could not be measured, and why.
void AddFailure(const std::string& name, const std::string& why);

/// Adds a line under the table.
void AddRemark(const std::string& text);

/// Prints the table. False: a row is short.
bool PrintFigures();

/// The middle one, or the mean of the two in the middle; 0 for none.
double Median(std::vector<double> values);

/// The smallest value that `share` (0 to 1) of all values don't exceed; 0 for none.
double Quantile(std::vector<double> values, double share);

/// Nanoseconds of the steady clock, which all processes share.
std::int64_t NowNs();

inline double Milliseconds(std::int64_t ns) {
    return static_cast<double>(ns) / 1e6;
}

}  // namespace zandrel
