// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORMD5Hash.h>

#include <ZORPlatform/CommonCrypto/CommonDigest.h>
#include <ZORPlatform/Foundation/Hexadecimal.h>

#include <array>

namespace ZORFoundation::ZORMD5Hash {

std::u16string zor_md5(std::span<const std::uint8_t> data) {
    std::array<std::uint8_t, ZORPlatform::CC_MD5_DIGEST_LENGTH> digest{};
    ZORPlatform::CC_MD5(data, digest);
    return ZORPlatform::hexText(digest, ZORPlatform::HexDigits::kLowerCase);
}

}  // namespace ZORFoundation::ZORMD5Hash
