// SPDX-License-Identifier: Apache-2.0

#include <ZORFoundation/ZORFoundation.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <iostream>
#include <limits>

using namespace ZORFoundation;
using ZORPlatform::HostEnvironment;

int main() {
    const auto print = [](std::u16string_view text) { std::cout << utf8(text) << '\n'; };

    // Found out by itself on a user's machine; a test sets them.
    HostEnvironment::setTimeZoneIdentifier(u"Europe/Brussels");
    HostEnvironment::setNow(NSDate::since1970(1520256645));  // Monday 5 March 2018, 14:30:45.

    // A formatter is a value: keep it or make it anew, it costs the same.
    const NSDateFormatter slashes = ZORDateFormatters::zor_ddMMyyyyDateFormatterWithLocale(NSLocale(u"nl_BE"));
    const NSDate due = slashes.dateFromString(u"31/01/2018").value();
    print(slashes.stringFromDate(DateExtension::dateByAddingMonths(due, 1)));
    if (!slashes.dateFromString(u"31/04/2018")) print(u"no such day");

    // The locale's own order.
    print(DateExtension::longFormatWithLocale(NSDate::date(), u"nl_BE"));
    print(DateExtension::formatWithTemplate(NSDate::date(), u"yMMMd", u"en_US"));

    // On the wire.
    print(DateFormatterExtension::zor_iso8601DateFormatterWithMilliseconds().stringFromDate(NSDate::date()));

    constexpr std::int64_t kBeyond = std::numeric_limits<std::int64_t>::max();
    // Two families: this one answers "absent" where the calendar has no such date ...
    std::cout << ZORAdditions::zor_dateWithOffset(kBeyond).has_value() << '\n';
    // ... and this one takes that for a mistake of its caller, and stops the process.
    print(slashes.stringFromDate(DateExtension::setTime(due, u"25:00")));
}
