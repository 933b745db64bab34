// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/CFStringTransform.h>

#include <ZORPlatform/Foundation/UnitScanInternal.h>

#include <optional>

namespace ZORPlatform {
namespace {

constexpr std::size_t kEscapeUnits = 6;

constexpr int digitValue(char16_t unit) noexcept {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
    return -1;
}

// The unit that the escape at `begin` writes. A backslash stands there.
constexpr std::optional<char16_t> escapedUnit(std::u16string_view text, std::size_t begin) noexcept {
    if (text.size() - begin < kEscapeUnits || text[begin + 1] != u'u') return std::nullopt;
    int unit = 0;
    for (std::size_t at = begin + 2; at < begin + kEscapeUnits; ++at) {
        const int value = digitValue(text[at]);
        if (value < 0) return std::nullopt;
        unit = unit * 16 + value;
    }
    return static_cast<char16_t>(unit);
}
static_assert(escapedUnit(u"\\u00E9", 0) == u'\u00E9' && !escapedUnit(u"\\u00E", 0) && !escapedUnit(u"\\U00E9", 0));

}  // namespace

std::u16string textFromHexJava(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size());
    std::size_t copied = 0;
    for (std::size_t at = findUnit(text, u'\\', 0); at < text.size(); at = findUnit(text, u'\\', at)) {
        const std::optional<char16_t> unit = escapedUnit(text, at);
        if (!unit) {
            ++at;
            continue;
        }
        result.append(text, copied, at - copied).push_back(*unit);
        at += kEscapeUnits;
        copied = at;
    }
    result.append(text, copied);
    return result;
}

}  // namespace ZORPlatform
