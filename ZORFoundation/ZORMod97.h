// SPDX-License-Identifier: Apache-2.0
#pragma once

// The modulo-97 arithmetic under Belgian account numbers, payment comments and access numbers.

#include <ZORPlatform/Export.h>

#include <cstdint>
#include <string_view>

namespace ZORFoundation {

/// Remainders by 97 (ISO 7064, mod 97-10) of numbers too long for a machine word.
class ZORMod97 {
public:
    ZORMod97() = delete;

    /// `modulo97:`
    ///
    /// The remainder by 97 of the decimal number that `text` spells, taken in pieces of seven units: each piece is
    /// read behind the remainder so far, up to its first unit that is no digit.
    ///
    /// @param text  any text; absent counts as empty
    /// @return 0 to 96; negative only when `text` begins, after white space, with "-"; 0 for the empty text
    ///
    /// Pure. No allocation.
    [[nodiscard]] ZOR_EXPORT static std::int32_t modulo97(std::u16string_view text) noexcept;
};

}  // namespace ZORFoundation
