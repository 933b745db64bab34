// SPDX-License-Identifier: Apache-2.0
#pragma once

// What turns an error of one domain into the part of its short code that stands behind the domain's prefix.
//
//     class GatewayErrorMapper : public ZORErrorMapper {
//     public:
//         std::u16string mapErrorCodeFromError(const NSError& error) const override { return u"..."; }
//     };
//
//     ZORErrorHandler::registerErrorMapper<GatewayErrorMapper>(u"GW", u"be.example.gateway");

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSError.h>

#include <string>

namespace ZORFoundation {

using ZORPlatform::NSError;

/// A mapper of one error domain. Holds no state: an object is made for each error and dropped after it.
class ZOR_EXPORT ZORErrorMapper {
public:
    virtual ~ZORErrorMapper();

    /// `mapErrorCodeFromError:`
    ///
    /// The part of the short code that `error` itself decides.
    ///
    /// @param error  an error of the domain that the mapper is registered for
    [[nodiscard]] virtual std::u16string mapErrorCodeFromError(const NSError& error) const = 0;

protected:
    ZORErrorMapper() = default;
    ZORErrorMapper(const ZORErrorMapper&) = default;
    ZORErrorMapper& operator=(const ZORErrorMapper&) = default;
};

}  // namespace ZORFoundation
