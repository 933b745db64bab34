// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSLocale.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>

namespace ZORPlatform {

NSLocale::NSLocale(std::u16string_view localeIdentifier)
    : identifier_(std::make_shared<const std::u16string>(localeIdentifier)) {}

NSLocale NSLocale::currentLocale() { return NSLocale(HostEnvironment::localeIdentifier()); }

}  // namespace ZORPlatform
