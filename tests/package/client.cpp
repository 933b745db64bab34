// SPDX-License-Identifier: Apache-2.0
//
// A program of somebody else's, built against the installed library only.

#include <ZORFoundation/ErrorHandling/ZORError.h>
#include <ZORFoundation/ErrorHandling/ZORErrorHandler.h>
#include <ZORFoundation/StringMeasuring.h>
#include <ZORFoundation/ZORMod97.h>
#include <ZORPlatform/Foundation/Error.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <cstdio>
#include <string>

namespace {

class ClientErrorMapper : public ZORFoundation::ZORErrorMapper {
public:
    std::u16string mapErrorCodeFromError(const ZORFoundation::NSError&) const override { return u"client"; }
};

// The configured domains come from the library itself, and a mapper of the client's works inside it.
bool mapsErrors() {
    using namespace ZORFoundation;
    const NSError error = ZORError::errorWithErrorCode(17);
    if (error.domain() != ZorXUNErrorDomain || ZORErrorHandler::mappedErrorCodeFromError(error) != u"GEN17")
        return false;
    ZORErrorHandler::registerErrorMapper<ClientErrorMapper>(u"XY-", ZorWebSealErrorDomain);
    return ZORErrorHandler::mappedErrorCodeFromError(ZORError::webSealErrorWithErrorCode(u"1")) == u"XY-client";
}

}  // namespace

int main() {
    const ZORPlatform::Utf16Buffer<64> digits("539007547034");
    if (ZORFoundation::ZORMod97::modulo97(digits.view().substr(0, 10)) != 34) return 1;
    if (!mapsErrors()) return 1;

    // Exceptions keep their type across the boundary of the shared library.
    try {
        throw ZORPlatform::ThrownError(ZORPlatform::NSError(u"client", 7));
    } catch (const ZORPlatform::ThrownError& thrown) {
        if (thrown.error().as<ZORPlatform::NSError>()->code() != 7) return 1;
    }
    // The module that measures text is found beside the library.
    const ZORFoundation::Font font{u"DejaVu Sans", 12};
    if (ZORFoundation::StringExtension::calculatedSize(u"Hello", font).width <= 0) return 1;

    std::puts("the installed library works");
    return 0;
}
