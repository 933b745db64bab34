// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORBase64.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>
#include <support/Base64Model.h>

#include <numeric>
#include <string>
#include <vector>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

struct Pair {
    std::string bytes;
    std::u16string text;
};

// RFC 4648, section 10.
const std::vector<Pair> kPublished = {{"", u""},
                                      {"f", u"Zg=="},
                                      {"fo", u"Zm8="},
                                      {"foo", u"Zm9v"},
                                      {"foob", u"Zm9vYg=="},
                                      {"fooba", u"Zm9vYmE="},
                                      {"foobar", u"Zm9vYmFy"}};

TEST(ZORBase64, GivesThePublishedAnswers) {
    for (const auto& [bytes, text] : kPublished) {
        EXPECT_EQ(ZORBase64::zor_base64EncodedString(bytesOf(bytes)), text);
        EXPECT_EQ(ZORBase64::zor_dataFromBase64String(text), bytesOf(bytes));
    }
}

TEST(ZORBase64, LinesOf64CharactersAreJoinedByCrLf) {
    const std::u16string line(64, u'A');
    EXPECT_EQ(ZORBase64::zor_base64EncodedString(Bytes(47)), std::u16string(63, u'A') + u"=");
    EXPECT_EQ(ZORBase64::zor_base64EncodedString(Bytes(48)), line);
    EXPECT_EQ(ZORBase64::zor_base64EncodedString(Bytes(49)), line + u"\r\nAA==");
    EXPECT_EQ(ZORBase64::zor_base64EncodedString(Bytes(96)), line + u"\r\n" + line);
    std::u16string many = line;
    for (int i = 1; i < 100; ++i) many += u"\r\n" + line;
    EXPECT_EQ(ZORBase64::zor_base64EncodedString(Bytes(4800)), many);
}

struct Decoding {
    std::u16string text;
    std::string bytes;
};

TEST(ZORBase64, SkippedCharactersBehindAFullLastGroupTakeOneByte) {
    const std::vector<Decoding> cases = {{u"QUJD", "ABC"},    {u"QUJD\n", "AB"},        {u"QUJD\r\n", "AB"},
                                         {u"QUJD====", "AB"}, {u"QUJDREVG\n", "ABCDE"}, {u"QUJD\nREVG", "ABCDEF"},
                                         {u"=QUJD", "ABC"},   {u"Q U J D", "ABC"},      {u"Q U J D ", "AB"}};
    for (const auto& [text, bytes] : cases) EXPECT_EQ(ZORBase64::zor_dataFromBase64String(text), bytesOf(bytes));
}

TEST(ZORBase64, AnIncompleteLastGroupIsKept) {
    const std::vector<Decoding> cases = {{u"Q", ""},           {u"QQ", "A"},        {u"QUI", "AB"},   {u"QUJDR", "ABC"},
                                         {u"QUJDR===", "ABC"}, {u"QUJDQQ", "ABCA"}, {u"QQ==\n", "A"}, {u"Q\n", ""}};
    for (const auto& [text, bytes] : cases) EXPECT_EQ(ZORBase64::zor_dataFromBase64String(text), bytesOf(bytes));
}

TEST(ZORBase64, PaddingEndsNothing) {
    EXPECT_EQ(ZORBase64::zor_dataFromBase64String(u"QQ==QUJD"), (Bytes{0x41, 0x04, 0x14, 0x24}));
    EXPECT_EQ(ZORBase64::zor_dataFromBase64String(u"QUJD=QUJD"), bytesOf("ABCABC"));
}

TEST(ZORBase64, TextWithoutAnyCharacterGivesNothing) {
    for (const std::u16string_view text : {u"", u"=", u"\n", u"====", u"-_.,"}) {
        EXPECT_TRUE(ZORBase64::zor_dataFromBase64String(text).empty());
    }
}

TEST(ZORBase64, TextThatIsNotAsciiGivesNothing) {
    for (const std::u16string_view text :
         {u"\u00E9", u"QUJD\u00E9", u"QUJD\u0151UJD", u"QUJD\u4141\u4141", u"QU\uFF21D"}) {
        EXPECT_TRUE(ZORBase64::zor_dataFromBase64String(text).empty());
    }
    std::u16string text(1000, u'A');
    for (std::size_t at = 0; at < text.size(); at += 13) {
        text[at] = char16_t{0x0141};
        EXPECT_TRUE(ZORBase64::zor_dataFromBase64String(text).empty()) << at;
        text[at] = u'A';
    }
}

TEST(ZORBase64, DecodingUndoesEncodingButForAFullLastLine) {
    for (std::size_t length = 0; length < 400; ++length) {
        Bytes bytes(length);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{3});
        EXPECT_EQ(ZORBase64::zor_dataFromBase64String(ZORBase64::zor_base64EncodedString(bytes)), bytes);
    }
}

TEST(ZORBase64, EncodesAsTheRuleReadLiterally) {
    std::vector<std::size_t> lengths(200);
    std::iota(lengths.begin(), lengths.end(), std::size_t{0});
    // Whole lines and their neighbours.
    for (const std::size_t lines : {63U, 64U, 65U, 128U, 129U}) {
        for (std::size_t length = 48 * lines - 3; length < 48 * lines + 4; ++length) lengths.push_back(length);
    }
    for (const std::size_t length : lengths) {
        Bytes bytes(length);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
        ASSERT_EQ(ZORBase64::zor_base64EncodedString(bytes), support::literalBase64EncodedString(bytes)) << length;
    }
}

TEST(ZORBase64, AStrayCharacterMayStandAtAnyPlace) {
    const auto encode = [](const Bytes& bytes) { return ZORBase64::zor_base64EncodedString(bytes); };
    for (const std::u16string& text : support::base64WithStrays(encode))
        ASSERT_EQ(ZORBase64::zor_dataFromBase64String(text), support::literalDataFromBase64String(text));
}

TEST(ZORBase64, AllocatesTheResultOnly) {
    for (const std::size_t length : {64U, 10000U}) {
        const Bytes bytes(length, 0x5A);
        const std::u16string text = ZORBase64::zor_base64EncodedString(bytes);
        const support::AllocationCount allocations;
        static_cast<void>(ZORBase64::zor_base64EncodedString(bytes));
        EXPECT_EQ(allocations.count(), 1U);
        static_cast<void>(ZORBase64::zor_dataFromBase64String(text));
        EXPECT_EQ(allocations.count(), 2U);
    }
}

TEST(ZORBase64, DirtyTextsDecodeAsTheRuleReadLiterally) {
    unsigned seed = 0;
    for (const unsigned dirtyIn : {1U, 2U, 3U, 5U, 20U, 64U, 75U, 77U, 300U}) {
        for (const std::size_t units : {5U, 63U, 66U, 130U, 255U, 257U, 262U, 520U, 1100U, 3000U}) {
            for (int round = 0; round < 8; ++round) {
                const std::u16string text = support::dirtyBase64(units, dirtyIn, ++seed);
                ASSERT_EQ(ZORBase64::zor_dataFromBase64String(text), support::literalDataFromBase64String(text));
                const std::u16string padded = text + u"==\n" + text;
                ASSERT_EQ(ZORBase64::zor_dataFromBase64String(padded), support::literalDataFromBase64String(padded));
            }
        }
    }
}

}  // namespace
}  // namespace ZORFoundation
