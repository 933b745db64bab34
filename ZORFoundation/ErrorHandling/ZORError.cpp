// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ZORError.h>

#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <string>
#include <utility>

namespace ZORFoundation {

using ZORPlatform::NSLocalizedDescriptionKey;
using ZORPlatform::NSLocalizedFailureReasonErrorKey;

constinit const std::u16string_view ZorXUNErrorDomain = u"" ZORFOUNDATION_ERROR_DOMAIN_PREFIX u".frontend";
constinit const std::u16string_view ZorWebSealErrorDomain = u"" ZORFOUNDATION_ERROR_DOMAIN_PREFIX u".webseal";

namespace {

const ZORPlatform::TypeRegistration<ZORError, NSError> kZORError(u"ZORError");

constexpr std::int64_t kGeneralError = 0;
constexpr std::int64_t kUndefinedProperty = 1;
constexpr std::int64_t kInvalidType = 1;
constexpr std::int64_t kWebSealError = 3;

NSError errorWithReason(std::int64_t code, std::u16string_view description, std::u16string reason) {
    return ZORError::errorWithErrorCode(
        code, NSError::UserInfo{{std::u16string(NSLocalizedDescriptionKey), std::u16string(description)},
                                {std::u16string(NSLocalizedFailureReasonErrorKey), std::move(reason)}});
}

std::u16string_view nameOf(const std::optional<TypeDescriptor>& type) {
    return type ? type->name() : ZORPlatform::kAbsentObjectText;
}

}  // namespace

NSError ZORError::generalErrorWithMessage(std::optional<std::u16string_view> message) {
    if (!message) ZORPlatform::preconditionFailure("generalErrorWithMessage: the message is missing");
    return errorWithReason(kGeneralError, u"General error", std::u16string(*message));
}

NSError ZORError::undefinedPropertyErrorWithMessage(std::optional<std::u16string_view> message) {
    if (!message) ZORPlatform::preconditionFailure("undefinedPropertyErrorWithMessage: the message is missing");
    return errorWithReason(kUndefinedProperty, u"Undefined property", std::u16string(*message));
}

NSError ZORError::invalidTypeErrorWithType(std::optional<TypeDescriptor> type,
                                           std::optional<TypeDescriptor> expectedClass) {
    std::u16string reason = u"Returned result type [";
    reason += nameOf(type);
    reason += u"] did not match the expected type [";
    reason += nameOf(expectedClass);
    reason += u"]";
    return errorWithReason(kInvalidType, u"Invalid Type", std::move(reason));
}

NSError ZORError::errorWithErrorCode(std::int64_t code) { return errorWithErrorCode(code, std::nullopt); }

NSError ZORError::errorWithErrorCode(std::int64_t code, std::optional<NSError::UserInfo> userInfo) {
    return {ZorXUNErrorDomain, code, std::move(userInfo)};
}

NSError ZORError::xunErrorWithErrorCode(std::int64_t code) { return errorWithErrorCode(code); }

NSError ZORError::webSealErrorWithErrorCode(std::optional<std::u16string_view> code) {
    if (!code) ZORPlatform::preconditionFailure("webSealErrorWithErrorCode: the code text is missing");
    return {ZorWebSealErrorDomain, kWebSealError,
            NSError::UserInfo{{std::u16string(NSLocalizedDescriptionKey), std::u16string(*code)}}};
}

}  // namespace ZORFoundation
