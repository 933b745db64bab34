// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSTimeZone.h>

#include <ZORPlatform/Foundation/CalendarMomentInternal.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/HostEnvironmentInternal.h>
#include <ZORPlatform/Foundation/IcuTextInternal.h>
#include <ZORPlatform/Foundation/RecentValuesInternal.h>
#include <ZORPlatform/Foundation/TimeZoneRulesInternal.h>

#include <unicode/timezone.h>
#include <unicode/tztrans.h>
#include <unicode/ucal.h>

#include <algorithm>
#include <cmath>
#include <mutex>

namespace ZORPlatform {
namespace {

constexpr double kMillisecondsPerSecond = 1000;
constexpr std::int32_t kMillisecondsPerOffsetSecond = 1000;

double icuTime(std::int64_t seconds) { return static_cast<double>(seconds) * kMillisecondsPerSecond; }

std::int64_t seconds(UDate time) { return static_cast<std::int64_t>(std::floor(time / kMillisecondsPerSecond)); }

std::shared_ptr<const TimeZoneRules> readRules(std::u16string_view name) {
    // Far above any name; ICU counts in 32 bits.
    constexpr std::size_t kMaximumUnits = 128;
    if (name.size() > kMaximumUnits) return nullptr;
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(alias(name)));
    icu::UnicodeString known;
    if (zone == nullptr || zone->getID(known) == UNICODE_STRING_SIMPLE(UCAL_UNKNOWN_ZONE_ID)) return nullptr;
    // What ICU makes by name are all zones whose changes can be listed.
    const auto* basic = dynamic_cast<const icu::BasicTimeZone*>(zone.get());
    if (basic == nullptr) return nullptr;
    std::unique_ptr<const icu::BasicTimeZone> rules(basic->clone());
    // ICU works out a zone's changes when first asked for one, and threads that ask at that moment see half of them.
    icu::TimeZoneTransition first;
    rules->getNextTransition(0, false, first);
    return std::make_shared<const TimeZoneRules>(std::u16string(name), std::move(rules));
}

/// Rules by name for the whole process, so that what one thread has looked up serves the others.
std::shared_ptr<const TimeZoneRules> sharedRules(std::u16string_view name) {
    using Rules = std::shared_ptr<const TimeZoneRules>;
    static auto& mutex = *new std::mutex;
    static auto& recent = *new RecentValues<std::u16string, Rules, 16>;
    const std::scoped_lock lock(mutex);
    return recent.find(name, [&] { return readRules(name); });
}

NSTimeZone gmt() { return *NSTimeZone::timeZoneWithName(u"GMT"); }

/// The zone that a thread last found to be the user's, and when.
struct LocalZone {
    std::uint64_t revision;
    NSTimeZone zone;
};

const NSTimeZone& localZone() {
    thread_local std::optional<LocalZone> known;
    const std::uint64_t revision = hostEnvironmentRevision();
    if (!known || known->revision != revision) {
        const auto named = NSTimeZone::timeZoneWithName(HostEnvironment::timeZoneIdentifier());
        known.emplace(LocalZone{revision, named ? *named : gmt()});
    }
    return known->zone;
}

}  // namespace

/// The changes of the offset around a few years, which are enough to answer for every instant and local time in them.
struct TimeZoneRules::Span {
    struct Change {
        std::int64_t instant;
        std::int32_t offsetAfter;
        std::int64_t localEnd;  ///< From this local time on, the change has happened.
    };
    std::int32_t firstOffset = 0;
    std::vector<Change> changes;

    template <class HasHappened>
    [[nodiscard]] std::int32_t offset(HasHappened hasHappened) const {
        for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
            if (hasHappened(*change)) return change->offsetAfter;
        }
        return firstOffset;
    }
};

TimeZoneRules::~TimeZoneRules() {
    for (const auto& span : spans_) delete span.load(std::memory_order_acquire);
}

const TimeZoneRules::Span* TimeZoneRules::spanAt(std::int64_t seconds) const {
    const std::uint64_t index = static_cast<std::uint64_t>(seconds - kFirst) >> kSpanBits;
    if (index >= kSpans) return nullptr;
    const Span* span = spans_[index].load(std::memory_order_acquire);
    return span != nullptr ? span : makeSpan(index);
}

const TimeZoneRules::Span* TimeZoneRules::makeSpan(std::size_t index) const {
    // A local time is less than two days away from its instant, and no further from a change that decides about it.
    constexpr std::int64_t kMargin = 2 * kSecondsPerDay;
    const std::int64_t begin = kFirst + (static_cast<std::int64_t>(index) << kSpanBits) - kMargin;
    const std::int64_t end = begin + (std::int64_t{1} << kSpanBits) + 2 * kMargin;
    auto made = std::make_unique<Span>();
    made->firstOffset = icuOffsetAt(begin);
    std::int32_t before = made->firstOffset;
    icu::TimeZoneTransition transition;
    for (double at = icuTime(begin); icuZone->getNextTransition(at, false, transition); at = transition.getTime()) {
        const std::int64_t instant = seconds(transition.getTime());
        if (instant >= end) break;
        const std::int32_t after = icuOffsetAt(instant);
        if (after != before) made->changes.push_back({instant, after, instant + std::max(before, after)});
        before = after;
    }
    const Span* present = nullptr;
    if (spans_[index].compare_exchange_strong(present, made.get(), std::memory_order_acq_rel)) return made.release();
    return present;  // Another thread was faster.
}

std::int32_t TimeZoneRules::icuOffsetAt(std::int64_t instant) const {
    std::int32_t raw = 0;
    std::int32_t saved = 0;
    UErrorCode status = U_ZERO_ERROR;
    icuZone->getOffset(icuTime(instant), false, raw, saved, status);
    return U_SUCCESS(status) ? (raw + saved) / kMillisecondsPerOffsetSecond : 0;
}

std::int32_t TimeZoneRules::offsetAt(std::int64_t instant) const {
    const Span* span = spanAt(instant);
    if (span == nullptr) return icuOffsetAt(instant);
    return span->offset([&](const Span::Change& change) { return change.instant <= instant; });
}

std::int32_t TimeZoneRules::offsetAtLocal(std::int64_t local) const {
    if (const Span* span = spanAt(local)) {
        return span->offset([&](const Span::Change& change) { return change.localEnd <= local; });
    }
    std::int32_t raw = 0;
    std::int32_t saved = 0;
    UErrorCode status = U_ZERO_ERROR;
    icuZone->getOffsetFromLocal(icuTime(local), UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, raw, saved, status);
    return U_SUCCESS(status) ? (raw + saved) / kMillisecondsPerOffsetSecond : 0;
}

const TimeZoneRules& localTimeZoneRules() { return localZone().rules(); }

std::optional<NSTimeZone> NSTimeZone::timeZoneWithName(std::u16string_view name) {
    std::shared_ptr<const TimeZoneRules> rules = sharedRules(name);
    if (!rules) return std::nullopt;
    return NSTimeZone(std::move(rules));
}

NSTimeZone NSTimeZone::localTimeZone() { return localZone(); }

void NSTimeZone::resetSystemTimeZone() noexcept { reviseHostEnvironment(); }

const std::u16string& NSTimeZone::name() const noexcept { return rules_->name; }

std::int32_t NSTimeZone::secondsFromGMTForDate(const NSDate& date) const {
    const auto moment = calendarMoment(date);
    return moment ? rules_->offsetAt(moment->seconds) : 0;
}

std::optional<NSDate> NSTimeZone::nextDaylightSavingTimeTransitionAfterDate(const NSDate& date) const {
    const auto moment = calendarMoment(date);
    if (!moment) return std::nullopt;
    icu::TimeZoneTransition transition;
    std::int32_t before = rules_->offsetAt(moment->seconds);
    for (std::int64_t at = moment->seconds; rules_->icuZone->getNextTransition(icuTime(at), false, transition);) {
        at = seconds(transition.getTime());
        const std::int32_t after = rules_->offsetAt(at);
        if (after != before) return calendarDate({at, 0});
        before = after;
    }
    return std::nullopt;
}

}  // namespace ZORPlatform
