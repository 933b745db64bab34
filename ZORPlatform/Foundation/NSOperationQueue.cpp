// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSOperationQueue.h>

#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/OperationQueueCore.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <utility>

namespace ZORPlatform {

NSOperationQueue::NSOperationQueue() : core_(std::make_shared<OperationQueueCore>()) {}

void NSOperationQueue::addOperation(std::shared_ptr<NSOperation> operation) const {
    if (operation == nullptr) preconditionFailure("NSOperationQueue addOperation: the operation must not be null");
    if (operation->weak_from_this().expired()) {
        preconditionFailure("NSOperationQueue addOperation: the operation must be held by a std::shared_ptr");
    }
    core_->add(std::move(operation));
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
