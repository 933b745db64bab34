// SPDX-License-Identifier: Apache-2.0
#pragma once

// A piece of work for a queue: any callable without arguments, move-only ones included. Small callables are kept
// inside, so handing work to a queue takes no memory for them.
//
//     auto answer = std::make_unique<Answer>();
//     queue.async([answer = std::move(answer)] { answer->show(); });

#include <concepts>
#include <cstddef>
#include <cstring>
#include <functional>
#include <new>
#include <type_traits>
#include <utility>

namespace ZORPlatform {

/// A move-only holder of one callable, or of none. What the callable returns is dropped. Not thread-safe; moving it
/// from thread to thread is what it is for.
class DispatchWork {
public:
    /// Holds nothing.
    DispatchWork() noexcept = default;
    DispatchWork(std::nullptr_t) noexcept {}  // Implicit: "no callback" may be written nullptr.

    /// Holds `callable`. Up to `kInlineSize` bytes are kept inside when moving them cannot throw; more takes one
    /// allocation. An empty `std::function` or a null function pointer counts as nothing.
    template <class Callable>
    requires(!std::same_as<std::remove_cvref_t<Callable>, DispatchWork> && std::invocable<std::decay_t<Callable>&>)
        DispatchWork(Callable&& callable) {  // Implicit: a lambda may stand where work is asked for.
        using Held = std::decay_t<Callable>;
        if constexpr (mayBeNull(static_cast<const Held*>(nullptr))) {
            if (callable == nullptr) return;
        }
        if constexpr (kFitsInside<Held>) {
            ::new (static_cast<void*>(storage_)) Held(std::forward<Callable>(callable));
            operations_ = &kInside<Held>;
        } else {
            ::new (static_cast<void*>(storage_)) Held*(new Held(std::forward<Callable>(callable)));
            operations_ = &kOutside<Held>;
        }
    }

    DispatchWork(DispatchWork&& other) noexcept { take(other); }
    DispatchWork& operator=(DispatchWork&& other) noexcept {
        if (this != &other) {
            reset();
            take(other);
        }
        return *this;
    }
    ~DispatchWork() { reset(); }

    /// Whether there is a callable.
    explicit operator bool() const noexcept { return operations_ != nullptr; }

    /// Calls the callable, which stays until this object goes or takes another. Must not be empty.
    void operator()() { operations_->run(storage_); }

    static constexpr std::size_t kInlineSize = 6 * sizeof(void*);

    // The public part ends here.
private:
    struct Operations {
        void (*run)(std::byte* storage);
        void (*relocate)(std::byte* from, std::byte* to) noexcept;  ///< Null: copying the bytes moves the callable.
        void (*destroy)(std::byte* storage) noexcept;               ///< Null: nothing to do.
    };

    template <class Held>
    static consteval bool mayBeNull(const Held*) {
        return std::is_pointer_v<Held>;
    }
    template <class Signature>
    static consteval bool mayBeNull(const std::function<Signature>*) {
        return true;
    }
    template <class Held>
    static constexpr bool kFitsInside = sizeof(Held) <= kInlineSize &&
                                        alignof(Held) <= alignof(void*) && std::is_nothrow_move_constructible_v<Held>;
    template <class Held>
    static constexpr bool kIsBytes = std::is_trivially_copyable_v<Held>;

    template <class Held>
    static Held& inside(std::byte* storage) noexcept {
        return *std::launder(reinterpret_cast<Held*>(storage));
    }
    template <class Held>
    static void relocateInside(std::byte* from, std::byte* to) noexcept {
        ::new (static_cast<void*>(to)) Held(std::move(inside<Held>(from)));
        inside<Held>(from).~Held();
    }

    template <class Held>
    static constexpr Operations kInside{[](std::byte* storage) { static_cast<void>(inside<Held>(storage)()); },
                                        kIsBytes<Held> ? nullptr : &relocateInside<Held>,
                                        std::is_trivially_destructible_v<Held>
                                            ? nullptr
                                            : +[](std::byte* storage) noexcept { inside<Held>(storage).~Held(); }};
    template <class Held>
    static constexpr Operations kOutside{[](std::byte* storage) { static_cast<void>((*inside<Held*>(storage))()); },
                                         nullptr, [](std::byte* storage) noexcept { delete inside<Held*>(storage); }};

    void take(DispatchWork& other) noexcept {
        operations_ = std::exchange(other.operations_, nullptr);
        if (operations_ == nullptr) return;
        if (operations_->relocate == nullptr) {
            std::memcpy(storage_, other.storage_, sizeof storage_);
        } else {
            operations_->relocate(other.storage_, storage_);
        }
    }
    void reset() noexcept {
        // Emptied first: what the callable's captures do when they go may reach this object again.
        const Operations* operations = std::exchange(operations_, nullptr);
        if (operations != nullptr && operations->destroy != nullptr) operations->destroy(storage_);
    }

    const Operations* operations_ = nullptr;
    alignas(void*) std::byte storage_[kInlineSize];
};

}  // namespace ZORPlatform
