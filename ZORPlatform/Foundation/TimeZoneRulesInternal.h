// SPDX-License-Identifier: Apache-2.0
#pragma once

// The offsets of a time zone, asked by the instant or by the local time. Seconds are counted from 1970-01-01T00:00:00,
// of UTC or of the zone's own clocks.

#include <unicode/basictz.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZORPlatform {

/// Immutable as seen from outside, and shared between threads. ICU answers an offset in a fraction of a microsecond,
/// which is most of what a date costs; so the changes of a few years at a time are noted down when they are first asked
/// for, and an answer is a look into a short list.
struct TimeZoneRules {
public:
    TimeZoneRules(std::u16string zoneName, std::unique_ptr<const icu::BasicTimeZone> zone)
        : name(std::move(zoneName)), icuZone(std::move(zone)) {}
    ~TimeZoneRules();
    TimeZoneRules(const TimeZoneRules&) = delete;
    TimeZoneRules& operator=(const TimeZoneRules&) = delete;

    /// What local clocks are ahead of UTC at an instant.
    [[nodiscard]] std::int32_t offsetAt(std::int64_t instant) const;

    /// What local clocks are ahead of UTC when they show `local`. A time that they skip is counted by the offset before
    /// the change, so that it lies as far behind the change as it was skipped by; of a time that they show twice, the
    /// first counts.
    [[nodiscard]] std::int32_t offsetAtLocal(std::int64_t local) const;

    const std::u16string name;
    const std::unique_ptr<const icu::BasicTimeZone> icuZone;

private:
    struct Span;

    // Spans of about four years from 1901 to 2106; before and after, ICU is asked.
    static constexpr int kSpanBits = 27;
    static constexpr std::int64_t kFirst = -(std::int64_t{1} << 31);
    static constexpr std::size_t kSpans = 48;

    [[nodiscard]] const Span* spanAt(std::int64_t seconds) const;
    [[nodiscard]] const Span* makeSpan(std::size_t index) const;
    [[nodiscard]] std::int32_t icuOffsetAt(std::int64_t instant) const;

    mutable std::array<std::atomic<const Span*>, kSpans> spans_{};
};

/// `NSTimeZone::localTimeZone()` without a copy. Valid until the next call on this thread.
[[nodiscard]] const TimeZoneRules& localTimeZoneRules();

}  // namespace ZORPlatform
