// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchPool.h>

#include <ZORPlatform/Dispatch/ProcessorPause.h>
#include <ZORPlatform/Dispatch/SignalsBlockedInternal.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

using namespace std::chrono_literals;

// How long every worker may be busy with jobs ready before the pool takes it for a wait and lets one more run.
constexpr auto kStallTime = 10ms;
// Half a microsecond or so, much less than it takes to sleep and be woken.
constexpr int kLooksForMore = 8;
// How long a surplus worker stays.
constexpr auto kSurplusTime = 5s;

enum class Call { none, work, watch, leave };

struct Worker {
    std::thread thread;
    std::condition_variable wake;
    Call call = Call::none;
    bool inJob = false;
    /// What it waits in, if that can be interrupted.
    PoolWait* wait = nullptr;
    /// Takes the next job itself, right away.
    bool endsTurn = false;
    /// Found the pool stalled: runs one job although there are workers enough.
    bool isRelief = false;
};

thread_local Worker* currentWorker = nullptr;

}  // namespace

// Everything is guarded by the mutex. Worker records are kept for good and used again, so a worker may be notified
// after the mutex has been released.
class DispatchPool::State {
public:
    void submit(PoolJob& job) {
        Worker* recruited = nullptr;
        {
            const std::scoped_lock lock(mutex_);
            (last_ == nullptr ? first_ : last_->next_) = &job;
            last_ = &job;
            readyCount_.store(readyCount_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
            if (currentWorker == nullptr || !currentWorker->endsTurn) recruited = recruit();
        }
        if (recruited != nullptr) recruited->wake.notify_one();
    }

    [[nodiscard]] bool hasReadyJobs() const noexcept { return readyCount_.load(std::memory_order_relaxed) != 0; }

    void beginBlocking(PoolWait* wait) noexcept {
        Worker* recruited = nullptr;
        {
            const std::scoped_lock lock(mutex_);
            currentWorker->wait = wait;
            --awake_;
            recruited = recruit();
        }
        if (recruited != nullptr) recruited->wake.notify_one();
    }

    void endBlocking() noexcept {
        const std::scoped_lock lock(mutex_);
        currentWorker->wait = nullptr;
        ++awake_;
    }

    /// At the exit of the process.
    void stopIdleWorkers() {
        std::vector<Worker*> leaving;
        {
            const std::scoped_lock lock(mutex_);
            exiting_ = true;
            for (const std::unique_ptr<Worker>& worker : workers_) {
                if (!worker->thread.joinable()) continue;
                if (worker->wait != nullptr) {
                    worker->wait->interrupt();
                } else {
                    // One that is about to take a job is as good as inside it.
                    if (worker->inJob || (first_ != nullptr && worker->call != Call::none)) continue;
                    if (worker->call == Call::work) stopSearching();
                    if (worker->call == Call::watch) watched_ = false;
                }
                worker->call = Call::leave;
                leaving.push_back(worker.get());
            }
            idle_.clear();
        }
        for (Worker* worker : leaving) worker->wake.notify_one();
        for (Worker* worker : leaving) worker->thread.join();
    }

private:
    /// Finds someone for the ready jobs. Throws only when there is no worker at all and none can be started.
    /// @return a worker to notify once the mutex is free, or null
    Worker* recruit() {
        if (readyCount_.load(std::memory_order_relaxed) <= searching_) return nullptr;
        if (awake_ < width_) {
            ++awake_;
            ++searching_;
            if (Worker* worker = calledFromIdle(Call::work)) return worker;
            try {
                start(Call::work);
            } catch (...) {
                stopSearching();
                if (total_ == 0) throw;
            }
        } else if (!watched_) {
            watched_ = true;
            if (Worker* worker = calledFromIdle(Call::watch)) return worker;
            try {
                start(Call::watch);
            } catch (...) {
                watched_ = false;
            }
        }
        return nullptr;
    }

    /// The worker that became idle last, whose stack and caches are warmest.
    Worker* calledFromIdle(Call call) noexcept {
        if (idle_.empty()) return nullptr;
        Worker* worker = idle_.back();
        idle_.pop_back();
        worker->call = call;
        return worker;
    }

    void start(Call call) {
        if (total_ == kMaximumWorkers) {
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        }
        if (spare_.empty()) {
            workers_.reserve(workers_.size() + 1);
            idle_.reserve(workers_.size() + 1);
            spare_.reserve(workers_.size() + 1);
            workers_.push_back(std::make_unique<Worker>());
            spare_.push_back(workers_.back().get());
        }
        Worker& worker = *spare_.back();
        {
            const SignalsBlocked blocked;
            worker.thread = std::thread([this, &worker] { live(worker); });
        }
        spare_.pop_back();
        worker.call = call;
        ++total_;
    }

    void live(Worker& self) {
        currentWorker = &self;
        pthread_setname_np(pthread_self(), "ZORDispatch");
        std::unique_lock lock(mutex_);
        while (self.call != Call::leave) {
            if (self.call == Call::work) {
                workWhileReady(self, lock);
                if (self.call == Call::work) self.call = Call::none;
                if (exiting_) break;
                // Jobs may be ready that this worker is one too many for.
                if (hasReadyJobs() && !watched_) {
                    watched_ = true;
                    self.call = Call::watch;
                }
            }
            rest(self, lock);
        }
        // What ends with the thread, and waits, no longer counts: the record may be another thread's by then.
        currentWorker = nullptr;
        --total_;
        // The one who stops idle workers at exit joins them.
        if (self.call != Call::leave || !exiting_) {
            self.thread.detach();
            spare_.push_back(&self);
        }
    }

    void workWhileReady(Worker& self, std::unique_lock<std::mutex>& lock) {
        while (first_ != nullptr && self.call == Call::work && (awake_ <= width_ || self.isRelief)) {
            self.isRelief = false;
            --searching_;
            PoolJob& job = *first_;
            first_ = std::exchange(job.next_, nullptr);
            if (first_ == nullptr) last_ = nullptr;
            readyCount_.store(readyCount_.load(std::memory_order_relaxed) - 1, std::memory_order_relaxed);
            ++taken_;
            self.inJob = true;
            Worker* recruited = recruit();
            lock.unlock();
            if (recruited != nullptr) recruited->wake.notify_one();
            job.runTurn();
            lock.lock();
            self.inJob = false;
            ++searching_;
        }
        self.isRelief = false;
        stopSearching();
    }

    void stopSearching() noexcept {
        --searching_;
        --awake_;
    }

    /// Waits for a call, watching for a stall when told to. Leaves `self.call` at work or leave.
    void rest(Worker& self, std::unique_lock<std::mutex>& lock) {
        for (;;) {
            const bool watching = std::exchange(self.call, Call::none) == Call::watch;
            const std::uint64_t takenBefore = taken_;
            const auto called = [&self] { return self.call != Call::none; };
            idle_.push_back(&self);
            bool isCalled = true;
            if (watching) {
                isCalled = self.wake.wait_for(lock, kStallTime, called);
                watched_ = false;
            } else if (total_ > width_) {
                isCalled = self.wake.wait_for(lock, kSurplusTime, called);
            } else {
                self.wake.wait(lock, called);
            }
            if (isCalled) {
                if (self.call != Call::watch) return;
                continue;
            }
            std::erase(idle_, &self);
            if (exiting_ || (!watching && total_ > width_)) {
                self.call = Call::leave;
                return;
            }
            if (watching && hasReadyJobs()) {
                if (taken_ == takenBefore) {
                    self.isRelief = true;
                    self.call = Call::work;
                    ++awake_;
                    ++searching_;
                    return;
                }
                watched_ = true;
                self.call = Call::watch;
            }
        }
    }

    std::mutex mutex_;
    PoolJob* first_ = nullptr;
    PoolJob* last_ = nullptr;
    std::atomic<std::size_t> readyCount_{0};
    /// Counts the jobs taken so far; a stall shows in its standing still.
    std::uint64_t taken_ = 0;

    const std::size_t width_ = std::max(2U, std::thread::hardware_concurrency());
    /// Workers that run a job or look for one, except those that wait inside the library.
    std::size_t awake_ = 0;
    /// Those of them that look at the ready jobs before they do anything else.
    std::size_t searching_ = 0;
    std::size_t total_ = 0;
    bool watched_ = false;
    bool exiting_ = false;
    std::vector<std::unique_ptr<Worker>> workers_;
    std::vector<Worker*> idle_;
    std::vector<Worker*> spare_;
};

constinit std::atomic<DispatchPool::State*> DispatchPool::current_{nullptr};

DispatchPool::State& DispatchPool::state() {
    State* found = current_.load(std::memory_order_acquire);
    if (found == nullptr) {
        static const struct Process {
            Process() {
                pthread_atfork(nullptr, nullptr, [] {
                    current_.store(nullptr, std::memory_order_relaxed);
                    currentWorker = nullptr;
                });
            }
            ~Process() {
                if (State* last = current_.load(std::memory_order_acquire)) last->stopIdleWorkers();
            }
        } process;
        auto made = std::make_unique<State>();
        if (current_.compare_exchange_strong(found, made.get(), std::memory_order_acq_rel)) found = made.release();
    }
    return *found;
}

void DispatchPool::submit(PoolJob& job) { state().submit(job); }

bool DispatchPool::hasReadyJobs() noexcept { return state().hasReadyJobs(); }

void DispatchPool::waitForMore() noexcept {
    const State& pool = state();
    for (int look = 0; look < kLooksForMore && !pool.hasReadyJobs(); ++look) pauseProcessor();
}

DispatchPool::Blocking::Blocking() noexcept {
    if (currentWorker != nullptr) state().beginBlocking(nullptr);
}

DispatchPool::Blocking::Blocking(PoolWait& wait) noexcept {
    if (currentWorker != nullptr) state().beginBlocking(&wait);
}

DispatchPool::Blocking::~Blocking() {
    if (currentWorker != nullptr) state().endBlocking();
}

DispatchPool::EndOfTurn::EndOfTurn() noexcept {
    if (currentWorker != nullptr) currentWorker->endsTurn = true;
}

DispatchPool::EndOfTurn::~EndOfTurn() {
    if (currentWorker != nullptr) currentWorker->endsTurn = false;
}

}  // namespace ZORPlatform
