// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringExtension.h>

#include <ZORPlatform/Foundation/CFStringTransform.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Foundation/Precondition.h>
#include <ZORPlatform/Foundation/StringSearch.h>
#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/UnitScanInternal.h>

#include <algorithm>

namespace ZORFoundation::StringExtension {
namespace {

// The unit where character `index` of `text` begins. Stops the process with `message` when there is none.
std::size_t positionOf(std::u16string_view text, std::int64_t index, std::string_view message) {
    if (index >= 0) {
        const auto position = ZORPlatform::characterPosition(text, static_cast<std::size_t>(index));
        if (position) return *position;
    }
    ZORPlatform::preconditionFailure(message);
}

std::u16string charactersInRange(std::u16string_view text, Range range, std::string_view message) {
    if (range.upper < range.lower) ZORPlatform::preconditionFailure(message);
    const std::u16string_view rest = text.substr(positionOf(text, range.lower, message));
    return std::u16string(rest.substr(0, positionOf(rest, range.upper - range.lower, message)));
}

}  // namespace

void replace(std::u16string& text, std::u16string_view target, std::u16string_view with) {
    ZORPlatform::replaceOccurrences(text, target, with);
}

std::int64_t length(std::u16string_view text) { return static_cast<std::int64_t>(ZORPlatform::characterCount(text)); }

bool boolValue(std::u16string_view text) noexcept { return ZORPlatform::boolValue(text); }

std::u16string substringToIndex(std::u16string_view text, std::int64_t index) {
    return std::u16string(text.substr(
        0, positionOf(text, index, "substringToIndex: the index must be between 0 and the number of characters")));
}

std::u16string substringFromIndex(std::u16string_view text, std::int64_t index) {
    return std::u16string(text.substr(
        positionOf(text, index, "substringFromIndex: the index must be between 0 and the number of characters")));
}

std::u16string substringWithRange(std::u16string_view text, Range range) {
    return charactersInRange(text, range,
                             "substringWithRange: the bounds must be in order, between 0 and the number of characters");
}

std::u16string subscript(std::u16string_view text, std::int64_t index) {
    constexpr std::string_view kMessage = "subscript: the index must be between 0 and below the number of characters";
    const std::size_t begin = positionOf(text, index, kMessage);
    if (begin == text.size()) ZORPlatform::preconditionFailure(kMessage);
    return std::u16string(text.substr(begin, ZORPlatform::characterEnd(text, begin) - begin));
}

std::u16string subscript(std::u16string_view text, Range range) {
    return charactersInRange(text, range,
                             "subscript: the bounds must be in order, between 0 and the number of characters");
}

std::u16string replaceCharactersInRange(std::u16string_view text, Range range,
                                        std::optional<std::u16string_view> withString) {
    if (!withString) {
        ZORPlatform::preconditionFailure("replaceCharactersInRange(_:withString:): the replacement must be present");
    }
    if (range.lower < 0 || range.upper < range.lower || static_cast<std::uint64_t>(range.upper) > text.size()) {
        throw ZORPlatform::NSException(u"NSRangeException",
                                       u"replaceCharactersInRange(_:withString:): the range is not inside the text");
    }
    const auto lower = static_cast<std::size_t>(range.lower);
    const auto upper = static_cast<std::size_t>(range.upper);
    std::u16string result;
    result.reserve(text.size() - (upper - lower) + withString->size());
    result.append(text, 0, lower).append(*withString).append(text, upper);
    return result;
}

std::u16string preparedURLString(std::u16string_view text) {
    std::u16string result;
    if (text.find(u':') == std::u16string_view::npos) result = u"http://";
    result.append(text);
    return result;
}

std::u16string uppercaseFirst(std::u16string_view text) {
    if (text.empty()) return {};
    const std::size_t end = ZORPlatform::characterEnd(text, 0);
    const std::u16string first = ZORPlatform::uppercased(text.substr(0, end));
    std::u16string result;
    result.reserve(first.size() + text.size() - end);
    result.append(first).append(text, end);
    return result;
}

std::u16string replaceFirstCharactersBeforeFirstDigit(std::u16string_view text, std::u16string_view prefix) {
    std::size_t letters = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto [scalar, end] = ZORPlatform::scalarAt(text, at);
        if (ZORPlatform::isLetter(scalar)) {
            ++letters;
        } else if (ZORPlatform::isDecimalDigit(scalar)) {
            break;
        }
        at = end;
    }
    const std::size_t cut = ZORPlatform::characterPosition(text, letters).value_or(text.size());
    std::u16string result;
    result.reserve(prefix.size() + text.size() - cut);
    result.append(prefix).append(text, cut);
    return result;
}

std::u16string removeConsecutiveSpaces(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size());
    std::size_t copied = 0;
    for (std::size_t pair = ZORPlatform::findUnitPair(text, u' ', 0); pair < text.size();
         pair = ZORPlatform::findUnitPair(text, u' ', copied)) {
        result.append(text, copied, pair + 1 - copied);
        copied = std::min(text.find_first_not_of(u' ', pair), text.size());
    }
    result.append(text, copied);
    return result;
}

std::u16string emojiFlag(std::u16string_view text) {
    constexpr char32_t kToRegionalIndicator = 127397;
    constexpr std::u16string_view kBefore = u"Optional(\"";
    constexpr std::u16string_view kBehind = u"\")";
    const std::u16string capitals = ZORPlatform::uppercased(text);
    std::u16string result;
    result.reserve(capitals.size() * (kBefore.size() + 2 + kBehind.size()));
    for (std::size_t at = 0; at < capitals.size();) {
        const auto [scalar, end] = ZORPlatform::scalarAt(capitals, at);
        const char32_t moved = scalar + kToRegionalIndicator;
        if (moved <= 0x10FFFF) {
            result += kBefore;
            ZORPlatform::appendScalar(result, moved);
            result += kBehind;
        } else {
            result += u"nil";
        }
        at = end;
    }
    return result;
}

std::u16string withEmojis(std::u16string_view text) { return ZORPlatform::textFromHexJava(text); }

}  // namespace ZORFoundation::StringExtension
