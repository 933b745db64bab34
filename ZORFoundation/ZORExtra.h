// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the library adds to platform strings. StringExtension has operations of like names that differ on purpose.
//
//     ZORExtra::removeAccents(u"\u00E9l\u00E8ve");     // u"eleve"
//     ZORExtra::zor_preparedURLString(u"zor.be");      // u"https://zor.be"
//     ZORExtra::zor_parsedHTML(u"<b>Rent</b> &amp; costs");   // u"Rent & costs"

#include <ZORPlatform/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZORFoundation::ZORExtra {

/// `zor_preparedURLString`
///
/// `text` itself when it holds a ":" anywhere, else with "https://" in front. The twin of StringExtension,
/// `preparedURLString`, puts "http://" there. Pure.
///
/// @param text  absent counts as empty
[[nodiscard]] ZOR_EXPORT std::u16string zor_preparedURLString(std::u16string_view text);

/// `zor_containsSubstring:`
///
/// Whether `text` contains `substring`, whatever the case of either. Case is folded in full, without a locale ("ß" is
/// found by "SS"), and canonically equivalent spellings are the same. What is found begins and ends between
/// user-perceived characters, so "e" is not found in "é"; CR LF may be cut in its middle. ZORSubstringSearch has a
/// search that leaves out spaces.
///
/// @param substring  absent and empty are never found
///
/// Pure, in linear time.
[[nodiscard]] ZOR_EXPORT bool zor_containsSubstring(std::u16string_view text, std::u16string_view substring);

/// `zor_parsedHTML`
///
/// The plain text of `text` read as HTML. Each line feed in it counts as a space and a <br>.
///
/// White space collapses; script, style, head and comments give nothing; named and numeric references are decoded. A
/// block begins and ends a line, <br> is a line feed, and directly inside a paragraph, heading or list item it is
/// U+2028. A list item begins with a tab, its mark and a tab. Broken markup is read as the HTML standard says (WHATWG,
/// "Parsing HTML documents").
///
/// @return the empty text for the empty text; absent when the markup cannot be read: a lone surrogate, which has no
///         UTF-8, elements nested more than 512 deep, or markup whose document would take two hundred times its size
///
/// Pure, in linear time.
[[nodiscard]] ZOR_EXPORT std::optional<std::u16string> zor_parsedHTML(std::u16string_view text);

/// `removeAccents`
///
/// `text` as ASCII. A letter with diacritics becomes its base letter and white space a space. Signs of Latin-1 become
/// one to three characters ("½" gives "1/2", both eths "TH", both thorns "th", "ß" one "s") or none (§ ¨ ¬ ¯ ° ´ µ ¶ ·
/// ¸). Everything else is one "?" a character: other scripts, curly quotes and dashes, "€", "œ", ligatures, emoji, and
/// a combining mark written by itself. Pure, in one pass.
///
/// @param text  absent counts as empty
[[nodiscard]] ZOR_EXPORT std::u16string removeAccents(std::u16string_view text);

}  // namespace ZORFoundation::ZORExtra
