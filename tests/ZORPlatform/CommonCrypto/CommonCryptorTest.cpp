// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/CommonCrypto/CommonCryptor.h>

#include <gtest/gtest.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace ZORPlatform {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Vector = std::array<std::uint8_t, 16>;

Bytes fromHex(std::string_view hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
    }
    return bytes;
}

struct Outcome {
    CCCryptorStatus status;
    Bytes bytes;
};

Outcome run(CCOperation operation, CCOptions options, const Bytes& key, const Bytes& in,
            std::optional<Vector> iv = std::nullopt) {
    Bytes out(in.size() + kCCBlockSizeAES128);
    std::size_t moved = 0;
    std::optional<std::span<const std::uint8_t, 16>> vector;
    if (iv) vector = std::span<const std::uint8_t, 16>(*iv);
    const CCCryptorStatus status = CCCrypt(operation, kCCAlgorithmAES128, options, key, vector, in, out, moved);
    out.resize(moved);
    return {status, out};
}

// NIST SP 800-38A, appendix F: one plaintext of four blocks, all key sizes, no padding.
const Bytes kPlaintext = fromHex(
    "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e5130c81c46a35ce411e5fbc1191a0a52ef"
    "f69f2445df4f9b17ad2b417be66c3710");
const std::vector<std::string> kKeys = {"2b7e151628aed2a6abf7158809cf4f3c",
                                        "8e73b0f7da0e6452c810f32b809079e562f8ead2522c6b7b",
                                        "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4"};
const std::vector<std::string> kEcbCiphertexts = {
    "3ad77bb40d7a3660a89ecaf32466ef97f5d3d58503b9699de785895a96fdbaaf43b1cd7f598ece23881b00e3ed030688"
    "7b0c785e27e8ad3f8223207104725dd4",
    "bd334f1d6e45f25ff712a214571fa5cc974104846d0ad3ad7734ecb3ecee4eefef7afd2270e2e60adce0ba2face6444e"
    "9a4b41ba738d6c72fb16691603c18e0e",
    "f3eed1bdb5d2a03c064b5a7e3db181f8591ccb10d410ed26dc5ba74a31362870b6ed21b99ca6f4f9f153e7b1beafed1d"
    "23304b7a39f9f3ff067d8d8f9e24ecc7"};
const std::vector<std::string> kCbcCiphertexts = {
    "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b273bed6b8e3c1743b7116e69e22229516"
    "3ff1caa1681fac09120eca307586e1a7",
    "4f021db243bc633d7178183a9fa071e8b4d9ada9ad7dedf4e5e738763f69145a571b242012fb7ae07fa9baac3df102e0"
    "08b0e27988598881d920a9e64f5615cd",
    "f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d39f23369a9d9bacfa530e26304231461"
    "b2eb05e2c39be9fcda6c19078c6a9d1b"};
constexpr Vector kVector = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

TEST(CommonCryptor, GivesThePublishedAnswers) {
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        const Bytes key = fromHex(kKeys[i]);
        EXPECT_EQ(run(kCCEncrypt, kCCOptionECBMode, key, kPlaintext).bytes, fromHex(kEcbCiphertexts[i]));
        EXPECT_EQ(run(kCCDecrypt, kCCOptionECBMode, key, fromHex(kEcbCiphertexts[i])).bytes, kPlaintext);
        EXPECT_EQ(run(kCCEncrypt, 0, key, kPlaintext, kVector).bytes, fromHex(kCbcCiphertexts[i]));
        EXPECT_EQ(run(kCCDecrypt, 0, key, fromHex(kCbcCiphertexts[i]), kVector).bytes, kPlaintext);
    }
}

const Bytes kKey(16, 0x42);
constexpr CCOptions kPaddedEcb = kCCOptionPKCS7Padding | kCCOptionECBMode;

TEST(CommonCryptor, PaddedTextsOfEveryLengthComeBack) {
    for (const CCOptions options : {kCCOptionPKCS7Padding, kPaddedEcb}) {
        for (std::size_t length = 0; length < 70; ++length) {
            Bytes plain(length);
            for (std::size_t i = 0; i < length; ++i) plain[i] = static_cast<std::uint8_t>(i * 7);
            const Outcome sealed = run(kCCEncrypt, options, kKey, plain, kVector);
            ASSERT_EQ(sealed.status, kCCSuccess);
            ASSERT_EQ(sealed.bytes.size(), length / 16 * 16 + 16);
            const Outcome opened = run(kCCDecrypt, options, kKey, sealed.bytes, kVector);
            ASSERT_EQ(opened.status, kCCSuccess);
            ASSERT_EQ(opened.bytes, plain);
        }
    }
}

TEST(CommonCryptor, AnAbsentVectorIsZeros) {
    EXPECT_EQ(run(kCCEncrypt, 0, kKey, kPlaintext).bytes, run(kCCEncrypt, 0, kKey, kPlaintext, Vector{}).bytes);
    EXPECT_NE(run(kCCEncrypt, 0, kKey, kPlaintext).bytes, run(kCCEncrypt, 0, kKey, kPlaintext, kVector).bytes);
}

// The last block is made by encrypting without padding, so that it can hold anything.
CCCryptorStatus statusOfLastBlock(const Bytes& block) {
    Bytes plain(16 + block.size(), 0xAA);
    std::copy(block.begin(), block.end(), plain.begin() + 16);
    const Bytes sealed = run(kCCEncrypt, 0, kKey, plain).bytes;
    const Outcome opened = run(kCCDecrypt, kCCOptionPKCS7Padding, kKey, sealed);
    if (opened.status != kCCSuccess) {
        EXPECT_TRUE(opened.bytes.empty());
    }
    return opened.status;
}

TEST(CommonCryptor, EveryByteOfThePaddingIsChecked) {
    for (unsigned count = 0; count < 256; ++count) {
        Bytes block(16, 0x77);
        const std::size_t padded = std::min<std::size_t>(count, 16);
        std::fill_n(block.rbegin(), padded == 0 ? 1 : padded, static_cast<std::uint8_t>(count));
        const bool isValid = count >= 1 && count <= 16;
        EXPECT_EQ(statusOfLastBlock(block), isValid ? kCCSuccess : kCCDecodeError) << count;
        if (!isValid) continue;
        for (std::size_t wrong = 16 - count; wrong < 15; ++wrong) {
            Bytes changed = block;
            changed[wrong] ^= 0x80;
            EXPECT_EQ(statusOfLastBlock(changed), kCCDecodeError) << count << " at " << wrong;
        }
    }
}

TEST(CommonCryptor, CiphertextIsWholeBlocksAndOneAtLeast) {
    for (const std::size_t length : {0U, 1U, 15U, 17U, 31U, 33U}) {
        EXPECT_EQ(run(kCCDecrypt, kCCOptionPKCS7Padding, kKey, Bytes(length)).status, kCCAlignmentError) << length;
    }
    EXPECT_EQ(run(kCCEncrypt, 0, kKey, Bytes(15)).status, kCCAlignmentError);
    EXPECT_EQ(run(kCCDecrypt, 0, kKey, Bytes(17)).status, kCCAlignmentError);
    EXPECT_EQ(run(kCCEncrypt, 0, kKey, {}).status, kCCSuccess);
}

TEST(CommonCryptor, KeysHaveTheSizesOfAes) {
    for (const std::size_t size : {0U, 15U, 17U, 31U, 33U}) {
        EXPECT_EQ(run(kCCEncrypt, kCCOptionPKCS7Padding, Bytes(size), {}).status, kCCKeySizeError) << size;
    }
}

TEST(CommonCryptor, UnknownRequestsAreParameterErrors) {
    EXPECT_EQ(run(static_cast<CCOperation>(2), kCCOptionPKCS7Padding, kKey, {}).status, kCCParamError);
    EXPECT_EQ(run(kCCEncrypt, 4, kKey, {}).status, kCCParamError);
    std::size_t moved = 0;
    std::array<std::uint8_t, 16> out{};
    EXPECT_EQ(CCCrypt(kCCEncrypt, static_cast<CCAlgorithm>(1), 1, kKey, std::nullopt, {}, out, moved), kCCParamError);
}

TEST(CommonCryptor, ASmallBufferIsToldTheRoomItNeeds) {
    std::size_t moved = 0;
    Bytes out(31);
    EXPECT_EQ(CCCrypt(kCCEncrypt, kCCAlgorithmAES128, kPaddedEcb, kKey, std::nullopt, Bytes(16), out, moved),
              kCCBufferTooSmall);
    EXPECT_EQ(moved, 32U);
    EXPECT_EQ(CCCrypt(kCCDecrypt, kCCAlgorithmAES128, kPaddedEcb, kKey, std::nullopt, Bytes(32), out, moved),
              kCCBufferTooSmall);
    EXPECT_EQ(moved, 32U);
}

TEST(CommonCryptor, AFailedDecryptionLeavesNoPlaintext) {
    const Bytes sealed = run(kCCEncrypt, kCCOptionECBMode, kKey, Bytes(32, 0x55)).bytes;
    Bytes out(32, 0xEE);
    std::size_t moved = 1;
    EXPECT_EQ(CCCrypt(kCCDecrypt, kCCAlgorithmAES128, kPaddedEcb, kKey, std::nullopt, sealed, out, moved),
              kCCDecodeError);
    EXPECT_EQ(moved, 0U);
    EXPECT_EQ(out, Bytes(32));
}

TEST(CommonCryptor, LeavesTheErrorQueueAsItWas) {
    ERR_clear_error();
    static_cast<void>(run(kCCDecrypt, kPaddedEcb, kKey, Bytes(16)));
    EXPECT_EQ(ERR_peek_error(), 0U);
    ERR_raise(ERR_LIB_USER, 1);
    static_cast<void>(run(kCCDecrypt, kPaddedEcb, kKey, Bytes(16)));
    EXPECT_EQ(ERR_GET_LIB(ERR_get_error()), ERR_LIB_USER);
    EXPECT_EQ(ERR_get_error(), 0U);
}

Outcome runInPieces(CCOperation operation, CCOptions options, const Bytes& key, const Bytes& in, std::size_t piece) {
    CCCryptor cryptor(operation, options, key);
    Outcome outcome{kCCSuccess, {}};
    for (std::size_t at = 0; at < in.size(); at += piece) {
        const std::span<const std::uint8_t> rest = std::span(in).subspan(at);
        outcome.status = cryptor.update(rest.first(std::min(piece, rest.size())), outcome.bytes);
    }
    outcome.status = cryptor.final(outcome.bytes);
    return outcome;
}

TEST(CommonCryptor, PiecesGiveWhatTheWholeGives) {
    for (const CCOptions options : {kCCOptionPKCS7Padding, kPaddedEcb}) {
        for (std::size_t length = 0; length < 70; ++length) {
            const Bytes plain(length, 0x3C);
            const Bytes sealed = run(kCCEncrypt, options, kKey, plain).bytes;
            for (const std::size_t piece : {1U, 15U, 16U, 17U, 32U, 33U, 100U}) {
                ASSERT_EQ(runInPieces(kCCEncrypt, options, kKey, plain, piece).bytes, sealed);
                const Outcome opened = runInPieces(kCCDecrypt, options, kKey, sealed, piece);
                ASSERT_EQ(opened.status, kCCSuccess);
                ASSERT_EQ(opened.bytes, plain);
            }
        }
    }
}

TEST(CommonCryptor, PiecesFailAsTheWholeDoes) {
    EXPECT_EQ(runInPieces(kCCDecrypt, kPaddedEcb, kKey, {}, 8).status, kCCAlignmentError);
    EXPECT_EQ(runInPieces(kCCDecrypt, kPaddedEcb, kKey, Bytes(17), 8).status, kCCAlignmentError);
    EXPECT_EQ(runInPieces(kCCDecrypt, kPaddedEcb, kKey, Bytes(32), 8).status, kCCDecodeError);
    EXPECT_EQ(runInPieces(kCCEncrypt, kPaddedEcb, Bytes(5), Bytes(32), 8).status, kCCKeySizeError);
    EXPECT_EQ(runInPieces(kCCEncrypt, kCCOptionECBMode, kKey, Bytes(32), 8).status, kCCParamError)
        << "without padding there is no form in pieces";
}

TEST(CommonCryptor, ThreadsEncryptAtOnce) {
    const Bytes expected = run(kCCEncrypt, kPaddedEcb, kKey, kPlaintext).bytes;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&expected] {
            for (int round = 0; round < 200; ++round) {
                ASSERT_EQ(run(kCCEncrypt, kPaddedEcb, kKey, kPlaintext).bytes, expected);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// The library's fetches last for the life of a process, so a process of its own asks for what is not there.
TEST(CommonCryptorDeathTest, ACipherThatTheSystemLacksIsUnimplemented) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto encryptWithoutAes = [] {
        EVP_set_default_properties(nullptr, "provider=none");
        const bool isUnimplemented = run(kCCEncrypt, kPaddedEcb, kKey, {}).status == kCCUnimplemented;
        std::_Exit(isUnimplemented && ERR_peek_error() == 0 ? 0 : 1);
    };
    EXPECT_EXIT(encryptWithoutAes(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ZORPlatform
