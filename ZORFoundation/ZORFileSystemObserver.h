// SPDX-License-Identifier: Apache-2.0
#pragma once

// Calls a block whenever a file or directory changes.
//
//     const ZORFileSystemObserver observer("/var/lib/bank/rates.plist", [queue] { queue.async(reloadRates); });
//     ...
//     observer.stopObserving();

#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <ZORPlatform/Export.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace ZORPlatform {
class DispatchSource;
}  // namespace ZORPlatform

namespace ZORFoundation {

using ZORPlatform::DispatchQueue;

/// A handle on a watch, cheap to copy: every copy is the same observer, and two are equal when they are. It watches
/// from construction until `stopObserving()`. Dropping the handles stops nothing: the observer then goes on calling its
/// block for the life of the process.
///
/// What calls the block:
/// - for a file, a change of its content or length, unless it is made through a memory mapping, and its deletion, once.
///   A file that another one is renamed over is deleted;
/// - for a directory, an entry that is made, removed, or renamed in it, into it or out of it, and its own deletion, but
///   not what changes inside an entry.
///
/// The watch stays with the file, not with its path: it follows a renamed file, which is itself no event, and does not
/// follow to a file that takes the old one's place. After an atomic save, which does that, make another observer.
///
/// A burst of changes is one call or several, never none; the kind of change is not told. When changes come so fast
/// that the system drops some, every observer of the process is called.
///
/// All observers of a process share one inotify instance and one thread, started by the first of them, that sleeps
/// while nothing changes. It ends when the process exits. In a child after `fork`, observers of before are silent and
/// must not be stopped; new ones may be made.
///
/// Thread-safe.
class ZOR_EXPORT ZORFileSystemObserver {
public:
    /// `init(fileUrl:onChangeBlock:)`
    ///
    /// @param fileUrl        a file or directory; links are followed, a relative path counts from the current directory
    ///                       of this moment. One that does not exist, or that the process may not read, is never
    ///                       reported, also not when it comes into being
    /// @param onChangeBlock  runs on the observer's own serial queue, never on the caller's thread, and possibly before
    ///                       the constructor has returned; an exception that leaves it ends the process. After
    ///                       `stopObserving()` it is destroyed, on that queue. An empty one stops the process at once
    ZORFileSystemObserver(const std::filesystem::path& fileUrl, std::function<void()> onChangeBlock);

    /// `stopObserving()`
    ///
    /// Ends the watch. No call of the block begins after this has returned, changes made before included; one that has
    /// begun on another thread may still be under way. May be called in the block itself. The second time it does
    /// nothing.
    void stopObserving() const;

    /// `fileDescriptor`: the number of the watch, the same for all observers of one file or directory; -1 when the path
    /// could not be watched; `std::nullopt` after stopping.
    [[nodiscard]] std::optional<std::int32_t> fileDescriptor() const;

    /// `workerQueue`: the serial queue of the label "DirectoryObserving queue" that runs the block.
    [[nodiscard]] const DispatchQueue& workerQueue() const noexcept { return workerQueue_; }

    friend bool operator==(const ZORFileSystemObserver& left, const ZORFileSystemObserver& right) noexcept {
        return left.dispatchSource_ == right.dispatchSource_;
    }

private:
    DispatchQueue workerQueue_;
    std::shared_ptr<ZORPlatform::DispatchSource> dispatchSource_;
};

}  // namespace ZORFoundation
