// SPDX-License-Identifier: Apache-2.0
#pragma once

// The platform's message digests: MD5 (RFC 1321), SHA-1 and the SHA-2 family (FIPS 180-4), of bytes.
//
//     std::array<std::uint8_t, CC_SHA256_DIGEST_LENGTH> digest;
//     CC_SHA256(bytes, digest);
//
// Every operation may be called from any thread. Where the machine's cryptography library is set up without an
// algorithm (some policies have no MD5), it throws NSException named "NSInternalInconsistencyException".

#include <ZORPlatform/CommonCrypto/ThreadContext.h>

#include <cstddef>
#include <cstdint>
#include <span>

struct evp_md_ctx_st;

namespace ZORPlatform {

inline constexpr std::size_t CC_MD5_DIGEST_LENGTH = 16;
inline constexpr std::size_t CC_SHA1_DIGEST_LENGTH = 20;
inline constexpr std::size_t CC_SHA224_DIGEST_LENGTH = 28;
inline constexpr std::size_t CC_SHA256_DIGEST_LENGTH = 32;
inline constexpr std::size_t CC_SHA384_DIGEST_LENGTH = 48;
inline constexpr std::size_t CC_SHA512_DIGEST_LENGTH = 64;
inline constexpr std::size_t kLongestDigest = CC_SHA512_DIGEST_LENGTH;

/// `CC_MD5`: writes the MD5 of `data`. Broken as a protection against forgery; kept for data that carries it.
void CC_MD5(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_MD5_DIGEST_LENGTH> digest);
/// `CC_SHA1`: writes the SHA-1 of `data`.
void CC_SHA1(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA1_DIGEST_LENGTH> digest);
/// `CC_SHA224`: writes the SHA-224 of `data`.
void CC_SHA224(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA224_DIGEST_LENGTH> digest);
/// `CC_SHA256`: writes the SHA-256 of `data`.
void CC_SHA256(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA256_DIGEST_LENGTH> digest);
/// `CC_SHA384`: writes the SHA-384 of `data`.
void CC_SHA384(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA384_DIGEST_LENGTH> digest);
/// `CC_SHA512`: writes the SHA-512 of `data`.
void CC_SHA512(std::span<const std::uint8_t> data, std::span<std::uint8_t, CC_SHA512_DIGEST_LENGTH> digest);

/// The digests, where the choice is made at run time.
enum class CCDigestAlgorithm : std::uint8_t { kMD5, kSHA1, kSHA224, kSHA256, kSHA384, kSHA512 };

/// The context of one digest a thread; see ThreadContext.
struct DigestContextTraits {
    using Context = evp_md_ctx_st;
    static Context* create() noexcept;
    static bool clean(Context* context) noexcept;
    static void destroy(Context* context) noexcept;
};

/// The digest of bytes that arrive in pieces. An object is used by one thread at a time.
class CCDigest {
public:
    explicit CCDigest(CCDigestAlgorithm algorithm);

    /// Takes the next bytes.
    void update(std::span<const std::uint8_t> data);
    /// Writes the digest of all bytes taken. The last operation of an object.
    ///
    /// @param digest  room for at least the algorithm's digest
    void final(std::span<std::uint8_t> digest);

private:
    ThreadContext<DigestContextTraits> context_;
};

}  // namespace ZORPlatform
