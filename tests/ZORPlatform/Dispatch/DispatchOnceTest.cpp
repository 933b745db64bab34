// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchOnce.h>

#include <gtest/gtest.h>

#include <latch>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using ZORPlatform::DispatchOnce;

[[maybe_unused]] constinit DispatchOnce needsNoCodeAtLoadTime;

TEST(DispatchOnce, RunsTheBlockForOneOfManyThreadsAndShowsTheOthersWhatItDid) {
    DispatchOnce once;
    int made = 0;  // Not atomic: the guard orders the accesses.
    std::latch together(8);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            together.arrive_and_wait();
            once.run([&made] { ++made; });
            EXPECT_EQ(made, 1);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

TEST(DispatchOnce, CountsABlockThatThrewAsNotRun) {
    DispatchOnce once;
    int runs = 0;
    EXPECT_THROW(once.run([] { throw std::runtime_error("no tables"); }), std::runtime_error);
    once.run([&runs] { ++runs; });
    once.run([&runs] { ++runs; });
    EXPECT_EQ(runs, 1);
}

TEST(DispatchOnceDeathTest, StopsWhenTheBlockComesBackToItsOwnGuard) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    DispatchOnce once;
    EXPECT_DEATH(once.run([&once] { once.run([] {}); }), "must not call back into its own run-once guard");
}

}  // namespace
