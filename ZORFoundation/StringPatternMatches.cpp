// SPDX-License-Identifier: Apache-2.0
//
// Apart from formatTextWithPattern, which needs no regular expressions.

#include <ZORFoundation/StringPatterns.h>

#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSRegularExpression.h>
#include <ZORPlatform/Foundation/Precondition.h>

namespace ZORFoundation::StringExtension {

std::vector<std::u16string> zor_patternMatches(std::u16string_view text, std::u16string_view for_) {
    std::vector<std::u16string> groups;
    const auto expression = ZORPlatform::NSRegularExpression::regularExpressionWithPattern(for_);
    if (!expression) return groups;

    const bool isComplete =
        expression->enumerateMatchesInString(text, [&](std::span<const ZORPlatform::NSRange> match) {
            if (match.size() == 1) {
                ZORPlatform::preconditionFailure(
                    "zor_patternMatches(for:): the pattern needs at least one capture group");
            }
            for (const ZORPlatform::NSRange& group : match.subspan(1)) {
                if (group.location == ZORPlatform::NSNotFound) {
                    throw ZORPlatform::NSException(
                        u"NSRangeException", u"zor_patternMatches(for:): a capture group takes no part in a match");
                }
                groups.emplace_back(text.substr(group.location, group.length));
            }
            return true;
        });
    if (!isComplete) groups.clear();
    return groups;
}

}  // namespace ZORFoundation::StringExtension
