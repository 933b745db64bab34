// SPDX-License-Identifier: Apache-2.0
#pragma once

// Reads vector files. Their format is described in tests/vectors/FORMAT.md.

#include "Value.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace conformance {

/// What a case says about the world around the operation.
struct Environment {
    std::string timeZone = "UTC";
    std::string locale = "en_US_POSIX";
    std::optional<double> now;  ///< Seconds since 1970; absent: the real clock.
};

/// The operation raises an exception.
struct ExpectedException {
    std::u16string name;
    std::optional<std::u16string> reason;
};

/// The process stops.
struct ExpectedStop {};

struct Case {
    std::string operation;
    Value::List arguments;
    std::variant<Value, ExpectedException, ExpectedStop> outcome = Value(std::nullopt);
    /// What the error out-parameter holds afterwards; absent when the case does not say.
    std::optional<Value> error;
    Environment environment;
};

/// Why a line is no case.
struct Malformed {
    std::string reason;
};

/// One case from one line.
[[nodiscard]] std::variant<Case, Malformed> parseCase(std::string_view line);

/// The cases of a file, element n from line n + 1. Empty when the file is empty or cannot be read.
[[nodiscard]] std::vector<std::variant<Case, Malformed>> readVectorFile(const std::filesystem::path& file);

/// The *.jsonl files directly in `directory`, sorted by name. Empty when there are none or it cannot be read.
[[nodiscard]] std::vector<std::filesystem::path> vectorFiles(const std::filesystem::path& directory);

}  // namespace conformance
