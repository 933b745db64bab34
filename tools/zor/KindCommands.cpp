// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/FilterArguments.h>
#include <tools/zor/Kind.h>
#include <tools/zor/SingleValues.h>
#include <tools/zor/filter/Filter.h>

#include <unistd.h>

#include <cstdlib>

namespace zor {
namespace {

const Kind& kindOf(const Arguments& arguments) {
    if (arguments.words.empty()) throw UsageError("a kind is missing; see zor --help");
    const Kind* kind = findKind(arguments.words.front());
    if (kind == nullptr) throw UsageError("there is no kind of that name; see zor --help");
    return *kind;
}

// Whatever the environment says, to the command or to a library, the same input gives the same output.
void ignoreEnvironment() { ::clearenv(); }

ExitCode filter(const Kind& kind, const Arguments& arguments, std::string_view emitted) {
    const FilterOptions options = filterOptions(kind, arguments, emitted);
    ignoreEnvironment();
    if (::isatty(STDIN_FILENO) == 1) {
        writeAll(STDERR_FILENO, "zor: one record a line from the terminal; Ctrl-D ends\n");
    }
    return runFilter(options, STDIN_FILENO, STDOUT_FILENO);
}

ExitCode run(const Arguments& arguments, Answer answer, std::string_view emitted) {
    const Kind& kind = kindOf(arguments);
    if (answer != Answer::format && kind.check == nullptr) {
        throw UsageError(std::string(kind.name) + ": can only be formatted");
    }
    if (arguments.words.size() == 1) return filter(kind, arguments, emitted);
    for (const auto& given : arguments.options()) {
        if (findKindOption(given.first) == nullptr) {
            throw UsageError(std::string(given.first) + ": an option of the filter, which takes no value");
        }
    }
    ignoreEnvironment();
    const std::span<const std::string> values(arguments.words.begin() + 1, arguments.words.end());
    return answerValues(kind, kindSettings(kind, arguments), answer, values);
}

ExitCode check(const Arguments& arguments) { return run(arguments, Answer::check, "verdict"); }
ExitCode format(const Arguments& arguments) { return run(arguments, Answer::format, "formatted"); }
ExitCode explain(const Arguments& arguments) { return run(arguments, Answer::explain, "verdict,reason,offset"); }

}  // namespace

const Command kCheckCommand{"check", "KIND [VALUE...]", "whether values are valid", filterOptionRows(), true, check};
const Command kFormatCommand{"format", "KIND [VALUE...]", "values as people read them", filterOptionRows(), true,
                             format};
const Command kExplainCommand{"explain", "KIND [VALUE...]", "why values are not valid", filterOptionRows(), true,
                              explain};

}  // namespace zor
