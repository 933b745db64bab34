// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORSubstringSearch.h>

#include <ZORPlatform/Foundation/StringSearch.h>
#include <ZORPlatform/Foundation/Text.h>

namespace ZORFoundation::ZORSubstringSearch {

bool zor_hasSubString(std::u16string_view text, std::u16string_view subString) {
    std::u16string prepared = ZORPlatform::lowercased(text);
    std::erase(prepared, u' ');
    return ZORPlatform::containsString(prepared, subString, ZORPlatform::NSStringCompareOptions::none);
}

}  // namespace ZORFoundation::ZORSubstringSearch
