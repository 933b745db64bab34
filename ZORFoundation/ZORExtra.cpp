// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORExtra.h>

#include <ZORPlatform/Foundation/HTMLImport.h>
#include <ZORPlatform/Foundation/LossyAscii.h>
#include <ZORPlatform/Foundation/StringSearch.h>
#include <ZORPlatform/Foundation/Utf.h>

namespace ZORFoundation::ZORExtra {

std::u16string zor_preparedURLString(std::u16string_view text) {
    std::u16string result;
    if (text.find(u':') == std::u16string_view::npos) result = u"https://";
    result.append(text);
    return result;
}

bool zor_containsSubstring(std::u16string_view text, std::u16string_view substring) {
    return ZORPlatform::containsString(text, substring, ZORPlatform::NSStringCompareOptions::caseInsensitive);
}

std::optional<std::u16string> zor_parsedHTML(std::u16string_view text) {
    std::u16string markup(text);
    ZORPlatform::replaceOccurrences(markup, u"\n", u" <br>");
    const std::optional<std::string> bytes = ZORPlatform::utf8IfWellFormed(markup);
    if (!bytes) return std::nullopt;
    return ZORPlatform::plainTextFromHTML(*bytes);
}

std::u16string removeAccents(std::u16string_view text) { return ZORPlatform::lossyAscii(text); }

}  // namespace ZORFoundation::ZORExtra
