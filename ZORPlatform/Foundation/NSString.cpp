// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSString.h>

#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <charconv>
#include <limits>

namespace ZORPlatform {

std::int64_t longLongValue(std::u16string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size() && isSkippedBeforeNumber(text[at])) ++at;
    const bool negative = at < text.size() && text[at] == u'-';
    if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) ++at;

    // Gathered below zero, where one more value fits than above.
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    std::int64_t value = 0;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at) {
        const int digit = text[at] - u'0';
        if (value < (kLowest + digit) / 10) return negative ? kLowest : std::numeric_limits<std::int64_t>::max();
        value = value * 10 - digit;
    }
    if (negative) return value;
    return value == kLowest ? std::numeric_limits<std::int64_t>::max() : -value;
}

std::int32_t intValue(std::u16string_view text) noexcept {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(
        longLongValue(text), std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

bool boolValue(std::u16string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size() && (isWhitespace(text[at]) || isNewline(text[at]))) ++at;
    if (at < text.size() && (text[at] == u'+' || text[at] == u'-')) ++at;
    while (at < text.size() && text[at] == u'0') ++at;
    return at < text.size() && std::u16string_view(u"YyTt123456789").find(text[at]) != std::u16string_view::npos;
}

std::optional<std::int64_t> wholeInteger(std::u16string_view text) {
    std::u16string_view digits = text;
    if (!digits.empty() && (digits.front() == u'-' || digits.front() == u'+')) digits.remove_prefix(1);
    const bool isNumber = !digits.empty() && std::all_of(digits.begin(), digits.end(),
                                                         [](char16_t unit) { return unit >= u'0' && unit <= u'9'; });
    if (!isNumber) return std::nullopt;
    while (digits.size() > 1 && digits.front() == u'0') digits.remove_prefix(1);
    const std::int64_t value = longLongValue(text);
    const std::u16string written = decimalText(value);
    // A value out of range is saturated, so that it is written with other digits.
    if (std::u16string_view(written).substr(value < 0 ? 1 : 0) != digits) return std::nullopt;
    return value;
}

std::u16string decimalText(std::int64_t value) {
    char digits[20];
    const auto [end, status] = std::to_chars(digits, digits + sizeof digits, value);
    return {digits, end};
}

}  // namespace ZORPlatform
