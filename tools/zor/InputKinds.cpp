// SPDX-License-Identifier: Apache-2.0
//
// What people type into forms. Nothing is stripped, and apart from phone numbers nothing has a form but the one that
// was typed.

#include <tools/zor/KindGroups.h>
#include <tools/zor/KindRules.h>
#include <tools/zor/NumberArgument.h>

#include <ZORFoundation/StringChecks.h>
#include <ZORFoundation/Validation/InputValidator.h>

#include <array>
#include <cstdint>

namespace zor {
namespace {

using namespace ZORFoundation;
using Input = InputValidator;

constexpr CharacterLimits kAnyLength{1, 16'777'215};

CharacterLimits limitsOf(const KindSettings& settings) { return settings.limits.value_or(kAnyLength); }

bool checkName(std::u16string_view text, const KindSettings& settings) {
    return settings.limits ? Input::isValidName(text, *settings.limits) : Input::isValidName(text);
}

Explanation explainName(std::u16string_view text, const KindSettings& settings) {
    return settings.limits ? Input::explainName(text, *settings.limits) : Input::explainName(text);
}

template <auto Rule>
bool checkLimited(std::u16string_view text, const KindSettings& settings) {
    return Rule(text, limitsOf(settings));
}

template <auto Rule>
Explanation explainLimited(std::u16string_view text, const KindSettings& settings) {
    return Rule(text, limitsOf(settings));
}

bool setLimit(KindSettings& settings, std::int64_t CharacterLimits::*bound, std::string_view option,
              std::string_view value) {
    settings.limits = limitsOf(settings);
    (*settings.limits).*bound =
        static_cast<std::int64_t>(numberArgument(option, value, 0, static_cast<std::size_t>(kAnyLength.maxChar)));
    return true;
}

constexpr KindOption kMin{"--min", "N", "the fewest characters allowed (default: 1)",
                          [](KindSettings& settings, std::string_view value) {
                              return setLimit(settings, &CharacterLimits::minChar, "--min", value);
                          }};
constexpr KindOption kMax{"--max", "N", "the most characters allowed",
                          [](KindSettings& settings, std::string_view value) {
                              return setLimit(settings, &CharacterLimits::maxChar, "--max", value);
                          }};
constexpr std::array kLimits{&kMin, &kMax};

std::string_view limitsComplaint(const KindSettings& settings) {
    const CharacterLimits limits = limitsOf(settings);
    return limits.minChar > limits.maxChar ? "--min is above --max" : "";
}

// A row of a kind whose rule takes a text and nothing else.
template <auto Check, auto Explain>
constexpr Kind typed(std::string_view name, std::string_view help, std::string_view counted = "character") {
    return {name, help, check<Check>, explain<Explain>, asWritten, asWritten, {}, counted};
}

constexpr std::array kKinds{
    typed<Input::isValidEmail, Input::explainEmail>("email", "e-mail addresses", "letter of the last label"),
    Kind{"mobile-phone",
         "mobile phone numbers",
         check<Input::isValidMobilePhoneNumber>,
         explain<Input::explainMobilePhoneNumber>,
         display<dialled>,
         asWritten,
         {},
         "digit"},
    typed<Input::isValidStreet, Input::explainStreet>("street", "streets, up to 35 characters"),
    typed<Input::isValidHouseNumber, Input::explainHouseNumber>("house-number", "house numbers, up to 5 characters"),
    typed<Input::isValidBoxNumber, Input::explainBoxNumber>("box-number", "box numbers, up to 9 characters"),
    Kind{"postal-code", "postal codes of any country", checkLimited<Input::isValidPostalCode>,
         explainLimited<Input::explainPostalCode>, asWritten, asWritten, kLimits, "character", limitsComplaint},
    typed<Input::isValidBelgiumPostalCode, Input::explainBelgiumPostalCode>("belgian-postal-code",
                                                                            "postal codes of four digits"),
    Kind{"name", "names of people", checkName, explainName, asWritten, asWritten, kLimits, "character",
         limitsComplaint},
    typed<Input::isValidBusinessName, Input::explainBusinessName>("business-name", "names of businesses"),
    Kind{"text", "texts of letters, digits, spaces and some marks", checkLimited<Input::isValidText>,
         explainLimited<Input::explainText>, asWritten, asWritten, kLimits, "character", limitsComplaint},
    typed<Input::isValidPinChar, Input::explainPinChar>("pin", "one digit of a PIN"),
    typed<StringExtension::isValidBackendInputString, StringExtension::explainBackendInputString>(
        "backend-text", "texts for the back end, up to 70 units"),
    typed<StringExtension::isValidMessageBody, StringExtension::explainMessageBody>("message", "texts of messages"),
};

}  // namespace

const KindGroup kInputKinds{"input-rules", "Unicode 15", "2026-11-21", kKinds};

}  // namespace zor
