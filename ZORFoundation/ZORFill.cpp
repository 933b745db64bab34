// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORFill.h>

#include <algorithm>

namespace ZORFoundation::ZORFill {

std::vector<NSNull> zor_nullFilledArrayWithCount(std::int64_t count) {
    return std::vector<NSNull>(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
}

}  // namespace ZORFoundation::ZORFill
