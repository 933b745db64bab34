// SPDX-License-Identifier: Apache-2.0
#pragma once

// A text in memory of exactly its size, so that the address sanitizer sees a unit read before or behind it.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

namespace support {

class ExactText {
public:
    explicit ExactText(std::u16string_view text) : units_(new char16_t[text.size()]), size_(text.size()) {
        std::copy(text.begin(), text.end(), units_.get());
    }

    /// Lives as long as this object.
    [[nodiscard]] std::u16string_view view() const noexcept { return {units_.get(), size_}; }

private:
    std::unique_ptr<char16_t[]> units_;
    std::size_t size_;
};

}  // namespace support
