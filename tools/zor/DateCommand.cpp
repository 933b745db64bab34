// SPDX-License-Identifier: Apache-2.0
//
// Dates without a time of day. They are read, moved and shown in UTC, so that no time zone can change them; only what
// day it is today depends on one.

#include <tools/zor/CommandTables.h>

#include <tools/zor/FilterArguments.h>
#include <tools/zor/Records.h>
#include <tools/zor/filter/Output.h>

#include <ZORFoundation/DateAdditions.h>
#include <ZORFoundation/DateExtension.h>
#include <ZORFoundation/ZORDateFormatters.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSCalendar.h>
#include <ZORPlatform/Foundation/NSTimeZone.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace zor {

using namespace ZORFoundation;

struct DateStyle {
    std::string_view name;
    std::u16string (*text)(const NSDate& date, std::u16string_view locale);
};

namespace {

using ZORPlatform::HostEnvironment;
using ZORPlatform::NSCalendar;
using ZORPlatform::NSTimeZone;
using ZORPlatform::utf16;
using ZORPlatform::utf8;

// ---- Styles --------------------------------------------------------------------------------------------------------

constexpr std::u16string_view kIsoPattern = u"yyyy-MM-dd";

struct ReadStyle {
    std::string_view name;
    std::u16string_view pattern;
};

constexpr std::array kReadStyles{ReadStyle{"iso", kIsoPattern}, ReadStyle{"numeric", u"dd/MM/yyyy"},
                                 ReadStyle{"compact", u"ddMMyyyy"}};

NSDateFormatter formatter(std::u16string_view pattern) {
    NSDateFormatter result;
    result.setDateFormat(pattern);
    result.setLocale(NSLocale(u"en_US_POSIX"));
    result.setTimeZone(*NSTimeZone::timeZoneWithName(u"UTC"));
    return result;
}

template <NSDateFormatter (*Factory)(const NSLocale&)>
std::u16string fixed(const NSDate& date, std::u16string_view locale) {
    return Factory(NSLocale(locale)).stringFromDate(date);
}

template <bool kIncludesDayOfWeek, bool kExcludeYear>
std::u16string full(const NSDate& date, std::u16string_view locale) {
    return ZORDateFormatters::zor_fullDateFormatterWithLocale(NSLocale(locale), kIncludesDayOfWeek, kExcludeYear)
        .stringFromDate(date);
}

std::u16string iso(const NSDate& date, std::u16string_view) { return formatter(kIsoPattern).stringFromDate(date); }

constexpr std::array kStyles{
    DateStyle{"iso", iso},
    DateStyle{"numeric", fixed<ZORDateFormatters::zor_ddMMyyyyDateFormatterWithLocale>},
    DateStyle{"compact", fixed<ZORDateFormatters::zor_ddMMyyyyConstrainedDateFormatterWithLocale>},
    DateStyle{"full", full<true, false>},
    DateStyle{"full-no-year", full<true, true>},
    DateStyle{"no-weekday", full<false, false>},
    DateStyle{"day-month", full<false, true>},
    DateStyle{"short", DateExtension::shortFormatWithLocale},
    DateStyle{"medium", DateExtension::mediumFormatWithLocale},
    DateStyle{"long", DateExtension::longFormatWithLocale},
    DateStyle{"long-month", DateExtension::longFormatNoDayFullMonthWithLocale},
};

std::u16string shown(const NSDate& date, const KindSettings& settings) {
    const DateSettings& dates = settings.dates;
    const std::u16string locale = utf16(settings.locale);
    if (!dates.dateTemplate.empty()) return DateExtension::formatWithTemplate(date, dates.dateTemplate, locale);
    return (dates.style == nullptr ? kStyles.front() : *dates.style).text(date, locale);
}

// ---- Dates as records ----------------------------------------------------------------------------------------------

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
bool isField(char16_t unit) { return unit >= u'A' && unit <= u'z'; }

Explanation broken(BrokenRule rule, std::size_t position) {
    // All that stands before it are digits and separators.
    return {.rule = rule, .position = position, .character = position, .found = 0, .expected = 0};
}

/// What keeps a text from having the form of a pattern, digit by digit.
Explanation explainForm(std::u16string_view text, std::u16string_view pattern) {
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (i == text.size()) return broken(text.empty() ? BrokenRule::empty : BrokenRule::incomplete, i);
        const bool fits = isField(pattern[i]) ? isDigit(text[i]) : text[i] == pattern[i];
        if (!fits) return broken(BrokenRule::unexpectedCharacter, i);
    }
    return text.size() > pattern.size() ? broken(BrokenRule::unexpectedCharacter, pattern.size()) : Explanation();
}

std::optional<NSDate> dateOf(std::u16string_view text, const KindSettings& settings) {
    if (!explainForm(text, settings.dates.read).isValid()) return std::nullopt;
    return formatter(settings.dates.read).dateFromString(text);
}

bool check(std::u16string_view text, const KindSettings& settings) { return dateOf(text, settings).has_value(); }

Explanation explain(std::u16string_view text, const KindSettings& settings) {
    const Explanation form = explainForm(text, settings.dates.read);
    if (!form.isValid() || check(text, settings)) return form;
    // Every field has its digits, so one of them is out of its range; of several, the longest one counts.
    const std::u16string_view pattern = settings.dates.read;
    std::u16string repaired(text);
    for (const char16_t field : {u'd', u'M'}) {
        const std::size_t position = pattern.find(field);
        repaired.replace(position, 2, u"01");
        if (check(repaired, settings)) return broken(BrokenRule::unexpectedCharacter, position);
    }
    return broken(BrokenRule::unexpectedCharacter, pattern.find(u'y'));
}

std::u16string normalize(std::u16string_view text, const KindSettings& settings) {
    const auto date = dateOf(text, settings);
    return date ? iso(*date, {}) : std::u16string();
}

std::u16string format(std::u16string_view text, const KindSettings& settings) {
    const auto date = dateOf(text, settings);
    return date ? shown(*date, settings) : std::u16string();
}

std::u16string add(std::u16string_view text, const KindSettings& settings) {
    const auto date = dateOf(text, settings);
    if (!date) return {};
    const DateSettings& dates = settings.dates;
    const auto moved = NSCalendar::currentCalendar().dateByAddingComponents(
        {.year = dates.years, .month = dates.months, .day = dates.days}, *date);
    // No style shows an era: before the year 1, a text would name a day of another year.
    const bool isShown = moved && ZORAdditions::dateComponentsForComponent(*moved, NSCalendarUnit::era).era == 1;
    return isShown ? shown(*moved, settings) : std::u16string();
}

std::u16string years(std::u16string_view text, const KindSettings& settings) {
    const auto date = dateOf(text, settings);
    if (!date) return {};
    return utf16(std::to_string(ZORAdditions::zor_yearsFromDate(*date, settings.dates.today)));
}

// ---- Options -------------------------------------------------------------------------------------------------------

/// The row of that name.
template <typename Rows>
const auto& named(std::string_view option, const Rows& rows, std::string_view name) {
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.name == name; });
    if (found != rows.end()) return *found;
    std::string names;
    for (const auto& row : rows) names.append(names.empty() ? "" : ", ").append(row.name);
    throw UsageError(std::string(option).append(": one of these is needed: ").append(names));
}

constexpr KindOption kRead{"--read", "STYLE", "how they are written: iso (default), numeric, compact",
                           [](KindSettings& settings, std::string_view value) {
                               settings.dates.read = named("--read", kReadStyles, value).pattern;
                               return true;
                           }};
constexpr KindOption kStyle{"--style", "STYLE", "how they are shown: iso (default), numeric, full, ...",
                            [](KindSettings& settings, std::string_view value) {
                                settings.dates.style = &named("--style", kStyles, value);
                                return true;
                            }};
constexpr KindOption kTemplate{
    "--template", "FIELDS", "shows these fields in the order of the locale",
    [](KindSettings& settings, std::string_view value) {
        settings.dates.dateTemplate = utf16(value);
        if (NSDateFormatter::dateFormatFromTemplate(settings.dates.dateTemplate, NSLocale(u"en_US_POSIX"))) {
            return true;
        }
        throw UsageError("--template: fields such as yMMMd are needed");
    }};
constexpr KindOption kLocale{"--locale", "LOCALE", "whose names and order: nl_BE unless told",
                             [](KindSettings& settings, std::string_view value) {
                                 settings.locale = value;
                                 return !value.empty();
                             }};

template <std::int64_t DateSettings::*Length>
bool setLength(KindSettings& settings, std::string_view value) {
    const auto read = std::from_chars(value.data(), value.data() + value.size(), settings.dates.*Length);
    if (read.ec != std::errc{} || read.ptr != value.data() + value.size()) {
        throw UsageError("--days, --months, --years: a whole number of 64 bits is needed");
    }
    return true;
}
constexpr KindOption kDays{"--days", "N", "add: so many days, back where negative", setLength<&DateSettings::days>};
constexpr KindOption kMonths{"--months", "N", "add: so many months", setLength<&DateSettings::months>};
constexpr KindOption kYears{"--years", "N", "add: so many years", setLength<&DateSettings::years>};

constexpr KindOption kToday{"--today", "YYYY-MM-DD", "today, years: the day that counts as today",
                            [](KindSettings& settings, std::string_view value) {
                                const auto date = dateOf(utf16(value), KindSettings());
                                if (!date) throw UsageError("--today: a date such as 2018-03-05 is needed");
                                settings.dates.today = *date;
                                return true;
                            }};
constexpr KindOption kZone{"--zone", "ZONE", "today, years: where it is today (default: here)",
                           [](KindSettings&, std::string_view value) {
                               if (NSTimeZone::timeZoneWithName(utf16(value))) return true;
                               throw UsageError("--zone: a name such as Europe/Brussels is needed");
                           }};

constexpr auto row(const KindOption& option) { return Option{option.name, option.placeholder, option.help}; }
constexpr std::array kRows{row(kRead),   row(kStyle), row(kTemplate), row(kLocale), row(kDays),
                           row(kMonths), row(kYears), row(kToday),    row(kZone)};

std::string_view complaint(const KindSettings& settings) {
    const bool isEither = settings.dates.style == nullptr || settings.dates.dateTemplate.empty();
    return isEither ? "" : "--style or --template, not both";
}

// ---- Actions -------------------------------------------------------------------------------------------------------

constexpr std::array kTodayOptions{&kStyle, &kTemplate, &kLocale, &kToday, &kZone};
constexpr std::array kFormatOptions{&kRead, &kStyle, &kTemplate, &kLocale};
constexpr std::array kAddOptions{&kRead, &kStyle, &kTemplate, &kLocale, &kDays, &kMonths, &kYears};
constexpr std::array kYearsOptions{&kRead, &kToday, &kZone};

constexpr Kind kTodayKind{"date today", "today's date", check,       explain,  normalize,
                          format,       kTodayOptions,  "character", complaint};
constexpr std::array kRecordKinds{
    Kind{"date format", "dates as people read them", check, explain, normalize, format, kFormatOptions, "character",
         complaint},
    Kind{"date add", "dates moved by days, months and years", check, explain, normalize, add, kAddOptions, "character",
         complaint},
    Kind{"date years", "whole years until today", check, explain, normalize, years, kYearsOptions},
};

constexpr auto action(const Kind& kind) { return Action{kind.name.substr(sizeof "date"), kind.help}; }
constexpr std::array kActions{action(kTodayKind), action(kRecordKinds[0]), action(kRecordKinds[1]),
                              action(kRecordKinds[2])};

/// Midnight UTC of the day that it is in a zone.
NSDate todayIn(const NSTimeZone& zone) {
    const NSCalendar there(NSLocale(u"en_US_POSIX"), zone);
    NSDateComponents day =
        there.components(NSCalendarUnit::year | NSCalendarUnit::month | NSCalendarUnit::day, NSDate::date());
    day.timeZone = NSTimeZone::timeZoneWithName(u"UTC");
    return there.dateFromComponents(day).value_or(NSDate());
}

/// Sets the day that counts as today where no option says it, and then works in UTC.
void settle(KindSettings& settings, const Arguments& arguments) {
    if (!arguments.has(kToday.name)) {
        const auto zoneName = arguments.value(kZone.name);
        const auto zone = zoneName ? NSTimeZone::timeZoneWithName(utf16(*zoneName)) : std::nullopt;
        settings.dates.today = todayIn(zone ? *zone : NSTimeZone::localTimeZone());
    }
    HostEnvironment::setTimeZoneIdentifier(u"UTC");
}

ExitCode printToday(const Arguments& arguments) {
    if (arguments.words.size() > 1) throw UsageError("date today: takes no value");
    refuseFilterOptions(arguments);
    KindSettings settings = kindSettings(kTodayKind, arguments);
    settle(settings, arguments);
    writeAll(STDOUT_FILENO, utf8(shown(settings.dates.today, settings)) + "\n");
    return ExitCode::success;
}

ExitCode run(const Arguments& arguments) {
    const std::string name = "date " + arguments.words.front();
    if (name == kTodayKind.name) return printToday(arguments);
    const auto kind =
        std::find_if(kRecordKinds.begin(), kRecordKinds.end(), [&](const Kind& known) { return known.name == name; });
    return answerRecords(*kind, arguments, Answer::format, "formatted", settle);
}

}  // namespace

const Command kDateCommand{.name = "date",
                           .synopsis = "ACTION [DATE...]",
                           .help = "today, and dates shown, moved, counted",
                           .actions = kActions,
                           .options = kRows,
                           .takesFilterOptions = true,
                           .run = run};

}  // namespace zor
