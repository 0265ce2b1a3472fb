#include "shell/programfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/cleanstate.h"

namespace zandrel {
namespace {

namespace fs = std::filesystem;

class ProgramFolders : public CleanState {
  protected:
    ProgramFolders() : current_(fs::current_path()) { fs::current_path(Folder); }
    ~ProgramFolders() override { fs::current_path(current_); }

    static void Make(const std::string& path) { std::ofstream(path) << "x"; }

    fs::path current_;
};

TEST_F(ProgramFolders, CopyOnAStick_KeepsItsFilesBesideItself) {
    fs::create_directory(Folder + "/stick");
    EXPECT_EQ(ChooseProgramFolder("", Folder + "/stick", Folder + "/user"), Folder + "/stick");
    EXPECT_TRUE(fs::is_empty(Folder + "/stick")) << "the trial has left something";
    EXPECT_FALSE(fs::exists(Folder + "/user"));
}

TEST_F(ProgramFolders, FolderThatTakesNoFiles_GivesTheUsersOwnAndMakesIt) {
    // No right to write helps there, not even the superuser's.
    for (const std::string& executable : {std::string("/proc"), Folder + "/missing", std::string()}) {
        fs::remove_all(Folder + "/user");
        EXPECT_EQ(ChooseProgramFolder("", executable, Folder + "/user/share/Zandrel"),
                  Folder + "/user/share/Zandrel");
        EXPECT_TRUE(fs::is_directory(Folder + "/user/share/Zandrel")) << executable;
    }
}

TEST_F(ProgramFolders, GivenHome_GoesBeforeBoth) {
    const std::string given = Folder + "/not there yet/given";
    EXPECT_EQ(ChooseProgramFolder(given, Folder, Folder + "/user"), given);
    EXPECT_TRUE(fs::is_directory(given));
}

TEST_F(ProgramFolders, FileByItsNameAlone_GetsItsFolder) {
    for (const char* name : {"plain.dat", "two words.dat", "it's 100% \"so\".dat",
                             "\u65e5\u672c \u0437\u0430\u043c\u0435\u0440.dat", "-a.dat", "\"quoted.dat\""}) {
        Make(name);
        EXPECT_EQ(CommandLinePath(name), (fs::current_path() / name).string());
    }
    EXPECT_EQ(CommandLinePath("\"two words.dat\""), (fs::current_path() / "two words.dat").string());
}

TEST_F(ProgramFolders, EverythingElse_StaysAsItWasGiven) {
    fs::create_directory("folder.dat");
    for (const char* words :
         {"", "missing.dat", "\"missing.dat\"", "\"half.dat", "\"", "/absolute/x.dat", "folder.dat"}) {
        EXPECT_EQ(CommandLinePath(words), words);
    }
}

}  // namespace
}  // namespace zandrel
