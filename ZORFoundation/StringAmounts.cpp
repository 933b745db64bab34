// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringAmounts.h>

#include <ZORPlatform/Foundation/Text.h>

#include <cstddef>

namespace ZORFoundation::StringExtension {
namespace {

constexpr std::size_t kIntegerDigits = 9;
constexpr std::size_t kDecimals = 2;

constexpr bool isAscii(char16_t unit) noexcept { return unit < 0x80; }
constexpr bool isDigit(char16_t unit) noexcept { return unit >= u'0' && unit <= u'9'; }
constexpr bool isSpace(char16_t unit) noexcept { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); }
constexpr bool isSeparator(char16_t unit) noexcept { return unit == u',' || unit == u'.'; }

/// The end of the units from `begin` on that are `isMember`.
template <class Predicate>
std::size_t endOfRun(std::u16string_view text, std::size_t begin, Predicate isMember) noexcept {
    while (begin < text.size() && isMember(text[begin])) ++begin;
    return begin;
}

constexpr Explanation unexpectedAt(std::size_t position) noexcept {
    return {BrokenRule::unexpectedCharacter, position, 0, 0, 0};
}

constexpr Explanation tooManyDigits(BrokenRule rule, std::size_t begin, std::size_t end, std::size_t allowed) noexcept {
    return {rule, begin + allowed, 0, end - begin, allowed};
}

/// All of the explanation but its position in characters, which takes Unicode's tables.
Explanation firstBrokenRule(std::u16string_view text) noexcept {
    if (const std::size_t end = endOfRun(text, 0, isAscii); end != text.size()) return unexpectedAt(end);

    const std::size_t integer = endOfRun(text, 0, isSpace);
    const std::size_t separator = endOfRun(text, integer, isDigit);
    if (separator - integer > kIntegerDigits)
        return tooManyDigits(BrokenRule::integerDigits, integer, separator, kIntegerDigits);
    if (separator == text.size()) return {};
    if (!isSeparator(text[separator])) return unexpectedAt(separator);

    const std::size_t decimals = separator + 1;
    const std::size_t rest = endOfRun(text, decimals, isDigit);
    if (rest - decimals > kDecimals) return tooManyDigits(BrokenRule::decimals, decimals, rest, kDecimals);
    if (const std::size_t end = endOfRun(text, rest, isSpace); end != text.size()) return unexpectedAt(end);
    return {};
}

}  // namespace

bool isValidInputAmount(std::u16string_view text) noexcept { return firstBrokenRule(text).isValid(); }

Explanation explainInputAmount(std::u16string_view text) noexcept {
    Explanation explanation = firstBrokenRule(text);
    if (!explanation.isValid()) explanation.character = ZORPlatform::characterIndex(text, explanation.position);
    return explanation;
}

}  // namespace ZORFoundation::StringExtension
