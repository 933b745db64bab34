// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Base64CodingInternal.h>

#include <ZORPlatform/Foundation/WrittenText.h>

#include <algorithm>

namespace ZORFoundation {
namespace {

using ZORPlatform::kBase64Values;

const ZORPlatform::Base64Functions<char16_t>& functions() noexcept { return ZORPlatform::base64<char16_t>(); }

void writeGroup(const std::uint8_t* values, std::uint8_t* bytes) noexcept {
    bytes[0] = static_cast<std::uint8_t>(values[0] << 2 | values[1] >> 4);
    bytes[1] = static_cast<std::uint8_t>(values[1] << 4 | values[2] >> 2);
    bytes[2] = static_cast<std::uint8_t>(values[2] << 6 | values[3]);
}

// Where clean runs are shorter than this, stepping from one to the next costs more than the vector form saves.
constexpr std::size_t kProductiveGroups = 16;
constexpr std::size_t kDirtUnits = 512;

constexpr std::size_t kFewUnits = 16;

// Below 64 a value. Units above ASCII have the last entry.
constexpr std::uint8_t kSkipped = 64;
constexpr std::uint8_t kEndsText = 65;
constexpr std::uint8_t kIsNotAscii = 66;
using Codes = std::array<std::uint8_t, 129>;

constexpr Codes codesFor(Base64Padding padding) noexcept {
    Codes codes{};
    for (std::size_t i = 0; i < 128; ++i) codes[i] = std::min(kBase64Values[i], kSkipped);
    if (padding == Base64Padding::kEnds) codes[u'='] = kEndsText;
    codes[128] = kIsNotAscii;
    return codes;
}

constexpr std::array<Codes, 2> kCodes = {codesFor(Base64Padding::kIsSkipped), codesFor(Base64Padding::kEnds)};

std::uint8_t codeOf(char16_t unit, const Codes& codes) noexcept { return codes[std::min<unsigned>(unit, 128)]; }

char16_t characterOf(unsigned value) noexcept {
    return static_cast<unsigned char>(ZORPlatform::kBase64Alphabet[value]);
}

std::uint8_t valueOf(char character) noexcept { return kBase64Values[static_cast<unsigned char>(character)]; }

// A group of one byte or two, and its padding.
void writePaddedGroup(std::span<const std::uint8_t> bytes, char16_t* units) noexcept {
    const unsigned first = bytes[0];
    const unsigned second = bytes.size() == 2 ? bytes[1] : 0;
    units[0] = characterOf(first >> 2);
    units[1] = characterOf((first << 4 | second >> 4) & 0x3F);
    units[2] = bytes.size() == 2 ? characterOf(second << 2 & 0x3F) : u'=';
    units[3] = u'=';
}

// Groups, and the padded one behind them.
void writeLine(std::span<const std::uint8_t> bytes, char16_t* text) noexcept {
    const std::size_t groups = bytes.size() / 3;
    functions().encode(bytes.data(), groups, text);
    if (bytes.size() != 3 * groups) writePaddedGroup(bytes.subspan(3 * groups), text + 4 * groups);
}

// Longer texts are worth the steps of a reader, which never goes over a character twice.
constexpr std::size_t kLongestPlainText = 1024;

Base64Stop stopFor(std::uint8_t code) noexcept {
    return code == kEndsText ? Base64Stop::kPadding : Base64Stop::kNotAscii;
}

}  // namespace

std::u16string base64Text(std::span<const std::uint8_t> bytes) {
    return ZORPlatform::writtenText(base64Units(bytes.size()),
                                    [=](char16_t* text) noexcept { writeLine(bytes, text); });
}

std::u16string base64Text(std::span<const std::uint8_t> bytes, const Base64Lines& lines) {
    const std::size_t linesBytes = lines.count * 3 * lines.groups;
    const std::size_t linesUnits = lines.count * (4 * lines.groups + lines.lineBreak.size());
    const std::size_t restUnits = base64Units(bytes.size() - linesBytes);
    const std::u16string_view end = lines.endsInBreak ? lines.lineBreak : std::u16string_view();
    return ZORPlatform::writtenText(linesUnits + restUnits + end.size(), [=, &lines](char16_t* text) noexcept {
        functions().encodeLines(bytes.data(), lines.count, lines.groups, lines.lineBreak, text);
        writeLine(bytes.subspan(linesBytes), text + linesUnits);
        std::copy(end.begin(), end.end(), text + linesUnits + restUnits);
    });
}

std::size_t decodePlainText(std::u16string_view text, std::uint8_t* bytes) noexcept {
    if (text.size() > kLongestPlainText || text.size() % 4 != 0 || text.empty()) return 0;
    const std::size_t padding = text.back() != u'=' ? 0 : text[text.size() - 2] != u'=' ? 1 : 2;
    const std::size_t groups = text.size() / 4 - (padding == 0 ? 0 : 1);
    if (functions().decode(text.data(), groups, bytes) != groups) return 0;
    if (padding == 0) return 3 * groups;

    const Codes& codes = kCodes[static_cast<std::size_t>(Base64Padding::kEnds)];
    const char16_t* const last = text.data() + 4 * groups;
    const unsigned first = codeOf(last[0], codes);
    const unsigned second = codeOf(last[1], codes);
    const unsigned third = padding == 1 ? codeOf(last[2], codes) : 0;
    if ((first | second | third) >= kSkipped) return 0;
    bytes[3 * groups] = static_cast<std::uint8_t>(first << 2 | second >> 4);
    bytes[3 * groups + 1] = static_cast<std::uint8_t>(second << 4 | third >> 2);
    return 3 * groups + 3 - padding;
}

Base64Reader::Progress Base64Reader::read(std::u16string_view text, std::uint8_t* bytes) {
    Progress progress{Base64Stop::kEndOfText, 0, 0};
    while (progress.stop == Base64Stop::kEndOfText && progress.units < text.size()) {
        std::size_t groups = kProductiveGroups;
        if (heldCount_ == 0) {
            groups = readCleanGroups(text.substr(progress.units), bytes + progress.bytes);
            progress.units += 4 * groups;
            progress.bytes += 3 * groups;
        }
        const std::u16string_view rest = text.substr(progress.units);
        std::uint8_t* const out = bytes + progress.bytes;
        const bool isDirty = groups < kProductiveGroups && rest.size() >= kFewUnits;
        const Progress step = isDirty ? readDirt(rest, out) : readGroup(rest, out);
        progress = {step.stop, progress.units + step.units, progress.bytes + step.bytes};
    }
    return progress;
}

std::size_t Base64Reader::readCleanGroups(std::u16string_view text, std::uint8_t* bytes) noexcept {
    // A padded group at the end is not clean. Not to offer it is quicker than to let it be found out.
    const std::size_t offered = text.ends_with(u'=') ? text.size() - 1 : text.size();
    const std::size_t groups = functions().decode(text.data(), offered / 4, bytes);
    if (groups != 0) {
        // Of a full group only the second value is ever asked for again. It comes from the text: what has just been
        // stored under a mask is slow to load.
        held_[1] = valueOf(static_cast<char>(text[4 * groups - 3]));
        hasSkipped_ = false;
    }
    return groups;
}

// The rule itself: one unit after the other, until a group is full. Line breaks between groups are passed without
// beginning the next group, which may be the first of a clean line.
Base64Reader::Progress Base64Reader::readGroup(std::u16string_view text, std::uint8_t* bytes) noexcept {
    const Codes& codes = kCodes[static_cast<std::size_t>(padding_)];
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::uint8_t code = codeOf(text[at], codes);
        if (code > kSkipped) return {stopFor(code), at, 0};
        if (code == kSkipped) {
            hasSkipped_ = true;
            continue;
        }
        if (heldCount_ == 0 && at != 0) return {Base64Stop::kEndOfText, at, 0};
        held_[heldCount_++] = code;
        if (heldCount_ < 4) continue;
        writeGroup(held_.data(), bytes);
        heldCount_ = 0;
        hasSkipped_ = false;
        return {Base64Stop::kEndOfText, at + 1, 3};
    }
    return {Base64Stop::kEndOfText, text.size(), 0};
}

// The same rule for text in which other characters are frequent: what counts is filtered out and decoded as clean text.
Base64Reader::Progress Base64Reader::readDirt(std::u16string_view text, std::uint8_t* bytes) noexcept {
    text = text.substr(0, kDirtUnits);
    ZORPlatform::WipingScratch<char, kDirtUnits + 64> scratch;
    char* const characters = scratch.first(heldCount_ + (text.size() + 63) / 64 * 64).data();
    for (std::size_t i = 0; i < heldCount_; ++i) characters[i] = ZORPlatform::kBase64Alphabet[held_[i]];

    const bool stopsAtPadding = padding_ == Base64Padding::kEnds;
    const ZORPlatform::Base64Filtered filtered =
        functions().filter(text.data(), text.size(), stopsAtPadding, characters + heldCount_);
    const std::size_t groups = (heldCount_ + filtered.characters) / 4;
    const std::size_t rest = (heldCount_ + filtered.characters) % 4;
    ZORPlatform::base64<char>().decode(characters, groups, bytes);

    const Codes& codes = kCodes[static_cast<std::size_t>(padding_)];
    const bool hasSkippedLast = filtered.units != 0 && codeOf(text[filtered.units - 1], codes) == kSkipped;
    hasSkipped_ = hasSkippedLast || (hasSkipped_ && filtered.characters == 0);
    if (groups != 0) held_[1] = valueOf(characters[4 * groups - 3]);
    for (std::size_t i = 0; i < rest; ++i) held_[i] = valueOf(characters[4 * groups + i]);
    heldCount_ = rest;
    const bool isStopped = filtered.units < text.size();
    return {isStopped ? stopFor(codeOf(text[filtered.units], codes)) : Base64Stop::kEndOfText, filtered.units,
            3 * groups};
}

std::array<std::uint8_t, 2> Base64Reader::heldBytes() const noexcept {
    return {static_cast<std::uint8_t>(held_[0] << 2 | held_[1] >> 4),
            static_cast<std::uint8_t>(held_[1] << 4 | held_[2] >> 2)};
}

bool isAscii(std::u16string_view text) noexcept {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

}  // namespace ZORFoundation
