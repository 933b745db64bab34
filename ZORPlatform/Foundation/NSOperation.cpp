// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSOperation.h>

#include <ZORPlatform/Dispatch/DispatchPool.h>
#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/OperationQueueCore.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

namespace ZORPlatform {
namespace {

// From here on a set finds duplicates faster than a look at each.
constexpr std::size_t kManyDependencies = 16;

bool isSameOwner(const std::weak_ptr<NSOperation>& left, const std::weak_ptr<NSOperation>& right) {
    return !left.owner_before(right) && !right.owner_before(left);
}

constexpr auto isAny = [](const auto&) { return true; };

// Operations whose last handle is going on this thread, while one is being destroyed.
thread_local std::vector<std::shared_ptr<NSOperation>>* goingOperations = nullptr;

// Lets go of operations one after the other, where each letting go of its own would take stack for every link.
template <class Operations>
void letGo(Operations& operations) {
    if (goingOperations != nullptr) {
        auto taken = operations.take(isAny);
        std::move(taken.begin(), taken.end(), std::back_inserter(*goingOperations));
        return;
    }
    std::vector<std::shared_ptr<NSOperation>> going;
    goingOperations = &going;
    operations.clear();
    while (!going.empty()) {
        const std::shared_ptr<NSOperation> last = std::move(going.back());
        going.pop_back();
    }
    goingOperations = nullptr;
}

}  // namespace

NSOperation::NSOperation() noexcept = default;

NSOperation::~NSOperation() {
    if (dependencies_.size() > 0) letGo(dependencies_);
}

void NSOperation::start() {
    if (isFinished()) return;
    if (membership_.load(std::memory_order_acquire) == Membership::none && !isReady()) {
        throw NSException(u"NSInvalidArgumentException", u"NSOperation start: the operation is not yet ready");
    }
    if (isStarted_.exchange(true)) {
        throw NSException(u"NSInvalidArgumentException", u"NSOperation start: the operation has already been started");
    }
    if (isCancelled()) return announceFinished();
    willChangeValueForKey(kExecutingKey);
    isExecuting_.store(true, std::memory_order_release);
    didChangeValueForKey(kExecutingKey);
    main();
    announceEnd();
}

void NSOperation::announceEnd() {
    willChangeValueForKey(kExecutingKey);
    isExecuting_.store(false, std::memory_order_release);
    didChangeValueForKey(kExecutingKey);
    announceFinished();
}

void NSOperation::announceFinished() {
    willChangeValueForKey(kFinishedKey);
    isFinished_.store(true, std::memory_order_release);
    OperationQueueCore::willReturnFromStart(*this);
    didChangeValueForKey(kFinishedKey);
}

void NSOperation::main() {}

void NSOperation::cancel() {
    if (isFinished() || isCancelled()) return;
    willChangeValueForKey(kCancelledKey);
    const bool wasCancelled = isCancelled_.exchange(true);
    didChangeValueForKey(kCancelledKey);
    if (wasCancelled || isExecuting()) return;

    Dependencies forgotten;
    willChangeValueForKey(kReadyKey);
    {
        const std::scoped_lock lock(lock_);
        ignoresDependencies_ = true;
        unfinishedDependencies_ = 0;
        dependencyIndex_.reset();
        for (auto& operation : dependencies_.take([](const auto& each) { return each->isConcluded_ == 0; })) {
            forgotten.append(std::move(operation));
        }
        isBlocked_ = false;
    }
    didChangeValueForKey(kReadyKey);
    letGo(forgotten);
}

bool NSOperation::isCancelled() const noexcept { return isCancelled_; }
bool NSOperation::isReady() const { return isCancelled_ || !isBlocked_; }
bool NSOperation::isExecuting() const { return isExecuting_; }
bool NSOperation::isFinished() const { return isFinished_; }
bool NSOperation::isAsynchronous() const { return false; }

void NSOperation::addDependency(const std::shared_ptr<NSOperation>& operation) {
    if (operation == nullptr) preconditionFailure("addDependency: the operation must not be null");
    std::weak_ptr<NSOperation> self = weak_from_this();
    if (self.expired()) preconditionFailure("addDependency: the receiver must be held by a std::shared_ptr");
    if (isExecuting() || isFinished() || !noteDependency(operation)) return;
    if (!operation->noteDependent(std::move(self))) {
        const std::scoped_lock lock(lock_);
        if (!ignoresDependencies_) --unfinishedDependencies_;
    } else if (isBlocked_.load(std::memory_order_acquire)) {
        return;
    }
    settleReadiness();
}

/// Counts a dependency as unfinished. @return false when it is one already, or when none is to be added any more
bool NSOperation::noteDependency(const std::shared_ptr<NSOperation>& operation) {
    const std::scoped_lock lock(lock_);
    if (isConcluded_ != 0 || isCancelled()) return false;
    if (dependencyIndex_ != nullptr) {
        if (!dependencyIndex_->insert(operation.get()).second) return false;
    } else {
        bool isKnown = false;
        dependencies_.forEach([&](const auto& dependency) { isKnown = isKnown || dependency == operation; });
        if (isKnown) return false;
        if (dependencies_.size() == kManyDependencies) {
            dependencyIndex_ = std::make_unique<std::unordered_set<const NSOperation*>>();
            dependencies_.forEach([&](const auto& dependency) { dependencyIndex_->insert(dependency.get()); });
            dependencyIndex_->insert(operation.get());
        }
    }
    dependencies_.append(operation);
    ++unfinishedDependencies_;
    // Nobody to be told.
    if (!isObserved()) isBlocked_.store(true, std::memory_order_release);
    return true;
}

/// @return false when this operation is over, so that nothing will be told to the dependent
bool NSOperation::noteDependent(std::weak_ptr<NSOperation> dependent) {
    const std::scoped_lock lock(lock_);
    if (isConcluded_ != 0) return false;
    // Dependents that were dropped without ever running would add up in an operation that runs for long.
    dependents_.append(std::move(dependent), [](const auto& other) { return other.expired(); });
    return true;
}

void NSOperation::removeDependency(const std::shared_ptr<NSOperation>& operation) {
    if (operation == nullptr) return;
    {
        const std::scoped_lock lock(lock_);
        if (dependencies_.take([&](const auto& dependency) { return dependency == operation; }).empty()) return;
        if (dependencyIndex_ != nullptr) dependencyIndex_->erase(operation.get());
    }
    {
        const std::weak_ptr<NSOperation> self = weak_from_this();
        const std::scoped_lock lock(operation->lock_);
        // An operation that is over no longer has it, and has counted itself off or is about to.
        if (operation->dependents_.take([&](const auto& dependent) { return isSameOwner(dependent, self); }).empty()) {
            return;
        }
    }
    dependencyConcluded();
}

std::vector<std::shared_ptr<NSOperation>> NSOperation::dependencies() const {
    std::vector<std::shared_ptr<NSOperation>> dependencies;
    const std::scoped_lock lock(lock_);
    dependencies.reserve(dependencies_.size());
    dependencies_.forEach([&](const auto& dependency) { dependencies.push_back(dependency); });
    return dependencies;
}

/// One dependency less to wait for.
void NSOperation::dependencyConcluded() {
    bool isTold = false;
    {
        const std::scoped_lock lock(lock_);
        if (ignoresDependencies_ || --unfinishedDependencies_ > 0 || !isBlocked_) return;
        isTold = isObserved();
        if (!isTold) isBlocked_ = false;
    }
    if (isTold) {
        announceReadiness();
    } else if (isReady()) {
        OperationQueueCore::becameReady(*this);
    }
}

void NSOperation::settleReadiness() {
    {
        const std::scoped_lock lock(lock_);
        if (isBlocked_ == (unfinishedDependencies_ > 0)) return;
    }
    announceReadiness();
}

/// Brings "isReady" into line with the count of dependencies. Of several threads that change the count, the last makes
/// the property true to it.
void NSOperation::announceReadiness() {
    willChangeValueForKey(kReadyKey);
    {
        const std::scoped_lock lock(lock_);
        isBlocked_ = unfinishedDependencies_ > 0;
    }
    didChangeValueForKey(kReadyKey);
}

void NSOperation::setCompletionBlock(DispatchWork block) {
    auto completionBlock = block ? std::make_unique<DispatchWork>(std::move(block)) : nullptr;
    const std::scoped_lock lock(lock_);
    // Either way the block that goes is destroyed after the lock.
    if (isConcluded_ == 0) completionBlock_.swap(completionBlock);
}

NSOperationQueuePriority NSOperation::queuePriority() const noexcept { return priority_; }
void NSOperation::setQueuePriority(NSOperationQueuePriority priority) noexcept { priority_ = priority; }

void NSOperation::waitUntilFinished() const {
    if (isConcluded_ != 0) return;
    const DispatchPool::Blocking blocking;
    isConcluded_.wait(0);
}

void NSOperation::valueDidChange(std::u16string_view key) {
    if (key == kFinishedKey) {
        if (isFinished()) conclude();
    } else if (key == kReadyKey) {
        if (isReady()) OperationQueueCore::becameReady(*this);
    }
}

void NSOperation::releaseWork() noexcept {}

void NSOperation::joinAsExecuting(OperationQueueCore& queue) noexcept {
    releaseWork();
    isStarted_ = true;
    isExecuting_ = true;
    queue_ = &queue;
    membership_ = Membership::joined;
}

void NSOperation::conclude() {
    // Goes last: it may be what keeps this object.
    std::shared_ptr<NSOperation> retained;
    Dependencies dependencies;
    Dependents dependents;
    std::unique_ptr<DispatchWork> completionBlock;
    auto membership = Membership::none;
    {
        const std::scoped_lock lock(lock_);
        if (isConcluded_.load(std::memory_order_relaxed) != 0) return;
        isConcluded_.store(1, std::memory_order_release);
        dependencies_.swap(dependencies);
        dependencyIndex_.reset();
        dependents_.swap(dependents);
        completionBlock_.swap(completionBlock);
        membership = membership_.load(std::memory_order_acquire);
        if (membership == Membership::joined) {
            membership_.store(Membership::left, std::memory_order_release);
        } else {
            membership = membership_.exchange(Membership::left);
        }
    }
    isConcluded_.notify_all();
    const bool isRemovedHere = membership == Membership::joined && !OperationQueueCore::isRemovedByTurn(*this);
    releaseWork();
    // A queue for each block: no block waits for another.
    if (completionBlock) DispatchQueue::serial(u"NSOperation completion").async(std::move(*completionBlock));
    dependents.forEach([](const std::weak_ptr<NSOperation>& entry) {
        if (const std::shared_ptr<NSOperation> dependent = entry.lock()) dependent->dependencyConcluded();
    });
    if (isRemovedHere) retained = queue_->remove(*this);
    if (dependencies.size() > 0) letGo(dependencies);
}

}  // namespace ZORPlatform
