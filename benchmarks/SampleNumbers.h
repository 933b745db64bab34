// SPDX-License-Identifier: Apache-2.0
#pragma once

// Numbers to measure with: many texts one after the other in memory, and a reading of them all, the floor under every
// operation on them.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace benchmarks {

class SampleNumbers {
public:
    void add(std::u16string_view text) {
        units_.insert(units_.end(), text.begin(), text.end());
        ends_.push_back(units_.size());
    }

    /// The texts added. Valid until the next one is added.
    [[nodiscard]] std::vector<std::u16string_view> texts() const {
        std::vector<std::u16string_view> views;
        std::size_t begin = 0;
        for (const std::size_t end : ends_) {
            views.emplace_back(units_.data() + begin, end - begin);
            begin = end;
        }
        return views;
    }

private:
    std::vector<char16_t> units_;
    std::vector<std::size_t> ends_;
};

/// Asks `operation` of each text.
template <typename Operation>
[[nodiscard]] auto overEach(const std::vector<std::u16string_view>& texts, Operation operation) {
    return [&texts, operation] {
        for (const std::u16string_view text : texts) benchmark::DoNotOptimize(operation(text));
    };
}

/// Reads each unit of a text once.
inline constexpr auto kReadOnce = [](std::u16string_view text) noexcept {
    std::uint64_t sum = 0;
    for (const char16_t unit : text) sum += unit;
    return sum;
};

}  // namespace benchmarks
