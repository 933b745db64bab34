// SPDX-License-Identifier: Apache-2.0
#pragma once

// The registry behind ZORErrorHandler: for each error domain, the prefix of its short codes and the mapper that makes
// the rest.

#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORErrorMapper.h>
#include <ZORPlatform/Export.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZORFoundation {

/// Makes a mapper for one error. Empty, or giving a null pointer: there is no mapper.
using ErrorMapperFactory = std::function<std::unique_ptr<ZORErrorMapper>()>;

/// A dictionary from error domain to entry. Domains are compared exactly, unit by unit.
///
/// Thread-safe. Entries go in and out by value, and no mapper or factory is called with the dictionary locked, so a
/// factory may change the dictionary that it stands in.
class ZOR_EXPORT ErrorMapping {
public:
    struct Entry {
        /// "ERROR_PREFIX": stands before every code of the domain; absent is written "(null)".
        std::optional<std::u16string> prefix;
        /// "ERROR_MAPPER_CLASS": makes the mapper; without one the mapper's part is written "(null)".
        ErrorMapperFactory mapper;
    };

    /// An empty dictionary.
    ErrorMapping();
    ~ErrorMapping();
    ErrorMapping(const ErrorMapping&) = delete;
    ErrorMapping& operator=(const ErrorMapping&) = delete;

    /// The entry of `domain`, or `std::nullopt` when it has none.
    [[nodiscard]] std::optional<Entry> find(std::u16string_view domain) const;

    [[nodiscard]] bool contains(std::u16string_view domain) const;

    /// Puts `entry` under `domain` and drops the one that was there.
    void set(std::u16string_view domain, Entry entry);

    /// Takes the entry of `domain` out. @return whether there was one
    bool remove(std::u16string_view domain);

    /// The domains that have an entry, in no particular order.
    [[nodiscard]] std::vector<std::u16string> keys() const;

private:
    struct Storage;
    std::unique_ptr<Storage> storage_;
};

}  // namespace ZORFoundation
