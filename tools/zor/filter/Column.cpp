// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/Column.h>

#include <algorithm>
#include <array>

namespace zor {
namespace {

Cell textCell(std::optional<std::string_view> text) {
    if (!text) return {};
    return {.type = Cell::Type::text, .text = *text};
}

Cell verdictCell(const Outcome& outcome) {
    if (outcome.verdict == Verdict::absent) return {};
    return {.type = Cell::Type::verdict, .valid = outcome.verdict == Verdict::valid, .text = {}};
}

Cell reasonCell(const Outcome& outcome) {
    return outcome.verdict == Verdict::absent ? Cell{} : textCell(outcome.reason);
}

Cell offsetCell(const Outcome& outcome) {
    if (!outcome.offset) return {};
    return {.type = Cell::Type::number, .number = *outcome.offset, .text = {}};
}

constexpr std::array kColumns{
    Column{"verdict", "1 or 0, see --labels", verdictCell, Column::Needs::verdict},
    Column{"reason", "the first broken rule, none when valid", reasonCell, Column::Needs::explanation},
    Column{"offset", "where it is broken, in UTF-16 units", offsetCell, Column::Needs::explanation},
    Column{"normalized", "the form that programs store",
           [](const Outcome& outcome) { return textCell(outcome.normalized); }, Column::Needs::normalized},
    Column{"formatted", "the form that people read", [](const Outcome& outcome) { return textCell(outcome.formatted); },
           Column::Needs::formatted},
};

}  // namespace

std::span<const Column> columns() { return kColumns; }

const Column* findColumn(std::string_view name) {
    const auto found = std::find_if(kColumns.begin(), kColumns.end(), [&](const Column& c) { return c.name == name; });
    return found == kColumns.end() ? nullptr : &*found;
}

}  // namespace zor
