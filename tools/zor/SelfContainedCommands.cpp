// SPDX-License-Identifier: Apache-2.0
//
// The commands of zor-filter.

#include <tools/zor/CommandTables.h>

#include <array>

namespace zor {
namespace {

constexpr std::array kCommands{
    &kCheckCommand,
    &kFormatCommand,
    &kExplainCommand,
};

}  // namespace

std::span<const Command* const> commands() { return kCommands; }

}  // namespace zor
