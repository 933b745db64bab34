// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORUrlDomainErrorMapper.h>

#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <cstdint>

namespace ZORFoundation {
namespace {

const ZORPlatform::TypeRegistration<ZORUrlDomainErrorMapper, void, ZORErrorMapper> kRegistration(
    u"ZORUrlDomainErrorMapper");

constexpr std::uint64_t kOffset = 5123;

/// Unsigned, so that the largest codes wrap round as a 64-bit sum printed with "%ld" does.
constexpr std::int64_t raised(std::int64_t code) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(code) + kOffset);
}

static_assert(raised(-1001) == 4122);
static_assert(raised(INT64_MAX) == INT64_MIN + 5122);

}  // namespace

std::u16string ZORUrlDomainErrorMapper::mapErrorCodeFromError(const NSError& error) const {
    return ZORPlatform::decimalText(raised(error.code()));
}

}  // namespace ZORFoundation
