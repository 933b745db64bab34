// SPDX-License-Identifier: Apache-2.0
#pragma once

// A time zone: how far its clocks are from UTC at any moment.
//
//     const auto brussels = NSTimeZone::timeZoneWithName(u"Europe/Brussels");
//     brussels->secondsFromGMTForDate(date);   // 3600 in winter, 7200 in summer

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDate.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ZORPlatform {

struct TimeZoneRules;

/// A time zone, as a value: copies share the rules. Immutable, so one may be read from several threads. The rules are
/// those of the tz database that comes with ICU.
class ZOR_EXPORT NSTimeZone {
public:
    // No moves: a moved-from zone would have no rules.
    NSTimeZone(const NSTimeZone&) noexcept = default;
    NSTimeZone& operator=(const NSTimeZone&) noexcept = default;
    ~NSTimeZone() = default;

    /// `timeZoneWithName:`
    ///
    /// @param name  an identifier of the tz database ("Europe/Brussels", "UTC"; letters' case counts) or an offset
    ///              ("GMT+02:00")
    /// @return absent when there is no such zone
    [[nodiscard]] static std::optional<NSTimeZone> timeZoneWithName(std::u16string_view name);

    /// `localTimeZone`: the user's, which `HostEnvironment` names; GMT when it names none that exists, as a rule in the
    /// form of POSIX does not ("CET-1CEST,M3.5.0,M10.5.0/3").
    [[nodiscard]] static NSTimeZone localTimeZone();

    /// `resetSystemTimeZone`
    ///
    /// What the machine says about its zone (TZ, /etc/localtime) is looked up at first use and then kept, until this is
    /// called or a setting of `HostEnvironment` changes.
    static void resetSystemTimeZone() noexcept;

    /// `name`: as it was given.
    [[nodiscard]] const std::u16string& name() const noexcept;

    /// `secondsFromGMTForDate:`
    ///
    /// What the zone's clocks show less what UTC's show, in seconds: positive east of Greenwich. 0 for a date that is
    /// not finite.
    [[nodiscard]] std::int32_t secondsFromGMTForDate(const NSDate& date) const;

    /// `nextDaylightSavingTimeTransitionAfterDate:`
    ///
    /// @return the first moment after `date` at which the offset changes, for whatever reason; absent when it never
    ///         does, and for a date that is not finite
    [[nodiscard]] std::optional<NSDate> nextDaylightSavingTimeTransitionAfterDate(const NSDate& date) const;

    /// The rules themselves, for the library's own services.
    [[nodiscard]] const TimeZoneRules& rules() const noexcept { return *rules_; }

    /// By name.
    friend bool operator==(const NSTimeZone& left, const NSTimeZone& right) noexcept {
        return left.rules_ == right.rules_ || left.name() == right.name();
    }

    // The public part ends here.
private:
    explicit NSTimeZone(std::shared_ptr<const TimeZoneRules> rules) noexcept : rules_(std::move(rules)) {}

    std::shared_ptr<const TimeZoneRules> rules_;  // Never null.
};

}  // namespace ZORPlatform
