// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/PlistCore/ZORPlistController.h>

#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSBundle.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSFileManager.h>
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <utility>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;
using ZORPlatform::NSFileManager;
using ZORPlatform::NSPropertyListFormat;
using ZORPlatform::NSPropertyListSerialization;

constexpr const char* kLegacySettingsName = "Settings.plist";
constexpr std::size_t kCopiesKeptAside = 3;

void wipe(std::optional<Bytes>& bytes) noexcept {
    if (bytes) ZORPlatform::wipe(bytes->data(), bytes->size());
}

// The directory is asked for before the name. The path is added to in place, for a copy takes as many pieces of memory
// as the path has parts.
std::filesystem::path settingsPath(const ZORPlistController& controller) {
    std::filesystem::path path = controller.sandboxDir();
    path /= controller.plistFilename();
    return path;
}

/// The dictionary of settings as a list, lent and not copied: settings may be large.
class LentDictionary {
public:
    explicit LentDictionary(PropertyListValue::Dictionary& owner) : owner_(owner), list_(std::move(owner)) {}
    ~LentDictionary() { owner_ = std::move(*list_.as<PropertyListValue::Dictionary>()); }
    LentDictionary(const LentDictionary&) = delete;
    LentDictionary& operator=(const LentDictionary&) = delete;

    [[nodiscard]] const PropertyListValue& list() const noexcept { return list_; }

private:
    PropertyListValue::Dictionary& owner_;
    PropertyListValue list_;
};

// Throws for absent data, as the serialisation does.
std::optional<PropertyListValue> parse(std::optional<Bytes> data) {
    std::optional<PropertyListValue> list = NSPropertyListSerialization::propertyListWithData(data);
    wipe(data);
    return list;
}

}  // namespace

ZORPlistController::ZORPlistController() = default;

ZORPlistController::~ZORPlistController() {
    ZORPlatform::wipe(encryptionKey.data(), encryptionKey.size() * sizeof(char16_t));
}

ZORPlistController& ZORPlistController::shared() {
    static ZORPlistController& controller = *new ZORPlistController;
    return controller;
}

std::filesystem::path ZORPlistController::sandboxDir() const {
    return ZORPlatform::HostEnvironment::documentsDirectory();
}

std::filesystem::path ZORPlistController::plistFilename() const {
    throw ZORPlatform::NSException(u"NSInvalidArgumentException",
                                   u"plistFilename: a class derived from ZORPlistController names the file");
}

std::filesystem::path ZORPlistController::dictPath() const { return settingsPath(*this); }

std::filesystem::path ZORPlistController::legacySettingsPlistPath() const { return sandboxDir() / kLegacySettingsName; }

bool ZORPlistController::exists() const { return NSFileManager::fileExistsAtPath(dictPath()); }

bool ZORPlistController::legacySettingsPlistFileExists() const {
    return NSFileManager::fileExistsAtPath(legacySettingsPlistPath());
}

bool ZORPlistController::removeLegacySettingsPlistFile() const {
    return NSFileManager::removeItemAtPath(legacySettingsPlistPath());
}

void ZORPlistController::initWithEncryption(bool encrypted, std::u16string_view key) {
    isEncrypted = encrypted;
    encryptionKey = key;
    if (!NSFileManager::fileExistsAtPath(dictPath())) installNewSettingsFile();

    std::optional<PropertyListValue> list;
    try {
        list = readList();
    } catch (const ZORPlatform::NSException&) {
        NSFileManager::keepAside(settingsPath(*this), ZORPlatform::HostEnvironment::stateDirectory(), kCopiesKeptAside);
        removeSettingsFile();
        installNewSettingsFile();
        list = readList();
    }
    auto* loaded = list ? list->as<PropertyListValue::Dictionary>() : nullptr;
    dictionary = loaded != nullptr ? std::move(*loaded) : PropertyListValue::Dictionary{};
}

// With the current decryption, then, where that gives no list, with the legacy one.
std::optional<PropertyListValue> ZORPlistController::readList() {
    std::optional<PropertyListValue> list = parse(getSettingsDataEncrypted(isEncrypted, false, encryptionKey));
    if (!list && isEncrypted) list = parse(getSettingsDataEncrypted(true, true, encryptionKey));
    return list;
}

void ZORPlistController::installNewSettingsFile() {
    dictionary.reset();
    const std::filesystem::path resource = ZORPlatform::NSBundle::mainBundle().resourceDirectory() / plistFilename();
    if (const std::optional<Bytes> data = NSFileManager::contentsAtPath(resource)) {
        std::optional<PropertyListValue> list = NSPropertyListSerialization::propertyListWithData(data);
        if (auto* defaults = list ? list->as<PropertyListValue::Dictionary>() : nullptr)
            dictionary = std::move(*defaults);
    }
    persist();
}

std::optional<Bytes> ZORPlistController::getSettingsDataEncrypted(bool encrypted, bool useLegacyDecryption,
                                                                  std::u16string_view key) {
    std::optional<Bytes> bytes = NSFileManager::contentsAtPath(settingsPath(*this));
    if (!bytes || !encrypted) return bytes;
    return useLegacyDecryption ? ZORAESCrypt::zor_legacyAES256DecryptWithKey(*bytes, key)
                               : ZORAESCrypt::zor_AES256DecryptWithKey(*bytes, key);
}

void ZORPlistController::removeSettingsFile() {
    static_cast<void>(NSFileManager::removeItemAtPath(settingsPath(*this)));
}

bool ZORPlistController::persist() {
    std::optional<Bytes> data;
    if (dictionary) {
        const LentDictionary lent(*dictionary);
        data = NSPropertyListSerialization::dataWithPropertyList(lent.list(), NSPropertyListFormat::xml_v1_0);
    }
    if (data && isEncrypted) {
        std::optional<Bytes> encrypted = ZORAESCrypt::zor_AES256EncryptWithKey(*data, encryptionKey);
        wipe(data);
        data = std::move(encrypted);
    }
    // The path is asked for in any case: a class without a file name is a mistake even when there is nothing to write.
    const std::filesystem::path path = dictPath();
    return data && NSFileManager::writeAtomically(path, *data);
}

}  // namespace ZORFoundation
