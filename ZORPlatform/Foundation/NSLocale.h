// SPDX-License-Identifier: Apache-2.0
#pragma once

// The customs of a language and a region, by their name.
//
//     const NSLocale dutch(u"nl_BE");

#include <ZORPlatform/Export.h>

#include <memory>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// A locale, as a value: copies share the identifier and cost no allocation. Any identifier may be held; an unknown
/// region behaves like its language ("nl_XX" like "nl"), an unknown language like the locale of the process. Immutable,
/// so one may be read from several threads.
class ZOR_EXPORT NSLocale {
public:
    /// `initWithLocaleIdentifier:`
    ///
    /// @param localeIdentifier  "nl_BE", "nl-BE" or "nl"
    explicit NSLocale(std::u16string_view localeIdentifier);
    // No moves: a moved-from locale would have no identifier.
    NSLocale(const NSLocale&) noexcept = default;
    NSLocale& operator=(const NSLocale&) noexcept = default;
    ~NSLocale() = default;

    /// `currentLocale`: the one that `HostEnvironment` names at the moment it is asked for.
    [[nodiscard]] static NSLocale currentLocale();

    /// `localeIdentifier`: as it was given.
    [[nodiscard]] const std::u16string& localeIdentifier() const noexcept { return *identifier_; }

    friend bool operator==(const NSLocale& left, const NSLocale& right) noexcept {
        return left.identifier_ == right.identifier_ || *left.identifier_ == *right.identifier_;
    }

private:
    std::shared_ptr<const std::u16string> identifier_;  // Never null.
};

}  // namespace ZORPlatform
