// SPDX-License-Identifier: Apache-2.0
#pragma once

// Queues as one writes them without the library: the floor and the peers of the benchmarks.

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace benchmarks {

/// One thread for one queue, which takes whole batches: as little as handing work to another thread can cost.
class PlainThread {
public:
    void async(std::function<void()> work) {
        {
            const std::scoped_lock lock(mutex_);
            pending_.push_back(std::move(work));
            if (pending_.size() > 1) return;
        }
        wake_.notify_one();
    }
    ~PlainThread() {
        async([this] { isStopped_ = true; });
        thread_.join();
    }

private:
    void run() {
        std::vector<std::function<void()>> batch;
        while (!isStopped_) {
            batch.clear();
            {
                std::unique_lock lock(mutex_);
                wake_.wait(lock, [this] { return !pending_.empty(); });
                batch.swap(pending_);
            }
            for (const auto& work : batch) work();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<std::function<void()>> pending_;
    bool isStopped_ = false;  // Used by the thread alone.
    std::thread thread_{[this] { run(); }};
};

/// The textbook pool: some threads, one deque, one lock for each work put in and taken out.
class PlainPool {
public:
    explicit PlainPool(std::size_t threads) {
        for (std::size_t i = 0; i < threads; ++i) threads_.emplace_back([this] { run(); });
    }
    void async(std::function<void()> work) {
        {
            const std::scoped_lock lock(mutex_);
            pending_.push_back(std::move(work));
        }
        wake_.notify_one();
    }
    ~PlainPool() {
        {
            const std::scoped_lock lock(mutex_);
            isStopped_ = true;
        }
        wake_.notify_all();
        for (std::thread& thread : threads_) thread.join();
    }

private:
    void run() {
        for (;;) {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return isStopped_ || !pending_.empty(); });
            if (pending_.empty()) return;
            const std::function<void()> work = std::move(pending_.front());
            pending_.pop_front();
            lock.unlock();
            work();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> pending_;
    bool isStopped_ = false;
    std::vector<std::thread> threads_;
};

/// A piece of work that waits for others and then runs on a pool: no cancelling, no observers, no priorities.
class PlainTask : public std::enable_shared_from_this<PlainTask> {
public:
    explicit PlainTask(std::function<void()> work) : work_(std::move(work)) {}

    void waitFor(const std::shared_ptr<PlainTask>& other) {
        const std::scoped_lock lock(other->mutex_);
        if (other->isDone_) return;
        ++blockers_;
        other->dependents_.push_back(shared_from_this());
    }
    void submit(PlainPool& pool) {
        pool_ = &pool;
        unblock();
    }

private:
    void unblock() {
        if (--blockers_ == 0) pool_->async([self = shared_from_this()] { self->run(); });
    }
    void run() {
        work_();
        std::vector<std::shared_ptr<PlainTask>> dependents;
        {
            const std::scoped_lock lock(mutex_);
            isDone_ = true;
            dependents.swap(dependents_);
        }
        for (const auto& dependent : dependents) dependent->unblock();
    }

    const std::function<void()> work_;
    PlainPool* pool_ = nullptr;
    std::atomic<int> blockers_{1};
    std::mutex mutex_;
    bool isDone_ = false;
    std::vector<std::shared_ptr<PlainTask>> dependents_;
};

}  // namespace benchmarks
