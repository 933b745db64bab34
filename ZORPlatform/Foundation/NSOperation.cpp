// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSOperation.h>

#include <ZORPlatform/Dispatch/DispatchPool.h>
#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/OperationQueueCore.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace ZORPlatform {
namespace {

// From here on a set finds duplicates faster than a look at each.
constexpr std::size_t kManyDependencies = 16;

bool isSameOwner(const std::weak_ptr<NSOperation>& left, const std::weak_ptr<NSOperation>& right) {
    return !left.owner_before(right) && !right.owner_before(left);
}

// Operations whose last handle is going on this thread, while one is being destroyed.
thread_local std::vector<std::shared_ptr<NSOperation>>* goingOperations = nullptr;

// Lets go of operations one after the other, where each letting go of its own would take stack for every link.
void letGo(std::vector<std::shared_ptr<NSOperation>> operations) {
    if (operations.empty()) return;
    if (goingOperations != nullptr) {
        std::move(operations.begin(), operations.end(), std::back_inserter(*goingOperations));
        return;
    }
    goingOperations = &operations;
    while (!operations.empty()) {
        const std::shared_ptr<NSOperation> going = std::move(operations.back());
        operations.pop_back();
    }
    goingOperations = nullptr;
}

}  // namespace

NSOperation::NSOperation() noexcept = default;

NSOperation::~NSOperation() { letGo(std::move(dependencies_)); }

void NSOperation::start() {
    if (isFinished()) return;
    if (membership_.load(std::memory_order_acquire) == Membership::none && !isReady()) {
        throw NSException(u"NSInvalidArgumentException", u"NSOperation start: the operation is not yet ready");
    }
    if (isStarted_.exchange(true)) {
        throw NSException(u"NSInvalidArgumentException", u"NSOperation start: the operation has already been started");
    }
    if (!isCancelled()) {
        willChangeValueForKey(kExecutingKey);
        isExecuting_ = true;
        didChangeValueForKey(kExecutingKey);
        main();
        willChangeValueForKey(kExecutingKey);
        isExecuting_ = false;
        didChangeValueForKey(kExecutingKey);
    }
    willChangeValueForKey(kFinishedKey);
    isFinished_ = true;
    didChangeValueForKey(kFinishedKey);
}

void NSOperation::main() {}

void NSOperation::cancel() {
    if (isFinished() || isCancelled()) return;
    willChangeValueForKey(kCancelledKey);
    const bool wasCancelled = isCancelled_.exchange(true);
    didChangeValueForKey(kCancelledKey);
    if (wasCancelled || isExecuting()) return;

    std::vector<std::shared_ptr<NSOperation>> forgotten;
    willChangeValueForKey(kReadyKey);
    {
        const std::scoped_lock lock(mutex_);
        ignoresDependencies_ = true;
        unfinishedDependencies_ = 0;
        dependencyIndex_.reset();
        const auto kept = std::stable_partition(dependencies_.begin(), dependencies_.end(),
                                                [](const auto& operation) { return operation->isConcluded_.load(); });
        forgotten.assign(std::move_iterator(kept), std::move_iterator(dependencies_.end()));
        dependencies_.erase(kept, dependencies_.end());
        isBlocked_ = false;
    }
    didChangeValueForKey(kReadyKey);
    letGo(std::move(forgotten));
}

bool NSOperation::isCancelled() const noexcept { return isCancelled_; }
bool NSOperation::isReady() const { return isCancelled_ || !isBlocked_; }
bool NSOperation::isExecuting() const { return isExecuting_; }
bool NSOperation::isFinished() const { return isFinished_; }
bool NSOperation::isAsynchronous() const { return false; }

void NSOperation::addDependency(const std::shared_ptr<NSOperation>& operation) {
    if (operation == nullptr) preconditionFailure("addDependency: the operation must not be null");
    const std::weak_ptr<NSOperation> self = weak_from_this();
    if (self.expired()) preconditionFailure("addDependency: the receiver must be held by a std::shared_ptr");
    if (isExecuting() || isFinished() || !noteDependency(operation)) return;
    if (!operation->noteDependent(self)) {
        const std::scoped_lock lock(mutex_);
        if (!ignoresDependencies_) --unfinishedDependencies_;
    }
    settleReadiness();
}

/// Counts a dependency as unfinished. @return false when it is one already, or when none is to be added any more
bool NSOperation::noteDependency(const std::shared_ptr<NSOperation>& operation) {
    const std::scoped_lock lock(mutex_);
    if (isConcluded_ || isCancelled()) return false;
    if (dependencyIndex_ != nullptr) {
        if (!dependencyIndex_->insert(operation.get()).second) return false;
    } else {
        if (std::find(dependencies_.begin(), dependencies_.end(), operation) != dependencies_.end()) return false;
        if (dependencies_.size() == kManyDependencies) {
            dependencyIndex_ = std::make_unique<std::unordered_set<const NSOperation*>>();
            for (const auto& dependency : dependencies_) dependencyIndex_->insert(dependency.get());
            dependencyIndex_->insert(operation.get());
        }
    }
    dependencies_.push_back(operation);
    ++unfinishedDependencies_;
    return true;
}

/// @return false when this operation is over, so that nothing will be told to the dependent
bool NSOperation::noteDependent(const std::weak_ptr<NSOperation>& dependent) {
    const std::scoped_lock lock(mutex_);
    if (isConcluded_) return false;
    // Dependents that were dropped without ever running would add up in an operation that runs for long.
    if (dependents_.size() == dependents_.capacity()) {
        std::erase_if(dependents_, [](const auto& other) { return other.expired(); });
        if (dependents_.size() > dependents_.capacity() / 2) dependents_.reserve(2 * dependents_.capacity());
    }
    dependents_.push_back(dependent);
    return true;
}

void NSOperation::removeDependency(const std::shared_ptr<NSOperation>& operation) {
    if (operation == nullptr) return;
    {
        const std::scoped_lock lock(mutex_);
        const auto found = std::find(dependencies_.begin(), dependencies_.end(), operation);
        if (found == dependencies_.end()) return;
        dependencies_.erase(found);
        if (dependencyIndex_ != nullptr) dependencyIndex_->erase(operation.get());
    }
    {
        const std::weak_ptr<NSOperation> self = weak_from_this();
        const std::scoped_lock lock(operation->mutex_);
        const auto found = std::find_if(operation->dependents_.begin(), operation->dependents_.end(),
                                        [&self](const auto& dependent) { return isSameOwner(dependent, self); });
        // An operation that is over no longer has it, and has counted itself off or is about to.
        if (found == operation->dependents_.end()) return;
        operation->dependents_.erase(found);
    }
    dependencyConcluded();
}

std::vector<std::shared_ptr<NSOperation>> NSOperation::dependencies() const {
    const std::scoped_lock lock(mutex_);
    return dependencies_;
}

/// One dependency less to wait for.
void NSOperation::dependencyConcluded() {
    {
        const std::scoped_lock lock(mutex_);
        if (ignoresDependencies_ || --unfinishedDependencies_ > 0) return;
    }
    settleReadiness();
}

/// Brings "isReady" into line with the count of dependencies. Of several threads that change the count, the last makes
/// the property true to it.
void NSOperation::settleReadiness() {
    {
        const std::scoped_lock lock(mutex_);
        if (isBlocked_ == (unfinishedDependencies_ > 0)) return;
    }
    willChangeValueForKey(kReadyKey);
    {
        const std::scoped_lock lock(mutex_);
        isBlocked_ = unfinishedDependencies_ > 0;
    }
    didChangeValueForKey(kReadyKey);
}

void NSOperation::setCompletionBlock(DispatchWork block) {
    const std::scoped_lock lock(mutex_);
    // Either way the block that goes is destroyed after the lock, with the parameter.
    if (!isConcluded_) std::swap(completionBlock_, block);
}

NSOperationQueuePriority NSOperation::queuePriority() const noexcept { return priority_; }
void NSOperation::setQueuePriority(NSOperationQueuePriority priority) noexcept { priority_ = priority; }

void NSOperation::waitUntilFinished() const {
    std::unique_lock lock(mutex_);
    if (isConcluded_) return;
    lock.unlock();
    const DispatchPool::Blocking blocking;
    lock.lock();
    concluded_.wait(lock, [this] { return isConcluded_.load(); });
    lock.unlock();
}

void NSOperation::valueDidChange(std::u16string_view key) {
    if (key == kFinishedKey) {
        if (isFinished()) conclude();
    } else if (key == kReadyKey) {
        // While joining, the queue looks at the property itself.
        if (membership_.load(std::memory_order_acquire) == Membership::joined && isReady()) queue_->makeReady(*this);
    }
}

void NSOperation::releaseWork() noexcept {}

void NSOperation::conclude() {
    // Goes last: it may be what keeps this object.
    std::shared_ptr<NSOperation> retained;
    std::vector<std::shared_ptr<NSOperation>> dependencies;
    std::vector<std::weak_ptr<NSOperation>> dependents;
    DispatchWork completionBlock;
    {
        const std::scoped_lock lock(mutex_);
        if (isConcluded_) return;
        isConcluded_ = true;
        dependencies.swap(dependencies_);
        dependencyIndex_.reset();
        dependents.swap(dependents_);
        std::swap(completionBlock, completionBlock_);
        concluded_.notify_all();
    }
    releaseWork();
    // A queue for each block: no block waits for another.
    if (completionBlock) DispatchQueue::serial(u"NSOperation completion").async(std::move(completionBlock));
    for (const std::weak_ptr<NSOperation>& entry : dependents) {
        if (const std::shared_ptr<NSOperation> dependent = entry.lock()) dependent->dependencyConcluded();
    }
    if (membership_.exchange(Membership::left, std::memory_order_acq_rel) == Membership::joined) {
        retained = queue_->remove(*this);
    }
    letGo(std::move(dependencies));
}

}  // namespace ZORPlatform
