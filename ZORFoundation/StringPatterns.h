// SPDX-License-Identifier: Apache-2.0
#pragma once

// Text laid into a pattern, and text found by one.

#include <ZORPlatform/Export.h>

#include <string>
#include <string_view>
#include <vector>

namespace ZORFoundation::StringExtension {

/// `formatTextWithPattern`
///
/// Lays `text` into the slots of `pattern`, as a field does while its user types: with the pattern XXXX-XXXX and X as
/// formatting character, "12 34 5" gives "1234-5". The result ends where the text or the pattern does, so no literal
/// follows the last character typed, and characters beyond the last slot are dropped.
///
/// Characters are user-perceived ones and are compared by canonical equivalence.
///
/// @param text                 its U+0020 spaces are left out, before it is divided into characters
/// @param pattern              slots and literals
/// @param formattingCharacter  the one character that marks a slot; anything but one character marks none
/// @return `text` unchanged, spaces included, when it has nothing but spaces or when `pattern` is empty
///
/// Pure.
[[nodiscard]] ZOR_EXPORT std::u16string formatTextWithPattern(std::u16string_view text, std::u16string_view pattern,
                                                              std::u16string_view formattingCharacter);

/// `zor_patternMatches(for:)`
///
/// Collects what the capture groups of a regular expression hold, for every match in `text` that does not overlap the
/// one before: all groups of the first match in their order, then those of the next. Whole matches are not collected.
///
/// @param text  searched whole; absent counts as empty
/// @param for_  a pattern in ICU's syntax with at least one capture group, used without options
/// @return empty when nothing matches, when the pattern does not compile, and when the search is given up: it would
///         take more than ten million steps of backtracking and twenty for each unit, more processor time than a
///         second and a microsecond for each unit, or eight megabytes of backtracking memory
/// @throws NSException  named "NSRangeException" when a group takes no part in a match, as in "(a)|(b)"
///
/// Stops the process when a pattern without a capture group matches. Pure.
[[nodiscard]] ZOR_EXPORT std::vector<std::u16string> zor_patternMatches(std::u16string_view text,
                                                                        std::u16string_view for_);

}  // namespace ZORFoundation::StringExtension
