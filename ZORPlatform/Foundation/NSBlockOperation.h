// SPDX-License-Identifier: Apache-2.0
#pragma once

// An operation made of blocks.
//
//     const auto refresh = NSBlockOperation::blockOperationWithBlock([] { refreshAccounts(); });
//     queue.addOperation(refresh);

#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSOperation.h>

#include <concepts>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace ZORPlatform {

/// An operation that is finished when all its blocks have returned. Without a block it finishes at once. The blocks are
/// destroyed when they have run, and at the latest when the operation has finished. Thread-safe.
class ZOR_EXPORT NSBlockOperation : public NSOperation {
public:
    NSBlockOperation() noexcept = default;
    ~NSBlockOperation() override;

    /// `blockOperationWithBlock:`: a new instance of `Operation`, which plays the receiving class, with one block.
    template <std::derived_from<NSBlockOperation> Operation = NSBlockOperation>
    [[nodiscard]] static std::shared_ptr<Operation> blockOperationWithBlock(DispatchWork block) {
        auto operation = std::make_shared<Operation>();
        operation->addExecutionBlock(std::move(block));
        return operation;
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
    void releaseWork() noexcept override;

    std::mutex mutex_;
    DispatchWork firstBlock_;
    std::vector<DispatchWork> furtherBlocks_;
    bool isClosed_ = false;
};

}  // namespace ZORPlatform
