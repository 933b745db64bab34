// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAccountNumberFormatter.h>

#include <ZORFoundation/DisplayInternal.h>
#include <ZORFoundation/ZORAccountNumberValidator.h>
#include <ZORPlatform/Foundation/Text.h>

namespace ZORFoundation {
namespace {

constexpr std::size_t kShownIbanUnits = 32;
constexpr std::size_t kShownBbanUnits = 12;
constexpr std::u16string_view kBbanLayout = u"###-#######-##";

constexpr auto isSeparator = [](char16_t unit) noexcept {
    return (unit == u' ') | (unit == u'-') | (unit == u'\u00A0');
};

}  // namespace

std::u16string ZORAccountNumberFormatter::strippedAccountNumber(std::u16string_view text) {
    return withoutSeparators(text, isSeparator);
}

std::u16string ZORAccountNumberFormatter::formattedAccountNumberAsIban(std::u16string_view text) {
    std::u16string shown = inGroupsOfFour(leadingUnits<kShownIbanUnits>(text, isSeparator));
    const std::u16string_view trimmed = ZORPlatform::trimmed(shown);
    if (trimmed.size() < shown.size()) shown = std::u16string(trimmed);
    ZORPlatform::uppercase(shown);
    return shown;
}

std::u16string ZORAccountNumberFormatter::formattedAccountNumberAsBban(std::u16string_view text) {
    const auto units = leadingUnits<kShownBbanUnits>(text, isSeparator);
    return units.view().empty() ? std::u16string() : inLayout(units.view(), kBbanLayout, u' ');
}

std::u16string ZORAccountNumberFormatter::formattedAccountNumber(std::u16string_view text, bool asIban) {
    return asIban ? formattedAccountNumberAsIban(text) : formattedAccountNumberAsBban(text);
}

std::optional<std::u16string> ZORAccountNumberFormatter::autoFormattedAccountNumber(
    std::optional<std::u16string_view> text) {
    if (!text) return std::nullopt;
    std::u16string stripped = strippedAccountNumber(*text);
    if (ZORAccountNumberValidator::isValidIban(stripped)) return formattedAccountNumberAsIban(stripped);
    if (ZORAccountNumberValidator::isValidBban(stripped)) return formattedAccountNumberAsBban(stripped);
    return stripped;
}

}  // namespace ZORFoundation
