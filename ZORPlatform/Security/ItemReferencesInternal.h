// SPDX-License-Identifier: Apache-2.0
#pragma once

// Keys and certificates as items: their bytes are the value, and attributes say what is in them.

#include <ZORPlatform/Security/SecItemDictionary.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace ZORPlatform {

/// What an item is for a key or certificate.
struct ReferencedItem {
    std::u16string_view itemClass;
    SecItemValue::Data value;
    SecItemDictionary attributes;
};

/// @return absent for a value that is no handle, and for a key that has no bytes of its own
[[nodiscard]] std::optional<ReferencedItem> itemOfReference(const SecItemValue& reference);

/// The handle that an item's value stands for.
///
/// @return absent for a value that is no key or certificate
[[nodiscard]] std::optional<SecItemValue> referenceOfItem(std::u16string_view itemClass,
                                                          std::span<const std::uint8_t> value);

/// Type, issuer, subject, serial number, key identifier and key digest of a certificate.
///
/// @return empty for bytes that are no certificate
[[nodiscard]] SecItemDictionary attributesOfCertificate(std::span<const std::uint8_t> value);

}  // namespace ZORPlatform
