// SPDX-License-Identifier: Apache-2.0
#pragma once

// The result columns of the filter: one row a column.

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace zor {

enum class Verdict { valid, invalid, absent };

/// All that is known about one record. Texts are UTF-8 and live until the next record.
struct Outcome {
    Verdict verdict = Verdict::invalid;
    /// A rule's name, "none" for a valid value. With an underscore in it: the record could not be read.
    std::string_view reason;
    std::optional<std::size_t> offset;  ///< UTF-16 units, where a rule of the kind is broken.
    std::optional<std::string_view> normalized;
    std::optional<std::string_view> formatted;
};

/// What a column holds for one record.
struct Cell {
    enum class Type { absent, verdict, number, text };
    Type type = Type::absent;
    bool valid = false;
    std::size_t number = 0;
    std::string_view text;
};

struct Column {
    std::string_view name;
    std::string_view help;
    Cell (*cell)(const Outcome& outcome);
    /// What has to be found out about a record before `cell` can answer, beside the verdict.
    enum class Needs { verdict, explanation, normalized, formatted } needs;
};

[[nodiscard]] std::span<const Column> columns();

/// The column of that name, or null.
[[nodiscard]] const Column* findColumn(std::string_view name);

}  // namespace zor
