// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/WorkList.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <memory>
#include <vector>

namespace {

using ZORPlatform::WorkList;

TEST(WorkList, GivesWorksBackInTheOrderOfAppendingAcrossChunksOfAllSizes) {
    WorkList list;
    EXPECT_TRUE(list.isEmpty());
    std::vector<int> ran;
    std::vector<int> expected;
    int appended = 0;
    // More is appended than taken, then the list is emptied.
    for (int round = 0; round < 3'000; ++round) {
        list.append([&ran, number = appended++] { ran.push_back(number); });
        list.append([&ran, number = appended++] { ran.push_back(number); });
        if (round % 2 == 0) list.runFirst();
    }
    while (!list.isEmpty()) list.takeFirst()();
    for (int number = 0; number < appended; ++number) expected.push_back(number);
    EXPECT_EQ(ran, expected);
}

TEST(WorkList, DestroysAWorkWhenItHasRunAndThoseLeftWhenItGoes) {
    const auto held = std::make_shared<int>(0);
    {
        WorkList list;
        for (int i = 0; i < 1'000; ++i) list.append([held] { ++*held; });
        EXPECT_EQ(held.use_count(), 1'001);
        list.runFirst();
        EXPECT_EQ(held.use_count(), 1'000);
        EXPECT_EQ(*held, 1);
    }
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(*held, 1);
}

TEST(WorkList, LetsARunningWorkAppend) {
    WorkList list;
    int runs = 0;
    list.append([&] {
        for (int i = 0; i < 100; ++i) list.append([&runs] { ++runs; });
    });
    while (!list.isEmpty()) list.runFirst();
    EXPECT_EQ(runs, 100);
}

TEST(WorkList, TakesNoMemoryForFewWorksOnceItHasHadSome) {
    WorkList list;
    list.append([] {});
    list.runFirst();
    const support::AllocationCount allocations;
    for (int round = 0; round < 100; ++round) {
        for (int i = 0; i < 6; ++i) list.append([] {});
        while (!list.isEmpty()) list.runFirst();
    }
    EXPECT_EQ(allocations.count(), 0U);
}

TEST(WorkList, TakesMemoryForAChunkOfManyAtATimeAndMovesNothing) {
    WorkList list;
    const support::AllocationCount allocations;
    for (int i = 0; i < 100'000; ++i) list.append([] {});
    EXPECT_LT(allocations.count(), 210U);
}

TEST(WorkList, KeepsLittleRoomWhenTrimmedAndIsUsableAfterwards) {
    WorkList list;
    list.trim();
    int runs = 0;
    for (int i = 0; i < 10'000; ++i) list.append([&runs] { ++runs; });
    while (!list.isEmpty()) list.runFirst();
    list.trim();
    const support::AllocationCount allocations;
    list.append([&runs] { ++runs; });
    EXPECT_EQ(allocations.count(), 1U);
    list.runFirst();
    EXPECT_EQ(runs, 10'001);
}

TEST(WorkList, TakesTheWorksOfAnotherBehindItsOwn) {
    std::vector<int> ran;
    std::vector<int> expected;
    int appended = 0;
    WorkList list;
    WorkList others;
    list.append(others);
    EXPECT_TRUE(list.isEmpty());
    // None, few and many at a time, behind none, few and many.
    for (const int count : {3, 0, 1'000, 1, 0, 40}) {
        for (int i = 0; i < count; ++i) others.append([&ran, number = appended++] { ran.push_back(number); });
        list.append(others);
        EXPECT_TRUE(others.isEmpty());
        if (count > 100) {
            while (!list.isEmpty()) list.runFirst();
        }
    }
    while (!list.isEmpty()) list.runFirst();
    for (int number = 0; number < appended; ++number) expected.push_back(number);
    EXPECT_EQ(ran, expected);
}

TEST(WorkList, SwapsItsWorksWithAnother) {
    WorkList first;
    WorkList second;
    int runs = 0;
    first.append([&runs] { ++runs; });
    first.swap(second);
    EXPECT_TRUE(first.isEmpty());
    second.runFirst();
    EXPECT_EQ(runs, 1);
}

}  // namespace
