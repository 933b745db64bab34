// SPDX-License-Identifier: Apache-2.0
#pragma once

// A search in a text that somebody typed with spaces and capitals.

#include <ZORPlatform/Export.h>

#include <string_view>

namespace ZORFoundation::ZORSubstringSearch {

/// `zor_hasSubString:`
///
/// Whether `text`, lower-cased and without its U+0020 spaces, contains `subString` exactly as it stands. That one is
/// not prepared on purpose: with a capital or a space in it, it is never found.
///
/// Canonically equivalent spellings are the same, and what is found begins and ends between user-perceived characters.
/// `zor_containsSubstring` of ZORExtra takes no account of case and keeps spaces.
///
/// @param subString  absent and empty are never found
///
/// Pure, in linear time.
[[nodiscard]] ZOR_EXPORT bool zor_hasSubString(std::u16string_view text, std::u16string_view subString);

}  // namespace ZORFoundation::ZORSubstringSearch
