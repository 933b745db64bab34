// SPDX-License-Identifier: Apache-2.0
#pragma once

// One inotify instance and those who want to hear from it. Whoever owns it waits for its descriptor to become readable
// and then calls `readEvents`, on whichever thread.
//
// What counts. A file is written to (MODIFY) or deleted; an entry of a directory is made, removed, or renamed in, out
// or within (CREATE, DELETE, MOVED_FROM, MOVED_TO), or the directory itself is deleted. While somebody holds a file
// open, unlinking it or renaming another over it shows as ATTRIB only, so ATTRIB sends for a look at the path: nothing
// there, or another file, means deleted. Once the file itself has been renamed (MOVE_SELF) its path says nothing
// about it, and the system's own word is awaited, DELETE_SELF or IGNORED. Deletion is told once; renaming is not told.

#include <ZORPlatform/Dispatch/FileSystemListener.h>
#include <ZORPlatform/Foundation/SystemCallsInternal.h>

#include <sys/inotify.h>
#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace ZORPlatform {

/// Thread-safe.
class FileSystemWatches {
public:
    /// Without inotify there is no descriptor, and nothing can be watched.
    FileSystemWatches();

    [[nodiscard]] bool isOpen() const noexcept { return inotify_.isOpen(); }
    /// Readable whenever there are events. Read only by this object.
    [[nodiscard]] int descriptor() const noexcept { return inotify_.number(); }

    /// Watches what is at `path` at this moment, links followed. Needs the right to read it. Listeners of one object,
    /// by whichever path, get one number. The listener is kept until it is removed, also when its object is gone.
    ///
    /// @param path  absolute; one with U+0000 stands for nothing that exists
    /// @return the watch's number, 1 or more; -1 when it cannot be watched, and nothing is kept
    int add(const std::filesystem::path& path, std::shared_ptr<FileSystemListener> listener);

    /// Tells `listener` of nothing any more, not even of events that happened before.
    void remove(int number, const FileSystemListener& listener);

    /// Takes what events there are and tells the listeners.
    void readEvents();

private:
    /// One listener of one object.
    struct Watch {
        std::shared_ptr<FileSystemListener> listener;
        std::filesystem::path path;
        dev_t device;
        ino_t inode;
        bool hasMoved = false;
        bool isDeleted = false;

        [[nodiscard]] bool takesAsChange(std::uint32_t events);
        [[nodiscard]] bool hasLostItsPath() const;
    };

    void readEventsLocked();
    void tell(const inotify_event& event);

    // Sixty-four kilobytes hold four thousand events of a file.
    static constexpr std::size_t kBufferSize = 65536;

    const Descriptor inotify_;
    // The rest is guarded by the mutex, reading included: an event that is older than a watch must not reach it.
    std::mutex mutex_;
    std::unordered_map<int, std::vector<Watch>> watches_;
    alignas(inotify_event) std::array<char, kBufferSize> buffer_;  ///< Of no meaning between calls.
};

}  // namespace ZORPlatform
