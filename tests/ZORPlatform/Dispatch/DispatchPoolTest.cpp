// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchGroup.h>
#include <ZORPlatform/Dispatch/DispatchPool.h>
#include <ZORPlatform/Dispatch/DispatchQueue.h>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <latch>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

#if defined(__SANITIZE_THREAD__)
#define ZOR_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZOR_THREAD_SANITIZER 1
#endif
#endif

namespace {

using ZORPlatform::DispatchGroup;
using ZORPlatform::DispatchQueue;

std::size_t threadsOfThisProcess() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

TEST(DispatchPool, SpendsNoThreadOnTenThousandIdleQueues) {
    const std::size_t before = threadsOfThisProcess();
    std::vector<DispatchQueue> queues;
    const DispatchGroup group;
    for (int i = 0; i < 10'000; ++i) queues.push_back(DispatchQueue::serial(u"idle"));
    EXPECT_EQ(threadsOfThisProcess(), before);
    for (const DispatchQueue& queue : queues) {
        group.enter();
        queue.async([group] { group.leave(); });
    }
    group.wait();
    EXPECT_LE(threadsOfThisProcess(), before + std::max(2U, std::thread::hardware_concurrency()) + 2);
}

// Each work waits for the one submitted after it, so all have to be under way at once.
template <class Wait, class Signal>
void runWorksThatWaitForEachOther(std::size_t count, const std::vector<Wait>& wait, const std::vector<Signal>& signal) {
    const DispatchGroup all;
    for (std::size_t i = 0; i < count; ++i) {
        all.enter();
        DispatchQueue::serial(u"waits").async([&, i, all] {
            if (i + 1 < count) wait[i + 1]();
            signal[i]();
            all.leave();
        });
    }
    all.wait();
}

TEST(DispatchPool, LetsWorkWaitForOtherWorkInGroups) {
    constexpr std::size_t kCount = 40;
    std::vector<DispatchGroup> groups(kCount);
    std::vector<std::function<void()>> wait;
    std::vector<std::function<void()>> signal;
    for (const DispatchGroup& group : groups) {
        group.enter();
        wait.emplace_back([group] { group.wait(); });
        signal.emplace_back([group] { group.leave(); });
    }
    runWorksThatWaitForEachOther(kCount, wait, signal);
}

TEST(DispatchPool, LetsWorkWaitForOtherWorkByMeansThatItCannotSee) {
    constexpr std::size_t kCount = 8;
    std::vector<std::binary_semaphore*> semaphores;
    std::vector<std::function<void()>> wait;
    std::vector<std::function<void()>> signal;
    std::vector<std::unique_ptr<std::binary_semaphore>> owned;
    for (std::size_t i = 0; i < kCount; ++i) {
        owned.push_back(std::make_unique<std::binary_semaphore>(0));
        wait.emplace_back([&semaphore = *owned.back()] { semaphore.acquire(); });
        signal.emplace_back([&semaphore = *owned.back()] { semaphore.release(); });
    }
    runWorksThatWaitForEachOther(kCount, wait, signal);
}

TEST(DispatchPool, KeepsTheApplicationsSignalsAwayFromItsThreads) {
    const auto queue = DispatchQueue::serial(u"signals");
    bool blocksTermination = false;
    bool blocksFaults = true;
    const DispatchGroup group;
    group.enter();
    queue.async([&, group] {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        blocksTermination = sigismember(&mask, SIGTERM) == 1;
        blocksFaults = sigismember(&mask, SIGSEGV) == 1;
        group.leave();
    });
    group.wait();
    EXPECT_TRUE(blocksTermination);
    EXPECT_FALSE(blocksFaults);
}

void runOneWork() {
    const DispatchGroup group;
    group.enter();
    DispatchQueue::serial(u"one").async([group] { group.leave(); });
    group.wait();
}

bool isAsleep(pid_t thread) {
    std::ifstream stat("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(stat, line);
    const std::size_t nameEnd = line.rfind(')');
    return nameEnd != std::string::npos && line.compare(nameEnd, 3, ") S") == 0;
}

/// Runs `work` on a thread of the pool and returns that thread once it is idle again.
pid_t runUntilIdle(void (*work)()) {
    std::atomic<pid_t> worker{0};
    DispatchQueue::serial(u"until idle").async([&worker, work] {
        work();
        worker = gettid();
    });
    while (worker == 0) std::this_thread::yield();
    while (!isAsleep(worker)) std::this_thread::yield();
    return worker;
}

// Says on standard error when its thread ends.
struct SaysGoodbye {
    ~SaysGoodbye() { std::fputs("worker ended.", stderr); }
};
thread_local SaysGoodbye goodbye;

class DispatchPoolDeathTest : public testing::Test {
protected:
    DispatchPoolDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(DispatchPoolDeathTest, JoinsItsIdleThreadsWhenTheProcessExits) {
    EXPECT_EXIT(
        {
            runUntilIdle([] { static_cast<void>(&goodbye); });
            std::exit(0);
        },
        testing::ExitedWithCode(0), "worker ended\\.");
}

// The exit meets a worker in the moment in which that looks for something further to do.
TEST_F(DispatchPoolDeathTest, ExitsRightAfterAWork) {
    EXPECT_EXIT(
        {
            std::atomic<bool> hasRun{false};
            DispatchQueue::serial(u"last").async([&hasRun] { hasRun = true; });
            while (!hasRun) {
            }
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

std::string contextSwitches(pid_t thread) {
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
    std::string switches;
    for (std::string line; std::getline(status, line);) {
        if (line.find("ctxt_switches") != std::string::npos) switches += line;
    }
    return switches;
}

TEST_F(DispatchPoolDeathTest, SpendsNoProcessorTimeWhileIdle) {
    EXPECT_EXIT(
        {
            const pid_t worker = runUntilIdle([] {});
            // Long enough for whatever wakes up now and then. A thread that sleeps for good sleeps in any case, once it
            // has come to it.
            for (int i = 0; i < 5; ++i) {
                const std::string before = contextSwitches(worker);
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                if (!before.empty() && contextSwitches(worker) == before) std::exit(0);
            }
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(DispatchPoolDeathTest, DoesNotWaitForWorkInProgressWhenTheProcessExits) {
    EXPECT_EXIT(
        {
            std::latch begun(1);
            std::binary_semaphore never(0);
            DispatchQueue::serial(u"stays").async([&] {
                begun.count_down();
                never.acquire();
            });
            begun.wait();
            std::exit(5);
        },
        testing::ExitedWithCode(5), "");
}

/// Waits until it is interrupted.
class Interruptible final : public ZORPlatform::PoolJob, public ZORPlatform::PoolWait {
public:
    void runTurn() noexcept override {
        static_cast<void>(&goodbye);
        const ZORPlatform::DispatchPool::Blocking waiting(*this);
        begun.count_down();
        end_.acquire();
    }
    void interrupt() noexcept override { end_.release(); }

    std::latch begun{1};

private:
    std::binary_semaphore end_{0};
};

TEST_F(DispatchPoolDeathTest, InterruptsAWaitThatAllowsItWhenTheProcessExits) {
    EXPECT_EXIT(
        {
            auto& job = *new Interruptible;
            ZORPlatform::DispatchPool::submit(job);
            job.begun.wait();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "worker ended\\.");
}

/// Submits another job in the course of its turn.
class Handover final : public ZORPlatform::PoolJob {
public:
    explicit Handover(ZORPlatform::PoolJob& next) : next_(next) {}
    void runTurn() noexcept override {
        thread = gettid();
        const ZORPlatform::DispatchPool::EndOfTurn end;
        ZORPlatform::DispatchPool::submit(next_);
    }

    std::atomic<pid_t> thread{0};

private:
    ZORPlatform::PoolJob& next_;
};

class SaysItsThread final : public ZORPlatform::PoolJob {
public:
    void runTurn() noexcept override {
        thread = gettid();
        run.count_down();
    }

    std::atomic<pid_t> thread{0};
    std::latch run{1};
};

// In a process of its own: no other worker is there that could be looking for a job.
TEST_F(DispatchPoolDeathTest, LeavesWhatIsSubmittedAtTheEndOfATurnToItsThread) {
    EXPECT_EXIT(
        {
            SaysItsThread next;
            Handover first(next);
            ZORPlatform::DispatchPool::submit(first);
            next.run.wait();
            std::exit(next.thread == first.thread ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(DispatchPoolDeathTest, WakesOthersForWhatIsSubmittedEarlierInATurn) {
    EXPECT_EXIT(
        {
            SaysItsThread next;
            std::atomic<pid_t> thread{0};
            DispatchQueue::serial(u"waits").async([&] {
                thread = gettid();
                { const ZORPlatform::DispatchPool::EndOfTurn end; }
                ZORPlatform::DispatchPool::submit(next);
                next.run.wait();
            });
            next.run.wait();
            std::exit(next.thread != thread ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(DispatchPoolDeathTest, LetsWorkExitTheProcess) {
    EXPECT_EXIT(
        {
            DispatchQueue::serial(u"exits").async([] { std::exit(6); });
            std::binary_semaphore never(0);
            never.acquire();
        },
        testing::ExitedWithCode(6), "");
}

TEST_F(DispatchPoolDeathTest, StillRunsWorkThatIsSubmittedWhileTheProcessExits) {
    EXPECT_EXIT(
        {
            // Registered before the pool exists, so it runs after the pool has stopped.
            std::atexit([] {
                runOneWork();
                std::fputs("ran late.", stderr);
            });
            runOneWork();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "ran late\\.");
}

// The thread sanitizer allows no threads after a fork.
#ifndef ZOR_THREAD_SANITIZER
TEST_F(DispatchPoolDeathTest, StartsAfreshInAForkedChild) {
    EXPECT_EXIT(
        {
            runUntilIdle([] {});
            const pid_t child = fork();
            if (child == 0) {
                runOneWork();
                std::exit(7);
            }
            int status = 0;
            waitpid(child, &status, 0);
            std::exit(WIFEXITED(status) ? WEXITSTATUS(status) : 1);
        },
        testing::ExitedWithCode(7), "");
}
#endif

}  // namespace
