// SPDX-License-Identifier: Apache-2.0
#pragma once

// The short code of failed network calls and of responses that could not be read.

#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORErrorMapper.h>

namespace ZORFoundation {

/// Numbers errors by their code plus 5123, which makes the platform's negative URL-loading codes positive. Pure.
class ZOR_EXPORT ZORUrlDomainErrorMapper final : public ZORErrorMapper {
public:
    /// `mapErrorCodeFromError:`: the code plus 5123 in decimal; -1001 (timed out) gives "4122". Positive codes are
    /// raised too, and a sum above the largest 64-bit integer goes on from the smallest.
    [[nodiscard]] std::u16string mapErrorCodeFromError(const NSError& error) const override;
};

}  // namespace ZORFoundation
