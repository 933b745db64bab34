// SPDX-License-Identifier: Apache-2.0
#pragma once

// Shows that work needs constant stack: runs it in a thread with a small one.

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

namespace support {

/// Runs `work` in a thread of 256 KiB stack and waits for it.
inline void runInSmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{256} * 1024), 0);
    pthread_t thread;
    const auto enter = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, enter, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace support
