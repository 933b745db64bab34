// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSOperationQueue.h>

#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/OperationQueueCore.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <algorithm>
#include <span>
#include <system_error>
#include <utility>

namespace ZORPlatform {
namespace {

void checkAdded(const std::shared_ptr<NSOperation>& operation) {
    if (operation == nullptr) preconditionFailure("NSOperationQueue addOperation: the operation must not be null");
    if (operation->weak_from_this().expired()) {
        preconditionFailure("NSOperationQueue addOperation: the operation must be held by a std::shared_ptr");
    }
}

}  // namespace

NSOperationQueue::NSOperationQueue() : core_(std::make_shared<OperationQueueCore>()) {}

void NSOperationQueue::addOperation(std::shared_ptr<NSOperation> operation) const {
    checkAdded(operation);
    core_->add(std::move(operation));
}

NSOperationQueue::Adding::Adding(const NSOperationQueue& queue) noexcept : core_(queue.core_) {}

NSOperationQueue::Adding::~Adding() {
    try {
        finish();
    } catch (const std::system_error&) {
        // They have been added, and run as soon as a later submission finds a thread.
    }
}

void NSOperationQueue::Adding::addDependency(NSOperation& operation, const std::shared_ptr<NSOperation>& dependency) {
    if (OperationQueueCore::hasObservers(operation)) finish();
    operation.addDependency(dependency);
}

void NSOperationQueue::Adding::addOperation(std::shared_ptr<NSOperation> operation) {
    checkAdded(operation);
    core_->beginAdding(*operation);
    begun_[count_++] = std::move(operation);
    if (count_ < share_) return;
    share_ = std::min(2 * share_, kMostAtATime);
    finish();
}

void NSOperationQueue::Adding::finish() {
    const std::span begun(begun_.data(), std::exchange(count_, 0));
    if (begun.empty()) return;
    core_->finishAdding(begun);
    for (std::shared_ptr<NSOperation>& operation : begun) operation.reset();
}

void NSOperationQueue::addOperationWithBlock(DispatchWork block) const {
    if (!block) preconditionFailure("NSOperationQueue addOperationWithBlock: the block must not be empty");
    core_->addBlock(std::move(block));
}

std::vector<std::shared_ptr<NSOperation>> NSOperationQueue::operations() const { return core_->operations(); }

std::size_t NSOperationQueue::operationCount() const { return core_->operationCount(); }

void NSOperationQueue::cancelAllOperations() const {
    for (const std::shared_ptr<NSOperation>& operation : core_->operations()) operation->cancel();
}

void NSOperationQueue::waitUntilAllOperationsAreFinished() const { core_->waitUntilAllOperationsAreFinished(); }

int NSOperationQueue::maxConcurrentOperationCount() const { return core_->maxConcurrentOperationCount(); }

void NSOperationQueue::setMaxConcurrentOperationCount(int count) const {
    if (count < kDefaultMaxConcurrentOperationCount) {
        throw NSException(u"NSInvalidArgumentException",
                          u"NSOperationQueue setMaxConcurrentOperationCount: the count must not be below -1");
    }
    core_->setMaxConcurrentOperationCount(count);
}

}  // namespace ZORPlatform
