// SPDX-License-Identifier: Apache-2.0
#pragma once

// The errors of the security service: a cipher's status in words, and a message of the service's own.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSError.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::NSError;

/// The domain of cipher failures; the code is the cipher's status.
inline constexpr std::u16string_view kCommonCryptoErrorDomain = u"CommonCryptoErrorDomain";

/// The domain of the security service's own failures; the code is always 0.
inline constexpr std::u16string_view kSecurityErrorDomain = u"ZorSecurityErrorDomain";

namespace CommonCryptoErrorDomain {

/// `errorWithCCCryptorStatus:`
///
/// Puts a cipher's status into words. The texts go through the application's translations
/// (`NSBundle::localizedStringForKey`), the English text being the key.
///
/// | status | description | failure reason |
/// |---|---|---|
/// | 0 | Success | none |
/// | -4300 | Parameter Error | Illegal parameter supplied to encryption/decryption algorithm |
/// | -4301 | Buffer Too Small | Insufficient buffer provided for specified operation |
/// | -4302 | Memory Failure | Failed to allocate memory |
/// | -4303 | Alignment Error | Input size to encryption algorithm was not aligned correctly |
/// | -4304 | Decode Error | Input data did not decode or decrypt correctly |
/// | -4305 | Unimplemented Function | Function not implemented for the current algorithm |
/// | any other | Unknown Error | none |
///
/// @return an error of `kCommonCryptoErrorDomain` whose code is the status, for status 0 too
///
/// Thread-safe.
[[nodiscard]] ZOR_EXPORT NSError errorWithCCCryptorStatus(std::int32_t status);

/// `securityErrorWith:`
///
/// @param message  required: `std::nullopt` stops the process; becomes the description
/// @return an error of `kSecurityErrorDomain`, code 0, without a failure reason
///
/// Pure.
[[nodiscard]] ZOR_EXPORT NSError securityErrorWith(std::optional<std::u16string_view> message);

}  // namespace CommonCryptoErrorDomain
}  // namespace ZORFoundation
