// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORCommentFormatter.h>

#include <ZORFoundation/DisplayInternal.h>
#include <ZORPlatform/Foundation/Text.h>

namespace ZORFoundation {
namespace {

constexpr std::size_t kCommentUnits = 12;
constexpr std::u16string_view kCommentLayout = u"+++\u00A0###\u00A0/\u00A0####\u00A0/\u00A0#####\u00A0+++";

// Hands each unit of the decimal digits of `text` to `take`, until that answers false.
template <typename Take>
void forEachDigitUnit(std::u16string_view text, Take take) {
    for (std::size_t at = 0; at < text.size();) {
        const ZORPlatform::ScalarStep step = ZORPlatform::scalarAt(text, at);
        const bool isDigit =
            step.scalar < 0x80 ? step.scalar >= u'0' && step.scalar <= u'9' : ZORPlatform::isDecimalDigit(step.scalar);
        for (; at < step.end; ++at) {
            if (isDigit && !take(text[at])) return;
        }
    }
}

}  // namespace

std::u16string ZORCommentFormatter::strippedStructuredComment(std::u16string_view text) {
    std::u16string digits;
    digits.reserve(text.size());
    forEachDigitUnit(text, [&](char16_t unit) {
        digits.push_back(unit);
        return true;
    });
    return digits;
}

std::u16string ZORCommentFormatter::formattedStructuredComment(std::u16string_view text) {
    ShortText<kCommentUnits> digits;
    forEachDigitUnit(text, [&](char16_t unit) {
        digits.append(unit);
        return !digits.isFull();
    });
    return digits.view().empty() ? std::u16string() : inLayout(digits.view(), kCommentLayout, u'_');
}

}  // namespace ZORFoundation
