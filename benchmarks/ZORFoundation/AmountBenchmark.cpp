// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAmountFormatter.h>
#include <ZORFoundation/ZORNumberFormatters.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <benchmarks/Comparison.h>

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace ZORFoundation;
using benchmark::DoNotOptimize;
using benchmarks::Comparison;
using ZORPlatform::NSDecimalNumberHandler;
using ZORPlatform::NSRoundingMode;

constexpr std::size_t kAmounts = 1024;
constexpr std::u16string_view kGroupedPattern = u"###,###,##0.00";
constexpr std::u16string_view kLongGroupedPattern = u"###,###,##0.0000";
constexpr std::u16string_view kTwoDecimalsPattern = u"########0.00";

/// One amount in each form that a contestant starts from.
struct Amount {
    std::int64_t tenthsOfCents;
    double value;
    std::string decimal;
    NSDecimalNumber number;
    std::u16string typed;
};

/// As many amounts of each length from cents to millions, a third of them below zero, with three decimals.
const std::vector<Amount>& amounts() {
    static const auto list = [] {
        const auto formatter = ZORNumberFormatters::zor_thousandsSeparatedAmountFormatterWithLocale(NSLocale(u"nl_BE"));
        std::mt19937_64 random(2);
        std::vector<Amount> result;
        for (std::size_t i = 0; i < kAmounts; ++i) {
            std::int64_t limit = 1000;
            for (std::size_t digits = 0; digits < i % 8; ++digits) limit *= 10;
            Amount amount{};
            amount.tenthsOfCents = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(limit));
            amount.number = NSDecimalNumber::decimalNumberWithMantissa(static_cast<std::uint64_t>(amount.tenthsOfCents),
                                                                       -3, /*isNegative=*/i % 3 == 0);
            amount.value = amount.number.doubleValue();
            amount.decimal = ZORPlatform::utf8(amount.number.stringValue());
            amount.typed = formatter.stringFromNumber(amount.number);
            result.push_back(amount);
        }
        return result;
    }();
    return list;
}

template <class Work>
auto overAmounts(Work work) {
    return [work] {
        for (const Amount& amount : amounts()) DoNotOptimize(work(amount));
    };
}

const NSLocale& dutch() {
    static const NSLocale locale(u"nl_BE");
    return locale;
}

icu::UnicodeString icuString(std::u16string_view text) { return {text.data(), static_cast<std::int32_t>(text.size())}; }

icu::DecimalFormat icuFormat(std::u16string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    icu::DecimalFormatSymbols symbols(icu::Locale("nl_BE"), status);
    symbols.setSymbol(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol, icu::UnicodeString(u'\u00A0'));
    return {icuString(pattern), symbols, status};
}

std::u16string icuText(const icu::DecimalFormat& format, const Amount& amount) {
    icu::UnicodeString text;
    UErrorCode status = U_ZERO_ERROR;
    format.format(icu::StringPiece(amount.decimal), text, nullptr, status);
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

std::u16string digitsOnly(const Amount& amount) {
    char digits[20];
    char* const end = std::to_chars(digits, digits + sizeof digits, amount.tenthsOfCents).ptr;
    return {digits, end};
}

const Comparison kReading =
    Comparison("amountFromString, typed amounts")
        .itemsPerCall(kAmounts)
        .candidate(overAmounts([](const Amount& amount) { return ZORAmountFormatter::amountFromString(amount.typed); }))
        .floor("digits gathered in a word", overAmounts([](const Amount& amount) {
                   std::uint64_t value = 0;
                   for (const char16_t unit : amount.typed) {
                       if (unit >= u'0' && unit <= u'9') value = value * 10 + (unit - u'0');
                   }
                   return value;
               }))
        .peer("ICU parse, formatter kept",
              [] {
                  static const icu::DecimalFormat format = icuFormat(kGroupedPattern);
                  for (const Amount& amount : amounts()) {
                      icu::Formattable result;
                      UErrorCode status = U_ZERO_ERROR;
                      format.parse(icuString(amount.typed), result, status);
                      DoNotOptimize(result.getDecimalNumber(status));
                  }
              })
        .expectedNanoseconds(40)
        .add();

const Comparison kRounding =
    Comparison("rounding to two decimals, half to even")
        .itemsPerCall(kAmounts)
        .candidate(overAmounts([](const Amount& amount) {
            return amount.number.decimalNumberByRoundingAccordingToBehavior(
                NSDecimalNumberHandler(NSRoundingMode::bankers, 2, false, false, false, false));
        }))
        .floor("a double to its nearest cent",
               overAmounts([](const Amount& amount) { return std::nearbyint(amount.value * 100) / 100; }))
        .expectedNanoseconds(25)
        .add();

using Factory = NSNumberFormatter (*)(const NSLocale&);

Comparison kept(const std::string& name, std::u16string_view pattern, Factory factory) {
    return Comparison("formatter kept, " + name)
        .itemsPerCall(kAmounts)
        .candidate([formatter = factory(dutch())] {
            for (const Amount& amount : amounts()) DoNotOptimize(formatter.stringFromNumber(amount.number));
        })
        .floor("digits only, to_chars", overAmounts(digitsOnly))
        .peer("ICU kept",
              [format = icuFormat(pattern)] {
                  for (const Amount& amount : amounts()) DoNotOptimize(icuText(format, amount));
              })
        .expectedNanoseconds(60)
        .atMost(60.0 / 260, "ICU kept")
        .add();
}

Comparison made(const std::string& name, std::u16string_view pattern, Factory factory) {
    return Comparison("formatter made at each call, " + name)
        .itemsPerCall(kAmounts)
        .candidate(
            overAmounts([factory](const Amount& amount) { return factory(dutch()).stringFromNumber(amount.number); }))
        .floor("digits only, to_chars", overAmounts(digitsOnly))
        .peer("ICU new", overAmounts([pattern](const Amount& amount) { return icuText(icuFormat(pattern), amount); }))
        .expectedNanoseconds(150)
        .atMost(150.0 / 13'100, "ICU new")
        .add();
}

using namespace ZORNumberFormatters;

const Comparison kFormatting[] = {
    kept("groups, two decimals", kGroupedPattern, zor_thousandsSeparatedAmountFormatterWithLocale),
    kept("groups, four decimals", kLongGroupedPattern, zor_thousandsSeparatedAmountLongFormatterWithLocale),
    kept("two decimals", kTwoDecimalsPattern, zor_twoDecimalsAmountFormatterWithLocale),
    made("groups, two decimals", kGroupedPattern, zor_thousandsSeparatedAmountFormatterWithLocale),
    made("groups, four decimals", kLongGroupedPattern, zor_thousandsSeparatedAmountLongFormatterWithLocale),
    made("two decimals", kTwoDecimalsPattern, zor_twoDecimalsAmountFormatterWithLocale),
};

}  // namespace
