// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <array>

namespace zor {
namespace {

constexpr std::array kCommands{
    &kCheckCommand,     &kFormatCommand, &kExplainCommand,         &kDateCommand,     &kTextCommand,
    &kErrorCodeCommand, &kHashCommand,   &kBase64Command,          &kEncryptCommand,  &kDecryptCommand,
    &kSettingsCommand,  &kWatchCommand,  &kBackupExclusionCommand, &kKeychainCommand,
};

}  // namespace

std::span<const Command* const> commands() { return kCommands; }

}  // namespace zor
