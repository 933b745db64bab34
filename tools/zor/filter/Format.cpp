// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/Format.h>

#include <tools/zor/filter/JsonLinesFormat.h>
#include <tools/zor/filter/PlainFormat.h>
#include <tools/zor/filter/TableFormats.h>

#include <algorithm>
#include <array>

namespace zor {
namespace {

using Shape = Format::Shape;

constexpr std::array kFormats{
    Format{"plain", "one value a line", Shape::value, true, '\t', makePlainReader, makePlainWriter},
    Format{"tsv", "TAB-separated, \\ escapes, \\N absent", Shape::table, false, '\t', makeTsvReader, makeTsvWriter},
    Format{"tsv-raw", "TAB-separated, no escapes", Shape::table, false, '\t', makeRawTsvReader, makeRawTsvWriter},
    Format{"csv", "RFC 4180, one record a line", Shape::table, true, ',', makeCsvReader, makeCsvWriter},
    Format{"jsonl", "one JSON object a line", Shape::object, false, ',', makeJsonLinesReader, makeJsonLinesWriter},
};

}  // namespace

std::span<const Format> formats() { return kFormats; }

const Format* findFormat(std::string_view name) {
    const auto found = std::find_if(kFormats.begin(), kFormats.end(), [&](const Format& f) { return f.name == name; });
    return found == kFormats.end() ? nullptr : &*found;
}

}  // namespace zor
