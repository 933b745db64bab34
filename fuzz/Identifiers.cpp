// SPDX-License-Identifier: Apache-2.0
//
// Laws of card numbers, structured comments, numbers of persons, access numbers and login codes: engines equal the
// rules told step for step, explanations go with the booleans, displays have their shape.
#include "support/FuzzText.h"

#include <ZORFoundation/ZORAccessNumberValidator.h>
#include <ZORFoundation/ZORCardNumberFormatter.h>
#include <ZORFoundation/ZORChallengeResponseFormatter.h>
#include <ZORFoundation/ZORCommentFormatter.h>
#include <ZORFoundation/ZORCommentValidator.h>
#include <ZORFoundation/ZORNationalRegistrationNumberValidator.h>
#include <tests/support/IdentifierModel.h>

#include <algorithm>

using namespace ZORFoundation;
using fuzz::require;

namespace {

struct Rule {
    bool (*isValid)(std::u16string_view) noexcept;
    Explanation (*explain)(std::u16string_view) noexcept;
    bool (*literalIsValid)(std::u16string_view);
    std::size_t length;
};

constexpr Rule kRules[] = {
    {ZORCardNumberFormatter::isValidCardNumber, ZORCardNumberFormatter::explainCardNumber,
     support::literalIsValidCardNumber, 17},
    {ZORCommentValidator::isValidStructuredComment, ZORCommentValidator::explainStructuredComment,
     support::literalIsValidBban, 12},
    {ZORNationalRegistrationNumberValidator::isValidNationalRegistrationNumber,
     ZORNationalRegistrationNumberValidator::explainNationalRegistrationNumber,
     support::literalIsValidNationalRegistrationNumber, 11},
    {ZORNationalRegistrationNumberValidator::isValidNationalDocumentNumber,
     ZORNationalRegistrationNumberValidator::explainNationalDocumentNumber,
     support::literalIsValidNationalDocumentNumber, 12},
    {ZORAccessNumberValidator::isAccessNumberValid, ZORAccessNumberValidator::explainAccessNumber,
     support::literalIsAccessNumberValid, 13},
};

void requireRulesHold(std::u16string_view text) {
    for (const Rule& rule : kRules) {
        // Most texts are too long to get past the rule of length.
        for (const std::u16string_view part : {text, text.substr(0, rule.length)}) {
            const bool isValid = rule.isValid(part);
            const Explanation explanation = rule.explain(part);
            require(isValid == rule.literalIsValid(part));
            require(isValid == explanation.isValid());
            require(explanation.position <= part.size());
            require(explanation.character == ZORPlatform::characterIndex(part, explanation.position));
            require((explanation.rule == BrokenRule::length) == (explanation.found != explanation.expected));
        }
    }
}

void requireCardsKeepTheirShape(std::u16string_view text) {
    using Card = ZORCardNumberFormatter;
    const std::u16string stripped = Card::strippedCardNumber(text);
    require(stripped == support::without(text, u" \u00A0"));
    require(Card::formattedCardNumber(text).size() == 21);
    const std::u16string credit = Card::formattedCreditCard(text);
    require(credit.size() == 21 && credit[19] == u' ');
    const std::u16string grown = Card::formattedCardNumberOptimal(text);
    require(Card::strippedCardNumber(grown) == stripped.substr(0, 17));
    require(grown.empty() || grown.back() != u'\u00A0');
    require(Card::isValidCardNumber(text) == Card::isValidCardNumber(stripped));
}

void requireCommentsKeepTheirShape(std::u16string_view text) {
    const std::u16string stripped = ZORCommentFormatter::strippedStructuredComment(text);
    const std::u16string shown = ZORCommentFormatter::formattedStructuredComment(text);
    require(ZORCommentFormatter::strippedStructuredComment(stripped) == stripped);
    require(shown.size() == (stripped.empty() ? 0U : 26U));
    // Groups end where a digit of two units may not.
    if (stripped.size() <= 12 && support::literalIsNumeric(stripped)) {
        require(ZORCommentFormatter::strippedStructuredComment(shown) == stripped);
    }
}

void requireCodesKeepTheirUnits(std::u16string_view text) {
    using Formatter = ZORChallengeResponseFormatter;
    const std::u16string code = Formatter::formattedLoginCodeOptimal(text);
    require(support::without(code, u"\u00A0") == support::without(text, u" \u00A0").substr(0, 8));
    const std::u16string challenge = Formatter::formattedChallenge(text).value();
    require(challenge.size() == text.size() + (text.size() >= 7 ? 1 : 0));
    require(challenge.substr(0, 4) == text.substr(0, 4));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Text text(data, size);
    requireRulesHold(text.view());
    requireCardsKeepTheirShape(text.view());
    requireCommentsKeepTheirShape(text.view());
    requireCodesKeepTheirUnits(text.view());
    return 0;
}
