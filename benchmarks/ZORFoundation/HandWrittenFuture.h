// SPDX-License-Identifier: Apache-2.0
#pragma once

// A future as one writes it in an afternoon, with std::shared_ptr and std::function: the peer of the benchmarks. It is
// iterative, as the library's is, and keeps values only.

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace benchmarks {

template <class T>
class HandWrittenFuture {
public:
    using Callbacks = std::vector<std::function<void()>>;

    [[nodiscard]] bool isResolved() const { return state_->value.has_value(); }
    [[nodiscard]] const T& value() const { return *state_->value; }

    void whenSuccess(std::function<void(const T&)> callback) const {
        add([state = state_.get(), callback = std::move(callback)] { callback(*state->value); });
    }

    template <class Callback>
    auto then(Callback callback) const {
        auto next = decltype(callback(std::declval<const T&>()))();
        add([state = state_.get(), next, callback = std::move(callback)] {
            const auto inner = callback(*state->value);
            inner.add([inner = inner.state_.get(), next] { next.resolve(*inner->value); });
        });
        return next;
    }

    template <class U>
    HandWrittenFuture<std::pair<T, U>> both(const HandWrittenFuture<U>& other) const {
        HandWrittenFuture<std::pair<T, U>> pair;
        const auto arrive = [first = *this, second = other, pair] {
            if (first.isResolved() && second.isResolved()) pair.resolve({first.value(), second.value()});
        };
        add(arrive);
        other.add(arrive);
        return pair;
    }

    /// Runs what waits, breadth first.
    void resolve(T value) const {
        static thread_local Callbacks* pending = nullptr;
        if (state_->value) return;
        state_->value = std::move(value);
        Callbacks released = std::exchange(state_->callbacks, {});
        if (pending != nullptr) {
            pending->insert(pending->end(), std::move_iterator(released.begin()), std::move_iterator(released.end()));
            return;
        }
        Callbacks next;
        pending = &next;
        const auto keep = state_;
        while (!released.empty()) {
            for (auto& callback : released) callback();
            released = std::exchange(next, {});
        }
        pending = nullptr;
    }

    void add(std::function<void()> callback) const {
        if (isResolved()) {
            callback();
        } else {
            state_->callbacks.push_back(std::move(callback));
        }
    }

private:
    template <class>
    friend class HandWrittenFuture;

    struct State {
        std::optional<T> value;
        Callbacks callbacks;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace benchmarks
