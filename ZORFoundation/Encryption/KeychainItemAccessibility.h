// SPDX-License-Identifier: Apache-2.0
#pragma once

// When an item of the keychain may be read.
//
//     keychainAttrValue(KeychainItemAccessibility::always);                  // u"dk", kSecAttrAccessibleAlways
//     accessibilityForAttributeValue(u"dk");                                 // KeychainItemAccessibility::always

#include <ZORPlatform/Export.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ZORFoundation {

/// Stored with an item and compared when items are sought; see ZORKeychain. The file of the item store is readable
/// whenever its owner's processes run, so nothing else follows from it here.
enum class KeychainItemAccessibility : std::uint8_t {
    afterFirstUnlock,                ///< `kSecAttrAccessibleAfterFirstUnlock`
    afterFirstUnlockThisDeviceOnly,  ///< `kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly`
    always,                          ///< `kSecAttrAccessibleAlways`
    whenPasscodeSetThisDeviceOnly,   ///< `kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly`
    alwaysThisDeviceOnly,            ///< `kSecAttrAccessibleAlwaysThisDeviceOnly`
    whenUnlocked,                    ///< `kSecAttrAccessibleWhenUnlocked`
    whenUnlockedThisDeviceOnly,      ///< `kSecAttrAccessibleWhenUnlockedThisDeviceOnly`
};

/// `keychainAttrValue`: the value of the platform's accessibility attribute that the case stands for. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string_view keychainAttrValue(KeychainItemAccessibility accessibility) noexcept;

/// `KeychainAttrRepresentable`: what stands for a value of a keychain attribute.
template <class Value>
concept KeychainAttrRepresentable = requires(const Value& value) {
    { keychainAttrValue(value) } -> std::convertible_to<std::u16string_view>;
};

/// `accessibilityForAttributeValue(_:)`: the case whose attribute value equals `value`, unit by unit; `std::nullopt`
/// when there is none. Pure.
[[nodiscard]] ZOR_EXPORT std::optional<KeychainItemAccessibility> accessibilityForAttributeValue(
    std::u16string_view value) noexcept;

}  // namespace ZORFoundation
