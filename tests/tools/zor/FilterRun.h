// SPDX-License-Identifier: Apache-2.0
#pragma once

// The filter inside the test's own process, on a small kind whose answers are easy to see.

#include <tools/zor/filter/FilterOptions.h>

#include <string>
#include <string_view>
#include <vector>

namespace zor::testing {

/// Texts that begin with "v" are valid, unless "v" is followed by another. Formats to "<text>", normalises to
/// "=text".
[[nodiscard]] const Kind& testKind();

/// What `zor check` would make of these options, on the test kind.
[[nodiscard]] FilterOptions testOptions(const std::vector<std::string>& options);

struct FilterResult {
    std::string out;
    int exitCode = 0;
};

/// Runs the whole filter over `input`.
[[nodiscard]] FilterResult runTestFilter(const FilterOptions& options, std::string_view input);

/// The output only.
[[nodiscard]] std::string filtered(const std::vector<std::string>& options, std::string_view input);

}  // namespace zor::testing
