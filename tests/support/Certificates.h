// SPDX-License-Identifier: Apache-2.0
#pragma once

// Keys and X.509 certificates made for a test.
//
//     const PrivateKey key = PrivateKey::rsa(1024);
//     const std::vector<std::uint8_t> certificate = certificateOf({.subject = "leaf"}, key);   // DER, self-signed

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace support {

template <class Object>
Object* made(Object* object) {
    if (object == nullptr) throw std::runtime_error(ERR_reason_error_string(ERR_peek_last_error()));
    return object;
}

/// What one of OpenSSL's i2d functions writes of `object`.
template <class Encoder, class Object>
std::vector<std::uint8_t> derOf(Encoder encode, Object* object) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(encode(object, nullptr)));
    std::uint8_t* at = bytes.data();
    encode(object, &at);
    return bytes;
}

class PrivateKey {
public:
    static PrivateKey rsa(std::size_t bits) { return PrivateKey(made(EVP_RSA_gen(bits))); }
    static PrivateKey ellipticCurve(const char* name = "P-256") {
        return PrivateKey(made(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", name)));
    }

    [[nodiscard]] EVP_PKEY* get() const noexcept { return key_.get(); }

    /// The public half: an RSAPublicKey, or the point of an elliptic curve.
    [[nodiscard]] std::vector<std::uint8_t> publicKey() const { return derOf(i2d_PublicKey, get()); }
    /// The public half as SubjectPublicKeyInfo.
    [[nodiscard]] std::vector<std::uint8_t> publicKeyInfo() const { return derOf(i2d_PUBKEY, get()); }

    void write(const std::filesystem::path& path) const {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "w"), std::fclose);
        if (file == nullptr || PEM_write_PrivateKey(file.get(), get(), nullptr, nullptr, 0, nullptr, nullptr) != 1) {
            throw std::runtime_error("cannot write " + path.string());
        }
    }

private:
    explicit PrivateKey(EVP_PKEY* key) : key_(key, EVP_PKEY_free) {}

    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
};

struct CertificateContent {
    const char* subject;
    const char* issuer = nullptr;  ///< Absent: the subject itself.
    bool isAuthority = false;
    long validFromSeconds = -3600;  ///< Counted from now, as the next.
    long validToSeconds = 3600;
};

inline std::unique_ptr<X509_NAME, decltype(&X509_NAME_free)> nameOf(const char* commonName) {
    std::unique_ptr<X509_NAME, decltype(&X509_NAME_free)> name(made(X509_NAME_new()), X509_NAME_free);
    const auto* text = reinterpret_cast<const unsigned char*>(commonName);
    X509_NAME_add_entry_by_txt(name.get(), "CN", MBSTRING_UTF8, text, -1, -1, 0);
    return name;
}

/// A certificate in DER for the public half of `key`, signed with `issuerKey`.
inline std::vector<std::uint8_t> certificateOf(const CertificateContent& content, const PrivateKey& key,
                                               const PrivateKey& issuerKey) {
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(made(X509_new()), X509_free);
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), content.validFromSeconds);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), content.validToSeconds);
    X509_set_subject_name(certificate.get(), nameOf(content.subject).get());
    X509_set_issuer_name(certificate.get(), nameOf(content.issuer ? content.issuer : content.subject).get());
    X509_set_pubkey(certificate.get(), key.get());
    if (content.isAuthority) {
        const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
            made(X509V3_EXT_conf_nid(nullptr, nullptr, NID_basic_constraints, "critical,CA:TRUE")),
            X509_EXTENSION_free);
        X509_add_ext(certificate.get(), extension.get(), -1);
    }
    if (X509_sign(certificate.get(), issuerKey.get(), EVP_sha256()) == 0) throw std::runtime_error("cannot sign");
    return derOf(i2d_X509, certificate.get());
}

/// A certificate that `key` vouches for itself.
inline std::vector<std::uint8_t> certificateOf(const CertificateContent& content, const PrivateKey& key) {
    return certificateOf(content, key, key);
}

/// A certificate as a file that OpenSSL can trust.
inline std::string pemOf(const std::vector<std::uint8_t>& certificate) {
    std::string base64(4 * (certificate.size() + 2) / 3 + 4, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(base64.data()), certificate.data(),
                                       static_cast<int>(certificate.size()));
    base64.resize(static_cast<std::size_t>(length));
    std::string text = "-----BEGIN CERTIFICATE-----\n";
    for (std::size_t at = 0; at < base64.size(); at += 64) text += base64.substr(at, 64) + "\n";
    return text + "-----END CERTIFICATE-----\n";
}

}  // namespace support
