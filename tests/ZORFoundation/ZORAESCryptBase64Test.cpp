// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAESCrypt.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>
#include <support/Base64Model.h>

#include <limits>
#include <numeric>
#include <string>
#include <vector>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

Bytes decoded(std::u16string_view text) { return ZORAESCrypt::zor_dataWithBase64EncodedString(text); }

TEST(ZORAESCryptBase64, GivesThePublishedAnswers) {
    const std::vector<std::pair<std::string, std::u16string>> published = {{"", u""},
                                                                           {"f", u"Zg=="},
                                                                           {"fo", u"Zm8="},
                                                                           {"foo", u"Zm9v"},
                                                                           {"foob", u"Zm9vYg=="},
                                                                           {"fooba", u"Zm9vYmE="},
                                                                           {"foobar", u"Zm9vYmFy"}};
    for (const auto& [bytes, text] : published) {
        EXPECT_EQ(ZORAESCrypt::zor_base64Encoding(bytesOf(bytes)), text);
        EXPECT_EQ(decoded(text), bytesOf(bytes));
    }
}

TEST(ZORAESCryptBase64, ALineFeedFollowsEveryFullLine) {
    EXPECT_EQ(ZORAESCrypt::zor_base64EncodingWithLineLength(Bytes(48), 64), std::u16string(64, u'A') + u"\n");
    EXPECT_EQ(ZORAESCrypt::zor_base64EncodingWithLineLength(Bytes(2), 4), u"AAA=\n");
    EXPECT_EQ(ZORAESCrypt::zor_base64EncodingWithLineLength({}, 64), u"");
    for (std::size_t length = 0; length < 60; ++length) {
        for (std::size_t lineLength = 0; lineLength < 90; ++lineLength) {
            ASSERT_EQ(ZORAESCrypt::zor_base64EncodingWithLineLength(Bytes(length), lineLength),
                      support::literalBase64EncodingWithLineLength(Bytes(length), lineLength));
        }
    }
    const Bytes longer(20000, 0x31);
    for (const std::size_t lineLength : {std::size_t{76}, std::size_t{3000}, std::numeric_limits<std::size_t>::max()}) {
        EXPECT_EQ(ZORAESCrypt::zor_base64EncodingWithLineLength(longer, lineLength),
                  support::literalBase64EncodingWithLineLength(longer, lineLength));
    }
}

TEST(ZORAESCryptBase64, EncodesAsTheRuleReadLiterally) {
    for (std::size_t length = 0; length < 200; ++length) {
        Bytes bytes(length);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
        ASSERT_EQ(ZORAESCrypt::zor_base64Encoding(bytes), support::literalBase64EncodingWithLineLength(bytes, 0));
        ASSERT_EQ(ZORAESCrypt::zor_base64EncodingWithLineLength(bytes, 64),
                  support::literalBase64EncodingWithLineLength(bytes, 64));
    }
}

TEST(ZORAESCryptBase64, AllocatesTheResultOnly) {
    for (const std::size_t length : {64U, 10000U}) {
        const Bytes bytes(length, 0x5A);
        const std::u16string text = ZORAESCrypt::zor_base64Encoding(bytes);
        const support::AllocationCount allocations;
        static_cast<void>(ZORAESCrypt::zor_base64Encoding(bytes));
        EXPECT_EQ(allocations.count(), 1U);
        static_cast<void>(ZORAESCrypt::zor_base64EncodingWithLineLength(bytes, 76));
        EXPECT_EQ(allocations.count(), 2U);
        static_cast<void>(ZORAESCrypt::zor_dataWithBase64EncodedString(text));
        EXPECT_EQ(allocations.count(), 3U);
    }
}

struct Decoding {
    std::u16string text;
    std::string bytes;
};

TEST(ZORAESCryptBase64, DecodingEndsAtTheFirstPadding) {
    const std::vector<Decoding> cases = {{u"QQ==", "A"},  {u"QQ=", "A"},         {u"QUI=", "AB"},
                                         {u"QU=JD", "A"}, {u"QUJD=QUJD", "ABC"}, {u"=QUJD", ""},
                                         {u"====", ""},   {u"QQ==QUJD", "A"},    {u"QUJDQ U I\n=", "ABCAB"}};
    for (const auto& [text, bytes] : cases) EXPECT_EQ(decoded(text), bytesOf(bytes));
}

TEST(ZORAESCryptBase64, AnIncompleteLastGroupWithoutPaddingIsDropped) {
    const std::vector<Decoding> cases = {{u"Q", ""},        {u"QQ", ""},        {u"QUI", ""},
                                         {u"QUJDQ", "ABC"}, {u"QUJDQQ", "ABC"}, {u"QUJDQUI", "ABC"}};
    for (const auto& [text, bytes] : cases) EXPECT_EQ(decoded(text), bytesOf(bytes));
}

TEST(ZORAESCryptBase64, OtherCharactersAreSkipped) {
    const std::vector<Decoding> cases = {{u"QUJD\n", "ABC"},
                                         {u"Q-U_J.D", "ABC"},
                                         {u" Q\tU\r\nJ D!", "ABC"},
                                         {u"QUJ\nDREVG\n", "ABCDEF"},
                                         {u"\n\r \t", ""}};
    for (const auto& [text, bytes] : cases) EXPECT_EQ(decoded(text), bytesOf(bytes));
}

TEST(ZORAESCryptBase64, AStrayCharacterMayStandAtAnyPlace) {
    const auto encode = [](const Bytes& bytes) { return ZORAESCrypt::zor_base64Encoding(bytes); };
    for (const std::u16string& text : support::base64WithStrays(encode))
        ASSERT_EQ(decoded(text), support::literalInitWithBase64EncodedString(text));
}

TEST(ZORAESCryptBase64, TextThatIsNotAsciiGivesNothingEvenBehindThePadding) {
    for (const std::u16string_view text : {u"\u00E9", u"QUJD\u00E9", u"QUJD=\u00E9", u"QUJD\u4141\u4141\u4141"}) {
        EXPECT_TRUE(decoded(text).empty());
    }
    EXPECT_TRUE(decoded(u"QUJD" + std::u16string(1, char16_t{0xD800})).empty());
}

TEST(ZORAESCryptBase64, InitialiserDecodesAsTheConstructorDoes) {
    EXPECT_EQ(ZORAESCrypt::initWithBase64EncodedString(u"QUJD=QUJD"), bytesOf("ABC"));
    EXPECT_TRUE(ZORAESCrypt::initWithBase64EncodedString({}).empty());
}

TEST(ZORAESCryptBase64, DecodingUndoesEncodingWithAnyLineLength) {
    for (std::size_t length = 0; length < 400; length += 7) {
        Bytes bytes(length);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{3});
        for (const std::size_t lineLength : {0U, 1U, 5U, 64U, 75U, 76U, 300U}) {
            ASSERT_EQ(decoded(ZORAESCrypt::zor_base64EncodingWithLineLength(bytes, lineLength)), bytes);
        }
    }
}

TEST(ZORAESCryptBase64, DirtyTextsDecodeAsTheRuleReadLiterally) {
    unsigned seed = 0;
    for (const unsigned dirtyIn : {1U, 2U, 3U, 5U, 20U, 64U, 75U, 77U, 300U}) {
        for (const std::size_t units : {5U, 63U, 66U, 130U, 255U, 257U, 262U, 520U, 1100U, 3000U}) {
            for (int round = 0; round < 8; ++round) {
                const std::u16string text = support::dirtyBase64(units, dirtyIn, ++seed);
                ASSERT_EQ(ZORAESCrypt::zor_dataWithBase64EncodedString(text),
                          support::literalInitWithBase64EncodedString(text));
                const std::u16string padded = text + u"==\n" + text;
                ASSERT_EQ(ZORAESCrypt::zor_dataWithBase64EncodedString(padded),
                          support::literalInitWithBase64EncodedString(padded));
            }
        }
    }
}

}  // namespace
}  // namespace ZORFoundation
