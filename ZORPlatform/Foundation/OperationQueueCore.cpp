// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/OperationQueueCore.h>

#include <ZORPlatform/Dispatch/ProcessorPause.h>
#include <ZORPlatform/Foundation/NSException.h>

#include <algorithm>
#include <mutex>
#include <utility>

namespace ZORPlatform {
namespace {

// What the system chooses for a width of -1: enough for operations that wait, few enough for one thread each.
constexpr std::size_t kChosenWidth = 64;
// Operations started in one turn before jobs of other queues are let in.
constexpr std::size_t kOperationsInTurn = 64;
// A microsecond or two, less than it takes to sleep and be woken.
constexpr int kLooksBeforeRest = 24;

constexpr std::size_t kNormalLane = 2;

// Five lanes from veryHigh to veryLow; a value between two counts as the one nearer to normal.
std::uint8_t lane(NSOperationQueuePriority priority) noexcept {
    return static_cast<std::uint8_t>(static_cast<int>(kNormalLane) - std::clamp(static_cast<int>(priority) / 4, -2, 2));
}

}  // namespace

bool ReadyOperations::isLater(const NSOperation* left, const NSOperation* right) noexcept {
    return left->order_ > right->order_;
}

NSOperation* ReadyOperations::first() const noexcept {
    if (late_.empty()) return head_;
    return head_ == nullptr || isLater(head_, late_.front()) ? late_.front() : head_;
}

void ReadyOperations::insert(NSOperation& operation) {
    if (tail_ != nullptr && isLater(tail_, &operation)) {
        late_.push_back(&operation);
        std::push_heap(late_.begin(), late_.end(), isLater);
        return;
    }
    operation.previousReady_ = tail_;
    (tail_ == nullptr ? head_ : tail_->nextReady_) = &operation;
    tail_ = &operation;
}

void ReadyOperations::remove(NSOperation& operation) noexcept {
    if (!late_.empty() && late_.front() == &operation) {
        std::pop_heap(late_.begin(), late_.end(), isLater);
        late_.pop_back();
        return;
    }
    if (head_ != &operation && operation.previousReady_ == nullptr) {
        // In the middle of the heap: it finished without having been started.
        late_.erase(std::find(late_.begin(), late_.end(), &operation));
        std::make_heap(late_.begin(), late_.end(), isLater);
        return;
    }
    (operation.previousReady_ == nullptr ? head_ : operation.previousReady_->nextReady_) = operation.nextReady_;
    (operation.nextReady_ == nullptr ? tail_ : operation.nextReady_->previousReady_) = operation.previousReady_;
    operation.previousReady_ = operation.nextReady_ = nullptr;
}

constinit thread_local OperationQueueCore::Starting OperationQueueCore::starting_{};

void OperationQueueCore::add(std::shared_ptr<NSOperation> operation) {
    beginAdding(*operation);
    finishAdding({&operation, 1});
}

void OperationQueueCore::beginAdding(NSOperation& operation) {
    auto membership = NSOperation::Membership::none;
    if (operation.isExecuting() || operation.isFinished() ||
        !operation.membership_.compare_exchange_strong(membership, NSOperation::Membership::joining)) {
        throw NSException(u"NSInvalidArgumentException",
                          u"NSOperationQueue addOperation: the operation is executing, finished or already in a queue");
    }
    operation.queue_ = this;
    operation.joinsReady_ = operation.isReady();
}

void OperationQueueCore::finishAdding(std::span<std::shared_ptr<NSOperation>> operations) {
    bool submits = false;
    {
        const std::scoped_lock lock(lock_);
        bool areSomeReady = false;
        for (std::shared_ptr<NSOperation>& operation : operations) {
            NSOperation& added = *operation;
            const bool isReady = added.joinsReady_;
            // One that is ready may be over, and one that waits may be gone, as soon as the queue has it.
            link(isReady ? std::move(operation) : operation);
            auto membership = NSOperation::Membership::joining;
            if (!added.membership_.compare_exchange_strong(membership, NSOperation::Membership::joined)) {
                // It has finished in the meantime and left the rest to be done here.
                operation = unlink(added);
                if (count_ == 0 && !isTurnDue_) self_.reset();
            } else if (isReady) {
                enterReady(added);
                areSomeReady = true;
            }
        }
        submits = areSomeReady && takesTurn();
    }
    if (submits) DispatchPool::submit(*this);
    for (const std::shared_ptr<NSOperation>& operation : operations) {
        if (operation != nullptr && operation->isReady()) makeReady(*operation);
    }
}

bool OperationQueueCore::hasObservers(const NSOperation& operation) noexcept { return operation.isObserved(); }

void OperationQueueCore::addBlock(DispatchWork block) {
    std::unique_lock lock(lock_);
    if (first_ != nullptr) {
        lock.unlock();
        return add(NSBlockOperation::blockOperationWithBlock(std::move(block)));
    }
    blocks_.append(std::move(block));
    if (self_ == nullptr) self_ = shared_from_this();
    ++waitingBlocks_;
    ++hiddenBlocks_;
    changeReadyCount(1);
    ++count_;
    lastBlockOrder_ = ++lastOrder_;
    const bool submits = takesTurn();
    lock.unlock();
    if (submits) DispatchPool::submit(*this);
}

void OperationQueueCore::becameReady(NSOperation& operation) {
    OperationQueueCore* core = nullptr;
    std::shared_ptr<OperationQueueCore> kept;
    {
        const std::scoped_lock lock(operation.lock_);
        // While joining, the queue looks at the property itself.
        if (operation.membership_ != NSOperation::Membership::joined) return;
        core = operation.queue_;
        if (core != starting_.core) kept = core->shared_from_this();
    }
    core->makeReady(operation);
}

void OperationQueueCore::willReturnFromStart(const NSOperation& operation) noexcept {
    if (starting_.operation == &operation) starting_.willReturn = true;
}

bool OperationQueueCore::isRemovedByTurn(const NSOperation& operation) noexcept {
    if (starting_.operation == &operation && starting_.willReturn) starting_.isConcluded = true;
    return starting_.operation == &operation && starting_.isConcluded;
}

std::shared_ptr<NSOperation> OperationQueueCore::remove(NSOperation& operation) {
    // Destroyed after the lock: this may be the last that holds the core.
    std::shared_ptr<OperationQueueCore> self;
    std::shared_ptr<NSOperation> retained;
    bool submits = false;
    {
        const std::scoped_lock lock(lock_);
        retained = unlink(operation);
        submits = takesTurn();
        if (count_ == 0 && !isTurnDue_) self = std::move(self_);
    }
    if (submits) DispatchPool::submit(*this);
    return retained;
}

void OperationQueueCore::makeReady(NSOperation& operation) {
    bool submits = false;
    {
        const std::scoped_lock lock(lock_);
        if (operation.place_ != NSOperation::Place::waiting) return;
        enterReady(operation);
        // A worker that is about to return from a `start` of this queue takes one itself.
        const std::size_t taken = starting_.core == this && starting_.isConcluded ? 1 : 0;
        submits = readyCount() > taken && takesTurn();
    }
    if (submits) DispatchPool::submit(*this);
}

std::vector<std::shared_ptr<NSOperation>> OperationQueueCore::operations() {
    const std::scoped_lock lock(lock_);
    makeOperationsOfBlocks();
    std::vector<std::shared_ptr<NSOperation>> operations;
    operations.reserve(count_);
    for (const NSOperation* operation = first_; operation != nullptr; operation = operation->next_) {
        operations.push_back(operation->retained_);
    }
    return operations;
}

std::size_t OperationQueueCore::operationCount() const {
    const std::scoped_lock lock(lock_);
    return count_;
}

void OperationQueueCore::waitUntilAllOperationsAreFinished() {
    int before = 0;
    {
        const std::scoped_lock lock(lock_);
        if (count_ == 0) return;
        before = timesEmptied_;
    }
    const DispatchPool::Blocking blocking;
    timesEmptied_.wait(before);
}

int OperationQueueCore::maxConcurrentOperationCount() const {
    const std::scoped_lock lock(lock_);
    return width_;
}

void OperationQueueCore::setMaxConcurrentOperationCount(int count) {
    bool submits = false;
    {
        const std::scoped_lock lock(lock_);
        width_ = count;
        submits = takesTurn();
    }
    if (submits) DispatchPool::submit(*this);
}

void OperationQueueCore::runTurn() noexcept {
    // Destroyed after the lock: this may be the last that holds the core.
    std::shared_ptr<OperationQueueCore> self;
    std::unique_lock lock(lock_);
    isTurnDue_ = false;
    self = self_;
    bool hasHadShare = false;
    do {
        hasHadShare = !startOperations(lock);
    } while (!hasHadShare && looksOut(lock));
    const bool submits = hasHadShare && takesTurn();
    if (count_ == 0 && !isTurnDue_) {
        blocks_.trim();
        self_.reset();
    }
    lock.unlock();
    if (submits) DispatchPool::submit(*this);
}

/// Starts operations until none can be started. @return false when other jobs are to be let in before that
bool OperationQueueCore::startOperations(std::unique_lock<BriefLock>& lock) {
    // What has ended goes without the lock, when the next has been chosen.
    std::shared_ptr<NSOperation> over;
    std::size_t share = kOperationsInTurn;
    for (; canStartOne(); --share) {
        if (share == 0) {
            if (DispatchPool::hasReadyJobs()) break;
            share = kOperationsInTurn;
        }
        over = isBlockNext() ? runFirstBlock(lock, std::move(over)) : startFirstReady(lock, std::move(over));
    }
    if (over != nullptr) {
        lock.unlock();
        over.reset();
        lock.lock();
    }
    return share > 0;
}

std::shared_ptr<NSOperation> OperationQueueCore::startFirstReady(std::unique_lock<BriefLock>& lock,
                                                                 std::shared_ptr<NSOperation> over) {
    NSOperation& operation = takeFirstReady();
    const bool submits = takesTurn();
    lock.unlock();
    over.reset();
    if (submits) DispatchPool::submit(*this);
    if (!operation.isReady()) {
        postpone(operation);
        lock.lock();
        return nullptr;
    }
    starting_ = {this, &operation, false, false};
    operation.start();
    return afterStart(operation, lock);
}

std::shared_ptr<NSOperation> OperationQueueCore::runFirstBlock(std::unique_lock<BriefLock>& lock,
                                                               std::shared_ptr<NSOperation> over) {
    RunningBlock running{blocks_.takeFirst(), nullptr, lastRunning_, nullptr};
    (lastRunning_ == nullptr ? firstRunning_ : lastRunning_->next) = &running;
    lastRunning_ = &running;
    --waitingBlocks_;
    changeReadyCount(-1);
    ++running_;
    const bool submits = takesTurn();
    lock.unlock();
    over.reset();
    if (submits) DispatchPool::submit(*this);
    running.work();
    running.work = nullptr;
    lock.lock();
    (running.previous == nullptr ? firstRunning_ : running.previous->next) = running.next;
    (running.next == nullptr ? lastRunning_ : running.next->previous) = running.previous;
    if (running.operation == nullptr) {
        --running_;
        --hiddenBlocks_;
        leaveOne();
        return nullptr;
    }
    lock.unlock();
    starting_ = {this, running.operation.get(), false, false};
    running.operation->announceEnd();
    return afterStart(*running.operation, lock);
}

/// Takes the lock again. @return what retained the operation, if that is over
std::shared_ptr<NSOperation> OperationQueueCore::afterStart(NSOperation& operation, std::unique_lock<BriefLock>& lock) {
    const bool isConcluded = std::exchange(starting_, {}).isConcluded;
    lock.lock();
    operation.isBeingStarted_ = false;
    if (isConcluded) return unlink(operation);
    return operation.place_ == NSOperation::Place::none ? std::move(operation.retained_) : nullptr;
}

std::size_t OperationQueueCore::readyCount() const noexcept { return readyCount_.load(std::memory_order_relaxed); }

void OperationQueueCore::changeReadyCount(std::ptrdiff_t difference) noexcept {
    readyCount_.store(readyCount() + static_cast<std::size_t>(difference), std::memory_order_relaxed);
}

/// Waits a moment for further operations. @return whether one can be started
bool OperationQueueCore::looksOut(std::unique_lock<BriefLock>& lock) noexcept {
    ++lookingOut_;
    lock.unlock();
    for (int look = 0; look < kLooksBeforeRest && readyCount() == 0 && !DispatchPool::hasReadyJobs(); ++look) {
        pauseProcessor();
    }
    lock.lock();
    --lookingOut_;
    return canStartOne();
}

void OperationQueueCore::link(std::shared_ptr<NSOperation> operation) noexcept {
    if (self_ == nullptr) self_ = shared_from_this();
    NSOperation& linked = *operation;
    linked.previous_ = last_;
    (last_ == nullptr ? first_ : last_->next_) = &linked;
    last_ = &linked;
    ++count_;
    linked.order_ = ++lastOrder_;
    linked.place_ = NSOperation::Place::waiting;
    linked.retained_ = std::move(operation);
}

std::shared_ptr<NSOperation> OperationQueueCore::unlink(NSOperation& operation) noexcept {
    if (operation.place_ == NSOperation::Place::started) --running_;
    if (operation.place_ == NSOperation::Place::ready) {
        lanes_[operation.readyLane_].remove(operation);
        changeReadyCount(-1);
    }
    operation.place_ = NSOperation::Place::none;
    (operation.previous_ == nullptr ? first_ : operation.previous_->next_) = operation.next_;
    (operation.next_ == nullptr ? last_ : operation.next_->previous_) = operation.previous_;
    leaveOne();
    return operation.isBeingStarted_ ? nullptr : std::move(operation.retained_);
}

void OperationQueueCore::leaveOne() noexcept {
    if (--count_ > 0) return;
    ++timesEmptied_;
    timesEmptied_.notify_all();
}

/// Whether the next to start is a block: there is one, and no ready operation of higher priority.
bool OperationQueueCore::isBlockNext() const noexcept {
    return waitingBlocks_ > 0 && std::none_of(lanes_.begin(), lanes_.begin() + kNormalLane,
                                              [](const ReadyOperations& lane) { return lane.first() != nullptr; });
}

/// Makes objects of all blocks, in their places before the operations that are objects already.
void OperationQueueCore::makeOperationsOfBlocks() {
    if (hiddenBlocks_ == 0) return;
    std::vector<std::shared_ptr<NSBlockOperation>> made(hiddenBlocks_);
    for (auto& operation : made) operation = std::make_shared<NSBlockOperation>();

    NSOperation* const firstObject = std::exchange(first_, nullptr);
    NSOperation* const lastObject = std::exchange(last_, nullptr);
    const std::uint64_t lastOrder = std::exchange(lastOrder_, lastBlockOrder_ - hiddenBlocks_);
    count_ -= hiddenBlocks_;
    changeReadyCount(-static_cast<std::ptrdiff_t>(waitingBlocks_));
    auto next = made.begin();
    for (RunningBlock* running = firstRunning_; running != nullptr; running = running->next) {
        if (running->operation != nullptr) continue;
        running->operation = *next++;
        NSOperation& operation = *running->operation;
        operation.joinAsExecuting(*this);
        link(running->operation);
        operation.place_ = NSOperation::Place::started;
        operation.isBeingStarted_ = true;
    }
    for (; next != made.end(); ++next) {
        NSOperation& operation = **next;
        (*next)->addExecutionBlock(blocks_.takeFirst());
        operation.queue_ = this;
        operation.membership_.store(NSOperation::Membership::joined, std::memory_order_release);
        link(*next);
        enterReady(operation);
    }
    waitingBlocks_ = hiddenBlocks_ = 0;
    lastOrder_ = lastOrder;
    if (firstObject != nullptr) {
        firstObject->previous_ = last_;
        last_->next_ = firstObject;
        last_ = lastObject;
    }
}

/// Takes the first ready operation as started. There must be one.
NSOperation& OperationQueueCore::takeFirstReady() noexcept {
    auto lane = lanes_.begin();
    while (lane->first() == nullptr) ++lane;
    NSOperation& operation = *lane->first();
    lane->remove(operation);
    changeReadyCount(-1);
    operation.place_ = NSOperation::Place::started;
    operation.isBeingStarted_ = true;
    ++running_;
    return operation;
}

/// An operation got a further dependency after it had been ready: it goes back to waiting.
void OperationQueueCore::postpone(NSOperation& operation) {
    std::shared_ptr<NSOperation> kept;
    {
        const std::scoped_lock lock(lock_);
        operation.isBeingStarted_ = false;
        if (operation.place_ != NSOperation::Place::started) {
            kept = std::move(operation.retained_);
            return;
        }
        operation.place_ = NSOperation::Place::waiting;
        --running_;
        kept = operation.retained_;
    }
    if (kept->isReady()) makeReady(*kept);
}

void OperationQueueCore::enterReady(NSOperation& operation) {
    operation.readyLane_ = lane(operation.queuePriority());
    lanes_[operation.readyLane_].insert(operation);
    operation.place_ = NSOperation::Place::ready;
    changeReadyCount(1);
}

bool OperationQueueCore::canStartOne() const noexcept {
    return readyCount() > 0 && running_ < (width_ < 0 ? kChosenWidth : static_cast<std::size_t>(width_));
}

/// Whether the pool is to be asked for a turn, which the caller then does without the lock.
bool OperationQueueCore::takesTurn() noexcept {
    if (isTurnDue_ || !canStartOne() || readyCount() <= lookingOut_) return false;
    isTurnDue_ = true;
    return true;
}

}  // namespace ZORPlatform
