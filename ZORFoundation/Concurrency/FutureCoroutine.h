// SPDX-License-Identifier: Apache-2.0
#pragma once

// Coroutines over futures: a function that returns a Future may wait for others with co_await.
//
//     Future<Amount> total(Future<Amount> current, Future<Amount> savings) {
//         co_return co_await current + co_await savings;
//     }
//
// It begins on the caller's thread at once and runs until it waits for an unresolved future; it goes on inside the
// `succeed` or `fail` that resolves that one, as a callback of it. Its own future resolves when it returns, after its
// local objects are gone. Threads and the order of callbacks are those of Future.h: a coroutine that is resumed counts
// as a link made by `then`, so coroutines that wait for one another, a million deep, resume in constant stack.
//
// `co_await` gives a copy of the value. A failure is thrown as `ThrownError`, which carries the error itself. An
// exception that leaves the coroutine fails its future: a `ThrownError` with the error that it carries, any other as a
// `std::exception_ptr`.
//
// A coroutine that waits for a future which can no longer resolve is destroyed where it stands, its local objects with
// it. Arguments taken by reference must outlive the coroutine: take handles and values.
//
// This header is not part of ZORFoundation.h.

#include <ZORFoundation/Concurrency/Future.h>

#include <coroutine>
#include <exception>
#include <optional>
#include <type_traits>
#include <utility>

namespace ZORFoundation {

using ZORPlatform::ThrownError;

namespace FutureInternal {

/// What a waiting place needs of a coroutine, whatever it returns.
class CoroutineBase {
public:
    /// Where the coroutine leaves the callbacks that it releases when it ends; null while nobody collects them.
    void collectIn(CallbackList* released) noexcept { released_ = released; }

protected:
    CallbackList* released_ = nullptr;
};

/// A place where a coroutine waits. It lives in the coroutine's frame and is itself the callback on the future.
template <class T>
class Awaiter final : public FutureCallback {
    static_assert(std::is_copy_constructible_v<T>,
                  "co_await gives a copy of the value: of one that can only be moved, chain with then or map");

public:
    explicit Awaiter(Reference<FutureCore<T>> core) noexcept : core_(std::move(core)) {}

    bool await_ready() const noexcept { return core_->isResolved(); }

    template <class Coroutine>
    void await_suspend(std::coroutine_handle<Coroutine> coroutine) noexcept {
        coroutine.promise().collectIn(nullptr);
        coroutine_ = coroutine;
        base_ = &coroutine.promise();
        // Ends the frame, and with it this object, when the future can no longer resolve.
        const Reference<FutureCore<T>> core = core_;
        core->_addCallback(*this)._run();
    }

    T await_resume() const {
        const FutureValue<T>& outcome = core_->outcome();
        if (const Error* const error = outcome.ifFailure()) throw ThrownError(*error);
        return *outcome.ifSuccess();
    }

private:
    CallbackList run() noexcept override {
        const auto source = this->takeSource();
        CallbackList released;
        base_->collectIn(&released);
        // The coroutine may end and take this object along.
        coroutine_.resume();
        return released;
    }
    void end() noexcept override { coroutine_.destroy(); }

    Reference<FutureCore<T>> core_;
    std::coroutine_handle<> coroutine_;
    CoroutineBase* base_ = nullptr;
};

template <class T>
class CoroutineOutcome : public CoroutineBase {
public:
    void return_value(T value) { outcome_.emplace(FutureValue<T>::success(std::move(value))); }

protected:
    std::optional<FutureValue<T>> outcome_;
};

template <>
class CoroutineOutcome<Unit> : public CoroutineBase {
public:
    void return_void() { outcome_.emplace(FutureValue<Unit>::success({})); }

protected:
    std::optional<FutureValue<Unit>> outcome_;
};

/// The state of a coroutine that returns a `Future<T>`, as the language asks for it.
template <class T>
class Coroutine final : public CoroutineOutcome<T> {
public:
    Future<T> get_return_object() noexcept { return Access::future(Reference<FutureCore<T>>(core_.get())); }
    std::suspend_never initial_suspend() const noexcept { return {}; }
    auto final_suspend() const noexcept { return Finish(); }

    void unhandled_exception() noexcept { this->outcome_.emplace(FutureValue<T>::failure(currentError())); }

    template <class U>
    Awaiter<U> await_transform(Future<U> future) const noexcept {
        return Awaiter<U>(Access::core(std::move(future)));
    }

private:
    /// Ends the frame first and resolves the future then.
    struct Finish {
        bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<Coroutine> coroutine) const noexcept {
            Coroutine& self = coroutine.promise();
            const auto core = std::move(self.core_);
            auto outcome = *std::move(self.outcome_);
            CallbackList* const collected = self.released_;
            coroutine.destroy();
            CallbackList released = core->_setValue(std::move(outcome));
            if (collected != nullptr) {
                collected->append(std::move(released));
            } else {
                released._run();
            }
        }
        void await_resume() const noexcept {}
    };

    static Error currentError() noexcept {
        try {
            throw;
        } catch (const ThrownError& thrown) {
            return thrown.error();
        } catch (...) {
            return Error(std::current_exception());
        }
    }

    ProducerReference<FutureCore<T>> core_{new BrieflyLived<FutureCore<T>>};
};

}  // namespace FutureInternal
}  // namespace ZORFoundation

/// @cond
template <class T, class... Arguments>
struct std::coroutine_traits<ZORFoundation::Future<T>, Arguments...> {
    using promise_type = ZORFoundation::FutureInternal::Coroutine<T>;
};
/// @endcond
