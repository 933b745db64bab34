// SPDX-License-Identifier: Apache-2.0
#pragma once

// The short code of errors that the WebSeal gateway reports.

#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORErrorMapper.h>

namespace ZORFoundation {

/// Passes on the code text that `ZORError::webSealErrorWithErrorCode` keeps as the description. Pure.
class ZOR_EXPORT ZORWebSealErrorMapper final : public ZORErrorMapper {
public:
    /// `mapErrorCodeFromError:`: the description, or "(null)" when the error has none.
    [[nodiscard]] std::u16string mapErrorCodeFromError(const NSError& error) const override;
};

}  // namespace ZORFoundation
