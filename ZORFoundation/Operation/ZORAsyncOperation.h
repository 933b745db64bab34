// SPDX-License-Identifier: Apache-2.0
#pragma once

// An operation whose work ends when it says so, on whatever thread, with a result.
//
//     class LoadBalance : public ZORAsyncOperation<Amount> {
//         void main() override {
//             connection.request(u"balance", [self = shared_from_this(), this](Amount amount) {
//                 completeOperation(ZORAsyncOperationResult<Amount>::success(amount));
//             });
//         }
//     };
//     std::make_shared<LoadBalance>()->run(queue, [](const auto& result) { show(result); });
//
// States, as the queue sees them (docs/operations.md has every announcement in order):
//
//     ready ──start──► executing ──completeOperation──► finished, with a result
//       └───── start of a cancelled operation ────────► finished, without

#include <ZORFoundation/Operation/AsyncOperationBase.h>
#include <ZORFoundation/Operation/ZORAsyncOperationResult.h>
#include <ZORPlatform/Foundation/NSOperationQueue.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace ZORFoundation {

using ZORPlatform::NSOperationQueue;

/// `ZORAsyncOperation<T>`: to be derived from; the class itself has no result of its own making.
///
/// Override `main`: it is called once the operation starts, on a new thread that is its own, and need not wait for the
/// end of the work. `completeOperation` tells the end; without it the operation executes for ever, and whatever depends
/// on it waits. A cancelled operation finishes without `main`; one that executes is to look at `isCancelled` itself.
///
/// Made with `std::make_shared`, not copyable. The thread holds the operation while `main` runs; work that goes on
/// elsewhere holds it itself. Thread-safe. An exception that leaves `main` ends the process.
template <class T>
class ZORAsyncOperation : public AsyncOperationBase {
public:
    using Result = ZORAsyncOperationResult<T>;

    /// An operation that is neither executing nor finished, and has no result.
    ZORAsyncOperation() noexcept = default;

    /// `result`
    ///
    /// The outcome that `completeOperation` was given last; null before, and for ever after the start of a cancelled
    /// operation.
    [[nodiscard]] std::shared_ptr<const Result> result() const {
        const std::scoped_lock lock(resultMutex_);
        return result_;
    }

    /// `completeOperation(withResult:)`
    ///
    /// Stores the outcome and announces the end on the calling thread: will "isFinished", will "isExecuting", did
    /// "isExecuting", did "isFinished", the properties being set in the middle. May be called from any thread; waits
    /// while another thread is still inside `start`.
    ///
    /// Nothing is refused: a second call replaces the outcome and announces again, and one for an operation that was
    /// never started finishes it. The queue and the completion callback act on the first alone.
    void completeOperation(Result withResult) {
        waitWhileStarting();
        auto result = std::make_shared<const Result>(std::move(withResult));
        {
            const std::scoped_lock lock(resultMutex_);
            result_.swap(result);  // The earlier one is destroyed after the lock.
        }
        announceCompletion();
    }

    /// `run(queue:completion:)`
    ///
    /// Adds the operation to `queue`. When it has finished, `completion` is called once with the result, on a thread of
    /// the library's choosing and never inside `completeOperation`; never at all when it finished without a result.
    /// Takes the place of an earlier completion block. Until then the operation stays alive.
    ///
    /// Raises `NSException` named "NSInvalidArgumentException" when the operation executes, has finished, or is or was
    /// in a queue already. Stops the process when no shared pointer holds the operation.
    void run(const NSOperationQueue& queue, std::function<void(const Result&)> completion = nullptr) {
        const auto self = std::static_pointer_cast<ZORAsyncOperation>(weak_from_this().lock());
        if (self == nullptr) {
            ZORPlatform::preconditionFailure("ZORAsyncOperation run: the operation must be held by a std::shared_ptr");
        }
        if (completion) {
            setCompletionBlock([self, completion = std::move(completion)] {
                if (const auto result = self->result()) completion(*result);
            });
        }
        queue.addOperation(self);
    }

    // The public part ends here.
private:
    mutable std::mutex resultMutex_;
    std::shared_ptr<const Result> result_;
};

}  // namespace ZORFoundation
