// SPDX-License-Identifier: Apache-2.0
#pragma once

// A queue of operations: starts each as soon as its dependencies have finished and there is room.
//
//     const NSOperationQueue queue;
//     queue.addOperation(login);
//     queue.addOperation(refresh);     // depends on login
//     queue.waitUntilAllOperationsAreFinished();

#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSOperation.h>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace ZORPlatform {

class OperationQueueCore;

/// A handle on a queue, cheap to copy: every copy is the same queue, and two are equal when they are. Operations
/// already added still run when the last handle is gone.
///
/// Operations are started on the shared pool of threads (see DispatchQueue), by priority and then in the order of
/// adding, as they become ready. An exception that leaves `start` or `main` there ends the process.
///
/// Thread-safe.
class ZOR_EXPORT NSOperationQueue {
public:
    /// A queue without operations, its width chosen by the system.
    NSOperationQueue();

    /// `addOperation:`
    ///
    /// Adds an operation and keeps it alive until it has finished. Raises `NSException` named
    /// "NSInvalidArgumentException" when it executes, has finished, or is or was in a queue already. Stops the process
    /// when `operation` is null or is not held by the shared pointer it was made with.
    void addOperation(std::shared_ptr<NSOperation> operation) const;

    /// Adds many operations at less cost for each: the queue gets the first at once, the others some at a time, the
    /// last when this object goes. Nobody can tell but by the time: observers of an operation find the queue complete.
    ///
    ///     NSOperationQueue::Adding adding(queue);
    ///     adding.addOperation(login);
    ///     adding.addDependency(*refresh, login);
    ///     adding.addOperation(refresh);
    ///     adding.finish();
    ///
    /// Used by one thread.
    class ZOR_EXPORT Adding {
    public:
        explicit Adding(const NSOperationQueue& queue) noexcept;
        /// Finishes if that has not been done. A failure to start a thread for the operations is not reported then.
        ~Adding();
        Adding(const Adding&) = delete;
        Adding& operator=(const Adding&) = delete;

        /// `addDependency:` of `operation`.
        void addDependency(NSOperation& operation, const std::shared_ptr<NSOperation>& dependency);
        /// `addOperation:`, with its exception and its preconditions.
        void addOperation(std::shared_ptr<NSOperation> operation);
        /// Gives the queue what it has not got yet.
        void finish();

    private:
        // Some microseconds' worth of operations.
        static constexpr std::size_t kMostAtATime = 32;

        const std::shared_ptr<OperationQueueCore> core_;
        std::array<std::shared_ptr<NSOperation>, kMostAtATime> begun_;
        std::size_t count_ = 0;
        /// Grows from one: the queue is to start the first at once.
        std::size_t share_ = 1;
    };

    /// `addOperationWithBlock:`: a block operation with this one block. Cheaper than making one, which is put off until
    /// somebody asks for `operations`. An empty block stops the process.
    void addOperationWithBlock(DispatchWork block) const;

    /// `operations`: those that have not finished, in the order of adding.
    [[nodiscard]] std::vector<std::shared_ptr<NSOperation>> operations() const;
    /// `operationCount`
    [[nodiscard]] std::size_t operationCount() const;

    /// `cancelAllOperations`: sends `cancel` to each.
    void cancelAllOperations() const;

    /// `waitUntilAllOperationsAreFinished`: returns once no operation has been left, at once when there is none.
    /// Completion blocks may still run. Never returns when called by an operation of this queue.
    void waitUntilAllOperationsAreFinished() const;

    /// `NSOperationQueueDefaultMaxConcurrentOperationCount`: the system chooses.
    static constexpr int kDefaultMaxConcurrentOperationCount = -1;

    /// `maxConcurrentOperationCount`
    [[nodiscard]] int maxConcurrentOperationCount() const;
    /// `setMaxConcurrentOperationCount:`: how many operations may execute at the same time from now on; those that
    /// execute go on. 0 starts none. Raises `NSException` named "NSInvalidArgumentException" below -1.
    void setMaxConcurrentOperationCount(int count) const;

    friend bool operator==(const NSOperationQueue&, const NSOperationQueue&) noexcept = default;

private:
    std::shared_ptr<OperationQueueCore> core_;
};

}  // namespace ZORPlatform
