#include "files/processlock.h"

#include <utility>

#ifdef _WIN32
#include <QLockFile>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zandrel {

#ifdef _WIN32

struct ProcessLock::Held {
    explicit Held(const std::string& path) : File(QString::fromStdString(path)) {}
    QLockFile File;
};

std::unique_ptr<ProcessLock> ProcessLock::Take(const std::string& path) {
    auto held = std::make_unique<Held>(path);
    held->File.setStaleLockTime(0);
    if (!held->File.tryLock()) return nullptr;
    return std::unique_ptr<ProcessLock>(new ProcessLock(std::move(held)));
}

ProcessLock::~ProcessLock() = default;

#else

struct ProcessLock::Held {
    std::string Path;
    int Handle = -1;
};

namespace {

// False: the file was removed by the one who held it last, and what is locked is no longer there.
bool IsStill(const std::string& path, int handle) {
    struct stat there {
    }, here{};
    return stat(path.c_str(), &there) == 0 && fstat(handle, &here) == 0 && there.st_dev == here.st_dev &&
           there.st_ino == here.st_ino;
}

}  // namespace

std::unique_ptr<ProcessLock> ProcessLock::Take(const std::string& path) {
    for (;;) {
        const int handle = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (handle < 0) return nullptr;
        if (flock(handle, LOCK_EX | LOCK_NB) != 0) {
            close(handle);
            return nullptr;
        }
        if (IsStill(path, handle)) {
            return std::unique_ptr<ProcessLock>(
                new ProcessLock(std::make_unique<Held>(Held{.Path = path, .Handle = handle})));
        }
        close(handle);
    }
}

ProcessLock::~ProcessLock() {
    unlink(held_->Path.c_str());
    close(held_->Handle);
}

#endif

ProcessLock::ProcessLock(std::unique_ptr<Held> held) : held_(std::move(held)) {}

}  // namespace zandrel
