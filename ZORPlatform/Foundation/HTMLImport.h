// SPDX-License-Identifier: Apache-2.0
#pragma once

// Hypertext as plain text, by the platform's own rules.

#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// The plain string of an attributed string that is made from HTML (`NSHTMLTextDocumentType`).
///
/// The markup is parsed as the HTML standard says, so broken markup is read, too. Of the document, in its order:
///
/// - Runs of space, tab, CR, LF, form feed and U+200B are one space, and none at the beginning of a line or of the
///   text, behind another such space, or at the end of a line or of the document. Preformatted text stays as it is.
/// - A block element begins on a line of its own and ends its line; an empty one gives an empty line. A block that is
///   neither a paragraph, heading, list nor part of a table ends with U+2028 inside a list item.
/// - <br> is a line feed; directly inside a paragraph, heading or list item it is U+2028.
/// - An item of a list begins with a tab, its mark and a tab: "•", "◦", "▪" by depth, or its number with a full stop.
/// - A cell of a table is a block; the foot of a table comes last.
/// - <q> puts curly quotes around, a text field or text area gives its value, an image nothing.
/// - What is not displayed has no text: script, style, head, comments, hidden elements, fallbacks of media.
///
/// @param markup  well-formed UTF-8; control characters and noncharacters stay, but for U+0000 and CR, which are read
///                as the HTML standard says
/// @return absent when elements are nested more than 512 deep, formatting that is opened again and again included,
///         when a tag has more than 512 attributes, when the document would take more than 200 times the memory of its
///         markup and a megabyte, or parsing it more processor time than a second and five microseconds a byte
///
/// Pure, in linear time.
[[nodiscard]] std::optional<std::u16string> plainTextFromHTML(std::string_view markup);

}  // namespace ZORPlatform
