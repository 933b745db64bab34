// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/SystemCallsInternal.h>

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

namespace ZORPlatform {
namespace {

std::atomic<SystemCalls*>& inForce() {
    static SystemCalls& system = *new SystemCalls;
    static std::atomic<SystemCalls*> calls = &system;
    return calls;
}

}  // namespace

SystemCalls::~SystemCalls() = default;

int SystemCalls::open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }
ssize_t SystemCalls::write(int descriptor, const void* bytes, std::size_t count) {
    return ::write(descriptor, bytes, count);
}
int SystemCalls::fchmod(int descriptor, mode_t mode) { return ::fchmod(descriptor, mode); }
int SystemCalls::fsync(int descriptor) { return ::fsync(descriptor); }
int SystemCalls::close(int descriptor) { return ::close(descriptor); }
int SystemCalls::rename(const char* from, const char* to) { return ::rename(from, to); }
int SystemCalls::unlink(const char* path) { return ::unlink(path); }

SystemCalls& systemCalls() { return *inForce().load(std::memory_order_acquire); }

ReplacedSystemCalls::ReplacedSystemCalls(SystemCalls& calls) : previous_(inForce().exchange(&calls)) {}
ReplacedSystemCalls::~ReplacedSystemCalls() { inForce().store(previous_); }

}  // namespace ZORPlatform
