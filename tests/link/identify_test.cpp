#include "link/identify.h"

#include <gtest/gtest.h>

#include "image/image.h"
#include "link/linkfixture.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/product.h"

namespace zandrel {
namespace {

constexpr char kNotResponding[] = "Interface not responding!";

class Identify : public LinkFixture {
  protected:
    Identify() { ComTimeOutTicks = 40; }

    static powerfc::Options Of(const std::string& version, const std::string& interface = "V2.0") {
        powerfc::Options options;
        options.Version = version;
        options.Interface = interface;
        return options;
    }
};

TEST_F(Identify, KnownBuild_IsAskedForOnceAndShown) {
    cmdWriteAll.Enabled = cmdUpdate.Enabled = true;
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(VerName, "RB26DETT");
    EXPECT_EQ(VerNumber, "6.42");
    EXPECT_EQ(CorvaneVer, "V2.0");
    EXPECT_TRUE(CheckCorvaneVer);
    EXPECT_EQ(AuxChannelCount, 8);
    EXPECT_EQ(device->Received(), (Frames{"0102FC", "F3020A", "F50208", "DD0220"}));
    EXPECT_EQ(ReadData[0xDD], device->BlockString(0xDD));
    EXPECT_TRUE(FraSettings[1470].Visible);
    EXPECT_FALSE(cmdWriteAll.Enabled);
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - ");
    EXPECT_EQ(LogLines(), (Frames{"Version change detected:RB26DETT6.42"}));
}

TEST_F(Identify, SameBuildAgain_ChangesNothing) {
    ASSERT_TRUE(ValidVersion(true, true));
    cmdWriteAll.Enabled = true;
    FraSettings[120].Visible = false;
    device->ClearJournal();
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_FALSE(FraSettings[120].Visible);
    // The interface that answered its version query is asked each time.
    EXPECT_EQ(device->Received(), (Frames{"0102FC", "F3020A", "F50208"}));
}

TEST_F(Identify, OldInterface_IsKnownByTheFallbackAndNotAskedAgain) {
    Restart(Of("RB26DETT6.42", "V1.X"));
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(CorvaneVer, "V1.X");
    EXPECT_FALSE(CheckCorvaneVer);
    EXPECT_EQ(AuxChannelCount, 4);
    EXPECT_TRUE(chkSettingBit[552].Visible);
    EXPECT_EQ(device->Received(),
              (Frames{"0102FC", "0102FC", "0102FC", "0002FD", "F3020A", "F50208", "DD0220"}));
    device->ClearJournal();
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(device->Received(), (Frames{"F3020A", "F50208"}));
}

TEST_F(Identify, OldInterfaceWithAShortAnswer_IsV1) {
    powerfc::Options options = Of("RB26DETT6.42", "V1.X");
    options.ShortVersionAnswer = true;
    Restart(options);
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(CorvaneVer, "V1.X");
    EXPECT_TRUE(CheckCorvaneVer);
}

TEST_F(Identify, AnyFourCharacters_AreTheInterfacesVersion) {
    Restart(Of("RB26DETT6.42", "V3.1"));
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(CorvaneVer, "V3.1");
    EXPECT_EQ(AuxChannelCount, 8);
    EXPECT_FALSE(mnuSetupCorvaneVer[0].Checked);
    EXPECT_FALSE(mnuSetupCorvaneVer[1].Checked);
}

TEST_F(Identify, AnswerOfAnotherLength_IsInvalid) {
    for (const std::size_t length : {0, 2, 3, 4, 6}) {  // 1 and 5 data bytes are the good answers
        device->ReplaceReply(1, powerfc::Frame(1, powerfc::Bytes(length, 'V')));
        ExpectBox("Invalid Corvane version response!", Box::Exclamation);
        EXPECT_FALSE(ValidVersion(true, true)) << length;
        EXPECT_EQ(LogLines().back(), "Error in ValidVersion");
        EXPECT_EQ(LogLines()[LogLines().size() - 2], "Invalid Corvane version response!");
    }
    EXPECT_EQ(VerName, "");
}

TEST_F(Identify, DeadInterface_IsToldOnce) {
    device->DeadLine(true);
    ExpectBox(kNotResponding, Box::Exclamation);
    EXPECT_FALSE(ValidVersion(true, true));
    EXPECT_EQ(device->Received().size(), 6U);  // three times 01, three times 00
    EXPECT_EQ(LogLines().back(), "Error in ValidVersion");
}

TEST_F(Identify, VersionOfTheOlderFamilies_IsReadFrom6C) {
    Restart(Of("RB26DETT3.11D"));
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(VerName, "RB26DETT");
    EXPECT_EQ(VerNumber, "3.11D");
    EXPECT_EQ(ReadVerName(), "RB26DETT");
    EXPECT_EQ(ReadVerNumber(), "3.11D");
    const Frames received = device->Received();
    EXPECT_EQ(received, (Frames{"0102FC", "F3020A", "F3020A", "F3020A", "6B0292", "6C0291", "690294"}));
}

// A Power-FC of a newer family was swapped for one of an older: the newer one's name blocks still stood in
// the image and named the wrong build.
TEST_F(Identify, OlderFamilyAfterANewerOne_IsReadFrom6C) {
    ASSERT_TRUE(ValidVersion(true, true));
    Restart(Of("RB26DETT3.11D"));
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(VerNumber, "3.11D");
    Restart(Of("RB26DETT6.42"));
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(VerNumber, "6.42");
}

TEST_F(Identify, PowerFcThatNamesNothing_IsToldAndFails) {
    device->Silence(0xF3, powerfc::kForever);
    device->Silence(0x6B, powerfc::kForever);
    ExpectMessage(kNotResponding);  // of the read of 0x6B
    ExpectMessage(kNotResponding);
    EXPECT_FALSE(ValidVersion(true, true));
    const Frames lines = LogLines();
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[lines.size() - 3], "Error reading PFC version");
    EXPECT_EQ(lines.back(), "Error in ValidVersion");
}

TEST_F(Identify, SecondVersionBlockMissing_Fails) {
    device->Silence(0xF5, powerfc::kForever);
    ExpectMessage(kNotResponding);
    EXPECT_FALSE(ValidVersion(true, true));
    EXPECT_EQ(VerName, "");
}

TEST_F(Identify, SensorNamesMissing_ReturnsWhatWasReached) {
    device->Silence(0xDD, powerfc::kForever);
    ExpectMessage(kNotResponding);
    int named = 0;
    LogItemNamesInit = [&named] { ++named; };
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(VerName, "RB26DETT");
    EXPECT_EQ(named, 0);
    EXPECT_EQ(LogLines().back(), "Error in ValidVersion");
}

TEST_F(Identify, LongSensorSet_ReadsTheBlockOfItsFieldOnly) {
    Restart(Of("1JZGT-AT3.54"));
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(ReadData[0xDD].size(), 48U);
    EXPECT_TRUE(ReadData[0xEB].empty());
    EXPECT_EQ(device->Received().back(), "DD0220");
}

TEST_F(Identify, NamesAndMonitor_FollowAfterTheDisplay) {
    std::vector<std::string> order;
    InitMonitorAux = [&] { order.push_back("aux"); };
    InitLogChannels = [&](const LogRecord&) { order.push_back("channels"); };
    LogItemNamesInit = [&] { order.push_back("names " + VerNumber); };
    InitMonitorWindow = [&] { order.push_back("monitor"); };
    EXPECT_TRUE(ValidVersion(true, true));
    EXPECT_EQ(order, (Frames{"aux", "channels", "names 6.42", "monitor"}));
}

TEST_F(Identify, TestOnly_LeavesTheDisplay) {
    EXPECT_TRUE(ValidVersion(true, false));
    EXPECT_EQ(VerName, "");
    EXPECT_FALSE(FraSettings[120].Visible);
    EXPECT_EQ(device->Received(), (Frames{"0102FC", "F3020A", "F50208"}));
}

TEST_F(Identify, ImageWithoutVersionBlocks_IsSilentlyUnknown) {
    ApplyBuild("RB26DETT6.42");
    mnuCom_Click(0);
    cmdWriteAll.Enabled = cmdUpdate.Enabled = true;
    EXPECT_FALSE(ValidVersion(false, true));
    EXPECT_EQ(VerName, "RB26DETT");
    EXPECT_EQ(ReadVerName(), "");
    EXPECT_TRUE(FraSettings[120].Visible);
    EXPECT_FALSE(cmdWriteAll.Enabled);
    EXPECT_FALSE(cmdUpdate.Enabled);
    EXPECT_EQ(LogLines().back(), "Version change detected:");
}

TEST_F(Identify, EmptyNamesBeforeAnyVersion_AreAChangeToo) {
    EXPECT_FALSE(ValidVersion(false, true));
    EXPECT_EQ(LogLines(), (Frames{"Version change detected:"}));
}

TEST_F(Identify, ImageOfTheVersionInForce_IsValid) {
    ApplyBuild("RB26DETT6.42");
    ReadData[0xF3] = "RB26DETT";
    ReadData[0xF5] = "6.42 ";
    cmdWriteAll.Enabled = cmdUpdate.Enabled = true;
    FraSettings[120].Visible = false;
    int named = 0;
    LogItemNamesInit = [&named] { ++named; };
    EXPECT_TRUE(ValidVersion(false, true));
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_TRUE(cmdUpdate.Enabled);
    EXPECT_FALSE(FraSettings[120].Visible);
    EXPECT_EQ(LogText(), "");
    EXPECT_EQ(named, 1);
    EXPECT_TRUE(device->Received().empty());
}

TEST_F(Identify, ImageOfAnotherBuild_RebuildsTheDisplayWithoutTheLink) {
    ApplyBuild("RB26DETT6.42");
    ReadData[0xF3] = "B18C    ";
    ReadData[0xF5] = "2.02B";
    EXPECT_TRUE(ValidVersion(false, true));
    EXPECT_EQ(VerName, "B18C");
    EXPECT_EQ(BaseMapIndex, 2);
    EXPECT_TRUE(device->Received().empty());
}

TEST_F(Identify, NamePair_IsChosenByTheEngineBlock) {
    ReadData[0x6B] = "SR20DET1";
    ReadData[0x6C] = "1.70B";
    ReadData[0xF5] = "9.99 ";
    EXPECT_EQ(ReadVerName(), "SR20DET1");
    EXPECT_EQ(ReadVerNumber(), "1.70B");
    ReadData[0xF3] = "RB26DETT";
    EXPECT_EQ(ReadVerName(), "RB26DETT");
    EXPECT_EQ(ReadVerNumber(), "9.99");
}

class UnknownBuild : public Identify {
  protected:
    UnknownBuild() {
        Restart(Of("RB99TEST1.23"));
        mnuSaveAs_Click = [this] {
            ++saves_;
            title_ = MainFormState.FileTitle;
        };
        // The scan waits half a second for each block that is not there: it is cut off here.
        OnYield([this] {
            if (!ProgressScan.Visible) return;
            scanned_ = true;
            ProgressScan.Cancelled = true;
        });
    }
    static void ExpectScanOffer() {
        ExpectBox(std::string("RB99TEST version 1.23 is not yet supported.\n"
                              "Please complete the following scan then save and email to\n") +
                      kSupportAddress,
                  Box::Critical);
    }
    int saves_ = 0;
    bool scanned_ = false;
    std::string title_;
};

TEST_F(UnknownBuild, LeadsToTheScanAndTheSave) {
    cmdWriteAll.Enabled = cmdUpdate.Enabled = true;
    int named = 0;
    LogItemNamesInit = [&named] { ++named; };
    ExpectScanOffer();
    EXPECT_FALSE(ValidVersion(true, true));
    EXPECT_TRUE(scanned_);
    EXPECT_EQ(saves_, 1);
    EXPECT_EQ(title_, "scan RB99TEST v1.23.dat");
    EXPECT_EQ(named, 1);
    EXPECT_FALSE(cmdWriteAll.Enabled);
    EXPECT_FALSE(ProgressScan.Visible);
}

TEST_F(UnknownBuild, LeavesTheVersionInForce_SoThatTheNextAttemptGoesTheSameWay) {
    ApplyBuild("RB26DETT6.42");
    for (int attempt = 1; attempt <= 2; ++attempt) {
        ExpectScanOffer();
        EXPECT_FALSE(ValidVersion(true, true));
        EXPECT_EQ(VerName, "RB26DETT");
        EXPECT_EQ(VerNumber, "6.42");
        EXPECT_EQ(saves_, attempt);
        EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - scan RB99TEST v1.23.dat");
    }
}

TEST_F(UnknownBuild, OfATestOnly_LeadsToTheScanToo) {
    ExpectScanOffer();
    EXPECT_FALSE(ValidVersion(true, false));
    EXPECT_TRUE(scanned_);
}

TEST_F(Identify, WithoutAPort_FailsAfterTheOffer) {
    mnuCom_Click(0);
    ExpectMessage("No COM port has been selected.\nWould you like to AutoDetect the COM port now?",
                  Answer::No);
    EXPECT_FALSE(ValidVersion(true, true));
    EXPECT_EQ(LogLines(), (Frames{"COM port not open", "Error in ValidVersion"}));
}

TEST_F(Identify, ManualChoice_SetsTheVersionAndAsksAgain) {
    CheckCorvaneVer = false;
    int aux = 0;
    InitMonitorAux = [&aux] { ++aux; };
    mnuSetupCorvaneVer_Click(0);
    EXPECT_EQ(CorvaneVer, "V1.X");
    EXPECT_TRUE(CheckCorvaneVer);
    EXPECT_EQ(AuxChannelCount, 4);
    EXPECT_TRUE(lblAntiLag[0].Visible);
    EXPECT_TRUE(mnuSetupCorvaneVer[0].Checked);
    mnuSetupCorvaneVer_Click(1);
    EXPECT_EQ(CorvaneVer, "V2.0");
    EXPECT_EQ(AuxChannelCount, 8);
    EXPECT_EQ(aux, 2);
}

TEST_F(Identify, RunningLog_KeepsTheChannelCount) {
    LogRuns = [] { return true; };
    CorvaneVer = "V1.X";
    SetAuxChannelCount();
    EXPECT_EQ(AuxChannelCount, 8);
}

}  // namespace
}  // namespace zandrel
