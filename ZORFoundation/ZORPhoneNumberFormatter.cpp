// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORPhoneNumberFormatter.h>

#include <ZORFoundation/DisplayInternal.h>

namespace ZORFoundation {
namespace {

constexpr std::u16string_view kScheme = u"tel://";

constexpr auto isPunctuation = [](char16_t unit) noexcept {
    return (unit == u'(') | (unit == u')') | (unit == u'-') | (unit == u' ') | (unit == u'.');
};

}  // namespace

std::u16string ZORPhoneNumberFormatter::formatPhoneNumber(std::u16string_view number) {
    return formatPhoneNumber(number, {});
}

std::u16string ZORPhoneNumberFormatter::formatPhoneNumber(std::u16string_view number, std::u16string_view token) {
    std::u16string link;
    link.reserve(kScheme.size() + number.size() + token.size());
    link.append(kScheme).append(number);
    const std::size_t kept = copyWithoutSeparators(number, &link[kScheme.size()], number.size(), isPunctuation);
    link.resize(kScheme.size() + kept);
    link.append(token);
    return link;
}

}  // namespace ZORFoundation
