// SPDX-License-Identifier: Apache-2.0
#pragma once

// Base64 (RFC 4648, section 4) of whole groups: three bytes, four characters. Padding, stray characters and where lines
// end are the business of each codec and writer.

#include <ZORPlatform/Foundation/VectorLevel.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ZORPlatform {

inline constexpr std::string_view kBase64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// In a table of values: not a character of the alphabet.
inline constexpr std::uint8_t kNotBase64 = 0xFF;

/// The values of the 128 ASCII characters.
inline constexpr std::array<std::uint8_t, 128> kBase64Values = [] {
    std::array<std::uint8_t, 128> values{};
    values.fill(kNotBase64);
    for (std::size_t i = 0; i < kBase64Alphabet.size(); ++i) {
        values[static_cast<unsigned char>(kBase64Alphabet[i])] = static_cast<std::uint8_t>(i);
    }
    return values;
}();

/// How far a filter went, and how many characters it copied.
struct Base64Filtered {
    std::size_t units;
    std::size_t characters;
};

/// One set of functions, for one level and one kind of text unit: `char` or `char16_t`. All are pure.
template <typename Unit>
struct Base64Functions {
    /// Encodes `groups` × 3 bytes as `groups` × 4 units.
    void (*encode)(const std::uint8_t* bytes, std::size_t groups, Unit* text);
    /// Encodes `lines` lines of `groups` groups each, with `lineBreak`, one unit or two, behind each of them.
    void (*encodeLines)(const std::uint8_t* bytes, std::size_t lines, std::size_t groups,
                        std::basic_string_view<Unit> lineBreak, Unit* text);
    /// Decodes the groups that `text` begins with, at most `groups`, up to the first one that holds anything else than
    /// characters of the alphabet. Writes three bytes a group and nothing behind them.
    ///
    /// @return the number of groups decoded
    std::size_t (*decode)(const Unit* text, std::size_t groups, std::uint8_t* bytes);
    /// Copies the characters of the alphabet that `text` holds, one behind the other, and leaves out all others, up to
    /// the first unit that is not ASCII and, if asked for, the first "=".
    ///
    /// @param characters  room for `units` rounded up to a multiple of 64
    Base64Filtered (*filter)(const Unit* text, std::size_t units, bool stopsAtPadding, char* characters);
};

/// The functions that use no more than `level`, which must not be above the machine's.
template <typename Unit>
[[nodiscard]] Base64Functions<Unit> base64Functions(VectorLevel level) noexcept;

/// The functions for this machine.
template <typename Unit>
[[nodiscard]] inline const Base64Functions<Unit>& base64() noexcept {
    static const Base64Functions<Unit> functions = base64Functions<Unit>(machineVectorLevel());
    return functions;
}

extern template Base64Functions<char> base64Functions<char>(VectorLevel) noexcept;
extern template Base64Functions<char16_t> base64Functions<char16_t>(VectorLevel) noexcept;

}  // namespace ZORPlatform
