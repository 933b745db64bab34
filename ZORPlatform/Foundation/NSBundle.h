// SPDX-License-Identifier: Apache-2.0
#pragma once

// A bundle: an identifier and a folder of resource files. The main bundle is the application itself.

#include <ZORPlatform/Export.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// A bundle, as a value. The main bundle's content comes from `HostEnvironment` at the moment it is asked for.
class ZOR_EXPORT NSBundle {
public:
    NSBundle(std::optional<std::u16string> bundleIdentifier, std::filesystem::path resourceDirectory);

    /// `mainBundle`
    [[nodiscard]] static NSBundle mainBundle();

    /// `bundleIdentifier`: reverse-DNS form; absent when the bundle has none.
    [[nodiscard]] const std::optional<std::u16string>& bundleIdentifier() const noexcept { return identifier_; }

    [[nodiscard]] const std::filesystem::path& resourceDirectory() const noexcept { return resourceDirectory_; }

    /// `localizedStringForKey:value:table:` of the default table, with an empty fallback.
    ///
    /// Looks `key` up in the application's gettext domain (`HostEnvironment::textDomain`), read as UTF-8 whatever the
    /// locale's own encoding.
    ///
    /// @return the translation; `key` itself when there is none, when no domain is set, or when `key` is empty
    ///
    /// Thread-safe.
    [[nodiscard]] std::u16string localizedStringForKey(std::u16string_view key) const;

private:
    std::optional<std::u16string> identifier_;
    std::filesystem::path resourceDirectory_;
};

}  // namespace ZORPlatform
