// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchGroup.h>

#include <ZORPlatform/Dispatch/DispatchPool.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

namespace ZORPlatform {

struct DispatchGroup::State {
    struct Notification {
        DispatchQueue queue;
        DispatchWork work;
    };

    std::mutex mutex;
    std::condition_variable emptied;
    std::size_t members = 0;
    /// How often the group has become empty, so that one who waited sees it even when others have entered since.
    std::uint64_t timesEmptied = 0;
    std::vector<Notification> notifications;
};

DispatchGroup::DispatchGroup() : state_(std::make_shared<State>()) {}

void DispatchGroup::enter() const {
    const std::scoped_lock lock(state_->mutex);
    ++state_->members;
}

void DispatchGroup::leave() const {
    // Kept here: whoever waits may drop its handle, and with it this object, before the notifications are out.
    const std::shared_ptr<State> state = state_;
    std::vector<State::Notification> due;
    {
        const std::scoped_lock lock(state->mutex);
        if (state->members == 0) preconditionFailure("Unbalanced call to dispatch_group_leave()");
        if (--state->members > 0) return;
        ++state->timesEmptied;
        due.swap(state->notifications);
        state->emptied.notify_all();
    }
    for (State::Notification& notification : due) notification.queue.async(std::move(notification.work));
}

void DispatchGroup::wait() const {
    std::unique_lock lock(state_->mutex);
    if (state_->members == 0) return;
    const std::uint64_t before = state_->timesEmptied;
    lock.unlock();
    const DispatchPool::Blocking blocking;
    lock.lock();
    state_->emptied.wait(lock, [&] { return state_->timesEmptied != before; });
    lock.unlock();
}

void DispatchGroup::notify(const DispatchQueue& queue, DispatchWork work) const {
    {
        const std::scoped_lock lock(state_->mutex);
        if (state_->members > 0) {
            state_->notifications.push_back({queue, std::move(work)});
            return;
        }
    }
    queue.async(std::move(work));
}

}  // namespace ZORPlatform
