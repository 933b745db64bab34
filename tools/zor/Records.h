// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the commands on records have in common: with values on the command line answers for people, without any the
// filter.

#include <tools/zor/Command.h>
#include <tools/zor/Kind.h>
#include <tools/zor/SingleValues.h>

#include <string_view>

namespace zor {

/// Completes what the options of a kind say with what only the machine knows.
using Settle = void (*)(KindSettings& settings, const Arguments& arguments);

/// Answers about the values that follow the first word of the command line or, where none do, about the records of
/// standard input.
///
/// @param emitted  the filter's result columns where none are asked for
/// @throws UsageError
[[nodiscard]] ExitCode answerRecords(const Kind& kind, const Arguments& arguments, Answer answer,
                                     std::string_view emitted, Settle settle = nullptr);

/// @throws UsageError for an option of the filter
void refuseFilterOptions(const Arguments& arguments);

}  // namespace zor
