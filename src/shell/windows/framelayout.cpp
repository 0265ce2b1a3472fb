#include "shell/windows/framelayout.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "util/text.h"

namespace zandrel {
namespace {

struct FrameRows {
    int Frame;
    std::string_view Rows;
};

// Rows are parted by "/", places by blanks: "." is an empty place, "<" widens the place before it, "|" a
// gap. Labels name the row that they begin or the column that they head; which value belongs to which
// label follows from the curve texts, where a frame has one.
// clang-format off
constexpr std::string_view kTwoValues  = "L0 t0 / L1 t1";
constexpr std::string_view kSixValues  = "L0 t0 / L1 t1 / L2 t2 / L3 t3 / L4 t4 / L5 t5 / . k0";
constexpr std::string_view kTwoPairs   = "L0 L1 / t0 t2 / t1 t3 / k0 <";
constexpr std::string_view kThreePairs = "L0 L1 / t0 t3 / t1 t4 / t2 t5 / k0 <";
constexpr std::string_view kFourPairs  = "L0 L1 / t0 t4 / t1 t5 / t2 t6 / t3 t7 / k0 <";
constexpr std::string_view kDwell      = "L0 L1 / L2 t0 / L3 t1 / L4 t2 / L5 t3 / L6 t4 / L7 t5 / . k0";
constexpr std::string_view kBoost      = ". L0 L1 / o0 t0 t4 t8 / o1 t1 t5 t9 / o2 t2 t6 t10 / o3 t3 t7 t11";
constexpr std::string_view kMapReference =
    ". L0 L1 / L2 t0 t20 / L3 t1 t21 / L4 t2 t22 / L5 t3 t23 / L6 t4 t24 / L7 t5 t25 / L8 t6 t26 / L9 t7 t27 / "
    "L10 t8 t28 / L11 t9 t29 / L12 t10 t30 / L13 t11 t31 / L14 t12 t32 / L15 t13 t33 / L16 t14 t34 / "
    "L17 t15 t35 / L18 t16 t36 / L19 t17 t37 / L20 t18 t38 / L21 t19 t39 / . k0 <";
constexpr std::string_view kShift =
    "L0 L1 L2 / L3 t0 t1 / L4 t2 t3 / L5 t4 t5 / L6 t6 t7 / L7 . . / L8 t8 t9 / L9 t10 t11 / L10 t12 t13 / "
    "L11 t14 t15 / L12 . . / L13 t16 t17 / L14 t18 t19 / L15 t20 t21 / L16 t22 t23";
constexpr std::string_view kLockUp =
    "L0 L1 L2 / L3 t0 t1 / L4 t2 t3 / L5 t4 t5 / L6 . . / L7 t6 t7 / L8 t8 t9 / L9 t10 t11";

constexpr FrameRows kLayouts[] = {
    { 100, kBoost},
    { 120, "L0 t0 / L1 t1 / L2 t2 / L3 t3 / L4 t4 / L5 t5 / L6 t6 / L7 t7"},
    { 130, ". L0 < / L1 L2 L3 / t0 t3 t6 / t1 t4 t7 / t2 t5 t8 / . k0 k1"},
    { 140, "c0 s0 / c1 s1 / c2 s2 / c3 s3 / c4 s4"},
    { 150, kTwoValues},
    { 155, kTwoValues},
    { 160, kTwoValues},
    { 170, ". L1 / L0 t0"},
    { 180, "c0 c5 / c1 c6 / c2 c7 / c3 c8 / c4 c9"},
    { 190, "L0 s0 / L1 s1"},
    { 200, "L0 t12 t13 / L1 t0 t6 / L2 t1 t7 / L3 t2 t8 / L4 t3 t9 / L5 t4 t10 / L6 t5 t11 / . k0 k1"},
    { 215, "L0 L1 L2 / t0 t5 t10 / t1 t6 t11 / t2 t7 t12 / t3 t8 t13 / t4 t9 t14 / . k0 k1"},
    { 230, kSixValues},
    { 240, kThreePairs},
    { 250, kThreePairs},
    { 256, "L0 L1 / t0 t6 / t1 t7 / t2 t8 / t3 t9 / t4 t10 / t5 t11 / k0 <"},
    { 270, kSixValues},
    { 280, "L0 L1 L2 / t0 t3 t6 / t1 t4 . / t2 t5 t7 / . k0 k1"},
    { 290, "L0 L1 L2 / t0 t2 t4 / t1 t3 t5 / . k0 k1"},
    { 300, kMapReference},
    { 340, ". . 'Scale 'Offset / o0 s0 t0 t5 / o1 s1 t1 t6 / o2 s2 t2 t7 / o3 s3 t3 t8 / o4 s4 t4 t9"},
    { 350, "L8 t0 | L0 t8 / L9 t1 | L1 t9 / L10 t2 | L2 t10 / L11 t3 | L3 t11 / L12 t4 | L4 t12 / "
           "L13 t5 | L5 t13 / L14 t6 | L6 t14 / L15 t7 | L7 t15 / . k0 | . k1"},
    { 370, "k0 k1 / k2 k3 / k4 ."},
    { 380, kThreePairs},
    { 390, ". L0 / L1 t0 / L2 t1 / L3 t2"},
    { 400, kTwoPairs},
    { 410, "L0 L1 / L2 t0 / L3 t1 / L4 t2 / L5 t3 / . k0"},
    { 420, kSixValues},
    { 430, kDwell},
    { 440, kDwell},
    { 450, kThreePairs},
    { 460, "L0 L1 / t0 L2 / t1 L3"},
    { 470, kFourPairs},
    { 480, "L0 L1 L2 / t0 t2 L3 / t1 t3 L4 / k0 < <"},
    { 500, ". '% 'ms / L0 t0 t6 / L1 t1 t7 / L2 t2 t8 / L3 t3 t9 / L4 t4 t10 / L5 t5 t11"},
    { 520, kSixValues},
    { 530, kSixValues},
    { 540, kThreePairs},
    { 550, "b0 < < / b1 < < / b2 < < / a0 t0 . / a1 t1 . / a2 < < / b3 < < / p < < / L0 s0 e"},
    { 560, "n"},
    { 600, kShift},
    { 630, kShift},
    { 660, kLockUp},
    { 680, kLockUp},
    { 700, "L0 L1 / t0 t1 / t2 t3 / t4 t5 / k0 <"},
    {1100, kBoost},
    {1120, "L0 t0 / L1 t1 / L2 t2 / L3 t3 / L4 t4 / L5 t5 / L6 t6 / L7 t7 / L8 t8"},
    {1140, "c0 s0 / c1 s1 / c2 s2 / c3 s3 / c4 s4 / c5 s5 / c6 s6 / c7 s7"},
    {1180, "c0 c7 / c1 c8 / c2 c9 / c3 c10 / c4 c11 / c5 c12 / c6 c13"},
    {1215, "L7 L6 L5 / L4 t0 t5 / L3 t1 t6 / L2 t2 t7 / L1 t3 t8 / L0 t4 t9 / . k0 k1"},
    {1300, kMapReference},
    {1340, "o0 s0 | L0 t0 / o1 s1 | L1 t1 / o2 s2 | L2 t2 / o3 s3 | L3 t3 / o4 s4 | L4 t4 / "
           ". . | L5 t5 / . . | L6 t6 / . . | L7 t7 / . . | . k0"},
    {1410, kTwoPairs},
    {1470, kFourPairs},
    {1500, "L4 t2 . / L5 t3 . / . '% 'ms / L0 t0 t4 / L1 t1 t5 / L2 . t6 / L3 . t7 / L6 t8 . / L7 . t9"},
    {2100, ". L0 L1 / o0 t0 t4 / L2 t1 t5 / o1 t2 t6 / L3 t3 t7"},
    {2300, kMapReference},
};
// clang-format on

constexpr std::string_view kNumbered = "Ltcboska";
constexpr std::string_view kKinds = "Ltcboskapen'|.</";

// The next word of `rows`, which loses it; empty at the end.
constexpr std::string_view TakeWord(std::string_view& rows) {
    while (!rows.empty() && rows.front() == ' ') rows.remove_prefix(1);
    const auto end = std::min(rows.find(' '), rows.size());
    const auto word = rows.substr(0, end);
    rows.remove_prefix(end);
    return word;
}

constexpr int NumberOf(std::string_view word) {
    int number = 0;
    for (const char digit : word.substr(1)) {
        if (digit < '0' || digit > '9') return -1;
        number = number * 10 + digit - '0';
    }
    return number;
}

constexpr bool RowsAreSound(std::string_view rows) {
    std::array<std::array<bool, 40>, kNumbered.size()> used{};
    bool rowOpen = false;
    for (auto word = TakeWord(rows); !word.empty(); word = TakeWord(rows)) {
        const auto kind = word.front();
        if (kKinds.find(kind) == kKinds.npos) return false;
        if (kind == '<' && !rowOpen) return false;
        rowOpen = kind != '/';
        const auto array = kNumbered.find(kind);
        if (array == kNumbered.npos) continue;
        const int number = NumberOf(word);
        if (word.size() < 2 || number < 0 || number >= 40) return false;
        bool& seen = used[array][static_cast<std::size_t>(number)];
        if (seen) return false;
        seen = true;
    }
    return true;
}

constexpr bool LayoutsAreSound() {
    int last = 0;
    for (const FrameRows& layout : kLayouts) {
        if (layout.Frame <= last || !RowsAreSound(layout.Rows)) return false;
        last = layout.Frame;
    }
    return true;
}
static_assert(std::size(kLayouts) == 57);
static_assert(LayoutsAreSound(), "an unknown place, a member that stands twice, or frames out of order");

void MarkHeadRows(std::vector<LayoutCell>& cells) {
    for (LayoutCell& cell : cells) {
        cell.InHeadRow = std::all_of(cells.begin(), cells.end(), [&cell](const LayoutCell& other) {
            return other.Row != cell.Row || other.Kind == 'L' || other.Kind == '\'' || other.Kind == '|';
        });
    }
}

}  // namespace

std::vector<int> FramesWithLayout() {
    std::vector<int> frames;
    for (const FrameRows& layout : kLayouts) frames.push_back(layout.Frame);
    return frames;
}

std::vector<LayoutCell> LayoutOfFrame(int frame) {
    const auto layout = std::find_if(std::begin(kLayouts), std::end(kLayouts),
                                     [frame](const FrameRows& row) { return row.Frame == frame; });
    if (layout == std::end(kLayouts)) return {};
    std::vector<LayoutCell> cells;
    std::string_view rows = layout->Rows;
    int row = 0;
    int column = 0;
    for (auto word = TakeWord(rows); !word.empty(); word = TakeWord(rows)) {
        if (word == "/") {
            ++row;
            column = 0;
            continue;
        }
        if (word == "<") {
            ++cells.back().Columns;
        } else if (word != ".") {
            LayoutCell cell;
            cell.Kind = word.front();
            cell.Row = row;
            cell.Column = column;
            if (cell.Kind == '\'') {
                cell.Heading = word.substr(1);
            } else if (word.size() > 1) {
                cell.Number = NumberOf(word);
            }
            cells.push_back(cell);
        }
        ++column;
    }
    MarkHeadRows(cells);
    return cells;
}

}  // namespace zandrel
