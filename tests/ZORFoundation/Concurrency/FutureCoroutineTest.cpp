// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Concurrency/FutureCoroutine.h>
#include <ZORFoundation/Concurrency/Promise.h>
#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <support/SmallStack.h>

namespace {

using namespace ZORFoundation;
using testing::ElementsAre;

Future<int> addOne(Future<int> future) { co_return co_await future + 1; }

Future<Unit> note(Future<int> future, std::vector<std::string>& log, std::string name) {
    const std::shared_ptr<void> end(nullptr, [&log, name](void*) { log.push_back(name + " ends"); });
    log.push_back(name + " begins");
    const int value = co_await future;
    log.push_back(name + " " + std::to_string(value));
}

int valueOf(const Future<int>& future) {
    const auto seen = std::make_shared<int>(-1);
    future.whenSuccess([seen](int value) { *seen = value; });
    return *seen;
}

TEST(FutureCoroutine, RunsThroughOverResolvedFutures) { EXPECT_EQ(valueOf(addOne(Future<int>::succeeded(1))), 2); }

TEST(FutureCoroutine, BeginsAtOnceAndGoesOnInsideTheResolution) {
    std::vector<std::string> log;
    const Promise<int> promise;
    note(promise.futureResult(), log, "a").whenSuccess([&log] { log.emplace_back("done"); });
    EXPECT_THAT(log, ElementsAre("a begins"));
    promise.succeed(4);
    EXPECT_THAT(log, ElementsAre("a begins", "a 4", "a ends", "done"));
}

TEST(FutureCoroutine, CountsAsALinkInTheOrderOfCallbacks) {
    std::vector<std::string> log;
    const Promise<int> promise;
    const Future<int> future = promise.futureResult();
    addOne(future).whenSuccess([&log](int) { log.emplace_back("coroutine"); });
    future.map([](int value) { return value; }).whenSuccess([&log](int) { log.emplace_back("map"); });
    future.whenSuccess([&log](int) { log.emplace_back("callback"); });
    promise.succeed(1);
    EXPECT_THAT(log, ElementsAre("callback", "coroutine", "map"));
}

TEST(FutureCoroutine, WaitsSeveralTimes) {
    const std::vector<Promise<int>> promises(3);
    const auto sum = [](const std::vector<Promise<int>>& terms) -> Future<int> {
        int total = 0;
        for (const Promise<int>& term : terms) total += co_await term.futureResult();
        co_return total;
    };
    const Future<int> total = sum(promises);
    promises[1].succeed(2);
    promises[0].succeed(1);
    EXPECT_EQ(valueOf(total), -1);
    promises[2].succeed(3);
    EXPECT_EQ(valueOf(total), 6);
}

TEST(FutureCoroutine, ThrowsTheErrorOfAFailureAndFailsWithItWhenNobodyCatches) {
    const Error error(5);
    int seen = 0;
    addOne(Future<int>::failed(error)).whenFailure([&](const Error& passed) {
        EXPECT_EQ(passed, error);
        ++seen;
    });
    const auto recover = [](Future<int> future) -> Future<int> {
        try {
            co_return co_await future;
        } catch (const ThrownError& thrown) {
            co_return *thrown.error().as<int>();
        }
    };
    EXPECT_EQ(valueOf(recover(Future<int>::failed(error))), 5);
    EXPECT_EQ(seen, 1);
}

TEST(FutureCoroutine, FailsWithAnyOtherExceptionAsItIs) {
    const auto fails = []() -> Future<Unit> {
        throw std::runtime_error("told");
        co_return;
    };
    std::string seen;
    fails().whenFailure([&seen](const Error& error) {
        try {
            std::rethrow_exception(*error.as<std::exception_ptr>());
        } catch (const std::runtime_error& exception) {
            seen = exception.what();
        }
    });
    EXPECT_EQ(seen, "told");
}

TEST(FutureCoroutine, EndsWhereItStandsWhenItsFutureCanNoLongerResolve) {
    std::vector<std::string> log;
    std::optional<Promise<int>> promise(std::in_place);
    const Future<int> future = promise->futureResult();
    const Future<Unit> waiting = note(future, log, "a");
    waiting.whenComplete([] { ADD_FAILURE(); });
    promise.reset();
    EXPECT_THAT(log, ElementsAre("a begins", "a ends"));
    note(future, log, "b").whenComplete([] { ADD_FAILURE(); });
    EXPECT_THAT(log, ElementsAre("a begins", "a ends", "b begins", "b ends"));
}

TEST(FutureCoroutine, AMillionThatWaitForOneAnotherResumeAndEndInConstantStack) {
    constexpr int kMillion = 1'000'000;
    int seen = 0;
    support::runInSmallStack([&seen] {
        for (const bool resolves : {false, true}) {
            const Promise<int> promise;
            Future<int> last = promise.futureResult();
            for (int i = 0; i < kMillion; ++i) last = addOne(std::move(last));
            last.whenSuccess([&seen](int value) { seen += value; });
            if (resolves) promise.succeed(0);
        }
    });
    EXPECT_EQ(seen, kMillion);
}

}  // namespace
