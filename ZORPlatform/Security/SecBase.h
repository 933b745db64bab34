// SPDX-License-Identifier: Apache-2.0
#pragma once

// The statuses that all calls on keys, certificates and items share.

#include <cstdint>

namespace ZORPlatform {

using OSStatus = std::int32_t;

inline constexpr OSStatus errSecSuccess = 0;
/// A parameter is unusable: a buffer too small, an input too long, a key of the wrong kind.
inline constexpr OSStatus errSecParam = -50;
inline constexpr OSStatus errSecAllocate = -108;

}  // namespace ZORPlatform
