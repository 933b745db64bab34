// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DateAdditions.h>
#include <ZORFoundation/DateExtension.h>
#include <ZORFoundation/DateFormatterExtension.h>
#include <ZORFoundation/ZORDateFormatters.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <benchmarks/Comparison.h>

#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace ZORFoundation;
using benchmark::DoNotOptimize;
using benchmarks::Comparison;
using ZORPlatform::HostEnvironment;

constexpr std::size_t kDates = 1024;

/// A date in each form that a contestant starts from.
struct Moment {
    NSDate date;
    UDate icu;
    std::int64_t daysSince1970;
};

/// Seconds of the years 1950 to 2050, in no order.
const std::vector<Moment>& moments() {
    static const auto list = [] {
        HostEnvironment::setTimeZoneIdentifier(u"Europe/Brussels");
        HostEnvironment::setLocaleIdentifier(u"nl_BE");
        HostEnvironment::setNow(NSDate::since1970(1520253000));
        std::mt19937_64 random(61);
        std::uniform_int_distribution<std::int64_t> seconds(-631152000, 2524608000);
        std::vector<Moment> result;
        for (std::size_t i = 0; i < kDates; ++i) {
            const std::int64_t time = seconds(random);
            result.push_back({NSDate::since1970(static_cast<double>(time)), static_cast<double>(time) * 1000,
                              time / 86400 - (time < 0 ? 1 : 0)});
        }
        return result;
    }();
    return list;
}

template <class Work>
auto overMoments(Work work) {
    return [work] {
        for (const Moment& moment : moments()) DoNotOptimize(work(moment));
    };
}

const NSLocale& dutch() {
    static const NSLocale locale(u"nl_BE");
    return locale;
}

icu::TimeZone* brussels() { return icu::TimeZone::createTimeZone("Europe/Brussels"); }

icu::SimpleDateFormat icuFormat(const char16_t* pattern) {
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(pattern, icu::Locale("nl_BE"), status);
    format.adoptTimeZone(brussels());
    format.setLenient(false);
    return format;
}

std::u16string icuText(const icu::SimpleDateFormat& format, const Moment& moment) {
    icu::UnicodeString text;
    static_cast<const icu::DateFormat&>(format).format(moment.icu, text);
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

/// Eight digits of a day that needs no time zone.
std::u16string digitsOnly(const Moment& moment) {
    const std::chrono::year_month_day day{std::chrono::sys_days(std::chrono::days(moment.daysSince1970))};
    unsigned number =
        static_cast<unsigned>(int(day.year())) + unsigned(day.month()) * 10000 + unsigned(day.day()) * 1000000;
    std::u16string text(8, u'0');
    for (auto at = text.rbegin(); at != text.rend(); ++at, number /= 10)
        *at = static_cast<char16_t>(u'0' + number % 10);
    return text;
}

using Factory = NSDateFormatter (*)();

Comparison kept(const std::string& name, const char16_t* pattern, Factory factory) {
    return Comparison("formatter kept, " + name)
        .itemsPerCall(kDates)
        .candidate([formatter = factory()] {
            for (const Moment& moment : moments()) DoNotOptimize(formatter.stringFromDate(moment.date));
        })
        .floor("digits of a day, no zone", overMoments(digitsOnly))
        .peer("ICU kept", [format = icuFormat(pattern)] {
            for (const Moment& moment : moments()) DoNotOptimize(icuText(format, moment));
        });
}

Comparison made(const std::string& name, const char16_t* pattern, Factory factory) {
    return Comparison("formatter made at each call, " + name)
        .itemsPerCall(kDates)
        .candidate(overMoments([factory](const Moment& moment) { return factory().stringFromDate(moment.date); }))
        .floor("digits of a day, no zone", overMoments(digitsOnly))
        .peer("ICU new", overMoments([pattern](const Moment& moment) { return icuText(icuFormat(pattern), moment); }));
}

NSDateFormatter slashes() { return ZORDateFormatters::zor_ddMMyyyyDateFormatterWithLocale(dutch()); }
NSDateFormatter constrained() { return ZORDateFormatters::zor_ddMMyyyyConstrainedDateFormatterWithLocale(dutch()); }
NSDateFormatter full() { return ZORDateFormatters::zor_fullDateFormatterWithLocale(dutch()); }
NSDateFormatter withTime() { return ZORDateFormatters::zor_dateWithTimeWithLocale(dutch()); }
NSDateFormatter iso() { return DateFormatterExtension::zor_iso8601DateFormatter(); }
NSDateFormatter isoMilliseconds() { return DateFormatterExtension::zor_iso8601DateFormatterWithMilliseconds(); }

constexpr const char16_t* kSlashes = u"dd/MM/yyyy";
constexpr const char16_t* kConstrained = u"ddMMyyyy";
constexpr const char16_t* kFull = u"EEEE dd MMMM yyyy";

const Comparison kFormatting[] = {
    kept("dd/MM/yyyy", kSlashes, slashes).expectedNanoseconds(150).atMost(0.2, "ICU kept").add(),
    kept("ddMMyyyy", kConstrained, constrained).expectedNanoseconds(150).atMost(0.2, "ICU kept").add(),
    kept("ISO 8601 with milliseconds", u"yyyy-MM-dd'T'HH:mm:ss.SSSZ", isoMilliseconds).atMost(1, "ICU kept").add(),
    kept("ISO 8601", u"yyyy-MM-dd'T'HH:mm:ssZZZZ", iso).atMost(1, "ICU kept").add(),
    kept("EEEE dd MMMM yyyy", kFull, full).atMost(1, "ICU kept").add(),
    kept("with the zone's name", u"dd/MM/yyyy HH:mm:ss zzz", withTime).atMost(1.2, "ICU kept").add(),
    made("dd/MM/yyyy", kSlashes, slashes).expectedNanoseconds(300).atMost(0.05, "ICU new").add(),
    made("ddMMyyyy", kConstrained, constrained).expectedNanoseconds(300).atMost(0.05, "ICU new").add(),
    made("EEEE dd MMMM yyyy", kFull, full).atMost(0.05, "ICU new").add(),
};

// ---- Reading -------------------------------------------------------------------------------------------------------

Comparison reading(const std::string& name, const char16_t* pattern, Factory factory, bool isDamaged) {
    const auto list = std::make_shared<std::vector<std::u16string>>();
    for (const Moment& moment : moments()) {
        list->push_back(factory().stringFromDate(moment.date) + (isDamaged ? u"?" : u""));
    }
    return Comparison("reading, " + name)
        .itemsPerCall(kDates)
        .candidate([formatter = factory(), list] {
            for (const std::u16string& text : *list) DoNotOptimize(formatter.dateFromString(text));
        })
        .floor("units summed",
               [list] {
                   for (const std::u16string& text : *list) {
                       unsigned sum = 0;
                       for (const char16_t unit : text) sum += unit;
                       DoNotOptimize(sum);
                   }
               })
        .peer("ICU kept", [format = icuFormat(pattern), list] {
            for (const std::u16string& text : *list) {
                const icu::UnicodeString alias(false, text.data(), static_cast<std::int32_t>(text.size()));
                icu::ParsePosition position;
                DoNotOptimize(format.DateFormat::parse(alias, position));
            }
        });
}

const Comparison kReading[] = {
    reading("dd/MM/yyyy", kSlashes, slashes, false).atMost(0.2, "ICU kept").add(),
    reading("ddMMyyyy", kConstrained, constrained, false).atMost(0.2, "ICU kept").add(),
    reading("ISO 8601 with milliseconds", u"yyyy-MM-dd'T'HH:mm:ss.SSSZ", isoMilliseconds, false)
        .atMost(0.2, "ICU kept")
        .add(),
    reading("EEEE dd MMMM yyyy", kFull, full, false).atMost(1.2, "ICU kept").add(),
    reading("dd/MM/yyyy with something behind it", kSlashes, slashes, true).atMost(1.2, "ICU kept").add(),
};

// ---- Displays from templates ---------------------------------------------------------------------------------------

icu::SimpleDateFormat icuFormatOfTemplate(const char16_t* dateTemplate) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(icu::Locale("nl_BE"), status));
    return icuFormat(generator->getBestPattern(dateTemplate, status).getTerminatedBuffer());
}

Comparison display(const std::string& name, const char16_t* dateTemplate) {
    return Comparison("display from a template, " + name)
        .itemsPerCall(kDates)
        .candidate(overMoments([dateTemplate](const Moment& moment) {
            return DateExtension::formatWithTemplate(moment.date, dateTemplate, u"nl_BE");
        }))
        .floor("digits of a day, no zone", overMoments(digitsOnly))
        .peer("ICU kept",
              [format = icuFormatOfTemplate(dateTemplate)] {
                  for (const Moment& moment : moments()) DoNotOptimize(icuText(format, moment));
              })
        .peer("ICU new", overMoments([dateTemplate](const Moment& moment) {
                  return icuText(icuFormatOfTemplate(dateTemplate), moment);
              }))
        .atMost(1.2, "ICU kept")
        .atMost(0.05, "ICU new")
        .add();
}

const Comparison kDisplays[] = {
    display("d MMM", u"d MMM"),
    display("EEEEEE d MMM", u"EEEEEE d MMM"),
    display("EEEE dd MM yyyy", u"EEEE dd MM yyyy"),
    display("dd MMMM yyyy", u"dd MMMM yyyy"),
};

// ---- Calendar ------------------------------------------------------------------------------------------------------

/// ICU's calendar without anything around it.
class IcuCalendar {
public:
    IcuCalendar() : calendar_(brussels(), icu::Locale("nl_BE"), status_) {}

    UDate plus(UDate date, UCalendarDateFields field, std::int32_t count) {
        calendar_.setTime(date, status_);
        calendar_.add(field, count, status_);
        return calendar_.getTime(status_);
    }
    std::int32_t field(UDate date, UCalendarDateFields field) {
        calendar_.setTime(date, status_);
        return calendar_.get(field, status_);
    }
    bool isSameDay(UDate left, UDate right) {
        calendar_.setTime(left, status_);
        const auto era = calendar_.get(UCAL_YEAR, status_);
        const auto day = calendar_.get(UCAL_DAY_OF_YEAR, status_);
        calendar_.setTime(right, status_);
        return era == calendar_.get(UCAL_YEAR, status_) && day == calendar_.get(UCAL_DAY_OF_YEAR, status_);
    }
    UDate withTime(UDate date, std::int32_t hour, std::int32_t minute) {
        calendar_.setTime(date, status_);
        calendar_.set(UCAL_HOUR_OF_DAY, hour);
        calendar_.set(UCAL_MINUTE, minute);
        return calendar_.getTime(status_);
    }
    std::int32_t years(UDate from, UDate to) {
        calendar_.setTime(from, status_);
        return calendar_.fieldDifference(to, UCAL_YEAR, status_);
    }

private:
    UErrorCode status_ = U_ZERO_ERROR;
    icu::GregorianCalendar calendar_;
};

constexpr UDate kNow = 1520253000000;

/// The date of an item and of the next one.
template <class Work>
auto overPairs(Work work) {
    return [work] {
        const std::vector<Moment>& list = moments();
        for (std::size_t i = 0; i < list.size(); ++i) DoNotOptimize(work(list[i], list[(i + 1) % list.size()]));
    };
}

template <class Ours, class Theirs>
Comparison calendar(const std::string& name, Ours ours, Theirs theirs) {
    return Comparison(name)
        .itemsPerCall(kDates)
        .candidate(overPairs(ours))
        .floor("a day added to a double",
               overMoments([](const Moment& moment) { return moment.date.timeIntervalSince1970() + 86400; }))
        .peer("ICU, calendar kept",
              [theirs, icu = std::make_shared<IcuCalendar>()] {
                  overPairs([&](const Moment& one, const Moment& other) { return theirs(*icu, one, other); })();
              })
        .atMost(1.5, "ICU, calendar kept")
        .add();
}

const Comparison kCalendar[] = {
    calendar(
        "dateByAddingDays",
        [](const Moment& one, const Moment&) { return DateExtension::dateByAddingDays(one.date, 30); },
        [](IcuCalendar& icu, const Moment& one, const Moment&) { return icu.plus(one.icu, UCAL_DATE, 30); }),
    calendar(
        "dateByAddingMonths",
        [](const Moment& one, const Moment&) { return DateExtension::dateByAddingMonths(one.date, 1); },
        [](IcuCalendar& icu, const Moment& one, const Moment&) { return icu.plus(one.icu, UCAL_MONTH, 1); }),
    calendar(
        "year", [](const Moment& one, const Moment&) { return DateExtension::year(one.date); },
        [](IcuCalendar& icu, const Moment& one, const Moment&) { return icu.field(one.icu, UCAL_YEAR); }),
    calendar(
        "isEqualToDateIgnoringTime",
        [](const Moment& one, const Moment& other) {
            return DateExtension::isEqualToDateIgnoringTime(one.date, other.date);
        },
        [](IcuCalendar& icu, const Moment& one, const Moment& other) { return icu.isSameDay(one.icu, other.icu); }),
    calendar(
        "isTomorrow", [](const Moment& one, const Moment&) { return DateExtension::isTomorrow(one.date); },
        [](IcuCalendar& icu, const Moment& one, const Moment&) {
            return icu.isSameDay(one.icu, icu.plus(kNow, UCAL_DATE, 1));
        }),
    calendar(
        "zor_dateOnly", [](const Moment& one, const Moment&) { return ZORAdditions::zor_dateOnly(one.date); },
        [](IcuCalendar& icu, const Moment& one, const Moment&) { return icu.withTime(one.icu, 0, 0); }),
    calendar(
        "setTime", [](const Moment& one, const Moment&) { return DateExtension::setTime(one.date, u"14:30"); },
        [](IcuCalendar& icu, const Moment& one, const Moment&) { return icu.withTime(one.icu, 14, 30); }),
    calendar(
        "zor_yearsFromDate:toDate:",
        [](const Moment& one, const Moment& other) { return ZORAdditions::zor_yearsFromDate(one.date, other.date); },
        [](IcuCalendar& icu, const Moment& one, const Moment& other) { return icu.years(one.icu, other.icu); }),
};

}  // namespace
