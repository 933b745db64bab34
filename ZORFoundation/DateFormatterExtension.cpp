// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DateFormatterExtension.h>

#include <string_view>

namespace ZORFoundation::DateFormatterExtension {
namespace {

NSDateFormatter formatter(std::u16string_view pattern) {
    NSDateFormatter result;
    result.setDateFormat(pattern);
    return result;
}

}  // namespace

NSDateFormatter zor_iso8601DateFormatter() { return formatter(u"yyyy-MM-dd'T'HH:mm:ssZZZZ"); }

NSDateFormatter zor_iso8601DateFormatterWithMilliseconds() { return formatter(u"yyyy-MM-dd'T'HH:mm:ss.SSSZ"); }

}  // namespace ZORFoundation::DateFormatterExtension
