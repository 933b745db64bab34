// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the command can check, explain and format: one row a kind, one source file a group of kinds.

#include <tools/zor/DateSettings.h>

#include <ZORFoundation/Explanation.h>
#include <ZORFoundation/Validation/InputValidator.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zor {

/// What the options of kinds say. A kind reads the members whose options it takes.
struct KindSettings {
    bool exact = false;                 ///< The value is taken as it stands; separators are not taken out first.
    std::string_view locale = "nl_BE";  ///< In whose writing a value is displayed.
    std::optional<ZORFoundation::CharacterLimits> limits{};  ///< Absent where neither limit was given.
    std::u16string pattern{};                                ///< Into which a value is laid.
    std::u16string slot = u"X";                              ///< The character of the pattern that marks a slot.
    std::u16string token{};                                  ///< What follows a telephone link.
    DateSettings dates{};                                    ///< Of dates.
};

/// An option that only some kinds take.
struct KindOption {
    std::string_view name;
    std::string_view placeholder;  ///< Empty for a flag.
    std::string_view help;
    /// Stores `value`, empty for a flag. @return false when the value means nothing
    /// @throws UsageError where there is more to say than that
    bool (*set)(KindSettings& settings, std::string_view value);
};

/// One kind of value. Texts come as they were written: each function takes separators out itself where the kind has
/// any. All functions are pure.
struct Kind {
    std::string_view name;
    std::string_view help;
    /// Null, as `explain` then is, for a kind of which any text is one: it can only be formatted.
    bool (*check)(std::u16string_view text, const KindSettings& settings);
    /// Positions are those of the text as it was written. Valid exactly when `check` is true.
    ZORFoundation::Explanation (*explain)(std::u16string_view text, const KindSettings& settings);
    /// The form that programs store.
    std::u16string (*normalize)(std::u16string_view text, const KindSettings& settings);
    /// The form that people read.
    std::u16string (*format)(std::u16string_view text, const KindSettings& settings);
    std::span<const KindOption* const> options{};
    /// One of what the lengths of an explanation count.
    std::string_view counted = "character";
    /// What is wrong with the options taken together, empty when nothing is. Null when nothing can be.
    std::string_view (*complaint)(const KindSettings& settings) = nullptr;
};

/// The kinds of one source file, and the day on which what they accept last changed.
struct KindGroup {
    std::string_view name;
    std::string_view rules;
    std::string_view date;
    std::span<const Kind> kinds;
};

/// All groups of this program, in the order in which help shows them.
[[nodiscard]] std::span<const KindGroup* const> kindGroups();

/// The kind of that name, or null.
[[nodiscard]] const Kind* findKind(std::string_view name);

}  // namespace zor
