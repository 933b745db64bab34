// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Base64.h>

#include <ZORPlatform/Foundation/VectorInstructionsInternal.h>

#include <bit>
#include <type_traits>

// Encoding spreads each three bytes b0 b1 b2 over four 6-bit values, then maps values to characters; decoding goes the
// other way. The vector forms shuffle b1 b0 b2 b1 into each 32-bit lane, so that every value lies within one half of
// the lane and a multiplication moves it in place.

namespace ZORPlatform {
namespace {

template <typename Unit>
void encodePortable(const std::uint8_t* bytes, std::size_t groups, Unit* text) {
    for (; groups != 0; --groups, bytes += 3, text += 4) {
        const unsigned word = static_cast<unsigned>(bytes[0] << 16 | bytes[1] << 8 | bytes[2]);
        text[0] = static_cast<Unit>(kBase64Alphabet[word >> 18]);
        text[1] = static_cast<Unit>(kBase64Alphabet[word >> 12 & 0x3F]);
        text[2] = static_cast<Unit>(kBase64Alphabet[word >> 6 & 0x3F]);
        text[3] = static_cast<Unit>(kBase64Alphabet[word & 0x3F]);
    }
}

// A call of libc's would take longer than the encoding of a line.
template <typename Unit>
Unit* writeLineBreak(std::basic_string_view<Unit> lineBreak, Unit* to) noexcept {
    *to++ = lineBreak.front();
    if (lineBreak.size() > 1) *to++ = lineBreak.back();
    return to;
}

template <typename Unit, void (*kEncode)(const std::uint8_t*, std::size_t, Unit*)>
void encodeLinesBy(const std::uint8_t* bytes, std::size_t lines, std::size_t groups,
                   std::basic_string_view<Unit> lineBreak, Unit* text) {
    for (; lines != 0; --lines, bytes += 3 * groups) {
        kEncode(bytes, groups, text);
        text = writeLineBreak(lineBreak, text + 4 * groups);
    }
}

template <typename Unit>
unsigned valueOf(Unit unit) noexcept {
    const auto code = static_cast<std::make_unsigned_t<Unit>>(unit);
    return code < kBase64Values.size() ? kBase64Values[code] : kNotBase64;
}

template <typename Unit>
std::size_t decodePortable(const Unit* text, std::size_t groups, std::uint8_t* bytes) {
    for (std::size_t done = 0; done < groups; ++done, text += 4, bytes += 3) {
        const unsigned a = valueOf(text[0]);
        const unsigned b = valueOf(text[1]);
        const unsigned c = valueOf(text[2]);
        const unsigned d = valueOf(text[3]);
        if ((a | b | c | d) > 0x3F) return done;
        bytes[0] = static_cast<std::uint8_t>(a << 2 | b >> 4);
        bytes[1] = static_cast<std::uint8_t>(b << 4 | c >> 2);
        bytes[2] = static_cast<std::uint8_t>(c << 6 | d);
    }
    return groups;
}

// What a filter does with a character; the last entry is for all units above ASCII.
enum Filtering : std::uint8_t { kLeavesOut, kCopies, kStops };
using FilterTable = std::array<std::uint8_t, 129>;

constexpr FilterTable filterTable(bool stopsAtPadding) noexcept {
    FilterTable table{};
    for (std::size_t i = 0; i < kBase64Values.size(); ++i) {
        table[i] = kBase64Values[i] == kNotBase64 ? kLeavesOut : kCopies;
    }
    if (stopsAtPadding) table['='] = kStops;
    table.back() = kStops;
    return table;
}

constexpr std::array<FilterTable, 2> kFilterTables = {filterTable(false), filterTable(true)};

template <typename Unit>
Base64Filtered filterPortable(const Unit* text, std::size_t units, bool stopsAtPadding, char* characters) {
    const FilterTable& table = kFilterTables[stopsAtPadding ? 1 : 0];
    std::size_t count = 0;
    for (std::size_t at = 0; at < units; ++at) {
        const unsigned code = static_cast<std::make_unsigned_t<Unit>>(text[at]);
        const std::uint8_t filtering = table[code < 128 ? code : 128];
        if (filtering == kStops) return {at, count};
        // No branch on what the text is made of: it could not be predicted.
        characters[count] = static_cast<char>(code);
        count += filtering;
    }
    return {units, count};
}

#if defined(__x86_64__)

// The vector forms of the four steps. Values and characters are one byte each.

[[gnu::target("ssse3")]] inline __m128i load128(const void* memory) {
    return _mm_loadu_si128(static_cast<const __m128i*>(memory));
}

[[gnu::target("ssse3")]] inline void store128(void* memory, __m128i vector) {
    _mm_storeu_si128(static_cast<__m128i*>(memory), vector);
}

// 0 to 25 → 13, 26 to 51 → 0, 52 to 61 → 1 to 10, 62 → 11, 63 → 12: the index of what to add to the value.
constexpr std::array<char, 16> kOffsets = {'a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                           '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62,
                                           '/' - 63, 'A',      0,        0};

// A character is in the alphabet when the entries of its two halves share no bit.
constexpr std::array<char, 16> kLowHalves = {0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                             0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A};
constexpr std::array<char, 16> kHighHalves = {0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08,
                                              0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10};
// What to add to a character, by its high half; "/" uses the entry before its own.
constexpr std::array<char, 16> kRolls = {0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a',
                                         0, 0,        0,        0,        0,    0,    0,        0};

[[gnu::target("ssse3")]] inline __m128i charactersSSSE3(__m128i spread) {
    const __m128i first =
        _mm_mulhi_epu16(_mm_and_si128(spread, _mm_set1_epi32(0x0FC0FC00)), _mm_set1_epi32(0x04000040));
    const __m128i second =
        _mm_mullo_epi16(_mm_and_si128(spread, _mm_set1_epi32(0x003F03F0)), _mm_set1_epi32(0x01000010));
    const __m128i values = _mm_or_si128(first, second);
    const __m128i isUpper = _mm_cmpgt_epi8(_mm_set1_epi8(26), values);
    const __m128i index =
        _mm_or_si128(_mm_subs_epu8(values, _mm_set1_epi8(51)), _mm_and_si128(isUpper, _mm_set1_epi8(13)));
    return _mm_add_epi8(values, _mm_shuffle_epi8(load128(kOffsets.data()), index));
}

[[gnu::target("ssse3")]] inline void storeCharacters(char* text, __m128i characters) { store128(text, characters); }

[[gnu::target("ssse3")]] inline void storeCharacters(char16_t* text, __m128i characters) {
    store128(text, _mm_unpacklo_epi8(characters, _mm_setzero_si128()));
    store128(text + 8, _mm_unpackhi_epi8(characters, _mm_setzero_si128()));
}

// Sixteen units as bytes. Units above 0xFF saturate to 0x00 or 0xFF, neither of which is in the alphabet.
[[gnu::target("ssse3")]] inline __m128i loadCharacters128(const char* text) { return load128(text); }

[[gnu::target("ssse3")]] inline __m128i loadCharacters128(const char16_t* text) {
    return _mm_packus_epi16(load128(text), load128(text + 8));
}

// The last, shorter step of a text goes back so far that it is a whole one. What it does again comes out the same.
constexpr std::size_t kGroupsOf256 = 8;

template <typename Unit>
[[gnu::target("ssse3")]] void encodeSSSE3(const std::uint8_t* bytes, std::size_t groups, Unit* text) {
    if (groups < kGroupsOf256) return encodePortable(bytes, groups, text);
    const __m128i spreadLow = _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
    // The second twelve bytes are loaded from four bytes earlier, so that no load goes beyond the groups.
    const __m128i spreadHigh = _mm_setr_epi8(5, 4, 6, 5, 8, 7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14);
    const auto encodeAt = [&](std::size_t at) __attribute__((target("ssse3"))) {
        const std::uint8_t* const in = bytes + 3 * at;
        storeCharacters(text + 4 * at, charactersSSSE3(_mm_shuffle_epi8(load128(in), spreadLow)));
        storeCharacters(text + 4 * at + 16, charactersSSSE3(_mm_shuffle_epi8(load128(in + 8), spreadHigh)));
    };
    std::size_t done = 0;
    for (; groups - done >= kGroupsOf256; done += kGroupsOf256) encodeAt(done);
    if (done != groups) encodeAt(groups - kGroupsOf256);
}

template <typename Unit>
[[gnu::target("ssse3")]] std::size_t decodeSSSE3(const Unit* text, std::size_t groups, std::uint8_t* bytes) {
    const __m128i lowHalf = _mm_set1_epi8(0x0F);
    const __m128i zero = _mm_setzero_si128();
    const __m128i join = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    std::size_t done = 0;
    for (; done + 4 <= groups; done += 4, text += 16, bytes += 12) {
        const __m128i in = loadCharacters128(text);
        const __m128i high = _mm_and_si128(_mm_srli_epi32(in, 4), lowHalf);
        const __m128i odd = _mm_and_si128(_mm_shuffle_epi8(load128(kLowHalves.data()), _mm_and_si128(in, lowHalf)),
                                          _mm_shuffle_epi8(load128(kHighHalves.data()), high));
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(odd, zero)) != 0xFFFF) break;
        const __m128i isSlash = _mm_cmpeq_epi8(in, _mm_set1_epi8('/'));
        const __m128i values = _mm_add_epi8(in, _mm_shuffle_epi8(load128(kRolls.data()), _mm_add_epi8(isSlash, high)));
        const __m128i pairs = _mm_maddubs_epi16(values, _mm_set1_epi32(0x01400140));
        const __m128i joined = _mm_shuffle_epi8(_mm_madd_epi16(pairs, _mm_set1_epi32(0x00011000)), join);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes), joined);
        const int last = _mm_cvtsi128_si32(_mm_srli_si128(joined, 8));
        __builtin_memcpy(bytes + 8, &last, 4);
    }
    return done + decodePortable(text, groups - done, bytes);
}

[[gnu::target("avx2")]] inline __m256i twice(const std::array<char, 16>& table) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table.data())));
}

[[gnu::target("avx2")]] inline void storeCharacters(char* text, __m256i characters) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(text), characters);
}

[[gnu::target("avx2")]] inline void storeCharacters(char16_t* text, __m256i characters) {
    auto* out = reinterpret_cast<__m256i*>(text);
    _mm256_storeu_si256(out, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(characters)));
    _mm256_storeu_si256(out + 1, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(characters, 1)));
}

[[gnu::target("avx2")]] inline __m256i loadCharacters256(const char* text) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
}

[[gnu::target("avx2")]] inline __m256i loadCharacters256(const char16_t* text) {
    const auto* in = reinterpret_cast<const __m256i*>(text);
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(_mm256_loadu_si256(in), _mm256_loadu_si256(in + 1)), 0xD8);
}

template <typename Unit>
[[gnu::target("avx2")]] void encodeAVX2(const std::uint8_t* bytes, std::size_t groups, Unit* text) {
    if (groups < kGroupsOf256) return encodePortable(bytes, groups, text);
    const __m256i spread = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10,  //
                                            5, 4, 6, 5, 8, 7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14);
    const __m256i offsets = twice(kOffsets);
    const auto encodeAt = [&](std::size_t at) __attribute__((target("avx2"))) {
        const std::uint8_t* const from = bytes + 3 * at;
        const __m256i in = _mm256_inserti128_si256(_mm256_castsi128_si256(load128(from)), load128(from + 8), 1);
        const __m256i lanes = _mm256_shuffle_epi8(in, spread);
        const __m256i first =
            _mm256_mulhi_epu16(_mm256_and_si256(lanes, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
        const __m256i second =
            _mm256_mullo_epi16(_mm256_and_si256(lanes, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
        const __m256i values = _mm256_or_si256(first, second);
        const __m256i isUpper = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
        const __m256i index = _mm256_or_si256(_mm256_subs_epu8(values, _mm256_set1_epi8(51)),
                                              _mm256_and_si256(isUpper, _mm256_set1_epi8(13)));
        storeCharacters(text + 4 * at, _mm256_add_epi8(values, _mm256_shuffle_epi8(offsets, index)));
    };
    std::size_t done = 0;
    for (; groups - done >= kGroupsOf256; done += kGroupsOf256) encodeAt(done);
    if (done != groups) encodeAt(groups - kGroupsOf256);
    _mm256_zeroupper();
}

template <typename Unit>
[[gnu::target("avx2")]] std::size_t decodeAVX2(const Unit* text, std::size_t groups, std::uint8_t* bytes) {
    const __m256i lowHalf = _mm256_set1_epi8(0x0F);
    const __m256i lowHalves = twice(kLowHalves);
    const __m256i highHalves = twice(kHighHalves);
    const __m256i rolls = twice(kRolls);
    const __m256i join = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,  //
                                          2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    const __m256i closeGap = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    const auto decodeAt = [&](std::size_t at) __attribute__((target("avx2"))) {
        const __m256i in = loadCharacters256(text + 4 * at);
        const __m256i high = _mm256_and_si256(_mm256_srli_epi32(in, 4), lowHalf);
        const __m256i low = _mm256_and_si256(in, lowHalf);
        const __m256i oddLow = _mm256_shuffle_epi8(lowHalves, low);
        if (_mm256_testz_si256(oddLow, _mm256_shuffle_epi8(highHalves, high)) == 0) return false;
        const __m256i isSlash = _mm256_cmpeq_epi8(in, _mm256_set1_epi8('/'));
        const __m256i values = _mm256_add_epi8(in, _mm256_shuffle_epi8(rolls, _mm256_add_epi8(isSlash, high)));
        const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
        const __m256i triples = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
        const __m256i joined = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(triples, join), closeGap);
        std::uint8_t* const out = bytes + 3 * at;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(joined));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(joined, 1));
        return true;
    };
    std::size_t done = 0;
    while (groups - done >= kGroupsOf256 && decodeAt(done)) done += kGroupsOf256;
    const std::size_t rest = groups - done;
    if (done != 0 && rest != 0 && rest < kGroupsOf256 && decodeAt(groups - kGroupsOf256)) done = groups;
    _mm256_zeroupper();
    return done + decodePortable(text + 4 * done, groups - done, bytes + 3 * done);
}

// With byte permutations across a whole register both tables fit one instruction. Instead of the step back a mask would
// do, too, but a masked step occupies all 64 bytes: what lies behind the text, often its result, is then waited for.

[[gnu::target("avx512bw,avx512vbmi")]] inline void storePacked(char* text, __m512i characters) {
    _mm512_storeu_si512(text, characters);
}

[[gnu::target("avx512bw,avx512vbmi")]] inline void storePacked(char16_t* text, __m512i characters) {
    const __m512i zero = _mm512_setzero_si512();
    _mm512_storeu_si512(text, _mm512_unpacklo_epi8(characters, zero));
    _mm512_storeu_si512(text + 32, _mm512_unpackhi_epi8(characters, zero));
}

[[gnu::target("avx512bw,avx512vbmi")]] inline void storeCharacters(char* text, __m512i characters, __mmask64 mask) {
    _mm512_mask_storeu_epi8(text, mask, characters);
}

[[gnu::target("avx512bw,avx512vbmi")]] inline void storeCharacters(char16_t* text, __m512i characters, __mmask64 mask) {
    const __m512i first = _mm512_cvtepu8_epi16(_mm512_castsi512_si256(characters));
    const __m512i second = _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(characters, 1));
    _mm512_mask_storeu_epi16(text, static_cast<__mmask32>(mask), first);
    _mm512_mask_storeu_epi16(text + 32, static_cast<__mmask32>(mask >> 32), second);
}

[[gnu::target("avx512bw,avx512vbmi")]] inline __m512i loadCharacters512(const char* text) {
    return _mm512_loadu_si512(text);
}

[[gnu::target("avx512bw,avx512vbmi")]] inline __m512i loadCharacters512(const char16_t* text) {
    // Units above 0xFF saturate to 0xFF, which is not in the alphabet.
    return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtusepi16_epi8(_mm512_loadu_si512(text))),
                              _mm512_cvtusepi16_epi8(_mm512_loadu_si512(text + 32)), 1);
}

// Characters outside the mask come as "A", which is in the alphabet.
[[gnu::target("avx512bw,avx512vbmi")]] inline __m512i loadCharacters512(const char* text, __mmask64 mask) {
    return _mm512_mask_loadu_epi8(_mm512_set1_epi8('A'), mask, text);
}

[[gnu::target("avx512bw,avx512vbmi")]] inline __m512i loadCharacters512(const char16_t* text, __mmask64 mask) {
    const __m512i filler = _mm512_set1_epi16('A');
    const __m512i first = _mm512_mask_loadu_epi16(filler, static_cast<__mmask32>(mask), text);
    const __m512i second = _mm512_mask_loadu_epi16(filler, static_cast<__mmask32>(mask >> 32), text + 32);
    return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtusepi16_epi8(first)), _mm512_cvtusepi16_epi8(second), 1);
}

// The lowest `count` bits, up to 64.
constexpr std::uint64_t lowestBits(std::size_t count) noexcept {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

constexpr std::size_t kGroupsOf512 = 16;

// For each 32-bit lane, the bytes b1 b0 b2 b1 of its group. `groupIn` says which group that is.
template <typename GroupIn>
constexpr std::array<std::uint8_t, 64> spreading512(GroupIn groupIn) {
    std::array<std::uint8_t, 64> order{};
    for (std::size_t i = 0; i < 64; ++i) {
        order[i] = static_cast<std::uint8_t>(3 * groupIn(i / 4) + std::array<std::size_t, 4>{1, 0, 2, 1}[i % 4]);
    }
    return order;
}

constexpr std::array<std::uint8_t, 64> kSpread512 = spreading512([](std::size_t lane) { return lane; });

// Characters become units of 16 bits, and these become characters, quickest within 128 bits: two groups of the first 32
// units, two of the second 32, and so on. That is the packed order.
template <typename Unit>
constexpr std::array<std::uint8_t, 64> kSpreadPacked512 = spreading512([](std::size_t lane) {
    return sizeof(Unit) == 1 ? lane : lane / 4 * 2 + lane % 4 / 2 * 8 + lane % 2;
});

// The three bytes of each 32-bit lane, highest first. `laneOf` says in which lane a group is.
template <typename LaneOf>
constexpr std::array<std::uint8_t, 64> joining512(LaneOf laneOf) {
    std::array<std::uint8_t, 64> order{};
    for (std::size_t i = 0; i < 48; ++i) order[i] = static_cast<std::uint8_t>(4 * laneOf(i / 3) + 2 - i % 3);
    return order;
}

constexpr std::array<std::uint8_t, 64> kJoin512 = joining512([](std::size_t group) { return group; });

template <typename Unit>
constexpr std::array<std::uint8_t, 64> kJoinPacked512 = joining512([](std::size_t group) {
    return sizeof(Unit) == 1 ? group : group % 8 / 2 * 4 + group / 8 * 2 + group % 2;
});

// Units above 0xFF saturate to 0x00 or 0xFF, neither of which is in the alphabet.
[[gnu::target("avx512bw,avx512vbmi")]] inline __m512i loadPacked512(const char* text) {
    return _mm512_loadu_si512(text);
}

[[gnu::target("avx512bw,avx512vbmi")]] inline __m512i loadPacked512(const char16_t* text) {
    return _mm512_packus_epi16(_mm512_loadu_si512(text), _mm512_loadu_si512(text + 32));
}

// The bytes of kGroupsOf512 groups, and no more.
[[gnu::target("avx512bw,avx512vbmi")]] inline __m512i loadGroups512(const std::uint8_t* bytes) {
    return _mm512_inserti32x4(_mm512_castsi256_si512(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes))),
                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 32)), 2);
}

[[gnu::target("avx512bw,avx512vbmi")]] inline void storeGroups512(std::uint8_t* bytes, __m512i joined) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), _mm512_castsi512_si256(joined));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + 32), _mm512_extracti32x4_epi32(joined, 2));
}

// Four values of six bits in each 32-bit lane become three bytes.
[[gnu::target("avx512bw,avx512vbmi")]] inline __m512i triples512(__m512i values) {
    const __m512i pairs = _mm512_maddubs_epi16(values, _mm512_set1_epi32(0x01400140));
    return _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
}

template <typename Unit>
[[gnu::target("avx512bw,avx512vbmi"), gnu::always_inline]] inline void encodeLine512(const std::uint8_t* bytes,
                                                                                     std::size_t groups, Unit* text) {
    const __m512i alphabet = _mm512_loadu_si512(kBase64Alphabet.data());
    // Where the four values begin in a lane of b1 b0 b2 b1, for both lanes of 64 bits.
    const __m512i shifts = _mm512_set1_epi64(0x3036242A1016040A);
    const auto charactersOf = [&](__m512i lanes) __attribute__((target("avx512bw,avx512vbmi"))) {
        // The lookup reads the lower six bits of each index only.
        return _mm512_permutexvar_epi8(_mm512_multishift_epi64_epi8(shifts, lanes), alphabet);
    };
    if (groups < kGroupsOf512) {
        if (groups == 0) return;
        const __m512i in = _mm512_maskz_loadu_epi8(lowestBits(3 * groups), bytes);
        const __m512i lanes = _mm512_permutexvar_epi8(_mm512_loadu_si512(kSpread512.data()), in);
        storeCharacters(text, charactersOf(lanes), lowestBits(4 * groups));
        return;
    }
    const __m512i spread = _mm512_loadu_si512(kSpreadPacked512<Unit>.data());
    const auto encodeAt = [&](std::size_t at) __attribute__((target("avx512bw,avx512vbmi"))) {
        const __m512i lanes = _mm512_permutexvar_epi8(spread, loadGroups512(bytes + 3 * at));
        storePacked(text + 4 * at, charactersOf(lanes));
    };
    std::size_t done = 0;
    for (; groups - done >= kGroupsOf512; done += kGroupsOf512) encodeAt(done);
    if (done != groups) encodeAt(groups - kGroupsOf512);
}

template <typename Unit>
[[gnu::target("avx512bw,avx512vbmi")]] void encodeAVX512(const std::uint8_t* bytes, std::size_t groups, Unit* text) {
    encodeLine512(bytes, groups, text);
}

// A line of usual length is one or two steps, so what comes before and behind them is done once for all lines.
template <typename Unit>
[[gnu::target("avx512bw,avx512vbmi")]] void encodeLinesAVX512(const std::uint8_t* bytes, std::size_t lines,
                                                              std::size_t groups,
                                                              std::basic_string_view<Unit> lineBreak, Unit* text) {
    for (; lines != 0; --lines, bytes += 3 * groups) {
        encodeLine512(bytes, groups, text);
        text = writeLineBreak(lineBreak, text + 4 * groups);
    }
}

template <typename Unit>
[[gnu::target("avx512bw,avx512vbmi")]] std::size_t decodeAVX512(const Unit* text, std::size_t groups,
                                                                std::uint8_t* bytes) {
    const __m512i valuesLow = _mm512_loadu_si512(kBase64Values.data());
    const __m512i valuesHigh = _mm512_loadu_si512(kBase64Values.data() + 64);
    const __m512i joinPacked = _mm512_loadu_si512(kJoinPacked512<Unit>.data());
    // The top bit is set in characters above ASCII and in the value of those outside the alphabet.
    const auto oddOf = [](__m512i in, __m512i values) __attribute__((target("avx512bw,avx512vbmi"))) {
        return static_cast<std::uint64_t>(_mm512_movepi8_mask(_mm512_or_si512(in, values)));
    };
    const auto cleanOf = [](std::uint64_t odd) { return static_cast<std::size_t>(std::countr_zero(odd)) / 4; };
    if (groups < kGroupsOf512) {
        if (groups == 0) return 0;
        const __m512i in = loadCharacters512(text, lowestBits(4 * groups));
        const __m512i values = _mm512_permutex2var_epi8(valuesLow, in, valuesHigh);
        const std::size_t clean = std::min(cleanOf(oddOf(in, values)), groups);
        const __m512i joined = _mm512_permutexvar_epi8(_mm512_loadu_si512(kJoin512.data()), triples512(values));
        _mm512_mask_storeu_epi8(bytes, lowestBits(3 * clean), joined);
        return clean;
    }
    const auto decodeAt = [&](std::size_t at) __attribute__((target("avx512bw,avx512vbmi"))) {
        const __m512i in = loadPacked512(text + 4 * at);
        const __m512i values = _mm512_permutex2var_epi8(valuesLow, in, valuesHigh);
        const bool isClean = oddOf(in, values) == 0;
        if (isClean) storeGroups512(bytes + 3 * at, _mm512_permutexvar_epi8(joinPacked, triples512(values)));
        return isClean;
    };
    std::size_t done = 0;
    bool isClean = true;
    while (isClean && groups - done >= kGroupsOf512) {
        isClean = decodeAt(done);
        if (isClean) done += kGroupsOf512;
    }
    if (isClean && done != groups) {
        done = groups - kGroupsOf512;
        isClean = decodeAt(done);
    }
    if (isClean) return groups;
    const __m512i in = loadCharacters512(text + 4 * done);
    const std::size_t clean = done + cleanOf(oddOf(in, _mm512_permutex2var_epi8(valuesLow, in, valuesHigh)));
    if (clean == done) return done;
    if (clean < kGroupsOf512) return decodeAVX512(text, clean, bytes);
    decodeAt(clean - kGroupsOf512);
    return clean;
}

template <typename Unit>
[[gnu::target("avx512bw,avx512vbmi,avx512vbmi2")]] Base64Filtered filterAVX512(const Unit* text, std::size_t units,
                                                                               bool stopsAtPadding, char* characters) {
    const __m512i valuesLow = _mm512_loadu_si512(kBase64Values.data());
    const __m512i valuesHigh = _mm512_loadu_si512(kBase64Values.data() + 64);
    const __m512i padding = _mm512_set1_epi8('=');
    std::size_t count = 0;
    std::size_t at = 0;
    while (at < units) {
        const std::size_t step = units - at < 64 ? units - at : 64;
        const __m512i in = loadCharacters512(text + at, lowestBits(step));
        std::uint64_t stops = _mm512_movepi8_mask(in);
        if (stopsAtPadding) stops |= _mm512_cmpeq_epi8_mask(in, padding);
        const auto stop = static_cast<std::size_t>(std::countr_zero(stops));
        const std::size_t taken = stop < step ? stop : step;
        const __m512i values = _mm512_permutex2var_epi8(valuesLow, in, valuesHigh);
        const std::uint64_t copied = ~_mm512_movepi8_mask(values) & lowestBits(taken);
        _mm512_storeu_si512(characters + count, _mm512_maskz_compress_epi8(copied, in));
        count += static_cast<std::size_t>(std::popcount(copied));
        at += taken;
        if (taken < step) break;
    }
    return {at, count};
}

#endif

}  // namespace

template <typename Unit>
Base64Functions<Unit> base64Functions([[maybe_unused]] VectorLevel level) noexcept {
#if defined(__x86_64__)
    if (level >= VectorLevel::kAVX512VBMI) {
        return {encodeAVX512<Unit>, encodeLinesAVX512<Unit>, decodeAVX512<Unit>, filterAVX512<Unit>};
    }
    if (level >= VectorLevel::kAVX2) {
        return {encodeAVX2<Unit>, encodeLinesBy<Unit, encodeAVX2<Unit>>, decodeAVX2<Unit>, filterPortable<Unit>};
    }
    if (level >= VectorLevel::kSSSE3) {
        return {encodeSSSE3<Unit>, encodeLinesBy<Unit, encodeSSSE3<Unit>>, decodeSSSE3<Unit>, filterPortable<Unit>};
    }
#endif
    return {encodePortable<Unit>, encodeLinesBy<Unit, encodePortable<Unit>>, decodePortable<Unit>,
            filterPortable<Unit>};
}

template Base64Functions<char> base64Functions<char>(VectorLevel) noexcept;
template Base64Functions<char16_t> base64Functions<char16_t>(VectorLevel) noexcept;

}  // namespace ZORPlatform
