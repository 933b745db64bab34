// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the library's result types share: one of two cases, each with its payload, and ways to tell them apart. Each
// public type names its two cases and says what the failure carries; the types do not convert into one another.

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>
#include <variant>

namespace ZORFoundation {

/// A success with a `Value` or a failure with a `Failure`.
///
/// A value: copies are independent as far as their payloads are, and one object may be read from several threads. Both
/// payloads may be of the same type. A moved-from object keeps its case and holds a moved-from payload.
template <class Value, class Failure>
class ResultStorage {
    static_assert(std::is_object_v<Value>, "a result carries a value: for nothing, use a type like std::monostate");

public:
    [[nodiscard]] bool isSuccess() const noexcept { return payload_.index() == kSuccess; }

    /// The value of a success, or a null pointer. Lives as long as this object keeps it.
    [[nodiscard]] const Value* ifSuccess() const noexcept { return std::get_if<kSuccess>(&payload_); }
    [[nodiscard]] Value* ifSuccess() noexcept { return std::get_if<kSuccess>(&payload_); }

    /// What a failure carries, or a null pointer. Lives as long as this object keeps it.
    [[nodiscard]] const Failure* ifFailure() const noexcept { return std::get_if<kFailure>(&payload_); }
    [[nodiscard]] Failure* ifFailure() noexcept { return std::get_if<kFailure>(&payload_); }

    /// Calls the function of the case at hand with its payload and gives what it gives. Both functions give the same
    /// type.
    template <class OnSuccess, class OnFailure>
    decltype(auto) match(OnSuccess&& onSuccess, OnFailure&& onFailure) const& {
        return matched(*this, std::forward<OnSuccess>(onSuccess), std::forward<OnFailure>(onFailure));
    }
    /// As above; the payload is handed over.
    template <class OnSuccess, class OnFailure>
    decltype(auto) match(OnSuccess&& onSuccess, OnFailure&& onFailure) && {
        return matched(std::move(*this), std::forward<OnSuccess>(onSuccess), std::forward<OnFailure>(onFailure));
    }

    // The public part ends here.
protected:
    static constexpr std::size_t kSuccess = 0;
    static constexpr std::size_t kFailure = 1;

    template <std::size_t Case, class Payload>
    ResultStorage(std::in_place_index_t<Case> theCase, Payload&& payload)
        : payload_(theCase, std::forward<Payload>(payload)) {}

private:
    template <class Self, class OnSuccess, class OnFailure>
    static decltype(auto) matched(Self&& self, OnSuccess&& onSuccess, OnFailure&& onFailure) {
        if (self.isSuccess()) {
            return std::invoke(std::forward<OnSuccess>(onSuccess),
                               std::get<kSuccess>(std::forward<Self>(self).payload_));
        }
        return std::invoke(std::forward<OnFailure>(onFailure), std::get<kFailure>(std::forward<Self>(self).payload_));
    }

    std::variant<Value, Failure> payload_;
};

}  // namespace ZORFoundation
