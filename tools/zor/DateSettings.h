// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the options of `zor date` say.

#include <ZORPlatform/Foundation/NSDate.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zor {

struct DateStyle;

struct DateSettings {
    std::u16string_view read = u"yyyy-MM-dd";  ///< The pattern that dates are written by.
    const DateStyle* style = nullptr;          ///< How dates are shown: null for that of ISO 8601.
    std::u16string dateTemplate{};  ///< Fields to show in the order of a locale; empty where none were asked for.
    std::int64_t days = 0;
    std::int64_t months = 0;
    std::int64_t years = 0;
    ZORPlatform::NSDate today{};  ///< Midnight UTC of the day that counts as today.
};

}  // namespace zor
