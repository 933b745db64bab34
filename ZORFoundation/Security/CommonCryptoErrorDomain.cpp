// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Security/CommonCryptoErrorDomain.h>

#include <ZORPlatform/Foundation/NSBundle.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <array>
#include <string>
#include <utility>

namespace ZORFoundation::CommonCryptoErrorDomain {
namespace {

using ZORPlatform::NSLocalizedDescriptionKey;
using ZORPlatform::NSLocalizedFailureReasonErrorKey;

struct StatusTexts {
    std::u16string_view description;
    std::u16string_view reason;  ///< Empty when there is none.
};

constexpr std::int32_t kLastKnownFailure = -4305;

/// From kLastKnownFailure upwards to -4300.
constexpr std::array<StatusTexts, 6> kFailures{{
    {u"Unimplemented Function", u"Function not implemented for the current algorithm"},
    {u"Decode Error", u"Input data did not decode or decrypt correctly"},
    {u"Alignment Error", u"Input size to encryption algorithm was not aligned correctly"},
    {u"Memory Failure", u"Failed to allocate memory"},
    {u"Buffer Too Small", u"Insufficient buffer provided for specified operation"},
    {u"Parameter Error", u"Illegal parameter supplied to encryption/decryption algorithm"},
}};

constexpr StatusTexts textsOf(std::int32_t status) noexcept {
    const std::int64_t index = std::int64_t{status} - kLastKnownFailure;
    if (index >= 0 && std::cmp_less(index, kFailures.size())) return kFailures[static_cast<std::size_t>(index)];
    return {status == 0 ? u"Success" : u"Unknown Error", {}};
}

static_assert(textsOf(-4300).description == u"Parameter Error");
static_assert(textsOf(-4304).description == u"Decode Error");
static_assert(textsOf(-4306).description == u"Unknown Error");

}  // namespace

NSError errorWithCCCryptorStatus(std::int32_t status) {
    const ZORPlatform::NSBundle bundle = ZORPlatform::NSBundle::mainBundle();
    const StatusTexts texts = textsOf(status);
    NSError::UserInfo userInfo;
    userInfo.emplace(NSLocalizedDescriptionKey, bundle.localizedStringForKey(texts.description));
    if (!texts.reason.empty()) {
        userInfo.emplace(NSLocalizedFailureReasonErrorKey, bundle.localizedStringForKey(texts.reason));
    }
    return {kCommonCryptoErrorDomain, status, std::move(userInfo)};
}

NSError securityErrorWith(std::optional<std::u16string_view> message) {
    if (!message) ZORPlatform::preconditionFailure("securityErrorWith: the message is missing");
    return {kSecurityErrorDomain, 0,
            NSError::UserInfo{{std::u16string(NSLocalizedDescriptionKey), std::u16string(*message)}}};
}

}  // namespace ZORFoundation::CommonCryptoErrorDomain
