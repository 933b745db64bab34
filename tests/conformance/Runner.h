// SPDX-License-Identifier: Apache-2.0
#pragma once

// Runs the cases of vector files, each in a child process: a case that stops, crashes or hangs is one failed line and
// the next one runs. A case that is meant to stop the process passes only when it does so with SIGABRT and after a
// message that begins with the operation's own name, so that neither a crash nor a sanitizer's report nor an
// assertion of another library is taken for a pass.

#include "Operations.h"

#include <filesystem>
#include <vector>

namespace conformance {

/// The cases that passed and failed.
struct Tally {
    std::size_t passed = 0;
    std::size_t failed = 0;
};

/// Runs every *.jsonl file of the directories and prints each failing line. A directory without such a file, and a file
/// without a line, count as one failure each.
///
/// @param secondsForACase  a case that takes longer has failed
[[nodiscard]] Tally run(const Operations& operations, const std::vector<std::filesystem::path>& directories,
                        unsigned secondsForACase = 60);

}  // namespace conformance
