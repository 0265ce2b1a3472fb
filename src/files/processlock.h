// A file that one running program holds at a time. The system lets go of it when that program ends, however
// it ends: a file that a crash has left behind stands in nobody's way.
#pragma once

#include <memory>
#include <string>

namespace zandrel {

class ProcessLock {
  public:
    /// Takes the lock at `path`. Null: another program holds it, or the file can't be made.
    static std::unique_ptr<ProcessLock> Take(const std::string& path);

    /// Lets go and removes the file.
    ~ProcessLock();

    ProcessLock(const ProcessLock&) = delete;
    ProcessLock& operator=(const ProcessLock&) = delete;

  private:
    struct Held;
    explicit ProcessLock(std::unique_ptr<Held> held);
    std::unique_ptr<Held> held_;
};

}  // namespace zandrel
