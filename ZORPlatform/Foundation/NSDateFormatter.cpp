// SPDX-License-Identifier: Apache-2.0
//
// Two roads to one text. Patterns of numbers, names and offsets from UTC are laid out here, in locales with ASCII
// digits and in the years that people live in, from names that are read once; everything else, and all reading, goes
// through ICU's formatter. What is costly to make is kept per thread, so formatters stay small values.
#include <ZORPlatform/Foundation/NSDateFormatter.h>

#include <ZORPlatform/Foundation/CalendarMomentInternal.h>
#include <ZORPlatform/Foundation/GregorianDayInternal.h>
#include <ZORPlatform/Foundation/IcuTextInternal.h>
#include <ZORPlatform/Foundation/RecentValuesInternal.h>
#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/TimeZoneRulesInternal.h>

#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/numsys.h>
#include <unicode/smpdtfmt.h>
#include <unicode/tzfmt.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

/// Far above any use; ICU counts in 32 bits.
constexpr std::size_t kMaximumUnits = 1024;

constexpr bool isFieldLetter(char16_t unit) noexcept {
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

}  // namespace

/// A pattern, read. Shared between formatters, never changed.
struct DatePattern {
    struct Item {
        char16_t symbol;      ///< 0 for literal text.
        std::uint32_t count;  ///< Letters of the field, or units of the literal text.
        std::uint32_t begin;  ///< Where the field begins in `text`, or the literal text in `literals`.
    };

    std::u16string text;
    std::u16string literals;
    std::vector<Item> items;
    bool isPlain = true;  ///< Every field is one that is laid out here.
    bool isFixedWidth =
        false;  ///< Texts of one form, with nothing but digits and signs in their fields, are read here.
};

namespace {

// ---- Patterns ------------------------------------------------------------------------------------------------------

bool isPlainField(char16_t symbol, std::uint32_t count) {
    constexpr std::u16string_view kNumbers = u"ydHmsS";
    constexpr std::u16string_view kNames = u"MLE";
    constexpr std::uint32_t kMaximumOffsetForm = 5;
    // ICU fills a number up to ten digits, however many letters there are.
    constexpr std::uint32_t kMaximumDigits = 10;
    if (count > kMaximumDigits) return false;
    return kNumbers.find(symbol) != kNumbers.npos || kNames.find(symbol) != kNames.npos ||
           (symbol == u'Z' && count <= kMaximumOffsetForm);
}

/// How many digits a field has that is always as wide as its letters are many; 0 for any other one.
std::uint32_t fixedDigits(const DatePattern::Item& item) {
    constexpr std::u16string_view kTwoDigits = u"dMHms";
    constexpr std::uint32_t kYear = 4;
    constexpr std::uint32_t kFraction = 3;
    const bool isWhole = (item.symbol == u'y' && item.count == kYear) ||
                         (item.symbol == u'S' && item.count == kFraction) ||
                         (kTwoDigits.find(item.symbol) != kTwoDigits.npos && item.count == 2);
    return isWhole ? item.count : 0;
}

/// Each field at most once, an offset such as "+0100" at the end only, and between them only what ICU does not take for
/// a part of the number before it: a digit of any script, or the "E" of an exponent, it does.
bool isFixedWidth(const DatePattern& pattern) {
    constexpr std::u16string_view kSeparators = u" ,-./:T";
    std::u16string seen;
    for (const DatePattern::Item& item : pattern.items) {
        const bool isOffset = item.symbol == u'Z' && item.count <= 3 && &item == &pattern.items.back();
        if (item.symbol == 0 || isOffset) continue;
        if (fixedDigits(item) == 0 || seen.find(item.symbol) != seen.npos) return false;
        seen += item.symbol;
    }
    return pattern.literals.find_first_not_of(kSeparators) == pattern.literals.npos;
}

class PatternReader {
public:
    explicit PatternReader(std::u16string_view text) { pattern_.text = text; }

    DatePattern read() {
        const std::u16string_view text = pattern_.text;
        bool isQuoted = false;
        for (std::size_t at = 0; at < text.size();) {
            const char16_t unit = text[at];
            if (unit == u'\'' && at + 1 < text.size() && text[at + 1] == u'\'') {
                addLiteral(unit);
                at += 2;
            } else if (unit == u'\'') {
                isQuoted = !isQuoted;
                ++at;
            } else if (isQuoted || !isFieldLetter(unit)) {
                addLiteral(unit);
                ++at;
            } else {
                const std::size_t end = std::min(text.find_first_not_of(unit, at), text.size());
                addField(unit, at, end);
                at = end;
            }
        }
        pattern_.isFixedWidth = isFixedWidth(pattern_);
        return std::move(pattern_);
    }

private:
    void addLiteral(char16_t unit) {
        if (pattern_.items.empty() || pattern_.items.back().symbol != 0) {
            pattern_.items.push_back({0, 0, static_cast<std::uint32_t>(pattern_.literals.size())});
        }
        pattern_.literals += unit;
        ++pattern_.items.back().count;
    }
    void addField(char16_t symbol, std::size_t begin, std::size_t end) {
        const auto count = static_cast<std::uint32_t>(end - begin);
        pattern_.items.push_back({symbol, count, static_cast<std::uint32_t>(begin)});
        pattern_.isPlain = pattern_.isPlain && isPlainField(symbol, count);
    }

    DatePattern pattern_;
};

std::shared_ptr<const DatePattern> sharedPattern(std::u16string_view text) {
    constexpr std::size_t kKept = 16;
    thread_local RecentValues<std::u16string, std::shared_ptr<const DatePattern>, kKept> recent;
    return recent.find(text, [&] { return std::make_shared<const DatePattern>(PatternReader(text).read()); });
}

// ---- Locales -------------------------------------------------------------------------------------------------------

/// The locale with the Gregorian calendar, also where another one is its custom.
icu::Locale gregorianLocale(const NSLocale& locale) {
    icu::Locale result = icuLocale(locale);
    UErrorCode status = U_ZERO_ERROR;
    result.setKeywordValue("calendar", "gregorian", status);
    return result;
}

/// What the patterns laid out here need of a locale.
class Names {
public:
    using Icu = icu::DateFormatSymbols;

    explicit Names(const NSLocale& locale) {
        const icu::Locale icuLocale = gregorianLocale(locale);
        UErrorCode status = U_ZERO_ERROR;
        const Icu symbols(icuLocale, status);
        const std::unique_ptr<icu::NumberingSystem> digits(icu::NumberingSystem::createInstance(icuLocale, status));
        hasAsciiDigits_ = U_SUCCESS(status) && std::strcmp(digits->getName(), "latn") == 0;
        if (!hasAsciiDigits_) return;
        for (const Icu::DtContextType context : {Icu::FORMAT, Icu::STANDALONE}) {
            for (const Icu::DtWidthType width : {Icu::ABBREVIATED, Icu::WIDE, Icu::NARROW}) {
                std::int32_t count = 0;
                const icu::UnicodeString* names = symbols.getMonths(count, context, width);
                for (std::int32_t i = 0; i < count; ++i) months_[context][width].emplace_back(view(names[i]));
            }
        }
        for (const Icu::DtWidthType width : {Icu::ABBREVIATED, Icu::WIDE, Icu::NARROW, Icu::SHORT}) {
            std::int32_t count = 0;
            const icu::UnicodeString* names = symbols.getWeekdays(count, Icu::FORMAT, width);
            for (std::int32_t i = UCAL_SUNDAY; i < count; ++i) weekdays_[width].emplace_back(view(names[i]));
        }
    }

    [[nodiscard]] bool hasAsciiDigits() const noexcept { return hasAsciiDigits_; }

    /// @param month  from 1
    /// @return empty where `count` asks for a number
    [[nodiscard]] std::u16string_view month(char16_t symbol, std::uint32_t count, unsigned month) const {
        const auto& byWidth = months_[symbol == u'M' ? Icu::FORMAT : Icu::STANDALONE];
        if (count == 3) return byWidth[Icu::ABBREVIATED][month - 1];
        if (count == 4) return byWidth[Icu::WIDE][month - 1];
        if (count == 5) return byWidth[Icu::NARROW][month - 1];
        return {};
    }

    /// @param weekday  0 for Sunday
    [[nodiscard]] std::u16string_view weekday(std::uint32_t count, std::size_t weekday) const {
        if (count == 4) return weekdays_[Icu::WIDE][weekday];
        if (count == 5) return weekdays_[Icu::NARROW][weekday];
        if (count == 6) return weekdays_[Icu::SHORT][weekday];
        return weekdays_[Icu::ABBREVIATED][weekday];
    }

private:
    static constexpr std::size_t kWidths = 4;

    std::array<std::array<std::vector<std::u16string>, kWidths>, 2> months_;
    std::array<std::vector<std::u16string>, kWidths> weekdays_;
    bool hasAsciiDigits_ = false;
};

/// @return valid until the next call on this thread
const Names& namesOf(const NSLocale& locale) {
    thread_local RecentValues<NSLocale, Names> recent;
    return recent.find(locale, [&] { return Names(locale); });
}

/// "GMT+01:00", as the locale writes it. Valid until the next call on this thread.
const std::u16string& localizedOffset(const NSLocale& locale, std::int32_t offset) {
    thread_local RecentValues<std::pair<NSLocale, std::int32_t>, std::u16string> recent;
    return recent.find(std::pair(locale, offset), [&]() -> std::u16string {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::TimeZoneFormat> format(
            icu::TimeZoneFormat::createInstance(gregorianLocale(locale), status));
        if (U_FAILURE(status)) return {};
        icu::UnicodeString text;
        format->formatOffsetLocalizedGMT(offset * 1000, text, status);
        return std::u16string(view(text));
    });
}

// ---- Laying out ----------------------------------------------------------------------------------------------------

/// The years laid out here, which are all Gregorian and have four digits.
constexpr std::int64_t kFirstPlainDay = daysSince1970(1583, 1, 1);
constexpr std::int64_t kEndOfPlainDays = daysSince1970(10000, 1, 1);

/// A moment in whole milliseconds.
struct Milliseconds {
    std::int64_t seconds;  ///< Since 1970.
    std::uint32_t rest;    ///< Below 1000.
};

std::optional<Milliseconds> milliseconds(const NSDate& date) {
    const auto moment = calendarMoment(date);
    if (!moment) return std::nullopt;
    constexpr double kPerSecond = 1000;
    constexpr double kMicrosecond = 0.001;
    const double rest = std::min(std::floor(moment->fraction * kPerSecond + kMicrosecond), kPerSecond - 1);
    return Milliseconds{moment->seconds, static_cast<std::uint32_t>(rest)};
}

/// At least `width` digits.
void appendNumber(std::u16string& text, std::uint32_t number, std::uint32_t width) {
    std::array<char16_t, 10> digits;
    auto begin = digits.end();
    do {
        *--begin = static_cast<char16_t>(u'0' + number % 10);
        number /= 10;
    } while (number != 0);
    const auto count = static_cast<std::uint32_t>(digits.end() - begin);
    if (width > count) text.append(width - count, u'0');
    text.append(begin, digits.end());
}

void appendOffset(std::u16string& text, std::int32_t offset, bool isExtended) {
    constexpr std::uint32_t kPerHour = 3600;
    constexpr std::uint32_t kPerMinute = 60;
    const auto size = static_cast<std::uint32_t>(offset < 0 ? -offset : offset);
    text += offset < 0 ? u'-' : u'+';
    appendNumber(text, size / kPerHour, 2);
    if (isExtended) text += u':';
    appendNumber(text, size / kPerMinute % 60, 2);
    if (size % kPerMinute == 0) return;
    if (isExtended) text += u':';
    appendNumber(text, size % kPerMinute, 2);
}

/// The fields of one moment, on their way into a text.
class Layout {
public:
    Layout(const Milliseconds& moment, std::int32_t offset)
        : days_(flooredQuotient(moment.seconds + offset, kSecondsPerDay)),
          secondsOfDay_(static_cast<std::uint32_t>(moment.seconds + offset - days_ * kSecondsPerDay)),
          milliseconds_(moment.rest),
          offset_(offset) {}

    [[nodiscard]] bool isPlain() const noexcept { return days_ >= kFirstPlainDay && days_ < kEndOfPlainDays; }

    [[nodiscard]] std::u16string text(const DatePattern& pattern, const NSLocale& locale, const Names& names) const {
        const GregorianDay day = gregorianDay(days_);
        std::u16string text;
        constexpr std::size_t kLongEnough = 47;
        text.reserve(kLongEnough);
        for (const auto& [symbol, count, begin] : pattern.items) {
            switch (symbol) {
                case 0:
                    text.append(pattern.literals, begin, count);
                    break;
                case u'y':
                    appendYear(text, static_cast<std::uint32_t>(day.year), count);
                    break;
                case u'M':
                case u'L':
                    appendMonth(text, names.month(symbol, count, day.month), day.month, count);
                    break;
                case u'd':
                    appendNumber(text, day.day, count);
                    break;
                case u'E':
                    text += names.weekday(count, weekday());
                    break;
                case u'H':
                    appendNumber(text, secondsOfDay_ / 3600, count);
                    break;
                case u'm':
                    appendNumber(text, secondsOfDay_ / 60 % 60, count);
                    break;
                case u's':
                    appendNumber(text, secondsOfDay_ % 60, count);
                    break;
                case u'S':
                    appendFraction(text, count);
                    break;
                default:
                    appendZone(text, count, locale);
                    break;
            }
        }
        return text;
    }

private:
    static void appendYear(std::u16string& text, std::uint32_t year, std::uint32_t count) {
        appendNumber(text, count == 2 ? year % 100 : year, count);
    }
    static void appendMonth(std::u16string& text, std::u16string_view name, unsigned month, std::uint32_t count) {
        if (name.empty()) {
            appendNumber(text, month, count);
        } else {
            text += name;
        }
    }
    /// From the left: tenths, hundredths, thousandths, then zeros.
    void appendFraction(std::u16string& text, std::uint32_t count) const {
        constexpr std::uint32_t kDigits = 3;
        const std::uint32_t divisor = count == 1 ? 100 : count == 2 ? 10 : 1;
        appendNumber(text, milliseconds_ / divisor, std::min(count, kDigits));
        if (count > kDigits) text.append(count - kDigits, u'0');
    }
    void appendZone(std::u16string& text, std::uint32_t count, const NSLocale& locale) const {
        if (count == 4) {
            text += localizedOffset(locale, offset_);
        } else if (count == 5 && offset_ == 0) {
            text += u'Z';
        } else {
            appendOffset(text, offset_, count == 5);
        }
    }
    [[nodiscard]] std::size_t weekday() const {
        constexpr std::int64_t kThursday = 4;  // 1 January 1970.
        return static_cast<std::size_t>(((days_ + kThursday) % 7 + 7) % 7);
    }

    std::int64_t days_;
    std::uint32_t secondsOfDay_;
    std::uint32_t milliseconds_;
    std::int32_t offset_;
};

// ---- Reading numbers -----------------------------------------------------------------------------------------------

/// Takes `count` ASCII digits from the front of `text`.
std::optional<std::uint32_t> takeNumber(std::u16string_view& text, std::uint32_t count) {
    if (text.size() < count) return std::nullopt;
    std::uint32_t number = 0;
    for (const char16_t unit : text.substr(0, count)) {
        if (unit < u'0' || unit > u'9') return std::nullopt;
        number = number * 10 + static_cast<std::uint32_t>(unit - u'0');
    }
    text.remove_prefix(count);
    return number;
}

/// Takes "+0100" from the front of `text`, up to a day's length.
std::optional<std::int32_t> takeOffset(std::u16string_view& text) {
    if (text.empty() || (text.front() != u'+' && text.front() != u'-')) return std::nullopt;
    const std::int32_t sign = text.front() == u'-' ? -1 : 1;
    text.remove_prefix(1);
    const auto hours = takeNumber(text, 2);
    const auto minutes = hours ? takeNumber(text, 2) : std::nullopt;
    if (!minutes || *hours > 23 || *minutes > 59) return std::nullopt;
    return sign * static_cast<std::int32_t>(*hours * 3600 + *minutes * 60);
}

/// The fields of a text, as far as a pattern of fixed width has them.
struct Numbers {
    std::uint32_t year = 2000;
    std::uint32_t month = 1;
    std::uint32_t day = 1;
    std::uint32_t hour = 0;
    std::uint32_t minute = 0;
    std::uint32_t second = 0;
    std::uint32_t millisecond = 0;
    std::optional<std::int32_t> offset;

    std::uint32_t& field(char16_t symbol) {
        switch (symbol) {
            case u'y':
                return year;
            case u'M':
                return month;
            case u'd':
                return day;
            case u'H':
                return hour;
            case u'm':
                return minute;
            case u's':
                return second;
            default:
                return millisecond;
        }
    }
};

std::optional<Numbers> numbersOf(const DatePattern& pattern, std::u16string_view text) {
    Numbers numbers;
    for (const DatePattern::Item& item : pattern.items) {
        if (item.symbol == 0) {
            const auto literal = std::u16string_view(pattern.literals).substr(item.begin, item.count);
            if (!text.starts_with(literal)) return std::nullopt;
            text.remove_prefix(literal.size());
        } else if (item.symbol == u'Z') {
            numbers.offset = takeOffset(text);
            if (!numbers.offset) return std::nullopt;
        } else {
            const auto number = takeNumber(text, item.count);
            if (!number) return std::nullopt;
            numbers.field(item.symbol) = *number;
        }
    }
    return text.empty() ? std::optional(numbers) : std::nullopt;
}

/// Reads a text that is written exactly as its pattern writes it.
///
/// @return absent for any text about which there is more to say; ICU says it
std::optional<NSDate> dateOfFixedWidth(const DatePattern& pattern, std::u16string_view text,
                                       const TimeZoneRules& zone) {
    const auto numbers = numbersOf(pattern, text);
    if (!numbers || numbers->hour > 23 || numbers->minute > 59 || numbers->second > 59) return std::nullopt;
    const std::int64_t days = daysSince1970(numbers->year, numbers->month, numbers->day);
    const GregorianDay day = gregorianDay(days);
    const bool isDay = day.month == numbers->month && day.day == numbers->day;
    if (!isDay || days < kFirstPlainDay) return std::nullopt;
    const std::int64_t local = days * kSecondsPerDay + std::int64_t{numbers->hour} * 3600 +
                               std::int64_t{numbers->minute} * 60 + numbers->second;
    const std::int32_t offset = numbers->offset ? *numbers->offset : zone.offsetAtLocal(local);
    // What the clocks skip is no time.
    if (!numbers->offset && zone.offsetAt(local - offset) != offset) return std::nullopt;
    return calendarDate({local - offset, numbers->millisecond / 1000.0});
}

// ---- ICU's formatter -----------------------------------------------------------------------------------------------

/// Lengths of fields that have no separator between them are told by the number of their letters.
bool isNumber(const DatePattern::Item& item) {
    constexpr std::u16string_view kAlways = u"yYuQqdDFgkKHhmsSArwW";
    constexpr std::u16string_view kWhenShort = u"MLec";
    constexpr std::uint32_t kLong = 3;
    return item.symbol != 0 && (kAlways.find(item.symbol) != kAlways.npos ||
                                (kWhenShort.find(item.symbol) != kWhenShort.npos && item.count < kLong));
}

struct IcuFormat {
    IcuFormat(std::u16string_view pattern, const NSLocale& locale, const TimeZoneRules& zone)
        : format(alias(pattern), gregorianLocale(locale), status),
          calendar(zone.icuZone->clone(), gregorianLocale(locale), status) {
        if (U_FAILURE(status)) return;
        calendar.setLenient(false);
        calendar.setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
        calendar.clear();
        calendar.set(UCAL_YEAR, 2000);
        format.adoptTimeZone(zone.icuZone->clone());
        format.setLenient(false);
    }

    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format;
    icu::GregorianCalendar calendar;  ///< What is known of a date before it is read.
};

// ---- Templates -----------------------------------------------------------------------------------------------------

struct Template {
    const NSLocale& locale;
    std::u16string_view text;
};

/// A template that was asked for.
struct KnownTemplate {
    explicit KnownTemplate(const Template& from) : locale(from.locale), text(from.text) {}

    NSLocale locale;
    std::u16string text;

    friend bool operator==(const KnownTemplate& known, const Template& sought) {
        return known.text == sought.text && known.locale == sought.locale;
    }
};

std::u16string bestPattern(const Template& sought) {
    using Generator = std::unique_ptr<icu::DateTimePatternGenerator>;
    thread_local RecentValues<NSLocale, Generator> generators;
    UErrorCode status = U_ZERO_ERROR;
    const Generator& generator = generators.find(sought.locale, [&] {
        return Generator(icu::DateTimePatternGenerator::createInstance(gregorianLocale(sought.locale), status));
    });
    if (generator == nullptr) return {};
    const icu::UnicodeString pattern = generator->getBestPattern(alias(sought.text), status);
    return U_SUCCESS(status) ? std::u16string(view(pattern)) : std::u16string();
}

/// All that ICU's formatter is made of.
struct Parts {
    std::shared_ptr<const DatePattern> pattern;
    NSLocale locale;
    NSTimeZone zone;

    friend bool operator==(const Parts& left, const Parts& right) {
        return (left.pattern == right.pattern || left.pattern->text == right.pattern->text) &&
               left.locale == right.locale && left.zone == right.zone;
    }
};

/// @return valid until the next call on this thread
const IcuFormat& icuFormat(const Parts& parts) {
    thread_local RecentValues<Parts, std::unique_ptr<const IcuFormat>> recent;
    return *recent.find(parts, [&] {
        return std::make_unique<const IcuFormat>(parts.pattern->text, parts.locale, parts.zone.rules());
    });
}

std::u16string icuText(const Parts& parts, const Milliseconds& moment) {
    const IcuFormat& made = icuFormat(parts);
    UErrorCode status = made.status;
    if (U_FAILURE(status)) return {};
    icu::UnicodeString text;
    constexpr double kPerSecond = 1000;
    made.format.format(static_cast<double>(moment.seconds) * kPerSecond + moment.rest, text,
                       static_cast<icu::FieldPositionIterator*>(nullptr), status);
    return U_SUCCESS(status) ? std::u16string(view(text)) : std::u16string();
}

/// Whether the year that was read has four digits. ICU would work out all fields to tell it, which takes as long as
/// reading half of a text; far from the year 1000 the moment tells it, too.
bool isFourDigitYear(const icu::Calendar& read, UDate time) {
    constexpr double kSurely = 1000.0 * kSecondsPerDay * daysSince1970(1002, 1, 1);
    constexpr std::int32_t kFirst = 1000;
    UErrorCode status = U_ZERO_ERROR;
    return time >= kSurely || read.get(UCAL_EXTENDED_YEAR, status) >= kFirst;
}

/// Whether a text has the digits of the numbers that it begins with: of several without anything between them, all but
/// the first have as many as their letters. ICU reads such a number at the very beginning of a text from no digits at
/// all, so that "" was a date and "052018" had its day for a month, too.
bool hasDigitsOfAll(const DatePattern& pattern, std::u16string_view text) {
    const std::vector<DatePattern::Item>& items = pattern.items;
    const auto end = std::find_if_not(items.begin(), items.end(), isNumber);
    if (end - items.begin() < 2) return !text.empty();
    std::size_t needed = 1;
    for (auto item = std::next(items.begin()); item != end; ++item) needed += item->count;
    std::size_t digits = 0;
    for (std::size_t at = 0; at < text.size() && digits < needed;) {
        const auto [scalar, next] = scalarAt(text, at);
        const auto character = static_cast<UChar32>(scalar);
        // White space and marks of direction may stand between them.
        const bool isPassed = u_isUWhiteSpace(character) || u_hasBinaryProperty(character, UCHAR_PATTERN_WHITE_SPACE);
        if (u_isdigit(character)) {
            ++digits;
        } else if (!isPassed) {
            break;
        }
        at = next;
    }
    return digits == needed;
}

/// Whether the year was written with all the digits that the pattern asks for.
bool hasWholeYear(const Parts& parts, std::u16string_view text, const icu::Calendar& read, UDate time) {
    const std::vector<DatePattern::Item>& items = parts.pattern->items;
    constexpr std::uint32_t kShortYear = 2;
    const auto year = std::find_if(items.begin(), items.end(), [](const DatePattern::Item& item) {
        return item.symbol == u'y' && item.count > kShortYear;
    });
    // Behind another number the year has exactly its digits.
    if (year == items.end() || (year != items.begin() && isNumber(*std::prev(year)))) return true;
    const bool isBeforeNumber = std::next(year) != items.end() && isNumber(*std::next(year));
    if (!isBeforeNumber && isFourDigitYear(read, time)) return true;

    icu::ParsePosition position;
    if (year->begin > 0) {
        const std::u16string_view before = std::u16string_view(parts.pattern->text).substr(0, year->begin);
        const IcuFormat prefix(before, parts.locale, parts.zone.rules());
        if (U_FAILURE(prefix.status)) return false;
        const std::unique_ptr<icu::Calendar> calendar(prefix.calendar.clone());
        prefix.format.parse(alias(text), *calendar, position);
    }
    auto at = static_cast<std::size_t>(position.getIndex());
    while (at < text.size() && u_isUWhiteSpace(text[at])) ++at;
    constexpr std::int64_t kBeyondYears = 1'000'000'000;
    std::int64_t number = 0;
    std::uint32_t digits = 0;
    for (; at < text.size() && digits < year->count && u_isdigit(text[at]); ++at, ++digits) {
        number = std::min(number * 10 + u_charDigitValue(text[at]), kBeyondYears);
    }
    if (digits < year->count) return false;
    // In front of another number, ICU leaves digits to that one where the text is short of them, and fills up a year of
    // two with a century. It is another year then.
    UErrorCode status = U_ZERO_ERROR;
    return !isBeforeNumber || read.get(UCAL_EXTENDED_YEAR, status) == number;
}

}  // namespace

NSDateFormatter::NSDateFormatter()
    : pattern_([] {
          static const auto& kNone = *new std::shared_ptr<const DatePattern>(std::make_shared<const DatePattern>());
          return kNone;
      }()) {}

const std::u16string& NSDateFormatter::dateFormat() const noexcept { return pattern_->text; }

void NSDateFormatter::setDateFormat(std::u16string_view pattern) {
    if (pattern.size() <= kMaximumUnits) pattern_ = sharedPattern(pattern);
}

NSLocale NSDateFormatter::locale() const { return locale_ ? *locale_ : NSLocale::currentLocale(); }

NSTimeZone NSDateFormatter::timeZone() const { return timeZone_ ? *timeZone_ : NSTimeZone::localTimeZone(); }

std::optional<std::u16string> NSDateFormatter::dateFormatFromTemplate(std::u16string_view dateTemplate,
                                                                      const NSLocale& locale) {
    constexpr std::size_t kKept = 16;
    thread_local RecentValues<KnownTemplate, std::u16string, kKept> recent;
    if (dateTemplate.size() > kMaximumUnits) return std::nullopt;
    const Template sought{locale, dateTemplate};
    const std::u16string& pattern = recent.find(sought, [&] { return bestPattern(sought); });
    if (pattern.empty()) return std::nullopt;
    return pattern;
}

std::u16string NSDateFormatter::stringFromDate(const NSDate& date) const {
    const auto moment = milliseconds(date);
    if (!moment || pattern_->items.empty()) return {};
    if (pattern_->isPlain) {
        const NSLocale& locale = this->locale();
        const Names& names = namesOf(locale);
        const TimeZoneRules& zone = timeZone_ ? timeZone_->rules() : localTimeZoneRules();
        const Layout layout(*moment, zone.offsetAt(moment->seconds));
        if (names.hasAsciiDigits() && layout.isPlain()) return layout.text(*pattern_, locale, names);
    }
    return icuText({pattern_, locale(), timeZone()}, *moment);
}

std::optional<NSDate> NSDateFormatter::dateFromString(std::u16string_view text) const {
    if (pattern_->items.empty() || text.size() > kMaximumUnits) return std::nullopt;
    const Parts parts{pattern_, locale(), timeZone()};
    if (pattern_->isFixedWidth && namesOf(parts.locale).hasAsciiDigits()) {
        if (const auto date = dateOfFixedWidth(*pattern_, text, parts.zone.rules())) return date;
    }
    const IcuFormat& made = icuFormat(parts);
    if (U_FAILURE(made.status)) return std::nullopt;
    const std::unique_ptr<icu::Calendar> calendar(made.calendar.clone());
    icu::ParsePosition position;
    made.format.parse(alias(text), *calendar, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != static_cast<std::int32_t>(text.size())) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    const UDate time = calendar->getTime(status);
    if (U_FAILURE(status) || !hasDigitsOfAll(*pattern_, text) || !hasWholeYear(parts, text, *calendar, time)) {
        return std::nullopt;
    }
    constexpr double kPerSecond = 1000;
    const double seconds = std::floor(time / kPerSecond);
    return calendarDate({static_cast<std::int64_t>(seconds), (time - seconds * kPerSecond) / kPerSecond});
}

}  // namespace ZORPlatform
