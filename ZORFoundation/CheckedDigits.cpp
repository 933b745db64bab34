// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/CheckedDigitsInternal.h>
#include <ZORFoundation/ExplanationInternal.h>
#include <ZORFoundation/ZORMod97.h>

#include <algorithm>
#include <array>

namespace ZORFoundation {

std::int32_t SpacedBody::remainder() const noexcept { return ZORMod97::modulo97(text_); }

std::int32_t SpacedBody::remainderBehindTwo() const noexcept {
    std::array<char16_t, 13> joined{u'2'};
    std::copy(text_.begin(), text_.end(), joined.begin() + 1);
    return ZORMod97::modulo97({joined.data(), text_.size() + 1});
}

Explanation explainInvalidNumber(std::u16string_view text, std::size_t length) {
    if (text.size() != length) return wrongLength(BrokenRule::length, text, length);
    const Explanation numeric = StringExtension::explainNumeric(text);
    // Where there are only spaces, the last of them stands where a digit is needed.
    if (numeric.rule == BrokenRule::incomplete) return brokenAt(BrokenRule::unexpectedCharacter, text, length - 1);
    if (!numeric.isValid()) return numeric;
    return brokenAt(BrokenRule::checkDigits, text, length - kCheckDigits);
}

}  // namespace ZORFoundation
