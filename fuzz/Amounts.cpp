// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/DecimalNumberExtension.h>
#include <ZORFoundation/StringAmounts.h>
#include <ZORFoundation/ZORAmountFormatter.h>
#include <ZORFoundation/ZORNumberFormatters.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <tests/support/DecimalModel.h>

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>

#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace ZORFoundation;
using fuzz::require;
using support::DecimalModel;
using ZORPlatform::NSDecimalNumberHandler;

namespace {

constexpr NSRoundingMode kModes[] = {NSRoundingMode::plain, NSRoundingMode::down, NSRoundingMode::up,
                                     NSRoundingMode::bankers};

NSDecimalNumberHandler silent(NSRoundingMode mode, std::int16_t scale = NSDecimalNumberHandler::kNoScale) {
    return {mode, scale, false, false, false, false};
}

/// Bytes that steer; zeros once they are used up.
class Steering {
public:
    Steering(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::uint8_t byte() {
        if (size_ == 0) return 0;
        --size_;
        return *data_++;
    }

    /// Below `count`, which is at most 65536.
    std::size_t index(std::size_t count) {
        const std::size_t upper = byte();
        return (upper * 256 + byte()) % count;
    }

    /// Any decimal number; small numbers and round exponents are as likely as all others.
    NSDecimalNumber number() {
        const std::uint8_t form = byte();
        std::u16string text = form % 2 == 0 ? u"" : u"-";
        const std::size_t digits = form % 4 < 2 ? 1 + byte() % 38 : 6;
        for (std::size_t i = 0; i < digits; i += 2) {
            // One byte a pair; the upper values give the digits that carry and tie.
            const unsigned pair = byte();
            constexpr std::array<std::u16string_view, 4> kSpecial = {u"00", u"99", u"50", u"05"};
            if (pair >= 100) {
                text += kSpecial[pair % kSpecial.size()];
            } else {
                text.push_back(static_cast<char16_t>(u'0' + pair / 10));
                text.push_back(static_cast<char16_t>(u'0' + pair % 10));
            }
        }
        const int exponent = form % 8 < 4 ? byte() % 12 - 8 : static_cast<std::int8_t>(byte());
        text.resize(std::min<std::size_t>(text.size(), 38));
        return NSDecimalNumber::decimalNumberWithString(text + u"e" + ZORPlatform::utf16(std::to_string(exponent)));
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

void requireSame(const NSDecimalNumber& number, const std::optional<DecimalModel>& model) {
    require(number.stringValue() == (model ? model->text() : u"NaN"));
}

void requireLawsOfArithmetic(const NSDecimalNumber& left, const NSDecimalNumber& right, NSRoundingMode mode,
                             std::int16_t scale) {
    if (left.isNotANumber() || right.isNotANumber()) return;
    const NSDecimalNumberHandler handler = silent(mode);
    const DecimalModel first = DecimalModel::of(left);
    const DecimalModel second = DecimalModel::of(right);
    const NSDecimalNumber sum = left.decimalNumberByAdding(right, handler);
    requireSame(sum, first.plus(second).fitted(mode));
    require(sum == right.decimalNumberByAdding(left, handler));
    requireSame(left.decimalNumberBySubtracting(right, handler), first.plus(second.negated()).fitted(mode));
    require(left.decimalNumberBySubtracting(left, handler).isZero());
    requireSame(left.decimalNumberByMultiplyingBy(right, handler), first.times(second).fitted(mode));
    requireSame(left.decimalNumberByRoundingAccordingToBehavior(silent(mode, scale)),
                first.rounded(scale, mode).fitted(mode));
    require((left <=> right) == (first.comparedWith(second) <=> 0));
    require((left == right) == (first.comparedWith(second) == 0));
    require(NSDecimalNumber::decimalNumberWithString(left.stringValue()) == left);
}

void requireLawsOfDivision(const NSDecimalNumber& left, const NSDecimalNumber& right, NSRoundingMode mode) {
    if (left.isNotANumber() || right.isNotANumber() || right.isZero()) return;
    requireSame(left.decimalNumberByDividingBy(right, silent(mode)),
                DecimalModel::of(left).dividedBy(DecimalModel::of(right)).fitted(mode));
}

void requireLawsOfSigns(const NSDecimalNumber& amount) {
    const NSDecimalNumber negative = DecimalNumberExtension::negativeDecimalNumber(amount);
    require(!DecimalNumberExtension::isBiggerAsZero(negative));
    require(amount.isNotANumber() ? negative.isNotANumber()
                                  : DecimalNumberExtension::isBiggerAsZero(amount) == (amount > NSDecimalNumber()));
}

/// The locales of Belgium and of the languages that the application speaks.
const std::vector<std::u16string>& locales() {
    static const auto& list = *new std::vector<std::u16string>([] {
        std::vector<std::u16string> found;
        std::int32_t count = 0;
        const icu::Locale* available = icu::Locale::getAvailableLocales(count);
        for (std::int32_t i = 0; i < count; ++i) {
            const std::string_view language = available[i].getLanguage();
            const bool isSpoken =
                language == "be" || language == "nl" || language == "fr" || language == "de" || language == "en";
            if (isSpoken || std::strcmp(available[i].getCountry(), "BE") == 0) {
                found.push_back(ZORPlatform::utf16(available[i].getName()));
            }
        }
        return found;
    }());
    return list;
}

std::u16string icuText(const NSNumberFormatter& formatter, bool setsSeparator, const NSDecimalNumber& amount) {
    UErrorCode status = U_ZERO_ERROR;
    icu::DecimalFormatSymbols symbols(icu::Locale(ZORPlatform::utf8(formatter.locale().localeIdentifier()).c_str()),
                                      status);
    if (setsSeparator) {
        symbols.setSymbol(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol, icu::UnicodeString(u'\u00A0'));
    }
    const icu::DecimalFormat format(icu::UnicodeString(formatter.positiveFormat().c_str()), symbols, status);
    icu::UnicodeString text;
    if (amount.isNotANumber()) {
        format.format(amount.doubleValue(), text);
    } else {
        format.format(icu::StringPiece(ZORPlatform::utf8(amount.stringValue())), text, nullptr, status);
    }
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

void requireLawsOfFormatter(const NSNumberFormatter& formatter, bool setsSeparator, const NSDecimalNumber& amount) {
    const std::u16string text = formatter.stringFromNumber(amount);
    require(text == icuText(formatter, setsSeparator, amount));
    const NSDecimalNumber shown = amount.decimalNumberByRoundingAccordingToBehavior(
        silent(NSRoundingMode::bankers, static_cast<std::int16_t>(formatter.maximumFractionDigits())));
    require(formatter.numberFromString(text) == shown);
    require(DecimalNumberExtension::from(text, formatter, NSRoundingMode::plain) == shown);
    if (setsSeparator && !amount.isNotANumber()) require(ZORAmountFormatter::amountFromString(text) == shown);
}

void requireLawsOfFormatters(const std::u16string& locale, const NSDecimalNumber& amount) {
    using namespace ZORNumberFormatters;
    const NSLocale chosen(locale);
    requireLawsOfFormatter(zor_thousandsSeparatedAmountFormatterWithLocale(chosen), true, amount);
    requireLawsOfFormatter(zor_thousandsSeparatedAmountLongFormatterWithLocale(chosen), true, amount);
    requireLawsOfFormatter(zor_twoDecimalsAmountFormatterWithLocale(chosen), false, amount);
}

void requireLawsOfText(std::u16string_view text, const std::u16string& locale) {
    const Explanation explanation = StringExtension::explainInputAmount(text);
    require(StringExtension::isValidInputAmount(text) == explanation.isValid());
    require(explanation.position <= text.size() && explanation.character <= explanation.position);

    const NSDecimalNumber amount = ZORAmountFormatter::amountFromString(text).value();
    std::u16string plain;
    for (const char16_t unit : text) {
        if (unit != u' ' && unit != u'\u00A0') plain.push_back(unit == u',' ? u'.' : unit);
    }
    require(amount == NSDecimalNumber::decimalNumberWithString(plain));
    require(NSDecimalNumber::decimalNumberWithString(amount.stringValue()) == amount);
    requireLawsOfSigns(amount);
    requireLawsOfFormatters(locale, amount);

    NSNumberFormatter formatter;
    formatter.setLocale(NSLocale(locale));
    formatter.setPositiveFormat(text);
    (void)formatter.stringFromNumber(amount);
    (void)formatter.numberFromString(text);
    formatter.setMaximumFractionDigits(formatter.maximumFractionDigits() / 2);
    (void)DecimalNumberExtension::from(text, formatter, NSRoundingMode::up);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Steering steering(data, size);
    const std::u16string& locale = locales()[steering.index(locales().size())];
    const std::uint8_t choices = steering.byte();
    const NSRoundingMode mode = kModes[choices % 4];
    const auto scale = static_cast<std::int16_t>(steering.byte() - 128);
    const NSDecimalNumber left = steering.number();
    const NSDecimalNumber right = steering.number();
    requireLawsOfArithmetic(left, right, mode, scale);
    // The model divides slowly.
    if (choices % 16 == 0) requireLawsOfDivision(left, right, mode);
    requireLawsOfSigns(left);
    requireLawsOfFormatters(locale, left);
    requireLawsOfText(fuzz::Text(data, size).view(), locale);
    return 0;
}
