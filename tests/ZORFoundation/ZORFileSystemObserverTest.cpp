// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORFileSystemObserver.h>

#include <ZORPlatform/Dispatch/DispatchGroup.h>

#include <gtest/gtest.h>
#include <support/FailingSystemCalls.h>
#include <support/TemporaryDirectory.h>

#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
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

namespace ZORFoundation {
namespace {

namespace fs = std::filesystem;
using support::TemporaryDirectory;
using ZORPlatform::DispatchGroup;

void append(const fs::path& path) { std::ofstream(path, std::ios::app) << "more"; }

/// Returns once the queue has run what it has.
void drain(const DispatchQueue& serial) {
    const DispatchGroup group;
    group.enter();
    serial.async([group] { group.leave(); });
    group.wait();
}

class ZORFileSystemObserverTest : public testing::Test {
protected:
    ~ZORFileSystemObserverTest() override { sentinel_.stopObserving(); }

    /// Returns once the observers have been told of all that has happened so far, and their queues have run what they
    /// had. The events of all observers are read in order, so when the last has arrived the others have, too.
    template <class... Observer>
    void settle(const Observer&... observer) {
        append(sentinelFile_);
        sentinelCalls_.acquire();
        (drain(observer.workerQueue()), ...);
    }

    [[nodiscard]] fs::path file(const std::string& name = "file") const { return directory_ / name; }
    fs::path made(const std::string& name = "file") const { return directory_.write(name, "content"); }

    TemporaryDirectory directory_;
    std::atomic<int> calls_{0};

private:
    TemporaryDirectory sentinelDirectory_;
    fs::path sentinelFile_ = sentinelDirectory_.write("sentinel", "");
    std::counting_semaphore<> sentinelCalls_{0};
    const ZORFileSystemObserver sentinel_{sentinelFile_, [this] { sentinelCalls_.release(); }};
};

TEST_F(ZORFileSystemObserverTest, CallsTheBlockWhenTheFileIsWrittenTo) {
    const ZORFileSystemObserver observer(made(), [this] { ++calls_; });
    append(file());
    settle(observer);
    EXPECT_EQ(calls_, 1);
    append(file());
    settle(observer);
    EXPECT_EQ(calls_, 2);
    observer.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, CallsTheBlockWhenTheFileIsDeleted) {
    const ZORFileSystemObserver observer(made(), [this] { ++calls_; });
    fs::remove(file());
    settle(observer);
    EXPECT_EQ(calls_, 1);
    observer.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, DoesNotCallTheBlockForADeletionAfterStopping) {
    const ZORFileSystemObserver observer(made(), [this] { ++calls_; });
    observer.stopObserving();
    fs::remove(file());
    settle(observer);
    EXPECT_EQ(calls_, 0);
}

TEST_F(ZORFileSystemObserverTest, CallsTheBlockWhenTheDirectorysEntriesChange) {
    const ZORFileSystemObserver observer(directory_.path(), [this] { ++calls_; });
    made();
    settle(observer);
    EXPECT_GE(calls_.exchange(0), 1);
    fs::rename(file(), file("renamed"));
    settle(observer);
    EXPECT_GE(calls_.exchange(0), 1);
    fs::remove(file("renamed"));
    settle(observer);
    EXPECT_EQ(calls_.exchange(0), 1);
    fs::remove(directory_.path());
    settle(observer);
    EXPECT_EQ(calls_, 1);
    observer.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, IsSilentAfterAnAtomicReplacement) {
    const ZORFileSystemObserver observer(made(), [this] { ++calls_; });
    fs::rename(made("replacement"), file());
    settle(observer);
    EXPECT_EQ(calls_, 1);
    append(file());
    settle(observer);
    EXPECT_EQ(calls_, 1);
    observer.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, RunsTheBlockOnItsOwnSerialQueue) {
    std::thread::id thread;
    const ZORFileSystemObserver observer(made(), [&] { thread = std::this_thread::get_id(); });
    const ZORFileSystemObserver other(file(), [] {});
    append(file());
    settle(observer);
    EXPECT_NE(thread, std::thread::id());
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_EQ(observer.workerQueue().label(), u"DirectoryObserving queue");
    EXPECT_NE(observer.workerQueue(), other.workerQueue());
    observer.stopObserving();
    other.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, MergesWhatHappensDuringACallIntoOneMore) {
    std::binary_semaphore begun(0);
    std::binary_semaphore mayEnd(0);
    const ZORFileSystemObserver observer(made(), [&] {
        if (++calls_ != 1) return;
        begun.release();
        mayEnd.acquire();
    });
    append(file());
    begun.acquire();
    for (int i = 0; i < 1000; ++i) append(file());
    settle();
    mayEnd.release();
    drain(observer.workerQueue());
    EXPECT_EQ(calls_, 2);
    observer.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, StopsWithinTheBlockForGood) {
    std::optional<ZORFileSystemObserver> observer;
    std::binary_semaphore isMade(0);
    observer.emplace(made(), [&] {
        isMade.acquire();
        ++calls_;
        observer->stopObserving();
    });
    append(file());
    // More is due before the first call goes on.
    settle();
    append(file());
    settle();
    isMade.release();
    drain(observer->workerQueue());
    append(file());
    settle(*observer);
    EXPECT_EQ(calls_, 1);
    EXPECT_EQ(observer->fileDescriptor(), std::nullopt);
}

TEST_F(ZORFileSystemObserverTest, StartsNoCallThatWasDueWhenItWasStopped) {
    const ZORFileSystemObserver observer(made(), [this] { ++calls_; });
    std::binary_semaphore mayEnd(0);
    observer.workerQueue().async([&] { mayEnd.acquire(); });
    append(file());
    settle();
    observer.stopObserving();
    mayEnd.release();
    drain(observer.workerQueue());
    EXPECT_EQ(calls_, 0);
}

TEST_F(ZORFileSystemObserverTest, StoppingTwiceDoesNothingTheSecondTime) {
    const ZORFileSystemObserver observer(made(), [this] { ++calls_; });
    observer.stopObserving();
    const ZORFileSystemObserver second(file(), [this] { ++calls_; });
    observer.stopObserving();
    append(file());
    settle(observer, second);
    EXPECT_EQ(calls_, 1);
    second.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, GoesOnWhenItsHandlesAreDropped) {
    std::optional<ZORFileSystemObserver> observer(std::in_place, made(), [this] { ++calls_; });
    const DispatchQueue queue = observer->workerQueue();
    ZORFileSystemObserver copy = *observer;
    EXPECT_EQ(copy, *observer);
    observer.reset();
    append(file());
    settle(copy);
    EXPECT_EQ(calls_, 1);
    copy.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, CallsTheBlockOfAnObserverThatNobodyHolds) {
    // Lives as long as the process: nobody can stop the observer.
    static std::counting_semaphore<> calls(0);
    static_cast<void>(ZORFileSystemObserver(made(), [] { calls.release(); }));
    append(file());
    calls.acquire();
    append(file());
    calls.acquire();
}

TEST_F(ZORFileSystemObserverTest, IsTheSameObserverInEveryCopyOnly) {
    const ZORFileSystemObserver observer(made(), [] {});
    const ZORFileSystemObserver other(file(), [] {});
    const ZORFileSystemObserver copy = observer;
    EXPECT_EQ(copy, observer);
    EXPECT_NE(other, observer);
    copy.stopObserving();
    EXPECT_EQ(observer.fileDescriptor(), std::nullopt);
    other.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, SharesTheNumberOfItsWatchWithOthersOfTheSameFile) {
    const ZORFileSystemObserver one(made(), [this] { ++calls_; });
    const ZORFileSystemObserver two(file(), [this] { calls_ += 10; });
    const ZORFileSystemObserver elsewhere(made("other"), [] {});
    EXPECT_GT(one.fileDescriptor(), 0);
    EXPECT_EQ(one.fileDescriptor(), two.fileDescriptor());
    EXPECT_NE(one.fileDescriptor(), elsewhere.fileDescriptor());
    one.stopObserving();
    append(file());
    settle(one, two);
    EXPECT_EQ(calls_, 10);
    two.stopObserving();
    elsewhere.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, NeverReportsAPathThatCouldNotBeOpened) {
    const ZORFileSystemObserver observer(file("missing"), [this] { ++calls_; });
    EXPECT_EQ(observer.fileDescriptor(), -1);
    made("missing");
    append(file("missing"));
    fs::remove(file("missing"));
    settle(observer);
    EXPECT_EQ(calls_, 0);
    observer.stopObserving();
    EXPECT_EQ(observer.fileDescriptor(), std::nullopt);
}

TEST_F(ZORFileSystemObserverTest, CountsARelativePathFromTheDirectoryOfTheStart) {
    made();
    const fs::path before = fs::current_path();
    fs::current_path(directory_.path());
    const ZORFileSystemObserver observer("file", [this] { ++calls_; });
    fs::current_path(before);
    const std::ifstream holder(file());
    fs::remove(file());
    settle(observer);
    EXPECT_EQ(calls_, 1);
    observer.stopObserving();
}

TEST_F(ZORFileSystemObserverTest, DestroysTheBlockOnItsQueueAfterStopping) {
    struct Held {
        explicit Held(std::thread::id& where) : seen(where) {}
        ~Held() { seen = std::this_thread::get_id(); }
        std::thread::id& seen;
    };
    std::thread::id destroyer;
    const ZORFileSystemObserver observer(made(), [held = std::make_shared<Held>(destroyer)] {});
    observer.stopObserving();
    drain(observer.workerQueue());
    EXPECT_NE(destroyer, std::thread::id());
    EXPECT_NE(destroyer, std::this_thread::get_id());
}

TEST_F(ZORFileSystemObserverTest, WatchesAThousandFilesAtOnce) {
    std::vector<ZORFileSystemObserver> observers;
    std::vector<std::atomic<int>> calls(1000);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        observers.emplace_back(made("file" + std::to_string(i)), [&count = calls[i]] { ++count; });
    }
    for (std::size_t i = 0; i < calls.size(); i += 2) append(file("file" + std::to_string(i)));
    settle();
    for (std::size_t i = 0; i < calls.size(); ++i) {
        drain(observers[i].workerQueue());
        EXPECT_EQ(calls[i], i % 2 == 0 ? 1 : 0) << i;
        observers[i].stopObserving();
    }
}

TEST_F(ZORFileSystemObserverTest, MayBeMadeAndStoppedByManyThreadsWhileFilesChange) {
    made();
    std::atomic<bool> isOver{false};
    std::thread writer([&] {
        while (!isOver) append(file());
    });
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([this] {
            for (int i = 0; i < 200; ++i) {
                const ZORFileSystemObserver observer(file(), [this] { ++calls_; });
                observer.stopObserving();
                drain(observer.workerQueue());
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    isOver = true;
    writer.join();
    const int before = calls_;
    append(file());
    settle();
    EXPECT_EQ(calls_, before);
}

class ZORFileSystemObserverDeathTest : public testing::Test {
protected:
    ZORFileSystemObserverDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Waits for the call of a block in a process of its own.
    static void runOneCall() {
        const TemporaryDirectory directory;
        const fs::path file = directory.write("file", "");
        std::binary_semaphore called(0);
        const ZORFileSystemObserver observer(file, [&] { called.release(); });
        append(file);
        called.acquire();
        observer.stopObserving();
    }
};

TEST_F(ZORFileSystemObserverDeathTest, StopsTheProcessOnAnEmptyBlock) {
    EXPECT_DEATH(ZORFileSystemObserver("/", nullptr), "ZORFileSystemObserver: the block must not be empty");
}

/// What `fileDescriptor()` answers when the n-th system call of the constructor fails.
std::optional<std::int32_t> descriptorWhenCallFails(int call, const fs::path& path) {
    support::FailingSystemCalls failing(call, support::FailingSystemCalls::Outcome::fails, EMFILE);
    const ZORPlatform::ReplacedSystemCalls replaced(failing);
    const ZORFileSystemObserver observer(path, [] {});
    const auto descriptor = observer.fileDescriptor();
    observer.stopObserving();
    return descriptor;
}

TEST_F(ZORFileSystemObserverDeathTest, NeverReportsWhenASystemCallFailsAndTriesAgainForTheNext) {
    EXPECT_EXIT(
        {
            // The instance and the reader's wake-up.
            if (descriptorWhenCallFails(1, "/") != -1) std::exit(1);
            if (descriptorWhenCallFails(2, "/") != -1) std::exit(2);
            runOneCall();
            // The reader runs: what is left are the file and its watch.
            if (descriptorWhenCallFails(1, "/") != -1) std::exit(3);
            if (descriptorWhenCallFails(2, "/") != -1) std::exit(4);
            runOneCall();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

/// By name: a sanitizer keeps a thread of its own.
bool poolIsRunning() {
    for (const fs::directory_entry& task : fs::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        if (name == "ZORDispatch") return true;
    }
    return false;
}

TEST_F(ZORFileSystemObserverDeathTest, EndsTheThreadThatWaitsForEventsWhenTheProcessExits) {
    EXPECT_EXIT(
        {
            // Registered before the pool exists, so it runs after the pool has stopped.
            std::atexit([] {
                // A joined thread may be listed a little longer.
                for (int i = 0; i < 10'000 && poolIsRunning(); ++i) std::this_thread::yield();
                _exit(poolIsRunning() ? 1 : 9);
            });
            runOneCall();
            if (!poolIsRunning()) _exit(2);
            std::exit(0);
        },
        testing::ExitedWithCode(9), "");
}

TEST_F(ZORFileSystemObserverDeathTest, LetsTheBlockExitTheProcess) {
    EXPECT_EXIT(
        {
            const TemporaryDirectory directory;
            const fs::path file = directory.write("file", "");
            const ZORFileSystemObserver observer(file, [] { std::exit(6); });
            append(file);
            std::binary_semaphore never(0);
            never.acquire();
        },
        testing::ExitedWithCode(6), "");
}

TEST_F(ZORFileSystemObserverDeathTest, MayBeMadeAndStoppedWhileTheProcessExits) {
    EXPECT_EXIT(
        {
            // Registered before the reader exists, so it runs after the reader has stopped.
            std::atexit([] {
                const ZORFileSystemObserver observer("/", [] {});
                if (observer.fileDescriptor() != -1) _exit(1);
                observer.stopObserving();
                _exit(8);
            });
            runOneCall();
            std::exit(0);
        },
        testing::ExitedWithCode(8), "");
}

// The thread sanitizer allows no threads after a fork.
#ifndef ZOR_THREAD_SANITIZER
TEST_F(ZORFileSystemObserverDeathTest, StartsAfreshInAForkedChildAndGoesOnInTheParent) {
    EXPECT_EXIT(
        {
            const TemporaryDirectory directory;
            const fs::path file = directory.write("file", "");
            std::binary_semaphore called(0);
            const ZORFileSystemObserver observer(file, [&] { called.release(); });
            append(file);
            called.acquire();
            const pid_t child = fork();
            if (child == 0) {
                runOneCall();
                std::exit(7);
            }
            int status = 0;
            waitpid(child, &status, 0);
            append(file);
            called.acquire();
            observer.stopObserving();
            std::exit(WIFEXITED(status) ? WEXITSTATUS(status) : 1);
        },
        testing::ExitedWithCode(7), "");
}
#endif

}  // namespace
}  // namespace ZORFoundation
