// SPDX-License-Identifier: Apache-2.0
#pragma once

// How the item store of the process is set up. An application that is content with the defaults needs nothing of it.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Security/SecItemKeySource.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ZORPlatform {

/// What `SecItemStore::examine` has found out about a store.
struct SecItemStoreReport {
    std::filesystem::path path;
    bool exists = false;                           ///< One that is not there is not made, and has nothing below.
    std::string keySource;                         ///< What the source of the key is called.
    std::optional<std::filesystem::path> keyFile;  ///< Where the source is a key file.
    OSStatus status = errSecSuccess;               ///< Of opening it; if that fails there is nothing below.
    int schemaVersion = 0;
    std::int64_t items = 0;
    bool isSound = true;  ///< Whether the database holds together.
    /// Items that do not open, or stand where they do not belong: the letters of the class, "-", the number of the row,
    /// as in a persistent reference; "row-" and the number where the class is unreadable.
    std::vector<std::string> damagedItems;
};

/// The item store behind SecItem.h. It opens the file of `HostEnvironment::itemStorePath` when it is first used, and
/// another whenever that path leads elsewhere. Around a fork it is closed, and each side opens its own when it needs
/// it. Thread-safe.
class ZOR_EXPORT SecItemStore {
public:
    SecItemStore() = delete;

    /// Where the key comes from when a store is opened next; a store that is open is closed. Absent: `SecItemKeyFile`
    /// beside the store.
    static void setKeySource(std::shared_ptr<const SecItemKeySource> source);

    /// Opens the store if there is one, and checks every item and the database itself. Changes nothing, except that an
    /// older schema is brought up to date. Takes time in proportion to the store.
    [[nodiscard]] static SecItemStoreReport examine();

    /// Closes the file and wipes the key. The next call on an item opens it again.
    static void close();
};

}  // namespace ZORPlatform
