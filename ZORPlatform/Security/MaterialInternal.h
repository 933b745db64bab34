// SPDX-License-Identifier: Apache-2.0
#pragma once

// What stands behind the handles on keys and certificates.

#include <ZORPlatform/Security/SecCertificate.h>
#include <ZORPlatform/Security/SecKey.h>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

namespace ZORPlatform {

/// Frees what OpenSSL made.
template <auto kFree>
struct OpenSslDelete {
    template <class Object>
    void operator()(Object* object) const noexcept {
        kFree(object);
    }
};

using KeyPointer = std::unique_ptr<EVP_PKEY, OpenSslDelete<EVP_PKEY_free>>;
using KeyContextPointer = std::unique_ptr<EVP_PKEY_CTX, OpenSslDelete<EVP_PKEY_CTX_free>>;
using CertificatePointer = std::unique_ptr<X509, OpenSslDelete<X509_free>>;

struct SecKey::Material {
    KeyPointer key;
    // Set up for encryption with PKCS#1 v1.5 padding, which takes half as long as the encryption itself. Only copies
    // are used, so that threads may share it. Null for keys that are not RSA.
    KeyContextPointer encryption;
};

struct SecCertificate::Material {
    CertificatePointer certificate;
};

/// A handle on `key`; absent for a null pointer.
[[nodiscard]] std::optional<SecKey> secKeyWith(KeyPointer key);

}  // namespace ZORPlatform
