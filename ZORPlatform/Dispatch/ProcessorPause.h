// SPDX-License-Identifier: Apache-2.0
#pragma once

// For loops that wait for another thread by looking again and again.

namespace ZORPlatform {

/// Leaves the processor's units to whatever shares them with this thread for some ten nanoseconds.
inline void pauseProcessor() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    __asm__ volatile("isb");
#endif
}

}  // namespace ZORPlatform
