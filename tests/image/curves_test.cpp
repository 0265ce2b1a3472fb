#include "image/curves.h"

#include <gtest/gtest.h>

#include "image/accessors.h"
#include "image/image.h"
#include "support/cleanstate.h"

namespace zandrel {
namespace {

class Curves : public CleanState {
  protected:
    static ByteString Bytes(std::initializer_list<int> values) {
        ByteString bytes;
        for (const int value : values) bytes += static_cast<char>(value);
        return bytes;
    }
};

TEST_F(Curves, Specification_IsTakenApart) {
    const CurveSpec curve = ParseCurve("20,LockX,Other,LockY;&H8A,1,2,2,1,0,0;&H8A,41,2,2,1,0,0");
    EXPECT_EQ(curve.Points, 20);
    EXPECT_TRUE(curve.LockX);
    EXPECT_TRUE(curve.LockY);
    EXPECT_EQ(curve.X, "&H8A,1,2,2,1,0,0");
    EXPECT_EQ(curve.Y, "&H8A,41,2,2,1,0,0");
    EXPECT_FALSE(ParseCurve("20;a;b").LockX);
    EXPECT_EQ(ParseCurve("").Points, 0);
    EXPECT_EQ(ParseCurve("3").Y, "");
}

TEST_F(Curves, NegativeStride_ReadsTheFirstPointFromTheHighestOffset) {
    ReadData[0x7B] = Bytes({10, 11, 20, 21, 30, 31});
    const CurveSpec curve = ParseCurve("3;&H7B,5,-2,1,256,0,0;&H7B,6,-2,1,1,0,0");
    EXPECT_EQ(CurvePointText(curve.X, 0), "7680");
    EXPECT_EQ(CurvePointText(curve.X, 2), "2560");
    EXPECT_EQ(CurvePointText(curve.Y, 0), "31");
    EXPECT_EQ(CurvePointText(curve.Y, 1), "21");
    EXPECT_EQ(CurvePointDescriptor(curve.Y, 2), "&H7B,2,1,1,0,0");
    SetNumber(CurvePointDescriptor(curve.Y, 0), "99");
    EXPECT_EQ(ReadData[0x7B], Bytes({10, 11, 20, 21, 30, 99}));
}

TEST_F(Curves, ConstantAxis_RepeatsItsLastConstant) {
    const std::string axis = "Const,,,,,,0.0,1,1.5,2";
    EXPECT_TRUE(AxisIsConstant(axis));
    EXPECT_EQ(CurvePointText(axis, 0), "1.0");
    EXPECT_EQ(CurvePointText(axis, 1), "1.5");
    EXPECT_EQ(CurvePointText(axis, 2), "2.0");
    EXPECT_EQ(CurvePointText(axis, 9), "2.0");
    EXPECT_EQ(CurvePointDescriptor(axis, 0), "");
    EXPECT_FALSE(AxisIsConstant("&H7B,5,-2,1,256,0,0"));
    EXPECT_EQ(CurvePointText("Const,,,,,,0", 0), "");
}

TEST_F(Curves, UnreadOrBrokenAxis_HasNoText) {
    EXPECT_EQ(CurvePointText("&H7B,5,-2,1,256,0,0", 0), "");
    EXPECT_EQ(CurvePointText("", 0), "");
    EXPECT_EQ(CurvePointText("&H7B,5", 0), "");
}

}  // namespace
}  // namespace zandrel
