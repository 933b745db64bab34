// SPDX-License-Identifier: Apache-2.0
#pragma once

// An operation made of blocks.
//
//     const auto refresh = NSBlockOperation::blockOperationWithBlock([] { refreshAccounts(); });
//     queue.addOperation(refresh);

#include <ZORPlatform/Dispatch/BriefLock.h>
#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSOperation.h>

#include <atomic>
#include <concepts>
#include <memory>
#include <utility>
#include <vector>

namespace ZORPlatform {

/// An operation that is finished when all its blocks have returned. Without a block it finishes at once. The blocks are
/// destroyed when they have run, and at the latest when the operation has finished. Thread-safe.
class ZOR_EXPORT NSBlockOperation : public NSOperation {
public:
    NSBlockOperation() noexcept = default;
    /// An operation with one block. An empty one stops the process.
    explicit NSBlockOperation(DispatchWork block);
    ~NSBlockOperation() override;

    /// `blockOperationWithBlock:`: a new instance of `Operation`, which plays the receiving class, with one block.
    template <std::derived_from<NSBlockOperation> Operation = NSBlockOperation>
    [[nodiscard]] static std::shared_ptr<Operation> blockOperationWithBlock(DispatchWork block) {
        if constexpr (std::same_as<Operation, NSBlockOperation>) {
            return make(std::move(block));
        } else {
            auto operation = std::make_shared<Operation>();
            operation->addExecutionBlock(std::move(block));
            return operation;
        }
    }

    /// `addExecutionBlock:`
    ///
    /// Adds a block. The first one runs on the thread of the operation, further ones beside it on threads of the
    /// library. Raises `NSException` named "NSInvalidArgumentException" when the operation has begun to run its
    /// blocks or has finished. An empty block stops the process.
    void addExecutionBlock(DispatchWork block);

    void main() override;

    // The public part ends here.
private:
    [[nodiscard]] static std::shared_ptr<NSBlockOperation> make(DispatchWork block);

    void releaseWork() noexcept override;

    [[nodiscard]] bool close() noexcept;

    /// Guards the blocks until no more are taken. They then belong to the one who has closed them.
    BriefLock lock_;
    std::atomic<bool> isClosed_{false};
    DispatchWork firstBlock_;
    std::unique_ptr<std::vector<DispatchWork>> furtherBlocks_;
};

}  // namespace ZORPlatform
