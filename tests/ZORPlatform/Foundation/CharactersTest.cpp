// SPDX-License-Identifier: Apache-2.0
//
// Where characters begin and end, against ICU's own segmentation. A release of ICU with newer Unicode data fails these
// tests: scripts/character-classes renews the table then.

#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <support/CharacterModel.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

using support::CharacterModel;
using Positions = std::vector<std::size_t>;

Positions ends(std::u16string_view text) {
    Positions ends;
    for (std::size_t at = 0; at < text.size();) ends.push_back(at = characterEnd(text, at));
    return ends;
}

std::u16string ofScalar(char32_t scalar) {
    std::u16string text;
    appendScalar(text, scalar);
    return text;
}

// One scalar of every class that the rules know, and lone surrogates.
constexpr std::array<char32_t, 19> kSamples{u'a',   u'\r',  u'\n',   0xAD,    0x301,  0xE0020, 0x94D,
                                            0x915,  0x903,  0x600,   0x1100,  0x1161, 0x11A8,  0xAC00,
                                            0xAC01, 0x200D, 0x1F1E7, 0x1F469, 0xD83D};

TEST(Characters, EveryScalarJoinsAsInIcuWhateverIsAround) {
    struct Around {
        std::u16string_view before;
        std::u16string_view behind;
    };
    constexpr std::array<Around, 26> kAround{{{u"a", u""},
                                              {u"", u"a"},
                                              {u"", u"\u0301"},
                                              {u"\U0001F469", u"\u200D\U0001F469"},
                                              {u"", u"\u200D\U0001F469"},
                                              {u"\U0001F469\u200D", u""},
                                              {u"\U0001F469\u0301", u"\u200D\U0001F469"},
                                              {u"\u0915", u"\u0915"},
                                              {u"\u0915", u"\u094D\u0915"},
                                              {u"\u0915\u094D", u""},
                                              {u"\u0915\u094D", u"\u0915"},
                                              {u"", u"\u094D\u0915"},
                                              {u"\u0600", u""},
                                              {u"\u0903", u""},
                                              {u"\u200D", u""},
                                              {u"\u1100", u""},
                                              {u"\u1161", u""},
                                              {u"\u11A8", u""},
                                              {u"", u"\u1100"},
                                              {u"", u"\u1161"},
                                              {u"", u"\u11A8"},
                                              {u"", u"\uAC01"},
                                              {u"\U0001F1E7", u""},
                                              {u"", u"\U0001F1E7"},
                                              {u"\U0001F1E7", u"\U0001F1E7"},
                                              {u"\r", u"\n"}}};
    CharacterModel model;
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        // Above, there are ideographs and nothing, but for one block.
        const bool isOfAnyKind = scalar < 0x20000 || (scalar >= 0xE0000 && scalar < 0xE1000);
        std::u16string text;
        for (const auto& [before, behind] : std::span(kAround).first(isOfAnyKind ? kAround.size() : 3)) {
            text.append(1, u'\n').append(before).append(ofScalar(scalar)).append(behind);
        }
        ASSERT_EQ(ends(text), model.ends(text)) << std::hex << static_cast<unsigned>(scalar);
    }
}

TEST(Characters, EverySequenceOfFiveClassesIsDividedAsInIcu) {
    CharacterModel model;
    for (const char32_t first : kSamples) {
        for (const char32_t second : kSamples) {
            const std::u16string begin = u"\n" + ofScalar(first) + ofScalar(second);
            std::u16string text;
            for (const char32_t third : kSamples) {
                for (const char32_t fourth : kSamples) {
                    for (const char32_t fifth : kSamples) {
                        text += begin;
                        appendScalar(text, third);
                        appendScalar(text, fourth);
                        appendScalar(text, fifth);
                    }
                }
            }
            ASSERT_EQ(ends(text), model.ends(text))
                << std::hex << static_cast<unsigned>(first) << " " << static_cast<unsigned>(second);
        }
    }
}

// Every pair is looked at in one long text of pairs, each behind a line feed: a line feed never joins what follows.
TEST(Characters, EveryPairOfPlainUnitsIsDividedAsInIcu) {
    CharacterModel model;
    for (char16_t first = 0; first < kFirstCombining; ++first) {
        std::u16string text;
        for (char16_t second = 0; second < kFirstCombining; ++second) text += {u'\n', first, second};
        ASSERT_EQ(ends(text), model.ends(text)) << static_cast<unsigned>(first);
    }
}

// Texts with long plain stretches, so that whole blocks of units are passed at every distance from what is not plain.
TEST(Characters, AnyTextIsDividedCountedAndIndexedAsInIcu) {
    CharacterModel model;
    std::mt19937 random(29);
    for (int round = 0; round < 4000; ++round) {
        std::u16string text;
        for (std::size_t parts = random() % 12; parts > 0; --parts) {
            switch (random() % 4) {
                case 0:
                    text.append(random() % 40, u'x');
                    break;
                case 1:
                    appendScalar(text, static_cast<char32_t>(random() % 0x110000));
                    break;
                default:
                    appendScalar(text, kSamples[random() % kSamples.size()]);
            }
        }
        const Positions expected = model.ends(text);
        ASSERT_EQ(ends(text), expected) << ::testing::PrintToString(text);
        ASSERT_EQ(characterCount(text), expected.size()) << ::testing::PrintToString(text);
        for (std::size_t index = 0; index <= expected.size() + 1; ++index) {
            ASSERT_EQ(characterPosition(text, index), CharacterModel::position(expected, index))
                << ::testing::PrintToString(text);
        }
        for (std::size_t position = 0; position <= text.size(); ++position) {
            ASSERT_EQ(characterIndex(text, position), CharacterModel::index(expected, position))
                << ::testing::PrintToString(text) << position;
        }
    }
}

TEST(Characters, TheCasesOfTheUnicodeConsortiumHold) {
    std::ifstream file(ZOR_CHARACTER_ENDS);
    std::size_t cases = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) continue;
        std::u16string text;
        Positions expected;
        for (std::size_t at = 0; at < line.size(); ++at) {
            std::size_t digits = 0;
            appendScalar(text, static_cast<char32_t>(std::stoul(line.substr(at), &digits, 16)));
            at += digits;
            if (at == line.size() || line[at] == '|') expected.push_back(text.size());
        }
        EXPECT_EQ(ends(text), expected) << line;
        EXPECT_EQ(characterCount(text), expected.size()) << line;
        ++cases;
    }
    EXPECT_EQ(cases, 602U);
}

TEST(Characters, PositionsBeginAtZeroAndEndWithTheText) {
    EXPECT_EQ(characterPosition(u"", 0), 0U);
    EXPECT_EQ(characterPosition(u"", 1), std::nullopt);
    EXPECT_EQ(characterPosition(u"a\r\nb", 2), 3U);
    EXPECT_EQ(characterPosition(u"a\r\nb", 3), 4U);
    EXPECT_EQ(characterPosition(u"a\r\nb", 4), std::nullopt);
    EXPECT_EQ(characterPosition(u"ab", static_cast<std::size_t>(-1)), std::nullopt);
}

TEST(Characters, ManyAreCountedAndOneLongOneToo) {
    EXPECT_EQ(characterCount(u""), 0U);
    EXPECT_EQ(characterCount(std::u16string(1'000'000, u'x')), 1'000'000U);
    EXPECT_EQ(characterCount(u'e' + std::u16string(1'000'000, u'\u0301')), 1U);
    EXPECT_EQ(characterEnd(u'e' + std::u16string(1'000'000, u'\u0301'), 0), 1'000'001U);
}

// Behind the first page, reading ends the process.
TEST(Characters, APositionIsFoundWithoutReadingBeyondIt) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const memory = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto* const units = static_cast<char16_t*>(memory);
    const std::size_t readable = page / sizeof(char16_t);
    for (const char16_t unit : {u'x', u'\u00E9', u'\u4E00'}) {
        ASSERT_EQ(mprotect(units + readable, page, PROT_READ | PROT_WRITE), 0);
        std::fill_n(units, 2 * readable, unit);
        ASSERT_EQ(mprotect(units + readable, page, PROT_NONE), 0);
        const std::u16string_view text(units, 2 * readable);
        for (std::size_t index = readable - 20; index < readable; ++index) {
            EXPECT_EQ(characterPosition(text, index), index);
            EXPECT_EQ(characterPosition(text.substr(index), 0), 0U);
        }
        EXPECT_EQ(characterEnd(text, readable - 2), readable - 1);
    }
    munmap(memory, 2 * page);
}

}  // namespace
}  // namespace ZORPlatform
