// SPDX-License-Identifier: Apache-2.0
#pragma once

// The rules of the item store: what is found, what a call gives back, which status it has. Stands on any ItemStorage.

#include <ZORPlatform/Security/ItemSealingInternal.h>
#include <ZORPlatform/Security/ItemStorageInternal.h>
#include <ZORPlatform/Security/SecItemDictionary.h>
#include <ZORPlatform/Security/SecItemStore.h>

#include <bitset>
#include <filesystem>
#include <memory>
#include <optional>

namespace ZORPlatform {

/// One open store. Used by one thread at a time. The four calls are those of SecItem.h.
class ItemStore {
public:
    /// Opens the store in `storage` with the key of `source`, which belongs to the storage from then on.
    ///
    /// @param path  what the source is told
    /// @return `errSecAuthFailed` for another key than the storage's; else the status of the source or the storage
    [[nodiscard]] static OSStatus open(std::unique_ptr<ItemStorage> storage, const SecItemKeySource& source,
                                       const std::filesystem::path& path, std::optional<ItemStore>& store);

    [[nodiscard]] OSStatus add(const SecItemDictionary& attributes, SecItemResult* result);
    [[nodiscard]] OSStatus copyMatching(const SecItemDictionary& query, SecItemResult* result);
    [[nodiscard]] OSStatus update(const SecItemDictionary& query, const SecItemDictionary& changes);
    [[nodiscard]] OSStatus remove(const SecItemDictionary& query);

    /// Fills in what is known of the items.
    [[nodiscard]] OSStatus examine(SecItemStoreReport& report);

    [[nodiscard]] ItemStorage& storage() noexcept { return *storage_; }

private:
    ItemStore(std::unique_ptr<ItemStorage> storage, ItemSealing sealing)
        : storage_(std::move(storage)), sealing_(std::move(sealing)) {}

    std::unique_ptr<ItemStorage> storage_;
    ItemSealing sealing_;
    /// By the hash of the identity: whether an item has been added here, or was to be, and so may well be there.
    std::bitset<std::size_t{1} << 14> met_;
};

}  // namespace ZORPlatform
