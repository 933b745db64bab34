// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HTMLStandInsInternal.h>

#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <bitset>
#include <cstddef>
#include <cstdint>

namespace ZORPlatform {
namespace {

constexpr char32_t kPrivatePlane = 0x100000;
constexpr char32_t kBlock = 0x100;

// Each refused character has a number of its own: the control characters their code, then the 32 noncharacters of the
// Arabic forms, then the last two of every plane.
constexpr char32_t kFirstArabic = 0xFDD0;
constexpr char32_t kArabicNumber = 0x20;
constexpr char32_t kPlaneEndNumber = 0x40;

constexpr char32_t characterOf(char32_t number) noexcept {
    if (number < kArabicNumber || number >= 0x7F) return number;
    if (number < kPlaneEndNumber) return kFirstArabic + (number - kArabicNumber);
    const char32_t planeEnd = number - kPlaneEndNumber;
    return (planeEnd / 2) << 16 | 0xFFFE | (planeEnd % 2);
}

struct Refused {
    std::size_t bytes = 0;  // 0 where the character is one that the parser takes.
    char32_t number = 0;
};

/// The character at a position of well-formed UTF-8.
Refused refusedAt(std::string_view text, std::size_t at) noexcept {
    const auto byte = [&](std::size_t index) -> char32_t {
        return index < text.size() - at ? static_cast<unsigned char>(text[at + index]) : 0;
    };
    const char32_t lead = byte(0);
    if (lead < 0x80) {
        const bool isTaken =
            (lead >= 0x20 && lead != 0x7F) || lead == '\t' || lead == '\n' || lead == '\f' || lead == '\r' || lead == 0;
        return isTaken ? Refused() : Refused{1, lead};
    }
    if (lead == 0xC2 && byte(1) < 0xA0) return {2, byte(1)};
    if (lead == 0xEF) {
        if (byte(1) == 0xB7 && byte(2) >= 0x90 && byte(2) < 0xB0) return {3, kArabicNumber + (byte(2) - 0x90)};
        if (byte(1) == 0xBF && byte(2) >= 0xBE) return {3, kPlaneEndNumber + (byte(2) & 1)};
    }
    if (lead >= 0xF0 && (byte(1) & 0x0F) == 0x0F && byte(2) == 0xBF && byte(3) >= 0xBE) {
        const char32_t plane = (lead & 7) << 2 | (byte(1) & 0x3F) >> 4;
        return {4, kPlaneEndNumber + plane * 2 + (byte(3) & 1)};
    }
    return {};
}

/// A block of private use of which the text has no character.
std::optional<char32_t> unusedBlock(std::string_view text) {
    constexpr char kLead = '\xF4';
    std::bitset<kBlock> used;
    // The plane's last two characters are refused ones.
    used.set(used.size() - 1);
    for (std::size_t at = text.find(kLead); at != std::string_view::npos; at = text.find(kLead, at + 1)) {
        if (text.size() - at < 3) break;
        const auto second = static_cast<unsigned char>(text[at + 1]);
        const auto third = static_cast<unsigned char>(text[at + 2]);
        used.set(static_cast<std::size_t>((second & 0x0F) << 4 | (third & 0x3F) >> 2));
    }
    for (char32_t block = 0; block < used.size(); ++block) {
        if (!used[block]) return kPrivatePlane + block * kBlock;
    }
    return std::nullopt;
}

void appendPrivate(std::string& text, char32_t character) {
    constexpr char32_t kLead = 0xF0;
    for (const char32_t byte : {kLead | character >> 18, 0x80 | (character >> 12 & 0x3F),
                                0x80 | (character >> 6 & 0x3F), 0x80 | (character & 0x3F)}) {
        text += static_cast<char>(byte);
    }
}

}  // namespace

HTMLStandIns::HTMLStandIns(std::string_view markup) : markup_(markup) {
    std::size_t copied = 0;
    for (std::size_t at = 0; at < markup.size(); ++at) {
        const Refused refused = refusedAt(markup, at);
        if (refused.bytes == 0) continue;
        if (!block_) block_ = unusedBlock(markup);
        if (!block_) return;
        room_.append(markup, copied, at - copied);
        appendPrivate(room_, *block_ + refused.number);
        copied = at + refused.bytes;
        at = copied - 1;
    }
    if (!block_) return;
    room_.append(markup, copied);
    markup_ = room_;
}

std::u16string HTMLStandIns::text(std::string_view parsed) const {
    std::u16string text = utf16(parsed);
    if (!block_) return text;
    std::u16string restored;
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto [scalar, end] = scalarAt(text, at);
        if (scalar >= *block_ && scalar < *block_ + kBlock) {
            restored.append(text, copied, at - copied);
            appendScalar(restored, characterOf(scalar - *block_));
            copied = end;
        }
        at = end;
    }
    restored.append(text, copied);
    return restored;
}

}  // namespace ZORPlatform
