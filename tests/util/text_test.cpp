#include "util/text.h"

#include <gtest/gtest.h>

namespace zandrel {
namespace {

TEST(Split, EmptyText_IsOneEmptyPart) {
    EXPECT_EQ(Split("", ','), std::vector<std::string>{""});
    EXPECT_EQ(Split("a,,b,", ','), (std::vector<std::string>{"a", "", "b", ""}));
}

TEST(Join, PartsOfASplit_GiveTheTextBack) {
    EXPECT_EQ(Join(Split("6;Const,,,;x", ';'), ';'), "6;Const,,,;x");
}

TEST(Trim, BlanksOnly_AreTakenOff) {
    EXPECT_EQ(Trim("  4G63 "), "4G63");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim("\t4G63"), "\t4G63");  // a tab is no blank
}

TEST(ReplaceField, FieldInAndOutOfTheList) {
    EXPECT_EQ(ReplaceField("&H7D,3,-1", "&H20", 0), "&H20,3,-1");
    EXPECT_EQ(ReplaceField("&H7D,3,-1", "x", 3), "&H7D,3,-1");
    EXPECT_EQ(ReplaceField("&H7D,3,-1", "x", -1), "&H7D,3,-1");
}

TEST(Tr, WithoutATable_TextIsItsOwnTranslation) {
    EXPECT_EQ(tr("InjMap"), "InjMap");
}

}  // namespace
}  // namespace zandrel
