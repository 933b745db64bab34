// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/JsonLinesFormat.h>

#include <tools/zor/filter/CellWriter.h>
#include <tools/zor/filter/Encoding.h>
#include <tools/zor/filter/JsonText.h>

#include <algorithm>
#include <utility>

namespace zor {
namespace {

class JsonLinesReader : public RecordReader {
public:
    explicit JsonLinesReader(const Layout& layout) : layout_(layout) {}

    void read(Record& record) override {
        record.members.clear();
        record.columns.clear();
        record.status = Record::Status::absent;
        record.value = {};
        found_ = false;
        JsonCursor cursor(record.line);
        record.malformed = !readObject(cursor, record);
        if (record.malformed) {
            record.members.clear();
            record.unreadable("bad_json");
        }
    }

    void skim(std::string_view, Skim&) const override {}

    std::optional<std::string_view> columnText(const Record& record, std::size_t) override {
        if (record.status != Record::Status::text) return std::nullopt;
        return record.value;
    }

private:
    bool readObject(JsonCursor& cursor, Record& record) {
        cursor.skipSpace();
        if (!cursor.take('{')) return false;
        cursor.skipSpace();
        if (!cursor.take('}')) {
            do {
                if (!readMember(cursor, record)) return false;
                cursor.skipSpace();
            } while (cursor.take(','));
            if (!cursor.take('}')) return false;
        }
        cursor.skipSpace();
        return cursor.atEnd();
    }

    bool readMember(JsonCursor& cursor, Record& record) {
        cursor.skipSpace();
        const std::size_t begin = cursor.position();
        const std::optional<std::string_view> spelledName = cursor.string();
        if (!spelledName) return false;
        cursor.skipSpace();
        if (!cursor.take(':')) return false;
        cursor.skipSpace();
        const std::size_t valueBegin = cursor.position();
        if (!cursor.skipValue()) return false;
        const std::string_view member = record.line.substr(begin, cursor.position() - begin);

        const std::optional<std::string_view> name = unescapedJson(*spelledName, name_);
        // A member with a result's name gives way to the result, so that a second run replaces those of the first.
        if (!name || !isResult(*name)) record.members.push_back(member);
        if (name != layout_.key) return true;
        // Which of two would be meant, no one can say.
        if (std::exchange(found_, true)) return false;
        readValue(record.line.substr(valueBegin, cursor.position() - valueBegin), record);
        return true;
    }

    [[nodiscard]] bool isResult(std::string_view name) const {
        return std::any_of(layout_.emitted.begin(), layout_.emitted.end(),
                           [&](const Column* column) { return column->name == name; });
    }

    static void readValue(std::string_view spelled, Record& record) {
        if (spelled == "null") return;
        if (spelled.front() != '"') return record.unreadable("not_text");
        const auto text = unescapedJson(spelled.substr(1, spelled.size() - 2), record.unescaped);
        if (!text || !isReadableText(*text)) return record.unreadable("bad_utf8");
        record.status = Record::Status::text;
        record.value = *text;
    }

    const Layout& layout_;
    bool found_ = false;
    std::string name_;
};

struct JsonEscapes {
    static bool isSpecial(char byte) noexcept {
        return byte == '"' || byte == '\\' || static_cast<unsigned char>(byte) < 0x20;
    }
    static void write(char byte, Output& out) {
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '"') {
            out.append("\\\"");
        } else if (const std::string_view escape = shortEscape(byte); !escape.empty()) {
            out.append(escape);
        } else if (value == 0 || value >= 0x20) {
            out.append(kReplacementCharacter);
        } else {
            out.append(value < 0x10 ? "\\u000" : "\\u001");
            out.append("0123456789abcdef"[value & 0xF]);
        }
    }
};

// Members go out as they are spelled. A CR is white space there and can only stand between their parts.
struct MemberEscapes {
    static bool isSpecial(char byte) noexcept { return byte == '\r'; }
    static void write(char byte, Output& out) { out.append(byte == '\r' ? " " : kReplacementCharacter); }
};

class JsonLinesWriter : public CellWriter {
public:
    JsonLinesWriter(const Layout& layout, const FormatPair& formats) : CellWriter(layout), formats_(formats) {}

    void write(const Record& record, const Outcome& outcome, Output& out) override {
        out.append('{');
        if (formats_.in.shape == Format::Shape::object) {
            const bool verbatim = record.wellFormed && !record.traits.carriageReturn;
            for (std::size_t index = 0; index < record.members.size(); ++index) {
                if (index > 0) out.append(',');
                if (verbatim) {
                    out.append(record.members[index]);
                } else {
                    appendEscaped(record.members[index], out, MemberEscapes{});
                }
            }
            writeResults(outcome, record.members.empty(), out);
        } else {
            writeText(layout().key, out);
            out.append(':');
            writeValue(record, out);
            writeResults(outcome, /*first=*/false, out);
        }
    }

    void writeSkimmed(const Skim&, const Outcome& outcome, Output& out) override {
        out.append('{');
        writeResults(outcome, /*first=*/true, out);
    }

private:
    void writeResults(const Outcome& outcome, bool first, Output& out) const {
        for (const Column* column : layout().emitted) {
            if (!first) out.append(',');
            first = false;
            writeText(column->name, out);
            out.append(':');
            writeCell(column->cell(outcome), out);
        }
        out.append("}\n");
    }

    void writeVerdict(bool valid, Output& out) const override {
        if (layout().labelled) return CellWriter::writeVerdict(valid, out);
        out.append(valid ? "true" : "false");
    }

    // The checked value of a record that came in another format.
    void writeValue(const Record& record, Output& out) const {
        if (record.malformed || layout().field > record.columns.size()) return writeAbsent(out);
        const std::size_t index = formats_.in.shape == Format::Shape::table ? layout().field - 1 : 0;
        if (const auto text = formats_.reader.columnText(record, index)) {
            writeText(*text, out);
        } else {
            writeAbsent(out);
        }
    }

    void writeText(std::string_view text, Output& out) const override {
        out.append('"');
        appendEscaped(text, out, JsonEscapes{});
        out.append('"');
    }
    void writeAbsent(Output& out) const override { out.append("null"); }

    FormatPair formats_;
};

}  // namespace

std::unique_ptr<RecordReader> makeJsonLinesReader(const Layout& layout) {
    return std::make_unique<JsonLinesReader>(layout);
}

std::unique_ptr<RecordWriter> makeJsonLinesWriter(const Layout& layout, const FormatPair& formats) {
    return std::make_unique<JsonLinesWriter>(layout, formats);
}

}  // namespace zor
