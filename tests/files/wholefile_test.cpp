#include "files/wholefile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "files/filesfixture.h"
#include "files/unprivileged.h"

namespace zandrel {
namespace {

class WholeFile : public CleanState {
  protected:
    // Names in the folder besides what every test has.
    std::vector<std::string> Names(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    std::string NewFolder(const std::string& name) const {
        std::filesystem::create_directory(Folder + "/" + name);
        return Folder + "/" + name;
    }

    ~WholeFile() override { Flush = FlushToDisk; }
};

using Names_ = std::vector<std::string>;

TEST_F(WholeFile, ReadsExactlyTheBytesUpToTheLimit) {
    std::string bytes = "before";
    PutFile(Folder + "/a", std::string("\0\r\n\xFF", 4));
    EXPECT_EQ(ReadWholeFile(Folder + "/a", 4, bytes), FileResult::Done);
    EXPECT_EQ(bytes, std::string("\0\r\n\xFF", 4));
    EXPECT_EQ(ReadWholeFile(Folder + "/a", 3, bytes), FileResult::TooLarge);
    PutFile(Folder + "/empty", "");
    EXPECT_EQ(ReadWholeFile(Folder + "/empty", 0, bytes), FileResult::Done);
    EXPECT_EQ(bytes, "");
}

TEST_F(WholeFile, WhatIsNoFile_IsNotOpened) {
    std::string bytes;
    const std::string pipe = Folder + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {Folder, Folder + "/", Folder + "/none", pipe, std::string("/dev/zero"),
                                    std::string(), std::string("\"")}) {
        EXPECT_EQ(ReadWholeFile(path, 100, bytes), FileResult::NotOpened) << path;
    }
}

// The system tells a size of 0 of files that it makes up while they are read.
TEST_F(WholeFile, FileThatIsLongerThanTold_IsReadToItsEnd) {
    std::string bytes;
    ASSERT_EQ(ReadWholeFile("/proc/self/status", 1 << 20, bytes), FileResult::Done);
    EXPECT_NE(bytes.find("VmHWM:"), bytes.npos);
    EXPECT_EQ(ReadWholeFile("/proc/self/status", 50, bytes), FileResult::TooLarge);
}

TEST_F(WholeFile, FailureWhileReading_IsTold) {
    std::string bytes;
    EXPECT_EQ(ReadWholeFile("/proc/self/mem", 1 << 20, bytes), FileResult::Failed);
}

TEST_F(WholeFile, FileWithoutRightToRead_IsNotOpened) {
    PutFile(Folder + "/a", "x");
    chmod((Folder + "/a").c_str(), 0);
    const Unprivileged person(Folder);
    std::string bytes;
    EXPECT_EQ(ReadWholeFile(Folder + "/a", 100, bytes), FileResult::NotOpened);
}

TEST_F(WholeFile, WrittenFile_HoldsTheBytesAndNothingStandsBeside) {
    const std::string folder = NewFolder("out");
    ASSERT_TRUE(WriteWholeFile(folder + "/a b\"\u30C1.dat", std::string("\0\r\n", 3)));
    ASSERT_TRUE(WriteWholeFile(folder + "/a b\"\u30C1.dat", "new"));
    EXPECT_EQ(FileBytes(folder + "/a b\"\u30C1.dat"), "new");
    EXPECT_EQ(Names(folder), (Names_{"a b\"\u30C1.dat"}));
    ASSERT_TRUE(WriteWholeFile(folder + "/empty", ""));
    EXPECT_EQ(FileBytes(folder + "/empty"), "");
}

TEST_F(WholeFile, NewFile_HasTheRightsOfAnyNewFile) {
    const std::string path = Folder + "/a";
    const mode_t mask = umask(022);
    ASSERT_TRUE(WriteWholeFile(path, "x"));
    umask(mask);
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0644U);
}

TEST_F(WholeFile, LinkStaysALink) {
    PutFile(Folder + "/a", "old");
    std::filesystem::create_symlink(Folder + "/a", Folder + "/link");
    ASSERT_TRUE(WriteWholeFile(Folder + "/link", "new"));
    EXPECT_TRUE(std::filesystem::is_symlink(Folder + "/link"));
    EXPECT_EQ(FileBytes(Folder + "/a"), "new");
}

TEST_F(WholeFile, FullDisk_LeavesTheOldFileAndNothingElse) {
    const std::string folder = NewFolder("out");
    PutFile(folder + "/a", "old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    for (const rlim_t room : {0, 1, 4096, 65535}) {
        rlimit small = before;
        small.rlim_cur = room;
        setrlimit(RLIMIT_FSIZE, &small);
        const bool written = WriteWholeFile(folder + "/a", std::string(65536, 'x'));
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_FALSE(written) << room;
        EXPECT_EQ(FileBytes(folder + "/a"), "old") << room;
        EXPECT_EQ(Names(folder), Names_{"a"}) << room;
    }
    std::signal(SIGXFSZ, handler);
}

TEST_F(WholeFile, DiskThatFailsAtTheFlush_LeavesTheOldFileAndNothingElse) {
    const std::string folder = NewFolder("out");
    PutFile(folder + "/a", "old");
    int flushed = 0;
    Flush = [&](int handle) {
        EXPECT_GE(handle, 0);
        EXPECT_EQ(FileBytes(folder + "/a"), "old");
        ++flushed;
        return false;
    };
    EXPECT_FALSE(WriteWholeFile(folder + "/a", "new"));
    EXPECT_EQ(flushed, 1);
    EXPECT_EQ(FileBytes(folder + "/a"), "old");
    EXPECT_EQ(Names(folder), Names_{"a"});
}

TEST_F(WholeFile, BytesAreFlushedBeforeTheFileIsReplaced) {
    const std::string folder = NewFolder("out");
    PutFile(folder + "/a", "old");
    off_t there = -1;
    Flush = [&](int handle) {
        struct stat status {};
        fstat(handle, &status);
        there = status.st_size;
        EXPECT_EQ(FileBytes(folder + "/a"), "old");
        return FlushToDisk(handle);
    };
    EXPECT_TRUE(WriteWholeFile(folder + "/a", "newer"));
    EXPECT_EQ(there, 5);
    EXPECT_EQ(FileBytes(folder + "/a"), "newer");
}

TEST_F(WholeFile, FolderThatIsMissingOrNotWritable_IsRefused) {
    EXPECT_FALSE(WriteWholeFile(Folder + "/none/a", "x"));
    EXPECT_FALSE(std::filesystem::exists(Folder + "/none"));
    EXPECT_FALSE(WriteWholeFile(Folder, "x"));
    EXPECT_FALSE(WriteWholeFile("", "x"));
    const std::string folder = NewFolder("closed");
    PutFile(folder + "/a", "old");
    chmod(folder.c_str(), 0555);
    {
        const Unprivileged person(Folder);
        EXPECT_FALSE(WriteWholeFile(folder + "/a", "x"));
        EXPECT_FALSE(WriteWholeFile(folder + "/b", "x"));
    }
    EXPECT_EQ(FileBytes(folder + "/a"), "old");
    EXPECT_EQ(Names(folder), Names_{"a"});
    chmod(folder.c_str(), 0755);
}

TEST_F(WholeFile, FolderOpens_OnlyWhereItsFilesCanBeListedAndOpened) {
    EXPECT_TRUE(FolderOpens(Folder));
    EXPECT_TRUE(FolderOpens(Folder + "/"));
    EXPECT_FALSE(FolderOpens(Folder + "/none"));
    EXPECT_FALSE(FolderOpens(""));
    PutFile(Folder + "/a", "x");
    EXPECT_FALSE(FolderOpens(Folder + "/a"));
    const std::string closed = NewFolder("closed");
    const std::string unlisted = NewFolder("unlisted");
    chmod(closed.c_str(), 0600);
    chmod(unlisted.c_str(), 0300);
    const Unprivileged person(Folder);
    EXPECT_TRUE(FolderOpens(Folder));
    EXPECT_FALSE(FolderOpens(closed));
    EXPECT_FALSE(FolderOpens(unlisted));
}

TEST(WholeFilePath, TitleAndFolder) {
    EXPECT_EQ(FileTitleOf("/maps/a.dat"), "a.dat");
    EXPECT_EQ(FileTitleOf("a.dat"), "a.dat");
    EXPECT_EQ(FileTitleOf("/maps/"), "");
    EXPECT_EQ(FolderOf("/maps/a.dat", "a.dat"), "/maps/");
    EXPECT_EQ(FolderOf("a.dat", "a.dat"), "");
    // The first place counts.
    EXPECT_EQ(FolderOf("/a.dat.old/a.dat", "a.dat"), "/");
}

}  // namespace
}  // namespace zandrel
