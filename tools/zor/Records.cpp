// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/Records.h>

#include <tools/zor/FilterArguments.h>
#include <tools/zor/filter/Filter.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <span>
#include <string>

namespace zor {
namespace {

// Whatever the environment says, to the command or to a library, the same input gives the same output.
void ignoreEnvironment() { ::clearenv(); }

ExitCode filter(const Kind& kind, const Arguments& arguments, std::string_view emitted, Settle settle) {
    FilterOptions options = filterOptions(kind, arguments, emitted);
    if (settle != nullptr) settle(options.settings, arguments);
    ignoreEnvironment();
    if (::isatty(STDIN_FILENO) == 1) {
        writeAll(STDERR_FILENO, "zor: one record a line from the terminal; Ctrl-D ends\n");
    }
    return runFilter(options, STDIN_FILENO, STDOUT_FILENO);
}

}  // namespace

ExitCode answerRecords(const Kind& kind, const Arguments& arguments, Answer answer, std::string_view emitted,
                       Settle settle) {
    if (arguments.words.size() == 1) return filter(kind, arguments, emitted, settle);
    refuseFilterOptions(arguments);
    KindSettings settings = kindSettings(kind, arguments);
    if (settle != nullptr) settle(settings, arguments);
    ignoreEnvironment();
    return answerValues(kind, settings, answer, std::span(arguments.words).subspan(1));
}

void refuseFilterOptions(const Arguments& arguments) {
    const std::span<const Option> rows = filterOptionRows();
    for (const auto& given : arguments.options()) {
        const bool isFilters =
            std::any_of(rows.begin(), rows.end(), [&](const Option& row) { return row.name == given.first; });
        if (isFilters) {
            throw UsageError(std::string(given.first).append(": an option of the filter, which takes no value"));
        }
    }
}

}  // namespace zor
