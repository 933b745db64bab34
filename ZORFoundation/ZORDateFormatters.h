// SPDX-License-Identifier: Apache-2.0
#pragma once

// The formatters of fixed patterns that dates are displayed and read with. Those for the wire are in
// DateFormatterExtension.h; displays in the order of a locale are in DateExtension.h.
//
//     const auto formatter = ZORDateFormatters::zor_fullDateFormatterWithLocale(NSLocale(u"nl_BE"));
//     formatter.stringFromDate(date);   // u"maandag 05 maart 2018"

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDateFormatter.h>
#include <ZORPlatform/Foundation/NSLocale.h>

namespace ZORFoundation {

using ZORPlatform::NSDateFormatter;
using ZORPlatform::NSLocale;

/// Each call gives a new formatter, to be kept or not: a copy of one made once, it allocates nothing. Pattern and
/// locale are set, nothing else, so it works in the user's time zone of the moment. Thread-safe.
namespace ZORDateFormatters {

/// `zor_ddMMyyyyDateFormatterWithLocale:`
///
/// "dd/MM/yyyy"
[[nodiscard]] ZOR_EXPORT NSDateFormatter zor_ddMMyyyyDateFormatterWithLocale(const NSLocale& locale);

/// `zor_ddMMyyyyConstrainedDateFormatterWithLocale:`
///
/// "ddMMyyyy"
[[nodiscard]] ZOR_EXPORT NSDateFormatter zor_ddMMyyyyConstrainedDateFormatterWithLocale(const NSLocale& locale);

/// `zor_dateWithTimeWithLocale:`
///
/// "dd/MM/yyyy HH:mm:ss zzz", which ends in the short name of the time zone: "CET", or "GMT+1" in locales that do not
/// know it.
[[nodiscard]] ZOR_EXPORT NSDateFormatter zor_dateWithTimeWithLocale(const NSLocale& locale);

/// `zor_fullDateFormatterWithLocale:`
///
/// "EEEE dd MMMM yyyy", as with both arguments of the last operation left at what they mostly are.
[[nodiscard]] ZOR_EXPORT NSDateFormatter zor_fullDateFormatterWithLocale(const NSLocale& locale);

/// `zor_fullDateFormatterWithLocale:includesDayOfWeek:`
///
/// "EEEE dd MMMM yyyy", or "dd MMMM yyyy" without the day of the week.
[[nodiscard]] ZOR_EXPORT NSDateFormatter zor_fullDateFormatterWithLocale(const NSLocale& locale,
                                                                         bool includesDayOfWeek);

/// `zor_fullDateFormatterWithLocale:includesDayOfWeek:excludeYear:`
///
/// "EEEE dd MMMM yyyy" without what is not wanted: "EEEE dd MMMM", "dd MMMM yyyy" or "dd MMMM".
[[nodiscard]] ZOR_EXPORT NSDateFormatter zor_fullDateFormatterWithLocale(const NSLocale& locale, bool includesDayOfWeek,
                                                                         bool excludeYear);

}  // namespace ZORDateFormatters
}  // namespace ZORFoundation
