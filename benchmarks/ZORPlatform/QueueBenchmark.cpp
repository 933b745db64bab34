// SPDX-License-Identifier: Apache-2.0
//
// Dispatch queues beside a thread of one's own, which is what they save, and beside the textbook pool.

#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <benchmarks/Comparison.h>
#include <benchmarks/PlainQueues.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <semaphore>
#include <thread>
#include <vector>

namespace {

using benchmarks::Comparison;
using benchmarks::PlainPool;
using benchmarks::PlainThread;
using ZORPlatform::DispatchQueue;

constexpr std::size_t kTasks = 200'000;

/// Submits many small works from this thread, and waits for the last.
template <class Queue>
void inBulk(Queue& queue) {
    std::size_t runs = 0;
    std::binary_semaphore isDone(0);
    for (std::size_t i = 1; i < kTasks; ++i) queue.async([&runs] { ++runs; });
    queue.async([&runs, &isDone] {
        ++runs;
        isDone.release();
    });
    isDone.acquire();
    benchmark::DoNotOptimize(runs);
}

/// The median of the times from submission to the beginning of the work, each on a queue at rest.
template <class Queue>
std::chrono::nanoseconds fromIdleToRunning(Queue& queue) {
    using Clock = std::chrono::steady_clock;
    std::array<std::chrono::nanoseconds, 201> samples{};
    for (auto& sample : samples) {
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        std::binary_semaphore isDone(0);
        Clock::time_point begun;
        const Clock::time_point submitted = Clock::now();
        queue.async([&begun, &isDone] {
            begun = Clock::now();
            isDone.release();
        });
        isDone.acquire();
        sample = begun - submitted;
    }
    const auto middle = samples.begin() + samples.size() / 2;
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

const DispatchQueue& serialQueue() {
    static const DispatchQueue queue = DispatchQueue::serial(u"benchmark");
    return queue;
}

const Comparison kBulk = Comparison("serial queue, a task from another thread in bulk")
                             .inElapsedTime()
                             .itemsPerCall(kTasks)
                             .candidate([] { inBulk(serialQueue()); })
                             .floor("a thread with batches of its own",
                                    [] {
                                        static PlainThread thread;
                                        inBulk(thread);
                                    })
                             .peer("textbook pool of one thread",
                                   [] {
                                       static PlainPool pool(1);
                                       inBulk(pool);
                                   })
                             .expectedNanoseconds(90)
                             .add();

const Comparison kIdle = Comparison("serial queue, from idle to running, p50")
                             .candidate([] { return fromIdleToRunning(serialQueue()); })
                             .floor("a thread on a condition variable",
                                    [] {
                                        static PlainThread thread;
                                        return fromIdleToRunning(thread);
                                    })
                             .expectedNanoseconds(5'000)
                             .add();

constexpr std::size_t kQueues = 10'000;

const Comparison kManyQueues = Comparison("10,000 serial queues, made, used once and dropped, each")
                                   .inElapsedTime()
                                   .itemsPerCall(kQueues)
                                   .candidate([] {
                                       std::counting_semaphore<> done(0);
                                       std::vector<DispatchQueue> queues;
                                       queues.reserve(kQueues);
                                       for (std::size_t i = 0; i < kQueues; ++i) {
                                           queues.push_back(DispatchQueue::serial(u"one of many"));
                                           queues.back().async([&done] { done.release(); });
                                       }
                                       for (std::size_t i = 0; i < kQueues; ++i) done.acquire();
                                   })
                                   .add();

}  // namespace
