// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/FilterArguments.h>
#include <tools/zor/Kind.h>
#include <tools/zor/Records.h>

namespace zor {
namespace {

const Kind& kindOf(const Arguments& arguments) {
    if (arguments.words.empty()) throw UsageError("a kind is missing; see zor --help");
    const Kind* kind = findKind(arguments.words.front());
    if (kind == nullptr) throw UsageError("there is no kind of that name; see zor --help");
    return *kind;
}

ExitCode run(const Arguments& arguments, Answer answer, std::string_view emitted) {
    const Kind& kind = kindOf(arguments);
    if (answer != Answer::format && kind.check == nullptr) {
        throw UsageError(std::string(kind.name) + ": can only be formatted");
    }
    return answerRecords(kind, arguments, answer, emitted);
}

ExitCode check(const Arguments& arguments) { return run(arguments, Answer::check, "verdict"); }
ExitCode format(const Arguments& arguments) { return run(arguments, Answer::format, "formatted"); }
ExitCode explain(const Arguments& arguments) { return run(arguments, Answer::explain, "verdict,reason,offset"); }

}  // namespace

const Command kCheckCommand{.name = "check",
                            .synopsis = "KIND [VALUE...]",
                            .help = "whether values are valid",
                            .options = filterOptionRows(),
                            .takesKindOptions = true,
                            .run = check};
const Command kFormatCommand{.name = "format",
                             .synopsis = "KIND [VALUE...]",
                             .help = "values as people read them",
                             .options = filterOptionRows(),
                             .takesKindOptions = true,
                             .run = format};
const Command kExplainCommand{.name = "explain",
                              .synopsis = "KIND [VALUE...]",
                              .help = "why values are not valid",
                              .options = filterOptionRows(),
                              .takesKindOptions = true,
                              .run = explain};

}  // namespace zor
