#include "util/desktop.h"

#include <gtest/gtest.h>

namespace zandrel {
namespace {

TEST(NumberEntryText, Number_IsRewrittenInTheFormat) {
    EXPECT_EQ(NumberEntryText("14.7", "0.00"), "14.70");
    EXPECT_EQ(NumberEntryText(" 14 ", "0.00"), "14.00");
    EXPECT_EQ(NumberEntryText("14,7", "0.00"), "14.70");
    EXPECT_EQ(NumberEntryText("30.004", "0.00"), "30.00");
    EXPECT_EQ(NumberEntryText("-0.001", "0.00"), "0.00");
    EXPECT_EQ(NumberEntryText("2.5", "0"), "2");
    EXPECT_EQ(NumberEntryText("&HFF", "0"), "255");
    EXPECT_EQ(NumberEntryText("1e3", "0"), "1000");
}

TEST(NumberEntryText, AnythingElse_CountsAsZero) {
    for (const char* text :
         {"", " ", "abc", "14.7x", "1,2,3", "1.2.3", "inf", "nan", "1e400", "-", "--1", "&H"})
        EXPECT_EQ(NumberEntryText(text, "0.00"), "0.00") << text;
}

TEST(NumberEntryText, OwnResult_StaysAsItIs) {
    for (const char* text : {"14.70", "0.00", "-3.25", "30.00"})
        EXPECT_EQ(NumberEntryText(text, "0.00"), text);
}

// Nobody stands behind the door: nothing is entered, and the caller goes on.
TEST(ClosedDesktop, NumberDialogAndTimers_NeverCallBack) {
    const DesktopDoor door = ClosedDesktop();
    bool called = false;
    door.EnterNumber({"Caption", "0", "1"}, [&called](const std::string&) { called = true; });
    door.StartTimer(Timer::Update, 0, [&called] { called = true; });
    door.StopTimer(Timer::Update);
    door.SetClipboard("x");
    EXPECT_EQ(door.GetClipboard(), "");
    EXPECT_FALSE(called);
}

}  // namespace
}  // namespace zandrel
