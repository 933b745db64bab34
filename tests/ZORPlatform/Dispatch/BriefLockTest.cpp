// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/BriefLock.h>

#include <gtest/gtest.h>
#include <support/ThreadRest.h>

#include <mutex>
#include <thread>
#include <vector>

namespace {

using ZORPlatform::BriefLock;

TEST(BriefLock, IsOneWord) { EXPECT_EQ(sizeof(BriefLock), sizeof(int)); }

TEST(BriefLock, LetsOneThreadInAtATime) {
    BriefLock lock;
    int count = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20'000; ++i) {
                const std::scoped_lock guard(lock);
                ++count;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 80'000);
}

TEST(BriefLock, PutsThreadsToSleepThatWaitLongAndWakesThemAll) {
    BriefLock lock;
    int count = 0;
    std::vector<support::ThreadRest> rests(3);
    std::vector<std::thread> threads;
    lock.lock();
    for (support::ThreadRest& rest : rests) {
        threads.emplace_back([&] {
            rest.entersHere();
            const std::scoped_lock guard(lock);
            ++count;
        });
    }
    for (const support::ThreadRest& rest : rests) rest.waitUntilItSleepsOrHasEnded();
    EXPECT_EQ(count, 0);
    lock.unlock();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 3);
}

}  // namespace
