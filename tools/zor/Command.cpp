// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/Command.h>

#include <tools/zor/ArgumentParser.h>
#include <tools/zor/FilterArguments.h>
#include <tools/zor/Help.h>
#include <tools/zor/Kind.h>
#include <tools/zor/filter/Output.h>

#include <unistd.h>

#include <algorithm>
#include <new>

namespace zor {
namespace {

constexpr Option kHelp{"--help", "", "this text"};

ExitCode runProgramOptions(std::span<char* const> words) {
    const Arguments arguments = parseArguments(programOptions(), words);
    if (!arguments.words.empty()) throw UsageError("there is no command of that name; see zor --help");
    if (arguments.has("--version")) {
        writeAll(STDOUT_FILENO, versionText(arguments.has("--json")));
    } else if (arguments.has("--help")) {
        writeAll(STDOUT_FILENO, programHelp());
    } else {
        throw UsageError("a command is missing; see zor --help");
    }
    return ExitCode::success;
}

std::vector<Option> acceptedOptions(const Command& command) {
    std::vector<Option> options(command.options.begin(), command.options.end());
    options.push_back(kHelp);
    if (command.takesFilterOptions) {
        const std::span<const Option> rows = filterOptionRows();
        options.insert(options.end(), rows.begin(), rows.end());
    }
    if (!command.takesKindOptions) return options;
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) {
            for (const KindOption* option : kind.options) {
                const bool known = std::any_of(options.begin(), options.end(),
                                               [&](const Option& other) { return other.name == option->name; });
                if (!known) options.push_back({option->name, option->placeholder, option->help});
            }
        }
    }
    return options;
}

void requireAction(const Command& command, const Arguments& arguments) {
    const std::span<const Action> actions = command.actions;
    const auto isChosen = [&](const Action& action) {
        return !arguments.words.empty() && action.name == arguments.words.front();
    };
    if (actions.empty() || std::any_of(actions.begin(), actions.end(), isChosen)) return;
    std::string message = std::string(command.name).append(": ");
    for (std::size_t index = 0; index < actions.size(); ++index) {
        if (index > 0) message.append(index + 1 < actions.size() ? ", " : " or ");
        message.append(actions[index].name);
    }
    throw UsageError(message.append(" is needed"));
}

ExitCode runWords(std::span<char* const> words) {
    const Command* command = words.size() > 1 ? findCommand(words[1]) : nullptr;
    if (command == nullptr) return runProgramOptions(words.subspan(std::min<std::size_t>(words.size(), 1)));
    const std::vector<Option> options = acceptedOptions(*command);
    const Arguments arguments = parseArguments(options, words.subspan(2));
    if (arguments.has(kHelp.name)) {
        const Kind* kind =
            command->takesKindOptions && !arguments.words.empty() ? findKind(arguments.words.front()) : nullptr;
        writeAll(STDOUT_FILENO, kind == nullptr ? commandHelp(*command) : kindHelp(*command, *kind));
        return ExitCode::success;
    }
    requireAction(*command, arguments);
    return command->run(arguments);
}

ExitCode report(ExitCode code, std::string_view what) {
    try {
        writeAll(STDERR_FILENO, std::string(kProgramName).append(": ").append(what).append("\n"));
    } catch (...) {
        // Nowhere left to say it; the exit code does.
    }
    return code;
}

}  // namespace

std::optional<std::string_view> Arguments::value(std::string_view option) const {
    const auto found =
        std::find_if(options_.rbegin(), options_.rend(), [&](const auto& given) { return given.first == option; });
    if (found == options_.rend()) return std::nullopt;
    return found->second;
}

const Command* findCommand(std::string_view name) {
    const std::span<const Command* const> all = commands();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Command* c) { return c->name == name; });
    return found == all.end() ? nullptr : *found;
}

ExitCode runCommandLine(std::span<char* const> words) {
    try {
        return runWords(words);
    } catch (const UsageError& error) {
        return report(ExitCode::usage, error.what());
    } catch (const StreamError& error) {
        return report(ExitCode::stream, error.what());
    } catch (const ReaderGone&) {
        return ExitCode::readerGone;
    } catch (const std::bad_alloc&) {
        return report(ExitCode::internal, "no memory left");
    } catch (const std::exception&) {
        // The message of an exception that nobody foresaw may hold data.
        return report(ExitCode::internal, "internal error");
    }
}

}  // namespace zor
