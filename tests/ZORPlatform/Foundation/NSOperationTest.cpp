// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchGroup.h>
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSOperation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/NotificationLog.h>
#include <support/SmallStack.h>

#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

using support::NotificationLog;
using testing::ElementsAre;
using testing::IsEmpty;
using ZORPlatform::DispatchGroup;
using ZORPlatform::NSBlockOperation;
using ZORPlatform::NSException;
using ZORPlatform::NSOperation;

class Calling : public NSOperation {
public:
    explicit Calling(std::function<void(Calling&)> work) : work_(std::move(work)) {}
    void main() override { work_(*this); }

private:
    std::function<void(Calling&)> work_;
};

std::shared_ptr<NSOperation> nothing() { return std::make_shared<NSOperation>(); }

void expectRefused(NSOperation& operation) {
    try {
        operation.start();
        ADD_FAILURE() << "start was not refused";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), u"NSInvalidArgumentException");
    }
}

TEST(NSOperation, AnnouncesExecutingThenRunsMainThenAnnouncesNotExecutingThenFinished) {
    const NotificationLog* entries = nullptr;
    const auto operation = std::make_shared<Calling>([&entries](Calling& self) {
        EXPECT_TRUE(self.isExecuting());
        EXPECT_FALSE(self.isFinished());
        entries->add("main");
    });
    const NotificationLog log(*operation);
    entries = &log;
    EXPECT_TRUE(operation->isReady());
    EXPECT_FALSE(operation->isAsynchronous());
    operation->start();
    EXPECT_THAT(log.entries(), ElementsAre("will isExecuting", "did isExecuting", "main", "will isExecuting",
                                           "did isExecuting", "will isFinished", "did isFinished"));
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, AnnouncesFinishedOnlyWhenStartedAfterACancel) {
    const auto operation = std::make_shared<Calling>([](Calling&) { ADD_FAILURE() << "main ran"; });
    operation->cancel();
    const NotificationLog log(*operation);
    operation->start();
    EXPECT_THAT(log.entries(), ElementsAre("will isFinished", "did isFinished"));
}

TEST(NSOperation, StartsQuietlyOnceFinished) {
    const auto operation = nothing();
    operation->start();
    const NotificationLog log(*operation);
    operation->start();
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(NSOperation, RefusesASecondStartWhileItExecutes) {
    const auto operation = std::make_shared<Calling>([](Calling& self) { expectRefused(self); });
    operation->start();
    EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, RefusesToStartOutsideAQueueBeforeItsDependenciesHaveFinished) {
    const auto dependency = nothing();
    const auto operation = nothing();
    operation->addDependency(dependency);
    expectRefused(*operation);
    EXPECT_FALSE(operation->isFinished());
    dependency->start();
    operation->start();
    EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, PassesAnExceptionOfMainToWhoeverStartedIt) {
    const auto operation = std::make_shared<Calling>([](Calling&) { throw std::runtime_error("main"); });
    EXPECT_THROW(operation->start(), std::runtime_error);
    EXPECT_TRUE(operation->isExecuting());
    EXPECT_FALSE(operation->isFinished());
}

TEST(NSOperation, BecomesReadyWhenTheLastOfItsDependenciesHasFinishedCancelledOrNot) {
    const auto first = nothing();
    const auto second = nothing();
    const auto operation = nothing();
    const NotificationLog log(*operation);
    operation->addDependency(first);
    operation->addDependency(first);
    operation->addDependency(second);
    EXPECT_FALSE(operation->isReady());
    EXPECT_THAT(operation->dependencies(), ElementsAre(first, second));
    EXPECT_THAT(log.entries(), ElementsAre("will isReady", "did isReady"));
    first->start();
    EXPECT_FALSE(operation->isReady());
    second->cancel();
    EXPECT_FALSE(operation->isReady());
    second->start();
    EXPECT_TRUE(operation->isReady());
    EXPECT_THAT(log.entries(), ElementsAre("will isReady", "did isReady", "will isReady", "did isReady"));
}

TEST(NSOperation, IsReadyWithADependencyThatHasAlreadyFinished) {
    const auto dependency = nothing();
    dependency->start();
    const auto operation = nothing();
    operation->addDependency(dependency);
    EXPECT_TRUE(operation->isReady());
    EXPECT_THAT(operation->dependencies(), ElementsAre(dependency));
}

TEST(NSOperation, BecomesReadyWhenItsUnfinishedDependencyIsRemoved) {
    const auto finished = nothing();
    const auto unfinished = nothing();
    const auto operation = nothing();
    operation->addDependency(finished);
    operation->addDependency(unfinished);
    finished->start();
    operation->removeDependency(finished);
    operation->removeDependency(nothing());
    EXPECT_FALSE(operation->isReady());
    operation->removeDependency(unfinished);
    EXPECT_TRUE(operation->isReady());
    EXPECT_THAT(operation->dependencies(), IsEmpty());
    unfinished->start();
    EXPECT_TRUE(operation->isReady());
}

TEST(NSOperation, TakesNoDependencyOnceItExecutes) {
    const auto operation =
        std::make_shared<Calling>([](Calling& self) { self.addDependency(std::make_shared<NSOperation>()); });
    operation->start();
    operation->addDependency(nothing());
    EXPECT_THAT(operation->dependencies(), IsEmpty());
}

TEST(NSOperation, TellsDuplicatesAmongManyDependencies) {
    std::vector<std::shared_ptr<NSOperation>> dependencies;
    const auto operation = nothing();
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < 100; ++i) {
            if (round == 0) dependencies.push_back(nothing());
            operation->addDependency(dependencies[i]);
        }
    }
    EXPECT_EQ(operation->dependencies(), dependencies);
    operation->removeDependency(dependencies[50]);
    operation->addDependency(dependencies[50]);
    EXPECT_EQ(operation->dependencies().size(), 100U);
    for (const auto& dependency : dependencies) {
        EXPECT_FALSE(operation->isReady());
        dependency->start();
    }
    EXPECT_TRUE(operation->isReady());
}

TEST(NSOperation, CancelAnnouncesCancelledAndReadyAndForgetsUnfinishedDependencies) {
    const auto finished = nothing();
    const auto unfinished = nothing();
    const auto operation = nothing();
    operation->addDependency(finished);
    operation->addDependency(unfinished);
    finished->start();
    const NotificationLog log(*operation);
    operation->cancel();
    EXPECT_THAT(log.entries(), ElementsAre("will isCancelled", "did isCancelled", "will isReady", "did isReady"));
    EXPECT_TRUE(operation->isCancelled());
    EXPECT_TRUE(operation->isReady());
    EXPECT_FALSE(operation->isFinished());
    EXPECT_THAT(operation->dependencies(), ElementsAre(finished));
    operation->cancel();
    unfinished->start();
    EXPECT_EQ(log.entries().size(), 4U);
}

TEST(NSOperation, CancelWhileExecutingAnnouncesCancelledOnlyAndLeavesTheRestToMain) {
    std::vector<std::string> during;
    const NotificationLog* entries = nullptr;
    const auto operation = std::make_shared<Calling>([&](Calling& self) {
        const std::size_t before = entries->entries().size();
        self.cancel();
        const auto all = entries->entries();
        during.assign(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
        EXPECT_TRUE(self.isExecuting());
    });
    const NotificationLog log(*operation);
    entries = &log;
    operation->start();
    EXPECT_THAT(during, ElementsAre("will isCancelled", "did isCancelled"));
    EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, CancelDoesNothingOnceFinished) {
    const auto operation = nothing();
    operation->start();
    const NotificationLog log(*operation);
    operation->cancel();
    EXPECT_FALSE(operation->isCancelled());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(NSOperation, RunsItsCompletionBlockOnceOnAThreadOfItsOwnAfterItHasFinished) {
    const auto operation = nothing();
    const auto held = std::make_shared<int>(0);
    std::promise<std::pair<bool, std::thread::id>> seen;
    operation->setCompletionBlock([&seen, held, raw = operation.get()] {
        seen.set_value({raw->isFinished(), std::this_thread::get_id()});  // A second call would throw.
    });
    operation->start();
    const auto [wasFinished, thread] = seen.get_future().get();
    EXPECT_TRUE(wasFinished);
    EXPECT_NE(thread, std::this_thread::get_id());
    operation->didChangeValueForKey(NSOperation::kFinishedKey);
    while (held.use_count() > 1) std::this_thread::yield();
}

TEST(NSOperation, RunsTheCompletionBlockOfACancelledOperationToo) {
    const auto operation = nothing();
    const DispatchGroup group;
    group.enter();
    operation->setCompletionBlock([group] { group.leave(); });
    operation->cancel();
    operation->start();
    group.wait();
}

TEST(NSOperation, DropsACompletionBlockThatIsReplacedOrSetTooLate) {
    const auto operation = nothing();
    const auto held = std::make_shared<int>(0);
    operation->setCompletionBlock([held] { ADD_FAILURE() << "replaced block ran"; });
    operation->setCompletionBlock(nullptr);
    EXPECT_EQ(held.use_count(), 1);
    operation->start();
    operation->setCompletionBlock([held] { ADD_FAILURE() << "late block ran"; });
    EXPECT_EQ(held.use_count(), 1);
}

TEST(NSOperation, LetsAnyThreadWaitUntilItHasFinished) {
    const auto operation = nothing();
    std::thread waiting([&operation] {
        operation->waitUntilFinished();
        EXPECT_TRUE(operation->isFinished());
    });
    operation->start();
    operation->waitUntilFinished();
    waiting.join();
}

TEST(NSOperation, IsNotOverWhileThePropertyStillReadsFalseWhenFinishedIsAnnounced) {
    const auto dependency = nothing();
    const auto operation = nothing();
    operation->addDependency(dependency);
    dependency->willChangeValueForKey(NSOperation::kFinishedKey);
    dependency->didChangeValueForKey(NSOperation::kFinishedKey);
    EXPECT_FALSE(operation->isReady());
    dependency->start();
    EXPECT_TRUE(operation->isReady());
}

TEST(NSOperation, LetsGoOfItsDependenciesWhenItHasFinished) {
    auto dependency = nothing();
    const std::weak_ptr<NSOperation> seen = dependency;
    const auto operation = nothing();
    operation->addDependency(dependency);
    dependency->start();
    dependency.reset();
    EXPECT_FALSE(seen.expired());
    operation->start();
    EXPECT_TRUE(seen.expired());
    EXPECT_THAT(operation->dependencies(), IsEmpty());
}

TEST(NSOperation, DropsADependentWithoutHarmBeforeItsDependencyFinishes) {
    const auto dependency = nothing();
    for (int i = 0; i < 1000; ++i) nothing()->addDependency(dependency);
    const auto kept = nothing();
    kept->addDependency(dependency);
    dependency->start();
    EXPECT_TRUE(kept->isReady());
}

TEST(NSOperation, DestroysADeepChainOfDependenciesInASmallStack) {
    support::runInSmallStack([] {
        auto last = nothing();
        for (int i = 0; i < 100'000; ++i) {
            auto next = nothing();
            next->addDependency(last);
            last = std::move(next);
        }
        last.reset();
    });
}

TEST(NSOperation, CancelsTheEndOfADeepChainInASmallStack) {
    support::runInSmallStack([] {
        auto last = nothing();
        for (int i = 0; i < 100'000; ++i) {
            auto next = nothing();
            next->addDependency(last);
            last = std::move(next);
        }
        last->cancel();
        last->start();
        EXPECT_TRUE(last->isFinished());
    });
}

TEST(NSBlockOperation, RunsItsBlockOnTheThreadThatStartsItAndDestroysItBeforeItFinishes) {
    const auto held = std::make_shared<int>(0);
    std::thread::id thread;
    const auto operation =
        NSBlockOperation::blockOperationWithBlock([held, &thread] { thread = std::this_thread::get_id(); });
    long heldAtTheEnd = 0;
    operation->addObserver(NSOperation::kFinishedKey, ZORPlatform::NSKeyValueObservingOptions::prior,
                           [&, held](const auto& change) {
                               if (change.isPrior) heldAtTheEnd = held.use_count();
                           });
    operation->start();
    EXPECT_EQ(thread, std::this_thread::get_id());
    EXPECT_EQ(heldAtTheEnd, 2);
}

TEST(NSBlockOperation, FinishesWithoutABlock) {
    const auto operation = std::make_shared<NSBlockOperation>();
    operation->start();
    EXPECT_TRUE(operation->isFinished());
}

TEST(NSBlockOperation, FinishesWhenAllOfItsBlocksHaveReturnedWhichMayWaitForEachOther) {
    const auto operation = std::make_shared<NSBlockOperation>();
    const DispatchGroup first;
    const DispatchGroup second;
    first.enter();
    second.enter();
    int done = 0;
    operation->addExecutionBlock([=] { first.wait(); });
    operation->addExecutionBlock([=] {
        second.wait();
        first.leave();
    });
    operation->addExecutionBlock([=, &done] {
        done = 1;
        second.leave();
    });
    operation->start();
    EXPECT_EQ(done, 1);
}

TEST(NSBlockOperation, FreesABlockThatHoldsItsOwnOperationWhenCancelled) {
    std::weak_ptr<NSBlockOperation> seen;
    {
        const auto operation = std::make_shared<NSBlockOperation>();
        seen = operation;
        operation->addExecutionBlock([operation] { ADD_FAILURE() << "cancelled block ran"; });
        operation->cancel();
        operation->start();
    }
    EXPECT_TRUE(seen.expired());
}

TEST(NSBlockOperation, TakesNoBlockOnceItRunsOrHasFinished) {
    const auto operation = std::make_shared<NSBlockOperation>();
    operation->addExecutionBlock([raw = operation.get()] { EXPECT_THROW(raw->addExecutionBlock([] {}), NSException); });
    operation->start();
    EXPECT_THROW(operation->addExecutionBlock([] {}), NSException);
}

class Named : public NSBlockOperation {
public:
    int name = 7;
};

TEST(NSBlockOperation, MakesAnInstanceOfTheReceivingClass) {
    const std::shared_ptr<Named> operation = Named::blockOperationWithBlock<Named>([] {});
    EXPECT_EQ(operation->name, 7);
}

TEST(NSOperationDeathTest, StopsOnNullDependenciesAndEmptyBlocksAndWithoutASharedPointer) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(nothing()->addDependency(nullptr), "addDependency: the operation must not be null");
    NSOperation onStack;
    EXPECT_DEATH(onStack.addDependency(nothing()), "addDependency: the receiver must be held by a std::shared_ptr");
    EXPECT_DEATH(std::make_shared<NSBlockOperation>()->addExecutionBlock(nullptr),
                 "NSBlockOperation addExecutionBlock: the block must not be empty");
}

}  // namespace
