// SPDX-License-Identifier: Apache-2.0
#pragma once

// How much room a text takes on a screen.
//
//     StringExtension::calculatedSize(u"Hello", Font{u"DejaVu Sans", 12});               // 30.416 x 13.969
//     StringExtension::heightWithConstrainedWidth(text, 200, Font{u"DejaVu Sans", 12});
//
// Fonts come from a module, libZORFoundationTextLayout.so, which is loaded by the first call: it stands beside the
// library, or where the system looks for libraries, or where `HostEnvironment::setTextLayoutModule` says. Without it
// both operations stop the process.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/TextLayout/TextLayout.h>

#include <optional>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::Font;
using ZORPlatform::Size;

namespace StringExtension {

/// `heightWithConstrainedWidth(_:font:)`
///
/// The height of `text` laid out in lines of at most `width`, in points and with their fraction. Lines are broken
/// between words, and within a word that is wider than `width`. The empty text has the height of one line.
///
/// @param text   absent counts as empty
/// @param width  in points; 0, negative and not-a-number give every character a line of its own
/// @param font   a family that is not installed is replaced by another; a size that is not above 0 measures 0
///
/// Stops the process when the text-layout module is not there. Thread-safe.
[[nodiscard]] ZOR_EXPORT double heightWithConstrainedWidth(std::u16string_view text, double width, const Font& font);

/// `calculatedSize(withFont:fixedWidth:)`
///
/// Width and height of `text` laid out as above, in points and with their fractions. The width is that of the widest
/// line, which may be less than `fixedWidth`.
///
/// @param fixedWidth  absent: lines end only where the text says so
///
/// Stops the process when the text-layout module is not there. Thread-safe.
[[nodiscard]] ZOR_EXPORT Size calculatedSize(std::u16string_view text, const Font& withFont,
                                             std::optional<double> fixedWidth = std::nullopt);

}  // namespace StringExtension
}  // namespace ZORFoundation
