// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the rows of kinds are made of: the library's operations in the shape that a row has.

#include <tools/zor/Kind.h>

#include <array>

namespace zor {

// For kinds whose rules take a text as it was written.

template <auto Rule>
bool check(std::u16string_view text, const KindSettings&) {
    return Rule(text);
}

template <auto Rule>
ZORFoundation::Explanation explain(std::u16string_view text, const KindSettings&) {
    return Rule(text);
}

/// The form of a kind that has only one.
inline std::u16string asWritten(std::u16string_view text, const KindSettings&) { return std::u16string(text); }

template <auto Display>
std::u16string display(std::u16string_view text, const KindSettings&) {
    return Display(text);
}

/// The decimal digits of a text.
[[nodiscard]] std::u16string digits(std::u16string_view text);

/// The digits of a phone number, and the "+" that it may begin with.
[[nodiscard]] std::u16string dialled(std::u16string_view text);

// For kinds whose rules take a stripped text. `Separators::strip` takes out units, and takes out every unit equal to
// one that it takes out; `Separators::areNotIn` says quickly, erring on the side of false, that it would find none.

inline constexpr KindOption kExact{"--exact", "", "take values as they stand, separators and all",
                                   [](KindSettings& settings, std::string_view) { return settings.exact = true; }};
inline constexpr std::array kExactOption{&kExact};

/// The position in `text` of the unit at `position` of `stripped`; the end of `text` for the end of `stripped`.
[[nodiscard]] std::size_t writtenPosition(std::u16string_view text, std::u16string_view stripped, std::size_t position);

template <typename Separators, auto Rule>
bool checkStripped(std::u16string_view text, const KindSettings& settings) {
    if (settings.exact || Separators::areNotIn(text)) return Rule(text);
    return Rule(Separators::strip(text));
}

template <typename Separators, auto Rule>
ZORFoundation::Explanation explainStripped(std::u16string_view text, const KindSettings& settings) {
    if (settings.exact || Separators::areNotIn(text)) return Rule(text);
    const std::u16string stripped = Separators::strip(text);
    ZORFoundation::Explanation explanation = Rule(stripped);
    if (!explanation.isValid()) explanation.position = writtenPosition(text, stripped, explanation.position);
    return explanation;
}

template <typename Separators>
std::u16string asStripped(std::u16string_view text, const KindSettings&) {
    return Separators::strip(text);
}

}  // namespace zor
