// SPDX-License-Identifier: Apache-2.0
#pragma once

// The input rules beside the regular expressions that define them, run by ICU. The expressions are written out here
// as the rules give them, so that nothing of the library's own tables is taken over.

#include <ZORFoundation/StringChecks.h>
#include <ZORFoundation/Validation/InputValidator.h>
#include <ZORPlatform/Foundation/Text.h>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace support {

/// A regular expression of ICU with its matcher.
class IcuExpression {
public:
    explicit IcuExpression(std::u16string_view pattern, std::uint32_t flags = 0) {
        UErrorCode status = U_ZERO_ERROR;
        matcher_ = std::make_unique<icu::RegexMatcher>(
            icu::UnicodeString(pattern.data(), static_cast<std::int32_t>(pattern.size())), flags, status);
        if (U_FAILURE(status)) throw std::invalid_argument(u_errorName(status));
    }

    /// Whether the whole text matches; absent when ICU gives up.
    std::optional<bool> matches(std::u16string_view text) {
        const icu::UnicodeString alias(false, text.data(), static_cast<std::int32_t>(text.size()));
        UErrorCode status = U_ZERO_ERROR;
        const bool result = matcher_->reset(alias).matches(status) != 0;
        if (U_FAILURE(status)) return std::nullopt;
        return result;
    }

    /// The text without every match in it.
    std::u16string deletedFrom(std::u16string_view text) {
        const icu::UnicodeString alias(false, text.data(), static_cast<std::int32_t>(text.size()));
        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString left = matcher_->reset(alias).replaceAll(icu::UnicodeString(), status);
        return {left.getBuffer(), static_cast<std::size_t>(left.length())};
    }

private:
    std::unique_ptr<icu::RegexMatcher> matcher_;
};

/// A rule of the library, its twin, and what it has to answer.
class InputRule {
public:
    using Rule = bool (*)(std::u16string_view);
    using Twin = ZORFoundation::Explanation (*)(std::u16string_view);

    virtual ~InputRule() = default;
    InputRule(const InputRule&) = delete;
    InputRule& operator=(const InputRule&) = delete;

    /// The answer by the definition; absent when ICU gives up.
    virtual std::optional<bool> expected(std::u16string_view text) = 0;

    const char* const name;
    const Rule allows;
    const Twin explain;
    /// A text that the rule allows, for putting others into.
    const std::u16string_view sample;

protected:
    InputRule(const char* ruleName, Rule rule, Twin twin, std::u16string_view allowed)
        : name(ruleName), allows(rule), explain(twin), sample(allowed) {}
};

/// The whole text matches an expression and has at most so many characters; an empty text is answered beforehand.
class MatchRule final : public InputRule {
public:
    MatchRule(const char* ruleName, Rule rule, Twin twin, std::u16string_view allowed, std::u16string_view pattern,
              std::size_t most = std::u16string_view::npos, bool allowsEmpty = false)
        : InputRule(ruleName, rule, twin, allowed), expression_(pattern), most_(most), allowsEmpty_(allowsEmpty) {}

    std::optional<bool> expected(std::u16string_view text) override {
        if (text.empty()) return allowsEmpty_;
        const std::optional<bool> matches = expression_.matches(text);
        if (!matches || !*matches) return matches;
        return ZORPlatform::characterCount(text) <= most_;
    }

private:
    IcuExpression expression_;
    std::size_t most_;
    bool allowsEmpty_;
};

/// Nothing is left once an expression's matches are deleted, whatever their case, and then the units of a set.
class DeletionRule final : public InputRule {
public:
    DeletionRule(const char* ruleName, Rule rule, Twin twin, std::u16string_view allowed, std::u16string_view pattern,
                 std::u16string_view deletedAfterwards = {}, std::size_t mostUnits = std::u16string_view::npos)
        : InputRule(ruleName, rule, twin, allowed),
          expression_(pattern, UREGEX_CASE_INSENSITIVE),
          deletedAfterwards_(deletedAfterwards),
          mostUnits_(mostUnits) {}

    std::optional<bool> expected(std::u16string_view text) override {
        if (text.size() > mostUnits_) return false;
        return expression_.deletedFrom(text).find_first_not_of(deletedAfterwards_) == std::u16string::npos;
    }

private:
    IcuExpression expression_;
    std::u16string_view deletedAfterwards_;
    std::size_t mostUnits_;
};

/// The whole text matches an expression, and the digits in it are a body and its check by 97.
class CheckedLayoutRule final : public InputRule {
public:
    /// Whether a check belongs to a body.
    using Check = bool (*)(std::uint64_t body, std::uint64_t check);

    CheckedLayoutRule(const char* ruleName, Rule rule, Twin twin, std::u16string_view allowed,
                      std::u16string_view pattern, std::size_t bodyDigits, Check check)
        : InputRule(ruleName, rule, twin, allowed), expression_(pattern), bodyDigits_(bodyDigits), check_(check) {}

    std::optional<bool> expected(std::u16string_view text) override {
        const std::optional<bool> matches = expression_.matches(text);
        if (!matches || !*matches) return matches;
        std::string digits;
        for (std::size_t at = 0; at < text.size();) {
            const ZORPlatform::ScalarStep step = ZORPlatform::scalarAt(text, at);
            // Digits of other scripts stay in the number, which then is not numeric.
            if (step.scalar >= 0x80 && ZORPlatform::isDecimalDigit(step.scalar)) return false;
            if (step.scalar >= U'0' && step.scalar <= U'9') digits.push_back(static_cast<char>(step.scalar));
            at = step.end;
        }
        return digits.size() == bodyDigits_ + 2 &&
               check_(std::stoull(digits.substr(0, bodyDigits_)), std::stoull(digits.substr(bodyDigits_)));
    }

private:
    IcuExpression expression_;
    std::size_t bodyDigits_;
    Check check_;
};

/// All rules with a fixed expression, and those with limits at a few of them. Matchers are not for several threads.
class InputRules {
public:
    using InputValidator = ZORFoundation::InputValidator;
    using Limits = ZORFoundation::CharacterLimits;

    auto begin() { return rules_.begin(); }
    auto end() { return rules_.end(); }

private:
    template <std::int64_t Least, std::int64_t Most>
    static bool allowsName(std::u16string_view text) {
        return InputValidator::isValidName(text, Limits{Least, Most});
    }
    template <std::int64_t Least, std::int64_t Most>
    static ZORFoundation::Explanation explainName(std::u16string_view text) {
        return InputValidator::explainName(text, Limits{Least, Most});
    }
    template <std::int64_t Least, std::int64_t Most>
    static bool allowsText(std::u16string_view text) {
        return InputValidator::isValidText(text, Limits{Least, Most});
    }
    template <std::int64_t Least, std::int64_t Most>
    static ZORFoundation::Explanation explainText(std::u16string_view text) {
        return InputValidator::explainText(text, Limits{Least, Most});
    }

    static constexpr std::size_t kNoLimit = std::u16string_view::npos;

    static std::u16string withLetters(std::u16string_view before, std::u16string_view after) {
        return std::u16string(before) + u"àèìòùáéíóúâêîôûäëïöüçÀÈÌÒÙÁÉÍÓÚÂÊÎÔÛÄËÏÖÜÇ" + std::u16string(after);
    }

    static std::unique_ptr<InputRule> matching(const char* name, InputRule::Rule rule, InputRule::Twin twin,
                                               std::u16string_view sample, std::u16string_view pattern,
                                               std::size_t most = kNoLimit, bool allowsEmpty = false) {
        return std::make_unique<MatchRule>(name, rule, twin, sample, pattern, most, allowsEmpty);
    }
    static std::unique_ptr<InputRule> deleting(const char* name, InputRule::Rule rule, InputRule::Twin twin,
                                               std::u16string_view sample, std::u16string_view pattern,
                                               std::u16string_view afterwards = {}, std::size_t mostUnits = kNoLimit) {
        return std::make_unique<DeletionRule>(name, rule, twin, sample, pattern, afterwards, mostUnits);
    }

    static std::unique_ptr<InputRule> checked(const char* name, InputRule::Rule rule, InputRule::Twin twin,
                                              std::u16string_view sample, std::u16string_view pattern,
                                              std::size_t bodyDigits, CheckedLayoutRule::Check check) {
        return std::make_unique<CheckedLayoutRule>(name, rule, twin, sample, pattern, bodyDigits, check);
    }

    std::array<std::unique_ptr<InputRule>, 21> rules_{
        matching("email", InputValidator::isValidEmail, InputValidator::explainEmail, u"a@b.be",
                 u"[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\\.[A-Za-z]{2,63}"),
        matching("mobile phone", InputValidator::isValidMobilePhoneNumber, InputValidator::explainMobilePhoneNumber,
                 u"+0475/12345678", u"^[+]?\\s?(\\d[\\s]?([-\\/\\./,]?\\s?)){10,15}$"),
        matching("box", InputValidator::isValidBoxNumber, InputValidator::explainBoxNumber, u"b 12", u"^([A-z ]|\\d)*$",
                 9),
        matching("house", InputValidator::isValidHouseNumber, InputValidator::explainHouseNumber, u"12A",
                 u"^([1-9]{1}[A-z0-9]{0,})$", 5),
        matching("street", InputValidator::isValidStreet, InputValidator::explainStreet, u"Rue d’Été 1-3",
                 withLetters(u"^[a-zA-Z0-9", u",’’‘`\\.\\- ]*$"), 35),
        matching("name", InputValidator::isValidName, InputValidator::explainName, u"O‘Hé",
                 withLetters(u"^[a-zA-Z", u", ’’‘`.-]*$")),
        matching("name 0 to 3", allowsName<0, 3>, explainName<0, 3>, u"An",
                 withLetters(u"^[a-zA-Z", u", ’’‘`.-]{0,3}$"), kNoLimit, true),
        matching("name 2 to 30", allowsName<2, 30>, explainName<2, 30>, u"Anna",
                 withLetters(u"^[a-zA-Z", u", ’’‘`.-]{2,30}$")),
        matching("name 4", allowsName<4, 4>, explainName<4, 4>, u"Ann", withLetters(u"^[a-zA-Z", u", ’’‘`.-]{4,4}$")),
        matching("text 0 to 140", allowsText<0, 140>, explainText<0, 140>, u"12 b’",
                 withLetters(u"^[a-zA-Z0-9", u",’’‘`\\.\\- ]{0,140}$"), kNoLimit, true),
        matching("text 5 to 8", allowsText<5, 8>, explainText<5, 8>, u"B-1000",
                 withLetters(u"^[a-zA-Z0-9", u",’’‘`\\.\\- ]{5,8}$")),
        matching("postal code", InputValidator::isValidBelgiumPostalCode, InputValidator::explainBelgiumPostalCode,
                 u"100", u"[0-9]{4,4}$"),
        matching("business name", InputValidator::isValidBusinessName, InputValidator::explainBusinessName,
                 u"A.B-(c)!?:{}#'é,1", withLetters(u"^[0-9a-zA-Z", u", '.\\-()!?:{}#]*$")),
        matching("pin", InputValidator::isValidPinChar, InputValidator::explainPinChar, u"", u"[0-9]$"),
        matching("numeric", ZORFoundation::StringExtension::isNumeric, ZORFoundation::StringExtension::explainNumeric,
                 u"  12", u" *[0-9]+"),
        deleting("Bcmc reference", ZORFoundation::StringExtension::isValidBcmcReference,
                 ZORFoundation::StringExtension::explainBcmcReference, u"A b\\1", u"[a-zA-Z0-9 ]",
                 std::u16string_view(u"\\")),
        checked("registration number", InputValidator::isValidNationalRegistrationNumber,
                InputValidator::explainNationalRegistrationNumber, u"85.07.30-033.2",
                u"^\\d{2}\\.\\d{2}\\.\\d{2}-\\d{3}\\.\\d{2}$", 9,
                [](std::uint64_t body, std::uint64_t check) {
                    return 97 - body % 97 == check || 97 - (2'000'000'000 + body) % 97 == check;
                }),
        checked("identity card", InputValidator::isValidIDCardNumber, InputValidator::explainIDCardNumber,
                u"322-3630929-5", u"^[0-9]{3}-[0-9]{7}-[0-9]{2}$", 10,
                [](std::uint64_t body, std::uint64_t check) { return body % 97 == check; }),
        deleting("valid characters", ZORFoundation::StringExtension::containsOnlyValidCharacters,
                 ZORFoundation::StringExtension::explainOnlyValidCharacters, u"a*É",
                 u"[a-zA-Z0-9()-,:?./+',\"@éêèëàäâïíüùöçôóûî&ÉÈËÀÄÂÏÜÙÖÇÔÓÛÎÍ -]"),
        deleting("back-end input", ZORFoundation::StringExtension::isValidBackendInputString,
                 ZORFoundation::StringExtension::explainBackendInputString, u"a*É",
                 u"[a-zA-Z0-9()-,:?./+',\"@éêèëàäâïíüùöçôóûî&ÉÈËÀÄÂÏÜÙÖÇÔÓÛÎÍ -]", {}, 70),
        deleting("message", ZORFoundation::StringExtension::isValidMessageBody,
                 ZORFoundation::StringExtension::explainMessageBody, u"a\n€É",
                 u"[a-zA-Z0-9()-,:;?!€./+',%<>*#=_\"@éèëàäâïüùöçôûî&ÉÈËÀÄÂÏÜÙÖÇÔÛÎ -]",
                 std::u16string_view(u"\\\n\v\f\r\u0085\u2028\u2029")),
    };
};

/// What is wrong with the answers of a rule and its twin for `text`, or null.
inline const char* contradiction(InputRule& rule, std::u16string_view text) {
    const bool allowed = rule.allows(text);
    const std::optional<bool> expected = rule.expected(text);
    if (expected && *expected != allowed) return "the rule and its expression disagree";

    using ZORFoundation::BrokenRule;
    const ZORFoundation::Explanation why = rule.explain(text);
    if (why.isValid() != allowed) return "the rule and its twin disagree";
    if (why.position > text.size()) return "an offence behind the end of the text";
    if (!allowed && why.character != ZORPlatform::characterIndex(text, why.position)) {
        return "the offence has two places";
    }
    switch (why.rule) {
        case BrokenRule::unexpectedCharacter:
            return why.position < text.size() ? nullptr : "no character to be unexpected";
        case BrokenRule::empty:
            return text.empty() ? nullptr : "a text that is not empty";
        case BrokenRule::incomplete:
            return why.position == text.size() ? nullptr : "more text is there";
        case BrokenRule::tooShort:
            return why.found < why.expected ? nullptr : "not too short";
        case BrokenRule::tooLong:
            return why.found > why.expected ? nullptr : "not too long";
        case BrokenRule::length:
            return why.found != why.expected ? nullptr : "the right length";
        default:
            return nullptr;
    }
}

}  // namespace support
