// SPDX-License-Identifier: Apache-2.0
#pragma once

// Waiting for several pieces of work that end on their own: each enters the group before it begins and leaves it when
// it is done.
//
//     const DispatchGroup group;
//     for (const Account& account : accounts) {
//         group.enter();
//         refresh(account, [group] { group.leave(); });
//     }
//     group.notify(mainQueue, [] { showAll(); });

#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Export.h>

#include <memory>

namespace ZORPlatform {

/// A handle on a group, cheap to copy: every copy is the same group, and two are equal when they are. A group that has
/// become empty may be used again. Thread-safe.
class ZOR_EXPORT DispatchGroup {
public:
    /// `dispatch_group_create`: a group with no member.
    DispatchGroup();

    /// `dispatch_group_enter`: one member more.
    void enter() const;

    /// `dispatch_group_leave`: one member less. A leave without an enter stops the process: "Unbalanced call to
    /// dispatch_group_leave()". When the group becomes empty, waiting threads go on and notifications are submitted,
    /// in the order they were asked for.
    void leave() const;

    /// `dispatch_group_wait` without a time-out: returns once the group has been empty, at once when it is. Everything
    /// done before the last leave is then visible to the caller. Members that enter after that moment are not waited
    /// for.
    void wait() const;

    /// `dispatch_group_notify`: submits `work` to `queue` once, when the group next is empty, at once when it is. It
    /// does not run when the group is dropped with members in it.
    void notify(const DispatchQueue& queue, DispatchWork work) const;

    friend bool operator==(const DispatchGroup&, const DispatchGroup&) noexcept = default;

private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace ZORPlatform
