// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/ItemAttributesInternal.h>

#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Security/SecItem.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>

namespace ZORPlatform {
namespace {

constexpr AttributeRule rule(std::u16string_view name, AttributeKind kind) { return {fourLetterCode(name), kind}; }

constexpr auto kText = AttributeKind::text;
constexpr auto kBytes = AttributeKind::bytes;
constexpr auto kTextOrBytes = AttributeKind::textOrBytes;
constexpr auto kNumber = AttributeKind::number;
constexpr auto kDate = AttributeKind::date;

constexpr AttributeRule kAccessGroup = rule(kSecAttrAccessGroup, kText);
constexpr AttributeRule kSynchronizable = rule(kSecAttrSynchronizable, kNumber);

constexpr std::array kEveryClass{
    rule(kSecAttrAccessible, AttributeKind::accessibility),
    rule(kSecAttrCreationDate, kDate),
    rule(kSecAttrModificationDate, kDate),
    rule(kSecAttrLabel, kText),
};

// What queries usually give stands first, so that it makes a prefix of the identity.
constexpr std::array kGenericPasswordKey{
    rule(kSecAttrService, kTextOrBytes),
    rule(kSecAttrAccount, kTextOrBytes),
    kAccessGroup,
    kSynchronizable,
};
constexpr std::array kGenericPasswordOthers{
    rule(kSecAttrGeneric, kBytes),     rule(kSecAttrDescription, kText), rule(kSecAttrComment, kText),
    rule(kSecAttrCreator, kNumber),    rule(kSecAttrType, kNumber),      rule(kSecAttrIsInvisible, kNumber),
    rule(kSecAttrIsNegative, kNumber),
};

constexpr std::array kInternetPasswordKey{
    rule(kSecAttrServer, kTextOrBytes),
    rule(kSecAttrAccount, kTextOrBytes),
    rule(kSecAttrSecurityDomain, kTextOrBytes),
    rule(kSecAttrProtocol, kTextOrBytes),
    rule(kSecAttrAuthenticationType, kTextOrBytes),
    rule(kSecAttrPort, kNumber),
    rule(kSecAttrPath, kTextOrBytes),
    kAccessGroup,
    kSynchronizable,
};
constexpr std::array kInternetPasswordOthers{
    rule(kSecAttrDescription, kText), rule(kSecAttrComment, kText),       rule(kSecAttrCreator, kNumber),
    rule(kSecAttrType, kNumber),      rule(kSecAttrIsInvisible, kNumber), rule(kSecAttrIsNegative, kNumber),
};

constexpr std::array kCertificateKey{
    rule(kSecAttrCertificateType, kNumber),
    rule(kSecAttrIssuer, kBytes),
    rule(kSecAttrSerialNumber, kBytes),
    kAccessGroup,
    kSynchronizable,
};
constexpr std::array kCertificateOthers{
    rule(kSecAttrCertificateEncoding, kNumber),
    rule(kSecAttrSubject, kBytes),
    rule(kSecAttrSubjectKeyID, kBytes),
    rule(kSecAttrPublicKeyHash, kBytes),
};

constexpr std::array kKeyKey{
    rule(kSecAttrApplicationLabel, kBytes),
    rule(kSecAttrApplicationTag, kBytes),
    rule(kSecAttrKeyClass, kNumber),
    rule(kSecAttrKeyType, kNumber),
    rule(kSecAttrCreator, kNumber),
    rule(kSecAttrKeySizeInBits, kNumber),
    rule(kSecAttrEffectiveKeySize, kNumber),
    rule(kSecAttrStartDate, kDate),
    rule(kSecAttrEndDate, kDate),
    kAccessGroup,
    kSynchronizable,
};
constexpr std::array kKeyOthers{
    rule(kSecAttrIsPermanent, kNumber), rule(kSecAttrCanEncrypt, kNumber), rule(kSecAttrCanDecrypt, kNumber),
    rule(kSecAttrCanDerive, kNumber),   rule(kSecAttrCanSign, kNumber),    rule(kSecAttrCanVerify, kNumber),
    rule(kSecAttrCanWrap, kNumber),     rule(kSecAttrCanUnwrap, kNumber),
};

constexpr std::array kClasses{
    ItemClass{kSecClassGenericPassword, kSecAttrAccessibleWhenUnlocked, kGenericPasswordKey, kGenericPasswordOthers},
    ItemClass{kSecClassInternetPassword, kSecAttrAccessibleWhenUnlocked, kInternetPasswordKey, kInternetPasswordOthers},
    ItemClass{kSecClassCertificate, kSecAttrAccessibleAlways, kCertificateKey, kCertificateOthers},
    ItemClass{kSecClassKey, kSecAttrAccessibleWhenUnlocked, kKeyKey, kKeyOthers},
    ItemClass{kSecClassIdentity, kSecAttrAccessibleWhenUnlocked, kCertificateKey, kCertificateOthers},
};

constexpr std::array kAccessibilities{
    kSecAttrAccessibleWhenUnlocked,
    kSecAttrAccessibleWhenUnlockedThisDeviceOnly,
    kSecAttrAccessibleAfterFirstUnlock,
    kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly,
    kSecAttrAccessibleAlways,
    kSecAttrAccessibleAlwaysThisDeviceOnly,
    kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly,
};

constexpr std::size_t kCodeBytes = 4;
constexpr std::size_t kLengthBytes = 4;
constexpr std::size_t kNumberBytes = 8;
constexpr std::size_t kHeadBytes = kCodeBytes + 1 + kLengthBytes;
// Room made at once, for what items have as a rule.
constexpr std::size_t kUsualAttributes = 8;
constexpr std::size_t kUsualIdentity = 128;
// Far above what anybody names an item with, and below what four bytes count.
constexpr std::size_t kLongestPayload = std::size_t{1} << 30;

bool isNumeric(AttributeKind kind) noexcept { return kind == kNumber || kind == kDate; }

std::string bigEndian(std::uint64_t value) {
    std::string bytes;
    appendBigEndian(bytes, value, kNumberBytes);
    return bytes;
}

std::string numberPayload(std::int64_t number) { return bigEndian(static_cast<std::uint64_t>(number)); }

OSStatus setText(ItemAttribute& attribute, AttributeForm form, std::u16string_view text) {
    std::optional<std::string> bytes = utf8IfWellFormed(text);
    if (!bytes) return errSecParam;
    attribute.form = form;
    attribute.payload = std::move(*bytes);
    return errSecSuccess;
}

OSStatus setDigits(ItemAttribute& attribute, std::u16string_view text) {
    if (const OSStatus status = setText(attribute, AttributeForm::digits, text); status != errSecSuccess) return status;
    std::int64_t number = 0;
    const char* end = attribute.payload.data() + attribute.payload.size();
    const auto [stop, error] = std::from_chars(attribute.payload.data(), end, number);
    if (error != std::errc() || stop != end) return errSecParam;
    attribute.payload = numberPayload(number);
    return errSecSuccess;
}

OSStatus encodeText(const AttributeRule& rule, const std::u16string& text, ItemAttribute& attribute) {
    switch (rule.kind) {
        case AttributeKind::accessibility:
            if (std::find(kAccessibilities.begin(), kAccessibilities.end(), text) == kAccessibilities.end()) break;
            [[fallthrough]];
        case AttributeKind::text:
        case AttributeKind::textOrBytes:
            return setText(attribute, AttributeForm::text, text);
        case AttributeKind::bytes:
            return setText(attribute, AttributeForm::bytes, text);
        case AttributeKind::number:
            return setDigits(attribute, text);
        case AttributeKind::date:
            break;
    }
    return errSecParam;
}

OSStatus encodeBytes(const AttributeRule& rule, const SecItemValue::Data& bytes, ItemAttribute& attribute) {
    if (rule.kind != AttributeKind::bytes && rule.kind != AttributeKind::textOrBytes) return errSecParam;
    attribute.form = AttributeForm::bytes;
    // Not by iterators of another type: the string would make a second one first.
    attribute.payload.assign(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return errSecSuccess;
}

OSStatus encodeNumber(const AttributeRule& rule, AttributeForm form, std::int64_t number, ItemAttribute& attribute) {
    if (rule.kind != AttributeKind::number) return errSecParam;
    attribute.form = form;
    attribute.payload = numberPayload(number);
    return errSecSuccess;
}

OSStatus encodeDate(const AttributeRule& rule, NSDate date, ItemAttribute& attribute) {
    const double seconds = date.timeIntervalSinceReferenceDate();
    if (rule.kind != AttributeKind::date || std::isnan(seconds)) return errSecParam;
    attribute.form = AttributeForm::date;
    // Both zeros are one moment.
    attribute.payload = bigEndian(std::bit_cast<std::uint64_t>(seconds == 0 ? 0.0 : seconds));
    return errSecSuccess;
}

const std::string& emptyPayload(AttributeKind kind) {
    static const std::string none;
    static const std::string zero(kNumberBytes, '\0');
    return isNumeric(kind) ? zero : none;
}

void appendKeyPart(std::string& identity, std::string_view payload) {
    appendBigEndian(identity, payload.size(), kLengthBytes);
    identity.append(payload);
}

std::string beginningOfClass(const ItemClass& itemClass) {
    std::string identity;
    identity.reserve(kUsualIdentity);
    appendBigEndian(identity, fourLetterCode(itemClass.name), kCodeBytes);
    return identity;
}

}  // namespace

const AttributeRule* ItemClass::find(std::uint32_t attribute) const noexcept {
    for (const std::span<const AttributeRule> rules : {key, std::span<const AttributeRule>(kEveryClass), others}) {
        for (const AttributeRule& rule : rules) {
            if (rule.code == attribute) return &rule;
        }
    }
    return nullptr;
}

bool ItemClass::isKey(std::uint32_t attribute) const noexcept {
    return std::any_of(key.begin(), key.end(), [=](const AttributeRule& rule) { return rule.code == attribute; });
}

std::span<const ItemClass> itemClasses() noexcept { return kClasses; }

const ItemClass* findItemClass(std::uint32_t code) noexcept {
    const auto found = std::find_if(kClasses.begin(), kClasses.end(),
                                    [code](const ItemClass& known) { return fourLetterCode(known.name) == code; });
    return found != kClasses.end() ? found : nullptr;
}

OSStatus encodeAttribute(const AttributeRule& rule, const SecItemValue& value, ItemAttribute& attribute) {
    attribute.code = rule.code;
    OSStatus status = errSecParam;
    if (const auto* text = value.as<std::u16string>()) {
        status = encodeText(rule, *text, attribute);
    } else if (const auto* bytes = value.as<SecItemValue::Data>()) {
        status = encodeBytes(rule, *bytes, attribute);
    } else if (const auto* integer = value.as<std::int64_t>()) {
        status = encodeNumber(rule, AttributeForm::integer, *integer, attribute);
    } else if (const auto* boolean = value.as<bool>()) {
        status = encodeNumber(rule, AttributeForm::boolean, *boolean ? 1 : 0, attribute);
    } else if (const auto* date = value.as<NSDate>()) {
        status = encodeDate(rule, *date, attribute);
    }
    if (status == errSecSuccess && attribute.payload.size() > kLongestPayload) return errSecParam;
    return status;
}

std::optional<SecItemValue> decodeAttribute(const ItemAttributeView& attribute) {
    const std::string_view payload = attribute.payload;
    const bool isNumber = payload.size() == kNumberBytes;
    switch (attribute.form) {
        case AttributeForm::text:
            if (std::optional<std::u16string> text = utf16IfWellFormed(payload)) return SecItemValue(std::move(*text));
            break;
        case AttributeForm::bytes:
            return SecItemValue(SecItemValue::Data(payload.begin(), payload.end()));
        case AttributeForm::integer:
            if (isNumber) return SecItemValue(static_cast<std::int64_t>(readBigEndian(payload)));
            break;
        case AttributeForm::boolean:
            if (isNumber) return SecItemValue(readBigEndian(payload) != 0);
            break;
        case AttributeForm::digits:
            if (isNumber) {
                return SecItemValue(utf16(std::to_string(static_cast<std::int64_t>(readBigEndian(payload)))));
            }
            break;
        case AttributeForm::date:
            if (isNumber) {
                return SecItemValue(NSDate::sinceReferenceDate(std::bit_cast<double>(readBigEndian(payload))));
            }
            break;
    }
    return std::nullopt;
}

void ItemAttributes::set(ItemAttribute attribute) {
    for (ItemAttribute& known : attributes_) {
        if (known.code == attribute.code) {
            known = std::move(attribute);
            return;
        }
    }
    if (attributes_.capacity() == 0) attributes_.reserve(kUsualAttributes);
    attributes_.push_back(std::move(attribute));
}

const ItemAttribute* ItemAttributes::find(std::uint32_t code) const noexcept {
    for (const ItemAttribute& attribute : attributes_) {
        if (attribute.code == code) return &attribute;
    }
    return nullptr;
}

std::string ItemAttributes::encoded() const {
    std::string bytes;
    std::size_t size = 0;
    for (const ItemAttribute& attribute : attributes_) size += kHeadBytes + attribute.payload.size();
    bytes.reserve(size);
    for (const ItemAttribute& attribute : attributes_) {
        appendBigEndian(bytes, attribute.code, kCodeBytes);
        bytes.push_back(static_cast<char>(attribute.form));
        appendBigEndian(bytes, attribute.payload.size(), kLengthBytes);
        bytes.append(attribute.payload);
    }
    return bytes;
}

std::optional<ItemAttributes> ItemAttributes::decoded(std::string_view bytes) {
    ItemAttributes attributes;
    AttributeReader reader(bytes);
    for (ItemAttributeView view; reader.next(view);) {
        attributes.attributes_.push_back({view.code, view.form, std::string(view.payload)});
    }
    if (reader.isDamaged()) return std::nullopt;
    return attributes;
}

bool AttributeReader::next(ItemAttributeView& attribute) noexcept {
    if (rest_.size() < kHeadBytes) return false;
    const std::size_t size = readBigEndian(rest_.substr(kCodeBytes + 1, kLengthBytes));
    if (size > rest_.size() - kHeadBytes) return false;
    attribute.code = static_cast<std::uint32_t>(readBigEndian(rest_.substr(0, kCodeBytes)));
    attribute.form = static_cast<AttributeForm>(rest_[kCodeBytes]);
    attribute.payload = rest_.substr(kHeadBytes, size);
    rest_.remove_prefix(kHeadBytes + size);
    return true;
}

std::string identityOf(const ItemClass& itemClass, const ItemAttributes& attributes) {
    std::string identity = beginningOfClass(itemClass);
    for (const AttributeRule& rule : itemClass.key) {
        const ItemAttribute* attribute = attributes.find(rule.code);
        appendKeyPart(identity, attribute != nullptr ? attribute->payload : emptyPayload(rule.kind));
    }
    return identity;
}

std::string identityPrefix(const ItemClass& itemClass, const ItemAttributes& attributes,
                           std::size_t& keyAttributesCovered) {
    std::string identity = beginningOfClass(itemClass);
    keyAttributesCovered = 0;
    for (const AttributeRule& rule : itemClass.key) {
        const ItemAttribute* attribute = attributes.find(rule.code);
        if (attribute == nullptr) break;
        appendKeyPart(identity, attribute->payload);
        ++keyAttributesCovered;
    }
    return identity;
}

std::uint32_t classCodeOf(std::string_view identity) noexcept {
    return identity.size() < kCodeBytes ? 0 : static_cast<std::uint32_t>(readBigEndian(identity.substr(0, kCodeBytes)));
}

void appendBigEndian(std::string& bytes, std::uint64_t value, std::size_t size) {
    std::array<char, kNumberBytes> digits{};
    for (std::size_t i = size; i-- != 0; value >>= 8) digits[i] = static_cast<char>(value & 0xFF);
    bytes.append(digits.data(), size);
}

std::uint64_t readBigEndian(std::string_view bytes) noexcept {
    std::uint64_t value = 0;
    for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

}  // namespace ZORPlatform
