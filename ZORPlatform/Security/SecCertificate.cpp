// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecCertificate.h>

#include <ZORPlatform/CommonCrypto/ErrorQueueMarkInternal.h>
#include <ZORPlatform/Security/MaterialInternal.h>

#include <algorithm>
#include <limits>
#include <new>

namespace ZORPlatform {
namespace {

std::vector<std::uint8_t> encoded(X509* certificate) {
    const int length = i2d_X509(certificate, nullptr);
    if (length <= 0) return {};
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
    std::uint8_t* at = bytes.data();
    if (i2d_X509(certificate, &at) != length) return {};
    return bytes;
}

}  // namespace

std::optional<SecCertificate> SecCertificateCreateWithData(std::span<const std::uint8_t> data) {
    if (data.size() > std::numeric_limits<long>::max()) return std::nullopt;
    const ErrorQueueMark mark;
    const std::uint8_t* at = data.data();
    CertificatePointer certificate(d2i_X509(nullptr, &at, static_cast<long>(data.size())));
    if (certificate == nullptr) return std::nullopt;
    // What is read may also be BER or end early. What is written is DER, of the whole.
    const std::vector<std::uint8_t> bytes = encoded(certificate.get());
    if (!std::equal(bytes.begin(), bytes.end(), data.begin(), data.end())) return std::nullopt;
    return SecCertificate(
        std::make_shared<const SecCertificate::Material>(SecCertificate::Material{std::move(certificate)}));
}

std::vector<std::uint8_t> SecCertificateCopyData(const SecCertificate& certificate) {
    const ErrorQueueMark mark;
    std::vector<std::uint8_t> bytes = encoded(certificate.material().certificate.get());
    if (bytes.empty()) throw std::bad_alloc();
    return bytes;
}

}  // namespace ZORPlatform
