// SPDX-License-Identifier: Apache-2.0
#pragma once

// Values as self-describing bytes in the platform's keyed-archive layout: what phones wrote is read, and phones read
// what is written here.
//
//     auto bytes = NSKeyedArchiver::archivedDataWithRootObject(42);
//     NSKeyedUnarchiver::unarchiveObjectWithData(*bytes)->as<NSNumber>()->integerValue();   // 42

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/ArchivedValue.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ZORPlatform {

/// Writes keyed archives. Pure but for the registered classes; thread-safe.
class NSKeyedArchiver {
public:
    NSKeyedArchiver() = delete;

    /// `archivedDataWithRootObject:`
    ///
    /// @return a binary property list; `std::nullopt` for values nested more than 512 levels deep and for objects whose
    ///         class is not registered. An object held several times is written once.
    [[nodiscard]] ZOR_EXPORT static std::optional<std::vector<std::uint8_t>> archivedDataWithRootObject(
        const ArchivedValue& root);
};

/// Reads keyed archives. Pure but for the registered classes; thread-safe.
class NSKeyedUnarchiver {
public:
    NSKeyedUnarchiver() = delete;

    /// `unarchiveObjectWithData:`
    ///
    /// Reads the binary and the XML form. Equal objects may be stored once or several times, entries stand in any
    /// order.
    ///
    /// @return the value; `std::nullopt` when the bytes are no keyed archive, are damaged, hold a class that is not
    ///         known, hold themselves, or hold nothing. Memory stays in proportion to the bytes.
    [[nodiscard]] ZOR_EXPORT static std::optional<ArchivedValue> unarchiveObjectWithData(
        std::span<const std::uint8_t> data);
};

}  // namespace ZORPlatform
