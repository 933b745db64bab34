// SPDX-License-Identifier: Apache-2.0
#pragma once

// Arrays that begin with nothing in every place.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSNull.h>

#include <cstdint>
#include <vector>

namespace ZORFoundation {

using ZORPlatform::NSNull;

namespace ZORFill {

/// `zor_nullFilledArrayWithCount:`
///
/// An array of `count` null objects; empty when `count` is 0 or less.
[[nodiscard]] ZOR_EXPORT std::vector<NSNull> zor_nullFilledArrayWithCount(std::int64_t count);

}  // namespace ZORFill
}  // namespace ZORFoundation
