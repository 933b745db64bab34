// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/StringPatterns.h>
#include <ZORFoundation/ZORPhoneNumberFormatter.h>
#include <tests/support/InputRuleModel.h>
#include <tests/support/PatternModel.h>

using namespace ZORFoundation;
using fuzz::require;

namespace {

void requireRulesAndExpressionsAgree(std::u16string_view text) {
    static support::InputRules rules;
    for (const auto& rule : rules) require(support::contradiction(*rule, text) == nullptr);
}

void requireLinksHoldTheRest(std::u16string_view text) {
    const std::u16string link = ZORPhoneNumberFormatter::formatPhoneNumber(text);
    require(link.starts_with(u"tel://"));
    require(link.find_first_of(u"()- .") == std::u16string::npos);
    require(ZORPhoneNumberFormatter::formatPhoneNumber(link.substr(6)) == link);
    require(ZORPhoneNumberFormatter::formatPhoneNumber(text, text) == link + std::u16string(text));
}

void requireLayoutOfTheModel(std::u16string_view text, std::u16string_view pattern, std::u16string_view mark) {
    require(StringExtension::formatTextWithPattern(text, pattern, mark) ==
            support::formattedPlainly(text, pattern, mark));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Text whole(data, size);
    const std::u16string_view text = whole.view();
    requireRulesAndExpressionsAgree(text);
    // Most texts are too long to get past the rules of length.
    requireRulesAndExpressionsAgree(text.substr(0, 9));
    requireRulesAndExpressionsAgree(text.substr(0, 4));
    requireLinksHoldTheRest(text);

    const std::u16string_view pattern = text.substr(text.size() / 2);
    requireLayoutOfTheModel(text.substr(0, text.size() / 2), pattern, u"X");
    if (!pattern.empty()) requireLayoutOfTheModel(text, pattern, pattern.substr(0, 1));
    return 0;
}
