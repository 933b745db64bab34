// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/Security/PublicKeyInfoInternal.h>
#include <ZORPlatform/Security/SecKey.h>

#include <optional>
#include <vector>

using namespace ZORFoundation;
using fuzz::require;

namespace {

using Bytes = std::vector<std::uint8_t>;

// The walk, one test after the other, over bytes that know where they end.
std::optional<Bytes> literalRsaPublicKeyIn(const Bytes& b) {
    const auto n = static_cast<long>(b.size());
    const auto at = [&b](long index) { return static_cast<long>(b.at(static_cast<std::size_t>(index))); };
    if (n < 2 || at(0) != 0x30) return std::nullopt;
    long i = 2;
    if (at(1) > 0x80) i = at(1) - 0x80 + 2;
    if (!(i < n)) return std::nullopt;
    if (at(i) != 0x30) return std::nullopt;
    if (!(i + 15 < n - 2)) return std::nullopt;
    if (at(i + 15) != 0x03) return std::nullopt;
    const long m = at(i + 16);
    long j = i + 17;
    if (m > 0x80) j = i + 17 + (m - 0x80);
    if (!(j < n)) return std::nullopt;
    if (at(j) != 0) return std::nullopt;
    if (!(j + 1 < n)) return std::nullopt;
    return Bytes(b.begin() + j + 1, b.end());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes info(data, data + size);
    const auto found = rsaPublicKeyIn(info);
    const std::optional<Bytes> key = found ? std::optional<Bytes>(Bytes(found->begin(), found->end())) : std::nullopt;
    require(key == literalRsaPublicKeyIn(info));

    // What the bytes of a key are, the key gives back.
    for (const Bytes& bytes : {info, key.value_or(Bytes())}) {
        const std::optional<ZORPlatform::SecKey> made = ZORPlatform::SecKeyCreateWithData(bytes);
        if (made) require(ZORPlatform::SecKeyCopyExternalRepresentation(*made) == bytes);
    }
    return 0;
}
