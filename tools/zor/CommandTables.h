// SPDX-License-Identifier: Apache-2.0
#pragma once

// The commands that there are; Commands.cpp and SelfContainedCommands.cpp say which of them a program has.

#include <tools/zor/Command.h>

namespace zor {

// check, format and explain: with values, answers for people; without, the filter.
extern const Command kCheckCommand;
extern const Command kFormatCommand;
extern const Command kExplainCommand;

// Dates without a time of day: today's, and the filter for others.
extern const Command kDateCommand;

// The short code by which a user can name an error.
extern const Command kErrorCodeCommand;

// Data in, data out: digests, Base64 and the ciphers keyed by text.
extern const Command kHashCommand;
extern const Command kBase64Command;
extern const Command kEncryptCommand;
extern const Command kDecryptCommand;

// Secrets in the item store.
extern const Command kKeychainCommand;

// What the library does with whole texts: one record out for each line in.
extern const Command kTextCommand;

// Files: settings, watching, and what backups leave out.
extern const Command kSettingsCommand;
extern const Command kWatchCommand;
extern const Command kBackupExclusionCommand;

}  // namespace zor
