// SPDX-License-Identifier: Apache-2.0
#pragma once

// The shared state behind a future. Internal: applications use Future and Promise.
//
// States: unresolved, then resolved, once and for good. An unresolved core counts its producers beside all its
// references: the promises, and the registrations that will resolve it. When the last producer goes, the core can no
// longer resolve: its callbacks are disposed of and none is taken in any more. So a callback that captured its own
// future is freed with the promise.
//
// Who holds what: a handle holds its core. A core owns its callbacks. A callback that resolves another core holds that
// one as its producer, and its own core only while it runs. Nothing here is atomic: one thread at a time.

#include <ZORFoundation/Concurrency/CallbackList.h>
#include <ZORFoundation/Concurrency/FutureValue.h>

#include <memory>
#include <type_traits>
#include <utility>

namespace ZORFoundation::FutureInternal {

/// A counted pointer to a core.
///
/// @tparam isProducer  whether it also counts as one that may still resolve the core
template <class Core, bool isProducer = false>
class Reference {
public:
    Reference() = default;
    explicit Reference(Core* core) noexcept : core_(core) {
        if (core_ != nullptr) retain();
    }
    /// Takes over a count that is already held.
    static Reference adopt(Core* core) noexcept {
        Reference reference;
        reference.core_ = core;
        return reference;
    }
    Reference(const Reference& other) noexcept : Reference(other.core_) {}
    Reference(Reference&& other) noexcept : core_(std::exchange(other.core_, nullptr)) {}
    Reference& operator=(Reference other) noexcept {
        std::swap(core_, other.core_);
        return *this;
    }
    ~Reference() {
        if (core_ != nullptr) release();
    }

    [[nodiscard]] Core* get() const noexcept { return core_; }
    Core* operator->() const noexcept { return core_; }
    Core& operator*() const noexcept { return *core_; }

    /// Gives up the pointer and leaves the count held.
    [[nodiscard]] Core* detach() noexcept { return std::exchange(core_, nullptr); }

private:
    void retain() noexcept {
        if constexpr (isProducer) {
            core_->retainAsProducer();
        } else {
            core_->retain();
        }
    }
    void release() noexcept {
        if constexpr (isProducer) {
            core_->releaseAsProducer();
        } else {
            core_->release();
        }
    }

    Core* core_ = nullptr;
};

template <class Core>
using ProducerReference = Reference<Core, true>;

class FutureCoreBase;

/// A callback on a future.
class FutureCallback : public CallbackNode {
protected:
    /// The future registered on. For `run`, once.
    Reference<FutureCoreBase> takeSource() noexcept;

private:
    friend class FutureCoreBase;

    /// Held only from the source's resolution until `run`: a future does not keep itself alive through its callbacks.
    FutureCoreBase* source_ = nullptr;
};

/// What does not depend on the value type: counts and callbacks.
class FutureCoreBase : public Disposable {
public:
    [[nodiscard]] bool isUnique() const noexcept { return counts_.references == 1; }

    void retain() noexcept { ++counts_.references; }
    void release() noexcept {
        if (--counts_.references == 0) dispose(*this);
    }
    void retainAsProducer() noexcept {
        ++counts_.producers;
        retain();
    }
    void releaseAsProducer() noexcept {
        if (--counts_.producers == 0) callbacks_.dispose();
        release();
    }

protected:
    FutureCoreBase() noexcept { counts_ = {}; }
    ~FutureCoreBase() override = default;

    CallbackList enqueue(FutureCallback& callback) noexcept {
        callback.source_ = this;
        if (counts_.producers == 0) {
            dispose(callback);
        } else {
            callbacks_.append(callback);
        }
        return {};
    }
    CallbackList runNow(FutureCallback& callback) noexcept {
        callback.source_ = this;
        retain();
        return callback.run();
    }
    /// The callbacks, each with a reference of its own on this core.
    CallbackList takeCallbacks() noexcept {
        callbacks_.forEach([this](CallbackNode&) { retain(); });
        return std::exchange(callbacks_, {});
    }

private:
    void end() noexcept final { delete this; }

    CallbackList callbacks_;
};

inline Reference<FutureCoreBase> FutureCallback::takeSource() noexcept {
    return Reference<FutureCoreBase>::adopt(std::exchange(source_, nullptr));
}

/// The state of a `Future<T>`.
///
/// The outcome is never copied from one core to another: a core that resolves as another did points at the core which
/// stores that outcome. So a value that can only be moved passes any number of links.
template <class T>
class FutureCore : public FutureCoreBase {
    static_assert(std::is_move_constructible_v<T>, "a future's value type can at least be moved");

public:
    FutureCore() noexcept {}
    explicit FutureCore(FutureValue<T> outcome) noexcept : keeper_(this) {
        std::construct_at(&outcome_, std::move(outcome));
    }

    [[nodiscard]] bool isResolved() const noexcept { return keeper_ != nullptr; }
    /// The outcome of a resolved core.
    [[nodiscard]] const FutureValue<T>& outcome() const noexcept { return keeper_->outcome_; }

    /// `_setValue(value:)`
    ///
    /// Resolves an unresolved core; a resolved one stays as it is.
    /// @return the callbacks that the resolution releases, to be run
    [[nodiscard]] CallbackList _setValue(FutureValue<T> outcome) noexcept {
        if (isResolved()) return {};
        std::construct_at(&outcome_, std::move(outcome));
        keeper_ = this;
        return takeCallbacks();
    }
    /// `_setValue(value:)` with the outcome of another, resolved core.
    [[nodiscard]] CallbackList _setValueOf(Reference<FutureCore> other) noexcept {
        if (isResolved()) return {};
        if (other->isUnique() && other->keeper_ == other.get()) return _setValue(std::move(other->outcome_));
        keeper_ = Reference<FutureCore>(other->keeper_).detach();
        return takeCallbacks();
    }

    /// `_addCallback`
    ///
    /// Queues `callback` on an unresolved core, and runs it at once on a resolved one.
    /// @return the callbacks that it released, to be run
    [[nodiscard]] CallbackList _addCallback(FutureCallback& callback) noexcept {
        return isResolved() ? runNow(callback) : enqueue(callback);
    }

protected:
    ~FutureCore() override {
        if (keeper_ == this) {
            std::destroy_at(&outcome_);
        } else if (keeper_ != nullptr) {
            keeper_->release();
        }
    }

private:
    /// The core that stores the outcome: this one, or another that is held. Null while unresolved.
    FutureCore* keeper_ = nullptr;
    union {
        FutureValue<T> outcome_;
    };
};

/// The same core by its value type.
template <class T>
Reference<FutureCore<T>> downcast(Reference<FutureCoreBase> core) noexcept {
    return Reference<FutureCore<T>>::adopt(static_cast<FutureCore<T>*>(core.detach()));
}

}  // namespace ZORFoundation::FutureInternal
