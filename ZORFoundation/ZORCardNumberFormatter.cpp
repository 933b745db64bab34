// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORCardNumberFormatter.h>

#include <ZORFoundation/DisplayInternal.h>
#include <ZORFoundation/ExplanationInternal.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <cstdint>

namespace ZORFoundation {
namespace {

using ZORPlatform::fourUnits;
using ZORPlatform::inEveryLane;
using ZORPlatform::kFourZeros;
using ZORPlatform::nonDigits;

constexpr std::size_t kCardUnits = 17;

struct CardLayout {
    static constexpr std::u16string_view kText = u"####\u00A0####\u00A0####\u00A0####\u00A0#";
};
struct CreditCardLayout {
    static constexpr std::u16string_view kText = u"####\u00A0####\u00A0####\u00A0#### #";
};

// What is taken out before a number is shown in each layout.
constexpr auto isNothing = [](char16_t /*unit*/) noexcept { return false; };
constexpr auto isSpace = [](char16_t unit) noexcept { return unit == u' '; };

constexpr bool isAsciiDigit(char16_t unit) noexcept { return unit >= u'0' && unit <= u'9'; }

// Whether the Luhn sum of 17 ASCII digits is a multiple of 10. Of each four digits the second and the fourth are
// doubled: the number's last digit, which is not, follows four whole fours.
constexpr bool isLuhnSumOfDigitsRoundUnchecked(const char16_t* digits) noexcept {
    constexpr std::uint64_t kDoubledLanes = 0xFFFF'0000'FFFF'0000;
    constexpr std::uint64_t kEveryLane = inEveryLane(1);
    std::uint64_t sums = 0;
    for (std::size_t at = 0; at + 4 < kCardUnits; at += 4) {
        const std::uint64_t word = fourUnits(digits + at) - kFourZeros;
        const std::uint64_t doubled = word & kDoubledLanes;
        // Adding the digits of a doubled digit above 4 takes 9 away, which is 1 more by 10. Such a digit carries into
        // bit 4 when 11 is added.
        sums += word + doubled + ((doubled + 11 * kEveryLane) >> 4 & kEveryLane);
    }
    // The top lane of the product is the sum of all lanes.
    const std::uint64_t total = (sums * kEveryLane >> 48) + (digits[kCardUnits - 1] - u'0');
    return total % 10 == 0;
}

// The same sum for decimal digits of any script: those beyond ASCII count as 0, which is what "0" counts as.
bool isLuhnSumRound(std::u16string_view units) noexcept {
    ShortText<kCardUnits, u'0'> digits;
    for (const char16_t unit : units) digits.append(isAsciiDigit(unit) ? unit : u'0');
    return isLuhnSumOfDigitsRoundUnchecked(digits.view().data());
}

// The position of the first character that is no decimal digit, `units.size()` when there is none.
std::size_t firstNonDigit(std::u16string_view units) noexcept {
    std::size_t at = 0;
    while (at < units.size()) {
        const ZORPlatform::ScalarStep step = ZORPlatform::scalarAt(units, at);
        if (!ZORPlatform::isDecimalDigit(step.scalar)) break;
        at = step.end;
    }
    return at;
}

bool areSeventeenDigits(const char16_t* units) noexcept {
    std::uint64_t odd = nonDigits(fourUnits(units + kCardUnits - 4));
    for (std::size_t at = 0; at + 4 < kCardUnits; at += 4) odd |= nonDigits(fourUnits(units + at));
    return odd == 0;
}

// The number within a spelling: one unit more than needed, so that a long number shows.
auto numberIn(std::u16string_view text) noexcept { return leadingUnits<kCardUnits + 1>(text, isCardNumberSeparator); }

// The position in `text` of its unit number `index` that is no separator; the end of the text when it has fewer.
std::size_t positionOfUnit(std::u16string_view text, std::size_t index) noexcept {
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        if (!isCardNumberSeparator(text[at]) && index-- == 0) break;
    }
    return at;
}

}  // namespace

std::u16string ZORCardNumberFormatter::strippedCardNumber(std::u16string_view text) {
    return withoutSeparators(text, isCardNumberSeparator);
}

std::u16string ZORCardNumberFormatter::formattedCardNumber(std::u16string_view text) {
    return inLayout<CardLayout>(leadingUnits<kCardUnits, u' '>(text, isNothing));
}

std::u16string ZORCardNumberFormatter::formattedCardNumberOptimal(std::u16string_view text) {
    return inGroupsOfFour(leadingUnits<kCardUnits>(text, isCardNumberSeparator));
}

std::u16string ZORCardNumberFormatter::formattedCreditCard(std::u16string_view text) {
    return inLayout<CreditCardLayout>(leadingUnits<kCardUnits, u' '>(text, isSpace));
}

bool ZORCardNumberFormatter::isValidCardNumber(std::u16string_view text) noexcept {
    if (text.size() == kCardUnits && areSeventeenDigits(text.data())) {
        return isLuhnSumOfDigitsRoundUnchecked(text.data());
    }
    const auto number = numberIn(text);
    if (number.view().size() != kCardUnits) return false;
    if (areSeventeenDigits(number.data())) return isLuhnSumOfDigitsRoundUnchecked(number.data());
    return firstNonDigit(number.view()) == kCardUnits && isLuhnSumRound(number.view());
}

Explanation ZORCardNumberFormatter::explainCardNumber(std::u16string_view text) noexcept {
    if (isValidCardNumber(text)) return {};
    const auto number = numberIn(text);
    if (number.view().size() != kCardUnits) {
        Explanation explanation = brokenAt(BrokenRule::length, text, positionOfUnit(text, kCardUnits));
        explanation.found =
            text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isCardNumberSeparator));
        explanation.expected = kCardUnits;
        return explanation;
    }
    const std::size_t odd = firstNonDigit(number.view());
    if (odd < kCardUnits) return brokenAt(BrokenRule::unexpectedCharacter, text, positionOfUnit(text, odd));
    return brokenAt(BrokenRule::checkDigits, text, positionOfUnit(text, kCardUnits - 1));
}

}  // namespace ZORFoundation
