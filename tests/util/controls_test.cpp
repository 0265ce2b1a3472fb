#include "util/controls.h"

#include <gtest/gtest.h>

namespace zandrel {
namespace {

TEST(SetTagField, FieldInTheList_IsReplaced) {
    Control control;
    control.Tag = "&HAB,&HD5";
    SetTagField(control, "&H5C", 1);
    EXPECT_EQ(control.Tag, "&HAB,&H5C");
}

TEST(SetTagField, FieldBeyondTheEnd_IsIgnored) {
    Control control;
    control.Tag = "&HAB,&HD5";
    SetTagField(control, "&H5C", 2);
    EXPECT_EQ(control.Tag, "&HAB,&HD5");
}

TEST(ControlArray, SparseIndices_ExistOrDoNot) {
    ControlArray array;
    array.Members[120] = {};
    EXPECT_TRUE(ControlExists(array, 120));
    EXPECT_FALSE(ControlExists(array, 121));
}

TEST(ComboKeyFilter, EachKey_SteersTheListOrIsSwallowed) {
    ComboBox combo;
    combo.Items = {"a", "b", "c"};
    const auto filtered = [&combo](int key) {
        ComboKeyFilter(combo, key);
        return key;
    };
    EXPECT_EQ(filtered(13), 13);
    EXPECT_EQ(filtered(27), 27);
    EXPECT_EQ(filtered(32), 40);
    EXPECT_EQ(filtered(37), 38);
    EXPECT_EQ(filtered(38), 38);
    EXPECT_EQ(filtered(39), 40);
    EXPECT_EQ(filtered(40), 40);
    EXPECT_EQ(filtered(65), 0);
    EXPECT_EQ(combo.ListIndex, -1);
    EXPECT_EQ(filtered(35), 0);
    EXPECT_EQ(combo.ListIndex, 2);
    EXPECT_EQ(filtered(36), 0);
    EXPECT_EQ(combo.ListIndex, 0);
}

}  // namespace
}  // namespace zandrel
