// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecCertificate.h>

#include <gtest/gtest.h>

#include <support/Certificates.h>

#include <cstddef>
#include <vector>

namespace ZORPlatform {
namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes& certificateBytes() {
    static const Bytes bytes = support::certificateOf({.subject = "leaf"}, support::PrivateKey::ellipticCurve());
    return bytes;
}

TEST(SecCertificate, GivesBackTheBytesThatItWasMadeOf) {
    const std::optional<SecCertificate> certificate = SecCertificateCreateWithData(certificateBytes());
    ASSERT_TRUE(certificate);
    EXPECT_EQ(SecCertificateCopyData(*certificate), certificateBytes());
}

TEST(SecCertificate, EqualsItsCopiesOnly) {
    const std::optional<SecCertificate> certificate = SecCertificateCreateWithData(certificateBytes());
    const std::optional<SecCertificate> copy = certificate;
    EXPECT_EQ(certificate, copy);
    EXPECT_NE(certificate, SecCertificateCreateWithData(certificateBytes()));
}

TEST(SecCertificate, IsNotMadeOfACertificateCutAnywhere) {
    const Bytes& bytes = certificateBytes();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(SecCertificateCreateWithData(cut)) << length;
    }
}

TEST(SecCertificate, IsNotMadeOfACertificateWithBytesBehindIt) {
    Bytes bytes = certificateBytes();
    bytes.push_back(0);
    EXPECT_FALSE(SecCertificateCreateWithData(bytes));
    bytes.pop_back();
    bytes.insert(bytes.end(), certificateBytes().begin(), certificateBytes().end());
    EXPECT_FALSE(SecCertificateCreateWithData(bytes));
}

TEST(SecCertificate, IsNotMadeOfOtherBytes) {
    EXPECT_FALSE(SecCertificateCreateWithData(Bytes(300, 0x30)));
    EXPECT_FALSE(SecCertificateCreateWithData(Bytes(300, 0xFF)));
    EXPECT_FALSE(SecCertificateCreateWithData(support::PrivateKey::ellipticCurve().publicKeyInfo()));
    const std::string text = support::pemOf(certificateBytes());
    EXPECT_FALSE(SecCertificateCreateWithData(Bytes(text.begin(), text.end())));
}

// The same content with a length that its end marks (X.690, section 8.1.3.6).
TEST(SecCertificate, IsNotMadeOfBer) {
    const Bytes& bytes = certificateBytes();
    ASSERT_EQ(bytes[1], 0x82) << "the test takes a length of two bytes off";
    Bytes ber = {0x30, 0x80};
    ber.insert(ber.end(), bytes.begin() + 4, bytes.end());
    ber.insert(ber.end(), 2, 0);
    EXPECT_FALSE(SecCertificateCreateWithData(ber));
}

TEST(SecCertificate, LeavesTheErrorQueueAsItWas) {
    ERR_clear_error();
    static_cast<void>(SecCertificateCreateWithData(Bytes(300, 0x30)));
    EXPECT_EQ(ERR_peek_error(), 0U);
}

}  // namespace
}  // namespace ZORPlatform
