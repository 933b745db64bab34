// SPDX-License-Identifier: Apache-2.0
#pragma once

// A moment, as the platform keeps it.
//
//     const NSDate start = NSDate::sinceReferenceDate(541900800);   // 2018-03-05T00:00:00Z
//     start.timeIntervalSince1970();                                // 1520208000

#include <ZORPlatform/Export.h>

#include <chrono>
#include <compare>
#include <functional>

namespace ZORPlatform {

/// A moment: seconds since 2001-01-01T00:00:00Z without leap seconds, as a double. Compared and stored as that double,
/// because counting from 1970 would change the last bits of nearly half of all stored moments.
class ZOR_EXPORT NSDate {
public:
    /// 1970-01-01 to 2001-01-01, in seconds.
    static constexpr double kReferenceSince1970 = 978307200.0;

    /// The reference date itself.
    constexpr NSDate() noexcept = default;

    [[nodiscard]] static constexpr NSDate sinceReferenceDate(double seconds) noexcept {
        NSDate date;
        date.seconds_ = seconds;
        return date;
    }
    [[nodiscard]] static constexpr NSDate since1970(double seconds) noexcept {
        return sinceReferenceDate(seconds - kReferenceSince1970);
    }
    template <class Duration>
    explicit constexpr NSDate(std::chrono::sys_time<Duration> time) noexcept
        : seconds_(std::chrono::duration<double>(time.time_since_epoch() -
                                                 std::chrono::seconds(static_cast<long>(kReferenceSince1970)))
                       .count()) {}

    /// `date`: the present moment, as `HostEnvironment::now()` tells it: by the system's real-time clock unless a
    /// moment was set. Thread-safe.
    [[nodiscard]] static NSDate date() noexcept;

    [[nodiscard]] constexpr double timeIntervalSinceReferenceDate() const noexcept { return seconds_; }
    [[nodiscard]] constexpr double timeIntervalSince1970() const noexcept { return seconds_ + kReferenceSince1970; }

    /// Truncated towards the earlier nanosecond. Defined for years 1678 to 2261.
    [[nodiscard]] explicit operator std::chrono::sys_time<std::chrono::nanoseconds>() const noexcept;

    friend constexpr bool operator==(const NSDate&, const NSDate&) noexcept = default;
    friend constexpr std::partial_ordering operator<=>(const NSDate& left, const NSDate& right) noexcept {
        return left.seconds_ <=> right.seconds_;
    }

private:
    double seconds_ = 0;
};

}  // namespace ZORPlatform

/// @cond
template <>
struct std::hash<ZORPlatform::NSDate> {
    std::size_t operator()(const ZORPlatform::NSDate& date) const noexcept {
        return std::hash<double>{}(date.timeIntervalSinceReferenceDate());
    }
};
/// @endcond
