// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchGroup.h>
#include <ZORPlatform/Dispatch/DispatchQueue.h>

#include <gtest/gtest.h>
#include <support/ManualQueue.h>

#include <atomic>
#include <barrier>
#include <memory>
#include <numeric>
#include <semaphore>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using ZORPlatform::DispatchGroup;
using ZORPlatform::DispatchQueue;
using ZORPlatform::DispatchTarget;
using ZORPlatform::DispatchWork;

/// Returns once all that was submitted to a serial queue before has run.
void drain(const DispatchQueue& serial) {
    const DispatchGroup group;
    group.enter();
    serial.async([group] { group.leave(); });
    group.wait();
}

TEST(DispatchQueueSerial, RunsWorkInTheOrderOfSubmission) {
    const auto queue = DispatchQueue::serial(u"order");
    std::vector<int> log;
    for (int i = 0; i < 10'000; ++i) queue.async([&log, i] { log.push_back(i); });
    drain(queue);
    std::vector<int> expected(10'000);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(log, expected);
}

TEST(DispatchQueueSerial, RunsOneWorkAtATimeWhoeverSubmits) {
    const auto queue = DispatchQueue::serial(u"one at a time");
    int count = 0;  // Not atomic: the queue orders the accesses.
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 5'000; ++i) queue.async([&count] { ++count; });
        });
    }
    for (std::thread& thread : threads) thread.join();
    drain(queue);
    EXPECT_EQ(count, 20'000);
}

TEST(DispatchQueueSerial, RunsWorkSubmittedByItsOwnWorkAfterThatHasReturned) {
    const auto queue = DispatchQueue::serial(u"nested");
    std::vector<int> log;
    const DispatchGroup group;
    group.enter();
    queue.async([&, queue] {
        queue.async([&, group] {
            log.push_back(2);
            group.leave();
        });
        log.push_back(1);
    });
    group.wait();
    EXPECT_EQ(log, (std::vector{1, 2}));
}

TEST(DispatchQueueSerial, DestroysAWorkBeforeTheNextBegins) {
    const auto queue = DispatchQueue::serial(u"destroys");
    const auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> seen = held;
    std::vector<long> counts;
    DispatchGroup group;
    group.enter();
    queue.async([&counts, copy = held, seen] { counts.push_back(seen.use_count()); });
    queue.async([&counts, seen, group] {
        counts.push_back(seen.use_count());
        group.leave();
    });
    group.wait();
    EXPECT_EQ(counts, (std::vector<long>{2, 1}));
}

TEST(DispatchQueue, RunsWhatWasSubmittedAfterTheLastHandleIsGone) {
    const DispatchGroup group;
    for (int i = 0; i < 100; ++i) {
        group.enter();
        DispatchQueue::serial(u"dropped").async([group] { group.leave(); });
        group.enter();
        DispatchQueue::concurrent(u"dropped").async([group] { group.leave(); });
    }
    group.wait();
}

TEST(DispatchQueue, MayBeDroppedByItsOwnWork) {
    for (const auto make : {&DispatchQueue::serial, &DispatchQueue::concurrent}) {
        const DispatchGroup group;
        group.enter();
        group.enter();
        auto queue = std::make_unique<DispatchQueue>(make(u"dropped by its own work"));
        std::binary_semaphore hasBoth(0);
        // The work's own capture is the last handle: it goes when the work is destroyed.
        queue->async([&hasBoth, group, copy = *queue] {
            hasBoth.acquire();
            group.leave();
        });
        queue->async([group] { group.leave(); });
        queue.reset();
        hasBoth.release();
        group.wait();
    }
}

TEST(DispatchQueueSerial, RunsAllOfAStreamThatStopsAndGoesOn) {
    const auto queue = DispatchQueue::serial(u"stream");
    // Between bursts the queue comes to the end of its turn, now before and now after the next has been submitted.
    int runs = 0;
    for (int burst = 0; burst < 20'000; ++burst) {
        std::atomic<bool> hasRun{false};
        for (int i = burst % 4; i > 0; --i) queue.async([&runs] { ++runs; });
        queue.async([&hasRun] { hasRun = true; });
        while (!hasRun) std::this_thread::yield();
        for (int i = burst % 64; i > 0; --i) std::atomic_signal_fence(std::memory_order_seq_cst);
    }
    EXPECT_EQ(runs, 30'000);
}

TEST(DispatchQueueConcurrent, RunsEveryWorkOnce) {
    const auto queue = DispatchQueue::concurrent(u"once");
    std::vector<std::atomic<int>> runs(10'000);
    const DispatchGroup group;
    for (std::atomic<int>& run : runs) {
        group.enter();
        queue.async([&run, group] {
            ++run;
            group.leave();
        });
    }
    group.wait();
    for (const std::atomic<int>& run : runs) EXPECT_EQ(run, 1);
}

TEST(DispatchQueueConcurrent, StartsTheNextWorkWhileOneStillRuns) {
    const auto queue = DispatchQueue::concurrent(u"together");
    std::barrier together(2);
    const DispatchGroup group;
    for (int i = 0; i < 2; ++i) {
        group.enter();
        queue.async([&together, group] {
            together.arrive_and_wait();
            group.leave();
        });
    }
    group.wait();
}

TEST(DispatchQueue, KeepsItsLabel) {
    EXPECT_EQ(DispatchQueue::serial(u"be.example.balance").label(), u"be.example.balance");
    EXPECT_EQ(DispatchQueue::concurrent(u"").label(), u"");
}

TEST(DispatchQueue, IsEqualToItsCopiesOnly) {
    const auto queue = DispatchQueue::serial(u"same");
    const DispatchQueue copy = queue;
    EXPECT_EQ(copy, queue);
    EXPECT_NE(queue, DispatchQueue::serial(u"same"));
}

TEST(DispatchQueue, HandsItsWorkToTheApplicationsOwnLoop) {
    support::ManualQueue manual;
    const DispatchQueue queue = manual.queue();
    int runs = 0;
    queue.async([&runs] { ++runs; });
    EXPECT_EQ(runs, 0);
    manual.runAll();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(queue.label(), u"manual");
    EXPECT_EQ(queue, manual.queue());
}

TEST(DispatchQueue, GivesATargetWithoutALabelAnEmptyOne) {
    struct Immediate : DispatchTarget {
        void async(DispatchWork work) override { work(); }
    };
    EXPECT_EQ(DispatchQueue(std::make_shared<Immediate>()).label(), u"");
}

TEST(DispatchQueueDeathTest, StopsOnEmptyWorkAndOnANullTarget) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(DispatchQueue::serial(u"q").async(nullptr), "DispatchQueue async: the work must not be empty");
    EXPECT_DEATH(DispatchQueue(nullptr), "DispatchQueue: the target must not be null");
}

TEST(DispatchQueueDeathTest, EndsTheProcessWhenAnExceptionLeavesTheWork) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            const auto queue = DispatchQueue::serial(u"throws");
            queue.async([] { throw std::runtime_error("left the work"); });
            drain(queue);
        },
        "");
}

}  // namespace
