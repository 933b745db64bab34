// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchWork.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <array>
#include <functional>
#include <memory>
#include <utility>

namespace {

using ZORPlatform::DispatchWork;

TEST(DispatchWork, CallsWhatItHoldsEachTime) {
    int calls = 0;
    DispatchWork work([&calls] { return ++calls; });
    work();
    work();
    EXPECT_EQ(calls, 2);
}

TEST(DispatchWork, HoldsMoveOnlyCallables) {
    int seen = 0;
    DispatchWork work([value = std::make_unique<int>(7), &seen] { seen = *value; });
    DispatchWork moved = std::move(work);
    moved();
    EXPECT_EQ(seen, 7);
}

TEST(DispatchWork, IsEmptyAfterItWasMovedFrom) {
    DispatchWork work([] {});
    const DispatchWork moved = std::move(work);
    EXPECT_TRUE(moved);
    EXPECT_FALSE(work);  // NOLINT(bugprone-use-after-move): what a moved-from work is, is the subject.
}

TEST(DispatchWork, TakesNothingFromNullsOfAnyKind) {
    EXPECT_FALSE(DispatchWork());
    EXPECT_FALSE(DispatchWork(nullptr));
    EXPECT_FALSE(DispatchWork(std::function<void()>()));
    EXPECT_FALSE(DispatchWork(static_cast<void (*)()>(nullptr)));
    EXPECT_TRUE(DispatchWork(std::function<void()>([] {})));
}

TEST(DispatchWork, TakesNoMemoryForSmallCallablesAndOnePieceForLargeOnes) {
    std::array<char, DispatchWork::kInlineSize> small{};
    std::array<char, DispatchWork::kInlineSize + 1> large{};
    {
        const support::AllocationCount allocations;
        DispatchWork work([small] { static_cast<void>(small); });
        DispatchWork moved = std::move(work);
        moved();
        EXPECT_EQ(allocations.count(), 0U);
    }
    const support::AllocationCount allocations;
    DispatchWork work([large] { static_cast<void>(large); });
    DispatchWork moved = std::move(work);
    moved();
    EXPECT_EQ(allocations.count(), 1U);
}

struct ThrowsWhenMoved {
    ThrowsWhenMoved() = default;
    ThrowsWhenMoved(const ThrowsWhenMoved&) = default;
    ThrowsWhenMoved(ThrowsWhenMoved&&) {}  // Not noexcept, which is the point.
    void operator()() const {}
};

TEST(DispatchWork, KeepsCallablesWhoseMoveMayThrowOutsideAndNeverMovesThemAgain) {
    const support::AllocationCount allocations;
    DispatchWork work{ThrowsWhenMoved()};
    DispatchWork moved = std::move(work);
    moved();
    EXPECT_EQ(allocations.count(), 1U);
}

TEST(DispatchWork, DestroysWhatItHeldOnceWhenAssignedOrDropped) {
    const auto held = std::make_shared<int>(0);
    {
        DispatchWork first([held] {});
        DispatchWork second([held] {});
        EXPECT_EQ(held.use_count(), 3);
        first = std::move(second);
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
