// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAccountNumberValidator.h>

#include <ZORFoundation/CheckedDigitsInternal.h>
#include <ZORFoundation/ExplanationInternal.h>
#include <ZORFoundation/PiecewiseRemainderInternal.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace ZORFoundation {
namespace {

using ZORPlatform::fourDigitsUnchecked;
using ZORPlatform::fourUnits;
using ZORPlatform::inEveryLane;
using ZORPlatform::kFourZeros;
using ZORPlatform::lanesAboveNine;
using ZORPlatform::nonDigits;

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

// Eight units as lanes, and what several lanes hold together. The order of lanes within a word is that of `fourUnits`.
using Lanes = std::uint16_t __attribute__((vector_size(16)));
using PairsOfLanes = std::uint32_t __attribute__((vector_size(16)));
using Words = std::uint64_t __attribute__((vector_size(16)));

Lanes eightUnits(const char16_t* units) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        Lanes lanes;
        std::memcpy(&lanes, units, sizeof lanes);
        return lanes;
    }
    return std::bit_cast<Lanes>(Words{fourUnits(units), fourUnits(units + 4)});
}

constexpr Lanes inAllLanes(std::uint16_t value) noexcept {
    return Lanes{value, value, value, value, value, value, value, value};
}

// A number of letters and digits spells one long number, and `modulo97:` gives its true remainder. So it may be summed
// up from its end, stretch by stretch, each times the power of ten of the place where it ends: no sum waits for the one
// before.
class PlainSum {
public:
    void addBefore(Stretch stretch) noexcept {
        sum_ += std::uint64_t{stretch.number} * kPowers[digits_];
        digits_ += stretch.digits;
    }

    // Adds the first `count` of eight units; the others are as if they were not there.
    [[gnu::always_inline]] void addBefore(const char16_t* units, std::size_t count) noexcept {
        // Ones for each lane that counts, zeros behind them.
        static constexpr auto kCounting = [] {
            std::array<char16_t, 16> lanes{};
            std::fill(lanes.begin(), lanes.begin() + 8, u'\uFFFF');
            return lanes;
        }();
        addBefore(units, eightUnits(&kCounting[8 - count]));
    }

    // Adds eight units.
    [[gnu::always_inline]] void addBefore(const char16_t* units) noexcept { addBefore(units, inAllLanes(0xFFFF)); }

    // By 97. None when one of the units was neither letter nor digit.
    [[nodiscard]] std::optional<std::uint64_t> remainder() const noexcept {
        const auto odd = std::bit_cast<Words>(odd_);
        if ((odd[0] | odd[1]) != 0) return std::nullopt;
        return sum_ % 97;
    }

private:
    // @param counts  all bits of the lanes to add
    [[gnu::always_inline]] void addBefore(const char16_t* units, Lanes counts) noexcept {
        const Lanes unit = eightUnits(units);
        // The small letter of a capital; a digit stays as it is.
        const Lanes folded = unit | inAllLanes(0x20);
        const auto isDigit = std::bit_cast<Lanes>(unit - inAllLanes(u'0') < inAllLanes(10)) & counts;
        const auto isLetter = std::bit_cast<Lanes>(folded - inAllLanes(u'a') < inAllLanes(26)) & counts;
        odd_ |= (isDigit | isLetter) ^ counts;

        // The lowest five bits of "0" are 16, of "a" 1.
        const Lanes number = ((folded & inAllLanes(0x1F)) - inAllLanes(16) + (isLetter & inAllLanes(25))) & counts;
        const Lanes factor = inAllLanes(1) + (isDigit & inAllLanes(9)) + (isLetter & inAllLanes(99));
        const auto digits = std::bit_cast<Words>((isDigit & inAllLanes(1)) + (isLetter & inAllLanes(2)));

        // In each pair of lanes: the first times the factor of the second, plus the second; and both factors.
        const auto laterFactor = std::bit_cast<Lanes>(std::bit_cast<PairsOfLanes>(factor) >> 16);
        const auto pairs = std::bit_cast<Words>(std::bit_cast<PairsOfLanes>(number * laterFactor) +
                                                (std::bit_cast<PairsOfLanes>(number) >> 16));
        const auto factors = std::bit_cast<Words>(factor * laterFactor);
        for (const int word : {1, 0}) {
            const auto later = static_cast<std::uint32_t>(pairs[word] >> 32);
            const auto laterFactorOfPair = static_cast<std::uint32_t>(factors[word] >> 32);
            addBefore({static_cast<std::uint32_t>(pairs[word]) * laterFactorOfPair + later,
                       static_cast<std::uint32_t>(digits[word] * inEveryLane(1) >> 48)});
        }
    }

    std::uint64_t sum_ = 0;
    std::size_t digits_ = 0;
    Lanes odd_{};
};

// None for a number of fewer units than any country's, and for one that has a unit that is neither letter nor digit.
std::optional<std::uint64_t> remainderOfPlainIban(std::u16string_view text) noexcept {
    constexpr std::size_t kLeast = kMovedUnits + 8;
    if (text.size() < kLeast) return std::nullopt;
    const char16_t* const units = text.data();
    const Stretch moved = stretchOf(fourUnits(units));
    if (moved.digits >= kOdd) return std::nullopt;
    PlainSum sum;
    sum.addBefore(moved);
    sum.addBefore(units + text.size() - 8);
    // The same steps whatever the length is, which is anybody's guess: units that are not there count nothing.
    const auto addFromEnd = [&](std::size_t distance) __attribute__((always_inline)) {
        const std::size_t end = std::max(text.size(), distance + kMovedUnits) - distance;
        const std::size_t begin = std::max(end, kLeast) - 8;
        sum.addBefore(units + begin, end - begin);
    };
    addFromEnd(8);
    addFromEnd(16);
    if (text.size() > kMovedUnits + 24) addFromEnd(24);
    return sum.remainder();
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

// The rule word for word, for short texts and for those with units that are neither letters nor digits. A few of them
// upper-case to a letter, others to several units, and all that are no digits hide the rest of their piece.
std::int32_t remainderInPieces(std::u16string_view text) noexcept {
    PiecewiseRemainder remainder;
    const auto append = [&remainder](char16_t unit) {
        if (isLetterOrDigit(unit) && kEffects[unit].digits == 2) {
            remainder.append(static_cast<char16_t>(u'0' + kEffects[unit].number / 10));
            remainder.append(static_cast<char16_t>(u'0' + kEffects[unit].number % 10));
        } else {
            remainder.append(unit);
        }
    };
    const auto appendUppercased = [&](char16_t unit) {
        const ZORPlatform::UppercasedUnit upper = ZORPlatform::uppercased(unit);
        if (upper.count == 1) return append(upper.units[0]);
        for (const char16_t piece : upper.view()) remainder.append(piece);
    };
    for (std::u16string_view part : {text.substr(kMovedUnits), text.substr(0, kMovedUnits)}) {
        while (!part.empty()) {
            // Most of the text is as plain as any, and only what follows an odd unit waits for the end of its piece.
            if (part.size() >= 4 && remainder.takesNumber()) {
                if (const Stretch stretch = stretchOf(fourUnits(part.data())); stretch.digits < kOdd) {
                    remainder.appendNumber(stretch.number, stretch.digits, kPowers[stretch.digits]);
                    part.remove_prefix(4);
                    continue;
                }
            }
            const char16_t unit = part.front();
            part.remove_prefix(1);
            if (unit < kEffects.size()) {
                append(unit);
            } else {
                appendUppercased(unit);
            }
        }
    }
    return remainder.value();
}

struct CheckOfDigits {
    bool isRight;
    bool isPlain;  ///< Whether it is known that all units are letters and digits.
};

// Of a text whose length is in range.
CheckOfDigits checkDigits(std::u16string_view text) noexcept {
    std::optional<std::uint64_t> remainder;
    if (text.size() == kFixedLength) remainder = remainderOfBelgianIban(text.data());
    if (!remainder) remainder = remainderOfPlainIban(text);
    if (remainder) return {.isRight = *remainder == 1, .isPlain = true};
    return {.isRight = remainderInPieces(text) == 1, .isPlain = false};
}

}  // namespace

bool ZORAccountNumberValidator::isValidIban(std::u16string_view text) noexcept {
    return lengthOfIban(text) == IbanLength::inRange && checkDigits(text).isRight;
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
    const CheckOfDigits check = checkDigits(text);
    if (check.isRight) return {};
    if (check.isPlain) return brokenAt(BrokenRule::checkDigits, text, kIbanCheckDigits);
    const auto* const odd = std::find_if_not(text.begin(), text.end(), isLetterOrDigit);
    if (odd == text.end()) return brokenAt(BrokenRule::checkDigits, text, kIbanCheckDigits);
    return brokenAt(BrokenRule::unexpectedCharacter, text, static_cast<std::size_t>(odd - text.begin()));
}

bool ZORAccountNumberValidator::isValidBban(std::u16string_view text) noexcept {
    return isValidCheckedNumber<kBbanLength>(text, kRemainderNeverZero);
}

Explanation ZORAccountNumberValidator::explainBban(std::u16string_view text) noexcept {
    return explainCheckedNumber<kBbanLength>(text, kRemainderNeverZero);
}

}  // namespace ZORFoundation
