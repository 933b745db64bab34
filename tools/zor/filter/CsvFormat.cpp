// SPDX-License-Identifier: Apache-2.0
//
// Comma-separated records after RFC 4180, one a line: a quoted field cannot hold a line end.

#include <tools/zor/filter/Encoding.h>
#include <tools/zor/filter/TableFormats.h>

#include <algorithm>

namespace zor {
namespace {

// The end of the field that `rest` begins with: the separator's position or the size of `rest`; absent when quotes are
// not where they belong.
std::optional<std::size_t> fieldEnd(std::string_view rest, char separator) {
    if (rest.empty() || rest.front() != '"') {
        const std::size_t end = std::min(rest.find(separator), rest.size());
        if (rest.substr(0, end).find('"') != std::string_view::npos) return std::nullopt;
        return end;
    }
    for (std::size_t at = 1; (at = rest.find('"', at)) != std::string_view::npos; at += 2) {
        if (at + 1 == rest.size() || rest[at + 1] == separator) return at + 1;
        if (rest[at + 1] != '"') return std::nullopt;
    }
    return std::nullopt;
}

class CsvReader : public TableReader {
public:
    using TableReader::TableReader;

    void skim(std::string_view piece, Skim& skim) const override {
        for (const char byte : piece) {
            // A doubled quote leaves and enters again.
            if (byte == '"') skim.quoted = !skim.quoted;
            if (byte == layout().separator && !skim.quoted) ++skim.columns;
        }
    }

protected:
    std::string_view split(Record& record) const override {
        std::string_view rest = record.line;
        for (;;) {
            const std::optional<std::size_t> end = fieldEnd(rest, layout().separator);
            if (!end) {
                record.columns.assign(1, record.line);
                return "bad_csv";
            }
            record.columns.push_back(rest.substr(0, *end));
            if (*end == rest.size()) return {};
            rest.remove_prefix(*end + 1);
        }
    }

    Text text(std::string_view column, std::string& room) const override {
        if (column.empty() || column.front() != '"') return {column, {}};
        column = column.substr(1, column.size() - 2);
        std::size_t quote = column.find('"');
        if (quote == std::string_view::npos) return {column, {}};
        room.clear();
        for (; quote != std::string_view::npos; quote = column.find('"')) {
            room += column.substr(0, quote + 1);
            column.remove_prefix(quote + 2);
        }
        room += column;
        return {room, {}};
    }
};

// Inside quotes.
struct QuotedEscapes {
    static bool isSpecial(char byte) noexcept { return byte == '"' || ReplacingEscapes{'\n'}.isSpecial(byte); }
    static void write(char byte, Output& out) {
        if (byte == '"') {
            out.append("\"\"");
        } else {
            ReplacingEscapes::write(byte, out);
        }
    }
};

class CsvWriter : public TableWriter {
public:
    using TableWriter::TableWriter;

protected:
    void echo(const Record& record, Output& out) const override {
        if (record.malformed) {
            // Its fields cannot be told apart, so the line goes out as one.
            writeQuoted(record.line, out);
        } else if (record.traits.carriageReturn || !record.wellFormed) {
            appendEscaped(record.line, out, ReplacingEscapes{'\n'});
        } else {
            out.append(record.line);
        }
    }
    void writeText(std::string_view text, Output& out) const override {
        const bool quoted =
            std::any_of(text.begin(), text.end(), [&](char byte) { return byte == '"' || byte == layout().separator; });
        if (quoted) {
            writeQuoted(text, out);
        } else {
            appendEscaped(text, out, ReplacingEscapes{'\n'});
        }
    }
    void writeAbsent(Output&) const override {}

private:
    static void writeQuoted(std::string_view text, Output& out) {
        out.append('"');
        appendEscaped(text, out, QuotedEscapes{});
        out.append('"');
    }
};

}  // namespace

std::unique_ptr<RecordReader> makeCsvReader(const Layout& layout) { return std::make_unique<CsvReader>(layout); }

std::unique_ptr<RecordWriter> makeCsvWriter(const Layout& layout, const FormatPair& formats) {
    return std::make_unique<CsvWriter>(layout, formats);
}

}  // namespace zor
