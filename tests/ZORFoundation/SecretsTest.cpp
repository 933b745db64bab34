// SPDX-License-Identifier: Apache-2.0
//
// Keys, plaintext and what was prepared of them are gone from memory when an operation has returned.
#include <ZORFoundation/DataStreams.h>
#include <ZORFoundation/Security/ZORSecurity.h>
#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORFoundation/ZORHash.h>
#include <ZORFoundation/ZORMD5Hash.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <gtest/gtest.h>

#include <support/Secret.h>

#include <memory>
#include <string>
#include <vector>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;
using support::Secret;

// A secret as an argument, wiped by a careful caller. `before` other letters stand in front of it.
template <class Unit>
class Argument {
public:
    explicit Argument(const Secret& secret, std::size_t before = 0) : units_(before + secret.size(), Unit{'.'}) {
        secret.write(units_.data() + before);
    }
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;
    ~Argument() { ZORPlatform::wipe(units_.data(), units_.size() * sizeof(Unit)); }

    operator std::basic_string_view<Unit>() const noexcept { return {units_.data(), units_.size()}; }
    operator std::span<const Unit>() const noexcept { return units_; }

private:
    std::vector<Unit> units_;
};
using Text = Argument<char16_t>;
using Data = Argument<std::uint8_t>;

// What a careful caller does with a result.
template <class Result>
void wipeResult(Result& result) {
    ASSERT_TRUE(result);
    ZORPlatform::wipe(result->data(), result->size() * sizeof(*result->data()));
}

TEST(Secrets, AreFoundWhereverTheyAre) {
    const Secret secret(24);
    EXPECT_EQ(secret.copies(), 0U);
    {
        const Data onTheHeap(secret);
        ZORPlatform::WipingArray<std::uint8_t, 24> onTheStack;
        secret.write(onTheStack.data());
        EXPECT_EQ(secret.copies(), 2U);
    }
    EXPECT_EQ(secret.copies(), 0U);
    auto freed = std::make_unique<Data>(secret, 100);
    EXPECT_EQ(secret.copies(), 1U);
    freed.reset();
    EXPECT_EQ(secret.copies(), 0U);
}

TEST(Secrets, DigestsLeaveNothingOfTheirText) {
    for (std::uint64_t type = 1; type <= 6; ++type) {
        // Within one block, whether the algorithm's blocks have 64 bytes or 128.
        for (const std::size_t before : {0U, 200U, 5000U}) {
            const Secret secret(24);
            static_cast<void>(ZORHash::zor_hash(Text(secret, before), static_cast<ZORHashType>(type)));
            EXPECT_EQ(secret.copies(), 0U) << type << ' ' << before;
            {
                DigestStream abandoned(static_cast<ZORHashType>(type));
                abandoned.update(Data(secret, before));
            }
            EXPECT_EQ(secret.copies(), 0U) << type << ' ' << before;
        }
    }
    const Secret secret(24);
    static_cast<void>(ZORMD5Hash::zor_md5(Data(secret)));
    EXPECT_EQ(secret.copies(), 0U);
}

TEST(Secrets, CiphersKeyedByTextLeaveNeitherKeyNorPlaintext) {
    const Secret key(16);
    const Secret plaintext(40);
    const auto expectNothing = [&](const char* after) {
        EXPECT_EQ(key.copies(), 0U) << after;
        EXPECT_EQ(plaintext.copies(), 0U) << after;
    };
    const auto sealed256 = ZORAESCrypt::zor_AES256EncryptWithKey(Data(plaintext), Text(key));
    expectNothing("AES-256 encryption");
    const auto sealed128 = ZORAESCrypt::zor_AES128EncryptWithKey(Data(plaintext), Text(key));
    expectNothing("AES-128 encryption");
    auto opened = ZORAESCrypt::zor_AES256DecryptWithKey(sealed256.value(), Text(key));
    wipeResult(opened);
    expectNothing("AES-256 decryption");
    opened = ZORAESCrypt::zor_legacyAES256DecryptWithKey(*sealed256, Text(key));
    wipeResult(opened);
    expectNothing("legacy decryption");
    opened = ZORAESCrypt::zor_AES128DecryptWithKey(sealed128.value(), Text(key));
    wipeResult(opened);
    expectNothing("AES-128 decryption");
}

TEST(Secrets, CiphersOfTextsLeaveNeitherKeyNorPlaintext) {
    const Secret key(32);
    const Secret plaintext(40);
    const auto sealed = ZORAESCrypt::zor_AES256EncryptWithKey(std::u16string_view(Text(plaintext)), Text(key));
    EXPECT_EQ(key.copies(), 0U);
    EXPECT_EQ(plaintext.copies(), 0U);
    auto opened = ZORAESCrypt::zor_AES256DecryptWithKey(std::u16string_view(sealed.value()), Text(key));
    wipeResult(opened);
    EXPECT_EQ(key.copies(), 0U);
    EXPECT_EQ(plaintext.copies(), 0U);
}

TEST(Secrets, CiphersKeyedByBytesLeaveNeitherKeyNorPlaintext) {
    const Secret key(16);
    const Secret plaintext(40);
    const auto expectNothing = [&](const char* after) {
        EXPECT_EQ(key.copies(), 0U) << after;
        EXPECT_EQ(plaintext.copies(), 0U) << after;
    };
    const auto ecb = ZORSecurity::encrypt_AES128_ECB_PKCS7(Data(plaintext), Data(key));
    expectNothing("ECB encryption");
    const auto cbc = ZORSecurity::encrypt_AES128_CBC_PKCS7(Data(plaintext), Data(key), std::nullopt, true);
    expectNothing("CBC encryption");
    auto opened = ZORSecurity::decrypt_AES128_ECB_PKCS7(ecb.value(), Data(key));
    wipeResult(opened);
    expectNothing("ECB decryption");
    opened = ZORSecurity::decrypt_AES128_CBC_PKCS7(cbc.value(), Data(key), std::nullopt);
    wipeResult(opened);
    expectNothing("CBC decryption");
}

TEST(Secrets, AFailedDecryptionLeavesNoPlaintext) {
    const Secret plaintext(40);
    Bytes sealed = ZORSecurity::encrypt_AES128_ECB_PKCS7(Data(plaintext), Bytes(16)).value();
    // Letters are no padding.
    sealed.resize(32);
    const Secret head = plaintext.first(32);
    EXPECT_FALSE(ZORSecurity::decrypt_AES128_ECB_PKCS7(sealed, Bytes(16)));
    EXPECT_EQ(head.copies(), 0U);
    EXPECT_FALSE(ZORAESCrypt::zor_AES128DecryptWithKey(sealed, u""));
    EXPECT_EQ(head.copies(), 0U);
    EXPECT_FALSE(
        ZORAESCrypt::zor_AES128DecryptWithKey(std::u16string_view(ZORAESCrypt::zor_base64Encoding(sealed)), u""));
    EXPECT_EQ(head.copies(), 0U);
}

TEST(Secrets, StreamsLeaveNeitherKeyNorPlaintext) {
    const Secret key(32);
    const Secret plaintext(40);
    Bytes sealed;
    {
        TextCipherStream stream(TextCipher::AES256, TextCipherStream::Direction::encrypt, Text(key));
        for (const auto& piece : {stream.update(Data(plaintext)), stream.final()}) {
            sealed.insert(sealed.end(), piece.value().begin(), piece.value().end());
        }
    }
    EXPECT_EQ(key.copies(), 0U);
    EXPECT_EQ(plaintext.copies(), 0U);
    {
        TextCipherStream stream(TextCipher::AES256, TextCipherStream::Direction::decrypt, Text(key));
        auto piece = stream.update(sealed);
        wipeResult(piece);
        piece = stream.final();
        wipeResult(piece);
    }
    EXPECT_EQ(key.copies(), 0U);
    EXPECT_EQ(plaintext.copies(), 0U);
}

}  // namespace
}  // namespace ZORFoundation
