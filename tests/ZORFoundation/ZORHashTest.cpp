// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORHash.h>

#include <ZORPlatform/CommonCrypto/CommonDigest.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace ZORFoundation {
namespace {

constexpr std::u16string_view kMd5OfAbc = u"900150983cd24fb0d6963f7d28e17f72";

TEST(ZORHash, NamedDigestsAreThoseOfTheirTypes) {
    EXPECT_EQ(ZORHash::zor_md5(u""), u"d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(ZORHash::zor_md5(u"abc"), kMd5OfAbc);
    EXPECT_EQ(ZORHash::zor_sha256(u"abc"), u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(ZORHash, DigestHasTwiceAsManyDigitsAsItsTypeHasBytes) {
    const std::vector<std::size_t> lengths = {16, 20, 28, 32, 48, 64};
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        const auto type = static_cast<ZORHashType>(i + 1);
        EXPECT_EQ(ZORHash::hashLength(type), lengths[i]);
        EXPECT_EQ(ZORHash::zor_hash(u"abc", type).size(), 2 * lengths[i]);
    }
    EXPECT_EQ(ZORHash::zor_hash(u"abc", ZORHashType::SHA1), u"a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(ZORHash::zor_hash(u"abc", ZORHashType::SHA384).substr(0, 16), u"cb00753f45a35e8b");
}

TEST(ZORHash, UnknownTypesThrowWithTheirNumber) {
    for (const std::uint64_t number : {std::uint64_t{0}, std::uint64_t{7}, ~std::uint64_t{0}}) {
        const auto type = static_cast<ZORHashType>(number);
        std::string text = std::to_string(number);
        const std::u16string reason =
            u"Hash type [" + std::u16string(text.begin(), text.end()) + u"] was not recognized";
        const auto expectThrown = [&](const auto& operation) {
            try {
                operation();
                ADD_FAILURE() << "nothing thrown";
            } catch (const ZORPlatform::NSException& exception) {
                EXPECT_EQ(exception.name(), u"InvalidHashTypeException");
                EXPECT_EQ(exception.reason(), reason);
            }
        };
        expectThrown([&] { static_cast<void>(ZORHash::zor_hash(u"abc", type)); });
        expectThrown([&] { static_cast<void>(ZORHash::hashLength(type)); });
    }
}

TEST(ZORHash, TextEndsAtItsFirstZeroUnit) {
    EXPECT_EQ(ZORHash::zor_md5(std::u16string_view(u"abc\0def", 7)), kMd5OfAbc);
    EXPECT_EQ(ZORHash::zor_md5(std::u16string_view(u"\0abc", 4)), ZORHash::zor_md5(u""));
    const std::u16string longText(10000, u'a');
    EXPECT_EQ(ZORHash::zor_md5(longText + std::u16string(1, u'\0') + u"b"), ZORHash::zor_md5(longText));
}

TEST(ZORHash, DigestsTheUtf8Form) {
    // "é" is C3 A9.
    EXPECT_EQ(ZORHash::zor_sha256(u"\u00E9"), u"4a99557e4033c3539de2eb65472017cad5f9557f7a0625a09f1c3f6e2ba69c4c");
    EXPECT_EQ(ZORHash::zor_md5(std::u16string(1, char16_t{0xD800})), ZORHash::zor_md5(u"\uFFFD"));
}

TEST(ZORHash, LongTextsAreDigestedWhole) {
    EXPECT_EQ(ZORHash::zor_hash(std::u16string(1'000'000, u'a'), ZORHashType::SHA1),
              u"34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

// The whole UTF-8 form at once.
std::u16string sha256OfUtf8(std::u16string_view text) {
    const std::string bytes = ZORPlatform::utf8(text);
    std::array<std::uint8_t, ZORPlatform::CC_SHA256_DIGEST_LENGTH> digest{};
    ZORPlatform::CC_SHA256({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, digest);
    return ZORHash::hexDigest(digest);
}

TEST(ZORHash, TextsOfEveryLengthAreDigestedAsTheirWholeUtf8Form) {
    for (std::size_t length = 0; length < 1200; ++length) {
        const std::u16string text(length, u'a');
        ASSERT_EQ(ZORHash::zor_sha256(text), sha256OfUtf8(text)) << length;
    }
}

TEST(ZORHash, CharactersOfSeveralBytesMayStandAtAnyPlace) {
    const std::u16string lone(1, char16_t{0xD83D});
    for (const std::u16string_view character : {std::u16string_view(u"\u00E9"), std::u16string_view(u"\u20AC"),
                                                std::u16string_view(u"\U0001F600"), std::u16string_view(lone)}) {
        for (std::size_t before = 0; before < 1100; ++before) {
            std::u16string text(before, u'a');
            text += character;
            text += u"bcd";
            text += character;
            text.append(600, u'e');
            ASSERT_EQ(ZORHash::zor_sha256(text), sha256OfUtf8(text)) << before;
        }
    }
}

TEST(ZORHash, TheFirstZeroUnitMayStandAtAnyPlace) {
    for (std::size_t before = 0; before < 1100; ++before) {
        const std::u16string text(before, u'a');
        ASSERT_EQ(ZORHash::zor_md5(text + std::u16string(1, u'\0') + u"b"), ZORHash::zor_md5(text)) << before;
    }
}

TEST(ZORHash, HexDigestIsLowerCase) {
    EXPECT_EQ(ZORHash::hexDigest(std::vector<std::uint8_t>{0x0A, 0xFF}), u"0aff");
    EXPECT_EQ(ZORHash::hexDigest({}), u"");
}

TEST(ZORHash, AllocatesTheResultOnly) {
    static_cast<void>(ZORHash::zor_sha256(u"first use"));
    const support::AllocationCount allocations;
    static_cast<void>(ZORHash::zor_sha256(u"sixteen letters."));
    EXPECT_EQ(allocations.count(), 1U);
}

}  // namespace
}  // namespace ZORFoundation
