// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Security/ZORSecurity.h>

#include <ZORFoundation/Security/CommonCryptoErrorDomain.h>
#include <ZORFoundation/Security/PublicKeyInfoInternal.h>
#include <ZORFoundation/ZORAESCrypt.h>

#include <ZORPlatform/CommonCrypto/CommonCryptor.h>
#include <ZORPlatform/Foundation/Arc4Random.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSFileManager.h>
#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Foundation/Precondition.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>
#include <ZORPlatform/Security/SecItem.h>
#include <ZORPlatform/Security/SecTrust.h>

#include <algorithm>
#include <array>

namespace ZORFoundation {
namespace {

using ZORPlatform::arc4random_buf;
using ZORPlatform::CCOperation;
using ZORPlatform::CCOptions;
using ZORPlatform::decimalText;
using ZORPlatform::errSecSuccess;
using ZORPlatform::kCCBlockSizeAES128;
using ZORPlatform::kCCDecrypt;
using ZORPlatform::kCCEncrypt;
using ZORPlatform::kSecAttrAccessible;
using ZORPlatform::kSecAttrApplicationTag;
using ZORPlatform::kSecAttrKeyType;
using ZORPlatform::kSecClass;
using ZORPlatform::kSecClassKey;
using ZORPlatform::OSStatus;
using ZORPlatform::SecItemResult;
using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;
using Vector = std::span<const std::uint8_t, kCCBlockSizeAES128>;

constexpr std::u16string_view kAlphabet = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
static_assert(kAlphabet.size() == 62);

constexpr CCOptions kCbc = ZORPlatform::kCCOptionPKCS7Padding;
constexpr CCOptions kEcb = ZORPlatform::kCCOptionPKCS7Padding | ZORPlatform::kCCOptionECBMode;

// Deliberate: the room for the result is that of a 1024-bit key, whatever the key, so a longer one fails.
constexpr std::size_t kRsaResultBytes = 128;
// Deliberate: one more than the padding needs.
constexpr std::int64_t kRsaPaddingBytes = 12;

void clear(std::optional<NSError>* error) {
    if (error != nullptr) error->reset();
}

std::nullopt_t fail(std::optional<NSError>* error, std::u16string_view message) {
    if (error != nullptr) *error = CommonCryptoErrorDomain::securityErrorWith(message);
    return std::nullopt;
}

std::nullopt_t fail(std::optional<NSError>* error, std::u16string message, OSStatus status) {
    return fail(error, message += decimalText(status));
}

// @return `prefix` and what the cipher gives, in the one allocation that the result needs
std::optional<Bytes> crypt(CCOperation operation, CCOptions options, View data, View key, std::optional<Vector> vector,
                           View prefix, std::optional<NSError>* error) {
    ZORPlatform::WipingArray<std::uint8_t, ZORPlatform::kCCKeySizeAES128> keyBytes;
    std::copy_n(key.begin(), std::min(key.size(), keyBytes.size()), keyBytes.data());
    Bytes out(prefix.size() + data.size() + kCCBlockSizeAES128);
    std::copy(prefix.begin(), prefix.end(), out.begin());
    std::size_t moved = 0;
    const ZORPlatform::CCCryptorStatus status =
        ZORPlatform::CCCrypt(operation, ZORPlatform::kCCAlgorithmAES128, options, keyBytes.span(), vector, data,
                             std::span(out).subspan(prefix.size()), moved);
    if (status != ZORPlatform::kCCSuccess) {
        if (error != nullptr) *error = CommonCryptoErrorDomain::errorWithCCCryptorStatus(status);
        return std::nullopt;
    }
    out.resize(prefix.size() + moved);
    return out;
}

Vector vectorOf(View bytes, std::string_view operation) {
    if (bytes.size() < kCCBlockSizeAES128) {
        ZORPlatform::preconditionFailure(std::string(operation) +
                                         ": the initialisation vector has fewer than 16 bytes");
    }
    return bytes.first<kCCBlockSizeAES128>();
}

SecItemDictionary fpKeyItem(std::u16string_view accessibility) {
    return {{kSecClass, kSecClassKey},
            {ZORPlatform::kSecAttrKeyClass, ZORPlatform::kSecAttrKeyClassSymmetric},
            {ZORPlatform::kSecAttrKeySizeInBits, 128},
            {ZORPlatform::kSecAttrApplicationLabel, u"fpKey"},
            {kSecAttrAccessible, accessibility}};
}

SecItemDictionary queryOf(SecItemDictionary item) {
    item.set(ZORPlatform::kSecMatchLimit, ZORPlatform::kSecMatchLimitOne);
    item.set(ZORPlatform::kSecReturnAttributes, true);
    item.set(ZORPlatform::kSecReturnData, true);
    return item;
}

std::optional<Bytes> valueFoundBy(const SecItemDictionary& query) {
    SecItemResult result;
    if (ZORPlatform::SecItemCopyMatching(query, &result) != errSecSuccess) return std::nullopt;
    const auto* attributes = result.as<SecItemDictionary>();
    const Bytes* value = attributes != nullptr ? attributes->find<Bytes>(ZORPlatform::kSecValueData) : nullptr;
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

// Deliberate: as many bytes as the name has units, so of a name outside ASCII the end is missing.
Bytes tagOf(std::u16string_view peerName) {
    const std::string bytes = ZORPlatform::utf8(peerName);
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(peerName.size())};
}

/// The public key item of a peer.
SecItemDictionary peerKeyItem(std::u16string_view peerName) {
    return {{kSecClass, kSecClassKey},
            {kSecAttrKeyType, ZORPlatform::kSecAttrKeyTypeRSA},
            {kSecAttrApplicationTag, tagOf(peerName)}};
}

// The item that is there already counts as the one added.
bool isThere(OSStatus status, const SecItemResult& result) {
    return !result.isEmpty() && (status == errSecSuccess || status == ZORPlatform::errSecDuplicateItem);
}

bool addInPlaceOfOthers(const SecItemDictionary& item, View key) {
    static_cast<void>(ZORPlatform::SecItemDelete(item));
    SecItemDictionary added = item;
    added.set(ZORPlatform::kSecValueData, Bytes(key.begin(), key.end()));
    added.set(ZORPlatform::kSecReturnPersistentRef, true);
    added.set(kSecAttrAccessible, ZORPlatform::kSecAttrAccessibleWhenUnlockedThisDeviceOnly);
    SecItemResult persistentReference;
    const OSStatus status = ZORPlatform::SecItemAdd(added, &persistentReference);
    return isThere(status, persistentReference);
}

std::optional<SecKey> keyFoundBy(SecItemDictionary item) {
    item.set(ZORPlatform::kSecReturnRef, true);
    SecItemResult reference;
    const OSStatus status = ZORPlatform::SecItemCopyMatching(item, &reference);
    const auto* key = reference.as<SecKey>();
    return key != nullptr && isThere(status, reference) ? std::optional(*key) : std::nullopt;
}

/// The bytes that a file of Base64 text stands for.
std::optional<Bytes> bytesOfBase64File(const std::filesystem::path& path) {
    const std::optional<Bytes> content = ZORPlatform::NSFileManager::contentsAtPath(path);
    if (!content) return std::nullopt;
    const std::optional<std::u16string> text =
        ZORPlatform::utf16IfWellFormed({reinterpret_cast<const char*>(content->data()), content->size()});
    if (!text) return std::nullopt;
    return ZORAESCrypt::zor_dataWithBase64EncodedString(*text);
}

}  // namespace

SecItemDictionary ZORSecurity::fpKeychainItem() {
    return fpKeyItem(ZORPlatform::kSecAttrAccessibleWhenUnlockedThisDeviceOnly);
}

SecItemDictionary ZORSecurity::fpKeychainItemWatch() {
    return fpKeyItem(ZORPlatform::kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
}

SecItemDictionary ZORSecurity::fpKeychainQuery() { return queryOf(fpKeychainItem()); }

SecItemDictionary ZORSecurity::fpKeychainQueryWatch() { return queryOf(fpKeychainItemWatch()); }

std::optional<Bytes> ZORSecurity::fpKey_regular() { return valueFoundBy(fpKeychainQuery()); }

std::optional<Bytes> ZORSecurity::fpKey_watch() { return valueFoundBy(fpKeychainQueryWatch()); }

void ZORSecurity::removeFpKeyFromKeyChain() { static_cast<void>(ZORPlatform::SecItemDelete(fpKeychainItem())); }

void ZORSecurity::removeFpKeyFromKeyChainWatch() {
    static_cast<void>(ZORPlatform::SecItemDelete(fpKeychainItemWatch()));
}

Bytes ZORSecurity::generateRandomKeyWithByteCount(std::int32_t count) {
    if (count < 0) ZORPlatform::preconditionFailure("generateRandomKeyWithByteCount: the count is negative");
    Bytes bytes(static_cast<std::size_t>(count));
    arc4random_buf(bytes.data(), bytes.size());
    return bytes;
}

std::u16string ZORSecurity::generateRandomAlphaNumericStringWithLength(std::int64_t length) {
    const auto count = static_cast<std::int32_t>(length);
    if (count < 1) return {};
    std::u16string text(static_cast<std::size_t>(count), u'\0');
    ZORPlatform::WipingScratch<std::uint32_t, 256> numbers;
    for (std::size_t done = 0; done < text.size();) {
        const auto piece = numbers.first(std::min(text.size() - done, numbers.size()));
        arc4random_buf(piece.data(), piece.size_bytes());
        for (const std::uint32_t number : piece) text[done++] = kAlphabet[number % kAlphabet.size()];
    }
    return text;
}

std::optional<Bytes> ZORSecurity::encrypt_AES128_ECB_PKCS7(View data, View withKey, std::optional<NSError>* error) {
    clear(error);
    return crypt(kCCEncrypt, kEcb, data, withKey, std::nullopt, {}, error);
}

std::optional<Bytes> ZORSecurity::decrypt_AES128_ECB_PKCS7(View data, View withKey, std::optional<NSError>* error) {
    clear(error);
    return crypt(kCCDecrypt, kEcb, data, withKey, std::nullopt, {}, error);
}

std::optional<Bytes> ZORSecurity::encrypt_AES128_CBC_PKCS7(View data, View withKey, std::optional<View> initVector,
                                                           bool shouldPrefixResultWithInitVector,
                                                           std::optional<NSError>* error) {
    clear(error);
    std::array<std::uint8_t, kCCBlockSizeAES128> random;
    if (!initVector) {
        arc4random_buf(random.data(), random.size());
        initVector = random;
    }
    const View prefix = shouldPrefixResultWithInitVector ? *initVector : View();
    return crypt(kCCEncrypt, kCbc, data, withKey, vectorOf(*initVector, "encrypt_AES128_CBC_PKCS7"), prefix, error);
}

std::optional<Bytes> ZORSecurity::decrypt_AES128_CBC_PKCS7(View data, View withKey, std::optional<View> initVector,
                                                           std::optional<NSError>* error) {
    clear(error);
    if (initVector) {
        return crypt(kCCDecrypt, kCbc, data, withKey, vectorOf(*initVector, "decrypt_AES128_CBC_PKCS7"), {}, error);
    }
    if (data.size() >= kCCBlockSizeAES128) {
        return crypt(kCCDecrypt, kCbc, data.subspan(kCCBlockSizeAES128), withKey, data.first<kCCBlockSizeAES128>(), {},
                     error);
    }
    // Deliberate: the cipher goes over the short data all the same, and its error takes the place of this one.
    fail(error, u"The returned data does not match the desired length of 16.");
    return crypt(kCCDecrypt, kCbc, data, withKey, std::nullopt, {}, error);
}

std::optional<SecKey> ZORSecurity::zorPublicKey(std::optional<NSError>* error) {
    clear(error);
    const std::filesystem::path path = ZORPlatform::HostEnvironment::libraryResourceDirectory() / "phnios.pub64";
    if (!ZORPlatform::NSFileManager::fileExistsAtPath(path)) return fail(error, u"Cannot find input file");
    return getPublicKeyFromPEMFileAtPath(path, u"ZOR public key", error);
}

std::optional<SecKey> ZORSecurity::getPublicKeyFromPEMFileAtPath(const std::filesystem::path& path,
                                                                 std::u16string_view usingPeerName,
                                                                 std::optional<NSError>* error) {
    clear(error);
    const std::optional<Bytes> info = bytesOfBase64File(path);
    if (!info) return fail(error, u"Cannot read from PEM file");
    const std::optional<View> keyBytes = rsaPublicKeyIn(*info);
    // Deliberate: a file that holds something else is no failure.
    if (!keyBytes) return std::nullopt;

    const SecItemDictionary item = peerKeyItem(usingPeerName);
    if (!addInPlaceOfOthers(item, *keyBytes)) return fail(error, u"Problem adding public key to keychain");
    std::optional<SecKey> key = keyFoundBy(item);
    if (!key) return fail(error, u"Error retrieving public key reference from chain");
    return key;
}

std::optional<SecKey> ZORSecurity::getPublicKeyFromBase64EncodedX509CertificateFileAtPath(
    const std::filesystem::path& path, std::optional<NSError>* error) {
    clear(error);
    const std::optional<Bytes> data = bytesOfBase64File(path);
    if (!data) return fail(error, u"Cannot read from certificate file");
    return getPublicKeyFromCertificateData(*data, error);
}

std::optional<SecKey> ZORSecurity::getPublicKeyFromCertificateData(View data, std::optional<NSError>* error) {
    clear(error);
    const std::optional<ZORPlatform::SecCertificate> certificate = ZORPlatform::SecCertificateCreateWithData(data);
    if (!certificate) return fail(error, u"Cannot create certificate");

    std::optional<ZORPlatform::SecTrust> trust;
    OSStatus status = ZORPlatform::SecTrustCreateWithCertificates(std::span(&*certificate, 1),
                                                                  ZORPlatform::SecPolicyCreateBasicX509(), trust);
    if (status != errSecSuccess) return fail(error, u"SecTrustCreateWithCertificates fail. Error Code: ", status);

    // The verdict is for others to examine: whoever ships a certificate has chosen to trust it.
    auto verdict = ZORPlatform::SecTrustResultType::kSecTrustResultRecoverableTrustFailure;
    status = ZORPlatform::SecTrustEvaluate(*trust, verdict);
    if (status != errSecSuccess) return fail(error, u"SecTrustEvaluate fail. Error Code: ", status);

    std::optional<SecKey> key = ZORPlatform::SecTrustCopyPublicKey(*trust);
    if (!key) return fail(error, u"SecTrustCopyPublicKey fail");
    return key;
}

std::optional<Bytes> ZORSecurity::rsaEncrypt(View data, const SecKey& withKey, std::optional<NSError>* error) {
    clear(error);
    const auto length = static_cast<std::int64_t>(data.size());
    const std::int64_t max = static_cast<std::int64_t>(ZORPlatform::SecKeyGetBlockSize(withKey)) - kRsaPaddingBytes;
    if (length > max) {
        // Deliberate: data of exactly `max` bytes is taken, whatever the message says.
        return fail(error, u"content(" + decimalText(length) + u") is too long, must be < " + decimalText(max));
    }
    Bytes out(kRsaResultBytes);
    std::size_t written = 0;
    const OSStatus status =
        ZORPlatform::SecKeyEncrypt(withKey, ZORPlatform::SecPadding::kSecPaddingPKCS1, data, out, written);
    if (status != errSecSuccess) return fail(error, u"SecKeyEncrypt fail. Error Code: ", status);
    out.resize(written);
    return out;
}

}  // namespace ZORFoundation
