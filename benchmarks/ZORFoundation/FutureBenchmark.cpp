// SPDX-License-Identifier: Apache-2.0
//
// Futures beside one heap node a step, which any chain of callbacks needs, and beside a hand-written future.

#include <ZORFoundation/Concurrency/Promise.h>
#include <benchmarks/Comparison.h>
#include <benchmarks/ZORFoundation/HandWrittenFuture.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <numeric>
#include <random>
#include <thread>
#include <vector>

namespace {

using benchmarks::Comparison;
using benchmarks::HandWrittenFuture;
using namespace ZORFoundation;

// An application has threads. With one alive, the standard library counts with atomic operations.
[[maybe_unused]] const bool kHasThreads = [] {
    std::thread([] {
        for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
    }).detach();
    return true;
}();

/// A linked list of `count` nodes, made, walked and freed.
void nodes(std::size_t count) {
    struct Node {
        Node* next;
        std::size_t value;
    };
    Node* first = nullptr;
    for (std::size_t i = 0; i < count; ++i) first = new Node{first, i};
    benchmark::DoNotOptimize(first);
    while (first != nullptr) delete std::exchange(first, first->next);
}

const Comparison kOne = Comparison("promise, one callback, resolve")
                            .candidate([] {
                                int seen = 0;
                                Promise<int> promise;
                                promise.futureResult().whenSuccess([&seen](int value) { seen = value; });
                                promise.succeed(5);
                                benchmark::DoNotOptimize(seen);
                            })
                            .floor("one heap node", [] { nodes(1); })
                            .peer("hand-written",
                                  [] {
                                      int seen = 0;
                                      const HandWrittenFuture<int> future;
                                      future.whenSuccess([&seen](int value) { seen = value; });
                                      future.resolve(5);
                                      benchmark::DoNotOptimize(seen);
                                  })
                            .expectedNanoseconds(20)
                            .atMost(2, "one heap node")
                            .add();

constexpr std::size_t kSteps = 100'000;

const Comparison kChain = Comparison("chain of 100,000 then, a step")
                              .itemsPerCall(kSteps)
                              .candidate([] {
                                  const Promise<int> promise;
                                  Future<int> last = promise.futureResult();
                                  for (std::size_t i = 0; i < kSteps; ++i) {
                                      last = last.then([](int value) { return Future<int>::succeeded(value + 1); });
                                  }
                                  int seen = 0;
                                  last.whenSuccess([&seen](int value) { seen = value; });
                                  promise.succeed(0);
                                  benchmark::DoNotOptimize(seen);
                              })
                              .floor("one heap node a step", [] { nodes(kSteps); })
                              .peer("hand-written",
                                    [] {
                                        const HandWrittenFuture<int> first;
                                        HandWrittenFuture<int> last = first;
                                        for (std::size_t i = 0; i < kSteps; ++i) {
                                            last = last.then([](int value) {
                                                HandWrittenFuture<int> result;
                                                result.resolve(value + 1);
                                                return result;
                                            });
                                        }
                                        int seen = 0;
                                        last.whenSuccess([&seen](int value) { seen = value; });
                                        first.resolve(0);
                                        benchmark::DoNotOptimize(seen);
                                    })
                              .expectedNanoseconds(28)
                              .atMost(2.8, "one heap node a step")
                              .add();

const Comparison kMapChain = Comparison("chain of 100,000 map, a step")
                                 .itemsPerCall(kSteps)
                                 .candidate([] {
                                     const Promise<int> promise;
                                     Future<int> last = promise.futureResult();
                                     for (std::size_t i = 0; i < kSteps; ++i)
                                         last = last.map([](int value) { return value + 1; });
                                     int seen = 0;
                                     last.whenSuccess([&seen](int value) { seen = value; });
                                     promise.succeed(0);
                                     benchmark::DoNotOptimize(seen);
                                 })
                                 .floor("one heap node a step", [] { nodes(kSteps); })
                                 .expectedNanoseconds(28)
                                 .atMost(2.8, "one heap node a step")
                                 .add();

const Comparison kDropped = Comparison("chain of 100,000 then, dropped unresolved, a step")
                                .itemsPerCall(kSteps)
                                .candidate([] {
                                    Future<int> last = Promise<int>().futureResult();
                                    const Promise<int> promise;
                                    last = promise.futureResult();
                                    for (std::size_t i = 0; i < kSteps; ++i) {
                                        last = last.then([](int value) { return Future<int>::succeeded(value + 1); });
                                    }
                                    benchmark::DoNotOptimize(last);
                                })
                                .floor("one heap node a step", [] { nodes(kSteps); })
                                .add();

constexpr std::size_t kPairs = 10'000;

const std::vector<std::size_t>& shuffledPairs() {
    static const std::vector<std::size_t> order = [] {
        std::vector<std::size_t> indices(2 * kPairs);
        std::iota(indices.begin(), indices.end(), std::size_t{0});
        std::shuffle(indices.begin(), indices.end(), std::mt19937(7));
        return indices;
    }();
    return order;
}

/// Makes 10,000 promises, pairs each future with the next, resolves and frees all.
const Comparison kAnd =
    Comparison("and over 10,000, each")
        .itemsPerCall(kPairs)
        .candidate([] {
            std::vector<Promise<int>> promises(kPairs);
            std::vector<Future<std::pair<int, int>>> pairs;
            pairs.reserve(kPairs);
            for (std::size_t i = 0; i < kPairs; ++i) {
                pairs.push_back(promises[i].futureResult().and_(promises[(i + 1) % kPairs].futureResult()));
            }
            for (const Promise<int>& promise : promises) promise.succeed(1);
            benchmark::DoNotOptimize(pairs.data());
        })
        .peer("hand-written",
              [] {
                  std::vector<HandWrittenFuture<int>> futures(kPairs);
                  std::vector<HandWrittenFuture<std::pair<int, int>>> pairs;
                  pairs.reserve(kPairs);
                  for (std::size_t i = 0; i < kPairs; ++i) pairs.push_back(futures[i].both(futures[(i + 1) % kPairs]));
                  for (const HandWrittenFuture<int>& future : futures) future.resolve(1);
                  benchmark::DoNotOptimize(pairs.data());
              })
        .expectedNanoseconds(60)
        .atMost(1, "hand-written")
        .add();

const Comparison kReduce = Comparison("reduce over 10,000 resolved in random order, each")
                               .itemsPerCall(kPairs)
                               .candidate([] {
                                   std::vector<Promise<int>> promises(kPairs);
                                   std::vector<Future<int>> futures;
                                   futures.reserve(kPairs);
                                   for (const auto& promise : promises) futures.push_back(promise.futureResult());
                                   int seen = 0;
                                   Future<int>::reduce(0, futures, [](int& sum, int value) {
                                       sum += value;
                                   }).whenSuccess([&seen](int sum) { seen = sum; });
                                   for (const std::size_t i : shuffledPairs()) promises[i % kPairs].succeed(1);
                                   benchmark::DoNotOptimize(seen);
                               })
                               .add();

}  // namespace
