// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAccessNumberValidator.h>

#include <ZORFoundation/CheckedDigitsInternal.h>

namespace ZORFoundation {
namespace {

constexpr std::size_t kAccessNumberLength = 13;

}  // namespace

bool ZORAccessNumberValidator::isAccessNumberValid(std::u16string_view text) noexcept {
    return isValidCheckedNumber<kAccessNumberLength>(text, kRemainderNeverZero);
}

Explanation ZORAccessNumberValidator::explainAccessNumber(std::u16string_view text) noexcept {
    return explainCheckedNumber<kAccessNumberLength>(text, kRemainderNeverZero);
}

}  // namespace ZORFoundation
