// SPDX-License-Identifier: Apache-2.0
#pragma once

// Text laid into a pattern, step by step as the rule has it.

#include <ZORPlatform/Foundation/Text.h>

#include <string>
#include <string_view>

namespace support {

/// `formatTextWithPattern` said plainly: remove, divide, lay out.
inline std::u16string formattedPlainly(std::u16string_view text, std::u16string_view pattern,
                                       std::u16string_view mark) {
    std::u16string cleaned(text);
    std::erase(cleaned, u' ');
    if (cleaned.empty() || pattern.empty()) return std::u16string(text);
    std::u16string result;
    std::size_t at = 0;
    std::size_t taken = 0;
    while (at < pattern.size() && taken < cleaned.size()) {
        const std::size_t end = ZORPlatform::characterEnd(pattern, at);
        if (ZORPlatform::canonicallyEqual(pattern.substr(at, end - at), mark)) {
            const std::size_t next = ZORPlatform::characterEnd(cleaned, taken);
            result.append(cleaned, taken, next - taken);
            taken = next;
        } else {
            result += pattern.substr(at, end - at);
        }
        at = end;
    }
    return result;
}

}  // namespace support
