// SPDX-License-Identifier: Apache-2.0
#pragma once

// Which vector instructions the code of a codec may use. Chosen at run time; every codec has all levels that the
// compiler's target knows, and the portable one always.
//
// A function of the AVX2 level clears the upper halves of the registers itself before it goes on in portable code: g++
// leaves that out there, and on many processors every later instruction of the older kind would then cost some 70 ns.

#include <cstdint>

namespace ZORPlatform {

/// Each level includes those before it. The last one stands for AVX-512 with BW, VBMI and VBMI2.
enum class VectorLevel : std::uint8_t { kPortable, kSSSE3, kAVX2, kAVX512VBMI };

/// The highest level that this machine and its operating system offer. Thread-safe.
[[nodiscard]] VectorLevel machineVectorLevel() noexcept;

}  // namespace ZORPlatform
