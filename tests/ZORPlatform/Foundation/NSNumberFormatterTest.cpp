// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSNumberFormatter.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>

#include <support/AllocationCount.h>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

constexpr std::u16string_view kGrouped = u"###,###,##0.00";
constexpr std::u16string_view kLongGrouped = u"###,###,##0.0000";
constexpr std::u16string_view kTwoDecimals = u"########0.00";

NSDecimalNumber number(std::u16string_view text) { return NSDecimalNumber::decimalNumberWithString(text); }

NSNumberFormatter formatter(std::u16string_view pattern, std::u16string_view locale,
                            std::u16string_view separator = u"") {
    NSNumberFormatter result;
    result.setPositiveFormat(pattern);
    if (!separator.empty()) result.setGroupingSeparator(separator);
    result.setLocale(NSLocale(locale));
    return result;
}

NSNumberFormatter grouped(std::u16string_view locale) { return formatter(kGrouped, locale, u"\u00A0"); }

std::u16string parsed(const NSNumberFormatter& formatter, std::u16string_view text) {
    const std::optional<NSDecimalNumber> result = formatter.numberFromString(text);
    return result ? result->stringValue() : u"none";
}

TEST(NSNumberFormatterFormatting, FollowsTheTableOfAmounts) {
    struct Row {
        std::u16string_view number, grouped, plain, english;
    };
    for (const Row& row :
         {Row{u"0", u"0,00", u"0,00", u"0.00"}, Row{u"0.5", u"0,50", u"0,50", u"0.50"},
          Row{u"1234.5", u"1\u00A0234,50", u"1234,50", u"1\u00A0234.50"},
          Row{u"-1234.5", u"-1\u00A0234,50", u"-1234,50", u"-1\u00A0234.50"},
          Row{u"1234567890.125", u"1\u00A0234\u00A0567\u00A0890,12", u"1234567890,12",
              u"1\u00A0234\u00A0567\u00A0890.12"},
          Row{u"0.005", u"0,00", u"0,00", u"0.00"}, Row{u"0.015", u"0,02", u"0,02", u"0.02"},
          Row{u"1.005", u"1,00", u"1,00", u"1.00"}, Row{u"999.995", u"1\u00A0000,00", u"1000,00", u"1\u00A0000.00"},
          Row{u"-0.004", u"-0,00", u"-0,00", u"-0.00"}, Row{u"NaN", u"NaN", u"NaN", u"NaN"}}) {
        for (const std::u16string_view locale : {u"nl_BE", u"fr_BE", u"de_BE"}) {
            EXPECT_EQ(grouped(locale).stringFromNumber(number(row.number)), row.grouped) << utf8(row.number);
        }
        EXPECT_EQ(formatter(kTwoDecimals, u"nl_BE").stringFromNumber(number(row.number)), row.plain);
        EXPECT_EQ(grouped(u"en_GB").stringFromNumber(number(row.number)), row.english);
    }
    EXPECT_EQ(formatter(kLongGrouped, u"nl_BE", u"\u00A0").stringFromNumber(number(u"1234.56785")), u"1\u00A0234,5678");
}

TEST(NSNumberFormatterFormatting, WritesEveryDigitOfAHugeNumber) {
    EXPECT_EQ(formatter(kTwoDecimals, u"nl_BE").stringFromNumber(number(u"-12345678901234567890123456789012345678")),
              u"-12345678901234567890123456789012345678,00");
    EXPECT_EQ(formatter(kTwoDecimals, u"nl_BE").stringFromNumber(number(u"1e127")),
              u"1" + std::u16string(127, u'0') + u",00");
}

TEST(NSNumberFormatterReading, FollowsTheTableOfTexts) {
    struct Row {
        std::u16string_view text, grouped, plain, english;
    };
    for (const Row& row :
         {Row{u"1234,56", u"1234.56", u"1234.56", u"none"}, Row{u"1 234,56", u"1234.56", u"none", u"none"},
          Row{u"1\u00A0234,56", u"1234.56", u"none", u"none"}, Row{u"1\u202F234,56", u"1234.56", u"none", u"none"},
          Row{u"1.234,56", u"1234.56", u"none", u"none"}, Row{u"1234.56", u"none", u"none", u"1234.56"},
          Row{u"1\u00A023,5", u"none", u"none", u"none"}, Row{u"1.236", u"1236", u"none", u"1.236"},
          Row{u",5", u"0.5", u"0.5", u"none"}, Row{u"5,", u"5", u"5", u"none"}, Row{u"-5", u"-5", u"-5", u"-5"},
          Row{u"\u22125", u"-5", u"-5", u"-5"}, Row{u"+5", u"none", u"none", u"none"},
          Row{u"1E3", u"1000", u"1000", u"1000"}, Row{u"\u0661\u0662", u"12", u"12", u"12"},
          Row{u"12abc", u"none", u"none", u"none"}, Row{u"", u"none", u"none", u"none"}}) {
        EXPECT_EQ(parsed(grouped(u"nl_BE"), row.text), row.grouped) << utf8(row.text);
        EXPECT_EQ(parsed(formatter(kTwoDecimals, u"nl_BE"), row.text), row.plain) << utf8(row.text);
        EXPECT_EQ(parsed(grouped(u"en_US"), row.text), row.english) << utf8(row.text);
    }
}

TEST(NSNumberFormatterReading, SkipsWhiteSpaceInFrontOnly) {
    EXPECT_EQ(parsed(grouped(u"nl_BE"), u" \t\u00A0\u20035"), u"5");
    EXPECT_EQ(parsed(grouped(u"nl_BE"), u"5 "), u"none");
    EXPECT_EQ(parsed(grouped(u"nl_BE"), u"\n5"), u"none");
    EXPECT_EQ(parsed(grouped(u"nl_BE"), u"   "), u"none");
}

TEST(NSNumberFormatterReading, KeepsEveryDecimalDigit) {
    EXPECT_EQ(parsed(formatter(kTwoDecimals, u"en_US"), u"1.005"), u"1.005");
    EXPECT_EQ(parsed(formatter(kTwoDecimals, u"en_US"), u"12345678901234567890.123456789012345678"),
              u"12345678901234567890.123456789012345678");
}

TEST(NSNumberFormatterReading, ReadsEveryNumberThatADecimalHolds) {
    const NSNumberFormatter plain = formatter(kTwoDecimals, u"en_US");
    const NSDecimalNumber greatest = number(std::u16string(38, u'9') + u"e127");
    EXPECT_EQ(plain.numberFromString(plain.stringFromNumber(greatest)), greatest);
    EXPECT_EQ(parsed(plain, u"-2E128"), u"-2" + std::u16string(128, u'0'));
    EXPECT_EQ(plain.numberFromString(u"12.5E-127"), number(u"12.5e-127"));
    EXPECT_EQ(parsed(plain, u"1E-200"), u"0");
    EXPECT_EQ(parsed(plain, u"1E-99999999"), u"0");
}

TEST(NSNumberFormatterReading, GivesNotANumberForWhatADecimalCannotHold) {
    for (const std::u16string_view text : {u"NaN", u"\u221E", u"1E400", u"1E99999999999999999999"}) {
        EXPECT_EQ(parsed(formatter(kTwoDecimals, u"en_US"), text), u"NaN") << utf8(text);
    }
}

TEST(NSNumberFormatterReading, LooksAtTexts1024UnitsLong) {
    EXPECT_EQ(parsed(formatter(kTwoDecimals, u"en_US"), u"0." + std::u16string(1022, u'0')), u"0");
    EXPECT_EQ(parsed(formatter(kTwoDecimals, u"en_US"), u"0." + std::u16string(1023, u'0')), u"none");
}

TEST(NSNumberFormatter, FreshOneRoundsToWholeUnitsInTheCurrentLocale) {
    HostEnvironment::setLocaleIdentifier(u"nl_BE");
    const NSNumberFormatter fresh;
    HostEnvironment::setLocaleIdentifier(std::nullopt);
    EXPECT_EQ(fresh.locale(), NSLocale(u"nl_BE"));
    EXPECT_EQ(fresh.maximumFractionDigits(), 0);
    EXPECT_EQ(fresh.minimumFractionDigits(), 0);
    EXPECT_EQ(fresh.groupingSize(), 0);
    EXPECT_EQ(fresh.stringFromNumber(number(u"1234.5")), u"1234");
    EXPECT_EQ(fresh.stringFromNumber(number(u"-1235.5")), u"-1236");
    EXPECT_EQ(parsed(fresh, u"1,5"), u"1.5");
}

TEST(NSNumberFormatter, WhatWasSetSurvivesAChangeOfLocale) {
    NSNumberFormatter changing = grouped(u"nl_BE");
    changing.setMaximumFractionDigits(1);
    changing.setLocale(NSLocale(u"en_US"));
    EXPECT_EQ(changing.groupingSeparator(), u"\u00A0");
    EXPECT_EQ(changing.stringFromNumber(number(u"1234.56")), u"1\u00A0234.6");
}

TEST(NSNumberFormatter, GroupingSeparatorIsTheLocalesUntilSet) {
    EXPECT_EQ(formatter(kGrouped, u"en_US").groupingSeparator(), u",");
    EXPECT_EQ(formatter(kGrouped, u"en_US").stringFromNumber(number(u"1234567.5")), u"1,234,567.50");
    EXPECT_EQ(formatter(kGrouped, u"de_DE").stringFromNumber(number(u"1234567.5")), u"1.234.567,50");
    EXPECT_EQ(formatter(kGrouped, u"de_DE", u"''").stringFromNumber(number(u"1234567.5")), u"1''234''567,50");
}

TEST(NSNumberFormatter, PatternBringsItsGroupingAndFractionDigits) {
    NSNumberFormatter changing = grouped(u"en_US");
    EXPECT_EQ(changing.groupingSize(), 3);
    EXPECT_EQ(changing.maximumFractionDigits(), 2);
    changing.setGroupingSize(4);
    changing.setMaximumFractionDigits(5);
    changing.setPositiveFormat(kLongGrouped);
    EXPECT_EQ(changing.positiveFormat(), kLongGrouped);
    EXPECT_EQ(changing.groupingSize(), 3);
    EXPECT_EQ(changing.maximumFractionDigits(), 4);
    EXPECT_EQ(changing.minimumFractionDigits(), 4);
    changing.setPositiveFormat(kTwoDecimals);
    changing.setGroupingSize(3);
    EXPECT_EQ(changing.groupingSize(), 0);
    EXPECT_EQ(changing.stringFromNumber(number(u"1234.5")), u"1234.50");
}

TEST(NSNumberFormatter, MaximumFractionDigitsLowerTheMinimum) {
    NSNumberFormatter changing = formatter(kTwoDecimals, u"en_US");
    changing.setMaximumFractionDigits(4);
    EXPECT_EQ(changing.minimumFractionDigits(), 2);
    EXPECT_EQ(changing.stringFromNumber(number(u"1.5")), u"1.50");
    EXPECT_EQ(changing.stringFromNumber(number(u"1.23456")), u"1.2346");
    changing.setMaximumFractionDigits(-3);
    EXPECT_EQ(changing.maximumFractionDigits(), 0);
    EXPECT_EQ(changing.minimumFractionDigits(), 0);
    EXPECT_EQ(changing.stringFromNumber(number(u"1.5")), u"2");
    changing.setMaximumFractionDigits(32768);
    EXPECT_EQ(changing.maximumFractionDigits(), 32768);
    EXPECT_EQ(changing.stringFromNumber(number(u"1e-128")).size(), 130U);
}

TEST(NSNumberFormatter, TextThatIsNoPatternChangesNothing) {
    NSNumberFormatter unchanged = grouped(u"en_US");
    for (const std::u16string_view text : {u"0.0.0", u"0#", u"#,", u"'", u"0..0"}) unchanged.setPositiveFormat(text);
    // ICU would end the process on reading by these.
    for (const std::u16string_view text : {u"~0", u"0;~", u"'a'~0", u"0\u00A4\u00A4\u00A4\u00A4\u00A4\u00A4"}) {
        unchanged.setPositiveFormat(text);
    }
    unchanged.setPositiveFormat(std::u16string(2000, u'0'));
    EXPECT_EQ(unchanged.positiveFormat(), kGrouped);
    EXPECT_EQ(unchanged.stringFromNumber(number(u"1234.5")), u"1\u00A0234.50");
}

TEST(NSNumberFormatter, QuotedSignsAreText) {
    const NSNumberFormatter quoted = formatter(u"'~'0'\u00A4\u00A4\u00A4\u00A4\u00A4\u00A4'", u"en_US");
    EXPECT_EQ(quoted.stringFromNumber(number(u"7")), u"~7\u00A4\u00A4\u00A4\u00A4\u00A4\u00A4");
    EXPECT_EQ(parsed(quoted, u"~7\u00A4\u00A4\u00A4\u00A4\u00A4\u00A4"), u"7");
}

TEST(NSNumberFormatter, OtherPatternsAndDigitsAreTheLocales) {
    EXPECT_EQ(formatter(u"#,##0.00 'EUR';(#)", u"nl_BE").stringFromNumber(number(u"-1234.5")), u"(1.234,50)");
    EXPECT_EQ(formatter(u"0%", u"nl_BE").stringFromNumber(number(u"0.125")), u"12%");
    EXPECT_EQ(formatter(u"0.00", u"ar_EG").stringFromNumber(number(u"-1.5")), u"\u061C-\u0661\u066B\u0665\u0660");
    EXPECT_EQ(formatter(u"0.00", u"sv_SE").stringFromNumber(number(u"-1.5")), u"\u22121,50");
    EXPECT_EQ(formatter(u"#,##,##0.00", u"en_IN").stringFromNumber(number(u"1234567")), u"12,34,567.00");
    EXPECT_EQ(formatter(u"#.##", u"en_US").stringFromNumber(number(u"0.5")), u"0.5");
}

TEST(NSNumberFormatter, CopyIsIndependent) {
    NSNumberFormatter original = grouped(u"nl_BE");
    NSNumberFormatter copy = original;
    copy.setLocale(NSLocale(u"en_US"));
    copy.setMaximumFractionDigits(0);
    copy.setGroupingSeparator(u"_");
    EXPECT_EQ(original.stringFromNumber(number(u"1234.5")), u"1\u00A0234,50");
    EXPECT_EQ(copy.stringFromNumber(number(u"1234.5")), u"1_234");
    const NSNumberFormatter moved = std::move(original);
    EXPECT_EQ(moved.stringFromNumber(number(u"1234.5")), u"1\u00A0234,50");
    // NOLINTNEXTLINE(bugprone-use-after-move): the value behind a formatter is shared, a move leaves it usable.
    EXPECT_EQ(original.positiveFormat(), kGrouped);
}

TEST(NSNumberFormatter, UnknownLocalesFallBack) {
    EXPECT_EQ(formatter(kTwoDecimals, u"nl_XX").stringFromNumber(number(u"1.5")), u"1,50");
    for (const std::u16string_view locale : {u"", u"\u20AC", u"no such locale at all", u"\xD800"}) {
        EXPECT_EQ(formatter(kTwoDecimals, locale).stringFromNumber(number(u"1.5")).size(), 4U);
    }
    EXPECT_EQ(formatter(kTwoDecimals, std::u16string(5000, u'x')).stringFromNumber(number(u"1.5")).size(), 4U);
}

TEST(NSNumberFormatter, AllocatesOnlyItsResult) {
    const NSNumberFormatter kept = grouped(u"nl_BE");
    (void)kept.stringFromNumber(number(u"1"));
    const support::AllocationCount allocations;
    const NSNumberFormatter copy = kept;
    EXPECT_EQ(copy.stringFromNumber(number(u"-12.5")).size(), 6U);
    EXPECT_EQ(allocations.count(), 0U);
    EXPECT_EQ(copy.stringFromNumber(number(u"-1234567.5")).size(), 13U);
    EXPECT_EQ(allocations.count(), 1U);
}

/// Amounts of every size: small ones, halfway cases, nines that carry, and all 38 digits.
NSDecimalNumber randomAmount(std::mt19937_64& random) {
    std::string digits;
    const std::size_t count = 1 + random() % (random() % 4 == 0 ? 38 : 11);
    const std::uint64_t style = random() % 4;
    for (std::size_t i = 0; i < count; ++i) {
        digits.push_back(static_cast<char>('0' + (style == 0 ? 9 : random() % 10)));
    }
    if (style == 1) digits.back() = '5';
    const int exponent = static_cast<int>(random() % 14) - 10;
    return number(utf16((random() % 2 == 0 ? "-" : "") + digits + "e" + std::to_string(exponent)));
}

/// ICU's formatter for the same settings.
std::unique_ptr<icu::DecimalFormat> icuPeer(std::u16string_view pattern, const icu::Locale& locale,
                                            std::u16string_view separator) {
    UErrorCode status = U_ZERO_ERROR;
    icu::DecimalFormatSymbols symbols(locale, status);
    if (!separator.empty()) {
        symbols.setSymbol(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol,
                          icu::UnicodeString(separator.data(), static_cast<std::int32_t>(separator.size())));
    }
    auto format = std::make_unique<icu::DecimalFormat>(
        icu::UnicodeString(pattern.data(), static_cast<std::int32_t>(pattern.size())), symbols, status);
    return U_SUCCESS(status) ? std::move(format) : nullptr;
}

TEST(NSNumberFormatterAgainstIcu, GivesTheSameTextInEveryLocale) {
    std::int32_t count = 0;
    const icu::Locale* locales = icu::Locale::getAvailableLocales(count);
    ASSERT_GT(count, 500);
    struct Form {
        std::u16string_view pattern, separator;
    };
    std::mt19937_64 random(72);
    for (std::int32_t i = 0; i < count; ++i) {
        for (const Form& form : {Form{kGrouped, u"\u00A0"}, Form{kLongGrouped, u"\u00A0"}, Form{kTwoDecimals, u""},
                                 Form{u"#,##0.0#", u""}, Form{u"0,000,000", u""}, Form{u"00.###", u""}}) {
            const auto peer = icuPeer(form.pattern, locales[i], form.separator);
            ASSERT_NE(peer, nullptr);
            const NSNumberFormatter own = formatter(form.pattern, utf16(locales[i].getName()), form.separator);
            EXPECT_EQ(own.minimumFractionDigits(), peer->getMinimumFractionDigits());
            EXPECT_EQ(own.maximumFractionDigits(), peer->getMaximumFractionDigits());
            EXPECT_EQ(own.groupingSize(), peer->isGroupingUsed() ? peer->getGroupingSize() : 0);
            for (int round = 0; round < 6; ++round) {
                const NSDecimalNumber amount = randomAmount(random);
                UErrorCode status = U_ZERO_ERROR;
                icu::UnicodeString expected;
                peer->format(icu::StringPiece(utf8(amount.stringValue())), expected, nullptr, status);
                EXPECT_EQ(own.stringFromNumber(amount),
                          std::u16string(expected.getBuffer(), static_cast<std::size_t>(expected.length())))
                    << locales[i].getName() << " " << utf8(form.pattern) << " " << utf8(amount.stringValue());
            }
        }
    }
}

TEST(NSNumberFormatterAgainstIcu, ReadsBackWhatItWrote) {
    std::int32_t count = 0;
    const icu::Locale* locales = icu::Locale::getAvailableLocales(count);
    std::mt19937_64 random(5);
    const NSDecimalNumberHandler toCents(NSRoundingMode::plain, 2, false, false, false, false);
    for (std::int32_t i = 0; i < count; ++i) {
        const std::string_view language = locales[i].getLanguage();
        const bool isBelgian = std::string_view(locales[i].getCountry()) == "BE";
        if (!isBelgian && language != "be" && language != "nl" && language != "fr" && language != "de" &&
            language != "en") {
            continue;
        }
        const std::u16string locale = utf16(locales[i].getName());
        for (const NSNumberFormatter& own : {grouped(locale), formatter(kTwoDecimals, locale)}) {
            for (int round = 0; round < 20; ++round) {
                const NSDecimalNumber amount = randomAmount(random).decimalNumberByRoundingAccordingToBehavior(toCents);
                EXPECT_EQ(own.numberFromString(own.stringFromNumber(amount)), amount)
                    << locales[i].getName() << " " << utf8(amount.stringValue());
            }
        }
    }
}

}  // namespace
}  // namespace ZORPlatform
