// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/CommonCrypto/CommonDigest.h>

#include <ZORPlatform/CommonCrypto/ErrorQueueMarkInternal.h>
#include <ZORPlatform/Foundation/NSException.h>

#include <openssl/evp.h>

#include <array>
#include <string>

namespace ZORPlatform {
namespace {

struct AlgorithmName {
    const char* fetched;
    std::u16string_view shown;
};

constexpr std::array<AlgorithmName, 6> kNames{{{"MD5", u"MD5"},
                                               {"SHA1", u"SHA-1"},
                                               {"SHA2-224", u"SHA-224"},
                                               {"SHA2-256", u"SHA-256"},
                                               {"SHA2-384", u"SHA-384"},
                                               {"SHA2-512", u"SHA-512"}}};

constexpr const AlgorithmName& nameOf(CCDigestAlgorithm algorithm) noexcept {
    return kNames[static_cast<std::size_t>(algorithm)];
}

[[noreturn]] void throwUnavailable(CCDigestAlgorithm algorithm) {
    std::u16string reason(nameOf(algorithm).shown);
    throw NSException(u"NSInternalInconsistencyException", reason + u" is not available on this system");
}

// A fetch costs more than the digest of a short text, so its result is kept for life. A failed one is tried again.
template <CCDigestAlgorithm kAlgorithm>
const EVP_MD* fetched() {
    static const EVP_MD* const algorithm = [] {
        const ErrorQueueMark mark;
        const EVP_MD* found = EVP_MD_fetch(nullptr, nameOf(kAlgorithm).fetched, nullptr);
        if (found == nullptr) throwUnavailable(kAlgorithm);
        return found;
    }();
    return algorithm;
}

const EVP_MD* fetched(CCDigestAlgorithm algorithm) {
    switch (algorithm) {
        case CCDigestAlgorithm::kMD5:
            return fetched<CCDigestAlgorithm::kMD5>();
        case CCDigestAlgorithm::kSHA1:
            return fetched<CCDigestAlgorithm::kSHA1>();
        case CCDigestAlgorithm::kSHA224:
            return fetched<CCDigestAlgorithm::kSHA224>();
        case CCDigestAlgorithm::kSHA256:
            return fetched<CCDigestAlgorithm::kSHA256>();
        case CCDigestAlgorithm::kSHA384:
            return fetched<CCDigestAlgorithm::kSHA384>();
        case CCDigestAlgorithm::kSHA512:
            return fetched<CCDigestAlgorithm::kSHA512>();
    }
    throwUnavailable(algorithm);
}

// None of these fails on a context that has been set up, except for want of memory.
void require(int succeeded) {
    if (succeeded != 1) throw std::bad_alloc();
}

void digestOnce(CCDigestAlgorithm algorithm, std::span<const std::uint8_t> data, std::span<std::uint8_t> digest) {
    CCDigest running(algorithm);
    running.update(data);
    running.final(digest);
}

}  // namespace

EVP_MD_CTX* DigestContextTraits::create() noexcept { return EVP_MD_CTX_new(); }

// A reset would give back memory that the next digest has to ask for again, which takes as long as a short digest does.
// To begin anew is enough where that clears the block that waited for more bytes. Where blocks are long it does not, so
// zeros take its place, up to the last byte, which holds a part of the length.
bool DigestContextTraits::clean(EVP_MD_CTX* context) noexcept {
    constexpr std::size_t kClearedBlock = 64;
    static constexpr std::array<std::uint8_t, 127> kZeros{};
    const EVP_MD* algorithm = EVP_MD_CTX_get0_md(context);
    if (algorithm == nullptr) return true;
    if (EVP_DigestInit_ex2(context, algorithm, nullptr) != 1) return false;
    if (static_cast<std::size_t>(EVP_MD_get_block_size(algorithm)) <= kClearedBlock) return true;
    return EVP_DigestUpdate(context, kZeros.data(), kZeros.size()) == 1 &&
           EVP_DigestInit_ex2(context, algorithm, nullptr) == 1;
}

void DigestContextTraits::destroy(EVP_MD_CTX* context) noexcept { EVP_MD_CTX_free(context); }

CCDigest::CCDigest(CCDigestAlgorithm algorithm) {
    const EVP_MD* wanted = fetched(algorithm);
    // A context that was kept is at the beginning of its algorithm.
    if (EVP_MD_CTX_get0_md(context_.get()) == wanted) return;
    require(EVP_DigestInit_ex2(context_.get(), wanted, nullptr));
}

void CCDigest::update(std::span<const std::uint8_t> data) {
    require(EVP_DigestUpdate(context_.get(), data.data(), data.size()));
}

void CCDigest::final(std::span<std::uint8_t> digest) {
    require(EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr));
}

void CC_MD5(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_MD5_DIGEST_LENGTH> digest) {
    digestOnce(CCDigestAlgorithm::kMD5, data, digest);
}

void CC_SHA1(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA1_DIGEST_LENGTH> digest) {
    digestOnce(CCDigestAlgorithm::kSHA1, data, digest);
}

void CC_SHA224(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA224_DIGEST_LENGTH> digest) {
    digestOnce(CCDigestAlgorithm::kSHA224, data, digest);
}

void CC_SHA256(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA256_DIGEST_LENGTH> digest) {
    digestOnce(CCDigestAlgorithm::kSHA256, data, digest);
}

void CC_SHA384(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA384_DIGEST_LENGTH> digest) {
    digestOnce(CCDigestAlgorithm::kSHA384, data, digest);
}

void CC_SHA512(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA512_DIGEST_LENGTH> digest) {
    digestOnce(CCDigestAlgorithm::kSHA512, data, digest);
}

}  // namespace ZORPlatform
