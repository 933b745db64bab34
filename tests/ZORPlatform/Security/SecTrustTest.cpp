// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecTrust.h>

#include <gtest/gtest.h>

#include <support/Certificates.h>
#include <support/EnvironmentVariable.h>
#include <support/TemporaryDirectory.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <vector>

namespace ZORPlatform {
namespace {

using Bytes = std::vector<std::uint8_t>;
using enum SecTrustResultType;
using support::CertificateContent;
using support::certificateOf;
using support::PrivateKey;

SecTrust trustIn(const std::vector<Bytes>& certificates) {
    std::vector<SecCertificate> handles;
    for (const Bytes& bytes : certificates) handles.push_back(SecCertificateCreateWithData(bytes).value());
    std::optional<SecTrust> trust;
    EXPECT_EQ(SecTrustCreateWithCertificates(handles, SecPolicyCreateBasicX509(), trust), errSecSuccess);
    return trust.value();
}

SecTrustResultType verdictOn(const SecTrust& trust) {
    SecTrustResultType result{};
    EXPECT_EQ(SecTrustEvaluate(trust, result), errSecSuccess);
    return result;
}

constexpr CertificateContent kRoot{.subject = "root", .isAuthority = true};
constexpr CertificateContent kMiddle{.subject = "middle", .issuer = "root", .isAuthority = true};

// A machine that trusts one root, whatever else is installed on it.
class SecTrustWithRoot : public testing::Test {
protected:
    PrivateKey rootKey_ = PrivateKey::ellipticCurve();
    PrivateKey middleKey_ = PrivateKey::ellipticCurve();
    PrivateKey leafKey_ = PrivateKey::ellipticCurve();

    // Puts another root in the place of the one that is trusted.
    void replaceRoot(const Bytes& certificate) {
        directory_.write("root.pem", support::pemOf(certificate));
        std::filesystem::last_write_time(rootFile_,
                                         std::filesystem::last_write_time(rootFile_) + std::chrono::hours(1));
    }

private:
    support::TemporaryDirectory directory_;
    std::filesystem::path rootFile_ = directory_.write("root.pem", support::pemOf(certificateOf(kRoot, rootKey_)));
    support::EnvironmentVariable file_{"SSL_CERT_FILE", rootFile_.string()};
    support::EnvironmentVariable folder_{"SSL_CERT_DIR", (directory_ / "none").string()};
};

TEST_F(SecTrustWithRoot, ACertificateThatTheRootVouchesForIsTrusted) {
    const Bytes leaf = certificateOf({.subject = "leaf", .issuer = "root"}, leafKey_, rootKey_);
    EXPECT_EQ(verdictOn(trustIn({leaf})), kSecTrustResultUnspecified);
}

TEST_F(SecTrustWithRoot, RootsAreReadAgainWhenTheirFileIsAnotherOne) {
    const SecTrust trust = trustIn({certificateOf({.subject = "leaf", .issuer = "root"}, leafKey_, rootKey_)});
    EXPECT_EQ(verdictOn(trust), kSecTrustResultUnspecified);
    replaceRoot(certificateOf(kRoot, middleKey_));
    EXPECT_EQ(verdictOn(trust), kSecTrustResultRecoverableTrustFailure);
    replaceRoot(certificateOf(kRoot, rootKey_));
    EXPECT_EQ(verdictOn(trust), kSecTrustResultUnspecified);
}

TEST_F(SecTrustWithRoot, FurtherCertificatesHelpToBuildTheChain) {
    const Bytes middle = certificateOf(kMiddle, middleKey_, rootKey_);
    const Bytes leaf = certificateOf({.subject = "leaf", .issuer = "middle"}, leafKey_, middleKey_);
    EXPECT_EQ(verdictOn(trustIn({leaf, middle})), kSecTrustResultUnspecified);
    EXPECT_EQ(verdictOn(trustIn({leaf})), kSecTrustResultRecoverableTrustFailure);
}

TEST_F(SecTrustWithRoot, ACertificateOutsideItsDatesIsNotTrusted) {
    constexpr CertificateContent kExpired{
        .subject = "leaf", .issuer = "root", .validFromSeconds = -7200, .validToSeconds = -3600};
    constexpr CertificateContent kEarly{
        .subject = "leaf", .issuer = "root", .validFromSeconds = 3600, .validToSeconds = 7200};
    for (const CertificateContent& content : {kExpired, kEarly}) {
        const SecTrust trust = trustIn({certificateOf(content, leafKey_, rootKey_)});
        EXPECT_EQ(verdictOn(trust), kSecTrustResultRecoverableTrustFailure);
        EXPECT_TRUE(SecTrustCopyPublicKey(trust)) << "its key is there all the same";
    }
}

TEST_F(SecTrustWithRoot, ACertificateThatVouchesForItselfIsNotTrusted) {
    const SecTrust trust = trustIn({certificateOf({.subject = "leaf"}, leafKey_)});
    EXPECT_EQ(verdictOn(trust), kSecTrustResultRecoverableTrustFailure);
    EXPECT_TRUE(SecTrustCopyPublicKey(trust));
}

TEST_F(SecTrustWithRoot, AForgedSignatureIsNotTrusted) {
    const Bytes leaf = certificateOf({.subject = "leaf", .issuer = "root"}, leafKey_, middleKey_);
    EXPECT_EQ(verdictOn(trustIn({leaf})), kSecTrustResultRecoverableTrustFailure);
}

TEST(SecTrust, TakesOneCertificateAtLeast) {
    std::optional<SecTrust> trust;
    EXPECT_EQ(SecTrustCreateWithCertificates({}, SecPolicyCreateBasicX509(), trust), errSecParam);
    EXPECT_FALSE(trust);
}

TEST(SecTrust, GivesTheKeyOfTheFirstCertificate) {
    const PrivateKey first = PrivateKey::rsa(512);
    const PrivateKey second = PrivateKey::rsa(512);
    const SecTrust trust =
        trustIn({certificateOf({.subject = "first"}, first), certificateOf({.subject = "second"}, second)});
    EXPECT_EQ(SecKeyCopyExternalRepresentation(SecTrustCopyPublicKey(trust).value()), first.publicKey());
}

TEST(SecTrust, GivesKeysOfEllipticCurvesToo) {
    struct Row {
        const char* curve;
        std::size_t blockSize;
    };
    for (const Row& row : {Row{"P-256", 32}, Row{"P-384", 48}, Row{"P-521", 66}}) {
        const PrivateKey curve = PrivateKey::ellipticCurve(row.curve);
        const SecKey key = SecTrustCopyPublicKey(trustIn({certificateOf({.subject = "curve"}, curve)})).value();
        EXPECT_EQ(SecKeyCopyExternalRepresentation(key), curve.publicKey());
        EXPECT_EQ(SecKeyGetBlockSize(key), row.blockSize);
        Bytes out(256);
        std::size_t length = 1;
        EXPECT_EQ(SecKeyEncrypt(key, SecPadding::kSecPaddingPKCS1, {}, out, length), errSecParam);
        EXPECT_EQ(length, 0U);
    }
}

// rsaEncryption, 1.2.840.113549.1.1.1, in DER.
constexpr std::array<std::uint8_t, 9> kRsaEncryption = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x01};

TEST(SecTrust, KeysOfUnknownKindsAndMalformedOnesAreAbsent) {
    const Bytes good = certificateOf({.subject = "leaf"}, PrivateKey::rsa(512));
    const auto found = std::search(good.begin(), good.end(), kRsaEncryption.begin(), kRsaEncryption.end());
    ASSERT_NE(found, good.end());
    const auto kind = static_cast<std::size_t>(found - good.begin()) + kRsaEncryption.size() - 1;
    // Behind the identifier come NULL and the head of a bit string, two bytes and three.
    const std::size_t key = kind + 6;
    ASSERT_EQ(good[key], 0x30);

    ERR_clear_error();
    for (const std::size_t place : {kind, key}) {
        Bytes bad = good;
        bad[place] ^= 0x40;
        const SecTrust trust = trustIn({bad});
        EXPECT_EQ(verdictOn(trust), kSecTrustResultRecoverableTrustFailure);
        EXPECT_FALSE(SecTrustCopyPublicKey(trust));
    }
    EXPECT_EQ(ERR_peek_error(), 0U);
}

}  // namespace
}  // namespace ZORPlatform
