// Plain records that stand for the controls of the main window, in sparse arrays by index. The logic
// works on these records; the windows build widgets from them once and then only mirror them.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "util/text.h"

namespace zandrel {

/// A frame, text box, check box, option, label or button. Which fields count follows from its array.
struct Control {
    std::string Tag = {};      // field descriptor, or the block list of a frame
    std::string Text = {};     // text boxes
    std::string Caption = {};  // all others
    std::string ToolTip = {};
    int Value = 0;   // check boxes 0 or 1, options 0 or 1
    int Frame = -1;  // index of the frame that it stands in; -1 = directly on its tab
    int Tab = -1;
    bool Visible = true;
    bool Enabled = true;
    bool Locked = false;
    std::uint32_t BackColour = 0;  // blue in the high byte, red in the low; 0 = default
    float Top = 0;                 // twips, kept only where a height follows from it
    float Height = 0;
};

/// A control array: members exist for some indices only.
struct ControlArray {
    std::map<int, Control> Members;

    bool Exists(int index) const { return Members.count(index) != 0; }
    Control& operator[](int index) { return Members.at(index); }
    const Control& operator[](int index) const { return Members.at(index); }
    auto begin() { return Members.begin(); }
    auto end() { return Members.end(); }
    auto begin() const { return Members.begin(); }
    auto end() const { return Members.end(); }
};

/// True if `array` has a member of that index.
inline bool ControlExists(const ControlArray& array, int index) {
    return array.Exists(index);
}

/// Puts `value` into element `field` (from 0) of the Tag's comma list; a field beyond the end is ignored.
inline void SetTagField(Control& tagOwner, std::string_view value, int field) {
    tagOwner.Tag = ReplaceField(tagOwner.Tag, value, field);
}

struct MenuItem {
    std::string Caption = {};
    bool Checked = false;
    bool Visible = true;
    bool Enabled = true;
    std::string Tag = {};  // path of a recent file
};

struct ComboBox {
    std::vector<std::string> Items;
    int ListIndex = -1;
    bool Visible = false;
};

/// Key handling of a list that must not be typed into: `key` becomes the key that steers the list, 0 for
/// a swallowed one. Home and End move `ListIndex` themselves.
void ComboKeyFilter(ComboBox& combo, int& key);

}  // namespace zandrel
