// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/LossyAscii.h>

#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/Text.h>

#include <array>

namespace ZORPlatform {
namespace {

constexpr char16_t kNoCounterpart = u'?';

// What the units from U+00A0 to U+00FF become.
constexpr std::array<std::u16string_view, 96> kLatin1{
    u" ",  u"!",  u"c", u"L", u"$", u"Y", u"|",  u"",  u"",  u"(C)", u"a", u"<<", u"",    u"-",   u"(R)", u"",  //
    u"",   u"+-", u"2", u"3", u"",  u"",  u"",   u"",  u"",  u"1",   u"o", u">>", u"1/4", u"1/2", u"3/4", u"?",
    u"A",  u"A",  u"A", u"A", u"A", u"A", u"AE", u"C", u"E", u"E",   u"E", u"E",  u"I",   u"I",   u"I",   u"I",
    u"TH", u"N",  u"O", u"O", u"O", u"O", u"O",  u"X", u"O", u"U",   u"U", u"U",  u"U",   u"Y",   u"th",  u"s",
    u"a",  u"a",  u"a", u"a", u"a", u"a", u"ae", u"c", u"e", u"e",   u"e", u"e",  u"i",   u"i",   u"i",   u"i",
    u"TH", u"n",  u"o", u"o", u"o", u"o", u"o",  u"/", u"o", u"u",   u"u", u"u",  u"u",   u"y",   u"th",  u"y"};

// The first character of the full canonical decomposition, where that is below U+0100; "?" for all others.
constexpr char16_t kFirstOfLatinExtended = 0x0100;
constexpr std::u16string_view kLatinExtended =
    u"AaAaAaCcCcCcCcDd??EeEeEeEeEeGgGgGgGgHh??IiIiIiIiI???JjKk?LlLlLl????NnNnNn???OoOoOo??RrRrRrSsSsSsSsTtTt??"
    u"UuUuUuUuUuUuWwYyYZzZzZz?????????????????????????????????Oo?????????????Uu????????????????????????????AaI"
    u"iOoUuUuUuUuUu?AaAa\u00C6\u00E6??GgKkOoOo??j???Gg??NnAa\u00C6\u00E6\u00D8\u00F8AaAaEeEeIiIiOoOoRrRrUuUuSs"
    u"Tt??Hh??????AaEeOoOoOoOoYy";
constexpr char16_t kFirstOfLatinAdditional = 0x1E00;
constexpr std::u16string_view kLatinAdditional =
    u"AaBbBbBbCcDdDdDdDdDdEeEeEeEeEeFfGgHhHhHhHhHhIiIiKkKkKkLlLlLlLlMmMmMmNnNnNnNnOoOoOoOoPpPpRrRrRrRrSsSsSsSs"
    u"SsTtTtTtTtUuUuUuUuUuVvVvWwWwWwWwWwXxXxYyZzZzZzhtwy??????AaAaAaAaAaAaAaAaAaAaAaAaEeEeEeEeEeEeEeEeIiIiOoOo"
    u"OoOoOoOoOoOoOoOoOoOoUuUuUuUuUuUuUuYyYyYyYy";
static_assert(kLatinExtended.size() == 0x234 - kFirstOfLatinExtended);
static_assert(kLatinAdditional.size() == 0x1EFA - kFirstOfLatinAdditional);

constexpr char16_t strayDecomposition(char16_t unit) noexcept {
    switch (unit) {
        case 0x037E:
            return u';';
        case 0x0385:
        case 0x1FC1:
        case 0x1FED:
        case 0x1FEE:
            return u'\u00A8';
        case 0x0387:
            return u'\u00B7';
        case 0x1FEF:
            return u'`';
        case 0x1FFD:
            return u'\u00B4';
        case 0x212A:
            return u'K';
        case 0x212B:
            return u'A';
        case 0x2260:
            return u'=';
        case 0x226E:
            return u'<';
        case 0x226F:
            return u'>';
        default:
            return kNoCounterpart;
    }
}

// The unit below U+0100 that stands for one from U+0100 on.
constexpr char16_t latin1Counterpart(char16_t unit) noexcept {
    if (unit < kFirstOfLatinExtended + kLatinExtended.size()) return kLatinExtended[unit - kFirstOfLatinExtended];
    if (unit >= kFirstOfLatinAdditional && unit < kFirstOfLatinAdditional + kLatinAdditional.size()) {
        return kLatinAdditional[unit - kFirstOfLatinAdditional];
    }
    if (isWhitespace(unit)) return u' ';
    if (isNewline(unit)) return u'\n';
    return strayDecomposition(unit);
}

// Writes what a unit becomes, and answers how many units that is, three at most.
std::size_t writeAscii(char16_t unit, char16_t* to) noexcept {
    if (unit == 0x2026) {
        to[0] = to[1] = to[2] = u'.';
        return 3;
    }
    if (unit >= 0x100) unit = latin1Counterpart(unit);
    if (unit < 0xA0) {
        *to = unit < 0x80 ? unit : static_cast<char16_t>(unit - 0x80);
        return 1;
    }
    const std::u16string_view ascii = kLatin1[unit - 0xA0];
    ascii.copy(to, ascii.size());
    return ascii.size();
}

}  // namespace

std::u16string lossyAscii(std::u16string_view text) {
    constexpr std::size_t kWordUnits = 4;  // No unit becomes more than these.
    std::u16string result;
    result.reserve(text.size());
    std::array<char16_t, 1024> chunk;  // Only what is written is read.
    for (std::size_t at = 0; at < text.size();) {
        std::size_t written = 0;
        while (at < text.size() && written + kWordUnits <= chunk.size()) {
            if (at + kWordUnits <= text.size()) {
                const std::uint64_t word = fourUnits(&text[at]);
                if (lanesFrom(word, 0x80) == 0) {
                    storeFourUnits(word, &chunk[written]);
                    at += kWordUnits;
                    written += kWordUnits;
                    continue;
                }
            }
            const std::size_t end = scalarAt(text, at).end;
            written += writeAscii(text[at], &chunk[written]);
            at = end;
        }
        result.append(chunk.data(), written);
    }
    return result;
}

}  // namespace ZORPlatform
