// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringChecks.h>

#include <ZORFoundation/CharacterRuleInternal.h>

#include <algorithm>
#include <cstddef>

namespace ZORFoundation::StringExtension {
namespace {

constexpr CharacterClass kDigits(u"0-9");

// The members as the expressions list them. From ")" to "," is a range, which takes in "*" and "+".
constexpr CharacterClass kBackendMembers(u"a-zA-Z0-9()-,:?./+',\"@éêèëàäâïíüùöçôóûî&ÉÈËÀÄÂÏÜÙÖÇÔÓÛÎÍ -",
                                         CharacterClass::Case::insensitive);
constexpr CharacterClass kMessageMembers =
    CharacterClass(u"a-zA-Z0-9()-,:;?!€./+',%<>*#=_\"@éèëàäâïüùöçôûî&ÉÈËÀÄÂÏÜÙÖÇÔÛÎ -",
                   CharacterClass::Case::insensitive)
        .with(u"\\\n\v\f\r\u0085\u2028\u2029");
constexpr CharacterClass kBcmcMembers = CharacterClass(u"a-zA-Z0-9 ", CharacterClass::Case::insensitive).with(u"\\");

constexpr CharacterRule kBcmcReference{kBcmcMembers, {0, CountBounds::kUnlimited}};
constexpr CharacterRule kBackendCharacters{kBackendMembers, {0, CountBounds::kUnlimited}};
constexpr CharacterRule kBackendInput{kBackendMembers, {0, 70}};
constexpr CharacterRule kMessageBody{kMessageMembers, {0, CountBounds::kUnlimited}};
constexpr CountBounds kResponseUnits{5, 8};

constexpr auto kUnitCount = [](std::u16string_view text) { return text.size(); };

Offence numericOffence(std::u16string_view text) noexcept {
    const std::size_t firstDigit = std::min(text.find_first_not_of(u' '), text.size());
    const std::size_t end = firstDigit + kDigits.firstOutside(text.substr(firstDigit));
    if (end < text.size()) return {BrokenRule::unexpectedCharacter, end};
    if (firstDigit == text.size()) return {text.empty() ? BrokenRule::empty : BrokenRule::incomplete, firstDigit};
    return {};
}

Offence responseOffence(std::u16string_view text) noexcept {
    if (text.empty()) return {BrokenRule::empty};
    if (text.size() < kResponseUnits.least) return tooFew(kResponseUnits, text.size());
    if (text.size() > kResponseUnits.most) return tooMany(kResponseUnits, kResponseUnits.most);
    return {};
}

}  // namespace

bool isNumeric(std::u16string_view text) noexcept { return numericOffence(text).rule == BrokenRule::none; }

Explanation explainNumeric(std::u16string_view text) {
    return explained(text, numericOffence(text), {1, CountBounds::kUnlimited}, kUnitCount);
}

bool isValidBcmcReference(std::u16string_view text) noexcept { return kBcmcReference.allows(text); }

Explanation explainBcmcReference(std::u16string_view text) { return kBcmcReference.explanation(text, kUnitCount); }

bool containsOnlyValidCharacters(std::u16string_view text) noexcept { return kBackendCharacters.allows(text); }

Explanation explainOnlyValidCharacters(std::u16string_view text) {
    return kBackendCharacters.explanation(text, kUnitCount);
}

bool isValidBackendInputString(std::u16string_view text) noexcept { return kBackendInput.allows(text); }

Explanation explainBackendInputString(std::u16string_view text) { return kBackendInput.explanation(text, kUnitCount); }

bool isValidMessageBody(std::u16string_view text) noexcept { return kMessageBody.allows(text); }

Explanation explainMessageBody(std::u16string_view text) { return kMessageBody.explanation(text, kUnitCount); }

bool isValidResponse(std::u16string_view text) noexcept { return responseOffence(text).rule == BrokenRule::none; }

Explanation explainResponse(std::u16string_view text) {
    return explained(text, responseOffence(text), kResponseUnits, kUnitCount);
}

}  // namespace ZORFoundation::StringExtension
