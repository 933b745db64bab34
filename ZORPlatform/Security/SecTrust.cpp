// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecTrust.h>

#include <ZORPlatform/CommonCrypto/ErrorQueueMarkInternal.h>
#include <ZORPlatform/Security/MaterialInternal.h>

#include <openssl/x509_vfy.h>

namespace ZORPlatform {
namespace {

using StorePointer = std::unique_ptr<X509_STORE, OpenSslDelete<X509_STORE_free>>;
using StoreContextPointer = std::unique_ptr<X509_STORE_CTX, OpenSslDelete<X509_STORE_CTX_free>>;
// The certificates in it are those of the trust.
using StackPointer =
    std::unique_ptr<STACK_OF(X509), OpenSslDelete<[](STACK_OF(X509) * stack) { sk_X509_free(stack); }>>;

X509* certificateOf(const SecCertificate& handle) { return handle.material().certificate.get(); }

StackPointer helpersOf(const SecTrust& trust) {
    const auto helpers = trust.certificates().subspan(1);
    StackPointer stack(sk_X509_new_reserve(nullptr, static_cast<int>(helpers.size())));
    if (stack == nullptr) return nullptr;
    for (const SecCertificate& helper : helpers) sk_X509_push(stack.get(), certificateOf(helper));
    return stack;
}

}  // namespace

OSStatus SecTrustCreateWithCertificates(std::span<const SecCertificate> certificates, SecPolicy policy,
                                        std::optional<SecTrust>& trust) {
    trust.reset();
    if (certificates.empty()) return errSecParam;
    trust.emplace(std::vector<SecCertificate>(certificates.begin(), certificates.end()), policy);
    return errSecSuccess;
}

OSStatus SecTrustEvaluate(const SecTrust& trust, SecTrustResultType& result) {
    const ErrorQueueMark mark;
    const StorePointer store(X509_STORE_new());
    const StoreContextPointer context(X509_STORE_CTX_new());
    const StackPointer helpers = helpersOf(trust);
    if (store == nullptr || context == nullptr || helpers == nullptr) return errSecAllocate;
    // A machine without roots trusts nothing, which is a verdict and no failure.
    X509_STORE_set_default_paths(store.get());
    if (X509_STORE_CTX_init(context.get(), store.get(), certificateOf(trust.certificates().front()), helpers.get()) !=
        1) {
        return errSecAllocate;
    }
    result = X509_verify_cert(context.get()) == 1 ? SecTrustResultType::kSecTrustResultUnspecified
                                                  : SecTrustResultType::kSecTrustResultRecoverableTrustFailure;
    return errSecSuccess;
}

std::optional<SecKey> SecTrustCopyPublicKey(const SecTrust& trust) {
    const ErrorQueueMark mark;
    return secKeyWith(KeyPointer(X509_get_pubkey(certificateOf(trust.certificates().front()))));
}

}  // namespace ZORPlatform
