// SPDX-License-Identifier: Apache-2.0
//
// The order of callbacks: told in single cases, and compared with the literal rules on random graphs.

#include <ZORFoundation/Concurrency/Promise.h>
#include <gmock/gmock.h>

#include <cstdint>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <support/FutureScript.h>
#include <support/LiteralFuture.h>

namespace {

using namespace ZORFoundation;
using testing::ElementsAre;

class FutureOrder : public testing::Test {
protected:
    auto note(std::string name) {
        return [this, name = std::move(name)](auto&&...) { log_.push_back(name); };
    }
    auto noteAndSucceed(std::string name) {
        return [this, name = std::move(name)](int value) {
            log_.push_back(name);
            return Future<int>::succeeded(value);
        };
    }

    std::vector<std::string> log_;
    Promise<int> promise_;
    Future<int> future_ = promise_.futureResult();
};

TEST_F(FutureOrder, CallbacksOfOneFutureRunInRegistrationOrderAndALaterOneAtOnce) {
    future_.whenSuccess(note("first"));
    future_.whenSuccess(note("second"));
    EXPECT_THAT(log_, ElementsAre());
    promise_.succeed(1);
    EXPECT_THAT(log_, ElementsAre("first", "second"));
    future_.whenSuccess(note("third"));
    EXPECT_THAT(log_, ElementsAre("first", "second", "third"));
}

TEST_F(FutureOrder, LevelsRunBreadthFirst) {
    const Future<int> first = future_.then(noteAndSucceed("g1"));
    const Future<int> second = future_.then(noteAndSucceed("g2"));
    first.whenSuccess(note("d1"));
    second.whenSuccess(note("d2"));
    future_.whenSuccess(note("d0"));
    promise_.succeed(1);
    EXPECT_THAT(log_, ElementsAre("g1", "g2", "d0", "d1", "d2"));
}

TEST_F(FutureOrder, AResolutionInsideACallbackRunsNestedBeforeTheNextCallbackOfTheLevel) {
    const Promise<int> inner;
    inner.futureResult().map([](int value) { return value; }).whenSuccess(note("inner"));
    future_.whenSuccess([this, inner](int) {
        log_.push_back("begin");
        inner.succeed(1);
        log_.push_back("end");
    });
    future_.whenSuccess(note("next"));
    promise_.succeed(1);
    EXPECT_THAT(log_, ElementsAre("begin", "inner", "end", "next"));
}

TEST_F(FutureOrder, AMappedFutureRunsOneLevelAfterItsSource) {
    future_.map([](int value) { return value; }).whenSuccess(note("mapped"));
    future_.whenSuccess(note("source"));
    promise_.succeed(1);
    EXPECT_THAT(log_, ElementsAre("source", "mapped"));
}

TEST_F(FutureOrder, AFutureThatWaitsOnAReturnedFutureJoinsThatOnesLevel) {
    const Promise<int> inner;
    future_.then([inner](int) { return inner.futureResult(); }).whenSuccess(note("outer"));
    promise_.succeed(1);
    EXPECT_THAT(log_, ElementsAre());
    inner.futureResult().whenSuccess(note("inner"));
    inner.succeed(2);
    EXPECT_THAT(log_, ElementsAre("inner", "outer"));
}

TEST_F(FutureOrder, AReductionUpdatesTwoLevelsAfterTheUpdateBefore) {
    // Updates of values that are there: each waits for the pair and the link before it.
    const std::vector<Future<int>> futures{future_, future_};
    const auto update = [this](int&, int) { log_.push_back("update"); };
    Future<int> level = future_;
    for (const char* name : {"level 2", "level 3", "level 4"}) {
        level = level.map([](int value) { return value; });
        level.whenSuccess(note(name));
    }
    Future<int>::reduce(0, futures, update).whenSuccess(note("reduced"));
    promise_.succeed(1);
    EXPECT_THAT(log_, ElementsAre("level 2", "update", "level 3", "level 4", "update", "reduced"));
}

TEST(FutureThreads, AGraphMayBeHandedToAnotherThread) {
    int seen = 0;
    Promise<int> promise;
    promise.futureResult().map([](int value) { return value + 1; }).whenSuccess([&seen](int value) { seen = value; });
    std::thread([moved = std::move(promise)] { moved.succeed(1); }).join();
    EXPECT_EQ(seen, 2);
}

std::vector<std::uint8_t> randomScript(std::mt19937& random) {
    std::vector<std::uint8_t> script(random() % 400);
    for (std::uint8_t& byte : script) byte = static_cast<std::uint8_t>(random());
    return script;
}

TEST(FutureOrderAgainstLiteralRules, AgreesOnRandomGraphs) {
    std::mt19937 random(20);
    std::size_t callbacks = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::vector<std::uint8_t> script = randomScript(random);
        const support::FutureLog log = support::FutureScript<Future, Promise>(script).run();
        const support::FutureLog expected =
            support::FutureScript<support::literal::Future, support::literal::Promise>(script).run();
        support::literal::Unresolved::dropAll();
        ASSERT_EQ(log, expected) << "script of round " << round;
        callbacks += log.size();
    }
    EXPECT_GT(callbacks, 100'000U) << "the scripts hardly run anything";
}

}  // namespace
