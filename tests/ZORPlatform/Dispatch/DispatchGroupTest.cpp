// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchGroup.h>

#include <gtest/gtest.h>
#include <support/ManualQueue.h>

#include <memory>
#include <thread>
#include <vector>

namespace {

using support::ManualQueue;
using ZORPlatform::DispatchGroup;

TEST(DispatchGroup, DoesNotWaitWithoutAMember) {
    const DispatchGroup group;
    group.wait();
    group.enter();
    group.leave();
    group.wait();
}

TEST(DispatchGroup, WaitsForTheLastMemberAndShowsWhatAllOfThemDid) {
    const DispatchGroup group;
    std::vector<int> results(16, 0);
    std::vector<std::thread> threads;
    for (int& result : results) {
        group.enter();
        threads.emplace_back([&result, group] {
            result = 1;
            group.leave();
        });
    }
    group.wait();
    EXPECT_EQ(results, std::vector<int>(16, 1));
    for (std::thread& thread : threads) thread.join();
}

TEST(DispatchGroup, NotifiesOnTheGivenQueueOnceItBecomesEmpty) {
    ManualQueue manual;
    const DispatchGroup group;
    group.enter();
    group.enter();
    std::vector<int> log;
    group.notify(manual.queue(), [&log] { log.push_back(1); });
    group.notify(manual.queue(), [&log] { log.push_back(2); });
    group.leave();
    EXPECT_EQ(manual.waiting(), 0U);
    group.leave();
    EXPECT_TRUE(log.empty());
    manual.runAll();
    EXPECT_EQ(log, (std::vector{1, 2}));
}

TEST(DispatchGroup, NotifiesAtOnceWhenItIsEmpty) {
    ManualQueue manual;
    const DispatchGroup group;
    bool isNotified = false;
    group.notify(manual.queue(), [&isNotified] { isNotified = true; });
    EXPECT_EQ(manual.waiting(), 1U);
    manual.runNext();
    EXPECT_TRUE(isNotified);
}

TEST(DispatchGroup, MayBeUsedAgainAfterItBecameEmpty) {
    ManualQueue manual;
    const DispatchGroup group;
    int notified = 0;
    for (int round = 0; round < 3; ++round) {
        group.enter();
        group.notify(manual.queue(), [&notified] { ++notified; });
        EXPECT_EQ(manual.waiting(), 0U);
        group.leave();
        manual.runAll();
        EXPECT_EQ(notified, round + 1);
    }
}

TEST(DispatchGroup, CopiesAreTheSameGroup) {
    const DispatchGroup group;
    const DispatchGroup copy = group;
    EXPECT_EQ(copy, group);
    EXPECT_NE(copy, DispatchGroup());
    group.enter();
    copy.leave();
    group.wait();
}

TEST(DispatchGroup, ReleasesNotificationsThatNeverCameDue) {
    const auto held = std::make_shared<int>(0);
    {
        ManualQueue manual;
        const DispatchGroup group;
        group.enter();
        group.notify(manual.queue(), [held] {});
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
}

TEST(DispatchGroupDeathTest, StopsOnALeaveWithoutAnEnter) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const DispatchGroup group;
    EXPECT_DEATH(group.leave(), "Unbalanced call to dispatch_group_leave\\(\\)");
    group.enter();
    group.leave();
    EXPECT_DEATH(group.leave(), "Unbalanced call to dispatch_group_leave\\(\\)");
}

}  // namespace
