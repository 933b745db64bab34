// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ArrayExtension.h>

#include <ZORPlatform/Foundation/Text.h>

#include <unordered_set>
#include <utility>

namespace ZORFoundation::ArrayExtension {

std::vector<std::u16string> distinct(const std::vector<std::u16string>& array, CanonicalEquivalence) {
    std::vector<std::u16string> result;
    std::unordered_set<std::u16string> known;
    for (const std::u16string& text : array) {
        if (known.insert(ZORPlatform::canonicalDecomposition(text)).second) result.push_back(text);
    }
    return result;
}

}  // namespace ZORFoundation::ArrayExtension
