// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the library adds to byte buffers.
//
//     DataExtension::hexString(bytes);   // u"0AFF"

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSByteCountFormatter.h>

#include <cstdint>
#include <span>
#include <string>

namespace ZORFoundation {

using ZORPlatform::NSByteCountFormatterUnits;

/// Operations on byte buffers, all pure.
namespace DataExtension {

/// `hexString()`
///
/// The bytes as upper-case hexadecimal digits, two a byte; empty for no bytes. The lower-case form is
/// `hexDigest:length:` of ZORHash.
[[nodiscard]] ZOR_EXPORT std::u16string hexString(std::span<const std::uint8_t> data);

/// `size(in:)`
///
/// The number of bytes in a unit, decimal multiples of 1000, read back from the text that NSByteCountFormatter shows.
///
/// @param in  one unit, or several or none as the formatter takes them
/// @return the number shown; 0 whenever the text holds a grouping or decimal separator, so for 1234 bytes in bytes and
///         for 1,060,000 bytes in megabytes ("1.1") alike
[[nodiscard]] ZOR_EXPORT std::int64_t size(std::span<const std::uint8_t> data, NSByteCountFormatterUnits in);

}  // namespace DataExtension
}  // namespace ZORFoundation
