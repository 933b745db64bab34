// SPDX-License-Identifier: Apache-2.0
#pragma once

// Property lists as files hold them: read in the XML, binary and old-style text forms, written as XML or binary.
//
//     std::optional<NSError> error;
//     auto list = NSPropertyListSerialization::propertyListWithData(bytes, nullptr, &error);

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSError.h>
#include <ZORPlatform/Foundation/PropertyListValue.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ZORPlatform {

/// `NSPropertyListFormat`
enum class NSPropertyListFormat : std::uint32_t {
    openStep = 1,  ///< Old-style text. Read, never written.
    xml_v1_0 = 100,
    binary_v1_0 = 200,
};

/// Codes of `NSCocoaErrorDomain` for property lists.
inline constexpr std::int64_t NSPropertyListReadCorruptError = 3840;
inline constexpr std::int64_t NSPropertyListWriteInvalidError = 3852;

/// Converts property lists to bytes and back. All operations are pure and thread-safe. A list nests at most 512 levels
/// deep, on reading and on writing.
class NSPropertyListSerialization {
public:
    NSPropertyListSerialization() = delete;

    /// `dataWithPropertyList:format:options:error:`
    ///
    /// XML: UTF-8, one element a line, one tab a level, dictionaries sorted by the keys' UTF-16 units, reals in the
    /// shortest digits that read back the same, dates cut to the earlier second. Only "&", "<" and ">" are escaped;
    /// control characters stand as they are. Binary: the platform's "bplist00".
    ///
    /// @param format  `xml_v1_0` or `binary_v1_0`
    /// @param error   set exactly when nothing is returned: NSCocoaErrorDomain, 3852
    /// @return nothing for a list of more than 512 levels, for a format that is only read, and in XML for a text with
    ///         U+0000 or a lone surrogate and for a date that no year of nine digits holds
    [[nodiscard]] ZOR_EXPORT static std::optional<std::vector<std::uint8_t>> dataWithPropertyList(
        const PropertyListValue& list, NSPropertyListFormat format, std::optional<NSError>* error = nullptr);

    /// `propertyListWithData:options:format:error:`, with mutable containers and leaves
    ///
    /// Tries the binary form when the bytes begin with "bplist", else XML, else old-style text (dictionaries in
    /// braces, arrays in parentheses, data in angle brackets, words and quoted texts, and lines of a strings file).
    /// Nothing outside the bytes is read. Memory stays in proportion to them.
    ///
    /// White space alone is an empty dictionary; a bare word is a text. Integers outside −2^63 to 2^64−1, an unknown
    /// element, a key without value and a value without key are errors.
    ///
    /// @param data    the bytes; absent is exceptional
    /// @param format  set to the form found, when something is returned
    /// @param error   set exactly when nothing is returned: NSCocoaErrorDomain, 3840
    /// @return the list, or `std::nullopt` when the bytes hold none; no bytes hold none
    /// @throws NSException named "NSInvalidArgumentException" when `data` is absent
    [[nodiscard]] ZOR_EXPORT static std::optional<PropertyListValue> propertyListWithData(
        std::optional<std::span<const std::uint8_t>> data, NSPropertyListFormat* format = nullptr,
        std::optional<NSError>* error = nullptr);
};

}  // namespace ZORPlatform
