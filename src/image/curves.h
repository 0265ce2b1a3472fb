// Curve texts: three sections separated by semicolons, the number of points with its keywords,
// the X axis, the Y axis. An axis is stored in a block or constant.
#pragma once

#include <string>
#include <string_view>

namespace zandrel {

struct CurveSpec {
    int Points = 0;
    bool LockX = false;  // the X values begin locked for good
    bool LockY = false;
    std::string X, Y;  // axis sections
};

/// Takes a curve's Tag apart; missing sections are empty, unknown keywords are passed over.
CurveSpec ParseCurve(std::string_view tag);

/// A constant axis has no bytes and is never written.
bool AxisIsConstant(std::string_view axis);

/// Number descriptor of point `i` (from 0) of a stored axis; empty for a constant one.
std::string CurvePointDescriptor(std::string_view axis, int i);

/// Text of point `i` (from 0) in the axis' format. A constant axis with fewer constants than points
/// repeats its last one. Empty where the block has not been read.
std::string CurvePointText(std::string_view axis, int i);

}  // namespace zandrel
