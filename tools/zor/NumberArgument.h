// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

namespace zor {

/// The number that an option was given.
///
/// @throws UsageError unless `text` is nothing but a decimal number from `minimum` to `maximum`
[[nodiscard]] std::size_t numberArgument(std::string_view option, std::string_view text, std::size_t minimum,
                                         std::size_t maximum);

}  // namespace zor
