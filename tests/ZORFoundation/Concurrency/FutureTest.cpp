// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Concurrency/Promise.h>
#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace ZORFoundation;
using testing::ElementsAre;

/// The outcome of a future as text: its value, "error N", or nothing while it is pending.
template <class T>
std::string outcome(const Future<T>& future) {
    // Shared: on a pending future the callback outlives this call.
    const auto text = std::make_shared<std::string>();
    future.whenResult([text](const FutureValue<T>& result) {
        if (const Error* const error = result.ifFailure()) {
            const int* const code = error->template as<int>();
            *text = "error " + (code == nullptr ? "of another type" : std::to_string(*code));
        } else if constexpr (const T& value = *result.ifSuccess(); std::is_same_v<T, std::pair<int, int>>) {
            *text = std::to_string(value.first) + ", " + std::to_string(value.second);
        } else {
            *text = std::to_string(value);
        }
    });
    return *text;
}

TEST(FutureValue, MatchesOnItsCase) {
    const auto text = [](const FutureValue<int>& value) {
        return value.match([](int number) { return std::to_string(number); },
                           [](const Error& error) { return std::string(error.type().name()); });
    };
    EXPECT_EQ(text(FutureValue<int>::success(4)), "4");
    EXPECT_EQ(text(FutureValue<int>::failure(Error(4L))), typeid(long).name());
}

TEST(FutureValue, HoldsAnErrorAsItsValueToo) {
    const Error error(1);
    const auto value = FutureValue<Error>::success(error);
    ASSERT_NE(value.ifSuccess(), nullptr);
    EXPECT_EQ(*value.ifSuccess(), error);
}

TEST(Unit, EqualsItself) { EXPECT_EQ(Unit(), Unit()); }

TEST(Promise, CopiesShareTheFuture) {
    const Promise<int> promise;
    const Promise<int> copy = promise;
    EXPECT_EQ(copy, promise);
    EXPECT_EQ(copy.futureResult(), promise.futureResult());
    EXPECT_NE(Promise<int>(), promise);
    copy.succeed(2);
    EXPECT_EQ(outcome(promise.futureResult()), "2");
}

TEST(Promise, KeepsItsFirstOutcome) {
    const Promise<int> promise;
    promise.succeed(1);
    promise.fail(Error(2));
    promise.succeed(3);
    int seen = 0;
    promise.futureResult().whenFailure([](const Error&) { ADD_FAILURE(); });
    promise.futureResult().whenSuccess([&seen](int value) { seen = value; });
    EXPECT_EQ(seen, 1);
}

TEST(Promise, ASecondOutcomeRunsNoCallbackAgain) {
    const Promise<int> promise;
    int calls = 0;
    promise.futureResult().whenComplete([&calls] { ++calls; });
    promise.fail(Error(1));
    promise.succeed(2);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(outcome(promise.futureResult()), "error 1");
}

TEST(Promise, OfUnitSucceedsWithoutAValue) {
    const Promise<Unit> promise;
    int calls = 0;
    promise.futureResult().whenSuccess([&calls] { ++calls; });
    promise.futureResult().whenSuccess([&calls](Unit) { ++calls; });
    promise.succeed();
    EXPECT_EQ(calls, 2);
}

TEST(Future, WhenSuccessAndWhenFailureRunForTheirCaseOnly) {
    for (const bool succeeds : {true, false}) {
        const Promise<int> promise;
        const Future<int> future = promise.futureResult();
        std::vector<std::string> log;
        future.whenSuccess([&log](int) { log.emplace_back("success"); });
        future.whenFailure([&log](const Error&) { log.emplace_back("failure"); });
        future.whenResult(
            [&log](const FutureValue<int>& value) { log.emplace_back(value.isSuccess() ? "value" : "error"); });
        future.whenComplete([&log] { log.emplace_back("complete"); });
        EXPECT_THAT(log, ElementsAre());
        succeeds ? promise.succeed(1) : promise.fail(Error(1));
        if (succeeds) {
            EXPECT_THAT(log, ElementsAre("success", "value", "complete"));
        } else {
            EXPECT_THAT(log, ElementsAre("failure", "error", "complete"));
        }
    }
}

TEST(Future, PassesTheErrorItselfAlongEveryOperation) {
    const Error error(std::string("the one"));
    const Promise<int> promise;
    int seen = 0;
    const auto check = [&](const Error& passed) {
        EXPECT_EQ(passed, error);
        ++seen;
    };
    const Future<int> future = promise.futureResult();
    future.then([](int) { return Future<int>::succeeded(1); }).whenFailure(check);
    future.map([](int) { return 1; }).whenFailure(check);
    future.and_(Future<int>::succeeded(1)).whenFailure(check);
    Future<int>::succeeded(1).and_(future).whenFailure(check);
    Future<int>::reduce(0, std::vector{future}, [](int&, int) { ADD_FAILURE(); }).whenFailure(check);
    Future<int>::succeeded(1).then([&](int) { return Future<int>::failed(error); }).whenFailure(check);
    promise.fail(error);
    EXPECT_EQ(seen, 6);
}

TEST(Future, ThenGivesTheOutcomeOfTheReturnedFutureWheneverThatResolves) {
    const Promise<int> inner;
    const Future<int> pending = Future<int>::succeeded(1).then([&inner](int) { return inner.futureResult(); });
    EXPECT_NE(pending, inner.futureResult());
    EXPECT_EQ(outcome(pending), "");
    inner.succeed(5);
    EXPECT_EQ(outcome(pending), "5");
    EXPECT_EQ(outcome(Future<int>::succeeded(1).then([&inner](int) { return inner.futureResult(); })), "5");
    EXPECT_EQ(outcome(Future<int>::succeeded(1).then([](int v) { return Future<long>::failed(Error(v)); })), "error 1");
}

TEST(Future, ThenDoesNotCallItsCallbackAfterAFailure) {
    const Future<int> next = Future<int>::failed(Error(3)).then([](int) {
        ADD_FAILURE();
        return Future<int>::succeeded(1);
    });
    EXPECT_EQ(outcome(next), "error 3");
}

TEST(Future, MapTransformsAValueAndTakesNothingForUnit) {
    const Future<int> future = Future<int>::succeeded(20);
    EXPECT_EQ(outcome(future.map([](int value) { return value + 0.5; })), std::to_string(20.5));
    bool called = false;
    const Future<Unit> done = future.map([&called](int) { called = true; });
    EXPECT_TRUE(called);
    EXPECT_EQ(outcome(done.map([] { return 3; })), "3");
}

TEST(Future, MapKeepsAReferenceThatTheCallbackReturnsAsAValue) {
    const std::string text = "text";
    const auto mapped = Future<int>::succeeded(0).map([&text](int) -> const std::string& { return text; });
    static_assert(std::is_same_v<decltype(mapped), const Future<std::string>>);
}

TEST(Future, MapFromUnitToUnitGivesTheSameFuture) {
    const Promise<Unit> promise;
    const Future<Unit> future = promise.futureResult();
    int calls = 0;
    EXPECT_EQ(future.map([&calls] { ++calls; }), future);
    EXPECT_EQ(future.map([&calls](Unit) { return ++calls, Unit(); }), future);
    EXPECT_EQ(calls, 0);
    promise.succeed();
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(outcome(Future<Unit>::failed(Error(1)).map([] { ADD_FAILURE(); }).map([] { return 1; })), "error 1");
}

TEST(Future, AndIsOrderedBySideWhicheverResolvesFirst) {
    const Promise<int> first;
    const Promise<int> second;
    const auto pair = first.futureResult().and_(second.futureResult());
    second.succeed(2);
    EXPECT_EQ(outcome(pair), "");
    first.succeed(1);
    EXPECT_EQ(outcome(pair), "1, 2");
}

TEST(Future, AndFailsAtOnceWithTheFirstFailureAndIgnoresTheRest) {
    const Promise<int> first;
    const Promise<int> second;
    const auto pair = first.futureResult().and_(second.futureResult());
    second.fail(Error(2));
    EXPECT_EQ(outcome(pair), "error 2");
    first.succeed(1);
    EXPECT_EQ(outcome(pair), "error 2");
}

TEST(Future, AndTakesTheSameFutureOnBothSides) {
    const Promise<int> promise;
    const auto pair = promise.futureResult().and_(promise.futureResult());
    promise.succeed(4);
    EXPECT_EQ(outcome(pair), "4, 4");
}

TEST(Future, ReduceOverNoFuturesGivesTheInitialValue) {
    const auto reduced = Future<int>::reduce(9, std::vector<Future<int>>(), [](int&, int) { ADD_FAILURE(); });
    EXPECT_EQ(outcome(reduced), "9");
}

TEST(Future, ReduceUpdatesInArrayOrder) {
    const Promise<int> first;
    const Promise<int> second;
    const auto reduced = Future<int>::reduce(0, std::vector{first.futureResult(), second.futureResult()},
                                             [](int& sum, int value) { sum = sum * 10 + value; });
    second.succeed(2);
    EXPECT_EQ(outcome(reduced), "");
    first.succeed(1);
    EXPECT_EQ(outcome(reduced), "12");
}

TEST(Future, ReduceFailsWithoutWaitingForEarlierFuturesAndStillUpdatesThem) {
    const Promise<int> first;
    const Promise<int> second;
    const Promise<int> third;
    std::vector<int> seen;
    const auto reduced =
        Future<int>::reduce(0, std::vector{first.futureResult(), second.futureResult(), third.futureResult()},
                            [&seen](int&, int value) { seen.push_back(value); });
    second.fail(Error(2));
    EXPECT_EQ(outcome(reduced), "error 2");
    first.succeed(1);
    third.succeed(3);
    EXPECT_EQ(outcome(reduced), "error 2");
    EXPECT_THAT(seen, ElementsAre(1));
}

TEST(Future, FoldOverNoFuturesGivesTheSameFuture) {
    const Future<int> first = Future<int>::succeeded(1);
    const auto add = [](int left, int right) { return Future<int>::succeeded(left + right); };
    EXPECT_EQ(FutureInternal::fold(first, std::vector<Future<int>>(), add), first);
    EXPECT_EQ(outcome(FutureInternal::fold(first, std::vector{first, first}, add)), "3");
}

TEST(Future, SucceededAndFailedAreResolved) {
    EXPECT_EQ(outcome(Future<int>::succeeded(1)), "1");
    EXPECT_EQ(outcome(Future<int>::failed(Error(2))), "error 2");
    EXPECT_NE(Future<int>::succeeded(1), Future<int>::succeeded(1)) << "two futures";
}

TEST(Future, OfAValueThatCanOnlyBeMovedPassesAnyNumberOfLinks) {
    const Promise<std::unique_ptr<int>> promise;
    const Promise<std::unique_ptr<int>> inner;
    int seen = 0;
    const Future<std::unique_ptr<int>> future = promise.futureResult();
    future.then([&inner](const std::unique_ptr<int>&) { return inner.futureResult(); })
        .then([](const std::unique_ptr<int>& value) {
            return Future<std::unique_ptr<int>>::succeeded(std::make_unique<int>(*value + 1));
        })
        .map([](const std::unique_ptr<int>& value) { return std::make_unique<int>(*value + 1); })
        .whenSuccess([&seen](const std::unique_ptr<int>& value) { seen = *value; });
    inner.futureResult().whenSuccess([](const std::unique_ptr<int>& value) { EXPECT_EQ(*value, 5); });
    promise.succeed(std::make_unique<int>(1));
    inner.succeed(std::make_unique<int>(5));
    EXPECT_EQ(seen, 7);
    inner.futureResult().whenSuccess([](const std::unique_ptr<int>& value) { EXPECT_EQ(*value, 5); });

    Future<std::unique_ptr<int>>::reduce(std::make_unique<int>(0), std::vector{Future<int>::succeeded(8)},
                                         [](std::unique_ptr<int>& sum, int value) { *sum += value; })
        .whenSuccess([&seen](const std::unique_ptr<int>& sum) { seen = *sum; });
    EXPECT_EQ(seen, 8);
}

TEST(Future, TakesCallbacksThatCanOnlyBeMoved) {
    const Promise<int> promise;
    auto slot = std::make_unique<int>(0);
    int* const seen = slot.get();
    promise.futureResult()
        .then([add = std::make_unique<int>(1)](int value) { return Future<int>::succeeded(value + *add); })
        .whenSuccess([slot = std::move(slot)](int value) {
            *slot = value;
            EXPECT_EQ(*slot, 3);
        });
    EXPECT_EQ(*seen, 0);
    promise.succeed(2);
}

TEST(Future, TakesFunctionsAndMembersAsCallbacks) {
    struct Text {
        std::string value;
        [[nodiscard]] int length() const { return static_cast<int>(value.size()); }
    };
    EXPECT_EQ(outcome(Future<Text>::succeeded({"four"}).map(&Text::length)), "4");
}

TEST(FutureDeathTest, AnExceptionThatLeavesACallbackEndsTheProcess) {
    EXPECT_DEATH(Future<int>::succeeded(1).whenSuccess([](int) { throw std::runtime_error("told here"); }),
                 "told here");
    const Promise<int> promise;
    promise.futureResult().then([](int) -> Future<int> { throw std::runtime_error("told there"); });
    EXPECT_DEATH(promise.succeed(1), "told there");
}

}  // namespace
