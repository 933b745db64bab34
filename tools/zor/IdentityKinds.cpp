// SPDX-License-Identifier: Apache-2.0
//
// Numbers of persons. Two of them exist twice: as digits alone, and in the layout in which they are typed. Formatting
// either kind gives the layout, normalising either the digits.

#include <tools/zor/KindGroups.h>
#include <tools/zor/KindRules.h>

#include <ZORFoundation/StringPatterns.h>
#include <ZORFoundation/Validation/InputValidator.h>
#include <ZORFoundation/ZORAccessNumberValidator.h>
#include <ZORFoundation/ZORNationalRegistrationNumberValidator.h>

#include <array>

namespace zor {
namespace {

using namespace ZORFoundation;
using Access = ZORAccessNumberValidator;
using National = ZORNationalRegistrationNumberValidator;

std::u16string registrationLayout(std::u16string_view text, const KindSettings&) {
    return StringExtension::formatTextWithPattern(digits(text), u"XX.XX.XX-XXX.XX", u"X");
}

std::u16string cardLayout(std::u16string_view text, const KindSettings&) {
    return StringExtension::formatTextWithPattern(digits(text), u"XXX-XXXXXXX-XX", u"X");
}

constexpr std::array kKinds{
    Kind{"national-number", "national registration numbers of 11 digits",
         check<National::isValidNationalRegistrationNumber>, explain<National::explainNationalRegistrationNumber>,
         display<digits>, registrationLayout},
    Kind{"registration-number", "the same in their layout, 85.07.30-033.28",
         check<InputValidator::isValidNationalRegistrationNumber>,
         explain<InputValidator::explainNationalRegistrationNumber>, display<digits>, registrationLayout},
    Kind{"document-number", "identity document numbers of 12 digits", check<National::isValidNationalDocumentNumber>,
         explain<National::explainNationalDocumentNumber>, display<digits>, cardLayout},
    Kind{"id-card", "the same in their layout, 590-1234567-89", check<InputValidator::isValidIDCardNumber>,
         explain<InputValidator::explainIDCardNumber>, display<digits>, cardLayout},
    Kind{"access-number", "access numbers of 13 digits", check<Access::isAccessNumberValid>,
         explain<Access::explainAccessNumber>, asWritten, asWritten},
};

}  // namespace

const KindGroup kIdentityKinds{"identity-numbers", "ISO 7064; Belgium", "2026-11-21", kKinds};

}  // namespace zor
