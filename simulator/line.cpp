#include "simulator/line.h"

#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace powerfc {
namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;

std::string Why(const std::string& what) {
    return what + ": " + std::strerror(errno);
}

std::string LinkTarget(const std::string& link) {
    char target[4096];
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return length < 0 ? std::string() : std::string(target, static_cast<std::size_t>(length));
}

}  // namespace

std::int64_t NowNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kNsPerSecond + now.tv_nsec;
}

void SleepUntilNs(std::int64_t ns) {
    if (ns <= NowNs()) return;
    timespec until{};
    until.tv_sec = ns / kNsPerSecond;
    until.tv_nsec = ns % kNsPerSecond;
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
    }
}

void ClaimPriority() {
    sched_param priority{};
    priority.sched_priority = 10;
    pthread_setschedparam(pthread_self(), SCHED_FIFO, &priority);
    prctl(PR_SET_TIMERSLACK, 1UL);
}

std::string Terminal::Open(const std::string& link) {
    Close();
    own_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (own_ < 0) return Why("No pseudo terminal");
    char name[256];
    if (grantpt(own_) != 0 || unlockpt(own_) != 0 || ptsname_r(own_, name, sizeof name) != 0) {
        const std::string why = Why("No pseudo terminal");
        Close();
        return why;
    }
    name_ = name;
    other_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    if (other_ < 0 || tcgetattr(other_, &settings) != 0) {
        const std::string why = Why(name_);
        Close();
        return why;
    }
    cfmakeraw(&settings);
    cfsetspeed(&settings, B57600);
    tcsetattr(other_, TCSANOW, &settings);
    if (link.empty()) return {};

    struct stat present {};
    if (lstat(link.c_str(), &present) == 0 && !S_ISLNK(present.st_mode)) {
        Close();
        return link + ": is in the way and no link";
    }
    // By way of a second name, so that the link is never missing while it changes.
    const std::string fresh = link + "." + std::to_string(getpid());
    unlink(fresh.c_str());
    if (symlink(name, fresh.c_str()) != 0 || rename(fresh.c_str(), link.c_str()) != 0) {
        const std::string why = Why(link);
        unlink(fresh.c_str());
        Close();
        return why;
    }
    link_ = link;
    return {};
}

void Terminal::Close() {
    // Another simulator may have taken the link over.
    if (!link_.empty() && LinkTarget(link_) == name_) unlink(link_.c_str());
    if (other_ >= 0) close(other_);
    if (own_ >= 0) close(own_);
    own_ = other_ = -1;
    name_.clear();
    link_.clear();
}

void Terminal::Write(const std::uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = write(own_, bytes, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
}

void Terminal::WaitUntilRead() const {
    // Bytes reach the other end's buffer a little after the write, so one look is not enough.
    int looksEmpty = 0;
    for (int ms = 0; ms < 500 && looksEmpty < 5; ++ms) {
        int waiting = 0;
        ioctl(other_, FIONREAD, &waiting);
        looksEmpty = waiting == 0 ? looksEmpty + 1 : 0;
        SleepUntilNs(NowNs() + 1'000'000);
    }
}

}  // namespace powerfc
