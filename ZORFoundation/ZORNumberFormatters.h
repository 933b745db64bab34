// SPDX-License-Identifier: Apache-2.0
#pragma once

// The formatters that amounts are displayed with.
//
//     const auto formatter = ZORNumberFormatters::zor_thousandsSeparatedAmountFormatterWithLocale(NSLocale(u"nl_BE"));
//     formatter.stringFromNumber(amount);   // u"1\u00A0234,50"

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSLocale.h>
#include <ZORPlatform/Foundation/NSNumberFormatter.h>

namespace ZORFoundation {

using ZORPlatform::NSLocale;
using ZORPlatform::NSNumberFormatter;

/// Each call gives a new formatter, to be kept or not: a copy of one made once, it allocates nothing. Thread-safe. The
/// formatters round half to even, write the decimal mark and the minus sign of the locale, and at least one integer
/// digit.
namespace ZORNumberFormatters {

/// `zor_thousandsSeparatedAmountFormatterWithLocale:`
///
/// Two decimals, the integer digits in groups of three joined by U+00A0 in every locale: "###,###,##0.00".
[[nodiscard]] ZOR_EXPORT NSNumberFormatter zor_thousandsSeparatedAmountFormatterWithLocale(const NSLocale& locale);

/// `zor_thousandsSeparatedAmountLongFormatterWithLocale:`
///
/// As above with four decimals: "###,###,##0.0000".
[[nodiscard]] ZOR_EXPORT NSNumberFormatter zor_thousandsSeparatedAmountLongFormatterWithLocale(const NSLocale& locale);

/// `zor_twoDecimalsAmountFormatterWithLocale:`
///
/// Two decimals, no groups: "########0.00".
[[nodiscard]] ZOR_EXPORT NSNumberFormatter zor_twoDecimalsAmountFormatterWithLocale(const NSLocale& locale);

}  // namespace ZORNumberFormatters
}  // namespace ZORFoundation
