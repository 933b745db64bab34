// SPDX-License-Identifier: Apache-2.0
#pragma once

// Callbacks still to run, and the loop that runs them. Internal to the futures: applications use Future and Promise.
//
// A callback never runs the callbacks of the futures that it resolves: it returns them as a list, and one loop runs
// them all, breadth first. So a chain of any length resolves in constant stack. What is never run is disposed of by a
// loop as well.
//
// Callbacks are nodes linked through themselves: a list of any length takes no memory of its own.

#include <cstdint>
#include <type_traits>
#include <utility>

namespace ZORFoundation::FutureInternal {

class CallbackList;

/// A heap object that ends through the thread's disposal loop.
class Disposable {
public:
    Disposable() = default;
    Disposable(const Disposable&) = delete;
    Disposable& operator=(const Disposable&) = delete;

    /// Ends `object`. While another object of the same thread is being ended, only queues it: links that hold one
    /// another, a million deep, take constant stack.
    static void dispose(Disposable& object) noexcept;

protected:
    struct Counts {
        std::uint32_t references;
        std::uint32_t producers;
    };

    virtual ~Disposable() = default;

    /// A counted object is linked only when it is counted no more.
    union {
        Disposable* next_ = nullptr;
        Counts counts_;
    };

private:
    friend class CallbackList;
    struct Queue {
        Disposable* first;
        Disposable* last;
        bool isDraining;
    };
    static thread_local Queue queue_;

    /// Releases what the object holds and its memory.
    virtual void end() noexcept = 0;
};

inline constinit thread_local Disposable::Queue Disposable::queue_{};

/// A registered callback. It ends by being run or, when its future can no longer resolve, by being disposed of.
class CallbackNode : public Disposable {
public:
    /// Calls the callback and ends the node's registration.
    /// @return the callbacks of the futures that it resolved, not yet run
    virtual CallbackList run() noexcept = 0;
};

/// `CallbackList`: the callbacks still to run, in order. Moved, not copied: every callback runs once. Whoever is handed
/// a list runs it, disposes of it or appends it to another; it does neither by itself, so that it travels in a
/// register. For one thread at a time.
class CallbackList {
public:
    CallbackList() = default;
    /// From a literal list of callables that take nothing and return a `CallbackList`.
    template <class... Callbacks>
    requires(sizeof...(Callbacks) > 0 &&
             (std::is_invocable_r_v<CallbackList, Callbacks&> && ...)) explicit CallbackList(Callbacks... callbacks) {
        (append(std::move(callbacks)), ...);
    }
    CallbackList(CallbackList&&) = default;
    CallbackList& operator=(CallbackList&&) = default;

    [[nodiscard]] bool isEmpty() const noexcept { return last_ == nullptr; }

    void append(CallbackNode& callback) noexcept {
        if (last_ == nullptr) {
            callback.next_ = &callback;
        } else {
            callback.next_ = std::exchange(last_->next_, &callback);
        }
        last_ = &callback;
    }
    void append(CallbackList&& other) noexcept {
        if (other.last_ == nullptr) return;
        if (last_ != nullptr) std::swap(last_->next_, other.last_->next_);
        last_ = other.last_;
    }
    /// Appends a callable that takes nothing and returns a `CallbackList`.
    template <class Callback>
    requires std::is_invocable_r_v<CallbackList, Callback&>
    void append(Callback callback);

    /// `_run`
    ///
    /// Calls the callbacks and all that they release, until none is left: first this list in order, then what those
    /// released in order, level by level. As a queue the levels come about by themselves: what a callback releases is
    /// put behind everything that waits.
    void _run() noexcept {
        while (last_ != nullptr) append(takeFirst().run());
    }

    /// Ends all callbacks without running them.
    void dispose() noexcept {
        while (last_ != nullptr) Disposable::dispose(takeFirst());
    }

    /// Calls `visit` with each callback, in order.
    template <class Visit>
    void forEach(Visit visit) const {
        if (last_ == nullptr) return;
        CallbackNode* callback = last_;
        do {
            callback = static_cast<CallbackNode*>(callback->next_);
            visit(*callback);
        } while (callback != last_);
    }

private:
    CallbackNode& takeFirst() noexcept {
        auto* const first = static_cast<CallbackNode*>(last_->next_);
        if (first == last_) {
            last_ = nullptr;
        } else {
            last_->next_ = first->next_;
        }
        return *first;
    }

    /// The last callback, whose successor is the first: the list is a ring, so both ends are at hand.
    CallbackNode* last_ = nullptr;
};

inline void Disposable::dispose(Disposable& object) noexcept {
    Queue& queue = queue_;
    if (queue.isDraining) {
        object.next_ = nullptr;
        (queue.first == nullptr ? queue.first : queue.last->next_) = &object;
        queue.last = &object;
        return;
    }
    queue.isDraining = true;
    object.end();
    while (queue.first != nullptr) {
        Disposable& next = *queue.first;
        queue.first = next.next_;
        next.end();
    }
    queue.isDraining = false;
}

template <class Callback>
requires std::is_invocable_r_v<CallbackList, Callback&>
void CallbackList::append(Callback callback) {
    class Node final : public CallbackNode {
    public:
        explicit Node(Callback callable) : callable_(std::move(callable)) {}

    private:
        CallbackList run() noexcept override {
            CallbackList released = callable_();
            end();
            return released;
        }
        void end() noexcept override { delete this; }

        Callback callable_;
    };
    append(*new Node(std::move(callback)));
}

}  // namespace ZORFoundation::FutureInternal
