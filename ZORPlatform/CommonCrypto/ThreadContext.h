// SPDX-License-Identifier: Apache-2.0
#pragma once

// A context of the cryptography library that is costly to make and cheap to use again: each thread keeps the last
// one it gave back.

#include <new>
#include <utility>

namespace ZORPlatform {

/// Borrows a context for as long as the object lives, and cleans it before the thread keeps it.
///
/// A context in use is nobody else's: a second borrower on the same thread gets another one. Borrowing also works
/// while the thread's objects are being destroyed; the context is then not kept.
///
/// Traits: `Context`, `create()` (nullptr without memory), `clean(context)` (leaves no secret behind; false when the
/// context cannot be used again), `destroy(context)`.
template <typename Traits>
class ThreadContext {
public:
    using Context = typename Traits::Context;

    /// @throws std::bad_alloc
    ThreadContext() : context_(std::exchange(kept_, nullptr)) {
        if (context_ == nullptr) context_ = Traits::create();
        if (context_ == nullptr) throw std::bad_alloc();
    }
    ThreadContext(const ThreadContext&) = delete;
    ThreadContext& operator=(const ThreadContext&) = delete;
    ~ThreadContext() {
        if (Traits::clean(context_) && kept_ == nullptr && keepsContexts()) {
            kept_ = context_;
        } else {
            Traits::destroy(context_);
        }
    }

    [[nodiscard]] Context* get() const noexcept { return context_; }

private:
    enum class State : unsigned char { kUntouched, kKeeping, kEnded };

    struct EndOfThread {
        EndOfThread() noexcept { state_ = State::kKeeping; }
        ~EndOfThread() {
            state_ = State::kEnded;
            if (kept_ != nullptr) Traits::destroy(std::exchange(kept_, nullptr));
        }
    };

    static bool keepsContexts() noexcept {
        if (state_ == State::kUntouched) static thread_local const EndOfThread endOfThread;
        return state_ == State::kKeeping;
    }

    // Without constructor and destructor, so they can be used for as long as the thread runs.
    static inline constinit thread_local Context* kept_ = nullptr;
    static inline constinit thread_local State state_ = State::kUntouched;

    Context* context_;
};

}  // namespace ZORPlatform
