// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/OperationQueueCore.h>

#include <ZORPlatform/Foundation/NSException.h>

#include <algorithm>
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

void OperationQueueCore::add(std::shared_ptr<NSOperation> operation) {
    NSOperation& added = *operation;
    auto membership = NSOperation::Membership::none;
    if (added.isExecuting() || added.isFinished() ||
        !added.membership_.compare_exchange_strong(membership, NSOperation::Membership::joining)) {
        throw NSException(u"NSInvalidArgumentException",
                          u"NSOperationQueue addOperation: the operation is executing, finished or already in a queue");
    }
    added.queue_ = shared_from_this();
    const bool isReady = added.isReady();
    // One that is ready may be over, and one that waits may be gone, as soon as the queue has it.
    const std::shared_ptr<NSOperation> waiting = isReady ? nullptr : operation;
    bool submits = false;
    {
        const std::scoped_lock lock(mutex_);
        added.retained_ = std::move(operation);
        added.previous_ = last_;
        (last_ == nullptr ? first_ : last_->next_) = &added;
        last_ = &added;
        ++count_;
        added.order_ = ++lastOrder_;
        added.place_ = NSOperation::Place::waiting;
        if (isReady) {
            enterReady(added);
            submits = takesTurn();
        }
    }
    if (submits) DispatchPool::submit(*this);
    membership = NSOperation::Membership::joining;
    if (!added.membership_.compare_exchange_strong(membership, NSOperation::Membership::joined)) {
        // It has finished in the meantime and left the rest to be done here.
        const std::shared_ptr<NSOperation> retained = remove(added);
    } else if (waiting != nullptr && waiting->isReady()) {
        makeReady(*waiting);
    }
}

void OperationQueueCore::makeReady(NSOperation& operation) {
    bool submits = false;
    {
        const std::scoped_lock lock(mutex_);
        if (operation.place_ != NSOperation::Place::waiting) return;
        enterReady(operation);
        submits = takesTurn();
    }
    if (submits) DispatchPool::submit(*this);
}

std::shared_ptr<NSOperation> OperationQueueCore::remove(NSOperation& operation) {
    std::shared_ptr<NSOperation> retained;
    bool submits = false;
    {
        const std::scoped_lock lock(mutex_);
        if (operation.place_ == NSOperation::Place::started) --running_;
        if (operation.place_ == NSOperation::Place::ready) {
            lanes_[operation.readyLane_].remove(operation);
            --readyCount_;
        }
        operation.place_ = NSOperation::Place::none;
        (operation.previous_ == nullptr ? first_ : operation.previous_->next_) = operation.next_;
        (operation.next_ == nullptr ? last_ : operation.next_->previous_) = operation.previous_;
        retained = std::move(operation.retained_);
        if (--count_ == 0) {
            ++timesEmptied_;
            emptied_.notify_all();
        }
        submits = takesTurn();
    }
    if (submits) DispatchPool::submit(*this);
    return retained;
}

std::vector<std::shared_ptr<NSOperation>> OperationQueueCore::operations() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::shared_ptr<NSOperation>> operations;
    operations.reserve(count_);
    for (const NSOperation* operation = first_; operation != nullptr; operation = operation->next_) {
        operations.push_back(operation->retained_);
    }
    return operations;
}

std::size_t OperationQueueCore::operationCount() const {
    const std::scoped_lock lock(mutex_);
    return count_;
}

void OperationQueueCore::waitUntilAllOperationsAreFinished() {
    std::unique_lock lock(mutex_);
    if (count_ == 0) return;
    const std::uint64_t before = timesEmptied_;
    lock.unlock();
    const DispatchPool::Blocking blocking;
    lock.lock();
    emptied_.wait(lock, [&] { return timesEmptied_ != before; });
    lock.unlock();
}

int OperationQueueCore::maxConcurrentOperationCount() const {
    const std::scoped_lock lock(mutex_);
    return width_;
}

void OperationQueueCore::setMaxConcurrentOperationCount(int count) {
    bool submits = false;
    {
        const std::scoped_lock lock(mutex_);
        width_ = count;
        submits = takesTurn();
    }
    if (submits) DispatchPool::submit(*this);
}

void OperationQueueCore::runTurn() noexcept {
    // Destroyed after the lock: this may be the last handle.
    std::shared_ptr<OperationQueueCore> self;
    std::unique_lock lock(mutex_);
    self = std::move(self_);
    for (std::size_t share = kOperationsInTurn; canStartOne(); --share) {
        if (share == 0) {
            const bool submits = takesTurn();
            lock.unlock();
            if (submits) DispatchPool::submit(*this);
            return;
        }
        {
            const std::shared_ptr<NSOperation> operation = startNext();
            const bool submits = takesTurn();
            lock.unlock();
            if (submits) DispatchPool::submit(*this);
            if (operation->isReady()) {
                operation->start();
            } else {
                postpone(*operation);
            }
        }
        lock.lock();
    }
}

/// Takes the first ready operation as started.
std::shared_ptr<NSOperation> OperationQueueCore::startNext() noexcept {
    for (ReadyOperations& lane : lanes_) {
        NSOperation* operation = lane.first();
        if (operation == nullptr) continue;
        lane.remove(*operation);
        --readyCount_;
        operation->place_ = NSOperation::Place::started;
        ++running_;
        return operation->retained_;
    }
    return nullptr;
}

/// An operation got a further dependency after it had been ready: it goes back to waiting.
void OperationQueueCore::postpone(NSOperation& operation) {
    {
        const std::scoped_lock lock(mutex_);
        if (operation.place_ != NSOperation::Place::started) return;
        operation.place_ = NSOperation::Place::waiting;
        --running_;
    }
    if (operation.isReady()) makeReady(operation);
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
    if (self_ != nullptr || !canStartOne()) return false;
    self_ = shared_from_this();
    return true;
}

}  // namespace ZORPlatform
