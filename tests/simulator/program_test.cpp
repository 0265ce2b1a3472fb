// powerfc-sim as a process.
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include "port.h"

extern char** environ;

namespace powerfc {
namespace {

class Program {
  public:
    explicit Program(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), POWERFC_SIM);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        int output[2];
        if (pipe2(output, O_CLOEXEC) != 0) return;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, output[1], 1);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        if (posix_spawn(&id_, POWERFC_SIM, &actions, nullptr, pointers.data(), environ) != 0) id_ = -1;
        posix_spawn_file_actions_destroy(&actions);
        close(output[1]);
        output_ = fdopen(output[0], "r");
    }
    ~Program() {
        if (id_ > 0) {
            kill(id_, SIGKILL);
            waitpid(id_, nullptr, 0);
        }
        if (output_) fclose(output_);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    std::string Line() {
        char text[512] = {};
        if (!output_ || !fgets(text, sizeof text, output_)) return {};
        std::string line = text;
        if (!line.empty() && line.back() == '\n') line.pop_back();
        return line;
    }
    void Signal(int signal) { kill(id_, signal); }
    /// Exit code, or -1 if it ended otherwise.
    int Wait() {
        int status = 0;
        waitpid(id_, &status, 0);
        id_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t id_ = -1;
    FILE* output_ = nullptr;
};

TEST(PowerfcSim, FirstLineIsTheTerminal_SignalEndsItCleanly) {
    for (const int signal : {SIGINT, SIGTERM}) {
        TempFolder folder;
        const std::string link = folder.File("powerfc");
        Program program({"--link", link, "--version", "SR20DET13.20", "--announce", "--ack", "--interface",
                         "V1.X", "--journal", folder.File("journal.txt")});
        EXPECT_EQ(program.Line(), link);
        {
            Port port(link);
            EXPECT_EQ(port.Take(3), Bytes({'V', '2', 'K'}));
            EXPECT_EQ(port.Ask(0xF5), Frame(2, {0, 0xF5}));
            EXPECT_EQ(DataOf(port.TakeFrame()), Bytes({'3', '.', '2', '0', ' '}));
            program.Signal(SIGUSR1);
            EXPECT_EQ(port.Take(3), Bytes({'V', '2', 'K'}));
        }
        program.Signal(signal);
        EXPECT_EQ(program.Wait(), 0);
        EXPECT_FALSE(std::filesystem::is_symlink(std::filesystem::symlink_status(link)));
        EXPECT_GT(std::filesystem::file_size(folder.File("journal.txt")), 0u);
    }
}

TEST(PowerfcSim, WithoutLink_NameOfTheTerminalItself) {
    Program program({"--pace"});
    const std::string name = program.Line();
    ASSERT_EQ(name.rfind("/dev/", 0), 0u);
    EXPECT_EQ(Port(name).Ask(0xF3)[0], 0xF3);
    program.Signal(SIGTERM);
    EXPECT_EQ(program.Wait(), 0);
}

TEST(PowerfcSim, BadOptions_ExitCode2) {
    const std::vector<std::string> rows[] = {
        {"--nonsense"}, {"--version"}, {"--link"}, {"--interface", "V3.0"},
        {"stray"},      {"-h"},        {""},       {"--pace", "yes"},
    };
    for (const auto& row : rows) EXPECT_EQ(Program(row).Wait(), 2) << row[0];
}

TEST(PowerfcSim, WhatCannotBeHad_ExitCode1) {
    EXPECT_EQ(Program({"--image", "/nonexistent/image.dat"}).Wait(), 1);
    EXPECT_EQ(Program({"--link", "/nonexistent/link"}).Wait(), 1);
}

TEST(PowerfcSim, Help_TellsEveryOption) {
    Program program({"--help"});
    std::string all;
    for (std::string line = program.Line(); !line.empty() || all.empty(); line = program.Line())
        all += line + "\n";
    for (std::string line = program.Line(); !line.empty(); line = program.Line()) all += line + "\n";
    for (const char* name : {"--version", "--interface", "--link", "--pace", "--announce", "--ack", "--image",
                             "--journal", "--help"}) {
        EXPECT_NE(all.find(name), all.npos) << name;
    }
    EXPECT_EQ(program.Wait(), 0);
}

}  // namespace
}  // namespace powerfc
