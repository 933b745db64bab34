// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ErrorMappers/XUNErrorMapper.h>

#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

namespace ZORFoundation {
namespace {

const ZORPlatform::TypeRegistration<XUNErrorMapper, void, ZORErrorMapper> kRegistration(u"XUNErrorMapper");

}  // namespace

std::u16string XUNErrorMapper::mapErrorCodeFromError(const NSError& error) const {
    return ZORPlatform::decimalText(error.code());
}

}  // namespace ZORFoundation
