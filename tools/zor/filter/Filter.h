// SPDX-License-Identifier: Apache-2.0
#pragma once

// The filter: one record out for each line in, in order, in constant memory.

#include <tools/zor/Failure.h>
#include <tools/zor/filter/FilterOptions.h>

namespace zor {

/// Reads `input` to its end and writes to `output`. Statistics go to standard error where asked for.
///
/// @return success, or someInvalid where the options ask for that
/// @throws StreamError, ReaderGone
[[nodiscard]] ExitCode runFilter(const FilterOptions& options, int input, int output);

}  // namespace zor
