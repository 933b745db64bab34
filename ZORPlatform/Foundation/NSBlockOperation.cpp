// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSBlockOperation.h>

#include <ZORPlatform/Dispatch/DispatchGroup.h>
#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/Precondition.h>
#include <ZORPlatform/Foundation/RecyclingAllocatorInternal.h>

#include <mutex>
#include <utility>

namespace ZORPlatform {

NSBlockOperation::NSBlockOperation(DispatchWork block) : firstBlock_(std::move(block)) {
    if (!firstBlock_) preconditionFailure("NSBlockOperation: the block must not be empty");
}

NSBlockOperation::~NSBlockOperation() = default;

std::shared_ptr<NSBlockOperation> NSBlockOperation::make(DispatchWork block) {
    return std::allocate_shared<NSBlockOperation>(RecyclingAllocator<NSBlockOperation>(), std::move(block));
}

void NSBlockOperation::addExecutionBlock(DispatchWork block) {
    if (!block) preconditionFailure("NSBlockOperation addExecutionBlock: the block must not be empty");
    const std::scoped_lock lock(lock_);
    if (isClosed_.load(std::memory_order_relaxed)) {
        throw NSException(u"NSInvalidArgumentException",
                          u"NSBlockOperation addExecutionBlock: the operation is executing or finished");
    }
    if (!firstBlock_) {
        firstBlock_ = std::move(block);
        return;
    }
    if (furtherBlocks_ == nullptr) furtherBlocks_ = std::make_unique<std::vector<DispatchWork>>();
    furtherBlocks_->push_back(std::move(block));
}

void NSBlockOperation::main() {
    if (!close()) return;
    if (furtherBlocks_ == nullptr) {
        if (firstBlock_) firstBlock_();
        firstBlock_ = nullptr;
        return;
    }
    const DispatchGroup group;
    for (DispatchWork& block : *furtherBlocks_) {
        group.enter();
        DispatchQueue::serial(u"NSBlockOperation").async([group, block = std::move(block)]() mutable {
            block();
            block = nullptr;
            group.leave();
        });
    }
    furtherBlocks_.reset();
    firstBlock_();
    firstBlock_ = nullptr;
    group.wait();
}

void NSBlockOperation::releaseWork() noexcept {
    if (!close()) return;
    firstBlock_ = nullptr;
    furtherBlocks_.reset();
}

/// @return false when the blocks have been closed before
bool NSBlockOperation::close() noexcept {
    if (isClosed_.load(std::memory_order_acquire)) return false;
    const std::scoped_lock lock(lock_);
    if (isClosed_.load(std::memory_order_relaxed)) return false;
    isClosed_.store(true, std::memory_order_release);
    return true;
}

}  // namespace ZORPlatform
