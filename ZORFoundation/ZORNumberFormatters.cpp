// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORNumberFormatters.h>

#include <string_view>

namespace ZORFoundation::ZORNumberFormatters {
namespace {

NSNumberFormatter* withPattern(std::u16string_view pattern) {
    auto* formatter = new NSNumberFormatter;
    formatter->setPositiveFormat(pattern);
    return formatter;
}

NSNumberFormatter* withGroupsOfThree(std::u16string_view pattern) {
    NSNumberFormatter* formatter = withPattern(pattern);
    formatter->setGroupingSize(3);
    formatter->setGroupingSeparator(u"\u00A0");
    return formatter;
}

NSNumberFormatter copyFor(const NSLocale& locale, const NSNumberFormatter& prototype) {
    NSNumberFormatter formatter = prototype;
    formatter.setLocale(locale);
    return formatter;
}

}  // namespace

// The prototypes are never destroyed: threads of the application may still format while the process exits.

NSNumberFormatter zor_thousandsSeparatedAmountFormatterWithLocale(const NSLocale& locale) {
    static const NSNumberFormatter& prototype = *withGroupsOfThree(u"###,###,##0.00");
    return copyFor(locale, prototype);
}

NSNumberFormatter zor_thousandsSeparatedAmountLongFormatterWithLocale(const NSLocale& locale) {
    static const NSNumberFormatter& prototype = *withGroupsOfThree(u"###,###,##0.0000");
    return copyFor(locale, prototype);
}

NSNumberFormatter zor_twoDecimalsAmountFormatterWithLocale(const NSLocale& locale) {
    static const NSNumberFormatter& prototype = *withPattern(u"########0.00");
    return copyFor(locale, prototype);
}

}  // namespace ZORFoundation::ZORNumberFormatters
