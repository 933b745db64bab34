// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/KindRules.h>

#include <ZORFoundation/ZORCommentFormatter.h>

namespace zor {

std::u16string digits(std::u16string_view text) {
    // Keeps decimal digits, whatever they are the digits of.
    return ZORFoundation::ZORCommentFormatter::strippedStructuredComment(text);
}

std::u16string dialled(std::u16string_view text) { return (text.starts_with(u'+') ? u"+" : u"") + digits(text); }

std::size_t writtenPosition(std::u16string_view text, std::u16string_view stripped, std::size_t position) {
    std::size_t at = 0;
    for (std::size_t kept = 0; at < text.size() && kept < stripped.size(); ++at) {
        if (text[at] != stripped[kept]) continue;
        if (kept == position) return at;
        ++kept;
    }
    return position < stripped.size() ? at : text.size();
}

}  // namespace zor
