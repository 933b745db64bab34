// SPDX-License-Identifier: Apache-2.0
#pragma once

// Why a text is not valid. Each validator has two twins that share one engine: a boolean, and an explanation of the
// first rule that the text breaks. `BrokenRule::none` is explained exactly when the boolean is true.
//
//     const Explanation explanation = ZORAccountNumberValidator::explainIban(u"BE6853900754703");
//     explanation.rule == BrokenRule::countryLength;   // found 15, expected 16, at position 15

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ZORFoundation {

/// A rule that a text can break. Which of them a validator has, and the order in which it tries them, stands at its
/// explaining operation.
enum class BrokenRule : std::uint8_t {
    none,                 ///< The text is valid.
    empty,                ///< The text is empty where something is required.
    tooShort,             ///< Fewer than `expected`.
    tooLong,              ///< More than `expected`.
    countryLength,        ///< Not exactly the `expected` length of this country's numbers.
    length,               ///< Not exactly the `expected` length.
    integerDigits,        ///< More digits before the decimal separator than `expected`.
    decimals,             ///< More digits behind the decimal separator than `expected`.
    unexpectedCharacter,  ///< The character at `position` is not allowed there.
    incomplete,           ///< The text ends at `position`, where its form asks for more.
    checkDigits,          ///< Well-formed, but the check digits at `position` do not belong to the rest.
};

/// The first rule that a text breaks, where, and by how much. A value; making one allocates nothing.
struct Explanation {
    BrokenRule rule = BrokenRule::none;

    /// Where the rule is broken, in UTF-16 units: the first offending unit; for a length, the end of a text that is
    /// too short and the first surplus unit of one that is too long. 0 when nothing is broken.
    std::size_t position = 0;

    /// The same place in user-perceived characters: the number of whole characters that end at or before `position`.
    std::size_t character = 0;

    /// The length found, in the unit that the rule counts in. 0 unless the rule is one of length.
    std::size_t found = 0;

    /// The length that the rule asks for: at least this for `tooShort`; at most for `tooLong`, `integerDigits` and
    /// `decimals`; exactly for the others. 0 unless the rule is one of length.
    std::size_t expected = 0;

    /// Whether no rule is broken.
    [[nodiscard]] constexpr bool isValid() const noexcept { return rule == BrokenRule::none; }

    friend constexpr bool operator==(const Explanation&, const Explanation&) noexcept = default;
};

/// The case's own name, for example "tooShort".
[[nodiscard]] constexpr std::string_view name(BrokenRule rule) noexcept {
    switch (rule) {
        case BrokenRule::none:
            return "none";
        case BrokenRule::empty:
            return "empty";
        case BrokenRule::tooShort:
            return "tooShort";
        case BrokenRule::tooLong:
            return "tooLong";
        case BrokenRule::countryLength:
            return "countryLength";
        case BrokenRule::length:
            return "length";
        case BrokenRule::integerDigits:
            return "integerDigits";
        case BrokenRule::decimals:
            return "decimals";
        case BrokenRule::unexpectedCharacter:
            return "unexpectedCharacter";
        case BrokenRule::incomplete:
            return "incomplete";
        case BrokenRule::checkDigits:
            return "checkDigits";
    }
    return {};
}

}  // namespace ZORFoundation
