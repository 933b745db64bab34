// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSLocale.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <optional>

namespace ZORPlatform {

NSLocale::NSLocale(std::u16string_view localeIdentifier)
    : identifier_(std::make_shared<const std::u16string>(localeIdentifier)) {}

NSLocale NSLocale::currentLocale() {
    // Kept for the next call, so that what is looked up by locale is found by the identity of the identifier.
    thread_local std::optional<NSLocale> last;
    const std::u16string identifier = HostEnvironment::localeIdentifier();
    if (!last || last->localeIdentifier() != identifier) last.emplace(identifier);
    return *last;
}

}  // namespace ZORPlatform
