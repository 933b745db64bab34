// SPDX-License-Identifier: Apache-2.0
#pragma once

// The read side of a value that comes later: callbacks on it, and futures made from futures. A Promise is the write
// side.
//
//     Future<Account> account = fetchAccount(number);
//     Future<std::u16string> line = account.map([](const Account& a) { return a.displayName(); });
//     line.whenSuccess([](const std::u16string& text) { show(text); });
//     line.whenFailure([](const Error& error) { report(error); });
//
// There is no event loop, no executor and no lock. A callback runs on the thread that resolves the promise, before
// `succeed` or `fail` returns; on a future that is resolved already it runs before the registering call returns.
// docs/futures.md tells the order in full.
//
// States: unresolved, then resolved, at most once and for good. A future whose promise is gone unresolved stays so; its
// callbacks are freed uncalled, without a report.
//
// Threads: futures that are connected (by a promise, by `then`, `map`, `and_`, `reduce`, by a callback) are used from
// one thread at a time. That includes copying and dropping a handle, whose counts are not atomic. Whoever hands them
// to another thread synchronises.
//
// A callback is any callable that can be moved; it is called at most once and destroyed then. It gets the value as
// `const T&`; on a `Future<Unit>` it may take nothing. No exception may leave it: that ends the process.

#include <ZORFoundation/Concurrency/FutureCallbacks.h>

#include <ranges>
#include <type_traits>
#include <utility>

namespace ZORFoundation {

template <class T>
class Promise;

/// `Future<T>`: a shared handle. Copies are the same future, `==` compares identity. A handle that was moved from can
/// only be assigned to and destroyed.
template <class T>
class Future {
    static_assert(!std::is_void_v<T>, "Future<void> does not exist: Future<Unit> tells that something is done");

public:
    using ValueType = std::conditional_t<std::is_void_v<T>, Unit, T>;

    /// `whenSuccess:`
    ///
    /// Runs `callback` with the value if the outcome is a success, and never for a failure.
    template <class Callback>
    void whenSuccess(Callback callback) const {
        static_assert(
            FutureInternal::ValueCallback<Callback, T>,
            "whenSuccess: the callback takes the value as const T& or T; on a Future<Unit> it may take nothing");
        observe([callback = std::move(callback)](const FutureValue<T>& outcome) mutable noexcept {
            if (const T* const value = outcome.ifSuccess()) FutureInternal::callWithValue(callback, *value);
        });
    }

    /// `whenFailure:`
    ///
    /// Runs `callback` with the error if the outcome is a failure, and never for a success.
    template <class Callback>
    void whenFailure(Callback callback) const {
        static_assert(std::invocable<Callback&, const Error&>,
                      "whenFailure: the callback takes the error as const Error&");
        observe([callback = std::move(callback)](const FutureValue<T>& outcome) mutable noexcept {
            if (const Error* const error = outcome.ifFailure()) std::invoke(callback, *error);
        });
    }

    /// `whenResult:`
    ///
    /// Runs `callback` with the outcome, whichever case.
    template <class Callback>
    void whenResult(Callback callback) const {
        static_assert(std::invocable<Callback&, const FutureValue<T>&>,
                      "whenResult: the callback takes the outcome as const FutureValue<T>&");
        observe([callback = std::move(callback)](const FutureValue<T>& outcome) mutable noexcept {
            std::invoke(callback, outcome);
        });
    }

    /// `whenComplete:`
    ///
    /// Runs `callback`, which takes nothing, once the future is resolved, whichever case.
    template <class Callback>
    void whenComplete(Callback callback) const {
        static_assert(std::invocable<Callback&>, "whenComplete: the callback takes nothing");
        observe([callback = std::move(callback)](const FutureValue<T>&) mutable noexcept { std::invoke(callback); });
    }

    /// `then:`
    ///
    /// Chains: `callback` takes the value and returns a `Future<U>`; the result resolves as that future does. A failure
    /// goes to the result untouched and `callback` is not called. A failure of its own it tells by returning a failed
    /// future.
    ///
    /// One allocation, in which `callback` is stored.
    template <class Callback>
    auto then(Callback callback) const {
        static_assert(FutureInternal::ValueCallback<Callback, T>,
                      "then: the callback takes the value as const T& or T; on a Future<Unit> it may take nothing");
        using Next = FutureInternal::ValueCallbackResult<Callback, T>;
        static_assert(FutureInternal::kIsFuture<Next>,
                      "then: the callback returns a Future; map takes one that returns a value");
        return chain<typename Next::ValueType>([callback = std::move(callback)](const T& value) mutable -> Next {
            return FutureInternal::callWithValue(callback, value);
        });
    }

    /// `map:`
    ///
    /// Transforms: `callback` takes the value and returns a `U`, or nothing for `Unit`; the result succeeds with it. A
    /// failure goes to the result untouched and `callback` is not called.
    ///
    /// @return a new future; on a `Future<Unit>` with a callback that gives `Unit`, this same future
    template <class Callback>
    auto map(Callback callback) const {
        static_assert(FutureInternal::ValueCallback<Callback, T>,
                      "map: the callback takes the value as const T& or T; on a Future<Unit> it may take nothing");
        using Returned = FutureInternal::ValueCallbackResult<Callback, T>;
        using U = std::conditional_t<std::is_void_v<Returned>, Unit, Returned>;
        if constexpr (std::same_as<T, Unit> && std::same_as<U, Unit>) {
            whenSuccess(std::move(callback));
            return *this;
        } else {
            return chain<U>([callback = std::move(callback)](const T& value) mutable {
                if constexpr (std::is_void_v<Returned>) {
                    FutureInternal::callWithValue(callback, value);
                    return FutureValue<U>::success(Unit());
                } else {
                    return FutureValue<U>::success(FutureInternal::callWithValue(callback, value));
                }
            });
        }
    }

    /// `and:`
    ///
    /// Pairs this future's value with that of `other`, in this order, whichever resolves first. The first failure of
    /// either fails the result at once. The pair holds copies: both value types can be copied.
    template <class U>
    [[nodiscard]] Future<std::pair<T, U>> and_(const Future<U>& other) const {
        static_assert(std::is_copy_constructible_v<T> && std::is_copy_constructible_v<U>,
                      "and: the pair holds copies of both values, so both value types can be copied");
        const FutureInternal::Reference both(new FutureInternal::Both<T, U>);
        both->registerOnFirst(*core_)._run();
        both->registerOnSecond(*FutureInternal::Access::core(other))._run();
        return FutureInternal::Access::future(
            FutureInternal::Reference<FutureInternal::FutureCore<std::pair<T, U>>>(both.get()));
    }

    /// `reduce(into:_:_:)`
    ///
    /// Accumulates the values of many futures. `update` takes the accumulator, which begins as `into`, as `T&` and a
    /// value as `const U&`; it is called once for each future in the order of `futures`, whatever the order in which
    /// they resolve. A failure of any of them that reaches the end fails the result; `update` may have been called for
    /// some leading futures by then.
    ///
    /// @param futures  any range of `Future<U>`; with none the result is resolved at once, with `into`
    template <std::ranges::input_range Futures, class Update>
    [[nodiscard]] static Future reduce(ValueType into, Futures&& futures, Update update);

    /// `succeeded(result:)`
    ///
    /// A future that is resolved already, with a value.
    [[nodiscard]] static Future succeeded(ValueType result) {
        return resolved(FutureValue<T>::success(std::move(result)));
    }

    /// `failed(error:)`
    ///
    /// A future that is resolved already, with an error.
    [[nodiscard]] static Future failed(Error error) { return resolved(FutureValue<T>::failure(std::move(error))); }

    friend bool operator==(const Future& left, const Future& right) noexcept {
        return left.core_.get() == right.core_.get();
    }

    // The public part ends here.
private:
    friend FutureInternal::Access;
    using Core = FutureInternal::FutureCore<T>;

    explicit Future(FutureInternal::Reference<Core> core) noexcept : core_(std::move(core)) {}

    static Future resolved(FutureValue<T> outcome) {
        return Future(FutureInternal::Reference<Core>(new FutureInternal::BrieflyLived<Core>(std::move(outcome))));
    }

    /// Registers `observe`, called with the outcome. On a resolved future that takes no memory.
    template <class Observe>
    void observe(Observe observe) const {
        if (const FutureInternal::Reference<Core> core = core_; core->isResolved()) {
            observe(core->outcome());
        } else {
            core->_addCallback(
                    *new FutureInternal::BrieflyLived<FutureInternal::Observer<T, Observe>>(std::move(observe)))
                ._run();
        }
    }

    template <class U, class Step>
    Future<U> chain(Step step) const {
        const FutureInternal::Reference next(new FutureInternal::Then<T, U, Step>(std::move(step)));
        next->registerOn(*core_)._run();
        return FutureInternal::Access::future(FutureInternal::Reference<FutureInternal::FutureCore<U>>(next.get()));
    }

    FutureInternal::Reference<Core> core_;
};

namespace FutureInternal {

/// `fold(_:with:)`
///
/// The left fold of `futures` from `first`: each step pairs what there is with the next future and chains `combine`,
/// which takes both values and returns a `Future<T>` or a `FutureValue<T>`. With no futures, `first` itself.
template <class T, std::ranges::input_range Futures, class Combine>
Future<T> fold(Future<T> first, Futures&& futures, Combine combine) {
    for (const auto& future : futures) {
        first = Access::chain<T>(first.and_(future),
                                 [combine](const auto& pair) mutable { return combine(pair.first, pair.second); });
    }
    return first;
}

/// The future of `reduce`, with what its steps share.
template <class T, class Update>
class Reduction final : public FutureCore<T> {
public:
    Reduction(T into, Update update) : accumulator_(std::move(into)), update_(std::move(update)) {}

    template <class U>
    FutureValue<Unit> add(const U& value) {
        std::invoke(update_, accumulator_, value);
        return FutureValue<Unit>::success({});
    }
    /// For the end of the fold, once.
    void finish(const FutureValue<Unit>& outcome) {
        const Error* const error = outcome.ifFailure();
        this->_setValue(error == nullptr ? FutureValue<T>::success(std::move(accumulator_))
                                         : FutureValue<T>::failure(*error))
            ._run();
    }

private:
    T accumulator_;
    Update update_;
};

}  // namespace FutureInternal

template <class T>
template <std::ranges::input_range Futures, class Update>
Future<T> Future<T>::reduce(ValueType into, Futures&& futures, Update update) {
    using Element = std::ranges::range_value_t<Futures>;
    static_assert(FutureInternal::kIsFuture<Element>, "reduce: the range is one of futures");
    static_assert(std::invocable<Update&, T&, const typename Element::ValueType&>,
                  "reduce: update takes the accumulator as T& and a value as const U&");
    using Reduction = FutureInternal::Reduction<T, Update>;
    FutureInternal::ProducerReference<Reduction> producer(new Reduction(std::move(into), std::move(update)));
    FutureInternal::Reference<Reduction> reduction(producer.get());
    FutureInternal::fold(Future<Unit>::succeeded({}), std::forward<Futures>(futures),
                         [reduction](Unit, const auto& value) { return reduction->add(value); })
        .whenResult([producer = std::move(producer)](const FutureValue<Unit>& outcome) { producer->finish(outcome); });
    return Future(FutureInternal::Reference<Core>(reduction.get()));
}

}  // namespace ZORFoundation
