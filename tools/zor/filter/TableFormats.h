// SPDX-License-Identifier: Apache-2.0
#pragma once

// Records as columns: TAB-separated with escapes, TAB-separated without, and CSV (RFC 4180). A record goes back out
// with all its columns, the results behind them.

#include <tools/zor/filter/CellWriter.h>

namespace zor {

[[nodiscard]] std::unique_ptr<RecordReader> makeTsvReader(const Layout& layout);
[[nodiscard]] std::unique_ptr<RecordWriter> makeTsvWriter(const Layout& layout, const FormatPair& formats);
[[nodiscard]] std::unique_ptr<RecordReader> makeRawTsvReader(const Layout& layout);
[[nodiscard]] std::unique_ptr<RecordWriter> makeRawTsvWriter(const Layout& layout, const FormatPair& formats);
[[nodiscard]] std::unique_ptr<RecordReader> makeCsvReader(const Layout& layout);
[[nodiscard]] std::unique_ptr<RecordWriter> makeCsvWriter(const Layout& layout, const FormatPair& formats);

/// What all formats with columns do alike; a format says how its text is spelled.
class TableReader : public RecordReader {
public:
    explicit TableReader(const Layout& layout) : layout_(layout) {}

    void read(Record& record) final;
    std::optional<std::string_view> columnText(const Record& record, std::size_t index) final;

protected:
    /// Puts the columns as they stand into `record.columns`, at least one.
    /// @return empty, or why the line cannot be taken apart
    virtual std::string_view split(Record& record) const = 0;
    struct Text {
        std::optional<std::string_view> text;  ///< Absent for the format's own sign of absence.
        std::string_view reason;               ///< Empty, or why the column cannot be read.
    };
    /// The text of a column; `room` is there for what has to be unescaped.
    virtual Text text(std::string_view column, std::string& room) const = 0;

    [[nodiscard]] const Layout& layout() const noexcept { return layout_; }

private:
    const Layout& layout_;
    std::string room_;
};

class TableWriter : public CellWriter {
public:
    TableWriter(const Layout& layout, const FormatPair& formats) : CellWriter(layout), formats_(formats) {}

    void write(const Record& record, const Outcome& outcome, Output& out) final;
    void writeSkimmed(const Skim& skim, const Outcome& outcome, Output& out) final;

protected:
    /// Writes a line that came in the same format, its columns unchanged.
    virtual void echo(const Record& record, Output& out) const = 0;

private:
    void writeInput(const Record& record, Output& out) const;
    void writeResults(const Outcome& outcome, Output& out) const;

    FormatPair formats_;
};

}  // namespace zor
