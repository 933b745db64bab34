// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the device tells an application about itself and a Linux process has to be told: where its documents and
// resources are, what it is called, and the customs, the time zone and the clock of its user.
//
//     HostEnvironment::setMainBundleIdentifier(u"be.example.bank");
//     HostEnvironment::setDocumentsDirectory("/var/lib/bank/documents");

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDate.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// Settings of the process, made by the application; each has a default. Every operation that depends on one reads
/// it at each call, unless its own comment says otherwise. Setting `std::nullopt` returns to the default.
///
/// The defaults for directories follow the XDG base directories: with DATA for `$XDG_DATA_HOME` (else
/// `$HOME/.local/share`) and STATE for `$XDG_STATE_HOME` (else `$HOME/.local/state`). A relative value in the
/// environment is ignored, as that standard asks.
///
/// Thread-safe.
class ZOR_EXPORT HostEnvironment {
public:
    HostEnvironment() = delete;

    /// The application's Documents directory, absolute. Default: DATA/ZORFoundation/Documents. Not created.
    [[nodiscard]] static std::filesystem::path documentsDirectory();
    static void setDocumentsDirectory(std::optional<std::filesystem::path> directory);

    /// Where the library finds its own resource files. Default: the `share/ZORFoundation` folder of the installation.
    [[nodiscard]] static std::filesystem::path libraryResourceDirectory();
    static void setLibraryResourceDirectory(std::optional<std::filesystem::path> directory);

    /// Where the main bundle finds the application's resource files. Default: DATA/ZORFoundation/Resources.
    [[nodiscard]] static std::filesystem::path mainResourceDirectory();
    static void setMainResourceDirectory(std::optional<std::filesystem::path> directory);

    /// What is kept for diagnosis and recovery. Default: STATE/ZORFoundation. Not created.
    [[nodiscard]] static std::filesystem::path stateDirectory();
    static void setStateDirectory(std::optional<std::filesystem::path> directory);

    /// The file of the item store. Default: DATA/ZORFoundation/items.sqlite. Not created.
    [[nodiscard]] static std::filesystem::path itemStorePath();
    static void setItemStorePath(std::optional<std::filesystem::path> path);

    /// The module that measures text, loaded by the first measurement and kept. Default: absent, it is looked for
    /// beside the library and then where the system looks for libraries.
    [[nodiscard]] static std::optional<std::filesystem::path> textLayoutModule();
    static void setTextLayoutModule(std::optional<std::filesystem::path> file);

    /// The main bundle's identifier in reverse-DNS form. Default: absent.
    [[nodiscard]] static std::optional<std::u16string> mainBundleIdentifier();
    static void setMainBundleIdentifier(std::optional<std::u16string> identifier);

    /// The identifier of the user's locale, "language_REGION". Default: what the environment says in LC_ALL,
    /// LC_MESSAGES or LANG, the first that is set and not empty, up to a "." or "@"; "en_US_POSIX" for "C", "POSIX"
    /// and when none is set.
    [[nodiscard]] static std::u16string localeIdentifier();
    static void setLocaleIdentifier(std::optional<std::u16string> identifier);

    /// The identifier of the user's time zone in the tz database, "Europe/Brussels", or an offset, "GMT+02:00".
    /// Default: what the environment says in TZ, else what /etc/localtime links to, else "GMT". A TZ that names a file
    /// of the database counts as that file's name. The services look up the default once and keep it: see
    /// `NSTimeZone::resetSystemTimeZone`.
    [[nodiscard]] static std::u16string timeZoneIdentifier();
    static void setTimeZoneIdentifier(std::optional<std::u16string> identifier);

    /// The present moment, for `NSDate::date()` and all that asks it. Default: the system's real-time clock. A moment
    /// that was set stands still.
    [[nodiscard]] static NSDate now() noexcept;
    static void setNow(std::optional<NSDate> moment) noexcept;

    /// The gettext domain that holds the application's translations. Default: absent, nothing is translated. The
    /// application itself calls `setlocale` and `bindtextdomain`.
    [[nodiscard]] static std::optional<std::string> textDomain();
    static void setTextDomain(std::optional<std::string> domain);
};

}  // namespace ZORPlatform
