// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/Engine.h>

#include <tools/zor/filter/Encoding.h>

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <algorithm>
#include <cstring>

namespace zor {
namespace {

// Numbers, names and codes are shorter; longer lines take the general road.
constexpr std::size_t kFastUnits = 64;

std::string_view withoutLineEnd(std::string_view line, bool keepCarriageReturn) noexcept {
    if (!keepCarriageReturn && line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

bool anyNeeds(const Layout& layout, Column::Needs needs) {
    return std::any_of(layout.emitted.begin(), layout.emitted.end(),
                       [&](const Column* column) { return column->needs == needs; });
}

}  // namespace

Engine::Engine(const FilterOptions& options)
    : options_(options),
      reader_(options.in->makeReader(options.inLayout)),
      writer_(options.out->makeWriter(options.outLayout, FormatPair{*options.in, *options.out, *reader_})),
      needsExplanation_(options.kind->explain != nullptr && anyNeeds(options.outLayout, Column::Needs::explanation)),
      needsNormalized_(anyNeeds(options.outLayout, Column::Needs::normalized)),
      needsFormatted_(anyNeeds(options.outLayout, Column::Needs::formatted)) {
    const Layout& layout = options.outLayout;
    const auto makeToken = [](std::string_view label, Token& token) {
        if (label.size() >= token.bytes.size()) return false;
        std::copy(label.begin(), label.end(), token.bytes.begin());
        token.bytes[label.size()] = '\n';
        token.size = label.size() + 1;
        return true;
    };
    onlyPlainVerdicts_ = options.in->shape == Format::Shape::value && options.out->shape == Format::Shape::value &&
                         layout.emitted.size() == 1 && layout.emitted.front()->needs == Column::Needs::verdict &&
                         options.kind->check != nullptr && options.maxRecordBytes >= kFastUnits &&
                         makeToken(layout.invalidLabel, tokens_[0]) && makeToken(layout.validLabel, tokens_[1]);
}

std::size_t Engine::process(std::string_view lines, std::uint64_t& limit, Output& out, std::size_t outputBytes) {
    if (onlyPlainVerdicts_) return processVerdicts(lines, limit, out, outputBytes);
    const char* at = lines.data();
    const char* const end = at + lines.size();
    while (at < end && limit > 0 && out.size() < outputBytes) {
        const auto* lineEnd = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        processRecord({at, static_cast<std::size_t>(lineEnd - at)}, out);
        at = lineEnd + 1;
        --limit;
    }
    return static_cast<std::size_t>(at - lines.data());
}

std::size_t Engine::processVerdicts(std::string_view lines, std::uint64_t& limit, Output& out,
                                    std::size_t outputBytes) {
    const auto check = options_.kind->check;
    const bool keepCarriageReturn = options_.keepCarriageReturn;
    const char* at = lines.data();
    const char* const end = at + lines.size();
    WidenedLine<kFastUnits> line;
    std::uint64_t left = limit;
    std::uint64_t valid = 0;
    std::uint64_t handled = 0;
    while (at < end && left > 0 && out.size() < outputBytes) {
        --left;
        widenLine(at, line);
        if (line.length == WidenedLine<kFastUnits>::kNotPlain) {
            const auto* lineEnd = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
            processRecord({at, static_cast<std::size_t>(lineEnd - at)}, out);
            at = lineEnd + 1;
            continue;
        }
        at += line.length + 1;
        std::size_t length = line.length;
        if (length > 0 && line.units[length - 1] == u'\r' && !keepCarriageReturn) --length;
        const bool isValid = check({line.units.data(), length}, options_.settings);
        const Token& token = tokens_[isValid ? 1 : 0];
        std::memcpy(out.room(token.bytes.size()), token.bytes.data(), token.bytes.size());
        out.advance(token.size);
        valid += isValid ? 1 : 0;
        ++handled;
    }
    limit = left;
    counts_.valid += valid;
    counts_.invalid += handled - valid;
    return static_cast<std::size_t>(at - lines.data());
}

void Engine::processRecord(std::string_view line, Output& out) {
    line = withoutLineEnd(line, options_.keepCarriageReturn);
    if (line.size() > options_.maxRecordBytes) {
        skimOverlong(line);
        return endOverlong(out);
    }
    record_.line = line;
    record_.traits = lineTraits(line);
    record_.wellFormed = !record_.traits.nul && (!record_.traits.nonAscii || ZORPlatform::isWellFormedUtf8(line));
    reader_->read(record_);
    if (!record_.wellFormed) {
        // What a record without fields holds may still be shown, mended.
        const std::string_view shown = options_.in->shape == Format::Shape::value ? line : record_.value;
        record_.unreadable("bad_utf8");
        record_.value = shown;
    }
    switch (record_.status) {
        case Record::Status::text:
            judge(widened(record_.value));
            break;
        case Record::Status::absent:
            judgeAbsent();
            break;
        case Record::Status::unreadable:
            judgeUnreadable();
            break;
    }
    count(outcome_.verdict);
    writer_->write(record_, outcome_, out);
}

void Engine::judge(std::u16string_view text) {
    const Kind& kind = *options_.kind;
    outcome_ = {};
    if (needsExplanation_) {
        const ZORFoundation::Explanation explanation = kind.explain(text, options_.settings);
        outcome_.verdict = explanation.isValid() ? Verdict::valid : Verdict::invalid;
        outcome_.reason = name(explanation.rule);
        if (!explanation.isValid()) outcome_.offset = explanation.position;
    } else {
        // A kind that can only be formatted has nothing to hold against a text.
        const bool isValid = kind.check == nullptr || kind.check(text, options_.settings);
        outcome_.verdict = isValid ? Verdict::valid : Verdict::invalid;
        outcome_.reason = name(ZORFoundation::BrokenRule::none);
    }
    if (needsNormalized_) {
        normalized_ = ZORPlatform::utf8(kind.normalize(text, options_.settings));
        outcome_.normalized = normalized_;
    }
    if (needsFormatted_) {
        formatted_ = ZORPlatform::utf8(kind.format(text, options_.settings));
        outcome_.formatted = formatted_;
    }
}

void Engine::judgeUnreadable() {
    outcome_ = {.verdict = Verdict::invalid, .reason = record_.reason, .offset = {}, .normalized = {}, .formatted = {}};
    if (record_.reason == "bad_utf8" && !record_.value.empty()) {
        outcome_.normalized = record_.value;
        outcome_.formatted = record_.value;
    }
}

void Engine::judgeAbsent() {
    outcome_ = {};
    outcome_.verdict = options_.absentIsInvalid ? Verdict::invalid : Verdict::absent;
    outcome_.reason = "absent_value";
}

void Engine::endOverlong(Output& out) {
    outcome_ = {.verdict = Verdict::invalid, .reason = "too_long", .offset = {}, .normalized = {}, .formatted = {}};
    count(outcome_.verdict);
    writer_->writeSkimmed(skim_, outcome_, out);
    skim_ = {};
}

std::u16string_view Engine::widened(std::string_view text) {
    if (units_.size() < text.size()) units_.resize(std::max<std::size_t>(2 * text.size(), 256));
    return {units_.data(), ZORPlatform::utf16Unchecked(text, units_.data())};
}

void Engine::count(Verdict verdict) noexcept {
    switch (verdict) {
        case Verdict::valid:
            ++counts_.valid;
            break;
        case Verdict::invalid:
            ++counts_.invalid;
            break;
        case Verdict::absent:
            ++counts_.absent;
            break;
    }
}

}  // namespace zor
