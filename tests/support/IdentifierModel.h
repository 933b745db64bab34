// SPDX-License-Identifier: Apache-2.0
#pragma once

// The rules of cards, comments and numbers of persons, step for step as they are told: the referee of the library's
// own engines, in tests and fuzz targets.

#include "AccountNumberModel.h"

#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace support {

[[nodiscard]] inline std::u16string without(std::u16string_view text, std::u16string_view removed) {
    std::u16string result;
    for (const char16_t unit : text) {
        if (removed.find(unit) == removed.npos) result.push_back(unit);
    }
    return result;
}

[[nodiscard]] inline bool literalIsValidCardNumber(std::u16string_view text) {
    std::u16string number = without(text, u" \u00A0");
    if (number.size() != 17) return false;
    for (std::size_t at = 0; at < number.size();) {
        const ZORPlatform::ScalarStep step = ZORPlatform::scalarAt(number, at);
        if (!ZORPlatform::isDecimalDigit(step.scalar)) return false;
        at = step.end;
    }
    std::reverse(number.begin(), number.end());
    std::int64_t plain = 0;
    std::int64_t doubled = 0;
    for (std::size_t position = 0; position < number.size(); ++position) {
        const std::int64_t digit = leadingInteger(number.substr(position, 1));
        if (position % 2 == 0) {
            plain += digit;
        } else {
            doubled += 2 * digit % 10 + 2 * digit / 10;
        }
    }
    return (plain + doubled) % 10 == 0;
}

/// The lengths and places that the checks by 97 share.
struct CheckedNumberModel {
    std::size_t length;

    [[nodiscard]] bool isWellFormed(std::u16string_view text) const {
        return text.size() == length && literalIsNumeric(text);
    }
    [[nodiscard]] std::u16string body(std::u16string_view text) const {
        return std::u16string(text.substr(0, length - 2));
    }
    [[nodiscard]] std::int64_t check(std::u16string_view text) const { return leadingInteger(text.substr(length - 2)); }
};

[[nodiscard]] inline bool literalIsValidNationalRegistrationNumber(std::u16string_view text) {
    const CheckedNumberModel number{11};
    if (!number.isWellFormed(text)) return false;
    if (97 - literalModulo97(number.body(text)) == number.check(text)) return true;
    return 97 - literalModulo97(u"2" + number.body(text)) == number.check(text);
}

[[nodiscard]] inline bool literalIsValidNationalDocumentNumber(std::u16string_view text) {
    const CheckedNumberModel number{12};
    return number.isWellFormed(text) && literalModulo97(number.body(text)) == number.check(text);
}

[[nodiscard]] inline bool literalIsAccessNumberValid(std::u16string_view text) {
    const CheckedNumberModel number{13};
    if (!number.isWellFormed(text)) return false;
    const std::int64_t remainder = literalModulo97(number.body(text));
    return (remainder == 0 ? 97 : remainder) == number.check(text);
}

}  // namespace support
