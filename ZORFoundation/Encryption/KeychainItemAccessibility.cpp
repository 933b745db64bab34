// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Encryption/KeychainItemAccessibility.h>

#include <ZORPlatform/Security/SecItem.h>

#include <algorithm>
#include <array>

namespace ZORFoundation {
namespace {

// In the order of the cases.
constexpr std::array kKeychainItemAccessibilityLookup{
    ZORPlatform::kSecAttrAccessibleAfterFirstUnlock,
    ZORPlatform::kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly,
    ZORPlatform::kSecAttrAccessibleAlways,
    ZORPlatform::kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly,
    ZORPlatform::kSecAttrAccessibleAlwaysThisDeviceOnly,
    ZORPlatform::kSecAttrAccessibleWhenUnlocked,
    ZORPlatform::kSecAttrAccessibleWhenUnlockedThisDeviceOnly,
};
static_assert(kKeychainItemAccessibilityLookup.size() ==
              static_cast<std::size_t>(KeychainItemAccessibility::whenUnlockedThisDeviceOnly) + 1);

}  // namespace

std::u16string_view keychainAttrValue(KeychainItemAccessibility accessibility) noexcept {
    return kKeychainItemAccessibilityLookup[static_cast<std::size_t>(accessibility)];
}

std::optional<KeychainItemAccessibility> accessibilityForAttributeValue(std::u16string_view value) noexcept {
    const auto* found =
        std::find(kKeychainItemAccessibilityLookup.begin(), kKeychainItemAccessibilityLookup.end(), value);
    if (found == kKeychainItemAccessibilityLookup.end()) return std::nullopt;
    return static_cast<KeychainItemAccessibility>(found - kKeychainItemAccessibilityLookup.begin());
}

}  // namespace ZORFoundation
