// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSDateFormatter.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSCalendar.h>
#include <ZORPlatform/Foundation/TimeZoneRulesInternal.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>

#include <support/AllocationCount.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

NSTimeZone zone(std::u16string_view name) { return NSTimeZone::timeZoneWithName(name).value(); }

NSDateFormatter formatter(std::u16string_view pattern, std::u16string_view locale = u"nl_BE",
                          std::u16string_view inZone = u"Europe/Brussels") {
    NSDateFormatter result;
    result.setDateFormat(pattern);
    result.setLocale(NSLocale(locale));
    result.setTimeZone(zone(inZone));
    return result;
}

/// Monday 5 March 2018, 14:30:45 in Brussels, and as much in July.
const NSDate kWinter = NSDate::since1970(1520256645);
const NSDate kSummer = NSDate::since1970(1530793845);

std::u16string formatted(std::u16string_view pattern, std::u16string_view locale = u"nl_BE",
                         const NSDate& date = kWinter) {
    return formatter(pattern, locale).stringFromDate(date);
}

/// What ICU itself makes of a pattern.
std::u16string icuText(std::u16string_view pattern, std::u16string_view locale, const NSTimeZone& inZone,
                       double millisecondsSince1970) {
    icu::Locale icuLocale(utf8(locale).c_str());
    UErrorCode status = U_ZERO_ERROR;
    icuLocale.setKeywordValue("calendar", "gregorian", status);
    icu::SimpleDateFormat format(icu::UnicodeString(pattern.data(), static_cast<std::int32_t>(pattern.size())),
                                 icuLocale, status);
    format.setTimeZone(*inZone.rules().icuZone);
    icu::UnicodeString text;
    format.format(millisecondsSince1970, text, static_cast<icu::FieldPositionIterator*>(nullptr), status);
    return U_SUCCESS(status) ? std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()))
                             : std::u16string();
}

TEST(NSDateFormatterFormatting, FollowsTheTableOfZoneSymbols) {
    struct Row {
        std::u16string_view pattern, englishGB, englishUS, dutch, french, german;
        NSDate date = kWinter;
    };
    for (const Row& row : {Row{u"z", u"CET", u"GMT+1", u"CET", u"UTC+1", u"MEZ"},
                           Row{u"zzz", u"CET", u"GMT+1", u"CET", u"UTC+1", u"MEZ"},
                           Row{u"zzz", u"CEST", u"GMT+2", u"CEST", u"UTC+2", u"MESZ", kSummer},
                           Row{u"zzzz", u"Central European Standard Time", u"Central European Standard Time",
                               u"Midden-Europese standaardtijd", u"heure normale d\u2019Europe centrale",
                               u"Mitteleurop\u00E4ische Normalzeit"},
                           Row{u"Z", u"+0100", u"+0100", u"+0100", u"+0100", u"+0100"},
                           Row{u"ZZZ", u"+0100", u"+0100", u"+0100", u"+0100", u"+0100"},
                           Row{u"ZZZZ", u"GMT+01:00", u"GMT+01:00", u"GMT+01:00", u"UTC+01:00", u"GMT+01:00"},
                           Row{u"ZZZZZ", u"+01:00", u"+01:00", u"+01:00", u"+01:00", u"+01:00"}}) {
        EXPECT_EQ(formatted(row.pattern, u"en_GB", row.date), row.englishGB);
        EXPECT_EQ(formatted(row.pattern, u"en_US", row.date), row.englishUS);
        EXPECT_EQ(formatted(row.pattern, u"nl_BE", row.date), row.dutch);
        EXPECT_EQ(formatted(row.pattern, u"fr_BE", row.date), row.french);
        EXPECT_EQ(formatted(row.pattern, u"de_BE", row.date), row.german);
    }
    for (const auto& [pattern, text] : {std::pair{u"ZZZZ", u"GMT"}, std::pair{u"Z", u"+0000"},
                                        std::pair{u"zzz", u"GMT"}, std::pair{u"ZZZZZ", u"Z"}}) {
        EXPECT_EQ(formatter(pattern, u"nl_BE", u"GMT").stringFromDate(kWinter), text);
    }
    EXPECT_EQ(formatter(u"ZZZZ", u"fr_BE", u"GMT").stringFromDate(kWinter), u"UTC");
}

TEST(NSDateFormatterFormatting, QuotedTextStandsForItself) {
    EXPECT_EQ(formatted(u"yyyy-MM-dd'T'HH:mm:ss"), u"2018-03-05T14:30:45");
    EXPECT_EQ(formatted(u"d 'de' MMMM"), u"5 de maart");
    EXPECT_EQ(formatted(u"HH'h''mm'"), u"14h'mm");
    EXPECT_EQ(formatted(u"d''d"), u"5'5");
    EXPECT_EQ(formatted(u"d 'open"), u"5 open");
}

TEST(NSDateFormatterFormatting, NumbersHaveAtLeastAsManyDigitsAsLettersUpToTen) {
    EXPECT_EQ(formatted(u"d dd ddd M MM y yy yyy yyyyyy"), u"5 05 005 3 03 2018 18 2018 002018");
    EXPECT_EQ(formatted(u"MMM MMMM MMMMM MMMMMM LLL"), u"mrt maart M 000003 mrt");
    EXPECT_EQ(formatted(u"E EE EEE EEEE EEEEE EEEEEE"), u"ma ma ma maandag M ma");
    EXPECT_EQ(formatted(u"HHHHHHHHHH"), u"0000000014");
    EXPECT_EQ(formatted(u"HHHHHHHHHHH"), u"0000000014");
    EXPECT_EQ(formatted(u"yyyyyyyyyyyy MMMMMMMMMMMM"), u"0000002018 0000000003");
    EXPECT_EQ(formatted(u"SSSSSSSSSSSSSS"), u"0000000000000");
}

TEST(NSDateFormatterFormatting, FractionsAreCutNotRounded) {
    const NSDate date = NSDate::since1970(1520285399.9996);
    EXPECT_EQ(formatter(u"ss.SSS S SS SSSSS", u"nl_BE", u"UTC").stringFromDate(date), u"59.999 9 99 99900");
    EXPECT_EQ(formatter(u"ss.SSS", u"nl_BE", u"UTC").stringFromDate(NSDate::since1970(-0.25)), u"59.750");
}

TEST(NSDateFormatterFormatting, EveryMillisecondIsWrittenAsItself) {
    // Most of them are a little less than themselves as a double.
    const NSDateFormatter milliseconds = formatter(u"SSS", u"nl_BE", u"UTC");
    for (int i = 0; i < 1000; ++i) {
        const std::string digits = std::to_string(1000 + i).substr(1);
        EXPECT_EQ(milliseconds.stringFromDate(NSDate::since1970(1520285399 + i / 1000.0)), utf16(digits));
    }
}

TEST(NSDateFormatterFormatting, CalendarIsGregorianWhateverTheLocalesCustom) {
    EXPECT_EQ(formatted(u"d MMM y", u"th_TH"), u"5 \u0E21\u0E35.\u0E04. 2018");
    EXPECT_EQ(formatted(u"d M y", u"fa_IR"), u"\u06F5 \u06F3 \u06F2\u06F0\u06F1\u06F8");
    EXPECT_EQ(formatted(u"y", u"ja_JP@calendar=japanese"), u"2018");
}

TEST(NSDateFormatterFormatting, WithoutAPatternOrADateThereIsNoText) {
    EXPECT_EQ(formatted(u""), u"");
    EXPECT_EQ(formatted(u"dd n"), u"");
    EXPECT_EQ(NSDateFormatter().stringFromDate(kWinter), u"");
    for (const double odd :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300}) {
        EXPECT_EQ(formatted(u"dd", u"nl_BE", NSDate::since1970(odd)), u"");
        EXPECT_EQ(formatted(u"GGG", u"nl_BE", NSDate::since1970(odd)), u"");
    }
}

TEST(NSDateFormatterFormatting, TextIsIcusForAllLocalesPatternsAndDates) {
    std::mt19937_64 random(6105);
    const std::vector<std::u16string_view> patterns{u"dd/MM/yyyy",
                                                    u"ddMMyyyy",
                                                    u"d-M-yy",
                                                    u"EEEE dd MMMM yyyy",
                                                    u"EEEEEE, d. LLLL",
                                                    u"E d MMM y",
                                                    u"yyyy.MM.dd",
                                                    u"yyyy-MM-dd'T'HH:mm:ssZZZZ",
                                                    u"yyyy-MM-dd'T'HH:mm:ss.SSSZ",
                                                    u"ZZZZZ EEEEE MMMMM LLLLL",
                                                    u"H:m:s.S SSSS",
                                                    u"dd/MM/yyyy HH:mm:ss zzz",
                                                    u"G y w W e c",
                                                    u"h:mm a",
                                                    u"'quoted' d ''M",
                                                    u"MMMMMM LLL EEE",
                                                    u"QQQ YYYY-'W'ww"};
    for (const std::u16string_view locale :
         {u"nl_BE", u"fr_BE", u"de_BE", u"en_GB", u"en_US_POSIX", u"ar_EG", u"th_TH", u"ca_ES", u"cs_CZ", u"xx", u""}) {
        for (const std::u16string_view inZone : {u"Europe/Brussels", u"Australia/Lord_Howe", u"UTC"}) {
            for (const std::u16string_view pattern : patterns) {
                const NSDateFormatter tested = formatter(pattern, locale, inZone);
                for (int i = 0; i < 12; ++i) {
                    const double reach = i < 8 ? 4e9 : 4e11;
                    const double milliseconds =
                        std::floor(std::uniform_real_distribution<double>(-reach, reach)(random) * 1000);
                    const double whole = std::floor(milliseconds / 1000);
                    const NSDate date = NSDate::sinceReferenceDate(whole - NSDate::kReferenceSince1970 +
                                                                   (milliseconds - whole * 1000) / 1000);
                    // So far away, a double does not hold milliseconds.
                    const double asked = reach > 4e9 ? whole * 1000 : milliseconds;
                    const NSDate told = reach > 4e9 ? NSDate::since1970(whole) : date;
                    ASSERT_EQ(tested.stringFromDate(told), icuText(pattern, locale, zone(inZone), asked))
                        << utf8(pattern) << ' ' << utf8(locale) << ' ' << utf8(inZone) << ' ' << asked;
                }
            }
        }
    }
}

TEST(NSDateFormatterFormatting, LastDaysOfTheOwnLayoutAreIcus) {
    for (const double seconds : {-12212553600.0, -12212553601.0, 253402300799.0, 253402300800.0}) {
        EXPECT_EQ(formatter(u"dd/MM/yyyy HH:mm", u"nl_BE", u"UTC").stringFromDate(NSDate::since1970(seconds)),
                  icuText(u"dd/MM/yyyy HH:mm", u"nl_BE", zone(u"UTC"), seconds * 1000));
    }
}

TEST(NSDateFormatterReading, ReadsWhatItWrites) {
    for (const std::u16string_view locale : {u"nl_BE", u"fr_BE", u"de_BE", u"en_US", u"ar_EG"}) {
        for (const std::u16string_view pattern :
             {u"dd/MM/yyyy HH:mm:ss", u"EEEE dd MMMM yyyy HH:mm:ss", u"dd/MM/yyyy HH:mm:ss zzz",
              u"yyyy-MM-dd'T'HH:mm:ssZZZZ", u"yyyy-MM-dd'T'HH:mm:ss.SSSZ", u"yyyyMMddHHmmss"}) {
            const NSDateFormatter tested = formatter(pattern, locale);
            for (const NSDate& date : {kWinter, kSummer}) {
                EXPECT_EQ(tested.dateFromString(tested.stringFromDate(date)), date) << utf8(locale) << utf8(pattern);
            }
        }
    }
}

TEST(NSDateFormatterReading, WholeTextMustMatch) {
    const NSDateFormatter tested = formatter(u"dd/MM/yyyy");
    const NSDate day = NSDate::since1970(1520204400);
    EXPECT_EQ(tested.dateFromString(u"05/03/2018"), day);
    EXPECT_EQ(tested.dateFromString(u"05/3/2018"), day);
    EXPECT_EQ(formatter(u"d/M/yyyy").dateFromString(u"5/3/2018"), day);
    EXPECT_EQ(tested.dateFromString(u" 05/03/2018"), day);
    for (const std::u16string_view text : {u"", u"05/03/2018 ", u"05/03/2018x", u"x05/03/2018", u"05/03", u"05-03-2018",
                                           u"05/03/", u"vijf", u"5/3/2018", u"05/03/2018/"}) {
        EXPECT_EQ(tested.dateFromString(text), std::nullopt) << utf8(text);
    }
}

TEST(NSDateFormatterReading, FieldsMustBeInTheirRange) {
    for (const std::u16string_view text :
         {u"32/01/2018", u"00/01/2018", u"31/04/2018", u"29/02/2018", u"01/13/2018", u"01/00/2018"}) {
        EXPECT_EQ(formatter(u"dd/MM/yyyy").dateFromString(text), std::nullopt) << utf8(text);
    }
    EXPECT_TRUE(formatter(u"dd/MM/yyyy").dateFromString(u"29/02/2020"));
    EXPECT_EQ(formatter(u"HH:mm").dateFromString(u"24:00"), std::nullopt);
}

TEST(NSDateFormatterReading, YearOfFourLettersHasAtLeastFourDigits) {
    for (const std::u16string_view text : {u"05/03/18", u"05/03/018", u"05/03/8", u"05/03/ 18"}) {
        EXPECT_EQ(formatter(u"dd/MM/yyyy").dateFromString(text), std::nullopt) << utf8(text);
    }
    EXPECT_EQ(formatter(u"yyyyMMdd").dateFromString(u"180305"), std::nullopt);
    EXPECT_EQ(formatter(u"yyyy-MM-dd").dateFromString(u"18-03-05"), std::nullopt);
    EXPECT_EQ(formatter(u"EEEE dd MMMM yyyy").dateFromString(u"maandag 05 maart 18"), std::nullopt);
    const NSDateFormatter tested = formatter(u"dd/MM/yyyy", u"nl_BE", u"UTC");
    EXPECT_EQ(tested.stringFromDate(tested.dateFromString(u"05/03/0018").value()), u"05/03/0018");
    EXPECT_EQ(tested.stringFromDate(tested.dateFromString(u"05/03/12018").value()), u"05/03/12018");
    EXPECT_TRUE(formatter(u"ddMMyyyy").dateFromString(u"05030018"));
    for (const std::u16string_view text : {u"", u" ", u"05", u"050318", u"052018", u"12018", u"05 2018"}) {
        EXPECT_EQ(formatter(u"ddMMyyyy").dateFromString(text), std::nullopt) << utf8(text);
    }
    EXPECT_EQ(formatter(u"ddMM'x'").dateFromString(u"x"), std::nullopt);
    EXPECT_EQ(formatter(u" ").dateFromString(u""), std::nullopt);
    EXPECT_EQ(formatter(u"ddMMyyyy").dateFromString(u"5032018"), std::nullopt);
    EXPECT_TRUE(formatter(u"dMMyyyy").dateFromString(u"5032018"));
    EXPECT_TRUE(formatter(u"yyyyMMdd").dateFromString(u"00180305"));
    EXPECT_TRUE(formatter(u"dd/MM/yy").dateFromString(u"05/03/18"));
    EXPECT_TRUE(formatter(u"dd/MM/y").dateFromString(u"05/03/18"));
}

TEST(NSDateFormatterReading, MissingFieldsAreThoseOfTheFirstDayOf2000) {
    const NSCalendar brussels(NSLocale(u"nl_BE"), zone(u"Europe/Brussels"));
    EXPECT_EQ(formatter(u"HH:mm").dateFromString(u"14:30"),
              brussels.dateFromComponents({.year = 2000, .month = 1, .day = 1, .hour = 14, .minute = 30}));
    // Which is a leap year.
    EXPECT_EQ(formatter(u"dd MMMM").dateFromString(u"29 februari"),
              brussels.dateFromComponents({.year = 2000, .month = 2, .day = 29}));
    EXPECT_EQ(formatter(u"yyyy").dateFromString(u"2018"), brussels.dateFromComponents({.year = 2018}));
}

TEST(NSDateFormatterReading, NamesMayBeInAnyCase) {
    EXPECT_EQ(formatter(u"EEEE dd MMMM yyyy").dateFromString(u"MAANDAG 05 Maart 2018"), NSDate::since1970(1520204400));
    EXPECT_EQ(formatter(u"EEEE dd MMMM yyyy").dateFromString(u"monday 05 march 2018"), std::nullopt);
}

TEST(NSDateFormatterReading, RepeatedTimeIsTheFirstUnlessTheTextTellsItsOffset) {
    EXPECT_EQ(formatter(u"dd/MM/yyyy HH:mm").dateFromString(u"28/10/2018 02:30"), NSDate::since1970(1540686600));
    EXPECT_EQ(formatter(u"dd/MM/yyyy HH:mm zzz").dateFromString(u"28/10/2018 02:30 CEST"),
              NSDate::since1970(1540686600));
    EXPECT_EQ(formatter(u"dd/MM/yyyy HH:mm zzz").dateFromString(u"28/10/2018 02:30 CET"),
              NSDate::since1970(1540690200));
    EXPECT_EQ(formatter(u"dd/MM/yyyy HH:mm Z").dateFromString(u"28/10/2018 02:30 +0100"),
              NSDate::since1970(1540690200));
}

TEST(NSDateFormatterReading, SkippedTimesAndDaysWithoutMidnightAreNotRead) {
    EXPECT_EQ(formatter(u"dd/MM/yyyy HH:mm").dateFromString(u"25/03/2018 02:30"), std::nullopt);
    const NSDateFormatter brazil = formatter(u"dd/MM/yyyy", u"pt_BR", u"America/Sao_Paulo");
    EXPECT_EQ(brazil.dateFromString(u"04/11/2018"), std::nullopt);
    EXPECT_TRUE(brazil.dateFromString(u"05/11/2018"));
}

/// What ICU itself reads, with what the formatter promises beside it: the whole text, and the year 2000.
class IcuReading {
public:
    IcuReading(std::u16string_view pattern, std::u16string_view locale, const NSTimeZone& inZone)
        : locale_(utf8(locale).c_str()),
          format_(icu::UnicodeString(pattern.data(), static_cast<std::int32_t>(pattern.size())), locale_, status_),
          calendar_(inZone.rules().icuZone->clone(), locale_, status_) {
        format_.setTimeZone(*inZone.rules().icuZone);
        format_.setLenient(false);
        calendar_.setLenient(false);
        calendar_.setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
        calendar_.clear();
        calendar_.set(UCAL_YEAR, 2000);
    }

    [[nodiscard]] std::optional<NSDate> date(std::u16string_view text) const {
        const std::unique_ptr<icu::Calendar> calendar(calendar_.clone());
        icu::ParsePosition position;
        format_.parse(icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size())), *calendar, position);
        UErrorCode status = U_ZERO_ERROR;
        const double time = calendar->getTime(status);
        const bool isWhole = position.getIndex() == static_cast<std::int32_t>(text.size());
        return isWhole && U_SUCCESS(status) ? std::optional(NSDate::since1970(time / 1000)) : std::nullopt;
    }

private:
    icu::Locale locale_;
    UErrorCode status_ = U_ZERO_ERROR;
    icu::SimpleDateFormat format_;
    icu::GregorianCalendar calendar_;
};

TEST(NSDateFormatterReading, NumbersAreReadAsIcuReadsThem) {
    std::mt19937_64 random(6106);
    for (const std::u16string_view pattern :
         {u"dd/MM/yyyy", u"ddMMyyyy", u"yyyy-MM-dd", u"yyyyMMddHHmmss", u"dd.MM.yyyy HH:mm", u"HH:mm:ss", u"MM yyyy",
          u"yyyy-MM-dd'T'HH:mm:ss.SSS", u"yyyy-MM-dd'T'HH:mm:ss.SSSZ", u"HH'h'mm,ss"}) {
        for (const std::u16string_view inZone : {u"Europe/Brussels", u"America/Sao_Paulo", u"Australia/Lord_Howe"}) {
            const NSDateFormatter tested = formatter(pattern, u"nl_BE", inZone);
            const IcuReading icu(pattern, u"nl_BE", zone(inZone));
            for (int i = 0; i < 120; ++i) {
                const double seconds = std::floor(std::uniform_real_distribution<double>(-1.3e10, 5e9)(random));
                std::u16string text =
                    tested.stringFromDate(NSDate::since1970(seconds + static_cast<double>(random() % 1000) / 1000));
                // Some with other digits, so that fields leave their range.
                for (std::size_t changes = random() % 3; changes > 0; --changes) {
                    char16_t& unit = text[random() % text.size()];
                    if (unit >= u'0' && unit <= u'9') unit = static_cast<char16_t>(u'0' + random() % 10);
                }
                const auto read = tested.dateFromString(text);
                const auto expected = icu.date(text);
                ASSERT_EQ(read.has_value(), expected.has_value()) << utf8(pattern) << ' ' << utf8(text);
                if (!read) continue;
                EXPECT_NEAR(read->timeIntervalSince1970(), expected->timeIntervalSince1970(), 1e-5)
                    << utf8(pattern) << ' ' << utf8(text);
            }
        }
    }
}

TEST(NSDateFormatterReading, ASignBetweenNumbersMeansWhatItMeansToIcu) {
    // An exponent and digits of other scripts belong to the number before them, and then nothing fits.
    std::u16string signs = u"\u00A0\u00D7\u066B\u0663\u0669\u096B\u2028\u2212\u2030\u221E\uFF13\uFFFD";
    for (char16_t sign = 1; sign < 0x80; ++sign) {
        if (sign < u'0' || sign > u'9') signs += sign;
    }
    for (const char16_t sign : signs) {
        const std::u16string quoted = sign == u'\'' ? u"''" : std::u16string{u'\'', sign, u'\''};
        const std::u16string between(1, sign);
        const std::u16string pattern = u"dd" + quoted + u"MM" + quoted + u"yyyy" + quoted;
        const std::u16string text = u"05" + between + u"03" + between + u"2018" + between;
        EXPECT_EQ(formatter(pattern).dateFromString(text),
                  IcuReading(pattern, u"nl_BE", zone(u"Europe/Brussels")).date(text))
            << static_cast<unsigned>(sign);
    }
    EXPECT_EQ(formatter(u"HH'E'mm").dateFromString(u"12E30"), std::nullopt);
    EXPECT_TRUE(formatter(u"HH'h'mm").dateFromString(u"12h30"));
}

TEST(NSDateFormatterReading, NumbersInOtherFormsAreReadAsIcuReadsThem) {
    const std::vector<std::u16string_view> days{u"05",  u"5",        u" 5", u"005",          u"-5",
                                                u"+5",  u"\u200E05", u"",   u"\u0660\u0665", u"\uFF10\uFF15",
                                                u"5.0", u"5e0",      u"0x5"};
    struct Year {
        std::u16string_view text;
        std::int64_t firstDigits;  ///< Four of them.
    };
    const std::vector<Year> years{
        {u"2018", 2018},  {u"02018", 201},           {u" 2018", 2018},  {u"-2018", 2018},
        {u"+2018", 2018}, {u"12018", 1201},          {u"99999", 9999},  {u"0000", 0},
        {u"0001", 1},     {u"1582", 1582},           {u"1583", 1583},   {u"9999", 9999},
        {u"10000", 1000}, {u"5828963", 5828},        {u"2018.0", 2018}, {u"2018 ", 2018},
        {u"2012 ", 2012}, {u"20180000000000", 2018}, {u"1919 ", 1919},  {u"\u0662\u0660\u0661\u0668", 2018}};
    const NSTimeZone brussels = zone(u"Europe/Brussels");
    const NSCalendar calendar(NSLocale(u"nl_BE"), brussels);
    for (const std::u16string_view separator : {u"/", u"-", u".", u" ", u""}) {
        const std::u16string between(separator);
        for (const std::u16string& pattern : {u"dd" + between + u"MM" + between + u"yyyy",
                                              u"yyyy" + between + u"MM" + between + u"dd", u"yyyy" + between + u"dd"}) {
            const IcuReading icu(pattern, u"nl_BE", brussels);
            for (const std::u16string_view day : days) {
                for (const Year& year : years) {
                    std::u16string text = pattern;
                    text.replace(text.find(u"dd"), 2, day);
                    text.replace(text.find(u"yyyy"), 4, year.text);
                    if (const std::size_t month = text.find(u"MM"); month != text.npos) text.replace(month, 2, u"03");
                    auto expected = icu.date(text);
                    // There, ICU makes do with a year of fewer digits.
                    const bool isBeforeNumber = separator.empty() && pattern.starts_with(u'y');
                    if (expected && isBeforeNumber &&
                        calendar.components(NSCalendarUnit::year, *expected).year != year.firstDigits) {
                        expected = std::nullopt;
                    }
                    // There, ICU reads a day from no digits.
                    constexpr std::ptrdiff_t kFewest = 7;
                    if (separator.empty() && pattern.starts_with(u'd') &&
                        std::count_if(text.begin(), text.end(), [](char16_t unit) { return u_isdigit(unit); }) <
                            kFewest) {
                        expected = std::nullopt;
                    }
                    EXPECT_EQ(formatter(pattern).dateFromString(text), expected)
                        << utf8(pattern) << " \"" << utf8(text) << "\"";
                }
            }
        }
    }
}

TEST(NSDateFormatterReading, LongTextsAndMissingPatternsGiveNothing) {
    EXPECT_EQ(formatter(u"").dateFromString(u""), std::nullopt);
    EXPECT_EQ(NSDateFormatter().dateFromString(u"05/03/2018"), std::nullopt);
    EXPECT_EQ(formatter(u"d").dateFromString(std::u16string(1024, u'0') + u"5"), std::nullopt);
    EXPECT_EQ(formatter(u"n").dateFromString(u"5"), std::nullopt);
    // A quote that quotes nothing.
    EXPECT_EQ(formatter(u"'").dateFromString(u""), std::nullopt);
    EXPECT_EQ(formatter(u"'").stringFromDate(kWinter), u"");
}

TEST(NSDateFormatterTemplates, FollowTheTableOfLocales) {
    struct Row {
        std::u16string_view locale, shortOne, medium, longOne, noDay;
    };
    for (const Row& row : {Row{u"en_US", u"MMM d", u"EEEEEE, MMM d", u"EEEE, MM/dd/yyyy", u"MMMM dd, yyyy"},
                           Row{u"en_GB", u"d MMM", u"EEEEEE, d MMM", u"EEEE, dd/MM/yyyy", u"dd MMMM yyyy"},
                           Row{u"nl_BE", u"d MMM", u"EEEEEE d MMM", u"EEEE dd/MM/yyyy", u"dd MMMM yyyy"},
                           Row{u"fr_BE", u"d MMM", u"EEEEEE d MMM", u"EEEE dd/MM/yyyy", u"dd MMMM yyyy"},
                           Row{u"de_BE", u"d. MMM", u"EEEEEE, d. MMM", u"EEEE, dd.MM.yyyy", u"dd. MMMM yyyy"},
                           Row{u"nl_NL", u"d MMM", u"EEEEEE d MMM", u"EEEE dd-MM-yyyy", u"dd MMMM yyyy"}}) {
        const NSLocale locale(row.locale);
        EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(u"d MMM", locale), row.shortOne);
        EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(u"EEEEEE d MMM", locale), row.medium);
        EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(u"EEEE dd MM yyyy", locale), row.longOne);
        EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(u"dd MMMM yyyy", locale), row.noDay);
    }
}

TEST(NSDateFormatterTemplates, OnlyLettersCount) {
    EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(u"yMMMd", NSLocale(u"nl_BE")), u"d MMM y");
    EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(u"d, y.MMM", NSLocale(u"nl_BE")), u"d MMM y");
    EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(u"jm", NSLocale(u"nl_BE")), u"HH:mm");
    for (const std::u16string_view none : {u"", u"  ", u"123", u"nn"}) {
        EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(none, NSLocale(u"nl_BE")), std::nullopt) << utf8(none);
    }
    EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(std::u16string(1025, u'd'), NSLocale(u"nl_BE")), std::nullopt);
}

TEST(NSDateFormatterTemplates, ManyLocalesInTurnGiveIcusPatterns) {
    // More than are kept, twice.
    for (int round = 0; round < 2; ++round) {
        for (const char* name : {"nl_BE", "fr_BE", "de_BE", "en_US", "en_GB", "it_IT", "es_ES", "pt_BR", "pl_PL",
                                 "sv_SE", "fi_FI", "da_DK", "cs_CZ", "hu_HU", "tr_TR", "el_GR", "ro_RO", "bg_BG"}) {
            UErrorCode status = U_ZERO_ERROR;
            const std::unique_ptr<icu::DateTimePatternGenerator> generator(
                icu::DateTimePatternGenerator::createInstance(icu::Locale(name), status));
            for (const char16_t* dateTemplate : {u"d MMM", u"EEEE dd MM yyyy"}) {
                const icu::UnicodeString best = generator->getBestPattern(dateTemplate, status);
                EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(dateTemplate, NSLocale(utf16(name))),
                          std::u16string(best.getBuffer(), static_cast<std::size_t>(best.length())));
            }
        }
    }
}

TEST(NSDateFormatter, WhatIsNotSetFollowsTheUser) {
    NSDateFormatter tested;
    tested.setDateFormat(u"EEEE HH ZZZZ");
    HostEnvironment::setLocaleIdentifier(u"nl_BE");
    HostEnvironment::setTimeZoneIdentifier(u"Europe/Brussels");
    EXPECT_EQ(tested.stringFromDate(kWinter), u"maandag 14 GMT+01:00");
    HostEnvironment::setLocaleIdentifier(u"fr_BE");
    HostEnvironment::setTimeZoneIdentifier(u"Asia/Tokyo");
    EXPECT_EQ(tested.stringFromDate(kWinter), u"lundi 22 UTC+09:00");
    EXPECT_EQ(tested.locale(), NSLocale(u"fr_BE"));
    EXPECT_EQ(tested.timeZone(), zone(u"Asia/Tokyo"));
    tested.setTimeZone(zone(u"UTC"));
    tested.setLocale(NSLocale(u"de_BE"));
    EXPECT_EQ(tested.stringFromDate(kWinter), u"Montag 13 GMT");
    HostEnvironment::setLocaleIdentifier(std::nullopt);
    HostEnvironment::setTimeZoneIdentifier(std::nullopt);
}

TEST(NSDateFormatter, ACopyIsIndependent) {
    NSDateFormatter first = formatter(u"dd");
    const NSDateFormatter second = first;
    first.setDateFormat(u"MM");
    EXPECT_EQ(first.dateFormat(), u"MM");
    EXPECT_EQ(second.dateFormat(), u"dd");
    EXPECT_EQ(second.stringFromDate(kWinter), u"05");
}

TEST(NSDateFormatter, APatternTooLongToBeOneChangesNothing) {
    NSDateFormatter tested = formatter(u"dd");
    const std::u16string dots(1023, u'.');
    tested.setDateFormat(u"dd" + dots);
    EXPECT_EQ(tested.dateFormat(), u"dd");
    tested.setDateFormat(u"d" + dots);
    EXPECT_EQ(tested.stringFromDate(kWinter), u"5" + dots);
}

TEST(NSDateFormatter, AKeptFormatterAllocatesOnlyItsText) {
    const NSDateFormatter tested = formatter(u"dd/MM/yyyy");
    (void)tested.stringFromDate(kWinter);
    const support::AllocationCount allocations;
    EXPECT_EQ(tested.stringFromDate(kSummer).size(), 10U);
    EXPECT_EQ(allocations.count(), 1U);
}

}  // namespace
}  // namespace ZORPlatform
