// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the program says about itself, made from its tables.

#include <tools/zor/Command.h>

#include <string>

namespace zor {

/// `zor --help`: the commands and kinds.
[[nodiscard]] std::string programHelp();

/// `zor COMMAND --help`: the command's options; those of kinds in a line of their own.
[[nodiscard]] std::string commandHelp(const Command& command);

/// `zor --version`: one line. With `asJson`: the version of the library and of each table of rules, with its date.
[[nodiscard]] std::string versionText(bool asJson);

/// Options of the program itself, when no command is named.
[[nodiscard]] std::span<const Option> programOptions();

}  // namespace zor
