// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Operation/OperationQueueExtension.h>

#include <ZORPlatform/Foundation/NSBlockOperation.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <utility>

namespace ZORFoundation::OperationQueueExtension {

void addOperations(const NSOperationQueue& queue, std::vector<std::shared_ptr<NSOperation>> sequentially,
                   DispatchWork completion, const DispatchQueue& completionQueue) {
    if (completion) {
        sequentially.push_back(ZORPlatform::NSBlockOperation::blockOperationWithBlock(
            [completionQueue, completion = std::move(completion)]() mutable {
                completionQueue.async(std::move(completion));
            }));
    }
    addOperations(queue, sequentially);
}

void addOperations(const NSOperationQueue& queue, const std::vector<std::shared_ptr<NSOperation>>& sequentially) {
    NSOperationQueue::Adding adding(queue);
    const std::shared_ptr<NSOperation>* previous = nullptr;
    for (const std::shared_ptr<NSOperation>& operation : sequentially) {
        if (operation == nullptr) ZORPlatform::preconditionFailure("addOperations: an operation must not be null");
        if (previous != nullptr) adding.addDependency(*operation, *previous);
        adding.addOperation(operation);
        previous = &operation;
    }
    adding.finish();
}

}  // namespace ZORFoundation::OperationQueueExtension
