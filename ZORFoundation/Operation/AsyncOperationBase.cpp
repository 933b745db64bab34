// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Operation/AsyncOperationBase.h>

#include <ZORPlatform/Dispatch/DispatchPool.h>
#include <ZORPlatform/Foundation/NSThread.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <memory>

namespace ZORFoundation {

/// The time between the two announcements of `start`.
class AsyncOperationBase::Starting {
public:
    explicit Starting(AsyncOperationBase& operation) : operation_(operation) {
        const std::scoped_lock lock(operation_.mutex_);
        operation_.starter_ = std::this_thread::get_id();
        operation_.isCompletedWhileStarting_ = false;
    }
    ~Starting() {
        const std::scoped_lock lock(operation_.mutex_);
        operation_.starter_ = {};
        operation_.started_.notify_all();
    }
    Starting(const Starting&) = delete;
    Starting& operator=(const Starting&) = delete;

    void setExecuting() const {
        const std::scoped_lock lock(operation_.mutex_);
        if (!operation_.isCompletedWhileStarting_) operation_.setIsOperationExecuting(true);
    }

private:
    AsyncOperationBase& operation_;
};

AsyncOperationBase::AsyncOperationBase() noexcept = default;
AsyncOperationBase::~AsyncOperationBase() = default;

void AsyncOperationBase::start() {
    if (isCancelled()) {
        willChangeValueForKey(kFinishedKey);
        setIsOperationFinished(true);
        didChangeValueForKey(kFinishedKey);
        return;
    }
    // Held to the end: once it is started, any thread may complete it and let go of it.
    const std::shared_ptr<NSOperation> self = weak_from_this().lock();
    if (self == nullptr) {
        ZORPlatform::preconditionFailure("ZORAsyncOperation start: the operation must be held by a std::shared_ptr");
    }
    const Starting starting(*this);
    willChangeValueForKey(kExecutingKey);
    ZORPlatform::NSThread::detachNewThread([self] { self->main(); });
    starting.setExecuting();
    didChangeValueForKey(kExecutingKey);
}

bool AsyncOperationBase::isAsynchronous() const { return true; }
bool AsyncOperationBase::isExecuting() const { return isOperationExecuting(); }
bool AsyncOperationBase::isFinished() const { return isOperationFinished(); }

bool AsyncOperationBase::isOperationExecuting() const noexcept { return isOperationExecuting_; }
void AsyncOperationBase::setIsOperationExecuting(bool isExecuting) noexcept { isOperationExecuting_ = isExecuting; }
bool AsyncOperationBase::isOperationFinished() const noexcept { return isOperationFinished_; }
void AsyncOperationBase::setIsOperationFinished(bool isFinished) noexcept { isOperationFinished_ = isFinished; }

void AsyncOperationBase::waitWhileStarting() {
    const auto mayPass = [this] { return starter_ == std::thread::id() || starter_ == std::this_thread::get_id(); };
    std::unique_lock lock(mutex_);
    if (mayPass()) return;
    lock.unlock();
    const ZORPlatform::DispatchPool::Blocking blocking;
    lock.lock();
    started_.wait(lock, mayPass);
    lock.unlock();
}

void AsyncOperationBase::announceCompletion() {
    willChangeValueForKey(kFinishedKey);
    willChangeValueForKey(kExecutingKey);
    {
        const std::scoped_lock lock(mutex_);
        isCompletedWhileStarting_ = true;
        setIsOperationExecuting(false);
        setIsOperationFinished(true);
    }
    didChangeValueForKey(kExecutingKey);
    didChangeValueForKey(kFinishedKey);
}

}  // namespace ZORFoundation
