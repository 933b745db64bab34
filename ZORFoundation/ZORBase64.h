// SPDX-License-Identifier: Apache-2.0
#pragma once

// Base64 (RFC 4648, the standard alphabet) with line breaks, and a decoder that keeps what it can. The group
// ZORAESCrypt has another codec: its decoder ends at the first "=" and drops an incomplete last group; this one reads
// on and keeps it.
//
//     ZORBase64::zor_base64EncodedString(bytes);    // lines of 64 characters joined by CR LF
//     ZORBase64::zor_dataFromBase64String(u"QQ");   // one byte

#include <ZORPlatform/Export.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Operations on byte buffers, all pure.
namespace ZORFoundation::ZORBase64 {

/// `zor_base64EncodedString`
///
/// The Base64 text of `data`: lines of 64 characters, CR LF between two lines and none behind the last, "=" as padding.
/// No bytes give the empty text.
[[nodiscard]] ZOR_EXPORT std::u16string zor_base64EncodedString(std::span<const std::uint8_t> data);

/// `zor_dataFromBase64String:`
///
/// The bytes of a Base64 text. Characters outside the alphabet, "=" among them, are skipped wherever they stand and end
/// nothing; a last group of two or three characters gives one or two bytes, of one character none.
///
/// Characters skipped behind the last full group take one byte off the result: "QUJD" gives three bytes, "QUJD" and a
/// line end two. Callers depend on it.
///
/// @return the bytes; none for a text without any character of the alphabet, and none for a text that is not ASCII
[[nodiscard]] ZOR_EXPORT std::vector<std::uint8_t> zor_dataFromBase64String(std::u16string_view string);

}  // namespace ZORFoundation::ZORBase64
