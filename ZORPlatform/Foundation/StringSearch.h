// SPDX-License-Identifier: Apache-2.0
#pragma once

// Texts found in texts. All functions are pure and take time linear in both lengths, whatever the texts are.

#include <cstdint>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// `NSStringCompareOptions`, as far as a search asks for it.
enum class NSStringCompareOptions : std::uint8_t {
    none,
    caseInsensitive,  ///< Full case folding without a locale: "ß" is the same as "SS".
};

/// `rangeOfString:options:`, asked whether there is one.
///
/// Whether `text` contains `searched`. Canonically equivalent spellings are the same. What is found begins and ends at
/// a boundary of characters, so "e" is not found in "é"; CR LF has a boundary in its middle.
///
/// @param searched  the empty text is never found
[[nodiscard]] bool containsString(std::u16string_view text, std::u16string_view searched,
                                  NSStringCompareOptions options);

/// `stringByReplacingOccurrencesOfString:withString:options:range:` with the literal option, in place.
///
/// Replaces from the left every occurrence of `target`, unit by unit, that does not overlap the one before. An empty
/// target occurs nowhere.
void replaceOccurrences(std::u16string& text, std::u16string_view target, std::u16string_view replacement);

}  // namespace ZORPlatform
