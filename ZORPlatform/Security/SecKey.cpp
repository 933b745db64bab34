// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecKey.h>

#include <ZORPlatform/CommonCrypto/ErrorQueueMarkInternal.h>
#include <ZORPlatform/Foundation/Wiping.h>
#include <ZORPlatform/Security/MaterialInternal.h>

#include <openssl/rsa.h>

#include <algorithm>
#include <limits>

namespace ZORPlatform {
namespace {

// What OpenSSL writes in DER; empty where it can write nothing.
std::vector<std::uint8_t> publicKeyOf(EVP_PKEY* key) {
    const int length = i2d_PublicKey(key, nullptr);
    if (length <= 0) return {};
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
    std::uint8_t* at = bytes.data();
    if (i2d_PublicKey(key, &at) != length) return {};
    return bytes;
}

KeyContextPointer encryptionWith(EVP_PKEY* key) {
    if (EVP_PKEY_is_a(key, "RSA") != 1) return nullptr;
    KeyContextPointer context(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
    const bool isReady = context != nullptr && EVP_PKEY_encrypt_init(context.get()) == 1 &&
                         EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) == 1;
    return isReady ? std::move(context) : nullptr;
}

}  // namespace

std::optional<SecKey> secKeyWith(KeyPointer key) {
    if (key == nullptr) return std::nullopt;
    KeyContextPointer encryption = encryptionWith(key.get());
    return SecKey(std::make_shared<const SecKey::Material>(SecKey::Material{std::move(key), std::move(encryption)}));
}

std::optional<SecKey> SecKeyCreateWithData(std::span<const std::uint8_t> keyData) {
    if (keyData.size() > std::numeric_limits<long>::max()) return std::nullopt;
    const ErrorQueueMark mark;
    const std::uint8_t* at = keyData.data();
    KeyPointer key(d2i_PublicKey(EVP_PKEY_RSA, nullptr, &at, static_cast<long>(keyData.size())));
    if (key == nullptr) return std::nullopt;
    // What is read may also be BER or end early. What is written is DER, of the whole.
    const std::vector<std::uint8_t> bytes = publicKeyOf(key.get());
    if (!std::equal(bytes.begin(), bytes.end(), keyData.begin(), keyData.end())) return std::nullopt;
    return secKeyWith(std::move(key));
}

std::optional<std::vector<std::uint8_t>> SecKeyCopyExternalRepresentation(const SecKey& key) {
    const ErrorQueueMark mark;
    std::vector<std::uint8_t> bytes = publicKeyOf(key.material().key.get());
    if (bytes.empty()) return std::nullopt;
    return bytes;
}

std::size_t SecKeyGetBlockSize(const SecKey& key) noexcept {
    const int bits = EVP_PKEY_get_bits(key.material().key.get());
    return bits > 0 ? (static_cast<std::size_t>(bits) + 7) / 8 : 0;
}

OSStatus SecKeyEncrypt(const SecKey& key, SecPadding padding, std::span<const std::uint8_t> plainText,
                       std::span<std::uint8_t> cipherText, std::size_t& cipherTextLen) noexcept {
    cipherTextLen = 0;
    const EVP_PKEY_CTX* const encryption = key.material().encryption.get();
    const bool isUsable = padding == SecPadding::kSecPaddingPKCS1 && encryption != nullptr &&
                          cipherText.size() >= SecKeyGetBlockSize(key);
    if (!isUsable) return errSecParam;
    const ErrorQueueMark mark;
    const KeyContextPointer context(EVP_PKEY_CTX_dup(encryption));
    std::size_t length = cipherText.size();
    const bool succeeded = context != nullptr && EVP_PKEY_encrypt(context.get(), cipherText.data(), &length,
                                                                  plainText.data(), plainText.size()) == 1;
    if (!succeeded) return errSecParam;
    cipherTextLen = length;
    return errSecSuccess;
}

}  // namespace ZORPlatform
