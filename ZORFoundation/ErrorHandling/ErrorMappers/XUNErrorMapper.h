// SPDX-License-Identifier: Apache-2.0
#pragma once

// The short code of the application's own errors.

#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORErrorMapper.h>

namespace ZORFoundation {

/// Numbers errors by their code. Pure.
class ZOR_EXPORT XUNErrorMapper final : public ZORErrorMapper {
public:
    /// `mapErrorCodeFromError:`: the code in decimal, with a minus sign where negative.
    [[nodiscard]] std::u16string mapErrorCodeFromError(const NSError& error) const override;
};

}  // namespace ZORFoundation
