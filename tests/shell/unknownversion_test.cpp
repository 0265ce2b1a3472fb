// A Power-FC that the catalogue does not know: the scan, the proposed name, and the file that comes of it.
#include <gtest/gtest.h>

#include <filesystem>

#include "files/datafile.h"
#include "files/datatext.h"
#include "files/journal.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/linkfixture.h"
#include "link/packets.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/product.h"
#include "util/store.h"

namespace zandrel {
namespace {

class UnknownVersion : public LinkFixture {
  protected:
    UnknownVersion() {
        mnuSaveAs_Click = SaveAs;
        Rename("9.99 ");
        AnswerAll();
        Desktop.ChooseFile = [this](const FileChoice& choice) {
            asked.push_back(choice);
            return answer;
        };
    }
    ~UnknownVersion() override { EndJournal(); }

    // Every block answers the next request, so that a scan needs not wait for the missing ones.
    void AnswerAll() {
        for (int b = 0; b < 256; ++b) {
            if (!device->HasBlock(b))
                device->ReplaceReply(b, powerfc::Frame(static_cast<std::uint8_t>(b), {9}));
        }
    }

    void Rename(const std::string& version) {
        device->SetBlock(0xF5, powerfc::Bytes(version.begin(), version.end()));
    }

    static std::string NotYet(const std::string& version) {
        return "RB26DETT version " + version +
               " is not yet supported.\nPlease complete the following scan then save and email to\n" +
               kSupportAddress;
    }

    // A scanned block carries its checksum byte.
    ByteString Scanned(int code) const {
        return FrameOf(ByteString(1, static_cast<char>(code)) + device->BlockString(code)).substr(2);
    }

    std::vector<FileChoice> asked;
    std::string answer;
};

TEST_F(UnknownVersion, ReadAll_ScansProposesANameAndSaves) {
    std::filesystem::create_directory(Folder + "/Maps");
    answer = Folder + "/scan RB26DETT v9.99.dat";
    ExpectBox(NotYet("9.99"), Box::Critical);
    cmdReadAll_Click();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_TRUE(asked[0].Save);
    EXPECT_EQ(asked[0].Name, "scan RB26DETT v9.99.dat");
    EXPECT_EQ(asked[0].Folder, Folder + "/Maps/");
    // The version in force is still none.
    EXPECT_EQ(VerName, "");
    EXPECT_EQ(MainFormState.Caption, "Zandrel [ v] - scan RB26DETT v9.99.dat");
    EXPECT_FALSE(DataChanged);
    EXPECT_FALSE(cmdWriteAll.Enabled);
    EXPECT_TRUE(cmdReadAll.Enabled);
    EXPECT_FALSE(ProgressScan.Visible);
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), answer);
    EXPECT_EQ(GetSetting("Settings", "MapPath", ""), Folder + "/");

    DataText file;
    ParseDataText(FileBytes(answer), file);
    for (int b = 0; b < 256; ++b) {
        if (!device->HasBlock(b)) continue;
        EXPECT_EQ(file.Blocks[static_cast<std::size_t>(b)], Scanned(b)) << b;
    }
    for (int b = 0; b < 256; ++b) EXPECT_TRUE(file.Present[static_cast<std::size_t>(b)] || b == 2) << b;
}

TEST_F(UnknownVersion, SavedScan_IsAFileOfAnUnknownBuild) {
    answer = Folder + "/scan.dat";
    ExpectBox(NotYet("9.99"), Box::Critical);
    cmdReadAll_Click();
    std::string path = answer;
    const auto image = ReadData;
    ExpectBox("scan.dat[RB26DETT v9.99] is not recognised, or the Power-FC is not supported by this version",
              Box::Critical);
    OpenFile(path, true);
    EXPECT_EQ(ReadData, image);
}

TEST_F(UnknownVersion, CancelledSave_KeepsTheScanAndTheProposal) {
    ExpectBox(NotYet("9.99"), Box::Critical);
    cmdReadAll_Click();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(ReadData[0x8D], Scanned(0x8D));
    EXPECT_EQ(GetSetting("RecentDatFiles", "RecentFile1", ""), "");
    // Save As by hand proposes it again.
    SaveAs();
    EXPECT_EQ(asked.back().Name, "scan RB26DETT v9.99.dat");
}

TEST_F(UnknownVersion, CancelledScan_SavesWhatItHas) {
    OnYield([] {
        if (YieldCount() == 101) ProgressScan.Cancelled = true;
    });
    answer = Folder + "/part.dat";
    ExpectBox(NotYet("9.99"), Box::Critical);
    cmdReadAll_Click();
    DataText file;
    ParseDataText(FileBytes(answer), file);
    for (int b = 0; b < 256; ++b) {
        if (b != 2) {
            EXPECT_EQ(file.Present[static_cast<std::size_t>(b)], b < 100) << b;
        }
    }
}

TEST_F(UnknownVersion, NextAttempt_GoesTheSameWay) {
    answer = Folder + "/scan.dat";
    for (int n = 1; n <= 2; ++n) {
        AnswerAll();
        ExpectBox(NotYet("9.99"), Box::Critical);
        cmdReadAll_Click();
        EXPECT_EQ(asked.size(), static_cast<std::size_t>(n));
        EXPECT_EQ(VerName, "");
    }
    // And a build that is known comes up as ever.
    Rename("6.42 ");
    device->ClearFaults();
    cmdReadAll_Click();
    EXPECT_EQ(VerNumber, "6.42");
    EXPECT_TRUE(cmdWriteAll.Enabled);
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - Unsaved Data");
}

TEST_F(UnknownVersion, UnknownOneBehindAKnownImage_LeavesTheVersionInForce) {
    Rename("6.42 ");
    device->ClearFaults();
    cmdReadAll_Click();
    ASSERT_EQ(VerNumber, "6.42");
    Rename("9.99 ");
    AnswerAll();
    DataChanged = false;
    answer = Folder + "/scan.dat";
    ExpectBox(NotYet("9.99"), Box::Critical);
    cmdReadAll_Click();
    EXPECT_EQ(VerNumber, "6.42");
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - scan.dat");
    EXPECT_EQ(asked.back().Name, "scan RB26DETT v9.99.dat");
    EXPECT_FALSE(cmdWriteAll.Enabled) << "nothing of the unknown one can be sent to the known one";
    EXPECT_FALSE(cmdUpdate.Enabled);
}

TEST_F(UnknownVersion, NameOfBadCharacters_IsProposedAsItIs) {
    Rename("1/ \"?");
    ExpectBox(NotYet("1/ \"?"), Box::Critical);
    cmdReadAll_Click();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].Name, "scan RB26DETT v1/ \"?.dat");
}

}  // namespace
}  // namespace zandrel
