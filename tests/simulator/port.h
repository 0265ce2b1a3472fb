// A bare client of the simulator: a file descriptor, bytes and a deadline.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "simulator/simulator.h"

namespace powerfc {

/// Long enough for a machine under load; only what never comes waits for it.
inline constexpr int kPatienceMs = 10000;

class Port {
  public:
    explicit Port(const std::string& name) : descriptor_(open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    ~Port() { Close(); }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    void Close() {
        if (descriptor_ >= 0) close(descriptor_);
        descriptor_ = -1;
    }

    void Send(const Bytes& bytes) {
        ASSERT_EQ(write(descriptor_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    /// Up to `count` bytes; fewer if they don't come in time or the terminal is gone.
    Bytes Take(std::size_t count, int patienceMs = kPatienceMs) {
        const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(patienceMs);
        Bytes bytes;
        while (bytes.size() < count) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
            pollfd watched = {descriptor_, POLLIN, 0};
            if (left.count() < 0 || poll(&watched, 1, static_cast<int>(left.count())) <= 0) break;
            std::uint8_t buffer[256];
            const ssize_t got = read(descriptor_, buffer, std::min(sizeof buffer, count - bytes.size()));
            if (got <= 0) {
                gone_ = true;
                break;
            }
            bytes.insert(bytes.end(), buffer, buffer + got);
        }
        return bytes;
    }

    /// One whole frame as its length byte tells.
    Bytes TakeFrame(int patienceMs = kPatienceMs) {
        Bytes frame = Take(2, patienceMs);
        if (frame.size() < 2) return frame;
        const Bytes rest = Take(frame[1] - std::size_t{1}, patienceMs);
        frame.insert(frame.end(), rest.begin(), rest.end());
        return frame;
    }

    /// Sends a request and takes one frame.
    Bytes Ask(std::uint8_t code, const Bytes& data = {}) {
        Send(Frame(code, data));
        return TakeFrame();
    }

    /// Sends a request and one that is always answered after it; true if only the second was answered.
    /// So silence shows without waiting for it. `sentinel` is a block that the build has.
    bool StaysSilent(const Bytes& request, std::uint8_t sentinel = 0xF3) {
        Send(request);
        Send(Frame(sentinel));
        return TakeFrame()[0] == sentinel && Empty();
    }

    /// True if nothing stands in the buffer.
    bool Empty() {
        pollfd watched = {descriptor_, POLLIN, 0};
        return poll(&watched, 1, 0) == 0;
    }

    bool Gone() const { return gone_; }

  private:
    int descriptor_;
    bool gone_ = false;
};

/// Data bytes of a frame.
inline Bytes DataOf(const Bytes& frame) {
    return frame.size() < 3 ? Bytes() : Bytes(frame.begin() + 2, frame.end() - 1);
}

inline const Bytes kTaken = {0xF2, 0x02, 0x0B};

/// A folder of its own that goes away with the test.
class TempFolder {
  public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "powerfcXXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~TempFolder() { std::filesystem::remove_all(path_); }
    std::string File(const std::string& name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

}  // namespace powerfc
