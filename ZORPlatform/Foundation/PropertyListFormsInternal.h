// SPDX-License-Identifier: Apache-2.0
#pragma once

// The forms of a property list, one source file each. Readers answer `std::nullopt` for bytes that are no list in
// their form; writers for a value that their form cannot hold.

#include <ZORPlatform/Foundation/PropertyListValue.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ZORPlatform::PropertyListForms {

/// Deeper lists are refused, so that readers, writers and destructors may recurse.
inline constexpr std::size_t kMaximumDepth = 512;

std::optional<PropertyListValue> readXml(std::string utf8);
std::optional<std::vector<std::uint8_t>> writeXml(const PropertyListValue& list);

std::optional<PropertyListValue> readBinary(std::span<const std::uint8_t> bytes);
std::optional<std::vector<std::uint8_t>> writeBinary(const PropertyListValue& list);

std::optional<PropertyListValue> readOldStyle(std::u16string_view text);

/// The bytes as UTF-8 without byte-order mark, by the mark they begin with, else by the encoding that an XML
/// declaration names, else as UTF-8. Absent when they are ill-formed in that encoding or hold U+0000.
std::optional<std::string> textOfBytes(std::span<const std::uint8_t> bytes);

}  // namespace ZORPlatform::PropertyListForms
