// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/DispatchSource.h>

#include <ZORPlatform/Dispatch/FileSystemWatchesInternal.h>
#include <ZORPlatform/Dispatch/SignalsBlockedInternal.h>
#include <ZORPlatform/Foundation/SystemCallsInternal.h>

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace ZORPlatform {
namespace {

/// The watches of the process and the thread that reads their events. Never destroyed: sources may be made and
/// cancelled while the process exits.
class EventReader {
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
        const Descriptor wake{systemCalls().eventfd()};
        std::thread thread;
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
        if (!made->watches.isOpen() || !made->wake.isOpen()) return nullptr;
        try {
            const SignalsBlocked blocked;
            made->thread = std::thread([&running = *made] { read(running); });
        } catch (const std::system_error&) {
            return nullptr;
        }
        running_ = std::move(made);
        return running_.get();
    }

    static void read(Running& running) {
        pthread_setname_np(pthread_self(), "ZORFileEvents");
        std::array<pollfd, 2> waiting{{{running.watches.descriptor(), POLLIN, 0}, {running.wake.number(), POLLIN, 0}}};
        for (;;) {
            const int ready = ::poll(waiting.data(), waiting.size(), -1);
            if (ready < 0 && errno == EINTR) continue;
            // A descriptor that the application has closed by mistake would be ready for ever.
            if (ready < 0 || waiting[0].revents != POLLIN || waiting[1].revents != 0) return;
            running.watches.readEvents();
        }
    }

    /// At the exit of the process.
    void stop() {
        {
            const std::scoped_lock lock(mutex_);
            isExiting_ = true;
            if (running_ == nullptr) return;
        }
        const std::uint64_t one = 1;
        if (::write(running_->wake.number(), &one, sizeof one) == sizeof one) running_->thread.join();
    }

    /// In a child process: the instance is the parent's, too, and what is done to it would be done to the parent. Its
    /// thread is not there, so it is never destroyed; it stays linked, because it is not lost either.
    void inherit() noexcept {
        older_ = std::exchange(inherited_, this);
        if (running_ == nullptr) return;
        ::close(running_->watches.descriptor());
        ::close(running_->wake.number());
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
