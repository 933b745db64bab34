// SPDX-License-Identifier: Apache-2.0
#pragma once

// Where the rows of the item store lie. It knows bytes only: what they mean is ItemStore's affair.

#include <ZORPlatform/Security/SecBase.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// A row as it lies in the store, for as long as a visit lasts.
struct ItemRow {
    std::int64_t number;        ///< From 1 on; a later row has a higher one, and none is used again.
    std::string_view identity;  ///< No two rows share it.
    std::string_view attributes;
    std::string_view sealed;  ///< The value.
};

/// Rows that survive, found by number or by the beginning of their identity. Failures are statuses of the item store,
/// and change nothing. Used by one thread at a time.
class ItemStorage {
public:
    /// Called for a row. Any status but success ends the visit and is its result. It must not change the storage.
    using Visitor = std::function<OSStatus(const ItemRow& row)>;

    ItemStorage() = default;
    virtual ~ItemStorage();
    ItemStorage(const ItemStorage&) = delete;
    ItemStorage& operator=(const ItemStorage&) = delete;

    /// Visits every row whose identity begins with `prefix`, in any order; for an empty one, every row.
    [[nodiscard]] virtual OSStatus visit(std::string_view prefix, const Visitor& visitor) = 0;
    /// Visits the row of that number, if there is one.
    [[nodiscard]] virtual OSStatus visitRow(std::int64_t number, const Visitor& visitor) = 0;
    /// Whether there is a row of that identity.
    [[nodiscard]] virtual OSStatus contains(std::string_view identity, bool& isThere) = 0;

    /// Adds a row. @return `errSecDuplicateItem` when there is one with that identity
    [[nodiscard]] virtual OSStatus insert(std::string_view identity, std::string_view attributes,
                                          std::string_view sealed, std::int64_t& number) = 0;
    /// Changes a row, keeping its identity unless another is given. @return `errSecDuplicateItem` as `insert`
    [[nodiscard]] virtual OSStatus replace(std::int64_t number, std::optional<std::string_view> identity,
                                           std::string_view attributes, std::string_view sealed) = 0;
    [[nodiscard]] virtual OSStatus remove(std::int64_t number) = 0;

    /// What follows, up to `commit`, is one change that nobody else's change comes into. Without it each call is one.
    [[nodiscard]] virtual OSStatus begin() = 0;
    /// Makes the change last. A failure undoes it.
    [[nodiscard]] virtual OSStatus commit() = 0;
    virtual void rollback() noexcept = 0;

    /// The mark by which the key is known to be this storage's; absent until it is set.
    [[nodiscard]] virtual OSStatus keyCheck(std::optional<std::string>& mark) = 0;
    [[nodiscard]] virtual OSStatus setKeyCheck(std::string_view mark) = 0;

    /// Whether everything in it hangs together. Takes time in proportion to the storage.
    [[nodiscard]] virtual OSStatus check(bool& isSound) = 0;

    /// Whether what was opened is still what others would open.
    [[nodiscard]] virtual bool isCurrent() noexcept { return true; }
};

/// A change of several steps: undone unless it is committed.
class ItemTransaction {
public:
    explicit ItemTransaction(ItemStorage& storage) : storage_(storage), status_(storage.begin()) {}
    ~ItemTransaction() {
        if (status_ == errSecSuccess) storage_.rollback();
    }
    ItemTransaction(const ItemTransaction&) = delete;
    ItemTransaction& operator=(const ItemTransaction&) = delete;

    /// Of the beginning.
    [[nodiscard]] OSStatus status() const noexcept { return status_; }
    /// Ends the change: kept when `outcome` is success, else undone. @return what has become of it
    [[nodiscard]] OSStatus finish(OSStatus outcome) {
        if (status_ != errSecSuccess) return status_;
        if (outcome != errSecSuccess) return outcome;
        status_ = errSecNotAvailable;  // There is nothing left to roll back.
        return storage_.commit();
    }

private:
    ItemStorage& storage_;
    OSStatus status_;
};

}  // namespace ZORPlatform
