// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/DecimalNumberExtension.h>
#include <ZORFoundation/StringAmounts.h>
#include <ZORFoundation/ZORAmountFormatter.h>
#include <ZORFoundation/ZORNumberFormatters.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <optional>
#include <string>

namespace conformance {

using namespace ZORFoundation;
using ZORPlatform::utf16;
using ZORPlatform::utf8;

namespace {

NSDecimalNumber decimalNumber(const Value& value) {
    return NSDecimalNumber::decimalNumberWithString(utf16(value.decimal()));
}

Decimal decimal(const NSDecimalNumber& number) { return {utf8(number.stringValue())}; }

NSNumberFormatter numberFormatter(const Value& value) {
    NSNumberFormatter formatter;
    formatter.setPositiveFormat(value.member("pattern").text());
    formatter.setLocale(NSLocale(value.member("locale").text()));
    formatter.setMaximumFractionDigits(value.member("maximumFractionDigits").integer());
    return formatter;
}

NSRoundingMode roundingMode(const Value& value) {
    const std::u16string_view name = value.text();
    if (name == u"plain") return NSRoundingMode::plain;
    if (name == u"down") return NSRoundingMode::down;
    if (name == u"up") return NSRoundingMode::up;
    if (name == u"bankers") return NSRoundingMode::bankers;
    throw WrongKind("not a rounding mode: " + utf8(name));
}

void addFactory(Operations& operations, const char* name, NSNumberFormatter (*factory)(const NSLocale&)) {
    operations.add(name, [factory](const Arguments& a) {
        return factory(NSLocale(a[0].text())).stringFromNumber(decimalNumber(a[1]));
    });
}

}  // namespace

void registerAmountOperations(Operations& operations) {
    operations.add("ZORAmountFormatter.amountFromString:", [](const Arguments& a) -> std::optional<Decimal> {
        const std::optional<NSDecimalNumber> amount = ZORAmountFormatter::amountFromString(a[0].optionalText());
        return amount ? std::optional(decimal(*amount)) : std::nullopt;
    });
    operations.add("String.isValidInputAmount",
                   [](const Arguments& a) { return StringExtension::isValidInputAmount(a[0].text()); });
    operations.add("DecimalNumber.isBiggerAsZero()",
                   [](const Arguments& a) { return DecimalNumberExtension::isBiggerAsZero(decimalNumber(a[0])); });
    operations.add("DecimalNumber.negativeDecimalNumber()", [](const Arguments& a) {
        return decimal(DecimalNumberExtension::negativeDecimalNumber(decimalNumber(a[0])));
    });
    operations.add("DecimalNumber.from(amountString:inputFormatter:roundingMode:)", [](const Arguments& a) {
        return decimal(DecimalNumberExtension::from(a[0].text(), numberFormatter(a[1]), roundingMode(a[2])));
    });
    addFactory(operations, "ZORNumberFormatters.zor_thousandsSeparatedAmountFormatterWithLocale:",
               ZORNumberFormatters::zor_thousandsSeparatedAmountFormatterWithLocale);
    addFactory(operations, "ZORNumberFormatters.zor_thousandsSeparatedAmountLongFormatterWithLocale:",
               ZORNumberFormatters::zor_thousandsSeparatedAmountLongFormatterWithLocale);
    addFactory(operations, "ZORNumberFormatters.zor_twoDecimalsAmountFormatterWithLocale:",
               ZORNumberFormatters::zor_twoDecimalsAmountFormatterWithLocale);
}

}  // namespace conformance
