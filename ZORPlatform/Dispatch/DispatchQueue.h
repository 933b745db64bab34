// SPDX-License-Identifier: Apache-2.0
#pragma once

// Queues of work. The caller hands work in and goes on; the queue runs it later on a thread of its own choosing.
//
//     const auto queue = DispatchQueue::serial(u"be.example.balance");
//     queue.async([] { refresh(); });
//     queue.async([] { show(); });      // after refresh() has returned
//
// An application with an event loop hands it in as a queue:
//
//     class MainLoop : public DispatchTarget {
//         void async(DispatchWork work) override { loop.post(std::move(work)); }
//     };
//     const DispatchQueue mainQueue(std::make_shared<MainLoop>());

#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Export.h>

#include <memory>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// What runs a queue's work. To be derived from by an application that has a loop or pool of its own.
class ZOR_EXPORT DispatchTarget {
public:
    DispatchTarget() noexcept = default;
    virtual ~DispatchTarget();
    DispatchTarget(const DispatchTarget&) = delete;
    DispatchTarget& operator=(const DispatchTarget&) = delete;

    /// Takes `work`, which is never empty, to call it once, later, and never inside this call. May itself be called
    /// from any thread.
    virtual void async(DispatchWork work) = 0;

    /// The queue's label. The base version answers an empty one.
    [[nodiscard]] virtual std::u16string label() const;
};

/// A handle on a queue, cheap to copy: every copy is the same queue, and two are equal when they are. Work already
/// handed in still runs when the last handle is gone.
///
/// The library's own queues share one small pool of threads, started with the first work; a queue without work costs
/// no thread and no time. Work may wait for other work: the pool grows while its threads are held up. An exception
/// that leaves the work ends the process. When the process exits, idle threads of the pool are stopped; work in
/// progress is not waited for. After `fork` the child must make queues of its own.
///
/// Thread-safe.
class ZOR_EXPORT DispatchQueue {
public:
    /// The queue that `target` runs; stops the process when that is null.
    explicit DispatchQueue(std::shared_ptr<DispatchTarget> target);

    /// A queue that runs one work at a time, in the order of submission, on changing threads.
    ///
    /// @param label  free text for people, need not be unique
    [[nodiscard]] static DispatchQueue serial(std::u16string_view label);

    /// A queue that starts work in the order of submission and does not wait for one to end before the next starts.
    ///
    /// @param label  free text for people, need not be unique
    [[nodiscard]] static DispatchQueue concurrent(std::u16string_view label);

    /// Runs `work` once, later, on the queue, and destroys it there. What one thread submitted first starts first.
    /// Everything done before this call is visible to the work. Empty work stops the process.
    ///
    /// Throws `std::system_error` when the pool has no thread and cannot start one; the work is then kept, and runs
    /// when a thread can be started by later work.
    void async(DispatchWork work) const;

    /// The label given at creation.
    [[nodiscard]] std::u16string label() const;

    friend bool operator==(const DispatchQueue&, const DispatchQueue&) noexcept = default;

private:
    std::shared_ptr<DispatchTarget> target_;
};

}  // namespace ZORPlatform
