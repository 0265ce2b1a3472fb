// A test that runs as the administrator is refused nothing; while one of these lives it is anybody.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace zandrel {

class Unprivileged {
  public:
    /// `folder` and what lies in it belong to that person from then on.
    explicit Unprivileged(const std::string& folder) : wasRoot_(geteuid() == 0) {
        if (!wasRoot_) return;
        EXPECT_EQ(chown(folder.c_str(), kNobody, kNobody), 0);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            EXPECT_EQ(lchown(entry.path().c_str(), kNobody, kNobody), 0);
        }
        EXPECT_EQ(setegid(kNobody), 0);
        EXPECT_EQ(seteuid(kNobody), 0);
    }
    ~Unprivileged() {
        if (!wasRoot_) return;
        EXPECT_EQ(seteuid(0), 0);
        EXPECT_EQ(setegid(0), 0);
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

  private:
    static constexpr uid_t kNobody = 65534;
    bool wasRoot_;
};

}  // namespace zandrel
