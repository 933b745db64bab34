// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORCommentValidator.h>

#include <ZORFoundation/CheckedDigitsInternal.h>

namespace ZORFoundation {
namespace {

constexpr std::size_t kCommentLength = 12;

}  // namespace

bool ZORCommentValidator::isValidStructuredComment(std::u16string_view text) noexcept {
    return isValidCheckedNumber<kCommentLength>(text, kRemainderNeverZero);
}

Explanation ZORCommentValidator::explainStructuredComment(std::u16string_view text) noexcept {
    return explainCheckedNumber<kCommentLength>(text, kRemainderNeverZero);
}

}  // namespace ZORFoundation
