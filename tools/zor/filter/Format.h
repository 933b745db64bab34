// SPDX-License-Identifier: Apache-2.0
#pragma once

// How records are read and written: one row a format, one source file a family of formats. A reader takes the line
// apart, a writer gives it back with the result columns behind it.

#include <tools/zor/filter/Column.h>
#include <tools/zor/filter/LineScan.h>
#include <tools/zor/filter/Output.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zor {

/// How the fields of a record stand beside each other, and what the user calls the verdicts.
struct Layout {
    std::size_t field = 1;      ///< The checked column, from 1.
    std::string key = "value";  ///< The checked member of an object.
    char separator = '\t';      ///< Between columns.
    std::string validLabel = "1";
    std::string invalidLabel = "0";
    bool labelled = false;  ///< Whether the user chose the labels.
    std::vector<const Column*> emitted;
};

/// One record. Views point into the line or into `unescaped`, and live until the next one is read.
struct Record {
    std::string_view line;
    LineTraits traits;
    /// Whether `line` is UTF-8 without NUL. Otherwise no rule sees the value.
    bool wellFormed = true;

    // Set by a reader:
    enum class Status { text, absent, unreadable };
    Status status = Status::text;
    std::string_view reason;  ///< Why it is unreadable.
    bool malformed = false;   ///< The line cannot be taken apart, so it cannot go back out as it stands.
    std::string_view value;   ///< What is checked, without escapes.
    /// The columns as they stand in the line; the line itself for a format without columns.
    std::vector<std::string_view> columns;
    std::string unescaped;  ///< Room for `value`.
    /// The members of an object that go back out, as they stand.
    std::vector<std::string_view> members;

    void unreadable(std::string_view why) {
        status = Status::unreadable;
        reason = why;
        value = {};
    }
};

/// How many columns the line has of which the pieces were skimmed.
struct Skim {
    std::size_t columns = 1;
    bool escaped = false;
    bool quoted = false;
};

/// Takes lines apart. Never throws for what a line holds.
struct RecordReader {
    RecordReader() = default;
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;
    virtual ~RecordReader() = default;

    /// Sets what a reader sets, from `line` and `traits`.
    virtual void read(Record& record) = 0;
    /// Goes over a piece of a line that is too long to be kept.
    virtual void skim(std::string_view piece, Skim& skim) const = 0;
    /// A column as its text; nothing where it is absent. The view lives until the next call.
    virtual std::optional<std::string_view> columnText(const Record& record, std::size_t index) = 0;
};

/// Puts records together.
struct RecordWriter {
    RecordWriter() = default;
    RecordWriter(const RecordWriter&) = delete;
    RecordWriter& operator=(const RecordWriter&) = delete;
    virtual ~RecordWriter() = default;

    /// Writes the record with its results and a LF, and no other line end: always well-formed UTF-8.
    virtual void write(const Record& record, const Outcome& outcome, Output& out) = 0;
    /// Writes a record of which nothing but the number of its columns is known.
    virtual void writeSkimmed(const Skim& skim, const Outcome& outcome, Output& out) = 0;
};

struct Format;

/// Both ends of a run. A writer gives a line back as it stands when it was read in the same format.
struct FormatPair {
    const Format& in;
    const Format& out;
    RecordReader& reader;
};

struct Format {
    std::string_view name;
    std::string_view help;
    enum class Shape { value, table, object } shape;
    bool takesSeparator;
    char defaultSeparator;
    std::unique_ptr<RecordReader> (*makeReader)(const Layout& layout);
    std::unique_ptr<RecordWriter> (*makeWriter)(const Layout& layout, const FormatPair& formats);
};

[[nodiscard]] std::span<const Format> formats();

/// The format of that name, or null.
[[nodiscard]] const Format* findFormat(std::string_view name);

}  // namespace zor
