#include "image/image.h"

#include <gtest/gtest.h>

#include "support/cleanstate.h"

namespace zandrel {
namespace {

class Registration : public CleanState {};

TEST_F(Registration, FlagsAreOnlyEverRaised) {
    ASSERT_TRUE(RegisterBlock("&H8D", 24, true, true));
    ASSERT_TRUE(RegisterBlock("141", 20, false, false));
    EXPECT_EQ(BlockLength[0x8D], 20);
    EXPECT_TRUE(BlockRead[0x8D]);
    EXPECT_TRUE(BlockWrite[0x8D]);
    ASSERT_TRUE(RegisterBlock("&H8E", 12, true, false));
    EXPECT_FALSE(BlockWrite[0x8E]);
}

TEST_F(Registration, EmptyCode_DoesNothing) {
    ASSERT_TRUE(RegisterBlock("", 24, true, true));
    EXPECT_EQ(BlockLength[0], 0);
    EXPECT_FALSE(BlockRead[0]);
}

TEST_F(Registration, CodeAboveABlockNumber_IsARangeFailure) {
    EXPECT_FALSE(RegisterBlock("&H1B8", 18, true, true));
    EXPECT_FALSE(RegisterBlock("256", 18, true, true));
    EXPECT_FALSE(RegisterBlock("-1", 18, true, true));
    EXPECT_EQ(BlockLength[0xB8], 0);
}

TEST_F(Registration, ClearingTheFlags_KeepsTheLengths) {
    ASSERT_TRUE(RegisterBlock("&H8D", 24, true, true));
    ClearBlockFlags();
    EXPECT_FALSE(BlockRead[0x8D]);
    EXPECT_FALSE(BlockWrite[0x8D]);
    EXPECT_EQ(BlockLength[0x8D], 24);
}

}  // namespace
}  // namespace zandrel
