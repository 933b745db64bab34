// SPDX-License-Identifier: Apache-2.0
#pragma once

// The rules of futures written down word for word, with copied lists and shared pointers: slow, and what the library is
// compared with. Same operations as the library's, so that one script drives both.

#include <ZORFoundation/Concurrency/FutureValue.h>
#include <ZORFoundation/Concurrency/Unit.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace support::literal {

using ZORFoundation::Error;
using ZORFoundation::FutureValue;
using ZORFoundation::Unit;

struct CallbackList {
    using Callback = std::function<CallbackList()>;

    std::shared_ptr<const Callback> firstCallback;
    std::optional<std::vector<Callback>> furtherCallbacks;

    void append(Callback callback) {
        if (!firstCallback) {
            firstCallback = std::make_shared<const Callback>(std::move(callback));
        } else if (!furtherCallbacks) {
            furtherCallbacks = std::vector<Callback>{std::move(callback)};
        } else {
            furtherCallbacks->push_back(std::move(callback));
        }
    }

    [[nodiscard]] std::vector<Callback> flattened() const {
        std::vector<Callback> sequence;
        if (!firstCallback) return sequence;
        sequence.push_back(*firstCallback);
        if (furtherCallbacks) sequence.insert(sequence.end(), furtherCallbacks->begin(), furtherCallbacks->end());
        return sequence;
    }

    void run() const {
        if (!firstCallback) return;
        std::vector<Callback> pending;
        if (furtherCallbacks) {
            pending = flattened();
        } else {
            Callback current = *firstCallback;
            for (;;) {
                const CallbackList list = current();
                if (!list.firstCallback) return;
                if (list.furtherCallbacks) {
                    pending = list.flattened();
                    break;
                }
                current = *list.firstCallback;
            }
        }
        while (!pending.empty()) {
            const std::vector<Callback> level = std::exchange(pending, {});
            for (const Callback& callback : level) {
                for (Callback& next : callback().flattened()) pending.push_back(std::move(next));
            }
        }
    }
};

/// Callbacks hold their future here, so unresolved futures make cycles. This frees all that are left.
class Unresolved {
public:
    static void add(const std::shared_ptr<CallbackList>& callbacks) { all().push_back(callbacks); }
    static void dropAll() {
        for (const std::weak_ptr<CallbackList>& callbacks : std::exchange(all(), {})) {
            if (const auto alive = callbacks.lock()) *alive = {};
        }
    }

private:
    static std::vector<std::weak_ptr<CallbackList>>& all() {
        static thread_local std::vector<std::weak_ptr<CallbackList>> callbacks;
        return callbacks;
    }
};

template <class T>
class Future {
public:
    Future() { Unresolved::add(std::shared_ptr<CallbackList>(state_, &state_->callbacks)); }
    explicit Future(FutureValue<T> value) { state_->value = std::move(value); }

    static Future succeeded(T value) { return Future(FutureValue<T>::success(std::move(value))); }
    static Future failed(Error error) { return Future(FutureValue<T>::failure(std::move(error))); }

    [[nodiscard]] const FutureValue<T>& outcome() const {
        if (!state_->value) std::abort();
        return *state_->value;
    }
    CallbackList setValue(FutureValue<T> value) const {
        if (state_->value) return {};
        state_->value = std::move(value);
        return std::exchange(state_->callbacks, {});
    }
    CallbackList addCallback(CallbackList::Callback callback) const {
        if (state_->value) return callback();
        state_->callbacks.append(std::move(callback));
        return {};
    }
    template <class Callback>
    void whenResult(Callback callback) const {
        addCallback([self = *this, callback] {
            callback(self.outcome());
            return CallbackList();
        }).run();
    }
    template <class Callback>
    void whenSuccess(Callback callback) const {
        whenResult([callback](const FutureValue<T>& outcome) {
            if (const T* const value = outcome.ifSuccess()) callback(*value);
        });
    }
    template <class Callback>
    void whenFailure(Callback callback) const {
        whenResult([callback](const FutureValue<T>& outcome) {
            if (const Error* const error = outcome.ifFailure()) callback(*error);
        });
    }
    template <class Callback>
    void whenComplete(Callback callback) const {
        whenResult([callback](const FutureValue<T>&) { callback(); });
    }

    template <class Callback>
    auto then(Callback callback) const {
        using Next = std::invoke_result_t<Callback, const T&>;
        const Next next;
        addCallback([self = *this, next, callback]() -> CallbackList {
            const FutureValue<T>& outcome = self.outcome();
            if (const Error* const error = outcome.ifFailure()) return next.setValue(Next::Value::failure(*error));
            const Next futureU = callback(*outcome.ifSuccess());
            return futureU.addCallback([futureU, next] { return next.setValue(futureU.outcome()); });
        }).run();
        return next;
    }

    template <class Callback>
    auto map(Callback callback) const {
        using U = std::invoke_result_t<Callback, const T&>;
        if constexpr (std::is_same_v<T, Unit> && std::is_same_v<U, Unit>) {
            whenSuccess(callback);
            return *this;
        } else {
            return then([callback](const T& value) { return Future<U>::succeeded(callback(value)); });
        }
    }

    template <class U>
    Future<std::pair<T, U>> and_(const Future<U>& other) const {
        using Pair = FutureValue<std::pair<T, U>>;
        const Future<std::pair<T, U>> pair;
        const auto slots = std::make_shared<std::pair<std::optional<T>, std::optional<U>>>();
        addCallback([self = *this, pair, slots]() -> CallbackList {
            const FutureValue<T>& outcome = self.outcome();
            if (const Error* const error = outcome.ifFailure()) return pair.setValue(Pair::failure(*error));
            if (slots->second) return pair.setValue(Pair::success({*outcome.ifSuccess(), *slots->second}));
            slots->first = *outcome.ifSuccess();
            return {};
        }).run();
        other
            .addCallback([other, pair, slots]() -> CallbackList {
                const FutureValue<U>& outcome = other.outcome();
                if (const Error* const error = outcome.ifFailure()) return pair.setValue(Pair::failure(*error));
                if (slots->first) return pair.setValue(Pair::success({*slots->first, *outcome.ifSuccess()}));
                slots->second = *outcome.ifSuccess();
                return {};
            })
            .run();
        return pair;
    }

    template <class U, class Combine>
    Future fold(const std::vector<Future<U>>& futures, Combine combine) const {
        Future accumulator = *this;
        for (const Future<U>& future : futures) {
            accumulator = accumulator.and_(future).then(
                [combine](const std::pair<T, U>& pair) { return combine(pair.first, pair.second); });
        }
        return accumulator;
    }

    template <class U, class Update>
    static Future reduce(T into, const std::vector<Future<U>>& futures, Update update) {
        const Future p0;
        const auto accumulator = std::make_shared<T>(std::move(into));
        const Future<Unit> folded =
            Future<Unit>::succeeded({}).fold(futures, [accumulator, update](Unit, const U& value) {
                update(*accumulator, value);
                return Future<Unit>::succeeded({});
            });
        folded.whenSuccess([p0, accumulator](Unit) { p0.setValue(FutureValue<T>::success(*accumulator)).run(); });
        folded.whenFailure([p0](const Error& error) { p0.setValue(FutureValue<T>::failure(error)).run(); });
        return p0;
    }

    using Value = FutureValue<T>;

private:
    struct State {
        std::optional<FutureValue<T>> value;
        CallbackList callbacks;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

template <class T>
class Promise {
public:
    void succeed(T value) const { future_.setValue(FutureValue<T>::success(std::move(value))).run(); }
    void fail(Error error) const { future_.setValue(FutureValue<T>::failure(std::move(error))).run(); }
    [[nodiscard]] Future<T> futureResult() const { return future_; }

private:
    Future<T> future_;
};

}  // namespace support::literal
