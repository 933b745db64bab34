// SPDX-License-Identifier: Apache-2.0
//
// The order in which a queue of width one starts operations, beside a slow literal model of the rules. Whatever changes
// the queue is done inside the operation that runs, so that every step has one right answer. Seeds are fixed.
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/NSOperationQueue.h>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <random>
#include <vector>

namespace {

using ZORPlatform::NSBlockOperation;
using ZORPlatform::NSOperation;
using ZORPlatform::NSOperationQueue;
using ZORPlatform::NSOperationQueuePriority;

constexpr std::array kPriorities{
    NSOperationQueuePriority::veryLow, NSOperationQueuePriority::low,      NSOperationQueuePriority::normal,
    NSOperationQueuePriority::normal,  NSOperationQueuePriority::normal,   NSOperationQueuePriority::normal,
    NSOperationQueuePriority::high,    NSOperationQueuePriority::veryHigh,
};

/// Operations by number, in the order of adding.
class Model {
public:
    struct Entry {
        NSOperationQueuePriority priority;
        std::vector<std::size_t> dependencies;
        bool isCancelled = false;
        bool isStarted = false;
        bool isFinished = false;
    };

    std::vector<Entry> entries;

    [[nodiscard]] std::size_t countOfUnfinished() const {
        std::size_t count = 0;
        for (const Entry& entry : entries) count += entry.isFinished ? 0 : 1;
        return count;
    }

    /// Ends what runs and starts the next that has something to run. Absent when there is none.
    std::optional<std::size_t> startNext() {
        for (Entry& entry : entries) entry.isFinished = entry.isStarted;
        std::optional<std::size_t> best;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (!entries[i].isStarted && isReady(entries[i]) &&
                (!best || entries[i].priority > entries[*best].priority)) {
                best = i;
            }
        }
        if (!best) return std::nullopt;
        entries[*best].isStarted = true;
        return entries[*best].isCancelled ? startNext() : best;
    }

private:
    [[nodiscard]] bool isReady(const Entry& entry) const {
        if (entry.isCancelled) return true;
        for (const std::size_t dependency : entry.dependencies) {
            if (!entries[dependency].isFinished) return false;
        }
        return true;
    }
};

/// A queue whose operations change it at random while they run, with its model.
class Script {
public:
    explicit Script(unsigned seed) : random_(seed) { queue_.setMaxConcurrentOperationCount(1); }

    void run() {
        queue_.addOperation(made());
        queue_.waitUntilAllOperationsAreFinished();
        EXPECT_EQ(model_.startNext(), std::nullopt) << "all have run that are to run";
        for (const Model::Entry& entry : model_.entries) EXPECT_TRUE(entry.isFinished);
    }

private:
    static constexpr std::size_t kMostOperations = 60;

    std::size_t below(std::size_t limit) { return random_() % limit; }

    /// An operation that the model has already.
    std::shared_ptr<NSOperation> made() {
        const std::size_t number = model_.entries.size();
        auto operation = NSBlockOperation::blockOperationWithBlock([this, number] { runs(number); });
        Model::Entry entry{kPriorities[below(kPriorities.size())], {}};
        operation->setQueuePriority(entry.priority);
        for (std::size_t left = number == 0 ? 0 : below(4); left != 0; --left) {
            const std::size_t dependency = below(number);
            if (operations_[dependency] == nullptr) continue;
            entry.dependencies.push_back(dependency);
            operation->addDependency(operations_[dependency]);
        }
        model_.entries.push_back(std::move(entry));
        operations_.push_back(operation);
        return operation;
    }

    void runs(std::size_t number) {
        EXPECT_EQ(model_.startNext(), number);
        for (std::size_t left = below(6); left != 0; --left) change();
        EXPECT_EQ(queue_.operationCount(), model_.countOfUnfinished());
    }

    void change() {
        const bool grows = operations_.size() < kMostOperations;
        switch (below(7)) {
            case 0:
            case 1:
                if (grows) queue_.addOperation(made());
                break;
            case 2:
                if (grows) addBlock();
                break;
            case 3:
                if (grows) addSeveral();
                break;
            case 4:
                cancelOne();
                break;
            case 5:
                compareOperations();
                break;
            default:
                queue_.setMaxConcurrentOperationCount(1);
        }
    }

    void addBlock() {
        const std::size_t number = model_.entries.size();
        model_.entries.push_back({NSOperationQueuePriority::normal, {}});
        operations_.push_back(nullptr);
        queue_.addOperationWithBlock([this, number] { runs(number); });
    }

    void addSeveral() {
        NSOperationQueue::Adding adding(queue_);
        for (std::size_t left = 1 + below(4); left != 0; --left) adding.addOperation(made());
        adding.finish();
    }

    void cancelOne() {
        const std::size_t number = below(operations_.size());
        if (operations_[number] == nullptr || model_.entries[number].isStarted) return;
        operations_[number]->cancel();
        model_.entries[number].isCancelled = true;
    }

    void compareOperations() {
        const std::vector<std::shared_ptr<NSOperation>> found = queue_.operations();
        ASSERT_EQ(found.size(), model_.countOfUnfinished());
        auto next = found.begin();
        for (std::size_t number = 0; number < operations_.size(); ++number) {
            if (model_.entries[number].isFinished) continue;
            // What a block is called, nobody knows before this.
            if (operations_[number] != nullptr) {
                EXPECT_EQ(*next, operations_[number]);
            }
            ++next;
        }
    }

    std::mt19937 random_;
    NSOperationQueue queue_;
    Model model_;
    std::vector<std::shared_ptr<NSOperation>> operations_;
};

TEST(OperationOrder, IsThatOfTheRulesWhateverOperationsDoToTheirQueue) {
    for (unsigned seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE(seed);
        Script(seed).run();
        if (HasFailure()) return;
    }
}

}  // namespace
