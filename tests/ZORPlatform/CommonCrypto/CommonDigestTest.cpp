// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/CommonCrypto/CommonDigest.h>
#include <ZORPlatform/Foundation/Hexadecimal.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace ZORPlatform {
namespace {

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string hex(std::span<const std::uint8_t> bytes) { return utf8(hexText(bytes, HexDigits::kLowerCase)); }

template <std::size_t Length>
std::string digestOf(void (*digest)(std::span<const std::uint8_t>, std::span<std::uint8_t, Length>),
                     std::string_view text) {
    std::array<std::uint8_t, Length> result{};
    digest(bytesOf(text), result);
    return hex(result);
}

struct KnownAnswer {
    std::string text;
    std::string digest;
};

// RFC 1321, A.5.
TEST(CommonDigest, Md5GivesThePublishedAnswers) {
    const std::vector<KnownAnswer> answers = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"}};
    for (const auto& [text, digest] : answers) EXPECT_EQ(digestOf(CC_MD5, text), digest) << text;
}

// FIPS 180-4 examples: one block, two blocks of either block size, a million letters.
constexpr std::string_view kTwoBlocks = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
constexpr std::string_view kTwoLongBlocks =
    "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu";

TEST(CommonDigest, ShaGivesThePublishedAnswers) {
    EXPECT_EQ(digestOf(CC_SHA1, "abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(digestOf(CC_SHA1, kTwoBlocks), "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
    EXPECT_EQ(digestOf(CC_SHA1, std::string(1'000'000, 'a')), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
    EXPECT_EQ(digestOf(CC_SHA224, "abc"), "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7");
    EXPECT_EQ(digestOf(CC_SHA224, kTwoBlocks), "75388b16512776cc5dba5da1fd890150b0c6455cb4f58b1952522525");
    EXPECT_EQ(digestOf(CC_SHA256, "abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(digestOf(CC_SHA256, kTwoBlocks), "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(digestOf(CC_SHA384, "abc"),
              "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7");
    EXPECT_EQ(digestOf(CC_SHA384, kTwoLongBlocks),
              "09330c33f71147e83d192fc782cd1b4753111b173b3b05d22fa08086e3b0f712fcc7c71a557e2db966c3e9fa91746039");
    EXPECT_EQ(digestOf(CC_SHA512, "abc"),
              "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a2192992a274fc1a836ba3c23a3feebbd"
              "454d4423643ce80e2a9ac94fa54ca49f");
    EXPECT_EQ(digestOf(CC_SHA512, kTwoLongBlocks),
              "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018501d289e4900f7e4331b99dec4b5433a"
              "c7d329eeb6dd26545e96e55b874be909");
}

TEST(CommonDigest, PiecesGiveTheDigestOfTheWhole) {
    const std::string text(1000, 'x');
    for (const std::size_t piece : {1U, 63U, 64U, 65U, 127U, 128U, 129U, 1000U}) {
        CCDigest running(CCDigestAlgorithm::kSHA512);
        for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(std::min(piece, rest.size()))) {
            running.update(bytesOf(rest.substr(0, piece)));
        }
        std::array<std::uint8_t, CC_SHA512_DIGEST_LENGTH> digest{};
        running.final(digest);
        EXPECT_EQ(hex(digest), digestOf(CC_SHA512, text)) << piece;
    }
}

TEST(CommonDigest, SeveralRunningDigestsDoNotDisturbOneAnother) {
    CCDigest first(CCDigestAlgorithm::kSHA256);
    CCDigest second(CCDigestAlgorithm::kSHA256);
    first.update(bytesOf("ab"));
    second.update(bytesOf("something else"));
    EXPECT_EQ(digestOf(CC_SHA256, ""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    first.update(bytesOf("c"));
    std::array<std::uint8_t, CC_SHA256_DIGEST_LENGTH> digest{};
    first.final(digest);
    EXPECT_EQ(hex(digest), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(CommonDigest, AnAbandonedDigestLeavesNothingForTheNext) {
    {
        CCDigest abandoned(CCDigestAlgorithm::kSHA1);
        abandoned.update(bytesOf("never asked for"));
    }
    EXPECT_EQ(digestOf(CC_SHA1, "abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
}

TEST(CommonDigest, ThreadsDigestAtOnce) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 200; ++round) {
                ASSERT_EQ(digestOf(CC_MD5, "abc"), "900150983cd24fb0d6963f7d28e17f72");
                ASSERT_EQ(digestOf(CC_SHA256, "abc"),
                          "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// Digests once when the thread that owns it ends, after the thread's own contexts are gone.
struct DigestsLate {
    ~DigestsLate() { *result = digestOf(CC_MD5, "abc"); }
    std::string* result = nullptr;
};

TEST(CommonDigest, WorksWhileAThreadEnds) {
    std::string result;
    std::thread([&result] {
        static thread_local DigestsLate late;
        late.result = &result;
        EXPECT_EQ(digestOf(CC_MD5, ""), "d41d8cd98f00b204e9800998ecf8427e");
    }).join();
    EXPECT_EQ(result, "900150983cd24fb0d6963f7d28e17f72");
}

TEST(CommonDigest, LeavesTheErrorQueueAsItWas) {
    ERR_clear_error();
    EXPECT_EQ(digestOf(CC_MD5, ""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(ERR_peek_error(), 0U);
}

// The library's fetches last for the life of a process, so a process of its own asks for what is not there.
int digestUnderAPolicyWithoutMd5() {
    EVP_set_default_properties(nullptr, "fips=yes");
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            std::array<std::uint8_t, CC_MD5_DIGEST_LENGTH> digest{};
            CC_MD5({}, digest);
            return 1;
        } catch (const NSException& exception) {
            if (exception.name() != u"NSInternalInconsistencyException") return 2;
            if (exception.reason() != u"MD5 is not available on this system") return 3;
        }
    }
    return ERR_peek_error() == 0 ? 0 : 4;
}

TEST(CommonDigestDeathTest, AnAlgorithmThatTheSystemLacksThrows) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::_Exit(digestUnderAPolicyWithoutMd5()), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ZORPlatform
