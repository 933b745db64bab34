// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/OperationQueueCore.h>

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

// Five lanes from veryHigh to veryLow; a value between two counts as the one nearer to normal.
std::uint8_t lane(NSOperationQueuePriority priority) noexcept {
    return static_cast<std::uint8_t>(2 - std::clamp(static_cast<int>(priority) / 4, -2, 2));
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
    NSOperation& added = *operation;
    auto membership = NSOperation::Membership::none;
    if (added.isExecuting() || added.isFinished() ||
        !added.membership_.compare_exchange_strong(membership, NSOperation::Membership::joining)) {
        throw NSException(u"NSInvalidArgumentException",
                          u"NSOperationQueue addOperation: the operation is executing, finished or already in a queue");
    }
    added.queue_ = this;
    const bool isReady = added.isReady();
    // One that is ready may be over, and one that waits may be gone, as soon as the queue has it.
    const std::shared_ptr<NSOperation> waiting = isReady ? nullptr : operation;
    std::shared_ptr<NSOperation> finished;
    bool submits = false;
    {
        const std::scoped_lock lock(lock_);
        link(std::move(operation));
        membership = NSOperation::Membership::joining;
        if (!added.membership_.compare_exchange_strong(membership, NSOperation::Membership::joined)) {
            // It has finished in the meantime and left the rest to be done here.
            finished = unlink(added);
            if (count_ == 0 && !isTurnDue_) self_.reset();
        } else if (isReady) {
            enterReady(added);
            submits = takesTurn();
        }
    }
    if (submits) DispatchPool::submit(*this);
    if (waiting != nullptr && waiting->isReady()) makeReady(*waiting);
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
        submits = readyCount_ > taken && takesTurn();
    }
    if (submits) DispatchPool::submit(*this);
}

std::vector<std::shared_ptr<NSOperation>> OperationQueueCore::operations() const {
    const std::scoped_lock lock(lock_);
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
    std::shared_ptr<NSOperation> over;
    std::unique_lock lock(lock_);
    isTurnDue_ = false;
    self = self_;
    bool submits = false;
    for (std::size_t share = kOperationsInTurn; canStartOne(); --share) {
        if (share == 0) {
            if (DispatchPool::hasReadyJobs()) {
                submits = takesTurn();
                break;
            }
            share = kOperationsInTurn;
        }
        NSOperation& operation = takeFirstReady();
        submits = takesTurn();
        lock.unlock();
        over.reset();
        if (std::exchange(submits, false)) DispatchPool::submit(*this);
        if (!operation.isReady()) {
            postpone(operation);
            lock.lock();
            continue;
        }
        starting_ = {this, &operation, false, false};
        operation.start();
        const bool isConcluded = std::exchange(starting_, {}).isConcluded;
        lock.lock();
        operation.isBeingStarted_ = false;
        if (isConcluded) {
            over = unlink(operation);
        } else if (operation.place_ == NSOperation::Place::none) {
            over = std::move(operation.retained_);
        }
    }
    if (count_ == 0 && !isTurnDue_) self_.reset();
    lock.unlock();
    if (submits) DispatchPool::submit(*this);
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
        --readyCount_;
    }
    operation.place_ = NSOperation::Place::none;
    (operation.previous_ == nullptr ? first_ : operation.previous_->next_) = operation.next_;
    (operation.next_ == nullptr ? last_ : operation.next_->previous_) = operation.previous_;
    if (--count_ == 0) {
        ++timesEmptied_;
        timesEmptied_.notify_all();
    }
    return operation.isBeingStarted_ ? nullptr : std::move(operation.retained_);
}

/// Takes the first ready operation as started. There must be one.
NSOperation& OperationQueueCore::takeFirstReady() noexcept {
    auto lane = lanes_.begin();
    while (lane->first() == nullptr) ++lane;
    NSOperation& operation = *lane->first();
    lane->remove(operation);
    --readyCount_;
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
    ++readyCount_;
}

bool OperationQueueCore::canStartOne() const noexcept {
    return readyCount_ > 0 && running_ < (width_ < 0 ? kChosenWidth : static_cast<std::size_t>(width_));
}

/// Whether the pool is to be asked for a turn, which the caller then does without the lock.
bool OperationQueueCore::takesTurn() noexcept {
    if (isTurnDue_ || !canStartOne()) return false;
    isTurnDue_ = true;
    return true;
}

}  // namespace ZORPlatform
