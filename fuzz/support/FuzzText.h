// SPDX-License-Identifier: Apache-2.0
#pragma once

// What fuzz targets of text operations share: a text out of the input's bytes, and laws.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace fuzz {

/// A text on the heap of exactly its size, so that the address sanitizer sees a read past its end. The input's first
/// byte says how the others are read: even, a unit each, so that short inputs reach the rules; odd, two bytes a unit,
/// so that every unit can come.
class Text {
public:
    Text(const std::uint8_t* data, std::size_t size) {
        if (size == 0) return;
        const bool pairs = data[0] % 2 == 1;
        ++data;
        --size;
        size_ = pairs ? size / 2 : size;
        units_ = std::make_unique<char16_t[]>(size_);
        for (std::size_t i = 0; i < size_; ++i) {
            units_[i] = pairs ? static_cast<char16_t>(data[2 * i] | data[2 * i + 1] << 8) : data[i];
        }
    }

    [[nodiscard]] std::u16string_view view() const noexcept { return {units_.get(), size_}; }

private:
    std::unique_ptr<char16_t[]> units_;
    std::size_t size_ = 0;
};

/// Stops the run on an input that breaks a law.
inline void require(bool law) {
    if (!law) __builtin_trap();
}

}  // namespace fuzz
