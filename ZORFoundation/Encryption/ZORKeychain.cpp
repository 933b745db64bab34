// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Encryption/ZORKeychain.h>

#include <ZORPlatform/Foundation/NSKeyedArchiver.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>
#include <ZORPlatform/Security/SecItem.h>

#include <mutex>

namespace ZORFoundation {
namespace {

using namespace ZORPlatform;

/// The bundle given to `setup`, which the first caller decides on.
class PrivateBundle {
public:
    static PrivateBundle& instance() {
        static PrivateBundle& instance = *new PrivateBundle;
        return instance;
    }

    void set(NSBundle bundle) {
        const std::scoped_lock lock(mutex_);
        if (!bundle_) bundle_ = std::move(bundle);
    }
    [[nodiscard]] std::u16string identifier() {
        const std::scoped_lock lock(mutex_);
        if (bundle_ && bundle_->bundleIdentifier()) return *bundle_->bundleIdentifier();
        preconditionFailure(
            "No bundle/bundleIdentifier. Configure bundle via setup method before using the private keychain");
    }

private:
    std::mutex mutex_;
    std::optional<NSBundle> bundle_;
};

/// Bytes of the library's own, wiped when they go.
class Secret {
public:
    explicit Secret(std::optional<ZORKeychain::Bytes> bytes) : bytes_(std::move(bytes)) {}
    ~Secret() {
        if (bytes_) wipe(bytes_->data(), bytes_->size());
    }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;

    explicit operator bool() const noexcept { return bytes_.has_value(); }
    [[nodiscard]] std::span<const std::uint8_t> bytes() const noexcept { return *bytes_; }

private:
    std::optional<ZORKeychain::Bytes> bytes_;
};

/// A key as UTF-8; absent when it has a lone surrogate.
std::optional<ZORKeychain::Bytes> utf8Bytes(std::u16string_view text) {
    if (wellFormedPrefix(text).size() != text.size()) return std::nullopt;
    ZORKeychain::Bytes bytes(3 * text.size());
    bytes.resize(utf8Prefix(text, {reinterpret_cast<char*>(bytes.data()), bytes.size()}).bytes);
    return bytes;
}

std::optional<NSNumber> numberIn(const std::optional<ArchivedValue>& object) {
    const NSNumber* number = object ? object->as<NSNumber>() : nullptr;
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

}  // namespace

void ZORKeychain::setup(NSBundle bundle) { PrivateBundle::instance().set(std::move(bundle)); }

ZORKeychain& ZORKeychain::private_() {
    static ZORKeychain& keychain = *new ZORKeychain(PrivateBundle::instance().identifier());
    return keychain;
}

ZORKeychain& ZORKeychain::standard() { return private_(); }

ZORKeychain& ZORKeychain::public_() {
    static ZORKeychain& keychain = *new ZORKeychain(u"ZorKeychainWrapper");
    return keychain;
}

void ZORKeychain::wipeKeychain() {
    for (const std::u16string_view itemClass :
         {kSecClassGenericPassword, kSecClassInternetPassword, kSecClassCertificate, kSecClassKey, kSecClassIdentity}) {
        static_cast<void>(SecItemDelete({{kSecClass, itemClass}}));
    }
}

ZORKeychain::ZORKeychain(std::u16string serviceName, std::optional<std::u16string> accessGroup)
    : serviceName_(std::move(serviceName)), accessGroup_(std::move(accessGroup)) {}

ZORKeychain::~ZORKeychain() = default;

SecItemDictionary ZORKeychain::setupKeychainQueryDictionary(std::u16string_view forKey,
                                                            Accessibility withAccessibility) const {
    SecItemDictionary query;
    query.set(kSecClass, kSecClassGenericPassword);
    query.set(kSecAttrService, serviceName_);
    if (withAccessibility) query.set(kSecAttrAccessible, keychainAttrValue(*withAccessibility));
    if (accessGroup_) query.set(kSecAttrAccessGroup, *accessGroup_);
    if (std::optional<Bytes> encoded = utf8Bytes(forKey)) {
        query.set(kSecAttrGeneric, *encoded);
        query.set(kSecAttrAccount, std::move(*encoded));
    }
    return query;
}

std::optional<ZORKeychain::Bytes> ZORKeychain::bytesOfItem(std::u16string_view returnKey, std::u16string_view forKey,
                                                           Accessibility withAccessibility) const {
    SecItemDictionary query = setupKeychainQueryDictionary(forKey, withAccessibility);
    query.set(kSecMatchLimit, kSecMatchLimitOne);
    query.set(returnKey, true);
    SecItemResult result;
    if (SecItemCopyMatching(query, &result) != errSecSuccess) return std::nullopt;
    auto* bytes = result.as<SecItemResult::Data>();
    return bytes != nullptr ? std::optional(std::move(*bytes)) : std::nullopt;
}

std::optional<ZORKeychain::Bytes> ZORKeychain::data(std::u16string_view forKey, Accessibility withAccessibility) const {
    return bytesOfItem(kSecReturnData, forKey, withAccessibility);
}

std::optional<ZORKeychain::Bytes> ZORKeychain::dataRef(std::u16string_view forKey,
                                                       Accessibility withAccessibility) const {
    return bytesOfItem(kSecReturnPersistentRef, forKey, withAccessibility);
}

bool ZORKeychain::hasValue(std::u16string_view forKey, Accessibility withAccessibility) const {
    return static_cast<bool>(Secret(data(forKey, withAccessibility)));
}

std::optional<ArchivedValue> ZORKeychain::object(std::u16string_view forKey, Accessibility withAccessibility) const {
    const Secret archive(data(forKey, withAccessibility));
    return archive ? NSKeyedUnarchiver::unarchiveObjectWithData(archive.bytes()) : std::nullopt;
}

std::optional<std::int64_t> ZORKeychain::integer(std::u16string_view forKey, Accessibility withAccessibility) const {
    const std::optional<NSNumber> number = numberIn(object(forKey, withAccessibility));
    return number ? std::optional(number->integerValue()) : std::nullopt;
}

std::optional<float> ZORKeychain::float_(std::u16string_view forKey, Accessibility withAccessibility) const {
    const std::optional<NSNumber> number = numberIn(object(forKey, withAccessibility));
    return number ? std::optional(number->floatValue()) : std::nullopt;
}

std::optional<double> ZORKeychain::double_(std::u16string_view forKey, Accessibility withAccessibility) const {
    const std::optional<NSNumber> number = numberIn(object(forKey, withAccessibility));
    return number ? std::optional(number->doubleValue()) : std::nullopt;
}

std::optional<bool> ZORKeychain::bool_(std::u16string_view forKey, Accessibility withAccessibility) const {
    const std::optional<NSNumber> number = numberIn(object(forKey, withAccessibility));
    return number ? std::optional(number->boolValue()) : std::nullopt;
}

std::optional<std::u16string> ZORKeychain::string(std::u16string_view forKey, Accessibility withAccessibility) const {
    const Secret text(data(forKey, withAccessibility));
    if (!text) return std::nullopt;
    return utf16IfWellFormed({reinterpret_cast<const char*>(text.bytes().data()), text.bytes().size()});
}

bool ZORKeychain::boolValue(std::u16string_view forKey, Accessibility withAccessibility) const {
    return bool_(forKey, withAccessibility).value_or(false);
}

std::int64_t ZORKeychain::integerValue(std::u16string_view forKey, Accessibility withAccessibility) const {
    return integer(forKey, withAccessibility).value_or(0);
}

std::u16string ZORKeychain::stringValue(std::u16string_view forKey, Accessibility withAccessibility) const {
    return string(forKey, withAccessibility).value_or(u"");
}

ZORKeychain::Accessibility ZORKeychain::accessibilityOfKey(std::u16string_view key) const {
    SecItemDictionary query = setupKeychainQueryDictionary(key, std::nullopt);
    query.set(kSecMatchLimit, kSecMatchLimitOne);
    query.set(kSecReturnAttributes, true);
    SecItemResult result;
    if (SecItemCopyMatching(query, &result) != errSecSuccess) return std::nullopt;
    const auto* attributes = result.as<SecItemDictionary>();
    const auto* value = attributes != nullptr ? attributes->find<std::u16string>(kSecAttrAccessible) : nullptr;
    return value != nullptr ? accessibilityForAttributeValue(*value) : std::nullopt;
}

bool ZORKeychain::setBool(bool value, std::u16string_view forKey, Accessibility withAccessibility) {
    return setArchive(NSNumber(value), forKey, withAccessibility);
}

bool ZORKeychain::setInteger(std::int64_t value, std::u16string_view forKey, Accessibility withAccessibility) {
    return setArchive(NSNumber(value), forKey, withAccessibility);
}

bool ZORKeychain::setFloat(float value, std::u16string_view forKey, Accessibility withAccessibility) {
    return setArchive(NSNumber(value), forKey, withAccessibility);
}

bool ZORKeychain::setDouble(double value, std::u16string_view forKey, Accessibility withAccessibility) {
    return setArchive(NSNumber(value), forKey, withAccessibility);
}

bool ZORKeychain::setString(std::u16string_view value, std::u16string_view forKey, Accessibility withAccessibility) {
    std::optional<std::string> encoded = utf8IfWellFormed(value);
    if (!encoded) return false;
    const bool isSet =
        setData({reinterpret_cast<const std::uint8_t*>(encoded->data()), encoded->size()}, forKey, withAccessibility);
    wipe(encoded->data(), encoded->size());
    return isSet;
}

bool ZORKeychain::setObject(const ArchivedValue& value, std::u16string_view forKey, Accessibility withAccessibility) {
    return setArchive(value, forKey, withAccessibility);
}

// Numbers come straight here: they are read as objects, but not written as such.
bool ZORKeychain::setArchive(const ArchivedValue& value, std::u16string_view forKey, Accessibility withAccessibility) {
    const Secret archive(NSKeyedArchiver::archivedDataWithRootObject(value));
    return archive && setData(archive.bytes(), forKey, withAccessibility);
}

bool ZORKeychain::setData(std::span<const std::uint8_t> value, std::u16string_view forKey,
                          Accessibility withAccessibility) {
    SecItemDictionary item = setupKeychainQueryDictionary(forKey, withAccessibility);
    item.set(kSecValueData, Bytes(value.begin(), value.end()));
    item.set(kSecAttrAccessible,
             keychainAttrValue(withAccessibility.value_or(KeychainItemAccessibility::whenUnlocked)));
    const OSStatus status = SecItemAdd(item);
    if (status == errSecDuplicateItem) return update(value, forKey, withAccessibility);
    return status == errSecSuccess;
}

// An existing item keeps its accessibility. One that is given has to be the item's, else there is nothing to update.
bool ZORKeychain::update(std::span<const std::uint8_t> value, std::u16string_view forKey,
                         Accessibility withAccessibility) const {
    const SecItemDictionary query = setupKeychainQueryDictionary(forKey, withAccessibility);
    return SecItemUpdate(query, {{kSecValueData, Bytes(value.begin(), value.end())}}) == errSecSuccess;
}

bool ZORKeychain::removeObject(std::u16string_view forKey, Accessibility withAccessibility) {
    return SecItemDelete(setupKeychainQueryDictionary(forKey, withAccessibility)) == errSecSuccess;
}

bool ZORKeychain::remove(std::u16string_view key, Accessibility withAccessibility) {
    return removeObject(key, withAccessibility);
}

bool ZORKeychain::removeAllKeys() {
    SecItemDictionary query{{kSecClass, kSecClassGenericPassword}, {kSecAttrService, serviceName_}};
    if (accessGroup_) query.set(kSecAttrAccessGroup, *accessGroup_);
    return SecItemDelete(query) == errSecSuccess;
}

}  // namespace ZORFoundation
