// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/PlainFormat.h>

#include <tools/zor/filter/CellWriter.h>
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

class PlainWriter : public CellWriter {
public:
    explicit PlainWriter(const Layout& layout) : CellWriter(layout) {}

    void write(const Record&, const Outcome& outcome, Output& out) override { writeResults(outcome, out); }
    void writeSkimmed(const Skim&, const Outcome& outcome, Output& out) override { writeResults(outcome, out); }

private:
    void writeResults(const Outcome& outcome, Output& out) const {
        bool first = true;
        for (const Column* column : layout().emitted) {
            if (!first) out.append(layout().separator);
            first = false;
            writeCell(column->cell(outcome), out);
        }
        out.append('\n');
    }

    // Alone on its line, a text may hold what would otherwise part columns.
    void writeText(std::string_view text, Output& out) const override {
        appendEscaped(text, out, ReplacingEscapes{layout().emitted.size() > 1 ? layout().separator : '\n'});
    }
    void writeAbsent(Output& out) const override { out.append("\\N"); }
};

}  // namespace

std::unique_ptr<RecordReader> makePlainReader(const Layout&) { return std::make_unique<PlainReader>(); }

std::unique_ptr<RecordWriter> makePlainWriter(const Layout& layout, const FormatPair&) {
    return std::make_unique<PlainWriter>(layout);
}

}  // namespace zor
