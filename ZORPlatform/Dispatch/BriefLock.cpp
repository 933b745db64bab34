// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/BriefLock.h>

#include <ZORPlatform/Dispatch/ProcessorPause.h>

namespace ZORPlatform {
namespace {

// A look takes the lock's cache line away from the thread inside, which then waits for it longer than for all it does
// there. So the looks are far apart: a sixth of a microsecond at first, then ever more, and after some microseconds,
// about as long as it takes to sleep and be woken, there are no more.
constexpr int kFirstPauses = 8;
constexpr int kLastPauses = 128;

}  // namespace

void BriefLock::lockContended() noexcept {
    for (int pauses = kFirstPauses; pauses <= kLastPauses; pauses *= 2) {
        for (int pause = 0; pause < pauses; ++pause) pauseProcessor();
        int expected = kFree;
        if (state_.load(std::memory_order_relaxed) == kFree && state_.compare_exchange_strong(expected, kTaken)) return;
    }
    while (state_.exchange(kAwaited) != kFree) state_.wait(kAwaited);
}

void BriefLock::wakeOne() noexcept { state_.notify_one(); }

}  // namespace ZORPlatform
