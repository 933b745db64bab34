// SPDX-License-Identifier: Apache-2.0
#pragma once

// The one small pool of threads behind every queue of the library.
//
// A job is something with work to do in turns: a serial queue, a concurrent queue, an operation queue. It submits
// itself when it has work and no turn is due to it yet, and a worker then calls `runTurn` once.
//
// Workers. As many as the machine has processors (at least two) run jobs; idle ones sleep without a time limit. Two
// things let more run:
// - a worker that waits inside the library (`DispatchPool::Blocking`) does not count until it is back;
// - while jobs are ready and every worker is busy, one more thread looks every few milliseconds whether any job was
//   taken since, and if none was, takes one itself: the caller's code is waiting for something in a way that the
//   library cannot see. Hence work that waits for other work makes progress, up to kMaximumWorkers threads.
// Surplus workers end after some seconds without work.
//
// Exit. When the process exits, workers that are not inside a job are stopped and joined, and those whose wait
// can be interrupted. The others are left alone, and the pool is never destroyed. Work submitted later still runs;
// workers then end as soon as they find none.
//
// Fork. The child starts with a pool of its own and no threads. Queues made before the fork must not be used in it.

#include <atomic>
#include <cstddef>

namespace ZORPlatform {

class PoolJob {
public:
    PoolJob() noexcept = default;
    PoolJob(const PoolJob&) = delete;
    PoolJob& operator=(const PoolJob&) = delete;

    /// Does some of the job's work, on one of the pool's threads. Called once for each `submit`. An exception that
    /// leaves the caller's code ends the process.
    virtual void runTurn() noexcept = 0;

protected:
    virtual ~PoolJob() = default;

private:
    friend class DispatchPool;
    PoolJob* next_ = nullptr;
};

/// A wait inside the library that the exit of the process may end.
class PoolWait {
public:
    PoolWait() noexcept = default;
    PoolWait(const PoolWait&) = delete;
    PoolWait& operator=(const PoolWait&) = delete;

    /// Makes the wait end, and the turn after it, without the caller's code being run: its worker is being joined. Must
    /// neither wait for anything nor submit.
    virtual void interrupt() noexcept = 0;

protected:
    virtual ~PoolWait() = default;
};

/// Thread-safe throughout.
class DispatchPool {
public:
    DispatchPool() = delete;

    /// Asks for one turn. Jobs get their turns in order of submission. The job must stay alive until its turn has
    /// begun, and must not be submitted again before.
    ///
    /// Throws `std::system_error` when not even one thread could be started; the job stays submitted, and runs once
    /// a later submission starts a thread.
    static void submit(PoolJob& job);

    /// Whether other jobs wait for a turn, so that one which has had its share should make room. A hint.
    [[nodiscard]] static bool hasReadyJobs() noexcept;

    /// Gives whoever submits many small works the time for some more, where a job that ends its turn would have to be
    /// submitted again for each. Returns soon, and at once when other jobs wait for a turn.
    static void waitForMore() noexcept;

    /// Marks that the current thread waits for something. No effect on threads that are not the pool's.
    class Blocking {
    public:
        Blocking() noexcept;
        explicit Blocking(PoolWait& wait) noexcept;
        ~Blocking();
        Blocking(const Blocking&) = delete;
        Blocking& operator=(const Blocking&) = delete;
    };

    /// Marks that the current turn ends as soon as this goes: what is submitted until then is for the thread that runs
    /// it, which gets to it sooner than one that has to be woken. No effect on threads that are not the pool's.
    class EndOfTurn {
    public:
        EndOfTurn() noexcept;
        ~EndOfTurn();
        EndOfTurn(const EndOfTurn&) = delete;
        EndOfTurn& operator=(const EndOfTurn&) = delete;
    };

    static constexpr std::size_t kMaximumWorkers = 512;

private:
    class State;
    static State& state();
    static std::atomic<State*> current_;
};

}  // namespace ZORPlatform
