// SPDX-License-Identifier: Apache-2.0
#pragma once

// Text and locales on their way to ICU and back, for the formatters.

#include <ZORPlatform/Foundation/NSLocale.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ZORPlatform {

/// The units of `text`, which must outlive the result.
inline std::u16string_view view(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

/// Shares the units of `text`, which must outlive the result.
inline icu::UnicodeString alias(std::u16string_view text) {
    return {false, text.data(), static_cast<std::int32_t>(text.size())};
}

inline icu::Locale icuLocale(const NSLocale& locale) { return icu::Locale(utf8(locale.localeIdentifier()).c_str()); }

}  // namespace ZORPlatform
