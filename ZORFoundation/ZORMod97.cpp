// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORMod97.h>

#include <ZORFoundation/PiecewiseRemainderInternal.h>

namespace ZORFoundation {

std::int32_t ZORMod97::modulo97(std::u16string_view text) noexcept {
    PiecewiseRemainder remainder;
    for (const char16_t unit : text) remainder.append(unit);
    return remainder.value();
}

}  // namespace ZORFoundation
