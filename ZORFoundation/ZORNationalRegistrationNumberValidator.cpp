// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORNationalRegistrationNumberValidator.h>

#include <ZORFoundation/CheckedDigitsInternal.h>

namespace ZORFoundation {
namespace {

constexpr std::size_t kRegistrationLength = 11;
constexpr std::size_t kDocumentLength = 12;

}  // namespace

bool ZORNationalRegistrationNumberValidator::isValidNationalRegistrationNumber(std::u16string_view text) noexcept {
    return isValidCheckedNumber<kRegistrationLength>(text, kComplementOfRemainder);
}

Explanation ZORNationalRegistrationNumberValidator::explainNationalRegistrationNumber(
    std::u16string_view text) noexcept {
    return explainCheckedNumber<kRegistrationLength>(text, kComplementOfRemainder);
}

bool ZORNationalRegistrationNumberValidator::isValidNationalDocumentNumber(std::u16string_view text) noexcept {
    return isValidCheckedNumber<kDocumentLength>(text, kPlainRemainder);
}

Explanation ZORNationalRegistrationNumberValidator::explainNationalDocumentNumber(std::u16string_view text) noexcept {
    return explainCheckedNumber<kDocumentLength>(text, kPlainRemainder);
}

}  // namespace ZORFoundation
