// SPDX-License-Identifier: Apache-2.0
#pragma once

// How validators make their explanations.

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ZORFoundation {

/// `rule` is broken by the unit of `text` at `position`.
[[nodiscard]] inline Explanation brokenAt(BrokenRule rule, std::u16string_view text, std::size_t position) {
    return {rule, position, ZORPlatform::characterIndex(text, position), 0, 0};
}

/// `rule` is one of length in UTF-16 units, and `text` does not have the `expected` one.
[[nodiscard]] inline Explanation wrongLength(BrokenRule rule, std::u16string_view text, std::size_t expected) {
    const std::size_t position = std::min(text.size(), expected);
    return {rule, position, ZORPlatform::characterIndex(text, position), text.size(), expected};
}

}  // namespace ZORFoundation
