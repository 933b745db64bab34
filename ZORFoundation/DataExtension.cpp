// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DataExtension.h>

#include <ZORPlatform/Foundation/Hexadecimal.h>
#include <ZORPlatform/Foundation/NSString.h>

#include <algorithm>

namespace ZORFoundation::DataExtension {

std::u16string hexString(std::span<const std::uint8_t> data) {
    return ZORPlatform::hexText(data, ZORPlatform::HexDigits::kUpperCase);
}

std::int64_t size(std::span<const std::uint8_t> data, NSByteCountFormatterUnits in) {
    ZORPlatform::NSByteCountFormatter formatter;
    formatter.allowedUnits = in;
    const std::u16string text = formatter.stringFromByteCount(static_cast<std::int64_t>(data.size()));
    const bool isWholeNumber =
        std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit >= u'0' && unit <= u'9'; });
    return isWholeNumber ? ZORPlatform::longLongValue(text) : 0;
}

}  // namespace ZORFoundation::DataExtension
