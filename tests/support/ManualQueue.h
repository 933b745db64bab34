// SPDX-License-Identifier: Apache-2.0
#pragma once

// A dispatch queue that runs its work when the test says so, on the test's own thread.
//
//     ManualQueue manual;
//     load(manual.queue());
//     EXPECT_EQ(manual.waiting(), 1U);
//     manual.runNext();

#include <ZORPlatform/Dispatch/DispatchQueue.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace support {

class ManualQueue {
public:
    /// The queue to hand to the code under test. Works left in it are dropped with the last handle.
    [[nodiscard]] ZORPlatform::DispatchQueue queue() const { return ZORPlatform::DispatchQueue(target_); }

    /// Works submitted and not yet run.
    [[nodiscard]] std::size_t waiting() const {
        const std::scoped_lock lock(target_->mutex);
        return target_->works.size();
    }

    /// Waits until a work has been submitted, by whichever thread, and runs the oldest.
    void runNext() {
        std::unique_lock lock(target_->mutex);
        target_->submitted.wait(lock, [this] { return !target_->works.empty(); });
        ZORPlatform::DispatchWork work = std::move(target_->works.front());
        target_->works.pop_front();
        lock.unlock();
        work();
    }

    /// Runs works until none is left, including those that they submit.
    void runAll() {
        while (waiting() > 0) runNext();
    }

private:
    struct Target : ZORPlatform::DispatchTarget {
        void async(ZORPlatform::DispatchWork work) override {
            const std::scoped_lock lock(mutex);
            works.push_back(std::move(work));
            submitted.notify_all();
        }
        [[nodiscard]] std::u16string label() const override { return u"manual"; }

        std::mutex mutex;
        std::condition_variable submitted;
        std::deque<ZORPlatform::DispatchWork> works;
    };

    std::shared_ptr<Target> target_ = std::make_shared<Target>();
};

}  // namespace support
