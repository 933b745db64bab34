// SPDX-License-Identifier: Apache-2.0
#pragma once

// The platform's text transforms, as far as the library asks for them.

#include <string>
#include <string_view>

namespace ZORPlatform {

/// `CFStringTransform` with the transform "Any-Hex/Java", in reverse.
///
/// Each "\u" followed by four hexadecimal digits of either case becomes the UTF-16 unit that they write, also half a
/// surrogate pair. Everything else stays: "\U", "\x", "\u{", "\uu", fewer than four digits. What comes out is not read
/// again, and a backslash before the "\u" does not protect it. Pure, in one pass.
[[nodiscard]] std::u16string textFromHexJava(std::u16string_view text);

}  // namespace ZORPlatform
