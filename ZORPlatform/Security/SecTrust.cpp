// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecTrust.h>

#include <ZORPlatform/CommonCrypto/ErrorQueueMarkInternal.h>
#include <ZORPlatform/Security/MaterialInternal.h>

#include <openssl/x509_vfy.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>

namespace ZORPlatform {
namespace {

using StorePointer = std::shared_ptr<X509_STORE>;
using StoreContextPointer = std::unique_ptr<X509_STORE_CTX, OpenSslDelete<X509_STORE_CTX_free>>;
// The certificates in it are those of the trust.
using StackPointer =
    std::unique_ptr<STACK_OF(X509), OpenSslDelete<[](STACK_OF(X509) * stack) { sk_X509_free(stack); }>>;

/// Where OpenSSL looks for roots, and which state of it.
struct RootsPlace {
    std::string file;
    std::string directory;
    std::array<std::filesystem::file_time_type, 2> written;

    bool operator==(const RootsPlace&) const = default;
};

RootsPlace placeOfRoots() {
    const auto setting = [](const char* variable, const char* otherwise) {
        const char* value = std::getenv(variable);
        return std::string(value != nullptr ? value : otherwise);
    };
    RootsPlace place{setting(X509_get_default_cert_file_env(), X509_get_default_cert_file()),
                     setting(X509_get_default_cert_dir_env(), X509_get_default_cert_dir()),
                     {}};
    std::error_code error;
    place.written = {std::filesystem::last_write_time(place.file, error),
                     std::filesystem::last_write_time(place.directory, error)};
    return place;
}

// A machine's roots take tens of milliseconds to read, so they are kept until they may be others.
StorePointer machineRoots() {
    struct Kept {
        std::mutex mutex;
        RootsPlace place;
        StorePointer store;
    };
    static Kept& kept = *new Kept;  // Never destroyed: another thread may evaluate while the process ends.
    RootsPlace place = placeOfRoots();
    const std::lock_guard lock(kept.mutex);
    if (kept.store != nullptr && kept.place == place) return kept.store;
    StorePointer store(X509_STORE_new(), X509_STORE_free);
    if (store == nullptr) return nullptr;
    // A machine without roots trusts nothing, which is a verdict and no failure.
    X509_STORE_set_default_paths(store.get());
    kept.place = std::move(place);
    kept.store = store;
    return store;
}

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
    const StorePointer store = machineRoots();
    const StoreContextPointer context(X509_STORE_CTX_new());
    const StackPointer helpers = helpersOf(trust);
    if (store == nullptr || context == nullptr || helpers == nullptr) return errSecAllocate;
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
