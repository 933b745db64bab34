// SPDX-License-Identifier: Apache-2.0
#pragma once

// Application settings in a property-list file of the Documents directory, encrypted on demand. The application derives
// a class that names the file:
//
//     class AppSettings : public ZORPlistController {
//     public:
//         std::filesystem::path plistFilename() const override { return "AppSettings.plist"; }
//     };
//
//     auto settings = ZORPlistController::withEncryption<AppSettings>(true, key);
//     settings->dictionary->insert_or_assign(u"language", u"nl");
//     bool saved = settings->persist();

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/PropertyListValue.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZORFoundation {

using ZORPlatform::PropertyListValue;

/// One dictionary of settings and its file. Operations are called through the object's own class, so what a derived
/// class overrides counts everywhere.
///
/// One object belongs to one thread at a time. Only `shared()` may be called from any.
class ZOR_EXPORT ZORPlistController {
public:
    /// An object that has loaded nothing: no dictionary, no encryption, no key.
    ZORPlistController();
    /// Wipes the key.
    virtual ~ZORPlistController();
    ZORPlistController(const ZORPlistController&) = delete;
    ZORPlistController& operator=(const ZORPlistController&) = delete;

    /// `shared`: one object of the base class for the whole process, as the constructor leaves it. It has no file name,
    /// so `persist()` on it throws.
    [[nodiscard]] static ZORPlistController& shared();

    /// `initWithEncryption:encryptionKey:` of a new `Controller`.
    template <class Controller>
    [[nodiscard]] static std::unique_ptr<Controller> withEncryption(bool isEncrypted,
                                                                    std::u16string_view encryptionKey) {
        auto controller = std::make_unique<Controller>();
        controller->initWithEncryption(isEncrypted, encryptionKey);
        return controller;
    }

    // Asked of a class; they use no state, so a default-constructed object answers for it: AppSettings().exists().

    /// `sandboxDir`: the user's Documents directory, absolute (`HostEnvironment::documentsDirectory`).
    [[nodiscard]] virtual std::filesystem::path sandboxDir() const;
    /// `plistFilename`: the file's name, given by the derived class.
    /// @throws NSException named "NSInvalidArgumentException" in the base class
    [[nodiscard]] virtual std::filesystem::path plistFilename() const;
    /// `dictPath`: `sandboxDir` and `plistFilename`. Where settings are looked for and written to.
    [[nodiscard]] virtual std::filesystem::path dictPath() const;
    /// `legacySettingsPlistPath`: "Settings.plist" in `sandboxDir`. This class never reads it; the application does.
    [[nodiscard]] virtual std::filesystem::path legacySettingsPlistPath() const;
    /// `exists`: whether there is a file at `dictPath`.
    [[nodiscard]] virtual bool exists() const;
    /// `legacySettingsPlistFileExists`: whether there is a file at `legacySettingsPlistPath`.
    [[nodiscard]] virtual bool legacySettingsPlistFileExists() const;
    /// `removeLegacySettingsPlistFile`: deletes that file. @return whether it is gone; false when there was none
    [[nodiscard]] virtual bool removeLegacySettingsPlistFile() const;

    /// `initWithEncryption:encryptionKey:`
    ///
    /// Takes the arguments over and loads the file, installing the defaults first where there is no file at `dictPath`.
    /// An encrypted file that gives no list is tried with the legacy decryption, too, and is rewritten in the current
    /// one by the next `persist`. A file that cannot be read or decrypted at all is copied into the state directory of
    /// `HostEnvironment` (mode 0600, the newest three are kept; moved there when it cannot be copied), deleted, and the
    /// defaults are installed in its place.
    ///
    /// Afterwards there is a dictionary: empty where the file holds another kind of list or none.
    ///
    /// @param encryptionKey  text key of the file, see ZORAESCrypt
    /// @throws NSException named "NSInvalidArgumentException" when after reinstalling the defaults there is still no
    ///         data, as when the application has no default file
    virtual void initWithEncryption(bool isEncrypted, std::u16string_view encryptionKey);

    /// `installNewSettingsFile`: takes the main bundle's resource file of the name `plistFilename` for the dictionary,
    /// and persists it. Without such a file there is no dictionary afterwards, and nothing is written.
    virtual void installNewSettingsFile();

    /// `getSettingsDataEncrypted:useLegacyDecryption:encryptionKey:`
    ///
    /// The content of `plistFilename` in `sandboxDir`, which a derived class that changes only `dictPath` thereby still
    /// reads from its old place.
    ///
    /// @param useLegacyDecryption  decrypt as earlier releases encrypted; no matter when not encrypted
    /// @return the bytes, decrypted when `encrypted`; `std::nullopt` when the file or the decryption gives none
    [[nodiscard]] virtual std::optional<std::vector<std::uint8_t>> getSettingsDataEncrypted(
        bool encrypted, bool useLegacyDecryption, std::u16string_view encryptionKey);

    /// `removeSettingsFile`: deletes `plistFilename` in `sandboxDir`. Failures are ignored.
    virtual void removeSettingsFile();

    /// `persist`
    ///
    /// Writes the dictionary as an XML property list, encrypted when `isEncrypted`, to `dictPath`: the old file or the
    /// new one is there at every moment, and the new one survives a loss of power once true is returned.
    ///
    /// @return whether the file was written; false without a dictionary and for one that XML cannot hold
    virtual bool persist();

    /// `isEncrypted`: the file on disk is, or is to be, encrypted.
    bool isEncrypted = false;
    /// `dictionary`: the settings, to be read and changed freely; absent before loading.
    std::optional<PropertyListValue::Dictionary> dictionary;
    /// `encryptionKey`
    std::u16string encryptionKey;

private:
    [[nodiscard]] std::optional<PropertyListValue> readList();
};

}  // namespace ZORFoundation
