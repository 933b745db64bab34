// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchQueue.h>

#include <ZORPlatform/Dispatch/BriefLock.h>
#include <ZORPlatform/Dispatch/DispatchPool.h>
#include <ZORPlatform/Dispatch/WorkList.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <cstddef>
#include <mutex>
#include <utility>

namespace ZORPlatform {
namespace {

// Works run in one turn before jobs of other queues are let in.
constexpr std::size_t kWorksInTurn = 128;

/// A queue that is a job of the pool. Submits itself with the first work; its turns say what becomes of the works.
class PooledQueue : public DispatchTarget, protected PoolJob, public std::enable_shared_from_this<PooledQueue> {
public:
    explicit PooledQueue(std::u16string_view label) : label_(label) {}

    void async(DispatchWork work) override {
        {
            const std::scoped_lock lock(lock_);
            pending_.append(std::move(work));
            if (self_ != nullptr) return;
            self_ = shared_from_this();
        }
        DispatchPool::submit(*this);
    }

    [[nodiscard]] std::u16string label() const override { return label_; }

protected:
    const std::u16string label_;
    BriefLock lock_;
    WorkList pending_;  ///< Guarded by the lock.
    /// Guarded by the lock. Held while a turn is due: by it the queue outlives its handles.
    std::shared_ptr<PooledQueue> self_;
};

/// Its turn stays due while it runs, so that one turn follows another.
class SerialQueue final : public PooledQueue {
public:
    using PooledQueue::PooledQueue;

private:
    void runTurn() noexcept override {
        // Worked off from here: who submits writes to this object all the time.
        WorkList batch;
        batch.swap(batch_);
        std::size_t share = kWorksInTurn;
        do {
            while (!batch.isEmpty()) {
                if (share == 0) {
                    share = kWorksInTurn;
                    if (DispatchPool::hasReadyJobs()) {
                        batch.swap(batch_);
                        return DispatchPool::submit(*this);
                    }
                }
                --share;
                batch.runFirst();
            }
        } while (takes(batch) || (DispatchPool::waitForMore(), !endsTurn(batch)));
    }

    /// Exchanges an empty batch for what has been submitted. @return false when there is nothing
    bool takes(WorkList& batch) noexcept {
        const std::scoped_lock lock(lock_);
        if (pending_.isEmpty()) return false;
        batch.swap(pending_);
        return true;
    }

    /// @return false when something has been submitted after all; that is the batch then
    bool endsTurn(WorkList& batch) noexcept {
        // Destroyed after the lock: this may be the last handle.
        std::shared_ptr<PooledQueue> self;
        const std::scoped_lock lock(lock_);
        if (!pending_.isEmpty()) {
            batch.swap(pending_);
            return false;
        }
        batch.trim();
        pending_.trim();
        batch_.swap(batch);
        self = std::move(self_);
        return true;
    }

    // What a turn has left to the next. Nothing guards it: no two turns at a time.
    WorkList batch_;
};

/// Its turn is no longer due once it has begun, so that further workers join while there is work.
class ConcurrentQueue final : public PooledQueue {
public:
    using PooledQueue::PooledQueue;

private:
    void runTurn() noexcept override {
        // Destroyed after the lock: this may be the last handle.
        std::shared_ptr<PooledQueue> self;
        std::unique_lock lock(lock_);
        self = std::move(self_);
        for (std::size_t share = kWorksInTurn; !pending_.isEmpty(); --share) {
            if (share == 0) return submitForRest(lock);
            {
                DispatchWork work = pending_.takeFirst();
                submitForRest(lock);
                work();
            }
            lock.lock();
        }
    }

    /// Lets another worker have what is left, and releases the lock.
    void submitForRest(std::unique_lock<BriefLock>& lock) {
        const bool submits = !pending_.isEmpty() && self_ == nullptr;
        if (submits) self_ = shared_from_this();
        lock.unlock();
        if (submits) DispatchPool::submit(*this);
    }
};

}  // namespace

DispatchTarget::~DispatchTarget() = default;

std::u16string DispatchTarget::label() const { return {}; }

DispatchQueue::DispatchQueue(std::shared_ptr<DispatchTarget> target) : target_(std::move(target)) {
    if (target_ == nullptr) preconditionFailure("DispatchQueue: the target must not be null");
}

DispatchQueue DispatchQueue::serial(std::u16string_view label) {
    return DispatchQueue(std::make_shared<SerialQueue>(label));
}

DispatchQueue DispatchQueue::concurrent(std::u16string_view label) {
    return DispatchQueue(std::make_shared<ConcurrentQueue>(label));
}

void DispatchQueue::async(DispatchWork work) const {
    if (!work) preconditionFailure("DispatchQueue async: the work must not be empty");
    target_->async(std::move(work));
}

std::u16string DispatchQueue::label() const { return target_->label(); }

}  // namespace ZORPlatform
