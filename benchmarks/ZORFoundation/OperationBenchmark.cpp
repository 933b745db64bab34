// SPDX-License-Identifier: Apache-2.0
//
// Operations beside the textbook pool, which knows nothing of cancelling, observers or priorities, and asynchronous
// operations beside the thread that each of them needs.

#include <ZORFoundation/Operation/OperationQueueExtension.h>
#include <ZORFoundation/Operation/ZORAsyncOperation.h>
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <benchmarks/Comparison.h>
#include <benchmarks/PlainQueues.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using benchmarks::Comparison;
using benchmarks::PlainPool;
using benchmarks::PlainTask;
using ZORFoundation::ZORAsyncOperation;
using ZORPlatform::DispatchQueue;
using ZORPlatform::DispatchWork;
using ZORPlatform::NSBlockOperation;
using ZORPlatform::NSOperation;
using ZORPlatform::NSOperationQueue;

constexpr int kWidth = 2;

NSOperationQueue queueOfWidth(int width) {
    NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(width);
    return queue;
}

constexpr std::size_t kBlocks = 100'000;

void runOnPlainPool() {
    static PlainPool pool(kWidth);
    std::atomic<std::size_t> runs{0};
    std::binary_semaphore isDone(0);
    for (std::size_t i = 0; i < kBlocks; ++i) {
        pool.async([&runs, &isDone] {
            if (runs.fetch_add(1) + 1 == kBlocks) isDone.release();
        });
    }
    isDone.acquire();
}

/// @param add  adds one block to a queue
Comparison tinyBlocks(std::string name, void (*add)(const NSOperationQueue& queue, DispatchWork block)) {
    return Comparison(std::move(name))
        .inElapsedTime()
        .itemsPerCall(kBlocks)
        .candidate([add] {
            static const NSOperationQueue queue = queueOfWidth(kWidth);
            std::atomic<std::size_t> runs{0};
            for (std::size_t i = 0; i < kBlocks; ++i) {
                add(queue, [&runs] { runs.fetch_add(1, std::memory_order_relaxed); });
            }
            queue.waitUntilAllOperationsAreFinished();
        })
        .peer("textbook pool of two threads", runOnPlainPool)
        .expectedNanoseconds(250)
        .add();
}

const Comparison kTinyBlocks = tinyBlocks(
    "operation queue of width 2, a tiny block",
    [](const NSOperationQueue& queue, DispatchWork block) { queue.addOperationWithBlock(std::move(block)); });

const Comparison kTinyBlockOperations = tinyBlocks(
    "operation queue of width 2, a tiny block operation", [](const NSOperationQueue& queue, DispatchWork block) {
        queue.addOperation(NSBlockOperation::blockOperationWithBlock(std::move(block)));
    });

constexpr std::size_t kSequence = 10'000;

const Comparison kSequential =
    Comparison("addOperations of 10,000 in sequence, each")
        .inElapsedTime()
        .itemsPerCall(kSequence)
        .candidate([] {
            static const NSOperationQueue queue;
            static const DispatchQueue completionQueue = DispatchQueue::serial(u"completion");
            std::size_t runs = 0;
            std::binary_semaphore isDone(0);
            std::vector<std::shared_ptr<NSOperation>> operations;
            operations.reserve(kSequence + 1);
            for (std::size_t i = 0; i < kSequence; ++i) {
                operations.push_back(NSBlockOperation::blockOperationWithBlock([&runs] { ++runs; }));
            }
            ZORFoundation::OperationQueueExtension::addOperations(
                queue, std::move(operations), [&isDone] { isDone.release(); }, completionQueue);
            isDone.acquire();
        })
        .peer("textbook tasks on a pool of two threads",
              [] {
                  static PlainPool pool(kWidth);
                  std::size_t runs = 0;
                  std::binary_semaphore isDone(0);
                  std::shared_ptr<PlainTask> last;
                  for (std::size_t i = 0; i < kSequence; ++i) {
                      auto task = std::make_shared<PlainTask>([&runs] { ++runs; });
                      if (last != nullptr) task->waitFor(last);
                      task->submit(pool);
                      last = std::move(task);
                  }
                  auto end = std::make_shared<PlainTask>([&isDone] { isDone.release(); });
                  end->waitFor(last);
                  end->submit(pool);
                  isDone.acquire();
              })
        .expectedNanoseconds(300)
        .add();

class Completing : public ZORAsyncOperation<int> {
    void main() override { completeOperation(Result::success(1)); }
};

constexpr std::size_t kThreads = 500;

const Comparison kAsync = Comparison("ZORAsyncOperation, added to a queue and completed")
                              .inElapsedTime()
                              .itemsPerCall(kThreads)
                              .candidate([] {
                                  static const NSOperationQueue queue = queueOfWidth(kWidth);
                                  for (std::size_t i = 0; i < kThreads; ++i) {
                                      queue.addOperation(std::make_shared<Completing>());
                                  }
                                  queue.waitUntilAllOperationsAreFinished();
                              })
                              .floor("a thread made and ended",
                                     [] {
                                         for (std::size_t i = 0; i < kThreads; ++i) std::thread([] {}).join();
                                     })
                              .atMost(1.3, "a thread made and ended")
                              .add();

}  // namespace
