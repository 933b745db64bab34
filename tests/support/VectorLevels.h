// SPDX-License-Identifier: Apache-2.0
#pragma once

// The levels of vector code that a test can run here.

#include <ZORPlatform/Foundation/VectorLevel.h>

#include <vector>

namespace support {

inline std::vector<ZORPlatform::VectorLevel> vectorLevelsOfThisMachine() {
    using ZORPlatform::VectorLevel;
    std::vector<VectorLevel> levels = {VectorLevel::kPortable, VectorLevel::kSSSE3, VectorLevel::kAVX2,
                                       VectorLevel::kAVX512VBMI};
    std::erase_if(levels, [](VectorLevel level) { return level > ZORPlatform::machineVectorLevel(); });
    return levels;
}

}  // namespace support
