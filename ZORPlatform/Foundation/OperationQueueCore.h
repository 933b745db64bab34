// SPDX-License-Identifier: Apache-2.0
#pragma once

// What stands behind the handles of an operation queue: which operations it has, which of them are ready, and who
// starts the next.
//
// The queue is a job of the pool of threads. It asks for a turn when there is a ready operation and room under its
// width; a worker with a turn starts operations one after the other until there is neither, and asks for a further
// turn while it still sees both, so that as many workers join as there is work for. An operation that is finished
// makes room from whatever thread announces it; only when that is the worker itself, at the very end of `start`, is it
// taken out together with the choice of the next.
//
// Blocks. A block that was added as such is an operation which nobody can see before somebody asks for the queue's
// operations, so until then it is kept as a work alone. All of these stand before all operations that are objects: a
// block that is added behind one of those becomes an object at once.
//
// Lifetime. The core holds itself while it has operations or a turn is due.

#include <ZORPlatform/Dispatch/BriefLock.h>
#include <ZORPlatform/Dispatch/DispatchPool.h>
#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Dispatch/WorkList.h>
#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/NSOperation.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

namespace ZORPlatform {

/// Ready operations of one priority, in the order in which they were added to the queue. Not guarded by itself.
class ReadyOperations {
public:
    [[nodiscard]] NSOperation* first() const noexcept;
    void insert(NSOperation& operation);
    void remove(NSOperation& operation) noexcept;

private:
    [[nodiscard]] static bool isLater(const NSOperation* left, const NSOperation* right) noexcept;

    // Most operations become ready in the order of adding and are linked up. One that is late, since it waited for a
    // dependency while operations added after it became ready, goes to the heap.
    NSOperation* head_ = nullptr;
    NSOperation* tail_ = nullptr;
    std::vector<NSOperation*> late_;
};

/// Thread-safe. Calls nothing of the caller's with the lock held.
class OperationQueueCore final : public PoolJob, public std::enable_shared_from_this<OperationQueueCore> {
public:
    /// Raises the exception of `addOperation`.
    void add(std::shared_ptr<NSOperation> operation);
    /// The first half of `add`, with its exception: from now on no queue but this takes the operation.
    void beginAdding(NSOperation& operation);
    /// The second half, for several under one lock. Takes the handles of those that may be over.
    void finishAdding(std::span<std::shared_ptr<NSOperation>> operations);

    /// Whether somebody may be told of changes of the operation.
    [[nodiscard]] static bool hasObservers(const NSOperation& operation) noexcept;

    /// Adds an operation of one block, which must not be empty.
    void addBlock(DispatchWork block);

    /// An operation is ready. If it waits in a queue, it may start from now on.
    static void becameReady(NSOperation& operation);

    /// The operation of this turn, if it is one, will do nothing more after it has announced its end.
    static void willReturnFromStart(const NSOperation& operation) noexcept;
    /// The operation is over, and the current thread is about to return from its `start` to the queue's turn, which
    /// will remove it. @return false when nothing of the kind holds, so that it is to be removed here
    [[nodiscard]] static bool isRemovedByTurn(const NSOperation& operation) noexcept;
    /// The operation is over. @return what retained it; null while a turn is inside its `start`
    [[nodiscard]] std::shared_ptr<NSOperation> remove(NSOperation& operation);

    [[nodiscard]] std::vector<std::shared_ptr<NSOperation>> operations();
    [[nodiscard]] std::size_t operationCount() const;
    void waitUntilAllOperationsAreFinished();

    [[nodiscard]] int maxConcurrentOperationCount() const;
    void setMaxConcurrentOperationCount(int count);

private:
    static constexpr std::size_t kPriorities = 5;

    /// What a worker with a turn is starting.
    struct Starting {
        OperationQueueCore* core;
        const NSOperation* operation;
        bool willReturn;
        bool isConcluded;
    };
    static thread_local Starting starting_;

    /// A block that a worker is inside of.
    struct RunningBlock {
        DispatchWork work;
        /// Made when somebody asks for the queue's operations meanwhile.
        std::shared_ptr<NSBlockOperation> operation;
        RunningBlock* previous;
        RunningBlock* next;
    };

    void runTurn() noexcept override;
    [[nodiscard]] bool startOperations(std::unique_lock<BriefLock>& lock);
    [[nodiscard]] std::shared_ptr<NSOperation> startFirstReady(std::unique_lock<BriefLock>& lock,
                                                               std::shared_ptr<NSOperation> over);
    [[nodiscard]] std::shared_ptr<NSOperation> runFirstBlock(std::unique_lock<BriefLock>& lock,
                                                             std::shared_ptr<NSOperation> over);
    [[nodiscard]] std::shared_ptr<NSOperation> afterStart(NSOperation& operation, std::unique_lock<BriefLock>& lock);
    [[nodiscard]] std::size_t readyCount() const noexcept;
    void changeReadyCount(std::ptrdiff_t difference) noexcept;
    [[nodiscard]] bool looksOut(std::unique_lock<BriefLock>& lock) noexcept;
    void link(std::shared_ptr<NSOperation> operation) noexcept;
    [[nodiscard]] std::shared_ptr<NSOperation> unlink(NSOperation& operation) noexcept;
    void leaveOne() noexcept;
    void makeReady(NSOperation& operation);
    [[nodiscard]] bool isBlockNext() const noexcept;
    void makeOperationsOfBlocks();
    void enterReady(NSOperation& operation);
    [[nodiscard]] NSOperation& takeFirstReady() noexcept;
    void postpone(NSOperation& operation);
    [[nodiscard]] bool canStartOne() const noexcept;
    [[nodiscard]] bool takesTurn() noexcept;

    mutable BriefLock lock_;
    NSOperation* first_ = nullptr;
    NSOperation* last_ = nullptr;
    std::size_t count_ = 0;
    /// Waited for.
    std::atomic<int> timesEmptied_{0};
    std::uint64_t lastOrder_ = 0;
    std::array<ReadyOperations, kPriorities> lanes_;
    WorkList blocks_;
    std::size_t waitingBlocks_ = 0;
    RunningBlock* firstRunning_ = nullptr;
    RunningBlock* lastRunning_ = nullptr;
    /// Waiting and running blocks that are no objects, and the place of the last in the order of adding.
    std::size_t hiddenBlocks_ = 0;
    std::uint64_t lastBlockOrder_ = 0;
    /// Ready operations and waiting blocks. Changed under the lock; a worker that looks out reads it without.
    std::atomic<std::size_t> readyCount_{0};
    /// Operations started and not finished.
    std::size_t running_ = 0;
    int width_ = -1;
    /// Workers that will look at the ready operations within a moment.
    std::size_t lookingOut_ = 0;
    bool isTurnDue_ = false;
    /// Null when there is neither an operation nor a turn due.
    std::shared_ptr<OperationQueueCore> self_;
};

}  // namespace ZORPlatform
