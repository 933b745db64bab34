// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORWebSealErrorMapper.h>

#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

namespace ZORFoundation {
namespace {

const ZORPlatform::TypeRegistration<ZORWebSealErrorMapper, void, ZORErrorMapper> kRegistration(
    u"ZORWebSealErrorMapper");

}  // namespace

std::u16string ZORWebSealErrorMapper::mapErrorCodeFromError(const NSError& error) const {
    const auto description = error.userInfo().find(ZORPlatform::NSLocalizedDescriptionKey);
    return description == error.userInfo().end() ? std::u16string(ZORPlatform::kAbsentObjectText) : description->second;
}

}  // namespace ZORFoundation
