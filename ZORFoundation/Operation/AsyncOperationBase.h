// SPDX-License-Identifier: Apache-2.0
#pragma once

// What asynchronous operations share whatever their result is: the flags that the queue reads, the start on a thread of
// the operation's own, and the announcement of the end. Applications derive from ZORAsyncOperation.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSOperation.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace ZORFoundation {

using ZORPlatform::NSOperation;

/// Thread-safe.
class ZOR_EXPORT AsyncOperationBase : public NSOperation {
public:
    /// `start`, called by the queue.
    ///
    /// Of a cancelled operation: announces "isFinished" and sets it; `main` is not called. Otherwise: announces that
    /// "isExecuting" will change, starts a new thread that calls `main`, sets the property, and announces that it did
    /// change. `main` may begin before the property reads true, and may return long before the operation is finished.
    ///
    /// While `start` is between its two announcements, a `completeOperation` on another thread waits, so that
    /// observers see the beginning before the end. One on the same thread, from an observer, goes through at once, and
    /// `isExecuting` then stays false. Hence an observer of "isExecuting" must not wait for another thread to complete
    /// the operation.
    ///
    /// Nothing else is refused: called twice, `main` runs twice. Throws `std::system_error` when no thread can be
    /// started. Stops the process when no shared pointer holds the operation.
    void start() override;

    /// `isAsynchronous`: always true.
    [[nodiscard]] bool isAsynchronous() const override;
    /// `isExecuting`: from `start` until `completeOperation`.
    [[nodiscard]] bool isExecuting() const override;
    /// `isFinished`: from `completeOperation` on, or from the start of a cancelled operation.
    [[nodiscard]] bool isFinished() const override;

protected:
    AsyncOperationBase() noexcept;
    ~AsyncOperationBase() override;

    /// What `isExecuting` and `isFinished` read. Setting one announces nothing.
    [[nodiscard]] bool isOperationExecuting() const noexcept;
    void setIsOperationExecuting(bool isExecuting) noexcept;
    [[nodiscard]] bool isOperationFinished() const noexcept;
    void setIsOperationFinished(bool isFinished) noexcept;

    /// Waits while another thread is inside `start`.
    void waitWhileStarting();
    /// Sets and announces the end: will "isFinished", will "isExecuting", did "isExecuting", did "isFinished". The
    /// object may be gone when this returns, unless the caller holds it.
    void announceCompletion();

    // The public part ends here.
private:
    class Starting;

    std::atomic<bool> isOperationExecuting_{false};
    std::atomic<bool> isOperationFinished_{false};

    std::mutex mutex_;
    std::condition_variable started_;
    /// The thread inside `start`, if any. Guarded by the mutex.
    std::thread::id starter_;
    /// Whether the operation was completed since that thread began. Guarded by the mutex.
    bool isCompletedWhileStarting_ = false;
};

}  // namespace ZORFoundation
