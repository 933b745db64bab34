// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/FileSystemWatchesInternal.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

namespace ZORPlatform {
namespace {

constexpr std::uint32_t kOfAFile = IN_MODIFY | IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;
constexpr std::uint32_t kOfADirectory = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF;
constexpr std::uint32_t kWrites = IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

}  // namespace

bool FileSystemWatches::Watch::hasLostItsPath() const {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return errno == ENOENT || errno == ENOTDIR;
    return status.st_dev != device || status.st_ino != inode || status.st_nlink == 0;
}

bool FileSystemWatches::Watch::takesAsChange(std::uint32_t events) {
    if ((events & IN_MOVE_SELF) != 0) hasMoved = true;
    const bool isGone = (events & (IN_DELETE_SELF | IN_IGNORED)) != 0 ||
                        ((events & IN_ATTRIB) != 0 && !hasMoved && !isDeleted && hasLostItsPath());
    const bool isDeletedNow = isGone && !std::exchange(isDeleted, true);
    return isDeletedNow || (events & kWrites) != 0;
}

FileSystemWatches::FileSystemWatches() : inotify_(systemCalls().inotify_init()) {}

int FileSystemWatches::add(const std::filesystem::path& path, std::shared_ptr<FileSystemListener> listener) {
    if (!namesAFile(path)) return -1;
    // Watched by the descriptor and not by the path, which may by now lead elsewhere than fstat has seen. It is closed
    // at once: while it is open, the removal of a directory is not told.
    const Descriptor object(systemCalls().open(path.c_str(), O_PATH | O_CLOEXEC, 0));
    struct stat status {};
    if (!object.isOpen() || ::fstat(object.number(), &status) != 0) return -1;
    const std::string link = "/proc/self/fd/" + std::to_string(object.number());

    const std::scoped_lock lock(mutex_);
    const int number = systemCalls().inotify_add_watch(inotify_.number(), link.c_str(),
                                                       S_ISDIR(status.st_mode) ? kOfADirectory : kOfAFile);
    if (number < 0) return -1;
    std::vector<Watch>& watches = watches_[number];
    // What has happened to the object so far is for those who watched it by then.
    if (!watches.empty()) readEventsLocked();
    watches.push_back({std::move(listener), path, status.st_dev, status.st_ino});
    return number;
}

void FileSystemWatches::remove(int number, const FileSystemListener& listener) {
    std::shared_ptr<FileSystemListener> removed;  // Released after the lock.
    const std::scoped_lock lock(mutex_);
    const auto found = watches_.find(number);
    if (found == watches_.end()) return;
    std::vector<Watch>& watches = found->second;
    const auto watch = std::find_if(watches.begin(), watches.end(),
                                    [&listener](const Watch& each) { return each.listener.get() == &listener; });
    if (watch == watches.end()) return;
    removed = std::move(watch->listener);
    watches.erase(watch);
    if (!watches.empty()) return;
    watches_.erase(found);
    // Fails when the object is gone, and the watch with it.
    ::inotify_rm_watch(inotify_.number(), number);
}

void FileSystemWatches::readEvents() {
    const std::scoped_lock lock(mutex_);
    readEventsLocked();
}

void FileSystemWatches::readEventsLocked() {
    // No more than there is now: events may come faster than they are read.
    int waiting = 0;
    if (::ioctl(inotify_.number(), FIONREAD, &waiting) != 0) return;
    while (waiting > 0) {
        const ssize_t size = ::read(inotify_.number(), buffer_.data(), buffer_.size());
        if (size <= 0) return;
        waiting -= static_cast<int>(size);
        for (const char* next = buffer_.data(); next < buffer_.data() + size;) {
            const auto& event = *reinterpret_cast<const inotify_event*>(next);
            tell(event);
            next += sizeof(inotify_event) + event.len;
        }
    }
}

void FileSystemWatches::tell(const inotify_event& event) {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
        // Nobody knows whose events were lost.
        for (auto& [number, watches] : watches_) {
            for (Watch& watch : watches) watch.listener->changed();
        }
        return;
    }
    const auto found = watches_.find(event.wd);
    if (found == watches_.end()) return;
    for (Watch& watch : found->second) {
        if (watch.takesAsChange(event.mask)) watch.listener->changed();
    }
}

}  // namespace ZORPlatform
