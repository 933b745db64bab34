// SPDX-License-Identifier: Apache-2.0
//
// Account numbers: a million of 70 countries, half of them Belgian and a fifth corrupted, and Belgian ones alone. The
// floor reads the units once. Peers: a loop that keeps the digits in a register and takes the remainder when they run
// over, a loop that takes it at each unit, and the rule as a textbook has it, through texts of digits.

#include <benchmarks/Comparison.h>
#include <benchmarks/SampleNumbers.h>

#include <ZORFoundation/ZORAccountNumberFormatter.h>
#include <ZORFoundation/ZORAccountNumberValidator.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace ZORFoundation;
using namespace benchmarks;
using Texts = std::vector<std::u16string_view>;

// A country and its numbers: n a digit, a a letter, c either.
struct Country {
    std::u16string_view code;
    std::u16string_view structure;
};

constexpr std::array kCountries = std::to_array<Country>({
    {u"AD", u"nnnnnnnncccccccccccc"},
    {u"AE", u"nnnnnnnnnnnnnnnnnnn"},
    {u"AL", u"nnnnnnnncccccccccccccccc"},
    {u"AT", u"nnnnnnnnnnnnnnnn"},
    {u"AZ", u"aaaacccccccccccccccccccc"},
    {u"BA", u"nnnnnnnnnnnnnnnn"},
    {u"BE", u"nnnnnnnnnnnn"},
    {u"BG", u"aaaannnnnncccccccc"},
    {u"BH", u"aaaacccccccccccccc"},
    {u"BR", u"nnnnnnnnnnnnnnnnnnnnnnnac"},
    {u"BY", u"ccccnnnncccccccccccccccc"},
    {u"CH", u"nnnnncccccccccccc"},
    {u"CR", u"nnnnnnnnnnnnnnnnnn"},
    {u"CY", u"nnnnnnnncccccccccccccccc"},
    {u"CZ", u"nnnnnnnnnnnnnnnnnnnn"},
    {u"DE", u"nnnnnnnnnnnnnnnnnn"},
    {u"DK", u"nnnnnnnnnnnnnn"},
    {u"DO", u"ccccnnnnnnnnnnnnnnnnnnnn"},
    {u"EE", u"nnnnnnnnnnnnnnnn"},
    {u"EG", u"nnnnnnnnnnnnnnnnnnnnnnnnn"},
    {u"ES", u"nnnnnnnnnnnnnnnnnnnn"},
    {u"FI", u"nnnnnnnnnnnnnn"},
    {u"FO", u"nnnnnnnnnnnnnn"},
    {u"FR", u"nnnnnnnnnncccccccccccnn"},
    {u"GB", u"aaaannnnnnnnnnnnnn"},
    {u"GE", u"aannnnnnnnnnnnnnnn"},
    {u"GI", u"aaaaccccccccccccccc"},
    {u"GL", u"nnnnnnnnnnnnnn"},
    {u"GR", u"nnnnnnncccccccccccccccc"},
    {u"GT", u"cccccccccccccccccccccccc"},
    {u"HR", u"nnnnnnnnnnnnnnnnn"},
    {u"HU", u"nnnnnnnnnnnnnnnnnnnnnnnn"},
    {u"IE", u"aaaannnnnnnnnnnnnn"},
    {u"IL", u"nnnnnnnnnnnnnnnnnnn"},
    {u"IQ", u"aaaannnnnnnnnnnnnnn"},
    {u"IS", u"nnnnnnnnnnnnnnnnnnnnnn"},
    {u"IT", u"annnnnnnnnncccccccccccc"},
    {u"JO", u"aaaannnncccccccccccccccccc"},
    {u"KW", u"aaaacccccccccccccccccccccc"},
    {u"KZ", u"nnnccccccccccccc"},
    {u"LB", u"nnnncccccccccccccccccccc"},
    {u"LI", u"nnnnncccccccccccc"},
    {u"LT", u"nnnnnnnnnnnnnnnn"},
    {u"LU", u"nnnccccccccccccc"},
    {u"LV", u"aaaaccccccccccccc"},
    {u"MC", u"nnnnnnnnnncccccccccccnn"},
    {u"MD", u"cccccccccccccccccccc"},
    {u"ME", u"nnnnnnnnnnnnnnnnnn"},
    {u"MK", u"nnnccccccccccnn"},
    {u"MR", u"nnnnnnnnnnnnnnnnnnnnnnn"},
    {u"MT", u"aaaannnnncccccccccccccccccc"},
    {u"NL", u"aaaannnnnnnnnn"},
    {u"NO", u"nnnnnnnnnnn"},
    {u"PK", u"aaaacccccccccccccccc"},
    {u"PL", u"nnnnnnnnnnnnnnnnnnnnnnnn"},
    {u"PS", u"aaaaccccccccccccccccccccc"},
    {u"PT", u"nnnnnnnnnnnnnnnnnnnnn"},
    {u"QA", u"aaaaccccccccccccccccccccc"},
    {u"RO", u"aaaacccccccccccccccc"},
    {u"RS", u"nnnnnnnnnnnnnnnnnn"},
    {u"SA", u"nncccccccccccccccccc"},
    {u"SE", u"nnnnnnnnnnnnnnnnnnnn"},
    {u"SI", u"nnnnnnnnnnnnnnn"},
    {u"SK", u"nnnnnnnnnnnnnnnnnnnn"},
    {u"SM", u"annnnnnnnnncccccccccccc"},
    {u"TN", u"nnnnnnnnnnnnnnnnnnnn"},
    {u"TR", u"nnnnnncccccccccccccccc"},
    {u"UA", u"nnnnnnccccccccccccccccccc"},
    {u"VA", u"nnnnnnnnnnnnnnnnnn"},
    {u"XK", u"nnnnnnnnnnnnnnnn"},
});
static_assert(kCountries.size() == 70);

constexpr Country kBelgium{u"BE", u"nnnnnnnnnnnn"};

namespace textbook {

// ISO 13616: four units to the end, letters to numbers, the remainder in pieces that a machine word holds.
bool isValidIban(std::u16string_view text) {
    if (text.size() < 5 || text.size() > 32) return false;
    if (text.substr(0, 2) == u"BE" && text.size() != 16) return false;
    const std::u16string rearranged = std::u16string(text.substr(4)) + std::u16string(text.substr(0, 4));
    std::string digits;
    for (const char16_t unit : rearranged) {
        if (unit >= u'0' && unit <= u'9') {
            digits += static_cast<char>(unit);
        } else if (unit >= u'A' && unit <= u'Z') {
            digits += std::to_string(unit - u'A' + 10);
        } else if (unit >= u'a' && unit <= u'z') {
            digits += std::to_string(unit - u'a' + 10);
        } else {
            return false;
        }
    }
    std::string remainder;
    for (std::size_t at = 0; at < digits.size(); at += 7) {
        remainder.append(digits, at, 7);
        remainder = std::to_string(std::stoll(remainder) % 97);
    }
    return remainder == "1";
}

std::u16string formattedAccountNumberAsIban(std::u16string_view text) {
    std::u16string stripped;
    for (const char16_t unit : text) {
        if (unit != u' ' && unit != u'-' && unit != u'\u00A0') stripped += unit;
    }
    stripped = stripped.substr(0, 32);
    std::u16string shown;
    for (std::size_t at = 0; at < stripped.size(); at += 4) {
        if (at > 0) shown += u'\u00A0';
        shown += stripped.substr(at, 4);
    }
    for (char16_t& unit : shown) {
        if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - 0x20);
    }
    return shown;
}

}  // namespace textbook

namespace loops {

// A unit's number, and whether that takes two digits; false for other units.
bool appendUnit(char16_t unit, std::uint64_t& digits) noexcept {
    if (unit >= u'0' && unit <= u'9') {
        digits = digits * 10 + (unit - u'0');
    } else if (unit >= u'A' && unit <= u'Z') {
        digits = digits * 100 + (unit - u'A' + 10U);
    } else if (unit >= u'a' && unit <= u'z') {
        digits = digits * 100 + (unit - u'a' + 10U);
    } else {
        return false;
    }
    return true;
}

template <std::uint64_t Limit>
bool isValidIban(std::u16string_view text) noexcept {
    if (text.size() < 5 || text.size() > 32) return false;
    if (text[0] == u'B' && text[1] == u'E' && text.size() != 16) return false;
    std::uint64_t digits = 0;
    for (const std::u16string_view part : {text.substr(4), text.substr(0, 4)}) {
        for (const char16_t unit : part) {
            if (!appendUnit(unit, digits)) return false;
            if (digits >= Limit) digits %= 97;
        }
    }
    return digits % 97 == 1;
}

constexpr auto kInRegister = isValidIban<10'000'000'000'000'000>;
constexpr auto kOnePass = isValidIban<97>;

}  // namespace loops

std::u16string validNumber(const Country& country, std::mt19937& random) {
    std::u16string text(country.code);
    text += u"00";
    for (const char16_t kind : country.structure) {
        const bool isLetter = kind == u'a' || (kind == u'c' && random() % 5 == 0);
        text += static_cast<char16_t>(isLetter ? u'A' + random() % 26 : u'0' + random() % 10);
    }
    for (unsigned check = 2; check < 99; ++check) {
        text[2] = static_cast<char16_t>(u'0' + check / 10);
        text[3] = static_cast<char16_t>(u'0' + check % 10);
        if (loops::kInRegister(text)) break;
    }
    return text;
}

void corrupt(std::u16string& text, std::mt19937& random) {
    const std::size_t at = 4 + random() % (text.size() - 5);
    switch (random() % 5) {
        case 0:
            text[at] = static_cast<char16_t>(u'0' + random() % 10);
            break;
        case 1:
            std::swap(text[at], text[at + 1]);
            break;
        case 2:
            text.erase(at, 1);
            break;
        case 3:
            text.insert(at, 1, u' ');
            break;
        default:
            text[at] = u"-.O\u00A0\u0663"[random() % 5];
            break;
    }
}

const Texts& mixedMillion() {
    static const SampleNumbers numbers = [] {
        std::mt19937 random(70);
        SampleNumbers made;
        for (int i = 0; i < 1'000'000; ++i) {
            const Country& country = random() % 2 == 0 ? kBelgium : kCountries[random() % kCountries.size()];
            std::u16string text = validNumber(country, random);
            if (random() % 5 == 0) corrupt(text, random);
            made.add(text);
        }
        return made;
    }();
    static const Texts texts = numbers.texts();
    return texts;
}

const Texts& belgianNumbers() {
    static const SampleNumbers numbers = [] {
        std::mt19937 random(32);
        SampleNumbers made;
        for (int i = 0; i < 100'000; ++i) made.add(validNumber(kBelgium, random));
        return made;
    }();
    static const Texts texts = numbers.texts();
    return texts;
}

void compareValidators(const char* name, const Texts& texts, double goal) {
    Comparison(std::string("isValidIban, ") + name)
        .itemsPerCall(texts.size())
        .candidate(overEach(texts, ZORAccountNumberValidator::isValidIban))
        .floor("units read once", overEach(texts, kReadOnce))
        .peer("digits kept in a register", overEach(texts, loops::kInRegister))
        .peer("remainder at each unit", overEach(texts, loops::kOnePass))
        .peer("textbook", overEach(texts, textbook::isValidIban))
        .expectedNanoseconds(goal)
        .atMost(20.0 / 22, "digits kept in a register")
        .add();
    Comparison(std::string("explainIban, ") + name)
        .itemsPerCall(texts.size())
        .candidate(overEach(texts, ZORAccountNumberValidator::explainIban))
        .peer("isValidIban", overEach(texts, ZORAccountNumberValidator::isValidIban))
        .atMost(1.3, "isValidIban")
        .add();
}

const bool registered = [] {
    compareValidators("mixed million", mixedMillion(), 20);
    compareValidators("Belgian numbers", belgianNumbers(), 10);
    const Texts& texts = belgianNumbers();
    Comparison("formattedAccountNumberAsIban, Belgian numbers")
        .itemsPerCall(texts.size())
        .candidate(overEach(texts, ZORAccountNumberFormatter::formattedAccountNumberAsIban))
        .floor("units read once", overEach(texts, kReadOnce))
        .floor("allocation of the result alone",
               overEach(texts, [](std::u16string_view) { return std::u16string(19, u'\u00A0'); }))
        .peer("textbook", overEach(texts, textbook::formattedAccountNumberAsIban))
        .expectedNanoseconds(30)
        .add();
    return true;
}();

}  // namespace
