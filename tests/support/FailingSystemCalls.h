// SPDX-License-Identifier: Apache-2.0
#pragma once

// System calls of which the n-th fails, or ends the process. Counting starts at construction.

#include <ZORPlatform/Foundation/SystemCallsInternal.h>

#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace support {

class FailingSystemCalls : public ZORPlatform::SystemCalls {
public:
    enum class Outcome {
        fails,       ///< The call does nothing and reports `error`.
        isTheLast,   ///< The process ends at once instead, as if killed.
        halfWrites,  ///< A write takes half of its bytes, then the process ends.
    };

    FailingSystemCalls(int failingCall, Outcome outcome, int error = EIO)
        : failingCall_(failingCall), outcome_(outcome), error_(error) {}

    /// Calls made so far.
    [[nodiscard]] int count() const noexcept { return count_; }

    int open(const char* path, int flags, mode_t mode) override {
        return isDue() ? -1 : SystemCalls::open(path, flags, mode);
    }
    ssize_t write(int descriptor, const void* bytes, std::size_t size) override {
        if (outcome_ == Outcome::halfWrites && count_ + 1 == failingCall_) {
            static_cast<void>(SystemCalls::write(descriptor, bytes, size / 2));
            _exit(0);
        }
        return isDue() ? -1 : SystemCalls::write(descriptor, bytes, size);
    }
    int fchmod(int descriptor, mode_t mode) override { return isDue() ? -1 : SystemCalls::fchmod(descriptor, mode); }
    int fchown(int descriptor, uid_t owner, gid_t group) override {
        return isDue() ? -1 : SystemCalls::fchown(descriptor, owner, group);
    }
    int fsync(int descriptor) override { return isDue() ? -1 : SystemCalls::fsync(descriptor); }
    int close(int descriptor) override {
        // A failing close has closed all the same.
        const int result = SystemCalls::close(descriptor);
        return isDue() ? -1 : result;
    }
    int rename(const char* from, const char* to) override { return isDue() ? -1 : SystemCalls::rename(from, to); }
    int unlink(const char* path) override { return isDue() ? -1 : SystemCalls::unlink(path); }
    int setxattr(const char* path, const char* name, const void* value, std::size_t size) override {
        return isDue() ? -1 : SystemCalls::setxattr(path, name, value, size);
    }
    int eventfd() override { return isDue() ? -1 : SystemCalls::eventfd(); }
    int inotify_init() override { return isDue() ? -1 : SystemCalls::inotify_init(); }
    int inotify_add_watch(int descriptor, const char* path, std::uint32_t mask) override {
        return isDue() ? -1 : SystemCalls::inotify_add_watch(descriptor, path, mask);
    }
    int link(const char* from, const char* to) override { return isDue() ? -1 : SystemCalls::link(from, to); }
    int mkdir(const char* path, mode_t mode) override { return isDue() ? -1 : SystemCalls::mkdir(path, mode); }

private:
    bool isDue() {
        if (++count_ != failingCall_) return false;
        if (outcome_ != Outcome::fails) _exit(0);
        errno = error_;
        return true;
    }

    int failingCall_;
    Outcome outcome_;
    int error_;
    int count_ = 0;
};

}  // namespace support
