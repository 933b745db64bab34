// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/zor/Command.h>

#include <span>

namespace zor {

/// Sorts `words` into options and the rest. "--" ends the options; a negative number is no option.
///
/// @throws UsageError
[[nodiscard]] Arguments parseArguments(std::span<const Option> options, std::span<char* const> words);

}  // namespace zor
