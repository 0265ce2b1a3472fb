// Files that nobody should open: each ends with its message, within two seconds and 400 MB, and the image
// stands.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "files/datafile.h"
#include "files/filesfixture.h"
#include "files/unprivileged.h"
#include "support/scripteddesktop.h"
#include "tuning/mainform.h"
#include "tuning/settings.h"
#include "util/text.h"

namespace zandrel {
namespace {

using namespace std::string_literals;

constexpr std::size_t kLargest = 16U << 20;
constexpr char kFormatError[] = "File Format Error";
constexpr char kNoVersion[] =
    "bad.dat[ v] is not recognised, or the Power-FC is not supported by this version";

#ifdef __SANITIZE_ADDRESS__
// The sanitizers take their own share of both.
constexpr double kSeconds = 20;
constexpr double kMegabytes = 4000;
#else
constexpr double kSeconds = 2;
constexpr double kMegabytes = 400;
#endif

// The most memory that the process has held since the last reset.
double PeakMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) return std::stod(line.substr(6)) / 1024;
    }
    ADD_FAILURE() << "The system does not tell";
    return 0;
}

class BadInput : public FilesFixture {
  protected:
    BadInput() { Open(Put("work.dat", DataFile(zandrel::BlocksOf(kPlainBuild), "TTmy notes\r\n"))); }

    // Opens the file of the test; the message has to come and nothing may be left of the file.
    void ExpectRefused(const std::string& message) {
        const Everything before = Now();
        ExpectBox(message, Box::Critical);
        OpenInTime(Folder + "/bad.dat");
        EXPECT_EQ(Differences(before, Now()), "");
    }

    void OpenInTime(const std::string& path) {
        std::ofstream("/proc/self/clear_refs") << "5";
        const auto start = std::chrono::steady_clock::now();
        Open(path);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        EXPECT_LT(took.count(), kSeconds);
        EXPECT_LT(PeakMegabytes(), kMegabytes);
        RecordProperty("milliseconds", static_cast<int>(took.count() * 1000));
        RecordProperty("megabytes", static_cast<int>(PeakMegabytes()));
    }

    void PutRepeated(const std::string& line, std::size_t count, const std::string& head = {}) const {
        std::string bytes = head;
        bytes.reserve(head.size() + line.size() * count);
        for (std::size_t i = 0; i < count; ++i) bytes += line;
        Put("bad.dat", bytes);
    }
};

TEST_F(BadInput, NoBytes) {
    Put("bad.dat", "");
    ExpectRefused(kNoVersion);
}

TEST_F(BadInput, OneGigabyteOfZeros) {
    Put("bad.dat", "");
    std::filesystem::resize_file(Folder + "/bad.dat", 1U << 30);
    ExpectRefused(kFormatError);
}

// As much as the disk gives a name to: 4 TiB, or half of it until it does.
TEST_F(BadInput, MoreThanAnyMemory) {
    Put("bad.dat", "");
    std::uintmax_t bytes = std::uintmax_t{1} << 42;
    std::error_code tooLarge;
    do {
        tooLarge.clear();
        std::filesystem::resize_file(Folder + "/bad.dat", bytes, tooLarge);
        if (tooLarge) bytes /= 2;
    } while (tooLarge && bytes > kLargest);
    ASSERT_GT(bytes, kLargest);
    ExpectRefused(kFormatError);
}

TEST_F(BadInput, SixteenMegabytesOfZeros) {
    Put("bad.dat", std::string(kLargest, '\0'));
    ExpectRefused(kNoVersion);
}

TEST_F(BadInput, OneByteAboveTheLimit) {
    Put("bad.dat", std::string(kLargest + 1, '\n'));
    ExpectRefused(kFormatError);
}

TEST_F(BadInput, TenMillionEmptyLines) {
    PutRepeated("\n", 10'000'000);
    ExpectRefused(kNoVersion);
}

TEST_F(BadInput, TenMillionLinesOfBlocks) {
    PutRepeated("F34142\n", 10'000'000);
    ExpectRefused(kFormatError);
}

TEST_F(BadInput, AsManyLinesOfBlocksAsAreAllowed) {
    PutRepeated("0101\n", kLargest / 5);
    ExpectRefused(kNoVersion);
}

TEST_F(BadInput, AsManyLinesOfNotesAsAreAllowed) {
    PutRepeated("TT\n", kLargest / 3);
    ExpectRefused(kNoVersion);
}

TEST_F(BadInput, OneLineOfAHundredMegabytes) {
    Put("bad.dat", std::string(100'000'000, 'F'));
    ExpectRefused(kFormatError);
}

TEST_F(BadInput, OneLineAsLongAsIsAllowed) {
    for (const char* start : {"", "F3", "TT", "99"}) {
        std::string line = start;
        line.resize(kLargest, 'F');
        Put("bad.dat", line);
        const bool names = std::string(start) == "F3";
        // Eight bytes of 0xFF.
        const std::string name = names ? "\u00FF\u00FF\u00FF\u00FF\u00FF\u00FF\u00FF\u00FF" : "";
        ExpectRefused("bad.dat[" + name +
                      " v] is not recognised, or the Power-FC is not supported by this version");
    }
}

TEST_F(BadInput, NulBytes) {
    Put("bad.dat", "\0F3\0\0\0\0\r\0\n\0TT\0\r\n"s);
    ExpectRefused(kNoVersion);
}

TEST_F(BadInput, Utf16) {
    const std::string text = DataFile(zandrel::BlocksOf(kPlainBuild), "TTnote\r\n");
    for (const bool bigEndian : {false, true}) {
        std::string wide = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
        for (const char c : text) wide += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
        Put("bad.dat", wide);
        ExpectRefused(kNoVersion);
    }
}

TEST_F(BadInput, EveryByteAtRandom) {
    std::string noise(1 << 20, '\0');
    std::uint32_t state = 1;
    for (char& c : noise) c = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    Put("bad.dat", noise);
    // Some of the lines are blocks; what they name is nothing known.
    bool told = false;
    Desktop.MessageBox = [&told](const std::string& text, Box) {
        told = text.find("] is not recognised") != text.npos;
        return Answer::Ok;
    };
    const Everything before = Now();
    OpenInTime(Folder + "/bad.dat");
    EXPECT_TRUE(told);
    EXPECT_EQ(Differences(before, Now()), "");
}

TEST_F(BadInput, Folder) {
    std::filesystem::create_directory(Folder + "/bad.dat");
    ExpectRefused("Error opening bad.dat");
}

TEST_F(BadInput, Pipe) {
    ASSERT_EQ(mkfifo((Folder + "/bad.dat").c_str(), 0600), 0);
    ExpectRefused("Error opening bad.dat");
}

TEST_F(BadInput, EndlessDevice) {
    std::filesystem::create_symlink("/dev/zero", Folder + "/bad.dat");
    ExpectRefused("Error opening bad.dat");
}

TEST_F(BadInput, NoRightToRead) {
    Put("bad.dat", DataFile(zandrel::BlocksOf(kPlainBuild)));
    chmod((Folder + "/bad.dat").c_str(), 0);
    const Unprivileged person(Folder);
    ExpectRefused("Error opening bad.dat");
}

TEST_F(BadInput, FileCutOffInTheMiddleOfALine) {
    const std::string whole = DataFile(zandrel::BlocksOf(kPlainBuild));
    for (const std::size_t part : {1U, 2U, 3U}) {
        Put("bad.dat", whole.substr(0, whole.size() * part / 4));
        // The blocks that name the build come last.
        ExpectRefused(kNoVersion);
    }
}

// Good files with line ends of other systems are none of the bad ones.
TEST_F(BadInput, LineEndsOfOtherSystems_AreAccepted) {
    const auto blocks = ReadData;
    const std::string text = DataFile(blocks, "TTa\r\nTTb\r\n");
    for (const char* end : {"\r\n", "\n", "\r", "\n\r", "\r\r\n"}) {
        std::string other;
        for (const char c : text) {
            if (c == '\n')
                other += end;
            else if (c != '\r')
                other += c;
        }
        ReadData.fill({});
        OpenInTime(Put("good.dat", other));
        EXPECT_EQ(MainFormState.FileTitle, "good.dat");
        EXPECT_EQ(ReadData, blocks);
        EXPECT_EQ(txtNotes.Text, "a\r\nb\r\n");
    }
}

TEST_F(BadInput, LargestGoodFile_IsAccepted) {
    const std::string head = DataFile(zandrel::BlocksOf(kPlainBuild));
    PutRepeated("TT\n", (kLargest - head.size()) / 3, head);
    OpenInTime(Folder + "/bad.dat");
    EXPECT_EQ(MainFormState.FileTitle, "bad.dat");
    EXPECT_EQ(txtNotes.Text.size(), (kLargest - head.size()) / 3 * 2);
}

}  // namespace
}  // namespace zandrel
