// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/SystemCallsInternal.h>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/xattr.h>
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
int SystemCalls::fchown(int descriptor, uid_t owner, gid_t group) { return ::fchown(descriptor, owner, group); }
int SystemCalls::fsync(int descriptor) { return ::fsync(descriptor); }
int SystemCalls::close(int descriptor) { return ::close(descriptor); }
int SystemCalls::rename(const char* from, const char* to) { return ::rename(from, to); }
int SystemCalls::unlink(const char* path) { return ::unlink(path); }
int SystemCalls::setxattr(const char* path, const char* name, const void* value, std::size_t size) {
    return ::setxattr(path, name, value, size, 0);
}
int SystemCalls::eventfd() { return ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK); }
int SystemCalls::inotify_init() { return ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK); }
int SystemCalls::inotify_add_watch(int descriptor, const char* path, std::uint32_t mask) {
    return ::inotify_add_watch(descriptor, path, mask);
}
int SystemCalls::link(const char* from, const char* to) { return ::link(from, to); }
int SystemCalls::mkdir(const char* path, mode_t mode) { return ::mkdir(path, mode); }

SystemCalls& systemCalls() { return *inForce().load(std::memory_order_acquire); }

ReplacedSystemCalls::ReplacedSystemCalls(SystemCalls& calls) : previous_(inForce().exchange(&calls)) {}
ReplacedSystemCalls::~ReplacedSystemCalls() { inForce().store(previous_); }

}  // namespace ZORPlatform
