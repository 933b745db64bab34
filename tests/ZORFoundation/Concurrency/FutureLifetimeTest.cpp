// SPDX-License-Identifier: Apache-2.0
//
// What futures hold and when they let go; stack, allocations and memory.

#include <ZORFoundation/Concurrency/Promise.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include <support/AllocationCount.h>
#include <support/SmallStack.h>

namespace {

using namespace ZORFoundation;
using support::AllocationCount;
using support::runInSmallStack;

/// Something to capture, and a way to see that it is gone.
class Witness {
public:
    [[nodiscard]] std::shared_ptr<int> capture() { return std::exchange(held_, nullptr); }
    [[nodiscard]] bool isGone() const { return watched_.expired(); }

private:
    std::shared_ptr<int> held_ = std::make_shared<int>(0);
    std::weak_ptr<int> watched_ = held_;
};

TEST(FutureLifetime, DroppedUnresolvedFreesItsCallbacks) {
    Witness witness;
    {
        const Promise<int> promise;
        promise.futureResult().whenResult([held = witness.capture()](const FutureValue<int>&) {});
        EXPECT_FALSE(witness.isGone());
    }
    EXPECT_TRUE(witness.isGone());
}

TEST(FutureLifetime, ACallbackThatHoldsItsOwnFutureIsFreedWithThePromise) {
    Witness witness;
    {
        const Promise<int> promise;
        const Future<int> future = promise.futureResult();
        future.whenSuccess([future, held = witness.capture()](int) {});
    }
    EXPECT_TRUE(witness.isGone());
}

TEST(FutureLifetime, AFutureThatCanNoLongerResolveFreesItsCallbacksThoughItIsHeld) {
    Witness before;
    Witness after;
    std::optional<Promise<int>> promise(std::in_place);
    const Future<int> future = promise->futureResult();
    const Future<int> last = future.map([](int value) { return value; });
    last.whenSuccess([held = before.capture()](int) {});
    promise.reset();
    EXPECT_TRUE(before.isGone());
    last.whenSuccess([held = after.capture()](int) {});
    EXPECT_TRUE(after.isGone());
}

TEST(FutureLifetime, ACopyOfThePromiseKeepsCallbacksAlive) {
    int seen = 0;
    std::optional<Promise<int>> promise(std::in_place);
    const Promise<int> copy = *promise;
    promise->futureResult().whenSuccess([&seen](int value) { seen = value; });
    promise.reset();
    copy.succeed(3);
    EXPECT_EQ(seen, 3);
}

TEST(FutureLifetime, AChainRunsThoughNobodyHoldsItsEnd) {
    int seen = 0;
    const Promise<int> promise;
    promise.futureResult().map([](int value) { return value + 1; }).whenSuccess([&seen](int value) { seen = value; });
    promise.succeed(1);
    EXPECT_EQ(seen, 2);
}

TEST(FutureLifetime, AFutureReturnedByItsOwnCallbackIsFreed) {
    Witness witness;
    {
        const Promise<int> promise;
        std::optional<Future<int>> own;
        own = promise.futureResult().then([&own](int) { return *own; });
        own->whenSuccess([held = witness.capture()](int) { ADD_FAILURE(); });
        promise.succeed(1);
        EXPECT_TRUE(witness.isGone());
        own->whenComplete([] { ADD_FAILURE(); });
    }
}

TEST(FutureLifetime, OneSideOfAPairThatIsLeftAloneFreesThePair) {
    Witness witness;
    std::optional<Promise<int>> first(std::in_place);
    std::optional<Promise<int>> second(std::in_place);
    first->futureResult().and_(second->futureResult()).whenComplete([held = witness.capture()] { ADD_FAILURE(); });
    first->succeed(1);
    first.reset();
    EXPECT_FALSE(witness.isGone());
    second.reset();
    EXPECT_TRUE(witness.isGone());
}

TEST(FutureLifetime, ACallbackIsFreedWhenItHasRun) {
    Witness witness;
    const Promise<int> promise;
    const Future<int> future = promise.futureResult();
    future.whenSuccess([held = witness.capture()](int) { EXPECT_NE(held, nullptr); });
    promise.succeed(1);
    EXPECT_TRUE(witness.isGone());
}

TEST(FutureLifetime, ACallbackMayDropThePromiseAndTheFuture) {
    auto promise = std::make_unique<Promise<std::vector<int>>>();
    auto future = std::make_unique<Future<std::vector<int>>>(promise->futureResult());
    std::vector<int> seen;
    future->whenSuccess([&](const std::vector<int>& value) {
        promise.reset();
        future.reset();
        seen = value;
    });
    future->whenSuccess([&](const std::vector<int>& value) { seen.insert(seen.end(), value.begin(), value.end()); });
    promise->succeed({1, 2});
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 1, 2}));

    auto resolved = std::make_unique<Future<std::vector<int>>>(Future<std::vector<int>>::succeeded({3}));
    resolved->whenSuccess([&](const std::vector<int>& value) {
        resolved.reset();
        seen = value;
    });
    EXPECT_EQ(seen, std::vector<int>{3});
}

TEST(FutureLifetime, DestructorsOfCapturesMayUseTheFuture) {
    struct Registers {
        Future<int> future;
        explicit Registers(Future<int> observed) : future(std::move(observed)) {}
        Registers(Registers&&) = default;
        ~Registers() {
            if (future == future) future.whenComplete([] { ADD_FAILURE(); });
        }
    };
    std::optional<Promise<int>> promise(std::in_place);
    auto capture = std::make_unique<Registers>(promise->futureResult());
    promise->futureResult().whenSuccess([held = std::move(capture)](int) {});
    promise.reset();
}

constexpr int kMillion = 1'000'000;

Future<int> chain(Future<int> last, int links) {
    for (int i = 0; i < links; ++i) {
        last = last.then([](int value) { return Future<int>::succeeded(value + 1); });
    }
    return last;
}

TEST(FutureStack, AMillionLinksResolve) {
    int seen = 0;
    runInSmallStack([&seen] {
        const Promise<int> promise;
        chain(promise.futureResult(), kMillion).whenSuccess([&seen](int value) { seen = value; });
        promise.succeed(0);
    });
    EXPECT_EQ(seen, kMillion);
}

TEST(FutureStack, AMillionLinksPassOnAFailureInTheMiddle) {
    int seen = 0;
    runInSmallStack([&seen] {
        const Promise<int> promise;
        const Future<int> middle = chain(promise.futureResult(), kMillion / 2).then([](int value) {
            return Future<int>::failed(Error(value));
        });
        const Future<int> last = chain(middle, kMillion / 2);
        last.whenSuccess([](int) { ADD_FAILURE(); });
        last.whenFailure([&seen](const Error& error) { seen = error.as<int>() == nullptr ? 0 : *error.as<int>(); });
        promise.succeed(0);
    });
    EXPECT_EQ(seen, kMillion / 2);
}

TEST(FutureStack, AMillionLinksAreDroppedUnresolved) {
    Witness witness;
    runInSmallStack([&witness] {
        const Promise<int> promise;
        chain(promise.futureResult(), kMillion).whenSuccess([held = witness.capture()](int) { ADD_FAILURE(); });
    });
    EXPECT_TRUE(witness.isGone());
}

TEST(FutureStack, AMillionLinksThatTheCallerMadeAreDroppedUnresolved) {
    Witness witness;
    runInSmallStack([&witness] {
        Promise<int> last;
        last.futureResult().whenSuccess([held = witness.capture()](int) {});
        for (int i = 0; i < kMillion; ++i) {
            const Promise<int> before;
            before.futureResult().whenSuccess([last](int value) { last.succeed(value); });
            last = before;
        }
    });
    EXPECT_TRUE(witness.isGone());
}

TEST(FutureStack, AMillionFuturesHeldByTheValuesOfOneAnotherAreDropped) {
    struct Page {
        std::optional<Future<Page>> next;
    };
    runInSmallStack([] {
        Future<Page> first = Future<Page>::succeeded({});
        for (int i = 0; i < kMillion; ++i) first = Future<Page>::succeeded({first});
    });
}

/// Each link waits for the next to return, the way an asynchronous loop does.
Future<int> countDown(const std::vector<Promise<int>>& ticks, std::size_t left) {
    if (left == 0) return Future<int>::succeeded(7);
    return ticks[left - 1].futureResult().then([&ticks, left](int) { return countDown(ticks, left - 1); });
}

TEST(FutureStack, ALoopOfReturnedFuturesResolves) {
    int seen = 0;
    runInSmallStack([&seen] {
        const std::vector<Promise<int>> ticks(kMillion / 4);
        countDown(ticks, ticks.size()).whenSuccess([&seen](int value) { seen = value; });
        for (std::size_t i = ticks.size(); i > 0; --i) ticks[i - 1].succeed(0);
    });
    EXPECT_EQ(seen, 7);
}

class ManyFutures : public testing::Test {
protected:
    static constexpr std::size_t kCount = 100'000;

    ManyFutures() {
        for (const Promise<int>& promise : promises_) futures_.push_back(promise.futureResult());
        std::iota(order_.begin(), order_.end(), std::size_t{0});
        std::shuffle(order_.begin(), order_.end(), std::mt19937(5));
    }
    void resolveInRandomOrder() {
        for (const std::size_t i : order_) promises_[i].succeed(static_cast<int>(i));
    }

    std::vector<Promise<int>> promises_{kCount};
    std::vector<Future<int>> futures_;
    std::vector<std::size_t> order_ = std::vector<std::size_t>(kCount);
};

TEST_F(ManyFutures, ReduceSeesValuesInOrderThoughTheyArriveInRandomOrder) {
    std::vector<int> seen;
    runInSmallStack([this, &seen] {
        Future<std::vector<int>>::reduce({}, futures_, [](std::vector<int>& all, int value) {
            all.push_back(value);
        }).whenSuccess([&seen](const std::vector<int>& all) { seen = all; });
        resolveInRandomOrder();
    });
    std::vector<int> expected(kCount);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(seen, expected);
}

TEST_F(ManyFutures, RepeatedAndPairsValuesInOrderThoughTheyArriveInRandomOrder) {
    std::size_t inOrder = 0;
    runInSmallStack([this, &inOrder] {
        Future<int> last = Future<int>::succeeded(-1);
        for (const Future<int>& future : futures_) {
            last = last.and_(future).map([&inOrder](const std::pair<int, int>& pair) {
                inOrder += pair.first + 1 == pair.second ? 1 : 0;
                return pair.second;
            });
        }
        resolveInRandomOrder();
    });
    EXPECT_EQ(inOrder, kCount);
}

TEST(FutureAllocations, APromiseIsAtMostOneAndACallbackOne) {
    const AllocationCount allocations;
    int seen = 0;
    const Promise<int> promise;
    EXPECT_LE(allocations.count(), 1U);
    promise.futureResult().whenSuccess([&seen](int value) { seen = value; });
    EXPECT_LE(allocations.count(), 2U);
    promise.succeed(1);
    EXPECT_LE(allocations.count(), 2U);
    EXPECT_EQ(seen, 1);
}

TEST(FutureAllocations, APromiseAfterAnotherTakesItsMemory) {
    const auto round = [] {
        int seen = 0;
        const Promise<int> promise;
        promise.futureResult().whenSuccess([&seen](int value) { seen = value; });
        promise.succeed(1);
        return seen;
    };
    EXPECT_EQ(round(), 1);
    const AllocationCount allocations;
    EXPECT_EQ(round(), 1);
    // Under the address sanitizer every block goes.
    EXPECT_EQ(allocations.count(), FutureInternal::kKeepsSpareBlocks ? 0U : 2U);
}

TEST(FutureAllocations, AFutureMayOutliveTheSpareMemoryOfItsThread) {
    std::thread([] {
        static thread_local std::optional<Promise<int>> last;
        last.emplace();
        Promise<int>().succeed(1);  // The spare memory comes into being after `last`, so it goes first.
    }).join();
}

TEST(FutureAllocations, ACallbackOnAResolvedFutureTakesNone) {
    const Future<int> future = Future<int>::succeeded(1);
    int seen = 0;
    const AllocationCount allocations;
    future.whenSuccess([&seen](int value) { seen = value; });
    EXPECT_EQ(allocations.count(), 0U);
    EXPECT_EQ(seen, 1);
}

TEST(FutureAllocations, ALinkIsOneWithItsCallbackInside) {
    const Promise<int> promise;
    Future<int> last = promise.futureResult();
    const std::vector<int> captured(3);
    const AllocationCount allocations;
    last = last.then([a = 1, b = 2.0, c = &captured](int value) {
        return Future<int>::succeeded(value + a + static_cast<int>(b) + static_cast<int>(c->size()));
    });
    EXPECT_EQ(allocations.count(), 1U);
    last = last.map([](int value) { return value + 1; });
    EXPECT_EQ(allocations.count(), 2U);
    // What the callback returns is the second of a step.
    promise.succeed(1);
    EXPECT_LE(allocations.count(), 3U);
    int seen = 0;
    last.whenSuccess([&seen](int value) { seen = value; });
    EXPECT_EQ(seen, 8);
}

TEST(FutureAllocations, APairIsOne) {
    const Promise<int> first;
    const Promise<int> second;
    const AllocationCount allocations;
    const auto pair = first.futureResult().and_(second.futureResult());
    first.succeed(1);
    second.succeed(2);
    EXPECT_EQ(allocations.count(), 1U);
}

TEST(FutureAllocations, AnyNumberOfCallbacksNeedsNoArray) {
    const Promise<int> promise;
    const Future<int> future = promise.futureResult();
    int calls = 0;
    const AllocationCount allocations;
    for (int i = 0; i < 100; ++i) future.whenComplete([&calls] { ++calls; });
    EXPECT_LE(allocations.count(), 100U);
    promise.succeed(1);
    EXPECT_LE(allocations.count(), 100U);
    EXPECT_EQ(calls, 100);
}

TEST(FutureMemory, APendingLinkTakesAtMost160Bytes) {
    constexpr std::size_t kLinks = 1'000;
    const Promise<int> promise;
    Future<int> last = promise.futureResult();
    const AllocationCount allocations;
    for (std::size_t i = 0; i < kLinks; ++i) {
        last = last.then([i, self = &promise](int value) {
            return Future<int>::succeeded(value + static_cast<int>(i) + (self == nullptr ? 1 : 0));
        });
    }
    EXPECT_EQ(allocations.count(), kLinks);
    // The allocator keeps the size beside each block, and rounds.
    constexpr std::size_t kAllocatorsShare = 16;
    EXPECT_LE(allocations.bytes() / kLinks + kAllocatorsShare, 160U);
}

}  // namespace
