// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the two Base64 codecs have in common: texts are written group by group, and read group by group across
// characters that are skipped. What to do with padding, line breaks and an incomplete last group is each codec's own.

#include <ZORPlatform/Foundation/Base64.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ZORFoundation {

/// How many units Base64 of so many bytes has, padding included and line breaks not.
[[nodiscard]] constexpr std::size_t base64Units(std::size_t bytes) noexcept {
    return bytes / 3 * 4 + (bytes % 3 == 0 ? 0 : 4);
}

/// One line of Base64, however long, padded where it must be.
[[nodiscard]] std::u16string base64Text(std::span<const std::uint8_t> bytes);

/// How a Base64 text is broken into lines.
struct Base64Lines {
    std::size_t count;   ///< Whole lines, with a break behind each of them. The rest is one line, however long.
    std::size_t groups;  ///< Groups in a whole line.
    std::u16string_view lineBreak;  ///< One unit or two.
    bool endsInBreak;               ///< Whether the rest has a break behind it, too.
};

/// Base64 in lines, padded where it must be.
[[nodiscard]] std::u16string base64Text(std::span<const std::uint8_t> bytes, const Base64Lines& lines);

/// Decodes the Base64 text that both codecs read alike and that most texts are: short, whole groups without anything
/// between them, of which the last may be padded.
///
/// @param bytes  room for three bytes for each four characters
/// @return the number of bytes; 0 for any other text
[[nodiscard]] std::size_t decodePlainText(std::u16string_view text, std::uint8_t* bytes) noexcept;

/// What "=" means to a reader.
enum class Base64Padding : std::uint8_t { kIsSkipped, kEnds };

/// Why a reader stopped.
enum class Base64Stop : std::uint8_t { kEndOfText, kPadding, kNotAscii };

/// Reads one Base64 text, whole or in pieces. Characters of the alphabet are collected into groups of four, every other
/// ASCII character is skipped.
class Base64Reader {
public:
    struct Progress {
        Base64Stop stop;
        std::size_t units;  ///< Units read; the one that stopped the reader is not among them.
        std::size_t bytes;  ///< Bytes written, three for every full group.
    };

    explicit Base64Reader(Base64Padding padding) noexcept : padding_(padding) {}
    Base64Reader(const Base64Reader&) = delete;
    Base64Reader& operator=(const Base64Reader&) = delete;
    ~Base64Reader() { ZORPlatform::wipe(held_.data(), held_.size()); }

    /// Reads on until `text` ends or something stops the reader.
    ///
    /// @param bytes  room for three bytes for each four of the characters held and to be read
    Progress read(std::u16string_view text, std::uint8_t* bytes);

    /// How many values, none to three, the group has that is not full.
    [[nodiscard]] std::size_t heldCount() const noexcept { return heldCount_; }

    /// What the group that is not full says about its first two bytes. With one value only, the low bits of the first
    /// byte are those of the second value of the group before; zero in the first group.
    [[nodiscard]] std::array<std::uint8_t, 2> heldBytes() const noexcept;

    /// Whether characters were skipped since the last full group, or since the beginning.
    [[nodiscard]] bool hasSkipped() const noexcept { return hasSkipped_; }

private:
    Progress readGroup(std::u16string_view text, std::uint8_t* bytes) noexcept;
    Progress readDirt(std::u16string_view text, std::uint8_t* bytes) noexcept;
    std::size_t readCleanGroups(std::u16string_view text, std::uint8_t* bytes) noexcept;

    Base64Padding padding_;
    bool hasSkipped_ = false;
    std::size_t heldCount_ = 0;
    // The second slot keeps the value of the last full group until the next group has one.
    std::array<std::uint8_t, 4> held_{};
};

/// What a codec makes of a group that is not full when the reader has stopped.
struct Base64End {
    std::array<std::uint8_t, 2> bytes;
    std::ptrdiff_t count;  ///< -1 takes the byte before off.
};

/// The end of a text in ZORBase64, whose reader skips "=". Defined with the codec.
[[nodiscard]] Base64End endOfSkippingText(const Base64Reader& reader) noexcept;

/// The end of a text in ZORAESCrypt, whose reader ends at "=". Defined with the codec.
///
/// @param isAtPadding  whether it did
[[nodiscard]] Base64End endOfPaddedText(const Base64Reader& reader, bool isAtPadding) noexcept;

[[nodiscard]] bool isAscii(std::u16string_view text) noexcept;

}  // namespace ZORFoundation
