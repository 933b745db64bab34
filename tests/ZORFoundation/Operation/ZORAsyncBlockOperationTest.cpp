// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Operation/ZORAsyncBlockOperation.h>

#include <ZORPlatform/Foundation/NSOperationQueue.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/NotificationLog.h>
#include <support/ThreadRest.h>

#include <functional>
#include <future>
#include <memory>
#include <thread>

namespace ZORFoundation {
namespace {

using testing::ElementsAre;
using ZORPlatform::NSOperationQueue;

using Completion = std::function<void()>;

TEST(ZORAsyncBlockOperation, StaysExecutingUntilItsCompletionIsCalledFromAnotherThread) {
    const NSOperationQueue queue;
    support::ThreadRest worker;
    std::promise<Completion> handedOut;
    const auto operation = std::make_shared<ZORAsyncBlockOperation>([&](const Completion& completion) {
        worker.entersHere();
        handedOut.set_value(completion);
    });
    const support::NotificationLog log(*operation);
    queue.addOperation(operation);
    const Completion completion = handedOut.get_future().get();
    worker.waitUntilItSleepsOrHasEnded();
    EXPECT_TRUE(operation->isExecuting());
    EXPECT_FALSE(operation->isFinished());
    log.add("completion");
    std::thread(completion).join();
    operation->waitUntilFinished();
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_THAT(log.entries(), ElementsAre("will isExecuting", "did isExecuting", "completion", "will isExecuting",
                                           "did isExecuting", "will isFinished", "did isFinished"));
}

TEST(ZORAsyncBlockOperation, FinishesWhenItsCompletionIsCalledInsideTheBlock) {
    int runs = 0;
    const auto operation = std::make_shared<ZORAsyncBlockOperation>([&](const Completion& completion) {
        completion();
        ++runs;
    });
    operation->start();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(runs, 1);
}

TEST(ZORAsyncBlockOperation, DoesNotCallItsBlockWhenCancelled) {
    const auto operation =
        std::make_shared<ZORAsyncBlockOperation>([](const Completion&) { ADD_FAILURE() << "cancelled block ran"; });
    operation->cancel();
    operation->start();
    EXPECT_TRUE(operation->isFinished());
}

TEST(ZORAsyncBlockOperation, FinishesAtOnceWithoutABlock) {
    const auto operation = std::make_shared<ZORAsyncBlockOperation>();
    operation->start();
    EXPECT_TRUE(operation->isFinished());
}

TEST(ZORAsyncBlockOperation, WaitsForFurtherBlocksToo) {
    int runs = 0;
    const auto operation = std::make_shared<ZORAsyncBlockOperation>([](const Completion& completion) { completion(); });
    operation->addExecutionBlock([&runs] { ++runs; });
    operation->start();
    EXPECT_EQ(runs, 1);
}

TEST(ZORAsyncBlockOperation, IsMadeOfADerivedClassAsWell) {
    class Named : public ZORAsyncBlockOperation {
    public:
        using ZORAsyncBlockOperation::ZORAsyncBlockOperation;
        int name = 7;
    };
    bool hasRun = false;
    const auto operation = std::make_shared<Named>([&hasRun](const Completion& completion) {
        hasRun = true;
        completion();
    });
    operation->start();
    EXPECT_TRUE(hasRun);
    EXPECT_EQ(operation->name, 7);
}

TEST(ZORAsyncBlockOperation, DestroysItsBlockWhenItHasRun) {
    const auto held = std::make_shared<int>(0);
    const auto operation =
        std::make_shared<ZORAsyncBlockOperation>([held](const Completion& completion) { completion(); });
    operation->start();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(ZORAsyncBlockOperationDeathTest, StopsWhenItsCompletionIsCalledTwiceAndWhenItsBlockIsEmpty) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(std::make_shared<ZORAsyncBlockOperation>([](const Completion& completion) {
                     completion();
                     completion();
                 })->start(),
                 "Unbalanced call to dispatch_group_leave\\(\\)");
    EXPECT_DEATH(ZORAsyncBlockOperation(std::function<void(Completion)>()),
                 "ZORAsyncBlockOperation: the block must not be empty");
}

}  // namespace
}  // namespace ZORFoundation
