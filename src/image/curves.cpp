#include "image/curves.h"

#include <algorithm>

#include "image/accessors.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

// Elements of a constant axis: the word, five empty fields, the format, the constants.
constexpr int kConstantFormat = 6;
constexpr int kFirstConstant = 7;

int Whole(const std::string& text) {
    return static_cast<int>(std::clamp(RoundEven(LenientNumber(text)), -100000.0, 100000.0));
}

std::string ConstantText(const std::vector<std::string>& parts, int i) {
    const int last = static_cast<int>(parts.size()) - 1;
    if (last < kFirstConstant || i < 0) return {};
    const auto at = static_cast<std::size_t>(std::min(kFirstConstant + i, last));
    return FormatNumber(LenientNumber(parts[at]), parts[kConstantFormat]);
}

}  // namespace

CurveSpec ParseCurve(std::string_view tag) {
    auto sections = Split(tag, ';');
    sections.resize(3);
    CurveSpec curve;
    const auto head = Split(sections[0], ',');
    curve.Points = Whole(head[0]);
    curve.LockX = std::find(head.begin() + 1, head.end(), "LockX") != head.end();
    curve.LockY = std::find(head.begin() + 1, head.end(), "LockY") != head.end();
    curve.X = sections[1];
    curve.Y = sections[2];
    return curve;
}

bool AxisIsConstant(std::string_view axis) {
    return axis.substr(0, axis.find(',')) == "Const";
}

std::string CurvePointDescriptor(std::string_view axis, int i) {
    const auto parts = Split(axis, ',');
    if (parts[0] == "Const" || parts.size() < 7) return {};
    const int offset = Whole(parts[1]) + i * Whole(parts[2]);
    return Join({parts[0], std::to_string(offset), parts[3], parts[4], parts[5], parts[6]}, ',');
}

std::string CurvePointText(std::string_view axis, int i) {
    if (AxisIsConstant(axis)) return ConstantText(Split(axis, ','), i);
    return GetNumber(CurvePointDescriptor(axis, i));
}

}  // namespace zandrel
