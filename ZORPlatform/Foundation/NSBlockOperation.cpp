// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSBlockOperation.h>

#include <ZORPlatform/Dispatch/DispatchGroup.h>
#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/Precondition.h>

namespace ZORPlatform {

NSBlockOperation::~NSBlockOperation() = default;

void NSBlockOperation::addExecutionBlock(DispatchWork block) {
    if (!block) preconditionFailure("NSBlockOperation addExecutionBlock: the block must not be empty");
    const std::scoped_lock lock(mutex_);
    if (isClosed_) {
        throw NSException(u"NSInvalidArgumentException",
                          u"NSBlockOperation addExecutionBlock: the operation is executing or finished");
    }
    if (firstBlock_) {
        furtherBlocks_.push_back(std::move(block));
    } else {
        firstBlock_ = std::move(block);
    }
}

void NSBlockOperation::main() {
    DispatchWork first;
    std::vector<DispatchWork> further;
    {
        const std::scoped_lock lock(mutex_);
        isClosed_ = true;
        first = std::move(firstBlock_);
        further.swap(furtherBlocks_);
    }
    if (further.empty()) {
        if (first) first();
        return;
    }
    const DispatchGroup group;
    for (DispatchWork& block : further) {
        group.enter();
        DispatchQueue::serial(u"NSBlockOperation").async([group, block = std::move(block)]() mutable {
            block();
            block = nullptr;
            group.leave();
        });
    }
    first();
    group.wait();
}

void NSBlockOperation::releaseWork() noexcept {
    DispatchWork first;
    std::vector<DispatchWork> further;
    const std::scoped_lock lock(mutex_);
    isClosed_ = true;
    first = std::move(firstBlock_);
    further.swap(furtherBlocks_);
}

}  // namespace ZORPlatform
