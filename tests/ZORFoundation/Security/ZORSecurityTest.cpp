// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Security/CommonCryptoErrorDomain.h>
#include <ZORFoundation/Security/ZORSecurity.h>
#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>
#include <support/Certificates.h>
#include <support/OpensslCommand.h>
#include <support/TemporaryDirectory.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;
using ErrorSlot = std::optional<NSError>;
using CommonCryptoErrorDomain::errorWithCCCryptorStatus;
using CommonCryptoErrorDomain::securityErrorWith;
using support::PrivateKey;

const Bytes kKey(16, 0x42);
const Bytes kPlain = support::bytesOf("meet me at the branch");
const ErrorSlot kOldError = securityErrorWith(u"of an earlier call");

TEST(ZORSecurity, RandomKeysHaveTheAskedCountOfBytes) {
    for (const std::int32_t count : {0, 1, 16, 255, 256, 257, 100'000}) {
        EXPECT_EQ(ZORSecurity::generateRandomKeyWithByteCount(count).size(), static_cast<std::size_t>(count));
    }
    EXPECT_NE(ZORSecurity::generateRandomKeyWithByteCount(16), ZORSecurity::generateRandomKeyWithByteCount(16));
}

TEST(ZORSecurity, RandomKeysHoldEveryByte) {
    const Bytes bytes = ZORSecurity::generateRandomKeyWithByteCount(100'000);
    EXPECT_EQ(std::set(bytes.begin(), bytes.end()).size(), 256U);
}

TEST(ZORSecurityDeathTest, ANegativeCountStopsWithTheOperationsName) {
    EXPECT_DEATH((void)ZORSecurity::generateRandomKeyWithByteCount(-1), "^generateRandomKeyWithByteCount: ");
}

TEST(ZORSecurity, RandomTextsHaveTheAskedLength) {
    for (const std::int64_t length : {1, 32, 255, 256, 257, 10'000}) {
        EXPECT_EQ(ZORSecurity::generateRandomAlphaNumericStringWithLength(length).size(),
                  static_cast<std::size_t>(length));
    }
    EXPECT_NE(ZORSecurity::generateRandomAlphaNumericStringWithLength(32),
              ZORSecurity::generateRandomAlphaNumericStringWithLength(32));
}

TEST(ZORSecurity, RandomTextsOfNoOrNegativeLengthAreEmpty) {
    for (const std::int64_t length : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-32},
                                      std::int64_t{std::numeric_limits<std::int32_t>::min()}}) {
        EXPECT_EQ(ZORSecurity::generateRandomAlphaNumericStringWithLength(length), u"");
    }
}

TEST(ZORSecurity, OnlyTheLower32BitsOfALengthCount) {
    constexpr std::int64_t kBeyond = std::int64_t{1} << 32;
    EXPECT_EQ(ZORSecurity::generateRandomAlphaNumericStringWithLength(kBeyond + 5).size(), 5U);
    EXPECT_EQ(ZORSecurity::generateRandomAlphaNumericStringWithLength(-kBeyond + 7).size(), 7U);
    EXPECT_EQ(ZORSecurity::generateRandomAlphaNumericStringWithLength(kBeyond / 2), u"");
    EXPECT_EQ(ZORSecurity::generateRandomAlphaNumericStringWithLength(std::numeric_limits<std::int64_t>::min()), u"");
}

TEST(ZORSecurity, RandomTextsHoldEveryLetterAndDigitAndNothingElse) {
    constexpr std::u16string_view kAlphabet = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    const std::u16string text = ZORSecurity::generateRandomAlphaNumericStringWithLength(100'000);
    EXPECT_EQ(std::set(text.begin(), text.end()), std::set(kAlphabet.begin(), kAlphabet.end()));
}

TEST(ZORSecurity, WhatIsEncryptedComesBack) {
    for (std::size_t length = 0; length < 50; ++length) {
        const Bytes plain(length, 0x3C);
        const Bytes vector(16, 0x17);
        const auto ecb = ZORSecurity::encrypt_AES128_ECB_PKCS7(plain, kKey);
        EXPECT_EQ(ZORSecurity::decrypt_AES128_ECB_PKCS7(ecb.value(), kKey), plain);
        const auto cbc = ZORSecurity::encrypt_AES128_CBC_PKCS7(plain, kKey, vector, false);
        EXPECT_EQ(cbc.value().size(), length / 16 * 16 + 16);
        EXPECT_EQ(ZORSecurity::decrypt_AES128_CBC_PKCS7(*cbc, kKey, vector), plain);
    }
}

TEST(ZORSecurity, ARandomVectorBeforeTheCiphertextIsFoundThere) {
    const auto sealed = ZORSecurity::encrypt_AES128_CBC_PKCS7(kPlain, kKey, std::nullopt, true);
    ASSERT_EQ(sealed.value().size(), 16 + 32U);
    EXPECT_EQ(ZORSecurity::decrypt_AES128_CBC_PKCS7(*sealed, kKey, std::nullopt), kPlain);
    EXPECT_NE(ZORSecurity::encrypt_AES128_CBC_PKCS7(kPlain, kKey, std::nullopt, true), sealed)
        << "no two vectors are alike";
}

TEST(ZORSecurity, ARandomVectorThatIsNotPrefixedIsLost) {
    const auto sealed = ZORSecurity::encrypt_AES128_CBC_PKCS7(Bytes(32, 'a'), kKey, std::nullopt, false);
    ASSERT_EQ(sealed.value().size(), 48U);
    // Only the first block needs the vector.
    const auto rest = ZORSecurity::decrypt_AES128_CBC_PKCS7(*sealed, kKey, std::nullopt);
    EXPECT_EQ(rest, Bytes(16, 'a'));
}

TEST(ZORSecurity, OfAGivenVectorSixteenBytesCountAndAllArePrefixed) {
    Bytes vector(20, 0x17);
    const auto sealed = ZORSecurity::encrypt_AES128_CBC_PKCS7(kPlain, kKey, vector, true);
    ASSERT_EQ(sealed.value().size(), 20 + 32U);
    EXPECT_TRUE(std::equal(vector.begin(), vector.end(), sealed->begin()));
    const Bytes ciphertext(sealed->begin() + 20, sealed->end());
    EXPECT_EQ(ZORSecurity::decrypt_AES128_CBC_PKCS7(ciphertext, kKey, vector), kPlain);
    vector[16] ^= 1;
    EXPECT_EQ(ZORSecurity::encrypt_AES128_CBC_PKCS7(kPlain, kKey, vector, false), ciphertext);
}

TEST(ZORSecurityDeathTest, AVectorOfFewerThanSixteenBytesStops) {
    const Bytes vector(15);
    EXPECT_DEATH((void)ZORSecurity::encrypt_AES128_CBC_PKCS7(kPlain, kKey, vector, true),
                 "^encrypt_AES128_CBC_PKCS7: the initialisation vector has fewer than 16 bytes");
    EXPECT_DEATH((void)ZORSecurity::decrypt_AES128_CBC_PKCS7(Bytes(16), kKey, vector),
                 "^decrypt_AES128_CBC_PKCS7: the initialisation vector has fewer than 16 bytes");
}

TEST(ZORSecurity, ShortKeysAreFilledWithZerosAndLongOnesCut) {
    const Bytes eight(8, 0x42);
    Bytes padded = eight;
    padded.resize(16);
    EXPECT_EQ(ZORSecurity::encrypt_AES128_ECB_PKCS7(kPlain, eight),
              ZORSecurity::encrypt_AES128_ECB_PKCS7(kPlain, padded));
    EXPECT_EQ(ZORSecurity::encrypt_AES128_ECB_PKCS7(kPlain, Bytes(20, 0x42)),
              ZORSecurity::encrypt_AES128_ECB_PKCS7(kPlain, kKey));
    EXPECT_EQ(ZORSecurity::encrypt_AES128_ECB_PKCS7(kPlain, {}),
              ZORSecurity::encrypt_AES128_ECB_PKCS7(kPlain, Bytes(16)));
}

TEST(ZORSecurity, ACipherReportsItsStatus) {
    ErrorSlot error;
    EXPECT_FALSE(ZORSecurity::decrypt_AES128_ECB_PKCS7(Bytes(17), kKey, &error));
    EXPECT_EQ(error, errorWithCCCryptorStatus(-4303));
    EXPECT_FALSE(ZORSecurity::decrypt_AES128_ECB_PKCS7(Bytes(32), kKey, &error));
    EXPECT_EQ(error, errorWithCCCryptorStatus(-4304));
    EXPECT_FALSE(ZORSecurity::decrypt_AES128_CBC_PKCS7(Bytes(17), kKey, Bytes(16), &error));
    EXPECT_EQ(error, errorWithCCCryptorStatus(-4303));
}

TEST(ZORSecurity, WithoutAVectorShortDataReportsTheCiphersErrorAndNotItsLength) {
    for (const std::size_t length : {0U, 1U, 10U, 15U}) {
        ErrorSlot error;
        EXPECT_FALSE(ZORSecurity::decrypt_AES128_CBC_PKCS7(Bytes(length), kKey, std::nullopt, &error));
        EXPECT_EQ(error, errorWithCCCryptorStatus(-4303)) << length;
    }
}

TEST(ZORSecurity, AVectorWithNothingBehindItIsNoCiphertext) {
    ErrorSlot error;
    EXPECT_FALSE(ZORSecurity::decrypt_AES128_CBC_PKCS7(Bytes(16), kKey, std::nullopt, &error));
    EXPECT_EQ(error, errorWithCCCryptorStatus(-4303));
}

TEST(ZORSecurity, AnOperationThatSucceedsEmptiesTheError) {
    ErrorSlot error = kOldError;
    EXPECT_TRUE(ZORSecurity::encrypt_AES128_ECB_PKCS7(kPlain, kKey, &error));
    EXPECT_FALSE(error);
    error = kOldError;
    EXPECT_TRUE(ZORSecurity::encrypt_AES128_CBC_PKCS7(kPlain, kKey, std::nullopt, true, &error));
    EXPECT_FALSE(error);
}

TEST(ZORSecurity, AnOperationWithoutAnErrorFailsTheSameWay) {
    EXPECT_FALSE(ZORSecurity::decrypt_AES128_ECB_PKCS7(Bytes(17), kKey));
    EXPECT_FALSE(ZORSecurity::decrypt_AES128_CBC_PKCS7(Bytes(3), kKey, std::nullopt));
    EXPECT_FALSE(ZORSecurity::getPublicKeyFromCertificateData(Bytes(3)));
}

TEST(ZORSecurity, CiphersAllocateTheirResultAndNothingElse) {
    const Bytes plain(1000);
    const Bytes sealed = ZORSecurity::encrypt_AES128_CBC_PKCS7(plain, kKey, std::nullopt, true).value();
    const support::AllocationCount allocations;
    const auto encrypted = ZORSecurity::encrypt_AES128_CBC_PKCS7(plain, kKey, std::nullopt, true);
    EXPECT_EQ(allocations.count(), 1U);
    const auto decrypted = ZORSecurity::decrypt_AES128_CBC_PKCS7(sealed, kKey, std::nullopt);
    EXPECT_EQ(allocations.count(), 2U);
}

const PrivateKey& rsa1024() {
    static const PrivateKey key = PrivateKey::rsa(1024);
    return key;
}

SecKey publicHalf(const PrivateKey& key) { return ZORPlatform::SecKeyCreateWithData(key.publicKey()).value(); }

std::optional<Bytes> publicKeyIn(const std::optional<SecKey>& key) {
    return key ? ZORPlatform::SecKeyCopyExternalRepresentation(*key) : std::nullopt;
}

TEST(ZORSecurity, ACertificateGivesItsKeyWhateverItsDatesAndIssuer) {
    const PrivateKey issuer = PrivateKey::ellipticCurve();
    for (const support::CertificateContent& content : {
             support::CertificateContent{.subject = "valid"},
             support::CertificateContent{.subject = "nobody knows the issuer", .issuer = "stranger"},
             support::CertificateContent{.subject = "expired", .validFromSeconds = -7200, .validToSeconds = -3600},
             support::CertificateContent{.subject = "early", .validFromSeconds = 3600, .validToSeconds = 7200},
         }) {
        ErrorSlot error = kOldError;
        const Bytes certificate = support::certificateOf(content, rsa1024(), issuer);
        EXPECT_EQ(publicKeyIn(ZORSecurity::getPublicKeyFromCertificateData(certificate, &error)),
                  rsa1024().publicKey());
        EXPECT_FALSE(error);
    }
    EXPECT_TRUE(ZORSecurity::getPublicKeyFromCertificateData(
        support::certificateOf({.subject = "signed by itself"}, rsa1024())));
}

TEST(ZORSecurity, ACertificateGivesTheKeyOfAnEllipticCurve) {
    const PrivateKey curve = PrivateKey::ellipticCurve();
    const auto key = ZORSecurity::getPublicKeyFromCertificateData(support::certificateOf({.subject = "curve"}, curve));
    EXPECT_EQ(publicKeyIn(key), curve.publicKey());
}

TEST(ZORSecurity, BytesThatAreNoCertificateGiveNoKey) {
    const Bytes certificate = support::certificateOf({.subject = "leaf"}, rsa1024());
    Bytes longer = certificate;
    longer.push_back(0);
    const Bytes truncated(certificate.begin(), certificate.end() - 1);
    for (const Bytes& bytes : {Bytes(), truncated, longer, Bytes(500, 0xAB), rsa1024().publicKeyInfo()}) {
        ErrorSlot error;
        EXPECT_FALSE(ZORSecurity::getPublicKeyFromCertificateData(bytes, &error));
        EXPECT_EQ(error, securityErrorWith(u"Cannot create certificate"));
    }
}

TEST(ZORSecurity, ACertificateWithAMalformedKeyGivesNone) {
    Bytes certificate = support::certificateOf({.subject = "leaf"}, PrivateKey::ellipticCurve());
    // A point that begins with 4 is uncompressed; there is no form 5.
    const Bytes head = {0x03, 0x42, 0x00, 0x04};
    const auto found = std::search(certificate.begin(), certificate.end(), head.begin(), head.end());
    ASSERT_NE(found, certificate.end());
    found[3] = 0x05;
    ErrorSlot error;
    EXPECT_FALSE(ZORSecurity::getPublicKeyFromCertificateData(certificate, &error));
    EXPECT_EQ(error, securityErrorWith(u"SecTrustCopyPublicKey fail"));
}

std::string base64(const Bytes& bytes) {
    return ZORPlatform::utf8(ZORAESCrypt::zor_base64EncodingWithLineLength(bytes, 64));
}

TEST(ZORSecurity, ACertificateFileIsBase64Text) {
    const support::TemporaryDirectory directory;
    const Bytes certificate = support::certificateOf({.subject = "leaf"}, rsa1024());
    const auto path = directory.write("leaf.cer64", base64(certificate));
    ErrorSlot error = kOldError;
    EXPECT_EQ(publicKeyIn(ZORSecurity::getPublicKeyFromBase64EncodedX509CertificateFileAtPath(path, &error)),
              rsa1024().publicKey());
    EXPECT_FALSE(error);
}

TEST(ZORSecurity, ACertificateFileThatCannotBeReadSaysSo) {
    const support::TemporaryDirectory directory;
    for (const std::filesystem::path& path :
         {directory / "missing", directory.path(), std::filesystem::path(), directory.write("latin", "caf\xE9")}) {
        ErrorSlot error;
        EXPECT_FALSE(ZORSecurity::getPublicKeyFromBase64EncodedX509CertificateFileAtPath(path, &error));
        EXPECT_EQ(error, securityErrorWith(u"Cannot read from certificate file")) << path;
    }
}

TEST(ZORSecurity, ACertificateFileOfOtherTextHoldsNoCertificate) {
    const support::TemporaryDirectory directory;
    const Bytes certificate = support::certificateOf({.subject = "leaf"}, rsa1024());
    for (const std::string& text : {std::string(), std::string("caf\u00E9"), "=" + base64(certificate),
                                    "AAAA" + base64(certificate), support::pemOf(certificate)}) {
        ErrorSlot error;
        EXPECT_FALSE(
            ZORSecurity::getPublicKeyFromBase64EncodedX509CertificateFileAtPath(directory.write("text", text), &error));
        EXPECT_EQ(error, securityErrorWith(u"Cannot create certificate"));
    }
}

Bytes decrypted(const PrivateKey& key, const Bytes& sealed) {
    const support::TemporaryDirectory directory;
    key.write(directory / "key.pem");
    return support::decryptedByCommand(directory / "key.pem", sealed);
}

TEST(ZORSecurity, WhatAPublicKeyEncryptsTheOpensslCommandDecrypts) {
    for (const std::size_t length : {0U, 1U, 16U, 116U}) {
        Bytes plain = ZORSecurity::generateRandomKeyWithByteCount(static_cast<std::int32_t>(length));
        ErrorSlot error = kOldError;
        const auto sealed = ZORSecurity::rsaEncrypt(plain, publicHalf(rsa1024()), &error);
        ASSERT_EQ(sealed.value().size(), 128U);
        EXPECT_FALSE(error);
        EXPECT_EQ(decrypted(rsa1024(), *sealed), plain);
    }
}

TEST(ZORSecurity, AShorterKeyGivesAShorterResult) {
    const PrivateKey key = PrivateKey::rsa(768);
    const auto sealed = ZORSecurity::rsaEncrypt(Bytes(84, 1), publicHalf(key));
    ASSERT_EQ(sealed.value().size(), 96U);
    EXPECT_EQ(decrypted(key, *sealed), Bytes(84, 1));
}

std::u16string failureOf(std::size_t length, const SecKey& key) {
    ErrorSlot error;
    EXPECT_FALSE(ZORSecurity::rsaEncrypt(Bytes(length), key, &error));
    EXPECT_EQ(error.value().domain(), kSecurityErrorDomain);
    EXPECT_EQ(error->code(), 0);
    return error->localizedDescription().value();
}

TEST(ZORSecurity, RsaTakesTwelveBytesLessThanTheKeyHas) {
    EXPECT_EQ(failureOf(117, publicHalf(rsa1024())), u"content(117) is too long, must be < 116");
    EXPECT_EQ(failureOf(5000, publicHalf(rsa1024())), u"content(5000) is too long, must be < 116");
    EXPECT_EQ(failureOf(53, publicHalf(PrivateKey::rsa(512))), u"content(53) is too long, must be < 52");
}

TEST(ZORSecurity, KeysAbove1024BitsFail) {
    for (const std::size_t bits : {1025U, 1032U, 2048U}) {
        const SecKey key = publicHalf(PrivateKey::rsa(bits));
        EXPECT_EQ(failureOf(1, key), u"SecKeyEncrypt fail. Error Code: -50") << bits;
        EXPECT_EQ(failureOf(300, key),
                  u"content(300) is too long, must be < " + ZORPlatform::utf16(std::to_string((bits + 7) / 8 - 12)));
    }
}

TEST(ZORSecurity, KeysOfEllipticCurvesFail) {
    const SecKey key = ZORSecurity::getPublicKeyFromCertificateData(
                           support::certificateOf({.subject = "curve"}, PrivateKey::ellipticCurve()))
                           .value();
    EXPECT_EQ(failureOf(20, key), u"SecKeyEncrypt fail. Error Code: -50");
    EXPECT_EQ(failureOf(21, key), u"content(21) is too long, must be < 20");
}

TEST(ZORSecurity, AKeyTooSmallForAnyContentSaysSo) {
    const Bytes tiny = {0x30, 0x06, 0x02, 0x01, 0x11, 0x02, 0x01, 0x03};
    const SecKey key = ZORPlatform::SecKeyCreateWithData(tiny).value();
    EXPECT_EQ(failureOf(0, key), u"content(0) is too long, must be < -11");
}

}  // namespace
}  // namespace ZORFoundation
