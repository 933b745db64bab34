// SPDX-License-Identifier: Apache-2.0
#pragma once

// Telephone links from phone numbers as people write them.
//
//     ZORPhoneNumberFormatter::formatPhoneNumber(u"+32 (0)2 123.45.67");   // "tel://+32021234567"

#include <ZORPlatform/Export.h>

#include <string>
#include <string_view>

namespace ZORFoundation {

/// Makes telephone links. All operations are pure and may be called from any thread.
class ZORPhoneNumberFormatter {
public:
    ZORPhoneNumberFormatter() = delete;

    /// `formatPhoneNumber(_:)`
    ///
    /// Writes "tel://" followed by the number without "(", ")", "-", U+0020 and ".". Nothing else is taken out or
    /// tested: "+", "/" and U+00A0 stay, and the number need not be one.
    ///
    /// @param number  any spelling; absent counts as empty, which gives "tel://"
    [[nodiscard]] ZOR_EXPORT static std::u16string formatPhoneNumber(std::u16string_view number);

    /// `formatPhoneNumber(_:token:)`
    ///
    /// As `formatPhoneNumber(number)`, followed directly by `token`.
    ///
    /// @param token  for example ";ext=12"; written as it is
    [[nodiscard]] ZOR_EXPORT static std::u16string formatPhoneNumber(std::u16string_view number,
                                                                     std::u16string_view token);
};

}  // namespace ZORFoundation
