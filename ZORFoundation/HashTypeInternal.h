// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ZORFoundation/ZORHash.h>

#include <ZORPlatform/CommonCrypto/CommonDigest.h>

namespace ZORFoundation {

/// What a type stands for.
struct DigestKind {
    ZORPlatform::CCDigestAlgorithm algorithm;
    std::size_t length;
};

/// @throws NSException as `zor_hash:` does
[[nodiscard]] const DigestKind& recognizedDigest(ZORHashType type);

}  // namespace ZORFoundation
