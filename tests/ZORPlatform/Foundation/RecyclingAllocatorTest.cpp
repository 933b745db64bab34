// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/RecyclingAllocatorInternal.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace {

using ZORPlatform::RecyclingAllocator;

// Each test has objects of a size of its own, and so a shelf of its own.
template <std::size_t kTest>
struct Object {
    std::array<std::size_t, 32 + kTest> numbers{};
};

template <std::size_t kTest>
std::vector<std::shared_ptr<Object<kTest>>> made(std::size_t count) {
    std::vector<std::shared_ptr<Object<kTest>>> objects;
    objects.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        objects.push_back(std::allocate_shared<Object<kTest>>(RecyclingAllocator<Object<kTest>>()));
    }
    return objects;
}

template <class Work>
void onAnotherThread(Work work) {
    std::thread(std::move(work)).join();
}

TEST(RecyclingAllocator, UsesTheMemoryOfADestroyedObjectForTheNext) {
    made<0>(1).clear();
    const support::AllocationCount allocations;
    for (int i = 0; i < 1'000; ++i) {
        const auto object = std::allocate_shared<Object<0>>(RecyclingAllocator<Object<0>>());
        object->numbers.fill(1);
    }
    EXPECT_EQ(allocations.count(), 0U);
}

TEST(RecyclingAllocator, BringsMemoryBackFromTheThreadThatDestroysTheObjects) {
    std::size_t takenFromTheMemoryManager = 0;
    for (int round = 0; round < 100; ++round) {
        const support::AllocationCount allocations;
        auto objects = made<1>(100);
        takenFromTheMemoryManager += allocations.count() - 1;
        onAnotherThread([objects = std::move(objects)]() mutable { objects.clear(); });
    }
    // The last batch of a thread is not full, and goes with it.
    EXPECT_LE(takenFromTheMemoryManager, 100U * 64U);
    EXPECT_GE(takenFromTheMemoryManager, 100U);
}

TEST(RecyclingAllocator, KeepsLittleOfManyObjects) {
    made<2>(100'000).clear();
    const support::AllocationCount allocations;
    const auto objects = made<2>(1'000);
    EXPECT_GE(allocations.count(), 1'000U - 10U * 32U);
}

TEST(RecyclingAllocator, GivesEachLivingObjectMemoryOfItsOwn) {
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (std::size_t round = 0; round < 50; ++round) {
                const std::size_t mark = t * 1'000 + round;
                auto objects = made<3>(200);
                for (const auto& object : objects) object->numbers.fill(mark);
                std::size_t foreign = 0;
                for (const auto& object : objects) foreign += object->numbers.back() == mark ? 0U : 1U;
                EXPECT_EQ(foreign, 0U);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

TEST(RecyclingAllocator, DestroysWhatGoesAtTheVeryEndOfAThread) {
    std::weak_ptr<Object<4>> gone;
    onAnotherThread([&gone] {
        // Older than what the allocator has of this thread, and so destroyed after that.
        static thread_local std::shared_ptr<Object<4>> last;
        last = nullptr;
        made<4>(40).clear();
        last = made<4>(1).front();
        gone = last;
    });
    EXPECT_TRUE(gone.expired());
}

TEST(RecyclingAllocator, RefusesArrays) {
    RecyclingAllocator<Object<5>> allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(2)), std::bad_array_new_length);
}

}  // namespace
