// SPDX-License-Identifier: Apache-2.0
#pragma once

// The system calls that must not lose data, behind one table, so that tests can make each of them fail or be the last.

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

namespace ZORPlatform {

/// What the system offers, with its own results and `errno`.
class SystemCalls {
public:
    virtual ~SystemCalls();

    virtual int open(const char* path, int flags, mode_t mode);
    virtual ssize_t write(int descriptor, const void* bytes, std::size_t count);
    virtual int fchmod(int descriptor, mode_t mode);
    virtual int fsync(int descriptor);
    virtual int close(int descriptor);
    virtual int rename(const char* from, const char* to);
    virtual int unlink(const char* path);
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

}  // namespace ZORPlatform
