// SPDX-License-Identifier: Apache-2.0
//
// Observers of files beside a thread that reads inotify by hand, and what they cost while nothing changes.
#include <benchmarks/Comparison.h>

#include <ZORFoundation/ZORFileSystemObserver.h>

#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using benchmarks::Comparison;
using std::chrono::nanoseconds;
using ZORFoundation::ZORFileSystemObserver;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kManyObservers = 1000;

/// A file to write to, gone at the end.
class File {
public:
    explicit File(const fs::path& path) : path_(path) {
        descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        if (descriptor_ < 0) std::abort();
    }
    ~File() {
        ::close(descriptor_);
        ::unlink(path_.c_str());
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    [[nodiscard]] const fs::path& path() const noexcept { return path_; }
    void write() const {
        if (::pwrite(descriptor_, "x", 1, 0) != 1) std::abort();
    }

private:
    fs::path path_;
    int descriptor_ = -1;
};

fs::path ownPath(const std::string& name) {
    return fs::temp_directory_path() / ("zor-watched-" + std::to_string(::getpid()) + name);
}

/// When the last change was noticed.
struct Notice {
    Clock::time_point at;
    std::binary_semaphore isThere{0};

    void give() {
        at = Clock::now();
        isThere.release();
    }
};

/// The median of the times from a write to its notice, each after a moment of rest.
nanoseconds fromWriteToNotice(const File& file, Notice& notice) {
    std::array<nanoseconds, 201> samples{};
    for (nanoseconds& sample : samples) {
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        const Clock::time_point written = Clock::now();
        file.write();
        notice.isThere.acquire();
        sample = notice.at - written;
    }
    const auto middle = samples.begin() + samples.size() / 2;
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

nanoseconds observed(const File& file) {
    const auto notice = std::make_shared<Notice>();
    const ZORFileSystemObserver observer(file.path(), [notice] { notice->give(); });
    const nanoseconds median = fromWriteToNotice(file, *notice);
    observer.stopObserving();
    return median;
}

/// A thread of one's own that sleeps in reading.
nanoseconds readByHand(const File& file) {
    Notice notice;
    const int inotify = ::inotify_init1(IN_CLOEXEC);
    const int watch = ::inotify_add_watch(inotify, file.path().c_str(), IN_MODIFY);
    std::thread reader([&notice, inotify] {
        std::array<char, 4096> events;
        for (;;) {
            if (::read(inotify, events.data(), events.size()) <= 0) return;
            if ((reinterpret_cast<const inotify_event*>(events.data())->mask & IN_IGNORED) != 0) return;
            notice.give();
        }
    });
    const nanoseconds median = fromWriteToNotice(file, notice);
    ::inotify_rm_watch(inotify, watch);
    reader.join();
    ::close(inotify);
    return median;
}

/// Files with an observer each.
class ManyObservers {
public:
    ManyObservers() {
        for (std::size_t i = 0; i < kManyObservers; ++i) {
            files_.push_back(std::make_unique<File>(ownPath("-" + std::to_string(i))));
            observers_.emplace_back(files_.back()->path(), [] {});
        }
    }
    ~ManyObservers() {
        for (const ZORFileSystemObserver& observer : observers_) observer.stopObserving();
    }
    ManyObservers(const ManyObservers&) = delete;
    ManyObservers& operator=(const ManyObservers&) = delete;

private:
    std::vector<std::unique_ptr<File>> files_;
    std::vector<ZORFileSystemObserver> observers_;
};

/// Processor time of all threads while this one sleeps for a tenth of a second.
nanoseconds processorTimeAtRest() {
    const auto processorTime = [] {
        timespec time{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
    };
    const nanoseconds before = processorTime();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return processorTime() - before;
}

const Comparison kLatency = Comparison("a change of a file, from write to block, p50")
                                .candidate([] { return observed(File(ownPath(""))); })
                                .floor("a thread that reads inotify", [] { return readByHand(File(ownPath(""))); })
                                .atMostNanoseconds(50'000)
                                .add();

const Comparison kLatencyAmongMany = Comparison("the same among 1,000 observers, p50")
                                         .candidate([] {
                                             const ManyObservers many;
                                             return observed(File(ownPath("")));
                                         })
                                         .atMostNanoseconds(50'000)
                                         .add();

// Going to sleep and waking up is all that is left.
const Comparison kIdle = Comparison("1,000 observers at rest, processor time in 100 ms")
                             .candidate([] {
                                 const ManyObservers many;
                                 return processorTimeAtRest();
                             })
                             .floor("no observer", [] { return processorTimeAtRest(); })
                             .atMostNanoseconds(100'000)
                             .add();

const Comparison kMaking =
    Comparison("making and stopping an observer, each")
        .inElapsedTime()
        .itemsPerCall(kManyObservers)
        .candidate([] {
            const File file(ownPath(""));
            for (std::size_t i = 0; i < kManyObservers; ++i) {
                ZORFileSystemObserver(file.path(), [] {}).stopObserving();
            }
        })
        .floor("inotify_add_watch and inotify_rm_watch",
               [] {
                   const File file(ownPath(""));
                   const int inotify = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
                   for (std::size_t i = 0; i < kManyObservers; ++i) {
                       ::inotify_rm_watch(inotify, ::inotify_add_watch(inotify, file.path().c_str(), IN_MODIFY));
                   }
                   ::close(inotify);
               })
        .add();

}  // namespace
