// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAccountNumberValidator.h>

#include <ZORFoundation/CheckedDigitsInternal.h>
#include <ZORFoundation/ExplanationInternal.h>
#include <ZORFoundation/PiecewiseRemainderInternal.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace ZORFoundation {
namespace {

using ZORPlatform::fourDigitsUnchecked;
using ZORPlatform::fourUnits;
using ZORPlatform::kFourZeros;
using ZORPlatform::lanesAboveNine;
using ZORPlatform::nonDigits;
using ZORPlatform::withLeadingZeros;

constexpr std::size_t kShortestIban = 5;
constexpr std::size_t kLongestIban = 32;
constexpr std::size_t kMovedUnits = 4;
constexpr std::size_t kIbanCheckDigits = 2;
constexpr std::u16string_view kFixedLengthCountry = u"BE";
constexpr std::size_t kFixedLength = 16;
constexpr std::size_t kBbanLength = 12;

enum class IbanLength { inRange, empty, tooShort, tooLong, notOfCountry };

IbanLength lengthOfIban(std::u16string_view text) noexcept {
    if (text.size() < kShortestIban) return text.empty() ? IbanLength::empty : IbanLength::tooShort;
    if (text.size() > kLongestIban) return IbanLength::tooLong;
    if (text.size() != kFixedLength && text.starts_with(kFixedLengthCountry)) return IbanLength::notOfCountry;
    return IbanLength::inRange;
}

// What an ASCII unit does to the digit text of an IBAN: a number of one or two digits is written behind it.
struct UnitEffect {
    std::uint32_t factor;
    std::uint32_t number;
    std::uint32_t digits;
};

// Stands for the digits of a unit that is neither letter nor digit: more than any text of others has, so that it shows
// in a sum.
constexpr std::uint32_t kOdd = 1'000;

constexpr auto kEffects = [] {
    std::array<UnitEffect, 128> effects{};
    effects.fill({1, 0, kOdd});
    for (std::uint32_t digit = 0; digit < 10; ++digit) effects[u'0' + digit] = {10, digit, 1};
    for (std::uint32_t letter = 0; letter < 26; ++letter) {
        effects[u'A' + letter] = effects[u'a' + letter] = {100, 10 + letter, 2};
    }
    return effects;
}();
static_assert(kEffects[u'9'].number == 9 && kEffects[u'A'].number == 10 && kEffects[u'z'].number == 35);
static_assert(kEffects[u'-'].digits == kOdd);

constexpr bool isLetterOrDigit(char16_t unit) noexcept {
    return unit < kEffects.size() && kEffects[unit].digits != kOdd;
}

// Powers of ten by 97, for every digit of the longest digit text.
constexpr auto kPowers = [] {
    std::array<std::uint8_t, 2 * kLongestIban> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = static_cast<std::uint8_t>(powers[i - 1] * 10 % 97);
    return powers;
}();

// A stretch of the digit text: the number it spells and how many digits that takes. Of `kOdd` digits or more when one
// of its units is neither letter nor digit; the number means nothing then.
struct Stretch {
    std::uint32_t number;
    std::uint32_t digits;
};

// The stretch of four units. Without branches on letters, whose places nobody can guess.
Stretch stretchOf(std::uint64_t word) noexcept {
    constexpr std::uint64_t kBeyondTable = 0xFF80'FF80'FF80'FF80;
    Stretch stretch{0, (word & kBeyondTable) != 0 ? kOdd : 0};
    for (int lane = 0; lane < 4; ++lane, word >>= 16) {
        const UnitEffect& effect = kEffects[word & 0x7F];
        stretch.number = stretch.number * effect.factor + effect.number;
        stretch.digits += effect.digits;
    }
    return stretch;
}

// A number of letters and digits spells one long number, and `modulo97:` gives its true remainder. So it may be summed
// up from its end, four units at a time, each stretch times the power of ten of the place where it ends: no sum waits
// for the one before. None when there is another unit.
std::optional<std::uint64_t> remainderOfPlainIban(std::u16string_view text) noexcept {
    Stretch stretch = stretchOf(fourUnits(text.data()));
    std::uint64_t sum = stretch.number;
    std::size_t digits = stretch.digits;
    bool hasLetters = false;
    for (std::size_t end = text.size(); end > kMovedUnits; end -= 4) {
        if (digits >= kOdd) return std::nullopt;
        std::uint64_t word = fourUnits(text.data() + end - 4);
        // The last stretch may reach into the units that were moved.
        if (end < 2 * kMovedUnits) word = withLeadingZeros(word, 2 * kMovedUnits - end);
        // Where one stretch has letters the next may have some, so the short cut is not tried again.
        hasLetters = hasLetters || nonDigits(word) != 0;
        stretch = hasLetters ? stretchOf(word) : Stretch{static_cast<std::uint32_t>(fourDigitsUnchecked(word)), 4};
        sum += std::uint64_t{stretch.number} * kPowers[digits];
        digits += stretch.digits;
    }
    if (digits >= kOdd) return std::nullopt;
    return sum % 97;
}

// "BE" and fourteen digits make 18 digits, which a machine word holds. None for any other text of 16 units.
std::optional<std::uint64_t> remainderOfBelgianIban(const char16_t* units) noexcept {
    constexpr std::uint64_t kCountry = fourUnits(u"BE00");
    constexpr std::uint64_t kCountryNumber = 1114;
    const std::uint64_t check = fourUnits(units) ^ kCountry;
    const std::uint64_t first = fourUnits(units + 4);
    const std::uint64_t second = fourUnits(units + 8);
    const std::uint64_t third = fourUnits(units + 12);
    if ((check & 0xFFFF'FFFF) != 0) return std::nullopt;
    if ((lanesAboveNine(check) | nonDigits(first) | nonDigits(second) | nonDigits(third)) != 0) return std::nullopt;
    const std::uint64_t account =
        (fourDigitsUnchecked(first) * 10'000 + fourDigitsUnchecked(second)) * 10'000 + fourDigitsUnchecked(third);
    const std::uint64_t moved = kCountryNumber * 100 + fourDigitsUnchecked(check ^ kFourZeros);
    return (account * 1'000'000 + moved) % 97;
}

// The rule word for word, for texts with units that are neither letters nor digits. A few of them upper-case to a
// letter, others to several units, and all that are no digits hide the rest of their piece.
std::int32_t remainderOfOddIban(std::u16string_view text) noexcept {
    PiecewiseRemainder remainder;
    const auto append = [&remainder](char16_t unit) {
        if (isLetterOrDigit(unit) && kEffects[unit].digits == 2) {
            remainder.append(static_cast<char16_t>(u'0' + kEffects[unit].number / 10));
            remainder.append(static_cast<char16_t>(u'0' + kEffects[unit].number % 10));
        } else {
            remainder.append(unit);
        }
    };
    for (const std::u16string_view part : {text.substr(kMovedUnits), text.substr(0, kMovedUnits)}) {
        for (const char16_t unit : part) {
            if (unit < kEffects.size()) {
                append(unit);
                continue;
            }
            const ZORPlatform::UppercasedUnit upper = ZORPlatform::uppercased(unit);
            if (upper.count == 1) {
                append(upper.units[0]);
            } else {
                for (const char16_t piece : upper.view()) remainder.append(piece);
            }
        }
    }
    return remainder.value();
}

enum class Verdict { valid, wrongCheckDigits, oddUnit };

// Of a text whose length is in range.
Verdict verdictOn(std::u16string_view text) noexcept {
    std::optional<std::uint64_t> remainder;
    if (text.size() == kFixedLength) remainder = remainderOfBelgianIban(text.data());
    if (!remainder) remainder = remainderOfPlainIban(text);
    if (remainder) return *remainder == 1 ? Verdict::valid : Verdict::wrongCheckDigits;
    return remainderOfOddIban(text) == 1 ? Verdict::valid : Verdict::oddUnit;
}

}  // namespace

bool ZORAccountNumberValidator::isValidIban(std::u16string_view text) noexcept {
    return lengthOfIban(text) == IbanLength::inRange && verdictOn(text) == Verdict::valid;
}

Explanation ZORAccountNumberValidator::explainIban(std::u16string_view text) noexcept {
    switch (lengthOfIban(text)) {
        case IbanLength::empty:
            return brokenAt(BrokenRule::empty, text, 0);
        case IbanLength::tooShort:
            return wrongLength(BrokenRule::tooShort, text, kShortestIban);
        case IbanLength::tooLong:
            return wrongLength(BrokenRule::tooLong, text, kLongestIban);
        case IbanLength::notOfCountry:
            return wrongLength(BrokenRule::countryLength, text, kFixedLength);
        case IbanLength::inRange:
            break;
    }
    switch (verdictOn(text)) {
        case Verdict::valid:
            return {};
        case Verdict::wrongCheckDigits:
            return brokenAt(BrokenRule::checkDigits, text, kIbanCheckDigits);
        case Verdict::oddUnit:
            break;
    }
    const auto* const odd = std::find_if_not(text.begin(), text.end(), isLetterOrDigit);
    return brokenAt(BrokenRule::unexpectedCharacter, text, static_cast<std::size_t>(odd - text.begin()));
}

bool ZORAccountNumberValidator::isValidBban(std::u16string_view text) noexcept {
    return isValidCheckedNumber<kBbanLength>(text, kRemainderNeverZero);
}

Explanation ZORAccountNumberValidator::explainBban(std::u16string_view text) noexcept {
    return explainCheckedNumber<kBbanLength>(text, kRemainderNeverZero);
}

}  // namespace ZORFoundation
