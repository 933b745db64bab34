// SPDX-License-Identifier: Apache-2.0
#pragma once

// The platform's block cipher: AES (FIPS 197) in CBC or ECB mode (NIST SP 800-38A), with or without PKCS#7 padding.
//
//     std::vector<std::uint8_t> out(in.size() + kCCBlockSizeAES128);
//     std::size_t moved = 0;
//     const CCCryptorStatus status = CCCrypt(kCCEncrypt, kCCAlgorithmAES128, kCCOptionPKCS7Padding, key, {}, in, out,
//     moved);

#include <ZORPlatform/CommonCrypto/ThreadContext.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

struct evp_cipher_ctx_st;

namespace ZORPlatform {

using CCCryptorStatus = std::int32_t;

inline constexpr CCCryptorStatus kCCSuccess = 0;
inline constexpr CCCryptorStatus kCCParamError = -4300;
inline constexpr CCCryptorStatus kCCBufferTooSmall = -4301;
inline constexpr CCCryptorStatus kCCMemoryFailure = -4302;
inline constexpr CCCryptorStatus kCCAlignmentError = -4303;
inline constexpr CCCryptorStatus kCCDecodeError = -4304;
inline constexpr CCCryptorStatus kCCUnimplemented = -4305;
inline constexpr CCCryptorStatus kCCUnspecifiedError = -4308;
inline constexpr CCCryptorStatus kCCKeySizeError = -4310;

enum CCOperation : std::uint32_t { kCCEncrypt = 0, kCCDecrypt = 1 };

/// AES, whatever the key's size; the name is the platform's.
enum CCAlgorithm : std::uint32_t { kCCAlgorithmAES128 = 0 };

/// Options, to be added up. Without `kCCOptionECBMode` the mode is CBC.
using CCOptions = std::uint32_t;
inline constexpr CCOptions kCCOptionPKCS7Padding = 1;
inline constexpr CCOptions kCCOptionECBMode = 2;

inline constexpr std::size_t kCCBlockSizeAES128 = 16;
inline constexpr std::size_t kCCKeySizeAES128 = 16;
inline constexpr std::size_t kCCKeySizeAES192 = 24;
inline constexpr std::size_t kCCKeySizeAES256 = 32;

/// `CCCrypt`: encrypts or decrypts in one call. Nothing of the key or the plaintext stays behind, except in `dataOut`.
///
/// @param key           16, 24 or 32 bytes
/// @param iv            the initialisation vector; absent counts as 16 zero bytes; ignored in ECB mode
/// @param dataOut       the result. With padding, encryption needs the next multiple of 16 above the input's length,
///                      decryption as many bytes as the input has. Must not overlap the input. Wiped on failure
/// @param dataOutMoved  the bytes written on success; the room needed with `kCCBufferTooSmall`; else 0
/// @return `kCCSuccess`, or
///         `kCCParamError` for an unknown operation, algorithm or option; `kCCKeySizeError`;
///         `kCCBufferTooSmall`;
///         `kCCAlignmentError` for a length that is no multiple of 16, on decryption and wherever nothing is padded,
///         and for padded ciphertext of no bytes;
///         `kCCDecodeError` when any of the bytes that must be padding is wrong;
///         `kCCMemoryFailure`; `kCCUnimplemented` where the system's cryptography library has no AES
///
/// Thread-safe.
[[nodiscard]] CCCryptorStatus CCCrypt(CCOperation operation, CCAlgorithm algorithm, CCOptions options,
                                      std::span<const std::uint8_t> key,
                                      std::optional<std::span<const std::uint8_t, kCCBlockSizeAES128>> iv,
                                      std::span<const std::uint8_t> dataIn, std::span<std::uint8_t> dataOut,
                                      std::size_t& dataOutMoved) noexcept;

/// The cipher context of a thread; see ThreadContext.
struct CipherContextTraits {
    using Context = evp_cipher_ctx_st;
    static Context* create() noexcept;
    static bool clean(Context* context) noexcept;
    static void destroy(Context* context) noexcept;
};

/// `CCCryptorRef`: the padded cipher for data that arrives in pieces. What the pieces give, joined, is what one call of
/// `CCCrypt` gives for the whole, with the one difference that decrypted bytes are given before the padding is checked:
/// they hold only if `final` succeeds. An object is used by one thread at a time.
class CCCryptor {
public:
    CCCryptor(CCOperation operation, CCOptions options, std::span<const std::uint8_t> key);

    /// Appends to `dataOut` what `dataIn` gives. The status is that of `CCCrypt`; after a failure it stays.
    [[nodiscard]] CCCryptorStatus update(std::span<const std::uint8_t> dataIn, std::vector<std::uint8_t>& dataOut);
    /// Appends the last bytes. The last operation of an object.
    [[nodiscard]] CCCryptorStatus final(std::vector<std::uint8_t>& dataOut);

private:
    CCOperation operation_;
    CCCryptorStatus status_;
    std::size_t inputBytes_ = 0;
    bool holdsBlock_ = false;
    // The last block decrypted: it may be the padded one.
    WipingArray<std::uint8_t, kCCBlockSizeAES128> block_;
    ThreadContext<CipherContextTraits> context_;
};

}  // namespace ZORPlatform
