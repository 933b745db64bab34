// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORPhoneNumberFormatter.h>

#include <ZORFoundation/DisplayInternal.h>

#include <cstdint>

namespace ZORFoundation {
namespace {

constexpr std::u16string_view kScheme = u"tel://";

// All that is left out is among the sixteen units from the space on, a bit for each.
constexpr std::uint32_t kPunctuation = [] {
    std::uint32_t members = 0;
    for (const char16_t unit : std::u16string_view(u"()- .")) members |= 1U << (unit - u' ');
    return members;
}();

constexpr auto isPunctuation = [](char16_t unit) noexcept {
    const std::uint32_t place = unit - std::uint32_t{u' '};
    return (kPunctuation >> (place % 32) & (place < 16 ? 1U : 0U)) != 0;
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
