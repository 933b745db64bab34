// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/BriefLock.h>

#include <ZORPlatform/Dispatch/ProcessorPause.h>

namespace ZORPlatform {
namespace {

// Some times the length of a critical section, and about as long as it takes to sleep and be woken.
constexpr int kLooksBeforeSleep = 50;

}  // namespace

void BriefLock::lockContended() noexcept {
    for (int look = 0; look < kLooksBeforeSleep; ++look) {
        int expected = kFree;
        if (state_.load(std::memory_order_relaxed) == kFree && state_.compare_exchange_strong(expected, kTaken)) return;
        pauseProcessor();
    }
    while (state_.exchange(kAwaited) != kFree) state_.wait(kAwaited);
}

void BriefLock::wakeOne() noexcept { state_.notify_one(); }

}  // namespace ZORPlatform
