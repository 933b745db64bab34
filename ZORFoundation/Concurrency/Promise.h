// SPDX-License-Identifier: Apache-2.0
#pragma once

// The write side of a future. A producer makes a promise, hands out its future and resolves it once.
//
//     Promise<int> promise;
//     promise.futureResult().whenSuccess([](int value) { show(value); });
//     promise.succeed(5);   // show(5) has run when this returns
//
// States, threads and what a callback may be: Future.h.

#include <ZORFoundation/Concurrency/Future.h>

#include <concepts>
#include <utility>

namespace ZORFoundation {

/// `Promise<T>`: a shared handle. Copies resolve the same future, `==` compares identity. Resolving a second time,
/// through any copy, is ignored: the first outcome stays. When the last copy goes unresolved, the future's callbacks
/// are freed uncalled.
template <class T>
class Promise {
public:
    using ValueType = typename Future<T>::ValueType;

    /// A promise with an unresolved future. One allocation.
    Promise() : core_(new FutureInternal::BrieflyLived<Core>) {}

    /// `succeed(result:)`
    ///
    /// Resolves with a value and runs all that waits for it: its callbacks, and those of every future resolved in
    /// consequence, have run when this returns.
    void succeed(ValueType result) const { _resolve(FutureValue<T>::success(std::move(result))); }
    /// The same with the unit value.
    void succeed() const requires std::same_as<T, Unit> { succeed(Unit()); }

    /// `fail(error:)`
    ///
    /// Resolves with an error and runs all that waits for it.
    void fail(Error error) const { _resolve(FutureValue<T>::failure(std::move(error))); }

    /// `futureResult`
    ///
    /// The future that this promise resolves.
    [[nodiscard]] Future<T> futureResult() const noexcept {
        return FutureInternal::Access::future(FutureInternal::Reference<Core>(core_.get()));
    }

    friend bool operator==(const Promise& left, const Promise& right) noexcept {
        return left.core_.get() == right.core_.get();
    }

    // The public part ends here.
private:
    using Core = FutureInternal::FutureCore<T>;

    /// `_resolve(value:)`
    void _resolve(FutureValue<T> outcome) const { core_->_setValue(std::move(outcome))._run(); }

    FutureInternal::ProducerReference<Core> core_;
};

}  // namespace ZORFoundation
