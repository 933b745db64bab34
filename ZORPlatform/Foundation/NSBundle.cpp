// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSBundle.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <libintl.h>

#include <utility>

namespace ZORPlatform {

NSBundle::NSBundle(std::optional<std::u16string> bundleIdentifier, std::filesystem::path resourceDirectory)
    : identifier_(std::move(bundleIdentifier)), resourceDirectory_(std::move(resourceDirectory)) {}

NSBundle NSBundle::mainBundle() {
    return {HostEnvironment::mainBundleIdentifier(), HostEnvironment::mainResourceDirectory()};
}

std::u16string NSBundle::localizedStringForKey(std::u16string_view key) const {
    const std::optional<std::string> domain = HostEnvironment::textDomain();
    // gettext keeps the catalogue's header under the empty key; it is no translation.
    if (!domain || key.empty()) return std::u16string(key);
    const std::optional<std::string> untranslated = utf8IfWellFormed(key);
    // To gettext a key ends at its first NUL, which would find the translation of another key.
    if (!untranslated || untranslated->find('\0') != std::string::npos) return std::u16string(key);
    bind_textdomain_codeset(domain->c_str(), "UTF-8");
    const char* found = dgettext(domain->c_str(), untranslated->c_str());
    return found == untranslated->c_str() ? std::u16string(key) : utf16(found);
}

}  // namespace ZORPlatform
