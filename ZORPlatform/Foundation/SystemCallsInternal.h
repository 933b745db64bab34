// SPDX-License-Identifier: Apache-2.0
#pragma once

// The system calls whose failure must not lose data or go unseen, behind one table, so that tests can make each of them
// fail or be the last.

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace ZORPlatform {

/// What the system offers, with its own results and `errno`.
class SystemCalls {
public:
    virtual ~SystemCalls();

    virtual int open(const char* path, int flags, mode_t mode);
    virtual ssize_t write(int descriptor, const void* bytes, std::size_t count);
    virtual int fchmod(int descriptor, mode_t mode);
    virtual int fchown(int descriptor, uid_t owner, gid_t group);
    virtual int fsync(int descriptor);
    virtual int close(int descriptor);
    virtual int rename(const char* from, const char* to);
    virtual int unlink(const char* path);
    virtual int setxattr(const char* path, const char* name, const void* value, std::size_t size);
    virtual int eventfd();
    virtual int inotify_init();
    virtual int inotify_add_watch(int descriptor, const char* path, std::uint32_t mask);
    virtual int link(const char* from, const char* to);
    virtual int mkdir(const char* path, mode_t mode);
};

/// The calls in force: the system's own, unless a test has put others in.
SystemCalls& systemCalls();

/// Puts other calls in force for its own lifetime. For tests; not while another thread makes calls.
class ReplacedSystemCalls {
public:
    explicit ReplacedSystemCalls(SystemCalls& calls);
    ~ReplacedSystemCalls();
    ReplacedSystemCalls(const ReplacedSystemCalls&) = delete;
    ReplacedSystemCalls& operator=(const ReplacedSystemCalls&) = delete;

private:
    SystemCalls* previous_;
};

/// Whether the system can be asked for `path`: it is not empty, and does not go on behind U+0000, where the system
/// would stop reading.
inline bool namesAFile(const std::filesystem::path& path) noexcept {
    return !path.empty() && path.native().find('\0') == std::string::npos;
}

/// A descriptor that is closed with its owner: of a file that was only read, or of no file at all, so that nobody has
/// to know whether closing it succeeds.
class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) systemCalls().close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }
    [[nodiscard]] int number() const noexcept { return number_; }

private:
    int number_;
};

}  // namespace ZORPlatform
