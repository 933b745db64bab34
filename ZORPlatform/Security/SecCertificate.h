// SPDX-License-Identifier: Apache-2.0
#pragma once

// An X.509 certificate by reference. What its key is worth is a question to SecTrust.

#include <ZORPlatform/Export.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace ZORPlatform {

/// A handle on a certificate. Copies are the same certificate, and only they are equal. A certificate never changes, so
/// several threads may use one at once.
class ZOR_EXPORT SecCertificate {
public:
    /// What the cryptography library knows about the certificate; defined where certificates are made and used.
    struct Material;

    explicit SecCertificate(std::shared_ptr<const Material> material) noexcept : material_(std::move(material)) {}

    [[nodiscard]] const Material& material() const noexcept { return *material_; }

    friend bool operator==(const SecCertificate&, const SecCertificate&) noexcept = default;

private:
    std::shared_ptr<const Material> material_;  // Never null, except in a handle that has been moved from.
};

/// `SecCertificateCreateWithData`
///
/// @param data  one certificate in DER (RFC 5280) and nothing behind it. Its validity is not checked, its key is not
///              looked at
/// @return absent when the bytes are anything else
///
/// Thread-safe.
[[nodiscard]] ZOR_EXPORT std::optional<SecCertificate> SecCertificateCreateWithData(std::span<const std::uint8_t> data);

/// `SecCertificateCopyData`: the bytes that the certificate was made of. Thread-safe.
[[nodiscard]] ZOR_EXPORT std::vector<std::uint8_t> SecCertificateCopyData(const SecCertificate& certificate);

}  // namespace ZORPlatform
