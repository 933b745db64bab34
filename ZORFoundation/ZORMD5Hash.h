// SPDX-License-Identifier: Apache-2.0
#pragma once

// The MD5 of bytes. For digests of a text see ZORHash.

#include <ZORPlatform/Export.h>

#include <cstdint>
#include <span>
#include <string>

/// Operations on byte buffers.
namespace ZORFoundation::ZORMD5Hash {

/// `zor_md5`
///
/// The MD5 (RFC 1321) of `data`, zero bytes included, as 32 lower-case hexadecimal digits. Pure.
///
/// @throws NSException named "NSInternalInconsistencyException" where the system's cryptography library is set up
///         without MD5
[[nodiscard]] ZOR_EXPORT std::u16string zor_md5(std::span<const std::uint8_t> data);

}  // namespace ZORFoundation::ZORMD5Hash
