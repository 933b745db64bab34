// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/ZORAccountNumberFormatter.h>
#include <ZORFoundation/ZORAccountNumberValidator.h>
#include <ZORFoundation/ZORMod97.h>
#include <tests/support/AccountNumberModel.h>

#include <algorithm>

using namespace ZORFoundation;
using Formatter = ZORAccountNumberFormatter;
using Validator = ZORAccountNumberValidator;
using fuzz::require;

namespace {

bool isCapitalOrDigit(char16_t unit) { return (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9'); }

void requireTwinsAndModelAgree(std::u16string_view text) {
    require(Validator::isValidIban(text) == support::literalIsValidIban(text));
    require(Validator::isValidBban(text) == support::literalIsValidBban(text));
    require(Validator::explainIban(text).isValid() == Validator::isValidIban(text));
    require(Validator::explainBban(text).isValid() == Validator::isValidBban(text));
    require(ZORMod97::modulo97(text) == support::literalModulo97(text));
}

void requireExplanationPointsIntoTheText(const Explanation& explanation, std::u16string_view text) {
    require(explanation.position <= text.size());
    require(explanation.character <= explanation.position);
    if (explanation.rule == BrokenRule::unexpectedCharacter) require(explanation.position < text.size());
    require((explanation.expected != 0) == (explanation.expected != explanation.found));
}

void requireDisplaysKeepTheNumber(std::u16string_view text) {
    const std::u16string stripped = Formatter::strippedAccountNumber(text);
    require(Formatter::strippedAccountNumber(stripped) == stripped);
    if (std::all_of(stripped.begin(), stripped.end(), isCapitalOrDigit) && stripped.size() <= 32) {
        require(Formatter::strippedAccountNumber(Formatter::formattedAccountNumberAsIban(text)) == stripped);
    }
    const std::u16string bban = Formatter::formattedAccountNumberAsBban(text);
    require(bban.size() == (stripped.empty() ? 0U : 14U));
    require(bban.empty() || (bban[3] == u'-' && bban[11] == u'-'));
    const std::u16string shown = Formatter::autoFormattedAccountNumber(text).value();
    const bool isValid = Validator::isValidIban(stripped) || Validator::isValidBban(stripped);
    require(isValid || shown == stripped);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Text text(data, size);
    requireTwinsAndModelAgree(text.view());
    // Most texts are too long to get past the rules of length.
    requireTwinsAndModelAgree(text.view().substr(0, 16));
    requireTwinsAndModelAgree(text.view().substr(0, 12));
    requireExplanationPointsIntoTheText(Validator::explainIban(text.view()), text.view());
    requireExplanationPointsIntoTheText(Validator::explainBban(text.view()), text.view());
    requireDisplaysKeepTheNumber(text.view());
    return 0;
}
