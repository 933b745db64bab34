// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/VectorLevel.h>

namespace ZORPlatform {

VectorLevel machineVectorLevel() noexcept {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2") &&
        __builtin_cpu_supports("avx512bw")) {
        return VectorLevel::kAVX512VBMI;
    }
    if (__builtin_cpu_supports("avx2")) return VectorLevel::kAVX2;
    if (__builtin_cpu_supports("ssse3")) return VectorLevel::kSSSE3;
#endif
    return VectorLevel::kPortable;
}

}  // namespace ZORPlatform
