// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAESCrypt.h>

#include <ZORFoundation/TextKeyInternal.h>

#include <ZORPlatform/CommonCrypto/CommonCryptor.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <algorithm>

namespace ZORFoundation::ZORAESCrypt {
namespace {

using ZORPlatform::CCOperation;
using ZORPlatform::kCCBlockSizeAES128;
using ZORPlatform::kCCDecrypt;
using ZORPlatform::kCCEncrypt;
using ZORPlatform::WipingBuffer;
using Bytes = std::vector<std::uint8_t>;

struct Aes256Cbc {
    static constexpr std::size_t kKeyBytes = ZORPlatform::kCCKeySizeAES256;
    static constexpr ZORPlatform::CCOptions kOptions = ZORPlatform::kCCOptionPKCS7Padding;
};

struct Aes128Ecb {
    static constexpr std::size_t kKeyBytes = ZORPlatform::kCCKeySizeAES128;
    static constexpr ZORPlatform::CCOptions kOptions =
        ZORPlatform::kCCOptionPKCS7Padding | ZORPlatform::kCCOptionECBMode;
};

// @return the number of bytes written; absent on failure
template <typename Settings>
std::optional<std::size_t> crypt(CCOperation operation, std::span<const std::uint8_t> in, std::u16string_view key,
                                 TextKeyForm form, std::span<std::uint8_t> out) {
    const TextKey<Settings::kKeyBytes> keyBytes(key, form);
    std::size_t moved = 0;
    const ZORPlatform::CCCryptorStatus status = ZORPlatform::CCCrypt(
        operation, ZORPlatform::kCCAlgorithmAES128, Settings::kOptions, keyBytes.bytes(), std::nullopt, in, out, moved);
    if (status != ZORPlatform::kCCSuccess) return std::nullopt;
    return moved;
}

template <typename Settings>
std::optional<Bytes> cryptBuffer(CCOperation operation, std::span<const std::uint8_t> data, std::u16string_view key,
                                 TextKeyForm form = TextKeyForm::kCurrent) {
    Bytes out(data.size() + kCCBlockSizeAES128);
    const std::optional<std::size_t> length = crypt<Settings>(operation, data, key, form, out);
    if (!length) return std::nullopt;
    out.resize(*length);
    return out;
}

template <typename Settings>
std::optional<std::u16string> encryptText(std::u16string_view text, std::u16string_view key) {
    if (ZORPlatform::wellFormedPrefix(text).size() != text.size()) return std::nullopt;
    WipingBuffer plaintext(3 * text.size());
    const std::span<char> room(reinterpret_cast<char*>(plaintext.data()), plaintext.size());
    const std::size_t length = ZORPlatform::utf8Prefix(text, room).bytes;
    const std::optional<Bytes> ciphertext = cryptBuffer<Settings>(kCCEncrypt, plaintext.span().first(length), key);
    if (!ciphertext) return std::nullopt;
    return zor_base64Encoding(*ciphertext);
}

template <typename Settings>
std::optional<std::u16string> decryptText(std::u16string_view text, std::u16string_view key) {
    const Bytes ciphertext = zor_dataWithBase64EncodedString(text);
    WipingBuffer plaintext(ciphertext.size());
    const std::optional<std::size_t> length =
        crypt<Settings>(kCCDecrypt, ciphertext, key, TextKeyForm::kCurrent, plaintext.span());
    if (!length) return std::nullopt;
    return ZORPlatform::utf16IfWellFormed({reinterpret_cast<const char*>(plaintext.data()), *length});
}

}  // namespace

std::optional<Bytes> zor_AES256EncryptWithKey(std::span<const std::uint8_t> data, std::u16string_view key) {
    return cryptBuffer<Aes256Cbc>(kCCEncrypt, data, key);
}

std::optional<Bytes> zor_AES256DecryptWithKey(std::span<const std::uint8_t> data, std::u16string_view key) {
    return cryptBuffer<Aes256Cbc>(kCCDecrypt, data, key);
}

std::optional<Bytes> zor_legacyAES256DecryptWithKey(std::span<const std::uint8_t> data, std::u16string_view key) {
    return cryptBuffer<Aes256Cbc>(kCCDecrypt, data, key, TextKeyForm::kLegacy);
}

std::optional<Bytes> zor_AES128EncryptWithKey(std::span<const std::uint8_t> data, std::u16string_view key) {
    return cryptBuffer<Aes128Ecb>(kCCEncrypt, data, key);
}

std::optional<Bytes> zor_AES128DecryptWithKey(std::span<const std::uint8_t> data, std::u16string_view key) {
    return cryptBuffer<Aes128Ecb>(kCCDecrypt, data, key);
}

std::optional<std::u16string> zor_AES256EncryptWithKey(std::u16string_view text, std::u16string_view key) {
    return encryptText<Aes256Cbc>(text, key);
}

std::optional<std::u16string> zor_AES256DecryptWithKey(std::u16string_view text, std::u16string_view key) {
    return decryptText<Aes256Cbc>(text, key);
}

std::optional<std::u16string> zor_AES128EncryptWithKey(std::u16string_view text, std::u16string_view key) {
    return encryptText<Aes128Ecb>(text, key);
}

std::optional<std::u16string> zor_AES128DecryptWithKey(std::u16string_view text, std::u16string_view key) {
    return decryptText<Aes128Ecb>(text, key);
}

bool zor_hasPrefixBytes(std::span<const std::uint8_t> data, std::span<const std::uint8_t> bytes) noexcept {
    return !bytes.empty() && data.size() >= bytes.size() && std::equal(bytes.begin(), bytes.end(), data.begin());
}

bool zor_hasSuffixBytes(std::span<const std::uint8_t> data, std::span<const std::uint8_t> bytes) noexcept {
    return data.size() >= bytes.size() && zor_hasPrefixBytes(data.last(bytes.size()), bytes);
}

}  // namespace ZORFoundation::ZORAESCrypt
