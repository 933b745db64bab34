// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Utf.h>

#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <support/AllocationCount.h>

namespace ZORPlatform {
namespace {

struct Pair {
    std::string utf8;
    std::u16string utf16;
};

class WellFormedText : public testing::TestWithParam<Pair> {};

TEST_P(WellFormedText, ConvertsBothWays) {
    const auto& [bytes, text] = GetParam();
    EXPECT_EQ(utf16(bytes), text);
    EXPECT_EQ(utf8(text), bytes);
    EXPECT_EQ(utf16IfWellFormed(bytes), text);
    EXPECT_EQ(utf8IfWellFormed(text), bytes);
    EXPECT_TRUE(isWellFormedUtf8(bytes));
}

INSTANTIATE_TEST_SUITE_P(Utf, WellFormedText,
                         testing::Values(Pair{"", u""}, Pair{"BE68", u"BE68"},
                                         Pair{"\u00E9l\u00E8ve", u"\u00E9l\u00E8ve"},
                                         Pair{"12345678\u20AC", u"12345678\u20AC"}, Pair{"\U0001F600", u"\U0001F600"},
                                         Pair{std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
                                         Pair{"\uFFFD", u"\uFFFD"},
                                         Pair{"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF",
                                              u"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"}));

class IllFormedUtf8 : public testing::TestWithParam<Pair> {};

TEST_P(IllFormedUtf8, BecomesOneReplacementForEachMaximalBeginning) {
    const auto& [bytes, text] = GetParam();
    EXPECT_EQ(utf16(bytes), text);
    EXPECT_EQ(utf16IfWellFormed(bytes), std::nullopt);
    EXPECT_FALSE(isWellFormedUtf8(bytes));
}

INSTANTIATE_TEST_SUITE_P(Utf, IllFormedUtf8,
                         testing::Values(Pair{"\x80", u"\uFFFD"}, Pair{"\xFF\xFE", u"\uFFFD\uFFFD"},
                                         Pair{"\xC0\xAF", u"\uFFFD\uFFFD"}, Pair{"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
                                         Pair{"a\xE2\x82", u"a\uFFFD"}, Pair{"\xF0\x9F\x98z", u"\uFFFDz"},
                                         Pair{"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}));

// ICU's converter stands beside ours. The bytes are those at which a decision falls.
TEST(Utf, ConvertsAnyBytesAsIcuDoes) {
    constexpr std::string_view kBytes =
        "azAZ 09\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2\xC3\xDF\xE0\xE2\xED\xEF\xF0\xF1\xF4\xF5\xFF";
    std::mt19937 random(20180305);
    for (int round = 0; round < 100'000; ++round) {
        std::string bytes(random() % 40, '\0');
        // Half of them mostly ASCII, so that blocks of it come before and behind all else.
        const bool isMostlyAscii = round % 2 == 0;
        for (char& byte : bytes) byte = isMostlyAscii && random() % 8 != 0 ? 'a' : kBytes[random() % kBytes.size()];
        const icu::UnicodeString expected =
            icu::UnicodeString::fromUTF8({bytes.data(), static_cast<std::int32_t>(bytes.size())});
        const std::vector<char> exactly(bytes.begin(), bytes.end());
        ASSERT_EQ(utf16({exactly.data(), exactly.size()}),
                  std::u16string(expected.getBuffer(), static_cast<std::size_t>(expected.length())));
    }
}

TEST(Utf, FindsWhatIsNoAsciiAtAnyPlace) {
    for (std::size_t size = 1; size < 70; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            std::string bytes(size, 'x');
            EXPECT_TRUE(isWellFormedUtf8(bytes));
            bytes[at] = '\xFF';
            EXPECT_FALSE(isWellFormedUtf8(bytes)) << size << ", " << at;
            std::u16string expected(size, u'x');
            expected[at] = u'\uFFFD';
            EXPECT_EQ(utf16(bytes), expected) << at;
        }
    }
}

TEST(Utf, LoneSurrogatesBecomeReplacementsInUtf8) {
    const std::u16string lone{u'A', char16_t{0xD800}, u'B', char16_t{0xDC00}};
    EXPECT_EQ(utf8(lone), "A\uFFFDB\uFFFD");
    EXPECT_EQ(utf8IfWellFormed(lone), std::nullopt);
}

TEST(Utf, BufferHoldsShortTextsWithoutAllocating) {
    const std::string atLimit(64, 'x');
    const support::AllocationCount allocations;
    const Utf16Buffer<64> buffer(atLimit);
    EXPECT_EQ(allocations.count(), 0U);
    EXPECT_EQ(buffer.view(), std::u16string(64, u'x'));
}

TEST(Utf, BufferTakesTextsLongerThanItself) {
    const Utf16Buffer<64> buffer(std::string(65, 'x'));
    EXPECT_EQ(buffer.view(), std::u16string(65, u'x'));
}

std::string inPieces(std::u16string_view text, std::size_t room) {
    std::string bytes;
    while (!text.empty()) {
        std::vector<char> buffer(room);
        const Utf8Prefix step = utf8Prefix(text, buffer);
        if (step.units == 0) {
            ADD_FAILURE() << "no progress with room for " << room << " bytes";
            break;
        }
        bytes.append(buffer.data(), step.bytes);
        text.remove_prefix(step.units);
    }
    return bytes;
}

TEST(Utf8Prefix, PiecesOfAnySizeJoinToTheWholeConversion) {
    std::u16string text;
    for (int round = 0; round < 40; ++round) {
        text += std::u16string(static_cast<std::size_t>(round), u'a');
        text += u"\u00E9\u20AC\U0001F600";
        text.push_back(u'\0');
        text.push_back(u'z');
        text.push_back(static_cast<char16_t>(0xD800 + round));
        text.push_back(char16_t{0xDC00});
        text += u"\u07FF";
    }
    for (const std::size_t room : {4U, 5U, 7U, 16U, 31U, 64U, 4096U}) EXPECT_EQ(inPieces(text, room), utf8(text));
}

TEST(Utf8Prefix, FindsWhatIsNoAsciiAtAnyPlace) {
    for (std::size_t size = 1; size < 200; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            for (const unsigned unit : {0x80U, 0x0161U, 0x7FFFU, 0x8041U, 0xD83DU, 0xFF41U}) {
                // Exactly sized, so that a read or write beyond it is seen.
                std::vector<char16_t> text(size, u'x');
                text[at] = static_cast<char16_t>(unit);
                const std::string expected = std::string(at, 'x') +
                                             utf8(std::u16string(1, static_cast<char16_t>(unit))) +
                                             std::string(size - at - 1, 'x');
                std::vector<char> buffer(expected.size());
                const Utf8Prefix step = utf8Prefix({text.data(), size}, buffer);
                ASSERT_EQ(step.units, size) << at;
                ASSERT_EQ(std::string(buffer.begin(), buffer.end()), expected) << at;
            }
        }
    }
}

TEST(Utf8Prefix, FillsTheBufferAndNoMoreAtEverySize) {
    const std::u16string text(300, u'x');
    for (std::size_t room = 0; room < 200; ++room) {
        std::vector<char> buffer(room, '.');
        const Utf8Prefix step = utf8Prefix(text, buffer);
        ASSERT_EQ(step.units, room);
        ASSERT_EQ(step.bytes, room);
        ASSERT_EQ(std::string(buffer.begin(), buffer.end()), std::string(room, 'x'));
    }
}

TEST(Utf8Prefix, EveryScalarIsWrittenAsTheWholeConversionWritesIt) {
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        std::u16string text;
        appendScalar(text, scalar);
        std::array<char, 4> buffer{};
        const Utf8Prefix step = utf8Prefix(text, buffer);
        ASSERT_EQ(std::string(buffer.data(), step.bytes), utf8(text)) << std::hex << static_cast<unsigned>(scalar);
        ASSERT_EQ(step.units, text.size());
    }
}

TEST(Utf8Prefix, StopsBeforeAScalarThatDoesNotFit) {
    std::array<char, 3> buffer{};
    EXPECT_EQ(utf8Prefix(u"\u00E9\u00E9", buffer).bytes, 2U);
    EXPECT_EQ(utf8Prefix(u"\U0001F600", buffer).units, 0U);
    EXPECT_EQ(utf8Prefix(u"abcd", buffer).units, 3U);
    EXPECT_EQ(utf8Prefix(u"abcd", std::span<char>()).units, 0U);
    EXPECT_EQ(utf8Prefix(u"", buffer).bytes, 0U);
}

TEST(WellFormedPrefix, EndsBeforeTheFirstLoneSurrogate) {
    const std::u16string lead(1, char16_t{0xD83D});
    const std::u16string trail(1, char16_t{0xDE00});
    EXPECT_EQ(wellFormedPrefix(u""), u"");
    EXPECT_EQ(wellFormedPrefix(u"a\U0001F600\uFFFF"), u"a\U0001F600\uFFFF");
    EXPECT_EQ(wellFormedPrefix(u"ab" + lead), u"ab");
    EXPECT_EQ(wellFormedPrefix(u"ab" + lead + u"c"), u"ab");
    EXPECT_EQ(wellFormedPrefix(u"ab" + trail + lead + trail), u"ab");
    EXPECT_EQ(wellFormedPrefix(lead + trail + lead), lead + trail);
}

}  // namespace
}  // namespace ZORPlatform
