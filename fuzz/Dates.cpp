// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/DateAdditions.h>
#include <ZORFoundation/DateExtension.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSCalendar.h>
#include <ZORPlatform/Foundation/NSDateFormatter.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>

using namespace ZORFoundation;
using fuzz::require;
using ZORPlatform::HostEnvironment;
using ZORPlatform::NSCalendar;
using ZORPlatform::NSDateFormatter;
using ZORPlatform::NSLocale;

namespace {

constexpr std::array<const char*, 12> kLocales{"nl_BE", "fr_BE", "de_BE", "en_GB", "en_US",      "en_US_POSIX",
                                               "ar_EG", "th_TH", "ca_ES", "cs_CZ", "zh_Hant_TW", "xx"};
constexpr std::array<const char*, 8> kZones{"Europe/Brussels",   "UTC",          "Australia/Lord_Howe", "Pacific/Apia",
                                            "America/Sao_Paulo", "Asia/Kolkata", "Africa/Casablanca",   "GMT-03:30"};

/// What the first bytes of the input choose.
struct World {
    const char* locale;
    const char* zone;
    NSDate date;
    std::int32_t count;
};

class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    /// Zero once they are used up.
    std::uint32_t number(unsigned bytes) {
        std::uint32_t result = 0;
        for (; bytes > 0; --bytes) {
            result = result << 8 | (size_ > 0 ? *data_ : 0U);
            if (size_ > 0) {
                ++data_;
                --size_;
            }
        }
        return result;
    }
    [[nodiscard]] fuzz::Text rest() const { return {data_, size_}; }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

World choose(Bytes& bytes) {
    World world{};
    world.locale = kLocales[bytes.number(1) % kLocales.size()];
    world.zone = kZones[bytes.number(1) % kZones.size()];
    // Mostly seconds of the years 1900 to 2036; with the last bit, some thirty times further, and a fraction.
    const std::uint32_t far = bytes.number(1);
    const double seconds = static_cast<double>(static_cast<std::int32_t>(bytes.number(4)));
    world.date = NSDate::since1970(far % 2 == 0 ? seconds : seconds * 32 + far / 256.0);
    world.count = static_cast<std::int16_t>(bytes.number(2));
    return world;
}

icu::UnicodeString icuString(std::u16string_view text) { return {text.data(), static_cast<std::int32_t>(text.size())}; }

std::u16string view(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

icu::Locale icuLocale(const World& world) {
    icu::Locale locale(world.locale);
    UErrorCode status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", "gregorian", status);
    return locale;
}

std::u16string icuText(const World& world, std::u16string_view pattern, double milliseconds) {
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(icuString(pattern), icuLocale(world), status);
    format.adoptTimeZone(icu::TimeZone::createTimeZone(world.zone));
    icu::UnicodeString text;
    if (U_SUCCESS(status)) {
        format.format(milliseconds, text, static_cast<icu::FieldPositionIterator*>(nullptr), status);
    }
    return U_SUCCESS(status) ? view(text) : std::u16string();
}

bool isLetter(char16_t unit) { return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z'); }

/// What ICU reads, not leniently and from the beginning of 2000 on, when it reads the whole text.
std::optional<NSDate> icuDate(const World& world, std::u16string_view pattern, std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(icuString(pattern), icuLocale(world), status);
    icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone(world.zone), icuLocale(world), status);
    if (U_FAILURE(status)) return std::nullopt;
    format.adoptTimeZone(icu::TimeZone::createTimeZone(world.zone));
    format.setLenient(false);
    calendar.setLenient(false);
    calendar.setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    calendar.clear();
    calendar.set(UCAL_YEAR, 2000);
    icu::ParsePosition position;
    format.parse(icuString(text), calendar, position);
    const double time = calendar.getTime(status);
    const bool isWhole = position.getErrorIndex() < 0 && position.getIndex() == static_cast<std::int32_t>(text.size());
    if (!isWhole || U_FAILURE(status)) return std::nullopt;
    const double seconds = std::floor(time / 1000);
    return NSDate::sinceReferenceDate(seconds - NSDate::kReferenceSince1970 + (time - seconds * 1000) / 1000);
}

NSDate wholeSecond(const NSDate& date) { return NSDate::since1970(std::floor(date.timeIntervalSince1970())); }

void requireLawsOfPattern(const World& world, std::u16string_view pattern) {
    NSDateFormatter formatter;
    formatter.setDateFormat(pattern);
    const NSDate date = wholeSecond(world.date);
    require(formatter.stringFromDate(date) ==
            icuText(world, formatter.dateFormat(), date.timeIntervalSince1970() * 1000));
    // A kept formatter and a new one agree, and so does the text that is read with another's pattern in between.
    NSDateFormatter other;
    other.setDateFormat(u"dd/MM/yyyy");
    (void)other.stringFromDate(date);
    require(formatter.stringFromDate(world.date) == NSDateFormatter(formatter).stringFromDate(world.date));
}

void requireLawsOfReading(const World& world, std::u16string_view pattern, std::u16string_view text) {
    NSDateFormatter formatter;
    formatter.setDateFormat(pattern);
    const std::optional<NSDate> read = formatter.dateFromString(text);
    require(read == NSDateFormatter(formatter).dateFromString(text));
    if (read) (void)formatter.stringFromDate(*read);
    // The whole text is read, and no field takes that character.
    constexpr char16_t kNoField = u'\uFFFF';
    require(pattern.find(kNoField) != pattern.npos || !formatter.dateFromString(std::u16string(text) + kNoField));

    // Nothing is read that ICU does not read so; only texts with too few digits, of a year or of numbers that stand
    // together at the beginning, are not read where it reads them. A pattern that asks for nothing finds no date.
    constexpr std::size_t kMaximumUnits = 1024;
    const bool asksForNothing = pattern.empty() || pattern == u"'";
    if (pattern.size() <= kMaximumUnits && text.size() <= kMaximumUnits && !asksForNothing) {
        const std::optional<NSDate> expected = icuDate(world, pattern, text);
        const std::size_t second = std::min(pattern.find_first_not_of(pattern.front()), pattern.size() - 1);
        const bool beginsWithFields = isLetter(pattern.front()) && isLetter(pattern[second]);
        const bool maySeeTooFew = text.empty() || beginsWithFields || pattern.find(u"yyy") != pattern.npos;
        require(read == expected || (!read && maySeeTooFew));
    }

    // All that a moment is made of, its offset from UTC included, reads back as that moment. Before 1900, zones count
    // their offsets in seconds that ICU does not write.
    const NSDate whole = wholeSecond(world.date);
    if (whole < NSDate::since1970(-2208988800) || whole > NSDate::since1970(4102444800)) return;
    formatter.setDateFormat(u"yyyy-MM-dd'T'HH:mm:ss.SSSZ");
    require(formatter.dateFromString(formatter.stringFromDate(whole)) == whole);
}

void requireLawsOfTemplate(const World& world, std::u16string_view dateTemplate) {
    const NSLocale locale(ZORPlatform::utf16(world.locale));
    const auto pattern = NSDateFormatter::dateFormatFromTemplate(dateTemplate, locale);
    UErrorCode status = U_ZERO_ERROR;
    // To make one takes a hundred times as long as all else.
    static std::map<std::string, std::unique_ptr<icu::DateTimePatternGenerator>> generators;
    std::unique_ptr<icu::DateTimePatternGenerator>& generator = generators[world.locale];
    if (!generator) generator.reset(icu::DateTimePatternGenerator::createInstance(icuLocale(world), status));
    const icu::UnicodeString best = generator->getBestPattern(icuString(dateTemplate), status);
    constexpr std::size_t kMaximumUnits = 1024;
    if (dateTemplate.size() <= kMaximumUnits) require(pattern.value_or(u"") == (U_SUCCESS(status) ? view(best) : u""));

    NSDateFormatter formatter;
    if (pattern) formatter.setDateFormat(*pattern);
    formatter.setLocale(locale);
    require(DateExtension::formatWithTemplate(world.date, dateTemplate, locale.localeIdentifier()) ==
            formatter.stringFromDate(world.date));
}

void requireLawsOfCalendar(const World& world) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    const NSDate date = world.date;
    const auto all = static_cast<NSCalendarUnit>(0x26FC) | NSCalendarUnit::era;
    const NSDateComponents fields = calendar.components(all, date);
    // Only the second of two equal local times is not found again.
    const NSDate rebuilt = calendar.dateFromComponents(fields).value();
    require(rebuilt <= date && calendar.components(all, rebuilt) == fields);

    const NSDate midnight = ZORAdditions::zor_dateOnly(date).value();
    require(DateExtension::isEqualToDateIgnoringTime(date, midnight));
    require(DateExtension::dateAt(date, 0, 0) == midnight);
    // The era is no field of a day: before Christ, that of the other one comes back.
    require(fields.era == 0 || (ZORAdditions::zor_dateOnly(midnight) == midnight && midnight <= date));

    const NSDate moved = DateExtension::dateByAddingDays(date, world.count);
    require(DateExtension::dateBySubtractingDays(date, -world.count) == moved);
    require(calendar.components(NSCalendarUnit::day, date, moved).day == world.count);
    const NSDate later = DateExtension::dateByAddingYears(date, world.count % 500);
    require(ZORAdditions::zor_yearsFromDate(date, later) == world.count % 500);
    require(DateExtension::isLaterThanDate(date, moved) != DateExtension::isEarlierThanDate(date, moved));
}

/// Whether a text is one that stops the process, found in another way.
void requireLawsOfTime(const NSDate& date, std::u16string_view text) {
    std::array<std::int64_t, 2> numbers{};
    std::size_t found = 0;
    for (std::size_t at = 0; at < text.size() && found < numbers.size(); ++at) {
        if (text[at] == u':') continue;
        const std::string piece = ZORPlatform::utf8(text.substr(at, text.find(u':', at) - at));
        at += piece.size();
        constexpr std::size_t kLong = 9;
        const bool hasSign = piece[0] == '+' || piece[0] == '-';
        if (piece.size() > kLong || piece.find_first_not_of("0123456789", hasSign ? 1 : 0) != piece.npos ||
            piece.size() == (hasSign ? 1U : 0U)) {
            return;
        }
        numbers[found++] = std::strtoll(piece.c_str(), nullptr, 10);
    }
    if (found < numbers.size()) return;
    const NSDate set = DateExtension::setTime(date, text);
    const NSDate at = DateExtension::dateAt(date, numbers[0], numbers[1]);
    const double seconds = set.timeIntervalSince1970() - at.timeIntervalSince1970();
    // The seconds may be those in which the clocks are changed.
    require((seconds >= 0 && seconds < 60) || std::abs(seconds) < 90000);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const World world = choose(bytes);
    HostEnvironment::setLocaleIdentifier(ZORPlatform::utf16(world.locale));
    HostEnvironment::setTimeZoneIdentifier(ZORPlatform::utf16(world.zone));
    const fuzz::Text whole = bytes.rest();
    const std::size_t bar = std::min(whole.view().find(u'|'), whole.view().size());
    const std::u16string_view pattern = whole.view().substr(0, bar);
    const std::u16string_view text = whole.view().substr(std::min(bar + 1, whole.view().size()));
    requireLawsOfPattern(world, pattern);
    requireLawsOfReading(world, pattern, text);
    requireLawsOfTemplate(world, pattern);
    requireLawsOfCalendar(world);
    requireLawsOfTime(world.date, text);
    return 0;
}
