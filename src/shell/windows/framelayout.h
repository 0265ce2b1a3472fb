// Where the controls stand inside each settings frame: one readable line to a frame.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zandrel {

/// A place in a frame's grid. Kinds:
///   L label, t text box, c check box, b bit, o option, s text held in a block (each: frame + Number);
///   k the frame's curve button of that rank; a anti-lag label, p note on the pull-ups, e tuner string
///   entry, n notes; ' a heading of the layout's own; | a gap.
struct LayoutCell {
    char Kind = '.';
    int Number = 0;
    int Row = 0;
    int Column = 0;
    int Columns = 1;
    bool InHeadRow = false;  // nothing but labels stands in its row
    std::string Heading;
};

/// The frames that have a layout, in ascending order.
std::vector<int> FramesWithLayout();

/// The places of a frame, row by row. Empty for a frame without a layout.
std::vector<LayoutCell> LayoutOfFrame(int frame);

}  // namespace zandrel
