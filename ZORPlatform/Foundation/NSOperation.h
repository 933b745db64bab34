// SPDX-License-Identifier: Apache-2.0
#pragma once

// An operation: work with a beginning and an end that a queue can start, order after other operations, and cancel.
//
//     class Refresh : public NSOperation {
//         void main() override { if (!isCancelled()) refresh(); }
//     };
//     const auto refresh = std::make_shared<Refresh>();
//     refresh->addDependency(login);
//     queue.addOperation(refresh);
//
// States and legal transitions, as the properties show them (docs/operations.md has the whole picture):
//
//     not ready ──► ready ──► executing ──► finished       isReady, isExecuting, isFinished
//         └───────────┴── cancelled, still to be started ──► finished       isCancelled
//
// An operation is over when "isFinished" has been announced by didChangeValueForKey and reads true then. At that
// moment, after the observers: its dependencies are let go, its completion block is sent off, operations that depend
// on it may become ready, and its queue starts the next.

#include <ZORPlatform/Dispatch/BriefLock.h>
#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSKeyValueObserving.h>
#include <ZORPlatform/Foundation/ShortList.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace ZORPlatform {

class OperationList;
class OperationQueueCore;
class ReadyOperations;

/// `NSOperationQueuePriority`. A value between two of these counts as the one nearer to `normal`.
enum class NSOperationQueuePriority : std::int8_t { veryLow = -8, low = -4, normal = 0, high = 4, veryHigh = 8 };

/// The base of all operations; of itself it does nothing and finishes. Made with `std::make_shared`, not copyable.
///
/// To be derived from in one of two ways. Override `main` for work that is over when it returns. Override `start`,
/// `isExecuting` and `isFinished` for work that goes on elsewhere, and announce the two properties: the queue learns
/// of the end from the announcement alone.
///
/// Thread-safe, but dependencies are to be added before the operation may start. Deep chains of dependencies are
/// destroyed in constant stack.
class ZOR_EXPORT NSOperation : public NSKeyValueObserving, public std::enable_shared_from_this<NSOperation> {
public:
    static constexpr std::u16string_view kReadyKey = u"isReady";
    static constexpr std::u16string_view kExecutingKey = u"isExecuting";
    static constexpr std::u16string_view kFinishedKey = u"isFinished";
    static constexpr std::u16string_view kCancelledKey = u"isCancelled";

    NSOperation() noexcept;
    ~NSOperation() override;

    /// `start`
    ///
    /// Runs the operation on the calling thread: announces "isExecuting", calls `main`, announces "isExecuting" again
    /// and then "isFinished". Of a cancelled operation only "isFinished" is announced. Does nothing when finished.
    ///
    /// Raises `NSException` named "NSInvalidArgumentException" when the operation has been started before, or when it
    /// is neither ready nor in a queue. An exception that leaves `main` passes through, and the operation then stays
    /// executing; under a queue it ends the process. An override that calls this must not wait afterwards for what the
    /// queue has yet to start: the thread belongs to the queue.
    virtual void start();

    /// `main`: the work. The base version does nothing.
    virtual void main();

    /// `cancel`
    ///
    /// Sets and announces "isCancelled"; has no effect on a finished operation, nor a second time. An operation that
    /// does not execute yet lets go of its unfinished dependencies and announces "isReady", so that its queue starts
    /// it, which makes it finish. One that executes is to look at `isCancelled` itself.
    virtual void cancel();

    /// `isCancelled`
    [[nodiscard]] bool isCancelled() const noexcept;
    /// `isReady`: all dependencies have finished, or the operation is cancelled.
    [[nodiscard]] virtual bool isReady() const;
    /// `isExecuting`
    [[nodiscard]] virtual bool isExecuting() const;
    /// `isFinished`
    [[nodiscard]] virtual bool isFinished() const;
    /// `isAsynchronous`: whether the work may go on after `start` has returned. The base version answers false.
    [[nodiscard]] virtual bool isAsynchronous() const;

    /// `addDependency:`
    ///
    /// Makes this operation wait until `operation` has finished, cancelled or not, in whatever queue. A dependency
    /// that is already there is not added again. No effect when this operation executes, has finished or is
    /// cancelled. Operations in a cycle never run. Stops the process when `operation` is null or when no shared
    /// pointer holds this operation.
    void addDependency(const std::shared_ptr<NSOperation>& operation);

    /// `removeDependency:`. An operation that is no dependency is ignored.
    void removeDependency(const std::shared_ptr<NSOperation>& operation);

    /// `dependencies`, in the order of adding. Empty once this operation has finished.
    [[nodiscard]] std::vector<std::shared_ptr<NSOperation>> dependencies() const;

    /// `setCompletionBlock:`
    ///
    /// Has `block` called once after the operation has finished, on a thread of the library's choosing and never inside
    /// the call that finished it, in no fixed order with the start of dependent operations; it is destroyed after that.
    /// Set on an operation that has finished, it never runs. Replaces an earlier block; `nullptr` removes it.
    void setCompletionBlock(DispatchWork block);

    /// `queuePriority`: among ready operations of one queue those of higher priority start first. Default: normal.
    [[nodiscard]] NSOperationQueuePriority queuePriority() const noexcept;
    /// `setQueuePriority:`. Counts from the moment in which the operation becomes ready in its queue.
    void setQueuePriority(NSOperationQueuePriority priority) noexcept;

    /// `waitUntilFinished`: returns once the operation has finished, at once when it has. Never returns when called
    /// by the operation itself.
    void waitUntilFinished() const;

    // The public part ends here.
private:
    friend class OperationList;
    friend class OperationQueueCore;
    friend class ReadyOperations;

    using Dependencies = ShortList<std::shared_ptr<NSOperation>>;
    using Dependents = ShortList<std::weak_ptr<NSOperation>>;

    /// Where the operation stands towards its queue. Joining: the queue is being told.
    enum class Membership : std::uint8_t { none, joining, joined, left };
    /// Where the queue keeps the operation.
    enum class Place : std::uint8_t { none, waiting, ready, started };

    void valueDidChange(std::u16string_view key) override;
    /// Lets go of the caller's code that will never run again.
    virtual void releaseWork() noexcept;

    /// For a block that became an operation while it was running.
    void joinAsExecuting(OperationQueueCore& queue) noexcept;
    void announceEnd();
    void announceFinished();
    void conclude();
    void dependencyConcluded();
    void settleReadiness();
    void announceReadiness();
    [[nodiscard]] bool noteDependency(const std::shared_ptr<NSOperation>& operation);
    [[nodiscard]] bool noteDependent(std::weak_ptr<NSOperation> dependent);

    std::atomic<bool> isCancelled_{false};
    std::atomic<bool> isExecuting_{false};
    std::atomic<bool> isFinished_{false};
    std::atomic<bool> isStarted_{false};
    /// Whether unfinished dependencies hold the operation back, as last announced.
    std::atomic<bool> isBlocked_{false};
    std::atomic<Membership> membership_{Membership::none};
    std::atomic<NSOperationQueuePriority> priority_{NSOperationQueuePriority::normal};
    /// 1 once the operation is over. Set under the lock, and waited for.
    std::atomic<int> isConcluded_{0};

    mutable BriefLock lock_;

    // Guarded by the lock.
    /// Cancelled before it executed: what its dependencies do no longer matters.
    bool ignoresDependencies_ = false;
    std::uint32_t unfinishedDependencies_ = 0;
    Dependencies dependencies_;
    /// The same operations, for a quick look; made when there are many.
    std::unique_ptr<std::unordered_set<const NSOperation*>> dependencyIndex_;
    Dependents dependents_;
    std::unique_ptr<DispatchWork> completionBlock_;

    // The queue's. Two are written while joining, the others are guarded by the queue.
    OperationQueueCore* queue_ = nullptr;
    std::shared_ptr<NSOperation> retained_;
    NSOperation* previous_ = nullptr;
    NSOperation* next_ = nullptr;
    std::uint64_t order_ = 0;
    Place place_ = Place::none;
    std::uint8_t readyLane_ = 0;
    /// Whether a thread of the queue is inside `start`.
    bool isBeingStarted_ = false;
    /// Whether it was ready when the joining began.
    bool joinsReady_ = false;
};

}  // namespace ZORPlatform
