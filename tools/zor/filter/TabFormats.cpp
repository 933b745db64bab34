// SPDX-License-Identifier: Apache-2.0
//
// TAB-separated records. The escapes are those that both PostgreSQL's text format and ClickHouse's TabSeparated
// understand.

#include <tools/zor/filter/Encoding.h>
#include <tools/zor/filter/TableFormats.h>

#include <cctype>

namespace zor {
namespace {

constexpr std::string_view kAbsent = "\\N";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// A backslash keeps the byte behind it from parting columns.
void skimEscaped(std::string_view piece, Skim& skim) {
    for (const char byte : piece) {
        if (skim.escaped) {
            skim.escaped = false;
        } else if (byte == '\\') {
            skim.escaped = true;
        } else if (byte == '\t') {
            ++skim.columns;
        }
    }
}

void splitAtTabs(std::string_view line, std::vector<std::string_view>& columns) {
    for (std::size_t tab = 0; (tab = line.find('\t')) != std::string_view::npos; line.remove_prefix(tab + 1)) {
        columns.push_back(line.substr(0, tab));
    }
    columns.push_back(line);
}

void splitAtUnescapedTabs(std::string_view line, std::vector<std::string_view>& columns) {
    std::size_t begin = 0;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '\\') {
            ++at;
        } else if (line[at] == '\t') {
            columns.push_back(line.substr(begin, at - begin));
            begin = at + 1;
        }
    }
    columns.push_back(line.substr(begin));
}

int hexValue(char digit) noexcept {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return -1;
}

// Appends what the escape at the beginning of `rest` stands for.
// @return the bytes it takes, 0 when both engines would not read it alike
std::size_t unescapeOne(std::string_view rest, std::string& text) {
    if (rest.size() < 2) return 0;
    switch (rest[1]) {
        case 't':
            text += '\t';
            return 2;
        case 'n':
            text += '\n';
            return 2;
        case 'r':
            text += '\r';
            return 2;
        case 'b':
            text += '\b';
            return 2;
        case 'f':
            text += '\f';
            return 2;
        case '0':
            text += '\0';
            return 2;
        case '\\':
        case '\'':
        case '\t':
            text += rest[1];
            return 2;
        case 'x': {
            if (rest.size() < 4) return 0;
            const int high = hexValue(rest[2]);
            const int low = hexValue(rest[3]);
            if (high < 0 || low < 0) return 0;
            text += static_cast<char>(high * 16 + low);
            return 4;
        }
        default:
            return 0;
    }
}

class TsvReader : public TableReader {
public:
    using TableReader::TableReader;
    void skim(std::string_view piece, Skim& skim) const override { skimEscaped(piece, skim); }

protected:
    std::string_view split(Record& record) const override {
        if (record.traits.backslash) {
            splitAtUnescapedTabs(record.line, record.columns);
        } else {
            splitAtTabs(record.line, record.columns);
        }
        return {};
    }

    Text text(std::string_view column, std::string& room) const override {
        std::size_t escape = column.find('\\');
        if (escape == std::string_view::npos) return {column, {}};
        if (column == kAbsent) return {};
        room.clear();
        while (escape != std::string_view::npos) {
            room += column.substr(0, escape);
            column.remove_prefix(escape);
            const std::size_t bytes = unescapeOne(column, room);
            if (bytes == 0) return {{}, "bad_escape"};
            column.remove_prefix(bytes);
            escape = column.find('\\');
        }
        room += column;
        if (!isReadableText(room)) return {{}, "bad_utf8"};
        return {room, {}};
    }
};

struct TsvEscapes {
    static bool isSpecial(char byte) noexcept {
        return byte == '\\' || byte == '\t' || byte == '\n' || byte == '\r' || byte == '\0';
    }
    static void write(char byte, Output& out) {
        if (const std::string_view escape = shortEscape(byte); !escape.empty()) return out.append(escape);
        const auto value = static_cast<unsigned char>(byte);
        out.append("\\x");
        out.append(kHexDigits[value >> 4]);
        out.append(kHexDigits[value & 0xF]);
    }
};

// Columns that are escaped already: only what would be read as something else is touched.
struct EchoEscapes {
    static bool isSpecial(char byte) noexcept { return byte == '\r' || byte == '\0'; }
    static void write(char byte, Output& out) { TsvEscapes::write(byte, out); }
};

// A backslash that escapes nothing nameable. It must neither swallow the TAB before the results nor, with a point,
// end the data for PostgreSQL.
bool escapesNothing(std::string_view rest) noexcept {
    return rest.size() < 2 || rest[1] == '.' || rest[1] == '\0' || rest[1] == '\r' ||
           (static_cast<signed char>(rest[1]) < 0 && scalarBytes(rest.substr(1)) == 0);
}

void echoEscaped(std::string_view line, Output& out) {
    for (std::size_t escape = 0; (escape = line.find('\\')) != std::string_view::npos;) {
        appendEscaped(line.substr(0, escape), out, EchoEscapes{});
        line.remove_prefix(escape);
        if (escapesNothing(line)) {
            out.append("\\\\");
            line.remove_prefix(1);
        } else if (line[1] == '\t') {
            out.append("\\t");
            line.remove_prefix(2);
        } else {
            const std::size_t bytes = 1 + scalarBytes(line.substr(1));
            out.append(line.substr(0, bytes));
            line.remove_prefix(bytes);
        }
    }
    appendEscaped(line, out, EchoEscapes{});
}

class TsvWriter : public TableWriter {
public:
    using TableWriter::TableWriter;

protected:
    void echo(const Record& record, Output& out) const override {
        if (record.traits.backslash) {
            echoEscaped(record.line, out);
        } else if (record.traits.carriageReturn || !record.wellFormed) {
            appendEscaped(record.line, out, EchoEscapes{});
        } else {
            out.append(record.line);
        }
    }
    void writeText(std::string_view text, Output& out) const override { appendEscaped(text, out, TsvEscapes{}); }
    void writeAbsent(Output& out) const override { out.append(kAbsent); }
};

class RawTsvReader : public TableReader {
public:
    using TableReader::TableReader;
    void skim(std::string_view piece, Skim& skim) const override {
        for (const char byte : piece) skim.columns += byte == '\t' ? 1 : 0;
    }

protected:
    std::string_view split(Record& record) const override {
        splitAtTabs(record.line, record.columns);
        return {};
    }
    Text text(std::string_view column, std::string&) const override {
        if (column == kAbsent) return {};
        return {column, {}};
    }
};

class RawTsvWriter : public TableWriter {
public:
    using TableWriter::TableWriter;

protected:
    void echo(const Record& record, Output& out) const override {
        if (record.traits.carriageReturn || !record.wellFormed) {
            appendEscaped(record.line, out, ReplacingEscapes{'\n'});
        } else {
            out.append(record.line);
        }
    }
    void writeText(std::string_view text, Output& out) const override {
        appendEscaped(text, out, ReplacingEscapes{'\t'});
    }
    void writeAbsent(Output& out) const override { out.append(kAbsent); }
};

}  // namespace

std::unique_ptr<RecordReader> makeTsvReader(const Layout& layout) { return std::make_unique<TsvReader>(layout); }

std::unique_ptr<RecordWriter> makeTsvWriter(const Layout& layout, const FormatPair& formats) {
    return std::make_unique<TsvWriter>(layout, formats);
}

std::unique_ptr<RecordReader> makeRawTsvReader(const Layout& layout) { return std::make_unique<RawTsvReader>(layout); }

std::unique_ptr<RecordWriter> makeRawTsvWriter(const Layout& layout, const FormatPair& formats) {
    return std::make_unique<RawTsvWriter>(layout, formats);
}

}  // namespace zor
