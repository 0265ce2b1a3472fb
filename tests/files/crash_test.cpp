// The journal under fire: a program that edits is killed at random moments, and a fresh one takes over.
#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "files/filesfixture.h"

namespace zandrel {
namespace {

class Crash : public FilesFixture {
  protected:
    void Start(QProcess& process, const char* mode, unsigned seed) const {
        process.start(ZANDREL_CRASHVICTIM, {mode, QString::fromStdString(Folder), QString::number(seed)});
        ASSERT_TRUE(process.waitForStarted());
    }

    /// Lets it live until it has said `least` lines, and some random time more.
    void KillAfter(QProcess& process, int least, int mostMicroseconds) {
        QByteArray said;
        while (said.count('\n') < least && process.waitForReadyRead(10000))
            said += process.readAllStandardOutput();
        std::this_thread::sleep_for(std::chrono::microseconds(random_() % mostMicroseconds));
        process.kill();
        ASSERT_TRUE(process.waitForFinished());
        said += process.readAllStandardOutput();
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit) << "it ended before it was killed";
        lines_ = said.split('\n');
        lines_.removeLast();
    }

    /// What a journal may give now, by the last lines said: the state that stood in it at last, or the one
    /// that was on the way there. "N": nothing.
    std::vector<std::string> Expected() const {
        std::vector<std::string> states = {"N"};
        for (const QByteArray& line : lines_) {
            const std::string state = "R" + line.mid(1).toStdString();
            if (line[0] == '!') states = {state};
            if (line[0] == '?') states = {states.front(), state};
            if (line[0] == 's') states = {states.front(), "N"};
            if (line[0] == 'S') states = {"N"};
        }
        return states;
    }

    /// A fresh program's answer: "N", or "R" and the sum of the image that it has recovered.
    std::string Recovered() const {
        QProcess process;
        Start(process, "recover", 0);
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), 0);
        return State(process);
    }

    /// What it has said; empty if nothing.
    static std::string State(QProcess& process) {
        const std::string said = process.readAllStandardOutput().trimmed().toStdString();
        return said.substr(0, 1) == "N" ? "N" : said;
    }

    void ExpectOneOf(const std::vector<std::string>& expected, const std::string& state) const {
        EXPECT_TRUE(std::find(expected.begin(), expected.end(), state) != expected.end())
            << state << " instead of " << expected.front() << " or " << expected.back() << " after "
            << lines_.size() << " lines";
    }

    std::string Left() const {
        return QDir(QString::fromStdString(Folder)).entryList({"Unsaved*"}).join(' ').toStdString();
    }

    std::mt19937 random_{20261121};
    QList<QByteArray> lines_;
};

TEST_F(Crash, KilledAHundredTimes_NoGestureIsLost) {
    Put("base.dat", DataFile(BlocksOf(kPlainBuild), "TTbase\r\n"));
    int recovered = 0, gestures = 0, onTheWay = 0, inTakeOver = 0;
    for (unsigned round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        {
            QProcess victim;
            Start(victim, "edit", round);
            // Half of them early, around the first base, half of them anywhere.
            const int least = 1 + static_cast<int>(random_() % (round % 2 == 0 ? 5 : 2000));
            KillAfter(victim, least, round % 2 == 0 ? 2000 : 10000);
        }
        if (HasFatalFailure()) return;
        gestures += static_cast<int>(lines_.size()) / 2;
        const std::vector<std::string> expected = Expected();
        // One that is killed while it takes over loses nothing either.
        std::string hastyState;
        if (round % 4 == 0) {
            QProcess hasty;
            Start(hasty, "recover", 0);
            std::this_thread::sleep_for(std::chrono::microseconds(random_() % 8000));
            hasty.kill();
            ASSERT_TRUE(hasty.waitForFinished());
            hastyState = State(hasty);
            if (!hastyState.empty()) ExpectOneOf(expected, hastyState);
            inTakeOver += hasty.exitStatus() == QProcess::CrashExit ? 1 : 0;
        }
        const std::string state = Recovered();
        // What the hasty one had taken over it may have put away.
        if (hastyState.empty() || state != "N") ExpectOneOf(expected, state);
        recovered += state == "N" ? 0 : 1;
        onTheWay += expected.size() > 1 ? 1 : 0;
        EXPECT_EQ(Left(), "");
    }
    // The rounds were what they are meant to be.
    EXPECT_GT(recovered, 40);
    EXPECT_GT(gestures, 1000);
    std::printf("%d recovered; %d gestures; killed within one %d times, in the take-over %d times\n",
                recovered, gestures, onTheWay, inTakeOver);
}

// The edits of a program that runs are its own; after its death they are offered.
TEST_F(Crash, WhileTheOtherLives_ItsJournalIsNotTaken) {
    Put("base.dat", DataFile(BlocksOf(kPlainBuild)));
    QProcess victim;
    Start(victim, "edit", 7);
    ASSERT_TRUE(victim.waitForReadyRead(10000));
    EXPECT_EQ(Recovered(), "N");
    EXPECT_EQ(victim.state(), QProcess::Running);
    KillAfter(victim, 1, 1000);
    ExpectOneOf(Expected(), Recovered());
    EXPECT_EQ(Left(), "");
}

}  // namespace
}  // namespace zandrel
