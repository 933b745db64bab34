// SPDX-License-Identifier: Apache-2.0
#pragma once

// Work that is done once in the life of the process, by whoever comes first; the others wait until it is done.
//
//     constinit DispatchOnce setUp;
//     void use() { setUp.run([] { readTables(); }); }

#include <ZORPlatform/Export.h>

#include <atomic>
#include <mutex>

namespace ZORPlatform {

/// `dispatch_once_t` and `dispatch_once`. For objects of static storage duration: initialised without code at load
/// time, and one read when the work is done. Thread-safe.
class ZOR_EXPORT DispatchOnce {
public:
    constexpr DispatchOnce() noexcept = default;
    DispatchOnce(const DispatchOnce&) = delete;
    DispatchOnce& operator=(const DispatchOnce&) = delete;

    /// `dispatch_once`: calls `block` if no call has completed yet, else returns. Callers that come meanwhile wait;
    /// what the block did is visible to all of them. A block that throws passes its exception to its caller and
    /// counts as not having run. A block that comes back to the same object stops the process.
    template <class Block>
    void run(Block&& block) {
        if (isDone_.load(std::memory_order_acquire)) return;
        const Turn turn(*this);
        if (isDone_.load(std::memory_order_relaxed)) return;
        block();
        isDone_.store(true, std::memory_order_release);
    }

    // The public part ends here.
private:
    class ZOR_EXPORT Turn {
    public:
        explicit Turn(DispatchOnce& once);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        DispatchOnce& once_;
    };

    std::atomic<bool> isDone_{false};
    /// A mark of the thread that runs the block.
    std::atomic<const void*> runner_{nullptr};
    std::mutex mutex_;
};

}  // namespace ZORPlatform
