// SPDX-License-Identifier: Apache-2.0
#pragma once

// The callbacks that the operations of a future register. Internal: applications use Future and Promise.
//
// Each is one allocation: a callback that resolves another future is part of that future's core.

#include <ZORFoundation/Concurrency/FutureCore.h>
#include <ZORFoundation/Concurrency/SpareBlocks.h>
#include <ZORFoundation/Concurrency/Unit.h>

#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace ZORFoundation {

template <class T>
class Future;

namespace FutureInternal {

/// A callback on the value of a `Future<T>`. On a `Future<Unit>` it may take nothing.
template <class Callback, class T>
concept ValueCallback = std::invocable<Callback&, const T&> ||(std::same_as<T, Unit>&& std::invocable<Callback&>);

template <class T, ValueCallback<T> Callback>
decltype(auto) callWithValue(Callback& callback, const T& value) {
    if constexpr (std::invocable<Callback&, const T&>) {
        return std::invoke(callback, value);
    } else {
        return std::invoke(callback);
    }
}

template <class Callback, class T>
using ValueCallbackResult =
    std::remove_cvref_t<decltype(callWithValue(std::declval<Callback&>(), std::declval<const T&>()))>;

/// The way from a future to its core and back, for this facility only.
struct Access {
    template <class T>
    static Reference<FutureCore<T>> core(Future<T> future) noexcept {
        return std::move(future.core_);
    }
    template <class T>
    static Future<T> future(Reference<FutureCore<T>> core) noexcept {
        return Future<T>(std::move(core));
    }
    template <class U, class T, class Step>
    static Future<U> chain(const Future<T>& future, Step step) {
        return future.template chain<U>(std::move(step));
    }
};

template <class Type>
inline constexpr bool kIsFuture = false;
template <class T>
inline constexpr bool kIsFuture<Future<T>> = true;

/// Tells a caller the outcome of a future.
template <class T, class Observe>
class Observer : public FutureCallback {
public:
    explicit Observer(Observe observe) : observe_(std::move(observe)) {}

private:
    CallbackList run() noexcept override {
        observe_(downcast<T>(takeSource())->outcome());
        end();
        return {};
    }
    void end() noexcept override { delete this; }

    Observe observe_;
};

/// A registration that is a part of the core `Derived`, which it resolves. Tells `Derived` by its index that it was
/// called or that it never will be; either way the derived core takes over the count that the registration holds on it.
template <class Derived, std::size_t index = 0>
class Registration : public FutureCallback {
public:
    /// Registers on `source`. @return the callbacks to run
    template <class T>
    [[nodiscard]] CallbackList registerOn(FutureCore<T>& source) noexcept {
        derived().retainAsProducer();
        return source._addCallback(*this);
    }

private:
    CallbackList run() noexcept final {
        return derived().template called<index>(ProducerReference<Derived>::adopt(&derived()), this->takeSource());
    }
    void end() noexcept final { derived().template dropped<index>(ProducerReference<Derived>::adopt(&derived())); }

    Derived& derived() noexcept { return static_cast<Derived&>(*this); }
};

/// The future of `then` together with the callback that resolves it. That is registered at first on the future chained
/// to and, after the step, on the future that the step returned.
///
/// @tparam Step  called with the value; returns a `Future<U>`, or a `FutureValue<U>` when the outcome is there at once
template <class T, class U, class Step>
class Then final : public FutureCore<U>, public Registration<Then<T, U, Step>> {
public:
    explicit Then(Step step) : step_(std::move(step)) {}

private:
    friend Registration<Then>;

    template <std::size_t>
    CallbackList called(ProducerReference<Then>, Reference<FutureCoreBase> source) noexcept {
        if (!step_) return this->_setValueOf(downcast<U>(std::move(source)));

        const FutureValue<T>& outcome = downcast<T>(source)->outcome();
        if (const Error* const error = outcome.ifFailure()) {
            step_.reset();
            return this->_setValue(FutureValue<U>::failure(*error));
        }
        auto result = (*step_)(*outcome.ifSuccess());
        step_.reset();
        if constexpr (std::same_as<decltype(result), FutureValue<U>>) {
            return this->_setValue(std::move(result));
        } else {
            return follow(Access::core(std::move(result)));
        }
    }
    CallbackList follow(Reference<FutureCore<U>> next) noexcept {
        if (next->isResolved()) return this->_setValueOf(std::move(next));
        // A future that waits for itself waits for ever: unregistered, it has no producer left and can be freed.
        if (next.get() == this) return {};
        return this->registerOn(*next);
    }
    template <std::size_t>
    void dropped(ProducerReference<Then>) noexcept {
        step_.reset();
    }

    std::optional<Step> step_;
};

/// The future of `and` together with the callbacks on its two sides.
template <class T, class U>
class Both final : public FutureCore<std::pair<T, U>>,
                   public Registration<Both<T, U>, 0>,
                   public Registration<Both<T, U>, 1> {
    using Pair = std::pair<T, U>;

public:
    [[nodiscard]] CallbackList registerOnFirst(FutureCore<T>& first) noexcept {
        return Registration<Both, 0>::registerOn(first);
    }
    [[nodiscard]] CallbackList registerOnSecond(FutureCore<U>& second) noexcept {
        return Registration<Both, 1>::registerOn(second);
    }

private:
    friend Registration<Both, 0>;
    friend Registration<Both, 1>;

    template <std::size_t side>
    CallbackList called(ProducerReference<Both>, Reference<FutureCoreBase> source) noexcept {
        if (this->isResolved()) return {};
        auto arrived = downcast<std::tuple_element_t<side, Pair>>(std::move(source));
        if (const Error* const error = arrived->outcome().ifFailure()) {
            arrived_ = {};
            return this->_setValue(FutureValue<Pair>::failure(*error));
        }
        std::get<side>(arrived_) = std::move(arrived);
        if (std::get<1 - side>(arrived_).get() == nullptr) return {};
        const auto [first, second] = std::exchange(arrived_, {});
        return this->_setValue(
            FutureValue<Pair>::success(Pair(*first->outcome().ifSuccess(), *second->outcome().ifSuccess())));
    }
    template <std::size_t>
    void dropped(ProducerReference<Both>) noexcept {}

    /// The sides that have resolved: their cores keep the values until the pair is made.
    std::pair<Reference<FutureCore<T>>, Reference<FutureCore<U>>> arrived_;
};

}  // namespace FutureInternal
}  // namespace ZORFoundation
