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
// Intake. Most operations are ready and of normal priority when they are added, and there is always somebody who will
// look at the queue next. Such operations only go to the intake, which has a lock of its own, so that those who add and
// those who start do not get in each other's way. They come behind all others of their priority, so a worker leaves
// them there as long as it has anything of that priority or above. Every other change begins by bringing them in.
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

/// Operations linked up in the order of appending; none is in two lists. Not guarded by itself.
class OperationList {
public:
    [[nodiscard]] NSOperation* first() const noexcept { return first_; }
    [[nodiscard]] NSOperation* last() const noexcept { return last_; }
    void append(NSOperation& operation) noexcept;
    /// Takes all of `others`.
    void append(OperationList& others) noexcept;
    void remove(NSOperation& operation) noexcept;
    void addTo(std::vector<NSOperation*>& operations) const;

private:
    NSOperation* first_ = nullptr;
    NSOperation* last_ = nullptr;
};

/// Ready operations of one priority, in the order in which they were added to the queue. Not guarded by itself.
class ReadyOperations {
public:
    [[nodiscard]] NSOperation* first() const noexcept;
    void insert(NSOperation& operation);
    /// Takes all of `others`, which were added after those that are here.
    void append(OperationList& others) noexcept { inOrder_.append(others); }
    void remove(NSOperation& operation) noexcept;
    void addTo(std::vector<NSOperation*>& operations) const;

private:
    [[nodiscard]] static bool isLater(const NSOperation* left, const NSOperation* right) noexcept;

    // Most operations become ready in the order of adding and are linked up. One that is late, since it waited for a
    // dependency while operations added after it became ready, goes to the heap.
    OperationList inOrder_;
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
    static constexpr std::size_t kCacheLine = 64;

    /// A worker with a turn, and what it is inside of.
    struct Turn {
        explicit Turn(OperationQueueCore* ofCore) noexcept : core(ofCore) {}

        OperationQueueCore* const core;
        Turn* previous = nullptr;
        Turn* next = nullptr;
        /// Written under the lock, and by the worker only.
        NSOperation* operation = nullptr;

        // The worker's own.
        bool willReturn = false;
        bool isConcluded = false;
        DispatchWork block;
        /// What has ended goes without the lock, when the next has been chosen.
        std::shared_ptr<NSOperation> over;

        // Guarded by the lock.
        bool isInBlock = false;
        std::uint64_t blockOrder = 0;
        /// Made when somebody asks for the queue's operations while the worker is inside the block.
        std::shared_ptr<NSBlockOperation> blockOperation;
    };
    /// That of the current thread.
    static thread_local Turn* turn_;

    /// What is added without anybody being told: blocks, and behind them ready operations of normal priority.
    struct Intake {
        BriefLock lock;
        /// Whether nobody is sure to look at the queue next, so that whoever adds must see to it.
        bool needsCall = true;
        /// Whether a block that is added now comes before all operations that are objects.
        bool takesBlocks = true;
        OperationList operations;
        /// Changed under the lock. Read without by workers that look out, and, exact but for what is being added, under
        /// the lock of the queue.
        std::atomic<std::size_t> count{0};
        std::uint64_t lastOrder = 0;
        std::uint64_t lastBlockOrder = 0;
        std::size_t blockCount = 0;
        WorkList blocks;
    };

    void runTurn() noexcept override;
    [[nodiscard]] bool startOperations(Turn& turn, std::unique_lock<BriefLock>& lock);
    [[nodiscard]] bool takesNext(Turn& turn, bool settles, bool& submits);
    void start(Turn& turn, std::unique_lock<BriefLock>& lock);
    void runBlock(Turn& turn, std::unique_lock<BriefLock>& lock);
    void afterStart(Turn& turn, std::unique_lock<BriefLock>& lock);
    void postpone(Turn& turn);
    [[nodiscard]] bool looksOut(Turn& turn, std::unique_lock<BriefLock>& lock);

    [[nodiscard]] static bool joins(NSOperation& operation) noexcept;
    [[nodiscard]] bool addsQuietly(std::span<std::shared_ptr<NSOperation>> operations) noexcept;
    template <class Change>
    void change(Change change);
    void bringIn() noexcept;
    [[nodiscard]] bool settle(std::shared_ptr<OperationQueueCore>& self) noexcept;
    void retain(std::shared_ptr<NSOperation> operation, std::uint64_t order) noexcept;
    void unlink(NSOperation& operation) noexcept;
    void leaveOne() noexcept;
    void makeReady(NSOperation& operation);
    void enterReady(NSOperation& operation);
    [[nodiscard]] bool isNextHere() const noexcept;
    [[nodiscard]] bool isBlockNext() const noexcept;
    void takeFirstBlock(Turn& turn) noexcept;
    void takeFirstReady(Turn& turn) noexcept;
    void makeOperationsOfBlocks();
    [[nodiscard]] std::size_t readyCount() const noexcept;
    void changeReadyCount(std::ptrdiff_t difference) noexcept;
    [[nodiscard]] bool hasRoom() const noexcept;
    [[nodiscard]] bool canStartOne() const noexcept;
    [[nodiscard]] bool takesTurn() noexcept;

    // Those who add and those who start touch lines of their own. Whoever takes both locks takes the queue's first.
    alignas(kCacheLine) Intake intake_;

    // Guarded by the queue's lock. What each choice of the next touches stands together.
    alignas(kCacheLine) mutable BriefLock lock_;
    int width_ = -1;
    /// Operations started and not finished.
    std::uint32_t running_ = 0;
    /// Workers that will look at the ready operations within a moment.
    std::uint32_t lookingOut_ = 0;
    bool isTurnDue_ = false;
    /// All but those in the intake.
    std::size_t count_ = 0;
    /// Ready operations and waiting blocks. Changed under the lock; a worker that looks out reads it without.
    std::atomic<std::size_t> readyCount_{0};
    std::size_t waitingBlocks_ = 0;

    std::array<ReadyOperations, kPriorities> lanes_;
    OperationList waiting_;
    /// Started on a worker that has gone on.
    OperationList executing_;
    Turn* firstTurn_ = nullptr;
    WorkList blocks_;
    /// Waiting and running blocks that are no objects, and the place of the last in the order of adding.
    std::size_t hiddenBlocks_ = 0;
    std::uint64_t lastBlockOrder_ = 0;
    /// Waited for.
    std::atomic<int> timesEmptied_{0};
    /// Null when there is neither an operation nor a turn due.
    std::shared_ptr<OperationQueueCore> self_;
};

}  // namespace ZORPlatform
