// SPDX-License-Identifier: Apache-2.0
#pragma once

// Answers about values that stand on the command line, for people.

#include <tools/zor/Failure.h>
#include <tools/zor/Kind.h>

#include <span>
#include <string>
#include <string_view>

namespace zor {

enum class Answer { check, format, explain };

/// Writes one line for each value to standard output, in colour where that is a terminal.
///
/// @return success when all values are valid, someInvalid otherwise
[[nodiscard]] ExitCode answerValues(const Kind& kind, const KindSettings& settings, Answer answer,
                                    std::span<const std::string> values);

/// What an explanation says, as a sentence without its end: "found 15 characters, expected 16".
///
/// @param counted  one of what its lengths count
[[nodiscard]] std::string sentence(const ZORFoundation::Explanation& explanation, std::string_view counted);

}  // namespace zor
