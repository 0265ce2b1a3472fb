#include "util/diagnostics.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <regex>

#include "support/cleanstate.h"
#include "support/scripteddesktop.h"
#include "util/desktop.h"

namespace zandrel {
namespace {

using Lines = std::vector<std::string>;

class Diagnostics : public CleanState {};

TEST_F(Diagnostics, FirstEntryOfARun_HasTheRunHeadBeforeIt) {
    HoldClock(1000);
    DebugLogInit();
    HoldClock(1251);
    DebugLog("COM port not open");
    EXPECT_TRUE(std::regex_match(LogText(), std::regex("\\*\\*\\* .+ .+ Zandrel v2\\.132 \\*\\*\\*\r\n"
                                                       "0\\.251 COM port not open\r\n")))
        << LogText();
}

TEST_F(Diagnostics, SecondEntry_HasNoHead) {
    HoldClock(0);
    DebugLogInit();
    DebugLog("one");
    HoldClock(12345);
    DebugLog("two");
    const std::string text = LogText();
    EXPECT_EQ(text.substr(text.find("0.000")), "0.000 one\r\n12.345 two\r\n");
}

TEST_F(Diagnostics, ChangeOfVersion_IsLoggedWithTheVersionLeftBehind) {
    HoldClock(0);
    DebugLogInit();
    VerName = "RB26DETT";
    VerNumber = "6.42";
    DebugLog("first");   // nothing was noted yet: the line is empty
    DebugLog("second");  // no change, no line
    VerNumber = "8.02";
    DebugLog("third");
    const std::string text = LogText();
    const std::string head = text.substr(0, text.find("\r\n") + 2);
    EXPECT_EQ(text, head + "\r\n0.000 first\r\n0.000 second\r\nRB26DETT6.42\r\n0.000 third\r\n");
}

TEST_F(Diagnostics, ANewRun_WritesAnotherHead) {
    DebugLog("one");
    DebugLogInit();
    DebugLog("two");
    const std::string text = LogText();
    EXPECT_NE(text.find("*** ", text.find("one")), text.npos);
}

TEST_F(Diagnostics, FolderThatCannotBeWritten_IsPassedOver) {
    ProgramFolder = Folder + "/missing";
    DebugLog("lost");
    EXPECT_EQ(LogText(), "");
    // A full disk accepts the open and refuses the bytes.
    ProgramFolder = Folder;
    ASSERT_EQ(symlink("/dev/full", (Folder + "/DebugLog.txt").c_str()), 0);
    DebugLog("lost too");
    // The run has no head yet: the first entry that can be written brings it.
    unlink((Folder + "/DebugLog.txt").c_str());
    DebugLog("kept");
    EXPECT_EQ(LogText().substr(0, 4), "*** ");
}

TEST_F(Diagnostics, BytesOfTheFile_AreTheCodePages) {
    DebugLog("PIM kg/m²");
    EXPECT_NE(LogText().find("kg/m\xB2\r\n"), std::string::npos);
}

TEST_F(Diagnostics, ErrorWithoutWords_IsLoggedWithTheRoutineAlone) {
    ClearError();
    ErrorLog("ReadPacket");
    EXPECT_EQ(LogLines(), (Lines{"Error in ReadPacket"}));
}

TEST_F(Diagnostics, ErrorWithWords_IsLoggedAndThenMarkedAsReported) {
    RaiseError("Device vanished");
    ErrorLog("ReadPacket");
    ErrorLog("ValidVersion");
    EXPECT_EQ(LogLines(), (Lines{"Device vanished error in ReadPacket", "My error in ValidVersion"}));
}

TEST_F(Diagnostics, Init_ForgetsTheErrorAndTheVersionNoted) {
    RaiseError("old");
    VerName = "RB26DETT";
    DebugLog("x");
    VerName.clear();
    DebugLogInit();
    DebugLog("y");
    ErrorLog("Z");
    EXPECT_EQ(LogLines(), (Lines{"x", "y", "Error in Z"}));
}

}  // namespace
}  // namespace zandrel
