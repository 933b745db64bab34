// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/ItemReferencesInternal.h>

#include <ZORPlatform/CommonCrypto/CommonDigest.h>
#include <ZORPlatform/CommonCrypto/ErrorQueueMarkInternal.h>
#include <ZORPlatform/Security/MaterialInternal.h>
#include <ZORPlatform/Security/SecItem.h>

#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <array>

namespace ZORPlatform {
namespace {

using Data = SecItemValue::Data;

// In DER (RFC 5280, section 4.1.2.4).
Data encodedName(const X509_NAME* name) {
    const std::uint8_t* bytes = nullptr;
    std::size_t size = 0;
    if (X509_NAME_get0_der(name, &bytes, &size) != 1) return {};
    return {bytes, bytes + size};
}

Data contentOf(const ASN1_STRING* text) {
    const std::uint8_t* bytes = ASN1_STRING_get0_data(text);
    return {bytes, bytes + ASN1_STRING_length(text)};
}

}  // namespace

std::optional<ReferencedItem> itemOfReference(const SecItemValue& reference) {
    if (const auto* certificate = reference.as<SecCertificate>()) {
        return ReferencedItem{kSecClassCertificate, SecCertificateCopyData(*certificate), {}};
    }
    const auto* key = reference.as<SecKey>();
    std::optional<Data> value = key != nullptr ? SecKeyCopyExternalRepresentation(*key) : std::nullopt;
    if (!value) return std::nullopt;
    ReferencedItem item{kSecClassKey, std::move(*value), {{kSecAttrKeyClass, kSecAttrKeyClassPublic}}};
    if (SecKeyCreateWithData(item.value)) {
        item.attributes.set(kSecAttrKeyType, kSecAttrKeyTypeRSA);
        item.attributes.set(kSecAttrKeySizeInBits, static_cast<std::int64_t>(8 * SecKeyGetBlockSize(*key)));
    }
    return item;
}

std::optional<SecItemValue> referenceOfItem(std::u16string_view itemClass, std::span<const std::uint8_t> value) {
    if (itemClass == kSecClassCertificate) {
        if (std::optional<SecCertificate> certificate = SecCertificateCreateWithData(value)) return *certificate;
    } else if (itemClass == kSecClassKey) {
        if (std::optional<SecKey> key = SecKeyCreateWithData(value)) return *key;
    }
    return std::nullopt;
}

SecItemDictionary attributesOfCertificate(std::span<const std::uint8_t> value) {
    SecItemDictionary attributes;
    const std::optional<SecCertificate> handle = SecCertificateCreateWithData(value);
    if (!handle) return attributes;
    const ErrorQueueMark mark;
    X509* certificate = handle->material().certificate.get();
    attributes.set(kSecAttrCertificateType, X509_get_version(certificate) + 1);
    attributes.set(kSecAttrSubject, encodedName(X509_get_subject_name(certificate)));
    attributes.set(kSecAttrIssuer, encodedName(X509_get_issuer_name(certificate)));
    attributes.set(kSecAttrSerialNumber, contentOf(X509_get0_serialNumber(certificate)));
    if (const ASN1_OCTET_STRING* identifier = X509_get0_subject_key_id(certificate)) {
        attributes.set(kSecAttrSubjectKeyID, contentOf(identifier));
    }
    if (const ASN1_BIT_STRING* key = X509_get0_pubkey_bitstr(certificate)) {
        const Data bytes = contentOf(key);
        std::array<std::uint8_t, CC_SHA1_DIGEST_LENGTH> digest{};
        CC_SHA1(bytes, digest);
        attributes.set(kSecAttrPublicKeyHash, Data(digest.begin(), digest.end()));
    }
    return attributes;
}

}  // namespace ZORPlatform
