// SPDX-License-Identifier: Apache-2.0
//
// Account numbers. A value is stripped first, as people type separators, unless it is to be taken exactly.

#include <tools/zor/KindGroups.h>
#include <tools/zor/KindRules.h>

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

struct AccountSeparators {
    static bool areNotIn(std::u16string_view text) noexcept { return hasNothingToStrip(text); }
    static std::u16string strip(std::u16string_view text) { return Formatter::strippedAccountNumber(text); }
};

template <auto Rule>
constexpr auto check = checkStripped<AccountSeparators, Rule>;

template <auto Rule>
constexpr auto explain = explainStripped<AccountSeparators, Rule>;

bool isValidAccount(std::u16string_view text) { return Validator::isValidIban(text) || Validator::isValidBban(text); }

// Of the two forms, that one is explained which the number was meant to have: an IBAN begins with its country.
Explanation explainAccount(std::u16string_view text) {
    const Explanation asBban = Validator::explainBban(text);
    if (asBban.isValid()) return asBban;
    const Explanation asIban = Validator::explainIban(text);
    const bool looksLikeBban = !text.empty() && text.front() >= u'0' && text.front() <= u'9';
    return asIban.isValid() || !looksLikeBban ? asIban : asBban;
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

constexpr std::array kKinds{
    Kind{"iban", "international account numbers", check<Validator::isValidIban>, explain<Validator::explainIban>,
         asStripped<AccountSeparators>, formatIban, kExactOption},
    Kind{"bban", "Belgian domestic account numbers", check<Validator::isValidBban>, explain<Validator::explainBban>,
         asStripped<AccountSeparators>, formatBban, kExactOption},
    Kind{"account", "either of them", check<isValidAccount>, explain<explainAccount>, asStripped<AccountSeparators>,
         formatAccount, kExactOption},
};

}  // namespace

const KindGroup kAccountKinds{"account-numbers", "ISO 13616, ISO 7064; Belgium 16", "2026-11-21", kKinds};

}  // namespace zor
