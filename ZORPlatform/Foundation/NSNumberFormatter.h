// SPDX-License-Identifier: Apache-2.0
#pragma once

// Numbers as people of a locale write them, by a pattern: "#" an optional digit, "0" a required one, "," the grouping
// position, "." the position of the decimal mark (Unicode Technical Standard 35, part 3, Number Format Patterns).
//
//     NSNumberFormatter formatter;
//     formatter.setPositiveFormat(u"###,###,##0.00");
//     formatter.setGroupingSeparator(u"\u00A0");
//     formatter.setLocale(NSLocale(u"nl_BE"));
//     formatter.stringFromNumber(amount);            // u"1\u00A0234,50"
//     formatter.numberFromString(u"1\u00A0234,50");  // 1234.5

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDecimalNumber.h>
#include <ZORPlatform/Foundation/NSLocale.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

struct NumberPattern;

/// A number formatter, as a value: a copy is independent. What the caller has set stays until it is set again, except
/// that a pattern brings its own grouping and numbers of fraction digits, which replace those set before it. A change
/// of locale changes nothing that was set.
///
/// Asking one formatter from several threads at once is safe while none changes it. Formatting patterns made of "#",
/// "0", "," and "." allocates nothing but a result of more than seven units; what the locale's customs are is looked
/// up once a thread.
class ZOR_EXPORT NSNumberFormatter {
public:
    /// No pattern: no fraction digits, at least one integer digit, no grouping, the current locale.
    NSNumberFormatter();
    // No moves: a moved-from formatter would have no pattern.
    NSNumberFormatter(const NSNumberFormatter&) = default;
    NSNumberFormatter& operator=(const NSNumberFormatter&) = default;
    ~NSNumberFormatter() = default;

    /// `positiveFormat`: the pattern set last, "0" before.
    [[nodiscard]] const std::u16string& positiveFormat() const noexcept;
    /// `setPositiveFormat:`
    ///
    /// Negative numbers are written by the same pattern behind the locale's minus sign, unless the pattern holds a ";"
    /// and a form of theirs. Marks before the first "0" put no limit on the integer digits. Text that is no pattern
    /// changes nothing.
    void setPositiveFormat(std::u16string_view pattern);

    /// `locale`
    [[nodiscard]] const NSLocale& locale() const noexcept { return locale_; }
    /// `setLocale:`
    void setLocale(const NSLocale& locale) noexcept { locale_ = locale; }

    /// `groupingSize`: integer digits between the decimal mark and the first separator; 0 without grouping.
    [[nodiscard]] std::int32_t groupingSize() const noexcept { return groupingSize_; }
    /// `setGroupingSize:`
    ///
    /// Counts where the pattern holds a ",". 0 or less: no grouping.
    void setGroupingSize(std::int32_t size) noexcept;

    /// `groupingSeparator`: the one set, else the locale's.
    [[nodiscard]] std::u16string groupingSeparator() const;
    /// `setGroupingSeparator:`
    void setGroupingSeparator(std::u16string_view separator);

    /// `minimumFractionDigits`: never above the maximum.
    [[nodiscard]] std::int64_t minimumFractionDigits() const noexcept { return minimumFractionDigits_; }
    /// `maximumFractionDigits`
    [[nodiscard]] std::int64_t maximumFractionDigits() const noexcept { return maximumFractionDigits_; }
    /// `setMaximumFractionDigits:`
    ///
    /// Lowers the minimum to `count` where that is above it. Below 0 counts as 0.
    void setMaximumFractionDigits(std::int64_t count) noexcept;

    /// `stringFromNumber:`
    ///
    /// Rounds to the maximum of fraction digits, half to even on the decimal digits. A negative number that rounds to
    /// zero keeps its sign. Not-a-number gives the locale's sign for it, "NaN" in most.
    [[nodiscard]] std::u16string stringFromNumber(const NSDecimalNumber& number) const;

    /// `numberFromString:`
    ///
    /// Reads a number in the locale's writing, exactly as its digits say: any number of fraction digits, an exponent
    /// behind "E", digits of any script, and separators that look like the grouping separator where the pattern groups.
    /// Leading white space is skipped; then the text must be nothing but the number.
    ///
    /// @return absent when the text is no number or has more than 1024 units; not-a-number for the locale's sign for it
    ///         and for a number too large for a decimal one. One too small is zero, and digits beyond 38 are cut off
    [[nodiscard]] std::optional<NSDecimalNumber> numberFromString(std::u16string_view text) const;

    // The public part ends here.
private:
    struct Service;

    std::shared_ptr<const NumberPattern> pattern_;  // Never null.
    NSLocale locale_;
    std::optional<std::u16string> groupingSeparator_;
    std::int64_t minimumFractionDigits_;
    std::int64_t maximumFractionDigits_;
    std::int32_t groupingSize_;
};

}  // namespace ZORPlatform
