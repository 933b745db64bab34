// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAccountNumberFormatter.h>

#include <ZORFoundation/DisplayInternal.h>
#include <ZORFoundation/ZORAccountNumberValidator.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/Text.h>

namespace ZORFoundation {
namespace {

using ZORPlatform::areFromZeroInAscii;
using ZORPlatform::withAsciiCapitals;

constexpr std::size_t kShownIbanUnits = 32;
constexpr std::size_t kShownBbanUnits = 12;

struct BbanLayout {
    static constexpr std::u16string_view kText = u"###-#######-##";
};

constexpr auto isSeparator = [](char16_t unit) noexcept {
    return (unit == u' ') | (unit == u'-') | (unit == u'\u00A0');
};

}  // namespace

std::u16string ZORAccountNumberFormatter::strippedAccountNumber(std::u16string_view text) {
    return withoutSeparators(text, isSeparator);
}

std::u16string ZORAccountNumberFormatter::formattedAccountNumberAsIban(std::u16string_view text) {
    bool isPlain = true;
    std::u16string shown = inGroupsOfFour(leadingUnits<kShownIbanUnits>(text, isSeparator), [&](std::uint64_t word) {
        isPlain &= areFromZeroInAscii(word);
        return withAsciiCapitals(word);
    });
    // What is not plain may be trimmed, or have another upper case.
    if (isPlain) return shown;
    const std::u16string_view trimmed = ZORPlatform::trimmed(shown);
    if (trimmed.size() < shown.size()) shown = std::u16string(trimmed);
    ZORPlatform::uppercase(shown);
    return shown;
}

std::u16string ZORAccountNumberFormatter::formattedAccountNumberAsBban(std::u16string_view text) {
    const auto units = leadingUnits<kShownBbanUnits, u' '>(text, isSeparator);
    return units.view().empty() ? std::u16string() : inLayout<BbanLayout>(units);
}

std::u16string ZORAccountNumberFormatter::formattedAccountNumber(std::u16string_view text, bool asIban) {
    return asIban ? formattedAccountNumberAsIban(text) : formattedAccountNumberAsBban(text);
}

std::optional<std::u16string> ZORAccountNumberFormatter::autoFormattedAccountNumber(
    std::optional<std::u16string_view> text) {
    if (!text) return std::nullopt;
    // One unit more than a valid number has, so that a long one shows.
    const auto stripped = leadingUnits<kShownIbanUnits + 1>(*text, isSeparator);
    if (ZORAccountNumberValidator::isValidIban(stripped.view())) return formattedAccountNumberAsIban(stripped.view());
    if (ZORAccountNumberValidator::isValidBban(stripped.view())) return formattedAccountNumberAsBban(stripped.view());
    return strippedAccountNumber(*text);
}

}  // namespace ZORFoundation
