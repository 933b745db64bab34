// SPDX-License-Identifier: Apache-2.0
#pragma once

// The security service: a key kept in the item store, random material, AES-128 under a key given as bytes, public
// keys, and encryption with them.
// Ciphers under a key given as text are ZORAESCrypt.
//
//     const auto key = ZORSecurity::generateRandomKeyWithByteCount(16);
//     std::optional<NSError> error;
//     constexpr bool kPrefixed = true;   // the random vector comes before the ciphertext
//     const auto sealed = ZORSecurity::encrypt_AES128_CBC_PKCS7(bytes, key, std::nullopt, kPrefixed, &error);
//     const auto opened = ZORSecurity::decrypt_AES128_CBC_PKCS7(*sealed, key, std::nullopt, &error);   // bytes

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSError.h>
#include <ZORPlatform/Security/SecItemDictionary.h>
#include <ZORPlatform/Security/SecKey.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ZORFoundation {

using ZORPlatform::NSError;
using ZORPlatform::SecItemDictionary;
using ZORPlatform::SecKey;

/// Operations without state of their own; what they keep is in the item store. All are thread-safe.
///
/// An operation that can fail gives no value then, and stores the reason in its `error`, which it empties first. A
/// cipher's failure is an error of `kCommonCryptoErrorDomain` with the cipher's status as its code; every other one is
/// an error of `kSecurityErrorDomain`, code 0, with the message given below. Without `error` nothing else changes.
///
/// Copies of keys are wiped; results are the caller's. docs/security.md says what the ciphers give and what not.
class ZOR_EXPORT ZORSecurity {
public:
    ZORSecurity() = delete;

    /// `fpKeychainItem`
    ///
    /// The attributes that the application adds its symmetric key of 128 bits under, with `kSecValueData` put in by
    /// `SecItemAdd`'s caller: class key, key class symmetric, size 128, application label "fpKey", accessible when
    /// unlocked on this device only.
    ///
    /// Accessibility tells the phone's item from the watch's: each variant reads and removes its own only. But it is
    /// not part of an item's primary key, so a store holds one of the two at a time.
    [[nodiscard]] static SecItemDictionary fpKeychainItem();
    /// `fpKeychainItemWatch`: as `fpKeychainItem`, accessible after first unlock on this device only.
    [[nodiscard]] static SecItemDictionary fpKeychainItemWatch();

    /// `fpKeychainQuery`: `fpKeychainItem` with limit one, asking for attributes and data.
    [[nodiscard]] static SecItemDictionary fpKeychainQuery();
    /// `fpKeychainQueryWatch`: the same with `fpKeychainItemWatch`.
    [[nodiscard]] static SecItemDictionary fpKeychainQueryWatch();

    /// `fpKey_regular`
    ///
    /// The key that the phone's item holds; absent when there is none, and when the item store cannot be read.
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>> fpKey_regular();
    /// `fpKey_watch`: the same of the watch's item.
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>> fpKey_watch();

    /// `removeFpKeyFromKeyChain`: deletes the phone's item. Nothing says whether there was one.
    static void removeFpKeyFromKeyChain();
    /// `removeFpKeyFromKeyChainWatch`: the same with the watch's item.
    static void removeFpKeyFromKeyChainWatch();

    /// `generateRandomKeyWithByteCount:`
    ///
    /// @param count  0 gives no bytes; a negative count stops the process
    /// @return bytes from the system's generator of random numbers
    [[nodiscard]] static std::vector<std::uint8_t> generateRandomKeyWithByteCount(std::int32_t count);

    /// `generateRandomAlphaNumericStringWithLength:`
    ///
    /// @param length  in characters, of which the lower 32 bits count, as a signed number; below 1 gives an empty text
    /// @return letters a to z, A to Z and digits, each a random number of 32 bits modulo 62: the first four characters
    ///         of the alphabet come more often than the others, by one in 69 million
    [[nodiscard]] static std::u16string generateRandomAlphaNumericStringWithLength(std::int64_t length);

    /// `encrypt_AES128_ECB_PKCS7:withKey:error:`
    ///
    /// AES-128-ECB with PKCS#7 padding: equal blocks give equal ciphertext.
    ///
    /// @param withKey  its first 16 bytes are used; a shorter key is filled up with zero bytes
    /// @return a whole number of 16-byte blocks, one at least
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>> encrypt_AES128_ECB_PKCS7(
        std::span<const std::uint8_t> data, std::span<const std::uint8_t> withKey,
        std::optional<NSError>* error = nullptr);

    /// `decrypt_AES128_ECB_PKCS7:withKey:error:`
    ///
    /// Undoes `encrypt_AES128_ECB_PKCS7:withKey:error:` with the same key.
    ///
    /// @return absent with status -4303 for a length that is no multiple of 16 or is 0, and with -4304 where the
    ///         padding is not what it must be
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>> decrypt_AES128_ECB_PKCS7(
        std::span<const std::uint8_t> data, std::span<const std::uint8_t> withKey,
        std::optional<NSError>* error = nullptr);

    /// `encrypt_AES128_CBC_PKCS7:withKey:initVector:shouldPrefixResultWithInitVector:error:`
    ///
    /// AES-128-CBC with PKCS#7 padding.
    ///
    /// @param withKey     as for ECB
    /// @param initVector  its first 16 bytes are used; fewer stop the process. Absent: 16 random bytes
    /// @param shouldPrefixResultWithInitVector  true: all bytes of the vector, given or random, come before the
    ///                    ciphertext. False: the ciphertext alone; a random vector is then lost, and with it the first
    ///                    block
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>> encrypt_AES128_CBC_PKCS7(
        std::span<const std::uint8_t> data, std::span<const std::uint8_t> withKey,
        std::optional<std::span<const std::uint8_t>> initVector, bool shouldPrefixResultWithInitVector,
        std::optional<NSError>* error = nullptr);

    /// `decrypt_AES128_CBC_PKCS7:withKey:initVector:error:`
    ///
    /// @param data        ciphertext, behind the vector when none is given
    /// @param withKey     as for ECB
    /// @param initVector  its first 16 bytes are used; fewer stop the process. Absent: the first 16 bytes of `data`
    /// @return absent as in ECB decryption. Without a vector, data of fewer than 16 bytes fails with the status of the
    ///         cipher, -4303
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>> decrypt_AES128_CBC_PKCS7(
        std::span<const std::uint8_t> data, std::span<const std::uint8_t> withKey,
        std::optional<std::span<const std::uint8_t>> initVector, std::optional<NSError>* error = nullptr);

    /// `zorPublicKey:`
    ///
    /// The application's own public key: `getPublicKeyFromPEMFileAtPath:usingPeerName:error:` of the file
    /// "phnios.pub64" in `HostEnvironment::libraryResourceDirectory`, under the peer name "ZOR public key".
    ///
    /// @return absent with "Cannot find input file" when there is no such file, and as in that operation
    [[nodiscard]] static std::optional<SecKey> zorPublicKey(std::optional<NSError>* error = nullptr);

    /// `getPublicKeyFromPEMFileAtPath:usingPeerName:error:`
    ///
    /// The RSA key of a file, which passes through the item store: it takes the place of every RSA key there under the
    /// same tag. Two loads under one name at once may each delete what the other has just added, so load keys from one
    /// thread.
    ///
    /// @param path  a file of UTF-8 text, the Base64 form (`zor_dataWithBase64EncodedString:`) of a
    ///              SubjectPublicKeyInfo (RFC 5280), without lines of armour
    /// @param usingPeerName  the tag of the item: of its UTF-8 form, as many bytes as the name has UTF-16 units
    /// @return absent with "Cannot read from PEM file" when the file cannot be read or is not UTF-8, with
    ///         "Problem adding public key to keychain" when the item store does not take it, and with
    ///         "Error retrieving public key reference from chain" when what it took is no key; absent **without an
    ///         error** when the text holds something else than the SubjectPublicKeyInfo of an RSA key
    [[nodiscard]] static std::optional<SecKey> getPublicKeyFromPEMFileAtPath(const std::filesystem::path& path,
                                                                             std::u16string_view usingPeerName,
                                                                             std::optional<NSError>* error = nullptr);

    /// `getPublicKeyFromBase64EncodedX509CertificateFileAtPath:error:`
    ///
    /// @param path  a file of UTF-8 text, the Base64 form (`zor_dataWithBase64EncodedString:`) of what
    ///              `getPublicKeyFromCertificateData:error:` takes, without lines of armour
    /// @return absent with "Cannot read from certificate file" when the file cannot be read or is not UTF-8, and as in
    ///         that operation
    [[nodiscard]] static std::optional<SecKey> getPublicKeyFromBase64EncodedX509CertificateFileAtPath(
        const std::filesystem::path& path, std::optional<NSError>* error = nullptr);

    /// `getPublicKeyFromCertificateData:error:`
    ///
    /// The key of a certificate, of whatever kind. The certificate's validity is not checked: one that has expired or
    /// that nobody vouches for gives its key, too.
    ///
    /// @param data  one X.509 certificate in DER (RFC 5280)
    /// @return absent with "Cannot create certificate" for other bytes, with "SecTrustCopyPublicKey fail" for a key of
    ///         an unknown kind or malformed, and with "SecTrustCreateWithCertificates fail. Error Code: %d" or
    ///         "SecTrustEvaluate fail. Error Code: %d" where the system lacks memory
    [[nodiscard]] static std::optional<SecKey> getPublicKeyFromCertificateData(std::span<const std::uint8_t> data,
                                                                               std::optional<NSError>* error = nullptr);

    /// `rsaEncrypt:withKey:error:`
    ///
    /// Encrypts one block with PKCS#1 v1.5 padding (RFC 8017, section 7.2). Works with keys of up to 1024 bits.
    ///
    /// @param data  at most the key's block size less 12 bytes: 116 for 1024 bits
    /// @return as many bytes as the key has; absent with "content(%ld) is too long, must be < %ld" (the data's length,
    ///         then the longest that is taken) or with "SecKeyEncrypt fail. Error Code: -50" for a longer key and one
    ///         that is not RSA
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>> rsaEncrypt(std::span<const std::uint8_t> data,
                                                                             const SecKey& withKey,
                                                                             std::optional<NSError>* error = nullptr);
};

}  // namespace ZORFoundation
