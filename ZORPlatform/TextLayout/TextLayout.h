// SPDX-License-Identifier: Apache-2.0
#pragma once

// How much room a text takes. The fonts and their layout live in a module of their own, which is loaded by the first
// call, so that a program that measures nothing loads no fonts.

#include <ZORPlatform/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// A font by name. A family that is not installed is replaced as the system's font configuration says.
struct Font {
    std::u16string family;  ///< For example u"DejaVu Sans".
    double pointSize = 12;  ///< At most 10,000, which larger sizes count as.

    friend bool operator==(const Font&, const Font&) = default;
};

/// Width and height in points.
struct Size {
    double width = 0;
    double height = 0;

    friend constexpr bool operator==(const Size&, const Size&) noexcept = default;
};

/// `boundingRectWithSize:options:attributes:context:` with line-fragment-origin layout, a font, and any height.
///
/// Lays `text` out in lines of at most `width`, broken between words, and within a word that is wider than that. Glyphs
/// keep their fractions: nothing is hinted or rounded. Characters that the font lacks come from others. U+0000 takes no
/// room, a lone surrogate that of U+FFFD.
///
/// @param width  in points; absent, infinite and above two million is unlimited, negative and not-a-number is 0, at
///               which every character has a line of its own
/// @return the widest line's width, and the height of all lines; one line for the empty text. Nothing in either
///         direction for a font whose size is not above 0. Absent when the module is not there
///
/// Thread-safe; each thread keeps fonts of its own.
[[nodiscard]] ZOR_EXPORT std::optional<Size> boundingRectSize(std::u16string_view text, std::optional<double> width,
                                                              const Font& font);

/// The file name of the module, for messages.
[[nodiscard]] std::string_view textLayoutModuleName() noexcept;

}  // namespace ZORPlatform
