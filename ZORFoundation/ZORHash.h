// SPDX-License-Identifier: Apache-2.0
#pragma once

// Digests of a text as lower-case hexadecimal. For the digest of bytes see ZORMD5Hash.
//
//     ZORHash::zor_sha256(u"abc");   // u"ba7816bf…15ad", 64 digits

#include <ZORPlatform/Export.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ZORFoundation {

/// Selects a digest. Any other number may be cast in and is not recognised.
enum class ZORHashType : std::uint64_t {
    MD5 = 1,
    SHA1 = 2,
    SHA224 = 3,
    SHA256 = 4,
    SHA384 = 5,
    SHA512 = 6,
};

/// Operations on texts, all pure. What is digested is the text's UTF-8 form up to, not including, its first U+0000; a
/// lone surrogate counts as U+FFFD. Throws NSException named "NSInternalInconsistencyException" where the system's
/// cryptography library is set up without the algorithm.
namespace ZORHash {

/// `zor_md5`: `zor_hash:` with MD5 (RFC 1321), 32 digits.
[[nodiscard]] ZOR_EXPORT std::u16string zor_md5(std::u16string_view text);

/// `zor_sha256`: `zor_hash:` with SHA-256 (FIPS 180-4), 64 digits.
[[nodiscard]] ZOR_EXPORT std::u16string zor_sha256(std::u16string_view text);

/// `zor_hash:`
///
/// The digest of `text` as lower-case hexadecimal digits, two a byte, without separators.
///
/// @throws NSException named "InvalidHashTypeException", its reason "Hash type [N] was not recognized", for a type
///         outside the enumeration; nothing is computed then
[[nodiscard]] ZOR_EXPORT std::u16string zor_hash(std::u16string_view text, ZORHashType type);

/// `hashLength:`
///
/// The length in bytes of the digests of a type: 16, 20, 28, 32, 48 or 64.
///
/// @throws NSException as `zor_hash:` does
[[nodiscard]] ZOR_EXPORT std::size_t hashLength(ZORHashType type);

/// `hexDigest:length:`
///
/// The bytes as lower-case hexadecimal digits, two a byte, in order. The upper-case form is `hexString()` of
/// DataExtension.
[[nodiscard]] ZOR_EXPORT std::u16string hexDigest(std::span<const std::uint8_t> bytes);

}  // namespace ZORHash
}  // namespace ZORFoundation
