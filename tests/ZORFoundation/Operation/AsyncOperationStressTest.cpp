// SPDX-License-Identifier: Apache-2.0
//
// Many asynchronous operations with random dependencies and cancellations, each completed by its own thread or handed
// on to another. Seeds are fixed; what the threads make of them is not.
#include <ZORFoundation/Operation/OperationQueueExtension.h>
#include <ZORFoundation/Operation/ZORAsyncOperation.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace ZORFoundation {
namespace {

constexpr std::size_t kOperations = 2'000;
constexpr std::size_t kReach = 20;

class Counted : public ZORAsyncOperation<std::size_t> {
public:
    Counted(std::size_t index, const DispatchQueue& elsewhere) : index_(index), elsewhere_(elsewhere) {}

    void main() override {
        if (++mains != 1) ++violations;
        if (!isCancelled()) {
            for (const auto& dependency : awaited) {
                if (!dependency->isFinished()) ++violations;
            }
        }
        if (index_ % 2 == 0) {
            complete();
        } else {
            elsewhere_.async([self = std::static_pointer_cast<Counted>(shared_from_this())] { self->complete(); });
        }
    }

    std::vector<std::shared_ptr<Counted>> awaited;
    std::atomic<int> mains{0};
    std::atomic<int> completions{0};
    static inline std::atomic<int> violations{0};

private:
    void complete() { completeOperation(ZORAsyncOperationResult<std::size_t>::success(index_)); }

    const std::size_t index_;
    const DispatchQueue elsewhere_;
};

TEST(AsyncOperationStress, RunsEachAtMostOnceAfterItsDependenciesAndHandsOverItsOwnResult) {
    Counted::violations = 0;
    const DispatchQueue elsewhere = DispatchQueue::serial(u"elsewhere");
    const NSOperationQueue queue;
    queue.setMaxConcurrentOperationCount(8);
    std::mt19937 random(20'180'917);
    std::vector<std::shared_ptr<Counted>> operations;
    for (std::size_t i = 0; i < kOperations; ++i) {
        operations.push_back(std::make_shared<Counted>(i, elsewhere));
        for (std::size_t d = i == 0 ? 0 : random() % 3; d > 0; --d) {
            const auto& dependency = operations[i - 1 - random() % std::min(i, kReach)];
            operations[i]->awaited.push_back(dependency);
            operations[i]->addDependency(dependency);
        }
    }
    std::atomic<std::size_t> completed{0};
    std::thread cancelling([&operations] {
        std::mt19937 chosen(4711);
        for (std::size_t i = 0; i < kOperations / 20; ++i) operations[chosen() % kOperations]->cancel();
    });
    for (std::size_t i = 0; i < kOperations; ++i) {
        Counted& operation = *operations[i];
        operation.run(queue, [&operation, &completed, i](const ZORAsyncOperationResult<std::size_t>& result) {
            if (result.ifSuccess() == nullptr || *result.ifSuccess() != i) ++Counted::violations;
            ++operation.completions;
            ++completed;
        });
    }
    cancelling.join();
    queue.waitUntilAllOperationsAreFinished();

    std::size_t ran = 0;
    for (const auto& operation : operations) {
        EXPECT_TRUE(operation->isFinished());
        EXPECT_FALSE(operation->isExecuting());
        EXPECT_EQ(operation->result() != nullptr, operation->mains == 1);
        EXPECT_TRUE(operation->mains == 1 || operation->isCancelled());
        ran += static_cast<std::size_t>(operation->mains);
    }
    EXPECT_GE(ran, kOperations - kOperations / 20);
    while (completed < ran) std::this_thread::yield();
    for (const auto& operation : operations) EXPECT_EQ(operation->completions, operation->mains);
    EXPECT_EQ(Counted::violations, 0);
}

TEST(AsyncOperationStress, RunsALongSequenceInOrder) {
    const NSOperationQueue queue;
    std::vector<std::size_t> order;  // Unguarded: the dependencies order the accesses.
    class Noting : public ZORAsyncOperation<std::size_t> {
    public:
        Noting(std::vector<std::size_t>& order, std::size_t index) : order_(order), index_(index) {}
        void main() override {
            order_.push_back(index_);
            completeOperation(ZORAsyncOperationResult<std::size_t>::success(index_));
        }

    private:
        std::vector<std::size_t>& order_;
        const std::size_t index_;
    };
    std::vector<std::shared_ptr<NSOperation>> operations;
    std::vector<std::size_t> expected;
    for (std::size_t i = 0; i < 500; ++i) {
        operations.push_back(std::make_shared<Noting>(order, i));
        expected.push_back(i);
    }
    OperationQueueExtension::addOperations(queue, operations);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(order, expected);
}

}  // namespace
}  // namespace ZORFoundation
