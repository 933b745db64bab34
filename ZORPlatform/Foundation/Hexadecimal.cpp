// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Hexadecimal.h>

#include <ZORPlatform/Foundation/VectorInstructionsInternal.h>
#include <ZORPlatform/Foundation/WrittenText.h>

#include <array>
#include <string_view>

namespace ZORPlatform {
namespace {

constexpr std::string_view digitsOf(HexDigits digits) noexcept {
    return digits == HexDigits::kLowerCase ? "0123456789abcdef" : "0123456789ABCDEF";
}

void encodePortable(const std::uint8_t* bytes, std::size_t count, HexDigits digits, char16_t* text) {
    const std::string_view table = digitsOf(digits);
    for (std::size_t i = 0; i < count; ++i) {
        text[2 * i] = static_cast<char16_t>(table[bytes[i] >> 4]);
        text[2 * i + 1] = static_cast<char16_t>(table[bytes[i] & 0xF]);
    }
}

#if defined(__x86_64__)

[[gnu::target("ssse3")]] void encodeSSSE3(const std::uint8_t* bytes, std::size_t count, HexDigits digits,
                                          char16_t* text) {
    const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(digitsOf(digits).data()));
    const __m128i lowHalf = _mm_set1_epi8(0xF);
    const __m128i zero = _mm_setzero_si128();
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m128i in = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
        const __m128i high = _mm_shuffle_epi8(table, _mm_and_si128(_mm_srli_epi16(in, 4), lowHalf));
        const __m128i low = _mm_shuffle_epi8(table, _mm_and_si128(in, lowHalf));
        const __m128i first = _mm_unpacklo_epi8(high, low);
        const __m128i second = _mm_unpackhi_epi8(high, low);
        auto* out = reinterpret_cast<__m128i*>(text + 2 * i);
        _mm_storeu_si128(out, _mm_unpacklo_epi8(first, zero));
        _mm_storeu_si128(out + 1, _mm_unpackhi_epi8(first, zero));
        _mm_storeu_si128(out + 2, _mm_unpacklo_epi8(second, zero));
        _mm_storeu_si128(out + 3, _mm_unpackhi_epi8(second, zero));
    }
    encodePortable(bytes + i, count - i, digits, text + 2 * i);
}

[[gnu::target("avx2")]] void encodeAVX2(const std::uint8_t* bytes, std::size_t count, HexDigits digits,
                                        char16_t* text) {
    const __m256i table =
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(digitsOf(digits).data())));
    const __m256i lowHalf = _mm256_set1_epi32(0xF);
    // A set top bit makes the shuffle write zero: the upper byte of each unit.
    const __m256i upperBytes = _mm256_set1_epi16(static_cast<short>(0x8000));
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i in = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes + i)));
        const __m256i halves =
            _mm256_or_si256(_mm256_srli_epi32(in, 4), _mm256_slli_epi32(_mm256_and_si256(in, lowHalf), 16));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(text + 2 * i),
                            _mm256_shuffle_epi8(table, _mm256_or_si256(halves, upperBytes)));
    }
    _mm256_zeroupper();
    encodePortable(bytes + i, count - i, digits, text + 2 * i);
}

// Where the bytes go, twice each, so that the digits of each 128 bits become eight units for the first half of the text
// and eight for the second.
constexpr std::array<std::uint8_t, 64> kTwice512 = [] {
    std::array<std::uint8_t, 64> order{};
    for (std::size_t i = 0; i < 64; ++i) {
        order[i] = static_cast<std::uint8_t>(i / 16 * 4 + i % 16 / 8 * 16 + i % 8 / 2);
    }
    return order;
}();

[[gnu::target("avx512bw,avx512vbmi")]] void encodeAVX512(const std::uint8_t* bytes, std::size_t count, HexDigits digits,
                                                         char16_t* text) {
    const __m512i table =
        _mm512_broadcast_i32x4(_mm_loadu_si128(reinterpret_cast<const __m128i*>(digitsOf(digits).data())));
    const __m512i twice = _mm512_loadu_si512(kTwice512.data());
    const __m512i zero = _mm512_setzero_si512();
    std::size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i in = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + i));
        const __m512i pairs = _mm512_permutexvar_epi8(twice, _mm512_castsi256_si512(in));
        const __m512i high = _mm512_and_si512(_mm512_srli_epi16(pairs, 4), _mm512_set1_epi16(0x000F));
        const __m512i low = _mm512_and_si512(pairs, _mm512_set1_epi16(0x0F00));
        const __m512i characters = _mm512_shuffle_epi8(table, _mm512_or_si512(high, low));
        _mm512_storeu_si512(text + 2 * i, _mm512_unpacklo_epi8(characters, zero));
        _mm512_storeu_si512(text + 2 * i + 32, _mm512_unpackhi_epi8(characters, zero));
    }
    encodeAVX2(bytes + i, count - i, digits, text + 2 * i);
}

#endif

}  // namespace

HexEncoder hexEncoder([[maybe_unused]] VectorLevel level) noexcept {
#if defined(__x86_64__)
    if (level >= VectorLevel::kAVX512VBMI) return encodeAVX512;
    if (level >= VectorLevel::kAVX2) return encodeAVX2;
    if (level >= VectorLevel::kSSSE3) return encodeSSSE3;
#endif
    return encodePortable;
}

std::u16string hexText(std::span<const std::uint8_t> bytes, HexDigits digits) {
    static const HexEncoder encode = hexEncoder(machineVectorLevel());
    return writtenText(2 * bytes.size(),
                       [=](char16_t* text) noexcept { encode(bytes.data(), bytes.size(), digits, text); });
}

}  // namespace ZORPlatform
