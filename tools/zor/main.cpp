// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/Command.h>

// SIGPIPE, SIGINT and SIGTERM keep their default action on purpose: the command stops at once and its parent sees by
// which signal.
int main(int argc, char** argv) {
    const std::span<char* const> words(argv, static_cast<std::size_t>(argc));
    return static_cast<int>(zor::runCommandLine(words));
}
