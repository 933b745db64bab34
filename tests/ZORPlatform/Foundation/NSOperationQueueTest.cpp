// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchGroup.h>
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSOperationQueue.h>
#include <ZORPlatform/Foundation/NSThread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/AllocationCount.h>
#include <support/NotificationLog.h>
#include <support/SmallStack.h>
#include <support/ThreadRest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <latch>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ZORPlatform::DispatchGroup;
using ZORPlatform::NSBlockOperation;
using ZORPlatform::NSException;
using ZORPlatform::NSOperation;
using ZORPlatform::NSOperationQueue;
using ZORPlatform::NSOperationQueuePriority;
using ZORPlatform::NSThread;

std::shared_ptr<NSBlockOperation> block(ZORPlatform::DispatchWork work) {
    return NSBlockOperation::blockOperationWithBlock(std::move(work));
}

void expectRefused(const NSOperationQueue& queue, const std::shared_ptr<NSOperation>& operation) {
    try {
        queue.addOperation(operation);
        ADD_FAILURE() << "addOperation was not refused";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), u"NSInvalidArgumentException");
    }
}

/// Numbers in the order in which operations ran.
class RunOrder {
public:
    std::shared_ptr<NSBlockOperation> operation(int number) {
        return block([this, number] { note(number); });
    }
    void note(int number) {
        const std::scoped_lock lock(mutex_);
        numbers_.push_back(number);
    }
    std::vector<int> numbers() {
        const std::scoped_lock lock(mutex_);
        return numbers_;
    }

private:
    std::mutex mutex_;
    std::vector<int> numbers_;
};

NSOperationQueue queueOfWidth(int width) {
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(width);
    return queue;
}

/// Keeps the worker of a queue of width 1 busy until told otherwise.
class BusyWorker {
public:
    explicit BusyWorker(const NSOperationQueue& queue) {
        queue.addOperation(operation_);
        hasBegun_.wait();
    }
    void letGo() { mayEnd_.count_down(); }
    [[nodiscard]] const std::shared_ptr<NSOperation>& operation() const { return operation_; }

private:
    std::latch hasBegun_{1};
    std::latch mayEnd_{1};
    std::shared_ptr<NSOperation> operation_ = block([this] {
        hasBegun_.count_down();
        mayEnd_.wait();
    });
};

TEST(NSOperationQueue, RunsOperationsInTheOrderOfAddingWhenOneRunsAtATime) {
    RunOrder order;
    const auto queue = queueOfWidth(1);
    std::vector<int> expected;
    for (int i = 0; i < 1000; ++i) {
        queue.addOperation(order.operation(i));
        expected.push_back(i);
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(order.numbers(), expected);
    EXPECT_EQ(queue.operationCount(), 0U);
}

TEST(NSOperationQueue, StartsNothingWhileItsWidthIsZero) {
    RunOrder order;
    const auto queue = queueOfWidth(0);
    const auto first = order.operation(1);
    const auto second = order.operation(2);
    queue.addOperation(first);
    queue.addOperation(second);
    EXPECT_EQ(queue.operationCount(), 2U);
    EXPECT_THAT(queue.operations(), ElementsAre(first, second));
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(1, 2));
    EXPECT_THAT(queue.operations(), IsEmpty());
}

TEST(NSOperationQueue, StartsByPriorityAndThenInTheOrderOfAdding) {
    RunOrder order;
    const auto queue = queueOfWidth(0);
    const auto add = [&](int number, NSOperationQueuePriority priority) {
        const auto operation = order.operation(number);
        operation->setQueuePriority(priority);
        EXPECT_EQ(operation->queuePriority(), priority);
        queue.addOperation(operation);
    };
    add(1, NSOperationQueuePriority::normal);
    add(2, NSOperationQueuePriority::veryLow);
    add(3, NSOperationQueuePriority::veryHigh);
    add(4, NSOperationQueuePriority::normal);
    add(5, NSOperationQueuePriority{7});    // Counts as high.
    add(6, NSOperationQueuePriority{-5});   // Counts as low.
    add(7, NSOperationQueuePriority{100});  // Counts as veryHigh.
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(3, 7, 5, 1, 4, 6, 2));
}

TEST(NSOperationQueue, StartsTheOneAddedFirstAmongThoseThatBecameReadyLater) {
    RunOrder order;
    const auto queue = queueOfWidth(0);
    const auto gate = order.operation(0);
    for (int number = 1; number <= 5; ++number) {
        const auto operation = order.operation(number);
        if (number % 2 == 1) operation->addDependency(gate);
        queue.addOperation(operation);
    }
    gate->start();
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(NSOperationQueue, RunsOperationsTogetherUpToItsWidth) {
    const auto queue = queueOfWidth(3);
    std::latch together(3);
    std::atomic<int> executing{0};
    std::atomic<int> most{0};
    for (int i = 0; i < 30; ++i) {
        queue.addOperationWithBlock([&, i] {
            const int now = ++executing;
            int seen = most;
            while (seen < now && !most.compare_exchange_weak(seen, now)) {
            }
            if (i < 3) together.arrive_and_wait();
            --executing;
        });
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(most, 3);
}

TEST(NSOperationQueue, StartsADependentOnlyAfterItsDependencyInAnotherQueueHasFinished) {
    RunOrder order;
    const auto first = order.operation(1);
    const auto second = order.operation(2);
    second->addDependency(first);
    const NSOperationQueue early;
    const NSOperationQueue late;
    early.addOperation(second);
    EXPECT_THAT(order.numbers(), IsEmpty());
    late.addOperation(first);
    early.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(1, 2));
}

TEST(NSOperationQueue, PutsAnOperationBackThatGotADependencyAfterItWasReady) {
    RunOrder order;
    const auto queue = queueOfWidth(0);
    const auto first = order.operation(1);
    const auto second = order.operation(2);
    queue.addOperation(first);
    queue.addOperation(second);
    first->addDependency(second);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(2, 1));
}

TEST(NSOperationQueue, NeverStartsOperationsInACycleUntilOneIsCancelled) {
    RunOrder order;
    const NSOperationQueue queue;
    const auto first = order.operation(1);
    const auto second = order.operation(2);
    first->addDependency(second);
    second->addDependency(first);
    queue.addOperation(first);
    queue.addOperation(second);
    queue.addOperation(order.operation(3));
    while (queue.operationCount() > 2) std::this_thread::yield();
    EXPECT_THAT(order.numbers(), ElementsAre(3));
    first->cancel();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(3, 2));
}

TEST(NSOperationQueue, StartsACancelledOperationWhichThenFinishesWithoutMain) {
    RunOrder order;
    const NSOperationQueue queue;
    const auto never = order.operation(1);
    const auto cancelled = order.operation(2);
    cancelled->addDependency(never);
    const support::NotificationLog log(*cancelled);
    queue.addOperation(cancelled);
    cancelled->cancel();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), IsEmpty());
    EXPECT_THAT(log.entries(), ElementsAre("will isCancelled", "did isCancelled", "will isReady", "did isReady",
                                           "will isFinished", "did isFinished"));
}

TEST(NSOperationQueue, CancelsAllOfItsOperations) {
    RunOrder order;
    const auto queue = queueOfWidth(0);
    std::vector<std::shared_ptr<NSOperation>> operations;
    for (int i = 0; i < 10; ++i) {
        operations.push_back(order.operation(i));
        if (i > 0) operations.back()->addDependency(operations[operations.size() - 2]);
        queue.addOperation(operations.back());
    }
    queue.cancelAllOperations();
    queue.setMaxConcurrentOperationCount(2);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), IsEmpty());
    for (const auto& operation : operations) EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperationQueue, RefusesAnOperationThatIsInAQueueOrExecutesOrHasFinished) {
    const auto queue = queueOfWidth(0);
    const NSOperationQueue other;
    const auto added = block([] {});
    queue.addOperation(added);
    expectRefused(queue, added);
    expectRefused(other, added);
    EXPECT_EQ(queue.operationCount(), 1U);

    const auto finished = block([] {});
    finished->start();
    expectRefused(queue, finished);

    const auto executing = std::make_shared<NSBlockOperation>();
    executing->addExecutionBlock([&, raw = std::weak_ptr(executing)] { expectRefused(queue, raw.lock()); });
    executing->start();
    EXPECT_EQ(queue.operationCount(), 1U);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    expectRefused(queue, added);
}

TEST(NSOperationQueue, RefusesAWidthBelowMinusOneAndKeepsTheOthers) {
    const NSOperationQueue queue;
    EXPECT_EQ(queue.maxConcurrentOperationCount(), NSOperationQueue::kDefaultMaxConcurrentOperationCount);
    EXPECT_THROW(queue.setMaxConcurrentOperationCount(-2), NSException);
    for (const int width : {-1, 0, 1, 1000}) {
        queue.setMaxConcurrentOperationCount(width);
        EXPECT_EQ(queue.maxConcurrentOperationCount(), width);
    }
}

TEST(NSOperationQueue, KeepsAnOperationAliveUntilItHasFinishedAndNoLonger) {
    const auto queue = queueOfWidth(0);
    auto operation = block([] {});
    const std::weak_ptr<NSOperation> seen = operation;
    queue.addOperation(std::move(operation));
    EXPECT_FALSE(seen.expired());
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    while (!seen.expired()) std::this_thread::yield();
}

TEST(NSOperationQueue, RunsItsOperationsAfterTheLastHandleIsGone) {
    const DispatchGroup group;
    group.enter();
    NSOperationQueue().addOperationWithBlock([group] { group.leave(); });
    group.wait();
}

TEST(NSOperationQueue, IsEqualToItsCopiesOnly) {
    const NSOperationQueue queue;
    const NSOperationQueue copy = queue;
    EXPECT_EQ(copy, queue);
    EXPECT_NE(copy, NSOperationQueue());
}

TEST(NSOperationQueue, DoesNotStartAnOperationThatFinishedWhileItWasReady) {
    class Completed : public NSOperation {
    public:
        void start() override { ADD_FAILURE() << "started although finished"; }
        [[nodiscard]] bool isFinished() const override { return isFinished_; }
        void complete() {
            willChangeValueForKey(kFinishedKey);
            isFinished_ = true;
            didChangeValueForKey(kFinishedKey);
        }

    private:
        std::atomic<bool> isFinished_{false};
    };
    RunOrder order;
    const auto queue = queueOfWidth(0);
    const auto gate = std::make_shared<NSOperation>();
    std::vector<std::shared_ptr<Completed>> completed;
    // Some in the order of becoming ready, some late, of these not only the first.
    for (int i = 0; i < 8; ++i) {
        completed.push_back(std::make_shared<Completed>());
        if (i < 5) completed.back()->addDependency(gate);
        queue.addOperation(completed.back());
        queue.addOperation(order.operation(i));
    }
    gate->start();
    for (const std::size_t i : {3U, 0U, 6U, 4U, 1U, 2U, 7U, 5U}) completed[i]->complete();
    EXPECT_EQ(queue.operationCount(), 8U);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
}

TEST(NSOperationQueue, HoldsItsPlaceForAnAsynchronousOperationUntilThatAnnouncesTheEnd) {
    class Asynchronous : public NSOperation {
    public:
        void start() override {
            starter_.entersHere();
            isExecuting_ = true;
        }
        [[nodiscard]] bool isAsynchronous() const override { return true; }
        [[nodiscard]] bool isExecuting() const override { return isExecuting_; }
        [[nodiscard]] bool isFinished() const override { return isFinished_; }
        void complete() {
            willChangeValueForKey(kFinishedKey);
            isFinished_ = true;
            didChangeValueForKey(kFinishedKey);
        }
        [[nodiscard]] const support::ThreadRest& starter() const { return starter_; }

    private:
        support::ThreadRest starter_;
        std::atomic<bool> isExecuting_{false};
        std::atomic<bool> isFinished_{false};
    };
    RunOrder order;
    const auto queue = queueOfWidth(1);
    const auto asynchronous = std::make_shared<Asynchronous>();
    queue.addOperation(asynchronous);
    queue.addOperation(order.operation(1));
    while (!asynchronous->isExecuting()) std::this_thread::yield();
    // Nor does the worker go round and round until there is room.
    asynchronous->starter().waitUntilItSleepsOrHasEnded();
    EXPECT_THAT(order.numbers(), IsEmpty());
    asynchronous->complete();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(1));
}

TEST(NSOperationQueue, LetsAnOperationAddAnotherAndWaitForIt) {
    const NSOperationQueue queue;
    RunOrder order;
    queue.addOperationWithBlock([&] {
        const auto inner = order.operation(1);
        queue.addOperation(inner);
        inner->waitUntilFinished();
    });
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(1));
}

TEST(NSOperationQueue, RunsALongChainInASmallStack) {
    support::runInSmallStack([] {
        const NSOperationQueue queue;
        int runs = 0;  // Not atomic: the dependencies order the accesses.
        std::shared_ptr<NSOperation> last;
        for (int i = 0; i < 20'000; ++i) {
            auto next = block([&runs] { ++runs; });
            if (last != nullptr) next->addDependency(last);
            queue.addOperation(next);
            last = std::move(next);
        }
        queue.waitUntilAllOperationsAreFinished();
        EXPECT_EQ(runs, 20'000);
    });
}

TEST(NSOperationQueue, TakesNoMemoryForMostBlocks) {
    constexpr std::size_t kBlocks = 10'000;
    const auto queue = queueOfWidth(0);
    const support::AllocationCount allocations;
    for (std::size_t i = 0; i < kBlocks; ++i) queue.addOperationWithBlock([] {});
    EXPECT_LE(allocations.count(), kBlocks / 100);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, TakesOnePieceOfMemoryForABlockOperation) {
    const auto queue = queueOfWidth(0);
    const support::AllocationCount allocations;
    queue.addOperation(block([] {}));
    EXPECT_LE(allocations.count(), 1U);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, StartsBlocksAmongOperationsByPriorityAndInTheOrderOfAdding) {
    RunOrder order;
    const auto queue = queueOfWidth(0);
    const auto add = [&](int number, NSOperationQueuePriority priority) {
        const auto operation = order.operation(number);
        operation->setQueuePriority(priority);
        queue.addOperation(operation);
    };
    queue.addOperationWithBlock([&order] { order.note(1); });
    queue.addOperationWithBlock([&order] { order.note(2); });
    add(3, NSOperationQueuePriority::normal);
    add(4, NSOperationQueuePriority::high);
    queue.addOperationWithBlock([&order] { order.note(5); });
    add(6, NSOperationQueuePriority::low);
    EXPECT_EQ(queue.operationCount(), 6U);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(4, 1, 2, 3, 5, 6));
}

TEST(NSOperationQueue, StartsByPriorityWhatWasAddedWhileAnotherOperationExecutes) {
    RunOrder order;
    const auto queue = queueOfWidth(1);
    BusyWorker busy(queue);
    const auto add = [&](int number, NSOperationQueuePriority priority) {
        const auto operation = order.operation(number);
        operation->setQueuePriority(priority);
        queue.addOperation(operation);
    };
    add(1, NSOperationQueuePriority::low);
    add(2, NSOperationQueuePriority::normal);
    add(3, NSOperationQueuePriority::normal);
    add(4, NSOperationQueuePriority::veryHigh);
    const auto fifth = order.operation(5);
    const auto sixth = order.operation(6);
    fifth->addDependency(sixth);
    queue.addOperation(fifth);
    // What it is set to after the operation became ready does not count.
    queue.addOperation(sixth);
    sixth->setQueuePriority(NSOperationQueuePriority::veryHigh);
    queue.addOperationWithBlock([&order] { order.note(7); });
    // One that runs adds others.
    const auto eighth = block([&] {
        order.note(8);
        add(9, NSOperationQueuePriority::normal);
        add(10, NSOperationQueuePriority::high);
    });
    eighth->setQueuePriority(NSOperationQueuePriority::high);
    queue.addOperation(eighth);
    busy.letGo();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(4, 8, 10, 2, 3, 6, 5, 7, 9, 1));
}

TEST(NSOperationQueue, CountsCancelsAndDropsWhatWasAddedWhileAnotherOperationExecutes) {
    RunOrder order;
    const auto queue = queueOfWidth(1);
    BusyWorker busy(queue);
    std::vector<std::shared_ptr<NSOperation>> added{busy.operation()};
    for (int number = 1; number <= 4; ++number) {
        added.push_back(order.operation(number));
        queue.addOperation(added.back());
        EXPECT_EQ(queue.operationCount(), added.size());
    }
    EXPECT_EQ(queue.operations(), added);
    added.push_back(order.operation(5));
    queue.addOperation(added.back());
    expectRefused(queue, added.back());
    // Finished by somebody else, it leaves the queue from the middle and from the end.
    added[2]->start();
    added[5]->start();
    EXPECT_EQ(queue.operationCount(), 4U);
    added[3]->cancel();
    EXPECT_THAT(queue.operations(), ElementsAre(added[0], added[1], added[3], added[4]));
    busy.letGo();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(2, 5, 1, 4));
    EXPECT_TRUE(added[3]->isFinished());
    EXPECT_EQ(queue.operationCount(), 0U);
}

TEST(NSOperationQueue, HandsOutBlocksThatWereAddedWhileAnotherBlockRuns) {
    RunOrder order;
    const auto queue = queueOfWidth(1);
    std::latch hasBegun(1);
    std::latch mayEnd(1);
    queue.addOperationWithBlock([&] {
        hasBegun.count_down();
        mayEnd.wait();
        order.note(0);
    });
    hasBegun.wait();
    queue.addOperationWithBlock([&order] { order.note(1); });
    const auto second = order.operation(2);
    queue.addOperation(second);
    queue.addOperationWithBlock([&order] { order.note(3); });
    EXPECT_EQ(queue.operationCount(), 4U);
    const auto operations = queue.operations();
    ASSERT_EQ(operations.size(), 4U);
    EXPECT_TRUE(operations[0]->isExecuting());
    EXPECT_EQ(operations[2], second);
    operations[3]->cancel();
    queue.addOperationWithBlock([&order] { order.note(4); });
    mayEnd.count_down();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(0, 1, 2, 4));
}

TEST(NSOperationQueue, StartsAnOperationBesideOneThatWaitsForIt) {
    const auto queue = queueOfWidth(2);
    for (int round = 0; round < 2'000; ++round) {
        std::latch hasBegun(1);
        std::latch hasMet(2);
        queue.addOperationWithBlock([&] {
            hasBegun.count_down();
            hasMet.arrive_and_wait();
        });
        // Sometimes before the other has begun, sometimes when its worker is alone, sometimes when one more looks out.
        if (round % 3 != 0) hasBegun.wait();
        if (round % 3 == 2) std::this_thread::sleep_for(std::chrono::microseconds(50));
        if (round % 2 == 0) {
            queue.addOperation(block([&] { hasMet.arrive_and_wait(); }));
        } else {
            queue.addOperationWithBlock([&] { hasMet.arrive_and_wait(); });
        }
        queue.waitUntilAllOperationsAreFinished();
    }
}

TEST(NSOperationQueue, StartsEachOperationThoughTheLastHasJustEnded) {
    for (const int width : {1, 2, -1}) {
        std::atomic<int> runs{0};
        const auto run = [&runs] {
            ++runs;
            runs.notify_one();
        };
        const auto queue = queueOfWidth(width);
        for (int round = 0; round < 20'000; ++round) {
            // The worker of the last one may still be in it, look out for another, be about to rest or be at rest.
            if (round % 2 == 0) {
                const auto operation = block(run);
                queue.addOperation(operation);
                if (round % 4 == 0) operation->waitUntilFinished();
            } else {
                queue.addOperationWithBlock(run);
            }
            runs.wait(round);
            if (round % 5 == 0) queue.waitUntilAllOperationsAreFinished();
        }
        queue.waitUntilAllOperationsAreFinished();
        EXPECT_EQ(queue.operationCount(), 0U);
    }
}

TEST(NSOperationQueue, HandsOutTheOperationsOfItsBlocksInTheOrderOfAdding) {
    RunOrder order;
    const auto queue = queueOfWidth(0);
    queue.addOperationWithBlock([&order] { order.note(1); });
    queue.addOperationWithBlock([&order] { order.note(2); });
    const auto third = order.operation(3);
    queue.addOperation(third);
    const auto operations = queue.operations();
    ASSERT_EQ(operations.size(), 3U);
    EXPECT_EQ(operations[2], third);
    EXPECT_EQ(queue.operations(), operations);
    for (const auto& operation : operations) EXPECT_TRUE(operation->isReady() && !operation->isExecuting());
    expectRefused(queue, operations[0]);
    // What depends on one of them waits for it, and one that is cancelled does not run.
    const auto fourth = order.operation(4);
    fourth->addDependency(operations[1]);
    queue.addOperation(fourth);
    operations[0]->cancel();
    queue.addOperationWithBlock([&order] { order.note(5); });
    const support::NotificationLog log(*operations[1]);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(2, 3, 4, 5));
    EXPECT_TRUE(operations[0]->isFinished());
    EXPECT_THAT(log.entries(), ElementsAre("will isExecuting", "did isExecuting", "will isExecuting", "did isExecuting",
                                           "will isFinished", "did isFinished"));
}

TEST(NSOperationQueue, HandsOutTheOperationOfABlockThatIsRunning) {
    RunOrder order;
    const auto queue = queueOfWidth(1);
    std::latch hasBegun(1);
    std::latch mayEnd(1);
    queue.addOperationWithBlock([&] {
        const auto operations = queue.operations();
        if (!operations.empty() && operations[0]->isExecuting()) order.note(1);
        hasBegun.count_down();
        mayEnd.wait();
        if (operations[0]->isCancelled()) order.note(2);
    });
    queue.addOperationWithBlock([&order] { order.note(3); });
    hasBegun.wait();
    const auto operations = queue.operations();
    ASSERT_EQ(operations.size(), 2U);
    EXPECT_TRUE(operations[0]->isExecuting());
    EXPECT_FALSE(operations[1]->isExecuting());
    expectRefused(queue, operations[0]);
    EXPECT_THROW(operations[0]->start(), NSException);
    EXPECT_THROW(std::static_pointer_cast<NSBlockOperation>(operations[0])->addExecutionBlock([] {}), NSException);
    const support::NotificationLog log(*operations[0]);
    const DispatchGroup completed;
    completed.enter();
    operations[0]->setCompletionBlock([completed] { completed.leave(); });
    const auto dependent = order.operation(4);
    dependent->addDependency(operations[0]);
    EXPECT_FALSE(dependent->isReady());
    queue.addOperation(dependent);
    operations[0]->cancel();
    EXPECT_FALSE(operations[0]->isFinished());
    mayEnd.count_down();
    operations[0]->waitUntilFinished();
    queue.waitUntilAllOperationsAreFinished();
    completed.wait();
    EXPECT_THAT(order.numbers(), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(log.entries(), ElementsAre("will isCancelled", "did isCancelled", "will isExecuting", "did isExecuting",
                                           "will isFinished", "did isFinished"));
    while (operations[0].use_count() > 1) std::this_thread::yield();
}

TEST(NSOperationQueue, CancelsItsBlocksToo) {
    const auto queue = queueOfWidth(0);
    const auto held = std::make_shared<int>(0);
    for (int i = 0; i < 3; ++i) {
        queue.addOperationWithBlock([held] { ADD_FAILURE() << "cancelled block ran"; });
    }
    queue.cancelAllOperations();
    queue.setMaxConcurrentOperationCount(2);
    queue.waitUntilAllOperationsAreFinished();
    while (held.use_count() > 1) std::this_thread::yield();
}

TEST(NSOperationQueue, RunsBlocksTogetherUpToItsWidth) {
    const auto queue = queueOfWidth(3);
    std::latch together(3);
    for (int i = 0; i < 3; ++i) queue.addOperationWithBlock([&together] { together.arrive_and_wait(); });
    queue.waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, DestroysABlockBeforeItsOperationHasFinished) {
    const auto queue = queueOfWidth(1);
    const auto held = std::make_shared<int>(0);
    queue.addOperationWithBlock([held] {});
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(NSOperationQueue, GetsTheFirstOfManyAtOnceAndAllBeforeTheirAddingEnds) {
    RunOrder order;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    {
        NSOperationQueue::Adding adding(queue);
        adding.addOperation(order.operation(0));
        EXPECT_EQ(queue.operationCount(), 1U);
        for (int number = 1; number < 100; ++number) adding.addOperation(order.operation(number));
        adding.finish();
        EXPECT_EQ(queue.operationCount(), 100U);
        for (int number = 100; number < 200; ++number) adding.addOperation(order.operation(number));
    }
    EXPECT_EQ(queue.operationCount(), 200U);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    const std::vector<int> numbers = order.numbers();
    EXPECT_EQ(numbers.size(), 200U);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
}

TEST(NSOperationQueue, TakesAnOperationForItsOwnBeforeItIsToldOfIt) {
    RunOrder order;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    const auto dependency = order.operation(1);
    const auto dependent = order.operation(2);
    const auto finishing = order.operation(3);
    NSOperationQueue::Adding adding(queue);
    adding.addOperation(order.operation(0));
    // Some at a time grow from one to two to four.
    adding.addOperation(order.operation(0));
    adding.addOperation(order.operation(0));
    adding.addDependency(*dependent, dependency);
    adding.addOperation(dependent);
    adding.addOperation(finishing);
    EXPECT_EQ(queue.operationCount(), 3U);
    expectRefused(queue, dependent);
    expectRefused(NSOperationQueue(), finishing);
    EXPECT_THROW(adding.addOperation(dependent), NSException);

    dependency->start();
    finishing->start();
    adding.finish();
    EXPECT_EQ(queue.operationCount(), 4U);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order.numbers(), ElementsAre(1, 3, 0, 0, 0, 2));
}

TEST(NSThread, RunsItsWorkOnAnotherThread) {
    std::atomic<bool> isDone{false};
    std::thread::id thread;
    NSThread::detachNewThread([&] {
        thread = std::this_thread::get_id();
        isDone = true;
    });
    while (!isDone) std::this_thread::yield();
    EXPECT_NE(thread, std::this_thread::get_id());
}

class NSOperationQueueDeathTest : public testing::Test {
protected:
    NSOperationQueueDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(NSOperationQueueDeathTest, StopsOnNullAndOnAnOperationWithoutASharedPointer) {
    EXPECT_DEATH(NSOperationQueue().addOperation(nullptr),
                 "NSOperationQueue addOperation: the operation must not be null");
    NSOperation onStack;
    EXPECT_DEATH(NSOperationQueue().addOperation(std::shared_ptr<NSOperation>(std::shared_ptr<void>(), &onStack)),
                 "NSOperationQueue addOperation: the operation must be held by a std::shared_ptr");
    EXPECT_DEATH(NSOperationQueue().addOperationWithBlock(nullptr),
                 "NSOperationQueue addOperationWithBlock: the block must not be empty");
    EXPECT_DEATH(NSThread::detachNewThread(nullptr), "NSThread detachNewThread: the work must not be empty");
}

TEST_F(NSOperationQueueDeathTest, EndsTheProcessWhenAnExceptionLeavesABlockOrADetachedThread) {
    EXPECT_DEATH(
        {
            const NSOperationQueue queue;
            queue.addOperationWithBlock([] { throw std::runtime_error("left the block"); });
            queue.waitUntilAllOperationsAreFinished();
        },
        "");
    EXPECT_DEATH(
        {
            NSThread::detachNewThread([] { throw std::runtime_error("left the thread"); });
            NSOperation().waitUntilFinished();
        },
        "");
}

}  // namespace
