// SPDX-License-Identifier: Apache-2.0
#pragma once

// The commands of the program: one row a command, one source file a family of commands.

#include <tools/zor/Failure.h>

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zor {

struct Option {
    std::string_view name;         ///< With its two dashes.
    std::string_view placeholder;  ///< Empty for a flag.
    std::string_view help;
    /// Whether ZOR_ and the name in capitals, in the environment, stands in for an option that is not given.
    bool fromEnvironment = false;
};

/// What stands behind the name of the command.
class Arguments {
public:
    std::vector<std::string> words;

    void add(std::string_view option, std::string value) { options_.emplace_back(option, std::move(value)); }

    /// The last value given for the option, empty for a flag; nothing when it was not given.
    [[nodiscard]] std::optional<std::string_view> value(std::string_view option) const;
    [[nodiscard]] bool has(std::string_view option) const { return value(option).has_value(); }

    /// All options given, in order.
    [[nodiscard]] const std::vector<std::pair<std::string_view, std::string>>& options() const noexcept {
        return options_;
    }

private:
    std::vector<std::pair<std::string_view, std::string>> options_;
};

/// What a command does, where its first word chooses.
struct Action {
    std::string_view name;
    std::string_view help;
};

/// The actions that a table of more than names and help has.
template <typename Row, std::size_t count>
[[nodiscard]] constexpr std::array<Action, count> actionsOf(const std::array<Row, count>& rows) {
    std::array<Action, count> actions;
    for (std::size_t index = 0; index < count; ++index) actions[index] = {rows[index].name, rows[index].help};
    return actions;
}

struct Command {
    std::string_view name;
    std::string_view synopsis;  ///< What follows the name on a command line.
    std::string_view help;
    /// Where there are any, `run` is called with one of them as the first word only.
    std::span<const Action> actions = {};
    std::span<const Option> options = {};
    bool takesKindOptions = false;    ///< Options of kinds are options of the command.
    bool takesFilterOptions = false;  ///< Options of the filter are options of the command, beside its own.
    ExitCode (*run)(const Arguments& arguments);
};

/// The commands of this program, in the order in which help shows them.
[[nodiscard]] std::span<const Command* const> commands();

/// The command of that name, or null.
[[nodiscard]] const Command* findCommand(std::string_view name);

/// The name of the program in messages.
inline constexpr std::string_view kProgramName = "zor";

/// Runs the command line, `words[0]` being the program, and reports failures on standard error.
[[nodiscard]] ExitCode runCommandLine(std::span<char* const> words);

}  // namespace zor
