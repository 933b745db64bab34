// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAmountFormatter.h>

#include <ZORPlatform/Foundation/DecimalReader.h>

namespace ZORFoundation {

std::optional<NSDecimalNumber> ZORAmountFormatter::amountFromString(std::optional<std::u16string_view> text) noexcept {
    if (!text) return std::nullopt;
    ZORPlatform::DecimalReader reader;
    for (const char16_t unit : *text) {
        if (unit == u' ' || unit == u'\u00A0') continue;
        if (!reader.take(unit == u',' ? u'.' : unit)) break;
    }
    return reader.number();
}

}  // namespace ZORFoundation
