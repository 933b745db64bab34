// SPDX-License-Identifier: Apache-2.0
#pragma once

// What a certificate is worth, and its key.
//
//     std::optional<SecTrust> trust;
//     if (SecTrustCreateWithCertificates(certificates, SecPolicyCreateBasicX509(), trust) == errSecSuccess) {
//         const std::optional<SecKey> key = SecTrustCopyPublicKey(*trust);
//     }

#include <ZORPlatform/Security/SecBase.h>
#include <ZORPlatform/Security/SecCertificate.h>
#include <ZORPlatform/Security/SecKey.h>

#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace ZORPlatform {

/// The rules that a trust is evaluated by.
enum class SecPolicy : unsigned char {
    kBasicX509,  ///< Signatures, dates and constraints of the chain (RFC 5280, section 6); no names, no revocation.
};

/// `SecPolicyCreateBasicX509`
[[nodiscard]] constexpr SecPolicy SecPolicyCreateBasicX509() noexcept { return SecPolicy::kBasicX509; }

/// Certificates and a policy to evaluate them by: the one in question first, then those that may help to build its
/// chain. A value that never changes.
class SecTrust {
public:
    /// @param certificates  one at least
    SecTrust(std::vector<SecCertificate> certificates, SecPolicy policy) noexcept
        : certificates_(std::move(certificates)), policy_(policy) {}

    [[nodiscard]] std::span<const SecCertificate> certificates() const noexcept { return certificates_; }
    [[nodiscard]] SecPolicy policy() const noexcept { return policy_; }

private:
    std::vector<SecCertificate> certificates_;
    SecPolicy policy_;
};

/// `SecTrustCreateWithCertificates`
///
/// @param certificates  the one in question first
/// @param trust         empty on failure
/// @return `errSecSuccess`, or `errSecParam` when there is no certificate
///
/// Thread-safe.
[[nodiscard]] OSStatus SecTrustCreateWithCertificates(std::span<const SecCertificate> certificates, SecPolicy policy,
                                                      std::optional<SecTrust>& trust);

enum class SecTrustResultType : std::uint32_t {
    kSecTrustResultUnspecified = 4,              ///< The chain ends in a root that the machine trusts.
    kSecTrustResultRecoverableTrustFailure = 5,  ///< It does not, or a certificate in it is not valid now.
};

/// `SecTrustEvaluate`: looks for a chain to one of the machine's trusted roots, which OpenSSL finds by its own settings
/// (`SSL_CERT_FILE` and `SSL_CERT_DIR` among them), at the present time. No network is used. Roots that have been read
/// are kept until file, directory or settings change.
///
/// @return `errSecSuccess` whatever the verdict; `errSecAllocate` for want of memory, with `result` untouched
///
/// Thread-safe.
[[nodiscard]] OSStatus SecTrustEvaluate(const SecTrust& trust, SecTrustResultType& result);

/// `SecTrustCopyPublicKey`: the key of the first certificate, whatever a verdict says. Absent when it is of a kind that
/// OpenSSL does not know, or malformed. Thread-safe.
[[nodiscard]] std::optional<SecKey> SecTrustCopyPublicKey(const SecTrust& trust);

}  // namespace ZORPlatform
