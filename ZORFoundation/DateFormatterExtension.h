// SPDX-License-Identifier: Apache-2.0
#pragma once

// The formatters of dates on the wire.
//
//     DateFormatterExtension::zor_iso8601DateFormatterWithMilliseconds().stringFromDate(date);
//     // u"2018-03-05T14:30:45.000+0100"

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDateFormatter.h>

namespace ZORFoundation {

using ZORPlatform::NSDateFormatter;

/// Each call gives a new formatter of which only the pattern is set: it follows the user's locale and time zone of the
/// moment. This is deliberate. In a locale whose digits are not "0" to "9" the texts are no ISO 8601. Thread-safe.
namespace DateFormatterExtension {

/// `zor_iso8601DateFormatter()`
///
/// "yyyy-MM-dd'T'HH:mm:ssZZZZ". Its four letters Z are the locale's form of the offset, "GMT+01:00" or "UTC+01:00", and
/// not that of ISO 8601: what reads these texts knows them so.
[[nodiscard]] ZOR_EXPORT NSDateFormatter zor_iso8601DateFormatter();

/// `zor_iso8601DateFormatterWithMilliseconds()`
///
/// "yyyy-MM-dd'T'HH:mm:ss.SSSZ", which ends in "+0100".
[[nodiscard]] ZOR_EXPORT NSDateFormatter zor_iso8601DateFormatterWithMilliseconds();

}  // namespace DateFormatterExtension
}  // namespace ZORFoundation
