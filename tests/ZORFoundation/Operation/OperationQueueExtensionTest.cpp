// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Operation/OperationQueueExtension.h>

#include <ZORFoundation/Operation/ZORAsyncOperation.h>
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/NSException.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/ManualQueue.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ZORFoundation {
namespace {

using OperationQueueExtension::addOperations;
using support::ManualQueue;
using testing::ElementsAre;
using testing::IsEmpty;
using ZORPlatform::NSBlockOperation;
using ZORPlatform::NSException;

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

TEST(OperationQueueExtensionDeathTest, StopsOnANullOperation) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(addOperations(NSOperationQueue(), {nullptr}), "addOperations: an operation must not be null");
}

}  // namespace
}  // namespace ZORFoundation
