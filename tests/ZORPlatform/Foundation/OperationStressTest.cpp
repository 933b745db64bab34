// SPDX-License-Identifier: Apache-2.0
//
// Many operations with random dependencies, cancelled and added from several threads at once. Seeds are fixed, so that
// a failure comes back; what the threads make of them is not.
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSOperationQueue.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace {

using ZORPlatform::NSBlockOperation;
using ZORPlatform::NSException;
using ZORPlatform::NSOperation;
using ZORPlatform::NSOperationQueue;

constexpr std::size_t kOperations = 100'000;
constexpr std::size_t kMostDependencies = 3;
// Dependencies lie close behind, so that many operations wait for ones that are under way.
constexpr std::size_t kReach = 50;

struct Node {
    std::shared_ptr<NSBlockOperation> operation;
    std::vector<std::size_t> dependencies;
    std::atomic<int> runs{0};
    std::atomic<int> completions{0};
    std::atomic<bool> isFinishedSeen{false};
};

class OperationStress : public testing::TestWithParam<int> {};

TEST_P(OperationStress, RunsEachOperationAtMostOnceAndAfterItsDependencies) {
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(GetParam());
    std::vector<Node> nodes(kOperations);
    std::atomic<int> violations{0};
    std::atomic<std::size_t> completions{0};
    std::mt19937 random(20'180'917);
    for (std::size_t i = 0; i < kOperations; ++i) {
        Node& node = nodes[i];
        node.operation = NSBlockOperation::blockOperationWithBlock([&nodes, &node, &violations] {
            if (node.runs.fetch_add(1, std::memory_order_relaxed) != 0) ++violations;
            // A cancelled operation does not wait for its dependencies, but may have begun before the cancel.
            if (node.operation->isCancelled()) return;
            for (const std::size_t dependency : node.dependencies) {
                if (!nodes[dependency].isFinishedSeen.load(std::memory_order_relaxed)) ++violations;
            }
        });
        node.operation->addObserver(NSOperation::kFinishedKey, ZORPlatform::NSKeyValueObservingOptions::none,
                                    [&node, &violations](const auto&) {
                                        if (node.isFinishedSeen.exchange(true)) ++violations;
                                    });
        if (i % 16 == 0) {
            node.operation->setCompletionBlock([&node, &completions] {
                ++node.completions;
                ++completions;
            });
        }
        const std::size_t count = i == 0 ? 0 : random() % (kMostDependencies + 1);
        for (std::size_t d = 0; d < count; ++d) {
            const std::size_t dependency = i - 1 - random() % std::min(i, kReach);
            node.dependencies.push_back(dependency);
            node.operation->addDependency(nodes[dependency].operation);
        }
    }

    constexpr std::size_t kAdders = 2;
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < kAdders; ++t) {
        threads.emplace_back([&nodes, &queue, t] {
            for (std::size_t i = t; i < kOperations; i += kAdders) queue.addOperation(nodes[i].operation);
        });
    }
    threads.emplace_back([&nodes] {
        std::mt19937 chosen(4711);
        for (std::size_t i = 0; i < kOperations / 20; ++i) nodes[chosen() % kOperations].operation->cancel();
    });
    for (std::thread& thread : threads) thread.join();
    queue.waitUntilAllOperationsAreFinished();

    EXPECT_EQ(violations, 0);
    EXPECT_EQ(queue.operationCount(), 0U);
    while (completions < (kOperations + 15) / 16) std::this_thread::yield();
    std::size_t ran = 0;
    for (std::size_t i = 0; i < kOperations; ++i) {
        const Node& node = nodes[i];
        EXPECT_TRUE(node.operation->isFinished());
        EXPECT_TRUE(node.isFinishedSeen);
        EXPECT_EQ(node.completions, i % 16 == 0 ? 1 : 0);
        EXPECT_TRUE(node.runs == 1 || node.operation->isCancelled());
        ran += static_cast<std::size_t>(node.runs);
    }
    // A twentieth was cancelled at most.
    EXPECT_GE(ran, kOperations - kOperations / 20);
}

TEST_P(OperationStress, RunsEachBlockAtMostOnceWhoeverAsksForTheOperationsMeanwhile) {
    constexpr std::size_t kBlocks = 30'000;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(GetParam());
    std::vector<std::atomic<int>> runs(kBlocks);
    std::atomic<bool> isOver{false};
    std::atomic<std::size_t> cancelled{0};
    constexpr std::size_t kAdders = 2;
    std::vector<std::thread> adders;
    for (std::size_t t = 0; t < kAdders; ++t) {
        adders.emplace_back([&, t] {
            for (std::size_t i = t; i < kBlocks; i += kAdders) {
                const auto count = [&run = runs[i]] { ++run; };
                if (i % 64 == 0) {
                    queue.addOperation(NSBlockOperation::blockOperationWithBlock(count));
                } else {
                    queue.addOperationWithBlock(count);
                }
            }
        });
    }
    std::thread asking([&] {
        for (std::size_t round = 0; !isOver; ++round) {
            const auto operations = queue.operations();
            if (round % 8 == 0 && !operations.empty()) {
                operations.back()->cancel();
                if (operations.back()->isCancelled()) ++cancelled;
            }
            if (round % 16 == 0 && !operations.empty()) operations.front()->waitUntilFinished();
        }
    });
    for (std::thread& adder : adders) adder.join();
    queue.waitUntilAllOperationsAreFinished();
    isOver = true;
    asking.join();

    EXPECT_EQ(queue.operationCount(), 0U);
    std::size_t ran = 0;
    for (const std::atomic<int>& run : runs) {
        EXPECT_LE(run, 1);
        ran += static_cast<std::size_t>(run);
    }
    EXPECT_GE(ran + cancelled, kBlocks);
}

/// Ends when it is started, or before that when somebody says so.
class Endable : public NSOperation {
public:
    void start() override { end(); }
    [[nodiscard]] bool isFinished() const override { return isFinished_; }
    void end() {
        if (isEnding_.exchange(true)) return;
        willChangeValueForKey(kFinishedKey);
        isFinished_ = true;
        didChangeValueForKey(kFinishedKey);
    }

private:
    std::atomic<bool> isEnding_{false};
    std::atomic<bool> isFinished_{false};
};

TEST_P(OperationStress, FinishesOperationsThatAreCancelledOrEndWhileTheyAreBeingAdded) {
    constexpr std::size_t kRounds = 20'000;
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(GetParam());
    std::vector<std::shared_ptr<Endable>> operations(kRounds);
    for (auto& operation : operations) operation = std::make_shared<Endable>();
    std::atomic<std::size_t> added{0};
    std::thread interfering([&] {
        for (std::size_t i = 0; i < kRounds; ++i) {
            while (added < i) {
            }
            if (i % 2 == 0) {
                operations[i]->cancel();
            } else {
                operations[i]->end();
            }
        }
    });
    for (std::size_t i = 0; i < kRounds; ++i) {
        added = i;
        try {
            queue.addOperation(operations[i]);
        } catch (const NSException&) {
            EXPECT_TRUE(operations[i]->isFinished());
        }
        if (i % 64 == 0) queue.waitUntilAllOperationsAreFinished();
    }
    interfering.join();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(queue.operationCount(), 0U);
    for (const auto& operation : operations) {
        operation->waitUntilFinished();
        EXPECT_TRUE(operation->isFinished());
    }
}

INSTANTIATE_TEST_SUITE_P(OfWidth, OperationStress, testing::Values(1, 2, 8, -1));

}  // namespace
