// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORPhoneNumberFormatter.h>

#include <algorithm>

namespace ZORFoundation {
namespace {

constexpr std::u16string_view kScheme = u"tel://";

constexpr bool isPunctuation(char16_t unit) noexcept {
    return unit == u'(' || unit == u')' || unit == u'-' || unit == u' ' || unit == u'.';
}

}  // namespace

std::u16string ZORPhoneNumberFormatter::formatPhoneNumber(std::u16string_view number) {
    return formatPhoneNumber(number, {});
}

std::u16string ZORPhoneNumberFormatter::formatPhoneNumber(std::u16string_view number, std::u16string_view token) {
    std::u16string link(kScheme.size() + number.size() + token.size(), u'\0');
    auto end = std::copy(kScheme.begin(), kScheme.end(), link.begin());
    end = std::remove_copy_if(number.begin(), number.end(), end, isPunctuation);
    end = std::copy(token.begin(), token.end(), end);
    link.erase(end, link.end());
    return link;
}

}  // namespace ZORFoundation
