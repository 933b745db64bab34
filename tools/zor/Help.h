// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the program says about itself, made from its tables.

#include <tools/zor/Command.h>
#include <tools/zor/Kind.h>

#include <string>

namespace zor {

/// `zor --help`: the commands and kinds.
[[nodiscard]] std::string programHelp();

/// `zor COMMAND --help`: the command's options; of those of kinds, the names.
[[nodiscard]] std::string commandHelp(const Command& command);

/// `zor COMMAND KIND --help`: what the kind is, and its options.
[[nodiscard]] std::string kindHelp(const Command& command, const Kind& kind);

/// `zor --version`: one line. With `asJson`: the version of the library and of each table of rules, with its date.
[[nodiscard]] std::string versionText(bool asJson);

/// Options of the program itself, when no command is named.
[[nodiscard]] std::span<const Option> programOptions();

}  // namespace zor
