// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/PlainFormat.h>

#include <tools/zor/filter/Encoding.h>

namespace zor {
namespace {

class PlainReader : public RecordReader {
public:
    void read(Record& record) override {
        record.status = Record::Status::text;
        record.malformed = false;
        record.value = record.line;
        record.columns.assign(1, record.line);
    }
    void skim(std::string_view, Skim&) const override {}
    std::optional<std::string_view> columnText(const Record& record, std::size_t) override { return record.line; }
};

class PlainWriter : public RecordWriter {
public:
    explicit PlainWriter(const Layout& layout) : layout_(layout) {}

    void write(const Record&, const Outcome& outcome, Output& out) override { writeResults(outcome, out); }
    void writeSkimmed(const Skim&, const Outcome& outcome, Output& out) override { writeResults(outcome, out); }

private:
    void writeResults(const Outcome& outcome, Output& out) const {
        bool first = true;
        for (const Column* column : layout_.emitted) {
            if (!first) out.append(layout_.separator);
            first = false;
            writeCell(column->cell(outcome), out);
        }
        out.append('\n');
    }

    void writeCell(const Cell& cell, Output& out) const {
        switch (cell.type) {
            case Cell::Type::absent:
                out.append("\\N");
                break;
            case Cell::Type::verdict:
                writeText(cell.valid ? layout_.validLabel : layout_.invalidLabel, out);
                break;
            case Cell::Type::number:
                appendNumber(cell.number, out);
                break;
            case Cell::Type::text:
                writeText(cell.text, out);
                break;
        }
    }

    // Alone on its line, a text may hold what would otherwise part columns.
    void writeText(std::string_view text, Output& out) const {
        appendEscaped(text, out, ReplacingEscapes{layout_.emitted.size() > 1 ? layout_.separator : '\n'});
    }

    const Layout& layout_;
};

}  // namespace

std::unique_ptr<RecordReader> makePlainReader(const Layout&) { return std::make_unique<PlainReader>(); }

std::unique_ptr<RecordWriter> makePlainWriter(const Layout& layout, const FormatPair&) {
    return std::make_unique<PlainWriter>(layout);
}

}  // namespace zor
