// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/CellWriter.h>

#include <tools/zor/filter/Encoding.h>

namespace zor {

void CellWriter::writeCell(const Cell& cell, Output& out) const {
    switch (cell.type) {
        case Cell::Type::absent:
            writeAbsent(out);
            break;
        case Cell::Type::verdict:
            writeVerdict(cell.valid, out);
            break;
        case Cell::Type::number:
            appendNumber(cell.number, out);
            break;
        case Cell::Type::text:
            writeText(cell.text, out);
            break;
    }
}

void CellWriter::writeVerdict(bool valid, Output& out) const {
    writeText(valid ? layout_.validLabel : layout_.invalidLabel, out);
}

}  // namespace zor
