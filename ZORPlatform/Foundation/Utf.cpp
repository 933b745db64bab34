// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Utf.h>

#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/VectorInstructionsInternal.h>
#include <ZORPlatform/Foundation/VectorLevel.h>

#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace ZORPlatform {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

// ICU counts in int32_t; longer texts are taken in pieces that end where a character may end.
constexpr std::size_t kPieceUnits = std::size_t{1} << 29;

std::size_t asciiPrefix(std::string_view bytes) noexcept {
    std::size_t n = 0;
#if defined(__x86_64__)
    for (; n + 16 <= bytes.size(); n += 16) {
        if (_mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data() + n))) != 0) break;
    }
#endif
    for (; n + 8 <= bytes.size(); n += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + n, 8);
        if ((word & 0x8080808080808080U) != 0) break;
    }
    while (n < bytes.size() && static_cast<unsigned char>(bytes[n]) < 0x80) ++n;
    return n;
}

std::size_t asciiPrefix(std::u16string_view text) noexcept {
    std::size_t n = 0;
    for (; n + 4 <= text.size(); n += 4) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + n, 8);
        if ((word & 0xFF80FF80FF80FF80U) != 0) break;
    }
    while (n < text.size() && text[n] < 0x80) ++n;
    return n;
}

// The bytes of one character at most, from `at` on, as ICU counts them.
std::int32_t windowAt(std::string_view bytes, std::size_t at) noexcept {
    return static_cast<std::int32_t>(std::min<std::size_t>(bytes.size() - at, U8_MAX_LENGTH));
}

// The longest beginning of at most kPieceUnits that does not end inside a pair.
std::u16string_view firstPiece(std::u16string_view text) noexcept {
    if (text.size() <= kPieceUnits) return text;
    return text.substr(0, U16_IS_TRAIL(text[kPieceUnits]) ? kPieceUnits - 1 : kPieceUnits);
}

// Copies the ASCII bytes that `bytes` begins with as units.
std::size_t widenAsciiPrefix(std::string_view bytes, char16_t* units) noexcept {
    std::size_t n = 0;
#if defined(__x86_64__)
    for (; n + 16 <= bytes.size(); n += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data() + n));
        if (_mm_movemask_epi8(block) != 0) break;
        auto* const out = reinterpret_cast<__m128i*>(units + n);
        _mm_storeu_si128(out, _mm_unpacklo_epi8(block, _mm_setzero_si128()));
        _mm_storeu_si128(out + 1, _mm_unpackhi_epi8(block, _mm_setzero_si128()));
    }
#endif
    for (; n < bytes.size() && static_cast<unsigned char>(bytes[n]) < 0x80; ++n) {
        units[n] = static_cast<unsigned char>(bytes[n]);
    }
    return n;
}

#if defined(__x86_64__)

constexpr std::size_t kBlockUnits = 64;

// Copies blocks of ASCII units as bytes, up to the first block that holds anything else. @return the number of units
[[gnu::target("avx2")]] std::size_t copyAsciiBlocksAVX2(const char16_t* text, std::size_t units, char* bytes) noexcept {
    const __m256i above = _mm256_set1_epi16(static_cast<short>(0xFF80));
    std::size_t n = 0;
    for (; n + kBlockUnits <= units; n += kBlockUnits) {
        const auto* in = reinterpret_cast<const __m256i*>(text + n);
        const __m256i first = _mm256_loadu_si256(in);
        const __m256i second = _mm256_loadu_si256(in + 1);
        const __m256i third = _mm256_loadu_si256(in + 2);
        const __m256i fourth = _mm256_loadu_si256(in + 3);
        const __m256i all = _mm256_or_si256(_mm256_or_si256(first, second), _mm256_or_si256(third, fourth));
        if (_mm256_testz_si256(all, above) == 0) break;
        auto* const out = reinterpret_cast<__m256i*>(bytes + n);
        _mm256_storeu_si256(out, _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), 0xD8));
        _mm256_storeu_si256(out + 1, _mm256_permute4x64_epi64(_mm256_packus_epi16(third, fourth), 0xD8));
    }
    _mm256_zeroupper();
    return n;
}

#endif

// Copies the ASCII units that `text` begins with, at most `room`, as bytes.
std::size_t copyAsciiPrefix(std::u16string_view text, char* bytes, std::size_t room) noexcept {
    const std::size_t limit = std::min(text.size(), room);
    std::size_t n = 0;
#if defined(__x86_64__)
    if (limit >= kBlockUnits && machineVectorLevel() >= VectorLevel::kAVX2) {
        n = copyAsciiBlocksAVX2(text.data(), limit, bytes);
    }
    const __m128i above = _mm_set1_epi16(static_cast<short>(0xFF80));
    for (; n + 16 <= limit; n += 16) {
        const auto* units = reinterpret_cast<const __m128i*>(text.data() + n);
        const __m128i first = _mm_loadu_si128(units);
        const __m128i second = _mm_loadu_si128(units + 1);
        const __m128i odd = _mm_and_si128(_mm_or_si128(first, second), above);
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(odd, _mm_setzero_si128())) != 0xFFFF) break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + n), _mm_packus_epi16(first, second));
    }
#endif
    for (; n < limit && text[n] < 0x80; ++n) bytes[n] = static_cast<char>(text[n]);
    return n;
}

// Writes a scalar of up to U+10FFFF. @return the end of what was written; nullptr when there is no room
char* writeScalar(char32_t scalar, char* begin, const char* end) noexcept {
    const auto unit = [](char32_t lead, char32_t bits) { return static_cast<char>(lead | bits); };
    const auto trail = [](char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    const std::ptrdiff_t room = end - begin;
    if (scalar < 0x80) {
        if (room < 1) return nullptr;
        *begin++ = static_cast<char>(scalar);
    } else if (scalar < 0x800) {
        if (room < 2) return nullptr;
        *begin++ = unit(0xC0, scalar >> 6);
        *begin++ = trail(scalar);
    } else if (scalar < 0x10000) {
        if (room < 3) return nullptr;
        *begin++ = unit(0xE0, scalar >> 12);
        *begin++ = trail(scalar >> 6);
        *begin++ = trail(scalar);
    } else {
        if (room < 4) return nullptr;
        *begin++ = unit(0xF0, scalar >> 18);
        *begin++ = trail(scalar >> 12);
        *begin++ = trail(scalar >> 6);
        *begin++ = trail(scalar);
    }
    return begin;
}

struct Utf8Conversion {
    std::string bytes;
    bool wellFormed;
};

Utf8Conversion convertToUtf8(std::u16string_view text) {
    const std::size_t ascii = asciiPrefix(text);
    Utf8Conversion result{std::string(ascii + 3 * (text.size() - ascii), '\0'), true};
    std::copy_n(text.data(), ascii, result.bytes.data());
    std::size_t written = ascii;
    for (text.remove_prefix(ascii); !text.empty();) {
        const std::u16string_view piece = firstPiece(text);
        std::int32_t length = 0;
        std::int32_t substitutions = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8WithSub(result.bytes.data() + written, static_cast<std::int32_t>(3 * piece.size()), &length,
                           piece.data(), static_cast<std::int32_t>(piece.size()), kReplacement, &substitutions,
                           &status);
        result.wellFormed = result.wellFormed && substitutions == 0;
        written += static_cast<std::size_t>(length);
        text.remove_prefix(piece.size());
    }
    result.bytes.resize(written);
    return result;
}

}  // namespace

std::u16string_view wellFormedPrefix(std::u16string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        if ((text[at] & 0xF800) != 0xD800) {
            ++at;
            continue;
        }
        const ScalarStep step = scalarAt(text, at);
        if (step.scalar < 0x10000) break;
        at = step.end;
    }
    return text.substr(0, at);
}

Utf8Prefix utf8Prefix(std::u16string_view text, std::span<char> buffer) noexcept {
    const char* const end = buffer.data() + buffer.size();
    char* at = buffer.data();
    std::size_t units = 0;
    while (units < text.size()) {
        const std::size_t ascii = copyAsciiPrefix(text.substr(units), at, static_cast<std::size_t>(end - at));
        units += ascii;
        at += ascii;
        // Text outside ASCII comes in runs, mixed with a few spaces.
        for (int run = 0; run < 64 && units < text.size(); ++run) {
            const ScalarStep step = scalarAt(text, units);
            const bool isLoneSurrogate = step.scalar >= 0xD800 && step.scalar < 0xE000;
            char* const next = writeScalar(isLoneSurrogate ? char32_t{kReplacement} : step.scalar, at, end);
            if (next == nullptr) return {units, static_cast<std::size_t>(at - buffer.data())};
            at = next;
            units = step.end;
        }
    }
    return {units, static_cast<std::size_t>(at - buffer.data())};
}

std::size_t utf16Unchecked(std::string_view bytes, char16_t* buffer) noexcept {
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    char16_t* out = buffer;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t ascii = widenAsciiPrefix(bytes.substr(at), out);
        at += ascii;
        out += ascii;
        // Text outside ASCII comes in runs, mixed with a few spaces.
        for (int run = 0; run < 64 && at < bytes.size(); ++run) {
            std::int32_t length = 0;
            UChar32 scalar = 0;
            U8_NEXT_OR_FFFD(data + at, length, windowAt(bytes, at), scalar);
            at += static_cast<std::size_t>(length);
            if (scalar < 0x10000) {
                *out++ = static_cast<char16_t>(scalar);
            } else {
                *out++ = static_cast<char16_t>(U16_LEAD(scalar));
                *out++ = static_cast<char16_t>(U16_TRAIL(scalar));
            }
        }
    }
    return static_cast<std::size_t>(out - buffer);
}

std::u16string utf16(std::string_view bytes) {
    std::u16string text(bytes.size(), u'\0');
    text.resize(utf16Unchecked(bytes, text.data()));
    return text;
}

bool isWellFormedUtf8(std::string_view bytes) noexcept {
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    for (std::size_t i = asciiPrefix(bytes); i < bytes.size();) {
        if (data[i] < 0x80) {
            i += asciiPrefix(bytes.substr(i));
            continue;
        }
        std::int32_t length = 0;
        UChar32 scalar = 0;
        U8_NEXT(data + i, length, windowAt(bytes, i), scalar);
        if (scalar < 0) return false;
        i += static_cast<std::size_t>(length);
    }
    return true;
}

std::optional<std::u16string> utf16IfWellFormed(std::string_view bytes) {
    if (!isWellFormedUtf8(bytes)) return std::nullopt;
    return utf16(bytes);
}

std::string utf8(std::u16string_view text) { return convertToUtf8(text).bytes; }

std::optional<std::string> utf8IfWellFormed(std::u16string_view text) {
    Utf8Conversion result = convertToUtf8(text);
    if (!result.wellFormed) return std::nullopt;
    return std::move(result.bytes);
}

}  // namespace ZORPlatform
