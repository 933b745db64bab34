// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/Extensions/ErrorFormatting.h>

#include <ZORPlatform/Foundation/NSString.h>

namespace ZORFoundation::ErrorFormatting {

std::u16string errorMessageWith(std::optional<std::u16string_view> message,
                                std::optional<std::u16string_view> errorCode) {
    const std::u16string_view first = message.value_or(ZORPlatform::kAbsentObjectText);
    const std::u16string_view second = errorCode.value_or(ZORPlatform::kAbsentObjectText);
    std::u16string text;
    text.reserve(first.size() + second.size() + 3);
    text.append(first).append(u" (").append(second).append(u")");
    return text;
}

}  // namespace ZORFoundation::ErrorFormatting
