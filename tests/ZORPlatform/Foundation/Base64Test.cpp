// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Base64.h>

#include <gtest/gtest.h>

#include <support/VectorLevels.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace ZORPlatform {
namespace {

std::vector<std::uint8_t> randomBytes(std::size_t count) {
    std::mt19937 random(static_cast<std::mt19937::result_type>(count));
    std::vector<std::uint8_t> bytes(count);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<std::uint8_t>(random()); });
    return bytes;
}

// RFC 4648, section 4, for whole groups.
std::string literalText(const std::vector<std::uint8_t>& bytes) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i + 3 <= bytes.size(); i += 3) {
        const unsigned word = bytes[i] * 65536U + bytes[i + 1] * 256U + bytes[i + 2];
        for (const unsigned weight : {262144U, 4096U, 64U, 1U}) text += alphabet[word / weight % 64];
    }
    return text;
}

// Exactly sized, so that a read or write beyond it is seen.
template <typename Unit>
struct Exactly {
    explicit Exactly(std::size_t count) : size(count), data(std::make_unique<Unit[]>(count)) {}
    template <typename Range>
    static Exactly copyOf(const Range& range) {
        Exactly result(range.size());
        std::copy(range.begin(), range.end(), result.data.get());
        return result;
    }
    std::size_t size;
    std::unique_ptr<Unit[]> data;
};

template <typename Unit>
void encodesEveryLength(VectorLevel level) {
    const Base64Functions<Unit> functions = base64Functions<Unit>(level);
    for (std::size_t groups = 0; groups < 140; ++groups) {
        const auto bytes = randomBytes(3 * groups);
        const auto in = Exactly<std::uint8_t>::copyOf(bytes);
        const Exactly<Unit> out(4 * groups);
        functions.encode(in.data.get(), groups, out.data.get());
        const std::string expected = literalText(bytes);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), out.data.get())) << groups;
    }
}

template <typename Unit>
void encodesLines(VectorLevel level) {
    const Base64Functions<Unit> functions = base64Functions<Unit>(level);
    for (std::size_t groups = 1; groups < 70; ++groups) {
        for (const std::basic_string<Unit>& lineBreak : {std::basic_string<Unit>{'\n'}, {'\r', '\n'}}) {
            for (std::size_t lines = 0; lines < 4; ++lines) {
                const auto bytes = randomBytes(3 * groups * lines);
                const auto in = Exactly<std::uint8_t>::copyOf(bytes);
                const std::string characters = literalText(bytes);
                std::basic_string<Unit> expected(characters.begin(), characters.end());
                for (std::size_t line = lines; line != 0; --line) expected.insert(4 * groups * line, lineBreak);
                const Exactly<Unit> out(expected.size());
                functions.encodeLines(in.data.get(), lines, groups, lineBreak, out.data.get());
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), out.data.get())) << groups << ' ' << lines;
            }
        }
    }
}

template <typename Unit>
void decodesEveryLength(VectorLevel level) {
    const Base64Functions<Unit> functions = base64Functions<Unit>(level);
    for (std::size_t groups = 0; groups < 140; ++groups) {
        const auto bytes = randomBytes(3 * groups);
        const auto in = Exactly<Unit>::copyOf(literalText(bytes));
        const Exactly<std::uint8_t> out(3 * groups);
        ASSERT_EQ(functions.decode(in.data.get(), groups, out.data.get()), groups);
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), out.data.get())) << groups;
    }
}

template <typename Unit>
void stopsBeforeTheFirstOddGroup(VectorLevel level) {
    const Base64Functions<Unit> functions = base64Functions<Unit>(level);
    constexpr std::size_t kGroups = 53;
    const auto bytes = randomBytes(3 * kGroups);
    const std::string text = literalText(bytes);
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto in = Exactly<Unit>::copyOf(text);
        in.data[at] = static_cast<Unit>('=');
        const Exactly<std::uint8_t> out(3 * kGroups);
        std::fill_n(out.data.get(), out.size, std::uint8_t{0xEE});
        const std::size_t clean = at / 4;
        ASSERT_EQ(functions.decode(in.data.get(), kGroups, out.data.get()), clean);
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(3 * clean), out.data.get()));
        ASSERT_TRUE(std::all_of(out.data.get() + 3 * clean, out.data.get() + out.size, [](std::uint8_t byte) {
            return byte == 0xEE;
        })) << "bytes behind the last group are left alone";
    }
}

template <typename Unit>
void knowsEveryUnit(VectorLevel level) {
    const Base64Functions<Unit> functions = base64Functions<Unit>(level);
    constexpr std::size_t kGroups = 32;
    const std::string alphabet(kBase64Alphabet);
    for (unsigned code = 0; code <= std::numeric_limits<std::make_unsigned_t<Unit>>::max(); ++code) {
        const std::vector<Unit> text(4 * kGroups, static_cast<Unit>(code));
        std::vector<std::uint8_t> out(3 * kGroups);
        const std::size_t value = code < 0x80 ? alphabet.find(static_cast<char>(code)) : std::string::npos;
        const std::size_t groups = functions.decode(text.data(), kGroups, out.data());
        ASSERT_EQ(groups, value == std::string::npos ? 0 : kGroups) << code;
        if (groups != 0) {
            ASSERT_EQ(out.back() & 0x3FU, value) << code;
        }
    }
}

// The filter read literally.
template <typename Unit>
std::string literalFilter(const std::vector<Unit>& text, bool stopsAtPadding, std::size_t& units) {
    std::string characters;
    for (units = 0; units < text.size(); ++units) {
        const unsigned code = static_cast<std::make_unsigned_t<Unit>>(text[units]);
        if (code > 0x7F || (stopsAtPadding && code == '=')) break;
        if (kBase64Alphabet.find(static_cast<char>(code)) != std::string::npos) characters += static_cast<char>(code);
    }
    return characters;
}

template <typename Unit>
void filtersAsTheRule(VectorLevel level) {
    const Base64Functions<Unit> functions = base64Functions<Unit>(level);
    std::mt19937 random(7);
    for (std::size_t length = 0; length < 300; ++length) {
        std::vector<Unit> text(length);
        for (Unit& unit : text) unit = static_cast<Unit>(random() % 128);
        // Every second text has something in it that may stop a filter.
        if (length % 2 == 1)
            text[random() % length] = static_cast<Unit>(length % 4 == 1 ? '=' : 0x80 + random() % 0x80);
        const auto in = Exactly<Unit>::copyOf(text);
        for (const bool stopsAtPadding : {false, true}) {
            std::size_t units = 0;
            const std::string expected = literalFilter(text, stopsAtPadding, units);
            const Exactly<char> out((length + 63) / 64 * 64);
            const Base64Filtered filtered = functions.filter(in.data.get(), length, stopsAtPadding, out.data.get());
            ASSERT_EQ(std::string(out.data.get(), filtered.characters), expected);
            ASSERT_EQ(filtered.units, units);
        }
    }
}

class Base64AtLevel : public testing::TestWithParam<VectorLevel> {};

TEST_P(Base64AtLevel, EncodesEveryLength) {
    encodesEveryLength<char>(GetParam());
    encodesEveryLength<char16_t>(GetParam());
}

TEST_P(Base64AtLevel, EncodesLinesWithBreaks) {
    encodesLines<char>(GetParam());
    encodesLines<char16_t>(GetParam());
}

TEST_P(Base64AtLevel, DecodesEveryLength) {
    decodesEveryLength<char>(GetParam());
    decodesEveryLength<char16_t>(GetParam());
}

TEST_P(Base64AtLevel, StopsBeforeTheFirstOddGroup) {
    stopsBeforeTheFirstOddGroup<char>(GetParam());
    stopsBeforeTheFirstOddGroup<char16_t>(GetParam());
}

TEST_P(Base64AtLevel, KnowsEveryUnit) {
    knowsEveryUnit<char>(GetParam());
    knowsEveryUnit<char16_t>(GetParam());
}

TEST_P(Base64AtLevel, FiltersAsTheRuleReadLiterally) {
    filtersAsTheRule<char>(GetParam());
    filtersAsTheRule<char16_t>(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Base64, Base64AtLevel, testing::ValuesIn(support::vectorLevelsOfThisMachine()));

}  // namespace
}  // namespace ZORPlatform
