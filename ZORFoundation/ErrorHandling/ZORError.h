// SPDX-License-Identifier: Apache-2.0
#pragma once

// The errors that the library and the application around it build: a fixed code and title for each kind, and the
// explanation given by the caller.
//
//     NSError error = ZORError::generalErrorWithMessage(u"no connection");
//     error.code();                     // 0
//     error.localizedDescription();     // "General error"
//     error.localizedFailureReason();   // "no connection"

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSError.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::NSError;
using ZORPlatform::NSLocalizedDescriptionKey;
using ZORPlatform::NSLocalizedFailureReasonErrorKey;
using ZORPlatform::NSURLErrorDomain;
using ZORPlatform::TypeDescriptor;

/// The domain of the application's own errors: a reverse-DNS name whose last label is "frontend". The prefix is
/// chosen when the library is built (CMake's ZORFOUNDATION_ERROR_DOMAIN_PREFIX).
ZOR_EXPORT extern const std::u16string_view ZorXUNErrorDomain;

/// The domain of the errors that the WebSeal gateway reports: the same prefix, the last label "webseal".
ZOR_EXPORT extern const std::u16string_view ZorWebSealErrorDomain;

/// Builds errors. No instance is made: every operation gives a plain `NSError`.
///
/// A required text that is `std::nullopt` stops the process with a message that names the operation; an empty text is
/// taken as it is. All operations are pure.
class ZORError : public NSError {
public:
    ZORError() = delete;

    /// `generalErrorWithMessage:`
    ///
    /// @param message  required; becomes the failure reason
    /// @return `ZorXUNErrorDomain`, code 0, description "General error"
    [[nodiscard]] ZOR_EXPORT static NSError generalErrorWithMessage(std::optional<std::u16string_view> message);

    /// `undefinedPropertyErrorWithMessage:`
    ///
    /// @param message  required; becomes the failure reason
    /// @return `ZorXUNErrorDomain`, code 1, description "Undefined property"
    [[nodiscard]] ZOR_EXPORT static NSError undefinedPropertyErrorWithMessage(
        std::optional<std::u16string_view> message);

    /// `invalidTypeErrorWithType:expectedClass:`
    ///
    /// Shares code 1 with the undefined-property error on purpose: the description tells them apart.
    ///
    /// @param type           the type that came; absent is written "(null)"
    /// @param expectedClass  the type that was wanted; absent is written "(null)"
    /// @return `ZorXUNErrorDomain`, code 1, description "Invalid Type", failure reason "Returned result type [TYPE] did
    ///         not match the expected type [EXPECTED]" with the types' names
    [[nodiscard]] ZOR_EXPORT static NSError invalidTypeErrorWithType(std::optional<TypeDescriptor> type,
                                                                     std::optional<TypeDescriptor> expectedClass);

    /// `errorWithErrorCode:`: `ZorXUNErrorDomain`, any code, no user information.
    [[nodiscard]] ZOR_EXPORT static NSError errorWithErrorCode(std::int64_t code);

    /// `errorWithErrorCode:userInfo:`: `ZorXUNErrorDomain`, any code, the user information as given. Absent counts as
    /// empty.
    [[nodiscard]] ZOR_EXPORT static NSError errorWithErrorCode(std::int64_t code,
                                                               std::optional<NSError::UserInfo> userInfo);

    /// `xunErrorWithErrorCode:`: another name of `errorWithErrorCode:`.
    [[nodiscard]] ZOR_EXPORT static NSError xunErrorWithErrorCode(std::int64_t code);

    /// `webSealErrorWithErrorCode:`
    ///
    /// @param code  required; the gateway's error code, kept as the description. `ZORWebSealErrorMapper` reads it there
    /// @return `ZorWebSealErrorDomain`, code 3, no failure reason
    [[nodiscard]] ZOR_EXPORT static NSError webSealErrorWithErrorCode(std::optional<std::u16string_view> code);
};

}  // namespace ZORFoundation
