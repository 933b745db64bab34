// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/zor/Command.h>
#include <tools/zor/filter/FilterOptions.h>

#include <span>
#include <string_view>

namespace zor {

/// The options of the filter that do not belong to a kind.
[[nodiscard]] std::span<const Option> filterOptionRows();

/// What the command line and the environment ask of the filter.
///
/// @param emitted  result columns where none are asked for
/// @throws UsageError
[[nodiscard]] FilterOptions filterOptions(const Kind& kind, const Arguments& arguments, std::string_view emitted);

/// What the options of kinds say.
///
/// @throws UsageError for an option that the kind does not take, a value that means nothing, or options that do not go
///         together
[[nodiscard]] KindSettings kindSettings(const Kind& kind, const Arguments& arguments);

}  // namespace zor
