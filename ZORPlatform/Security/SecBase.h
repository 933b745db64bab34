// SPDX-License-Identifier: Apache-2.0
#pragma once

// The statuses that all calls on keys, certificates and items share.

#include <cstdint>

namespace ZORPlatform {

using OSStatus = std::int32_t;

inline constexpr OSStatus errSecSuccess = 0;
inline constexpr OSStatus errSecUnimplemented = -4;
inline constexpr OSStatus errSecIO = -36;
/// A parameter is unusable: a buffer too small, an input too long, a key of the wrong kind.
inline constexpr OSStatus errSecParam = -50;
inline constexpr OSStatus errSecAllocate = -108;
inline constexpr OSStatus errSecNotAvailable = -25291;
inline constexpr OSStatus errSecAuthFailed = -25293;
inline constexpr OSStatus errSecDuplicateItem = -25299;
inline constexpr OSStatus errSecItemNotFound = -25300;
inline constexpr OSStatus errSecBufferTooSmall = -25301;
inline constexpr OSStatus errSecNoSuchAttr = -25303;
inline constexpr OSStatus errSecNoSuchClass = -25306;
inline constexpr OSStatus errSecInteractionNotAllowed = -25308;
inline constexpr OSStatus errSecDecode = -26275;
inline constexpr OSStatus errSecMissingEntitlement = -34018;

}  // namespace ZORPlatform
