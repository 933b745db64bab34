// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Operation/OperationQueueExtension.h>

#include <ZORFoundation/Operation/ZORAsyncOperation.h>
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/NSException.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/ManualQueue.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ZORFoundation {
namespace {

using OperationQueueExtension::addOperations;
using support::ManualQueue;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using ZORPlatform::NSBlockOperation;
using ZORPlatform::NSException;
using ZORPlatform::NSKeyValueChange;
using ZORPlatform::NSKeyValueObservingOptions;

/// What happened, in order, from several threads.
class Log {
public:
    void add(std::string entry) {
        const std::scoped_lock lock(mutex_);
        entries_.push_back(std::move(entry));
    }
    std::vector<std::string> entries() {
        const std::scoped_lock lock(mutex_);
        return entries_;
    }
    std::shared_ptr<NSBlockOperation> operation(const std::string& name) {
        return NSBlockOperation::blockOperationWithBlock([this, name] {
            add("begin " + name);
            add("end " + name);
        });
    }

private:
    std::mutex mutex_;
    std::vector<std::string> entries_;
};

TEST(OperationQueueExtension, RunsOperationsOneAfterAnotherAndThenTheCompletionOnTheGivenQueue) {
    Log log;
    ManualQueue manual;
    const NSOperationQueue queue;
    addOperations(
        queue, {log.operation("1"), log.operation("2"), log.operation("3")}, [&log] { log.add("completion"); },
        manual.queue());
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(log.entries(), ElementsAre("begin 1", "end 1", "begin 2", "end 2", "begin 3", "end 3"));
    EXPECT_EQ(manual.waiting(), 1U);
    manual.runNext();
    EXPECT_EQ(log.entries().back(), "completion");
}

TEST(OperationQueueExtension, StartsAnOperationOnlyWhenTheAsynchronousOneBeforeItIsCompleted) {
    class Later : public ZORAsyncOperation<int> {};
    Log log;
    ManualQueue manual;
    const NSOperationQueue queue;
    const auto first = std::make_shared<Later>();
    const auto second = log.operation("second");
    addOperations(
        queue, {first, second}, [] {}, manual.queue());
    while (!first->isExecuting()) std::this_thread::yield();
    EXPECT_FALSE(second->isReady());
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_THAT(second->dependencies(), ElementsAre(first));
    first->completeOperation(ZORAsyncOperationResult<int>::success(1));
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(log.entries(), ElementsAre("begin second", "end second"));
    EXPECT_EQ(manual.waiting(), 1U);
}

TEST(OperationQueueExtension, DoesNothingWithoutOperationsAndWithoutACompletion) {
    ManualQueue manual;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    addOperations(queue, {}, nullptr, manual.queue());
    addOperations(queue, {});
    EXPECT_EQ(queue.operationCount(), 0U);
    EXPECT_EQ(manual.waiting(), 0U);
}

TEST(OperationQueueExtension, RunsOnlyTheCompletionWhenThereIsNoOperation) {
    Log log;
    ManualQueue manual;
    const NSOperationQueue queue;
    addOperations(
        queue, {}, [&log] { log.add("completion"); }, manual.queue());
    manual.runNext();
    EXPECT_THAT(log.entries(), ElementsAre("completion"));
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(manual.waiting(), 0U);
}

TEST(OperationQueueExtension, TellsNobodyWithoutACompletion) {
    Log log;
    ManualQueue manual;
    const NSOperationQueue queue;
    addOperations(queue, {log.operation("1"), log.operation("2")}, nullptr, manual.queue());
    addOperations(queue, {log.operation("3")});
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(log.entries().size(), 6U);
    EXPECT_EQ(manual.waiting(), 0U);
}

TEST(OperationQueueExtension, ContinuesPastCancelledOperations) {
    Log log;
    ManualQueue manual;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    const std::vector<std::shared_ptr<NSOperation>> operations{log.operation("1"), log.operation("2"),
                                                               log.operation("3")};
    operations[0]->cancel();
    addOperations(
        queue, operations, [&log] { log.add("completion"); }, manual.queue());
    operations[1]->cancel();
    queue.setMaxConcurrentOperationCount(4);
    queue.waitUntilAllOperationsAreFinished();
    manual.runNext();
    EXPECT_THAT(log.entries(), ElementsAre("begin 3", "end 3", "completion"));
}

TEST(OperationQueueExtension, AddsEachOperationAfterItsDependencyIsThereAndLeavesTheCallersListAlone) {
    Log log;
    ManualQueue manual;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    const std::vector<std::shared_ptr<NSOperation>> operations{log.operation("1"), log.operation("2")};
    addOperations(
        queue, operations, [] {}, manual.queue());
    EXPECT_EQ(operations.size(), 2U);
    const auto added = queue.operations();
    ASSERT_EQ(added.size(), 3U);
    EXPECT_EQ(added[0], operations[0]);
    EXPECT_EQ(added[1], operations[1]);
    EXPECT_THAT(added[0]->dependencies(), IsEmpty());
    EXPECT_THAT(added[1]->dependencies(), ElementsAre(operations[0]));
    EXPECT_THAT(added[2]->dependencies(), ElementsAre(operations[1]));
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueExtension, RefusesAnOperationThatIsListedTwiceAndKeepsThoseBeforeIt) {
    Log log;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    const auto first = log.operation("1");
    const auto second = log.operation("2");
    EXPECT_THROW(addOperations(queue, {first, second, second}), NSException);
    EXPECT_THAT(queue.operations(), ElementsAre(first, second));
    second->cancel();
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueExtension, KeepsALongListUpToTheOperationThatItRefuses) {
    Log log;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    std::vector<std::shared_ptr<NSOperation>> operations;
    for (int i = 0; i < 100; ++i) operations.push_back(log.operation(std::to_string(i)));
    operations[70]->start();
    EXPECT_THROW(addOperations(queue, operations), NSException);
    EXPECT_THAT(queue.operations(), ElementsAreArray(operations.begin(), operations.begin() + 70));
    queue.setMaxConcurrentOperationCount(2);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(log.entries().size(), 2U * 71);
}

TEST(OperationQueueExtension, TellsObserversOfAnOperationWhenAllBeforeItAreInTheQueue) {
    Log log;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    std::vector<std::shared_ptr<NSOperation>> operations;
    std::vector<std::size_t> counts;
    for (int i = 0; i < 100; ++i) operations.push_back(log.operation(std::to_string(i)));
    for (const int observed : {1, 50, 99}) {
        operations[static_cast<std::size_t>(observed)]->addObserver(
            NSOperation::kReadyKey, NSKeyValueObservingOptions::none,
            [&](const NSKeyValueChange&) { counts.push_back(queue.operationCount()); });
    }
    addOperations(queue, operations);
    EXPECT_THAT(counts, ElementsAre(1U, 50U, 99U));
    queue.cancelAllOperations();
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueExtension, KeepsTheSequencesOfSeveralThreadsInOrder) {
    constexpr std::size_t kOperations = 500;
    const NSOperationQueue queue;
    std::array<std::vector<std::size_t>, 4> ran;
    std::vector<std::thread> threads;
    for (auto& own : ran) {
        threads.emplace_back([&queue, &own] {
            std::vector<std::shared_ptr<NSOperation>> operations;
            for (std::size_t i = 0; i < kOperations; ++i) {
                operations.push_back(NSBlockOperation::blockOperationWithBlock([&own, i] { own.push_back(i); }));
            }
            addOperations(queue, operations);
        });
    }
    for (std::thread& thread : threads) thread.join();
    queue.waitUntilAllOperationsAreFinished();
    for (const auto& own : ran) {
        EXPECT_EQ(own.size(), kOperations);
        EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
    }
}

TEST(OperationQueueExtension, RunsEachOperationAtMostOnceWhileTheSequenceIsCancelledInPart) {
    constexpr std::size_t kOperations = 2000;
    const NSOperationQueue queue;
    std::vector<std::atomic<int>> runs(kOperations);
    std::vector<std::shared_ptr<NSOperation>> operations;
    for (std::atomic<int>& own : runs)
        operations.push_back(NSBlockOperation::blockOperationWithBlock([&own] { ++own; }));
    std::thread canceller([&operations] {
        for (std::size_t i = 0; i < kOperations; i += 7) operations[i]->cancel();
    });
    addOperations(queue, operations);
    canceller.join();
    queue.waitUntilAllOperationsAreFinished();
    for (std::size_t i = 0; i < kOperations; ++i) {
        EXPECT_TRUE(operations[i]->isFinished());
        EXPECT_LE(runs[i], 1);
        EXPECT_TRUE(runs[i] == 1 || operations[i]->isCancelled());
    }
}

TEST(OperationQueueExtensionDeathTest, StopsOnANullOperation) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(addOperations(NSOperationQueue(), {nullptr}), "addOperations: an operation must not be null");
}

}  // namespace
}  // namespace ZORFoundation
