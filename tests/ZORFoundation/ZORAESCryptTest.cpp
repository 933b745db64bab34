// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAESCrypt.h>

#include <ZORFoundation/TextKeyInternal.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>

#include <array>
#include <string>
#include <vector>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

// The key bytes of a text without the zeros that fill them up.
template <std::size_t KeyBytes>
std::string keyOf(std::u16string_view text, TextKeyForm form = TextKeyForm::kCurrent,
                  TextKeyOverflow overflow = TextKeyOverflow::kKeepsWhatFits) {
    std::array<std::uint8_t, KeyBytes> key{};
    prepareTextKey(text, form, key, overflow);
    std::string bytes(key.begin(), key.end());
    bytes.erase(bytes.find_last_not_of('\0') + 1);
    return bytes;
}

const std::u16string kThirtyTwo = u"abcdefghijklmnopqrstuvwxyz012345";
const std::string kThirtyTwoBytes = "abcdefghijklmnopqrstuvwxyz012345";
const std::u16string kLead(1, char16_t{0xD83D});

TEST(TextKey, ShortKeysAreFilledUpWithZeros) {
    EXPECT_EQ(keyOf<32>(u""), "");
    EXPECT_EQ(keyOf<32>(u"0123456789"), "0123456789");
    EXPECT_EQ(keyOf<16>(u"0123456789"), "0123456789");
    EXPECT_EQ(keyOf<32>(u"cl\u00E9"), "cl\xC3\xA9");
}

TEST(TextKey, KeysThatJustFitAreUsedWhole) {
    EXPECT_EQ(keyOf<32>(kThirtyTwo), kThirtyTwoBytes);
    EXPECT_EQ(keyOf<32>(kThirtyTwo, TextKeyForm::kLegacy), kThirtyTwoBytes);
    EXPECT_EQ(keyOf<16>(u"0123456789abcdef"), "0123456789abcdef");
}

TEST(TextKey, MoreThan32UnitsAreCutAndLoseTheirFirstByte) {
    const std::string expected = std::string(1, '\0') + kThirtyTwoBytes.substr(1);
    EXPECT_EQ(keyOf<32>(kThirtyTwo + u"6"), expected);
    EXPECT_EQ(keyOf<32>(kThirtyTwo + u"another tail"), expected);
    EXPECT_EQ(keyOf<16>(kThirtyTwo + u"6"), expected.substr(0, 16)) << "the limit is 32 units here too";
    EXPECT_EQ(keyOf<32>(kThirtyTwo + u"6", TextKeyForm::kLegacy), kThirtyTwoBytes);
}

TEST(TextKey, OfWhatDoesNotFitTheWholeScalarsAreUsed) {
    EXPECT_EQ(keyOf<16>(u"0123456789abcdefg"), "0123456789abcdef");
    EXPECT_EQ(keyOf<16>(u"0123456789abcde\u00E9"), "0123456789abcde");
    EXPECT_EQ(keyOf<32>(kThirtyTwo.substr(0, 31) + u"\u00E9"), kThirtyTwoBytes.substr(0, 31));
    EXPECT_EQ(keyOf<32>(kThirtyTwo.substr(0, 29) + u"\U0001F511"), kThirtyTwoBytes.substr(0, 29));
}

TEST(TextKey, CopyingStopsBeforeALoneSurrogate) {
    EXPECT_EQ(keyOf<32>(u"ab" + kLead + u"cd"), "ab");
    EXPECT_EQ(keyOf<32>(u"ab" + kLead + u"cd", TextKeyForm::kLegacy), "ab");
    const std::u16string cutInPair = kThirtyTwo.substr(0, 31) + u"\U0001F511";
    EXPECT_EQ(keyOf<32>(cutInPair), std::string(1, '\0') + kThirtyTwoBytes.substr(1, 30));
}

TEST(TextKey, AZeroUnitCountsAsACharacter) {
    EXPECT_EQ(keyOf<32>(std::u16string_view(u"ab\0cd", 5)), std::string("ab\0cd", 5));
}

TEST(TextKey, OverflowCanGiveZerosAsPhonesHadThem) {
    constexpr auto kZeros = TextKeyOverflow::kGivesZeros;
    EXPECT_EQ(keyOf<16>(u"0123456789abcdefg", TextKeyForm::kCurrent, kZeros), "");
    EXPECT_EQ(keyOf<32>(kThirtyTwo + u"6", TextKeyForm::kLegacy, kZeros), "");
    EXPECT_EQ(keyOf<16>(u"0123456789abcdef", TextKeyForm::kCurrent, kZeros), "0123456789abcdef") << "fits";
    EXPECT_EQ(keyOf<32>(kThirtyTwo + u"6", TextKeyForm::kCurrent, kZeros),
              std::string(1, '\0') + kThirtyTwoBytes.substr(1))
        << "fits once it is cut";
}

TEST(ZORAESCrypt, EmptyDataGivesOneBlock) {
    const auto sealed = ZORAESCrypt::zor_AES256EncryptWithKey(Bytes(), u"any");
    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->size(), 16U);
    EXPECT_EQ(ZORAESCrypt::zor_AES256DecryptWithKey(*sealed, u"any"), Bytes());
}

TEST(ZORAESCrypt, Aes128ShowsEqualBlocksAndAes256HidesThem) {
    const Bytes twoBlocks(32, 0x61);
    const Bytes ecb = ZORAESCrypt::zor_AES128EncryptWithKey(twoBlocks, u"key").value();
    ASSERT_EQ(ecb.size(), 48U);
    EXPECT_TRUE(std::equal(ecb.begin(), ecb.begin() + 16, ecb.begin() + 16));
    const Bytes cbc = ZORAESCrypt::zor_AES256EncryptWithKey(twoBlocks, u"key").value();
    EXPECT_FALSE(std::equal(cbc.begin(), cbc.begin() + 16, cbc.begin() + 16));
    EXPECT_EQ(ZORAESCrypt::zor_AES256EncryptWithKey(twoBlocks, u"key"), cbc) << "the vector is always zero";
}

TEST(ZORAESCrypt, LegacyAndCurrentAgreeUpTo32Characters) {
    const Bytes sealed = ZORAESCrypt::zor_AES256EncryptWithKey(bytesOf("text"), kThirtyTwo).value();
    EXPECT_EQ(ZORAESCrypt::zor_legacyAES256DecryptWithKey(sealed, kThirtyTwo), bytesOf("text"));
    const Bytes longer = ZORAESCrypt::zor_AES256EncryptWithKey(bytesOf("text"), kThirtyTwo + u"6").value();
    EXPECT_NE(ZORAESCrypt::zor_legacyAES256DecryptWithKey(longer, kThirtyTwo + u"6"), bytesOf("text"));
    const std::u16string firstByteZero = std::u16string(1, u'\0') + kThirtyTwo.substr(1);
    EXPECT_EQ(ZORAESCrypt::zor_legacyAES256DecryptWithKey(longer, firstByteZero), bytesOf("text"));
}

TEST(ZORAESCrypt, CiphertextThatIsNoWholeBlocksGivesNothing) {
    for (const std::size_t length : {0U, 15U, 17U}) {
        EXPECT_FALSE(ZORAESCrypt::zor_AES256DecryptWithKey(Bytes(length), u"key"));
        EXPECT_FALSE(ZORAESCrypt::zor_AES128DecryptWithKey(Bytes(length), u"key"));
        EXPECT_FALSE(ZORAESCrypt::zor_legacyAES256DecryptWithKey(Bytes(length), u"key"));
    }
}

TEST(ZORAESCrypt, TextsComeBack) {
    for (const std::u16string_view text :
         {u"", u"hello", u"Zo\u00EB", u"\u65E5\u672C\u8A9E", u"\U0001F600", u"line\nbreak"}) {
        EXPECT_EQ(
            ZORAESCrypt::zor_AES256DecryptWithKey(ZORAESCrypt::zor_AES256EncryptWithKey(text, u"key").value(), u"key"),
            text);
        EXPECT_EQ(
            ZORAESCrypt::zor_AES128DecryptWithKey(ZORAESCrypt::zor_AES128EncryptWithKey(text, u"key").value(), u"key"),
            text);
    }
}

TEST(ZORAESCrypt, TextsWithALoneSurrogateHaveNoUtf8Form) {
    EXPECT_FALSE(ZORAESCrypt::zor_AES256EncryptWithKey(u"a" + kLead, u"key"));
    EXPECT_FALSE(ZORAESCrypt::zor_AES128EncryptWithKey(kLead + u"a", u"key"));
}

TEST(ZORAESCrypt, PlaintextThatIsNotUtf8GivesNoText) {
    for (const auto& bytes : {Bytes{0xFF}, Bytes{'a', 0xC3}, Bytes{0xED, 0xA0, 0x80}, Bytes{0xC0, 0x80}}) {
        const std::u16string text =
            ZORAESCrypt::zor_base64Encoding(ZORAESCrypt::zor_AES256EncryptWithKey(bytes, u"key").value());
        EXPECT_FALSE(ZORAESCrypt::zor_AES256DecryptWithKey(text, u"key"));
    }
}

TEST(ZORAESCrypt, TextsAreReadAcrossLineFeedsAndCutAtPadding) {
    std::u16string text = ZORAESCrypt::zor_AES256EncryptWithKey(u"the quick brown fox jumps", u"key").value();
    text.insert(9, 1, u'\n');
    EXPECT_EQ(ZORAESCrypt::zor_AES256DecryptWithKey(text, u"key"), u"the quick brown fox jumps");
    text.insert(20, 1, u'=');
    EXPECT_FALSE(ZORAESCrypt::zor_AES256DecryptWithKey(text, u"key"));
}

TEST(ZORAESCrypt, AllocatesTheResultOnly) {
    const Bytes data(1000);
    const Bytes sealed = ZORAESCrypt::zor_AES256EncryptWithKey(data, u"key").value();
    static_cast<void>(ZORAESCrypt::zor_AES256DecryptWithKey(sealed, u"key"));
    const support::AllocationCount allocations;
    static_cast<void>(ZORAESCrypt::zor_AES256EncryptWithKey(data, u"key"));
    EXPECT_EQ(allocations.count(), 1U);
    static_cast<void>(ZORAESCrypt::zor_AES256DecryptWithKey(sealed, u"key"));
    EXPECT_EQ(allocations.count(), 2U);
}

TEST(ZORAESCrypt, PrefixAndSuffixAreNeverEmpty) {
    const Bytes data = {1, 2, 3, 4, 5};
    EXPECT_TRUE(ZORAESCrypt::zor_hasPrefixBytes(data, Bytes{1, 2}));
    EXPECT_FALSE(ZORAESCrypt::zor_hasPrefixBytes(data, Bytes{2, 3}));
    EXPECT_TRUE(ZORAESCrypt::zor_hasPrefixBytes(data, data));
    EXPECT_FALSE(ZORAESCrypt::zor_hasPrefixBytes(data, Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_FALSE(ZORAESCrypt::zor_hasPrefixBytes(data, {}));
    EXPECT_FALSE(ZORAESCrypt::zor_hasPrefixBytes({}, {}));
    EXPECT_TRUE(ZORAESCrypt::zor_hasSuffixBytes(data, Bytes{4, 5}));
    EXPECT_FALSE(ZORAESCrypt::zor_hasSuffixBytes(data, Bytes{3, 4}));
    EXPECT_TRUE(ZORAESCrypt::zor_hasSuffixBytes(data, data));
    EXPECT_FALSE(ZORAESCrypt::zor_hasSuffixBytes(data, Bytes{0, 1, 2, 3, 4, 5}));
    EXPECT_FALSE(ZORAESCrypt::zor_hasSuffixBytes(data, {}));
    EXPECT_FALSE(ZORAESCrypt::zor_hasSuffixBytes({}, {}));
}

}  // namespace
}  // namespace ZORFoundation
