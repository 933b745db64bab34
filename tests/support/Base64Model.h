// SPDX-License-Identifier: Apache-2.0
#pragma once

// The Base64 rules read literally, character by character, to hold the fast forms against. Slow on purpose.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace support {

inline constexpr std::u16string_view kLiteralAlphabet =
    u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The value of a character of the alphabet.
inline std::optional<unsigned> literalValue(char16_t unit) {
    const std::size_t at = kLiteralAlphabet.find(unit);
    if (at == std::u16string_view::npos) return std::nullopt;
    return static_cast<unsigned>(at);
}

inline bool literalIsAscii(std::u16string_view text) {
    for (const char16_t unit : text) {
        if (unit > 0x7F) return false;
    }
    return true;
}

/// The bytes that a group of four values says.
inline std::array<std::uint8_t, 3> literalGroup(const std::array<unsigned, 4>& values) {
    const unsigned word = values[0] * 262144 + values[1] * 4096 + values[2] * 64 + values[3];
    return {static_cast<std::uint8_t>(word / 65536), static_cast<std::uint8_t>(word / 256 % 256),
            static_cast<std::uint8_t>(word % 256)};
}

/// `zor_dataFromBase64String:`: passes of up to four characters, each counting one byte less than it found characters.
inline std::vector<std::uint8_t> literalDataFromBase64String(std::u16string_view text) {
    if (!literalIsAscii(text)) return {};
    std::vector<std::uint8_t> bytes(text.size() + 4);
    std::ptrdiff_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        std::array<unsigned, 4> values{};
        std::size_t found = 0;
        while (found < 4 && at < text.size()) {
            if (const auto value = literalValue(text[at])) values[found++] = *value;
            ++at;
        }
        const auto group = literalGroup(values);
        for (std::size_t i = 0; i + 1 < found; ++i) bytes[static_cast<std::size_t>(count) + i] = group[i];
        count += static_cast<std::ptrdiff_t>(found) - 1;
    }
    bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return bytes;
}

/// `initWithBase64EncodedString:`: groups up to the first "=".
inline std::vector<std::uint8_t> literalInitWithBase64EncodedString(std::u16string_view text) {
    if (!literalIsAscii(text)) return {};
    std::vector<std::uint8_t> bytes;
    std::array<unsigned, 4> slots{};
    std::size_t held = 0;
    for (const char16_t unit : text) {
        if (unit == u'=') {
            const auto group = literalGroup(slots);
            if (held > 0) bytes.push_back(group[0]);
            if (held == 3) bytes.push_back(group[1]);
            break;
        }
        const auto value = literalValue(unit);
        if (!value) continue;
        slots[held++] = *value;
        if (held < 4) continue;
        for (const std::uint8_t byte : literalGroup(slots)) bytes.push_back(byte);
        held = 0;
    }
    return bytes;
}

/// The text of three bytes at most, padded.
inline std::u16string literalEncodedGroup(std::span<const std::uint8_t> bytes) {
    unsigned word = 0;
    for (std::size_t i = 0; i < 3; ++i) word = word * 256 + (i < bytes.size() ? bytes[i] : 0U);
    std::u16string text;
    for (const unsigned weight : {262144U, 4096U, 64U, 1U}) text += kLiteralAlphabet[word / weight % 64];
    for (std::size_t i = bytes.size(); i < 3; ++i) text[i + 1] = u'=';
    return text;
}

/// `zor_base64EncodedString`: CR LF after every 48 bytes that more bytes follow.
inline std::u16string literalBase64EncodedString(std::span<const std::uint8_t> bytes) {
    std::u16string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        if (at != 0 && at % 48 == 0) text += u"\r\n";
        text += literalEncodedGroup(bytes.subspan(at, std::min<std::size_t>(3, bytes.size() - at)));
    }
    return text;
}

/// `zor_base64EncodingWithLineLength:`: a count of characters, raised by four after every group.
inline std::u16string literalBase64EncodingWithLineLength(std::span<const std::uint8_t> bytes, std::size_t lineLength) {
    std::u16string text;
    std::size_t count = 0;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        text += literalEncodedGroup(bytes.subspan(at, std::min<std::size_t>(3, bytes.size() - at)));
        count += 4;
        if (lineLength != 0 && count >= lineLength) {
            text += u'\n';
            count = 0;
        }
    }
    return text;
}

/// A Base64 text of about `units` characters with something else mixed in, about one in `dirtyIn`.
inline std::u16string dirtyBase64(std::size_t units, unsigned dirtyIn, unsigned seed) {
    std::mt19937 random(seed);
    std::u16string text;
    while (text.size() < units) {
        text += kLiteralAlphabet[random() % 64];
        if (random() % dirtyIn == 0) text += std::u16string_view(u"\r\n -_.\t")[random() % 7];
    }
    return text;
}

/// The texts that `encode` makes of up to 69 bytes, with a character that is none of theirs at each place.
template <class Encode>
std::vector<std::u16string> base64WithStrays(const Encode& encode) {
    std::vector<std::u16string> texts;
    for (std::size_t length = 0; length < 70; ++length) {
        std::vector<std::uint8_t> bytes(length);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{0xA0});
        const std::u16string text = encode(bytes);
        for (const char16_t stray : std::u16string_view(u"=\n-\u0141")) {
            for (std::size_t at = 0; at < text.size(); ++at) texts.emplace_back(text)[at] = stray;
        }
    }
    return texts;
}

}  // namespace support
