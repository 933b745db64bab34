// SPDX-License-Identifier: Apache-2.0
//
// Amounts of money. What is checked is the shape of an amount while it is typed; what is displayed and stored is the
// number that a text begins with.

#include <tools/zor/KindGroups.h>
#include <tools/zor/KindRules.h>

#include <ZORFoundation/StringAmounts.h>
#include <ZORFoundation/ZORAmountFormatter.h>
#include <ZORFoundation/ZORNumberFormatters.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <array>

namespace zor {
namespace {

using namespace ZORFoundation;

NSDecimalNumber amountOf(std::u16string_view text) {
    return ZORAmountFormatter::amountFromString(text).value_or(NSDecimalNumber::notANumber());
}

std::u16string normalize(std::u16string_view text, const KindSettings&) { return amountOf(text).stringValue(); }

std::u16string format(std::u16string_view text, const KindSettings& settings) {
    const NSLocale locale(ZORPlatform::utf16(settings.locale));
    return ZORNumberFormatters::zor_thousandsSeparatedAmountFormatterWithLocale(locale).stringFromNumber(
        amountOf(text));
}

constexpr KindOption kLocale{"--locale", "LOCALE", "the writing of amounts: nl_BE unless told",
                             [](KindSettings& settings, std::string_view value) {
                                 settings.locale = value;
                                 return !value.empty();
                             }};
constexpr std::array kOptions{&kLocale};

constexpr std::array kKinds{
    Kind{"amount", "amounts of money as they are typed", check<StringExtension::isValidInputAmount>,
         explain<StringExtension::explainInputAmount>, normalize, format, kOptions, "digit"},
};

}  // namespace

const KindGroup kAmountKinds{"amounts", "Unicode Technical Standard 35", "2026-11-21", kKinds};

}  // namespace zor
