// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/FilterArguments.h>

#include <tools/zor/NumberArgument.h>
#include <tools/zor/filter/Encoding.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace zor {
namespace {

constexpr std::array kRows{
    Option{"--format", "FORMAT", "plain (default), tsv, tsv-raw, csv, jsonl: both ways"},
    Option{"--in", "FORMAT", "of the input, where it is not that of the output"},
    Option{"--out", "FORMAT", "of the output"},
    Option{"--field", "N", "the column to check, from 1 (default)"},
    Option{"--key", "NAME", "the member to check in jsonl (default: value)"},
    Option{"--emit", "COLUMN,...", "verdict, reason, offset, normalized, formatted"},
    Option{"--labels", "YES,NO", "the verdicts in words (default: 1,0)"},
    Option{"--null", "absent|invalid", "what an absent value is (default: absent)"},
    Option{"--sep", "NAME", "tab, comma or semicolon, in plain and csv"},
    Option{"--flush", "drain|line|block", "write before waiting (default), each record, late", true},
    Option{"--chunk-header", "", "a line with the number of records before each chunk"},
    Option{"--max-record", "BYTES", "longer records are too_long (default: 65536)"},
    Option{"--keep-cr", "", "a CR before the line end belongs to the record"},
    Option{"--jobs", "N", "threads (default: 1)", true},
    Option{"--stats", "stderr|hadoop", "counts at the end, on standard error", true},
    Option{"--fail-on-invalid", "", "exit status 1 when a record is invalid"},
    Option{"--no-env", "", "do not read ZOR_FLUSH, ZOR_JOBS and ZOR_STATS"},
};

constexpr std::size_t kMaximumRecordBytes = std::size_t{1} << 30;
constexpr std::size_t kMaximumJobs = 256;

UsageError badValue(std::string_view option) {
    return UsageError(std::string(option).append(": not one of its values; see zor check --help"));
}

template <typename Value, std::size_t Count>
Value choice(std::string_view option, std::string_view text,
             const std::array<std::pair<std::string_view, Value>, Count>& choices) {
    const auto found =
        std::find_if(choices.begin(), choices.end(), [&](const auto& candidate) { return candidate.first == text; });
    if (found == choices.end()) throw badValue(option);
    return found->second;
}

// A label goes out as it stands, so it must not end a line or part columns.
bool isControl(char byte) { return static_cast<unsigned char>(byte) < 0x20; }

std::vector<std::string_view> pieces(std::string_view text) {
    std::vector<std::string_view> result;
    for (std::size_t comma = 0; (comma = text.find(',')) != std::string_view::npos; text.remove_prefix(comma + 1)) {
        result.push_back(text.substr(0, comma));
    }
    result.push_back(text);
    return result;
}

const Format& formatNamed(std::string_view option, std::string_view name) {
    const Format* format = findFormat(name);
    if (format == nullptr) throw badValue(option);
    return *format;
}

std::vector<const Column*> columnsNamed(std::string_view names) {
    std::vector<const Column*> result;
    for (const std::string_view name : pieces(names)) {
        const Column* column = findColumn(name);
        if (column == nullptr) throw badValue("--emit");
        if (std::find(result.begin(), result.end(), column) != result.end()) {
            throw UsageError("--emit: a column is named twice");
        }
        result.push_back(column);
    }
    return result;
}

// Options of the environment stand behind those of the command line.
class Source {
public:
    explicit Source(const Arguments& arguments) : arguments_(arguments), environment_(!arguments.has("--no-env")) {}

    [[nodiscard]] std::optional<std::string_view> value(std::string_view option) const {
        if (const auto given = arguments_.value(option)) return given;
        const auto row = std::find_if(kRows.begin(), kRows.end(), [&](const Option& r) { return r.name == option; });
        if (!environment_ || !row->fromEnvironment) return std::nullopt;
        std::string name = "ZOR_";
        for (const char letter : option.substr(2)) name += static_cast<char>(letter == '-' ? '_' : letter - 'a' + 'A');
        const char* const variable = std::getenv(name.c_str());
        if (variable == nullptr) return std::nullopt;
        return variable;
    }
    [[nodiscard]] bool has(std::string_view option) const { return arguments_.has(option); }

private:
    const Arguments& arguments_;
    bool environment_;
};

void setFormats(const Source& source, FilterOptions& options) {
    const std::string_view both = source.value("--format").value_or("plain");
    options.in = &formatNamed("--in", source.value("--in").value_or(both));
    options.out = &formatNamed("--out", source.value("--out").value_or(both));
    options.inLayout.separator = options.in->defaultSeparator;
    options.outLayout.separator = options.out->defaultSeparator;
    const auto named = source.value("--sep");
    if (!named) return;
    static constexpr std::array<std::pair<std::string_view, char>, 3> kSeparators{
        {{"tab", '\t'}, {"comma", ','}, {"semicolon", ';'}}};
    const char separator = choice("--sep", *named, kSeparators);
    if (!options.in->takesSeparator && !options.out->takesSeparator) {
        throw UsageError("--sep: only plain and csv have a choice");
    }
    if (options.in->takesSeparator) options.inLayout.separator = separator;
    if (options.out->takesSeparator) options.outLayout.separator = separator;
}

void setLayout(const Source& source, std::string_view emitted, Layout& layout) {
    if (const auto field = source.value("--field"))
        layout.field = numberArgument("--field", *field, 1, kMaximumRecordBytes);
    if (const auto key = source.value("--key")) layout.key = *key;
    layout.emitted = columnsNamed(source.value("--emit").value_or(emitted));
    if (findColumn(layout.key) != nullptr) throw UsageError("--key: the name of a result column");
    if (const auto labels = source.value("--labels")) {
        const std::vector<std::string_view> words = pieces(*labels);
        if (words.size() != 2 || words[0] == words[1]) throw UsageError("--labels: two different words are needed");
        if (!isReadableText(*labels) || std::any_of(labels->begin(), labels->end(), isControl)) {
            throw UsageError("--labels: words of text are needed");
        }
        layout.validLabel = words[0];
        layout.invalidLabel = words[1];
        layout.labelled = true;
    }
}

}  // namespace

std::span<const Option> filterOptionRows() { return kRows; }

FilterOptions filterOptions(const Kind& kind, const Arguments& arguments, std::string_view emitted) {
    const Source source(arguments);
    FilterOptions options;
    options.kind = &kind;
    options.settings = kindSettings(kind, arguments);
    setFormats(source, options);
    setLayout(source, emitted, options.inLayout);
    setLayout(source, emitted, options.outLayout);
    options.keepCarriageReturn = source.has("--keep-cr");
    options.chunkHeader = source.has("--chunk-header");
    options.failOnInvalid = source.has("--fail-on-invalid");
    if (const auto text = source.value("--null")) {
        static constexpr std::array<std::pair<std::string_view, bool>, 2> kNulls{
            {{"absent", false}, {"invalid", true}}};
        options.absentIsInvalid = choice("--null", *text, kNulls);
    }
    if (const auto text = source.value("--flush")) {
        static constexpr std::array<std::pair<std::string_view, FlushRule>, 3> kRules{
            {{"drain", FlushRule::drain}, {"line", FlushRule::line}, {"block", FlushRule::block}}};
        options.flush = choice("--flush", *text, kRules);
    }
    if (const auto text = source.value("--stats")) {
        static constexpr std::array<std::pair<std::string_view, Statistics>, 2> kForms{
            {{"stderr", Statistics::stderr_}, {"hadoop", Statistics::hadoop}}};
        options.statistics = choice("--stats", *text, kForms);
    }
    if (const auto text = source.value("--max-record")) {
        options.maxRecordBytes = numberArgument("--max-record", *text, 1, kMaximumRecordBytes);
    }
    if (const auto text = source.value("--jobs")) {
        options.jobs = static_cast<unsigned>(numberArgument("--jobs", *text, 1, kMaximumJobs));
    }
    return options;
}

KindSettings kindSettings(const Kind& kind, const Arguments& arguments) {
    KindSettings settings;
    for (const auto& [name, value] : arguments.options()) {
        const auto own = std::find_if(kind.options.begin(), kind.options.end(),
                                      [named = name](const KindOption* option) { return option->name == named; });
        if (own != kind.options.end()) {
            if (!(*own)->set(settings, value)) throw badValue(name);
            continue;
        }
        const bool isFilters =
            std::any_of(kRows.begin(), kRows.end(), [named = name](const Option& row) { return row.name == named; });
        if (!isFilters) throw UsageError(std::string(name).append(": not an option of ").append(kind.name));
    }
    const std::string_view complaint = kind.complaint == nullptr ? "" : kind.complaint(settings);
    if (!complaint.empty()) throw UsageError(std::string(kind.name).append(": ").append(complaint));
    return settings;
}

}  // namespace zor
