// SPDX-License-Identifier: Apache-2.0
#pragma once

// A lock of one word, for objects of which there are many.
//
//     const std::scoped_lock lock(lock_);   // some instructions; no waiting, no code of the caller's

#include <ZORPlatform/Export.h>

#include <atomic>

namespace ZORPlatform {

/// Mutual exclusion for critical sections so short that whoever finds one taken does best to look again in a moment.
/// After a while it sleeps all the same: the thread inside may have lost its processor. Not recursive.
class ZOR_EXPORT BriefLock {
public:
    constexpr BriefLock() noexcept = default;
    BriefLock(const BriefLock&) = delete;
    BriefLock& operator=(const BriefLock&) = delete;

    void lock() noexcept {
        int expected = kFree;
        if (!state_.compare_exchange_strong(expected, kTaken)) lockContended();
    }
    void unlock() noexcept {
        // The object may be gone after this: the next to take the lock may have destroyed it.
        if (state_.exchange(kFree) == kAwaited) wakeOne();
    }

    // The public part ends here.
private:
    static constexpr int kFree = 0;
    static constexpr int kTaken = 1;
    static constexpr int kAwaited = 2;  ///< Taken, and somebody may sleep for it.

    // Not inline: those who wait and those who wake find each other through tables of one shared object.
    void lockContended() noexcept;
    void wakeOne() noexcept;

    std::atomic<int> state_{kFree};
};

}  // namespace ZORPlatform
