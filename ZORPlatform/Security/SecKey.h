// SPDX-License-Identifier: Apache-2.0
#pragma once

// A key by reference, and encryption with it.
//
//     std::vector<std::uint8_t> sealed(SecKeyGetBlockSize(key));
//     std::size_t length = 0;
//     const OSStatus status = SecKeyEncrypt(key, SecPadding::kSecPaddingPKCS1, bytes, sealed, length);

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Security/SecBase.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace ZORPlatform {

/// A handle on a public key. Copies are the same key, and only they are equal: two keys made of the same bytes are
/// not. A key never changes, so several threads may use one at once.
class ZOR_EXPORT SecKey {
public:
    /// What the cryptography library knows about the key; defined where keys are made and used.
    struct Material;

    explicit SecKey(std::shared_ptr<const Material> material) noexcept : material_(std::move(material)) {}

    [[nodiscard]] const Material& material() const noexcept { return *material_; }

    friend bool operator==(const SecKey&, const SecKey&) noexcept = default;

private:
    std::shared_ptr<const Material> material_;  // Never null, except in a handle that has been moved from.
};

/// `SecKeyCreateWithData` of an RSA public key.
///
/// @param keyData  one RSAPublicKey in DER (RFC 8017, appendix A.1.1) and nothing behind it
/// @return absent when the bytes are anything else
///
/// Thread-safe.
[[nodiscard]] ZOR_EXPORT std::optional<SecKey> SecKeyCreateWithData(std::span<const std::uint8_t> keyData);

/// `SecKeyCopyExternalRepresentation`: the bytes of the key, for RSA those that `SecKeyCreateWithData` takes, for
/// elliptic curves the uncompressed point (SEC 1, section 2.3.3). Absent for keys of other kinds. Thread-safe.
[[nodiscard]] ZOR_EXPORT std::optional<std::vector<std::uint8_t>> SecKeyCopyExternalRepresentation(const SecKey& key);

/// `SecKeyGetBlockSize`: the bytes of an RSA modulus, or of the order of an elliptic curve. Thread-safe.
[[nodiscard]] ZOR_EXPORT std::size_t SecKeyGetBlockSize(const SecKey& key) noexcept;

enum class SecPadding : std::uint32_t {
    kSecPaddingPKCS1 = 1,  ///< PKCS#1 v1.5 (RFC 8017, section 7.2), with random bytes: no two results are alike.
};

/// `SecKeyEncrypt`: encrypts one block with an RSA key.
///
/// @param plainText      at most the block size less 11 bytes
/// @param cipherText     room for at least the block size
/// @param cipherTextLen  the bytes written, which is the block size; 0 on failure
/// @return `errSecSuccess`, or `errSecParam` for a key that is not RSA or cannot encrypt, an input too long, too little
///         room or another padding
///
/// Thread-safe.
[[nodiscard]] ZOR_EXPORT OSStatus SecKeyEncrypt(const SecKey& key, SecPadding padding,
                                                std::span<const std::uint8_t> plainText,
                                                std::span<std::uint8_t> cipherText,
                                                std::size_t& cipherTextLen) noexcept;

}  // namespace ZORPlatform
