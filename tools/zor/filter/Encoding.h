// SPDX-License-Identifier: Apache-2.0
#pragma once

// Writing text so that whatever the bytes are, the output is well-formed UTF-8 and a line stays one line.

#include <tools/zor/filter/Output.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace zor {

inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

/// Whether `bytes` is UTF-8 without NUL: what a rule may see.
[[nodiscard]] inline bool isReadableText(std::string_view bytes) noexcept {
    return bytes.find('\0') == std::string_view::npos && ZORPlatform::isWellFormedUtf8(bytes);
}

/// The bytes of the well-formed scalar that `bytes` begins with, 0 when it begins with none.
[[nodiscard]] inline std::size_t scalarBytes(std::string_view bytes) noexcept {
    const auto lead = static_cast<unsigned char>(bytes.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    return bytes.size() >= length && ZORPlatform::isWellFormedUtf8(bytes.substr(0, length)) ? length : 0;
}

/// Appends `text`; each byte for which `Escapes::isSpecial(byte)` holds and each byte that belongs to no well-formed
/// scalar is handed to `Escapes::write(byte, out)` instead.
template <typename Escapes>
void appendEscaped(std::string_view text, Output& out, const Escapes& escapes) {
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size();) {
        const char byte = text[at];
        const bool ascii = static_cast<signed char>(byte) >= 0;
        if (ascii && !escapes.isSpecial(byte)) {
            ++at;
            continue;
        }
        if (const std::size_t bytes = ascii ? 0 : scalarBytes(text.substr(at)); bytes > 0) {
            at += bytes;
            continue;
        }
        out.append(text.substr(copied, at - copied));
        escapes.write(byte, out);
        copied = ++at;
    }
    out.append(text.substr(copied));
}

/// For formats without escapes: what would break a line or a column, and what is no text, becomes U+FFFD.
struct ReplacingEscapes {
    char separator;

    [[nodiscard]] bool isSpecial(char byte) const noexcept {
        return byte == '\n' || byte == '\r' || byte == '\0' || byte == separator;
    }
    static void write(char, Output& out) { out.append(kReplacementCharacter); }
};

/// The escape of two characters that JSON and TAB-separated values both have for `byte`; empty for most bytes.
[[nodiscard]] constexpr std::string_view shortEscape(char byte) noexcept {
    switch (byte) {
        case '\\':
            return "\\\\";
        case '\t':
            return "\\t";
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        default:
            return {};
    }
}

inline void appendNumber(std::size_t number, Output& out) {
    std::array<char, 20> digits{};
    std::size_t begin = digits.size();
    do {
        digits[--begin] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number > 0);
    out.append({digits.data() + begin, digits.size() - begin});
}

}  // namespace zor
