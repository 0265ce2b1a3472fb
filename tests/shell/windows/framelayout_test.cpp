// Every control that stands in a frame has one place in the frame's layout.
#include "shell/windows/framelayout.h"

#include <gtest/gtest.h>

#include <map>

#include "support/cleanstate.h"
#include "tuning/settings.h"

namespace zandrel {
namespace {

class FrameLayout : public CleanState {
  protected:
    static std::map<std::string, int> PlacesOf(int frame) {
        std::map<std::string, int> places;
        for (const LayoutCell& cell : LayoutOfFrame(frame)) {
            if (cell.Kind != '\'' && cell.Kind != '|') ++places[cell.Kind + std::to_string(cell.Number)];
        }
        return places;
    }

    static std::map<std::string, int> MembersOf(int frame) {
        std::map<std::string, int> members;
        const auto count = [&](const ControlArray& array, char kind) {
            int rank = 0;
            for (const auto& [index, control] : array) {
                if (control.Frame != frame) continue;
                const int number = kind == 'k' ? rank++ : kind == 'a' ? index : index - frame;
                ++members[kind + std::to_string(number)];
            }
        };
        count(txtSetting, 't');
        count(chkSetting, 'c');
        count(chkSettingBit, 'b');
        count(optSetting, 'o');
        count(lblSetting, 's');
        count(cmdEditCurve, 'k');
        count(lblGeneral, 'L');
        count(lblRevIdle, 'L');
        count(lblAntiLag, 'a');
        if (lblInternalPullups.Frame == frame) ++members["p0"];
        if (Text1.Frame == frame) ++members["e0"];
        if (txtNotes.Frame == frame) ++members["n0"];
        return members;
    }
};

TEST_F(FrameLayout, EveryFrame_HoldsEachOfItsMembersOnce) {
    int frames = 0;
    for (const auto& [index, frame] : FraSettings) {
        EXPECT_EQ(PlacesOf(index), MembersOf(index)) << index << " " << frame.Caption;
        ++frames;
    }
    EXPECT_EQ(static_cast<std::size_t>(frames), FramesWithLayout().size());
}

TEST_F(FrameLayout, TwoMembersOfAFrame_NeverShareAPlace) {
    for (const int frame : FramesWithLayout()) {
        std::map<std::pair<int, int>, int> taken;
        for (const LayoutCell& cell : LayoutOfFrame(frame)) {
            for (int c = 0; c < cell.Columns; ++c) ++taken[{cell.Row, cell.Column + c}];
        }
        for (const auto& [place, count] : taken) EXPECT_EQ(count, 1) << frame << " row " << place.first;
    }
}

// A curve over constants pairs each of its points with a label: the label has to stand in the row of the
// value that the curve's offset names.
TEST_F(FrameLayout, CurvesOverConstants_StandBesideTheirLabels) {
    int checked = 0;
    for (const auto& [index, button] : cmdEditCurve) {
        const auto sections = Split(button.Tag, ';');
        const auto x = Split(sections[1], ',');
        const auto y = Split(sections[2], ',');
        if (x[0] != "Const") continue;
        const int points = std::stoi(sections[0]);
        for (int point = 0; point < points; ++point) {
            const int offset = std::stoi(y[1]) + point * std::stoi(y[2]);
            const double constant = std::stod(x[x.size() - static_cast<std::size_t>(points) + point]);
            int row = -1;
            int column = -1;
            for (const LayoutCell& cell : LayoutOfFrame(button.Frame)) {
                if (cell.Kind != 't') continue;
                const auto tag = Split(txtSetting[button.Frame + cell.Number].Tag, ',');
                if (std::stoi(tag[1]) == offset) row = cell.Row, column = cell.Column;
            }
            ASSERT_GE(row, 0) << index << " offset " << offset;
            std::string label;
            for (const LayoutCell& cell : LayoutOfFrame(button.Frame)) {
                if (cell.Kind == 'L' && cell.Row == row && cell.Column < column) {
                    label = lblGeneral[button.Frame + cell.Number].Caption;
                }
            }
            // "T2", "T3" name their row without a number to compare.
            const auto digits = label.find_first_of("0123456789");
            ASSERT_NE(digits, label.npos) << index << " " << label;
            if (label.size() == 2 && label[0] == 'T') continue;
            const auto from = label[0] == 'T' ? label.find('(') + 1 : 0;
            EXPECT_EQ(std::stod(label.substr(from)), constant)
                << index << " " << label << " offset " << offset;
            ++checked;
        }
    }
    EXPECT_GT(checked, 70);
}

}  // namespace
}  // namespace zandrel
