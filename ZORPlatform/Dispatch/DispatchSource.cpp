// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchSource.h>

#include <ZORPlatform/Dispatch/DispatchPool.h>
#include <ZORPlatform/Dispatch/FileSystemWatchesInternal.h>
#include <ZORPlatform/Foundation/SystemCallsInternal.h>

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <mutex>
#include <system_error>
#include <utility>

namespace ZORPlatform {
namespace {

/// The watches of the process and the job that reads their events, on one thread of the pool at a time. That thread
/// goes on with what the events have made due, and another one comes to wait for the next: so an event wakes just one
/// thread before the caller's code runs. Never destroyed: sources may be made and cancelled while the process exits.
class EventReader final : private PoolJob, private PoolWait {
public:
    static EventReader& shared();

    int add(const std::filesystem::path& path, std::shared_ptr<FileSystemListener> listener) {
        Running* const running = startedIfNeeded();
        return running != nullptr ? running->watches.add(path, std::move(listener)) : -1;
    }

    void remove(int number, const FileSystemListener& listener) {
        if (Running* const running = started()) running->watches.remove(number, listener);
    }

private:
    /// Made once and kept.
    struct Running {
        FileSystemWatches watches;
        const Descriptor end{systemCalls().eventfd()};
    };

    Running* started() {
        const std::scoped_lock lock(mutex_);
        return running_.get();
    }

    /// Null when something that is needed cannot be had, and once the process is about to exit.
    Running* startedIfNeeded() {
        const std::scoped_lock lock(mutex_);
        if (isExiting_) return nullptr;
        if (running_ != nullptr) return running_.get();
        auto made = std::make_unique<Running>();
        if (!made->watches.isOpen() || !made->end.isOpen()) return nullptr;
        running_ = std::move(made);
        try {
            DispatchPool::submit(*this);
        } catch (const std::system_error&) {
            // No thread could be started; the turn comes with what is submitted next.
        }
        return running_.get();
    }

    void runTurn() noexcept override {
        if (!waitForEvents()) return;
        const DispatchPool::EndOfTurn end;
        running_->watches.readEvents();
        DispatchPool::submit(*this);
    }

    /// @return false when there is nothing to wait for any more
    [[nodiscard]] bool waitForEvents() noexcept {
        const DispatchPool::Blocking waiting(*this);
        std::array<pollfd, 2> ready{{{running_->watches.descriptor(), POLLIN, 0}, {running_->end.number(), POLLIN, 0}}};
        while (::poll(ready.data(), ready.size(), -1) < 0) {
            if (errno != EINTR) return false;
        }
        // A descriptor that the application has closed by mistake would be ready for ever.
        return ready[0].revents == POLLIN && ready[1].revents == 0;
    }

    /// Nobody reads what is written here, so that no later turn waits, either.
    void interrupt() noexcept override { ::eventfd_write(running_->end.number(), 1); }

    /// At the exit of the process, before the pool's.
    void stop() {
        const std::scoped_lock lock(mutex_);
        isExiting_ = true;
        if (running_ != nullptr) interrupt();
    }

    /// In a child process: the instance is the parent's, too, and what is done to it would be done to the parent. The
    /// parent's pool has it for a job, so it is never destroyed; it stays linked, because it is not lost either.
    void inherit() noexcept {
        older_ = std::exchange(inherited_, this);
        if (running_ == nullptr) return;
        ::close(running_->watches.descriptor());
        ::close(running_->end.number());
    }

    static std::atomic<EventReader*> current_;
    static const EventReader* inherited_;

    std::mutex mutex_;
    bool isExiting_ = false;
    std::unique_ptr<Running> running_;
    const EventReader* older_ = nullptr;
};

constinit std::atomic<EventReader*> EventReader::current_{nullptr};
constinit const EventReader* EventReader::inherited_ = nullptr;

EventReader& EventReader::shared() {
    EventReader* found = current_.load(std::memory_order_acquire);
    if (found == nullptr) {
        static const struct Process {
            Process() {
                // What is there first is there longer.
                static_cast<void>(DispatchPool::hasReadyJobs());
                pthread_atfork(nullptr, nullptr, [] {
                    if (EventReader* parents = current_.exchange(nullptr)) parents->inherit();
                });
            }
            ~Process() {
                if (EventReader* last = current_.load(std::memory_order_acquire)) last->stop();
            }
        } process;
        auto made = std::make_unique<EventReader>();
        if (current_.compare_exchange_strong(found, made.get(), std::memory_order_acq_rel)) found = made.release();
    }
    return *found;
}

}  // namespace

DispatchSource::DispatchSource(Private, DispatchQueue queue, std::function<void()> eventHandler)
    : queue_(std::move(queue)), eventHandler_(std::move(eventHandler)) {}

std::shared_ptr<DispatchSource> DispatchSource::makeFileSystemObjectSource(const std::filesystem::path& path,
                                                                           DispatchQueue queue,
                                                                           std::function<void()> eventHandler) {
    auto source = std::make_shared<DispatchSource>(Private(), std::move(queue), std::move(eventHandler));
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    if (!error) source->handle_ = EventReader::shared().add(absolute, source);
    return source;
}

void DispatchSource::cancel() {
    if (isCancelled_.exchange(true)) return;
    if (handle_ >= 0) EventReader::shared().remove(handle_, *this);
    submit([self = shared_from_this()] { self->eventHandler_ = nullptr; });
}

void DispatchSource::changed() {
    if (!isDue_.exchange(true)) submit([self = shared_from_this()] { self->deliver(); });
}

void DispatchSource::deliver() {
    // Before the call: what happens during it is due another one.
    isDue_.store(false);
    if (!isCancelled_.load()) eventHandler_();
}

void DispatchSource::submit(DispatchWork work) const {
    try {
        queue_.async(std::move(work));
    } catch (const std::system_error&) {
        // No thread could be started; the queue has kept the work and runs it with what is submitted next.
    }
}

}  // namespace ZORPlatform
