// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Operation/ZORAsyncOperation.h>

#include <ZORPlatform/Dispatch/DispatchGroup.h>
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/NSException.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/NotificationLog.h>
#include <support/ThreadRest.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ZORFoundation {
namespace {

using support::NotificationLog;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using ZORPlatform::DispatchGroup;
using ZORPlatform::NSException;
using ZORPlatform::NSKeyValueChange;
using ZORPlatform::NSKeyValueObservingOptions;

using Result = ZORAsyncOperationResult<int>;

const std::vector<std::string> kNormalRun{"will isExecuting", "did isExecuting", "will isFinished",
                                          "will isExecuting", "did isExecuting", "did isFinished"};

/// An operation whose main is handed in.
class Scripted : public ZORAsyncOperation<int> {
public:
    explicit Scripted(std::function<void(Scripted&)> script = {}) : script_(std::move(script)) {}
    void main() override {
        ++mains;
        if (script_) script_(*this);
    }
    void complete(int value) { completeOperation(Result::success(value)); }

    std::atomic<int> mains{0};

private:
    std::function<void(Scripted&)> script_;
};

std::shared_ptr<Scripted> scripted(std::function<void(Scripted&)> script = {}) {
    return std::make_shared<Scripted>(std::move(script));
}

int valueOf(const Scripted& operation) { return *operation.result()->ifSuccess(); }

TEST(ZORAsyncOperation, IsAsynchronousAndNeitherExecutingNorFinishedNorHasAResultAtFirst) {
    const auto operation = std::make_shared<ZORAsyncOperation<int>>();
    EXPECT_TRUE(operation->isAsynchronous());
    EXPECT_TRUE(operation->isReady());
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_FALSE(operation->isFinished());
    EXPECT_EQ(operation->result(), nullptr);
}

TEST(ZORAsyncOperation, AnnouncesTheBeginningFromStartAndTheEndFromCompleteOperationWithTheirPairsNested) {
    const NSOperationQueue queue;
    const auto operation = scripted([](Scripted& self) { self.complete(5); });
    const NotificationLog log(*operation);
    queue.addOperation(operation);
    operation->waitUntilFinished();
    EXPECT_THAT(log.entries(), ElementsAreArray(kNormalRun));
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(valueOf(*operation), 5);
}

TEST(ZORAsyncOperation, ShowsBothFlagsChangedAndTheResultStoredBetweenTheInnerAnnouncements) {
    const auto operation = scripted();
    operation->start();
    std::vector<std::string> seen;
    const auto look = [&](const NSKeyValueChange& change) {
        seen.push_back(std::string(change.isPrior ? "will " : "did ") + (operation->isExecuting() ? "executing " : "") +
                       (operation->isFinished() ? "finished " : "") + (operation->result() ? "result" : ""));
    };
    operation->addObserver(NSOperation::kExecutingKey, NSKeyValueObservingOptions::prior, look);
    operation->addObserver(NSOperation::kFinishedKey, NSKeyValueObservingOptions::prior, look);
    operation->complete(1);
    EXPECT_THAT(seen, ElementsAre("will executing result", "will executing result", "did finished result",
                                  "did finished result"));
}

TEST(ZORAsyncOperation, ReadsExecutingOnlyAfterItsThreadWasStartedAndTrueOnceAnnounced) {
    const auto operation = scripted();
    std::vector<bool> seen;
    operation->addObserver(NSOperation::kExecutingKey, NSKeyValueObservingOptions::prior,
                           [&](const NSKeyValueChange&) { seen.push_back(operation->isExecuting()); });
    operation->start();
    EXPECT_THAT(seen, ElementsAre(false, true));
    while (operation->mains == 0) std::this_thread::yield();
    EXPECT_TRUE(operation->isExecuting());
    EXPECT_FALSE(operation->isFinished());
    operation->complete(0);
}

TEST(ZORAsyncOperation, CallsMainOnANewThreadThatIsNeitherTheStartersNorTheQueues) {
    std::promise<std::thread::id> thread;
    const auto operation = scripted([&](Scripted& self) {
        thread.set_value(std::this_thread::get_id());
        self.complete(0);
    });
    std::thread::id starter;
    operation->addObserver(NSOperation::kExecutingKey, NSKeyValueObservingOptions::prior,
                           [&](const NSKeyValueChange& change) {
                               if (change.isPrior && !operation->isExecuting()) starter = std::this_thread::get_id();
                           });
    const NSOperationQueue queue;
    queue.addOperation(operation);
    const std::thread::id mainThread = thread.get_future().get();
    operation->waitUntilFinished();
    EXPECT_NE(mainThread, starter);
    EXPECT_NE(mainThread, std::this_thread::get_id());
}

TEST(ZORAsyncOperation, CancelledBeforeItIsAddedItAnnouncesFinishedOnceAndNeverRunsMainNorTheCompletion) {
    const NSOperationQueue queue;
    const auto operation = scripted();
    operation->cancel();
    const NotificationLog log(*operation);
    const auto held = std::make_shared<int>(0);
    operation->run(queue, [held](const Result&) { ADD_FAILURE() << "completed without a result"; });
    operation->waitUntilFinished();
    EXPECT_THAT(log.entries(), ElementsAre("will isFinished", "did isFinished"));
    EXPECT_EQ(operation->result(), nullptr);
    EXPECT_EQ(operation->mains, 0);
    // The completion block, which found no result, has run and is destroyed.
    while (held.use_count() > 1) std::this_thread::yield();
}

TEST(ZORAsyncOperation, CancelledInAQueueThatHasNotStartedItItFinishesWithoutMain) {
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    const auto operation = scripted();
    queue.addOperation(operation);
    operation->cancel();
    const NotificationLog log(*operation);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(log.entries(), ElementsAre("will isFinished", "did isFinished"));
    EXPECT_EQ(operation->mains, 0);
}

TEST(ZORAsyncOperation, CancelledWhileItExecutesItGoesOnUntilItIsCompleted) {
    const auto operation = scripted();
    const NotificationLog log(*operation);
    operation->start();
    operation->cancel();
    EXPECT_TRUE(operation->isExecuting());
    EXPECT_FALSE(operation->isFinished());
    operation->completeOperation(Result::error(NSOperationQueue::kDefaultMaxConcurrentOperationCount));
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->result()->isSuccess());
    EXPECT_THAT(log.entries(), ElementsAre("will isExecuting", "did isExecuting", "will isCancelled", "did isCancelled",
                                           "will isFinished", "will isExecuting", "did isExecuting", "did isFinished"));
}

TEST(ZORAsyncOperation, HoldsACompletionOnAnotherThreadBackUntilStartHasAnnouncedExecuting) {
    support::ThreadRest completing;
    const auto operation = scripted([&](Scripted& self) {
        completing.entersHere();
        self.complete(7);
    });
    // The first of the observers lets main run as far as it can before the others have heard of the beginning.
    operation->addObserver(NSOperation::kExecutingKey, NSKeyValueObservingOptions::none,
                           [&, first = true](const NSKeyValueChange&) mutable {
                               if (!std::exchange(first, false)) return;
                               completing.waitUntilItSleepsOrHasEnded();
                               EXPECT_TRUE(operation->isExecuting());
                               EXPECT_FALSE(operation->isFinished());
                               EXPECT_EQ(operation->result(), nullptr);
                           });
    const NotificationLog log(*operation);
    operation->start();
    operation->waitUntilFinished();
    EXPECT_THAT(log.entries(), ElementsAreArray(kNormalRun));
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_EQ(valueOf(*operation), 7);
}

TEST(ZORAsyncOperation, LetsACompletionOnTheStartersOwnThreadThroughAndThenLeavesExecutingFalse) {
    for (const bool isPrior : {true, false}) {
        const auto operation = scripted();
        operation->addObserver(NSOperation::kExecutingKey, NSKeyValueObservingOptions::prior,
                               [&, done = false](const NSKeyValueChange& change) mutable {
                                   if (change.isPrior == isPrior && !std::exchange(done, true)) operation->complete(1);
                               });
        operation->start();
        EXPECT_FALSE(operation->isExecuting());
        EXPECT_TRUE(operation->isFinished());
        EXPECT_EQ(valueOf(*operation), 1);
    }
}

TEST(ZORAsyncOperation, CompletedTwiceItKeepsTheLaterOutcomeAndAnnouncesAgain) {
    std::atomic<int> completions{0};
    const NSOperationQueue queue;
    const auto operation = scripted();
    const auto held = std::make_shared<int>(0);
    operation->run(queue, [&completions, held](const Result&) { ++completions; });
    while (operation->mains == 0) std::this_thread::yield();
    operation->complete(1);
    const NotificationLog log(*operation);
    operation->complete(2);
    EXPECT_THAT(log.entries(), ElementsAre("will isFinished", "will isExecuting", "did isExecuting", "did isFinished"));
    EXPECT_EQ(valueOf(*operation), 2);
    while (held.use_count() > 1) std::this_thread::yield();
    EXPECT_EQ(completions, 1);
}

TEST(ZORAsyncOperation, CompletedWithoutHavingBeenStartedItIsFinished) {
    const auto operation = scripted();
    const auto dependent = std::make_shared<NSOperation>();
    dependent->addDependency(operation);
    operation->complete(3);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_TRUE(dependent->isReady());
    EXPECT_EQ(operation->mains, 0);
}

TEST(ZORAsyncOperation, RunHandsTheResultToTheCompletionAfterTheOperationHasFinished) {
    const NSOperationQueue queue;
    std::promise<std::pair<int, bool>> seen;
    {
        const auto operation = scripted([](Scripted& self) { self.complete(42); });
        operation->run(queue, [&seen, raw = operation.get()](const Result& result) {
            seen.set_value({*result.ifSuccess(), raw->isFinished()});
        });
    }
    EXPECT_EQ(seen.get_future().get(), std::pair(42, true));
}

TEST(ZORAsyncOperation, RunHandsOnAnErrorUntouched) {
    const NSOperationQueue queue;
    const Error error = std::string("offline");
    std::promise<Error> seen;
    const auto operation = scripted([&](Scripted& self) { self.completeOperation(Result::error(error)); });
    operation->run(queue, [&seen](const Result& result) { seen.set_value(*result.ifFailure()); });
    EXPECT_EQ(seen.get_future().get(), error);
}

TEST(ZORAsyncOperation, RunWithoutACompletionKeepsTheCompletionBlockThatIsThere) {
    const NSOperationQueue queue;
    const DispatchGroup group;
    group.enter();
    const auto operation = scripted([](Scripted& self) { self.complete(1); });
    operation->setCompletionBlock([group] { group.leave(); });
    operation->run(queue);
    group.wait();
    EXPECT_TRUE(operation->isFinished());
}

TEST(ZORAsyncOperation, RunOfOneThatIsInAQueueIsRefused) {
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    const auto operation = scripted([](Scripted& self) { self.complete(1); });
    operation->run(queue);
    EXPECT_THROW(operation->run(queue), NSException);
    queue.setMaxConcurrentOperationCount(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THROW(operation->run(queue), NSException);
}

TEST(ZORAsyncOperation, FreesItselfAndItsResultAndCompletionOnceItHasRun) {
    std::weak_ptr<Scripted> seen;
    {
        const NSOperationQueue queue;
        const auto operation = scripted([](Scripted& self) { self.complete(1); });
        seen = operation;
        operation->run(queue, [operation](const Result&) {});
    }
    while (!seen.expired()) std::this_thread::yield();
}

TEST(ZORAsyncOperation, HoldsUpADependentUntilItIsCompletedWhereverThatHappens) {
    const NSOperationQueue queue;
    const auto operation = scripted();
    std::atomic<bool> hasRun{false};
    const auto dependent = ZORPlatform::NSBlockOperation::blockOperationWithBlock([&] { hasRun = true; });
    dependent->addDependency(operation);
    queue.addOperation(dependent);
    queue.addOperation(operation);
    while (operation->mains == 0) std::this_thread::yield();
    EXPECT_FALSE(dependent->isReady());
    EXPECT_FALSE(hasRun);
    operation->complete(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(hasRun);
}

TEST(ZORAsyncOperation, CarriesAValueThatCanOnlyBeMoved) {
    class Owner : public ZORAsyncOperation<std::unique_ptr<int>> {
        void main() override { completeOperation(Result::success(std::make_unique<int>(9))); }
    };
    const NSOperationQueue queue;
    std::promise<int> seen;
    std::make_shared<Owner>()->run(queue, [&seen](const auto& result) { seen.set_value(**result.ifSuccess()); });
    EXPECT_EQ(seen.get_future().get(), 9);
}

TEST(ZORAsyncOperation, StartedTwiceItRunsMainTwice) {
    const auto operation = scripted();
    operation->start();
    operation->start();
    while (operation->mains < 2) std::this_thread::yield();
    operation->complete(1);
}

TEST(ZORAsyncOperation, SetsItsFlagsWithoutAnnouncementForASubclassWithAStartOfItsOwn) {
    class OwnStart : public ZORAsyncOperation<int> {
    public:
        void start() override {
            setIsOperationExecuting(true);
            EXPECT_TRUE(isOperationExecuting() && isExecuting());
            setIsOperationExecuting(false);
            setIsOperationFinished(true);
            EXPECT_TRUE(isOperationFinished() && isFinished());
        }
    };
    const auto operation = std::make_shared<OwnStart>();
    const NotificationLog log(*operation);
    operation->start();
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(ZORAsyncOperationDeathTest, StopsWhenNoSharedPointerHoldsIt) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ZORAsyncOperation<int> onStack;
    EXPECT_DEATH(onStack.start(), "ZORAsyncOperation start: the operation must be held by a std::shared_ptr");
    EXPECT_DEATH(onStack.run(NSOperationQueue()), "ZORAsyncOperation run: the operation must be held by a");
}

}  // namespace
}  // namespace ZORFoundation
