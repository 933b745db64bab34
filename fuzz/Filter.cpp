// SPDX-License-Identifier: Apache-2.0
//
// The record readers and writers of the command. The first bytes of an input choose the options, the rest is data.

#include "support/FuzzText.h"

#include <tools/zor/Kind.h>
#include <tools/zor/filter/Encoding.h>
#include <tools/zor/filter/LineSplitter.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>

using namespace zor;
using fuzz::require;

namespace {

// An engine's output in memory.
class MemorySink final : public RecordSink {
public:
    explicit MemorySink(const FilterOptions& options) : engine_(options) {}

    void lines(std::string_view lines) override {
        std::uint64_t limit = Engine::kNoLimit;
        require(engine_.process(lines, limit, output_, SIZE_MAX) == lines.size());
    }
    void overlongPiece(std::string_view piece) override { engine_.skimOverlong(piece); }
    void endOverlong() override { engine_.endOverlong(output_); }
    void flush() override {}
    void finish() override {}
    [[nodiscard]] Counts counts() const override { return engine_.counts(); }
    [[nodiscard]] std::string text() const { return std::string(output_.view()); }

private:
    Engine engine_;
    Output output_;
};

struct Run {
    std::string output;
    Counts counts;
};

Run filter(const FilterOptions& options, std::string_view input, std::size_t piece) {
    MemorySink sink(options);
    LineSplitter splitter(options.maxRecordBytes, sink);
    while (!input.empty()) {
        const std::span<char> room = splitter.room();
        const std::size_t bytes = std::min({piece, room.size(), input.size()});
        std::memcpy(room.data(), input.data(), bytes);
        splitter.commit(bytes);
        input.remove_prefix(bytes);
    }
    splitter.finish();
    return {sink.text(), sink.counts()};
}

std::uint64_t lineEnds(std::string_view text) {
    return static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
}

void useSeparators(FilterOptions& options) {
    options.inLayout.separator = options.in->defaultSeparator;
    options.outLayout.separator = options.out->defaultSeparator;
}

const Kind& chosenKind(std::size_t choice) {
    static const std::vector<const Kind*> kinds = [] {
        std::vector<const Kind*> all;
        for (const KindGroup* group : kindGroups()) {
            for (const Kind& kind : group->kinds) all.push_back(&kind);
        }
        return all;
    }();
    return *kinds[choice % kinds.size()];
}

FilterOptions chosenOptions(std::uint8_t formatChoice, std::uint8_t columnChoice, std::uint8_t flags,
                            std::uint8_t kindChoice) {
    FilterOptions options;
    options.kind = &chosenKind((flags & 0x0F) + kindChoice / 64 * 16U);
    options.settings.limits = {2, 30};
    options.settings.pattern = u"XX-X\nX";
    options.settings.token = u"\t;";
    options.in = &formats()[formatChoice % formats().size()];
    options.out = (flags & 0x80) != 0 ? &formats()[formatChoice / 16 % formats().size()] : options.in;
    for (std::size_t index = 0; index < columns().size(); ++index) {
        if ((columnChoice >> index & 1) != 0) options.outLayout.emitted.push_back(&columns()[index]);
    }
    if (options.outLayout.emitted.empty()) options.outLayout.emitted.push_back(&columns()[0]);
    options.inLayout.emitted = options.outLayout.emitted;
    options.inLayout.field = options.outLayout.field = 1 + (columnChoice >> 6);
    options.keepCarriageReturn = (flags & 0x40) != 0;
    options.absentIsInvalid = (flags & 0x20) != 0;
    options.maxRecordBytes = (flags & 0x10) != 0 ? 40 : 65536;
    useSeparators(options);
    return options;
}

void requireOneRecordALine(const Run& run, std::string_view input) {
    const std::uint64_t records = lineEnds(input) + (input.empty() || input.ends_with('\n') ? 0 : 1);
    require(lineEnds(run.output) == records);
    require(run.counts.valid + run.counts.invalid + run.counts.absent == records);
    require(run.output.empty() || run.output.back() == '\n');
}

void requireCleanText(std::string_view output) {
    require(isReadableText(output));
    require(output.find('\r') == std::string_view::npos);
}

template <typename Visit>
void forEachLine(std::string_view text, const Visit& visit) {
    for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos; text.remove_prefix(end + 1)) {
        visit(text.substr(0, end));
    }
}

// Whether the line is an object for another reader. RFC 8259 allows a lone surrogate as an escape and a number of any
// size; that reader does not.
bool isObject(std::string_view line) {
    constexpr int kNumberTooLarge = 406;
    try {
        return nlohmann::json::parse(line).is_object();
    } catch (const nlohmann::json::exception& error) {
        return error.id == kNumberTooLarge ||
               std::string_view(error.what()).find("surrogate") != std::string_view::npos;
    }
}

// Objects that go out are objects for another reader too.
void requireObjects(std::string_view output) {
    forEachLine(output, [](std::string_view line) {
        require(line.starts_with('{') && line.ends_with('}'));
        require(isObject(line));
    });
}

// A line that this reader takes for an object is one for another reader.
void requireNoMalformedObjectIsRead(FilterOptions options, std::string_view input) {
    options.out = findFormat("plain");
    options.outLayout.emitted = {findColumn("reason")};
    options.maxRecordBytes = 65536;
    useSeparators(options);
    const std::string reasons = filter(options, input, input.size()).output;
    std::string_view left = reasons;
    forEachLine(input, [&](std::string_view line) {
        const std::string_view reason = left.substr(0, left.find('\n'));
        left.remove_prefix(reason.size() + 1);
        if (reason == "bad_json" || reason == "bad_utf8" || reason == "too_long") return;
        require(isObject(line));
    });
}

// Filtered once more, a record that could be read gets the same verdict: its columns came through.
void requireTheSameVerdicts(const FilterOptions& options, const Run& run) {
    if (options.in != options.out || options.maxRecordBytes < 65536 || options.inLayout.field != 1) return;
    if (options.in->name != "tsv" || run.output.size() > 60000) return;
    const Run again = filter(options, run.output, run.output.size());
    require(again.counts.valid >= run.counts.valid);
    require(again.counts.absent >= run.counts.absent);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    const FilterOptions options = chosenOptions(data[0], data[1], data[2], data[3]);
    const std::size_t piece = 1 + data[3] % 64;
    std::string_view input(reinterpret_cast<const char*>(data + 4), size - 4);

    const Run run = filter(options, input, size);
    require(filter(options, input, piece).output == run.output);
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (input.starts_with(kByteOrderMark)) input.remove_prefix(kByteOrderMark.size());
    requireOneRecordALine(run, input);
    requireCleanText(run.output);
    if (options.out->shape == Format::Shape::object) requireObjects(run.output);
    if (options.in->shape == Format::Shape::object) requireNoMalformedObjectIsRead(options, input);
    requireTheSameVerdicts(options, run);
    return 0;
}
