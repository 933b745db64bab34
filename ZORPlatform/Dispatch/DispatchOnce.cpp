// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchOnce.h>

#include <ZORPlatform/Foundation/Precondition.h>

namespace ZORPlatform {
namespace {

// Its address tells a thread from every other that lives. A std::thread::id would need code at load time.
thread_local const char threadMark = 0;

}  // namespace

DispatchOnce::Turn::Turn(DispatchOnce& once) : once_(once) {
    // Only this thread ever stores its own mark, so a stale read can only be another's.
    if (once_.runner_.load(std::memory_order_relaxed) == &threadMark) {
        preconditionFailure("dispatch_once: the block must not call back into its own run-once guard");
    }
    once_.mutex_.lock();
    once_.runner_.store(&threadMark, std::memory_order_relaxed);
}

DispatchOnce::Turn::~Turn() {
    once_.runner_.store(nullptr, std::memory_order_relaxed);
    once_.mutex_.unlock();
}

}  // namespace ZORPlatform
