// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORDateFormatters.h>

#include <string_view>

namespace ZORFoundation::ZORDateFormatters {
namespace {

NSDateFormatter formatter(std::u16string_view pattern, const NSLocale& locale) {
    NSDateFormatter result;
    result.setDateFormat(pattern);
    result.setLocale(locale);
    return result;
}

}  // namespace

NSDateFormatter zor_ddMMyyyyDateFormatterWithLocale(const NSLocale& locale) { return formatter(u"dd/MM/yyyy", locale); }

NSDateFormatter zor_ddMMyyyyConstrainedDateFormatterWithLocale(const NSLocale& locale) {
    return formatter(u"ddMMyyyy", locale);
}

NSDateFormatter zor_dateWithTimeWithLocale(const NSLocale& locale) {
    return formatter(u"dd/MM/yyyy HH:mm:ss zzz", locale);
}

NSDateFormatter zor_fullDateFormatterWithLocale(const NSLocale& locale) {
    return zor_fullDateFormatterWithLocale(locale, /*includesDayOfWeek=*/true);
}

NSDateFormatter zor_fullDateFormatterWithLocale(const NSLocale& locale, bool includesDayOfWeek) {
    return zor_fullDateFormatterWithLocale(locale, includesDayOfWeek, /*excludeYear=*/false);
}

NSDateFormatter zor_fullDateFormatterWithLocale(const NSLocale& locale, bool includesDayOfWeek, bool excludeYear) {
    if (includesDayOfWeek) return formatter(excludeYear ? u"EEEE dd MMMM" : u"EEEE dd MMMM yyyy", locale);
    return formatter(excludeYear ? u"dd MMMM" : u"dd MMMM yyyy", locale);
}

}  // namespace ZORFoundation::ZORDateFormatters
