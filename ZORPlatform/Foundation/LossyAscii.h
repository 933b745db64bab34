// SPDX-License-Identifier: Apache-2.0
#pragma once

// Any text as ASCII, by the platform's own table of losses.

#include <string>
#include <string_view>

namespace ZORPlatform {

/// `dataUsingEncoding:allowLossyConversion:` with the ASCII encoding and true, read back as text.
///
/// A letter with diacritics becomes its base letter and white space a space; the signs of Latin-1 have one to three
/// units of their own ("½" gives "1/2") or none ("§ ¨ ¬ ¯ ° ´ µ ¶ · ¸"); U+0080 to U+009F lose their highest bit.
/// Anything else is one "?": a letter of another script, a quote or dash, a combining mark that stands by itself, a
/// surrogate pair and a lone surrogate. Pure, in one pass.
[[nodiscard]] std::u16string lossyAscii(std::u16string_view text);

}  // namespace ZORPlatform
