// SPDX-License-Identifier: Apache-2.0
#pragma once

// Where the item store gets the key from under which it seals values.
//
//     SecItemStore::setKeySource(std::make_shared<SecItemSystemdCredential>("item-store-key"));

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Security/SecBase.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace ZORPlatform {

/// Gives 32 bytes for a store. The same store needs the same bytes for as long as it lives: another key is refused.
///
/// Asked whenever a store is opened, by one thread at a time; it must not use the item store itself.
class ZOR_EXPORT SecItemKeySource {
public:
    static constexpr std::size_t kKeyBytes = 32;
    using Key = std::span<std::uint8_t, kKeyBytes>;

    SecItemKeySource() = default;
    virtual ~SecItemKeySource();
    SecItemKeySource(const SecItemKeySource&) = delete;
    SecItemKeySource& operator=(const SecItemKeySource&) = delete;

    /// What people call the source of this store's key, as "key file …"; never anything of the key.
    [[nodiscard]] virtual std::string name(const std::filesystem::path& store) const = 0;

    /// The file that holds this store's key, where the source is one that others could read.
    [[nodiscard]] virtual std::optional<std::filesystem::path> file(const std::filesystem::path& store) const;

    /// Writes the key of the store at `store` into `key`, which the caller wipes.
    ///
    /// @param isNew  nothing has been sealed in the store yet; a source that makes keys makes one only then
    /// @return `errSecSuccess`; `errSecNotAvailable` when there is no key to be had; `errSecInteractionNotAllowed` when
    ///         there will be one once somebody has unlocked it; `errSecIO` when a new one could not be kept
    [[nodiscard]] virtual OSStatus copyKey(const std::filesystem::path& store, bool isNew, Key key) const = 0;
};

/// A file that holds the 32 bytes and nothing else. Belongs to the process's user or to root, and only its owner can
/// write to it, else it is refused. What a new store finds is used; what it does not find is made, with mode 0600,
/// whole or not at all.
class ZOR_EXPORT SecItemKeyFile : public SecItemKeySource {
public:
    /// @param path  absent: beside the store, with ".key" for its extension
    explicit SecItemKeyFile(std::optional<std::filesystem::path> path = std::nullopt);
    ~SecItemKeyFile() override;

    [[nodiscard]] std::string name(const std::filesystem::path& store) const override;
    [[nodiscard]] std::optional<std::filesystem::path> file(const std::filesystem::path& store) const override;
    [[nodiscard]] OSStatus copyKey(const std::filesystem::path& store, bool isNew, Key key) const override;

private:
    std::optional<std::filesystem::path> path_;
};

/// A key that the application has from elsewhere. Wiped when the source goes.
class ZOR_EXPORT SecItemSuppliedKey : public SecItemKeySource {
public:
    explicit SecItemSuppliedKey(std::span<const std::uint8_t, kKeyBytes> key);
    ~SecItemSuppliedKey() override;

    [[nodiscard]] std::string name(const std::filesystem::path& store) const override;
    [[nodiscard]] OSStatus copyKey(const std::filesystem::path& store, bool isNew, Key key) const override;

private:
    std::array<std::uint8_t, kKeyBytes> key_;
};

/// A key of type "user" in the keyrings of the process, of its session or of its user (keyrings(7)). Somebody else puts
/// it there, at login or when a service starts: `errSecInteractionNotAllowed` until then. Gone at reboot, so the key
/// needs a home elsewhere.
class ZOR_EXPORT SecItemKernelKeyring : public SecItemKeySource {
public:
    explicit SecItemKernelKeyring(std::string description);
    ~SecItemKernelKeyring() override;

    [[nodiscard]] std::string name(const std::filesystem::path& store) const override;
    [[nodiscard]] OSStatus copyKey(const std::filesystem::path& store, bool isNew, Key key) const override;

private:
    std::string description_;
};

/// A credential that systemd hands to a service: a file of that name in `$CREDENTIALS_DIRECTORY`, which holds the 32
/// bytes and nothing else.
class ZOR_EXPORT SecItemSystemdCredential : public SecItemKeySource {
public:
    explicit SecItemSystemdCredential(std::string credential);
    ~SecItemSystemdCredential() override;

    [[nodiscard]] std::string name(const std::filesystem::path& store) const override;
    [[nodiscard]] OSStatus copyKey(const std::filesystem::path& store, bool isNew, Key key) const override;

private:
    std::string credential_;
};

}  // namespace ZORPlatform
