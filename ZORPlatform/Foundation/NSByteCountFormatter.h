// SPDX-License-Identifier: Apache-2.0
#pragma once

// The platform's way to show how many bytes something has: a number in one unit, decimal multiples of 1000, without
// the unit's name.
//
//     NSByteCountFormatter formatter;
//     formatter.allowedUnits = NSByteCountFormatterUnits::useMB;
//     formatter.stringFromByteCount(1060000);   // u"1.1"

#include <ZORPlatform/Export.h>

#include <cstdint>
#include <string>

namespace ZORPlatform {

/// Units that a formatter may choose from, to be united with "|". Raw values as the platform has them.
enum class NSByteCountFormatterUnits : std::uint32_t {
    useDefault = 0,  ///< Any unit.
    useBytes = 1U << 0,
    useKB = 1U << 1,
    useMB = 1U << 2,
    useGB = 1U << 3,
    useTB = 1U << 4,
    usePB = 1U << 5,
    useEB = 1U << 6,
    useZB = 1U << 7,
    useYBOrHigher = 0xFFU << 8,
    useAll = 0xFFFF,
};

[[nodiscard]] constexpr NSByteCountFormatterUnits operator|(NSByteCountFormatterUnits left,
                                                            NSByteCountFormatterUnits right) noexcept {
    return static_cast<NSByteCountFormatterUnits>(static_cast<std::uint32_t>(left) | static_cast<std::uint32_t>(right));
}

/// The formatter with the count style "file", adaptive, with the unit's name left out. A value; one object may be
/// asked from several threads.
class ZOR_EXPORT NSByteCountFormatter {
public:
    /// `allowedUnits`: of several, the largest that the count reaches is taken, else the smallest.
    NSByteCountFormatterUnits allowedUnits = NSByteCountFormatterUnits::useDefault;

    /// `stringFromByteCount:`
    ///
    /// The count in the unit, rounded half to even: whole bytes and kilobytes, one fraction digit for megabytes, two
    /// from gigabytes up, without trailing zeros. Groups of three are separated by ",", the decimal mark is ".", the
    /// digits are ASCII, in any locale.
    [[nodiscard]] std::u16string stringFromByteCount(std::int64_t byteCount) const;
};

}  // namespace ZORPlatform
