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

void OperationList::append(NSOperation& operation) noexcept {
    operation.previous_ = last_;
    (last_ == nullptr ? first_ : last_->next_) = &operation;
    last_ = &operation;
}

void OperationList::append(OperationList& others) noexcept {
    if (others.first_ == nullptr) return;
    others.first_->previous_ = last_;
    (last_ == nullptr ? first_ : last_->next_) = others.first_;
    last_ = others.last_;
    others.first_ = others.last_ = nullptr;
}

void OperationList::remove(NSOperation& operation) noexcept {
    (operation.previous_ == nullptr ? first_ : operation.previous_->next_) = operation.next_;
    (operation.next_ == nullptr ? last_ : operation.next_->previous_) = operation.previous_;
    operation.previous_ = operation.next_ = nullptr;
}

void OperationList::addTo(std::vector<NSOperation*>& operations) const {
    for (NSOperation* operation = first_; operation != nullptr; operation = operation->next_) {
        operations.push_back(operation);
    }
}

bool ReadyOperations::isLater(const NSOperation* left, const NSOperation* right) noexcept {
    return left->order_ > right->order_;
}

NSOperation* ReadyOperations::first() const noexcept {
    NSOperation* const first = inOrder_.first();
    if (late_.empty()) return first;
    return first == nullptr || isLater(first, late_.front()) ? late_.front() : first;
}

void ReadyOperations::insert(NSOperation& operation) {
    if (inOrder_.last() == nullptr || isLater(&operation, inOrder_.last())) return inOrder_.append(operation);
    late_.push_back(&operation);
    std::push_heap(late_.begin(), late_.end(), isLater);
}

void ReadyOperations::remove(NSOperation& operation) noexcept {
    if (!late_.empty() && late_.front() == &operation) {
        std::pop_heap(late_.begin(), late_.end(), isLater);
        late_.pop_back();
    } else if (inOrder_.first() != &operation && operation.previous_ == nullptr) {
        // In the middle of the heap: it finished without having been started.
        late_.erase(std::find(late_.begin(), late_.end(), &operation));
        std::make_heap(late_.begin(), late_.end(), isLater);
    } else {
        inOrder_.remove(operation);
    }
}

void ReadyOperations::addTo(std::vector<NSOperation*>& operations) const {
    inOrder_.addTo(operations);
    operations.insert(operations.end(), late_.begin(), late_.end());
}

constinit thread_local OperationQueueCore::Turn* OperationQueueCore::turn_ = nullptr;

/// Runs `change` under both locks, with everything brought in, and sees to what follows from it.
template <class Change>
void OperationQueueCore::change(Change change) {
    // Destroyed after the locks: this may be the last that holds the core.
    std::shared_ptr<OperationQueueCore> self;
    bool submits = false;
    {
        const std::scoped_lock lock(lock_);
        const std::scoped_lock intakeLock(intake_.lock);
        bringIn();
        change();
        submits = settle(self);
    }
    if (submits) DispatchPool::submit(*this);
}

/// With both locks.
void OperationQueueCore::bringIn() noexcept {
    const std::size_t count = intake_.count.load(std::memory_order_relaxed);
    if (count == 0) return;
    intake_.count.store(0, std::memory_order_relaxed);
    if (intake_.blockCount > 0) {
        blocks_.append(intake_.blocks);
        waitingBlocks_ += intake_.blockCount;
        hiddenBlocks_ += std::exchange(intake_.blockCount, 0);
        lastBlockOrder_ = intake_.lastBlockOrder;
    }
    lanes_[kNormalLane].append(intake_.operations);
    count_ += count;
    changeReadyCount(static_cast<std::ptrdiff_t>(count));
}

/// With both locks, at the end of a change: who comes next, and who is to call for that.
///
/// @param self  gets what held the core, once there is no more reason to
/// @return whether the pool is to be asked for a turn, which the caller then does without the locks
bool OperationQueueCore::settle(std::shared_ptr<OperationQueueCore>& self) noexcept {
    const bool submits = takesTurn();
    if (count_ > 0) {
        if (self_ == nullptr) self_ = shared_from_this();
    } else if (!isTurnDue_) {
        self = std::move(self_);
    }
    intake_.takesBlocks = count_ == hiddenBlocks_;
    // Without room, whoever makes some looks at the queue.
    intake_.needsCall = self_ == nullptr || !(isTurnDue_ || lookingOut_ > 0 || !hasRoom());
    return submits;
}

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

/// With the lock under which the operation is retained. @return false when it has finished in the meantime
bool OperationQueueCore::joins(NSOperation& operation) noexcept {
    auto membership = NSOperation::Membership::joining;
    return operation.membership_.compare_exchange_strong(membership, NSOperation::Membership::joined);
}

void OperationQueueCore::finishAdding(std::span<std::shared_ptr<NSOperation>> operations) {
    if (addsQuietly(operations)) return;
    change([&] {
        for (std::shared_ptr<NSOperation>& operation : operations) {
            if (operation == nullptr || !joins(*operation)) continue;
            NSOperation& added = *operation;
            const bool isReady = added.joinsReady_;
            // One that is ready may be over, and one that waits may be gone, as soon as the queue has it.
            retain(isReady ? std::move(operation) : operation, ++intake_.lastOrder);
            ++count_;
            if (isReady) {
                enterReady(added);
            } else {
                added.place_ = NSOperation::Place::waiting;
                waiting_.append(added);
            }
        }
    });
    for (const std::shared_ptr<NSOperation>& operation : operations) {
        if (operation != nullptr && operation->isReady()) makeReady(*operation);
    }
}

/// Puts operations in the intake, if they may all go there, and takes their handles. @return false when the queue is to
/// be told of what is in the intake, or of operations that are left
bool OperationQueueCore::addsQuietly(std::span<std::shared_ptr<NSOperation>> operations) noexcept {
    const auto isPlain = [](const std::shared_ptr<NSOperation>& operation) {
        return operation->joinsReady_ && lane(operation->queuePriority()) == kNormalLane;
    };
    if (!std::all_of(operations.begin(), operations.end(), isPlain)) return false;
    const std::scoped_lock lock(intake_.lock);
    std::size_t count = 0;
    for (std::shared_ptr<NSOperation>& operation : operations) {
        NSOperation& added = *operation;
        // Complete before it joins: who then hears that it is ready looks at its place under the other lock.
        retain(std::move(operation), ++intake_.lastOrder);
        added.readyLane_ = kNormalLane;
        added.place_ = NSOperation::Place::ready;
        if (!joins(added)) {
            added.place_ = NSOperation::Place::none;
            operation = std::move(added.retained_);
            continue;
        }
        intake_.operations.append(added);
        ++count;
    }
    intake_.takesBlocks = intake_.takesBlocks && count == 0;
    intake_.count.store(intake_.count.load(std::memory_order_relaxed) + count, std::memory_order_relaxed);
    return !intake_.needsCall;
}

bool OperationQueueCore::hasObservers(const NSOperation& operation) noexcept { return operation.isObserved(); }

void OperationQueueCore::addBlock(DispatchWork block) {
    {
        std::unique_lock lock(intake_.lock);
        if (!intake_.takesBlocks) {
            lock.unlock();
            return add(NSBlockOperation::blockOperationWithBlock(std::move(block)));
        }
        intake_.blocks.append(std::move(block));
        ++intake_.blockCount;
        intake_.count.store(intake_.count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        intake_.lastBlockOrder = ++intake_.lastOrder;
        if (!intake_.needsCall) return;
    }
    change([] {});
}

void OperationQueueCore::becameReady(NSOperation& operation) {
    OperationQueueCore* core = nullptr;
    std::shared_ptr<OperationQueueCore> kept;
    {
        const std::scoped_lock lock(operation.lock_);
        // While joining, the queue looks at the property itself.
        if (operation.membership_ != NSOperation::Membership::joined) return;
        core = operation.queue_;
        if (turn_ == nullptr || core != turn_->core) kept = core->shared_from_this();
    }
    core->makeReady(operation);
}

void OperationQueueCore::willReturnFromStart(const NSOperation& operation) noexcept {
    if (turn_ != nullptr && turn_->operation == &operation) turn_->willReturn = true;
}

bool OperationQueueCore::isRemovedByTurn(const NSOperation& operation) noexcept {
    if (turn_ == nullptr || turn_->operation != &operation) return false;
    turn_->isConcluded = turn_->isConcluded || turn_->willReturn;
    return turn_->isConcluded;
}

std::shared_ptr<NSOperation> OperationQueueCore::remove(NSOperation& operation) {
    std::shared_ptr<NSOperation> retained;
    change([&] {
        unlink(operation);
        if (!operation.isBeingStarted_) retained = std::move(operation.retained_);
    });
    return retained;
}

void OperationQueueCore::makeReady(NSOperation& operation) {
    bool submits = false;
    {
        // What is in the intake does not matter: it does not wait, and comes later.
        const std::scoped_lock lock(lock_);
        if (operation.place_ != NSOperation::Place::waiting) return;
        waiting_.remove(operation);
        enterReady(operation);
        submits = takesTurn();
    }
    if (submits) DispatchPool::submit(*this);
}

std::vector<std::shared_ptr<NSOperation>> OperationQueueCore::operations() {
    const std::scoped_lock lock(lock_);
    const std::scoped_lock intakeLock(intake_.lock);
    bringIn();
    makeOperationsOfBlocks();
    std::vector<NSOperation*> found;
    found.reserve(count_);
    for (const Turn* turn = firstTurn_; turn != nullptr; turn = turn->next) {
        NSOperation* const operation = turn->blockOperation != nullptr ? turn->blockOperation.get() : turn->operation;
        if (operation != nullptr && operation->place_ == NSOperation::Place::started) found.push_back(operation);
    }
    executing_.addTo(found);
    for (const ReadyOperations& lane : lanes_) lane.addTo(found);
    waiting_.addTo(found);
    std::sort(found.begin(), found.end(),
              [](const NSOperation* left, const NSOperation* right) { return left->order_ < right->order_; });
    std::vector<std::shared_ptr<NSOperation>> operations;
    operations.reserve(found.size());
    for (const NSOperation* operation : found) operations.push_back(operation->retained_);
    return operations;
}

std::size_t OperationQueueCore::operationCount() const {
    const std::scoped_lock lock(lock_);
    return count_ + intake_.count.load(std::memory_order_relaxed);
}

void OperationQueueCore::waitUntilAllOperationsAreFinished() {
    int before = 0;
    {
        const std::scoped_lock lock(lock_);
        if (count_ + intake_.count.load(std::memory_order_relaxed) == 0) return;
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
    change([&] { width_ = count; });
}

void OperationQueueCore::runTurn() noexcept {
    Turn turn(this);
    turn_ = &turn;
    std::shared_ptr<OperationQueueCore> self;
    std::unique_lock lock(lock_);
    isTurnDue_ = false;
    self = self_;
    turn.next = firstTurn_;
    if (firstTurn_ != nullptr) firstTurn_->previous = &turn;
    firstTurn_ = &turn;
    bool goesOn = true;
    while (goesOn) goesOn = startOperations(turn, lock) && looksOut(turn, lock);
    lock.unlock();
    turn_ = nullptr;
    change([&] {
        (turn.previous == nullptr ? firstTurn_ : turn.previous->next) = turn.next;
        if (turn.next != nullptr) turn.next->previous = turn.previous;
        if (count_ > 0) return;
        blocks_.trim();
        intake_.blocks.trim();
    });
}

/// Starts operations until none can be started. @return false when other jobs are to be let in before that
bool OperationQueueCore::startOperations(Turn& turn, std::unique_lock<BriefLock>& lock) {
    std::size_t share = kOperationsInTurn;
    bool submits = false;
    for (bool settles = true; takesNext(turn, settles, submits); settles = false) {
        lock.unlock();
        turn.over.reset();
        if (submits) DispatchPool::submit(*this);
        if (turn.operation == nullptr) {
            runBlock(turn, lock);
        } else {
            start(turn, lock);
        }
        if (--share > 0) continue;
        if (DispatchPool::hasReadyJobs()) return false;
        share = kOperationsInTurn;
    }
    return true;
}

/// Takes what is to be started next, if anything is.
///
/// @param settles  whether more has changed since the queue was settled than that one has ended
bool OperationQueueCore::takesNext(Turn& turn, bool settles, bool& submits) {
    const auto take = [&] {
        if (!canStartOne()) return false;
        if (isBlockNext()) {
            takeFirstBlock(turn);
        } else {
            takeFirstReady(turn);
        }
        return true;
    };
    if (!settles && isNextHere() && take()) {
        submits = takesTurn();
        return true;
    }
    // The turn holds the core, too.
    std::shared_ptr<OperationQueueCore> self;
    const std::scoped_lock intakeLock(intake_.lock);
    bringIn();
    const bool isTaken = take();
    submits = settle(self);
    return isTaken;
}

/// Takes the lock again, as the next two do.
void OperationQueueCore::start(Turn& turn, std::unique_lock<BriefLock>& lock) {
    if (turn.operation->isReady()) {
        turn.operation->start();
        afterStart(turn, lock);
    } else {
        postpone(turn);
        lock.lock();
    }
}

void OperationQueueCore::runBlock(Turn& turn, std::unique_lock<BriefLock>& lock) {
    turn.block();
    turn.block = nullptr;
    lock.lock();
    turn.isInBlock = false;
    if (turn.blockOperation != nullptr) {
        turn.operation = turn.blockOperation.get();
        lock.unlock();
        turn.operation->announceEnd();
        afterStart(turn, lock);
    } else {
        --running_;
        --hiddenBlocks_;
        leaveOne();
    }
}

void OperationQueueCore::afterStart(Turn& turn, std::unique_lock<BriefLock>& lock) {
    lock.lock();
    NSOperation& operation = *std::exchange(turn.operation, nullptr);
    turn.willReturn = false;
    if (std::exchange(turn.isConcluded, false)) unlink(operation);
    operation.isBeingStarted_ = false;
    if (operation.place_ == NSOperation::Place::none) {
        turn.over = std::move(operation.retained_);
    } else {
        executing_.append(operation);
    }
    // Not the last handle.
    turn.blockOperation.reset();
}

std::size_t OperationQueueCore::readyCount() const noexcept { return readyCount_.load(std::memory_order_relaxed); }

void OperationQueueCore::changeReadyCount(std::ptrdiff_t difference) noexcept {
    readyCount_.store(readyCount() + static_cast<std::size_t>(difference), std::memory_order_relaxed);
}

/// Waits a moment for further operations. @return whether one may be started
bool OperationQueueCore::looksOut(Turn& turn, std::unique_lock<BriefLock>& lock) {
    std::shared_ptr<OperationQueueCore> self;
    bool submits = false;
    {
        const std::scoped_lock intakeLock(intake_.lock);
        bringIn();
        ++lookingOut_;
        submits = settle(self);
    }
    lock.unlock();
    turn.over.reset();
    if (submits) DispatchPool::submit(*this);
    const auto hasComeIn = [this] { return readyCount() + intake_.count.load(std::memory_order_relaxed) > 0; };
    for (int look = 0; look < kLooksBeforeRest && !hasComeIn() && !DispatchPool::hasReadyJobs(); ++look) {
        pauseProcessor();
    }
    lock.lock();
    --lookingOut_;
    return hasRoom() && hasComeIn();
}

/// Makes an operation the queue's, in no list yet.
void OperationQueueCore::retain(std::shared_ptr<NSOperation> operation, std::uint64_t order) noexcept {
    NSOperation& retained = *operation;
    retained.order_ = order;
    retained.retained_ = std::move(operation);
}

void OperationQueueCore::unlink(NSOperation& operation) noexcept {
    switch (std::exchange(operation.place_, NSOperation::Place::none)) {
        case NSOperation::Place::none:
            return;
        case NSOperation::Place::waiting:
            waiting_.remove(operation);
            break;
        case NSOperation::Place::ready:
            lanes_[operation.readyLane_].remove(operation);
            changeReadyCount(-1);
            break;
        case NSOperation::Place::started:
            --running_;
            if (!operation.isBeingStarted_) executing_.remove(operation);
            break;
    }
    leaveOne();
}

void OperationQueueCore::leaveOne() noexcept {
    if (--count_ > 0 || intake_.count.load(std::memory_order_relaxed) > 0) return;
    ++timesEmptied_;
    timesEmptied_.notify_all();
}

/// Whether the next to start does not depend on what is in the intake.
bool OperationQueueCore::isNextHere() const noexcept {
    return waitingBlocks_ > 0 || std::any_of(lanes_.begin(), lanes_.begin() + kNormalLane + 1,
                                             [](const ReadyOperations& lane) { return lane.first() != nullptr; });
}

/// Whether the next to start is a block: there is one, and no ready operation of higher priority.
bool OperationQueueCore::isBlockNext() const noexcept {
    return waitingBlocks_ > 0 && std::none_of(lanes_.begin(), lanes_.begin() + kNormalLane,
                                              [](const ReadyOperations& lane) { return lane.first() != nullptr; });
}

/// Makes objects of all blocks.
void OperationQueueCore::makeOperationsOfBlocks() {
    if (hiddenBlocks_ == 0) return;
    std::vector<std::shared_ptr<NSBlockOperation>> made(hiddenBlocks_);
    for (auto& operation : made) operation = std::make_shared<NSBlockOperation>();

    auto next = made.begin();
    for (Turn* turn = firstTurn_; turn != nullptr; turn = turn->next) {
        if (!turn->isInBlock || turn->blockOperation != nullptr) continue;
        turn->blockOperation = *next++;
        NSOperation& operation = *turn->blockOperation;
        operation.joinAsExecuting(*this);
        retain(turn->blockOperation, turn->blockOrder);
        operation.place_ = NSOperation::Place::started;
        operation.isBeingStarted_ = true;
    }
    changeReadyCount(-static_cast<std::ptrdiff_t>(waitingBlocks_));
    for (; next != made.end(); ++next) {
        NSOperation& operation = **next;
        (*next)->addExecutionBlock(blocks_.takeFirst());
        operation.queue_ = this;
        operation.membership_.store(NSOperation::Membership::joined, std::memory_order_release);
        retain(*next, lastBlockOrder_ - --waitingBlocks_);
        enterReady(operation);
    }
    hiddenBlocks_ = 0;
    intake_.takesBlocks = false;
}

/// There must be one.
void OperationQueueCore::takeFirstBlock(Turn& turn) noexcept {
    turn.block = blocks_.takeFirst();
    turn.isInBlock = true;
    turn.blockOrder = lastBlockOrder_ - --waitingBlocks_;
    changeReadyCount(-1);
    ++running_;
}

/// Takes the first ready operation as started. There must be one.
void OperationQueueCore::takeFirstReady(Turn& turn) noexcept {
    auto lane = lanes_.begin();
    while (lane->first() == nullptr) ++lane;
    NSOperation& operation = *lane->first();
    lane->remove(operation);
    changeReadyCount(-1);
    operation.place_ = NSOperation::Place::started;
    operation.isBeingStarted_ = true;
    ++running_;
    turn.operation = &operation;
}

/// An operation got a further dependency after it had been ready: it goes back to waiting.
void OperationQueueCore::postpone(Turn& turn) {
    std::shared_ptr<NSOperation> kept;
    change([&] {
        NSOperation& operation = *std::exchange(turn.operation, nullptr);
        operation.isBeingStarted_ = false;
        if (operation.place_ != NSOperation::Place::started) {
            kept = std::move(operation.retained_);
            return;
        }
        operation.place_ = NSOperation::Place::waiting;
        waiting_.append(operation);
        --running_;
        kept = operation.retained_;
    });
    if (kept->isReady()) makeReady(*kept);
}

void OperationQueueCore::enterReady(NSOperation& operation) {
    operation.readyLane_ = lane(operation.queuePriority());
    lanes_[operation.readyLane_].insert(operation);
    operation.place_ = NSOperation::Place::ready;
    changeReadyCount(1);
}

bool OperationQueueCore::hasRoom() const noexcept {
    return running_ < (width_ < 0 ? kChosenWidth : static_cast<std::size_t>(width_));
}

bool OperationQueueCore::canStartOne() const noexcept { return readyCount() > 0 && hasRoom(); }

/// Whether the pool is to be asked for a turn.
bool OperationQueueCore::takesTurn() noexcept {
    // A worker that is about to return from a `start` of this queue takes one itself.
    const std::size_t expected = lookingOut_ + (turn_ != nullptr && turn_->core == this && turn_->isConcluded ? 1 : 0);
    if (isTurnDue_ || !canStartOne() || readyCount() <= expected) return false;
    isTurnDue_ = true;
    return true;
}

}  // namespace ZORPlatform
