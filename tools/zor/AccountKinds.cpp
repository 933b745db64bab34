// SPDX-License-Identifier: Apache-2.0
//
// Account numbers. A value is stripped first, as people type separators, unless it is to be taken exactly.

#include <tools/zor/KindGroups.h>

#include <ZORFoundation/ZORAccountNumberFormatter.h>
#include <ZORFoundation/ZORAccountNumberValidator.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace zor {
namespace {

using ZORFoundation::Explanation;
using Formatter = ZORFoundation::ZORAccountNumberFormatter;
using Validator = ZORFoundation::ZORAccountNumberValidator;

// Whether all units lie between "0" and U+007F, where no separator is: then stripping, which allocates, changes
// nothing. Four units at a time, since most numbers of a large file come without separators.
bool hasNothingToStrip(std::u16string_view text) noexcept {
    constexpr std::uint64_t kAboveAscii = 0xFF80FF80FF80FF80U;
    constexpr std::uint64_t kLowestUnit = 0x7FD07FD07FD07FD0U;  // Carries into a unit's top bit from "0" on.
    constexpr std::uint64_t kTopBits = 0x8000800080008000U;
    std::uint64_t above = 0;
    std::uint64_t notBelow = kTopBits;
    const auto look = [&](const char16_t* units) {
        std::uint64_t four = 0;
        std::memcpy(&four, units, sizeof four);
        above |= four & kAboveAscii;
        notBelow &= four + kLowestUnit;
    };
    constexpr std::size_t kUnits = 4;
    if (text.size() < kUnits) {
        for (const char16_t unit : text) {
            if (unit < u'0' || unit > 0x7F) return false;
        }
        return true;
    }
    for (std::size_t at = 0; at + kUnits < text.size(); at += kUnits) look(text.data() + at);
    look(text.data() + text.size() - kUnits);
    return above == 0 && notBelow == kTopBits;
}

template <auto Rule>
bool check(std::u16string_view text, const KindSettings& settings) {
    if (settings.exact || hasNothingToStrip(text)) return Rule(text);
    return Rule(Formatter::strippedAccountNumber(text));
}

// The position in `text` of the unit at `position` of `stripped`. What was stripped is found nowhere in `stripped`.
std::size_t writtenPosition(std::u16string_view text, std::u16string_view stripped, std::size_t position) {
    std::size_t at = 0;
    for (std::size_t kept = 0; at < text.size() && kept < stripped.size(); ++at) {
        if (text[at] != stripped[kept]) continue;
        if (kept == position) return at;
        ++kept;
    }
    return position < stripped.size() ? at : text.size();
}

template <auto Rule>
Explanation explain(std::u16string_view text, const KindSettings& settings) {
    if (settings.exact || hasNothingToStrip(text)) return Rule(text);
    const std::u16string stripped = Formatter::strippedAccountNumber(text);
    Explanation explanation = Rule(stripped);
    if (!explanation.isValid()) explanation.position = writtenPosition(text, stripped, explanation.position);
    return explanation;
}

bool isValidAccount(std::u16string_view text) { return Validator::isValidIban(text) || Validator::isValidBban(text); }

// Of the two forms, that one is explained which the number was meant to have: an IBAN begins with its country.
Explanation explainAccount(std::u16string_view text) {
    const Explanation asBban = Validator::explainBban(text);
    if (asBban.isValid()) return asBban;
    const Explanation asIban = Validator::explainIban(text);
    const bool looksLikeBban = !text.empty() && text.front() >= u'0' && text.front() <= u'9';
    return asIban.isValid() || !looksLikeBban ? asIban : asBban;
}

std::u16string stripped(std::u16string_view text, const KindSettings&) {
    return Formatter::strippedAccountNumber(text);
}

std::u16string formatIban(std::u16string_view text, const KindSettings&) {
    return Formatter::formattedAccountNumberAsIban(text);
}

std::u16string formatBban(std::u16string_view text, const KindSettings&) {
    return Formatter::formattedAccountNumberAsBban(text);
}

std::u16string formatAccount(std::u16string_view text, const KindSettings&) {
    return Formatter::autoFormattedAccountNumber(text).value_or(u"");
}

constexpr KindOption kExact{"--exact", "", "take values as they stand, separators and all",
                            [](KindSettings& settings, std::string_view) { return settings.exact = true; }};
constexpr std::array kOptions{&kExact};

constexpr std::array kKinds{
    Kind{"iban", "international account numbers", check<Validator::isValidIban>, explain<Validator::explainIban>,
         stripped, formatIban, kOptions},
    Kind{"bban", "Belgian domestic account numbers", check<Validator::isValidBban>, explain<Validator::explainBban>,
         stripped, formatBban, kOptions},
    Kind{"account", "either of them", check<isValidAccount>, explain<explainAccount>, stripped, formatAccount,
         kOptions},
};

}  // namespace

const KindGroup kAccountKinds{"account-numbers", "ISO 13616, ISO 7064; Belgium 16", "2026-11-21", kKinds};

}  // namespace zor
