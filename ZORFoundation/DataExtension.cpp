// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DataExtension.h>

#include <ZORPlatform/Foundation/Hexadecimal.h>
#include <ZORPlatform/Foundation/NSString.h>

namespace ZORFoundation::DataExtension {

std::u16string hexString(std::span<const std::uint8_t> data) {
    return ZORPlatform::hexText(data, ZORPlatform::HexDigits::kUpperCase);
}

std::int64_t size(std::span<const std::uint8_t> data, NSByteCountFormatterUnits in) {
    ZORPlatform::NSByteCountFormatter formatter;
    formatter.allowedUnits = in;
    return ZORPlatform::wholeInteger(formatter.stringFromByteCount(static_cast<std::int64_t>(data.size()))).value_or(0);
}

}  // namespace ZORFoundation::DataExtension
