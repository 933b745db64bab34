// SPDX-License-Identifier: Apache-2.0
#pragma once

// Events of the system, delivered on a queue.
//
//     const auto source = DispatchSource::makeFileSystemObjectSource("/etc/hosts", queue, [] { reload(); });
//     source->cancel();

#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <ZORPlatform/Dispatch/FileSystemListener.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>

namespace ZORPlatform {

/// A live watch of one file or directory for the events "written" and "deleted". It lives until it is cancelled, held
/// by nobody or not.
///
/// One thread of the library's own reads the events of all sources. It starts with the first source, sleeps while
/// nothing happens, and ends when the process exits; what happens later is not told. After `fork` the child starts
/// afresh: sources of before are silent in it, and must not be cancelled.
///
/// Thread-safe.
class DispatchSource final : public FileSystemListener, public std::enable_shared_from_this<DispatchSource> {
    struct Private {};

public:
    /// `dispatch_source_create` of the type DISPATCH_SOURCE_TYPE_VNODE for DISPATCH_VNODE_WRITE and
    /// DISPATCH_VNODE_DELETE, resumed.
    ///
    /// The source is bound to what is at the path at this moment, links followed, and stays with it when it is renamed;
    /// what takes its place later is not watched. Of a directory the list of its entries is watched. A path that cannot
    /// be watched, also for lack of the right to read it, gives a source that never reports.
    ///
    /// @param path          a relative one counts from the current directory of this moment
    /// @param queue         a serial queue, on which the handler runs and is destroyed in the end
    /// @param eventHandler  called after one event or several, and again for those that came after its call began
    [[nodiscard]] static std::shared_ptr<DispatchSource> makeFileSystemObjectSource(const std::filesystem::path& path,
                                                                                    DispatchQueue queue,
                                                                                    std::function<void()> eventHandler);

    DispatchSource(Private, DispatchQueue queue, std::function<void()> eventHandler);

    /// `dispatch_source_get_handle`: the number of the watch, -1 when there is none. Sources of one file or directory
    /// share theirs.
    [[nodiscard]] int handle() const noexcept { return handle_; }

    /// `dispatch_source_cancel`: no call of the handler starts after this one has returned, on the queue itself and,
    /// but for a call that is just then starting, on any other thread.
    void cancel();

    /// `dispatch_source_testcancel`
    [[nodiscard]] bool isCancelled() const noexcept { return isCancelled_.load(); }

private:
    void changed() override;
    void deliver();
    void submit(DispatchWork work) const;

    const DispatchQueue queue_;
    std::function<void()> eventHandler_;  ///< Touched on the queue only.
    int handle_ = -1;
    /// Whether a call of the handler is due that will cover what has happened until it begins.
    std::atomic<bool> isDue_{false};
    std::atomic<bool> isCancelled_{false};
};

}  // namespace ZORPlatform
