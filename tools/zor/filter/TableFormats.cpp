// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/TableFormats.h>

namespace zor {

void TableReader::read(Record& record) {
    record.columns.clear();
    record.status = Record::Status::text;
    const std::string_view reason = split(record);
    record.malformed = !reason.empty();
    if (record.malformed) return record.unreadable(reason);
    if (layout_.field > record.columns.size()) return record.unreadable("missing_field");
    const Text found = text(record.columns[layout_.field - 1], record.unescaped);
    if (!found.reason.empty()) return record.unreadable(found.reason);
    if (!found.text) {
        record.status = Record::Status::absent;
        record.value = {};
        return;
    }
    record.value = *found.text;
}

std::optional<std::string_view> TableReader::columnText(const Record& record, std::size_t index) {
    if (record.malformed) return record.columns[index];
    const Text found = text(record.columns[index], room_);
    return found.reason.empty() ? found.text : record.columns[index];
}

void TableWriter::write(const Record& record, const Outcome& outcome, Output& out) {
    writeInput(record, out);
    writeResults(outcome, out);
}

void TableWriter::writeInput(const Record& record, Output& out) const {
    if (formats_.in.name == formats_.out.name) return echo(record, out);
    if (formats_.in.shape == Format::Shape::object) {
        if (record.status == Record::Status::text) return writeText(record.value, out);
        return writeAbsent(out);
    }
    for (std::size_t index = 0; index < record.columns.size(); ++index) {
        if (index > 0) out.append(layout().separator);
        if (const auto text = formats_.reader.columnText(record, index)) {
            writeText(*text, out);
        } else {
            writeAbsent(out);
        }
    }
}

void TableWriter::writeSkimmed(const Skim& skim, const Outcome& outcome, Output& out) {
    for (std::size_t index = 0; index < skim.columns; ++index) {
        if (index > 0) out.append(layout().separator);
        writeAbsent(out);
    }
    writeResults(outcome, out);
}

void TableWriter::writeResults(const Outcome& outcome, Output& out) const {
    for (const Column* column : layout().emitted) {
        out.append(layout().separator);
        writeCell(column->cell(outcome), out);
    }
    out.append('\n');
}

}  // namespace zor
