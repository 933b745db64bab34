// SPDX-License-Identifier: Apache-2.0
#pragma once

// The rules of account numbers, step for step as they are told and without a thought for speed: the referee of the
// library's own engine, in tests and fuzz targets.

#include <ZORPlatform/Foundation/Text.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace support {

/// The integer that a text of at most 18 digits begins with: white space, one sign, digits.
[[nodiscard]] inline std::int64_t leadingInteger(std::u16string_view text) {
    const auto isSkipped = [](char16_t unit) {
        return unit <= 0x20 || (unit >= 0x7F && unit <= 0xA0) || (unit >= 0x2000 && unit <= 0x200B) || unit == 0x3000;
    };
    while (!text.empty() && isSkipped(text.front())) text.remove_prefix(1);
    const bool negative = text.starts_with(u'-');
    if (negative || text.starts_with(u'+')) text.remove_prefix(1);
    std::int64_t value = 0;
    for (; !text.empty() && text.front() >= u'0' && text.front() <= u'9'; text.remove_prefix(1)) {
        value = value * 10 + (text.front() - u'0');
    }
    return negative ? -value : value;
}

[[nodiscard]] inline std::int64_t literalModulo97(std::u16string_view text) {
    std::u16string remainder;
    for (; !text.empty(); text.remove_prefix(text.size() < 7 ? text.size() : 7)) {
        const std::int64_t value = leadingInteger(remainder + std::u16string(text.substr(0, 7)));
        const std::string decimal = std::to_string(value % 97);
        remainder.assign(decimal.begin(), decimal.end());
    }
    return leadingInteger(remainder);
}

[[nodiscard]] inline bool literalIsValidIban(std::u16string_view text) {
    if (text.size() < 2) return false;
    const std::u16string_view country = text.substr(0, 2);
    if (text.size() < 5 || text.size() > 32 || (country == u"BE" && text.size() != 16)) return false;
    const std::u16string rearranged = std::u16string(text.substr(4)) + std::u16string(text.substr(0, 4));
    std::u16string digits;
    for (const char16_t unit : rearranged) {
        const std::u16string upper = ZORPlatform::uppercased(std::u16string_view(&unit, 1));
        if (upper.size() == 1 && upper[0] >= u'A' && upper[0] <= u'Z') {
            const std::string value = std::to_string(upper[0] - u'A' + 10);
            digits.append(value.begin(), value.end());
        } else {
            digits += upper;
        }
    }
    return literalModulo97(digits) == 1;
}

/// Spaces, then at least one ASCII digit, then nothing.
[[nodiscard]] inline bool literalIsNumeric(std::u16string_view text) {
    while (text.starts_with(u' ')) text.remove_prefix(1);
    if (text.empty()) return false;
    return text.find_first_not_of(u"0123456789") == std::u16string_view::npos;
}

[[nodiscard]] inline bool literalIsValidBban(std::u16string_view text) {
    if (text.size() != 12 || !literalIsNumeric(text)) return false;
    const std::int64_t check = leadingInteger(text.substr(10, 2));
    const std::int64_t remainder = literalModulo97(text.substr(0, 10));
    return (remainder == 0 ? 97 : remainder) == check;
}

}  // namespace support
