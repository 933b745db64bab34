// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Security/PublicKeyInfoInternal.h>

#include <cstddef>

namespace ZORFoundation {
namespace {

constexpr std::uint8_t kSequence = 0x30;
constexpr std::uint8_t kBitString = 0x03;
constexpr std::uint8_t kNoUnusedBits = 0;
constexpr std::size_t kAlgorithmBytes = 15;

// Above this, a length's first byte counts the bytes that follow it.
constexpr std::uint8_t kLongForm = 0x80;

std::size_t behindLength(std::span<const std::uint8_t> bytes, std::size_t at) noexcept {
    const std::uint8_t first = bytes[at];
    return at + 1 + (first > kLongForm ? first - kLongForm : 0U);
}

}  // namespace

std::optional<std::span<const std::uint8_t>> rsaPublicKeyIn(std::span<const std::uint8_t> info) noexcept {
    if (info.size() < 2 || info[0] != kSequence) return std::nullopt;
    const std::size_t algorithm = behindLength(info, 1);
    if (algorithm >= info.size() || info[algorithm] != kSequence) return std::nullopt;
    const std::size_t bits = algorithm + kAlgorithmBytes;
    if (bits + 2 >= info.size() || info[bits] != kBitString) return std::nullopt;
    const std::size_t unused = behindLength(info, bits + 1);
    if (unused + 1 >= info.size() || info[unused] != kNoUnusedBits) return std::nullopt;
    return info.subspan(unused + 1);
}

}  // namespace ZORFoundation
