// SPDX-License-Identifier: Apache-2.0
//
// Random material beside the system call that it cannot do without, RSA beside OpenSSL with a context made for the key
// once, and the way from a certificate to its key.

#include <benchmarks/Comparison.h>

#include <ZORFoundation/Security/ZORSecurity.h>

#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <sys/random.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace ZORFoundation;
using benchmarks::Comparison;
using Bytes = std::vector<std::uint8_t>;

template <std::size_t kBytes>
void systemCall() {
    std::array<std::uint8_t, kBytes> bytes;
    benchmark::DoNotOptimize(getrandom(bytes.data(), bytes.size(), 0));
}

const Comparison randomText =
    Comparison("generateRandomAlphaNumericStringWithLength: of 32 characters")
        .candidate([] { benchmark::DoNotOptimize(ZORSecurity::generateRandomAlphaNumericStringWithLength(32)); })
        .floor("getrandom of 128 bytes", systemCall<128>)
        .atMost(1.3, "getrandom of 128 bytes")
        .add();

const Comparison randomKey =
    Comparison("generateRandomKeyWithByteCount: of 16 bytes")
        .candidate([] { benchmark::DoNotOptimize(ZORSecurity::generateRandomKeyWithByteCount(16)); })
        .floor("getrandom of 16 bytes", systemCall<16>)
        .atMost(1.3, "getrandom of 16 bytes")
        .add();

EVP_PKEY* rsaKey() {
    static EVP_PKEY* const key = EVP_RSA_gen(1024);
    return key;
}

SecKey publicHalf() {
    std::uint8_t* bytes = nullptr;
    const int length = i2d_PublicKey(rsaKey(), &bytes);
    const auto key = ZORPlatform::SecKeyCreateWithData({bytes, static_cast<std::size_t>(length)});
    OPENSSL_free(bytes);
    return key.value();
}

void encryptWith(EVP_PKEY_CTX* context, const Bytes& plain) {
    Bytes sealed(128);
    std::size_t length = sealed.size();
    benchmark::DoNotOptimize(EVP_PKEY_encrypt(context, sealed.data(), &length, plain.data(), plain.size()));
}

EVP_PKEY_CTX* newContext() {
    EVP_PKEY_CTX* const context = EVP_PKEY_CTX_new_from_pkey(nullptr, rsaKey(), nullptr);
    EVP_PKEY_encrypt_init(context);
    EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PADDING);
    return context;
}

const Bytes kPlain(116, 'a');

const Comparison rsa =
    Comparison("rsaEncrypt:withKey:error: of 116 bytes, 1024 bits")
        .candidate([key = publicHalf()] { benchmark::DoNotOptimize(ZORSecurity::rsaEncrypt(kPlain, key)); })
        .floor("context made once", [context = newContext()] { encryptWith(context, kPlain); })
        .peer("context made for each call",
              [] {
                  EVP_PKEY_CTX* const context = newContext();
                  encryptWith(context, kPlain);
                  EVP_PKEY_CTX_free(context);
              })
        .atMost(1.25, "context made once")
        .add();

Bytes certificate() {
    X509* const made = X509_new();
    X509_gmtime_adj(X509_getm_notBefore(made), 0);
    X509_gmtime_adj(X509_getm_notAfter(made), 3600);
    X509_set_pubkey(made, rsaKey());
    X509_sign(made, rsaKey(), EVP_sha256());
    std::uint8_t* bytes = nullptr;
    const int length = i2d_X509(made, &bytes);
    Bytes der(bytes, bytes + length);
    OPENSSL_free(bytes);
    X509_free(made);
    return der;
}

const Comparison keyOfCertificate =
    Comparison("getPublicKeyFromCertificateData:error:")
        .candidate(
            [der = certificate()] { benchmark::DoNotOptimize(ZORSecurity::getPublicKeyFromCertificateData(der)); })
        .floor("certificate read, key taken out",
               [der = certificate()] {
                   const std::uint8_t* at = der.data();
                   X509* const read = d2i_X509(nullptr, &at, static_cast<long>(der.size()));
                   EVP_PKEY* const key = X509_get_pubkey(read);
                   benchmark::DoNotOptimize(key);
                   EVP_PKEY_free(key);
                   X509_free(read);
               })
        .add();

// A failing input: refused by the first look at it.
const Comparison noCertificate =
    Comparison("getPublicKeyFromCertificateData:error: of other bytes")
        .candidate([] { benchmark::DoNotOptimize(ZORSecurity::getPublicKeyFromCertificateData(kPlain)); })
        .floor("certificate not read",
               [] {
                   const std::uint8_t* at = kPlain.data();
                   benchmark::DoNotOptimize(d2i_X509(nullptr, &at, static_cast<long>(kPlain.size())));
               })
        .add();

}  // namespace
