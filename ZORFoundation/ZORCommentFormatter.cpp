// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORCommentFormatter.h>

#include <ZORFoundation/DisplayInternal.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/Text.h>

namespace ZORFoundation {
namespace {

using ZORPlatform::fourUnits;
using ZORPlatform::lanesFrom;
using ZORPlatform::nonDigits;
using ZORPlatform::storeFourUnits;

constexpr std::size_t kCommentUnits = 12;

constexpr char16_t kFirstDigitBeyondAscii = u'\u0660';

constexpr bool isAsciiDigit(char16_t unit) noexcept { return unit >= u'0' && unit <= u'9'; }

struct CommentLayout {
    static constexpr std::u16string_view kText = u"+++\u00A0###\u00A0/\u00A0####\u00A0/\u00A0#####\u00A0+++";
};

// Copies the units of the decimal digits of `text`, until there are `most` of them or a few more. Where to, and the
// answer, are as with `copyWithoutSeparators`.
std::size_t copyDigits(std::u16string_view text, char16_t* to, std::size_t most) noexcept {
    const char16_t* const units = text.data();
    const std::size_t size = text.size();
    std::size_t at = 0;
    std::size_t copied = 0;
    while (at < size && copied < most) {
        if (at + 4 <= size) {
            const std::uint64_t word = fourUnits(units + at);
            if (nonDigits(word) == 0) {
                storeFourUnits(word, to + copied);
                at += 4;
                copied += 4;
                continue;
            }
            if (lanesFrom(word, kFirstDigitBeyondAscii) == 0) {
                // Without a branch on the unit: where digits stand is anybody's guess.
                for (const std::size_t end = at + 4; at < end; ++at) {
                    to[copied] = units[at];
                    copied += isAsciiDigit(units[at]) ? 1U : 0U;
                }
                continue;
            }
        }
        const ZORPlatform::ScalarStep step = ZORPlatform::scalarAt(text, at);
        const bool isDigit =
            step.scalar < kFirstDigitBeyondAscii ? isAsciiDigit(units[at]) : ZORPlatform::isDecimalDigit(step.scalar);
        for (; at < step.end; ++at) {
            to[copied] = units[at];
            copied += isDigit ? 1U : 0U;
        }
    }
    return copied;
}

}  // namespace

std::u16string ZORCommentFormatter::strippedStructuredComment(std::u16string_view text) {
    std::u16string digits(text);
    digits.resize(copyDigits(text, digits.data(), text.size()));
    return digits;
}

std::u16string ZORCommentFormatter::formattedStructuredComment(std::u16string_view text) {
    const ShortText<kCommentUnits, u'_'> digits(
        [text](char16_t* to, std::size_t most) { return copyDigits(text, to, most); });
    return digits.view().empty() ? std::u16string() : inLayout<CommentLayout>(digits);
}

}  // namespace ZORFoundation
