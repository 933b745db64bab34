// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecKey.h>

#include <gtest/gtest.h>

#include <support/Certificates.h>

#include <algorithm>
#include <array>
#include <memory>
#include <thread>
#include <vector>

namespace ZORPlatform {
namespace {

using Bytes = std::vector<std::uint8_t>;
using support::PrivateKey;

struct Outcome {
    OSStatus status;
    std::size_t length;
    Bytes bytes;
};

Outcome encrypt(const SecKey& key, const Bytes& plain, std::size_t room,
                SecPadding padding = SecPadding::kSecPaddingPKCS1) {
    Outcome outcome{errSecSuccess, 1, Bytes(room)};
    outcome.status = SecKeyEncrypt(key, padding, plain, outcome.bytes, outcome.length);
    return outcome;
}

Bytes decrypt(const PrivateKey& key, const Bytes& sealed) {
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(EVP_PKEY_CTX_new(key.get(), nullptr),
                                                                              EVP_PKEY_CTX_free);
    Bytes plain(sealed.size());
    std::size_t length = plain.size();
    EXPECT_EQ(EVP_PKEY_decrypt_init(context.get()), 1);
    EXPECT_EQ(EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING), 1);
    EXPECT_EQ(EVP_PKEY_decrypt(context.get(), plain.data(), &length, sealed.data(), sealed.size()), 1);
    plain.resize(length);
    return plain;
}

SecKey publicHalf(const PrivateKey& key) { return SecKeyCreateWithData(key.publicKey()).value(); }

// Keys take a while to make.
const PrivateKey& rsa1024() {
    static const PrivateKey key = PrivateKey::rsa(1024);
    return key;
}

TEST(SecKey, IsMadeOfAnRsaPublicKeyAndGivesItBack) {
    const Bytes bytes = rsa1024().publicKey();
    const std::optional<SecKey> key = SecKeyCreateWithData(bytes);
    ASSERT_TRUE(key);
    EXPECT_EQ(SecKeyCopyExternalRepresentation(*key), bytes);
}

TEST(SecKey, EqualsItsCopiesOnly) {
    const SecKey key = publicHalf(rsa1024());
    const SecKey copy = key;
    EXPECT_EQ(key, copy);
    EXPECT_NE(key, publicHalf(rsa1024()));
}

TEST(SecKey, IsNotMadeOfAnythingButOneWholeRsaPublicKey) {
    const Bytes bytes = rsa1024().publicKey();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(SecKeyCreateWithData(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length))));
    }
    Bytes longer = bytes;
    longer.push_back(0);
    EXPECT_FALSE(SecKeyCreateWithData(longer));
    EXPECT_FALSE(SecKeyCreateWithData(rsa1024().publicKeyInfo()));
    EXPECT_FALSE(SecKeyCreateWithData(PrivateKey::ellipticCurve().publicKey()));
    EXPECT_FALSE(SecKeyCreateWithData(Bytes(200, 0x30)));
}

TEST(SecKey, TheBlockHasTheBytesOfTheModulus) {
    EXPECT_EQ(SecKeyGetBlockSize(publicHalf(PrivateKey::rsa(512))), 64U);
    EXPECT_EQ(SecKeyGetBlockSize(publicHalf(rsa1024())), 128U);
    EXPECT_EQ(SecKeyGetBlockSize(publicHalf(PrivateKey::rsa(1025))), 129U);
    EXPECT_EQ(SecKeyGetBlockSize(publicHalf(PrivateKey::rsa(1032))), 129U);
}

TEST(SecKey, WhatItEncryptsThePrivateKeyDecrypts) {
    for (const std::size_t length : {0U, 1U, 116U, 117U}) {
        const Bytes plain(length, 0x5A);
        const Outcome sealed = encrypt(publicHalf(rsa1024()), plain, 128);
        ASSERT_EQ(sealed.status, errSecSuccess);
        EXPECT_EQ(sealed.length, 128U);
        EXPECT_EQ(decrypt(rsa1024(), sealed.bytes), plain);
    }
}

TEST(SecKey, NoTwoCiphertextsAreAlike) {
    const SecKey key = publicHalf(rsa1024());
    EXPECT_NE(encrypt(key, Bytes(8), 128).bytes, encrypt(key, Bytes(8), 128).bytes);
}

TEST(SecKey, ALargerBufferIsFilledToTheBlock) {
    const Outcome sealed = encrypt(publicHalf(PrivateKey::rsa(512)), Bytes(10), 128);
    EXPECT_EQ(sealed.status, errSecSuccess);
    EXPECT_EQ(sealed.length, 64U);
    EXPECT_TRUE(std::all_of(sealed.bytes.begin() + 64, sealed.bytes.end(), [](auto byte) { return byte == 0; }));
}

TEST(SecKey, RefusesWhatDoesNotFit) {
    const SecKey key = publicHalf(rsa1024());
    for (const Outcome& outcome :
         {encrypt(key, Bytes(118), 128), encrypt(key, Bytes(1), 127), encrypt(key, Bytes(1), 0),
          encrypt(key, Bytes(1), 128, static_cast<SecPadding>(0)), encrypt(key, Bytes(1), 128, SecPadding{2})}) {
        EXPECT_EQ(outcome.status, errSecParam);
        EXPECT_EQ(outcome.length, 0U);
    }
}

// RSAPublicKey of a modulus and an exponent of a few bytes each.
Bytes rsaPublicKeyOf(const Bytes& modulus, const Bytes& exponent) {
    Bytes bytes = {0x30, static_cast<std::uint8_t>(4 + modulus.size() + exponent.size())};
    for (const Bytes& number : {modulus, exponent}) {
        bytes.push_back(0x02);
        bytes.push_back(static_cast<std::uint8_t>(number.size()));
        bytes.insert(bytes.end(), number.begin(), number.end());
    }
    return bytes;
}

TEST(SecKey, KeysThatCannotEncryptAreRefusedOnUse) {
    Bytes evenModulus(65, 0xC0);
    evenModulus[0] = 0;
    for (const Bytes& bytes :
         {rsaPublicKeyOf({0}, {3}), rsaPublicKeyOf({1}, {1}), rsaPublicKeyOf({0x7F}, {0}), rsaPublicKeyOf({0x80}, {3}),
          rsaPublicKeyOf(evenModulus, {3}), rsaPublicKeyOf({0x11}, {0x7F})}) {
        const std::optional<SecKey> key = SecKeyCreateWithData(bytes);
        if (!key) continue;
        EXPECT_EQ(encrypt(*key, {}, 128).status, errSecParam);
    }
}

TEST(SecKey, LeavesTheErrorQueueAsItWas) {
    ERR_clear_error();
    const SecKey key = publicHalf(rsa1024());
    static_cast<void>(SecKeyCreateWithData(Bytes(9, 0x30)));
    static_cast<void>(encrypt(key, Bytes(118), 128));
    EXPECT_EQ(ERR_peek_error(), 0U);
    ERR_raise(ERR_LIB_USER, 1);
    static_cast<void>(SecKeyCreateWithData(Bytes(9, 0x30)));
    static_cast<void>(encrypt(key, Bytes(118), 128));
    EXPECT_EQ(ERR_GET_LIB(ERR_get_error()), ERR_LIB_USER);
    EXPECT_EQ(ERR_get_error(), 0U);
}

TEST(SecKey, ThreadsShareAKey) {
    const SecKey key = publicHalf(rsa1024());
    std::array<Bytes, 4> sealed;
    std::vector<std::thread> threads;
    for (Bytes& own : sealed) {
        threads.emplace_back([&own, key] {
            for (int round = 0; round < 50; ++round) own = encrypt(key, Bytes(20, 7), 128).bytes;
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Bytes& own : sealed) EXPECT_EQ(decrypt(rsa1024(), own), Bytes(20, 7));
}

}  // namespace
}  // namespace ZORPlatform
