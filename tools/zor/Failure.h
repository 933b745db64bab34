// SPDX-License-Identifier: Apache-2.0
#pragma once

// How the command ends, and the failures that end it early. A message never holds a value from the data.

#include <stdexcept>
#include <string>
#include <utility>

namespace zor {

/// Exit codes that scripts and data engines build on.
enum class ExitCode : int {
    success = 0,
    someInvalid = 1,  ///< Values of the command line, or a filter that was asked to fail on invalid records.
    usage = 2,
    stream = 3,  ///< Reading, writing, or the framing of chunks.
    internal = 4,
    readerGone = 141,  ///< What a shell shows for SIGPIPE, where the parent process has that signal ignored.
};

/// The command line asks for what does not exist.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Input or output failed, or the input breaks its framing.
class StreamError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Nobody reads the output any more. Not worth a message.
struct ReaderGone {};

}  // namespace zor
